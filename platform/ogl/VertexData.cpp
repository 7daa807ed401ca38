#include "platform/ogl/VertexData.h"

#include "platform/debug/Check.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/private/DrawState.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace Vek::Chart::Ogl {
namespace {

namespace Signature {
constexpr const char* Draw = VEK_DRAW_SIGNATURE("VertexData", "");
constexpr const char* DrawInstances = VEK_DRAW_SIGNATURE("VertexData", ",unsigned int");
} // namespace Signature

VertexData::Array ArrayOf(const boost::shared_ptr<const void>& p_data, std::size_t p_count, unsigned int p_components,
                          VertexData::ComponentType p_type) {
  if (!p_data || p_count == 0)
    return {};
  return {p_data, p_count, p_components, p_type};
}

} // namespace

VertexData::VertexData()
    : _primitiveType(VertexBuffer::Undecided, Types::Property<VertexBuffer::PrimitiveType>::ChangedBit) {}

void VertexData::SetVertices(const boost::shared_ptr<const void>& p_data, std::size_t p_count,
                             unsigned int p_components, ComponentType p_type) {
  _vertices = ArrayOf(p_data, p_count, p_components, p_type);
}
void VertexData::SetNormals(const boost::shared_ptr<const void>& p_data, std::size_t p_count, unsigned int p_components,
                            ComponentType p_type) {
  _normals = ArrayOf(p_data, p_count, p_components, p_type);
}
void VertexData::SetTexCoords(const boost::shared_ptr<const void>& p_data, std::size_t p_count,
                              unsigned int p_components, ComponentType p_type) {
  _texCoords = ArrayOf(p_data, p_count, p_components, p_type);
}
void VertexData::SetIndices(const boost::shared_ptr<const void>& p_data, std::size_t p_count, ComponentType p_type) {
  _indices = ArrayOf(p_data, p_count, 1, p_type);
}

namespace {

std::optional<GlEnum> Mode(const Types::Property<VertexBuffer::PrimitiveType>& p_type) {
  return p_type.Defined() ? PrimitiveToken(p_type.Value()) : std::nullopt;
}

/// True if GL accepts such elements for a fixed vertex attribute.
bool Drawable(const VertexData::Array& p_array, unsigned int p_least, unsigned int p_most) {
  return (p_array.type == VertexData::Float || p_array.type == VertexData::Double) && p_array.components >= p_least &&
         p_array.components <= p_most;
}

template <class T>
std::size_t Largest(const VertexData::Array& p_indices) {
  return *std::max_element(p_indices.As<T>(), p_indices.As<T>() + p_indices.count);
}

/// True if all indices are below the end. Checked in each draw call, since the owner may change them.
bool IndicesBelow(const VertexData::Array& p_indices, std::size_t p_end) {
  switch (p_indices.type) {
  case VertexData::UnsignedByte:
    return Largest<unsigned char>(p_indices) < p_end;
  case VertexData::UnsignedShort:
    return Largest<unsigned short>(p_indices) < p_end;
  case VertexData::UnsignedInt:
    return Largest<unsigned int>(p_indices) < p_end;
  default:
    return false;
  }
}

/// True if the arrays can be drawn; reports the first reason otherwise.
bool CheckArrays(const VertexData& p_data, const char* p_signature) {
  const VertexData::Array& vertices = p_data.Vertices();
  const VertexData::Array& normals = p_data.Normals();
  const VertexData::Array& texCoords = p_data.TexCoords();
  const VertexData::Array& indices = p_data.Indices();
  const std::size_t count = indices.Empty() ? vertices.count : indices.count;
  const DrawCheck check{p_signature};
  return check(!vertices.Empty(), "!_vertices.Empty()") &&
         check(Mode(p_data.PrimitiveType()).has_value(), "_primitiveType.Defined() && _primitiveType != Undecided") &&
         check(Drawable(vertices, 2, 4), "Drawable(_vertices, 2, 4)") &&
         check(normals.Empty() || Drawable(normals, 3, 3), "_normals.Empty() || Drawable(_normals, 3, 3)") &&
         check(texCoords.Empty() || Drawable(texCoords, 1, 4), "_texCoords.Empty() || Drawable(_texCoords, 1, 4)") &&
         check(normals.Empty() || normals.count >= vertices.count,
               "_normals.Empty() || _normals.count >= _vertices.count") &&
         check(texCoords.Empty() || texCoords.count >= vertices.count,
               "_texCoords.Empty() || _texCoords.count >= _vertices.count") &&
         check(count <= static_cast<std::size_t>(std::numeric_limits<int>::max()), "count <= INT_MAX") &&
         check(indices.Empty() || IndicesBelow(indices, vertices.count), "_indices < _vertices.count");
}

void SetPointers(const Rgl& p_gl, const VertexData& p_data) {
  const VertexData::Array& vertices = p_data.Vertices();
  const VertexData::Array& normals = p_data.Normals();
  const VertexData::Array& texCoords = p_data.TexCoords();
  EnableArray(p_gl, RGL_VERTEX_ARRAY, true);
  EnableArray(p_gl, RGL_NORMAL_ARRAY, !normals.Empty());
  EnableArray(p_gl, RGL_TEXTURE_COORD_ARRAY, !texCoords.Empty());
  p_gl.VertexPointer(static_cast<int>(vertices.components), vertices.type, 0, vertices.data.get());
  if (!normals.Empty())
    p_gl.NormalPointer(normals.type, 0, normals.data.get());
  if (!texCoords.Empty())
    p_gl.TexCoordPointer(static_cast<int>(texCoords.components), texCoords.type, 0, texCoords.data.get());
}

} // namespace

void VertexData::Draw(Utility::Scoped<Rgl>& p_gl) const {
  if (!CheckArrays(*this, Signature::Draw))
    return;
  const boost::shared_ptr<void> arrays = ClientArrayScope(*p_gl);
  SetPointers(*p_gl, *this);
  const GlEnum mode = *Mode(_primitiveType);
  if (_indices.Empty())
    p_gl->DrawArrays(mode, 0, static_cast<int>(_vertices.count));
  else
    p_gl->DrawElements(mode, static_cast<int>(_indices.count), _indices.type, _indices.data.get());
}

void VertexData::Draw(Utility::Scoped<Rgl>& p_gl, unsigned int p_instances) const {
  if (p_instances == 0 || !CheckArrays(*this, Signature::DrawInstances) ||
      !VEK_ENSURE_TEXT(p_instances <= static_cast<unsigned int>(std::numeric_limits<int>::max()),
                       "p_instances <= INT_MAX", Signature::DrawInstances) ||
      !VEK_ENSURE(p_gl->Features().Supported(DeviceFeatures::FeatureInstancing), Signature::DrawInstances))
    return;
  const boost::shared_ptr<void> arrays = ClientArrayScope(*p_gl);
  SetPointers(*p_gl, *this);
  const GlEnum mode = *Mode(_primitiveType);
  const int instances = static_cast<int>(p_instances);
  if (_indices.Empty())
    p_gl->DrawArraysInstanced(mode, 0, static_cast<int>(_vertices.count), instances);
  else
    p_gl->DrawElementsInstanced(mode, static_cast<int>(_indices.count), _indices.type, _indices.data.get(), instances);
}

} // namespace Vek::Chart::Ogl
