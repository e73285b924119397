// Programming the control unit: the good road, killing first, the port, and Back at any moment.
#include "link/programmertest.h"
#include "platform/frame.h"
#include "platform/system.h"

namespace {

// ---- the good road ------------------------------------------------------------------------------

TEST_F(ProgramTest, SendsEveryRecordAndIsVerified) {
  OpenProgram_ZEM();
  ExpectProgrammed();
  EXPECT_EQ(Label("Result"), Verified);
  EXPECT_EQ(Label("Hint"), "Press any key to exit.");
  EXPECT_EQ(Label("Record"), "33");
  EXPECT_EQ(Label("Pass"), "1");
  std::vector<std::string> expected = {"E", "P1"};
  expected.insert(expected.end(), 32, "S1");
  expected.push_back("S9");
  EXPECT_EQ(device->TakeHistory(), expected);
}

TEST_F(ProgramTest, WireCarriesTheFileWithoutItsLineEnds) {
  OpenProgram_ZEM();
  std::string expected = "EP1";
  for (char character : S19Of(NewImage()))
    if (character != '\r' && character != '\n') expected += character;
  EXPECT_EQ(Sent(), expected);
  EXPECT_EQ(Sent().size(), 3u + 32 * 42 + 10);
}

TEST_F(ProgramTest, EachCharacterIsAWriteOfItsOwn) {
  std::vector<std::size_t> sizes;
  auto toZem = DeviceNamed("COM1")->written;
  DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    sizes.push_back(bytes.size());
    toZem(bytes, nowUs);
  };
  OpenProgram_ZEM();
  EXPECT_EQ(sizes, std::vector<std::size_t>(1357, 1));
}

TEST_F(ProgramTest, TitleNamesFileVersionsAndPort) {
  ComPort = 1;
  OpenProgram_ZEM();
  EXPECT_EQ(Label("FileLine"), "Filename /home/user/street.S19 is for use with calibration");
  EXPECT_EQ(Label("SoftwareLine"), "software version = Halvane2");
  EXPECT_EQ(Label("PromLine"), "and ZEM PROM version HV201xx    Using COM1");
  EXPECT_EQ(Label("Progress"), "*************** PROGRAMING ZEM ***************");
  EXPECT_EQ(Label("Version"), "2.0.0");
}

TEST_F(ProgramTest, BarFollowsTheFile) {
  std::vector<int> values;
  for (int ms = 20; ms < 1500; ms += 50)
    AfterMs(ms, [&] { values.push_back(At(Program_ZEM, "Bar").value); });
  OpenProgram_ZEM();
  EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
  EXPECT_LT(values.front(), 60);
  EXPECT_GT(values.back(), 1300);
  EXPECT_EQ(At(Program_ZEM, "Bar").value, At(Program_ZEM, "Bar").maximum);
}

TEST_F(ProgramTest, CountersShowTheRecordThatIsOnItsWay) {
  std::vector<std::string> seen;
  for (int i = 0; i < 4; ++i)
    AfterMs(30 + 45.0 * i, [&] { seen.push_back(Label("Record") + "/" + Label("Pass")); });
  OpenProgram_ZEM();
  EXPECT_EQ(seen, (std::vector<std::string>{"1/1", "2/1", "3/1", "4/1"}));
}

TEST_F(ProgramTest, TakesLittleLongerThanTheWire) {
  OpenProgram_ZEM();
  // 1357 characters out, 35 two-byte replies back, the pauses after "E" and "P", and up to one pass
  // of the queue before each reply is seen.
  const double wireUs = (1357 + 70) * 10 * 1e6 / 9600;
  EXPECT_LE(static_cast<double>(NowUs()), wireUs + 5000 + 2000 + 35 * 2 * 30 + 100);
}

TEST_F(ProgramTest, PortIsHeldUntilAnyKey) {
  OpenProgram_ZEM();
  EXPECT_TRUE(PortHeld);
  EXPECT_EQ(OpenFilePaths(), std::vector<std::string>{S19Name});
  PressKey("A");
  ExpectReleased();
  EXPECT_FALSE(Program_ZEM.loaded);
  EXPECT_EQ(menusOpened, 1);
}

TEST_F(ProgramTest, AnyKeyAndEveryWayOutLeaves) {
  const std::function<void()> ways[] = {[] { PressKey("Enter"); },
                                        [] { PressKey("Esc"); },
                                        [] { PressKey("F5"); },
                                        [] { PressKey("Up"); },
                                        [] { PressKey("Ctrl+S"); },
                                        [] { PressKey("Tab"); },
                                        [] { ClickOn(Program_ZEM, "Command1"); },
                                        [] { CloseByUser(Program_ZEM); }};
  for (const auto& way : ways) {
    OpenProgram_ZEM();
    ASSERT_TRUE(PortHeld);
    way();
    EXPECT_FALSE(Program_ZEM.loaded);
    ExpectReleased();
  }
  EXPECT_EQ(menusOpened, static_cast<int>(std::size(ways)));
}

TEST_F(ProgramTest, ModifierAloneOrAHeldKeyDoesNotLeave) {
  OpenProgram_ZEM();
  for (int key : {KeyShift, KeyControl, KeyAlt}) HeadlessKey({.key = key});
  HeadlessKey({.key = KeyEnter, .character = 13, .repeat = true});
  HeadlessKey({.key = 'X', .alt = true});
  EXPECT_TRUE(Program_ZEM.loaded);
  EXPECT_TRUE(PortHeld);
}

TEST_F(ProgramTest, UnloadingByOthersReleasesToo) {
  OpenProgram_ZEM();
  UnloadScreen(Program_ZEM);
  ExpectReleased();
  EXPECT_EQ(menusOpened, 0) << "who unloads it says what comes next";
}

TEST_F(ProgramTest, MenuIsNotOpenedOverAnotherScreenOfWork) {
  Screen other{.name = "other"};
  ShowScreen(other);
  OpenProgram_ZEM();
  PressKey("A");
  EXPECT_EQ(menusOpened, 0);
  UnloadScreen(other);
}

// ---- with KillFirst -----------------------------------------------------------------------------

TEST_F(ProgramTest, KillFirstKillsTheEngineAndLeavesNothing) {
  KillFirst = true;
  bool hintShown = false;
  AfterMs(1590, [&] { hintShown = Program_ZEM.loaded && Label("Hint") != ""; });
  OpenProgram_ZEM();
  const std::vector<std::string> history = device->TakeHistory();
  ASSERT_EQ(history.size(), 36u);
  EXPECT_EQ(history[0], "E");
  EXPECT_EQ(history[1], "K");
  EXPECT_EQ(history[2], "P1");
  ExpectProgrammed();
  ExpectReleased();
  EXPECT_FALSE(Program_ZEM.loaded);
  EXPECT_FALSE(hintShown);
  EXPECT_EQ(menusOpened, 0);
}

TEST_F(ProgramTest, KillIsFollowedByItsPause) {
  KillFirst = true;
  std::int64_t killedAt = 0;
  std::int64_t nextAt = 0;
  auto toZem = DeviceNamed("COM1")->written;
  DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    if (killedAt && !nextAt) nextAt = nowUs;
    if (bytes[0] == 'K') killedAt = nowUs;
    toZem(bytes, nowUs);
  };
  OpenProgram_ZEM();
  EXPECT_EQ(nextAt - killedAt, 100000);
}

TEST_F(ProgramTest, ResultWithKillFirstHasNoHintAndClosesTheFile) {
  KillFirst = true;
  LoadScreen(Program_ZEM);
  ShowScreen(Program_ZEM);
  programT();
  EXPECT_EQ(Label("Result"), Verified);
  EXPECT_EQ(Label("Hint"), "");
  EXPECT_FALSE(KillFirst);
  EXPECT_TRUE(OpenFilePaths().empty());
  UnloadScreen(Program_ZEM);
}

// The screen is gone by then.
TEST_F(ProgramTest, ChecksumErrorWithKillFirstStaysInTheStatusLine) {
  Frame frame{.statusPanels = {"", "1"}};
  ShowFrame(frame);
  KillFirst = true;
  OpenProgram_ZEM();
  EXPECT_EQ(frame.statusPanels[0], "") << "verified";
  device->Fail("refuse:7:5");
  KillFirst = true;
  OpenProgram_ZEM();
  EXPECT_FALSE(Program_ZEM.loaded);
  EXPECT_EQ(frame.statusPanels[0], "Status: CHECKSUM ERROR, the ZEM is not programmed");
  CloseFrame(frame);
}

TEST_F(ProgramTest, KillFirstLeavesNothingHoweverItEnds) {
  const std::function<void()> ways[] = {
      [&] { device->Fail("silent@E"); },
      [&] { device->Fail("wrong-second:86:1@E"); },
      [&] { device->Fail("wrong-second:86:1@P1"); },
      [&] { device->Fail("refuse:7:5"); },
      [&] { device->Fail("garbage:1@S1"), AnswerComError("Command2"); },
      [&] { PutTextFile(S19Name, ""); }};
  for (const auto& way : ways) {
    device->zem.ClearFaults();
    way();
    KillFirst = true;
    OpenProgram_ZEM();
    ExpectReleased();
    EXPECT_FALSE(Program_ZEM.loaded);
    EXPECT_EQ(menusOpened, 0);
    while (AnyBoxShown()) TakeBox();
    PutTextFile(S19Name, S19Of(NewImage()));
  }
}

// ---- no calibration open ------------------------------------------------------------------------

TEST_F(ProgramTest, WithoutACalibrationItAsksForOneAndEndsWhenThereIsNone) {
  CurrentBinPath.clear();
  AnswerNextFile(std::nullopt);
  OpenProgram_ZEM();
  EXPECT_EQ(TakeBox().kind, "open");
  EXPECT_FALSE(Program_ZEM.loaded);
  ExpectReleased();
  EXPECT_EQ(Sent(), "");
  EXPECT_EQ(menusOpened, 0) << "the main menu brings itself back, with the focus on its button";
}

TEST_F(ProgramTest, WithoutACalibrationItProgramsTheOneThatIsOpened) {
  CurrentBinPath.clear();
  PutFile(BinPath, Bytes(2048, 0));
  AnswerNextFile(BinPath);
  OpenProgram_ZEM();
  while (AnyBoxShown()) TakeBox();
  EXPECT_EQ(Label("Result"), Verified);
}

// ---- the port -----------------------------------------------------------------------------------

TEST_F(ProgramTest, HeldPortIsRefused) {
  PortHeld = true;
  OpenProgram_ZEM();
  EXPECT_EQ(TakeBox().text, "Port is already in use by another process.");
  EXPECT_FALSE(Program_ZEM.loaded);
  PortHeld = false;
}

TEST_F(ProgramTest, OpenedInsideAYieldItRunsFromTheQueue) {
  int depth = -1;
  AfterMs(1, [] { OpenProgram_ZEM(); });
  AfterMs(300, [&] { depth = YieldDepth(); });
  for (int i = 0; i < 50; ++i) Yield();
  EXPECT_FALSE(Program_ZEM.loaded);
  RunPending();
  EXPECT_EQ(Label("Result"), Verified);
  EXPECT_EQ(depth, 1);
}

// ---- Back at any moment -------------------------------------------------------------------------

TEST_F(ProgramTest, BackAtAnyMomentReleasesAtOnce) {
  for (std::int64_t atUs = 0; atUs < 1'600'000; atUs += 10'730) {
    const std::int64_t start = NowUs();
    std::int64_t leftAt = 0;
    AtUs(start + atUs, [&] {
      if (!Program_ZEM.loaded) return;
      ClickOn(Program_ZEM, "Command1");
      EXPECT_FALSE(PortHeld);
      EXPECT_FALSE(DeviceIsOpen("COM1"));
      leftAt = NowUs();
    });
    OpenProgram_ZEM();
    if (leftAt == 0) {
      EXPECT_EQ(Label("Result"), Verified);
      EXPECT_GT(atUs, 1'450'000);
      break;
    }
    EXPECT_LE(NowUs() - leftAt, 100'000) << "at most the pause after the kill";
    EXPECT_FALSE(Program_ZEM.loaded);
    ExpectReleased();
    AdvanceMs(300);  // the unit forgets what was cut
  }
  UnloadScreen(Program_ZEM);
}

TEST_F(ProgramTest, EndOfTheProgramAtAnyMomentReleases) {
  for (double atMs : {1.0, 8.0, 100.0, 900.0}) {
    ResetHeadless();
    ResetLinkState();
    CurrentBinPath = BinPath;
    PutTextFile(S19Name, GoodText);
    device.emplace();
    AfterMs(atMs, [] { EndProgram(); });
    OpenProgram_ZEM();
    ExpectReleased();
    EXPECT_LE(NowUs(), 1000 * atMs + 10000);
  }
}

TEST_F(ProgramTest, ProgrammingAgainAfterBackWorks) {
  AfterMs(500, [] { PressKey("A"); });
  OpenProgram_ZEM();
  AdvanceMs(300);
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), Verified);
  ExpectProgrammed();
}

// The unit is in the middle of a record then and takes the link test for a part of it.
TEST_F(ProgramTest, ReopenedInTheSamePassAsBackRunsOnceAfterTheOldOne) {
  AfterMs(500, [] {
    PressKey("A");
    OpenProgram_ZEM();
  });
  OpenProgram_ZEM();
  EXPECT_FALSE(Program_ZEM.loaded);
  RunPending();
  EXPECT_TRUE(Program_ZEM.loaded);
  EXPECT_EQ(Label("Result"), "");
  ExpectReleased();
  UnloadScreen(Program_ZEM);
  AdvanceMs(10);
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), Verified);
  ExpectProgrammed();
}

}  // namespace
