#include "scene/GpuMesh.h"

#include "scene/private/GpuArray.h"
#include "scene/private/MeshShaders.h"

#include "library/ComputeNormals.h"
#include "platform/debug/Check.h"
#include "platform/ogl/Guard.h"
#include "platform/ogl/ShaderProgram.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Ogl::VertexBuffer;
using Ogl::VertexData;
using Point = Types::Vector3_Base<double>;
using Ogl::GlBoolean;
using Ogl::GlEnum;
using Private::GpuArray;
using Record = GpuMesh::Record;

#define VEK_METHOD "void __cdecl Vek::Chart::Scene::GpuMesh::"
#define VEK_SCOPE "class Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &"
namespace Signature {
constexpr const char* Draw = VEK_METHOD "Draw(" VEK_SCOPE ") const";
constexpr const char* DrawColors = VEK_METHOD "Draw(" VEK_SCOPE ",const class Vek::Chart::Library::ColorMap &,"
                                              "const struct Vek::Chart::Scene::ValueScale &) const";
constexpr const char* DrawInstanced =
    VEK_METHOD "DrawInstanced(" VEK_SCOPE ",unsigned __int64,const class std::vector<struct "
               "Vek::Chart::Scene::GpuMesh::InstanceAttribute,class std::allocator<struct "
               "Vek::Chart::Scene::GpuMesh::InstanceAttribute> > &) const";
} // namespace Signature
#undef VEK_METHOD
#undef VEK_SCOPE

template <class T>
boost::shared_ptr<const std::vector<T>> Share(std::vector<T> p_elements) {
  if (p_elements.empty())
    return {};
  return boost::make_shared<const std::vector<T>>(std::move(p_elements));
}

template <class T>
std::size_t CountOf(const boost::shared_ptr<const std::vector<T>>& p_array) {
  return p_array ? p_array->size() : 0;
}

std::vector<Record> Records(const Array3& p_array, const Point& p_origin) {
  const std::vector<Types::Vector3_Base<float>> points = FloatPoints(p_array, p_origin);
  std::vector<Record> records(points.size());
  std::transform(points.begin(), points.end(), records.begin(), [](const Types::Vector3_Base<float>& p_point) {
    return Record{p_point.x, p_point.y, p_point.z};
  });
  return records;
}

std::vector<float> StoredValues(std::vector<float> p_values) {
  std::transform(p_values.begin(), p_values.end(), p_values.begin(), Private::StoredValue);
  return p_values;
}

/// The scalars of an array as T.
template <class T>
std::vector<T> Scalars(const VertexData::Array& p_array) {
  const std::size_t count = p_array.count * p_array.components;
  const auto copy = [&](auto p_first) {
    std::vector<T> scalars(count);
    std::transform(p_first, p_first + count, scalars.begin(), [](auto p_scalar) { return static_cast<T>(p_scalar); });
    return scalars;
  };
  switch (p_array.type) {
  case VertexData::UnsignedByte:
    return copy(p_array.As<unsigned char>());
  case VertexData::UnsignedShort:
    return copy(p_array.As<unsigned short>());
  case VertexData::UnsignedInt:
    return copy(p_array.As<unsigned int>());
  case VertexData::Float:
    return copy(p_array.As<float>());
  case VertexData::Double:
    return copy(p_array.As<double>());
  }
  return std::vector<T>(count);
}

void RequireReal(const char* p_name, const VertexData::Array& p_array, unsigned int p_least, unsigned int p_most) {
  const bool isReal = p_array.type == VertexData::Float || p_array.type == VertexData::Double;
  if (!p_array.Empty() && !(isReal && p_array.components >= p_least && p_array.components <= p_most))
    throw std::invalid_argument(std::string("GpuMesh: ") + p_name + ": expected " + std::to_string(p_least) + " to " +
                                std::to_string(p_most) + " floats or doubles for each, got " +
                                std::to_string(p_array.components) + " components of type " +
                                std::to_string(p_array.type));
}

std::vector<Record> Records(const VertexData::Array& p_array) {
  const std::vector<float> scalars = Scalars<float>(p_array);
  std::vector<Record> records(p_array.count);
  for (std::size_t i = 0; i < records.size(); ++i) {
    const float* const first = scalars.data() + i * p_array.components;
    records[i] = {first[0], first[1], p_array.components > 2 ? first[2] : 0};
  }
  return records;
}

/// The first `p_count` elements; there are as many or more.
template <class T>
std::vector<T> Head(std::vector<T> p_elements, std::size_t p_count) {
  p_elements.resize(p_count);
  return p_elements;
}

std::size_t CornersOf(VertexBuffer::PrimitiveType p_type) {
  return p_type == VertexBuffer::Triangles ? 3 : p_type == VertexBuffer::LineSegments ? 2 : 1;
}

/// The indices of all groups, without primitives that are incomplete or have an index past the end.
std::vector<std::uint32_t> SoundIndices(const Library::ObjModel& p_model) {
  const std::size_t corners = CornersOf(p_model.PrimitiveType());
  const std::size_t vertices = p_model.Vertices()->size();
  std::vector<std::uint32_t> indices;
  for (const auto& group : *p_model.Groups())
    for (std::size_t i = 0; group && i + corners <= group->indices.size(); i += corners) {
      const std::uint32_t* const first = group->indices.data() + i;
      if (std::all_of(first, first + corners, [vertices](std::uint32_t p_index) { return p_index < vertices; }))
        indices.insert(indices.end(), first, first + corners);
    }
  return indices;
}

GlEnum Token(VertexBuffer::PrimitiveType p_type) {
  constexpr GlEnum Tokens[] = {RGL_POINTS,         RGL_LINES,           RGL_LINE_STRIP, RGL_TRIANGLES,
                               RGL_TRIANGLE_STRIP, RGL_LINES_ADJACENCY, RGL_QUAD_STRIP, RGL_QUADS};
  return Tokens[p_type];
}

bool IsDrawable(VertexBuffer::PrimitiveType p_type) {
  return static_cast<unsigned int>(p_type) < VertexBuffer::Undecided;
}

const void* Offset(std::size_t p_bytes) {
  return reinterpret_cast<const void*>(p_bytes); // NOLINT: GL takes the offset as a pointer
}

} // namespace

/// The buffers of one context, and the shader that draws values in colour.
struct GpuMesh::Buffers {
  GpuArray positions;
  GpuArray normals;
  GpuArray texCoords;
  GpuArray colors;
  GpuArray indices;
  std::optional<Ogl::ShaderProgram> lit;
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
  RequireReal("positions", p_data.Vertices(), 2, 3);
  RequireReal("normals", p_data.Normals(), 3, 3);
  RequireReal("texture coordinates", p_data.TexCoords(), 1, 4);
  const std::size_t count = p_data.Vertices().count;
  const auto most = [count](const VertexData::Array& p_array) { return std::min(count, p_array.count); };
  _primitive = p_data.PrimitiveType().Defined() ? p_data.PrimitiveType().Value() : VertexBuffer::Undecided;
  _positions = Share(Records(p_data.Vertices()));
  _givenNormals = Share(Head(Records(p_data.Normals()), most(p_data.Normals())));
  _texCoordSize = std::max(p_data.TexCoords().components, 1U);
  _texCoords = Share(Head(Scalars<float>(p_data.TexCoords()), most(p_data.TexCoords()) * _texCoordSize));
  if (_texCoords && _texCoordSize == 1)
    _texCoords = Share(StoredValues(*_texCoords));
  _indices = Share(Scalars<std::uint32_t>(p_data.Indices()));
  Complete();
}

GpuMesh::GpuMesh(const Library::ObjModel& p_model) {
  if (!p_model.Vertices() || !p_model.Groups())
    return;
  std::vector<std::uint32_t> indices = SoundIndices(p_model);
  if (indices.empty() || !IsDrawable(p_model.PrimitiveType()))
    return;
  const auto copy = [](const Library::ObjModel::VertexArray& p_array) {
    return Share(std::vector<Record>(p_array.begin(), p_array.end()));
  };
  _primitive = p_model.PrimitiveType();
  _positions = copy(*p_model.Vertices());
  if (p_model.Normals() && p_model.Normals()->size() >= p_model.Vertices()->size())
    _givenNormals = Share(
        Head(std::vector<Record>(p_model.Normals()->begin(), p_model.Normals()->end()), p_model.Vertices()->size()));
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
  std::vector<Record> normals =
      Library::ComputeNormals(_positions->data(), _positions->size(), indices.data(), indices.size());
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

void GpuMesh::UpdateColors(std::vector<Rgba> p_colors) {
  RequireLength("colours", p_colors.size());
  _colors = Share(std::move(p_colors));
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

namespace {

/// Restores the client arrays and the buffer bindings.
boost::shared_ptr<void> ArrayScope(const Rgl& p_gl) {
  int arrayBuffer = 0, elementBuffer = 0;
  p_gl.GetIntegerv(RGL_ARRAY_BUFFER_BINDING, &arrayBuffer);
  p_gl.GetIntegerv(RGL_ELEMENT_ARRAY_BUFFER_BINDING, &elementBuffer);
  p_gl.PushClientAttrib(RGL_CLIENT_VERTEX_ARRAY_BIT);
  return Ogl::MakeGuard([gl = p_gl.Functions(), arrayBuffer, elementBuffer] {
    gl->PopClientAttrib();
    gl->BindBuffer(RGL_ARRAY_BUFFER, static_cast<unsigned int>(arrayBuffer));
    gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, static_cast<unsigned int>(elementBuffer));
  });
}

/// Where a fixed attribute lies.
struct FixedArray {
  unsigned int buffer = 0; ///< 0 for none
  int size = 3;
  int stride = 0;
  std::size_t offset = 0;
};

void SetPointers(const Rgl& p_gl, const FixedArray& p_positions, const FixedArray& p_normals,
                 const FixedArray& p_texCoords, const FixedArray& p_colors) {
  const auto enable = [&](GlEnum p_array, const FixedArray& p_source) {
    if (p_source.buffer == 0)
      p_gl.DisableClientState(p_array);
    else {
      p_gl.EnableClientState(p_array);
      p_gl.BindBuffer(RGL_ARRAY_BUFFER, p_source.buffer);
    }
    return p_source.buffer != 0;
  };
  if (enable(RGL_VERTEX_ARRAY, p_positions))
    p_gl.VertexPointer(p_positions.size, RGL_FLOAT, p_positions.stride, Offset(p_positions.offset));
  if (enable(RGL_NORMAL_ARRAY, p_normals))
    p_gl.NormalPointer(RGL_FLOAT, p_normals.stride, Offset(p_normals.offset));
  if (enable(RGL_TEXTURE_COORD_ARRAY, p_texCoords))
    p_gl.TexCoordPointer(p_texCoords.size, RGL_FLOAT, p_texCoords.stride, Offset(p_texCoords.offset));
  if (enable(RGL_COLOR_ARRAY, p_colors))
    p_gl.ColorPointer(p_colors.size, RGL_UNSIGNED_BYTE, p_colors.stride, Offset(p_colors.offset));
}

void SetInstancePointers(const Rgl& p_gl, const std::vector<GpuMesh::InstanceAttribute>& p_attributes) {
  for (const GpuMesh::InstanceAttribute& attribute : p_attributes) {
    p_gl.BindBuffer(RGL_ARRAY_BUFFER, attribute.records->Name());
    p_gl.EnableVertexAttribArray(attribute.location);
    p_gl.VertexAttribPointer(
        attribute.location, static_cast<int>(attribute.components), attribute.bytes ? RGL_UNSIGNED_BYTE : RGL_FLOAT,
        attribute.bytes ? GlBoolean(1) : GlBoolean(0), static_cast<int>(attribute.stride), Offset(attribute.offset));
    p_gl.VertexAttribDivisor(attribute.location, 1);
  }
}

/// Whether an attribute has that many records.
bool Suffices(const GpuMesh::InstanceAttribute& p_attribute, std::size_t p_count) {
  if (!p_attribute.records || p_attribute.records->ContentsLost() || p_attribute.components < 1 ||
      p_attribute.components > 4)
    return false;
  const std::size_t record = p_attribute.components * (p_attribute.bytes ? 1 : sizeof(float));
  const std::size_t bytes = p_attribute.records->Bytes();
  return p_attribute.stride >= record && p_attribute.stride <= 255 * 4 && p_attribute.offset <= bytes &&
         record <= bytes - p_attribute.offset &&
         p_count - 1 <= (bytes - p_attribute.offset - record) / p_attribute.stride;
}

} // namespace

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
  Draw(p_gl, static_cast<int>(p_count), p_attributes, Signature::DrawInstanced);
}

/// Draws once, or `p_instances` instances.
void GpuMesh::Draw(Utility::Scoped<Rgl>& p_gl, int p_instances, const std::vector<InstanceAttribute>& p_attributes,
                   const char* p_signature) const {
  if (Empty())
    return;
  const Rgl& gl = *p_gl;
  FixedArray positions, normals, texCoords, colors;
  unsigned int indices = 0;
  if (_positions) {
    Buffers& buffers = _buffers.Get(p_gl);
    if (!Upload(gl, buffers, p_signature))
      return;
    positions.buffer = buffers.positions.Name();
    normals.buffer = buffers.normals.Name();
    texCoords = {buffers.texCoords.Name(), static_cast<int>(_texCoordSize)};
    colors = {buffers.colors.Name(), 4};
    indices = buffers.indices.Name();
  } else {
    const auto& vertices = _model.vertices;
    if (_model.indices.buffer.Count() == 0 ||
        !VEK_ENSURE_TEXT(&vertices.buffer.Storage()->Gl() == gl.Functions().get(), "the context of the cache",
                         p_signature) ||
        !VEK_ENSURE_TEXT(!vertices.buffer.Storage()->ContentsLost() && !_model.indices.buffer.Storage()->ContentsLost(),
                         "!ContentsLost()", p_signature))
      return;
    positions = {vertices.buffer.Name(), 3, static_cast<int>(vertices.positionStride), vertices.positionOffset};
    if (HasNormals())
      normals = {vertices.buffer.Name(), 3, static_cast<int>(vertices.normalStride), vertices.normalOffset};
    indices = _model.indices.buffer.Name();
  }
  const auto current = gl.PushAttribScope(RGL_CURRENT_BIT); // which arrays leave undefined
  const auto arrays = ArrayScope(gl);
  SetPointers(gl, positions, normals, texCoords, colors);
  SetInstancePointers(gl, p_attributes);
  gl.BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, indices);
  const GlEnum mode = Token(_primitive);
  const auto count = static_cast<int>(indices != 0 ? IndexCount() : VertexCount());
  if (indices != 0 && p_instances > 0)
    gl.DrawElementsInstanced(mode, count, RGL_UNSIGNED_INT, nullptr, p_instances);
  else if (indices != 0)
    gl.DrawElements(mode, count, RGL_UNSIGNED_INT, nullptr);
  else if (p_instances > 0)
    gl.DrawArraysInstanced(mode, 0, count, p_instances);
  else
    gl.DrawArrays(mode, 0, count);
}

namespace {

const char* const VertexText = R"(#version 120
varying vec3 normal;
varying vec3 position;
varying float value;
varying float missing;
varying vec4 own;
void main() {
  vec4 eye = gl_ModelViewMatrix * gl_Vertex;
  position = eye.xyz;
  normal = gl_NormalMatrix * gl_Normal;
  missing = gl_MultiTexCoord0.x > 3.2e38 ? 1.0 : 0.0;
  value = missing > 0.0 ? 0.0 : gl_MultiTexCoord0.x;
  own = gl_Color;
  gl_ClipVertex = eye;
  gl_Position = gl_ProjectionMatrix * eye;
}
)";

} // namespace

void GpuMesh::Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale) const {
  p_scale.Check();
  if (Empty())
    return;
  std::optional<Ogl::ShaderProgram>& lit = _buffers.Get(p_gl).lit;
  if (!lit || !lit->Linked())
    lit.emplace(p_gl, VertexText, Private::LitColorText());
  if (!lit->Linked())
    return; // reported by the program
  const auto map = p_colors.Bind(p_gl);
  const auto inUse = lit->Use(p_gl);
  Private::SetColorUniforms(p_gl, *lit, _colors ? Private::ByColor : Private::ByValue, p_colors, p_scale);
  lit->SetUniform(p_gl, "lighting", Private::LightingOf(*this));
  const auto current = p_gl->PushAttribScope(RGL_CURRENT_BIT);
  p_gl->TexCoord(0, 0); // for a mesh without values
  const auto arrays = ArrayScope(*p_gl);
  p_gl->ClientActiveTexture(RGL_TEXTURE0);
  Draw(p_gl, 0, {}, Signature::DrawColors);
}

void GpuMesh::Release(const Utility::Scoped<Rgl>& p_gl) const {
  _buffers.Release(p_gl);
}

} // namespace Vek::Chart::Scene
