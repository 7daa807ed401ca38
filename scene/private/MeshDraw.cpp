#include "scene/private/MeshDraw.h"

#include "platform/ogl/Guard.h"

namespace Vek::Chart::Scene::Private {

using Ogl::GlBoolean;
using Ogl::GlEnum;
using Ogl::Rgl;
using Ogl::VertexBuffer;

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

namespace {

GlEnum Token(VertexBuffer::PrimitiveType p_type) {
  constexpr GlEnum Tokens[] = {RGL_POINTS,         RGL_LINES,           RGL_LINE_STRIP, RGL_TRIANGLES,
                               RGL_TRIANGLE_STRIP, RGL_LINES_ADJACENCY, RGL_QUAD_STRIP, RGL_QUADS};
  return Tokens[p_type];
}

void SetPointers(const Rgl& p_gl, const FixedArrays& p_arrays) {
  const auto& [positions, normals, texCoords, colors, indices] = p_arrays;
  const auto enable = [&](GlEnum p_array, const FixedArray& p_source) {
    if (p_source.buffer == 0)
      p_gl.DisableClientState(p_array);
    else {
      p_gl.EnableClientState(p_array);
      p_gl.BindBuffer(RGL_ARRAY_BUFFER, p_source.buffer);
    }
    return p_source.buffer != 0;
  };
  if (enable(RGL_VERTEX_ARRAY, positions))
    p_gl.VertexPointer(positions.size, RGL_FLOAT, positions.stride, Offset(positions.offset));
  if (enable(RGL_NORMAL_ARRAY, normals))
    p_gl.NormalPointer(RGL_FLOAT, normals.stride, Offset(normals.offset));
  if (enable(RGL_TEXTURE_COORD_ARRAY, texCoords))
    p_gl.TexCoordPointer(texCoords.size, RGL_FLOAT, texCoords.stride, Offset(texCoords.offset));
  if (enable(RGL_COLOR_ARRAY, colors))
    p_gl.ColorPointer(colors.size, RGL_UNSIGNED_BYTE, colors.stride, Offset(colors.offset));
  p_gl.BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, indices);
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

} // namespace

void DrawArrays(const Rgl& p_gl, VertexBuffer::PrimitiveType p_type, std::size_t p_count, const FixedArrays& p_arrays,
                std::size_t p_instances, const std::vector<GpuMesh::InstanceAttribute>& p_attributes) {
  const auto current = p_gl.PushAttribScope(RGL_CURRENT_BIT);
  const auto arrays = ArrayScope(p_gl);
  SetPointers(p_gl, p_arrays);
  SetInstancePointers(p_gl, p_attributes);
  const GlEnum mode = Token(p_type);
  const auto count = static_cast<int>(p_count), instances = static_cast<int>(p_instances);
  if (p_arrays.indices != 0 && instances > 0)
    p_gl.DrawElementsInstanced(mode, count, RGL_UNSIGNED_INT, nullptr, instances);
  else if (p_arrays.indices != 0)
    p_gl.DrawElements(mode, count, RGL_UNSIGNED_INT, nullptr);
  else if (instances > 0)
    p_gl.DrawArraysInstanced(mode, 0, count, instances);
  else
    p_gl.DrawArrays(mode, 0, count);
}

} // namespace Vek::Chart::Scene::Private
