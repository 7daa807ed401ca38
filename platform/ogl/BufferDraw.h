#pragma once

#include "platform/Export.h"
#include "platform/ogl/BufferPool.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/Vec.h"
#include "platform/ogl/VertexBuffer.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Ogl {

/// Draws indexed primitives from GPU buffers, once or many times in one call.
///
/// Positions and normals go to GL's fixed vertex attributes (`gl_Vertex` and `gl_Normal` in a shader). With instances,
/// a vertex shader tells them apart: by `gl_InstanceID`, or by attributes that advance once an instance.
///
///     BufferDraw draw;
///     draw.type = indices.type;             // as the cache describes a model
///     draw.indices = indices.buffer;
///     draw.vertices = vertices.buffer;
///     draw.attributes = vertices.attributes;
///     draw.position_stride = vertices.positionStride; …
///     draw.instance_attributes = {{3, offsets}}; // the shader's attribute with location 3
///     draw.Draw(gl, 1000);
struct VEK_PLATFORM_API BufferDraw {
  using IndexBuffer = Buffer<Attribute<Vec1<unsigned int>>>;
  using RecordBuffer = Buffer<Attribute<Vec3<float>>>;

  enum AttributeBits : unsigned int { Positions = 1, Normals = 2 };

  /// Three floats an instance, for the shader's attribute of that location; one record each.
  struct InstanceAttribute {
    unsigned int location = 0;
    RecordBuffer records;
  };

  VertexBuffer::PrimitiveType type = VertexBuffer::Undecided;
  IndexBuffer indices;
  RecordBuffer vertices;
  unsigned int attributes = Positions;
  // In bytes; a stride of 0 means tightly packed.
  unsigned int position_stride = 0;
  unsigned int normal_stride = 0;
  unsigned int position_offset = 0;
  unsigned int normal_offset = 0;
  std::vector<InstanceAttribute> instance_attributes;

  /// Draws all indices and restores the client state that it changes. Nothing is drawn, and the reason reported, when a
  /// buffer is empty, the primitive type is not decided, the layout does not fit into the vertex buffer, or an instance
  /// attribute has fewer records than instances. The indices lie in the device's memory and are not looked at: each
  /// must be below the number of vertices.
  void Draw(Utility::Scoped<Rgl>& p_gl) const;
  /// The same for many instances; 0 draws nothing.
  void Draw(Utility::Scoped<Rgl>& p_gl, unsigned int p_instances) const;
};

} // namespace Vek::Chart::Ogl
