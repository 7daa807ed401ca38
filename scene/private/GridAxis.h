#pragma once

#include "scene/Array.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace Vek::Chart::Scene {

/// The positions of the nodes along one axis of a rectilinear grid, ascending or descending. Throws
/// std::invalid_argument for fewer than `p_least`, for numbers that are not finite, and for numbers out of order.
/// `p_name` starts the message.
std::vector<double> AxisNodes(const std::string& p_name, const Array1& p_axis, std::size_t p_least);

/// The derivative at a node, from the values before it, at it and after it and the (signed) distances to both: that of
/// the parabola through all three, or the difference to the neighbour that is there, or 0 if both are missing.
inline double Slope(double p_before, double p_at, double p_after, double p_fromBefore, double p_toAfter) {
  const double before = (p_at - p_before) / p_fromBefore, after = (p_after - p_at) / p_toAfter;
  if (std::isfinite(before) && std::isfinite(after))
    return p_fromBefore == p_toAfter ? (p_after - p_before) / (2 * p_toAfter)
                                     : (before * p_toAfter + after * p_fromBefore) / (p_fromBefore + p_toAfter);
  return std::isfinite(after) ? after : std::isfinite(before) ? before : 0;
}

/// The number of nodes of a grid. Throws std::invalid_argument where it exceeds 2^40.
std::size_t NodeCount(const std::string& p_name, const std::array<std::size_t, 3>& p_counts);

} // namespace Vek::Chart::Scene
