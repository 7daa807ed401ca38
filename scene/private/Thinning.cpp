#include "scene/private/Thinning.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <unordered_set>

namespace Vek::Chart::Scene::Private {

namespace {

using Indices = std::vector<std::uint32_t>;

/// The number of each point's coordinate among the different coordinates of an axis.
struct Ranks {
  std::vector<std::uint32_t> ranks;
  std::uint32_t count = 0;
};

Ranks RanksAlong(std::size_t p_axis, const std::vector<Point>& p_points, const Indices& p_candidates, double p_extent) {
  constexpr double Same = 1e-6; // of the extent
  std::vector<std::pair<double, std::uint32_t>> sorted;
  sorted.reserve(p_candidates.size());
  for (std::uint32_t i = 0; i < p_candidates.size(); ++i)
    sorted.emplace_back(At(p_points[p_candidates[i]], p_axis), i);
  std::sort(sorted.begin(), sorted.end());
  Ranks result{std::vector<std::uint32_t>(sorted.size()), 0};
  double first = 0;
  for (const auto& [coordinate, index] : sorted) {
    if (result.count == 0 || coordinate - first > Same * p_extent) {
      first = coordinate;
      ++result.count;
    }
    result.ranks[index] = result.count - 1;
  }
  return result;
}

/// Every k-th point along each axis with the least k that leaves few enough; empty if the points are no grid.
std::optional<Indices> ThinnedGrid(const std::vector<Point>& p_points, const Indices& p_candidates, std::size_t p_most,
                                   double p_extent) {
  std::array<Ranks, 3> axes;
  double nodes = 1;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    axes[axis] = RanksAlong(axis, p_points, p_candidates, p_extent);
    nodes *= axes[axis].count;
  }
  constexpr double MostHoles = 2; // nodes of a grid for each point: there may be none on land
  if (nodes > MostHoles * static_cast<double>(p_candidates.size()))
    return {};
  for (std::uint32_t step = 2;; ++step) {
    Indices chosen;
    for (std::size_t i = 0; i < p_candidates.size(); ++i) {
      const auto isChosen = [&](const Ranks& p_axis) {
        const std::uint32_t own = std::min(step, p_axis.count);
        return p_axis.ranks[i] % own == own / 2; // half a step from the border
      };
      if (isChosen(axes[0]) && isChosen(axes[1]) && isChosen(axes[2]))
        chosen.push_back(p_candidates[i]);
    }
    if (chosen.size() <= p_most && !chosen.empty())
      return chosen;
    if (step > std::max({axes[0].count, axes[1].count, axes[2].count}))
      return {};
  }
}

/// A number that looks random for each index (A. Appleby, the finalizer of MurmurHash3, public domain).
std::uint32_t Scrambled(std::uint32_t p_index) {
  p_index = (p_index ^ p_index >> 16) * 0x85EBCA6BU;
  p_index = (p_index ^ p_index >> 13) * 0xC2B2AE35U;
  return p_index ^ p_index >> 16;
}

/// The first candidate in each cell of a lattice.
Indices FirstOfCells(const std::vector<Point>& p_points, const Indices& p_candidates, const Point& p_origin,
                     double p_cell) {
  constexpr std::uint64_t Bits = 21; // of a cell's number along an axis
  std::unordered_set<std::uint64_t> taken;
  Indices chosen;
  for (const std::uint32_t candidate : p_candidates) {
    const Point offset = (p_points[candidate] - p_origin) / p_cell;
    const auto x = static_cast<std::uint64_t>(offset.x), y = static_cast<std::uint64_t>(offset.y),
               z = static_cast<std::uint64_t>(offset.z);
    if (taken.insert(x << 2 * Bits | y << Bits | z).second)
      chosen.push_back(candidate);
  }
  return chosen;
}

} // namespace

std::vector<std::uint32_t> Thinned(const std::vector<Point>& p_points, const std::vector<std::uint32_t>& p_candidates,
                                   std::size_t p_most) {
  if (p_candidates.size() <= p_most)
    return p_candidates;
  Box box;
  for (const std::uint32_t candidate : p_candidates)
    box += p_points[candidate];
  const Point extent = box.Extent();
  const double longest = std::max({extent.x, extent.y, extent.z});
  if (!(longest > 0))
    return {p_candidates.front()};
  if (auto chosen = ThinnedGrid(p_points, p_candidates, p_most, longest))
    return *chosen;
  Indices shuffled = p_candidates;
  std::sort(shuffled.begin(), shuffled.end(),
            [](std::uint32_t p_a, std::uint32_t p_b) { return Scrambled(p_a) < Scrambled(p_b); });
  // Bisects the size of the cells, from one cell to two million along the longest axis.
  constexpr int Halvings = 24;
  double small = longest / (1 << 20), large = 2 * longest;
  Indices best{p_candidates.front()};
  for (int i = 0; i < Halvings; ++i) {
    const double cell = std::sqrt(small * large);
    Indices chosen = FirstOfCells(p_points, shuffled, box.Min(), cell);
    const bool fits = chosen.size() <= p_most;
    (fits ? large : small) = cell;
    if (fits && chosen.size() > best.size())
      best = std::move(chosen);
    if (best.size() * 20 >= p_most * 19)
      break;
  }
  std::sort(best.begin(), best.end());
  return best;
}

double MedianSpacing(const std::vector<Point>& p_points, const std::vector<std::uint32_t>& p_chosen) {
  constexpr std::size_t MostPairs = 4'000'000;
  if (p_chosen.size() < 2)
    return 0;
  const std::size_t samples = std::clamp<std::size_t>(MostPairs / p_chosen.size(), 1, p_chosen.size());
  std::vector<double> distances;
  for (std::size_t sample = 0; sample < samples; ++sample) {
    const Point& point = p_points[p_chosen[sample * p_chosen.size() / samples]];
    double nearest = HUGE_VAL;
    for (const std::uint32_t other : p_chosen) {
      const Point offset = p_points[other] - point;
      if (const double squared = Dot(offset, offset); squared > 0 && squared < nearest)
        nearest = squared;
    }
    if (nearest < HUGE_VAL)
      distances.push_back(std::sqrt(nearest));
  }
  if (distances.empty())
    return 0;
  const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
  std::nth_element(distances.begin(), middle, distances.end());
  return *middle;
}

} // namespace Vek::Chart::Scene::Private
