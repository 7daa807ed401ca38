#pragma once

#include "tests/support/Shorthands.h"

// Axes and data of grids, whose first index varies fastest.

namespace Vek::Test {

inline Doubles Even(std::size_t p_count, double p_first, double p_last) {
  Doubles axis;
  for (std::size_t i = 0; i < p_count; ++i)
    axis.push_back(p_first + (p_last - p_first) * static_cast<double>(i) / static_cast<double>(p_count - 1));
  return axis;
}

/// What a function of a point gives at the nodes.
template <class Function>
auto AtNodes(const Doubles& p_x, const Doubles& p_y, const Doubles& p_z, Function p_function) {
  std::vector<decltype(p_function(Point()))> results;
  for (const double z : p_z)
    for (const double y : p_y)
      for (const double x : p_x)
        results.push_back(p_function(Point(x, y, z)));
  return results;
}

/// What a function of x and y gives at the nodes.
template <class Function>
Doubles AtNodes(const Doubles& p_x, const Doubles& p_y, Function p_function) {
  return AtNodes(p_x, p_y, {0}, [&](const Point& p_at) -> double { return p_function(p_at.x, p_at.y); });
}

} // namespace Vek::Test
