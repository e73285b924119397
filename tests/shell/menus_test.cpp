// The menu bar: captions, what each entry opens, what is greyed out, check marks.
#include "shell/menus.h"

#include <array>
#include <string>
#include <vector>

#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/system.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "shell/shelltest.h"
#include "shell/start.h"

namespace {

struct Expected {
  const char* name;
  const char* caption;
  const char* opens = "";
};

// The bar, depth first.
constexpr std::array<Expected, 72> expectedEntries = {{
    {"mnuFile", "&File"},
    {"mnuFileOpen", "Open &Bin File"},
    {"mnuFileInterrogate", "&Interrogate BIN Files", "Interrogate"},
    {"mnuFileSave", "&Save Bin/S19 File                Ctrl+S"},
    {"mnuFileSaveAs", "Save Bin/S19 File &As..."},
    {"mnuFileOptions", "&Options"},
    {"mnuoptionscreen1", "&Analog Monitor Screen 1"},
    {"mnuoptionscreen2", "&Digital Monitor Screen 2"},
    {"mnuoptionnormal", "&Normal Monitor Screen Contrast"},
    {"mnuoptionHigh", "&High Monitor Screen Contrast"},
    {"mnuFileExit", "E&xit Halvane2                           Ctrl+X"},
    {"mnuView", "&View"},
    {"mnuViewMain", "&Main Menu", "Form1"},
    {"mnuWizard", "&Wizard", "WIZARD"},
    {"mnuViewCal", "&Calibration Menu", "CSForm1"},
    {"mnuViewMonitor", "Monitor &Engine Functions          Ctrl+M", "Monitor1"},
    {"mnuViewProgram", "&Program ZEM"},
    {"mnuViewDatalog", "&Datalog Screen", "Datalog_frm1"},
    {"mnuViewData", "&View Data Screen", "Viewmap"},
    {"mnuViewDiagram", "&Software Diagram", "Soft_Dia"},
    {"mnuCal", "&Calibration"},
    {"mnuCalinj", "Basic &Injector Parameters", "Binj_graph"},
    {"mnuCalfuel", "&Fuel Enrichment"},
    {"mnuCalfuelsubblend", "TPS/MAP &Blend", "TPSBlend"},
    {"mnuCalfuelsubstart", "&Starting", "Startfrm"},
    {"mnuCalfuelsubwarm", "&Warm-up", "Warmupfrm"},
    {"mnuCalfuelsubTPS", "&TPS/MAP Acceleration", "frmTPSAccl"},
    {"mnuCalfuelsubdecel", "&Deceleration", "FrmDecel"},
    {"mnuCalfuelsubMAT", "MAT / &Voltage", "frmMATComp"},
    {"mnuCalVE", "&Volumetric Efficiency"},
    {"mnuCalVEsubtable", "V/E &Table", "frmVETable"},
    {"mnuCalVEsubgraph", "V/E &Graph", "frmVETable"},
    {"mnuCalEGO", "&EGO Feedback"},
    {"mnuCalEGOsubtable", "A/F Ratio &Table", "EGO_AF_TBL"},
    {"mnuCalEGOsubgraph", "A/F Ratio &Graph", "EGO_AF_TBL"},
    {"mnuCalEGOsubcal", "EGO &Calibration", "EGO_Calb"},
    {"mnuCalEGOsubpara", "EGO &Parameters", "EGO_Parameters"},
    {"mnuCalignAD", "Ignition &Advance"},
    {"mnuCalignADsubtable", "Main Advance &Table", "Ign_adv_tbl"},
    {"mnuCalignADsubgraph", "Main Advance &Graph", "Ign_adv_tbl"},
    {"mnuCalignADsubcool", "&Coolant Advance", "Cool_Adv"},
    {"mnuCalrev", "&Rev Limiter", "Rev_limiter"},
    {"mnuCalknock", "&Knock Control", "KnockCntl"},
    {"mnuCalidle", "&Idle Speed"},
    {"mnuCalidlesubISM", "ISM &Control", "IdleSpd"},
    {"mnuCalidlesubadv", "Idle &Advance", "IdleAdv"},
    {"mnuCalGPO", "GPO &Control"},
    {"mnuCalGPOsubtable", "GPO &Table", "GPO_Ctl"},
    {"mnuCalGPOsubgraph", "GPO &Graph", "GPO_Ctl"},
    {"mnuCalsensor", "&Sensor Parameters"},
    {"mnuCalsensorsubCLT", "*&CLT", "Clt_sen"},
    {"mnuCalsensorsubMAP", "*&MAP", "Map_sen"},
    {"mnuCalsensorsubTPS", "*&TPS", "Tps_sen"},
    {"mnuCalsensorsubEGO", "*&EGO", "Ego_sen"},
    {"mnuCalsensorsubMAT", "*M&AT", "Mat_sen"},
    {"mnuCom", "C&ommunication"},
    {"mnuComports", "&DataPorts"},
    {"mnuComportssub1", "DataCom&1"},
    {"mnuComportssub2", "DataCom&2"},
    {"mnuComportssub3", "DataCom&3"},
    {"mnuComportssub4", "DataCom&4"},
    {"mnuTools", "&Tools"},
    {"mnuToolsCalculator", "&Calculator", "Calculator"},
    {"mnuToolsMemo", "&Memo", "Memoedit"},
    {"mnuToolsPrint", "&Print Calibration File", "PRTForm"},
    {"mnuToolsOptions", "&Options"},
    {"mnuToolsReporting", "Problem &Reporting"},
    {"mnuToolsTip", "Tip of the &Day"},
    {"mnuHelp", "&Help"},
    {"mnuHelpTopics", "Help &Topics"},
    {"mnuHelpAbout", "&About Halvane2"},
    {"mnuname", "                Brantwell Engine Controls         EDIT MODE"},
}};

void Collect(const std::vector<MenuItem>& items, std::vector<const MenuItem*>& all) {
  for (const MenuItem& item : items) {
    all.push_back(&item);
    Collect(item.items, all);
  }
}

std::vector<const MenuItem*> AllEntries() {
  std::vector<const MenuItem*> all;
  Collect(frmMain.menus, all);
  return all;
}

bool Enabled(const char* name) { return FindMenu(frmMain, name)->enabled; }
bool Checked(const char* name) { return FindMenu(frmMain, name)->checked; }

class MenuTest : public ShellTest {};

TEST_F(MenuTest, BarStandsAsGiven) {
  Start();
  const std::vector<const MenuItem*> all = AllEntries();
  ASSERT_EQ(all.size(), expectedEntries.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(all[i]->name, expectedEntries[i].name);
    EXPECT_EQ(all[i]->caption, expectedEntries[i].caption);
  }
  EXPECT_EQ(frmMain.menus.size(), 7u);
  EXPECT_FALSE(frmMain.menus.back().click) << "the mode line is inert";
}

TEST_F(MenuTest, EveryEntryOpensItsScreen) {
  StandInForAll();
  SaveSetting("Options", "Comport", "1");
  SaveSetting("Options", "QuickStart", "0");
  PutFile("/home/user/base.bin", std::vector<std::uint8_t>(2048, 0));
  Start();
  for (const Expected& entry : expectedEntries) {
    if (std::string_view(entry.opens).empty()) continue;
    SCOPED_TRACE(entry.name);
    LeaveWork();
    CurrentBinPath.clear();
    EXPECT_TRUE(Enabled(entry.name));
    ChooseMenu(entry.name);
    EXPECT_TRUE(ActiveScreen() || entry.name == std::string("mnuViewDatalog") ||
                entry.name == std::string("mnuViewMonitor"));
    RunPending();
    EXPECT_EQ(Top(), entry.opens);
  }
}

TEST_F(MenuTest, GoingToAnotherScreenUnloadsTheOneLeft) {
  StandInForAll();
  Start();
  ChooseMenu("mnuCalinj");
  ChooseMenu("mnuCalrev");
  ChooseMenu("mnuToolsCalculator");
  EXPECT_EQ(TakeNotes(), "+Binj_graph -Binj_graph +Rev_limiter +Calculator -Rev_limiter");
  EXPECT_FALSE(Form1.loaded);
}

TEST_F(MenuTest, ABoxLeavesTheScreenBelow) {
  StandIn("Calculator", ScreenPlacement::Dialog);
  StandIn("Rev_limiter");
  Start();
  ChooseMenu("mnuCalrev");
  ChooseMenu("mnuToolsCalculator");
  EXPECT_EQ(TakeNotes(), "+Rev_limiter +Calculator");
  EXPECT_EQ(Top(), "Rev_limiter");
}

TEST_F(MenuTest, AScreenThatIsUpStaysAsItIs) {
  StandIn("Rev_limiter");
  Start();
  ChooseMenu("mnuCalrev");
  ChooseMenu("mnuCalrev");
  EXPECT_EQ(TakeNotes(), "+Rev_limiter");
}

TEST_F(MenuTest, GraphEntriesPressTheGraphButtonOfTheirTable) {
  const std::array<std::array<const char*, 3>, 4> graphs = {
      {{"mnuCalVEsubgraph", "frmVETable", "VE Table &Graph"},
       {"mnuCalEGOsubgraph", "EGO_AF_TBL", "A/F Ratio &Graph"},
       {"mnuCalignADsubgraph", "Ign_adv_tbl", "Main Advance Table &Graph"},
       {"mnuCalGPOsubgraph", "GPO_Ctl", " GPO Table   &Graph"}}};
  for (const auto& [entry, table, caption] : graphs) {
    Screen& screen = StandIn(table);
    screen.build = [caption = std::string(caption)](Screen& built) {
      Add(built, {.name = "Other", .kind = ControlKind::Button, .caption = "&Graph"});
      Add(built, {.name = "Pressed", .kind = ControlKind::Button, .caption = caption});
    };
    screen.on.click = [this](Screen&, Control& control) { Note(control.name); };
  }
  Start();
  for (const auto& [entry, table, caption] : graphs) {
    ChooseMenu(entry);
    EXPECT_EQ(Top(), table);
  }
  EXPECT_EQ(TakeNotes(),
            "+frmVETable Pressed -frmVETable +EGO_AF_TBL Pressed -EGO_AF_TBL +Ign_adv_tbl Pressed "
            "-Ign_adv_tbl +GPO_Ctl Pressed");
}

// ---- greyed out ---------------------------------------------------------------------------------

TEST_F(MenuTest, EntriesOfUnknownScreensAreGreyUntilTheyAreRegistered) {
  Start();
  for (const Expected& entry : expectedEntries) {
    const std::string_view opens = entry.opens;
    const bool ours =
        opens.empty() || opens == "Form1" || opens == "CSForm1" || opens == "Soft_Dia";
    const bool known = ours && entry.name != std::string("mnuViewProgram");
    EXPECT_EQ(Enabled(entry.name), known) << entry.name;
  }
  StandInForAll();
  PressKey("Ctrl+C");
  EXPECT_EQ(TakePopUpMenu(), "mnuCal");
  EXPECT_TRUE(Enabled("mnuCalinj"));
  EXPECT_TRUE(Enabled("mnuViewProgram"));
  EXPECT_FALSE(Enabled("mnuCalfuelsubwarm")) << "QUICK START";
}

TEST_F(MenuTest, TheStartModeOfTheLastRunHoldsFromTheStart) {
  StandInForAll();
  SaveSetting("Options", "Comport", "1");
  for (const char* mode : {"0", "-1"}) {
    SaveSetting("Options", "QuickStart", mode);
    Start();
    for (const char* name : {"mnuCalfuelsubstart", "mnuCalfuelsubwarm", "mnuCalfuelsubMAT",
                             "mnuCalEGOsubpara", "mnuCalignADsubcool"})
      EXPECT_EQ(Enabled(name), QuickStart == 0) << name << " in mode " << mode;
    UnloadAllScreens();
    CloseFrame(frmMain);
  }
}

TEST_F(MenuTest, SixEntriesWaitForMain) {
  StandInForAll();
  RegisterShellScreens();
  BuildMainFrame();
  for (const char* name : {"mnuFileOpen", "mnuFileSave", "mnuFileSaveAs", "mnuViewDatalog",
                           "mnuToolsOptions", "mnuToolsTip"})
    EXPECT_FALSE(Enabled(name)) << name;
  EnableStartMenus();
  for (const char* name : {"mnuFileOpen", "mnuFileSave", "mnuFileSaveAs", "mnuViewDatalog",
                           "mnuToolsOptions", "mnuToolsTip"})
    EXPECT_TRUE(Enabled(name)) << name;
}

// ---- files --------------------------------------------------------------------------------------

TEST_F(MenuTest, OpenShowsTheTopScreenAgain) {
  Screen& editor = StandIn("Rev_limiter");
  editor.on.shown = [this](Screen&) { Note("shown"); };
  Start();
  GoTo("Rev_limiter");
  TakeNotes();
  PutSomeFile();
  AnswerNextFile(SomeFile);
  ChooseMenu("mnuFileOpen");
  EXPECT_EQ(TakeBox().kind, "open");
  EXPECT_EQ(CurrentBinPath, SomeFile);
  EXPECT_EQ(TakeNotes(), "shown");
}

TEST_F(MenuTest, SaveAndSaveAsWrite) {
  Start();
  OpenSomeFile();
  CalChanged = true;
  ChooseMenu("mnuFileSave");
  EXPECT_FALSE(CalChanged);
  CalChanged = true;
  AnswerNextFile("/home/user/b.bin");
  ChooseMenu("mnuFileSaveAs");
  EXPECT_EQ(TakeBox().title, " Save BIN file As");
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(CurrentBinPath, "/home/user/b.bin");
}

TEST_F(MenuTest, SaveAndSaveAsShowTheScreenThatWasUpAgain) {
  Screen& editor = StandIn("Rev_limiter");
  editor.on.shown = [this](Screen&) { Note("shown"); };
  Start();
  OpenSomeFile();
  GoTo("Rev_limiter");
  TakeNotes();
  ChooseMenu("mnuFileSave");
  EXPECT_EQ(TakeNotes(), "shown");
  AnswerNextFile("/home/user/b.bin");
  ChooseMenu("mnuFileSaveAs");
  TakeBox();
  EXPECT_EQ(TakeNotes(), "shown");
}

TEST_F(MenuTest, ExitClosesTheScreenFirst) {
  StandIn("Rev_limiter");
  Start();
  GoTo("Rev_limiter");
  ChooseMenu("mnuFileExit");
  EXPECT_EQ(TakeNotes(), "+Rev_limiter -Rev_limiter");
  EXPECT_TRUE(ProgramEnding());
}

// ---- settings -----------------------------------------------------------------------------------

TEST_F(MenuTest, MonitorTypeChecksItselfAndIsKept) {
  Start();
  EXPECT_TRUE(Checked("mnuoptionscreen1"));
  EXPECT_FALSE(Checked("mnuoptionscreen2"));
  ChooseMenu("mnuoptionscreen2");
  EXPECT_FALSE(Checked("mnuoptionscreen1"));
  EXPECT_TRUE(Checked("mnuoptionscreen2"));
  EXPECT_EQ(GetSetting("Options", "Screensetting"), "1");
  ChooseMenu("mnuoptionscreen1");
  EXPECT_TRUE(Checked("mnuoptionscreen1"));
  EXPECT_EQ(GetSetting("Options", "Screensetting"), "0");
}

TEST_F(MenuTest, ContrastChecksItselfAndIsKept) {
  Start();
  ChooseMenu("mnuoptionHigh");
  EXPECT_FALSE(Checked("mnuoptionnormal"));
  EXPECT_TRUE(Checked("mnuoptionHigh"));
  EXPECT_EQ(GetSetting("Options", "Monitor Screen"), "1");
  ChooseMenu("mnuoptionnormal");
  EXPECT_TRUE(Checked("mnuoptionnormal"));
  EXPECT_FALSE(Checked("mnuoptionHigh"));
  EXPECT_EQ(GetSetting("Options", "Monitor Screen"), "0");
}

TEST_F(MenuTest, DataPortsAreKeptAndShown) {
  Start();
  for (int port : {4, 3, 2, 1}) {
    ChooseMenu("mnuComportssub" + std::to_string(port));
    EXPECT_EQ(ComPort, port);
    EXPECT_EQ(GetSetting("Options", "Comport"), std::to_string(port));
    EXPECT_EQ(frmMain.statusPanels[1], std::to_string(port));
  }
}

TEST_F(MenuTest, TipOfTheDayFlipsItsMarkAndTheTipScreensBox) {
  Start();
  EXPECT_TRUE(Checked("mnuToolsTip"));
  Screen& tips = StandIn("frmTip", ScreenPlacement::Above);
  tips.build = [](Screen& built) {
    Add(built, {.name = "chkLoadTipsAtStartup", .kind = ControlKind::CheckBox, .checked = true});
  };
  OpenScreen("frmTip");
  ChooseMenu("mnuToolsTip");
  EXPECT_FALSE(Checked("mnuToolsTip"));
  EXPECT_FALSE(At(tips, "chkLoadTipsAtStartup").checked);
  EXPECT_EQ(GetSetting("Options", "Show Tips at Startup"), "0");
  ChooseMenu("mnuToolsTip");
  EXPECT_TRUE(Checked("mnuToolsTip"));
  EXPECT_TRUE(At(tips, "chkLoadTipsAtStartup").checked);
  EXPECT_EQ(GetSetting("Options", "Show Tips at Startup"), "1");
}

// ---- guards -------------------------------------------------------------------------------------

TEST_F(MenuTest, CommandsOfTheMainMenuKeepTheirGuards) {
  StandInForAll();
  Start();
  MonitorMode = 1;
  PortHeld = true;
  for (const char* name : {"mnuWizard", "mnuViewProgram", "mnuViewData", "mnuToolsOptions"}) {
    ChooseMenu(name);
    ExpectBox(LiveRefusal);
  }
  for (const char* name : {"mnuViewMonitor", "mnuViewDatalog"}) {
    ChooseMenu(name);
    ExpectBox(PortRefusal);
  }
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(TakeNotes(), "");
}

// ---- boxes --------------------------------------------------------------------------------------

TEST_F(MenuTest, HelpTopicsTellsOfTheFastHelp) {
  Start();
  ChooseMenu("mnuHelpTopics");
  ExpectBox(
      "The Brantwell Fast Help System is available by\r\n"
      "typing 'F1' within each highlighted Field as an Integral\r\n"
      "part of the Halvane2 Engine Tuning Software.",
      "Help Topics");
}

TEST_F(MenuTest, ProblemReportingTellsWhereToGo) {
  Start();
  ChooseMenu("mnuToolsReporting");
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Problem Reporting");
  EXPECT_NE(box.text.find("Brantwell Engine Controls"), std::string::npos);
}

TEST_F(MenuTest, AboutShowsVersionAndMaker) {
  Start();
  ChooseMenu("mnuHelpAbout");
  Screen* about = OpenDialogScreen();
  ASSERT_NE(about, nullptr);
  EXPECT_EQ(At(*about, "Version").caption, "Version 2.0.0");
  EXPECT_EQ(At(*about, "Maker").caption, "Brantwell Engine Controls");
  PressKey("Esc");
  EXPECT_EQ(OpenDialogScreen(), nullptr);
  EXPECT_EQ(Top(), "Form1");
}

}  // namespace
