// The main menu: its buttons, guards and questions.
#include "shell/mainmenu.h"

#include <array>
#include <vector>

#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/failure.h"
#include "platform/frame.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/system.h"
#include "shell/calscreen.h"
#include "shell/commands.h"
#include "shell/mainframe.h"
#include "shell/navigation.h"
#include "shell/shelltest.h"

namespace {

class MainMenuTest : public ShellTest {
 protected:
  // The button refuses with this text, and the menu stays as it is.
  void ExpectRefusal(const std::string& button, std::string_view text) {
    SCOPED_TRACE(button);
    ClickOn(Form1, button);
    RunPending();
    ExpectBox(text);
    EXPECT_EQ(Top(), "Form1");
    EXPECT_EQ(TakeNotes(), "");
  }
};

TEST_F(MainMenuTest, EveryButtonHasItsCaption) {
  Start();
  const std::vector<std::pair<std::string, std::string>> captions = {
      {"EditCalibration", "&Edit a Calibration File"},
      {"ViewMonitor", "&Monitor Engine Functions"},
      {"ProgramZem", "&Program ZEM"},
      {"CreateDatalog", "&Create a Datalog File"},
      {"ViewDatalog", "&View a Datalog File"},
      {"Command6", " &Halvane2 Engine Tuning Wizard"},
      {"SoftwareTools", "&Software Tools"},
      {"UsersGuide", "View Software &User's Guide"},
      {"AutoCalibrate", "&Auto Calibrate V/E Table"},
      {"MonitorOptions", "ONFLY and Monitor  &Options"},
      {"ExitProgram", "  EXIT  Halvane2"},
  };
  for (const auto& [name, caption] : captions) EXPECT_EQ(At(Form1, name).caption, caption);
  EXPECT_EQ(MainMenuRows().size(), captions.size());
}

TEST_F(MainMenuTest, LoadEndsWhatWasLiveAndReadsThePort) {
  Start();
  UnloadScreen(Form1);
  MonitorMode = 1;
  SaveSetting("Options", "Comport", "3");
  ShowMainMenu();
  EXPECT_EQ(MonitorMode, 0);
  EXPECT_EQ(ComPort, 3);
  EXPECT_EQ(frmMain.statusPanels[1], "3");
  EXPECT_EQ(Form1.title, "Main Menu        Halvane2 Version 2.0.0");
}

TEST_F(MainMenuTest, ButtonsOfUnknownScreensAreOffAndComeOnByRegistering) {
  Start();
  for (const char* name :
       {"ViewMonitor", "ProgramZem", "CreateDatalog", "ViewDatalog", "Command6", "AutoCalibrate"})
    EXPECT_FALSE(ShownEnabled(Form1, name)) << name;
  for (const char* name :
       {"EditCalibration", "SoftwareTools", "UsersGuide", "MonitorOptions", "ExitProgram"})
    EXPECT_TRUE(ShownEnabled(Form1, name)) << name;
  StandInForAll();
  RefreshMainMenu();
  for (const ButtonRow& row : MainMenuRows())
    EXPECT_TRUE(ShownEnabled(Form1, row.name)) << row.name;
}

TEST_F(MainMenuTest, GuardedButtonsRefuseWhileSomethingIsLive) {
  StandInForAll();
  Start();
  MonitorMode = 1;
  PortHeld = true;
  for (const char* name : {"ProgramZem", "CreateDatalog", "ViewDatalog", "Command6",
                           "SoftwareTools", "UsersGuide", "AutoCalibrate", "MonitorOptions"})
    ExpectRefusal(name, LiveRefusal);
}

TEST_F(MainMenuTest, ButtonsThatNeedThePortRefuseWhileItIsHeld) {
  StandInForAll();
  Start();
  PortHeld = true;
  for (const char* name : {"ViewMonitor", "ProgramZem", "CreateDatalog", "AutoCalibrate"})
    ExpectRefusal(name, PortRefusal);
  ClickOn(Form1, "SoftwareTools");
  EXPECT_EQ(Top(), "STools");
}

// ---- editing ------------------------------------------------------------------------------------

TEST_F(MainMenuTest, EditOpensAFileAndGoesToTheCalibrationScreen) {
  Start();
  PutSomeFile();
  AnswerNextFile(SomeFile);
  PressKey("Alt+E");
  EXPECT_EQ(TakeBox().title, "Open Halvane2 User BIN Files");
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_FALSE(Form1.loaded);
  EXPECT_EQ(CurrentBinPath, SomeFile);
}

TEST_F(MainMenuTest, EditWithoutAFileComesBackToItsButton) {
  Start();
  ClickOn(Form1, "SoftwareTools");
  PressKey("Esc");
  AnswerNextFile(std::nullopt);
  PressKey("Alt+E");
  EXPECT_EQ(TakeBox().kind, "open");
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(ShownFocus(), "EditCalibration");
}

TEST_F(MainMenuTest, EditAsksWhetherTheOpenFileIsMeant) {
  Start();
  OpenSomeFile();
  AnswerNextBox(Answer::Yes);
  ClickOn(Form1, "EditCalibration");
  ExpectBox(
      "\r\nDo you want to use File /home/user/V8.bin\r\nType YES: To use Current File\r\n"
      "Type NO: To Open a New File.",
      "File Open Query", Buttons::YesNo);
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_EQ(CurrentBinPath, SomeFile);
}

TEST_F(MainMenuTest, EditAnsweredNoOpensAnotherFile) {
  Start();
  OpenSomeFile();
  AnswerNextBox(Answer::No);
  AnswerNextFile(std::nullopt);
  ClickOn(Form1, "EditCalibration");
  EXPECT_EQ(TakeBox().title, "File Open Query");
  EXPECT_EQ(TakeBox().kind, "open");
  EXPECT_EQ(Top(), "CSForm1");  // a dialog that was left keeps the file that is open
}

// ---- the engine ---------------------------------------------------------------------------------

TEST_F(MainMenuTest, AnalogMonitorTakesThePlaceOfTheMenu) {
  Start();
  StandIn("Monitor1");
  RefreshMainMenu();
  ClickOn(Form1, "ViewMonitor");
  EXPECT_FALSE(Form1.loaded);
  RunPending();
  EXPECT_EQ(Top(), "Monitor1");
  EXPECT_EQ(MonitorMode, 0);  // the monitor's own
}

TEST_F(MainMenuTest, DigitalMonitorStandsBesideAMenuWithEightButtonsOff) {
  StandInForAll();
  StandIn("Monitor3", ScreenPlacement::Above);
  Start();
  SaveSetting("Options", "Screensetting", "1");
  ClickOn(Form1, "ViewMonitor");
  EXPECT_EQ(MonitorMode, 3);
  RunPending();
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(TakeNotes(), "+Monitor3");
  std::vector<std::string> on;
  for (const ButtonRow& row : MainMenuRows())
    if (ShownEnabled(Form1, row.name)) on.emplace_back(row.name);
  EXPECT_EQ(on, (std::vector<std::string>{"EditCalibration", "ViewMonitor", "ExitProgram"}));
}

TEST_F(MainMenuTest, EditStillAnswersInAnOnflySession) {
  StandInForAll();
  StandIn("Monitor3", ScreenPlacement::Above);
  Start();
  OpenSomeFile();
  SaveSetting("Options", "Screensetting", "1");
  ClickOn(Form1, "ViewMonitor");
  RunPending();
  AnswerNextBox(Answer::Yes);
  ClickOn(Form1, "EditCalibration");
  EXPECT_EQ(TakeBox().title, "File Open Query");
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_EQ(MonitorMode, 3);
}

TEST_F(MainMenuTest, ButtonsComeBackWhenTheOnflySessionHasEnded) {
  StandInForAll();
  RegisterScreen("Monitor3", [] {
    EXPECT_FALSE(ShownEnabled(Form1, "ProgramZem"));
    MonitorMode = 0;
  });
  Start();
  SaveSetting("Options", "Screensetting", "1");
  ClickOn(Form1, "ViewMonitor");
  RunPending();
  EXPECT_TRUE(ShownEnabled(Form1, "ProgramZem"));
}

TEST_F(MainMenuTest, ProgrammingBrokenOffComesBackToItsButton) {
  RegisterScreen("Program_ZEM", [this] {
    EXPECT_EQ(Top(), "");
    EXPECT_EQ(YieldDepth(), 0);
    Note("programmed");
  });
  Start();
  ClickOn(Form1, "ProgramZem");
  EXPECT_FALSE(Form1.loaded);
  RunPending();
  EXPECT_EQ(TakeNotes(), "programmed");
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(ShownFocus(), "ProgramZem");
}

TEST_F(MainMenuTest, ProgrammingStaysUpWithItsResult) {
  StandIn("Program_ZEM");
  Start();
  ClickOn(Form1, "ProgramZem");
  RunPending();
  EXPECT_EQ(TakeNotes(), "+Program_ZEM");
  EXPECT_EQ(Top(), "Program_ZEM");
}

TEST_F(MainMenuTest, AMenuThatProgrammingBroughtBackGetsTheFocusOnItsButton) {
  RegisterScreen("Program_ZEM", [] { OpenScreen("Form1"); });
  Start();
  ClickOn(Form1, "ProgramZem");
  RunPending();
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(ShownFocus(), "ProgramZem");
}

// ---- logs ---------------------------------------------------------------------------------------

TEST_F(MainMenuTest, LoggingWithoutAFileAsksForOne) {
  StandInForAll();
  Start();
  PutSomeFile();
  AnswerNextBox(Answer::Ok);
  AnswerNextFile(SomeFile);
  ClickOn(Form1, "CreateDatalog");
  ExpectBox(
      "No Valid 'BIN' is Currently Open\r\nDo you wish to Open a 'BIN file Now?\r\n"
      "Press OK: To Open a BIN file\r\nPress CANCEL: To Abort",
      "No Valid BIN File Open Error", Buttons::OkCancel);
  EXPECT_EQ(TakeBox().kind, "open");
  EXPECT_EQ(Top(), "Datpara");
}

TEST_F(MainMenuTest, LoggingWithoutAFileCanBeLeft) {
  StandInForAll();
  Start();
  AnswerNextBox(Answer::Cancel);
  ClickOn(Form1, "CreateDatalog");
  EXPECT_EQ(TakeBox().title, "No Valid BIN File Open Error");
  EXPECT_EQ(Top(), "Form1");
  AnswerNextBox(Answer::Ok);
  AnswerNextFile(std::nullopt);
  ClickOn(Form1, "CreateDatalog");
  EXPECT_EQ(TakeBox().title, "No Valid BIN File Open Error");
  EXPECT_EQ(TakeBox().kind, "open");
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(MainMenuTest, LoggingWithAFileGoesToItsSetUp) {
  StandInForAll();
  Start();
  OpenSomeFile();
  ClickOn(Form1, "CreateDatalog");
  EXPECT_EQ(Top(), "Datpara");
  EXPECT_FALSE(Form1.loaded);
}

TEST_F(MainMenuTest, OtherButtonsCloseTheMenuAndOpenTheirScreen) {
  StandInForAll();
  Start();
  const std::array<std::pair<const char*, const char*>, 3> opened = {
      {{"ViewDatalog", "Viewmap"}, {"SoftwareTools", "STools"}, {"AutoCalibrate", "Choose"}}};
  for (const auto& [button, screen] : opened) {
    ShowMainMenu();
    ClickOn(Form1, button);
    EXPECT_EQ(Top(), screen);
    EXPECT_FALSE(Form1.loaded) << button;
  }
}

TEST_F(MainMenuTest, OptionsStandBeforeTheMenu) {
  Start();
  PressKey("Alt+O");
  ASSERT_NE(OpenDialogScreen(), nullptr);
  EXPECT_EQ(OpenDialogScreen()->name, "Options");
  EXPECT_TRUE(Form1.loaded);
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(OpenDialogScreen(), nullptr);
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(ShownFocus(), "MonitorOptions");
}

// ---- the wizard ---------------------------------------------------------------------------------

constexpr std::string_view wizardQuestion =
    "\r\nDo You wish to Edit a New Base.BIN File:\r\nYES: To Edit New Calibration (BASE.BIN).\r\n"
    "NO:  To Edit Current Calibration (/home/user/V8.bin)\r\nCANCEL: To Return";

class WizardTest : public MainMenuTest {
 protected:
  void SetUp() override {
    MainMenuTest::SetUp();
    StandInForAll();
    Start();
    PutFile("/home/user/base.bin", std::vector<std::uint8_t>(2048, 0));
  }
};

TEST_F(WizardTest, WithoutAFileItStartsFromTheBaseCalibration) {
  PressKey("Alt+H");
  EXPECT_EQ(Top(), "WIZARD");
  EXPECT_FALSE(WizardKeepFile);
  EXPECT_NE(CurrentBinPath.find("base.bin"), std::string::npos);
  EXPECT_EQ(TargetBinPath, CurrentBinPath);
}

TEST_F(WizardTest, AnsweredYesItStartsFromTheBaseCalibration) {
  OpenSomeFile();
  WizardKeepFile = true;
  AnswerNextBox(Answer::Yes);
  ClickOn(Form1, "Command6");
  ExpectBox(wizardQuestion, "Edit Calibration File", Buttons::YesNoCancel);
  EXPECT_EQ(Top(), "WIZARD");
  EXPECT_FALSE(WizardKeepFile);
  EXPECT_NE(CurrentBinPath, SomeFile);
}

TEST_F(WizardTest, AnsweredNoItKeepsTheCurrentCalibration) {
  OpenSomeFile();
  TargetBinPath = "/home/user/other.bin";
  AnswerNextBox(Answer::No);
  ClickOn(Form1, "Command6");
  ExpectBox(wizardQuestion, "Edit Calibration File", Buttons::YesNoCancel);
  EXPECT_EQ(Top(), "WIZARD");
  EXPECT_TRUE(WizardKeepFile);
  EXPECT_EQ(CurrentBinPath, SomeFile);
  EXPECT_EQ(TargetBinPath, SomeFile);
}

TEST_F(WizardTest, CancelledItShowsTheMenuAgain) {
  OpenSomeFile();
  AnswerNextBox(Answer::Cancel);
  SetStatusPanel(frmMain, 0, "Status: Break Received");
  ClickOn(Form1, "Command6");
  ExpectBox(wizardQuestion, "Edit Calibration File", Buttons::YesNoCancel);
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(ShownFocus(), "Command6");
  EXPECT_EQ(frmMain.statusPanels[0], " ALT + _Letter = Local HOT KEYS [F1 = HELP] ");
}

TEST_F(WizardTest, WithoutABaseCalibrationTheMenuComesBack) {
  FailNthOpen(1, FailureFileNotFound, true);
  ClickOn(Form1, "Command6");
  EXPECT_EQ(TakeBox().title, "Error");
  EXPECT_EQ(CurrentBinPath, "");
  EXPECT_EQ(Top(), "Form1");
}

// ---- keys ---------------------------------------------------------------------------------------

TEST_F(MainMenuTest, F1ShowsTheGeneralHelp) {
  Start();
  PressKey("F1");
  ExpectBox(
      "The Brantwell Fast Help System\r\nis available by typing 'F1' as an Integral\r\n"
      "part of the Halvane2 Windows Software.");
}

TEST_F(MainMenuTest, EscIsTheExitButton) {
  Start();
  PressKey("Esc");
  EXPECT_FALSE(Form1.loaded);
  EXPECT_TRUE(ProgramEnding());
}

// From the calibration screen the first one leads to the main menu; the others ask nothing, and
// above all end nothing.
TEST_F(MainMenuTest, EscThatIsHeldDownLeavesOneScreenAndKeepsUnsavedWork) {
  Start();
  OpenSomeFile();
  CalChanged = true;
  GoTo("CSForm1");
  PressKey("Esc");
  for (int i = 0; i < 30; ++i) {
    RepeatKey("Esc");
    RunPending();
  }
  EXPECT_EQ(Top(), "Form1");
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_FALSE(ProgramEnding());
  EXPECT_TRUE(CalChanged);
}

TEST_F(MainMenuTest, ArrowsWalkTheButtonsDownAndAcross) {
  StandInForAll();
  Start();
  EXPECT_EQ(ShownFocus(), "EditCalibration");
  PressKey("Down");
  EXPECT_EQ(ShownFocus(), "Command6");
  PressKey("Right");
  EXPECT_EQ(ShownFocus(), "CreateDatalog");
  PressKey("Right");
  EXPECT_EQ(ShownFocus(), "CreateDatalog");
  PressKey("Up");
  EXPECT_EQ(ShownFocus(), "ViewMonitor");
  PressKey("Left");
  EXPECT_EQ(ShownFocus(), "EditCalibration");
}

TEST_F(MainMenuTest, TheNearestButtonThatIsOnIsTheOneBeside) {
  StandIn("Choose");
  StandIn("Datpara");
  Start();
  SetFocus(At(Form1, "AutoCalibrate"));
  PressKey("Right");
  EXPECT_EQ(ShownFocus(), "CreateDatalog");
  PressKey("Left");
  EXPECT_EQ(ShownFocus(), "EditCalibration");
  SetFocus(At(Form1, "SoftwareTools"));
  PressKey("Right");
  EXPECT_EQ(ShownFocus(), "UsersGuide");
}

}  // namespace
