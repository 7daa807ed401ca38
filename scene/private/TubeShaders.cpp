#include "scene/private/TubeShaders.h"

#include "scene/DepthShader.h"
#include "scene/private/MeshShaders.h"
#include "scene/private/PeelShader.h"

#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

const char* const VaryingText = R"(
LINK vec3 position; // in eye coordinates
LINK vec3 normal;   // of facing ones, the part across the tube
LINK vec3 toward;   // of facing ones, the normal where the tube faces the eye
LINK float value;
LINK float missing;
flat LINK int number;
)";

const char* const VertexBody = R"(
in vec4 id; // the station, lowest byte first, and the code
uniform samplerBuffer stations; // two texels each: position and radius, rotation
uniform samplerBuffer values;
uniform float start; // the angle of the first vertex of a ring
uniform float turn;  // the angle between two of them
uniform float lift;  // of all towards the eye, in radii
uniform vec3 half_size; // of the viewport in pixels
uniform float pixels;   // half the width of lines on the screen

vec3 Turned(vec4 q, vec3 v) { return v + 2.0 * cross(q.xyz, cross(q.xyz, v) + q.w * v); }

void main() {
  int station = int(id.x + 256.0 * id.y + 65536.0 * id.z + 0.5);
  int code = int(id.w + 0.5);
  vec4 place = texelFetch(stations, 2 * station);
  vec4 rotation = texelFetch(stations, 2 * station + 1);
  vec4 eye = gl_ModelViewMatrix * vec4(place.xyz, 1.0);
  float scale = length(gl_ModelViewMatrix[0].xyz);
  mat3 view = mat3(gl_ModelViewMatrix) / scale;
  vec3 z = view * Turned(rotation, vec3(0.0, 0.0, 1.0));
  float angle = start + turn * float(code & 31);
  float across = cos(angle);
  float up = sin(angle);
  vec3 offset;
  toward = vec3(0.0);
  if (kind == 0) { // the half that faces the eye
    vec3 sight = central != 0 ? normalize(eye.xyz) : vec3(0.0, 0.0, -1.0);
    vec3 y = dot(sight, z) * z - sight;
    toward = dot(y, y) > 1.0e-8 ? normalize(y) : view * Turned(rotation, vec3(0.0, 1.0, 0.0));
    normal = across * cross(toward, z);
    offset = normal + (up + lift) * toward;
  } else {
    vec3 x = view * Turned(rotation, vec3(1.0, 0.0, 0.0));
    vec3 y = cross(z, x);
    offset = across * x + up * y;
    normal = kind >= 2 ? -y : (code & 32) == 0 ? offset : (code & 64) == 0 ? z : -z;
    if ((code & 128) != 0)
      offset = vec3(0.0);
  }
  if (kind != 3)
    eye.xyz += place.w * scale * offset;
  float fetched = painted != 0 ? texelFetch(values, station).r : 0.0;
  missing = fetched > 3.2e38 ? 1.0 : 0.0;
  value = missing > 0.0 ? 0.0 : fetched;
  number = min(station, 0xFFFFFF);
  position = eye.xyz;
  gl_ClipVertex = eye;
  vec4 clip = gl_ProjectionMatrix * eye;
  if (kind == 3) { // across the direction on the screen
    vec4 ahead = gl_ProjectionMatrix * vec4(z, 0.0);
    vec2 way = (ahead.xy * clip.w - clip.xy * ahead.w) * half_size.xy;
    way = dot(way, way) > 0.0 ? normalize(way) : vec2(1.0, 0.0);
    clip.xy += (code == 0 ? 1.0 : -1.0) * pixels * vec2(-way.y, way.x) / half_size.xy * clip.w;
  }
  gl_Position = clip;
}
)";

const char* const NormalText = R"(
const vec4 own = vec4(0.0);
vec3 Outward() { return kind == 0 ? normal + sqrt(max(1.0 - dot(normal, normal), 0.0)) * toward : normal; }
#define POSITION position
#define NORMAL Outward()
)";

const char* const ColorMain = R"(
void main() {
  vec4 color = PlainColor();
  if (color.a == 0.0)
    discard;
  if (peeled != 0 && IsPeeled())
    discard;
  gl_FragColor = Lit(color);
}
)";

const char* const NumberMain = R"(
uniform float plot; // (number + 1) / 255
void main() { gl_FragColor = vec4(vec3(number & 255, (number >> 8) & 255, number >> 16) / 255.0, plot); }
)";

std::string Head(const TubeShaders& p_shaders, const char* p_link) {
  const auto constant = [](const char* p_name, int p_number) {
    return std::string("const int ") + p_name + " = " + std::to_string(p_number) + ";\n";
  };
  return std::string("#version 150 compatibility\n#define LINK ") + p_link + VaryingText +
         constant("kind", p_shaders.kind) + constant("central", p_shaders.isCentral ? 1 : 0) +
         constant("peeled", p_shaders.isPeeled ? 1 : 0) + constant("painted", p_shaders.isPainted ? 1 : 0);
}

} // namespace

std::string TubeShaders::VertexText() const {
  return Head(*this, "out") + VertexBody;
}

std::string TubeShaders::FragmentText() const {
  switch (paint) {
  case Depths:
    return Head(*this, "in") + PackedDepthText();
  case Numbers:
    return Head(*this, "in") + NumberMain;
  default:
    break;
  }
  const int lighting = kind == TubeSection::Facing ? ByOneNormal : kind == TubeSection::Screen ? Unlit : ByNormals;
  const std::string coloring = WithConstant(WithConstant(ColorText, "painting", ByValue), "logarithmic", isLogarithmic);
  return Head(*this, "in") + NormalText + PeelText + coloring + WithConstant(LightText, "lighting", lighting) +
         ColorMain;
}

} // namespace Vek::Chart::Scene::Private
