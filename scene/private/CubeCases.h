#pragma once

#include <array>
#include <cstdint>

namespace Vek::Chart::Scene::CubeCases {

// Corners of a cell are numbered x + 2 y + 4 z, with 0 or 1 for each. Edge 4 a + i is the i-th along axis a, in the
// order of the corner at its lower end. A case has the bit of each corner that is above the level.

/// The corner at the lower end of an edge; the upper end is 1 << edge / 4 higher.
constexpr std::array<std::uint8_t, 12> EdgeStarts = {0, 2, 4, 6, 0, 1, 4, 5, 0, 1, 2, 3};

/// The triangles of one case: three edges each, counter-clockwise seen from corners below the level.
struct Triangles {
  std::uint8_t count = 0;
  std::array<std::uint8_t, 15> edges{};
};

/// The triangles of all cases.
const std::array<Triangles, 256>& Table();

} // namespace Vek::Chart::Scene::CubeCases
