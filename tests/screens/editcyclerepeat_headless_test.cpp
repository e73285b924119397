// Entries of an editor with a simulated unit at the end of the line.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "core/globalstate.h"
#include "editors/binjgraph.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "platform/headless/script.h"
#include "screens/editorscreens.h"
#include "support/headless/zemdevice.h"

namespace {

class UnitInReach : public EditorTest {
 protected:
  void SetUp() override {
    EditorTest::SetUp();
    ResetLinkState();
    AddDevice(ZemDevice::Name, {});
    device.emplace();
    ASSERT_TRUE(OpenCommPort(27, 0));
    MonitorMode = 3;
    Open(BinjGraph());
  }
  void TearDown() override {
    device.reset();
    ResetLinkState();
    EditorTest::TearDown();
  }
  std::optional<ZemDevice> device;
};

}  // namespace

TEST_F(UnitInReach, AValueThatIsRoundedToZeroIsStoredWithoutASign) {
  Enter("Text2", "-0.05");
  EXPECT_EQ(BinImage[2], 128);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(device->zem.Memory()[2], 128);
  EXPECT_EQ(CalValues[2], 0);
  EXPECT_FALSE(std::signbit(CalValues[2]));
}

TEST_F(UnitInReach, ASlowOneHearsTheNewValueLast) {
  device->Fail("slow:100");
  Enter("Text11", "1.2");
  int pressed = 0;
  for (int ms : {50, 150, 250})
    AfterMs(ms, [&] {
      PressKey("Enter");
      ++pressed;
    });
  EXPECT_EQ(TransferPostedWrite(), Transfer::Stored);
  EXPECT_EQ(pressed, 3);
  EXPECT_EQ(TransferPostedWrite(), Transfer::Nothing);
  EXPECT_EQ(device->zem.Memory()[323], 38);
  EXPECT_EQ(CalValues[344], 1.2F);
  EXPECT_EQ(Text("Text11"), "1.20000");
}
