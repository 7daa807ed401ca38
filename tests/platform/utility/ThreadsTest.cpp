#include "platform/utility/Threads.h"
#include "tests/support/Test.h"

#include <atomic>
#include <numeric>
#include <thread>

using namespace Vek::Chart::Utility;

namespace {

constexpr std::array<int, 4> Counts{1, 2, 3, 7};

/// Runs blocks of which some fail, and returns what the calling thread saw, in order.
std::string Log(Threads p_threads, std::size_t p_slots, const std::string& p_failing) {
  const std::thread::id caller = std::this_thread::get_id();
  std::string log;
  std::vector<char> blocks(p_slots);
  char next = 'a';
  const auto fail = [&](char p_block, char p_step) {
    if (p_failing == std::string{p_block, p_step})
      throw std::runtime_error(p_failing);
  };
  BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    EXPECT_EQ(std::this_thread::get_id(), caller);
    fail(next, 'f');
    blocks[p_slot] = next;
    return next++ <= 'z';
  };
  steps.work = [&](std::size_t p_slot) {
    const char block = blocks[p_slot];
    if (block % 3 == 0) // so that blocks overtake each other
      std::this_thread::sleep_for(std::chrono::microseconds(300));
    fail(block, 'w');
    if (!p_failing.empty() && block > p_failing[0] + 1) // a later failure must not win
      throw std::runtime_error("later");
    blocks[p_slot] = static_cast<char>(block - 'a' + 'A');
  };
  steps.join = [&](std::size_t p_slot) {
    EXPECT_EQ(std::this_thread::get_id(), caller);
    fail(static_cast<char>(blocks[p_slot] - 'A' + 'a'), 'j');
    log += blocks[p_slot];
  };
  try {
    RunBlocks(p_threads, p_slots, steps);
  } catch (const std::exception& failure) {
    log += std::string(" ") + failure.what();
  }
  return log;
}

} // namespace

TEST(Threads, Count) {
  EXPECT_EQ(Threads().Count(), 1);
  EXPECT_EQ(Threads(0).Count(), 1);
  EXPECT_EQ(Threads(-3).Count(), 1);
  EXPECT_EQ(Threads(3).Count(), 3);
  EXPECT_GE(Threads::All().Count(), 1);
}

TEST(Threads, BlocksAreJoinedInOrder) {
  for (const int threads : Counts)
    for (const std::size_t places : {1, 2, 5, 40})
      EXPECT_EQ(Log(Threads(threads), places, ""), "ABCDEFGHIJKLMNOPQRSTUVWXYZ") << threads << ' ' << places;
}

TEST(Threads, FirstFailureOfBlocksEndsTheCall) {
  for (const int threads : Counts)
    for (const std::string failing : {"fw", "ff", "fj"})
      for (const std::size_t places : {1, 2, 5, 40})
        EXPECT_EQ(Log(Threads(threads), places, failing), "ABCDE " + failing) << threads << ' ' << places;
}

TEST(Threads, RangesCoverAllElementsOnce) {
  for (const int threads : Counts)
    for (const std::size_t count : {0, 1, 999, 1000, 1001, 123456}) {
      std::vector<int> seen(count);
      RunRanges(Threads(threads), count, 1000, [&](std::size_t p_first, std::size_t p_last) {
        EXPECT_TRUE(p_first % 1000 == 0 && (p_last == p_first + 1000 || p_last == count));
        for (std::size_t i = p_first; i < p_last; ++i)
          ++seen[i];
      });
      EXPECT_EQ(seen, std::vector<int>(count, 1)) << threads;
    }
}

TEST(Threads, CallsMayBeNested) {
  std::atomic<int> sum{0};
  RunBlocks(Threads(3), 5, [&](std::size_t p_outer) {
    RunBlocks(Threads(2), 7, [&](std::size_t p_inner) { sum += static_cast<int>(7 * p_outer + p_inner); });
  });
  EXPECT_EQ(sum, 35 * 34 / 2);
}
