#include "scene/private/LineTubes.h"

#include "scene/private/BufferTextures.h"
#include "scene/private/GpuArray.h"
#include "scene/private/MeshArrays.h"
#include "scene/private/MeshDraw.h"
#include "scene/private/MeshShaders.h"
#include "scene/private/TubeSelection.h"
#include "scene/private/TubeShaders.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Objects.h"
#include "platform/ogl/ShaderProgram.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr const char* Signature = "void __cdecl Vek::Chart::Scene::Private::LineTubes::Draw(...) const";

using Stations = std::vector<TubeLevels::Station>;

boost::shared_ptr<const Stations> StationsOf(const boost::shared_ptr<const TubeLevels>& p_lines) {
  return {p_lines, &p_lines->Stations()};
}

} // namespace

/// The buffers and shaders of one context.
struct LineTubes::Buffers {
  GpuArray stations, values;
  TubeSelection selection;
  Ogl::Buffer<unsigned char> vertices;      ///< none until they are what the selection chose
  Ogl::Buffer<unsigned char> spareVertices; ///< of an earlier choice, to be written again
  Ogl::Buffer<std::uint32_t> indices;
  BufferTextures<2> textures;
  std::map<TubeShaders, Ogl::ShaderProgram> programs;

  // Without buffer textures.
  GpuMesh mesh;
  boost::shared_ptr<const void> meshLines, meshValues; ///< what it shows
  std::optional<Ogl::ShaderProgram> unnumbered;
};

void LineTubes::SetLines(const std::vector<std::vector<TubeMesh::Point>>& p_lines, const std::vector<float>& p_values,
                         bool p_isFlat) {
  constexpr std::size_t Most = std::size_t{1} << 24; // numbers of three bytes
  std::size_t count = 0;
  for (const std::vector<TubeMesh::Point>& line : p_lines)
    count += line.size();
  if (count > Most)
    throw std::invalid_argument("tubes: expected at most " + std::to_string(Most) + " points");
  const auto lines = boost::make_shared<TubeLevels>();
  lines->Add(p_lines);
  _isFlat = p_isFlat;
  _lines.reset();
  if (!lines->Stations().empty())
    _lines = lines;
  SetValues(p_values);
}

void LineTubes::SetValues(const std::vector<float>& p_values) {
  _values.reset();
  _valueErrors.reset();
  if (!_lines || p_values.empty())
    return;
  std::vector<float> values;
  values.reserve(_lines->Points().size());
  for (const std::uint32_t point : _lines->Points())
    values.push_back(StoredValue(p_values[point]));
  _valueErrors = Share(_lines->ErrorsOf(values));
  _values = Share(std::move(values));
}

std::optional<std::size_t> LineTubes::PointOf(std::uint32_t p_number, const TubeLevels::Vector& p_position) const {
  if (!_lines || p_number >= _lines->Stations().size())
    return {};
  return _lines->Points()[_lines->Nearest(p_number, p_position)];
}

std::size_t LineTubes::Step(const Utility::Scoped<Rgl>& p_gl) const {
  const Buffers* const buffers = _buffers.Find(p_gl);
  return buffers != nullptr ? buffers->selection.Step() : 1;
}

/// A drawing with what it draws into.
struct LineTubes::Drawing {
  using SetUniforms = std::function<void(const Ogl::ShaderProgram&)>;

  bool HasTextures() const;
  bool Upload();
  bool Select(TubeSelection::Input p_input);
  bool Write();
  void Draw(TubeShaders p_shaders, const SetUniforms& p_setUniforms);
  void DrawSection(const TubeSection& p_section, const TubeSelection::Range& p_range, const TubeShaders& p_shaders,
                   const SetUniforms& p_setUniforms);

  Utility::Scoped<Rgl>& gl;
  const LineTubes& lines;
  Buffers& buffers = lines._buffers.Get(gl);
};

bool LineTubes::Drawing::HasTextures() const {
  if (gl->GlVersion() < Utility::VersionNo(3, 2, 0))
    return false;
  int most = 0;
  gl->GetIntegerv(RGL_MAX_TEXTURE_BUFFER_SIZE, &most);
  return 2 * lines._lines->Stations().size() <= static_cast<std::size_t>(std::max(most, 0));
}

bool LineTubes::Drawing::Upload() {
  return buffers.stations.Update(*gl, StationsOf(lines._lines), Signature) &&
         buffers.values.Update(*gl, lines._values, Signature);
}

/// Finds what is drawn, and uploads what changed.
bool LineTubes::Drawing::Select(TubeSelection::Input p_input) {
  p_input.lines = lines._lines;
  p_input.values = lines._valueErrors;
  p_input.isFlat = lines._isFlat;
  if (buffers.selection.Update(std::move(p_input)))
    buffers.vertices = {};
  return Upload() && (buffers.vertices.Count() != 0 || buffers.selection.IndexCount() == 0 || Write());
}

namespace {

/// A buffer that has room for that many records: the given one, or a larger one.
template <class T>
Ogl::Buffer<T> WithRoom(const Rgl& p_gl, const Ogl::Buffer<T>& p_buffer, std::size_t p_count) {
  if (p_buffer.Count() >= p_count && p_buffer.Count() / 4 <= p_count)
    return p_buffer;
  return p_gl.GetBufferPool().CreateBuffer<T>(p_count + p_count / 8, Ogl::BufferUsage::Dynamic);
}

} // namespace

/// False, after a report, without buffers; the next drawing tries again.
bool LineTubes::Drawing::Write() {
  const TubeSelection& selection = buffers.selection;
  if (!VEK_ENSURE_TEXT(selection.IndexCount() <= static_cast<std::size_t>(std::numeric_limits<int>::max()),
                       "selection.IndexCount() <= INT_MAX", Signature))
    return false;
  const std::size_t bytes = selection.VertexCount() * sizeof(TubeVertex);
  const auto vertices = WithRoom(*gl, std::exchange(buffers.spareVertices, {}), bytes);
  const auto indices = WithRoom(*gl, std::exchange(buffers.indices, {}), selection.IndexCount());
  if (vertices.Count() == 0 || indices.Count() == 0)
    return false; // reported by the pool
  {
    const Ogl::BufferPool::WriteArray<unsigned char> v(vertices, 0, bytes, RGL_ARRAY_BUFFER);
    const Ogl::BufferPool::WriteArray<std::uint32_t> i(indices, 0, selection.IndexCount(), RGL_ELEMENT_ARRAY_BUFFER);
    if (!VEK_ENSURE_TEXT(v.Count() != 0 && i.Count() != 0, "v.Count() != 0 && i.Count() != 0", Signature))
      return false;
    selection.Write(reinterpret_cast<TubeVertex*>(v.Data()), i.Data()); // NOLINT: arrays of bytes
  }
  if (vertices.Storage()->ContentsLost() || indices.Storage()->ContentsLost())
    return false; // reported by the mapping
  buffers.vertices = buffers.spareVertices = vertices;
  buffers.indices = indices;
  return true;
}

namespace {

constexpr std::array<const char*, 2> TextureNames{"stations", "values"};

} // namespace

void LineTubes::Drawing::Draw(TubeShaders p_shaders, const SetUniforms& p_setUniforms) {
  if (buffers.selection.IndexCount() == 0)
    return;
  const auto state = gl->PushAttribScope(RGL_TEXTURE_BIT | RGL_CURRENT_BIT | RGL_MULTISAMPLE_BIT);
  if (buffers.selection.IsShort())
    gl->Disable(RGL_MULTISAMPLE);
  if (!buffers.textures.Bind(*gl, {{{RGL_RGBA32F, buffers.stations.Name()}, {RGL_R32F, buffers.values.Name()}}}))
    return;
  const auto arrays = ArrayScope(*gl);
  for (const Ogl::GlEnum array : {RGL_VERTEX_ARRAY, RGL_NORMAL_ARRAY, RGL_COLOR_ARRAY})
    gl->DisableClientState(array);
  gl->BindBuffer(RGL_ARRAY_BUFFER, buffers.vertices.Name());
  gl->EnableVertexAttribArray(0);
  gl->VertexAttribPointer(0, 4, RGL_UNSIGNED_BYTE, Ogl::GlBoolean(0), 0, nullptr);
  gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, buffers.indices.Name());
  p_shaders.isPainted = p_shaders.paint == TubeShaders::Colors && buffers.values;
  p_shaders.isCentral = buffers.selection.Last().sizing.isCentral;
  for (std::size_t i = 0; i < TubeSections.size(); ++i)
    if (const TubeSelection::Range& range = buffers.selection.Ranges()[i]; range.count != 0) {
      p_shaders.kind = TubeSections[i].kind;
      DrawSection(TubeSections[i], range, p_shaders, p_setUniforms);
    }
}

void LineTubes::Drawing::DrawSection(const TubeSection& p_section, const TubeSelection::Range& p_range,
                                     const TubeShaders& p_shaders, const SetUniforms& p_setUniforms) {
  auto found = buffers.programs.find(p_shaders);
  if (found == buffers.programs.end()) {
    const Ogl::ShaderProgram program(gl, p_shaders.VertexText(), p_shaders.FragmentText(), {"id"});
    if (!program.Linked())
      return; // reported
    found = buffers.programs.emplace(p_shaders, program).first;
  }
  const Ogl::ShaderProgram& program = found->second;
  const auto inUse = program.Use(gl);
  p_setUniforms(program);
  for (std::size_t i = 0; i < TextureNames.size(); ++i)
    program.SetUniform(gl, TextureNames[i], BufferTextures<2>::FirstUnit + static_cast<int>(i));
  const bool isClosed = p_section.kind == TubeSection::Closed;
  // A flat strip in place of half a tube has its mean distance from the eye.
  const bool isLifted = p_section.kind == TubeSection::Facing && p_section.strips == 1;
  program.SetUniform(gl, "start", static_cast<float>(p_section.kind == TubeSection::Ribbon ? M_PI : 0));
  program.SetUniform(gl, "turn", static_cast<float>((isClosed ? 2 : 1) * M_PI / p_section.strips));
  program.SetUniform(gl, "lift", static_cast<float>(isLifted ? M_PI / 4 : 0));
  const std::size_t offset = p_range.first * sizeof(std::uint32_t);
  gl->DrawElements(RGL_TRIANGLES, static_cast<int>(p_range.count), RGL_UNSIGNED_INT,
                   reinterpret_cast<const void*>(offset)); // NOLINT: GL takes the offset as a pointer
}

namespace {

bool HasSamples(const Utility::Scoped<Rgl>& p_gl) {
  int buffers = 0;
  p_gl->GetIntegerv(RGL_SAMPLE_BUFFERS, &buffers);
  return buffers != 0;
}

} // namespace

void LineTubes::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale,
                     const Quality& p_quality, const PeelPass* p_pass) const {
  p_scale.Check();
  if (!_lines)
    return;
  Drawing drawing{p_gl, *this};
  if (!drawing.HasTextures())
    return WholeMesh(drawing.buffers).Draw(p_gl, p_colors, p_scale, p_pass);
  TubeSelection::Input input;
  input.span = p_scale.logarithmic ? std::log(p_scale.upper / p_scale.lower) : p_scale.upper - p_scale.lower;
  input.isLogarithmic = p_scale.logarithmic;
  input.isOpen = p_quality.isOpen;
  input.isOnScreen = p_quality.pixels > 0;
  input.mostVertices = p_quality.mostVertices;
  input.hasSamples = p_quality.mostVertices != 0 && HasSamples(p_gl);
  input.view = input.sizing = Projection::Of(p_gl);
  if (!drawing.Select(std::move(input)))
    return;
  const auto map = p_colors.Bind(p_gl);
  TubeShaders shaders;
  shaders.isLogarithmic = p_scale.logarithmic;
  shaders.isPeeled = p_pass != nullptr;
  drawing.Draw(shaders, [&](const Ogl::ShaderProgram& p_program) {
    SetColorUniforms(p_gl, p_program, ByValue, p_colors, p_scale, p_pass);
    if (p_quality.pixels > 0) {
      std::array<int, 4> viewport{};
      p_gl->GetIntegerv(RGL_VIEWPORT, viewport.data());
      p_program.SetUniform(p_gl, "half_size", TubeLevels::Vector(viewport[2], viewport[3], 0) / 2.0);
      p_program.SetUniform(p_gl, "pixels", static_cast<float>(p_quality.pixels / 2));
    }
  });
}

void LineTubes::Upload(Utility::Scoped<Rgl>& p_gl) const {
  if (!_lines)
    return;
  if (Drawing drawing{p_gl, *this}; drawing.HasTextures())
    drawing.Upload();
}

void LineTubes::DrawPick(Utility::Scoped<Rgl>& p_gl, const PickPass& p_pass) const {
  if (!_lines)
    return;
  const auto setPlot = [&](const Ogl::ShaderProgram& p_program) {
    p_program.SetUniform(p_gl, "plot", static_cast<float>(p_pass.plot + 1) / 255);
  };
  Drawing drawing{p_gl, *this};
  if (!drawing.HasTextures()) {
    const GpuMesh& mesh = WholeMesh(drawing.buffers);
    std::optional<Ogl::ShaderProgram>& program = drawing.buffers.unnumbered;
    if (p_pass.kind == PickPass::Depths)
      return mesh.Draw(p_gl);
    if (!program || !program->Linked()) // the numbers of triangles are none of stations
      program.emplace(p_gl,
                      "void main() { gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex; gl_Position = ftransform(); }",
                      "uniform float plot;\nvoid main() { gl_FragColor = vec4(1.0, 1.0, 1.0, plot); }");
    if (!program->Linked())
      return; // reported
    const auto inUse = program->Use(p_gl);
    setPlot(*program);
    return mesh.Draw(p_gl);
  }
  TubeSelection::Input input = drawing.buffers.selection.Last();
  input.view = Projection::Of(p_gl);
  if (input.lines != _lines)
    input.sizing = input.view;
  if (!drawing.Select(std::move(input)))
    return;
  TubeShaders shaders;
  shaders.paint = p_pass.kind == PickPass::Depths ? TubeShaders::Depths : TubeShaders::Numbers;
  drawing.Draw(shaders, setPlot);
}

const GpuMesh& LineTubes::WholeMesh(Buffers& p_buffers) const {
  if (p_buffers.meshLines == _lines && p_buffers.meshValues == _values)
    return p_buffers.mesh;
  using Shape = Library::StreamLineShape;
  TubeMesh tubes(Shape(_isFlat ? Shape::ShapeRibbon : Shape::ShapeTube, {}));
  const std::vector<TubeLevels::Cap>& ends = _lines->Caps(); // two of each piece
  for (std::size_t end = 0; end + 1 < ends.size(); end += 2) {
    std::vector<TubeMesh::Point> piece;
    for (std::uint32_t i = ends[end].station; i <= ends[end + 1].station; ++i) {
      const auto& [position, radius, rotation] = _lines->Stations()[i];
      const TubeLevels::Vector point(static_cast<double>(position[0]), static_cast<double>(position[1]),
                                     static_cast<double>(position[2]));
      piece.push_back({point, 2 * static_cast<double>(radius), static_cast<double>(i)});
    }
    tubes.Add(piece);
  }
  const Ogl::VertexData data = tubes.TakeMesh();
  p_buffers.mesh = GpuMesh(data);
  if (_values) {
    std::vector<float> values;
    const float* const stations = data.TexCoords().As<float>();
    for (std::size_t i = 0; i < data.TexCoords().count; ++i)
      values.push_back((*_values)[static_cast<std::size_t>(stations[i])]);
    p_buffers.mesh.UpdateValues(values);
  } else {
    p_buffers.mesh.UpdateValues(Array1());
  }
  p_buffers.meshLines = _lines;
  p_buffers.meshValues = _values;
  return p_buffers.mesh;
}

} // namespace Vek::Chart::Scene::Private
