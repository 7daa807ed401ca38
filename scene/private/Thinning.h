#pragma once

#include "scene/private/DataTransform.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Chooses at most `p_most` of the points at `p_candidates`, evenly over their extent: of points that make up a grid,
/// even or uneven, every k-th along each axis; of others, one in each cell of a cubic lattice, wherever it stands in the
/// list, which may be in the order of time. Returns indices in ascending order. `p_most` is at least 1.
std::vector<std::uint32_t> Thinned(const std::vector<Point>& p_points, const std::vector<std::uint32_t>& p_candidates,
                                   std::size_t p_most);

/// The median distance from a point to its nearest neighbour that lies elsewhere; 0 if there is none. Of many points, a
/// sample is taken.
double MedianSpacing(const std::vector<Point>& p_points, const std::vector<std::uint32_t>& p_chosen);

} // namespace Vek::Chart::Scene::Private
