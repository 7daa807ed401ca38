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
  constexpr std::size_t BlockSize = std::size_t{1} << 15;
  constexpr std::size_t PageFloats = PageBlockBytes / sizeof(float);
  constexpr std::size_t WorthThreads = 100000;
  std::size_t all = 0;
  for (const FloatPiece& piece : p_pieces)
    all += piece.count;
  std::sort(p_pieces.begin(), p_pieces.end(),
            [](const FloatPiece& p_a, const FloatPiece& p_b) { return std::less<float*>()(p_a.numbers, p_b.numbers); });
  const Utility::Threads threads = all < WorthThreads ? Utility::Threads() : p_threads;
  const auto converted = [p_stride](std::size_t p_index) { return (p_index + p_stride - 1) / p_stride; };
  std::vector<std::vector<FloatPiece>> blocks(2 * static_cast<std::size_t>(threads.Count()));
  T* const target = p_target.data();
  auto piece = p_pieces.begin();
  float* released = p_pieces.empty() ? nullptr : piece->numbers;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    std::vector<FloatPiece>& block = blocks[p_slot];
    block.clear();
    for (std::size_t left = BlockSize; left != 0 && piece != p_pieces.end();) {
      const std::size_t count = std::min(piece->count, left);
      block.push_back({piece->numbers, piece->first, count});
      p_target.resize(std::max(p_target.size(), converted(piece->first + count)));
      *piece = {piece->numbers + count, piece->first + count, piece->count - count};
      piece += piece->count == 0 ? 1 : 0;
      left -= count;
    }
    return !block.empty();
  };
  const auto convert = [&](const FloatPiece& p_piece) {
    if (p_stride == 1) {
      p_convert(p_piece.numbers, p_piece.count, target + p_piece.first);
      return;
    }
    const std::size_t first = converted(p_piece.first);
    const std::size_t count = converted(p_piece.first + p_piece.count) - first;
    for (std::size_t i = 0; i < count; ++i) // the numbers in front are lost already
      p_piece.numbers[i] = p_piece.numbers[(first + i) * p_stride - p_piece.first];
    p_convert(p_piece.numbers, count, target + first);
  };
  steps.work = [&](std::size_t p_slot) { std::for_each(blocks[p_slot].begin(), blocks[p_slot].end(), convert); };
  steps.join = [&](std::size_t p_slot) {
    // Whole huge pages only: to give back a part of one costs more than it saves.
    const FloatPiece& last = blocks[p_slot].back();
    const std::size_t done = static_cast<std::size_t>(last.numbers + last.count - released);
    if (const std::size_t whole = done / PageFloats * PageFloats; whole != 0) {
      ReleasePages(released, whole * sizeof(float));
      released += whole;
    }
  };
  Utility::RunBlocks(threads, blocks.size(), steps);
}

} // namespace Vek::Chart::Library::Private
