#include "scene/private/WideLines.h"

#include "scene/DepthShader.h"
#include "scene/private/GpuArray.h"
#include "scene/private/InstanceArrays.h"
#include "scene/private/MeshArrays.h"
#include "scene/private/MeshShaders.h"

#include "platform/ogl/ShaderProgram.h"

#include <array>
#include <cmath>
#include <optional>
#include <string>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr const char* Signature = "void __cdecl Vek::Chart::Scene::Private::WideLines::Draw(...) const";

// Locations that no fixed attribute of a mesh has.
enum Location : unsigned int { StartLocation = 1, StartValueLocation = 5, EndLocation = 6, EndValueLocation = 7 };

const char* const VertexText = R"(
attribute vec3 start;
attribute vec3 end;
attribute float start_value;
attribute float end_value;
uniform vec3 half_size; // of the viewport in pixels
uniform float radius;   // of the line in pixels
uniform int painted;    // whether there are values
varying vec3 normal;
varying vec3 position;
varying float value;
varying float missing;
varying vec4 own;
#ifdef NUMBERED
flat out int number;
#endif
void main() {
#ifdef NUMBERED
  number = gl_InstanceID;
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
  bool shown = start.x < 3.2e38 && end.x < 3.2e38 && (a_front >= 0.0 || b_front >= 0.0);
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

/// The program for a fragment shader, made if there is none yet; null after a report.
const Ogl::ShaderProgram* Made(std::optional<Ogl::ShaderProgram>& p_program, Utility::Scoped<Rgl>& p_gl,
                               const std::string& p_fragmentText, bool p_isNumbered = false) {
  const std::string head = p_isNumbered ? "#version 150 compatibility\n#define NUMBERED\n" : "#version 120\n";
  if (!p_program || !p_program->Linked())
    p_program.emplace(p_gl, head + VertexText, p_fragmentText,
                      std::vector<std::string>{"", "start", "", "", "", "start_value", "end", "end_value"});
  return p_program->Linked() ? &*p_program : nullptr;
}

/// A rectangle between two half discs of radius 1. x is along the segment, y across, z is 0 at the start and 1 at the
/// end. Half discs have `p_steps` edges; of one edge, they are none.
GpuMesh Stadium(std::uint32_t p_steps) {
  std::vector<Point> outline;
  for (const double end : {1.0, 0.0})
    for (std::uint32_t i = 0; i <= p_steps; ++i) {
      const double angle = M_PI * (i / static_cast<double>(p_steps) + (end > 0 ? -0.5 : 0.5));
      outline.emplace_back(std::cos(angle), std::sin(angle), end);
    }
  GpuMesh::Arrays arrays;
  arrays.positions = outline;
  for (std::uint32_t i = 2; i < outline.size(); ++i)
    arrays.indices.insert(arrays.indices.end(), {0, i - 1, i});
  return GpuMesh(arrays);
}

/// The shapes, and the largest radius of each, in pixels. Thin lines have few vertices: there may be a million
/// segments.
constexpr std::array<std::uint32_t, 3> Steps{1, 2, 6};
constexpr std::array<double, 2> LargestRadius{0.75, 2};

} // namespace

struct WideLines::Buffers {
  GpuArray points, values;
  std::array<GpuMesh, 3> shapes{Stadium(Steps[0]), Stadium(Steps[1]), Stadium(Steps[2])};
  std::optional<Ogl::ShaderProgram> colored, packed, numbered;
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
  Buffers& buffers = _buffers.Get(p_gl);
  const Ogl::ShaderProgram* const program = Made(buffers.colored, p_gl, LitColorText());
  if (program == nullptr)
    return;
  const auto map = p_colors.Bind(p_gl);
  const auto inUse = program->Use(p_gl);
  SetColorUniforms(p_gl, *program, ByValue, p_colors, p_scale, p_pass);
  program->SetUniform(p_gl, "lighting", Unlit);
  DrawSegments(p_gl, buffers, *program, p_pixels);
}

void WideLines::DrawPick(Utility::Scoped<Rgl>& p_gl, double p_pixels, const PickPass& p_pass) const {
  if (!_points || _points->size() < 2)
    return;
  Buffers& buffers = _buffers.Get(p_gl);
  const bool isNumbered = p_gl->GlVersion() >= Utility::VersionNo(3, 2, 0);
  const Ogl::ShaderProgram* const program =
      p_pass.kind == PickPass::Depths
          ? Made(buffers.packed, p_gl, PackedDepthText())
          : Made(buffers.numbered, p_gl, isNumbered ? NumberText : NoNumberText, isNumbered);
  if (program == nullptr)
    return;
  const auto inUse = program->Use(p_gl);
  if (p_pass.kind == PickPass::Ids)
    program->SetUniform(p_gl, "plot", static_cast<float>(p_pass.plot + 1) / 255);
  DrawSegments(p_gl, buffers, *program, p_pixels);
}

/// With the program in use.
void WideLines::DrawSegments(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, const Ogl::ShaderProgram& p_program,
                             double p_pixels) const {
  if (!p_buffers.points.Update(*p_gl, _points, Signature) || !p_buffers.values.Update(*p_gl, _values, Signature))
    return;
  std::array<int, 4> viewport{};
  p_gl->GetIntegerv(RGL_VIEWPORT, viewport.data());
  p_program.SetUniform(p_gl, "half_size", Point(viewport[2], viewport[3], 0) / 2.0);
  p_program.SetUniform(p_gl, "radius", static_cast<float>(p_pixels / 2));
  p_program.SetUniform(p_gl, "painted", _values ? 1 : 0);
  constexpr unsigned int Record = sizeof(GpuMesh::Record), Value = sizeof(float);
  std::vector<GpuMesh::InstanceAttribute> attributes{
      {StartLocation, p_buffers.points.Storage(), 0, Record, 3, false},
      {EndLocation, p_buffers.points.Storage(), Record, Record, 3, false},
  };
  if (_values) {
    attributes.push_back({StartValueLocation, p_buffers.values.Storage(), 0, Value, 1, false});
    attributes.push_back({EndValueLocation, p_buffers.values.Storage(), Value, Value, 1, false});
  }
  const std::size_t shape = p_pixels / 2 <= LargestRadius[0] ? 0 : p_pixels / 2 <= LargestRadius[1] ? 1 : 2;
  p_buffers.shapes[shape].DrawInstanced(p_gl, _points->size() - 1, attributes);
}

} // namespace Vek::Chart::Scene::Private
