#pragma once

#include "library/private/memory/HugePages.h"
#include "platform/utility/Threads.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Reserves memory for what ConvertFloats appends. It takes no huge page before as much memory of numbers was given
/// back.
template <class T>
void ReserveConverted(std::vector<T>& p_target, std::size_t p_count) {
  ReserveLarge(p_target, p_count, std::size_t{1} << 20);
}

/// Appends p_convert(number) of every `p_stride`-th of the numbers to a vector, which has the room. The memory of the
/// numbers is given back piece by piece; they are lost.
template <class T, class Convert>
void ConvertFloats(float* p_numbers, std::size_t p_count, std::size_t p_stride, Utility::Threads p_threads,
                   std::vector<T>& p_target, Convert p_convert) {
  constexpr std::size_t BlockSize = std::size_t{1} << 15;
  constexpr std::size_t ReleaseSize = std::size_t{1} << 17; // numbers; giving back less costs more than it saves
  constexpr std::size_t WorthThreads = 100000;
  const std::size_t converted = (p_count + p_stride - 1) / p_stride;
  const Utility::Threads threads = p_count < WorthThreads ? Utility::Threads() : p_threads;
  struct Block {
    std::unique_ptr<T[]> results; // not initialised
    std::size_t first = 0;
    std::size_t last = 0;
  };
  std::vector<Block> blocks(2 * static_cast<std::size_t>(threads.Count()));
  std::size_t next = 0, released = 0;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    Block& block = blocks[p_slot];
    if (!block.results)
      block.results.reset(new T[std::min(BlockSize, converted)]);
    block.first = next;
    next = block.last = std::min(next + BlockSize, converted);
    return block.first < block.last;
  };
  steps.work = [&](std::size_t p_slot) {
    const Block& block = blocks[p_slot];
    if (p_stride == 1)
      std::transform(p_numbers + block.first, p_numbers + block.last, block.results.get(), p_convert);
    else
      for (std::size_t i = block.first; i < block.last; ++i)
        block.results[i - block.first] = p_convert(p_numbers[i * p_stride]);
  };
  steps.join = [&](std::size_t p_slot) {
    const Block& block = blocks[p_slot];
    const std::size_t used = std::min(block.last * p_stride, p_count);
    if (used - released >= ReleaseSize || used == p_count) {
      ReleasePages(p_numbers + released, (used - released) * sizeof(float));
      released = used;
    }
    p_target.insert(p_target.end(), block.results.get(), block.results.get() + (block.last - block.first));
  };
  Utility::RunBlocks(threads, blocks.size(), steps);
}

} // namespace Vek::Chart::Library::Private
