// The main frame's record and the end of the program.
#include "shell/mainframe.h"

#include <string>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "core/settings.h"
#include "core/startup.h"
#include "core/version.h"
#include "link/comm.h"
#include "platform/loop.h"
#include "platform/screen.h"
#include "shell/hotkeys.h"
#include "shell/mainmenu.h"
#include "shell/menus.h"
#include "shell/navigation.h"

Frame frmMain;

namespace {

bool ending = false;

// The frame has the keys only while no screen has them. An Esc that is still held down was meant
// for the screen that it has left.
void FrameKey(KeyEvent& event) {
  if (HandleHotKey(event) || event.ctrl || event.alt) return;
  if (event.key != KeyF1 && event.key != KeyEscape) return;
  event.handled = true;
  if (event.key == KeyF1)
    ShowGeneralHelp();
  else if (!event.repeat)
    mnuFileExit_Click();
}

}  // namespace

void BuildMainFrame() {
  ending = false;
  frmMain = Frame{};
  frmMain.name = "frmMain";
  frmMain.title = VersionText();
  frmMain.icon = "halvane2";
  frmMain.maximised = true;
  frmMain.menus = BuildMenus();
  frmMain.statusPanels = {"", ""};
  frmMain.keyDown = FrameKey;
  frmMain.closeBox = UnloadMainFrame;
  RefreshStatusLine = DoStats;
}

void DoStats() {
  SetStatusPanel(frmMain, 0, " ALT + _Letter = Local HOT KEYS [F1 = HELP] ");
  SetStatusPanel(frmMain, 1, std::to_string(ComPort));
}

void SetModeLine(std::string_view line) { SetMenuCaption(frmMain, "mnuname", std::string(line)); }

void UseComPort(int port) {
  ComPort = port;
  StoreSetting("Options", "Comport", port);
  DoStats();
}

void UnloadMainFrame() {
  if (ending) return;
  ending = true;
  // A save that failed has told why; the question comes again, so that edits go only when the user
  // says so. Without a name to save under it could never succeed.
  while (!OfferSavingChanges())
    if (TargetBinPath.empty()) SaveCalibrationAs();
  UnloadAllScreens();
  StoreFramePlace(frmMain);
  CloseFrame(frmMain);
  EndProgram();
}

void mnuFileExit_Click() {
  CloseActiveScreen();
  UnloadMainFrame();
}

void ExitProgram() {
  UnloadScreen(Form1);
  if (CalChanged) SaveCalibrationAs();
  UnloadMainFrame();
}
