// Every fault of the simulated unit under a session of the digital monitor, alone and in long
// random sequences: a retry succeeds or the failure screen says so, the port is released, nothing
// wrong is stored, and leaving is answered at once.
#include <algorithm>
#include <array>
#include <optional>
#include <random>

#include "core/globalstate.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "monitors/livetest.h"
#include "platform/loop.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "simulator/faults.h"
#include "support/headless/zemdevice.h"

namespace {

class FaultyUnit : public LiveTest {
 protected:
  void SetUp() override {
    LiveTest::SetUp();
    device.emplace();
  }
  void TearDown() override {
    device.reset();
    LiveTest::TearDown();
  }
  // Runs a session with somebody in front of it: he answers the failure screen and others.
  void RunAttended(std::function<int(int failures)> answer) {
    failures = 0;
    promTold = false;
    const int timer = StartTimer(100, [&] {
      if (frmerr.visible) ClickOn(frmerr, "Command1");
      if (!helpfrm.visible) return;
      EXPECT_FALSE(DeviceIsOpen("COM1"));
      ++failures;
      ClickOn(helpfrm, answer(failures) == RetryComPort ? "Command1" : "Command2");
    });
    Run();
    StopTimer(timer);
    while (AnyBoxShown()) promTold |= TakeBox().title == "INVALID PROM ERROR";
    UnloadScreen(frmerr);
    ExpectReleased();
  }
  // Leaves at a time, and sees how long the answer takes; a unit in open loop is told for a second
  // at most.
  void LeaveAt(double ms) {
    AfterMs(ms, [this] {
      if (!Monitor3.visible) return;
      leftUs = NowUs();
      StopLive();
      AfterMs(1, [] { EXPECT_FALSE(Monitor3.visible); });
    });
  }
  std::optional<ZemDevice> device;
  int failures = 0;
  bool promTold = false;
  std::int64_t leftUs = 0;
};

class EveryFault : public FaultyUnit, public ::testing::WithParamInterface<std::string> {};

std::vector<std::string> FaultTexts() {
  std::vector<std::string> texts;
  for (const sim::FaultRow& row : sim::FaultRows()) {
    texts.emplace_back(row.name);
    for (const char* command : {"RU", "G", "R3", "R7", "RO", "F", "P2", "S1", "S9"})
      texts.push_back(std::string(row.name) + "@" + command);
  }
  return texts;
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::erase(name, '-');
  for (char& character : name)
    if (character == '@') character = '_';
  return name;
}

}  // namespace

// From the fifth frame on, with a change of the loop, an offset and a write to be sent.
TEST_P(EveryFault, InARunningSessionIsRetriedOrTold) {
  const std::array<float, 513> before = CalValues;
  const std::string fault = GetParam();
  AfterMs(900, [&] {
    ASSERT_EQ(Seen("Status"), "ONFLY IDLE");
    device->Fail(fault);
    OnAdvance = 4;
    PendAdv = PendEgo = 1;
    BinImage[5] = 77;
    PostWrite(10, 1.25, 5, 1);
  });
  LeaveAt(4000);
  RunAttended([](int) { return CancelSession; });
  const bool arrived = device->zem.Memory()[5] == 77;
  std::array<float, 513> after = CalValues;
  EXPECT_TRUE(after[10] == before[10] || (after[10] == 1.25F && arrived));
  after[10] = before[10];
  EXPECT_EQ(after, before);
}

// While the session opens; the user gives up after some seconds.
TEST_P(EveryFault, WhileTheSessionOpensIsRetriedOrTold) {
  const std::array<float, 513> before = CalValues;
  device->Fail(GetParam());
  LeaveAt(2500);
  RunAttended([](int) { return CancelSession; });
  EXPECT_EQ(CalValues, before);
  EXPECT_TRUE(leftUs > 0 || failures > 0 || promTold) << "nobody was told of the end";
  if (leftUs > 0) {
    EXPECT_LT(NowUs() - leftUs, 1'300'000);
  }
}

INSTANTIATE_TEST_SUITE_P(Faults, EveryFault, ::testing::ValuesIn(FaultTexts()), TestName);

// ---- the ones that a retry gets over ------------------------------------------------------------

TEST_F(FaultyUnit, OneLostFrameIsAskedForAgain) {
  AfterMs(900, [&] { device->Fail("lost:1:1@F"); });
  AfterMs(3000, [] {
    EXPECT_EQ(Seen("Status"), "ONFLY IDLE");
    StopLive();
  });
  RunAttended([](int) { return CancelSession; });
  EXPECT_EQ(failures, 0);
}

TEST_F(FaultyUnit, ShortFramesAreAskedForAgainAndTheNextOneIsWhole) {
  AfterMs(900, [&] { device->Fail("short:5:2@F"); });
  AfterMs(5000, [&] {
    EXPECT_EQ(Live.frame[16] & 127, 127);  // no sensor has failed: the bytes stand in their places
    EXPECT_NEAR(Live[LiveField::Bat], device->zem.Motor().BatteryVolts(), 0.5);
    StopLive();
  });
  RunAttended([](int) { return CancelSession; });
  EXPECT_EQ(failures, 0);
}

TEST_F(FaultyUnit, LateFramesAreFollowedByWholeOnes) {
  AfterMs(900, [&] { device->Fail("slow:1500:3@F"); });
  AfterMs(9000, [&] {
    EXPECT_EQ(Live.frame[16] & 127, 127);
    EXPECT_NEAR(Live[LiveField::Bat], device->zem.Motor().BatteryVolts(), 0.5);
    StopLive();
  });
  RunAttended([](int) { return CancelSession; });
  EXPECT_EQ(failures, 0);
}

// What is left of a spoilt answer is on the line while the session opens anew, and must not stand
// in front of the answers of that try, and of the next.
TEST_F(FaultyUnit, NoiseBeforeAnAnswerCostsOneTryOnly) {
  for (const char* command : {"R3", "R4", "R8", "R9", "RO", "R7", "R6", "R5"}) {
    SCOPED_TRACE(command);
    device.emplace();
    AfterMs(900, [&] {
      device->Fail("garbage:3:1@" + std::string(command));
      OnTog = 10;
      PendAdv = PendGama = PendTog = PendAfr = PendGpo = PendInj = PendTpsBlend = 1;
    });
    AfterMs(2500, [] {
      EXPECT_EQ(Seen("Status"), "ONFLY IDLE");
      StopLive();
    });
    RunAttended([](int) { return CancelSession; });
    EXPECT_EQ(failures, 0);
    const std::vector<std::string> history(device->zem.History().begin(),
                                           device->zem.History().end());
    EXPECT_LE(std::count(history.begin(), history.end(), "G"), 2);
  }
}

TEST_F(FaultyUnit, NoiseBeforeAnAnswerOfTheOpeningCostsTwoTriesAtMost) {
  for (const char* command : {"RU", "G", "R3", "R4", "R6", "R7", "RO"}) {
    SCOPED_TRACE(command);
    device.emplace();
    device->Fail("garbage:3:1@" + std::string(command));
    AfterMs(2500, [] {
      EXPECT_EQ(Seen("Status"), "ONFLY IDLE");
      StopLive();
    });
    RunAttended([](int) { return CancelSession; });
    EXPECT_EQ(failures, 0);
  }
}

// Bytes behind a frame cost nothing, and bytes before it only that frame: the times of the bytes
// tell at once that the next one begins with what was left.
TEST_F(FaultyUnit, BytesTooManyNeverShiftTheFramesThatFollow) {
  struct Case {
    const char* fault;
    int wrongAtMost;
  };
  for (const Case& c : {Case{"long:1:1@F", 0}, Case{"long:3:1@F", 0}, Case{"garbage:1:1@F", 1},
                        Case{"garbage:3:1@F", 1}, Case{"garbage:20:1@F", 1}}) {
    int wrong = 0;
    long seen = 0, first = 0;
    AfterMs(900, [&] {
      device->Fail(c.fault);
      first = seen = LiveFramesTaken();
    });
    const int timer = StartTimer(5, [&] {
      if (first == 0 || LiveFramesTaken() == seen) return;
      seen = LiveFramesTaken();
      wrong += (Live.frame[16] & 127) != 127 ||
               std::abs(Live[LiveField::Bat] - device->zem.Motor().BatteryVolts()) > 0.5;
    });
    AfterMs(3200, [&] { StopLive(); });
    RunAttended([](int) { return CancelSession; });
    StopTimer(timer);
    EXPECT_LE(wrong, c.wrongAtMost) << c.fault;
    EXPECT_GT(seen - first, 70) << c.fault << ": and frames go on coming";
    EXPECT_EQ(failures, 0) << c.fault;
  }
}

TEST_F(FaultyUnit, UnitWithAByteTooManyInEachAnswerIsStillRead) {
  AfterMs(900, [&] { device->Fail("long:1:0@F"); });
  AfterMs(3200, [&] {
    EXPECT_EQ(Live.frame[16] & 127, 127);
    EXPECT_GT(LiveFramesTaken(), 40);
    StopLive();
  });
  RunAttended([](int) { return CancelSession; });
  EXPECT_EQ(failures, 0);
}

TEST_F(FaultyUnit, PulledCableIsToldAndRetryCarriesOnOnceItIsBack) {
  AfterMs(900, [&] { device->Unplug(); });
  AfterMs(1500, [&] { device->Replug(); });
  AfterMs(4000, [] {
    EXPECT_EQ(Seen("Status"), "ONFLY IDLE");
    StopLive();
  });
  RunAttended([](int failed) { return failed < 20 ? RetryComPort : CancelSession; });
  EXPECT_GE(failures, 1);
}

// ---- random sequences ---------------------------------------------------------------------------

namespace {

class RandomSessions : public FaultyUnit, public ::testing::WithParamInterface<unsigned> {
 protected:
  int Pick(int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }

  void FailSomehow() {
    const auto rows = sim::FaultRows();
    const sim::FaultRow& row = rows[static_cast<std::size_t>(Pick(static_cast<int>(rows.size())))];
    static constexpr std::array commands = {"", "", "F", "R", "RU", "G", "P2", "S", "C", "RO"};
    device->zem.Fail({.fault = row.fault,
                      .n = row.meaningOfN.empty() ? sim::DefaultOfRow : 1 + Pick(6),
                      .times = Pick(3),
                      .command = commands[static_cast<std::size_t>(Pick(commands.size()))]});
  }

  // Each write of a session has a place of its own, so that what was stored tells what arrived.
  void PostSomething() {
    const int at = 20 + posts_++ % 40;
    const int byte = 1 + Pick(255);
    BinImage[static_cast<std::size_t>(at)] = static_cast<std::int16_t>(byte);
    PostWrite(at, byte * 0.5, at, 1);
  }

  void DoSomething() {
    switch (Pick(12)) {
      case 0:
      case 1:
        return FailSomehow();
      case 2:
        return device->zem.ClearFaults();
      case 3:
        return device->Unplug();
      case 4:
        return device->Replug();
      case 5:
        return ToggleLoopControl();
      case 6:
        PendAdv = PendInj = 1;
        return;
      case 7:
        PendTog = PendAfr = PendGpo = 1;
        OnTog = 10;
        return;
      case 8:
        return AskToKillEngine();
      default:
        return PostSomething();
    }
  }

  void LeaveInMs(int ms) {
    AfterMs(ms, [this, running = running_] {
      if (running == running_) StopLive();
    });
  }

  void OneSession() {
    device.emplace(sim::ZemSettings{.seed = random()});
    const auto known = CalValues;
    ForgetWritten("COM1");
    for (int i = Pick(2); i > 0; --i) FailSomehow();
    for (int i = Pick(8); i > 0; --i)
      AfterMs(100 + Pick(900), [this, running = running_] {
        if (running == running_ && Monitor3.visible) DoSomething();
      });
    LeaveInMs(200 + Pick(1000));
    RunAttended([this](int failed) {
      device->Replug();
      device->zem.ClearFaults();
      LeaveInMs(600);
      return failed < 3 && Pick(2) ? RetryComPort : CancelSession;
    });
    ++running_;
    for (std::size_t i = 0; i < CalValues.size(); ++i) {
      if (CalValues[i] == known[i]) continue;
      ASSERT_TRUE(i >= 20 && i < 60) << i;
      EXPECT_EQ(CalValues[i], device->zem.Memory()[i] * 0.5F) << i;
    }
  }

  std::mt19937 random{GetParam()};

 private:
  int posts_ = 0;
  int running_ = 0;
};

}  // namespace

TEST_P(RandomSessions, EndReleasedWithNothingWrongStored) {
  const std::size_t screens = LoadedScreens().size();
  for (int session = 0; session < 125 && !HasFailure(); ++session) {
    SCOPED_TRACE(session);
    OneSession();
    ASSERT_LE(LoadedScreens().size(), screens + 1);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSessions, ::testing::Range(1U, 9U));
