// The volumetric efficiency table by keys and clicks: entry, live session, graph.
#include <gtest/gtest.h>

#include "core/encoder.h"
#include "editors/vetable.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"

namespace {

class VeTableTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    OpenTable(FrmVETable());
  }
};

constexpr const char* rangeOffset = "Data Input Error\n\r  (-50% to 50% FPW)";
constexpr const char* wholeNumbers = "  Data Input Error\n\rWhole Numbers Only";
constexpr const char* unavailable = "This Process is Unavailable while ONFLY Monitoring is Active.";

}  // namespace

// ---- what stands on it --------------------------------------------------------------------------

TEST_F(VeTableTest, HasItsTitleAndFixedTexts) {
  EXPECT_EQ(Up().title, "VOLUMETRIC EFFICIENCY TABLE");
  ExpectCaptions({{"ThirdLine", "F2 Switches from OFFSET to ABSOLUTE GAMA"},
                  {"ViewLine", "F5 switches from VE (% FPW) to PW (ms) to Duty Cycle (%)"},
                  {"ValueTitle", "Volumetric Efficiency "},
                  {"SaveLine", "Must Press Enter to Save New Values"},
                  {"VEGraph", "VE Table &Graph"},
                  {"Command1", "<< Back"}});
}

TEST_F(VeTableTest, AxisCaptionsShowTheBreakpoints) {
  EXPECT_EQ(Text("RPM_VE(1)"), "500");
  EXPECT_EQ(Text("RPM_VE(8)"), "6000");
  EXPECT_EQ(Text("MAP_VE(1)"), "20");
  EXPECT_EQ(Text("MAP_VE(7)"), "85");
}

TEST_F(VeTableTest, LoadsAreMultipliedByTheBar) {
  MapBar = 3;
  CalValues[54] = 30.1F;
  Reopen();
  EXPECT_EQ(Text("MAP_VE(1)"), "60");
  EXPECT_EQ(Text("MAP_VE(2)"), "90.3");
  EXPECT_EQ(Text("MAP_Label"), "(30 to 312 kPa)");
}

TEST_F(VeTableTest, LoadsStandAsTheyAreInMafMode) {
  MapBar = 3;
  LoadMode = "MAF";
  Reopen();
  EXPECT_EQ(Text("MAP_VE(1)"), "20");
}

TEST_F(VeTableTest, RangeOfTheLoadSensorByTheBar) {
  const std::vector<std::string> ranges = {"(10 to 104 kPa)", "(20 to 208 kPa)", "(30 to 312 kPa)",
                                           "(40 to 416 kPa)"};
  for (int bar = 1; bar <= 4; ++bar) {
    MapBar = bar;
    Reopen();
    EXPECT_EQ(Text("MAP_Label"), ranges[static_cast<std::size_t>(bar - 1)]);
  }
}

TEST_F(VeTableTest, CellsShowPercentWithoutDecimals) {
  EXPECT_EQ(CellText(1), "-31");
  EXPECT_EQ(CellText(32), "0");
  EXPECT_EQ(CellText(64), "32");
  CalValues[125] = 0.125F;
  Reopen();
  EXPECT_EQ(CellText(1), "13");
}

TEST_F(VeTableTest, RowOneIsShownAtTheBottom) {
  EXPECT_GT(The(At(1)).place.row, The(At(9)).place.row);
  EXPECT_GT(The(At(9)).place.row, The(At(64)).place.row);
  EXPECT_LT(The(At(1)).place.column, The(At(2)).place.column);
  EXPECT_GT(The("RPM_VE(1)").place.row, The(At(1)).place.row);
  EXPECT_EQ(The("RPM_VE(3)").place.column, The(At(3)).place.column);
  EXPECT_EQ(The("MAP_VE(4)").place.row, The(At(25)).place.row);
}

TEST_F(VeTableTest, OpensOnTheFirstCellSelected) {
  EXPECT_EQ(Focused(), "Table_VE(1)");
  EXPECT_TRUE(AllSelected(At(1)));
  EXPECT_EQ(ActiveField, 1);
  EXPECT_EQ(SelectedTable, 0);
  EXPECT_EQ(HelpScreen, "frmVETable");
  EXPECT_FALSE(CalChanged);
}

TEST_F(VeTableTest, CellsAreGreyOffLine) {
  for (int cell : {1, 30, 64}) EXPECT_EQ(CellColour(cell), SystemButtonFace);
}

// ---- arrows -------------------------------------------------------------------------------------

TEST_F(VeTableTest, ArrowsWrapAndSelectTheTarget) {
  struct Way {
    int from;
    const char* key;
    int to;
  };
  for (const Way& way :
       {Way{64, "Right", 1}, Way{8, "Up", 16}, Way{60, "Up", 4}, Way{3, "Down", 59},
        Way{1, "Left", 64}, Way{12, "Down", 4}, Way{8, "Right", 9}}) {
    Select(way.from);
    PressKey(way.key);
    EXPECT_EQ(Focused(), At(way.to)) << way.from << " " << way.key;
    EXPECT_EQ(ActiveField, way.to);
    EXPECT_EQ(SelectedCell, way.to);
    EXPECT_TRUE(AllSelected(At(way.to)));
  }
}

TEST_F(VeTableTest, ArrowsWorkInAllViews) {
  for (int view = 1; view <= 2; ++view) {
    PressKey("F5");
    Select(64);
    PressKey("Right");
    EXPECT_EQ(Focused(), At(1)) << view;
  }
}

TEST_F(VeTableTest, ArrowFromAButtonStartsAtTheCellSelectedLast) {
  Select(10);
  SetFocus(The("Command1"));
  RunPending();
  PressKey("Up");
  EXPECT_EQ(Focused(), At(18));
}

TEST_F(VeTableTest, KeysAreDeadWhileAnEntryIsPending) {
  Type(At(10), "2");
  for (const char* key : {"Up", "Down", "F2", "F3", "F4", "F5", "Alt+S"}) {
    PressKey(key);
    EXPECT_EQ(Focused(), At(10)) << key;
  }
  EXPECT_EQ(VeView, 0);
  EXPECT_EQ(GamaOffset, 0);
  EXPECT_EQ(CellText(10), "2");
  PressKey("Enter");
  EXPECT_EQ(CalValues[134], 0.02F);
}

TEST_F(VeTableTest, AxisCaptionsOfTheSelectedCellStandOut) {
  Select(11);
  for (int i = 1; i <= 8; ++i) {
    const std::string number = "(" + std::to_string(i) + ")";
    EXPECT_EQ(Back("RPM_VE" + number), i == 3 ? White : SystemButtonFace) << i;
    EXPECT_EQ(Back("MAP_VE" + number), i == 2 ? White : SystemButtonFace) << i;
  }
  PressKey("Down");
  EXPECT_EQ(Back("MAP_VE(2)"), SystemButtonFace);
  EXPECT_EQ(Back("MAP_VE(1)"), White);
}

// ---- entry --------------------------------------------------------------------------------------

TEST_F(VeTableTest, AnEntryIsStoredAsAFraction) {
  EnterCell(10, "-25");
  EXPECT_EQ(CalValues[134], -0.25F);
  EXPECT_EQ(CellText(10), "-25");
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(Focused(), At(10));
  EXPECT_TRUE(AllSelected(At(10)));
  EXPECT_EQ(OnflyByteCount, 0);
}

TEST_F(VeTableTest, AnEntryReachesTheWorkingTables) {
  EnterCell(10, "-25");
  EXPECT_EQ(VeWork[3][5], -25);
  EXPECT_EQ(TableWork[3][5], -25);
}

TEST_F(VeTableTest, TheLastCellReachesTheMargins) {
  EnterCell(64, "40");
  EXPECT_EQ(TableWork[9][11], 40);
  EXPECT_EQ(TableWork[10][11], 40);
  EXPECT_EQ(TableWork[9][12], 40);
}

TEST_F(VeTableTest, BothEndsOfTheRangeAreAccepted) {
  EnterCell(1, "-50");
  EnterCell(2, "50");
  EXPECT_EQ(CalValues[125], -0.5F);
  EXPECT_EQ(CalValues[126], 0.5F);
}

TEST_F(VeTableTest, BeyondTheRangeIsRefusedAndTheOldValueReturns) {
  for (const char* entry : {"51", "-51", "900"}) {
    EnterCell(1, entry);
    EXPECT_EQ(Message(), rangeOffset);
    EXPECT_EQ(CellText(1), "-31");
    EXPECT_EQ(Focused(), At(1));
    EXPECT_TRUE(AllSelected(At(1)));
  }
  EXPECT_EQ(CalValues[125], -0.31F);
  EXPECT_FALSE(CalChanged);
}

TEST_F(VeTableTest, APeriodIsRefused) {
  for (const char* entry : {"12.5", "12."}) {
    EnterCell(1, entry);
    EXPECT_EQ(Message(), wholeNumbers);
    EXPECT_EQ(CellText(1), "-31");
  }
  EXPECT_FALSE(CalChanged);
}

TEST_F(VeTableTest, EnterOnAnUnchangedValueIsAChange) {
  Select(3);
  PressKey("Enter");
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(CalValues[127], -0.29F);
}

TEST_F(VeTableTest, AnEmptyCellIsIgnored) {
  Type(At(1), "");
  PressKey("Backspace");
  PressKey("Enter");
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(CalValues[125], -0.31F);
}

TEST_F(VeTableTest, ALetterIsRefused) {
  Select(1);
  TypeText("a");
  EXPECT_EQ(Message(), "Data Input Error\n\r  Retype Data");
  EXPECT_EQ(CellText(1), "-31");
}

TEST_F(VeTableTest, AClickElsewhereReturnsToThePendingCell) {
  Type(At(1), "7");
  ClickOn(Up(), At(20));
  EXPECT_EQ(Focused(), At(1));
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ActiveField, 1);
  EXPECT_EQ(CellText(1), "-31");
  EXPECT_TRUE(AllSelected(At(1)));
}

TEST_F(VeTableTest, LeavingACellRestoresTextThatWasNotEntered) {
  Select(20);
  PressKey("Backspace");
  EXPECT_EQ(CellText(20), "");
  PressKey("Up");
  EXPECT_EQ(Focused(), At(28));
  EXPECT_EQ(CellText(20), "-12");
}

TEST_F(VeTableTest, OnlyTheSelectedCellHasItsTextSelected) {
  Select(20);
  PressKey("Right");
  PressKey("Up");
  for (int cell : {20, 21}) EXPECT_EQ(The(At(cell)).selLength, 0) << cell;
  EXPECT_TRUE(AllSelected(At(29)));
}

TEST_F(VeTableTest, LeavingACellTakesTheTablesFromTheCalibration) {
  CalValues[188] = 0.4F;
  Select(20);
  PressKey("Right");
  EXPECT_EQ(VeWork[9][11], 40);
  EXPECT_EQ(TableWork[9][11], 40);
}

// ---- live session -------------------------------------------------------------------------------

TEST_F(VeTableTest, CellsAreYellowInASession) {
  GoLive();
  for (int cell : {1, 30, 64}) EXPECT_EQ(CellColour(cell), Yellow);
}

TEST_F(VeTableTest, ReadOnlyViewsAreGreyInASession) {
  GoLive();
  for (int view = 1; view <= 2; ++view) {
    PressKey("F5");
    EXPECT_EQ(CellColour(30), SystemButtonFace);
  }
}

TEST_F(VeTableTest, ASessionPostsTheEntry) {
  GoLive();
  EnterCell(10, "-25");
  EXPECT_EQ(OnflyCalIndex, 134);
  EXPECT_EQ(OnflyValue, -0.25);
  EXPECT_EQ(OnflyImageIndex, 127);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_EQ(BinImage[127], 64);  // Fix(-63.75) + 127
  EXPECT_EQ(CalValues[134], -0.22F);
  EXPECT_EQ(CellText(10), "-22");
  EXPECT_TRUE(CalChanged);
}

TEST_F(VeTableTest, AnAcceptedPostShowsWithTheRefresh) {
  GoLive();
  EnterCell(10, "-25");
  CalValues[134] = -0.25F;
  RefreshActiveEditor();
  EXPECT_EQ(CellText(10), "-25");
  EXPECT_EQ(TableWork[3][5], -25);
}

TEST_F(VeTableTest, AbsoluteModePostsTheFraction) {
  GoLive();
  PressKey("F2");
  EnterCell(1, "150");
  EXPECT_EQ(OnflyValue, 0.5);
  EXPECT_EQ(BinImage[118], 254);
}

TEST_F(VeTableTest, TheGraphButtonIsOffInASession) {
  EXPECT_TRUE(ShownEnabled(Up(), "VEGraph"));
  GoLive();
  EXPECT_FALSE(ShownEnabled(Up(), "VEGraph"));
  EXPECT_TRUE(ShownEnabled(Up(), "Command1"));
}

// ---- graph and Back -----------------------------------------------------------------------------

TEST_F(VeTableTest, TheGraphButtonIsOffWithoutTheGraph) {
  UnloadScreen(Up());
  ForgetRegisteredScreens();
  OpenTable(FrmVETable());
  EXPECT_FALSE(ShownEnabled(Up(), "VEGraph"));
}

TEST_F(VeTableTest, TheGraphTakesTheTableOver) {
  RpmAxis.fill(0);
  LoadAxis.fill(0);
  SelectedTable = 3;
  ClickOn(Up(), "VEGraph");
  EXPECT_FALSE(Up().loaded);
  EXPECT_TRUE(graph.visible);
  EXPECT_EQ(SelectedTable, 0);
  EXPECT_EQ(RpmAxis[4], 500);
  EXPECT_EQ(RpmAxis[12], 6500);
  EXPECT_EQ(LoadAxis[9], 100);
  EXPECT_EQ(LoadAxis[10], 104);
  EXPECT_EQ(TableWork[9][11], 32);
  EXPECT_EQ(Graph3DCaption.fieldCaption, "VE &Value =");
  EXPECT_EQ(Graph3DCaption.unit, "% FPW");
}

TEST_F(VeTableTest, TheGraphsUnitFollowsTheView) {
  for (const char* unit : {"ms PW", "% Duty Cycle"}) {
    OpenScreen("frmVETable");
    PressKey("F5");
    ClickOn(Up(), "VEGraph");
    EXPECT_EQ(Graph3DCaption.fieldCaption, "VE &Value =");
    EXPECT_EQ(Graph3DCaption.unit, unit);
    UnloadScreen(graph);
  }
}

TEST_F(VeTableTest, TheGraphIsRefusedWhileSomethingIsLive) {
  for (int mode = 1; mode <= 3; ++mode) {
    MonitorMode = mode;
    ClickOn(Up(), "VEGraph");
    EXPECT_EQ(Message(), unavailable);
    EXPECT_TRUE(Up().loaded);
    EXPECT_FALSE(graph.loaded);
  }
}

TEST_F(VeTableTest, APendingEntryKeepsTheGraphClosed) {
  Type(At(5), "1");
  ClickOn(Up(), "VEGraph");
  EXPECT_EQ(Focused(), At(5));
  EXPECT_FALSE(graph.loaded);
}

TEST_F(VeTableTest, BackReturnsToTheButtonThatOpensIt) {
  ClickOn(Up(), "Command1");
  EXPECT_FALSE(Up().loaded);
  EXPECT_TRUE(calibration.visible);
  EXPECT_EQ(Focused(), "VolumetricEfficiency");
}

TEST_F(VeTableTest, EscIsBack) {
  Select(5);
  PressKey("Esc");
  EXPECT_FALSE(Up().loaded);
  EXPECT_EQ(Focused(), "VolumetricEfficiency");
}

TEST_F(VeTableTest, F1OpensTheTopicOfTheTable) {
  std::string topic;
  ShowHelpTopic = [&](std::string_view asked) {
    topic = asked;
    return true;
  };
  Select(33);
  PressKey("F1");
  EXPECT_EQ(topic, "frmVETable.Table_VE");
  topic.clear();
  SetFocus(The("Command1"));
  RunPending();
  PressKey("F1");
  EXPECT_EQ(topic, "frmVETable.Table_VE");
}

TEST_F(VeTableTest, TheKeyThatClosesAWindowAsksNothing) {
  Select(20);
  for (const char* key : {"Alt+F3", "Alt+F4", "Alt+F2", "Alt+F5", "Alt+Up"}) PressKey(key);
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_EQ(GamaOffset, 0);
  EXPECT_EQ(VeView, 0);
  EXPECT_EQ(Focused(), At(20));
}

// ---- what other screens have changed ------------------------------------------------------------

TEST_F(VeTableTest, OpensOnTheRevLimitTheSensorAndTheInjectorsAsTheyAreNow) {
  MapBar = 2;
  CalValues[2] = 0.5F;
  CalValues[4] = 7100;
  CalValues[232] = 12;
  VeView = 1;
  Reopen();
  EXPECT_EQ(RpmAxis[12], 7100);
  EXPECT_EQ(LoadAxis[1], 20);
  EXPECT_EQ(LoadAxis[10], 208);
  EXPECT_EQ(CellText(64), "15.67");  // 0.5 + 1.32 * 12 * 180 / 188
}

// ---- what a file can hold -----------------------------------------------------------------------

TEST_F(VeTableTest, ASensorWithoutARangeShowsTheOffset) {
  MapBar = 0;
  PublishCalGlobals();
  VeView = 1;
  Reopen();
  EXPECT_EQ(CellText(1), "1.0");
  EXPECT_EQ(CellText(64), "1.0");
  EXPECT_EQ(Text("MAP_Label"), "(0 to 0 kPa)");
}

TEST_F(VeTableTest, ARevLimitOfZeroLeavesAllViewsReadable) {
  CalValues[4] = 0;
  PublishCalGlobals();
  Reopen();
  for (int view = 0; view <= 2; ++view, PressKey("F5")) EXPECT_NE(CellText(64), "");
  ClickOn(Up(), "VEGraph");
  EXPECT_TRUE(graph.visible);
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(VeTableTest, ExtremesOfTogAndOffsetAreShown) {
  CalValues[2] = -15.875F;
  CalValues[232] = 3;
  PublishCalGlobals();
  VeView = 1;
  Reopen();
  EXPECT_EQ(CellText(64), "-12.08");
  CalValues[2] = 15.875F;
  CalValues[232] = 30;
  PublishCalGlobals();
  Reopen();
  EXPECT_EQ(CellText(64), "53.79");
}
