#include "scene/GpuMesh.h"

#include "scene/private/GpuArray.h"
#include "scene/private/MeshArrays.h"
#include "scene/private/MeshDraw.h"
#include "scene/private/MeshShaders.h"
#include "scene/private/PeelShader.h"
#include "scene/private/Programs.h"

#include "library/ComputeNormals.h"
#include "platform/debug/Check.h"
#include "platform/ogl/ShaderProgram.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Ogl::VertexBuffer;
using Ogl::VertexData;
using Point = Types::Vector3_Base<double>;
using namespace Private;
using Record = GpuMesh::Record;

#define VEK_METHOD "void __cdecl Vek::Chart::Scene::GpuMesh::"
#define VEK_SCOPE "class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &"
namespace Signature {
constexpr const char* Draw = VEK_METHOD "Draw(" VEK_SCOPE ") const";
constexpr const char* DrawColors = VEK_METHOD "Draw(" VEK_SCOPE ",const class Vek::Chart::Library::ColorMap &,"
                                              "const struct Vek::Chart::Scene::ValueScale &) const";
constexpr const char* DrawTextured = VEK_METHOD "DrawTextured(" VEK_SCOPE ",const class QColor &) const";
constexpr const char* DrawInstanced =
    VEK_METHOD "DrawInstanced(" VEK_SCOPE ",unsigned __int64,const class std::vector<struct "
               "Vek::Chart::Scene::GpuMesh::InstanceAttribute,class std::allocator<struct "
               "Vek::Chart::Scene::GpuMesh::InstanceAttribute> > &) const";
} // namespace Signature
#undef VEK_METHOD
#undef VEK_SCOPE

std::vector<float> StoredValues(std::vector<float> p_values) {
  std::transform(p_values.begin(), p_values.end(), p_values.begin(), StoredValue);
  return p_values;
}

template <class T>
std::size_t CountOf(const boost::shared_ptr<const std::vector<T>>& p_array) {
  return p_array ? p_array->size() : 0;
}

} // namespace

/// The buffers of one context, and the shaders that draw in colours.
struct GpuMesh::Buffers {
  GpuArray positions;
  GpuArray normals;
  GpuArray texCoords;
  GpuArray colors;
  GpuArray indices;
  Programs<MeshShading> lit;
};

GpuMesh::GpuMesh(const Arrays& p_arrays)
    : _positions(Share(Records(p_arrays.positions, p_arrays.origin)))
    , _givenNormals(Share(Records(p_arrays.normals, {})))
    , _texCoords(Share(StoredValues(FloatValues(p_arrays.values))))
    , _colors(Share(p_arrays.colors))
    , _indices(Share(p_arrays.indices))
    , _primitive(p_arrays.primitive) {
  Complete();
}

GpuMesh::GpuMesh(const VertexData& p_data) {
  if (p_data.Vertices().Empty())
    return;
  const std::size_t count = p_data.Vertices().count;
  _primitive = p_data.PrimitiveType().Defined() ? p_data.PrimitiveType().Value() : VertexBuffer::Undecided;
  _positions = Share(Records("positions", p_data.Vertices(), count));
  _givenNormals = Share(Records("normals", p_data.Normals(), count));
  std::vector<float> texCoords = TexCoords(p_data.TexCoords(), count);
  _texCoordSize = std::max(p_data.TexCoords().components, 1U);
  _texCoords = Share(_texCoordSize == 1 ? StoredValues(std::move(texCoords)) : std::move(texCoords));
  _indices = Share(Indices(p_data.Indices()));
  Complete();
}

GpuMesh::GpuMesh(const Library::ObjModel& p_model) {
  if (!p_model.Vertices() || !p_model.Groups())
    return;
  std::vector<std::uint32_t> indices = SoundIndices(p_model);
  if (indices.empty() || !IsDrawable(p_model.PrimitiveType()))
    return;
  const auto copy = [&](const Library::ObjModel::VertexArray& p_array) {
    const std::size_t count = p_model.Vertices()->size();
    const bool isComplete = p_array.size() >= count;
    return Share(
        std::vector<Record>(p_array.begin(), isComplete ? p_array.begin() + std::ptrdiff_t(count) : p_array.begin()));
  };
  _primitive = p_model.PrimitiveType();
  _positions = copy(*p_model.Vertices());
  if (p_model.Normals())
    _givenNormals = copy(*p_model.Normals());
  _indices = Share(std::move(indices));
  Complete();
}

GpuMesh::GpuMesh(const Library::ModelCache& p_cache, std::size_t p_id)
    : _model(p_cache.GetModel(p_id))
    , _primitive(_model.indices.type)
    , _bounds(_model.bounds) {}

GpuMesh::GpuMesh(const Library::SymbolRegistry& p_registry, Model::Symbol::Shape p_shape)
    : _model(p_registry.GetModel(p_shape))
    , _primitive(_model.indices.type)
    , _bounds(_model.bounds) {}

void GpuMesh::RequireLength(const char* p_name, std::size_t p_count) const {
  if (_model.vertices.buffer.Count() != 0)
    throw std::invalid_argument(std::string("GpuMesh: ") + p_name + ": a mesh of a cache has no arrays to update");
  if (p_count != 0)
    RequireCount(std::string("GpuMesh: ") + p_name, p_count, CountOf(_positions));
}

/// Checks the arrays, and computes bounds and missing normals.
void GpuMesh::Complete() {
  if (!IsDrawable(_primitive))
    throw std::invalid_argument("GpuMesh: expected a primitive type, got an undecided one");
  RequireLength("normals", CountOf(_givenNormals));
  RequireLength("values", CountOf(_texCoords) / _texCoordSize);
  RequireLength("colours", CountOf(_colors));
  constexpr auto Most = static_cast<std::size_t>(std::numeric_limits<int>::max());
  if (std::max(CountOf(_positions), CountOf(_indices)) > Most)
    throw std::invalid_argument("GpuMesh: expected at most 2^31 - 1 positions and indices");
  if (_indices) {
    const std::uint32_t largest = *std::max_element(_indices->begin(), _indices->end());
    if (largest >= CountOf(_positions))
      throw std::invalid_argument("GpuMesh: indices: expected numbers below " + std::to_string(CountOf(_positions)) +
                                  ", got " + std::to_string(largest));
  }
  CompleteNormals();
}

void GpuMesh::CompleteNormals() {
  _bounds = {};
  for (std::size_t i = 0; i < CountOf(_positions); ++i) {
    const Record& record = (*_positions)[i];
    if (std::isfinite(record.x) && std::isfinite(record.y) && std::isfinite(record.z))
      _bounds += Point(static_cast<double>(record.x), static_cast<double>(record.y), static_cast<double>(record.z));
  }
  _normals = _givenNormals;
  const auto isZero = [](const Record& p_record) { return p_record == Record{}; };
  if (_primitive != VertexBuffer::Triangles || !_positions ||
      (_givenNormals && std::none_of(_givenNormals->begin(), _givenNormals->end(), isZero)))
    return;
  std::vector<std::uint32_t> inOrder;
  if (!_indices) {
    inOrder.resize(_positions->size());
    for (std::size_t i = 0; i < inOrder.size(); ++i)
      inOrder[i] = static_cast<std::uint32_t>(i);
  }
  const std::vector<std::uint32_t>& indices = _indices ? *_indices : inOrder;
  std::vector<Record> normals = Library::ComputeNormals(_positions->data(), _positions->size(), indices.data(),
                                                        indices.size(), Utility::Threads::All());
  for (std::size_t i = 0; i < CountOf(_givenNormals); ++i)
    if (!isZero((*_givenNormals)[i]))
      normals[i] = (*_givenNormals)[i];
  _normals = Share(std::move(normals));
}

void GpuMesh::UpdatePositions(const Array3& p_positions, const Point& p_origin) {
  RequireLength("positions", 0);
  RequireCount("GpuMesh: positions", p_positions.Count(), CountOf(_positions));
  _positions = Share(Records(p_positions, p_origin));
  CompleteNormals();
}

void GpuMesh::UpdateNormals(const Array3& p_normals) {
  RequireLength("normals", p_normals.Count());
  _givenNormals = Share(Records(p_normals, {}));
  CompleteNormals();
}

void GpuMesh::UpdateValues(const Array1& p_values) {
  RequireLength("values", p_values.Count());
  _texCoordSize = 1;
  _texCoords = Share(StoredValues(FloatValues(p_values)));
}

void GpuMesh::UpdateTexCoords(const std::vector<TexCoord>& p_texCoords) {
  RequireLength("texture coordinates", p_texCoords.size());
  std::vector<float> scalars;
  scalars.reserve(2 * p_texCoords.size());
  for (const TexCoord& texCoord : p_texCoords)
    scalars.insert(scalars.end(), texCoord.begin(), texCoord.end());
  _texCoordSize = 2;
  _texCoords = Share(std::move(scalars));
}

void GpuMesh::UpdateColors(std::vector<Rgba> p_colors) {
  RequireLength("colours", p_colors.size());
  _colors = Share(std::move(p_colors));
}

GpuMesh GpuMesh::Repeated(std::size_t p_copies) const {
  using Vertices = Ogl::VertexBuffer;
  const bool isList = _primitive == Vertices::Triangles || _primitive == Vertices::LineSegments ||
                      _primitive == Vertices::Points || _primitive == Vertices::Quads;
  if (!isList || !_positions || p_copies < 2)
    return *this;
  const auto repeated = [&](const auto& p_shared, const auto& p_change) {
    auto elements = *p_shared;
    elements.reserve(p_copies * p_shared->size());
    for (std::size_t copy = 1; copy < p_copies; ++copy)
      for (const auto& element : *p_shared)
        elements.push_back(p_change(element, copy));
    return Share(std::move(elements));
  };
  const auto same = [](const auto& p_element, std::size_t) { return p_element; };
  GpuMesh mesh;
  mesh._primitive = _primitive;
  mesh._bounds = _bounds;
  mesh._positions = repeated(_positions, same);
  if (_normals)
    mesh._normals = mesh._givenNormals = repeated(_normals, same);
  const auto vertices = static_cast<std::uint32_t>(_positions->size());
  if (_indices)
    mesh._indices = repeated(_indices, [&](std::uint32_t p_index, std::size_t p_copy) {
      return p_index + static_cast<std::uint32_t>(p_copy) * vertices;
    });
  const auto numbers = Share(std::vector<float>(vertices, 0));
  mesh._texCoords = repeated(numbers, [](float, std::size_t p_copy) { return static_cast<float>(p_copy); });
  return mesh;
}

bool GpuMesh::Empty() const {
  return VertexCount() == 0 || !IsDrawable(_primitive);
}

std::size_t GpuMesh::VertexCount() const {
  if (_positions)
    return _positions->size();
  const std::uint32_t stride = std::max<std::uint32_t>(_model.vertices.positionStride, sizeof(Record));
  return _model.vertices.buffer.Count() * sizeof(Record) / stride;
}

std::size_t GpuMesh::IndexCount() const {
  return _positions ? CountOf(_indices) : _model.indices.buffer.Count();
}

bool GpuMesh::HasNormals() const {
  return _positions ? _normals != nullptr
                    : (_model.vertices.attributes & Library::ModelCache::VertexBuffer::Normals) != 0;
}

/// Uploads what changed; false if that failed.
bool GpuMesh::Upload(const Rgl& p_gl, Buffers& p_buffers, const char* p_signature) const {
  return p_buffers.positions.Update(p_gl, _positions, p_signature) &&
         p_buffers.normals.Update(p_gl, _normals, p_signature) &&
         p_buffers.texCoords.Update(p_gl, _texCoords, p_signature) &&
         p_buffers.colors.Update(p_gl, _colors, p_signature) && p_buffers.indices.Update(p_gl, _indices, p_signature);
}

void GpuMesh::Draw(Utility::Scoped<Rgl>& p_gl) const {
  Draw(p_gl, 0, {}, Signature::Draw);
}

void GpuMesh::DrawInstanced(Utility::Scoped<Rgl>& p_gl, std::size_t p_count,
                            const std::vector<InstanceAttribute>& p_attributes) const {
  constexpr auto Most = static_cast<std::size_t>(std::numeric_limits<int>::max());
  if (p_count == 0 ||
      !VEK_ENSURE(p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureInstancing), Signature::DrawInstanced) ||
      !VEK_ENSURE_TEXT(p_count <= Most, "p_count <= INT_MAX", Signature::DrawInstanced) ||
      !VEK_ENSURE_TEXT(std::all_of(p_attributes.begin(), p_attributes.end(),
                                   [&](const InstanceAttribute& p_a) { return Suffices(p_a, p_count); }),
                       "attribute.records >= p_count", Signature::DrawInstanced))
    return;
  Draw(p_gl, p_count, p_attributes, Signature::DrawInstanced);
}

/// Draws once, or `p_instances` instances.
void GpuMesh::Draw(Utility::Scoped<Rgl>& p_gl, std::size_t p_instances,
                   const std::vector<InstanceAttribute>& p_attributes, const char* p_signature) const {
  if (Empty())
    return;
  const Rgl& gl = *p_gl;
  FixedArrays arrays;
  if (_positions) {
    Buffers& buffers = _buffers.Get(p_gl);
    if (!Upload(gl, buffers, p_signature))
      return;
    arrays.positions.buffer = buffers.positions.Name();
    arrays.normals.buffer = buffers.normals.Name();
    arrays.texCoords = {buffers.texCoords.Name(), static_cast<int>(_texCoordSize), 0, 0};
    arrays.colors = {buffers.colors.Name(), 4, 0, 0};
    arrays.indices = buffers.indices.Name();
  } else {
    const Library::ModelCache::VertexBuffer& vertices = _model.vertices;
    if (_model.indices.buffer.Count() == 0 ||
        !VEK_ENSURE_TEXT(&vertices.buffer.Storage()->Gl() == gl.Functions().get(), "the context of the cache",
                         p_signature) ||
        !VEK_ENSURE_TEXT(!vertices.buffer.Storage()->ContentsLost() && !_model.indices.buffer.Storage()->ContentsLost(),
                         "!ContentsLost()", p_signature))
      return;
    arrays.positions = {vertices.buffer.Name(), 3, static_cast<int>(vertices.positionStride), vertices.positionOffset};
    if (HasNormals())
      arrays.normals = {vertices.buffer.Name(), 3, static_cast<int>(vertices.normalStride), vertices.normalOffset};
    arrays.indices = _model.indices.buffer.Name();
  }
  DrawArrays(gl, _primitive, arrays.indices != 0 ? IndexCount() : VertexCount(), arrays, p_instances, p_attributes);
}

namespace {

const char* const VertexText = R"(
uniform int textured; // by the texture coordinates
void main() {
  vec4 eye = gl_ModelViewMatrix * gl_Vertex;
  position = eye.xyz;
  normal = gl_NormalMatrix * gl_Normal;
  missing = gl_MultiTexCoord0.x > 3.2e38 ? 1.0 : 0.0;
  value = missing > 0.0 ? 0.0 : gl_MultiTexCoord0.x;
  own = textured != 0 ? gl_MultiTexCoord0 : gl_Color;
  gl_ClipVertex = eye;
  gl_Position = gl_ProjectionMatrix * eye;
}
)";

} // namespace

/// Draws with a program that was made for the shading, whose uniforms `p_setUniforms` sets.
void GpuMesh::DrawLit(Utility::Scoped<Rgl>& p_gl, const MeshShading& p_shading, const char* p_signature,
                      const SetUniforms& p_setUniforms) const {
  const Ogl::ShaderProgram* const lit = ProgramOf(_buffers.Get(p_gl).lit, p_shading, [&] {
    const std::string vertexText = "#version 120\n" + std::string(MeshVaryings) +
                                   WithConstant(VertexText, "textured", p_shading.painting == ByTexture);
    return Ogl::ShaderProgram(p_gl, vertexText, LitColorText(p_shading));
  });
  if (lit == nullptr)
    return;
  const auto inUse = lit->Use(p_gl);
  p_setUniforms(*lit);
  const auto current = p_gl->PushAttribScope(RGL_CURRENT_BIT);
  p_gl->TexCoord(0, 0); // for a mesh without values
  const auto arrays = ArrayScope(*p_gl);
  p_gl->ClientActiveTexture(RGL_TEXTURE0);
  Draw(p_gl, 0, {}, p_signature);
}

void GpuMesh::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale,
                   const PeelPass* p_pass) const {
  p_scale.Check();
  if (Empty())
    return;
  const auto map = p_colors.Bind(p_gl);
  const MeshShading shading{_colors ? ByColor : ByValue, p_scale.logarithmic, LightingOf(*this), p_pass != nullptr};
  DrawLit(p_gl, shading, Signature::DrawColors, [&](const Ogl::ShaderProgram& p_lit) {
    SetColorUniforms(p_gl, p_lit, shading.painting, p_colors, p_scale, p_pass);
  });
}

void GpuMesh::DrawTextured(Utility::Scoped<Rgl>& p_gl, const QColor& p_tint, const PeelPass* p_pass) const {
  if (Empty())
    return;
  const MeshShading shading{ByTexture, false, LightingOf(*this), p_pass != nullptr};
  DrawLit(p_gl, shading, Signature::DrawTextured, [&](const Ogl::ShaderProgram& p_lit) {
    p_lit.SetUniform(p_gl, "tint", p_tint);
    SetPeelUniforms(p_gl, p_lit, p_pass);
  });
}

void GpuMesh::Release(const Utility::Scoped<Rgl>& p_gl) const {
  _buffers.Release(p_gl);
}

} // namespace Vek::Chart::Scene
