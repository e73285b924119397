// What the tests of both monitors' screens share: the started program, without a unit.
#pragma once

#include <string>

#include "core/settings.h"
#include "monitors/monitors.h"
#include "platform/frame.h"
#include "platform/loop.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "support/programtest.h"

class MonitorScreenTest : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    RegisterShellScreens();
    RegisterMonitors();
  }
  // On the monitor that is shown.
  static void ExpectLettersToggle() {
    TypeText("f");
    EXPECT_FALSE(FuelInLitres);
    TypeText("F");
    EXPECT_TRUE(FuelInLitres);
    TypeText("c");
    EXPECT_FALSE(ClosedLoop);
    EXPECT_EQ(PendEgo, 1);
    TypeText("C");
    EXPECT_TRUE(ClosedLoop);
    KillFirst = true;
    TypeText("k");
    EXPECT_FALSE(KillFirst);
  }
  // Opened by the button of the main menu: the failure screen, a look at what else is up, and back.
  static void ExpectFailureAndBack(Screen& monitor, int setting, void (*look)()) {
    StoreSetting("Options", "Screensetting", setting);
    StoreSetting("Options", "Comport", 4);
    std::string title;
    bool held = true;
    const int timer = StartTimer(20, [&] {
      if (!helpfrm.visible) return;
      title = helpfrm.title;
      held = PortHeld;
      look();
      UnloadScreen(helpfrm);
    });
    PressKey("Alt+M");
    RunPending();
    StopTimer(timer);
    EXPECT_EQ(title, "Halvane2  -  COM ERROR  0");
    EXPECT_FALSE(held);
    EXPECT_FALSE(monitor.loaded);
    EXPECT_EQ(MonitorMode, 0);
    EXPECT_EQ(TopWorkScreen(), &Form1);
    EXPECT_EQ(FindMenu(frmMain, "mnuname")->caption, EditModeLine);
  }
};
