// The advance table by keys and clicks: cells, both axes, initial advance, buttons.
#include <gtest/gtest.h>

#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/gpotable.h"
#include "editors/vetable.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"
#include "shell/calscreen.h"

namespace {

class AdvanceTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    OpenTable(IgnAdvTbl());
  }
  // The text of the box titled "INPUT ERROR".
  std::string AxisMessage() {
    const ShownBox box = TakeBox();
    EXPECT_EQ(box.kind, "message");
    EXPECT_EQ(box.title, "INPUT ERROR");
    EXPECT_EQ(box.buttons, Buttons::Ok);
    return box.text;
  }
};

constexpr const char* speedMessage =
    "Data Input Error\n\r"
    "\n\r"
    "Values should be in the range of (0 to 12000 RPM)\n\r"
    "and in Ascending Order from Left to Right.";
constexpr const char* loadMessage =
    "Data Input Error\n\r"
    "\n\r"
    "Values should be in the range of (10 to 104 kPa)\n\r"
    "and in Ascending Order from Bottom to Top.";
constexpr const char* cellMessage = "Data Input Error\n\r  (0 to 60 DEG)";

}  // namespace

// ---- what stands on it --------------------------------------------------------------------------

TEST_F(AdvanceTest, HasItsTitleAndFixedTexts) {
  EXPECT_EQ(Up().title, "IGNITION ADVANCE TABLE");
  ExpectCaptions({{"MAP_Label", "(10 to 104 kPa)"},
                  {"SaveLine", "Must Press Enter to Save New Value"},
                  {"Command1", "Main Advance Table &Graph"},
                  {"Command2", "&Coolant Advance"},
                  {"Command4", "&MAP Sensor"},
                  {"Command5", "&Rev Limiter"},
                  {"Command3", "<< Back"}});
}

TEST_F(AdvanceTest, EightyPositionsHoldAxesAndCells) {
  EXPECT_EQ(SelectedTable, 2);
  EXPECT_EQ(CellText(1), "500");
  EXPECT_EQ(CellText(8), "6000");
  EXPECT_EQ(CellText(9), "20");
  EXPECT_EQ(CellText(72), "100");
  EXPECT_EQ(CellText(10), "0.5");
  EXPECT_EQ(CellText(17), "4");
  EXPECT_EQ(CellText(19), "4.5");
  EXPECT_EQ(CellText(80), "32");
  EXPECT_EQ(Find(Up(), "Table_ADV(0)"), nullptr);
  EXPECT_EQ(Find(Up(), "Table_ADV(81)"), nullptr);
}

TEST_F(AdvanceTest, TheSpeedAxisIsTheBottomLineAndTheLoadAxisTheLeftColumn) {
  for (int column = 1; column <= 8; ++column)
    EXPECT_GT(The(At(column)).place.row, The(At(9 + column)).place.row);
  for (int row = 1; row <= 8; ++row)
    EXPECT_LT(The(At(9 * row)).place.column, The(At(9 * row + 1)).place.column);
  EXPECT_GT(The(At(10)).place.row, The(At(19)).place.row);
}

TEST_F(AdvanceTest, LoadAxisShowsRealKpa) {
  MapBar = 2;
  Reopen();
  EXPECT_EQ(CellText(9), "40");
  EXPECT_EQ(CellText(72), "200");
  EXPECT_EQ(Text("MAP_Label"), "(20 to 208 kPa)");
}

// ---- arrows -------------------------------------------------------------------------------------

TEST_F(AdvanceTest, ArrowsRunOverAllPositions) {
  struct Way {
    int from;
    const char* key;
    int to;
  };
  for (const Way& way : {Way{80, "Right", 1}, Way{1, "Left", 80}, Way{1, "Up", 10},
                         Way{72, "Up", 1}, Way{80, "Up", 9}, Way{1, "Down", 72}, Way{10, "Down", 1},
                         Way{10, "Left", 9}, Way{8, "Right", 9}}) {
    Select(way.from);
    PressKey(way.key);
    EXPECT_EQ(Focused(), At(way.to)) << way.from << " " << way.key;
    EXPECT_EQ(ActiveField, way.to);
    EXPECT_TRUE(AllSelected(At(way.to)));
  }
}

TEST_F(AdvanceTest, AxisFieldsOfTheSelectedCellStandOut) {
  Select(20);  // row 2, column 2
  const Colour selected = Back(At(2));
  EXPECT_NE(selected, SystemWindow);
  EXPECT_EQ(Back(At(18)), selected);
  EXPECT_EQ(Back(At(3)), SystemWindow);
  PressKey("Right");
  EXPECT_EQ(Back(At(2)), SystemWindow);
  EXPECT_EQ(Back(At(3)), selected);
}

// ---- cells --------------------------------------------------------------------------------------

TEST_F(AdvanceTest, AnEntryIsStored) {
  EnterCell(20, "12.5");
  EXPECT_EQ(CalValues[70], 12.5F);  // cell 10
  EXPECT_EQ(CellText(20), "12.5");
  EXPECT_EQ(AdvanceWork[3][5], 12.5F);
  EXPECT_EQ(TableWork[3][5], 12.5F);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Focused(), At(20));
}

TEST_F(AdvanceTest, EveryCellHasItsOwnElement) {
  for (int index = 10; index <= 80; ++index) {
    if (index % 9 == 0) continue;
    const int cell = index - index / 9 - 8;
    EXPECT_EQ(Edited().fields[static_cast<std::size_t>(index - 1)].calIndex, 60 + cell);
    EXPECT_EQ(Edited().fields[static_cast<std::size_t>(index - 1)].imageByte, 53 + cell);
  }
}

TEST_F(AdvanceTest, BothEndsAreAccepted) {
  EnterCell(10, "0");
  EnterCell(80, "60");
  EXPECT_EQ(CalValues[61], 0);
  EXPECT_EQ(CalValues[124], 60);
}

TEST_F(AdvanceTest, BeyondTheRangeIsRefusedAndTheOldValueReturns) {
  for (const char* entry : {"60.1", "61", "900"}) {
    EnterCell(20, entry);
    EXPECT_EQ(Message(), cellMessage);
    EXPECT_EQ(CellText(20), "5");
  }
  EXPECT_FALSE(CalChanged);
}

TEST_F(AdvanceTest, ASessionPostsTheEntry) {
  GoLive();
  EXPECT_EQ(CellColour(20), Yellow);
  EnterCell(20, "12.5");
  EXPECT_EQ(OnflyCalIndex, 70);
  EXPECT_EQ(OnflyValue, 12.5);
  EXPECT_EQ(OnflyImageIndex, 63);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_EQ(BinImage[63], 53);  // 53.125
  EXPECT_EQ(CalValues[70], 5);
  EXPECT_EQ(CellText(20), "5");
}

// ---- speed axis ---------------------------------------------------------------------------------

TEST_F(AdvanceTest, ASpeedBreakpointIsStored) {
  EnterCell(2, "900");
  EXPECT_EQ(CalValues[46], 900);
  EXPECT_EQ(CellText(2), "900");
  EXPECT_EQ(RpmAxis[5], 900);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Focused(), At(2));
}

TEST_F(AdvanceTest, ASpeedKeepsItsDecimals) {
  EnterCell(2, "900.5");
  EXPECT_EQ(CalValues[46], 900.5F);
  EXPECT_EQ(CellText(2), "900.5");
}

TEST_F(AdvanceTest, ASpeedEqualToItsNeighbourIsRefused) {
  for (const char* entry : {"500", "1500"}) {
    EnterCell(2, entry);
    EXPECT_EQ(AxisMessage(), speedMessage);
    EXPECT_EQ(CellText(2), "1000");
  }
  EXPECT_EQ(CalValues[46], 1000);
  EXPECT_FALSE(CalChanged);
}

// As a double 1500.1 lies above, and 1900.4 below, the single that is stored.
TEST_F(AdvanceTest, ASpeedWithDecimalsEqualToItsNeighbourIsRefused) {
  CalValues[45] = 1500.1F;
  CalValues[46] = 1700;
  CalValues[47] = 1900.4F;
  Reopen();
  ASSERT_GT(1500.1, 1500.1F);
  ASSERT_LT(1900.4, 1900.4F);
  for (const char* entry : {"1500.1", "1900.4"}) {
    EnterCell(2, entry);
    EXPECT_EQ(AxisMessage(), speedMessage) << entry;
  }
  EXPECT_EQ(CalValues[46], 1700);
  EXPECT_FALSE(CalChanged);
}

TEST_F(AdvanceTest, ASpeedThatCrossesItsNeighbourIsRefused) {
  for (const char* entry : {"499", "1501", "6000", "0"}) {
    EnterCell(2, entry);
    EXPECT_EQ(AxisMessage(), speedMessage);
    EXPECT_EQ(CellText(2), "1000");
  }
}

TEST_F(AdvanceTest, TheEndsOfTheSpeedAxisHaveOneNeighbour) {
  EnterCell(1, "0");
  EXPECT_EQ(CalValues[45], 0);
  EnterCell(1, "1000");
  EXPECT_EQ(AxisMessage(), speedMessage);
  EnterCell(8, "12000");
  EXPECT_EQ(CalValues[52], 12000);
  EnterCell(8, "5000");
  EXPECT_EQ(AxisMessage(), speedMessage);
}

TEST_F(AdvanceTest, ASpeedBeyondTheRangeIsRefused) {
  EnterCell(8, "12001");
  EXPECT_EQ(AxisMessage(), speedMessage);
  EXPECT_EQ(CellText(8), "6000");
}

// ---- load axis ----------------------------------------------------------------------------------

TEST_F(AdvanceTest, ALoadBreakpointIsStoredPerBar) {
  MapBar = 2;
  Reopen();
  EnterCell(18, "65");
  EXPECT_EQ(CalValues[54], 32.5F);
  EXPECT_EQ(CellText(18), "65");
  EXPECT_EQ(LoadAxis[3], 65);
  EXPECT_TRUE(CalChanged);
}

TEST_F(AdvanceTest, BothEndsOfTheLoadRangeAreAccepted) {
  EnterCell(9, "10");
  EXPECT_EQ(CalValues[53], 10);
  EnterCell(72, "104");
  EXPECT_EQ(CalValues[60], 104);
}

TEST_F(AdvanceTest, ALoadBeyondTheRangeIsRefused) {
  for (const char* entry : {"9.9", "104.1", "0"}) {
    EnterCell(18, entry);
    EXPECT_EQ(AxisMessage(), loadMessage);
    EXPECT_EQ(CellText(18), "30");
  }
  EXPECT_FALSE(CalChanged);
}

TEST_F(AdvanceTest, TheLoadRangeFollowsTheBar) {
  MapBar = 3;
  Reopen();
  EnterCell(18, "29");
  EXPECT_EQ(AxisMessage(),
            "Data Input Error\n\r"
            "\n\r"
            "Values should be in the range of (30 to 312 kPa)\n\r"
            "and in Ascending Order from Bottom to Top.");
}

TEST_F(AdvanceTest, TheOrderOfLoadsIsNotTested) {
  EnterCell(18, "20");
  EXPECT_EQ(CalValues[54], 20);
  EnterCell(18, "95");
  EXPECT_EQ(CalValues[54], 95);
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(AdvanceTest, ASensorWithoutARangeEndsInTheSystemsBox) {
  MapBar = 0;
  Reopen();
  EnterCell(18, "0");
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Error");
  EXPECT_EQ(box.text.substr(0, 34), "Error # 11 was generated by Halvan");
  EXPECT_EQ(CalValues[54], 30);
  EXPECT_FALSE(CalChanged);
}

TEST_F(AdvanceTest, AxesPostNothingInASession) {
  GoLive();
  EXPECT_NE(Back(At(1)), Yellow);
  EXPECT_NE(Back(At(9)), Yellow);
  EnterCell(2, "900");
  EnterCell(18, "35");
  EXPECT_EQ(CalValues[46], 900);
  EXPECT_EQ(CalValues[54], 35);
  EXPECT_EQ(OnflyByteCount, 0);
}

TEST_F(AdvanceTest, AnAxisEditShowsOnTheOtherTables) {
  EnterCell(2, "900");
  EnterCell(18, "35");
  UnloadScreen(Up());
  for (const auto& [editor, name] : {std::pair{&FrmVETable(), "VE"}, std::pair{&EgoAfTbl(), "EGO"},
                                     std::pair{&GpoCtl(), "GPO"}}) {
    OpenTable(*editor);
    EXPECT_EQ(Text("RPM_" + std::string(name) + "(2)"), "900");
    EXPECT_EQ(Text("MAP_" + std::string(name) + "(2)"), "35");
    UnloadScreen(Up());
  }
}

// ---- initial advance ----------------------------------------------------------------------------

TEST_F(AdvanceTest, InitialAdvanceIsStored) {
  EXPECT_EQ(Text("InitAdv"), "12");
  Enter("InitAdv", "10.5");
  EXPECT_EQ(CalValues[3], 10.5F);
  EXPECT_EQ(InitialAdvance, 10.5F);
  EXPECT_EQ(TableWork[2][1], 10.5F);
  EXPECT_TRUE(CalChanged);
}

TEST_F(AdvanceTest, BothEndsOfTheInitialAdvanceAreAccepted) {
  Enter("InitAdv", "0");
  EXPECT_EQ(CalValues[3], 0);
  Enter("InitAdv", "30");
  EXPECT_EQ(CalValues[3], 30);
}

TEST_F(AdvanceTest, InitialAdvanceBeyondItsRangeIsRefused) {
  Enter("InitAdv", "30.1");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (0 to 30 DEG)");
  EXPECT_EQ(CalValues[3], 12);
  EXPECT_EQ(Focused(), "InitAdv");
}

TEST_F(AdvanceTest, ASessionPostsTheInitialAdvance) {
  GoLive();
  EXPECT_EQ(Back("InitAdv"), Yellow);
  Enter("InitAdv", "10");
  EXPECT_EQ(OnflyCalIndex, 3);
  EXPECT_EQ(OnflyValue, 10);
  EXPECT_EQ(OnflyImageIndex, 3);
  EXPECT_EQ(BinImage[3], 42);  // 42.5, ties to even
  EXPECT_EQ(CalValues[3], 12);
  EXPECT_EQ(InitialAdvance, 10);
}

TEST_F(AdvanceTest, ArrowFromTheInitialAdvanceGoesBackToTheTable) {
  Select(20);
  ClickOn(Up(), "InitAdv");
  PressKey("Up");
  EXPECT_EQ(Focused(), At(29));
}

// ---- buttons ------------------------------------------------------------------------------------

TEST_F(AdvanceTest, ButtonsOpenTheirScreens) {
  for (const auto& [button, name] :
       {std::pair{"Command2", "Cool_Adv"}, std::pair{"Command4", "Map_sen"},
        std::pair{"Command5", "Rev_limiter"}}) {
    EXPECT_FALSE(ShownEnabled(Up(), button)) << button;
    RegisterOther(other, name);
    Reopen();
    EXPECT_TRUE(ShownEnabled(Up(), button));
    ClickOn(Up(), button);
    EXPECT_TRUE(other.visible) << name;
    EXPECT_FALSE(Up().loaded);
    UnloadScreen(other);
    OpenTable(IgnAdvTbl());
  }
}

TEST_F(AdvanceTest, TheRevLimiterIsToldWhoOpensIt) {
  RegisterOther(other, "Rev_limiter");
  Reopen();
  RevLimiterCaller = 0;
  ClickOn(Up(), "Command5");
  EXPECT_EQ(RevLimiterCaller, 1);
  RevLimiterCaller = 0;
}

TEST_F(AdvanceTest, ASessionSwitchesTheOtherButtonsOff) {
  RegisterOther(other, "Rev_limiter");
  GoLive();
  for (const char* button : {"Command1", "Command2", "Command4", "Command5"})
    EXPECT_FALSE(ShownEnabled(Up(), button)) << button;
  EXPECT_TRUE(ShownEnabled(Up(), "Command3"));
}

TEST_F(AdvanceTest, TheGraphTakesTheTableOver) {
  InitialAdvance = 0;
  ClickOn(Up(), "Command1");
  EXPECT_TRUE(graph.visible);
  EXPECT_EQ(SelectedTable, 2);
  EXPECT_EQ(InitialAdvance, 12);
  EXPECT_EQ(TableWork[5][2], 12);
  EXPECT_EQ(TableWork[9][11], 32);
  EXPECT_EQ(Graph3DCaption.fieldCaption, "Advance &Value =");
  EXPECT_EQ(Graph3DCaption.unit, "Degrees");
}

TEST_F(AdvanceTest, TheGraphIsRefusedWhileSomethingIsLive) {
  for (int mode = 1; mode <= 3; ++mode) {
    MonitorMode = mode;
    ClickOn(Up(), "Command1");
    EXPECT_EQ(Message(), "This Process is Unavailable while ONFLY Monitoring is Active.");
    EXPECT_FALSE(graph.loaded);
  }
}

TEST_F(AdvanceTest, BackReturnsToTheButtonThatOpensIt) {
  ClickOn(Up(), "Command3");
  EXPECT_EQ(Focused(), "IgnitionAdvance");
}

TEST_F(AdvanceTest, F1OpensTheTopicOfTheTableEverywhere) {
  std::string topic;
  ShowHelpTopic = [&](std::string_view asked) {
    topic = asked;
    return true;
  };
  for (const std::string& control : {At(1), At(9), At(40), std::string("InitAdv")}) {
    topic.clear();
    ClickOn(Up(), control);
    PressKey("F1");
    EXPECT_EQ(topic, "Ign_adv_tbl") << control;
  }
}
