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
/// \snippet GlyphSnippets.cpp BufferDraw
/// \image html symbols.jpg
/// \ingroup host
struct VEK_PLATFORM_API BufferDraw {
  /// Unsigned 32-bit indices.
  using IndexBuffer = Buffer<Attribute<Vec1<unsigned int>>>;
  /// Records of three floats.
  using RecordBuffer = Buffer<Attribute<Vec3<float>>>;

  /// What the vertex buffer holds.
  enum AttributeBits : unsigned int {
    Positions = 1, ///< must be there
    Normals = 2,   ///< may be there
  };

  /// Three floats an instance, for the shader's attribute of that location; one record each.
  struct InstanceAttribute {
    unsigned int location = 0; ///< the shader's attribute
    RecordBuffer records;      ///< record i goes to instance i
  };

  VertexBuffer::PrimitiveType type = VertexBuffer::Undecided; ///< what the indices describe
  IndexBuffer indices;                                        ///< all of them are drawn
  RecordBuffer vertices;                                      ///< positions and normals
  unsigned int attributes = Positions;                        ///< bits of AttributeBits
  unsigned int positionStride = 0; ///< bytes from one position to the next; 0 when they are tightly packed
  unsigned int normalStride = 0;   ///< the same for normals
  unsigned int positionOffset = 0; ///< bytes in front of the first position
  unsigned int normalOffset = 0;   ///< the same for normals
  std::vector<InstanceAttribute> instanceAttributes; ///< what the instances differ in

  /// Draws all indices and restores the client state that it changes. Nothing is drawn, and the reason reported, when a
  /// buffer is empty, the primitive type is not decided, the layout does not fit into the vertex buffer, or an instance
  /// attribute has fewer records than instances. The indices lie in the device's memory and are not looked at: each
  /// must be below the number of vertices.
  void Draw(Utility::Scoped<Rgl>& p_gl) const;
  /// The same for many instances; 0 draws nothing.
  void Draw(Utility::Scoped<Rgl>& p_gl, unsigned int p_instances) const;
};

} // namespace Vek::Chart::Ogl
