#pragma once

#include "library/Export.h"
#include "library/ObjModel.h"
#include "platform/file/FilePath.h"
#include "platform/ogl/BufferPool.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/Vec.h"
#include "platform/ogl/VertexBuffer.h"
#include "platform/types/Geometry.h"
#include "platform/utility/Scope.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Library {

/// Polygon models in GPU buffers: reads each model file once and hands out, by a number, what is needed to draw it.
///
/// Ids count from 0 in the order of registration; nothing is ever removed. Each model has a vertex and an index buffer
/// of its own. A copy of a cache shares the buffers registered so far. Buffers live as long as a cache or a record
/// holds them; the context they were made in must be current when the last holder goes.
///
/// \snippet GlyphSnippets.cpp ModelCache
/// \image html earthquakes.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API ModelCache {
public:
  /// The records of vertex buffers: three floats.
  using VertexRecord = Ogl::Attribute<Ogl::Vec3<float>>;
  /// The records of index buffers: one unsigned 32-bit number.
  using IndexRecord = Ogl::Attribute<Ogl::Vec1<unsigned int>>;

  /// The indices of all groups of a model, one group after the other, zero-based into the model's vertices; as the
  /// file has them, so those past the end (which were reported by the reader) are among them.
  struct IndexBuffer {
    Ogl::VertexBuffer::PrimitiveType type = Ogl::VertexBuffer::Undecided; ///< what the indices describe
    std::uint32_t first = 0;                                              ///< primitives before the model's; always 0
    std::uint32_t count = 0;                                              ///< primitives, not indices
    Ogl::Buffer<IndexRecord> buffer;                                      ///< empty for a model without indices
  };

  /// Positions and normals of a model, three floats each: position 0, normal 0, position 1, …; without normals the
  /// positions alone. Strides and offsets are bytes.
  struct VertexBuffer {
    /// What the records hold.
    enum Attributes : std::uint32_t {
      Positions = 1, ///< always, but for an empty model
      Normals = 2,   ///< when the file has some
    };
    std::uint32_t attributes = 0;     ///< bits of Attributes
    std::uint32_t positionStride = 0; ///< from one position to the next
    std::uint32_t normalStride = 0;   ///< 0 without normals
    std::uint32_t positionOffset = 0; ///< of position 0
    std::uint32_t normalOffset = 0;   ///< 0 without normals
    Ogl::Buffer<VertexRecord> buffer; ///< empty for a model without positions
  };

  /// An empty cache. Each registration opens a scope on the handle.
  explicit ModelCache(const Utility::Unscoped<Ogl::Rgl>& p_gl);
  /// Shares the buffers registered so far; what is registered later belongs to one of the two.
  ModelCache(const ModelCache& p_other) = default;

  /// Reads a model with LoadPolygonObjFile, uploads it and returns its id: a new one each time, also for a path that
  /// was registered before.
  ///
  /// What the reader throws passes on and leaves the cache as it was. A model without positions or without indices,
  /// such as that of a missing file, is reported by the buffer pool ("Trying to allocate a buffer of 0 bytes!") and
  /// registered with empty buffers; one whose primitive type is undecided is reported and has 0 primitives. Memory that
  /// cannot be mapped is reported and leaves a buffer with undefined contents.
  std::size_t Register(const vekfile::filepath& p_path);
  /// Uploads a model that was read before, on another thread for one, likewise.
  std::size_t Register(const ObjModel& p_model);

  /// The box around the positions as the vertex buffer holds them, narrowed to float.
  Types::BoundingBox_Base<double> GetBoundingBox(std::size_t p_id) const;
  /// The indices of a model, and what they describe; an empty record for an id that was never given.
  IndexBuffer GetIndexBuffer(std::size_t p_id) const;
  /// The vertices of a model, and how they lie; an empty record for an id that was never given.
  VertexBuffer GetVertexBuffer(std::size_t p_id) const;

private:
  struct IndexDescription {
    std::uint32_t type, first, count;
  };
  struct VertexDescription {
    std::uint32_t attributes, positionStride, normalStride, positionOffset, normalOffset;
  };

  Utility::Unscoped<Ogl::Rgl> _gl;
  // In step: element i of each belongs to model i.
  std::vector<Ogl::Buffer<VertexRecord>> _vertexBuffers;
  std::vector<Ogl::Buffer<IndexRecord>> _indexBuffers;
  std::vector<IndexDescription> _indexDescriptions;
  std::vector<VertexDescription> _vertexDescriptions;
  std::vector<Types::BoundingBox_Base<double>> _boundingBoxes;
};

} // namespace Vek::Chart::Library
