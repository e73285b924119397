// The hot keys on every screen that shares them.
#include "shell/hotkeys.h"

#include <array>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/failure.h"
#include "platform/frame.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/system.h"
#include "shell/calscreen.h"
#include "shell/diagram.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "shell/shelltest.h"

namespace {

class HotKeyTest : public ShellTest {
 protected:
  void SetUp() override {
    ShellTest::SetUp();
    StandInForAll();
    Start();
  }
  // An editor as others write it.
  Screen& Editor(HotKeyRules rules = {}) {
    Screen& editor = StandIn("Editor");
    editor.on.keyDown = [rules](Screen&, KeyEvent& event) { HandleHotKey(event, rules); };
    GoTo("Editor");
    TakeNotes();
    return editor;
  }
};

TEST_F(HotKeyTest, LettersPopTheMenusUpOnEveryScreen) {
  const std::array<std::pair<const char*, const char*>, 6> keys = {{{"Ctrl+C", "mnuCal"},
                                                                    {"Ctrl+F", "mnuFile"},
                                                                    {"Ctrl+H", "mnuHelp"},
                                                                    {"Ctrl+O", "mnuCom"},
                                                                    {"Ctrl+T", "mnuTools"},
                                                                    {"Ctrl+V", "mnuView"}}};
  Editor();
  for (const char* screen : {"Form1", "CSForm1", "STools", "Soft_Dia", "Editor"}) {
    GoTo(screen);
    for (const auto& [key, menu] : keys) {
      PressKey(key);
      EXPECT_EQ(TakePopUpMenu(), menu) << key << " on " << screen;
    }
    EXPECT_EQ(Top(), screen);
  }
  LeaveWork();
  for (const auto& [key, menu] : keys) {
    PressKey(key);
    EXPECT_EQ(TakePopUpMenu(), menu) << key << " on the frame";
  }
}

TEST_F(HotKeyTest, CtrlAloneAndOtherLettersAreIgnored) {
  KeyEvent ctrl{.key = KeyControl, .ctrl = true};
  EXPECT_FALSE(HandleHotKey(ctrl));
  EXPECT_FALSE(ctrl.handled);
  KeyEvent other{.key = 'Q', .ctrl = true};
  EXPECT_FALSE(HandleHotKey(other));
  EXPECT_FALSE(other.handled);
  KeyEvent plain{.key = 'S'};
  EXPECT_FALSE(HandleHotKey(plain));
  KeyEvent right{.key = 'S', .ctrl = true, .alt = true};  // the right Alt key
  EXPECT_FALSE(HandleHotKey(right));
  PressKey("Ctrl");
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(HotKeyTest, CtrlEClosesTheScreenAndShowsTheCalibrationScreen) {
  Editor();
  PressKey("Ctrl+E");
  EXPECT_EQ(TakeNotes(), "-Editor");
  EXPECT_EQ(Top(), "CSForm1");
}

TEST_F(HotKeyTest, TheCalibrationScreenHasNoCtrlE) {
  GoTo("CSForm1");
  SetFocus(At(CSForm1, "RevLimiter"));
  PressKey("Ctrl+E");
  EXPECT_EQ(ShownFocus(), "RevLimiter");
  KeyEvent event{.key = 'E', .ctrl = true};
  EXPECT_TRUE(HandleHotKey(event, {.calibrationScreen = false}));
  EXPECT_EQ(ShownFocus(), "RevLimiter");
}

TEST_F(HotKeyTest, CtrlMViewsTheMonitor) {
  Editor();
  PressKey("Ctrl+M");
  RunPending();
  EXPECT_EQ(TakeNotes(), "-Editor +Monitor1");
}

TEST_F(HotKeyTest, CtrlMLeavesTheEditorBelowTheDigitalMonitor) {
  StandIn("Monitor3", ScreenPlacement::Above);
  SaveSetting("Options", "Screensetting", "1");
  Editor();
  PressKey("Ctrl+M");
  RunPending();
  EXPECT_EQ(TakeNotes(), "+Monitor3");
  EXPECT_EQ(Top(), "Editor");
  EXPECT_EQ(MonitorMode, 3);
}

TEST_F(HotKeyTest, CtrlMRefusesWhileThePortIsHeld) {
  Editor();
  PortHeld = true;
  PressKey("Ctrl+M");
  ExpectBox(PortRefusal);
  EXPECT_EQ(TakeNotes(), "");
}

TEST_F(HotKeyTest, CtrlPStepsThroughFourPortsAndKeepsEach) {
  for (int port : {2, 3, 4, 1}) {
    PressKey("Ctrl+P");
    EXPECT_EQ(ComPort, port);
    EXPECT_EQ(GetSetting("Options", "Comport"), std::to_string(port));
    EXPECT_EQ(frmMain.statusPanels[1], std::to_string(port));
  }
}

TEST_F(HotKeyTest, CtrlPOfBasicInjectorsFlipsTwoPortsAndKeepsNone) {
  Editor({.portOneOrTwoOnly = true});
  for (int port : {2, 1, 2}) {
    PressKey("Ctrl+P");
    EXPECT_EQ(ComPort, port);
    EXPECT_EQ(frmMain.statusPanels[1], std::to_string(port));
  }
  EXPECT_EQ(GetSetting("Options", "Comport"), "1");
  ComPort = 4;
  PressKey("Ctrl+P");
  EXPECT_EQ(ComPort, 1);
}

TEST_F(HotKeyTest, CtrlSSaves) {
  OpenSomeFile();
  Editor();
  CalChanged = true;
  PressKey("Ctrl+S");
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(FileBytes("/home/user/V8.S19").size(), 32u * 44 + 12);
  EXPECT_EQ(Top(), "Editor");
}

TEST_F(HotKeyTest, CtrlSWithNothingOpenSaysSoAndStays) {
  Editor();
  CalChanged = true;
  PressKey("Ctrl+S");
  ExpectBox("No Valid BIN File is currently Open.");
  EXPECT_TRUE(CalChanged);
  EXPECT_TRUE(AllFiles().empty());
  EXPECT_EQ(Top(), "Editor");
}

TEST_F(HotKeyTest, CtrlXClosesTheScreenAndEnds) {
  Editor();
  PressKey("Ctrl+X");
  EXPECT_EQ(TakeNotes(), "-Editor");
  EXPECT_TRUE(ProgramEnding());
  EXPECT_FALSE(frmMain.shown);
}

TEST_F(HotKeyTest, KeysOfTheBareFrame) {
  LeaveWork();
  PressKey("F1");
  EXPECT_EQ(TakeBox().text,
            "The Brantwell Fast Help System\r\nis available by typing 'F1' as an Integral\r\n"
            "part of the Halvane2 Windows Software.");
  PressKey("Ctrl+P");
  EXPECT_EQ(ComPort, 2);
  RepeatKey("Esc");
  EXPECT_FALSE(ProgramEnding()) << "it is still held down from the screen that it has left";
  PressKey("Esc");
  EXPECT_TRUE(ProgramEnding());
}

// ---- save and program ---------------------------------------------------------------------------

class SaveAndProgramTest : public HotKeyTest {
 protected:
  void SetUp() override {
    HotKeyTest::SetUp();
    OpenSomeFile();
    CalChanged = true;
    Screen& programmer = StandIn("Program_ZEM");
    programmer.on.load = [this](Screen&) {
      EXPECT_TRUE(KillFirst);
      EXPECT_FALSE(CalChanged) << "programmed before it was saved";
      EXPECT_EQ(YieldDepth(), 0);
      Note("programmed");
      KillFirst = false;
    };
  }
};

TEST_F(SaveAndProgramTest, ClosesSavesProgramsAndShowsTheAnalogMonitor) {
  Editor();
  PressKey("Ctrl+Z");
  EXPECT_EQ(TakeNotes(), "-Editor");
  EXPECT_TRUE(CalChanged);
  RunPending();
  EXPECT_EQ(TakeNotes(), "programmed -Program_ZEM +Monitor1 -Monitor1");
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(SaveAndProgramTest, ShowsTheDigitalMonitorWhenItsEntryIsChecked) {
  SetMenuChecked(frmMain, "mnuoptionscreen2", true);
  Editor();
  PressKey("Ctrl+Z");
  RunPending();
  EXPECT_EQ(TakeNotes(), "-Editor programmed -Program_ZEM +Monitor3 -Monitor3");
}

TEST_F(SaveAndProgramTest, TheDigitalMonitorHasTheMainMenuBesideIt) {
  SetMenuChecked(frmMain, "mnuoptionscreen2", true);
  RegisterScreen("Monitor3", [] {
    EXPECT_EQ(MonitorMode, 3);
    EXPECT_EQ(Top(), "Form1");
    EXPECT_FALSE(ShownEnabled(Form1, "ProgramZem"));
    EXPECT_TRUE(ShownEnabled(Form1, "EditCalibration"));
    MonitorMode = 0;
  });
  Editor();
  PressKey("Ctrl+Z");
  RunPending();
  EXPECT_EQ(Top(), "Form1");
  EXPECT_TRUE(ShownEnabled(Form1, "ProgramZem"));
}

TEST_F(SaveAndProgramTest, UnloadsTheDigitalMonitorFirstInAnOnflySession) {
  StandIn("Monitor3", ScreenPlacement::Above);
  OpenScreen("Monitor3");
  Editor();
  MonitorMode = 3;
  TakeNotes();
  PressKey("Ctrl+Z");
  EXPECT_EQ(TakeNotes(), "-Monitor3 -Editor");
  RunPending();
  EXPECT_EQ(TakeNotes(), "programmed -Program_ZEM +Monitor1 -Monitor1");
}

TEST_F(SaveAndProgramTest, LeavesAMonitorOfAnotherModeToItself) {
  StandIn("Monitor3", ScreenPlacement::Above);
  OpenScreen("Monitor3");
  Editor();
  MonitorMode = 1;
  TakeNotes();
  PressKey("Ctrl+Z");
  EXPECT_EQ(TakeNotes(), "-Editor");
  RunPending();
}

TEST_F(SaveAndProgramTest, ASaveThatFailsProgramsNothing) {
  Editor();
  FailNthWrite(1, FailureDiskFull);
  PressKey("Ctrl+Z");
  RunPending();
  EXPECT_EQ(TakeBox().title, "Error");
  EXPECT_EQ(TakeNotes(), "-Editor");
  EXPECT_TRUE(CalChanged);
  EXPECT_FALSE(KillFirst);
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(SaveAndProgramTest, WithNothingOpenItSaysSoAndProgramsNothing) {
  CurrentBinPath.clear();
  TargetBinPath.clear();
  Editor();
  PressKey("Ctrl+Z");
  RunPending();
  ExpectBox("No Valid BIN File is currently Open.");
  EXPECT_EQ(TakeNotes(), "-Editor");
  EXPECT_FALSE(KillFirst);
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(SaveAndProgramTest, AProgrammerThatRefusesDoesNotKillTheEngineLater) {
  RegisterScreen("Program_ZEM", [this] { Note("refused"); });
  Editor();
  PressKey("Ctrl+Z");
  RunPending();
  EXPECT_EQ(TakeNotes(), "-Editor refused +Monitor1 -Monitor1");
  EXPECT_FALSE(KillFirst);
}

// The main menu has been loaded during the session, which took its mode away.
TEST_F(SaveAndProgramTest, WhileASessionKeepsThePortItSavesAndRefusesTheRest) {
  StandIn("Monitor3", ScreenPlacement::Above);
  OpenScreen("Monitor3");
  Editor();
  PortHeld = true;
  PressKey("Ctrl+Z");
  ExpectBox(PortRefusal);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(Top(), "Form1");
  PortHeld = false;
  RunPending();
  EXPECT_EQ(TakeNotes(), "-Editor");
  EXPECT_FALSE(KillFirst);
}

TEST_F(SaveAndProgramTest, NeverRunsInsideALiveLoop) {
  Screen& monitor = StandIn("Monitor3", ScreenPlacement::Above);
  bool stop = false;
  monitor.on.unload = [this, &stop](Screen&) {
    Note("-Monitor3");
    stop = true;
  };
  RegisterScreen("Monitor3", [this, &monitor, &stop] {
    ShowScreen(monitor);
    ActivateScreen(*FindLoaded("Editor"));
    while (!stop) Yield();
    for (int pass = 0; pass < 50; ++pass) Yield();
    Note("loop ended");
    MonitorMode = 0;
  });
  Editor();
  AfterMs(5, [] { PressKey("Ctrl+Z"); });
  MonitorMode = 3;
  RunFromQueue([] { OpenScreen("Monitor3"); });
  RunPending();
  EXPECT_EQ(TakeNotes(),
            "+Monitor3 -Monitor3 -Editor loop ended programmed -Program_ZEM +Monitor1 -Monitor1");
}

}  // namespace
