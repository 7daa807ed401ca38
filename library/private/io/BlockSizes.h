#pragma once

#include <cstddef>
#include <cstdint>

namespace Vek::Chart::Library::Private {

// The blocks of text that several threads read. A test defines VEK_TINY_BLOCKS to see every border.
#ifdef VEK_TINY_BLOCKS
constexpr std::size_t BlockBytes = 61;
constexpr std::uint64_t WorthThreads = 0;
#else
constexpr std::size_t BlockBytes = std::size_t{1} << 16;
/// Files of fewer bytes are read on one thread.
constexpr std::uint64_t WorthThreads = std::uint64_t{1} << 20;
#endif

} // namespace Vek::Chart::Library::Private
