#pragma once

#include "library/private/mesh/GlyphTransform.h"
#include "platform/utility/Threads.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// The distinct vectors of a list, and the index of each element's vector among them. Vectors are equal if their bits
/// are. For example, corners of a mesh that differ only in their normals share a position.
struct DistinctVectors {
  VectorColumns vectors;
  std::vector<unsigned int> indexOf;

  static DistinctVectors Of(const std::vector<Types::Vector3_Base<double>>& p_list);
};

/// The instances of a layer: arrays of `count` elements.
struct GlyphInstances {
  std::size_t count;
  const Types::Vector3_Base<double>* positions;
  const Types::Matrix3* rotations;
  const double* sizes;
  const double* texCoords; ///< may be null
  double scale;            ///< factor of all sizes
  double shift;            ///< subtracted from the z of each vertex
};

/// The arrays that a layer is written to; null ones are skipped.
struct GlyphTarget {
  float* vertices;
  float* normals;
  float* texCoords;
  unsigned int* indices;
  unsigned int firstVertex; ///< index of the first vertex written
};

/// One glyph and the places of its copies. Everything that is passed in must outlive the layer.
class GlyphLayer {
public:
  /// Selects the instances to write: those with size * scale > 0 (or NaN), less those that give a NaN vertex or normal.
  GlyphLayer(const std::vector<Types::Vector3_Base<double>>& p_vertices,
             const std::vector<Types::Vector3_Base<double>>& p_normals, const std::vector<unsigned int>& p_indices,
             const GlyphInstances& p_instances);

  /// The number of instances to write.
  std::size_t Count() const { return _count; }
  /// The instances left out because they give a NaN, in ascending order.
  const std::vector<std::size_t>& NotANumber() const { return _notANumber; }

  /// Writes `Count()` instances. The arrays must have room for them. Fewer than 100,000 vertices start no thread.
  void Write(const GlyphTarget& p_target, Utility::Threads p_threads) const;

private:
  std::size_t VertexCount() const { return _points.indexOf.size(); }
  bool GivesNaN(std::size_t p_instance, double p_factor) const;
  /// Writes some of the instances, to the memory of the first of them.
  void WriteRange(std::size_t p_begin, std::size_t p_end, const GlyphTarget& p_target, bool p_pastCaches) const;
  static constexpr std::size_t BlockSize = 1024; // instances
  static constexpr std::size_t WorthThreads = 100000;

  DistinctVectors _points;
  DistinctVectors _directions;
  const std::vector<unsigned int>& _indices;
  GlyphInstances _instances;
  std::size_t _count = 0;
  std::vector<std::size_t> _writtenBefore; ///< instances that are written in front of each block
  std::vector<std::size_t> _notANumber;
};

} // namespace Vek::Chart::Library::Private
