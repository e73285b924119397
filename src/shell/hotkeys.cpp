// One table of hot keys.
#include "shell/hotkeys.h"

#include <array>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "platform/loop.h"
#include "shell/commands.h"
#include "shell/mainframe.h"
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
    {'S', Plain<savedata>},
    {'X', Plain<mnuFileExit_Click>},
    {'Z', Plain<SaveAndProgram>},
}};

// Loading the programmer programs; loading the monitor runs it until it is left.
void ProgramAndMonitor() {
  KillFirst = true;
  savedata();
  OpenScreen("Program_ZEM");
  UnloadNamed("Program_ZEM");
  const MenuItem* digital = FindMenu(frmMain, "mnuoptionscreen2");
  const std::string_view monitor = digital && digital->checked ? "Monitor3" : "Monitor1";
  OpenScreen(monitor);
  UnloadNamed(monitor);
  ReturnToMainMenu();
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
  if (MonitorMode == 3) UnloadNamed("Monitor3");
  CloseActiveScreen();
  RunFromQueue(ProgramAndMonitor);
}
