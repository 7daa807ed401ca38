#include "platform/core/TimeStamp.h"
#include "tests/support/Test.h"

using Vek::Chart::Core::TimeStamp;

TEST(TimeStamp, CopiesAreEqualAndNewOnesDiffer) {
  const TimeStamp first;
  const TimeStamp copy = first;
  TimeStamp second;
  EXPECT_TRUE(copy == first && !(copy != first));
  EXPECT_TRUE(second != first);
  second = first;
  EXPECT_TRUE(second == first);
}

TEST(TimeStamp, StampsOfTwoThreadsDiffer) {
  std::vector<TimeStamp> b;
  std::thread other([&b] { b.resize(1000); });
  const std::vector<TimeStamp> a(1000);
  other.join();
  for (const TimeStamp& x : a)
    ASSERT_EQ(std::count(b.begin(), b.end(), x), 0);
}
