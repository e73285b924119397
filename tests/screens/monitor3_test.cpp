// The digital monitor as its user meets it, by keys and clicks, on both platforms; without a unit.
#include "monitors/monitor3.h"

#include "core/globalstate.h"
#include "core/settings.h"
#include "link/comm.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "monitors/monitors.h"
#include "platform/frame.h"
#include "platform/loop.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "shell/start.h"
#include "support/user.h"

namespace {

class Monitor3Screen : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ResetCalibrationState();
    ResetLinkState();
    ResetLiveFlags();
    ResetOnflyState();
    RegisterShellScreens();
    RegisterMonitors();
    Main();
    RunPending();
  }
  void TearDown() override {
    UnloadAllScreens();
    PlatformTest::TearDown();
    ResetCalibrationState();
    ResetLinkState();
  }
  void Show() {
    ShowScreen(Monitor3);
    RunPending();
  }
};

}  // namespace

TEST_F(Monitor3Screen, CaptionsAndUnitsStandAroundTheFigures) {
  Show();
  for (const LiveFigure& figure : Monitor3Figures()) {
    const std::string name(figure.control);
    EXPECT_EQ(ShownText(Monitor3, name + "Caption"), figure.caption);
    EXPECT_EQ(ShownText(Monitor3, name + "Unit"), FigureUnit(figure));
    EXPECT_EQ(ShownText(Monitor3, name), "");
  }
  EXPECT_EQ(ShownText(Monitor3, "Command1"), "EXIT");
  EXPECT_EQ(Monitor3.title, "Click Form to Activate Keys    \"F1\" For Help");
}

TEST_F(Monitor3Screen, LettersToggleInUpperAndLowerCase) {
  Show();
  TypeText("t");
  EXPECT_TRUE(ImperialUnits);
  TypeText("T");
  EXPECT_FALSE(ImperialUnits);
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

TEST_F(Monitor3Screen, EnterDoesNotPressExit) {
  Monitor3KeyCode = 0;
  Show();
  PressKey("Enter");
  EXPECT_EQ(Monitor3KeyCode, 13);
  EXPECT_TRUE(Monitor3.visible);
}

TEST_F(Monitor3Screen, F1OpensThePanelAndEscClosesIt) {
  Show();
  PressKey("F1");
  RunPending();
  ASSERT_TRUE(Monitor3Help.visible);
  EXPECT_EQ(ShownText(Monitor3Help, "Label1"), "C = Toggle between Open Loop and Close Loop");
  PressKey("Esc");
  RunPending();
  EXPECT_FALSE(Monitor3Help.loaded);
  EXPECT_TRUE(Monitor3.visible);
}

// Opened by the button of the main menu, without a unit: the failure screen, and back.
TEST_F(Monitor3Screen, WithoutAPortTheFailureScreenComesAndCancelReturnsToTheMainMenu) {
  StoreSetting("Options", "Screensetting", 1);
  StoreSetting("Options", "Comport", 4);
  std::string title;
  bool held = true, buttons = true;
  const int timer = StartTimer(20, [&] {
    if (!helpfrm.visible) return;
    title = helpfrm.title;
    held = PortHeld;
    buttons = ShownEnabled(Form1, "SoftwareTools");
    UnloadScreen(helpfrm);
  });
  PressKey("Alt+M");
  RunPending();
  StopTimer(timer);
  EXPECT_EQ(title, "Halvane2  -  COM ERROR  0");
  EXPECT_FALSE(held);
  EXPECT_FALSE(buttons);
  EXPECT_FALSE(Monitor3.loaded);
  EXPECT_EQ(MonitorMode, 0);
  EXPECT_EQ(TopWorkScreen(), &Form1);
  EXPECT_TRUE(ShownEnabled(Form1, "SoftwareTools"));
  EXPECT_EQ(FindMenu(frmMain, "mnuname")->caption, EditModeLine);
}
