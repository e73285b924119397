// One table of hot keys.
#include "shell/hotkeys.h"

#include <array>
#include <memory>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/loop.h"
#include "shell/commands.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/menus.h"
#include "shell/navigation.h"

namespace {

struct HotKey {
  char letter;
  void (*run)(const HotKeyRules& rules);
};

template <void routine()>
void Plain(const HotKeyRules&) {
  routine();
}

void PopUpCalibration() { PopUp("mnuCal"); }
void PopUpFile() { PopUp("mnuFile"); }
void PopUpHelp() { PopUp("mnuHelp"); }
void PopUpCommunication() { PopUp("mnuCom"); }
void PopUpTools() { PopUp("mnuTools"); }
void PopUpView() { PopUp("mnuView"); }

void ShowCalibration(const HotKeyRules& rules) {
  if (!rules.calibrationScreen) return;
  CloseActiveScreen();
  GoTo("CSForm1");
}

void StepPort(const HotKeyRules& rules) {
  if (!rules.portOneOrTwoOnly) {
    UseComPort(ComPort >= 4 ? 1 : ComPort + 1);
    return;
  }
  ComPort = ComPort == 1 ? 2 : 1;
  DoStats();
}

constexpr std::array<HotKey, 12> hotKeys = {{
    {'C', Plain<PopUpCalibration>},
    {'F', Plain<PopUpFile>},
    {'H', Plain<PopUpHelp>},
    {'O', Plain<PopUpCommunication>},
    {'T', Plain<PopUpTools>},
    {'V', Plain<PopUpView>},
    {'E', ShowCalibration},
    {'M', Plain<ViewMonitor>},
    {'P', StepPort},
    {'S', Plain<SaveFromMenu>},
    {'X', Plain<mnuFileExit_Click>},
    {'Z', Plain<SaveAndProgram>},
}};

// Loading a monitor runs it until it is left. The digital one has the main menu beside it.
void RunMonitorOfMenu() {
  const MenuItem* digital = FindMenu(frmMain, "mnuoptionscreen2");
  const std::string_view monitor = digital && digital->checked ? "Monitor3" : "Monitor1";
  if (monitor == "Monitor3" && ScreenRegistered(monitor)) ShowMenuBesideMonitor();
  OpenScreen(monitor);
  UnloadNamed(monitor);
  RefreshMainMenu();
  ReturnToMainMenu();
}

// Whether a session holds the port that nobody has told to end. What waits in the queue would run
// only after it, when the user no longer thinks of it.
bool SessionGoesOn() { return PortHeld && MonitorStop == 0; }

// Loading the programmer programs. After a save that failed the S19 file is not that of the
// calibration in memory, and the engine is left alone.
void ProgramAndMonitor() {
  if (!savedata()) {
    ReturnToMainMenu();
    return;
  }
  KillFirst = true;
  OpenScreen("Program_ZEM");
  UnloadNamed("Program_ZEM");
  KillFirst = false;  // a programmer that has refused leaves it set
  RunMonitorOfMenu();
}

// The request that waits in the queue; expired when there is none.
std::weak_ptr<int> request;

void AskForProgramming() {
  auto made = std::make_shared<int>();
  request = made;
  RunFromQueue([made]() mutable {
    made.reset();
    ProgramAndMonitor();
  });
}

}  // namespace

bool HandleHotKey(KeyEvent& event, const HotKeyRules& rules) {
  if (!event.ctrl || event.alt || event.key == KeyControl) return false;
  for (const HotKey& hotKey : hotKeys) {
    if (hotKey.letter != event.key) continue;
    event.handled = true;
    hotKey.run(rules);
    return true;
  }
  return false;
}

void SaveAndProgram() {
  if (!request.expired()) return;
  if (MonitorMode == OnflyLive) UnloadNamed("Monitor3");
  CloseActiveScreen();
  if (!SessionGoesOn()) {
    AskForProgramming();
    return;
  }
  savedata();
  RefusedWhilePortHeld();
  if (!AnythingUp()) ShowMainMenu();
}
