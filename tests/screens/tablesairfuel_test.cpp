// The air/fuel ratio table by keys and clicks.
#include <gtest/gtest.h>

#include "editors/airfueltable.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"

namespace {

class AirFuelTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    OpenTable(EgoAfTbl());
  }
};

constexpr const char* range = "Data Input Error\n\r  (9.76 to 29.28 AFR)";

}  // namespace

TEST_F(AirFuelTest, HasItsTitleAndFixedTexts) {
  EXPECT_EQ(Up().title, "EGO AIR/FUEL RATIO TABLE");
  ExpectCaptions({{"MAP_Label", "(10 to 104 kPa)"},
                  {"SaveLine", "Must Press Enter to Save New Value"},
                  {"Command2", "A/F Ratio &Graph"},
                  {"Command3", "EGO &Parameters"},
                  {"Command4", "&Calibrate EGO Sensor"},
                  {"Command1", "<< Back"}});
}

TEST_F(AirFuelTest, CellsAreTheTextOfTheNumber) {
  EXPECT_EQ(SelectedTable, 3);
  EXPECT_EQ(CellText(1), "10.25");
  EXPECT_EQ(CellText(64), "26");
  EXPECT_EQ(TableWork[2][4], 10.25F);
  CalValues[345] = 14.64F;
  Reopen();
  EXPECT_EQ(CellText(1), "14.64");
}

TEST_F(AirFuelTest, AnEntryIsStored) {
  EnterCell(10, "13.25");
  EXPECT_EQ(CalValues[354], 13.25F);
  EXPECT_EQ(CellText(10), "13.25");
  EXPECT_EQ(AfrWork[3][5], 13.25F);
  EXPECT_EQ(TableWork[3][5], 13.25F);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Focused(), At(10));
  EXPECT_TRUE(AllSelected(At(10)));
}

TEST_F(AirFuelTest, TheLastCellReachesTheMargins) {
  EnterCell(64, "13.25");
  EXPECT_EQ(TableWork[10][11], 13.25F);
  EXPECT_EQ(TableWork[9][12], 13.25F);
}

TEST_F(AirFuelTest, BothEndsAreAccepted) {
  EnterCell(1, "9.76");
  EnterCell(2, "29.28");
  EXPECT_EQ(CalValues[345], 9.76F);
  EXPECT_EQ(CalValues[346], 29.28F);
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(AirFuelTest, BeyondTheRangeIsRefusedAndTheOldValueReturns) {
  for (const char* entry : {"9.75", "29.29", "0", "100"}) {
    EnterCell(1, entry);
    EXPECT_EQ(Message(), range);
    EXPECT_EQ(CellText(1), "10.25");
    EXPECT_TRUE(AllSelected(At(1)));
  }
  EXPECT_EQ(CalValues[345], 10.25F);
  EXPECT_FALSE(CalChanged);
}

TEST_F(AirFuelTest, AMinusIsABadCharacter) {
  Select(1);
  TypeText("-");
  EXPECT_EQ(Message(), "Data Input Error\n\r  Retype Data");
}

TEST_F(AirFuelTest, TheLetterOfTheFillKeyIsNoEntry) {
  for (const char* letter : {"s", "S"}) {
    EnterText(Edited(), Edited().fields[4], letter);
    EXPECT_FALSE(AnyBoxShown());
    EXPECT_EQ(CalValues[349], 11.25F);
    EXPECT_FALSE(CalChanged);
    EXPECT_EQ(EnterPressed, 0);
  }
}

TEST_F(AirFuelTest, TheFillKeyLeavesNoMessageBehind) {
  Select(5);
  FillWith("S", std::nullopt);
  Question();
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_EQ(CellText(5), "11.25");
}

TEST_F(AirFuelTest, ArrowsWrap) {
  Select(64);
  PressKey("Right");
  EXPECT_EQ(Focused(), At(1));
  PressKey("Down");
  EXPECT_EQ(Focused(), At(57));
}

TEST_F(AirFuelTest, HasNoModesAndNoViews) {
  PressKey("F2");
  PressKey("F5");
  EXPECT_EQ(VeView, 0);
  EXPECT_EQ(CellText(1), "10.25");
}

TEST_F(AirFuelTest, ASessionPostsTheEntry) {
  GoLive();
  EXPECT_EQ(CellColour(10), Yellow);
  EnterCell(10, "14.64");
  EXPECT_EQ(OnflyCalIndex, 354);
  EXPECT_EQ(OnflyValue, 14.64);
  EXPECT_EQ(OnflyImageIndex, 334);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_EQ(BinImage[334], 127);
  EXPECT_EQ(CalValues[354], 12.5F);
  EXPECT_EQ(CellText(10), "12.5");
  EXPECT_TRUE(CalChanged);
}

TEST_F(AirFuelTest, ASessionSwitchesTheOtherButtonsOff) {
  RegisterOther(other, "EGO_Parameters");
  Screen calibrate;
  calibrate.build = [](Screen&) {};
  RegisterOther(calibrate, "EGO_Calb");
  Reopen();
  for (const char* button : {"Command2", "Command3", "Command4"})
    EXPECT_TRUE(ShownEnabled(Up(), button)) << button;
  GoLive();
  for (const char* button : {"Command2", "Command3", "Command4"})
    EXPECT_FALSE(ShownEnabled(Up(), button)) << button;
  EXPECT_TRUE(ShownEnabled(Up(), "Command1"));
}

TEST_F(AirFuelTest, ButtonsAreOffUntilTheirScreensExist) {
  EXPECT_FALSE(ShownEnabled(Up(), "Command3"));
  EXPECT_FALSE(ShownEnabled(Up(), "Command4"));
}

TEST_F(AirFuelTest, ButtonsOpenTheirScreens) {
  for (const auto& [button, name] :
       {std::pair{"Command3", "EGO_Parameters"}, std::pair{"Command4", "EGO_Calb"}}) {
    RegisterOther(other, name);
    Reopen();
    ClickOn(Up(), button);
    EXPECT_TRUE(other.visible) << name;
    EXPECT_FALSE(Up().loaded);
    UnloadScreen(other);
  }
}

TEST_F(AirFuelTest, TheGraphTakesTheTableOver) {
  ClickOn(Up(), "Command2");
  EXPECT_TRUE(graph.visible);
  EXPECT_FALSE(Up().loaded);
  EXPECT_EQ(SelectedTable, 3);
  EXPECT_EQ(TableWork[2][4], 10.25F);
  EXPECT_EQ(TableWork[2][1], 14.64F);
  EXPECT_EQ(Graph3DCaption.fieldCaption, "Air/Fuel Ratio &Value =");
  EXPECT_EQ(Graph3DCaption.unit, "");
}

TEST_F(AirFuelTest, OnlyASessionKeepsTheGraphClosed) {
  MonitorMode = 3;
  ClickOn(Up(), "Command2");
  EXPECT_EQ(Message(), "This Process is Unavailable while ONFLY Monitoring is Active.");
  EXPECT_FALSE(graph.loaded);
  for (int mode = 1; mode <= 2; ++mode) {
    MonitorMode = mode;
    OpenTable(EgoAfTbl());
    ClickOn(Up(), "Command2");
    EXPECT_TRUE(graph.visible) << mode;
    UnloadScreen(graph);
  }
}

TEST_F(AirFuelTest, BackReturnsToTheButtonThatOpensIt) {
  ClickOn(Up(), "Command1");
  EXPECT_EQ(Focused(), "EgoTable");
}

TEST_F(AirFuelTest, F1OpensTheTopicOfTheTable) {
  std::string topic;
  ShowHelpTopic = [&](std::string_view asked) {
    topic = asked;
    return true;
  };
  PressKey("F1");
  EXPECT_EQ(topic, "EGO_AF_TBL");
}
