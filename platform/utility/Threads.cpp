#include "platform/utility/Threads.h"

#include <tbb/info.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <vector>

namespace Vek::Chart::Utility {

namespace {

/// Blocks on their way from `fill` to `join`.
class BlockRun {
public:
  BlockRun(std::size_t p_threads, std::size_t p_slots, const BlockSteps& p_steps)
      : _steps(p_steps)
      , _mostWorkers(p_threads - 1)
      , _slots(p_slots) {}

  /// Fills first, so that no thread waits for a block; works where there is nothing to fill or to join.
  void Run() {
    try {
      while (_mayFill || _joined < _filled) {
        if (_mayFill && _filled - _joined < _slots.size())
          Fill();
        else if (IsDone(_joined))
          Join();
        else if (!WorkOnOne())
          WaitFor(_joined);
      }
    } catch (...) {
      Drop();
      throw;
    }
    _tasks.wait();
    if (_fillFailure)
      std::rethrow_exception(_fillFailure);
  }

private:
  struct Slot {
    std::atomic<bool> done = false;
    std::exception_ptr failure; ///< once it is done
  };

  Slot& SlotOf(std::size_t p_block) { return _slots[p_block % _slots.size()]; }

  /// A failure is kept until the blocks before are joined.
  void Fill() {
    try {
      _mayFill = _steps.fill(_filled % _slots.size());
    } catch (...) {
      _fillFailure = std::current_exception();
      _mayFill = false;
    }
    if (!_mayFill)
      return;
    bool wantsWorker = false;
    {
      const std::lock_guard<std::mutex> lock(_mutex);
      SlotOf(_filled).done = false;
      _waiting.push_back(_filled);
      wantsWorker = _workers < _mostWorkers;
      _workers += wantsWorker ? 1 : 0;
    }
    ++_filled;
    if (wantsWorker)
      _tasks.run([this] { Work(); });
  }

  /// Works in another thread until nothing waits. A task for each block would cost more than small blocks do.
  void Work() {
    std::unique_lock<std::mutex> lock(_mutex);
    while (!_waiting.empty())
      WorkOnFirst(lock);
    --_workers;
  }

  /// Works on the first block that nobody works on. False where there is none.
  bool WorkOnOne() {
    std::unique_lock<std::mutex> lock(_mutex);
    if (_waiting.empty())
      return false;
    WorkOnFirst(lock);
    return true;
  }

  void WorkOnFirst(std::unique_lock<std::mutex>& p_lock) {
    const std::size_t block = _waiting.front();
    _waiting.pop_front();
    p_lock.unlock();
    std::exception_ptr failure;
    try {
      _steps.work(block % _slots.size());
    } catch (...) {
      failure = std::current_exception();
    }
    p_lock.lock();
    SlotOf(block).failure = failure;
    SlotOf(block).done = true;
    _someDone.notify_one();
  }

  bool IsDone(std::size_t p_block) { return SlotOf(p_block).done; }

  void WaitFor(std::size_t p_block) {
    std::unique_lock<std::mutex> lock(_mutex);
    _someDone.wait(lock, [&] { return IsDone(p_block); });
  }

  void Join() {
    if (const std::exception_ptr failure = SlotOf(_joined).failure)
      std::rethrow_exception(failure);
    _steps.join(_joined % _slots.size());
    ++_joined;
  }

  void Drop() {
    {
      const std::lock_guard<std::mutex> lock(_mutex);
      _waiting.clear();
    }
    _tasks.wait();
  }

  const BlockSteps& _steps;
  const std::size_t _mostWorkers; ///< beside the calling thread
  // Of the calling thread.
  std::size_t _filled = 0;
  std::size_t _joined = 0;
  bool _mayFill = true;
  std::exception_ptr _fillFailure;

  std::mutex _mutex; // of what follows
  std::condition_variable _someDone;
  std::deque<std::size_t> _waiting;
  std::size_t _workers = 0;
  std::vector<Slot> _slots;

  tbb::task_group _tasks;
};

} // namespace

int Threads::Count() const {
  return _count != 0 ? _count : tbb::info::default_concurrency();
}

void RunBlocks(Threads p_threads, std::size_t p_slots, const BlockSteps& p_steps) {
  const int threads = p_threads.Count();
  if (threads == 1 || p_slots <= 1) {
    while (p_steps.fill(0)) {
      p_steps.work(0);
      p_steps.join(0);
    }
    return;
  }
  tbb::task_arena arena(std::min(threads, tbb::info::default_concurrency())); // more would be warned of
  arena.execute([&] { BlockRun(static_cast<std::size_t>(threads), p_slots, p_steps).Run(); });
}

void RunBlocks(Threads p_threads, std::size_t p_count, const std::function<void(std::size_t)>& p_work) {
  const std::size_t threads = std::min(static_cast<std::size_t>(p_threads.Count()), p_count);
  if (threads <= 1) {
    for (std::size_t block = 0; block < p_count; ++block)
      p_work(block);
    return;
  }
  std::vector<std::size_t> blocks(4 * threads); // by slot
  std::size_t next = 0;
  const auto fill = [&](std::size_t p_slot) {
    blocks[p_slot] = next;
    return next++ < p_count;
  };
  const auto work = [&](std::size_t p_slot) { p_work(blocks[p_slot]); };
  RunBlocks(Threads(static_cast<int>(threads)), blocks.size(), {fill, work, [](std::size_t) {}});
}

void RunRanges(Threads p_threads, std::size_t p_count, std::size_t p_blockSize,
               const std::function<void(std::size_t, std::size_t)>& p_work) {
  constexpr std::size_t WorthThreads = 100000;
  const std::size_t blocks = p_count / p_blockSize + (p_count % p_blockSize != 0 ? 1 : 0);
  RunBlocks(p_count < WorthThreads ? Threads() : p_threads, blocks, [&](std::size_t p_block) {
    const std::size_t first = p_block * p_blockSize;
    p_work(first, std::min(p_count - first, p_blockSize) + first);
  });
}

} // namespace Vek::Chart::Utility
