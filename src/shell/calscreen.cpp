// The calibration screen's rows, its start mode and its events.
#include "shell/calscreen.h"

#include <array>
#include <string>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "core/settings.h"
#include "core/version.h"
#include "shell/hotkeys.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/menus.h"
#include "shell/navigation.h"

int RevLimiterCaller = 0;

namespace {

void OpenRevLimiter() {
  RevLimiterCaller = 2;
  GoTo("Rev_limiter");
}
void SaveAs() { SaveCalibrationAs(); }
void BackToMainMenu() { ShowMainMenu("EditCalibration"); }

constexpr std::array<CalibrationRow, 13> rows = {{
    {{"BasicInjectors", "Basic Injector Graph/&Parameters", "Fuel", {"Binj_graph"}}, true},
    {{"FuelEnrichment", "&Fuel Enrichment", "Fuel", {"FuelEnrich"}}, true},
    {{"VolumetricEfficiency", "&Volumetric Efficiency Table", "Fuel", {"frmVETable"}}, true},
    {{"EgoTable", "&EGO Air/Fuel Ratio Table", "Fuel", {"EGO_AF_TBL"}}, true},
    {{"IgnitionAdvance", "Ignition &Advance Table", "Ignition", {"Ign_adv_tbl"}}, true},
    {{"RevLimiter", "&Rev Limiter", "Ignition", {"Rev_limiter", OpenRevLimiter}}, true},
    {{"KnockControl", "&Knock Control", "Ignition", {"KnockCntl"}}, false},
    {{"IdleSpeed", "&Idle Speed", "Ignition", {"IdleSpd"}}, true},
    {{"GpoControl", "&GPO Control", "Unit", {"GPO_Ctl"}}, true},
    {{"SensorParameters", "&Sensor Parameters", "Unit", {"Sensors"}}, false},
    {{"SoftwareDiagram", "Software &Diagram", "File", {"Soft_Dia"}}, false},
    {{"SaveBinAs", "Save &Bin File As", "File", {.run = SaveAs}}, true},
    {{"Command1", "<< Back", "Leaving", {.run = BackToMainMenu}}, true},
}};

constexpr int quick = -1;
constexpr int advanced = 0;

void AddMode(Screen& screen, const char* name, const char* caption) {
  Add(screen, {.name = name,
               .kind = ControlKind::RadioButton,
               .caption = caption,
               .place = {.in = "Leaving"}});
}

void Build(Screen& screen) {
  Add(screen, {.name = "Heading",
               .caption = "BRANTWELL ZONAL ENGINE MANAGER SOFTWARE",
               .place = {.align = Align::Centre},
               .textAlign = Align::Centre,
               .fontScale = 1.3,
               .bold = true});
  Add(screen, {.name = "Groups", .kind = ControlKind::Grid, .place = {.align = Align::Centre}});
  AddButtonGroup(screen, "Fuel", "Fuel", 0, 0);
  AddButtonGroup(screen, "Ignition", "Ignition and Idle", 0, 1);
  AddButtonGroup(screen, "Unit", "Output and Sensors", 1, 0);
  AddButtonGroup(screen, "File", "Program and File", 1, 1);
  Add(screen, {.name = "Leaving",
               .kind = ControlKind::Row,
               .place = {.in = "Groups", .row = 2, .column = 0, .columnSpan = 2}});
  for (const CalibrationRow& row : rows) AddButtons(screen, {&row.button, 1});
  Add(screen,
      {.name = "Rest", .kind = ControlKind::Spacer, .place = {.in = "Leaving", .stretch = 1}});
  AddMode(screen, "Option1", "QUICK START");
  AddMode(screen, "Option2", "ADVANCED START");
}

void RefreshRows(Screen& screen) {
  for (const CalibrationRow& row : rows) RefreshButtons(screen, {&row.button, 1});
}

void ApplyStartMode(Screen& screen) {
  const bool isQuick = QuickStart != advanced;
  SetChecked(At(screen, isQuick ? "Option1" : "Option2"), true);
  for (const CalibrationRow& row : rows)
    if (!row.quickStart) SetVisible(At(screen, row.button.name), !isQuick);
  RefreshMenus();
}

void ChooseStartMode(Screen& screen, int mode) {
  QuickStart = mode;
  StoreSetting("Options", "QuickStart", mode);
  ApplyStartMode(screen);
}

void Load(Screen& screen) {
  SetScreenTitle(screen, "Calibration Screen         " + VersionText());
  ApplyStartMode(screen);
}

void Shown(Screen& screen) {
  DoStats();
  RefreshRows(screen);
}

void OnKey(Screen& screen, KeyEvent& event) {
  if (!HandleHotKey(event, {.calibrationScreen = false})) WalkButtons(screen, event);
}

void Click(Screen& screen, Control& control) {
  if (control.name == "Option1") ChooseStartMode(screen, quick);
  if (control.name == "Option2") ChooseStartMode(screen, advanced);
  for (const CalibrationRow& row : rows)
    if (RunButton({&row.button, 1}, control)) return;
}

}  // namespace

Screen CSForm1{.name = "CSForm1",
               .title = "Calibration Screen",
               .build = Build,
               .on = {.load = Load, .shown = Shown, .keyDown = OnKey, .click = Click},
               .cancelButton = "Command1"};

std::span<const CalibrationRow> CalibrationRows() { return rows; }

void ShowCalibrationScreen(std::string_view openedScreen) {
  GoTo("CSForm1");
  if (!IsUp(CSForm1)) return;
  for (const CalibrationRow& row : rows)
    if (!openedScreen.empty() && row.button.action.screen == openedScreen)
      SetFocus(At(CSForm1, row.button.name));
}
