// The rows of the menu bar and the routines that keep its entries right.
#include "shell/menus.h"

#include <array>
#include <string>

#include "core/globalstate.h"
#include "core/settings.h"
#include "platform/dialogs.h"
#include "platform/screen.h"
#include "shell/commands.h"
#include "shell/mainframe.h"
#include "shell/navigation.h"
#include "shell/texts.h"

namespace {

bool startMenusEnabled = false;

template <int value>
void SetMonitorType() {
  StoreSetting("Options", "Screensetting", value);
  RefreshMenuMarks();
}

template <int value>
void SetContrast() {
  StoreSetting("Options", "Monitor Screen", value);
  RefreshMenuMarks();
}

template <int port>
void ChoosePort() {
  UseComPort(port);
}

// The tip screen shows the same choice while it is up.
void FlipTips() {
  const MenuItem* entry = FindMenu(frmMain, "mnuToolsTip");
  const bool show = !(entry && entry->checked);
  StoreSetting("Options", "Show Tips at Startup", show ? 1 : 0);
  SetMenuChecked(frmMain, "mnuToolsTip", show);
  Screen* tips = FindLoaded("frmTip");
  Control* box = tips ? Find(*tips, "chkLoadTipsAtStartup") : nullptr;
  if (box) SetChecked(*box, show);
}

void ShowReporting() {
  MsgBox(
      Lines({"Please report faults of Halvane2 to", "", "Brantwell Engine Controls",
             "Software Problem Reports", "", "Tell the version of the program and of the ZEM PROM,",
             "what you did and what happened, and enclose the BIN file", "that was open."}),
      Buttons::Ok, "Problem Reporting", BoxIcon::Information);
}

void ShowHelpTopics() {
  MsgBox(Lines({"The Brantwell Fast Help System is available by",
                "typing 'F1' within each highlighted Field as an Integral",
                "part of the Halvane2 Engine Tuning Software."}),
         Buttons::Ok, "Help Topics", BoxIcon::Information);
}

constexpr MenuRow Bar(std::string_view name, std::string_view caption) {
  return {name, "", caption};
}

// Names begin with those of their menus. The blanks in front of a key are part of the caption.
constexpr std::array rows = {
    Bar("mnuFile", "&File"),
    MenuRow{"mnuFileOpen", "mnuFile", "Open &Bin File", {.run = OpenFromMenu}, true},
    MenuRow{"mnuFileInterrogate",
            "mnuFile",
            "&Interrogate BIN Files",
            {.screen = "Interrogate", .beside = true}},
    MenuRow{"mnuFileSave",
            "mnuFile",
            "&Save Bin/S19 File                Ctrl+S",
            {.run = SaveFromMenu},
            true,
            false,
            true},
    MenuRow{"mnuFileSaveAs", "mnuFile", "Save Bin/S19 File &As...", {.run = SaveAsFromMenu}, true},
    MenuRow{"mnuFileOptions", "mnuFile", "&Options", {}, false, false, true},
    MenuRow{"mnuoptionscreen1",
            "mnuFileOptions",
            "&Analog Monitor Screen 1",
            {.run = SetMonitorType<0>}},
    MenuRow{"mnuoptionscreen2",
            "mnuFileOptions",
            "&Digital Monitor Screen 2",
            {.run = SetMonitorType<1>}},
    MenuRow{"mnuoptionnormal",
            "mnuFileOptions",
            "&Normal Monitor Screen Contrast",
            {.run = SetContrast<0>},
            false,
            false,
            true},
    MenuRow{"mnuoptionHigh",
            "mnuFileOptions",
            "&High Monitor Screen Contrast",
            {.run = SetContrast<1>}},
    MenuRow{"mnuFileExit",
            "mnuFile",
            "E&xit Halvane2                           Ctrl+X",
            {.run = mnuFileExit_Click},
            false,
            false,
            true},

    Bar("mnuView", "&View"),
    MenuRow{"mnuViewMain", "mnuView", "&Main Menu", {"Form1"}},
    MenuRow{"mnuWizard", "mnuView", "&Wizard", {"WIZARD", RunWizard}},
    MenuRow{"mnuViewCal", "mnuView", "&Calibration Menu", {"CSForm1"}},
    MenuRow{"mnuViewMonitor",
            "mnuView",
            "Monitor &Engine Functions          Ctrl+M",
            {.run = ViewMonitor, .screenNow = MonitorOfSetting}},
    MenuRow{"mnuViewProgram", "mnuView", "&Program ZEM", {"Program_ZEM", ProgramZem}},
    MenuRow{
        "mnuViewDatalog", "mnuView", "&Datalog Screen", {"Datalog_frm1", ShowDatalogScreen}, true},
    MenuRow{"mnuViewData", "mnuView", "&View Data Screen", {"Viewmap", ViewDatalog}},
    MenuRow{"mnuViewDiagram", "mnuView", "&Software Diagram", {"Soft_Dia"}},

    Bar("mnuCal", "&Calibration"),
    MenuRow{"mnuCalinj", "mnuCal", "Basic &Injector Parameters", {"Binj_graph"}},
    MenuRow{"mnuCalfuel", "mnuCal", "&Fuel Enrichment"},
    MenuRow{"mnuCalfuelsubblend", "mnuCalfuel", "TPS/MAP &Blend", {"TPSBlend"}},
    MenuRow{"mnuCalfuelsubstart", "mnuCalfuel", "&Starting", {"Startfrm"}, false, true},
    MenuRow{"mnuCalfuelsubwarm", "mnuCalfuel", "&Warm-up", {"Warmupfrm"}, false, true},
    MenuRow{"mnuCalfuelsubTPS", "mnuCalfuel", "&TPS/MAP Acceleration", {"frmTPSAccl"}},
    MenuRow{"mnuCalfuelsubdecel", "mnuCalfuel", "&Deceleration", {"FrmDecel"}},
    MenuRow{"mnuCalfuelsubMAT", "mnuCalfuel", "MAT / &Voltage", {"frmMATComp"}, false, true},
    MenuRow{"mnuCalVE", "mnuCal", "&Volumetric Efficiency"},
    MenuRow{"mnuCalVEsubtable", "mnuCalVE", "V/E &Table", {"frmVETable"}},
    MenuRow{"mnuCalVEsubgraph",
            "mnuCalVE",
            "V/E &Graph",
            {.screen = "frmVETable", .press = "VE Table &Graph"}},
    MenuRow{"mnuCalEGO", "mnuCal", "&EGO Feedback"},
    MenuRow{"mnuCalEGOsubtable", "mnuCalEGO", "A/F Ratio &Table", {"EGO_AF_TBL"}},
    MenuRow{"mnuCalEGOsubgraph",
            "mnuCalEGO",
            "A/F Ratio &Graph",
            {.screen = "EGO_AF_TBL", .press = "A/F Ratio &Graph"}},
    MenuRow{"mnuCalEGOsubcal", "mnuCalEGO", "EGO &Calibration", {"EGO_Calb"}},
    MenuRow{"mnuCalEGOsubpara", "mnuCalEGO", "EGO &Parameters", {"EGO_Parameters"}, false, true},
    MenuRow{"mnuCalignAD", "mnuCal", "Ignition &Advance"},
    MenuRow{"mnuCalignADsubtable", "mnuCalignAD", "Main Advance &Table", {"Ign_adv_tbl"}},
    MenuRow{"mnuCalignADsubgraph",
            "mnuCalignAD",
            "Main Advance &Graph",
            {.screen = "Ign_adv_tbl", .press = "Main Advance Table &Graph"}},
    MenuRow{"mnuCalignADsubcool", "mnuCalignAD", "&Coolant Advance", {"Cool_Adv"}, false, true},
    MenuRow{"mnuCalrev", "mnuCal", "&Rev Limiter", {"Rev_limiter"}},
    MenuRow{"mnuCalknock", "mnuCal", "&Knock Control", {"KnockCntl"}},
    MenuRow{"mnuCalidle", "mnuCal", "&Idle Speed"},
    MenuRow{"mnuCalidlesubISM", "mnuCalidle", "ISM &Control", {"IdleSpd"}},
    MenuRow{"mnuCalidlesubadv", "mnuCalidle", "Idle &Advance", {"IdleAdv"}},
    MenuRow{"mnuCalGPO", "mnuCal", "GPO &Control"},
    MenuRow{"mnuCalGPOsubtable", "mnuCalGPO", "GPO &Table", {"GPO_Ctl"}},
    MenuRow{"mnuCalGPOsubgraph",
            "mnuCalGPO",
            "GPO &Graph",
            {.screen = "GPO_Ctl", .press = " GPO Table   &Graph"}},
    MenuRow{"mnuCalsensor", "mnuCal", "&Sensor Parameters"},
    MenuRow{"mnuCalsensorsubCLT", "mnuCalsensor", "*&CLT", {"Clt_sen"}},
    MenuRow{"mnuCalsensorsubMAP", "mnuCalsensor", "*&MAP", {"Map_sen"}},
    MenuRow{"mnuCalsensorsubTPS", "mnuCalsensor", "*&TPS", {"Tps_sen"}},
    MenuRow{"mnuCalsensorsubEGO", "mnuCalsensor", "*&EGO", {"Ego_sen"}},
    MenuRow{"mnuCalsensorsubMAT", "mnuCalsensor", "*M&AT", {"Mat_sen"}},

    Bar("mnuCom", "C&ommunication"),
    MenuRow{"mnuComports", "mnuCom", "&DataPorts"},
    MenuRow{"mnuComportssub1", "mnuComports", "DataCom&1", {.run = ChoosePort<1>}},
    MenuRow{"mnuComportssub2", "mnuComports", "DataCom&2", {.run = ChoosePort<2>}},
    MenuRow{"mnuComportssub3", "mnuComports", "DataCom&3", {.run = ChoosePort<3>}},
    MenuRow{"mnuComportssub4", "mnuComports", "DataCom&4", {.run = ChoosePort<4>}},

    Bar("mnuTools", "&Tools"),
    MenuRow{
        "mnuToolsCalculator", "mnuTools", "&Calculator", {.screen = "Calculator", .beside = true}},
    MenuRow{"mnuToolsMemo", "mnuTools", "&Memo", {.screen = "Memoedit", .beside = true}},
    MenuRow{"mnuToolsPrint",
            "mnuTools",
            "&Print Calibration File",
            {.screen = "PRTForm", .beside = true}},
    MenuRow{"mnuToolsOptions", "mnuTools", "&Options", {"Options", ShowOptions}, true},
    MenuRow{"mnuToolsReporting", "mnuTools", "Problem &Reporting", {.run = ShowReporting}},
    MenuRow{"mnuToolsTip", "mnuTools", "Tip of the &Day", {.run = FlipTips}, true},

    Bar("mnuHelp", "&Help"),
    MenuRow{"mnuHelpTopics", "mnuHelp", "Help &Topics", {.run = ShowHelpTopics}},
    MenuRow{"mnuHelpAbout", "mnuHelp", "&About Halvane2", {.screen = "frmAbout", .beside = true}},

    Bar("mnuname", EditModeLine),
};

bool IsEnabled(const MenuRow& row) {
  if (row.fromMain && !startMenusEnabled) return false;
  if (row.advancedOnly && QuickStart != 0) return false;
  return IsReady(row.action);
}

// A pending entry keeps the menus from leaving its screen as it does the hot keys.
void ChooseEntry(const MenuRow& row) {
  if (!HeldByPendingEntry()) Run(row.action);
}

std::vector<MenuItem> Below(std::string_view parent) {
  std::vector<MenuItem> items;
  for (const MenuRow& row : rows) {
    if (row.parent != parent) continue;
    MenuItem item{.name = std::string(row.name),
                  .caption = std::string(row.caption),
                  .items = Below(row.name),
                  .enabled = IsEnabled(row),
                  .separatorBefore = row.lineBefore};
    const bool hasAction = row.action.run || !row.action.screen.empty();
    if (hasAction) item.click = [&row] { ChooseEntry(row); };
    items.push_back(std::move(item));
  }
  return items;
}

}  // namespace

std::span<const MenuRow> MenuRows() { return rows; }

std::vector<MenuItem> BuildMenus() {
  startMenusEnabled = false;
  return Below("");
}

void EnableStartMenus() {
  startMenusEnabled = true;
  RefreshMenus();
}

void RefreshMenus() {
  for (const MenuRow& row : rows) SetMenuEnabled(frmMain, row.name, IsEnabled(row));
}

void RefreshMenuMarks() {
  const bool digital = ReadSetting("Options", "Screensetting") != 0;
  const bool high = ReadSetting("Options", "Monitor Screen") != 0;
  SetMenuChecked(frmMain, "mnuoptionscreen1", !digital);
  SetMenuChecked(frmMain, "mnuoptionscreen2", digital);
  SetMenuChecked(frmMain, "mnuoptionnormal", !high);
  SetMenuChecked(frmMain, "mnuoptionHigh", high);
  RefreshMenus();
}

void PopUp(std::string_view name) {
  RefreshMenus();
  PopUpMenu(frmMain, name);
}
