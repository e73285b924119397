// The byte port on devices in memory.
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/port.h"
#include "support/user.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

class PortTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    AddDevice("COM1", {});
  }
  PortHandle Open() {
    return OpenPort("COM1", "9600,N,8,1",
                    {.received =
                         [this](std::span<const std::uint8_t> bytes) {
                           received.insert(received.end(), bytes.begin(), bytes.end());
                           times.push_back(NowUs());
                         },
                     .disconnected = [this](const std::string& why) { reasons.push_back(why); },
                     .line = [this](int number) { lineEvents.push_back(number); }})
        .port;
  }

  Bytes received;
  std::vector<std::int64_t> times;
  std::vector<std::string> reasons;
  std::vector<int> lineEvents;
};

TEST_F(PortTest, BytesAreToldInTheYieldThatReachesTheirTime) {
  ASSERT_NE(Open(), 0);
  DeliverAt("COM1", 100, {0x50, 0x4E});
  DeliverAt("COM1", 40, {0x46});
  Yield();
  EXPECT_EQ(received, Bytes{});
  Yield();
  EXPECT_EQ(received, (Bytes{0x46}));
  Yield();
  Yield();
  EXPECT_EQ(received, (Bytes{0x46, 0x50, 0x4E}));
  EXPECT_EQ(times, (std::vector<std::int64_t>{60, 120}));
}

TEST_F(PortTest, ReplyIsNeverToldFromInsideTheWrite) {
  DeviceNamed("COM1")->written = [](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    DeliverAt("COM1", nowUs, Bytes(bytes.begin(), bytes.end()));
  };
  PortHandle port = Open();
  EXPECT_TRUE(WritePort(port, Bytes{1, 2}));
  EXPECT_EQ(received, Bytes{});
  Pause(10);
  EXPECT_EQ(received, Bytes{});
  Yield();
  EXPECT_EQ(received, (Bytes{1, 2}));
  EXPECT_EQ(WrittenTo("COM1"), (Bytes{1, 2}));
}

TEST_F(PortTest, DiscardForgetsWhatHasComeAndNotWhatIsStillOnTheWire) {
  PortHandle port = Open();
  DeliverAt("COM1", 100, {1});
  DeliverAt("COM1", 5000, {2});
  Pause(10);
  DiscardInput(port);
  AdvanceMs(10);
  EXPECT_EQ(received, (Bytes{2}));
}

TEST_F(PortTest, DiscardForgetsAlsoWhatTheDeviceDeliversWhenItIsTold) {
  PortHandle port = Open();
  DeviceNamed("COM1")->discarding = [] { DeliverAt("COM1", NowUs(), {3}); };
  DiscardInput(port);
  DeviceNamed("COM1")->discarding = {};
  AdvanceMs(10);
  EXPECT_EQ(received, Bytes{});
}

TEST_F(PortTest, BytesForAClosedPortAreLost) {
  PortHandle port = Open();
  DeliverAt("COM1", 100, {1});
  ClosePort(port);
  AdvanceMs(1);
  Open();
  AdvanceMs(1);
  EXPECT_EQ(received, Bytes{});
}

TEST_F(PortTest, PortThatIsClosedInItsOwnEventIsToldNoMore) {
  PortHandle port = 0;
  int events = 0;
  port = OpenPort("COM1", "9600,N,8,1",
                  {.received =
                       [&](std::span<const std::uint8_t>) {
                         ++events;
                         ClosePort(port);
                       }})
             .port;
  DeliverAt("COM1", 10, {1});
  DeliverAt("COM1", 10, {2});
  AdvanceMs(1);
  EXPECT_EQ(events, 1);
  EXPECT_FALSE(DeviceIsOpen("COM1"));
}

TEST_F(PortTest, OpeningSaysWhyItCannot) {
  PortResult result = OpenPort("COM3", "9600,N,8,1", {});
  EXPECT_EQ(result.port, 0);
  EXPECT_EQ(result.why, "There is no device COM3.");
  Open();
  EXPECT_EQ(OpenPort("COM1", "9600,N,8,1", {}).why, "COM1 is in use by another program.");
  AddDevice("COM2", {.refusal = "No permission: join the group dialout."});
  EXPECT_EQ(OpenPort("COM2", "9600,N,8,1", {}).why, "No permission: join the group dialout.");
}

TEST_F(PortTest, SettingsAndOpeningAreRemembered) {
  PortHandle port = Open();
  EXPECT_EQ(PortSettingsOf("COM1"), "9600,N,8,1");
  EXPECT_TRUE(DeviceIsOpen("COM1"));
  ClosePort(port);
  ClosePort(port);
  EXPECT_FALSE(DeviceIsOpen("COM1"));
}

TEST_F(PortTest, UnpluggingIsToldOnceFromTheQueue) {
  PortHandle port = Open();
  DeviceNamed("COM1")->gone = true;
  EXPECT_FALSE(WritePort(port, Bytes{1}));
  EXPECT_TRUE(reasons.empty());
  Yield();
  EXPECT_EQ(reasons, (std::vector<std::string>{"COM1 has been unplugged."}));
  EXPECT_FALSE(WritePort(port, Bytes{1}));
  Yield();
  EXPECT_EQ(reasons.size(), 1u);
  EXPECT_EQ(WrittenTo("COM1"), Bytes{});
  ClosePort(port);
}

TEST_F(PortTest, RemovedDeviceIsGoneForTheOpenPortAndForLaterOnes) {
  PortHandle port = Open();
  DeliverAt("COM1", 100, {1});
  RemoveDevice("COM1");
  AdvanceMs(1);
  EXPECT_EQ(reasons.size(), 1u);
  EXPECT_EQ(received, Bytes{});
  ClosePort(port);
  EXPECT_EQ(OpenPort("COM1", "9600,N,8,1", {}).port, 0);
  AddDevice("COM1", {});
  EXPECT_NE(Open(), 0);
}

TEST_F(PortTest, PluggedInAgainAnOpenPortStaysDead) {
  PortHandle port = Open();
  DeviceNamed("COM1")->gone = true;
  Yield();
  DeviceNamed("COM1")->gone = false;
  EXPECT_FALSE(WritePort(port, Bytes{1}));
  DeliverAt("COM1", NowUs(), {9});
  AdvanceMs(1);
  EXPECT_EQ(received, Bytes{});
}

TEST_F(PortTest, LineEventsAreToldFromTheQueue) {
  Open();
  DeliverLineEvent("COM1", 1004);
  EXPECT_TRUE(lineEvents.empty());
  Yield();
  EXPECT_EQ(lineEvents, (std::vector<int>{1004}));
}

TEST_F(PortTest, PortNumbersNameDevices) {
  EXPECT_EQ(DeviceOfPort(1), "COM1");
  EXPECT_EQ(DeviceOfPort(4), "COM4");
  SetDeviceOfPort(2, "/dev/serial/by-id/zem");
  EXPECT_EQ(DeviceOfPort(2), "/dev/serial/by-id/zem");
}

}  // namespace
