// Times on the line: ten bits a byte at 9600 baud, both ways, to the microsecond.
#include <gtest/gtest.h>

#include "exchange.h"

namespace {

using sim::TimedByte;

std::vector<std::int64_t> TimesOf(const std::vector<TimedByte>& bytes) {
  std::vector<std::int64_t> times;
  for (const TimedByte& byte : bytes) times.push_back(byte.atUs);
  return times;
}

TEST(Pacing, AnAnswerBeginsWhenTheLastBitOfTheCommandIsIn) {
  Exchange pc;
  pc.Ask("E");
  EXPECT_EQ(TimesOf(pc.arrived), (std::vector<std::int64_t>{2084, 3125}));  // 2 and 3 bytes
}

TEST(Pacing, ACommandIsNotHeardBeforeItIsComplete) {
  Exchange pc;
  pc.zem.Receive('E', 0);
  pc.zem.Advance(1041);
  EXPECT_TRUE(pc.zem.History().empty());
  pc.zem.Advance(1042);
  EXPECT_EQ(pc.zem.History().size(), 1u);
}

TEST(Pacing, AByteArrivesNotAMicrosecondEarly) {
  Exchange pc;
  pc.zem.Receive('E', 0);
  EXPECT_TRUE(pc.zem.Advance(2083).empty());
  EXPECT_EQ(pc.zem.Advance(2084), (std::vector<TimedByte>{{'A', 2084}}));
  EXPECT_EQ(pc.zem.Advance(10'000), (std::vector<TimedByte>{{'X', 3125}}));
}

TEST(Pacing, AFrameWithItsCommandTakes28Bytes) {
  Exchange pc;
  pc.Ask("F");
  ASSERT_EQ(pc.arrived.size(), 27u);
  EXPECT_EQ(pc.arrived.front().atUs, 2084);
  EXPECT_EQ(pc.arrived.back().atUs, 29'167);  // 28 * 1041.67
}

TEST(Pacing, BytesGivenAtOnceFollowEachOther) {
  Exchange pc;
  pc.Ask("R3\x04");
  EXPECT_EQ(TimesOf(pc.arrived), (std::vector<std::int64_t>{4167, 5209}));
}

TEST(Pacing, BytesGivenWithPausesCountFromTheirOwnTime) {
  Exchange pc;
  pc.zem.Receive('R', 0);
  pc.zem.Receive('3', 10'000);
  pc.zem.Receive(4, 20'000);
  pc.nowUs = 20'000;
  pc.Ask("");
  EXPECT_EQ(TimesOf(pc.arrived), (std::vector<std::int64_t>{22'084, 23'125}));
}

TEST(Pacing, LookingLateChangesNoTime) {
  Exchange pc;
  pc.zem.Receive("EE", 0);
  EXPECT_EQ(TimesOf(pc.zem.Advance(1'000'000)),
            (std::vector<std::int64_t>{2084, 3125, 4167, 5209}));
}

TEST(Pacing, ProgrammingTakesTheWiresOwnTime) {
  Exchange pc;
  std::size_t bytes = 4;  // "P1" and its answer
  pc.Ask("P1");
  for (const std::string& record : RecordsOf(sim::DefaultImage())) {
    ASSERT_EQ(pc.Ask(record)[0], 'P');
    bytes += record.size() + 2;
  }
  EXPECT_EQ(bytes, 1424u);
  // Each exchange begins on a whole microsecond, so each may lose one.
  EXPECT_NEAR(static_cast<double>(pc.nowUs), 1'483'333, 34);
}

TEST(Pacing, UnpacedAnswersAtOnce) {
  Exchange pc{.zem = sim::Zem({.paced = false}), .nowUs = 500};
  EXPECT_EQ(pc.Ask("F").size(), 27u);
  EXPECT_EQ(pc.arrived.front().atUs, 500);
  EXPECT_EQ(pc.arrived.back().atUs, 500);
}

TEST(Pacing, NextEventTellsWhenSomethingCompletes) {
  Exchange pc;
  EXPECT_EQ(pc.zem.NextEventUs(), std::nullopt);
  pc.zem.Receive('E', 1000);
  EXPECT_EQ(pc.zem.NextEventUs(), 2042);
  pc.zem.Advance(2042);
  EXPECT_EQ(pc.zem.NextEventUs(), 3084);
  pc.zem.Advance(3084);
  EXPECT_EQ(pc.zem.NextEventUs(), 4125);
  pc.zem.Advance(4125);
  EXPECT_EQ(pc.zem.NextEventUs(), std::nullopt);
}

TEST(Pacing, BytesUnderWayAreThoseThatHaveNotCompleted) {
  Exchange pc;
  EXPECT_EQ(pc.zem.BytesUnderWay(), 0u);
  pc.zem.Receive('E', 0);
  EXPECT_EQ(pc.zem.BytesUnderWay(), 1u);
  pc.zem.Advance(1042);
  EXPECT_EQ(pc.zem.BytesUnderWay(), 2u);
  pc.zem.Advance(2084);
  EXPECT_EQ(pc.zem.BytesUnderWay(), 1u);
  pc.zem.Advance(3125);
  EXPECT_EQ(pc.zem.BytesUnderWay(), 0u);
}

TEST(Pacing, TheSameCallsGiveTheSameBytes) {
  Exchange one, two;
  for (Exchange* pc : {&one, &two}) {
    pc->Wait(3);
    pc->zem.Motor().driver.Drive();
    pc->Wait(25);
  }
  EXPECT_EQ(one.Ask("F"), two.Ask("F"));
  Exchange other{.zem = sim::Zem({.seed = 2})};
  other.Wait(3);
  other.zem.Motor().driver.Drive();
  other.Wait(25);
  EXPECT_NE(one.Ask("F"), other.Ask("F"));
}

TEST(Pacing, HowOftenItIsLookedAtMakesNoDifference) {
  Exchange seldom, often;
  seldom.Wait(2);
  for (int i = 0; i < 2000; ++i) often.Wait(0.001);
  EXPECT_EQ(seldom.Ask("F"), often.Ask("F"));
}

}  // namespace
