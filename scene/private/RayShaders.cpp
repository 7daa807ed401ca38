#include "scene/private/RayShaders.h"

#include "scene/private/VoxelPlaces.h"

#include "library/DepthCodec.h"

namespace Vek::Chart::Scene::Private {

const char* const RayVertexText = R"(#version 120
varying vec2 pixel;
void main() {
  pixel = gl_Vertex.xy;
  gl_Position = vec4(gl_Vertex.xy, 0.0, 1.0);
}
)";

namespace {

// Positions are texture coordinates of the volume, or shares of its box where cells are uneven. A ray is origin + s *
// reach, with s from 0 to 1.
const char* const CommonText = R"(
uniform sampler3D volume;
uniform sampler2D table;    // the colour of a value and its opacity, or extinction coefficient
uniform sampler2D depths;   // of opaque things
uniform int occluded;       // whether there are any
uniform mat4 fromClip;      // clip coordinates to texture coordinates
uniform mat4 toClip;
uniform float nearest;      // clip z before and behind the box
uniform float farthest;
uniform vec3 corner;        // the point at the position 0
uniform vec3 size;          // from there to the position 1
uniform vec3 low;           // the positions that are drawn
uniform vec3 high;
uniform vec3 wholeLow;      // those that rays run through, of which others draw the rest
uniform vec3 wholeHigh;
uniform vec3 texelScale;    // from positions, or what a table makes of them, to coordinates of the texture
uniform vec3 texelShift;
uniform vec3 voxel;         // the mean size of the voxels
uniform float spacing;      // of samples, in units of the scene
uniform int jitter;
uniform int logarithmic;
uniform float tableStart;   // the value of the first texel, or its logarithm
uniform float tableFactor;
uniform float isovalue;
uniform vec4 clips[6];      // kept is xyz * position + w >= 0
uniform int clipCount;
uniform vec4 id;
varying vec2 pixel;

struct Ray {
  vec3 start;  // the sample 0
  vec3 step;
  float first; // the first sample of the part that is drawn
  float end;   // the first one behind it
  float width; // of a step, in units of the scene
};

vec3 Unproject(float z) {
  vec4 position = fromClip * vec4(pixel, z, 1.0);
  return position.xyz / position.w;
}

// Where a ray is in a box.
vec2 Within(vec3 lowest, vec3 highest, vec3 origin, vec3 along) {
  vec3 a = (lowest - origin) / along;
  vec3 b = (highest - origin) / along;
  vec3 first = min(a, b);
  vec3 last = max(a, b);
  return vec2(max(first.x, max(first.y, first.z)), min(last.x, min(last.y, last.z)));
}

// The part of the pixel's ray that is in the box, before opaque things, and within the clipping planes. Parts of a box
// compute the same samples, and share them out: a sample on a face belongs to the part behind.
Ray CastRay() {
  vec3 origin = Unproject(nearest);
  vec3 reach = Unproject(farthest) - origin;
  float enter = 0.0, leave = 1.0;
  if (occluded != 0) {
    float z = 2.0 * texture2D(depths, 0.5 * pixel + 0.5).r - 1.0;
    if (z <= nearest)
      discard;
    if (z < farthest)
      leave = dot(Unproject(z) - origin, reach) / dot(reach, reach);
  }
  vec3 along = mix(reach, vec3(1e-20), vec3(lessThan(abs(reach), vec3(1e-20))));
  vec2 whole = Within(wholeLow, wholeHigh, origin, along);
  enter = max(enter, whole.x);
  leave = min(leave, whole.y);
  for (int i = 0; i < 6; ++i)
    if (i < clipCount) {
      float side = dot(clips[i].xyz, origin) + clips[i].w;
      float slope = dot(clips[i].xyz, reach);
      if (slope > 0.0)
        enter = max(enter, -side / slope);
      else if (slope < 0.0)
        leave = min(leave, -side / slope);
      else if (side < 0.0)
        discard;
    }
  if (!(enter < leave))
    discard;
  Ray ray;
  float length = length(reach * size) * (leave - enter);
  float count = clamp(ceil(length / spacing), 1.0, 8192.0);
  ray.width = length / count;
  ray.step = reach * ((leave - enter) / count);
  // Interleaved gradient noise (Jimenez, "Next Generation Post Processing in Call of Duty: Advanced Warfare", 2014).
  float offset = jitter == 0 ? 0.5 : fract(52.9829189 * fract(dot(gl_FragCoord.xy, vec2(0.06711056, 0.00583715))));
  ray.start = origin + reach * enter + ray.step * offset;
  vec2 part = (Within(low, high, origin, along) - enter) * (count / (leave - enter));
  ray.first = max(ceil(part.x - offset), 0.0);
  ray.end = min(ceil(part.y - offset), count);
  if (!(ray.first < ray.end))
    discard;
  return ray;
}

// The value in x, and in y whether it is present.
vec2 ValueAt(vec3 position) {
#ifdef UNEVEN
  vec4 texel = texture3D(volume, TexelAt(position) * texelScale + texelShift);
#else
  vec4 texel = texture3D(volume, position * texelScale + texelShift);
#endif
  return vec2(texel.r / max(texel.a, 1e-6), texel.a - 0.5);
}

vec4 ColorOf(float value) {
  float at = logarithmic != 0 ? log(max(value, 1e-37)) : value;
  return texture2D(table, vec2((at - tableStart) * tableFactor, 0.5));
}

// The difference of the values around a position per scene unit; missing values count as the value itself.
float Slope(vec3 position, vec3 offset, float value, float extent) {
  vec2 after = ValueAt(position + offset);
  vec2 before = ValueAt(position - offset);
  return ((after.y >= 0.0 ? after.x : value) - (before.y >= 0.0 ? before.x : value)) / extent;
}

vec3 Lit(vec3 color, vec3 position, float value) {
  vec3 extent = voxel * size;
  vec3 gradient = vec3(Slope(position, vec3(voxel.x, 0.0, 0.0), value, extent.x),
                       Slope(position, vec3(0.0, voxel.y, 0.0), value, extent.y),
                       Slope(position, vec3(0.0, 0.0, voxel.z), value, extent.z));
  vec3 normal = gl_NormalMatrix * gradient;
  float steepness = length(normal);
  if (steepness < 1e-30)
    return color;
  vec3 eye = (gl_ModelViewMatrix * vec4(corner + position * size, 1.0)).xyz;
  vec3 view = gl_ProjectionMatrix[3][3] == 1.0 ? vec3(0.0, 0.0, 1.0) : -normalize(eye); // parallel or not
  normal *= (dot(normal, view) < 0.0 ? -1.0 : 1.0) / steepness;
  vec3 light = normalize(gl_LightSource[0].position.xyz);
  float facing = max(dot(normal, light), 0.0);
  vec3 gloss = vec3(0.0);
  if (facing > 0.0 && gl_FrontMaterial.shininess > 0.0)
    gloss = gl_LightSource[0].specular.rgb *
            pow(max(dot(normal, normalize(light + view)), 0.0), gl_FrontMaterial.shininess);
  return color * (gl_LightModel.ambient.rgb + gl_LightSource[0].diffuse.rgb * facing) + gloss;
}
)";

// Each mode is a function that returns a premultiplied colour and the position of what is seen. An opacity of 0 draws
// nothing.

const char* const CompositeText = R"(
vec4 Show(Ray ray, out vec3 seen) {
  vec4 sum = vec4(0.0);
  seen = ray.start;
  for (float i = ray.first; i < ray.end; i += 1.0) {
    vec3 position = ray.start + i * ray.step;
    vec2 value = ValueAt(position);
    if (value.y < 0.0)
      continue;
    vec4 color = ColorOf(value.x);
    if (color.a <= 0.0)
      continue;
    float opacity = 1.0 - exp(-color.a * ray.width);
#ifdef SHADING
    color.rgb = Lit(color.rgb, position, value.x);
#endif
    sum += (1.0 - sum.a) * opacity * vec4(color.rgb, 1.0);
    if (sum.a > 0.998)
      break;
  }
#ifdef PICKING
  float opacity = 0.0;
  for (float i = ray.first; i < ray.end && opacity < 0.5 * sum.a; i += 1.0) {
    seen = ray.start + i * ray.step;
    vec2 value = ValueAt(seen);
    if (value.y >= 0.0)
      opacity += (1.0 - opacity) * (1.0 - exp(-ColorOf(value.x).a * ray.width));
  }
#endif
  return sum;
}
)";

const char* const MaximumText = R"(
vec4 Show(Ray ray, out vec3 seen) {
  float largest = 0.0;
  float where = -1.0;
  for (float i = ray.first; i < ray.end; i += 1.0) {
    vec2 value = ValueAt(ray.start + i * ray.step);
    if (value.y >= 0.0 && (where < 0.0 || value.x > largest)) {
      largest = value.x;
      where = i;
    }
  }
  seen = ray.start + where * ray.step;
  vec4 color = where < 0.0 ? vec4(0.0) : ColorOf(largest);
  return vec4(color.rgb * color.a, color.a);
}
)";

const char* const AverageText = R"(
vec4 Show(Ray ray, out vec3 seen) {
  float sum = 0.0;
  float present = 0.0;
  for (float i = ray.first; i < ray.end; i += 1.0) {
    vec2 value = ValueAt(ray.start + i * ray.step);
    if (value.y >= 0.0) {
      sum += value.x;
      present += 1.0;
    }
  }
  seen = ray.start + 0.5 * (ray.first + ray.end) * ray.step;
  vec4 color = present == 0.0 ? vec4(0.0) : ColorOf(sum / present);
  return vec4(color.rgb * color.a, color.a);
}
)";

// Software rasterisers execute all branches of a loop, so the loop does no more than find the interval.
const char* const IsosurfaceText = R"(
vec4 Show(Ray ray, out vec3 seen) {
  vec2 last = vec2(0.0, -1.0);
  float high = -1.0;
  for (float i = ray.first; i < ray.end; i += 1.0) {
    vec2 value = ValueAt(ray.start + i * ray.step);
    if (value.y >= 0.0 && last.y >= 0.0 && (last.x < isovalue) != (value.x < isovalue)) {
      high = i;
      break;
    }
    last = value;
  }
  seen = ray.start;
  if (high < 0.0)
    return vec4(0.0);
  float low = high - 1.0;
  for (int bisection = 0; bisection < 5; ++bisection) {
    float middle = 0.5 * (low + high);
    if ((ValueAt(ray.start + middle * ray.step).x < isovalue) == (last.x < isovalue))
      low = middle;
    else
      high = middle;
  }
  seen = ray.start + 0.5 * (low + high) * ray.step;
  return vec4(Lit(ColorOf(isovalue).rgb, seen, isovalue), 1.0);
}
)";

const char* const ColorMainText = R"(
void main() {
  vec3 seen;
  vec4 color = Show(CastRay(), seen);
  if (color.a <= 0.0)
    discard;
  gl_FragColor = color;
}
)";

const char* const PickMainText = R"(
void main() {
  vec3 seen;
  if (Show(CastRay(), seen).a < 0.05)
    discard;
  vec4 position = toClip * vec4(seen, 1.0);
  float depth = 0.5 * position.z / position.w + 0.5;
  gl_FragDepth = depth;
  gl_FragColor = WRITTEN;
}
)";

} // namespace

std::string RayFragmentText(VolumeRaycaster::Mode p_mode, RayOutput p_output, bool p_shading, bool p_isEven) {
  const bool picking = p_output != RayOutput::Color;
  std::string text = "#version 120\n";
  if (!p_isEven)
    text += std::string("#define UNEVEN\n") + PlacesText;
  if (picking)
    text += "#define PICKING\n";
  if (p_shading)
    text += "#define SHADING\n"; // no branch: see IsosurfaceText
  if (p_output == RayOutput::Depth)
    text += "#define WRITTEN EncodeDepth(depth)\n" + Library::DepthCodec::PreciseGlsl();
  else
    text += "#define WRITTEN id\n";
  text += CommonText;
  switch (p_mode) {
  case VolumeRaycaster::Mode::Composite:
    text += CompositeText;
    break;
  case VolumeRaycaster::Mode::Maximum:
    text += MaximumText;
    break;
  case VolumeRaycaster::Mode::Average:
    text += AverageText;
    break;
  case VolumeRaycaster::Mode::Isosurface:
    text += IsosurfaceText;
    break;
  }
  return text + (picking ? PickMainText : ColorMainText);
}

} // namespace Vek::Chart::Scene::Private
