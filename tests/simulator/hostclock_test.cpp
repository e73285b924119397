// Time that the host takes away is not the unit's.
#include "simulator/hostclock.h"

#include <gtest/gtest.h>

namespace {

using sim::HostClock;

TEST(HostClock, CountsFromItsStart) {
  HostClock clock(5'000'000);
  EXPECT_EQ(clock.Read(5'000'000), 0);
  EXPECT_EQ(clock.Read(5'000'007), 7);
  EXPECT_EQ(clock.Read(5'020'007), 20'007);
}

TEST(HostClock, SleepThatWasAskedForCountsAndOneThatEndsEarlyCountsAsItWas) {
  HostClock clock(0);
  clock.Sleeps(500'000);
  EXPECT_EQ(clock.Read(500'060), 500'060);
  clock.Sleeps(500'000);
  EXPECT_EQ(clock.Read(501'060), 501'060);
}

TEST(HostClock, TwentyMillisecondsCountOfATurnThatTakesLonger) {
  HostClock clock(0);
  EXPECT_EQ(clock.Read(20'001), 20'000);
  EXPECT_EQ(clock.Read(20'002), 20'001);
  EXPECT_EQ(clock.Read(4'000'000), 40'001);
}

TEST(HostClock, SleepOutOfWhichTheProcessWasNotLetInTimeCountsTwentyMillisecondsToo) {
  HostClock clock(0);
  clock.Sleeps(200'000);
  EXPECT_EQ(clock.Read(220'000), 220'000);
  clock.Sleeps(200'000);
  EXPECT_EQ(clock.Read(440'001), 240'000);
  EXPECT_EQ(clock.Read(660'001), 260'000);  // the sleep was that of one reading
}

}  // namespace
