// Stepping values on the 3D graph and writing them back.
#include "core/numbers.h"
#include "screens/graph3dscreen.h"

TEST_F(Graph3DTest, PlusAndMinusStepEachTableAndWriteAllCellsBack) {
  struct Step {
    const char* key;
    double change;
  };
  const Step steps[] = {{"Plus", 1}, {"KeypadPlus", 1}, {"Minus", -1}, {"KeypadMinus", -1}};
  for (const TableCase& one : graphTables) {
    SCOPED_TRACE(one.screen);
    const bool airFuel = one.table == TableAirFuel;
    for (const Step& step : steps) {
      OpenGraphOf(one);
      const auto before = CalValues;
      WalkToCell(20);
      EXPECT_FALSE(CalChanged);
      PressKey(step.key);
      EXPECT_TRUE(CalChanged) << step.key;
      for (std::size_t index = 0; index < CalValues.size(); ++index) {
        double scale = one.table == TableVe ? 0.01 : 1;
        double change = index == one.calBase + 20 ? step.change * scale * (airFuel ? 0.01 : 1) : 0;
        if (change == 0)
          EXPECT_EQ(CalValues[index], before[index]) << step.key << " " << index;
        else
          EXPECT_NEAR(CalValues[index], before[index] + change, 1e-6) << step.key;
      }
      CalValues = before;
      CloseAll();
    }
  }
}

TEST_F(Graph3DTest, TheWholeTableIsWrittenFromTheViews) {
  OpenGraphOf(graphTables[1]);
  TableWork[9][11] = 77;  // another cell than the marker's
  WalkToCell(1);
  PressKey("Plus");
  EXPECT_EQ(CalValues[261], 2);
  EXPECT_EQ(CalValues[324], 77);
  EXPECT_EQ(GpoWork[9][11], 77);
  EXPECT_EQ(GpoWork[2][4], 2);
}

TEST_F(Graph3DTest, AVeStepIsStoredAsAFraction) {
  OpenVe();
  WalkToCell(9);
  PressKey("Plus");
  EXPECT_EQ(CalValues[133], -0.22F);
  EXPECT_EQ(VeWork[3][4], -22);
}

TEST_F(Graph3DTest, AKeyAtALimitChangesNothing) {
  struct Limit {
    const TableCase& table;
    float stored;
    const char* key;
    const char* shown;
  };
  const Limit limits[] = {
      {graphTables[0], 0.5F, "Plus", "50.00"},   {graphTables[0], -0.5F, "Minus", "-50.00"},
      {graphTables[1], 100, "Plus", "100.00"},   {graphTables[1], 0, "Minus", "0"},
      {graphTables[2], 60, "Plus", "60.00"},     {graphTables[2], 0, "Minus", "0"},
      {graphTables[3], 19.14F, "Plus", "19.14"}, {graphTables[3], 10.14F, "Minus", "10.14"},
  };
  for (const Limit& limit : limits) {
    SCOPED_TRACE(std::string(limit.table.screen) + " " + limit.key);
    CalValues[limit.table.calBase + 2] = limit.stored;
    OpenGraphOf(limit.table);
    WalkToCell(2);
    const auto before = CalValues;
    PressKey(limit.key);
    EXPECT_FALSE(CalChanged);
    EXPECT_EQ(CalValues, before);
    EXPECT_EQ(Shown("Value_Text"), limit.shown);
    CloseAll();
  }
}

TEST_F(Graph3DTest, ALimitIsReachedExactlyByHundredthsToo) {
  CalValues[346] = 10.2F;
  OpenGraphOf(graphTables[3]);
  WalkToCell(2);
  for (int i = 0; i < 6; ++i) PressKey("Minus");
  EXPECT_EQ(CalValues[346], 10.14F);
  CalChanged = false;
  PressKey("Minus");
  EXPECT_FALSE(CalChanged);
}

// A byte of the image hangs on it: 255 * 0.2 is 51, of the least bit less it is 50.
TEST_F(Graph3DTest, StepsStoreTheVeryNumbersThatEntriesStore) {
  for (int from : {-50, 0, 29}) {
    CalValues[126] = static_cast<float>(from / 100.0);
    OpenVe();
    WalkToCell(2);
    for (int percent = from + 1; percent <= from + 21; ++percent) {
      PressKey("Plus");
      ASSERT_EQ(CalValues[126], static_cast<float>(percent / 100.0)) << from << " " << percent;
    }
    CloseAll();
  }
}

TEST_F(Graph3DTest, HundredthsOfAirFuelDoNotDrift) {
  CalValues[346] = 14.64F;
  OpenGraphOf(graphTables[3]);
  WalkToCell(2);
  for (int hundredths = 1463; hundredths >= 1400; --hundredths) {
    PressKey("Minus");
    ASSERT_EQ(CalValues[346], static_cast<float>(hundredths / 100.0));
  }
}

TEST_F(Graph3DTest, AStepDoesNotPassALimit) {
  CalValues[126] = 0.495F;
  OpenVe();
  WalkToCell(2);
  PressKey("Plus");
  EXPECT_EQ(CalValues[126], 0.5F);
}

TEST_F(Graph3DTest, AValueBeyondALimitStepsBackOnly) {
  CalValues[346] = 25;
  OpenGraphOf(graphTables[3]);
  WalkToCell(2);
  PressKey("Plus");
  EXPECT_FALSE(CalChanged);
  PressKey("Minus");
  EXPECT_EQ(CalValues[346], 24.99F);
}

TEST_F(Graph3DTest, ColumnOneIsNotChanged) {
  OpenVe();
  PressKey("Plus");
  PressKey("KeypadMinus");
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(TableWork[1][1], 0);
  EXPECT_EQ(Shown("Value_Text"), "0");
}

TEST_F(Graph3DTest, AMarginStepChangesThePictureButNoCell) {
  for (auto [column, row] : {std::pair{2, 5}, {3, 5}, {4, 1}, {6, 10}}) {
    OpenVe();
    WalkTo(column, row);
    const auto before = CalValues;
    const auto picture = Picture();
    const float value = TableWork[row][column];
    PressKey("Plus");
    EXPECT_EQ(TableWork[row][column], ValueOfNode(value) + 1);
    EXPECT_NE(Picture(), picture);
    EXPECT_TRUE(CalChanged);
    EXPECT_EQ(CalValues, before);
    CloseAll();
    OpenVe();
    EXPECT_EQ(TableWork[row][column], value) << "lives until the next rebuild only";
    CloseAll();
  }
}

TEST_F(Graph3DTest, PulseWidthAndDutyCannotBeChanged) {
  for (int view : {1, 2}) {
    OpenVe(view);
    WalkToCell(40);
    const auto before = CalValues;
    const std::string shown = Format(TableWork[6][11], "##0.00");
    EXPECT_EQ(Shown("Value_Text"), TableWork[6][11] == 0 ? "0" : shown);
    for (const char* key : {"Plus", "Minus", "KeypadPlus", "KeypadMinus"}) PressKey(key);
    EXPECT_EQ(CalValues, before);
    EXPECT_FALSE(CalChanged);
    EXPECT_EQ(Shown("Value_Text"), TableWork[6][11] == 0 ? "0" : shown);
    CloseAll();
  }
}

TEST_F(Graph3DTest, TheViewOfVeDoesNotLockOtherTables) {
  VeView = 2;
  OpenGraphOf(graphTables[2]);
  EXPECT_EQ(Shown("Hint"), adjustable);
  WalkToCell(3);
  PressKey("Plus");
  EXPECT_EQ(CalValues[63], 2.5F);
}

TEST_F(Graph3DTest, TheAxisWidensAtThirtyOneAndNarrowsAgain) {
  for (std::size_t cell = 1; cell <= 64; ++cell) CalValues[124 + cell] = 0;
  CalValues[130] = 0.3F;
  OpenVe();
  EXPECT_TRUE(PictureHas("30.00"));
  EXPECT_FALSE(PictureHas("50.00"));
  WalkToCell(6);
  PressKey("Plus");
  EXPECT_EQ(Shown("Value_Text"), "31.00");
  EXPECT_TRUE(PictureHas("50.00"));
  EXPECT_TRUE(PictureHas("-50.00"));
  EXPECT_FALSE(PictureHas("30.00"));
  PressKey("Minus");
  EXPECT_TRUE(PictureHas("30.00"));
}

TEST_F(Graph3DTest, ThePictureCarriesItsTitlesAndAxisTexts) {
  OpenVe();
  for (const char* text :
       {"Volumetric", "Efficiency", "(% FPW)", "Engine Speed", "(RPM)", "MAP (kPa)"})
    EXPECT_TRUE(PictureHas(text)) << text;
}
