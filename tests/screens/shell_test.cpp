// The shell as its user meets it, by keys and mouse, on both platforms.
#include <array>
#include <string>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/frame.h"
#include "platform/loop.h"
#include "platform/system.h"
#include "shell/calscreen.h"
#include "shell/diagram.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "shell/start.h"
#include "shell/tools.h"
#include "support/testfolder.h"
#include "support/user.h"

namespace {

class ShellScreens : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ResetCalibrationState();
    ResetLinkState();
    CommonDialog = {};
    RegisterShellScreens();
    other.name = "Rev_limiter";
    other.build = [](Screen& screen) {
      Add(screen, {.name = "Command1", .kind = ControlKind::Button, .caption = "<< Back"});
    };
    other.cancelButton = "Command1";
    other.on.click = [](Screen&, Control&) { ShowCalibrationScreen("Rev_limiter"); };
    RegisterScreen("Rev_limiter", [this] { ShowScreen(other); });
    Main();
    RunPending();
  }
  void TearDown() override {
    PlatformTest::TearDown();
    ResetCalibrationState();
    ResetLinkState();
  }
  static std::string Top() { return TopWorkScreen() ? TopWorkScreen()->name : ""; }

  Screen other;
};

TEST_F(ShellScreens, TheMainMenuIsUpWithTheFocusOnItsFirstButton) {
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(ShownFocus(), "EditCalibration");
  EXPECT_EQ(ShownText(Form1, "EditCalibration"), "Edit a Calibration File");
  EXPECT_EQ(ShownText(Form1, "ExitProgram"), "  EXIT  Halvane2");
  EXPECT_TRUE(ShownEnabled(Form1, "SoftwareTools"));
  EXPECT_FALSE(ShownEnabled(Form1, "AutoCalibrate"));
}

TEST_F(ShellScreens, ArrowsAndEnterOpenTheTools) {
  for (int i = 0; i < 10 && ShownFocus() != "SoftwareTools"; ++i) PressKey("Down");
  ASSERT_EQ(ShownFocus(), "SoftwareTools");
  PressKey("Enter");
  RunPending();
  EXPECT_EQ(Top(), "STools");
}

TEST_F(ShellScreens, LeftAndRightGoToTheButtonBeside) {
  EXPECT_EQ(ShownFocus(), "EditCalibration");
  PressKey("Right");
  RunPending();
  EXPECT_EQ(ShownFocus(), "MonitorOptions");  // the only one of its group that is on
  PressKey("Left");
  RunPending();
  EXPECT_EQ(ShownFocus(), "EditCalibration");
}

TEST_F(ShellScreens, LettersPressButtonsAndEscComesBackToThem) {
  PressKey("Alt+S");
  RunPending();
  EXPECT_EQ(Top(), "STools");
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(ShownFocus(), "SoftwareTools");
}

TEST_F(ShellScreens, AFileIsOpenedOnTheWayToTheCalibrationScreen) {
  const std::string path = TestFolder() + "/V8.bin";
  MakeFile(path, std::string(2048, '\0'));
  AnswerNextFile(path);
  PressKey("Alt+E");
  RunPending();
  EXPECT_EQ(TakeBox().title, "Open Halvane2 User BIN Files");
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_EQ(frmMain.title, "Halvane2 Version 2.0.0  Currently Open 'BIN' File = " + path);
  PressKey("Alt+R");
  RunPending();
  EXPECT_EQ(Top(), "Rev_limiter");
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_EQ(ShownFocus(), "RevLimiter");
}

TEST_F(ShellScreens, StartModesHideAndShowTheExpertsButtons) {
  ShowCalibrationScreen();
  RunPending();
  EXPECT_FALSE(ShownVisible(CSForm1, "KnockControl"));
  ClickOn(CSForm1, "Option2");
  RunPending();
  for (const char* name : {"KnockControl", "SensorParameters", "SoftwareDiagram"})
    EXPECT_TRUE(ShownVisible(CSForm1, name)) << name;
  EXPECT_EQ(GetSetting("Options", "QuickStart"), "0");
  ClickOn(CSForm1, "Option1");
  RunPending();
  for (const char* name : {"KnockControl", "SensorParameters", "SoftwareDiagram"})
    EXPECT_FALSE(ShownVisible(CSForm1, name)) << name;
}

TEST_F(ShellScreens, CtrlLettersPopTheMenusUp) {
  const std::array<std::pair<const char*, const char*>, 6> keys = {{{"Ctrl+C", "mnuCal"},
                                                                    {"Ctrl+F", "mnuFile"},
                                                                    {"Ctrl+H", "mnuHelp"},
                                                                    {"Ctrl+O", "mnuCom"},
                                                                    {"Ctrl+T", "mnuTools"},
                                                                    {"Ctrl+V", "mnuView"}}};
  for (const auto& [key, menu] : keys) {
    PressKey(key);
    RunPending();
    EXPECT_EQ(TakePopUpMenu(), menu);
  }
}

TEST_F(ShellScreens, CtrlPStepsThePort) {
  for (const char* port : {"2", "3", "4", "1"}) {
    PressKey("Ctrl+P");
    RunPending();
    EXPECT_EQ(frmMain.statusPanels[1], port);
    EXPECT_EQ(GetSetting("Options", "Comport"), port);
  }
}

TEST_F(ShellScreens, CtrlEFromTheToolsShowsTheCalibrationScreen) {
  PressKey("Alt+S");
  RunPending();
  PressKey("Ctrl+E");
  RunPending();
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_FALSE(STools.loaded);
}

TEST_F(ShellScreens, F1ShowsTheGeneralHelp) {
  PressKey("F1");
  RunPending();
  EXPECT_EQ(TakeBox().text,
            "The Brantwell Fast Help System\r\nis available by typing 'F1' as an Integral\r\n"
            "part of the Halvane2 Windows Software.");
}

TEST_F(ShellScreens, MenuEntriesOpenScreensAndChoosePorts) {
  ChooseMenu("mnuCalrev");
  RunPending();
  EXPECT_EQ(Top(), "Rev_limiter");
  ChooseMenu("mnuComportssub3");
  RunPending();
  EXPECT_EQ(ComPort, 3);
  ChooseMenu("mnuViewMain");
  RunPending();
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(ShellScreens, OptionsAreChosenByTheirLetters) {
  PressKey("Alt+O");
  RunPending();
  ASSERT_EQ(OpenDialogScreen(), &Options);
  PressKey("Alt+D");
  PressKey("Alt+H");
  RunPending();
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(OpenDialogScreen(), nullptr);
  EXPECT_EQ(GetSetting("Options", "Screensetting"), "1");
  EXPECT_TRUE(FindMenu(frmMain, "mnuoptionscreen2")->checked);
  EXPECT_TRUE(FindMenu(frmMain, "mnuoptionHigh")->checked);
  EXPECT_EQ(ShownFocus(), "MonitorOptions");
}

TEST_F(ShellScreens, TheTreeGoesWhereItsNodesSay) {
  GoTo("Soft_Dia");
  RunPending();
  DoubleClickNode(Soft_Dia, "TreeView1", "TPS Acceleration");
  RunPending();
  EXPECT_EQ(Top(), "Soft_Dia");
  DoubleClickNode(Soft_Dia, "TreeView1", "Rev Limiter");
  RunPending();
  EXPECT_EQ(Top(), "Rev_limiter");
}

TEST_F(ShellScreens, AnOnflySessionSwitchesEightButtonsOff) {
  for (const char* name : {"Monitor3", "WIZARD", "Choose", "Program_ZEM", "Datpara", "Viewmap"})
    RegisterScreen(name, [] {});
  SaveSetting("Options", "Screensetting", "1");
  bool running = false;
  RegisterScreen("Monitor3", [this, &running] {
    running = true;
    int on = 0;
    for (const ButtonRow& row : MainMenuRows()) on += ShownEnabled(Form1, row.name) ? 1 : 0;
    EXPECT_EQ(on, 3);
    EXPECT_EQ(Top(), "Form1");
  });
  RefreshMainMenu();
  PressKey("Alt+M");
  RunPending();
  EXPECT_TRUE(running);
  EXPECT_EQ(MonitorMode, 3);
}

TEST_F(ShellScreens, EscOnTheMainMenuEndsTheProgram) {
  PressKey("Esc");
  RunPending();
  EXPECT_TRUE(ProgramEnding());
  EXPECT_FALSE(frmMain.shown);
}

TEST_F(ShellScreens, ClosingTheWindowAsksAboutChanges) {
  CurrentBinPath = TargetBinPath = TestFolder() + "/V8.bin";
  CalChanged = true;
  AnswerNextBox(Answer::No);
  CloseFrameByUser();
  RunPending();
  EXPECT_EQ(TakeBox().title, "Save File Data");
  EXPECT_TRUE(ProgramEnding());
}

}  // namespace
