// Start-up, in its order.
#include "shell/start.h"

#include "core/globalstate.h"
#include "core/settings.h"
#include "core/startup.h"
#include "core/version.h"
#include "platform/frame.h"
#include "platform/loop.h"
#include "platform/screen.h"
#include "shell/about.h"
#include "shell/calscreen.h"
#include "shell/diagram.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/menus.h"
#include "shell/tools.h"

namespace {

void ShowSplash() {
  ShowScreen(frmSplash);
  UnloadScreen(frmSplash);
}

// The first run's settings depend on the width of the screen, so they come after the frame, which
// stands where the settings' table says until then.
void ShowMainFrame() {
  BuildMainFrame();
  RestoreFramePlace(frmMain);
  ShowFrame(frmMain);
  TakeScreenWidth(frmMain);
  FirstRun();
}

void ReadOptions() {
  RefreshMenuMarks();
  SetModeLine(EditModeLine);
  QuickStart = ReadSetting("Options", "QuickStart");
  RefreshMenus();
}

void HandOver() {
  const bool tips = ReadSetting("Options", "Show Tips at Startup") != 0;
  SetMenuChecked(frmMain, "mnuToolsTip", tips);
  const bool showsTip = tips && ScreenRegistered("frmTip");
  if (showsTip)
    OpenScreen("frmTip");
  else
    ShowMainMenu();
  SetFrameEnabled(frmMain, !showsTip);
}

}  // namespace

void RegisterShellScreens() {
  RegisterScreen("Form1", [] { ShowScreen(Form1); });
  RegisterScreen("CSForm1", [] { ShowScreen(CSForm1); });
  RegisterScreen("STools", [] { ShowScreen(STools); });
  RegisterScreen("Options", [] { ShowScreen(Options); });
  RegisterScreen("Soft_Dia", [] { ShowScreen(Soft_Dia); });
  RegisterScreen("frmAbout", [] { ShowScreen(frmAbout); });
}

void Main() {
  if (!StartCore()) {
    EndProgram();
    return;
  }
  ShowSplash();
  ShowMainFrame();
  SetFrameTitle(frmMain, VersionText());
  DoStats();
  EnableStartMenus();
  ReadOptions();
  HandOver();
}
