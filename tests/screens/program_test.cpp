// The failure screens and the programming screen as their user meets them, on both platforms. The
// port that they speak of does not exist.
#include <cstdlib>

#include "core/globalstate.h"
#include "link/comm.h"
#include "link/programmer.h"
#include "link/programscreen.h"
#include "platform/loop.h"
#include "support/user.h"

namespace {

class ProgramScreens : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ResetCalibrationState();
    ResetLinkState();
    CurrentBinPath = "/cars/street.bin";
#ifndef _WIN32
    setenv("HALVANE2_COM1", "/dev/halvane2-none", 1);
#endif
    RegisterScreen("Form1", [this] {
      ++menusOpened;
      ShowScreen(menu);
    });
  }
  void TearDown() override {
    StopTimer(timer);
    PlatformTest::TearDown();
    ResetCalibrationState();
    ResetLinkState();
  }
  // The routine runs once, as soon as the failure screen is up.
  void WhenFailureIsShown(std::function<void()> routine) {
    timer = StartTimer(5, [this, routine = std::move(routine)] {
      if (!helpfrm.visible) return;
      StopTimer(timer);
      routine();
    });
  }

  Screen menu{.name = "Form1", .build = [](Screen& screen) {
                Add(screen, {.name = "Command1", .kind = ControlKind::Button, .caption = "Menu"});
              }};
  int menusOpened = 0;
  int timer = 0;
};

TEST_F(ProgramScreens, EnterRetriesAndEscapeCancels) {
  WhenFailureIsShown([] {
    EXPECT_EQ(ShownFocus(), "Command1");
    PressKey("Enter");
  });
  ComErrorDialog();
  EXPECT_EQ(DialogChoice, RetryComPort);
  WhenFailureIsShown([] { PressKey("Esc"); });
  ComErrorDialog();
  EXPECT_EQ(DialogChoice, CancelSession);
  EXPECT_FALSE(helpfrm.loaded);
}

TEST_F(ProgramScreens, WindowOfTheFailureCancelsByItsCloseBox) {
  WhenFailureIsShown([] { CloseByUser(helpfrm); });
  ComErrorDialog();
  EXPECT_EQ(DialogChoice, CancelSession);
}

TEST_F(ProgramScreens, TabAndSpaceFlipThePages) {
  PortTrouble = "There is no device COM1.";
  std::string first, second, third, reason;
  WhenFailureIsShown([&] {
    reason = ShownText(helpfrm, "Reason");
    first = ShownText(helpfrm, "Label1");
    PressKey("Tab");
    PressKey("Tab");
    EXPECT_EQ(ShownFocus(), "Command3");
    PressKey("Space");
    second = ShownText(helpfrm, "Label1");
    ClickOn(helpfrm, "Command3");
    third = ShownText(helpfrm, "Label1");
    ClickOn(helpfrm, "Command2");
  });
  ComErrorDialog();
  EXPECT_EQ(reason, "There is no device COM1.");
  EXPECT_NE(first.find("a. ZEM not powered by at least 10 volts."), std::string::npos);
  EXPECT_NE(second.find("2). Computer was communicating but failed"), std::string::npos);
  EXPECT_EQ(third, first);
}

TEST_F(ProgramScreens, RefusedWriteLeavesTheScreenBelowInPlace) {
  ShowScreen(menu);
  ShowScreen(frmerr);
  EXPECT_EQ(ShownText(frmerr, "Label1"), " DATA NOT ACCEPTED");
  EXPECT_EQ(ShownText(frmerr, "Command1"), "Please Enter Data Again");
  PressKey("Enter");
  EXPECT_FALSE(frmerr.loaded);
  EXPECT_EQ(ActiveScreen(), &menu);
}

TEST_F(ProgramScreens, PortThatDoesNotExistIsToldInWordsAndCancelReturnsToTheMenu) {
  std::string reason;
  bool hidden = false;
  WhenFailureIsShown([&] {
    reason = ShownText(helpfrm, "Reason");
    hidden = !Program_ZEM.visible;
    PressKey("Esc");
  });
  OpenProgram_ZEM();
  EXPECT_NE(reason, "");
  EXPECT_TRUE(hidden);
  EXPECT_FALSE(Program_ZEM.loaded);
  EXPECT_FALSE(PortHeld);
  EXPECT_EQ(menusOpened, 1);
}

TEST_F(ProgramScreens, RetryShowsTheScreenAgain) {
  int failures = 0;
  timer = StartTimer(5, [&] {
    if (!helpfrm.visible) return;
    ClickOn(helpfrm, ++failures < 3 ? "Command1" : "Command2");
  });
  OpenProgram_ZEM();
  EXPECT_EQ(failures, 3);
  EXPECT_EQ(menusOpened, 1);
}

TEST_F(ProgramScreens, ShowsTitleCountersAndResult) {
  ShowScreen(Program_ZEM);
  ShowTitle();
  ShowRecord(7, 2, 300, 1420);
  EXPECT_EQ(ShownText(Program_ZEM, "FileLine"),
            "Filename /cars/street.S19 is for use with calibration");
  EXPECT_EQ(ShownText(Program_ZEM, "SoftwareLine"), "software version = Halvane2");
  EXPECT_EQ(ShownText(Program_ZEM, "PromLine"), "and ZEM PROM version HV201xx    Using COM1");
  EXPECT_EQ(ShownText(Program_ZEM, "Progress"), "*************** PROGRAMING ZEM ***************");
  EXPECT_EQ(ShownText(Program_ZEM, "RecordCaption"), "Record");
  EXPECT_EQ(ShownText(Program_ZEM, "Record"), "7");
  EXPECT_EQ(ShownText(Program_ZEM, "PassCaption"), "Pass");
  EXPECT_EQ(ShownText(Program_ZEM, "Pass"), "2");
  ShowResult(true);
  ShowExitHint();
  EXPECT_EQ(ShownText(Program_ZEM, "Result"), "*************** PROGRAM VERIFIED ***************");
  EXPECT_EQ(ShownText(Program_ZEM, "Hint"), "Press any key to exit.");
  EXPECT_EQ(ShownText(Program_ZEM, "Command1"), "<< Back");
}

TEST_F(ProgramScreens, EveryKeyAndButtonLeaves) {
  const std::function<void()> ways[] = {
      [] { PressKey("A"); },           [] { PressKey("Enter"); },
      [] { PressKey("Esc"); },         [] { PressKey("F1"); },
      [] { PressKey("Down"); },        [] { PressKey("Ctrl+S"); },
      [] { PressKey("Space"); },       [] { ClickOn(Program_ZEM, "Command1"); },
      [] { CloseByUser(Program_ZEM); }};
  int left = 0;
  for (const auto& way : ways) {
    UnloadScreen(menu);
    ShowScreen(Program_ZEM);
    RunPending();
    way();
    RunPending();
    EXPECT_FALSE(Program_ZEM.loaded) << left;
    EXPECT_EQ(menusOpened, ++left);
  }
}

}  // namespace
