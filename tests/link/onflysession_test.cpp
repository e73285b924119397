// The opening of a live session: its commands in order, its tries, and every way it can fail.
#include "link/onfly.h"
#include "platform/frame.h"
#include "support/headless/linktest.h"
#include "support/headless/zemdevice.h"

namespace {

class SessionTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    device.emplace();
  }
  void TearDown() override {
    device.reset();
    LinkTest::TearDown();
  }
  std::optional<ZemDevice> device;
  OnflySession session;
};

const std::vector<std::string> Opening = {"RU 00", "G",     "C",     "R3 00",
                                          "R4 00", "R6 04", "R7 00", "RO 00"};

TEST_F(SessionTest, OpensWithItsCommandsInOrder) {
  CommError = 5;
  ClosedLoop = false;
  EXPECT_EQ(OpenOnflySession(session), SessionEnd::Open);
  EXPECT_EQ(device->TakeHistory(), Opening);
  EXPECT_TRUE(PortHeld);
  EXPECT_EQ(CommError, 0);
  EXPECT_EQ(OnflyInit, 0);
  EXPECT_TRUE(ClosedLoop);
  EXPECT_EQ(session.tries, 1);
  EXPECT_TRUE(MSComm1.unread.empty());
}

TEST_F(SessionTest, TakesAPortThatWasLeftOpen) {
  ASSERT_TRUE(OpenCommPort(27, 0));
  EXPECT_EQ(OpenOnflySession(session), SessionEnd::Open);
}

TEST_F(SessionTest, LoggerWaitsAfterTheClear) {
  ASSERT_EQ(OpenOnflySession(session), SessionEnd::Open);
  const std::int64_t took = NowUs();
  session.logger = true;
  ASSERT_EQ(OpenOnflySession(session), SessionEnd::Open);
  EXPECT_NEAR(static_cast<double>(NowUs() - took - took), 32721 * PassMicroseconds, 3000);
}

TEST_F(SessionTest, OldPromEndsItWithoutASecondTry) {
  device.reset();
  device.emplace(sim::ZemSettings{.oldProm = true});
  EXPECT_EQ(OpenOnflySession(session), SessionEnd::InvalidProm);
  EXPECT_EQ(CommError, 99);
  EXPECT_EQ(session.tries, 1);
  EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(SessionTest, SilentUnitIsTriedTenTimes) {
  device->Fail("silent");
  const std::int64_t before = PassCount();
  EXPECT_EQ(OpenOnflySession(session), SessionEnd::Failed);
  EXPECT_EQ(session.tries, 10);
  EXPECT_EQ(PassCount() - before, 10 * 32720);
  std::string expected;
  for (int i = 0; i < 10; ++i) expected += std::string("RU\0", 3);
  EXPECT_EQ(Sent(), expected);
}

TEST_F(SessionTest, EachFailingCommandIsRepeatedFromTheSecondStep) {
  struct Case {
    const char* command;
    float code;
    std::size_t commands;
  };
  for (const Case& c : {Case{"G", 1, 1}, Case{"RO", 6, 7}}) {
    device->Fail("clear");
    device->Fail(std::string("silent@") + c.command);
    device->TakeHistory();
    EXPECT_EQ(OpenOnflySession(session), SessionEnd::Failed) << c.command;
    EXPECT_EQ(CommError, c.code) << c.command;
    std::vector<std::string> expected;
    for (int i = 0; i < 10; ++i)
      expected.insert(expected.end(), Opening.begin(),
                      Opening.begin() + static_cast<std::ptrdiff_t>(c.commands));
    EXPECT_EQ(device->TakeHistory(), expected) << c.command;
    EXPECT_EQ(OnflyInit, 0);
    device.reset();
    device.emplace();
  }
}

TEST_F(SessionTest, AnswerThatIsLostOnceCostsOneTry) {
  device->Fail("lost:1:1@R4");
  EXPECT_EQ(OpenOnflySession(session), SessionEnd::Open);
  EXPECT_EQ(session.tries, 2);
  EXPECT_EQ(CommError, 0);
}

TEST_F(SessionTest, TriesOfTheLoopCountWithThoseOfTheOpening) {
  ASSERT_EQ(OpenOnflySession(session), SessionEnd::Open);
  for (int tries = 2; tries <= 10; ++tries) {
    CommError = 3;
    ASSERT_EQ(ReopenOnflySession(session), SessionEnd::Open);
    EXPECT_EQ(session.tries, tries);
    EXPECT_EQ(CommError, 0);
  }
  CommError = 3;
  device->TakeHistory();
  EXPECT_EQ(ReopenOnflySession(session), SessionEnd::Failed);
  EXPECT_EQ(CommError, 3);
  EXPECT_TRUE(device->TakeHistory().empty());
}

TEST_F(SessionTest, InvalidPromInTheLoopIsNotRetried) {
  ASSERT_EQ(OpenOnflySession(session), SessionEnd::Open);
  CommError = 99;
  EXPECT_EQ(ReopenOnflySession(session), SessionEnd::InvalidProm);
}

TEST_F(SessionTest, LeavingAtAnyMomentOfTheOpeningIsSeenAtOnce) {
  device->Fail("slow:30");
  for (std::int64_t atUs = 0; atUs < 700000; atUs += 3700) {
    MonitorStop = 0;
    const std::int64_t start = NowUs();
    AtUs(start + atUs, [] { MonitorStop = 1; });
    const SessionEnd end = OpenOnflySession(session);
    if (end == SessionEnd::Open) {
      EXPECT_GT(atUs, 300000);
      break;
    }
    EXPECT_EQ(end, SessionEnd::Left);
    EXPECT_LE(NowUs() - start, atUs + 31000) << "no more than the pauses of one command";
  }
}

TEST_F(SessionTest, PortThatCannotOpenFailsWithItsReason) {
  DeviceNamed("COM1")->refusal = "COM1 is in use by another program.";
  EXPECT_EQ(OpenOnflySession(session), SessionEnd::Failed);
  EXPECT_EQ(PortTrouble, "COM1 is in use by another program.");
  EXPECT_FALSE(PortHeld);
}

TEST_F(SessionTest, PulledCableFailsWithoutMoreTries) {
  AfterMs(60, [&] { device->Unplug(); });
  EXPECT_EQ(OpenOnflySession(session), SessionEnd::Failed);
  EXPECT_LE(NowUs(), 100000);
  EXPECT_EQ(PortTrouble, "COM1 has been unplugged.");
  device->Replug();
  EXPECT_EQ(OpenOnflySession(session), SessionEnd::Open);
}

TEST_F(SessionTest, SensorsAndOffsetsAreReadBackFromTheUnit) {
  device->zem.Motor().offsets.injector = 0x8C;
  ASSERT_EQ(OpenOnflySession(session), SessionEnd::Open);
  EXPECT_EQ(InjectorOffset, -1.5);
  EXPECT_EQ(OnInjOffset, -1.5);
  EXPECT_EQ(OptionFlags, device->zem.Memory()[0] & 248);
  EXPECT_EQ(device->zem.Motor().offsets.injector, 0x8C) << "sent back as it was";
}

}  // namespace
