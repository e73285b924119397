// The 3D graph by keys and clicks: opening from each table, the walk of the marker, stepping values
// and writing them back, Back, and what a damaged calibration makes of it.
#include "editors/graph3d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/encoder.h"
#include "core/numbers.h"
#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/gpotable.h"
#include "editors/graph3dpicture.h"
#include "editors/vetable.h"
#include "screens/tablescreens.h"

namespace {

constexpr const char* adjustable = "Use + or - Keys to Adjust Graph Values";
constexpr const char* fixedValues = "Values in this graph are not Editable";

struct TableCase {
  Editor& (*editor)();
  const char* screen;
  const char* button;
  int table;
  std::size_t calBase;
  const char* caption;
  const char* unit;
};
const TableCase tables[] = {
    {FrmVETable, "frmVETable", "VEGraph", TableVe, 124, "VE &Value =", "% FPW"},
    {GpoCtl, "GPO_Ctl", "Command1", TableGpo, 260, "GPO Duty Cycle &Value =", "%"},
    {IgnAdvTbl, "Ign_adv_tbl", "Command1", TableAdvance, 60, "Advance &Value =", "Degrees"},
    {EgoAfTbl, "EGO_AF_TBL", "Command2", TableAirFuel, 344, "Air/Fuel Ratio &Value =", ""},
};

class Graph3DTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    RegisterGraph3D();
  }

  // Opens a table and its graph by the graph button.
  void OpenGraphOf(const TableCase& one) {
    OpenTable(one.editor());
    ClickOn(Up(), one.button);
    RunPending();
    ASSERT_TRUE(Graph3D.visible) << one.screen;
  }
  void OpenVe(int view = 0) {
    VeView = view;
    OpenGraphOf(tables[0]);
  }
  // Leaves the graph and its table, for the next one.
  void CloseAll() {
    PressKey("Esc");
    RunPending();
    UnloadScreen(Up());
    RunPending();
    CalChanged = false;
  }

  void WalkTo(int column, int row) {
    for (int i = 0; i < 20 && CursorColumn != column; ++i) PressKey("Right");
    for (int i = 0; i < 20 && CursorRow != row; ++i) PressKey("Up");
    ASSERT_EQ(CursorColumn, column);
    ASSERT_EQ(CursorRow, row);
  }
  void WalkToCell(int cell) { WalkTo(PlaceOfCell(cell).column, PlaceOfCell(cell).row); }
  std::string Shown(const char* control) { return ShownText(Graph3D, control); }
  std::array<std::string, 3> Fields() {
    return {Shown("RPM_Text"), Shown("MAP_Text"), Shown("Value_Text")};
  }
  using Three = std::array<std::string, 3>;

  const std::vector<Primitive>& Picture() { return ::At(Graph3D, "Picture1").drawing.primitives; }
  unsigned long Generation() { return ::At(Graph3D, "Picture1").drawing.generation; }
  bool PictureHas(const std::string& text) {
    for (const Primitive& one : Picture())
      if (one.kind == PrimitiveKind::Text && one.text == text) return true;
    return false;
  }
  std::vector<Primitive> Discs() {
    std::vector<Primitive> discs;
    for (const Primitive& one : Picture())
      if (one.kind == PrimitiveKind::Disc) discs.push_back(one);
    return discs;
  }
};

}  // namespace

// ---- opening ------------------------------------------------------------------------------------

TEST_F(Graph3DTest, OpensFromEachTableWithItsCaptionAndUnit) {
  for (const TableCase& one : tables) {
    OpenGraphOf(one);
    EXPECT_FALSE(Up().loaded);
    EXPECT_EQ(SelectedTable, one.table);
    EXPECT_EQ(::At(Graph3D, "Value_Text_Label").caption, one.caption);
    EXPECT_EQ(Shown("Unit_Label"), one.unit);
    EXPECT_EQ(Shown("RPM_Text_Label"), "Engine Speed Value =");
    EXPECT_EQ(Shown("MAP_Text_Label"), "MAP Value =");
    EXPECT_EQ(Shown("Hint"), adjustable);
    EXPECT_EQ(Shown("Command1"), "<< Back");
    EXPECT_EQ(CursorColumn, 1);
    EXPECT_EQ(CursorRow, 1);
    EXPECT_FALSE(CalChanged);
    CloseAll();
  }
}

TEST_F(Graph3DTest, ItsTitleNamesTheProduct) {
  OpenVe();
  EXPECT_EQ(Graph3D.title.substr(0, 8), "3D GRAPH");
  EXPECT_NE(Graph3D.title.find("Halvane2"), std::string::npos);
}

TEST_F(Graph3DTest, TheViewsOfVeHaveTheirUnitsAndHints) {
  const std::array<std::pair<const char*, const char*>, 3> expected = {
      {{"% FPW", adjustable}, {"ms PW", fixedValues}, {"% Duty Cycle", fixedValues}}};
  for (int view = 0; view < 3; ++view) {
    OpenVe(view);
    EXPECT_EQ(Shown("Value_Text_Label"), "VE Value =");
    EXPECT_EQ(Shown("Unit_Label"), expected[static_cast<std::size_t>(view)].first);
    EXPECT_EQ(Shown("Hint"), expected[static_cast<std::size_t>(view)].second);
    CloseAll();
  }
}

TEST_F(Graph3DTest, TheMarkerStartsAnewAtEachOpening) {
  OpenVe();
  WalkTo(5, 3);
  CloseAll();
  OpenVe();
  EXPECT_EQ(CursorColumn, 1);
  EXPECT_EQ(CursorRow, 1);
}

TEST_F(Graph3DTest, AnEntryPendingElsewhereDoesNotFollow) {
  EntryPending = 1;
  SelectedTable = TableVe;
  OpenScreen("Graph3D");
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(HelpScreen, "Graph3D");
}

TEST_F(Graph3DTest, TheGraphOfALiveTableIsRefused) {
  OpenTable(FrmVETable());
  MonitorMode = 2;
  ClickOn(Up(), "VEGraph");
  EXPECT_EQ(Message(), "This Process is Unavailable while ONFLY Monitoring is Active.");
  EXPECT_FALSE(Graph3D.loaded);
  MonitorMode = 0;
}

// ---- walking ------------------------------------------------------------------------------------

TEST_F(Graph3DTest, RightWalksFromOneToElevenAndOnToFour) {
  OpenVe();
  for (int expected : {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 4, 5}) {
    PressKey("Right");
    EXPECT_EQ(CursorColumn, expected);
  }
  EXPECT_EQ(CursorRow, 1);
}

TEST_F(Graph3DTest, LeftGoesFromOneToElevenAndFromFourToOne) {
  OpenVe();
  for (int expected : {11, 10, 9, 8, 7, 6, 5, 4, 1, 11}) {
    PressKey("Left");
    EXPECT_EQ(CursorColumn, expected);
  }
}

TEST_F(Graph3DTest, LeftFromThreeGoesToTwo) {
  OpenVe();
  PressKey("Right");
  PressKey("Right");
  PressKey("Left");
  EXPECT_EQ(CursorColumn, 2);
}

TEST_F(Graph3DTest, UpAndDownWrapOverTenRows) {
  OpenVe();
  PressKey("Down");
  EXPECT_EQ(CursorRow, 10);
  PressKey("Down");
  EXPECT_EQ(CursorRow, 9);
  PressKey("Up");
  PressKey("Up");
  EXPECT_EQ(CursorRow, 1);
  for (int row = 2; row <= 10; ++row) {
    PressKey("Up");
    EXPECT_EQ(CursorRow, row);
  }
  PressKey("Up");
  EXPECT_EQ(CursorRow, 1);
  EXPECT_EQ(CursorColumn, 1);
}

TEST_F(Graph3DTest, FieldsFollowTheMarker) {
  OpenVe();
  EXPECT_EQ(Fields(), (Three{"0", "10", "0"}));
  WalkToCell(1);
  EXPECT_EQ(Fields(), (Three{"500", "20", "-31.00"}));
  WalkToCell(64);
  EXPECT_EQ(Fields(), (Three{"6000", "100", "32.00"}));
  WalkToCell(32);  // the correction 0
  EXPECT_EQ(Shown("Value_Text"), "0");
  PressKey("Down");
  PressKey("Left");
  EXPECT_EQ(Fields(), (Three{"5000", "40", "-9.00"}));
}

TEST_F(Graph3DTest, TheLoadIsShownAsAWholeNumber) {
  CalValues[54] = 30.6F;
  OpenVe();
  WalkTo(4, 3);
  EXPECT_EQ(Shown("MAP_Text"), "31");
  CloseAll();
  MapBar = 2;
  CalValues[54] = 30.25F;  // a tie goes to the even neighbour
  OpenVe();
  WalkTo(4, 3);
  EXPECT_EQ(Shown("MAP_Text"), "60");
}

TEST_F(Graph3DTest, ValuesHaveTwoDecimals) {
  OpenGraphOf(tables[3]);
  EXPECT_EQ(Shown("Value_Text"), "14.64");
  WalkToCell(1);
  EXPECT_EQ(Shown("Value_Text"), "10.25");
  CloseAll();
  OpenGraphOf(tables[2]);
  EXPECT_EQ(Shown("Value_Text"), "12.00");  // initial advance
  WalkToCell(1);
  EXPECT_EQ(Shown("Value_Text"), "0.50");
}

TEST_F(Graph3DTest, ShiftAndCtrlAloneDoNothing) {
  OpenVe();
  WalkToCell(10);
  const unsigned long before = Generation();
  PressKey("Shift");
  PressKey("Ctrl");
  EXPECT_EQ(Generation(), before);
  EXPECT_EQ(CursorColumn, 5);
  EXPECT_EQ(CursorRow, 3);
  EXPECT_EQ(TableWork[3][5], -22);
}

TEST_F(Graph3DTest, EachKeyDrawsThePictureAnewWithOneMarker) {
  OpenVe();
  const std::vector<Primitive> first = Discs();
  ASSERT_EQ(first.size(), 2U);  // rim and marker
  const unsigned long before = Generation();
  PressKey("Up");
  EXPECT_GT(Generation(), before);
  const std::vector<Primitive> second = Discs();
  ASSERT_EQ(second.size(), 2U);
  EXPECT_GE(second[1].radius, 3);
  EXPECT_LT(second[1].points[0].x, first[1].points[0].x);  // load goes to the left
}

TEST_F(Graph3DTest, KeysWorkWhateverHasTheFocus) {
  OpenVe();
  WalkToCell(12);
  PressKey("Alt+V");
  EXPECT_EQ(ShownFocus(), "Value_Text");
  PressKey("Plus");
  EXPECT_EQ(Shown("Value_Text"), "-19.00");
  PressKey("Up");
  EXPECT_EQ(CursorRow, 4);
  TypeText("7");
  EXPECT_EQ(Shown("Value_Text"), "-12.00");
}

// ---- stepping -----------------------------------------------------------------------------------

TEST_F(Graph3DTest, PlusAndMinusStepEachTableAndWriteAllCellsBack) {
  struct Step {
    const char* key;
    double change;
  };
  const Step steps[] = {{"Plus", 1}, {"KeypadPlus", 1}, {"Minus", -1}, {"KeypadMinus", -1}};
  for (const TableCase& one : tables) {
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
  OpenGraphOf(tables[1]);
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
      {tables[0], 0.5F, "Plus", "50.00"},   {tables[0], -0.5F, "Minus", "-50.00"},
      {tables[1], 100, "Plus", "100.00"},   {tables[1], 0, "Minus", "0"},
      {tables[2], 60, "Plus", "60.00"},     {tables[2], 0, "Minus", "0"},
      {tables[3], 19.14F, "Plus", "19.14"}, {tables[3], 10.14F, "Minus", "10.14"},
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
  OpenGraphOf(tables[3]);
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
  OpenGraphOf(tables[3]);
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
  OpenGraphOf(tables[3]);
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
  OpenGraphOf(tables[2]);
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

// ---- leaving, help, hot keys --------------------------------------------------------------------

TEST_F(Graph3DTest, EscAndBackReturnToEachTableOnItsGraphButton) {
  for (const TableCase& one : tables)
    for (bool byKey : {true, false}) {
      OpenGraphOf(one);
      if (byKey)
        PressKey("Esc");
      else
        ClickOn(Graph3D, "Command1");
      RunPending();
      EXPECT_FALSE(Graph3D.loaded);
      EXPECT_TRUE(Up().visible) << one.screen;
      EXPECT_EQ(TopWorkScreen()->name, one.screen);
      EXPECT_EQ(ShownFocus(), one.button);
      UnloadScreen(Up());
      RunPending();
    }
}

TEST_F(Graph3DTest, TheCloseBoxIsBack) {
  OpenVe();
  CloseByUser(Graph3D);
  RunPending();
  EXPECT_FALSE(Graph3D.loaded);
  EXPECT_EQ(TopWorkScreen()->name, "frmVETable");
}

TEST_F(Graph3DTest, WhatWasChangedShowsInTheTable) {
  OpenVe();
  WalkToCell(9);
  PressKey("Plus");
  PressKey("Esc");
  RunPending();
  EXPECT_EQ(CellText(9), "-22");
}

TEST_F(Graph3DTest, F1OpensItsTopic) {
  std::string asked;
  ShowHelpTopic = [&](std::string_view topic) {
    asked = topic;
    return true;
  };
  OpenVe();
  PressKey("F1");
  EXPECT_EQ(asked, "Graph3D");
}

TEST_F(Graph3DTest, HotKeysWorkAsInEveryEditor) {
  OpenVe();
  WalkToCell(9);
  PressKey("Ctrl+E");
  RunPending();
  EXPECT_FALSE(Graph3D.loaded);
  EXPECT_EQ(TopWorkScreen()->name, "CSForm1");
}

// ---- bad input ----------------------------------------------------------------------------------

namespace {

constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();

struct Damage {
  const char* what;
  void (*make)();
};
const Damage damages[] = {
    {"a sensor of 0 bar", [] { CalValues[2] = MapBar = 0; }},
    {"a rev limit of 0", [] { CalValues[4] = 0; }},
    {"speeds beyond the rev limit", [] { CalValues[4] = 600; }},
    {"all breakpoints equal",
     [] {
       for (std::size_t i = 45; i <= 60; ++i) CalValues[i] = 50;
     }},
    {"an endless time to open", [] { CalValues[9] = 1e30F; }},
    {"the largest time to open", [] { CalValues[9] = std::numeric_limits<float>::max(); }},
    {"a negative time to open", [] { CalValues[9] = -1e6F; }},
    {"values far outside",
     [] {
       CalValues[130] = 1e20F;
       CalValues[270] = 1e20F;
       CalValues[70] = -1e20F;
       CalValues[350] = 1e20F;
     }},
    {"cells that are no numbers",
     [] { CalValues[130] = CalValues[270] = CalValues[70] = CalValues[350] = noNumber; }},
    {"axes that are no numbers", [] { CalValues[47] = CalValues[56] = noNumber; }},
    {"a rev limit that is no number", [] { CalValues[4] = noNumber; }},
    {"an endless rev limit", [] { CalValues[4] = std::numeric_limits<float>::infinity(); }},
};

}  // namespace

TEST_F(Graph3DTest, ADamagedCalibrationIsDrawnAndWalkedWithoutHarm) {
  const auto healthy = CalValues;
  const float bar = MapBar;
  for (const Damage& damage : damages)
    for (const TableCase& one : tables)
      for (int view = 0; view < (one.table == TableVe ? 3 : 1); ++view) {
        SCOPED_TRACE(std::string(damage.what) + ", " + one.screen);
        CalValues = healthy;
        MapBar = bar;
        VeView = view;
        damage.make();
        OpenGraphOf(one);
        for (int i = 0; i < 6; ++i) {
          PressKey("Right");
          PressKey("Up");
          PressKey(i % 2 ? "Plus" : "Minus");
        }
        EXPECT_FALSE(AnyBoxShown());
        for (const Primitive& part : Picture())
          for (Point point : part.points) {
            EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y));
            EXPECT_LT(std::abs(point.y), 10000);
            EXPECT_LT(std::abs(point.x), 10000);
          }
        CloseAll();
      }
}
