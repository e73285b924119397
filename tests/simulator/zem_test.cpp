// The ZEM's side of the command protocol, byte for byte.
#include "simulator/zem.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "exchange.h"

namespace {

using sim::Image;
using sim::Zem;
using namespace std::string_literals;

TEST(ZemCommands, LinkTestIsAnsweredAX) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("E"), "AX");
  EXPECT_EQ(pc.zem.History().back(), "E");
}

TEST(ZemCommands, OldPromAnswersAWithoutX) {
  Exchange pc{.zem = Zem({.oldProm = true})};
  EXPECT_EQ(pc.Ask("E"), "AV");
  EXPECT_EQ(pc.Ask("R3\x04"), "AV");
  EXPECT_EQ(pc.Ask("P1"), "AV");
}

TEST(ZemCommands, FrameHas27Bytes) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("F").size(), 27u);
}

TEST(ZemCommands, CommandsWithoutReplyStaySilent) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("C"), "");
  EXPECT_EQ(pc.Ask("Z"), "");
  EXPECT_TRUE(pc.zem.Motor().offsets.zeroAdvance);
  EXPECT_EQ(pc.Ask("C"), "");
  EXPECT_FALSE(pc.zem.Motor().offsets.zeroAdvance);
  EXPECT_EQ(pc.Ask("K"), "");
  EXPECT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Off);
}

TEST(ZemCommands, NoiseIsIgnored) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("\xFFq!\r\nE"), "AX");
}

TEST(ZemCommands, ReadBackIsAnS1LineOf43BytesEndingIn13) {
  Exchange pc;
  // Flags, gama, injector 0.5 ms, advance, blend 0.84 V, TOG 6.87 ms; then what is 0.
  EXPECT_EQ(pc.Ask("G"),
            "S1130040F80004002B035B000000000000000000"
            "27\r");
}

TEST(ZemCommands, ReadBackTellsWhatWasSet) {
  Exchange pc;
  pc.Ask("R4\x66");  // +102/255: 40 %
  pc.Ask("R6\x8C");  // -12/8: -1.5 ms
  const std::string plus = pc.Ask("G");
  EXPECT_EQ(plus.substr(8, 6), "F86D8C");      // 109 / 2.7128 is 40.2 %
  pc.Ask("R4\xE6");                            // -40 %
  EXPECT_EQ(pc.Ask("G").substr(10, 2), "93");  // -109
}

TEST(ZemCommands, ReadBackTellsTheOptionFlagsOfTheImage) {
  Image image = sim::DefaultImage();
  image[0] = 0x48;
  Exchange pc{.zem = Zem({}, image)};
  EXPECT_EQ(pc.Ask("G").substr(8, 2), "48");
}

TEST(ZemCommands, NameReplyHas19BytesWithNameAndVersion) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("B"),
            "BSIMV8\0\0\0\0\0\0\0\0"
            "20105"s);
  pc.zem.SetName("ABCDEFGHIJKLMNOP");
  EXPECT_EQ(pc.Ask("B"),
            "BABCDEFGHIJKLM"
            "20105");
  pc.zem.SetName("");
  EXPECT_EQ(pc.Ask("B"),
            "B\0\0\0\0\0\0\0\0\0\0\0\0\0"
            "20105"s);
}

TEST(ZemCommands, ShortVersionEndsInZero) {
  Exchange pc{.zem = Zem({.promVersion = "201"})};
  EXPECT_EQ(pc.Ask("B").substr(14), "201\0\0"s);
}

TEST(ZemOffsets, EveryCodeIsAcceptedWithAnyValue) {
  Exchange pc{.zem = Zem({.paced = false})};
  for (char code : "3456789OU"s) {
    for (int value = 0; value < 256; ++value) {
      ASSERT_EQ(pc.Ask(std::string{'R', code, static_cast<char>(value)}), "AX") << code << value;
    }
  }
}

TEST(ZemOffsets, ValuesArriveWhereTheyBelong) {
  Exchange pc;
  for (std::string_view command :
       {"R3\x81", "R4\x82", "R5\x83", "R6\x84", "R7\x85", "R8\x86", "R9\x87", "RO\x88", "RU\xFF"}) {
    pc.Ask(command);
  }
  const sim::Offsets& o = pc.zem.Motor().offsets;
  EXPECT_EQ(o.advance, 0x81);
  EXPECT_EQ(o.gama, 0x82);
  EXPECT_EQ(o.tpsBlend, 0x83);
  EXPECT_EQ(o.injector, 0x84);
  EXPECT_EQ(o.gpo, 0x85);
  EXPECT_EQ(o.togHigh, 0x86);
  EXPECT_EQ(o.togLow, 0x87);
  EXPECT_EQ(o.afr, 0x88);
  EXPECT_TRUE(o.openLoop);
  pc.Ask("RU\0"s);
  EXPECT_FALSE(o.openLoop);
  EXPECT_EQ(pc.zem.History().back(), "RU 00");
}

TEST(ZemOffsets, ValueBytesThatLookLikeCommandsAreValues) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("R3E"), "AX");
  EXPECT_EQ(pc.zem.Motor().offsets.advance, 'E');
}

TEST(ZemOffsets, AbandonedCommandGivesWayToANewOne) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("RE"), "AX");
  EXPECT_EQ(pc.zem.History().back(), "E");
  EXPECT_EQ(pc.Ask("PRE"), "AX");
  EXPECT_EQ(pc.zem.History().back(), "E");
}

TEST(ZemOffsets, HalfACommandIsForgottenAfterSilence) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("R3"), "");  // ends when the silence has been noticed
  EXPECT_GE(pc.nowUs, Zem::SilenceUs);
  EXPECT_EQ(pc.Ask("E"), "AX");
}

TEST(ZemOffsets, APauseInsideACommandIsNoSilence) {
  Exchange pc;
  pc.zem.Receive("R", 0);
  pc.zem.Advance(100'000);
  pc.zem.Receive("3", 100'000);
  pc.zem.Advance(200'000);
  pc.nowUs = 200'000;
  EXPECT_EQ(pc.Ask("\x10"), "AX");
}

TEST(ZemWrite, OneByteIsInAfterTheEndRecord) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("P2"), "AX");
  EXPECT_EQ(pc.Ask("S104B6370508"), "PR");  // the checksum is 09
  EXPECT_EQ(pc.Ask("P2"), "AX");
  EXPECT_EQ(pc.Ask("S104B6370509"), "PN");
  EXPECT_NE(pc.zem.Memory()[0x37], 5);
  EXPECT_EQ(pc.Ask("S9030000FC"), "PC");
  EXPECT_EQ(pc.zem.Memory()[0x37], 5);
  EXPECT_EQ(pc.zem.MemoryVersion(), 1);
}

TEST(ZemWrite, TwoBytesMayRunOverThePageEnd) {
  Exchange pc;
  pc.Ask("P2");
  EXPECT_EQ(pc.Ask(S1(0xB6FF, {0x11, 0x22})), "PN");
  EXPECT_EQ(pc.Ask("S9030000FC"), "PC");
  EXPECT_EQ(pc.zem.Memory()[255], 0x11);
  EXPECT_EQ(pc.zem.Memory()[256], 0x22);
}

TEST(ZemWrite, WhatDoesNotFitIsRefused) {
  Exchange pc;
  const std::string cases[] = {
      S1(0xB7FF, {1, 2}),    S1(0xB5FF, {1}), S1(0xB800, {1}), S1(0xB600, {}),
      S1(0xB600, {1, 2, 3}), "S104b6000045",  "S203B60046",    "S1020000"};
  const Image before = pc.zem.Memory();
  for (const std::string& record : cases) {
    pc.Ask("P2");
    EXPECT_EQ(pc.Ask(record), "PR") << record;
    EXPECT_EQ(pc.Ask("S9030000FC"), "PC");
  }
  EXPECT_EQ(pc.zem.Memory(), before);
  EXPECT_EQ(pc.zem.MemoryVersion(), 0);
}

TEST(ZemWrite, RepeatedRecordsAreAnsweredAgain) {
  Exchange pc;
  pc.Ask("P2");
  EXPECT_EQ(pc.Ask(S1(0xB636, {7})), "PN");
  EXPECT_EQ(pc.Ask(S1(0xB636, {8})), "PN");
  EXPECT_EQ(pc.Ask("S9030000FC"), "PC");
  EXPECT_EQ(pc.Ask("S9030000FC"), "PC");
  EXPECT_EQ(pc.zem.Memory()[0x36], 8);
  EXPECT_EQ(pc.zem.MemoryVersion(), 1);
}

TEST(ZemWrite, RecordsWithoutOpeningAreRefused) {
  Exchange pc;
  EXPECT_EQ(pc.Ask(S1(0xB636, {7})), "PR");
  EXPECT_EQ(pc.Ask("S9030000FC"), "PR");
  EXPECT_EQ(pc.zem.MemoryVersion(), 0);
}

TEST(ZemWrite, AnotherCommandEndsAnUnfinishedWrite) {
  Exchange pc;
  pc.Ask("P2");
  EXPECT_EQ(pc.Ask(S1(0xB636, {7})), "PN");
  EXPECT_EQ(pc.Ask("F").size(), 27u);
  EXPECT_EQ(pc.Ask("S9030000FC"), "PR");
  EXPECT_NE(pc.zem.Memory()[0x36], 7);
}

TEST(ZemWrite, TheEngineRunsOn) {
  Exchange pc;
  pc.Ask("P2");
  pc.Ask(S1(0xB636, {7}));
  EXPECT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Running);
  pc.Ask("S9030000FC");
  EXPECT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Running);
  EXPECT_GT(pc.zem.Motor().Rpm(), 600);
}

Image Counting() {
  Image image;
  for (std::size_t i = 0; i < image.size(); ++i)
    image[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  return image;
}

TEST(ZemProgramming, WholeImageGoesInRecordByRecord) {
  Exchange pc;
  EXPECT_EQ(pc.Ask("P1"), "AX");
  EXPECT_FALSE(pc.zem.CalibrationComplete());
  const std::vector<std::string> records = RecordsOf(Counting());
  ASSERT_EQ(records.size(), 33u);
  for (std::size_t i = 0; i < 32; ++i) ASSERT_EQ(pc.Ask(records[i]), "PN") << records[i];
  EXPECT_EQ(pc.zem.MemoryVersion(), 0);
  EXPECT_EQ(pc.Ask(records[32]), "PC");
  EXPECT_EQ(pc.zem.Memory(), Counting());
  EXPECT_TRUE(pc.zem.CalibrationComplete());
  EXPECT_EQ(pc.zem.MemoryVersion(), 1);
}

TEST(ZemProgramming, KnownRecordsInFullBytes) {
  Exchange pc;
  pc.Ask("P1");
  EXPECT_EQ(pc.Ask("S113B6000000000000000000000000000000000036"), "PN");
  EXPECT_EQ(pc.Ask("S113B7F00000000000000000000000000000000045"), "PN");
  EXPECT_EQ(pc.Ask("S9030000FC"), "PC");
}

TEST(ZemProgramming, StopsTheEngineAndRestartsIt) {
  Exchange pc;
  pc.Ask("R3\x10");
  pc.Ask("P1");
  pc.Wait(5);
  EXPECT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Off);
  EXPECT_LT(pc.zem.Motor().Rpm(), 30);
  for (const std::string& record : RecordsOf(sim::DefaultImage())) pc.Ask(record);
  EXPECT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Cranking);
  EXPECT_EQ(pc.zem.Motor().offsets.advance, 0);
  pc.Wait(5);
  EXPECT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Running);
}

TEST(ZemProgramming, EveryDamagedCharacterIsRefusedAndCanBeSentAgain) {
  Exchange pc{.zem = Zem({.paced = false})};
  const std::string record = RecordsOf(Counting())[3];
  pc.Ask("P1");
  for (std::size_t i = 2; i < record.size(); ++i) {
    std::string damaged = record;
    damaged[i] = damaged[i] == '0' ? '1' : '0';
    ASSERT_EQ(pc.Ask(damaged), "PR") << damaged;
    ASSERT_EQ(pc.Ask("P1"), "AX");
    damaged[i] = 'g';
    ASSERT_EQ(pc.Ask(damaged), "PR") << damaged;
    ASSERT_EQ(pc.Ask("P1"), "AX");
    ASSERT_EQ(pc.Ask(record), "PN");
  }
}

TEST(ZemProgramming, ACutRecordIsRefusedAfterSilence) {
  Exchange pc{.zem = Zem({.paced = false})};
  const std::string record = RecordsOf(Counting())[3];
  for (std::size_t length = 1; length < record.size(); ++length) {
    pc.Ask("P1");
    ASSERT_EQ(pc.Ask(record.substr(0, length)), "PR") << length;
    ASSERT_EQ(pc.Ask("P1"), "AX");
    ASSERT_EQ(pc.Ask(record), "PN");
  }
}

TEST(ZemProgramming, LinkTestAndFrameAreAnsweredWhileItIsOpen) {
  Exchange pc;
  pc.Ask("P1");
  EXPECT_EQ(pc.Ask("E"), "AX");
  EXPECT_EQ(pc.Ask("F").size(), 27u);
  EXPECT_FALSE(pc.zem.CalibrationComplete());
  EXPECT_EQ(pc.Ask("P2"), "AX");
  EXPECT_FALSE(pc.zem.CalibrationComplete());
}

TEST(ZemProgramming, ABrokenProgrammingKeepsTheEngineOff) {
  Exchange pc;
  pc.Ask("P1");
  pc.Ask(RecordsOf(Counting())[0]);
  pc.Wait(60);
  pc.zem.PowerCycle();
  pc.Wait(60);
  EXPECT_EQ(pc.zem.Motor().Now(), sim::Engine::State::Off);
  EXPECT_EQ(pc.zem.MemoryVersion(), 0);
}

}  // namespace
