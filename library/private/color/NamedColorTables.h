#pragma once

#include <array>
#include <cstdint>

namespace Vek::Chart::Library::Private {

// The colours of the named maps as 0xRRGGBB, at even steps from the lowest value to the highest. Origins and licences
// stand beside the figures.
extern const std::array<std::uint32_t, 256> Viridis;
extern const std::array<std::uint32_t, 256> Plasma;
extern const std::array<std::uint32_t, 256> Inferno;
extern const std::array<std::uint32_t, 256> Magma;
extern const std::array<std::uint32_t, 256> Cividis;
extern const std::array<std::uint32_t, 257>
    CoolWarm; ///< an odd number: the neutral colour in the middle is one of them

} // namespace Vek::Chart::Library::Private
