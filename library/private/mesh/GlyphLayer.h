#pragma once

#include "library/VectorSymbol.h"
#include "library/private/mesh/GlyphTransform.h"

#include <vector>

namespace Vek::Chart::Library::Private {

/// The distinct vectors of a list and which of them each element of the list is. Vectors are the same when their bits
/// are; corners of a mesh that differ in their normals only, for example, share a position.
struct DistinctVectors {
  VectorColumns vectors;
  std::vector<unsigned int> indexOf;

  static DistinctVectors Of(const std::vector<Types::Vector3_Base<double>>& p_list);
};

/// One glyph, prepared to be written many times.
class GlyphLayer {
public:
  /// `p_indices` must outlive the layer.
  GlyphLayer(const std::vector<Types::Vector3_Base<double>>& p_vertices,
             const std::vector<Types::Vector3_Base<double>>& p_normals, const std::vector<unsigned int>& p_indices);

  /// Writes all instances whose size times scale is not <= 0. The memory must have room for them.
  void Write(const VectorSymbol::Instances& p_instances, double p_shift, double p_scale,
             const VectorSymbol::LayerMemory& p_memory) const;

private:
  DistinctVectors _points;
  DistinctVectors _directions;
  const std::vector<unsigned int>& _indices;
};

} // namespace Vek::Chart::Library::Private
