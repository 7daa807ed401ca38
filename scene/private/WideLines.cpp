#include "scene/private/WideLines.h"

#include "scene/DepthShader.h"
#include "scene/private/BufferTextures.h"
#include "scene/private/GpuArray.h"
#include "scene/private/InstanceArrays.h"
#include "scene/private/MeshArrays.h"
#include "scene/private/MeshShaders.h"
#include "scene/private/Programs.h"

#include "platform/ogl/ShaderProgram.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr const char* Signature = "void __cdecl Vek::Chart::Scene::Private::WideLines::Draw(...) const";

// Locations that no fixed attribute of a mesh has.
enum Location : unsigned int { StartLocation = 1, StartValueLocation = 5, EndLocation = 6, EndValueLocation = 7 };

// A segment for each instance.
const char* const AttributeText = R"(
attribute vec3 start;
attribute vec3 end;
attribute float start_value;
attribute float end_value;
#define SEGMENT gl_InstanceID
void Fetch() {}
bool IsOne() { return true; }
)";

// A segment for each copy of the shape in an instance.
const char* const TextureText = R"(
uniform samplerBuffer points;
uniform samplerBuffer values;
uniform int copies;
uniform int count; // of segments
vec3 start;
vec3 end;
float start_value = 0.0;
float end_value = 0.0;
int segment;
#define SEGMENT segment
void Fetch() {
  segment = gl_InstanceID * copies + int(gl_MultiTexCoord0.x + 0.5);
  int first = min(segment, count - 1);
  start = texelFetch(points, first).xyz;
  end = texelFetch(points, first + 1).xyz;
  if (painted != 0) {
    start_value = texelFetch(values, first).r;
    end_value = texelFetch(values, first + 1).r;
  }
}
bool IsOne() { return segment < count; }
)";

const char* const VertexText = R"(
uniform vec3 half_size; // of the viewport in pixels
uniform float radius;   // of the line in pixels
varying vec3 normal;
varying vec3 position;
varying float value;
varying float missing;
varying vec4 own;
#ifdef NUMBERED
flat out int number;
#endif
void main() {
  Fetch();
#ifdef NUMBERED
  number = SEGMENT;
#endif
  vec4 a = gl_ModelViewProjectionMatrix * vec4(start, 1.0);
  vec4 b = gl_ModelViewProjectionMatrix * vec4(end, 1.0);
  float from = 0.0; // the part of the segment in front of the near plane
  float to = 1.0;
  float a_front = a.z + a.w;
  float b_front = b.z + b.w;
  if (a_front < 0.0)
    from = a_front / (a_front - b_front);
  if (b_front < 0.0)
    to = a_front / (a_front - b_front);
  bool shown = IsOne() && start.x < 3.2e38 && end.x < 3.2e38 && (a_front >= 0.0 || b_front >= 0.0);
  vec4 first = mix(a, b, from);
  vec4 last = mix(a, b, to);
  vec2 way = (last.xy / last.w - first.xy / first.w) * half_size.xy;
  vec2 along = length(way) > 1e-4 ? normalize(way) : vec2(1.0, 0.0);
  vec2 offset = gl_Vertex.x * along + gl_Vertex.y * vec2(-along.y, along.x);
  float share = gl_Vertex.z > 0.5 ? to : from;
  vec4 clip = gl_Vertex.z > 0.5 ? last : first;
  clip.xy += offset * radius / half_size.xy * clip.w;
  vec4 eye = gl_ModelViewMatrix * vec4(mix(start, end, share), 1.0);
  position = eye.xyz;
  normal = vec3(0.0, 0.0, 1.0);
  own = vec4(0.0);
  missing = painted != 0 && (start_value > 3.2e38 || end_value > 3.2e38) ? 1.0 : 0.0;
  value = painted == 0 || missing > 0.0 ? 0.0 : mix(start_value, end_value, share);
  gl_ClipVertex = eye;
  gl_Position = shown ? clip : vec4(2.0, 2.0, 2.0, 1.0); // all vertices beyond the far plane
}
)";

const char* const NumberText = R"(#version 150 compatibility
uniform float plot; // (number + 1) / 255
flat in int number;
void main() {
  int shown = min(number, 0xFFFFFF);
  gl_FragColor = vec4(vec3(shown & 255, (shown >> 8) & 255, shown >> 16) / 255.0, plot);
}
)";

const char* const NoNumberText = R"(#version 120
uniform float plot;
void main() { gl_FragColor = vec4(1.0, 1.0, 1.0, plot); }
)";

} // namespace

/// What the segments of a drawing have in common.
struct WideLineShading {
  enum Kind { Colors, Depths, Numbers, Hits }; ///< hits are not numbered, on old devices

  Kind kind = Colors;
  bool hasValues = false;
  bool isFetched = false; ///< from textures
  MeshShading mesh = {};  ///< of colours

  friend bool operator<(const WideLineShading& p_a, const WideLineShading& p_b) {
    return std::tie(p_a.kind, p_a.hasValues, p_a.isFetched, p_a.mesh) <
           std::tie(p_b.kind, p_b.hasValues, p_b.isFetched, p_b.mesh);
  }
};

namespace {

using Shading = WideLineShading;

std::string FragmentText(const Shading& p_shading) {
  switch (p_shading.kind) {
  case Shading::Depths:
    return PackedDepthText();
  case Shading::Numbers:
    return NumberText;
  case Shading::Hits:
    return NoNumberText;
  default:
    return LitColorText(p_shading.mesh);
  }
}

/// A text with another version, or with one if it has none.
std::string WithVersion(const std::string& p_version, std::string p_text) {
  if (p_text.rfind("#version", 0) == 0)
    p_text.erase(0, p_text.find('\n') + 1);
  return p_version + p_text;
}

Ogl::ShaderProgram MadeProgram(Utility::Scoped<Rgl>& p_gl, const Shading& p_shading) {
  const bool isNumbered = p_shading.kind == Shading::Numbers;
  const std::string version = isNumbered || p_shading.isFetched ? "#version 150 compatibility\n" : "#version 120\n";
  const std::string painted = "const int painted = " + std::to_string(p_shading.hasValues ? 1 : 0) + ";\n";
  return {p_gl,
          version + (isNumbered ? "#define NUMBERED\n" : "") + painted +
              (p_shading.isFetched ? TextureText : AttributeText) + VertexText,
          WithVersion(version, FragmentText(p_shading)),
          p_shading.isFetched ? std::vector<std::string>{}
                              : std::vector<std::string>{"", "start", "", "", "", "start_value", "end", "end_value"}};
}

/// Rectangles between two half discs of radius 1. x is along the segment, y across, z is 0 at the start and 1 at the
/// end; values count the copies. Half discs have `p_steps` edges; of one edge, they are none.
GpuMesh Stadiums(std::uint32_t p_steps, std::uint32_t p_copies) {
  std::vector<Point> outlines;
  std::vector<float> numbers;
  GpuMesh::Arrays arrays;
  for (std::uint32_t copy = 0; copy < p_copies; ++copy) {
    const auto first = static_cast<std::uint32_t>(outlines.size());
    for (const double end : {1.0, 0.0})
      for (std::uint32_t i = 0; i <= p_steps; ++i) {
        const double angle = M_PI * (i / static_cast<double>(p_steps) + (end > 0 ? -0.5 : 0.5));
        outlines.emplace_back(std::cos(angle), std::sin(angle), end);
        numbers.push_back(static_cast<float>(copy));
      }
    for (std::uint32_t i = 2; i < 2 * (p_steps + 1); ++i)
      arrays.indices.insert(arrays.indices.end(), {first, first + i - 1, first + i});
  }
  arrays.positions = outlines;
  arrays.values = numbers;
  return GpuMesh(arrays);
}

/// The shapes, and the largest radius of each, in pixels. Thin lines have few vertices: there may be a million
/// segments.
constexpr std::array<std::uint32_t, 3> Steps{1, 2, 6};
constexpr std::array<double, 2> LargestRadius{0.75, 2};
/// GL draws a few large instances faster than many small ones.
constexpr std::uint32_t Copies = 32;

} // namespace

struct WideLines::Buffers {
  GpuArray points, values;
  std::array<GpuMesh, 3> shapes; ///< empty until they are drawn
  BufferTextures<2> textures;
  Programs<Shading> programs;

  /// The shape for a width; with fetched segments, its copies.
  const GpuMesh& Shape(double p_pixels, bool p_isFetched) {
    const std::size_t number = p_pixels / 2 <= LargestRadius[0] ? 0 : p_pixels / 2 <= LargestRadius[1] ? 1 : 2;
    if (shapes[number].VertexCount() == 0)
      shapes[number] = Stadiums(Steps[number], p_isFetched ? Copies : 1);
    return shapes[number];
  }
};

void WideLines::SetPoints(const std::vector<Point>& p_points) {
  _points = Share(StoredPositions(p_points, {}));
}

void WideLines::SetValues(const std::vector<float>& p_values) {
  _values = Share(StoredValues(p_values));
}

void WideLines::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale,
                     double p_pixels, const PeelPass* p_pass) const {
  p_scale.Check();
  if (!_points || _points->size() < 2)
    return;
  const auto map = p_colors.Bind(p_gl);
  const MeshShading mesh{ByValue, p_scale.logarithmic, Unlit, p_pass != nullptr};
  DrawSegments(p_gl, Shading{Shading::Colors, _values != nullptr, CanFetch(p_gl), mesh}, p_pixels,
               [&](const Ogl::ShaderProgram& p_program) {
                 SetColorUniforms(p_gl, p_program, ByValue, p_colors, p_scale, p_pass);
               });
}

/// Whether shaders may fetch the points from textures: GL 4 has three floats a texel.
bool WideLines::CanFetch(const Utility::Scoped<Rgl>& p_gl) const {
  if (!(p_gl->GlVersion() >= Utility::VersionNo(4, 0, 0)))
    return false;
  int most = 0;
  p_gl->GetIntegerv(RGL_MAX_TEXTURE_BUFFER_SIZE, &most);
  return _points && _points->size() <= static_cast<std::size_t>(std::max(most, 0));
}

void WideLines::DrawPick(Utility::Scoped<Rgl>& p_gl, double p_pixels, const PickPass& p_pass) const {
  const bool canNumber = p_gl->GlVersion() >= Utility::VersionNo(3, 2, 0);
  const Shading::Kind kind = p_pass.kind == PickPass::Depths ? Shading::Depths
                             : canNumber                     ? Shading::Numbers
                                                             : Shading::Hits;
  DrawSegments(p_gl, Shading{kind, false, CanFetch(p_gl)}, p_pixels, [&](const Ogl::ShaderProgram& p_program) {
    if (p_pass.kind == PickPass::Ids)
      p_program.SetUniform(p_gl, "plot", static_cast<float>(p_pass.plot + 1) / 255);
  });
}

/// Draws with the program of a shading, whose uniforms `p_setUniforms` sets.
void WideLines::DrawSegments(Utility::Scoped<Rgl>& p_gl, const Shading& p_shading, double p_pixels,
                             const SetUniforms& p_setUniforms) const {
  if (!_points || _points->size() < 2)
    return;
  Buffers& buffers = _buffers.Get(p_gl);
  const Ogl::ShaderProgram* const program =
      ProgramOf(buffers.programs, p_shading, [&] { return MadeProgram(p_gl, p_shading); });
  if (program == nullptr || !buffers.points.Update(*p_gl, _points, Signature) ||
      !buffers.values.Update(*p_gl, _values, Signature))
    return;
  const auto inUse = program->Use(p_gl);
  p_setUniforms(*program);
  std::array<int, 4> viewport{};
  p_gl->GetIntegerv(RGL_VIEWPORT, viewport.data());
  program->SetUniform(p_gl, "half_size", Point(viewport[2], viewport[3], 0) / 2.0);
  program->SetUniform(p_gl, "radius", static_cast<float>(p_pixels / 2));
  if (p_shading.isFetched)
    DrawFetched(p_gl, buffers, *program, p_pixels);
  else
    DrawAttributes(p_gl, buffers, p_shading.hasValues, p_pixels);
}

void WideLines::DrawAttributes(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, bool p_hasValues,
                               double p_pixels) const {
  constexpr unsigned int Record = sizeof(GpuMesh::Record), Value = sizeof(float);
  std::vector<GpuMesh::InstanceAttribute> attributes{
      {StartLocation, p_buffers.points.Storage(), 0, Record, 3, false},
      {EndLocation, p_buffers.points.Storage(), Record, Record, 3, false},
  };
  if (p_hasValues) {
    attributes.push_back({StartValueLocation, p_buffers.values.Storage(), 0, Value, 1, false});
    attributes.push_back({EndValueLocation, p_buffers.values.Storage(), Value, Value, 1, false});
  }
  p_buffers.Shape(p_pixels, false).DrawInstanced(p_gl, _points->size() - 1, attributes);
}

void WideLines::DrawFetched(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, const Ogl::ShaderProgram& p_program,
                            double p_pixels) const {
  const auto state = p_gl->PushAttribScope(RGL_TEXTURE_BIT);
  if (!p_buffers.textures.Bind(*p_gl, {{{RGL_RGB32F, p_buffers.points.Name()}, {RGL_R32F, p_buffers.values.Name()}}}))
    return;
  const std::size_t count = _points->size() - 1;
  p_program.SetUniform(p_gl, "points", BufferTextures<2>::FirstUnit);
  p_program.SetUniform(p_gl, "values", BufferTextures<2>::FirstUnit + 1);
  p_program.SetUniform(p_gl, "copies", static_cast<int>(Copies));
  p_program.SetUniform(p_gl, "count", static_cast<int>(count));
  p_buffers.Shape(p_pixels, true).DrawInstanced(p_gl, (count + Copies - 1) / Copies, {});
}

} // namespace Vek::Chart::Scene::Private
