// The run-time offset commands, the read-back and the pending commands.
#include "link/onfly.h"

#include "platform/frame.h"
#include "support/headless/linktest.h"
#include "support/headless/zemdevice.h"

namespace {

class OnflyTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    ASSERT_TRUE(OpenCommPort(27, 0));
  }
  void TakeProme() { EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR"); }
};

// ---- one table of the exchanges -----------------------------------------------------------------

struct Command {
  const char* name;
  void (*prepare)();
  void (*send)();
  int* pending;
  std::string wire;
  float code;
  float promCode;
};
void PrintTo(const Command& command, std::ostream* out) { *out << command.name; }

const Command Commands[] = {
    {"ADDADV", [] { OnAdvance = -10; }, ADDADV, &PendAdv, "R3\xAA", 2, 99},
    {"gama", [] { OnGama = -0.4; }, gama, &PendGama, "R4\xE6", 3, 3},
    {"fik", [] { OnTpsBlend = 1.5; }, fik, &PendTpsBlend, "R5L", 7, 7},
    {"turn", [] { OnInjOffset = 1.07; }, turn, &PendInj, "R6\x09", 4, 4},
    {"ogpo", [] { OnGpo = -30; }, ogpo, &PendGpo, "R7\xB4", 5, 5},
};

class ExchangeTest : public OnflyTest, public ::testing::WithParamInterface<Command> {
 protected:
  void Run() {
    GetParam().prepare();
    *GetParam().pending = 1;
    CommError = 0;
    GetParam().send();
    EXPECT_EQ(*GetParam().pending, 0);
  }
};

TEST_P(ExchangeTest, AcceptedValueGoesOutInThreeBytes) {
  AnswerInTurn({{3, "AX"}});
  Run();
  EXPECT_EQ(Sent(), GetParam().wire);
  EXPECT_EQ(CommError, 0);
  EXPECT_EQ(MSComm1.RThreshold, 2);
  EXPECT_EQ(MSComm1.InputLen, 0);
  EXPECT_TRUE(MSComm1.unread.empty());
}

TEST_P(ExchangeTest, BytesStandTenMillisecondsApart) {
  std::vector<std::int64_t> times;
  DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t>, std::int64_t nowUs) {
    times.push_back(nowUs);
    if (times.size() == 3) DeliverAt("COM1", nowUs + 1000, {'A', 'X'});
  };
  Run();
  EXPECT_EQ(times, (std::vector<std::int64_t>{0, 10000, 20000}));
}

TEST_P(ExchangeTest, SilenceLeavesTheCodeAfterTheLimit) {
  Run();
  EXPECT_EQ(CommError, GetParam().code);
  EXPECT_GE(WaitCount, 32700);
  EXPECT_LT(WaitCount, 32700.2F);
}

TEST_P(ExchangeTest, WrongFirstByteLeavesTheCode) {
  AnswerInTurn({{3, "BX"}});
  Run();
  EXPECT_EQ(CommError, GetParam().code);
}

TEST_P(ExchangeTest, WrongSecondByteTellsOfThePromEachTime) {
  AnswerInTurn({{3, "AV"}, {3, "AV"}});
  Run();
  EXPECT_EQ(CommError, GetParam().promCode);
  TakeProme();
  Run();
  TakeProme();
}

TEST_P(ExchangeTest, StaleReplyInTheBufferIsNotTaken) {
  RxBuffer = {'A', 'X'};
  Run();
  EXPECT_EQ(CommError, GetParam().code);
}

TEST_P(ExchangeTest, EntryMadeWhileTheAnswerIsAwaitedIsTheNextCommand) {
  GetParam().prepare();
  *GetParam().pending = 1;
  AfterMs(25, [] {
    EXPECT_EQ(*GetParam().pending, 0);
    *GetParam().pending = 1;
    DeliverAt("COM1", NowUs() + 1000, {'A', 'X'});
  });
  GetParam().send();
  EXPECT_EQ(CommError, 0);
  EXPECT_EQ(*GetParam().pending, 1);
}

TEST_P(ExchangeTest, LeavingEndsTheWaitAtOnce) {
  AfterMs(50, [] { MonitorStop = 1; });
  Run();
  EXPECT_EQ(CommError, GetParam().code);
  EXPECT_LE(NowUs(), 51000);
}

TEST_P(ExchangeTest, PulledCableEndsTheWaitAtOnce) {
  AfterMs(50, [] { DeviceNamed("COM1")->gone = true; });
  Run();
  EXPECT_EQ(CommError, GetParam().code);
  EXPECT_LE(NowUs(), 51000);
}

INSTANTIATE_TEST_SUITE_P(Commands, ExchangeTest, ::testing::ValuesIn(Commands),
                         [](const auto& test) { return std::string(test.param.name); });

// ---- what is special about each -----------------------------------------------------------------

TEST_F(OnflyTest, OpeningAdvanceGoesBackToZero) {
  AnswerInTurn({{3, "AX"}});
  OnAdvance = 7;
  OnflyInit = 1;
  ADDADV();
  EXPECT_EQ(OnAdvance, 0);
  EXPECT_EQ(Sent(), std::string("R3\0", 3));
}

TEST_F(OnflyTest, OpeningGamaSendsTheOneSentLast) {
  AnswerInTurn({{3, "AX"}, {3, "AX"}});
  OnGama = 0.2;
  gama();
  OnGama = 0.3;
  OnflyInit = 1;
  gama();
  EXPECT_EQ(Sent(), "R4\x33R4\x33");
  EXPECT_EQ(LastGama, 0.2);
}

TEST_F(OnflyTest, OpeningInjectorOffsetIsTheOneReadBack) {
  AnswerInTurn({{3, "AX"}});
  OnInjOffset = 3;
  InjectorOffset = -1.5;
  OnflyInit = 1;
  turn();
  EXPECT_EQ(Sent(), "R6\x8C");
  EXPECT_EQ(OnInjOffset, -1.5);
}

TEST_F(OnflyTest, TurnKeepsTheRoundedValue) {
  AnswerInTurn({{3, "AX"}});
  OnInjOffset = 1.07;
  turn();
  EXPECT_EQ(OnInjOffset, 1.125);
}

TEST_F(OnflyTest, OpeningGpoGoesBackToZero) {
  AnswerInTurn({{3, "AX"}});
  OnGpo = 20;
  OnflyInit = 1;
  ogpo();
  EXPECT_EQ(OnGpo, 0);
  EXPECT_EQ(Sent(), std::string("R7\0", 3));
}

TEST_F(OnflyTest, AfrOffsetIsTakenFromByte19) {
  AnswerInTurn({{3, "AX"}, {3, "AX"}, {3, "AX"}, {3, "AX"}});
  LiveFrame frame{};
  frame[19] = 50;
  DecodeFrame(frame, FrameReader::Monitor);
  oafr(60);
  EXPECT_EQ(AfrOffset, -10);
  oafr(45);
  EXPECT_EQ(AfrOffset, 5);
  oafr(250);
  EXPECT_EQ(AfrOffset, -200) << "the shown offset follows the value, the byte is clipped";
  OnflyInit = 1;
  oafr(99);
  EXPECT_EQ(AfrOffset, 0);
  EXPECT_EQ(Sent(), std::string("RO\x0ARO\xFBRO\x7FRO\0", 12));
}

TEST_F(OnflyTest, AfrTestsOnlyTheFirstByte) {
  AnswerInTurn({{3, "AV"}, {3, "BX"}});
  PendAfr = 1;
  oafr(0);
  EXPECT_EQ(PendAfr, 0);
  EXPECT_EQ(CommError, 0);
  PendAfr = 1;
  oafr(0);
  EXPECT_EQ(PendAfr, 0);
  EXPECT_EQ(CommError, 6);
}

TEST_F(OnflyTest, TpsBlendTakesTheTogMarkBack) {
  TogChanged = 1;
  AnswerInTurn({{3, "AX"}});
  fik();
  EXPECT_EQ(TogChanged, 0);
}

TEST_F(OnflyTest, TogGoesOutInTwoExchanges) {
  AnswerInTurn({{3, "AX"}, {3, "AX"}});
  OnTog = 10;
  PendTog = 1;
  settog();
  EXPECT_EQ(Sent(), "R8\x04R9\xE2");
  EXPECT_EQ(PendTog, 0);
  EXPECT_EQ(TogChanged, 1);
  EXPECT_EQ(CommError, 0);
}

TEST_F(OnflyTest, TogThatFailsAtItsHighByteSendsNoLowByte) {
  struct Case {
    const char* reply;
    bool prom;
  };
  for (const Case& c : {Case{"", false}, Case{"BX", false}, Case{"AV", true}}) {
    ForgetWritten("COM1");
    AnswerInTurn({{3, c.reply}, {3, "AX"}});
    OnTog = 10;
    PendTog = TogChanged = 1;
    CommError = 0;
    settog();
    EXPECT_EQ(Sent(), "R8\x04");
    EXPECT_EQ(CommError, 8);
    EXPECT_EQ(PendTog + TogChanged, 0);
    if (c.prom) TakeProme();
  }
}

TEST_F(OnflyTest, TogThatFailsAtItsLowByteIsNotMarked) {
  for (const char* reply : {"", "BX", "AV"}) {
    AnswerInTurn({{3, "AX"}, {3, reply}});
    OnTog = 10;
    PendTog = TogChanged = 1;
    CommError = 0;
    settog();
    EXPECT_EQ(CommError, 8);
    EXPECT_EQ(PendTog + TogChanged, 0);
    if (std::string(reply) == "AV") TakeProme();
  }
}

TEST_F(OnflyTest, LoopControlSaysWhetherTheLoopIsClosed) {
  AnswerInTurn({{3, "AX"}, {3, "AX"}});
  PendEgo = 1;
  togego();
  EXPECT_EQ(PendEgo, 0);
  ClosedLoop = false;
  togego();
  EXPECT_EQ(Sent(), std::string("RU\0RU\xFF", 6));
  EXPECT_EQ(MSComm1.RThreshold, 1);
  EXPECT_EQ(MSComm1.InputLen, 0);
}

TEST_F(OnflyTest, LoopControlAskedForAgainWhileItIsSentStaysPending) {
  PendEgo = 1;
  ClosedLoop = false;
  AfterMs(35, [] {
    ClosedLoop = true;
    PendEgo = 1;
    DeliverAt("COM1", NowUs() + 1000, {'A', 'X'});
  });
  togego();
  EXPECT_EQ(PendEgo, 1);
  EXPECT_TRUE(LoopForcedOpen);
  EXPECT_EQ(Sent(), "RU\xFF");
}

TEST_F(OnflyTest, OnlyAnAcceptedReleaseEndsForcedOpenLoop) {
  ClosedLoop = false;
  togego();
  EXPECT_TRUE(LoopForcedOpen) << "without an answer the unit may have heard it";
  ClosedLoop = true;
  togego();
  EXPECT_TRUE(LoopForcedOpen) << "no answer to the release";
  AnswerInTurn({{3, "?"}, {3, "AX"}});
  togego();
  EXPECT_TRUE(LoopForcedOpen);
  togego();
  EXPECT_FALSE(LoopForcedOpen);
}

TEST_F(OnflyTest, LoopControlLeavesNoByteInFrontOfTheNextFrame) {
  AnswerInTurn({{3, "AX"}, {1, std::string(27, 'f')}});
  togego();
  EXPECT_TRUE(MSComm1.unread.empty());
  MSComm1.RThreshold = 27;
  RxBuffer.clear();
  MSComm1.Output("F");
  ASSERT_EQ(PollingWait(WaitForFrame), WaitEnd::Reply);
  EXPECT_EQ(RxBuffer, Bytes(27, 'f'));
}

TEST_F(OnflyTest, AnyReplyContentsLoopControl) {
  AnswerInTurn({{3, "?"}});
  PendEgo = 1;
  togego();
  EXPECT_EQ(PendEgo, 0);
  EXPECT_EQ(CommError, 0);
  EXPECT_LE(NowUs(), 60000);
}

TEST_F(OnflyTest, LoopControlPassesOverSilence) {
  PendEgo = 1;
  togego();
  EXPECT_EQ(PendEgo, 0);
  EXPECT_EQ(CommError, 0);
  EXPECT_GE(WaitCount, 32700);
}

TEST_F(OnflyTest, ReleaseOnLeavingIsSentAndDoesNotKeepThePortOfASilentUnit) {
  MonitorStop = 1;
  togego();
  EXPECT_EQ(Sent(), std::string("RU\0", 3));
  EXPECT_LE(NowUs(), 1'100'000);
  AnswerInTurn({{3, "AX"}});
  togego();
  EXPECT_TRUE(MSComm1.unread.empty());
}

TEST_F(OnflyTest, LeavingDuringLoopControlEndsItsWait) {
  AfterMs(50, [] { MonitorStop = 1; });
  togego();
  EXPECT_LE(NowUs(), 51000);
}

TEST_F(OnflyTest, ZeroAdvanceCommandsWaitForNothing) {
  PendClearZero = PendZeroAdv = 1;
  const std::int64_t passes = PassCount();
  cleartdc();
  EXPECT_EQ(PendClearZero, 0);
  EXPECT_EQ(PendZeroAdv, 1);
  EXPECT_EQ(MSComm1.RThreshold, 1);
  settdc();
  EXPECT_EQ(PendZeroAdv, 0);
  EXPECT_EQ(Sent(), "CZ");
  EXPECT_EQ(PassCount() - passes, 2);
  EXPECT_EQ(NowUs(), 2 * (10000 + PassMicroseconds));
}

TEST_F(OnflyTest, KillWaitsATenthOfASecond) {
  KillEngine();
  EXPECT_EQ(Sent(), "K");
  EXPECT_EQ(NowUs(), 100000);
}

// ---- read-back ----------------------------------------------------------------------------------

std::string ReadBack(std::string_view firstThree) {
  return "S1130040" + std::string(firstThree) + std::string(26, '0') + "FF" + "\r";
}

TEST_F(OnflyTest, ReadBackGivesFlagsGamaAndInjectorOffset) {
  AnswerInTurn({{1, ReadBack("FF1B0C")}});
  getgama();
  EXPECT_EQ(Sent(), "G");
  EXPECT_EQ(CommError, 0);
  EXPECT_EQ(OptionFlags, 248);
  EXPECT_DOUBLE_EQ(GamaNow, 27 / 2.7128);
  EXPECT_EQ(InjectorOffset, 1.5);
  EXPECT_EQ(MSComm1.RThreshold, 43);
  EXPECT_EQ(MSComm1.InputLen, 43);
}

TEST_F(OnflyTest, ReadBackKnowsSignsAtEveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    char data[7];
    std::snprintf(data, sizeof data, "%02X%02X%02X", byte, byte, byte);
    AnswerInTurn({{1, ReadBack(data)}});
    getgama();
    ASSERT_EQ(CommError, 0) << byte;
    EXPECT_EQ(OptionFlags, byte & 248);
    EXPECT_DOUBLE_EQ(GamaNow, (byte < 128 ? byte : byte - 256) / 2.7128);
    EXPECT_EQ(InjectorOffset, byte < 128 ? byte / 8.0 : -(byte - 128) / 8.0);
  }
}

TEST_F(OnflyTest, ReadBackWithABadDigitOrEndLeavesCodeOneAndTheOldValues) {
  OptionFlags = 8;
  GamaNow = 5;
  InjectorOffset = 2;
  std::vector<std::string> bad;
  for (std::size_t at = 8; at < 14; ++at)
    for (char digit : {'a', 'g', 'G', '/', ':', '@', ' ', '\0', '\xFF'}) {
      std::string reply = ReadBack("FF1B0C");
      reply[at] = digit;
      bad.push_back(reply);
    }
  std::string noEnd = ReadBack("FF1B0C");
  noEnd.back() = '\n';
  bad.push_back(noEnd);
  bad.push_back("");
  bad.push_back(ReadBack("FF1B0C").substr(1));
  for (const std::string& reply : bad) {
    ASSERT_TRUE(OpenCommPort(27, 0));
    AnswerInTurn({{1, reply}});
    CommError = 0;
    getgama();
    EXPECT_EQ(CommError, 1) << reply;
    EXPECT_EQ(OptionFlags, 8);
    EXPECT_EQ(GamaNow, 5);
    EXPECT_EQ(InjectorOffset, 2);
  }
}

TEST_F(OnflyTest, LoadedProgramIsNameAndVersion) {
  AnswerInTurn({{1, std::string("BSTREET1\0\0\0\0\0\0"
                                "20105",
                                19)}});
  const auto program = QueryLoadedProgram();
  ASSERT_TRUE(program.has_value());
  EXPECT_EQ(program->binName, "STREET1");
  EXPECT_EQ(program->promVersion, "20105");
  EXPECT_EQ(Sent(), "B");
  EXPECT_EQ(MSComm1.RThreshold, 19);
  EXPECT_EQ(MSComm1.InputLen, 0);
}

TEST_F(OnflyTest, LoadedProgramOfFullLengthNeedsNoEnd) {
  AnswerInTurn({{1, "BABCDEFGHIJKLM20105"}});
  const auto program = QueryLoadedProgram();
  ASSERT_TRUE(program.has_value());
  EXPECT_EQ(program->binName, "ABCDEFGHIJKLM");
  EXPECT_EQ(program->promVersion, "20105");
}

TEST_F(OnflyTest, LoadedProgramWithACharacterOutsideItsRangeIsNone) {
  for (int at = 1; at < 19; ++at)
    for (int byte = 1; byte < 256; ++byte) {
      std::string reply = "BABCDEFGHIJKLM20105";
      reply[static_cast<std::size_t>(at)] = static_cast<char>(byte);
      AnswerInTurn({{1, reply}});
      ASSERT_EQ(QueryLoadedProgram().has_value(), byte >= 32 && byte <= 122) << at << ' ' << byte;
    }
}

TEST_F(OnflyTest, LoadedProgramOfASilentUnitIsNone) {
  EXPECT_FALSE(QueryLoadedProgram().has_value());
  EXPECT_EQ(WaitCount, 32720);
}

// ---- pending commands ---------------------------------------------------------------------------

class PendingTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    device.emplace();
    ASSERT_TRUE(OpenCommPort(27, 0));
    OnTog = 10;
    for (int* flag : all) *flag = 1;
  }
  void TearDown() override {
    device.reset();
    LinkTest::TearDown();
  }
  const std::vector<int*> all = {&PendAdv, &PendGama,     &PendTog,       &PendAfr,    &PendGpo,
                                 &PendInj, &PendTpsBlend, &PendClearZero, &PendZeroAdv};
  std::optional<ZemDevice> device;
};

TEST_F(PendingTest, CommandsGoOutInTheOrderOfTheLoop) {
  PendEgo = 1;
  SendPendingOffsets();
  EXPECT_EQ(device->TakeHistory(),
            (std::vector<std::string>{"R3 00", "R4 00", "R8 04", "R9 E2", "RO 00", "R7 00", "R6 00",
                                      "R5 00", "C", "Z"}));
  for (int* flag : all) EXPECT_EQ(*flag, 0);
  EXPECT_EQ(PendEgo, 1);
}

TEST_F(PendingTest, ClearedAfrOffsetIsNoneWhateverTheBaseIsByNow) {
  LiveFrame frame{};
  frame[19] = 137;
  DecodeFrame(frame, FrameReader::Monitor);
  for (int* flag : all) *flag = 0;
  OnAfr = 117;
  PendAfr = 1;
  AfrCleared = true;
  SendPendingOffsets();
  EXPECT_EQ(AfrOffset, 0);
  OnAfr = 130;
  PendAfr = 1;
  SendPendingOffsets();
  EXPECT_EQ(AfrOffset, 7);
  EXPECT_EQ(device->TakeHistory(), (std::vector<std::string>{"RO 00", "RO F9"}));
}

TEST_F(PendingTest, OptionChosenWhileItsCommandIsSentStaysPending) {
  for (int* flag : all) *flag = 0;
  for (int* flag : {&PendClearZero, &PendZeroAdv}) {
    *flag = 1;
    AfterMs(10, [flag] { *flag = 1; });
    SendPendingOffsets();
    EXPECT_EQ(*flag, 1);
    *flag = 0;
  }
}

TEST_F(PendingTest, FailureKeepsTheRestPending) {
  device->Fail("silent@R8");
  SendPendingOffsets();
  EXPECT_EQ(CommError, 8);
  EXPECT_EQ(PendTog, 0);
  EXPECT_EQ(PendAfr, 1);
  EXPECT_EQ(PendZeroAdv, 1);
}

TEST_F(PendingTest, LeavingSendsNoMore) {
  MonitorStop = 1;
  SendPendingOffsets();
  EXPECT_TRUE(device->TakeHistory().empty());
}

TEST_F(OnflyTest, ResetPutsStartValuesBack) {
  PendAdv = PendEgo = OnflyInit = TogChanged = 1;
  OnAdvance = OnAfr = LastGama = AfrOffset = GamaNow = InjectorOffset = 3;
  AfrCleared = LoopForcedOpen = true;
  ResetOnflyState();
  EXPECT_FALSE(AfrCleared || LoopForcedOpen);
  EXPECT_EQ(PendAdv + PendEgo + OnflyInit + TogChanged, 0);
  EXPECT_EQ(OnAdvance + OnAfr + LastGama + AfrOffset + GamaNow + InjectorOffset, 0);
}

}  // namespace
