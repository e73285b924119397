// Programming the control unit: the exchange step by step, every way it can end, and the screen.
#include "link/programmer.h"

#include "core/s19file.h"
#include "platform/failure.h"
#include "platform/frame.h"
#include "platform/system.h"
#include "simulator/faults.h"
#include "support/headless/linktest.h"
#include "support/headless/zemdevice.h"

namespace {

constexpr const char* BinPath = "/home/user/street.BIN";
constexpr const char* S19Name = "/home/user/street.S19";

sim::Image NewImage() {
  sim::Image image = sim::DefaultImage();
  for (std::size_t i = 118; i < 182; ++i) image[i] = static_cast<std::uint8_t>(100 + i % 50);
  return image;
}

std::string S19Of(const sim::Image& bytes) {
  std::array<std::int16_t, 513> image{};
  std::copy(bytes.begin(), bytes.end(), image.begin());
  return S19Text(image);
}

class ProgramTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    device.emplace();
    CurrentBinPath = BinPath;
    PutTextFile(S19Name, S19Of(NewImage()));
    menusOpened = 0;
    RegisterScreen("Form1", [this] { ++menusOpened; });
  }
  void TearDown() override {
    UnloadScreen(Program_ZEM);
    UnloadScreen(helpfrm);
    ExpectReleased();
    device.reset();
    LinkTest::TearDown();
  }
  void ExpectReleased() {
    EXPECT_FALSE(PortHeld);
    EXPECT_FALSE(MSComm1.PortOpen);
    EXPECT_FALSE(DeviceIsOpen("COM1"));
    EXPECT_TRUE(OpenFilePaths().empty());
    EXPECT_FALSE(KillFirst);
  }
  void ExpectProgrammed() { EXPECT_EQ(device->zem.Memory(), NewImage()); }
  std::string Label(const char* name) { return ShownText(Program_ZEM, name); }
  // The user answers the failure screen when it comes up.
  void AnswerComError(const char* button) {
    AfterMs(20, [=, this] {
      if (helpfrm.visible)
        AfterMs(20, [=] { ClickOn(helpfrm, button); });
      else
        AnswerComError(button);
    });
  }
  std::optional<ZemDevice> device;
  int menusOpened = 0;
};

constexpr const char* Verified = "*************** PROGRAM VERIFIED ***************";
constexpr const char* ChecksumError = "*************** CHECKSUM ERROR ***************";

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

// ---- refused records ----------------------------------------------------------------------------

class RefusedRecord : public ProgramTest, public ::testing::WithParamInterface<int> {};

TEST_P(RefusedRecord, IsSentAgainUpToFiveTimes) {
  device->Fail("refuse:" + std::to_string(GetParam()) + ":4");
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), Verified);
  ExpectProgrammed();
  const std::vector<std::string> history = device->TakeHistory();
  EXPECT_EQ(std::count(history.begin(), history.end(), "P1"), 5);
}

TEST_P(RefusedRecord, FiveTimesIsAChecksumError) {
  device->Fail("refuse:" + std::to_string(GetParam()) + ":5");
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), ChecksumError);
  EXPECT_EQ(Label("Record"), std::to_string(GetParam()));
  EXPECT_EQ(Label("Pass"), "5");
  EXPECT_EQ(Label("Hint"), "Press any key to exit.");
  EXPECT_TRUE(PortHeld) << "until Back";
  ClickOn(Program_ZEM, "Command1");
  ExpectReleased();
}

INSTANTIATE_TEST_SUITE_P(EveryRecord, RefusedRecord, ::testing::Range(1, 34));

TEST_F(ProgramTest, RefusedRecordIsReopenedWithoutAPauseAndSentWhole) {
  device->Fail("refuse:1:1");
  OpenProgram_ZEM();
  const std::string first = S19Of(NewImage()).substr(0, 42);
  EXPECT_EQ(Sent().substr(0, 3 + 42 + 2 + 42), "EP1" + first + "P1" + first);
}

TEST_F(ProgramTest, CountersOfARefusedRecord) {
  device->Fail("refuse:1:4");
  std::vector<std::string> passes;
  for (int i = 0; i < 5; ++i)
    AfterMs(40 + 51.0 * i, [&] { passes.push_back(Label("Record") + "/" + Label("Pass")); });
  OpenProgram_ZEM();
  EXPECT_EQ(passes, (std::vector<std::string>{"1/1", "1/2", "1/3", "1/4", "1/5"}));
}

TEST_F(ProgramTest, RefusalIsNotTakenForTheAnswerToTheReopening) {
  // A unit that says no twice: the second refusal comes after the record was sent again.
  device->Fail("refuse:3:2");
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), Verified);
  ExpectProgrammed();
}

TEST_F(ProgramTest, OldPromAtTheReopeningEndsIt) {
  device->Fail("refuse:1:1");
  AfterMs(40, [&] { device->Fail("wrong-second:86:1@P1"); });
  OpenProgram_ZEM();
  EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
  ExpectReleased();
  EXPECT_TRUE(Program_ZEM.loaded);
}

// ---- nobody there, old PROM ---------------------------------------------------------------------

TEST_F(ProgramTest, SilentUnitEndsWithoutAWordButForTheStatusLine) {
  Frame frame{.statusPanels = {"", "1"}};
  ShowFrame(frame);
  device->Fail("silent");
  OpenProgram_ZEM();
  EXPECT_EQ(frame.statusPanels[0], "Status: No answer from the ZEM on COM1");
  CloseFrame(frame);
  ExpectReleased();
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_FALSE(helpfrm.loaded);
  EXPECT_TRUE(Program_ZEM.loaded);
  EXPECT_EQ(Label("Result"), "");
  PressKey("A");
  EXPECT_FALSE(Program_ZEM.loaded);
}

TEST_F(ProgramTest, OldPromAtTheLinkTestOrTheOpeningIsTold) {
  for (const char* command : {"E", "P1"}) {
    device->Fail(std::string("wrong-second:86:1@") + command);
    bool openInTheBox = true;
    WhileNextBoxIsOpen([&] { openInTheBox = DeviceIsOpen("COM1"); });
    OpenProgram_ZEM();
    EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
    EXPECT_FALSE(openInTheBox);
    ExpectReleased();
    UnloadScreen(Program_ZEM);
  }
}

TEST_F(ProgramTest, PortThatCannotOpenShowsTheFailureScreenWithTheReason) {
  DeviceNamed("COM1")->refusal = "No permission to use COM1. Join the group dialout.";
  std::string reason;
  std::string title;
  bool screenHidden = false;
  AfterMs(3, [&] {
    reason = ShownText(helpfrm, "Reason");
    title = helpfrm.title;
    screenHidden = !Program_ZEM.visible;
    ClickOn(helpfrm, "Command2");
  });
  OpenProgram_ZEM();
  EXPECT_EQ(reason, "No permission to use COM1. Join the group dialout.");
  EXPECT_EQ(title, "Halvane2  -  COM ERROR  0");
  EXPECT_TRUE(screenHidden);
  ExpectReleased();
  EXPECT_FALSE(Program_ZEM.loaded);
  EXPECT_EQ(menusOpened, 1);
}

TEST_F(ProgramTest, RetryAfterTheReasonIsGoneProgramsTheUnit) {
  DeviceNamed("COM1")->refusal = "COM1 is in use by another program.";
  AfterMs(3, [&] {
    DeviceNamed("COM1")->refusal.clear();
    ClickOn(helpfrm, "Command1");
  });
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), Verified);
  EXPECT_TRUE(Program_ZEM.visible);
}

// ---- the S19 file -------------------------------------------------------------------------------

TEST_F(ProgramTest, MissingFileIsToldByNumber) {
  CurrentBinPath = "/home/user/other.bin";
  OpenProgram_ZEM();
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Error");
  EXPECT_EQ(box.text, "Error # 53 was generated by Halvane2\rFile not found\n\r");
  ExpectReleased();
  EXPECT_EQ(device->TakeHistory(), std::vector<std::string>{"E"});
}

struct BadFile {
  const char* name;
  std::string text;
  int number;
};
void PrintTo(const BadFile& file, std::ostream* out) { *out << file.name; }

class BadS19 : public ProgramTest, public ::testing::WithParamInterface<BadFile> {};

TEST_P(BadS19, EndsInItsNumberWithThePortClosed) {
  PutTextFile(S19Name, GetParam().text);
  OpenProgram_ZEM();
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Error");
  EXPECT_EQ(box.text.substr(0, box.text.find(" was")),
            "Error # " + std::to_string(GetParam().number));
  ExpectReleased();
}

const std::string GoodText = S19Of(NewImage());
INSTANTIATE_TEST_SUITE_P(
    Files, BadS19,
    ::testing::Values(BadFile{"Empty", "", 62}, BadFile{"NoS", "1234\r\n5678\r\n", 62},
                      BadFile{"CutInARecord", GoodText.substr(0, 20), 62},
                      BadFile{"CutAfterARecord", GoodText.substr(0, 44), 62},
                      BadFile{"CutBeforeTheEndRecord", GoodText.substr(0, 32 * 44), 62},
                      BadFile{"EndRecordWithoutLineEnd", GoodText.substr(0, 32 * 44 + 10), 62},
                      BadFile{"RecordOf45", "S" + std::string(44, '0') + "\r\n", 9}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(ProgramTest, CutAnywhereItNeverHangsAndNeverSaysVerified) {
  for (std::size_t length = 0; length < GoodText.size() - 1; length += 23) {
    PutTextFile(S19Name, GoodText.substr(0, length));
    OpenProgram_ZEM();
    EXPECT_TRUE(AnyBoxShown()) << length;
    while (AnyBoxShown()) TakeBox();
    EXPECT_NE(Label("Result"), Verified) << length;
    UnloadScreen(Program_ZEM);
    ExpectReleased();
  }
}

TEST_F(ProgramTest, RecordOf44CharactersIsSent) {
  PutTextFile(S19Name, "S" + std::string(43, '0') + "\r\n");
  device.reset();
  AddDevice("COM1", {});
  AnswerInTurn({{1, "AX"}, {2, "AX"}, {44, "PC"}});
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), Verified);
  EXPECT_EQ(Sent(), "EP1S" + std::string(43, '0'));
  UnloadScreen(Program_ZEM);
  device.emplace();
}

TEST_F(ProgramTest, CharactersInFrontOfARecordAndBareLineEndsAreSkipped) {
  std::string text = "x;\n\n";
  for (char character : GoodText)
    if (character != '\r') text += character;
  PutTextFile(S19Name, text);
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), Verified);
  ExpectProgrammed();
}

TEST_F(ProgramTest, DamagedDigitIsRefusedByTheUnitFiveTimes) {
  std::string text = GoodText;
  text[44 * 4 + 20] = text[44 * 4 + 20] == '1' ? '2' : '1';
  PutTextFile(S19Name, text);
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), ChecksumError);
  EXPECT_EQ(Label("Record"), "5");
}

TEST_F(ProgramTest, ReadThatFailsInTheMiddleIsToldByNumber) {
  FailNthRead(500, FailureDeviceIo);
  OpenProgram_ZEM();
  EXPECT_EQ(TakeBox().text, "Error # 57 was generated by Halvane2\rDevice I/O error\n\r");
  ExpectReleased();
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

// ---- lost links ---------------------------------------------------------------------------------

TEST_F(ProgramTest, WrongFirstByteShowsTheFailureScreenWithTheWaitCount) {
  device->Fail("garbage:2@P1");
  std::string title;
  AfterMs(100, [&] {
    title = helpfrm.title;
    ClickOn(helpfrm, "Command2");
  });
  OpenProgram_ZEM();
  // "1" takes 1.04 ms to the unit and two bytes of noise as long again each: 105 passes.
  EXPECT_EQ(title, "Halvane2  -  COM ERROR  10.5");
  EXPECT_NEAR(CommError, 10.5, 0.01);
  EXPECT_FALSE(Program_ZEM.loaded);
  EXPECT_EQ(menusOpened, 1);
  ExpectReleased();
}

TEST_F(ProgramTest, RetryStartsFromTheLinkTest) {
  device->Fail("garbage:2:1@S1");
  AnswerComError("Command1");
  OpenProgram_ZEM();
  EXPECT_EQ(Label("Result"), Verified);
  ExpectProgrammed();
  const std::vector<std::string> history = device->TakeHistory();
  EXPECT_EQ(std::count(history.begin(), history.end(), "E"), 2);
  EXPECT_TRUE(Program_ZEM.visible);
}

TEST_F(ProgramTest, RetryWithKillFirstKillsAgain) {
  device->Fail("garbage:2:1@S1");
  KillFirst = true;
  AnswerComError("Command1");
  OpenProgram_ZEM();
  ExpectProgrammed();
  const std::vector<std::string> history = device->TakeHistory();
  EXPECT_EQ(std::count(history.begin(), history.end(), "K"), 2);
}

TEST_F(ProgramTest, SilenceIsWaitedOutUntilTheUserLeaves) {
  device->Fail("silent@S1");
  int seconds = 0;
  AtUs(60'000'000, [&] { seconds = Program_ZEM.loaded && PortHeld ? 60 : 0; });
  AfterMs(100'000, [] { ClickOn(Program_ZEM, "Command1"); });
  OpenProgram_ZEM();
  EXPECT_EQ(seconds, 60);
  EXPECT_LE(NowUs(), 100'001'000);
  ExpectReleased();
}

TEST_F(ProgramTest, PulledCableShowsTheFailureScreenAtOnceAndRetryCarriesOn) {
  for (double atMs : {2.0, 6.0, 9.0, 20.0, 300.0, 1400.0}) {
    const std::int64_t start = NowUs();
    AfterMs(atMs, [&] { device->Unplug(); });
    std::string reason;
    AfterMs(atMs + 10, [&] {
      reason = ShownText(helpfrm, "Reason");
      device->Replug();
      ClickOn(helpfrm, "Command1");
    });
    OpenProgram_ZEM();
    EXPECT_EQ(reason, "COM1 has been unplugged.") << atMs;
    EXPECT_EQ(Label("Result"), Verified) << atMs;
    EXPECT_LE(NowUs() - start, 4'000'000);
    ExpectProgrammed();
    UnloadScreen(Program_ZEM);
  }
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
