// The posted write from the entry to the calibration: what is stored, when, and by whom.
#include "link/postedwrite.h"

#include <optional>

#include "core/calfix.h"
#include "core/globalstate.h"
#include "platform/headless/script.h"
#include "support/headless/linktest.h"
#include "support/headless/zemdevice.h"

namespace {

class PostedWriteTest : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    device.emplace();
    ASSERT_TRUE(OpenCommPort(27, 0));
    stored.clear();
  }
  void TearDown() override {
    UnloadScreen(frmerr);
    device.reset();
    LinkTest::TearDown();
  }
  static void Store(int calIndex, double value) { stored.emplace_back(calIndex, value); }

  std::optional<ZemDevice> device;
  static inline std::vector<std::pair<int, double>> stored;
};

}  // namespace

TEST_F(PostedWriteTest, AnAcceptedValueIsAChange) {
  BinImage[2] = 77;
  PostWrite(2, 1.25, 2, 1, Store);
  CalChanged = false;
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(CalValues[2], 1.25F);
  EXPECT_TRUE(CalChanged);
  EXPECT_TRUE(stored.empty()) << "the loop stores it, not the screen";
}

TEST_F(PostedWriteTest, AWriteIsOnItsWayUntilTheUnitHasAnswered) {
  EXPECT_FALSE(WriteOnItsWay(2));
  PostWrite(2, 1.25, 2, 1);
  EXPECT_TRUE(WriteOnItsWay(2));
  EXPECT_FALSE(WriteOnItsWay(3));
  bool whileSent = false, another = true;
  AfterMs(25, [&] {
    whileSent = WriteOnItsWay(2);
    another = WriteOnItsWay(3);
  });
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_TRUE(whileSent);
  EXPECT_FALSE(another);
  EXPECT_FALSE(WriteOnItsWay(2));
}

TEST_F(PostedWriteTest, ARefusedValueIsNone) {
  for (int byte : {2, 244}) {
    device->ClearAll();
    device->Fail("refuse:1:1");
    PostWrite(2, 1.25, byte, 1, Store);
    CalChanged = false;
    EXPECT_EQ(TransferPostedWrite(), Transfer::Refused);
    EXPECT_FALSE(CalChanged);
    EXPECT_TRUE(stored.empty());
    EXPECT_EQ(OnflyByteCount, 0);
  }
}

TEST_F(PostedWriteTest, TheGpoWordIsStoredByItsScreenOnceAccepted) {
  for (int byte : {244, 245}) {
    BinImage[static_cast<std::size_t>(byte)] = 102;
    PostWrite(17 + byte, 40, byte, 1, Store);
    CalChanged = false;
    EXPECT_TRUE(stored.empty());
    EXPECT_EQ(TransferPostedWrite(), Transfer::Written);
    EXPECT_EQ(stored, (std::vector<std::pair<int, double>>{{17 + byte, 40}}));
    EXPECT_TRUE(CalChanged);
    stored.clear();
  }
}

TEST_F(PostedWriteTest, AWriteThatTheSessionsEndCutsOffStaysPosted) {
  device->Fail("silent@S1");
  BinImage[4] = 0x11;
  BinImage[5] = 0x22;
  PostWrite(4, 6000, 4, 2, Store);
  AfterMs(100, [] {
    BinImage[4] = BinImage[5] = 0;  // as a save may do
    MonitorStop = 1;
  });
  EXPECT_EQ(TransferPostedWrite(), Transfer::Unsent);
  EXPECT_EQ(CalValues[4], 0);
  EXPECT_EQ(OnflyCalIndex, 4);
  EXPECT_EQ(OnflyByteCount, 2);
  EXPECT_EQ(BinImage[4], 0x11);
  EXPECT_FALSE(frmerr.loaded);
  MonitorStop = 0;
  device->ClearAll();
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(CalValues[4], 6000);
  EXPECT_EQ(device->zem.Memory()[4], 0x11);
  EXPECT_EQ(device->zem.Memory()[5], 0x22);
}

// The unit has its end record and carries it out.
TEST_F(PostedWriteTest, AWriteWhoseAnswerIsDueWhenTheUserLeavesIsStored) {
  BinImage[2] = 77;
  PostWrite(2, 1.25, 2, 1, Store);
  bool left = false;
  DeviceNamed("COM1")->written = [&, hear = DeviceNamed("COM1")->written](
                                     std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    hear(bytes, nowUs);
    if (bytes.size() == 1 && bytes[0] == '9') {
      left = true;
      MonitorStop = 1;
    }
  };
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_TRUE(left);
  EXPECT_EQ(CalValues[2], 1.25F);
  EXPECT_EQ(device->zem.Memory()[2], 77);
  EXPECT_FALSE(frmerr.loaded);
}

TEST_F(PostedWriteTest, ALaterEntryIsNotReplacedByTheOneCutOff) {
  device->Fail("silent@S1");
  PostWrite(2, 1, 2, 1);
  AfterMs(100, [] {
    PostWrite(3, 7, 3, 1);
    MonitorStop = 1;
  });
  EXPECT_EQ(TransferPostedWrite(), Transfer::Unsent);
  EXPECT_EQ(OnflyCalIndex, 3);
}

TEST_F(PostedWriteTest, AnotherCalibrationIsOpenedBeforeItIsSent) {
  BinImage[2] = 77;
  PostWrite(2, 1.25, 2, 1, Store);
  PublishLoadedCalibration();
  CalValues[2] = 3;
  CalChanged = false;
  EXPECT_EQ(TransferPostedWrite(), Transfer::Refused);
  EXPECT_TRUE(device->TakeHistory().empty()) << "nothing is sent";
  EXPECT_EQ(CalValues[2], 3);
  EXPECT_FALSE(CalChanged);
  EXPECT_TRUE(frmerr.visible);
  EXPECT_EQ(OnflyByteCount, 0);
  EXPECT_EQ(MSComm1.RThreshold, 27);
}

TEST_F(PostedWriteTest, AnotherCalibrationIsOpenedWhileASilentUnitIsAsked) {
  device->Fail("silent@P2");
  BinImage[2] = 77;
  PostWrite(2, 1.25, 2, 1, Store);
  CalValues[2] = 3;
  CalChanged = false;
  AfterMs(500, [] { PublishLoadedCalibration(); });
  EXPECT_EQ(TransferPostedWrite(), Transfer::Refused);
  EXPECT_EQ(CalValues[2], 3);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(OnflyByteCount, 0) << "nor is it sent later";
  EXPECT_TRUE(frmerr.visible);
}

// From the opening to the end record in steps of a byte's time: it is either not sent to its end,
// or the unit has it. The calibration that is open now keeps its value in either case.
TEST_F(PostedWriteTest, AnotherCalibrationIsOpenedWhileTheUnitTakesIt) {
  int unsent = 0, taken = 0;
  for (double ms = 1; ms < 60; ms += 1) {
    device.reset();
    device.emplace();
    ASSERT_TRUE(OpenCommPort(27, 0));
    BinImage[2] = 77;
    PostWrite(2, 1.25, 2, 1, Store);
    CalValues[2] = 3;
    CalChanged = false;
    bool ended = false;
    bool endedWhenOpened = false;
    DeviceNamed("COM1")->written = [&, hear = DeviceNamed("COM1")->written](
                                       std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
      hear(bytes, nowUs);
      ended = ended || (bytes.size() == 1 && bytes[0] == '9');
    };
    bool opened = false;
    AfterMs(ms, [&] {
      PublishLoadedCalibration();
      opened = true;
      endedWhenOpened = ended;
    });
    const Transfer transfer = TransferPostedWrite();
    if (!opened) break;
    EXPECT_EQ(transfer, Transfer::Refused) << ms;
    EXPECT_EQ(CalValues[2], 3) << "the value belongs to the calibration before";
    EXPECT_FALSE(CalChanged) << ms;
    EXPECT_EQ(ended, endedWhenOpened) << "no end record goes out afterwards, " << ms;
    (ended ? taken : unsent) += 1;
    EXPECT_EQ(device->zem.Memory()[2] == 77, ended) << ms;
  }
  EXPECT_GT(unsent, 20);
  EXPECT_GT(taken, 2);
}
