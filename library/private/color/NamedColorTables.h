#pragma once

#include <array>
#include <cstdint>

namespace Vek::Chart::Library::Private {

// The colours of the named maps as 0xRRGGBB, evenly spaced from the lowest value to the highest. Origins and licences
// are given beside the tables.
extern const std::array<std::uint32_t, 256> Viridis;
extern const std::array<std::uint32_t, 256> Plasma;
extern const std::array<std::uint32_t, 256> Inferno;
extern const std::array<std::uint32_t, 256> Magma;
extern const std::array<std::uint32_t, 256> Cividis;
extern const std::array<std::uint32_t, 257> CoolWarm; ///< the one in the middle is the neutral colour

} // namespace Vek::Chart::Library::Private
