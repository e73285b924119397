// The calibration screen: its buttons and its start mode.
#include "shell/calscreen.h"

#include <array>
#include <string>

#include "core/globalstate.h"
#include "platform/frame.h"
#include "platform/headless/script.h"
#include "platform/system.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"
#include "shell/shelltest.h"

namespace {

struct Expected {
  const char* name;
  const char* caption;
  const char* opens;
  bool quickStart;
};
constexpr std::array<Expected, 13> expectedRows = {{
    {"BasicInjectors", "Basic Injector Graph/&Parameters", "Binj_graph", true},
    {"FuelEnrichment", "&Fuel Enrichment", "FuelEnrich", true},
    {"VolumetricEfficiency", "&Volumetric Efficiency Table", "frmVETable", true},
    {"EgoTable", "&EGO Air/Fuel Ratio Table", "EGO_AF_TBL", true},
    {"IgnitionAdvance", "Ignition &Advance Table", "Ign_adv_tbl", true},
    {"RevLimiter", "&Rev Limiter", "Rev_limiter", true},
    {"KnockControl", "&Knock Control", "KnockCntl", false},
    {"IdleSpeed", "&Idle Speed", "IdleSpd", true},
    {"GpoControl", "&GPO Control", "GPO_Ctl", true},
    {"SensorParameters", "&Sensor Parameters", "Sensors", false},
    {"SoftwareDiagram", "Software &Diagram", "Soft_Dia", false},
    {"SaveBinAs", "Save &Bin File As", "", true},
    {"Command1", "<< Back", "Form1", true},
}};

constexpr std::array<const char*, 5> expertEntries = {"mnuCalfuelsubstart", "mnuCalfuelsubwarm",
                                                      "mnuCalfuelsubMAT", "mnuCalEGOsubpara",
                                                      "mnuCalignADsubcool"};

class CalibrationScreenTest : public ShellTest {
 protected:
  void SetUp() override {
    ShellTest::SetUp();
    StandInForAll();
    Start();
    ShowCalibrationScreen();
  }
  void ExpectStartMode(bool quick) {
    for (const Expected& row : expectedRows)
      EXPECT_EQ(ShownVisible(CSForm1, row.name), row.quickStart || !quick) << row.name;
    for (const char* name : expertEntries)
      EXPECT_EQ(FindMenu(frmMain, name)->enabled, !quick) << name;
    EXPECT_EQ(At(CSForm1, "Option1").checked, quick);
    EXPECT_EQ(At(CSForm1, "Option2").checked, !quick);
  }
};

TEST_F(CalibrationScreenTest, CarriesItsCaptionsAndHeading) {
  EXPECT_EQ(CSForm1.title, "Calibration Screen         Halvane2 Version 2.0.0");
  EXPECT_EQ(At(CSForm1, "Heading").caption, "BRANTWELL ZONAL ENGINE MANAGER SOFTWARE");
  EXPECT_EQ(At(CSForm1, "Option1").caption, "QUICK START");
  EXPECT_EQ(At(CSForm1, "Option2").caption, "ADVANCED START");
  for (const Expected& row : expectedRows) EXPECT_EQ(At(CSForm1, row.name).caption, row.caption);
  EXPECT_EQ(CalibrationRows().size(), expectedRows.size());
}

TEST_F(CalibrationScreenTest, EachButtonClosesItAndOpensItsScreen) {
  ClickOn(CSForm1, "Option2");
  for (const Expected& row : expectedRows) {
    if (std::string_view(row.opens).empty()) continue;
    ShowCalibrationScreen();
    ClickOn(CSForm1, row.name);
    EXPECT_EQ(Top(), row.opens);
    EXPECT_FALSE(CSForm1.loaded) << row.name;
  }
}

TEST_F(CalibrationScreenTest, ButtonsOfUnknownScreensAreOff) {
  ForgetRegisteredScreens();
  RegisterScreen("Rev_limiter", [] {});
  ShowScreen(CSForm1);
  EXPECT_FALSE(ShownEnabled(CSForm1, "BasicInjectors"));
  EXPECT_TRUE(ShownEnabled(CSForm1, "RevLimiter"));
  EXPECT_TRUE(ShownEnabled(CSForm1, "SaveBinAs"));
}

TEST_F(CalibrationScreenTest, FirstRunIsQuickStart) { ExpectStartMode(true); }

TEST_F(CalibrationScreenTest, AdvancedStartBringsEverythingBackAndIsKeptAtOnce) {
  ClickOn(CSForm1, "Option2");
  ExpectStartMode(false);
  EXPECT_EQ(QuickStart, 0);
  EXPECT_EQ(GetSetting("Options", "QuickStart"), "0");
  ClickOn(CSForm1, "Option1");
  ExpectStartMode(true);
  EXPECT_EQ(QuickStart, -1);
  EXPECT_EQ(GetSetting("Options", "QuickStart"), "-1");
}

TEST_F(CalibrationScreenTest, TheModeOutlivesTheScreen) {
  ClickOn(CSForm1, "Option2");
  PressKey("Esc");
  ShowCalibrationScreen();
  ExpectStartMode(false);
}

TEST_F(CalibrationScreenTest, BackComesToTheMainMenu) {
  PressKey("Esc");
  EXPECT_EQ(Top(), "Form1");
  EXPECT_EQ(ShownFocus(), "EditCalibration");
}

TEST_F(CalibrationScreenTest, AnEditorComesBackToItsButton) {
  ClickOn(CSForm1, "IdleSpeed");
  EXPECT_EQ(Top(), "IdleSpd");
  ShowCalibrationScreen("IdleSpd");
  EXPECT_EQ(Top(), "CSForm1");
  EXPECT_EQ(ShownFocus(), "IdleSpeed");
}

TEST_F(CalibrationScreenTest, OnlyItsOwnButtonTellsTheRevLimiterWhereItComesFrom) {
  Screen& limiter = StandIn("Rev_limiter");
  int seen = -1;
  limiter.on.load = [&seen](Screen&) { seen = RevLimiterCaller; };
  ChooseMenu("mnuCalrev");
  EXPECT_EQ(Top(), "Rev_limiter");
  EXPECT_EQ(seen, 0);
  ShowCalibrationScreen();
  ClickOn(CSForm1, "RevLimiter");
  EXPECT_EQ(Top(), "Rev_limiter");
  EXPECT_EQ(seen, 2);
}

TEST_F(CalibrationScreenTest, SaveAsStaysOnTheScreen) {
  OpenSomeFile();
  CalChanged = true;
  AnswerNextFile("/home/user/new.bin");
  ClickOn(CSForm1, "SaveBinAs");
  EXPECT_EQ(TakeBox().title, " Save BIN file As");
  EXPECT_EQ(CurrentBinPath, "/home/user/new.bin");
  EXPECT_EQ(FileBytes("/home/user/new.bin").size(), 2048u);
  EXPECT_EQ(Top(), "CSForm1");
}

TEST_F(CalibrationScreenTest, SaveAsWithoutAFileSaysSo) {
  AnswerNextFile(std::nullopt);
  ClickOn(CSForm1, "SaveBinAs");
  EXPECT_EQ(TakeBox().text, "No Valid BIN File is currently Open.");
  EXPECT_EQ(TakeBox().kind, "save");
}

}  // namespace
