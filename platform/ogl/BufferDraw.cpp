#include "platform/ogl/BufferDraw.h"

#include "platform/debug/Check.h"
#include "platform/ogl/private/DrawState.h"

#include <algorithm>
#include <limits>

namespace Vek::Chart::Ogl {
namespace {

namespace Signature {
constexpr const char* Draw = VEK_DRAW_SIGNATURE("BufferDraw", "");
constexpr const char* DrawInstances = VEK_DRAW_SIGNATURE("BufferDraw", ",unsigned int");
} // namespace Signature

constexpr std::size_t RecordBytes = 3 * sizeof(float);
constexpr std::size_t Most = static_cast<std::size_t>(std::numeric_limits<int>::max());

/// True if at least one record of that many floats lies at the offset, and GL takes the stride.
bool Fits(const BufferDraw::RecordBuffer& p_buffer, unsigned int p_offset, unsigned int p_stride,
          std::size_t p_floats = 3) {
  const std::size_t bytes = p_buffer.Count() * RecordBytes;
  return p_offset <= bytes && p_floats * sizeof(float) <= bytes - p_offset && p_stride <= Most;
}

/// True if the buffer holds `p_count` records or more.
template <class T>
bool Holds(const Buffer<T>& p_buffer, std::size_t p_count) {
  return p_buffer.Count() >= p_count && p_buffer.Name() != 0;
}

template <class T>
bool HasContents(const Buffer<T>& p_buffer) {
  return !p_buffer.Storage()->ContentsLost();
}

/// True if the buffers can be drawn; reports the first reason otherwise.
bool CheckBuffers(const BufferDraw& p_draw, std::size_t p_instances, const char* p_signature) {
  const DrawCheck check{p_signature};
  const bool withNormals = (p_draw.attributes & BufferDraw::Normals) != 0;
  const bool withTexCoords = (p_draw.attributes & BufferDraw::TexCoords) != 0;
  const unsigned int components = p_draw.texCoordComponents;
  const auto& instanced = p_draw.instanceAttributes;
  return check(PrimitiveToken(p_draw.type).has_value(), "type != VertexBuffer::Undecided") &&
         check(Holds(p_draw.indices, 1) && p_draw.indices.Count() <= Most, "indices.Count() != 0") &&
         check(Holds(p_draw.vertices, 1), "vertices.Count() != 0") &&
         check(HasContents(p_draw.indices), "!indices.Storage()->ContentsLost()") &&
         check(HasContents(p_draw.vertices), "!vertices.Storage()->ContentsLost()") &&
         check(Fits(p_draw.vertices, p_draw.positionOffset, p_draw.positionStride),
               "positionOffset + 12 <= vertices bytes") &&
         check(!withNormals || Fits(p_draw.vertices, p_draw.normalOffset, p_draw.normalStride),
               "normalOffset + 12 <= vertices bytes") &&
         check(!withTexCoords || (components >= 1 && components <= 4), "1 <= texCoordComponents <= 4") &&
         check(!withTexCoords || Fits(p_draw.vertices, p_draw.texCoordOffset, p_draw.texCoordStride, components),
               "texCoordOffset + 4 * texCoordComponents <= vertices bytes") &&
         check(p_instances <= Most, "instances <= INT_MAX") &&
         check(std::all_of(instanced.begin(), instanced.end(),
                           [p_instances](const BufferDraw::InstanceAttribute& p_attribute) {
                             return Holds(p_attribute.records, p_instances) && HasContents(p_attribute.records);
                           }),
               "instanceAttribute.records.Count() >= instances");
}

const void* Offset(unsigned int p_bytes) {
  return reinterpret_cast<const void*>(
      static_cast<std::uintptr_t>(p_bytes)); // NOLINT: GL takes the offset as a pointer
}

void SetPointers(const Rgl& p_gl, const BufferDraw& p_draw) {
  const bool withNormals = (p_draw.attributes & BufferDraw::Normals) != 0;
  EnableArray(p_gl, RGL_VERTEX_ARRAY, true);
  EnableArray(p_gl, RGL_NORMAL_ARRAY, withNormals);
  const bool withTexCoords = (p_draw.attributes & BufferDraw::TexCoords) != 0;
  EnableArray(p_gl, RGL_TEXTURE_COORD_ARRAY, withTexCoords);
  p_gl.BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, p_draw.indices.Name());
  p_gl.BindBuffer(RGL_ARRAY_BUFFER, p_draw.vertices.Name());
  p_gl.VertexPointer(3, RGL_FLOAT, static_cast<int>(p_draw.positionStride), Offset(p_draw.positionOffset));
  if (withNormals)
    p_gl.NormalPointer(RGL_FLOAT, static_cast<int>(p_draw.normalStride), Offset(p_draw.normalOffset));
  if (withTexCoords)
    p_gl.TexCoordPointer(static_cast<int>(p_draw.texCoordComponents), RGL_FLOAT,
                         static_cast<int>(p_draw.texCoordStride), Offset(p_draw.texCoordOffset));
}

void SetInstancePointers(const Rgl& p_gl, const std::vector<BufferDraw::InstanceAttribute>& p_attributes) {
  for (const BufferDraw::InstanceAttribute& attribute : p_attributes) {
    p_gl.BindBuffer(RGL_ARRAY_BUFFER, attribute.records.Name());
    p_gl.EnableVertexAttribArray(attribute.location);
    p_gl.VertexAttribPointer(attribute.location, 3, RGL_FLOAT, RGL_FALSE, 0, nullptr);
    p_gl.VertexAttribDivisor(attribute.location, 1);
  }
}

} // namespace

void BufferDraw::Draw(Utility::Scoped<Rgl>& p_gl) const {
  if (!CheckBuffers(*this, 1, Signature::Draw))
    return;
  const boost::shared_ptr<void> arrays = ClientArrayScope(*p_gl);
  SetPointers(*p_gl, *this);
  p_gl->DrawElements(*PrimitiveToken(type), static_cast<int>(indices.Count()), RGL_UNSIGNED_INT, nullptr);
}

void BufferDraw::Draw(Utility::Scoped<Rgl>& p_gl, unsigned int p_instances) const {
  if (p_instances == 0 || !CheckBuffers(*this, p_instances, Signature::DrawInstances) ||
      !VEK_ENSURE(p_gl->Features().Supported(DeviceFeatures::FeatureInstancing), Signature::DrawInstances))
    return;
  const boost::shared_ptr<void> arrays = ClientArrayScope(*p_gl);
  SetPointers(*p_gl, *this);
  SetInstancePointers(*p_gl, instanceAttributes);
  p_gl->DrawElementsInstanced(*PrimitiveToken(type), static_cast<int>(indices.Count()), RGL_UNSIGNED_INT, nullptr,
                              static_cast<int>(p_instances));
}

} // namespace Vek::Chart::Ogl
