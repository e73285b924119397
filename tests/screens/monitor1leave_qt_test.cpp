// The ways out of the analog monitor, by key and by mouse, with a unit that says nothing.
#include <pty.h>
#include <unistd.h>

#include "monitors/monitor1.h"
#include "screens/monitorscreens.h"

namespace {

class Monitor1Leave : public MonitorScreenTest {
 protected:
  void SetUp() override {
    MonitorScreenTest::SetUp();
    char path[64] = {};
    ASSERT_EQ(::openpty(&unit, &line, path, nullptr, nullptr), 0);
    ::setenv("HALVANE2_COM4", path, 1);
    Start();
    StoreSetting("Options", "Screensetting", 0);
    StoreSetting("Options", "Comport", 4);
  }
  void TearDown() override {
    UnloadAllScreens();
    ::unsetenv("HALVANE2_COM4");
    ::close(unit);
    ::close(line);
    CurrentBinPath.clear();
    MonitorScreenTest::TearDown();
  }
  // Opens the monitor and leaves it so, once, as soon as it is shown. Result: where that leads to.
  static std::string Leave(void (*so)()) {
    bool left = false;
    const int timer = StartTimer(20, [&] {
      if (left || !Monitor1.visible) return;
      left = true;
      EXPECT_EQ(MonitorMode, 1);
      so();
    });
    PressKey("Alt+M");
    RunPending();
    StopTimer(timer);
    EXPECT_TRUE(left);
    EXPECT_FALSE(Monitor1.loaded);
    EXPECT_FALSE(PortHeld);
    EXPECT_EQ(MonitorMode, 0);
    return Top();
  }

  int unit = -1, line = -1;
};

}  // namespace

TEST_F(Monitor1Leave, EscBackAndCloseBoxLeadToTheMainMenu) {
  for (auto leave : {+[] { PressKey("Esc"); }, +[] { ClickOn(Monitor1, "Command1"); },
                     +[] { PressKey("Enter"); }, +[] { CloseByUser(Monitor1); }})
    EXPECT_EQ(Leave(leave), "Form1");
}

TEST_F(Monitor1Leave, EscLeavesFromAFieldToo) {
  EXPECT_EQ(Leave([] {
              PressKey("Alt+3");
              TypeText("5");
              PressKey("Esc");
            }),
            "Form1");
}

TEST_F(Monitor1Leave, ELeadsToTheEditScreens) {
  CurrentBinPath = "/cars/street.bin";
  EXPECT_EQ(Leave([] { PressKey("E"); }), "CSForm1");
}
