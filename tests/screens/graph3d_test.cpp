// The 3D graph by keys and clicks: opening from each table, the walk of the marker, Back, and what
// a damaged calibration makes of it.
#include <cmath>
#include <limits>

#include "core/numbers.h"
#include "screens/graph3dscreen.h"

namespace {

constexpr const char* fixedValues = "Values in this graph are not Editable";

}  // namespace

// ---- opening ------------------------------------------------------------------------------------

TEST_F(Graph3DTest, OpensFromEachTableWithItsCaptionAndUnit) {
  for (const TableCase& one : graphTables) {
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
  OpenGraphOf(graphTables[3]);
  EXPECT_EQ(Shown("Value_Text"), "14.64");
  WalkToCell(1);
  EXPECT_EQ(Shown("Value_Text"), "10.25");
  CloseAll();
  OpenGraphOf(graphTables[2]);
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

// ---- leaving, help, hot keys --------------------------------------------------------------------

TEST_F(Graph3DTest, EscAndBackReturnToEachTableOnItsGraphButton) {
  for (const TableCase& one : graphTables)
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
    for (const TableCase& one : graphTables)
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
