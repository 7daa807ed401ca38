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
/// Positions, normals and texture coordinates go to GL's fixed vertex attributes (`gl_Vertex`, `gl_Normal` and
/// `gl_MultiTexCoord0` in a shader), the last ones on the active client texture unit. A vertex shader distinguishes
/// instances by `gl_InstanceID` or by attributes that advance once per instance.
///
/// \snippet GlyphSnippets.cpp BufferDraw
/// \image html symbols.jpg
/// \ingroup host
struct VEK_PLATFORM_API BufferDraw {
  /// Unsigned 32-bit indices.
  using IndexBuffer = Buffer<Attribute<Vec1<unsigned int>>>;
  /// Records of three floats.
  using RecordBuffer = Buffer<Attribute<Vec3<float>>>;

  /// The contents of the vertex buffer.
  enum AttributeBits : unsigned int {
    Positions = 1, ///< required
    Normals = 2,   ///< optional
    TexCoords = 4, ///< optional
  };

  /// A vertex attribute of three floats that advances once per instance.
  struct InstanceAttribute {
    unsigned int location = 0; ///< location of the attribute in the shader
    RecordBuffer records;      ///< one record per instance
  };

  VertexBuffer::PrimitiveType type = VertexBuffer::Undecided; ///< the kind of primitive
  IndexBuffer indices;                                        ///< all are drawn
  RecordBuffer vertices;                                      ///< positions, normals and texture coordinates
  unsigned int attributes = Positions;                        ///< bits of AttributeBits
  unsigned int positionStride = 0;     ///< bytes from one position to the next; 0 if tightly packed
  unsigned int normalStride = 0;       ///< bytes from one normal to the next; 0 if tightly packed
  unsigned int positionOffset = 0;     ///< bytes before the first position
  unsigned int normalOffset = 0;       ///< bytes before the first normal
  unsigned int texCoordComponents = 1; ///< floats of a texture coordinate, 1 to 4; a glyph layer has one
  unsigned int texCoordStride = 0;     ///< bytes from one texture coordinate to the next; 0 if tightly packed
  unsigned int texCoordOffset = 0;     ///< bytes before the first texture coordinate
  std::vector<InstanceAttribute> instanceAttributes; ///< for the instanced `Draw`

  /// Draws all indices. Restores the client state that it changes.
  ///
  /// Reports and draws nothing if a buffer is empty, the contents of a buffer were lost (a mapping failed), the
  /// primitive type is undecided, the layout does not fit into the vertex buffer, or an instance attribute has fewer
  /// records than instances. Index values are not checked: each must be below the number of vertices.
  void Draw(Utility::Scoped<Rgl>& p_gl) const;
  /// Draws `p_instances` instances in one call; 0 draws nothing. Also reports a device without instancing.
  void Draw(Utility::Scoped<Rgl>& p_gl, unsigned int p_instances) const;
};

} // namespace Vek::Chart::Ogl
