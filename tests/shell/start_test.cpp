// Start-up and the ends of the program.
#include "shell/start.h"

#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/failure.h"
#include "platform/frame.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/system.h"
#include "shell/about.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "shell/shelltest.h"

namespace {

class StartTest : public ShellTest {};

TEST_F(StartTest, EndsInTheMainMenu) {
  CalValues.fill(7);
  SetDesktopWidth(1280);
  Start();
  EXPECT_TRUE(frmMain.shown);
  EXPECT_TRUE(frmMain.enabled);
  EXPECT_EQ(frmMain.title, "Halvane2 Version 2.0.0");
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(StartDir, "/home/user");
  for (int i = 0; i <= 501; ++i) EXPECT_EQ(CalValues[static_cast<std::size_t>(i)], 0.0f);
  EXPECT_EQ(ScreenClass, 4);
  EXPECT_EQ(frmMain.statusPointSize, 14);
  EXPECT_EQ(frmMain.statusPanels,
            (std::vector<std::string>{" ALT + _Letter = Local HOT KEYS [F1 = HELP] ", "1"}));
  EXPECT_FALSE(frmSplash.loaded);
}

TEST_F(StartTest, TheLinkCanHaveTheStatusBarRewritten) {
  Start();
  SetStatusPanel(frmMain, 0, "Status: Framing Error");
  ASSERT_NE(RefreshStatusLine, nullptr);
  RefreshStatusLine();
  EXPECT_EQ(frmMain.statusPanels[0], " ALT + _Letter = Local HOT KEYS [F1 = HELP] ");
}

TEST_F(StartTest, AWidthWithoutAClassLeavesTheFontAlone) {
  SetDesktopWidth(720);
  Start();
  EXPECT_EQ(ScreenClass, 720);
  EXPECT_EQ(frmMain.statusPointSize, 0);
}

TEST_F(StartTest, FirstRunWritesTheSettingsBeforeTheMainMenuLoads) {
  Start();
  EXPECT_EQ(GetSetting("Options", "Comport"), "1");
  EXPECT_EQ(GetSetting("Options", "Show Tips at Startup"), "1");
  EXPECT_EQ(GetSetting("Check", "Viewcheck14"), "1");  // a screen of 1024
  EXPECT_EQ(frmMain.left, 1000);
  EXPECT_EQ(frmMain.width, 6500);
}

TEST_F(StartTest, ASecondInstanceEndsWithoutAWindow) {
  SetOtherInstance(true);
  SaveSetting("Options", "Comport", "2");
  Start();
  EXPECT_TRUE(ProgramEnding());
  EXPECT_EQ(TheFrame(), nullptr);
  EXPECT_TRUE(LoadedScreens().empty());
  EXPECT_EQ(GetSetting("Options", "Comport"), "2");
}

TEST_F(StartTest, ReadsTheOptions) {
  SaveSetting("Options", "Comport", "3");
  SaveSetting("Options", "Screensetting", "2");
  SaveSetting("Options", "Monitor Screen", "1");
  SaveSetting("Options", "QuickStart", "0");
  SaveSetting("Options", "Show Tips at Startup", "0");
  SaveSetting("Settings", "MainLeft", "150");
  Start();
  EXPECT_EQ(ComPort, 3);
  EXPECT_EQ(QuickStart, 0);
  EXPECT_FALSE(FindMenu(frmMain, "mnuoptionscreen1")->checked);
  EXPECT_TRUE(FindMenu(frmMain, "mnuoptionscreen2")->checked);
  EXPECT_TRUE(FindMenu(frmMain, "mnuoptionHigh")->checked);
  EXPECT_FALSE(FindMenu(frmMain, "mnuToolsTip")->checked);
  EXPECT_EQ(frmMain.left, 150);
}

TEST_F(StartTest, TheTipScreenComesFirstAndTheFrameWaitsForIt) {
  StandIn("frmTip", ScreenPlacement::Dialog);
  Start();
  EXPECT_FALSE(frmMain.enabled);
  EXPECT_FALSE(Form1.loaded);
  EXPECT_TRUE(FindMenu(frmMain, "mnuToolsTip")->checked);
  EXPECT_EQ(TakeNotes(), "+frmTip");
}

TEST_F(StartTest, WithTipsSwitchedOffTheMainMenuIsUpAtOnce) {
  StandIn("frmTip", ScreenPlacement::Dialog);
  SaveSetting("Options", "Comport", "1");
  SaveSetting("Options", "Show Tips at Startup", "0");
  Start();
  EXPECT_TRUE(frmMain.enabled);
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(TakeNotes(), "");
}

TEST_F(StartTest, WithoutATipScreenTheSettingStays) {
  Start();
  EXPECT_EQ(GetSetting("Options", "Show Tips at Startup"), "1");
  EXPECT_TRUE(frmMain.enabled);
}

// ---- the ends -----------------------------------------------------------------------------------

constexpr std::string_view saveQuestion =
    "          Changes have been made to the File /home/user/V8.bin          \n\r"
    "          Do You Wish to Save /home/user/V8.bin at this time?\n\r";

class EndTest : public ShellTest {
 protected:
  void SetUp() override {
    ShellTest::SetUp();
    Start();
    OpenSomeFile();
  }
};

TEST_F(EndTest, WithoutChangesItEndsWithoutAQuestion) {
  CloseFrameByUser();
  EXPECT_TRUE(ProgramEnding());
  EXPECT_TRUE(LoadedScreens().empty());
  EXPECT_FALSE(frmMain.shown);
}

TEST_F(EndTest, ChangesAreOfferedForSaving) {
  CalChanged = true;
  AnswerNextBox(Answer::Yes);
  CloseFrameByUser();
  ExpectBox(saveQuestion, "Save File Data", Buttons::YesNo);
  EXPECT_FALSE(CalChanged);
  EXPECT_FALSE(FileBytes("/home/user/V8.S19").empty());
  EXPECT_TRUE(ProgramEnding());
}

TEST_F(EndTest, AnsweredNoNothingIsSaved) {
  CalChanged = true;
  AnswerNextBox(Answer::No);
  CloseFrameByUser();
  ExpectBox(saveQuestion, "Save File Data", Buttons::YesNo);
  EXPECT_TRUE(FileBytes("/home/user/V8.S19").empty());
  EXPECT_TRUE(ProgramEnding());
}

TEST_F(EndTest, ASaveThatFailsIsAskedAgain) {
  CalChanged = true;
  FailNthWrite(1, FailureDiskFull);
  AnswerNextBox(Answer::Yes);
  AnswerNextBox(Answer::Ok);
  AnswerNextBox(Answer::Yes);
  CloseFrameByUser();
  EXPECT_EQ(TakeBox().title, "Save File Data");
  EXPECT_EQ(TakeBox().title, "Error");
  EXPECT_EQ(TakeBox().title, "Save File Data");
  EXPECT_FALSE(CalChanged);
  EXPECT_TRUE(ProgramEnding());
}

TEST_F(EndTest, TheExitButtonSavesUnderAName) {
  CalChanged = true;
  AnswerNextFile("/home/user/kept.bin");
  ClickOn(Form1, "ExitProgram");
  EXPECT_EQ(TakeBox().title, " Save BIN file As");
  EXPECT_EQ(FileBytes("/home/user/kept.bin").size(), 2048u);
  EXPECT_TRUE(ProgramEnding());
}

TEST_F(EndTest, TheExitButtonWithoutChangesJustEnds) {
  ClickOn(Form1, "ExitProgram");
  EXPECT_TRUE(ProgramEnding());
}

TEST_F(EndTest, ALeftSaveAsStillGetsTheQuestionOfTheFrame) {
  CalChanged = true;
  AnswerNextFile(std::nullopt);
  AnswerNextBox(Answer::No);
  ClickOn(Form1, "ExitProgram");
  EXPECT_EQ(TakeBox().kind, "save");
  ExpectBox(saveQuestion, "Save File Data", Buttons::YesNo);
  EXPECT_TRUE(ProgramEnding());
}

TEST_F(EndTest, ChangesWithoutANameAreOfferedToBeSavedUnderOne) {
  TargetBinPath.clear();  // a save under a wrong extension has cleared it
  CalChanged = true;
  AnswerNextBox(Answer::Yes);
  AnswerNextBox(Answer::Ok);
  AnswerNextFile("/home/user/kept.bin");
  CloseFrameByUser();
  ExpectBox(saveQuestion, "Save File Data", Buttons::YesNo);
  ExpectBox("No Valid BIN File is currently Open.");
  EXPECT_EQ(TakeBox().title, " Save BIN file As");
  EXPECT_EQ(FileBytes("/home/user/kept.bin").size(), 2048u);
  EXPECT_TRUE(ProgramEnding());
}

TEST_F(EndTest, ScreensAreUnloadedLastFirst) {
  StandIn("A", ScreenPlacement::Above);
  StandIn("B");
  OpenScreen("A");
  OpenScreen("B");
  TakeNotes();
  CloseFrameByUser();
  EXPECT_EQ(TakeNotes(), "-B -A");
}

TEST_F(EndTest, ThePlaceIsKept) {
  frmMain.left = 300;
  frmMain.top = 450;
  frmMain.width = 9000;
  frmMain.height = 7500;
  CloseFrameByUser();
  EXPECT_EQ(GetSetting("Settings", "MainLeft"), "300");
  EXPECT_EQ(GetSetting("Settings", "MainTop"), "450");
  EXPECT_EQ(GetSetting("Settings", "MainWidth"), "9000");
  EXPECT_EQ(GetSetting("Settings", "MainHeight"), "7500");
}

TEST_F(EndTest, AMinimisedFrameKeepsTheLastPlace) {
  frmMain.left = 300;
  frmMain.minimised = true;
  CloseFrameByUser();
  EXPECT_TRUE(ProgramEnding());
  EXPECT_EQ(GetSetting("Settings", "MainLeft"), "1000");
}

TEST_F(EndTest, ClosingTwiceAsksOnce) {
  CalChanged = true;
  WhileNextBoxIsOpen([] { UnloadMainFrame(); });
  AnswerNextBox(Answer::No);
  CloseFrameByUser();
  ExpectBox(saveQuestion, "Save File Data", Buttons::YesNo);
}

}  // namespace
