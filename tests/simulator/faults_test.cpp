// Each named fault: what it does, how often, and to which command alone.
#include "simulator/faults.h"

#include <gtest/gtest.h>

#include <set>

#include "exchange.h"

namespace {

using sim::Fault;
using sim::FaultRule;
using sim::ParseFault;
using sim::Zem;
using namespace std::string_literals;

Exchange With(std::string_view fault) {
  Exchange pc{.zem = Zem({.paced = false})};
  EXPECT_TRUE(pc.zem.Fail(fault)) << fault;
  return pc;
}

TEST(FaultNames, EveryRowIsParsedByItsName) {
  std::set<Fault> seen;
  for (const sim::FaultRow& row : sim::FaultRows()) {
    const auto rule = ParseFault(row.name);
    ASSERT_TRUE(rule) << row.name;
    EXPECT_EQ(rule->fault, row.fault);
    seen.insert(row.fault);
  }
  EXPECT_EQ(seen.size(), 12u);
}

TEST(FaultNames, CountsAndCommandAreRead) {
  const auto rule = ParseFault("refuse:5:3@S1");
  ASSERT_TRUE(rule);
  EXPECT_EQ(rule->fault, Fault::RefuseRecord);
  EXPECT_EQ(rule->n, 5);
  EXPECT_EQ(rule->times, 3);
  EXPECT_EQ(rule->command, "S1");
  EXPECT_EQ(ParseFault("slow@F")->n, sim::DefaultOfRow);
  EXPECT_EQ(ParseFault("slow:7")->n, 7);
}

TEST(FaultNames, WhatIsNoFaultIsRefused) {
  Zem zem;
  for (std::string_view text :
       {"", "noise", "Silent", "short:", "short:x", "short:1:", "short:-1", "short:1:2:3", "short@",
        "short:1x", " short", "short:99999999999"}) {
    EXPECT_FALSE(ParseFault(text)) << text;
    EXPECT_FALSE(zem.Fail(text)) << text;
  }
}

TEST(Faults, SilentHearsNothing) {
  Exchange pc = With("silent");
  EXPECT_EQ(pc.Ask("E"), "");
  EXPECT_EQ(pc.Ask("F"), "");
  pc.Ask("Z");
  EXPECT_FALSE(pc.zem.Motor().offsets.zeroAdvance);
  EXPECT_TRUE(pc.zem.History().empty());
  EXPECT_TRUE(pc.zem.Fail("clear"));
  EXPECT_EQ(pc.Ask("E"), "AX");
}

TEST(Faults, SilentOnOneCommandHearsTheOthers) {
  Exchange pc = With("silent@R3");
  EXPECT_EQ(pc.Ask("R3\x05"), "");
  EXPECT_EQ(pc.zem.Motor().offsets.advance, 0);
  EXPECT_EQ(pc.Ask("R4\x05"), "AX");
}

TEST(Faults, AFamilyIsNamedByItsLetter) {
  Exchange pc = With("silent@R");
  EXPECT_EQ(pc.Ask("R3\x05"), "");
  EXPECT_EQ(pc.Ask("RU\xFF"), "");
  EXPECT_EQ(pc.Ask("E"), "AX");
}

TEST(Faults, SilentAFewTimesOnly) {
  Exchange pc = With("silent:0:2");
  EXPECT_EQ(pc.Ask("E"), "");
  EXPECT_EQ(pc.Ask("E"), "");
  EXPECT_EQ(pc.Ask("E"), "AX");
}

TEST(Faults, SilentAfterSomeCommands) {
  Exchange pc = With("silent-after:2");
  EXPECT_EQ(pc.Ask("E"), "AX");
  EXPECT_EQ(pc.Ask("F").size(), 27u);
  EXPECT_EQ(pc.Ask("E"), "");
  EXPECT_EQ(pc.Ask("E"), "");
}

TEST(Faults, SilentAfterSomeBytesCutsTheReply) {
  Exchange pc = With("silent-after-bytes:12");
  EXPECT_EQ(pc.Ask("E"), "AX");
  EXPECT_EQ(pc.Ask("F").size(), 10u);
  EXPECT_EQ(pc.Ask("E"), "");
}

TEST(Faults, SlowAnswersLate) {
  Exchange pc{.zem = Zem()};
  pc.zem.Fail("slow:30@E");
  pc.Ask("E");
  EXPECT_EQ(pc.arrived[0].atUs, 32'084);
  EXPECT_EQ(pc.arrived[1].atUs, 33'125);
  const std::int64_t before = pc.nowUs;
  pc.Ask("F");
  EXPECT_EQ(pc.arrived[0].atUs - before, 2084);
}

TEST(Faults, ShortReplyLeavesOutItsEnd) {
  Exchange pc = With("short");
  EXPECT_EQ(pc.Ask("E"), "A");
  EXPECT_EQ(pc.Ask("F").size(), 26u);
  EXPECT_EQ(pc.Ask("G").size(), 42u);
  EXPECT_EQ(pc.Ask("B").size(), 18u);
  Exchange more = With("short:30");
  EXPECT_EQ(more.Ask("F"), "");
}

TEST(Faults, LongReplyHasMore) {
  Exchange pc = With("long");
  EXPECT_EQ(pc.Ask("E"), "AX\xFF");
  EXPECT_EQ(pc.Ask("F").size(), 28u);
  Exchange more = With("long:2");
  EXPECT_EQ(more.Ask("E"), "AX\xFF\0"s);
}

TEST(Faults, GarbageComesBeforeTheReply) {
  Exchange pc = With("garbage");
  EXPECT_EQ(pc.Ask("E"),
            "\xFF\0\x0D"
            "AX"s);
  Exchange more = With("garbage:9");
  EXPECT_EQ(more.Ask("E"),
            "\xFF\0\x0D\x9C"
            "A\x7FP\xE3\xFF"
            "AX"s);
}

TEST(Faults, WrongSecondByteLeavesTheRest) {
  Exchange pc = With("wrong-second");
  EXPECT_EQ(pc.Ask("E"), "A?");
  EXPECT_EQ(pc.Ask("P2"), "A?");
  EXPECT_EQ(pc.Ask(S1(0xB640, {1})), "P?");
  Exchange other = With("wrong-second:86@P1");
  EXPECT_EQ(other.Ask("E"), "AX");
  EXPECT_EQ(other.Ask("P1"), "AV");
}

TEST(Faults, WrongSecondByteGoesBeforeGarbageWhateverTheOrder) {
  Exchange pc = With("garbage:1");
  pc.zem.Fail("wrong-second");
  EXPECT_EQ(pc.Ask("E"),
            "\xFF"
            "A?");
}

TEST(Faults, RefusesTheNthRecordSoOften) {
  Exchange pc = With("refuse:3:2");
  const auto records = RecordsOf(sim::DefaultImage());
  pc.Ask("P1");
  EXPECT_EQ(pc.Ask(records[0]), "PN");
  EXPECT_EQ(pc.Ask(records[1]), "PN");
  EXPECT_EQ(pc.Ask(records[2]), "PR");
  EXPECT_EQ(pc.Ask("P1"), "AX");
  EXPECT_EQ(pc.Ask(records[2]), "PR");
  EXPECT_EQ(pc.Ask("P1"), "AX");
  for (std::size_t i = 2; i < 32; ++i) EXPECT_EQ(pc.Ask(records[i]), "PN");
  EXPECT_EQ(pc.Ask(records[32]), "PC");
}

TEST(Faults, RefusesEveryRecordInItsTurn) {
  for (int number = 1; number <= 33; ++number) {
    Exchange pc = With("refuse:" + std::to_string(number));
    pc.Ask("P1");
    int refused = 0;
    for (const std::string& record : RecordsOf(sim::DefaultImage())) {
      std::string answer = pc.Ask(record);
      if (answer == "PR") {
        ++refused;
        EXPECT_EQ(pc.Ask("P1"), "AX");
        answer = pc.Ask(record);
      }
      ASSERT_EQ(answer, record[1] == '9' ? "PC" : "PN");
    }
    EXPECT_EQ(refused, 1) << number;
  }
}

TEST(Faults, RefusesForEver) {
  Exchange pc = With("refuse:1:0");
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(pc.Ask("P1"), "AX");
    EXPECT_EQ(pc.Ask(S1(0xB600, {1})), "PR");
  }
}

TEST(Faults, LostAnswerIsTheNthAndTheCommandIsDone) {
  Exchange pc = With("lost:2@R");
  EXPECT_EQ(pc.Ask("R3\x05"), "AX");
  EXPECT_EQ(pc.Ask("R4\x05"), "");
  EXPECT_EQ(pc.zem.Motor().offsets.gama, 5);
  EXPECT_EQ(pc.Ask("R4\x05"), "AX");
}

TEST(Faults, LostEndAnswerIsGivenWhenAskedAgain) {
  Exchange pc = With("lost@S9");
  pc.Ask("P2");
  pc.Ask(S1(0xB640, {9}));
  EXPECT_EQ(pc.Ask("S9030000FC"), "");
  EXPECT_EQ(pc.zem.Memory()[0x40], 9);
  EXPECT_EQ(pc.Ask("S9030000FC"), "PC");
  EXPECT_EQ(pc.zem.MemoryVersion(), 1);
}

TEST(Faults, EchoSendsEveryByteBack) {
  Exchange pc = With("echo");
  EXPECT_EQ(pc.Ask("E"), "EAX");
  EXPECT_EQ(pc.Ask("R3\x05"),
            "R3\x05"
            "AX");
}

TEST(Faults, UnplugLosesWhatIsOnTheLine) {
  Exchange pc;
  pc.zem.Receive("F", 0);
  EXPECT_EQ(pc.zem.Advance(10'000).size(), 8u);
  EXPECT_TRUE(pc.zem.Fail("unplug"));
  EXPECT_FALSE(pc.zem.Plugged());
  EXPECT_TRUE(pc.zem.Advance(100'000).empty());
  pc.nowUs = 100'000;
  EXPECT_EQ(pc.Ask("E"), "");
  EXPECT_TRUE(pc.zem.Fail("replug"));
  EXPECT_TRUE(pc.zem.Plugged());
  EXPECT_EQ(pc.Ask("E"), "AX");
}

TEST(Faults, UnplugInTheMiddleOfACommandForgetsIt) {
  Exchange pc;
  pc.zem.Receive("R3", 0);
  pc.zem.Advance(5000);
  pc.zem.Unplug();
  pc.zem.Replug();
  pc.nowUs = 6000;
  EXPECT_EQ(pc.Ask("E"), "AX");
}

TEST(Faults, UnplugAtTheNthCommand) {
  Exchange pc = With("unplug:2@F");
  EXPECT_EQ(pc.Ask("F").size(), 27u);
  EXPECT_EQ(pc.Ask("E"), "AX");
  EXPECT_EQ(pc.Ask("F"), "");
  EXPECT_FALSE(pc.zem.Plugged());
  pc.zem.Replug();
  EXPECT_EQ(pc.Ask("F").size(), 27u);
}

TEST(Faults, UnplugAtEveryNthCommandSoOften) {
  Exchange pc = With("unplug:2:2");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(pc.Ask("E"), "AX");
    EXPECT_EQ(pc.Ask("E"), "");
    EXPECT_FALSE(pc.zem.Plugged());
    pc.zem.Replug();
  }
  EXPECT_EQ(pc.Ask("E"), "AX");
  EXPECT_EQ(pc.Ask("E"), "AX");
}

TEST(Faults, TheEngineRunsOnWhileUnplugged) {
  Exchange pc;
  pc.zem.Unplug();
  pc.zem.Motor().driver.Hold(30);
  pc.Wait(5);
  EXPECT_GT(pc.zem.Motor().Rpm(), 2000);
}

TEST(Faults, ARuleInOneLine) {
  Exchange pc;
  pc.zem.Fail({.fault = Fault::WrongSecondByte, .n = '!', .command = "E"});
  EXPECT_EQ(pc.Ask("E"), "A!");
}

// Each fault of the table, in force and then cleared, leaves a ZEM that answers.
TEST(Faults, NoneOutlivesItsClearing) {
  for (const sim::FaultRow& row : sim::FaultRows()) {
    Exchange pc = With(row.name);
    for (std::string_view command :
         {"E", "F", "G", "B", "R3\x01", "P2", "S104B6370509", "S9030000FC"}) {
      pc.Ask(command);
    }
    pc.zem.Fail("clear");
    pc.zem.Fail("replug");
    EXPECT_EQ(pc.Ask("E"), "AX") << row.name;
    EXPECT_EQ(pc.Ask("F").size(), 27u) << row.name;
  }
}

}  // namespace
