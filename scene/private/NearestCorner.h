#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// The index of the nearest corner of a triangle, by its number in a list of indices; empty past the end.
template <class Distance>
std::optional<std::uint32_t> NearestCorner(const std::vector<std::uint32_t>& p_indices,
                                           std::optional<std::uint32_t> p_triangle, const Distance& p_distance) {
  if (!p_triangle || std::size_t{3} * *p_triangle + 2 >= p_indices.size())
    return {};
  std::uint32_t nearest = p_indices[std::size_t{3} * *p_triangle];
  for (const std::size_t corner : {1, 2})
    if (const std::uint32_t index = p_indices[std::size_t{3} * *p_triangle + corner];
        p_distance(index) < p_distance(nearest))
      nearest = index;
  return nearest;
}

} // namespace Vek::Chart::Scene::Private
