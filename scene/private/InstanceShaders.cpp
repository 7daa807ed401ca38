#include "scene/private/InstanceShaders.h"

#include "scene/DepthShader.h"
#include "scene/private/MeshShaders.h"
#include "scene/private/PeelShader.h"

namespace Vek::Chart::Scene::Private {

namespace {

const char* const AttributeText = R"(
attribute vec3 place;  // of the instance's origin
attribute float size;
attribute vec3 axis_x; // of the rotated mesh, or the direction of its z axis
attribute vec3 axis_y;
attribute vec4 paint;  // a value, a colour or an id
void Fetch() {}
bool IsOne() { return place.x < 3.2e38 && (sized == 0 || size > 0.0) && (oriented == 0 || dot(axis_x, axis_x) > 0.0); }
)";

const char* const TextureText = R"(
uniform usamplerBuffer order;  // instances, level by level
uniform samplerBuffer places;
uniform samplerBuffer sizes;
uniform samplerBuffer axes;
uniform samplerBuffer paints;
uniform int first;             // of the level
uniform int count;
uniform int copies;            // of the mesh, each for another instance
uniform int repeated;          // whether there are several
uniform int numbered;          // whether instances are painted with their own numbers
vec3 place;
float size = 1.0;
vec3 axis_x;
vec3 axis_y;
vec4 paint;
int number;
void Fetch() {
  number = repeated != 0 ? gl_InstanceID * copies + int(gl_MultiTexCoord0.x + 0.5) : gl_InstanceID;
  int i = int(texelFetch(order, first + min(number, count - 1)).r);
  place = texelFetch(places, i).xyz;
  if (sized != 0)
    size = texelFetch(sizes, i).r;
  if (oriented == 1)
    axis_x = texelFetch(axes, i).xyz;
  if (oriented == 2) {
    axis_x = texelFetch(axes, 2 * i).xyz;
    axis_y = texelFetch(axes, 2 * i + 1).xyz;
  }
  if (painted != 0)
    paint = numbered != 0 ? vec4(i & 255, (i >> 8) & 255, (i >> 16) & 255, 255) / 255.0 : texelFetch(paints, i);
}
bool IsOne() { return number < count; }
)";

const char* const PlacingText = R"(
uniform vec3 center;    // of the mesh
uniform float fit;      // scale of the mesh for an instance of size 1
uniform float least;    // least size at a distance of 1
uniform int widened;    // whether there is one
uniform vec3 up;        // where the mesh's +y points, as far as the direction permits
uniform int facing;     // 0: by rotation, 1: rotated about z to face the eye
uniform int sized;      // whether there are sizes
uniform int oriented;   // 0: not, 1: by direction, 2: by rotation
uniform int painted;    // whether there are values, colours or ids

mat3 ByDirection(vec3 z) {
  vec3 side = cross(up, z);
  if (dot(side, side) < 1.0e-12)
    side = cross(vec3(0.0, 1.0, 0.0), z);
  if (dot(side, side) < 1.0e-12)
    side = cross(vec3(0.0, 0.0, 1.0), z);
  vec3 y = normalize(cross(z, side));
  return mat3(cross(y, z), y, z);
}

// Where the eye looks at a point, in eye coordinates.
uniform int central; // whether the projection is perspective
vec3 SightOf(vec3 point) { return central != 0 ? normalize(point) : vec3(0.0, 0.0, -1.0); }
)";

const char* const MeshText = R"(
vec2 shade; // diffuse and specular light on an outline

// The light on a body around an axis, in the mean of what is seen: diffuse and specular. `toward` and `side` are at
// right angles to the axis. `slant` has the parts of the normals that point away from the axis and along it.
vec2 MeanLight(vec3 axis, vec3 toward, vec3 side, vec2 slant, vec3 sight) {
  vec3 light = normalize(gl_LightSource[0].position.xyz);
  vec3 gloss = normalize(light - sight);
  vec2 sum = vec2(0.0);
  // Four parts of equal width across.
  for (int i = 0; i < 4; ++i) {
    float across = 0.5 * float(i) - 0.75;
    vec3 n = slant.x * (sqrt(1.0 - across * across) * toward + across * side) + slant.y * axis;
    float facing = max(dot(n, light), 0.0);
    sum.x += facing;
    if (facing > 0.0)
      sum.y += pow(max(dot(n, gloss), 0.0), gl_FrontMaterial.shininess);
  }
  return 0.25 * sum;
}

// Vertices of meshes that face the eye: x across, z along the axis, y along its projection where the axis points to the
// eye. Normals: x and z of the surface, y another z at least.
vec4 Facing(vec3 z, float scale) {
  vec3 eye = (gl_ModelViewMatrix * vec4(place, 1.0)).xyz;
  vec3 axis = mat3(gl_ModelViewMatrix) * z * scale;
  float size = length(axis);
  vec3 sight = SightOf(eye);
  axis /= max(size, 1.0e-30);
  float away = dot(axis, sight);
  vec3 along = axis - away * sight;
  float seen = length(along);
  along = seen > 1.0e-4 ? along / seen : normalize(cross(sight, vec3(0.3, 0.9, 0.1)));
  vec3 side = cross(sight, along);
  float end = abs(away);
  vec3 v = gl_Vertex.xyz - center;
  float far = max(v.z * seen + min(v.y, 0.0) * end, gl_Normal.y * seen + max(v.y, 0.0) * end);
  vec3 toward = cross(side, along); // at right angles to the projection of the axis
  toward = normalize(toward - dot(toward, axis) * axis);
  vec2 light = MeanLight(axis, toward, side, gl_Normal.xz, sight);
  shade = light;
  return vec4(eye + size * (side * v.x + along * far + sight * (away * v.z)), 1.0);
}

vec4 Placed(float factor) {
  mat3 turn = oriented == 0   ? mat3(1.0)
              : oriented == 1 ? ByDirection(axis_x)
                              : mat3(axis_x, axis_y, cross(axis_x, axis_y));
  vec4 world = vec4(place + turn * (gl_Vertex.xyz - center) * (fit * factor), 1.0);
  normal = gl_NormalMatrix * (turn * gl_Normal);
  return gl_ModelViewMatrix * world;
}

vec4 EyePosition(float factor) {
  if (facing == 0)
    return Placed(factor);
  return Facing(oriented == 0 ? vec3(0.0, 0.0, 1.0) : oriented == 1 ? axis_x : cross(axis_x, axis_y), fit * factor);
}
)";

// A polygon in the plane of the sphere's outline.
const char* const SphereVertexText = R"(
const vec2 shade = vec2(0.0);
vec4 EyePosition(float factor) {
  vec3 eye = (gl_ModelViewMatrix * vec4(place, 1.0)).xyz;
  float radius = fit * factor * length(gl_ModelViewMatrix[0].xyz);
  vec3 sight = SightOf(eye);
  float share = central != 0 ? min(radius * radius / max(dot(eye, eye), 1.0e-30), 0.99) : 0.0;
  vec3 upward = normalize(cross(abs(sight.x) < 0.8 ? vec3(1.0, 0.0, 0.0) : vec3(0.0, 1.0, 0.0), sight));
  vec3 right = cross(sight, upward);
  ball = vec4(eye, radius);
  normal = -sight;
  return vec4(eye * (1.0 - share) + radius * sqrt(1.0 - share) * (right * gl_Vertex.x + upward * gl_Vertex.y), 1.0);
}
)";

const char* const VertexMain = R"(
void main() {
  Fetch();
  float factor = sized != 0 ? size : 1.0;
  if (widened != 0)
    factor = max(factor, least * (gl_ModelViewProjectionMatrix * vec4(place, 1.0)).w);
  vec4 eye = EyePosition(factor);
  position = eye.xyz;
  bool isShown = Paint() && IsOne();
  gl_ClipVertex = eye;
  gl_Position = isShown ? gl_ProjectionMatrix * eye : vec4(2.0, 2.0, 2.0, 1.0); // all vertices beyond the far plane
}
)";

// Colours are the same in all of an instance, so that fragments need not find them.
const char* const ColoringHead = R"(
vec4 own;
float missing;
float value;
)";
const char* const ColoringText = R"(
uniform int lighting;
bool Paint() {
  own = painted != 0 ? paint : vec4(0.0);
  missing = own.x > 3.2e38 ? 1.0 : 0.0;
  value = missing > 0.0 ? 0.0 : own.x;
  color = PlainColor();
  if (lighting == 3)
    color.rgb = color.rgb * (gl_LightModel.ambient.rgb + gl_LightSource[0].diffuse.rgb * shade.x) +
                gl_LightSource[0].specular.rgb * shade.y;
  return color.a > 0.0;
}
)";
const char* const NumberingText = R"(
bool Paint() {
  color = painted != 0 ? paint : vec4(0.0);
  return true;
}
)";

// Replaces position, normal and depth by those of the sphere: of its front, or of its back where planes cut the front
// or an earlier layer shows it.
const char* const SphereFragmentText = R"(
uniform int cuts; // a bit for each clip plane
vec3 hit;
vec3 outward;
float depth;
bool IsCut(vec3 point) {
  for (int i = 0; i < 6; ++i)
    if ((cuts & (1 << i)) != 0 && dot(gl_ClipPlane[i], vec4(point, 1.0)) < 0.0)
      return true;
  return false;
}
void Meet(vec3 point, vec3 sight) {
  hit = point;
  outward = hit - ball.xyz;
  if (dot(outward, sight) > 0.0)
    outward = -outward;
  vec4 clip = gl_ProjectionMatrix * vec4(hit, 1.0);
  depth = 0.5 * (gl_DepthRange.diff * clip.z / clip.w + gl_DepthRange.near + gl_DepthRange.far);
}
#define POSITION hit
#define NORMAL outward
#define main PaintFragment
)";

const char* const SphereFragmentMain = R"(
#undef main
uniform int peeled;  // whether a layer in front is left out
uniform int central; // whether the projection is perspective
uniform int exact;   // whether the polygon is larger than the outline
bool IsHidden() { return IsCut(hit) || (peeled != 0 && IsPeeled()); }
void main() {
  vec3 start = central != 0 ? vec3(0.0) : position;
  vec3 sight = central != 0 ? normalize(position) : vec3(0.0, 0.0, -1.0);
  vec3 from = start - ball.xyz;
  float middle = -dot(from, sight);
  vec3 nearest = from + middle * sight; // of the ray, seen from the centre
  float square = ball.w * ball.w - dot(nearest, nearest);
  if (exact != 0 && square < 0.0)
    discard;
  float reach = sqrt(max(square, 0.0));
  Meet(start + (middle - reach) * sight, sight);
  if ((cuts != 0 || peeled != 0) && IsHidden()) {
    Meet(start + (middle + reach) * sight, sight);
    if (IsHidden())
      discard;
  }
  gl_FragDepth = depth;
  PaintFragment();
}
)";

std::string Replaced(std::string p_text, const std::string& p_from, const std::string& p_to) {
  for (std::size_t at = p_text.find(p_from); at != std::string::npos; at = p_text.find(p_from, at + p_to.size()))
    p_text.replace(at, p_from.size(), p_to);
  return p_text;
}

/// The version and what a vertex shader writes for a fragment shader.
std::string Head(const InstanceShaders& p_shaders, bool p_isVertex) {
  const bool hasFlat = p_shaders.fetch == Fetch::Textures;
  const std::string link = !hasFlat ? "varying " : p_isVertex ? "out " : "in ", flat = hasFlat ? "flat " : "";
  std::string text = hasFlat ? "#version 150 compatibility\n" : "#version 120\n";
  const auto flatNormals = p_shaders.constants.find(FlatNormals);
  text += (flatNormals != p_shaders.constants.end() && flatNormals->second != 0 ? flat : "") + link + "vec3 normal;\n" +
          link + "vec3 position;\n";     // in eye coordinates
  text += flat + link + "vec4 color;\n"; // or the id
  if (p_shaders.fragments == Fragments::Spheres)
    text += flat + link + "vec4 ball;\n"; // centre in eye coordinates and radius
  return text;
}

/// Writes constants in place of uniforms.
std::string WithConstants(std::string p_text, const InstanceShaders& p_shaders) {
  for (const auto& [name, number] : p_shaders.constants)
    p_text = Replaced(std::move(p_text), "uniform int " + name + ';',
                      "const int " + name + " = " + std::to_string(number) + ';');
  return p_text;
}

const char* const LitFragmentMain = R"(
uniform int peeled; // whether a layer in front is left out
void main() {
  gl_FragColor = lighting == 3 ? color : Lit(color);
  if (peeled != 0 && IsPeeled()) // after the derivatives
    discard;
}
)";
const char* const LitSphereMain = R"(
void main() { gl_FragColor = Lit(color); }
)";

std::string FragmentBody(const InstanceShaders& p_shaders) {
  const bool areSpheres = p_shaders.fragments == Fragments::Spheres;
  switch (p_shaders.paint) {
  case Paint::Depths:
    return PackedDepthText();
  case Paint::Ids:
    return "uniform float plot;\nvoid main() { gl_FragColor = vec4(color.rgb, plot); }\n";
  default:
    return std::string(LightText) + (areSpheres ? LitSphereMain : LitFragmentMain);
  }
}

} // namespace

std::string InstanceShaders::VertexText() const {
  const std::string painting =
      paint == Paint::Colors ? std::string(ColoringHead) + ColorText + ColoringText : std::string(NumberingText);
  return WithConstants(Head(*this, true) + PlacingText + (fetch == Fetch::Textures ? TextureText : AttributeText) +
                           (fragments == Fragments::Spheres ? SphereVertexText : MeshText) + painting + VertexMain,
                       *this);
}

std::string InstanceShaders::FragmentText() const {
  const bool areSpheres = fragments == Fragments::Spheres;
  const std::string text = (areSpheres ? SphereFragmentText : std::string()) + PeelText + FragmentBody(*this) +
                           (areSpheres ? SphereFragmentMain : "");
  return WithConstants(Head(*this, false) + (areSpheres ? Replaced(text, "gl_FragCoord.z", "depth") : text), *this);
}

} // namespace Vek::Chart::Scene::Private
