#pragma once

#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Vectors by component, padded with zero vectors to a multiple of four, so that loops have no remainder.
struct VectorColumns {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;

  explicit VectorColumns(const std::vector<Types::Vector3_Base<double>>& p_vectors);
  /// The number of vectors, with padding.
  std::size_t Count() const { return x.size(); }
};

/// The transform of one copy of a glyph: rotation * ((p - (0, 0, shift)) * factor) + position.
struct GlyphPlacement {
  const Types::Matrix3& rotation;
  const Types::Vector3_Base<double>& position;
  double shift;
  double factor;
};

/// Places each vector of the columns as a point and stores it as four floats, the last one zero.
void PlacePoints(const VectorColumns& p_points, const GlyphPlacement& p_placement, float* p_out);

/// Rotates each vector of the columns and stores it as four floats, the last one zero.
void RotateDirections(const VectorColumns& p_directions, const Types::Matrix3& p_rotation, float* p_out);

} // namespace Vek::Chart::Library::Private
