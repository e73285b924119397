// Every named fault of the control unit at every command and every record, pulled cables, a user
// who leaves at any moment, and long random sequences of all of them: nothing hangs, nothing stays
// held, nothing wrong is believed.
#include "simulator/faults.h"

#include <random>

#include "core/s19file.h"
#include "link/programmer.h"
#include "support/headless/linktest.h"
#include "support/headless/zemdevice.h"

namespace {

std::string NameOf(sim::Fault fault) {
  for (const sim::FaultRow& row : sim::FaultRows())
    if (row.fault == fault) return std::string(row.name);
  return "none";
}

std::vector<sim::Fault> AllFaults() {
  std::vector<sim::Fault> all;
  for (const sim::FaultRow& row : sim::FaultRows()) all.push_back(row.fault);
  return all;
}

std::string TestName(const ::testing::TestParamInfo<sim::Fault>& info) {
  std::string name = NameOf(info.param);
  std::erase(name, '-');
  return name;
}

class FaultTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    device.emplace();
  }
  void TearDown() override {
    device.reset();
    LinkTest::TearDown();
  }
  // Runs the routine just before byte `offset` of what is written from now on reaches the unit.
  void AtByte(std::size_t offset, std::function<void()> routine) {
    auto counted = std::make_shared<std::size_t>(0);
    auto toZem = DeviceNamed("COM1")->written;
    DeviceNamed("COM1")->written = [=](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
      if (offset >= *counted && offset < *counted + bytes.size()) routine();
      *counted += bytes.size();
      toZem(bytes, nowUs);
    };
  }
  std::optional<ZemDevice> device;
};

// ---- programming --------------------------------------------------------------------------------

constexpr const char* Verified = "*************** PROGRAM VERIFIED ***************";

sim::Image NewImage() {
  sim::Image image = sim::DefaultImage();
  for (std::size_t i = 118; i < 182; ++i) image[i] = static_cast<std::uint8_t>(100 + i % 50);
  return image;
}

class Programming : public FaultTest {
 protected:
  void SetUp() override {
    FaultTest::SetUp();
    CurrentBinPath = "/home/user/street.BIN";
    std::array<std::int16_t, 513> image{};
    const sim::Image bytes = NewImage();
    std::copy(bytes.begin(), bytes.end(), image.begin());
    PutTextFile("/home/user/street.S19", S19Text(image));
  }
  void TearDown() override {
    UnloadScreen(Program_ZEM);
    FaultTest::TearDown();
  }
  // The user answers the failure screen, and gives a silent unit up after a while.
  void PlanUser(std::int64_t giveUpAtUs, bool retries) {
    AfterMs(50, [=, this, start = NowUs()] {
      if (helpfrm.visible) ClickOn(helpfrm, retries ? "Command1" : "Command2");
      if (!Program_ZEM.loaded) return;
      if (NowUs() < giveUpAtUs) return PlanUser(giveUpAtUs, false);
      if (Program_ZEM.visible) ClickOn(Program_ZEM, "Command1");
    });
  }
  // Half a second without a byte from the PC is a wait that only the user ends.
  void GiveUpLongAfterLastByte() {
    const std::size_t sent = WrittenTo("COM1").size();
    AfterMs(500, [=, this] {
      if (helpfrm.visible) ClickOn(helpfrm, "Command2");
      if (!Program_ZEM.loaded) return;
      if (WrittenTo("COM1").size() != sent) return GiveUpLongAfterLastByte();
      ClickOn(Program_ZEM, "Command1");
    });
  }
  void CheckEnd(const std::string& where) {
    EXPECT_FALSE(helpfrm.loaded) << where;
    if (Program_ZEM.loaded && ShownText(Program_ZEM, "Result") == Verified) {
      EXPECT_EQ(device->zem.Memory(), NewImage()) << where << ": verified, but not in";
    }
    UnloadScreen(Program_ZEM);
    EXPECT_FALSE(PortHeld) << where;
    EXPECT_FALSE(MSComm1.PortOpen) << where;
    EXPECT_FALSE(DeviceIsOpen("COM1")) << where;
    EXPECT_TRUE(OpenFilePaths().empty()) << where;
    while (AnyBoxShown()) EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR") << where;
  }
};

// Where each of the 35 commands begins on the wire: "E", "P" "1", 32 records and the end record.
std::vector<std::size_t> CommandOffsets() {
  std::vector<std::size_t> offsets = {0, 1};
  for (std::size_t record = 0; record <= 32; ++record) offsets.push_back(3 + 42 * record);
  return offsets;
}

class ProgrammingFault : public Programming, public ::testing::WithParamInterface<sim::Fault> {};

TEST_P(ProgrammingFault, AtEveryCommandEndsReleasedAndBelievesNothingWrong) {
  for (std::size_t offset : CommandOffsets()) {
    device.reset();
    device.emplace();
    AtByte(offset, [this] {
      device->zem.Fail({.fault = GetParam(), .times = 1});
      GiveUpLongAfterLastByte();
    });
    OpenProgram_ZEM();
    CheckEnd(NameOf(GetParam()) + " at byte " + std::to_string(offset));
    AdvanceMs(1000);
  }
}

TEST_P(ProgrammingFault, ThatStaysEndsReleased) {
  for (bool killFirst : {false, true}) {
    device.reset();
    device.emplace();
    KillFirst = killFirst;
    device->zem.Fail({.fault = GetParam(), .times = 0});
    PlanUser(NowUs() + 2'500'000, true);
    OpenProgram_ZEM();
    EXPECT_FALSE(KillFirst);
    CheckEnd(NameOf(GetParam()));
    AdvanceMs(3000);
  }
}

TEST_P(ProgrammingFault, OnceIsHealedByARetry) {
  for (std::size_t offset : {std::size_t{1}, std::size_t{3}, std::size_t{3 + 42 * 20}}) {
    device.reset();
    device.emplace();
    AtByte(offset, [this] { device->zem.Fail({.fault = GetParam(), .times = 1}); });
    PlanUser(NowUs() + 6'000'000, true);
    OpenProgram_ZEM();
    UnloadScreen(Program_ZEM);
    while (AnyBoxShown()) TakeBox();
    device->ClearAll();
    AdvanceMs(500);
    OpenProgram_ZEM();
    EXPECT_EQ(ShownText(Program_ZEM, "Result"), Verified) << offset;
    CheckEnd(NameOf(GetParam()));
    AdvanceMs(6000);
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, ProgrammingFault, ::testing::ValuesIn(AllFaults()), TestName);

class ProgrammingSequence : public Programming {};

TEST_F(ProgrammingSequence, RandomFaultsAndUsersAlwaysEndReleased) {
  std::mt19937 random(20261121);
  const std::vector<sim::Fault> faults = AllFaults();
  const std::vector<std::size_t> offsets = CommandOffsets();
  auto upTo = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  int verified = 0;
  for (int session = 0; session < 150; ++session) {
    if (session % 10 == 0) {
      device.reset();
      device.emplace(sim::ZemSettings{.paced = session % 30 != 0});
    }
    device->ClearAll();
    for (std::size_t count = upTo(3); count > 0; --count) {
      const sim::FaultRule rule{.fault = faults[upTo(faults.size())],
                                .times = static_cast<int>(1 + upTo(2))};
      AtByte(offsets[upTo(offsets.size())], [this, rule] { device->zem.Fail(rule); });
    }
    KillFirst = upTo(4) == 0;
    if (upTo(4) == 0) AfterMs(static_cast<double>(upTo(1600)), [this] { device->Unplug(); });
    if (upTo(4) == 0)
      AfterMs(static_cast<double>(upTo(1600)), [] {
        if (Program_ZEM.visible) PressKey("A");
      });
    PlanUser(NowUs() + 3'000'000, upTo(2) == 0);
    OpenProgram_ZEM();
    verified += Program_ZEM.loaded && ShownText(Program_ZEM, "Result") == Verified;
    CheckEnd("session " + std::to_string(session));
    AdvanceMs(4000);
    ASSERT_FALSE(HasFailure()) << session;
  }
  EXPECT_GT(verified, 15) << "the sequence must not be all faults";
}

// ---- the live session ---------------------------------------------------------------------------

// A live loop in little: what the monitors do on top of the link's routines.
class LiveSession : public FaultTest {
 protected:
  void SetUp() override {
    FaultTest::SetUp();
    for (std::size_t i = 0; i < 512; ++i) BinImage[i] = device->zem.Memory()[i];
  }
  void TearDown() override {
    UnloadScreen(frmerr);
    FaultTest::TearDown();
  }

  bool NextFrame() {
    MSComm1.RThreshold = 27;
    MSComm1.InputLen = 0;
    RxBuffer.clear();
    MSComm1.Output("F");
    if (PollingWait(WaitForOnflyFrame, LoopMustEnd) != WaitEnd::Reply) return false;
    DecodeFrame(FrameReader::Monitor);
    return true;
  }

  // One pass; false when the session is over.
  bool Pass(OnflySession& session, int& timeOuts) {
    if (PendEgo == 1) togego();
    SendPendingOffsets();
    if (CommError != 0) return ReopenOnflySession(session) == SessionEnd::Open;
    const int cal = OnflyCalIndex;
    const int image = OnflyImageIndex;
    const double value = OnflyValue;
    switch (TransferPostedWrite()) {
      case Transfer::Stored:
        EXPECT_EQ(CalValues[static_cast<std::size_t>(cal)], static_cast<float>(value));
        EXPECT_EQ(device->zem.Memory()[static_cast<std::size_t>(image)],
                  BinImage[static_cast<std::size_t>(image)])
            << "stored, but not in the unit";
        break;
      case Transfer::Refused:
        EXPECT_EQ(CalValues[static_cast<std::size_t>(cal)], before[static_cast<std::size_t>(cal)]);
        break;
      default:
        break;
    }
    before = CalValues;
    while (!NextFrame())
      if (MonitorStop == 1 || LinkLost() || ++timeOuts > 10) return false;
    return true;
  }

  // A session of so many passes, with something to do in each; everything is released after it.
  void RunSession(int passes) {
    OnflySession session;
    int timeOuts = 0;
    MonitorStop = 0;
    before = CalValues;
    if (OpenOnflySession(session) == SessionEnd::Open) {
      QueryLoadedProgram();
      for (int pass = 0; pass < passes && MonitorStop == 0; ++pass) {
        Ask(pass);
        if (!Pass(session, timeOuts)) break;
      }
      if (!ClosedLoop) {
        ClosedLoop = true;
        togego();
      }
    }
    MSComm1.Close();
    PortHeld = false;
    CommError = 0;
    while (AnyBoxShown()) TakeBox();
    UnloadScreen(frmerr);
  }
  void Ask(int pass) {
    int* const flags[] = {&PendAdv, &PendGama,     &PendTog,       &PendAfr,    &PendGpo,
                          &PendInj, &PendTpsBlend, &PendClearZero, &PendZeroAdv};
    *flags[static_cast<std::size_t>(pass) % 9] = 1;
    OnTog = 10;
    if (pass % 4 == 3) {
      ClosedLoop = !ClosedLoop;
      PendEgo = 1;
    }
    if (pass % 3 == 1) {
      const int index = 60 + pass;
      BinImage[static_cast<std::size_t>(index)] = static_cast<std::int16_t>(pass * 7 % 256);
      PostWrite(index, pass + 0.5, index, 1);
    }
  }
  void GiveUpAfterMs(double ms) {
    AfterMs(ms, [] { MonitorStop = 1; });
  }
  std::array<float, 513> before{};
};

constexpr const char* LiveCommands[] = {"RU", "G",  "C",  "R3", "R4", "R6", "R7", "RO", "B",
                                        "F",  "R8", "R9", "R5", "Z",  "P2", "S1", "S9"};

class LiveFault : public LiveSession, public ::testing::WithParamInterface<sim::Fault> {};

TEST_P(LiveFault, AtEveryCommandEndsReleasedAndStoresNothingWrong) {
  for (const char* command : LiveCommands) {
    device.reset();
    device.emplace();
    ResetOnflyState();
    device->zem.Fail({.fault = GetParam(), .times = 1, .command = command});
    const std::int64_t start = NowUs();
    GiveUpAfterMs(5000);
    RunSession(12);
    EXPECT_LE(NowUs() - start, 6'200'000) << command;
    EXPECT_FALSE(DeviceIsOpen("COM1")) << command;
    AdvanceMs(6000);
  }
}

TEST_P(LiveFault, ThatStaysEndsWhenTheUserLeaves) {
  for (const char* command : {"RU", "G", "R6", "F", "P2", "S1", "S9"}) {
    device.reset();
    device.emplace();
    ResetOnflyState();
    device->zem.Fail({.fault = GetParam(), .times = 0, .command = command});
    const std::int64_t start = NowUs();
    GiveUpAfterMs(3000);
    RunSession(12);
    EXPECT_LE(NowUs() - start, 4'200'000) << command;
    AdvanceMs(4000);
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, LiveFault, ::testing::ValuesIn(AllFaults()), TestName);

class LiveSequence : public LiveSession {};

class LiveRandom : public LiveSession, public ::testing::WithParamInterface<unsigned> {};

TEST_F(LiveSequence, PulledCableAtAnyMomentEndsTheSessionAtOnce) {
  for (double atMs = 0.7; atMs < 900; atMs += 13.3) {
    device.reset();
    device.emplace();
    ResetOnflyState();
    const std::int64_t start = NowUs();
    std::int64_t pulledAt = 0;
    AfterMs(atMs, [&] {
      device->Unplug();
      pulledAt = NowUs();
    });
    RunSession(1000);
    ASSERT_GT(pulledAt, start);
    EXPECT_LE(NowUs() - pulledAt, 70'000) << atMs;
    EXPECT_FALSE(DeviceIsOpen("COM1"));
  }
}

TEST_F(LiveSequence, LeavingAtAnyMomentIsAnsweredAtOnce) {
  for (double atMs = 0.7; atMs < 900; atMs += 13.3) {
    ResetOnflyState();
    std::int64_t leftAt = 0;
    AfterMs(atMs, [&] {
      MonitorStop = 1;
      leftAt = NowUs();
    });
    RunSession(1000);
    EXPECT_LE(NowUs() - leftAt, 120'000) << atMs;
    AdvanceMs(300);
  }
}

TEST_P(LiveRandom, SessionsEndReleasedAndStoreNothingWrong) {
  std::mt19937 random(GetParam());
  const std::vector<sim::Fault> faults = AllFaults();
  auto upTo = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  int stored = 0;
  for (int session = 0; session < 250; ++session) {
    if (session % 20 == 0) {
      device.reset();
      device.emplace(sim::ZemSettings{.paced = session % 60 != 0});
      for (std::size_t i = 0; i < 512; ++i) BinImage[i] = device->zem.Memory()[i];
    }
    device->ClearAll();
    ResetOnflyState();
    for (std::size_t count = upTo(3); count > 0; --count)
      device->zem.Fail({.fault = faults[upTo(faults.size())],
                        .times = static_cast<int>(1 + upTo(3)),
                        .command = LiveCommands[upTo(std::size(LiveCommands))]});
    CalValues.fill(-1);
    GiveUpAfterMs(static_cast<double>(100 + upTo(2000)));
    RunSession(static_cast<int>(3 + upTo(8)));
    stored += static_cast<int>(513 - std::count(CalValues.begin(), CalValues.end(), -1.0F));
    EXPECT_FALSE(DeviceIsOpen("COM1"));
    AdvanceMs(2200);
    ASSERT_FALSE(HasFailure()) << session;
  }
  EXPECT_GT(stored, 75) << "the sequence must not be all faults";
}

INSTANTIATE_TEST_SUITE_P(Seeds, LiveRandom, ::testing::Values(4711U, 20261121U, 7U, 99991U));

}  // namespace
