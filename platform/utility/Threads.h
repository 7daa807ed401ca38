#pragma once

#include "platform/Export.h"

#include <cstddef>
#include <functional>

namespace Vek::Chart::Utility {

/// The number of threads that a call may work on: one, a number, or all that the machine runs at once. The calling
/// thread is one of them. The number never changes a result, nor the order of reports and exceptions.
///
/// \snippet HostSnippets.cpp Threads
/// \ingroup host
class VEK_PLATFORM_API Threads {
public:
  /// One: the calling thread.
  constexpr Threads() = default;
  /// At most `p_count` threads; numbers below 1 count as 1.
  constexpr explicit Threads(int p_count)
      : _count(p_count < 1 ? 1 : p_count) {}
  /// As many as the process may run at once.
  static constexpr Threads All() {
    Threads all;
    all._count = 0;
    return all;
  }

  /// The number of threads, at least 1.
  int Count() const;

private:
  int _count = 1; // 0: all
};

/// What is done with a sequence of blocks. Each step gets the number of a slot: block i is in slot i mod `p_slots`.
struct VEK_PLATFORM_API BlockSteps {
  /// Makes the next block, in the calling thread, in order; false when there are no more.
  std::function<bool(std::size_t p_slot)> fill;
  /// Works on a block, in any thread. Reports nothing; reports belong to `join`.
  std::function<void(std::size_t p_slot)> work;
  /// Takes over the result, in the calling thread, in order. The slot is free for another block afterwards.
  std::function<void(std::size_t p_slot)> join;
};

/// Works on a sequence of blocks on several threads; the calling thread makes and joins the blocks, and works on them
/// as well. At most `p_slots` blocks exist at a time; twice the number of threads keeps all busy. With one thread, each
/// block is joined before the next one is made, in slot 0.
///
/// An exception of a step ends the call, once all blocks before are joined and no thread works any longer, and passes
/// to the caller. Steps of later blocks may have run by then, but no `join`. Threads are those of oneTBB; calls may be
/// nested.
///
/// \ingroup host
VEK_PLATFORM_API void RunBlocks(Threads p_threads, std::size_t p_slots, const BlockSteps& p_steps);

/// Works on the blocks 0 to `p_count` - 1, each once, in any order and thread. The exception of the first block that
/// has one passes to the caller.
///
/// \ingroup host
VEK_PLATFORM_API void RunBlocks(Threads p_threads, std::size_t p_count,
                                const std::function<void(std::size_t p_block)>& p_work);

/// Divides `p_count` elements into blocks of `p_blockSize`, the last one smaller, and calls p_work(first, last) for
/// each, in any order and thread. The blocks do not depend on the number of threads. Fewer than 100,000 elements start
/// no thread.
///
/// \ingroup host
VEK_PLATFORM_API void RunRanges(Threads p_threads, std::size_t p_count, std::size_t p_blockSize,
                                const std::function<void(std::size_t p_first, std::size_t p_last)>& p_work);

} // namespace Vek::Chart::Utility
