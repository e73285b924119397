// The commands of the main menu and of the file menu.
#include "shell/commands.h"

#include <string>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "core/settings.h"
#include "link/comm.h"
#include "platform/dialogs.h"
#include "platform/screen.h"
#include "shell/guards.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "shell/texts.h"

bool WizardKeepFile = false;

namespace {

bool NoFileIsOpen() { return CurrentBinPath.empty(); }

bool KeepsCurrentFile() {
  if (NoFileIsOpen()) return false;
  return MsgBox(Lines({"", "Do you want to use File " + CurrentBinPath,
                       "Type YES: To use Current File", "Type NO: To Open a New File."}),
                Buttons::YesNo, "File Open Query", BoxIcon::Question) == Answer::Yes;
}

// Without an open calibration the logger has nothing to scale its channels by.
bool HasFileToLogWith() {
  if (!NoFileIsOpen()) return true;
  const Answer answer =
      MsgBox(Lines({"No Valid 'BIN' is Currently Open", "Do you wish to Open a 'BIN file Now?",
                    "Press OK: To Open a BIN file", "Press CANCEL: To Abort"}),
             Buttons::OkCancel, "No Valid BIN File Open Error", BoxIcon::Question);
  if (answer == Answer::Ok) OpenCalibration();
  return !NoFileIsOpen();
}

enum class WizardStart { FromBase, FromCurrent, NotAtAll };

WizardStart AskWizardStart() {
  if (NoFileIsOpen()) return WizardStart::FromBase;
  TargetBinPath = CurrentBinPath;
  const Answer answer = MsgBox(
      Lines({"",
             "Do You wish to Edit a New Base.BIN File:", "YES: To Edit New Calibration (BASE.BIN).",
             "NO:  To Edit Current Calibration (" + CurrentBinPath + ")", "CANCEL: To Return"}),
      Buttons::YesNoCancel, "Edit Calibration File", BoxIcon::Question);
  if (answer == Answer::Yes) return WizardStart::FromBase;
  return answer == Answer::No ? WizardStart::FromCurrent : WizardStart::NotAtAll;
}

void LoadWizardTemplate(WizardStart start) {
  WizardKeepFile = start == WizardStart::FromCurrent;
  if (WizardKeepFile) return;
  CurrentBinPath = "base.bin";
  LoadBaseCalibration();
}

// The screen stays up with its result until the user leaves it; broken off, it has gone already.
void ComeBackFromProgramming() {
  if (FindLoaded("Program_ZEM")) return;
  if (!AnythingUp() || TopWorkScreen() == &Form1) ShowMainMenu("ProgramZem");
}

void ShowTopScreenAgain() {
  if (Screen* top = TopWorkScreen()) ShowScreen(*top);
}

void ShowDigitalMonitor() {
  ShowMenuBesideMonitor();
  OpenLive("Monitor3", RefreshMainMenu);
}

}  // namespace

std::string_view MonitorOfSetting() {
  return ReadSetting("Options", "Screensetting") == 0 ? "Monitor1" : "Monitor3";
}

void ShowMenuBesideMonitor() {
  if (!TopWorkScreen()) ShowMainMenu("ViewMonitor");
  MonitorMode = OnflyLive;
  RefreshMainMenu();
}

void EditCalibration() {
  if (KeepsCurrentFile()) {
    GoTo("CSForm1");
    return;
  }
  LeaveWork();
  OpenCalibration();
  if (NoFileIsOpen())
    ShowMainMenu("EditCalibration");
  else
    GoTo("CSForm1");
}

void ViewMonitor() {
  if (!ScreenRegistered(MonitorOfSetting()) || RefusedWhilePortHeld()) return;
  if (MonitorOfSetting() == "Monitor3") {
    ShowDigitalMonitor();
    return;
  }
  LeaveWork();
  OpenLive("Monitor1", ReturnToMainMenu);
}

void ProgramZem() {
  if (RefusedWhileLive() || RefusedWhilePortHeld()) return;
  LeaveWork();
  OpenLive("Program_ZEM", ComeBackFromProgramming);
}

void CreateDatalog() {
  if (RefusedWhileLive() || RefusedWhilePortHeld() || !HasFileToLogWith()) return;
  OpenBeside("Datpara");
}

void ViewDatalog() {
  if (!RefusedWhileLive()) OpenBeside("Viewmap");
}

void RunWizard() {
  if (RefusedWhileLive()) return;
  LeaveWork();
  const WizardStart start = AskWizardStart();
  if (start == WizardStart::NotAtAll) {
    ShowMainMenu("Command6");
    DoStats();
    return;
  }
  LoadWizardTemplate(start);
  if (NoFileIsOpen()) {
    ShowMainMenu("Command6");
    return;
  }
  TargetBinPath = CurrentBinPath;
  OpenScreen("WIZARD");
}

void ShowTools() {
  if (!RefusedWhileLive()) GoTo("STools");
}

void AutoCalibrate() {
  if (!RefusedWhileLive() && !RefusedWhilePortHeld()) GoTo("Choose");
}

void ShowOptions() {
  if (!RefusedWhileLive()) OpenBeside("Options");
}

void ShowDatalogScreen() {
  if (!RefusedWhilePortHeld()) OpenLive("Datalog_frm1", ReturnToMainMenu);
}

void OpenFromMenu() {
  OpenCalibration();
  ShowTopScreenAgain();
}

void SaveFromMenu() {
  savedata();
  ShowTopScreenAgain();
}

void SaveAsFromMenu() {
  SaveCalibrationAs();
  ShowTopScreenAgain();
}
