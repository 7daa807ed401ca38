#pragma once

#include "platform/types/Vector.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Lines of equal z on triangles: two points a segment, one segment for each triangle and level that cross. They lie in
/// the triangles, unlike lines through the cells of the grid, which the bend between two triangles can hide. A vertex
/// at a level counts as above it. Vertices of triangles must be finite.
inline std::vector<Types::Vector3_Base<float>>
ContourSegments(const std::vector<Types::Vector3_Base<float>>& p_positions, const std::vector<std::uint32_t>& p_indices,
                std::vector<float> p_levels) {
  using Vector = Types::Vector3_Base<float>;
  std::sort(p_levels.begin(), p_levels.end());
  std::vector<Vector> points;
  for (std::size_t first = 0; first + 2 < p_indices.size(); first += 3) {
    const std::array<Vector, 3> corners = {p_positions[p_indices[first]], p_positions[p_indices[first + 1]],
                                           p_positions[p_indices[first + 2]]};
    const auto [low, high] = std::minmax({corners[0].z, corners[1].z, corners[2].z});
    for (auto level = std::upper_bound(p_levels.begin(), p_levels.end(), low);
         level != p_levels.end() && *level <= high; ++level)
      for (std::size_t i = 0; i < 3; ++i) {
        const Vector &a = corners[i], &b = corners[(i + 1) % 3];
        if ((a.z < *level) == (b.z < *level))
          continue;
        const float share = (*level - a.z) / (b.z - a.z);
        points.emplace_back(a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share, *level);
      }
  }
  return points;
}

} // namespace Vek::Chart::Scene::Private
