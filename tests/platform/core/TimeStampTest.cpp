#include "platform/core/TimeStamp.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using Vek::Chart::Core::TimeStamp;

TEST(TimeStamp, CopiesAreEqualAndNewOnesDiffer) {
  const TimeStamp first;
  const TimeStamp copy = first;
  TimeStamp second;
  EXPECT_TRUE(copy == first);
  EXPECT_FALSE(copy != first);
  EXPECT_TRUE(second != first);
  second = first;
  EXPECT_TRUE(second == first);
}

TEST(TimeStamp, StampsOfTwoThreadsDiffer) {
  std::vector<TimeStamp> a(1000);
  std::vector<TimeStamp> b;
  std::thread other([&b] { b = std::vector<TimeStamp>(1000); });
  for (TimeStamp& stamp : a)
    stamp = TimeStamp();
  other.join();
  int equal = 0;
  for (const TimeStamp& x : a)
    for (const TimeStamp& y : b)
      equal += x == y ? 1 : 0;
  EXPECT_EQ(equal, 0);
}
