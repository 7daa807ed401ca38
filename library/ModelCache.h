#pragma once

#include "library/Export.h"
#include "library/ObjModel.h"
#include "platform/file/FilePath.h"
#include "platform/ogl/BufferDraw.h"
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

/// Polygon models in GPU buffers, by number: uploads each model once and returns the records needed to draw it.
///
/// Ids count from 0 in the order of registration and are never used again: a released model leaves empty records under
/// its id. Each model has its own vertex buffer and index buffer. A copy of a cache shares the buffers registered so
/// far. A buffer lives as long as a cache or a record holds it; the context that made it must be current when the last
/// holder releases it.
///
/// \snippet GlyphSnippets.cpp ModelCache
/// \image html earthquakes.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API ModelCache {
public:
  /// The record of vertex buffers: three floats.
  using VertexRecord = Ogl::Attribute<Ogl::Vec3<float>>;
  /// The record of index buffers: one unsigned 32-bit number.
  using IndexRecord = Ogl::Attribute<Ogl::Vec1<unsigned int>>;

  /// The indices of all groups of a model, in the order of the groups, zero-based into the model's vertices. Indices
  /// past the end of the vertices, which the reader reported, are stored unchanged.
  struct IndexBuffer {
    Ogl::VertexBuffer::PrimitiveType type = Ogl::VertexBuffer::Undecided; ///< the kind of primitive
    std::uint32_t first = 0;                                              ///< primitives before the model's; always 0
    std::uint32_t count = 0;                                              ///< primitives, not indices
    Ogl::Buffer<IndexRecord> buffer; ///< empty if the model has no indices or could not be uploaded
  };

  /// Positions and normals of a model, three floats each: position 0, normal 0, position 1, …; without normals,
  /// positions only. Strides and offsets are in bytes.
  struct VertexBuffer {
    /// The contents of the records.
    enum Attributes : std::uint32_t {
      Positions = 1, ///< always
      Normals = 2,   ///< if the model has normals
    };
    std::uint32_t attributes = 0;     ///< bits of Attributes
    std::uint32_t positionStride = 0; ///< from one position to the next
    std::uint32_t normalStride = 0;   ///< from one normal to the next; 0 without normals
    std::uint32_t positionOffset = 0; ///< of position 0
    std::uint32_t normalOffset = 0;   ///< of normal 0; 0 without normals
    Ogl::Buffer<VertexRecord> buffer; ///< empty if the model has no positions or could not be uploaded
  };

  /// All that is needed to draw a model.
  struct Model {
    VertexBuffer vertices;                  ///< positions and normals
    IndexBuffer indices;                    ///< indices and kind of primitive
    Types::BoundingBox_Base<double> bounds; ///< of the positions
  };

  /// An empty cache. Each registration opens a scope on the handle.
  explicit ModelCache(const Utility::Unscoped<Ogl::Rgl>& p_gl);
  /// Shares the buffers registered so far; later registrations belong to one of the two caches only.
  ModelCache(const ModelCache& p_other) = default;

  /// Reads a model with LoadPolygonObjFile, uploads it and returns its id. Each call makes a new id, also for a path
  /// that was registered before. The array-buffer binding stays.
  ///
  /// Exceptions of the reader leave the cache unchanged. Reported, and registered with an empty buffer, are:
  /// - a model without positions or without indices, for example that of a missing file ("Trying to allocate a buffer
  ///   of 0 bytes!");
  /// - a buffer that GL fails to make or to map.
  ///
  /// An undecided primitive type is reported and has 0 primitives.
  std::size_t Register(const vekfile::filepath& p_path);
  /// Uploads an already loaded model; it may have been loaded on another thread. Also reported are null arrays and
  /// groups, which count as empty, and fewer normals than positions; the model is then registered without normals.
  std::size_t Register(const ObjModel& p_model);

  /// The bounds of the positions, narrowed to float as in the vertex buffer; empty for an unknown id.
  Types::BoundingBox_Base<double> GetBoundingBox(std::size_t p_id) const;
  /// The indices of a model; an empty record for an unknown id.
  IndexBuffer GetIndexBuffer(std::size_t p_id) const;
  /// The vertices of a model; an empty record for an unknown id.
  VertexBuffer GetVertexBuffer(std::size_t p_id) const;
  /// The three records of a model; empty ones for an unknown id.
  Model GetModel(std::size_t p_id) const;

  /// Releases the buffers of a model, in a scope on the handle. The GPU memory is freed at once if no copy of the cache
  /// and no record holds the buffers. From then on the id yields empty records, like an unknown one. Returns false, and
  /// does nothing, for an unknown or released id.
  bool Release(std::size_t p_id);

private:
  struct IndexDescription {
    std::uint32_t type, first, count;
  };
  struct VertexDescription {
    std::uint32_t attributes, positionStride, normalStride, positionOffset, normalOffset;
  };

  std::size_t Upload(const ObjModel& p_model, Ogl::BufferPool& p_pool);

  Utility::Unscoped<Ogl::Rgl> _gl;
  // Element i of each belongs to model i.
  std::vector<Ogl::Buffer<VertexRecord>> _vertexBuffers;
  std::vector<Ogl::Buffer<IndexRecord>> _indexBuffers;
  std::vector<IndexDescription> _indexDescriptions;
  std::vector<VertexDescription> _vertexDescriptions;
  std::vector<Types::BoundingBox_Base<double>> _boundingBoxes;
};

/// Draws a model of a `ModelCache` or `SymbolRegistry`: all its primitives, once, or once for each instance after
/// `instanceAttributes` is set.
VEK_LIBRARY_API Ogl::BufferDraw ModelDraw(const ModelCache::Model& p_model);

} // namespace Vek::Chart::Library
