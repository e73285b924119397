// The table of the general purpose output by keys and clicks: cells and frequency.
#include <gtest/gtest.h>

#include "editors/gpotable.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"

namespace {

class GpoTableTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    OpenTable(GpoCtl());
  }
  int Index() { return The("Combo1").listIndex; }
  void FocusList() {
    PressKey("Alt+F");
    ASSERT_EQ(Focused(), "Combo1");
  }
};

}  // namespace

// ---- what stands on it --------------------------------------------------------------------------

TEST_F(GpoTableTest, HasItsTitleAndFixedTexts) {
  EXPECT_EQ(Up().title, "GPO PARAMETERS");
  ExpectCaptions({{"FrequencyLine", "Use Mouse or Up and Down Arrow Keys to Change GPO Frequency"},
                  {"Combo1_Label", "GPO &Frequency:"},
                  {"MAP_Label", "(10 to 104 kPa)"},
                  {"SaveLine", "Must Press Enter to Save New Value"},
                  {"Command1", " GPO Table   &Graph"},
                  {"Command2", "<< Back"}});
  EXPECT_EQ(The("Combo1").items,
            (std::vector<std::string>{"16Hz", "24Hz", "31Hz", "61Hz", "122Hz", "244Hz"}));
}

TEST_F(GpoTableTest, CellsShowPercent) {
  EXPECT_EQ(SelectedTable, 1);
  EXPECT_EQ(CellText(1), "1");
  EXPECT_EQ(CellText(64), "64");
  EXPECT_EQ(TableWork[9][11], 64);
}

// ---- cells --------------------------------------------------------------------------------------

TEST_F(GpoTableTest, AnEntryIsStoredAndSwitchesToTheTable) {
  EnterCell(10, "33");
  EXPECT_EQ(CalValues[270], 33);
  EXPECT_EQ(CalValues[491], 0);
  EXPECT_EQ(CalValues[498], 0);
  EXPECT_EQ(TableWork[3][5], 33);
  EXPECT_EQ(CellText(10), "33");
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Focused(), At(10));
}

TEST_F(GpoTableTest, BothEndsAreAccepted) {
  EnterCell(1, "0");
  EnterCell(2, "100");
  EXPECT_EQ(CalValues[261], 0);
  EXPECT_EQ(CalValues[262], 100);
}

TEST_F(GpoTableTest, OnlyWholeNumbersAreTaken) {
  EnterCell(10, "12.5");
  EXPECT_EQ(Message(), "  Data Input Error\n\rWhole Numbers Only");
  EXPECT_EQ(CellText(10), "10");
  EXPECT_EQ(CalValues[491], 4);
  EXPECT_FALSE(CalChanged);
}

TEST_F(GpoTableTest, BeyondTheRangeIsRefusedAndTheOldValueReturns) {
  EnterCell(10, "101");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (0 to 100 %)");
  EXPECT_EQ(CellText(10), "10");
  EXPECT_EQ(CalValues[491], 4);
  EXPECT_EQ(CalValues[498], 3);
  EXPECT_FALSE(CalChanged);
}

TEST_F(GpoTableTest, ASessionPostsTheEntry) {
  GoLive();
  EXPECT_EQ(CellColour(10), Yellow);
  EnterCell(10, "33");
  EXPECT_EQ(OnflyCalIndex, 270);
  EXPECT_EQ(OnflyValue, 33);
  EXPECT_EQ(OnflyImageIndex, 253);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_EQ(BinImage[253], 84);  // 84.15
  EXPECT_EQ(CalValues[270], 10);
  EXPECT_EQ(CalValues[491], 0);
  EXPECT_EQ(CalValues[498], 3);
  EXPECT_EQ(CellText(10), "10");
  EXPECT_TRUE(CalChanged);
}

// ---- frequency ----------------------------------------------------------------------------------

TEST_F(GpoTableTest, TheListShowsTheStoredDivisor) {
  const std::vector<std::pair<float, int>> divisors = {{15.F, 0}, {10.F, 1}, {8.F, 2},
                                                       {4.F, 3},  {2.F, 4},  {1.F, 5}};
  for (const auto& [divisor, index] : divisors) {
    CalValues[325] = divisor;
    Reopen();
    EXPECT_EQ(Index(), index) << divisor;
  }
}

TEST_F(GpoTableTest, AnUnknownDivisorShowsNothingAndIsKept) {
  CalValues[325] = 7;
  Reopen();
  EXPECT_EQ(Index(), -1);
  FocusList();
  PressKey("Enter");
  EXPECT_EQ(CalValues[325], 7);
  EXPECT_EQ(CalValues[491], 4);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(EntryPending, 0);
}

TEST_F(GpoTableTest, MovingWaitsForEnter) {
  FocusList();
  PressKey("Down");
  EXPECT_EQ(Index(), 3);
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ActiveField, 21);
  EXPECT_EQ(CalValues[325], 8);
  EXPECT_FALSE(CalChanged);
  PressKey("Up");
  PressKey("Up");
  EXPECT_EQ(Index(), 1);
  EXPECT_EQ(Focused(), "Combo1");
}

TEST_F(GpoTableTest, EnterStoresTheDivisorAndSwitchesToTheTable) {
  const std::vector<float> divisors = {15, 10, 8, 4, 2, 1};
  for (int index = 0; index < 6; ++index) {
    CalValues[491] = 4;
    CalValues[498] = 3;
    CalChanged = false;
    ChooseItem(Up(), "Combo1", index);
    EXPECT_EQ(EntryPending, 1);
    EXPECT_EQ(ActiveField, 21);
    PressKey("Enter");
    EXPECT_EQ(CalValues[325], divisors[static_cast<std::size_t>(index)]);
    EXPECT_EQ(CalValues[491], 0);
    EXPECT_EQ(CalValues[498], 0);
    EXPECT_EQ(EntryPending, 0);
    EXPECT_TRUE(CalChanged);
    EXPECT_EQ(Focused(), "Combo1");
  }
  Reopen();
  EXPECT_EQ(Index(), 5);
  EXPECT_EQ(Text("Combo1"), "244Hz");
}

TEST_F(GpoTableTest, APendingFrequencyHoldsTheFocus) {
  ChooseItem(Up(), "Combo1", 5);
  ClickOn(Up(), At(21));
  EXPECT_EQ(Focused(), "Combo1");
  ClickOn(Up(), "Command2");
  EXPECT_EQ(Focused(), "Combo1");
  EXPECT_TRUE(Up().loaded);
  EXPECT_EQ(Index(), 5);
}

// The list's number is that of a cell too.
TEST_F(GpoTableTest, APendingCell21HoldsTheFocusAgainstTheList) {
  Type(At(21), "5");
  PressKey("Alt+F");
  EXPECT_EQ(Focused(), At(21));
  ChooseItem(Up(), "Combo1", 5);
  EXPECT_EQ(Focused(), At(21));
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(Index(), 2);
  PressKey("Enter");
  EXPECT_EQ(CalValues[325], 8);
  EXPECT_EQ(CalValues[281], 21);
}

TEST_F(GpoTableTest, TheListTakesUpAndDownAndLeavesTheOtherKeysToTheTable) {
  Select(10);
  FocusList();
  PressKey("Left");
  EXPECT_EQ(Focused(), At(9));
  FocusList();
  FillWith("F3", "55");
  Question();
  EXPECT_EQ(CalValues[276], 55);
  EXPECT_EQ(Focused(), At(9));
}

TEST_F(GpoTableTest, TheListsCaptionIsHighlightedWhileItHasTheFocus) {
  FocusList();
  EXPECT_EQ(Back("Combo1_Label"), White);
  Select(3);
  EXPECT_EQ(Back("Combo1_Label"), SystemButtonFace);
}

TEST_F(GpoTableTest, ASessionPostsTheFrequencyInstead) {
  GoLive();
  EXPECT_EQ(Back("Combo1"), Yellow);
  ChooseItem(Up(), "Combo1", 4);
  PressKey("Enter");
  EXPECT_EQ(OnflyCalIndex, 325);
  EXPECT_EQ(OnflyValue, 2);
  EXPECT_EQ(OnflyImageIndex, 308);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_EQ(BinImage[308], 2);
  EXPECT_EQ(CalValues[325], 8);
  EXPECT_EQ(CalValues[491], 4);
  EXPECT_EQ(CalValues[498], 3);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(EntryPending, 0);
}

TEST_F(GpoTableTest, F1OnTheListOpensItsOwnTopic) {
  std::string topic;
  ShowHelpTopic = [&](std::string_view asked) {
    topic = asked;
    return true;
  };
  PressKey("F1");
  EXPECT_EQ(topic, "GPO_Ctl.Table_GPO");
  FocusList();
  PressKey("F1");
  EXPECT_EQ(topic, "GPO_Ctl.Combo1");
}

// ---- buttons ------------------------------------------------------------------------------------

TEST_F(GpoTableTest, TheGraphTakesTheTableOver) {
  ClickOn(Up(), "Command1");
  EXPECT_TRUE(graph.visible);
  EXPECT_EQ(SelectedTable, 1);
  EXPECT_EQ(TableWork[9][11], 64);
  EXPECT_EQ(TableWork[9][1], 0);
  EXPECT_EQ(Graph3DCaption.fieldCaption, "GPO Duty Cycle &Value =");
  EXPECT_EQ(Graph3DCaption.unit, "%");
}

TEST_F(GpoTableTest, TheGraphIsRefusedWhileSomethingIsLive) {
  for (int mode = 1; mode <= 3; ++mode) {
    MonitorMode = mode;
    ClickOn(Up(), "Command1");
    EXPECT_EQ(Message(), "This Process is Unavailable while ONFLY Monitoring is Active.");
    EXPECT_FALSE(graph.loaded);
  }
}

TEST_F(GpoTableTest, TheGraphButtonIsOffInASession) {
  GoLive();
  EXPECT_FALSE(ShownEnabled(Up(), "Command1"));
  EXPECT_TRUE(ShownEnabled(Up(), "Command2"));
}

TEST_F(GpoTableTest, BackReturnsToTheButtonThatOpensIt) {
  ClickOn(Up(), "Command2");
  EXPECT_EQ(Focused(), "GpoControl");
}
