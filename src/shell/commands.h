// The commands that the main menu, the menu bar, the tree and the hot keys share. Each of the main
// menu refuses by its own guards before any screen is touched.
#pragma once

#include <string_view>

// The wizard keeps the current calibration as its template instead of base.bin: set when it opens.
extern bool WizardKeepFile;

void EditCalibration();
void ViewMonitor();
void ProgramZem();
void CreateDatalog();
void ViewDatalog();
void RunWizard();
void ShowTools();
void AutoCalibrate();
void ShowOptions();

// The file menu; Ctrl+S is its save. The screen on top is shown again, with what is open now, and
// with the values that a save has put right.
void OpenFromMenu();
void SaveFromMenu();
void SaveAsFromMenu();

// The screen of the monitor that "Screensetting" names.
std::string_view MonitorOfSetting();
// Begins an ONFLY session: the screen that is up stays, otherwise the main menu comes, with the
// buttons off that the session forbids.
void ShowMenuBesideMonitor();
// The data logger of the view menu: asks for its file and logs at once.
void ShowDatalogScreen();
