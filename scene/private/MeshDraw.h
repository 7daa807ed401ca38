#pragma once

#include "scene/GpuMesh.h"

#include "platform/ogl/GlTypes.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/VertexBuffer.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Where a fixed vertex attribute lies.
struct FixedArray {
  unsigned int buffer = 0; ///< name in GL; 0 for none
  int size = 3;            ///< components
  int stride = 0;          ///< bytes; 0 if tightly packed
  std::size_t offset = 0;  ///< bytes before the first one
};
/// The buffers of a draw call.
struct FixedArrays {
  FixedArray positions;
  FixedArray normals;
  FixedArray texCoords;
  FixedArray colors;        ///< of bytes
  unsigned int indices = 0; ///< name in GL; 0 for none
};

/// Whether GL can draw primitives of a type.
inline bool IsDrawable(Ogl::VertexBuffer::PrimitiveType p_type) {
  return static_cast<unsigned int>(p_type) < Ogl::VertexBuffer::Undecided;
}
/// An offset in a buffer, which GL takes as a pointer.
inline const void* Offset(std::size_t p_bytes) {
  return reinterpret_cast<const void*>(p_bytes); // NOLINT: see above
}
/// Whether an attribute has that many records, one or more.
bool Suffices(const GpuMesh::InstanceAttribute& p_attribute, std::size_t p_count);

/// Saves client arrays and buffer bindings. Releasing the guard restores both.
boost::shared_ptr<void> ArrayScope(const Ogl::Rgl& p_gl);
/// Draws `p_count` indices, or vertices if there are no indices, once or as `p_instances` instances. Restores the
/// client state, and the current colour and normal, which arrays leave undefined.
void DrawArrays(const Ogl::Rgl& p_gl, Ogl::VertexBuffer::PrimitiveType p_type, std::size_t p_count,
                const FixedArrays& p_arrays, std::size_t p_instances,
                const std::vector<GpuMesh::InstanceAttribute>& p_attributes);

} // namespace Vek::Chart::Scene::Private
