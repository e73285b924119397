// The main menu's rows and events.
#include "shell/mainmenu.h"

#include <array>
#include <string>

#include "core/globalstate.h"
#include "core/settings.h"
#include "core/version.h"
#include "link/comm.h"
#include "platform/dialogs.h"
#include "shell/commands.h"
#include "shell/guide.h"
#include "shell/hotkeys.h"
#include "shell/mainframe.h"
#include "shell/navigation.h"
#include "shell/texts.h"

namespace {

// The first column is the calibration's road from edit to engine, the second the running engine.
constexpr std::array<ButtonRow, 11> rows = {{
    {"EditCalibration", "&Edit a Calibration File", "Calibration", {"CSForm1", EditCalibration}},
    {"Command6", " &Halvane2 Engine Tuning Wizard", "Calibration", {"WIZARD", RunWizard}, {}, true},
    {"AutoCalibrate",
     "&Auto Calibrate V/E Table",
     "Calibration",
     {"Choose", AutoCalibrate},
     {},
     true},
    {"ProgramZem", "&Program ZEM", "Calibration", {"Program_ZEM", ProgramZem}, {}, true},
    {"ViewMonitor",
     "&Monitor Engine Functions",
     "Engine",
     {.run = ViewMonitor, .screenNow = MonitorOfSetting}},
    {"CreateDatalog", "&Create a Datalog File", "Engine", {"Datpara", CreateDatalog}, {}, true},
    {"ViewDatalog", "&View a Datalog File", "Engine", {"Viewmap", ViewDatalog}, {}, true},
    {"MonitorOptions", "ONFLY and Monitor  &Options", "Engine", {"Options", ShowOptions}, {}, true},
    {"SoftwareTools", "&Software Tools", "Program", {"STools", ShowTools}, {}, true},
    {"UsersGuide",
     "View Software &User's Guide",
     "Program",
     {.run = ViewGuideFromMainMenu},
     {},
     true},
    {"ExitProgram", "  EXIT  Halvane2", "Program", {.run = ExitProgram}},
}};

void Build(Screen& screen) {
  Add(screen, {.name = "Groups", .kind = ControlKind::Grid, .place = {.align = Align::Centre}});
  AddButtonGroup(screen, "Calibration", "Calibration", 0, 0);
  AddButtonGroup(screen, "Engine", "Engine", 0, 1);
  Add(screen, {.name = "Program",
               .kind = ControlKind::Row,
               .place = {.in = "Groups", .row = 1, .column = 0, .columnSpan = 2}});
  const std::span<const ButtonRow> all = rows;
  AddButtons(screen, all.first(all.size() - 1));
  Add(screen,
      {.name = "Rest", .kind = ControlKind::Spacer, .place = {.in = "Program", .stretch = 1}});
  AddButtons(screen, all.last(1));  // the exit stands apart
}

void Load(Screen& screen) {
  SetScreenEnabled(screen, true);  // it may have been left while the guide was open
  MonitorMode = SessionMode;       // it may be loaded beside a monitor that runs
  ComPort = ReadSetting("Options", "Comport");
  DoStats();
  SetScreenTitle(screen, "Main Menu        " + VersionText());
}

void Shown(Screen&) {
  DoStats();
  RefreshMainMenu();
}

void OnKey(Screen& screen, KeyEvent& event) {
  if (HandleHotKey(event)) return;
  if (event.key == KeyF1 && !event.ctrl && !event.alt) {
    event.handled = true;
    ShowGeneralHelp();
    return;
  }
  WalkButtons(screen, event);
}

}  // namespace

Screen Form1{.name = "Form1",
             .title = "Main Menu",
             .build = Build,
             .on = {.load = Load,
                    .shown = Shown,
                    .keyDown = OnKey,
                    .click = [](Screen&, Control& control) { RunButton(rows, control); }},
             .cancelButton = "ExitProgram"};

std::span<const ButtonRow> MainMenuRows() { return rows; }

void ShowMainMenu(std::string_view focus) {
  GoTo("Form1");
  if (!IsUp(Form1)) return;
  if (Control* button = Find(Form1, focus)) SetFocus(*button);
}

void RefreshMainMenu() {
  if (IsUp(Form1)) RefreshButtons(Form1, rows);
}

void ShowGeneralHelp() {
  MsgBox(Lines({"The Brantwell Fast Help System", "is available by typing 'F1' as an Integral",
                "part of the Halvane2 Windows Software."}),
         Buttons::Ok, {}, BoxIcon::Information);
}
