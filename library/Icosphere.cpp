#include "library/Icosphere.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>

namespace Vek::Chart::Library {

namespace {

using Point = Types::Vector3_Base<double>;

/// Makes four triangles of each. Neighbours share the midpoint of their edge.
void Divide(Icosphere& p_sphere) {
  std::unordered_map<std::uint64_t, std::uint32_t> middles; // by the lower and the upper end of the edge
  const auto middle = [&](std::uint32_t p_a, std::uint32_t p_b) {
    const auto [lower, upper] = std::minmax(p_a, p_b);
    const auto [entry, isNew] =
        middles.try_emplace(std::uint64_t{lower} << 32 | upper, static_cast<std::uint32_t>(p_sphere.positions.size()));
    if (isNew)
      p_sphere.positions.push_back(Normalize(p_sphere.positions[p_a] + p_sphere.positions[p_b]));
    return entry->second;
  };
  const std::vector<std::uint32_t> coarse = std::exchange(p_sphere.indices, {});
  middles.reserve(coarse.size() / 2);
  p_sphere.positions.reserve(p_sphere.positions.size() + coarse.size() / 2);
  p_sphere.indices.reserve(4 * coarse.size());
  for (std::size_t i = 0; i < coarse.size(); i += 3) {
    const std::uint32_t a = coarse[i], b = coarse[i + 1], c = coarse[i + 2];
    const std::uint32_t ab = middle(a, b);
    const std::uint32_t bc = middle(b, c);
    const std::uint32_t ca = middle(c, a);
    p_sphere.indices.insert(p_sphere.indices.end(), {a, ab, ca, b, bc, ab, c, ca, bc, ab, bc, ca});
  }
}

} // namespace

Icosphere::Icosphere(unsigned int p_divisions) {
  if (p_divisions > MostDivisions)
    throw std::invalid_argument("an icosphere of " + std::to_string(p_divisions) + " divisions; the most are " +
                                std::to_string(MostDivisions));
  // The corners of three golden rectangles, one in each plane of the axes.
  const double g = (1 + std::sqrt(5.0)) / 2;
  for (const Point& corner : {Point(-1, g, 0),
                              {1, g, 0},
                              {-1, -g, 0},
                              {1, -g, 0},
                              {0, -1, g},
                              {0, 1, g},
                              {0, -1, -g},
                              {0, 1, -g},
                              {g, 0, -1},
                              {g, 0, 1},
                              {-g, 0, -1},
                              {-g, 0, 1}})
    positions.push_back(Normalize(corner));
  indices = {0, 11, 5, 0, 5,  1,  0,  1,  7,  0,  7, 10, 0, 10, 11, // around corner 0
             1, 5,  9, 5, 11, 4,  11, 10, 2,  10, 7, 6,  7, 1,  8,  // beside those
             3, 9,  4, 3, 4,  2,  3,  2,  6,  3,  6, 8,  3, 8,  9,  // around corner 3
             4, 9,  5, 2, 4,  11, 6,  2,  10, 8,  6, 7,  9, 8,  1}; // beside those
  for (unsigned int i = 0; i < p_divisions; ++i)
    Divide(*this);
}

} // namespace Vek::Chart::Library
