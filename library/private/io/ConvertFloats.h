#pragma once

#include "library/private/memory/HugePages.h"
#include "platform/utility/Threads.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Reserves memory for what ConvertFloats appends. It takes no huge page before as much memory of numbers was given
/// back.
template <class T>
void ReserveConverted(std::vector<T>& p_target, std::size_t p_count) {
  ReserveLarge(p_target, p_count, std::size_t{1} << 20);
}

/// Numbers in memory.
struct FloatPiece {
  float* numbers;
  std::size_t first; ///< the index of the first of them
  std::size_t count;
};

/// Appends what p_convert(numbers, count, results) makes of every `p_stride`-th of the numbers to a vector, which has
/// the room and is empty. The pieces are parts of one block of memory, in any order, which is given back bit by bit;
/// the numbers are lost.
template <class T, class Convert>
void ConvertFloats(std::vector<FloatPiece> p_pieces, std::size_t p_stride, Utility::Threads p_threads,
                   std::vector<T>& p_target, Convert p_convert) {
  constexpr std::size_t BlockSize = std::size_t{1} << 14;
  constexpr std::size_t PageFloats = PageBlockBytes / sizeof(float);
  constexpr std::size_t WorthThreads = 100000;
  std::size_t all = 0;
  for (const FloatPiece& piece : p_pieces)
    all += piece.count;
  std::sort(p_pieces.begin(), p_pieces.end(),
            [](const FloatPiece& p_a, const FloatPiece& p_b) { return std::less<float*>()(p_a.numbers, p_b.numbers); });
  const Utility::Threads threads = all < WorthThreads ? Utility::Threads() : p_threads;
  const auto converted = [p_stride](std::size_t p_index) { return (p_index + p_stride - 1) / p_stride; };
  std::vector<FloatPiece> blocks(2 * static_cast<std::size_t>(threads.Count()));
  T* const target = p_target.data();
  auto piece = p_pieces.begin();
  float* released = p_pieces.empty() ? nullptr : piece->numbers;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    while (piece != p_pieces.end() && piece->count == 0)
      ++piece;
    if (piece == p_pieces.end())
      return false;
    FloatPiece& block = blocks[p_slot] = {piece->numbers, piece->first, std::min(piece->count, BlockSize)};
    *piece = {piece->numbers + block.count, piece->first + block.count, piece->count - block.count};
    p_target.resize(std::max(p_target.size(), converted(block.first + block.count)));
    return true;
  };
  steps.work = [&](std::size_t p_slot) {
    const FloatPiece& block = blocks[p_slot];
    if (p_stride == 1) {
      p_convert(block.numbers, block.count, target + block.first);
      return;
    }
    const std::size_t first = converted(block.first);
    const std::size_t count = converted(block.first + block.count) - first;
    for (std::size_t i = 0; i < count; ++i) // the numbers in front are lost already
      block.numbers[i] = block.numbers[(first + i) * p_stride - block.first];
    p_convert(block.numbers, count, target + first);
  };
  steps.join = [&](std::size_t p_slot) {
    // Whole huge pages only: to give back a part of one costs more than it saves.
    const std::size_t done = static_cast<std::size_t>(blocks[p_slot].numbers + blocks[p_slot].count - released);
    if (const std::size_t whole = done / PageFloats * PageFloats; whole != 0) {
      ReleasePages(released, whole * sizeof(float));
      released += whole;
    }
  };
  Utility::RunBlocks(threads, blocks.size(), steps);
}

} // namespace Vek::Chart::Library::Private
