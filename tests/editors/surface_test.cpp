// The numbers of the 3D graph: value axis, box, projection and floating horizon.
#include "editors/surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/encoder.h"
#include "editors/graph3d.h"
#include "editors/graph3dpicture.h"

namespace {

constexpr double cosine30 = 0.8660254037844387;

WorkGrid Flat(float value) {
  WorkGrid grid{};
  for (auto& row : grid) row.fill(value);
  return grid;
}

WorkGrid FlatWith(float value, int row, int column, float other) {
  WorkGrid grid = Flat(value);
  grid[row][column] = other;
  return grid;
}

class Surface : public testing::Test {
 protected:
  void SetUp() override {
    ResetCalibrationState();
    ResetTableViews();
    for (int i = 0; i < 8; ++i) {
      CalValues[45 + i] = 1000.0f * static_cast<float>(i + 1);
      CalValues[53 + i] = 20.0f + 10.0f * static_cast<float>(i);
    }
    CalValues[4] = 10000;
    PublishCalGlobals();
    CopyTablesToWork();
    BuildTableViews();
  }
  void TearDown() override {
    ResetCalibrationState();
    ResetTableViews();
  }
};

std::vector<Stretch> EdgeOn(Horizon& horizon, Point from, Point to) {
  std::vector<Stretch> visible;
  horizon.AddEdge(from, to, White, visible);
  return visible;
}

SurfaceGeometry SmallGeometry() {
  SurfaceGeometry geometry;
  geometry.horizonColumns = 20;
  geometry.horizonStart = 600;
  return geometry;
}

// Pixel columns that an edge goes over.
double ExtentOf(const SurfaceNode& one, const SurfaceNode& other) {
  const double first = std::ceil(std::min(one.x, other.x));
  const double last = std::floor(std::max(one.x, other.x));
  return std::max(0.0, last - first);
}

}  // namespace

// ---- value axis ---------------------------------------------------------------------------------

TEST(ValueAxis, VeWithinThirtyEndsAtThirty) {
  EXPECT_EQ(ValueAxisOf(TableVe, 0, Flat(30)), (ValueAxis{-30, 30}));
  EXPECT_EQ(ValueAxisOf(TableVe, 0, Flat(-30)), (ValueAxis{-30, 30}));
}

TEST(ValueAxis, VeOneNodeBeyondThirtyEndsAtFifty) {
  EXPECT_EQ(ValueAxisOf(TableVe, 0, FlatWith(0, 5, 7, 31)), (ValueAxis{-50, 50}));
  EXPECT_EQ(ValueAxisOf(TableVe, 0, FlatWith(0, 5, 7, -31)), (ValueAxis{-50, 50}));
}

TEST(ValueAxis, AStoredThirtyPercentIsNotBeyondThirty) {
  const auto thirty = static_cast<float>(0.3f * 100.0);  // 30.000002
  EXPECT_EQ(ValueAxisOf(TableVe, 0, Flat(thirty)), (ValueAxis{-30, 30}));
  EXPECT_EQ(ValueAxisOf(TableVe, 0, Flat(-thirty)), (ValueAxis{-30, 30}));
  EXPECT_EQ(ValueAxisOf(TableVe, 0, Flat(30.001f)), (ValueAxis{-50, 50}));
}

TEST(ValueAxis, MarginsCountToo) {
  EXPECT_EQ(ValueAxisOf(TableVe, 0, FlatWith(0, 1, 1, 31)), (ValueAxis{-50, 50}));
  EXPECT_EQ(ValueAxisOf(TableVe, 0, FlatWith(0, 10, 12, 31)), (ValueAxis{-50, 50}));
  EXPECT_EQ(ValueAxisOf(TableVe, 0, FlatWith(0, 11, 12, 31)), (ValueAxis{-30, 30}));
  EXPECT_EQ(ValueAxisOf(TableVe, 0, FlatWith(0, 10, 13, 31)), (ValueAxis{-30, 30}));
}

TEST(ValueAxis, PulseWidthGoesToTenTwentyOrThirty) {
  EXPECT_EQ(ValueAxisOf(TableVe, 1, Flat(10)), (ValueAxis{0, 10}));
  EXPECT_EQ(ValueAxisOf(TableVe, 1, FlatWith(10, 3, 3, 10.01f)), (ValueAxis{0, 20}));
  EXPECT_EQ(ValueAxisOf(TableVe, 1, FlatWith(1, 3, 3, 20)), (ValueAxis{0, 20}));
  EXPECT_EQ(ValueAxisOf(TableVe, 1, FlatWith(1, 3, 3, 20.01f)), (ValueAxis{0, 30}));
}

TEST(ValueAxis, DutyAlwaysGoesToHundred) {
  EXPECT_EQ(ValueAxisOf(TableVe, 2, Flat(300)), (ValueAxis{0, 100}));
  EXPECT_EQ(ValueAxisOf(TableVe, 2, Flat(0)), (ValueAxis{0, 100}));
}

TEST(ValueAxis, GpoAdvanceAndAirFuelWidenBeyondTheirLimits) {
  EXPECT_EQ(ValueAxisOf(TableGpo, 0, Flat(50)), (ValueAxis{0, 50}));
  EXPECT_EQ(ValueAxisOf(TableGpo, 0, FlatWith(0, 2, 4, 50.5f)), (ValueAxis{0, 100}));
  EXPECT_EQ(ValueAxisOf(TableAdvance, 0, Flat(30)), (ValueAxis{0, 30}));
  EXPECT_EQ(ValueAxisOf(TableAdvance, 0, FlatWith(0, 9, 11, 30.5f)), (ValueAxis{0, 60}));
  EXPECT_EQ(ValueAxisOf(TableAirFuel, 0, Flat(14.64f)), (ValueAxis{13.5, 15.78}));
  EXPECT_EQ(ValueAxisOf(TableAirFuel, 0, Flat(15.78f)), (ValueAxis{13.5, 15.78}));
  EXPECT_EQ(ValueAxisOf(TableAirFuel, 0, FlatWith(14.64f, 4, 4, 15.79f)),
            (ValueAxis{10.14, 19.14}));
  EXPECT_EQ(ValueAxisOf(TableAirFuel, 0, FlatWith(14.64f, 4, 4, 13.49f)),
            (ValueAxis{10.14, 19.14}));
}

// ---- geometry -----------------------------------------------------------------------------------

TEST(SurfaceGeometry, At640ColumnsItIsTheFixedOne) {
  SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  EXPECT_DOUBLE_EQ(g.originX, 4875 / 15.0);
  EXPECT_DOUBLE_EQ(g.originY, 4650 / 15.0);
  EXPECT_DOUBLE_EQ(g.speedLength, 3150 / 15.0);
  EXPECT_DOUBLE_EQ(g.loadLength, 3150 / 15.0 * 4 / 5);
  EXPECT_DOUBLE_EQ(g.height, 3150 / 15.0 * 2.75 / 5);
  EXPECT_NEAR(g.cosine, cosine30, 1e-8);
  EXPECT_NEAR(g.sine, 0.5, 1e-8);
  EXPECT_EQ(g.horizonColumns, 640);
  EXPECT_DOUBLE_EQ(g.horizonStart, 600);
}

TEST(SurfaceGeometry, ALargerSurfaceScalesItAndWidensTheHorizon) {
  SurfaceGeometry g = SurfaceGeometryOf(1920, 1080, 40);
  EXPECT_DOUBLE_EQ(g.scale, 3);
  EXPECT_DOUBLE_EQ(g.speedLength, 630);
  EXPECT_DOUBLE_EQ(g.originX, 975);
  EXPECT_DOUBLE_EQ(g.originY, 930);
  EXPECT_DOUBLE_EQ(g.horizonStart, 1800);
  EXPECT_EQ(g.horizonColumns, 1920);
}

TEST(SurfaceGeometry, AFlatCanvasLeavesRoomForTheLabelsAndStandsInTheMiddle) {
  SurfaceGeometry g = SurfaceGeometryOf(1920, 660, 40);
  EXPECT_DOUBLE_EQ(g.scale, 2);
  EXPECT_DOUBLE_EQ(g.originY, 620);
  EXPECT_DOUBLE_EQ(g.originX, 650 + (1920 - 1280) / 2.0);
  EXPECT_EQ(g.horizonColumns, 1920);
}

TEST(SurfaceGeometry, ATallCanvasSharesWhatIsLeftAboveAndBelow) {
  SurfaceGeometry g = SurfaceGeometryOf(640, 1480, 40);
  EXPECT_DOUBLE_EQ(g.scale, 1);
  EXPECT_DOUBLE_EQ(g.originY, 310 + 500);
  EXPECT_DOUBLE_EQ(g.horizonStart, 1100);
}

TEST(SurfaceGeometry, NoSizeAtAllIsHarmless) {
  SurfaceGeometry g = SurfaceGeometryOf(0, 0);
  EXPECT_GT(g.scale, 0);
  EXPECT_GT(g.horizonColumns, 0);
}

TEST(SurfaceGeometry, CornersOfTheBox) {
  SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  SurfaceBox box = BoxOf(g);
  EXPECT_NEAR(box.nearBottom.x, 325, 1e-6);
  EXPECT_NEAR(box.nearBottom.y, 310, 1e-6);
  EXPECT_NEAR(box.leftBottom.x, 325 - cosine30 * 168, 1e-5);
  EXPECT_NEAR(box.leftBottom.y, 310 - 84, 1e-5);
  EXPECT_NEAR(box.leftTop.x, box.leftBottom.x, 1e-9);
  EXPECT_NEAR(box.leftTop.y, box.leftBottom.y - 115.5, 1e-9);
  EXPECT_NEAR(box.farBottom.x, box.leftBottom.x + cosine30 * 210, 1e-5);
  EXPECT_NEAR(box.farBottom.y, box.leftBottom.y - 105, 1e-5);
  EXPECT_NEAR(box.farTop.y, box.farBottom.y - 115.5, 1e-9);
  EXPECT_NEAR(box.rightBottom.x, 325 + cosine30 * 210, 1e-5);
  EXPECT_NEAR(box.rightBottom.y, 310 - 105, 1e-5);
  EXPECT_NEAR(box.rightTop.y, box.rightBottom.y - 115.5, 1e-9);
  EXPECT_EQ(box.nearTop, (Point{box.nearBottom.x, box.nearBottom.y - g.height}));
}

// ---- projection ---------------------------------------------------------------------------------

TEST_F(Surface, SharesRunFromTheLowEndsToTheRevLimitAndTheSensorsEnd) {
  EXPECT_DOUBLE_EQ(GroundOf(1, 1).speedShare, 0);
  EXPECT_DOUBLE_EQ(GroundOf(3, 1).speedShare, 0);
  EXPECT_DOUBLE_EQ(GroundOf(4, 1).speedShare, 0.1);
  EXPECT_DOUBLE_EQ(GroundOf(12, 1).speedShare, 1);
  EXPECT_DOUBLE_EQ(GroundOf(1, 1).loadShare, 0);
  EXPECT_DOUBLE_EQ(GroundOf(1, 2).loadShare, 10.0 / 94);
  EXPECT_DOUBLE_EQ(GroundOf(1, 10).loadShare, 1);
}

TEST_F(Surface, ARevLimitOfZeroPutsAllSpeedsAtTheOrigin) {
  CalValues[4] = 0;
  PublishCalGlobals();
  BuildTableViews();
  EXPECT_DOUBLE_EQ(GroundOf(12, 1).speedShare, 0);
  EXPECT_DOUBLE_EQ(GroundOf(8, 1).speedShare, 0);
}

TEST_F(Surface, CorrectionZeroStandsAtHalfHeight) {
  SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  Point place = ProjectValue(g, {0, 0}, 0, {-30, 30}, TableVe, 0);
  EXPECT_DOUBLE_EQ(place.x, 325);
  EXPECT_DOUBLE_EQ(place.y, 310 - 115.5 / 2);
  place = ProjectValue(g, {0, 0}, 30, {-30, 30}, TableVe, 0);
  EXPECT_DOUBLE_EQ(place.y, 310 - 115.5 / 2 - 115.5 / 2);
}

TEST_F(Surface, OtherViewsStandOnTheGround) {
  SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  EXPECT_DOUBLE_EQ(ProjectValue(g, {0, 0}, 0, {0, 10}, TableVe, 1).y, 310);
  EXPECT_DOUBLE_EQ(ProjectValue(g, {0, 0}, 0, {0, 100}, TableVe, 2).y, 310);
  EXPECT_DOUBLE_EQ(ProjectValue(g, {0, 0}, 50, {0, 50}, TableGpo, 0).y, 310 - 115.5);
  EXPECT_DOUBLE_EQ(ProjectValue(g, {0, 0}, 15, {0, 30}, TableAdvance, 0).y, 310 - 115.5 / 2);
}

TEST_F(Surface, AirFuelIsReckonedFromTheMiddleOfItsAxis) {
  SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  ValueAxis axis{13.5, 15.78};
  EXPECT_NEAR(ProjectValue(g, {0, 0}, 14.64, axis, TableAirFuel, 0).y, 310 - 115.5 / 2, 1e-9);
  EXPECT_NEAR(ProjectValue(g, {0, 0}, 13.5, axis, TableAirFuel, 0).y, 310, 1e-9);
  EXPECT_NEAR(ProjectValue(g, {0, 0}, 15.78, axis, TableAirFuel, 0).y, 310 - 115.5, 1e-9);
}

TEST_F(Surface, GroundAxesGoUpToTheRightAndToTheLeft) {
  SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  Point speedEnd = ProjectValue(g, {1, 0}, 0, {0, 10}, TableVe, 1);
  EXPECT_NEAR(speedEnd.x, 325 + cosine30 * 210, 1e-5);
  EXPECT_NEAR(speedEnd.y, 310 - 105, 1e-5);
  Point loadEnd = ProjectValue(g, {0, 1}, 0, {0, 10}, TableVe, 1);
  EXPECT_NEAR(loadEnd.x, 325 - cosine30 * 168, 1e-5);
  EXPECT_NEAR(loadEnd.y, 310 - 84, 1e-5);
}

TEST_F(Surface, NodesCarryValueAndColourOfTheirPlace) {
  TableWork[5][7] = 12;
  TableColours[5][7] = Red;
  SurfaceNodes nodes = ProjectNodes(SurfaceGeometryOf(640, 480), {-30, 30});
  EXPECT_FLOAT_EQ(nodes[7][5].value, 12);
  EXPECT_EQ(nodes[7][5].colour, Red);
  EXPECT_FLOAT_EQ(nodes[7][6].value, TableWork[6][7]);
}

// ---- floating horizon ---------------------------------------------------------------------------

TEST(FloatingHorizon, AFirstEdgeIsVisibleAsOneLineAndBecomesTheHorizon) {
  Horizon horizon(SmallGeometry());
  auto visible = EdgeOn(horizon, {2, 100}, {12, 120});
  ASSERT_EQ(visible.size(), 1u);
  EXPECT_EQ(visible[0].from, (Point{2, 100}));
  EXPECT_EQ(visible[0].to, (Point{12, 120}));
  EXPECT_DOUBLE_EQ(horizon.At(2), 100);
  EXPECT_DOUBLE_EQ(horizon.At(7), 110);
  EXPECT_DOUBLE_EQ(horizon.At(13), 600);
}

TEST(FloatingHorizon, AnEdgeBelowIsHidden) {
  Horizon horizon(SmallGeometry());
  EdgeOn(horizon, {1, 100}, {20, 100});
  EXPECT_TRUE(EdgeOn(horizon, {1, 101}, {20, 150}).empty());
  EXPECT_TRUE(EdgeOn(horizon, {1, 100}, {20, 100}).empty());  // on the line is not above it
  EXPECT_DOUBLE_EQ(horizon.At(10), 100);
}

TEST(FloatingHorizon, DirectionOfTheEdgeDoesNotMatter) {
  Horizon one(SmallGeometry()), other(SmallGeometry());
  EXPECT_EQ(EdgeOn(one, {2, 50}, {9, 80}), EdgeOn(other, {9, 80}, {2, 50}));
}

TEST(FloatingHorizon, AnEdgeThatComesUpBeginsOnTheHorizon) {
  Horizon horizon(SmallGeometry());
  EdgeOn(horizon, {1, 100}, {20, 100});
  auto visible = EdgeOn(horizon, {1, 109}, {19, 91});  // crosses 100 at 10
  ASSERT_EQ(visible.size(), 1u);
  EXPECT_EQ(visible[0].from, (Point{10, 100}));
  EXPECT_EQ(visible[0].to, (Point{19, 91}));
  EXPECT_DOUBLE_EQ(horizon.At(10), 100);
  EXPECT_DOUBLE_EQ(horizon.At(11), 99);
}

TEST(FloatingHorizon, AnEdgeThatGoesUnderEndsOnTheHorizon) {
  Horizon horizon(SmallGeometry());
  EdgeOn(horizon, {1, 100}, {20, 100});
  auto visible = EdgeOn(horizon, {1, 91}, {19, 109});
  ASSERT_EQ(visible.size(), 1u);
  EXPECT_EQ(visible[0].from, (Point{1, 91}));
  EXPECT_EQ(visible[0].to, (Point{10, 100}));
  EXPECT_DOUBLE_EQ(horizon.At(9), 99);
  EXPECT_DOUBLE_EQ(horizon.At(10), 100);
}

TEST(FloatingHorizon, APeakInFrontSplitsAnEdgeInTwoStretches) {
  Horizon horizon(SmallGeometry());
  EdgeOn(horizon, {8, 80}, {12, 80});
  auto visible = EdgeOn(horizon, {2, 100}, {18, 100});
  ASSERT_EQ(visible.size(), 2u);
  EXPECT_EQ(visible[0].from, (Point{2, 100}));
  EXPECT_EQ(visible[0].to, (Point{8, 80}));
  EXPECT_EQ(visible[1].from, (Point{12, 80}));
  EXPECT_EQ(visible[1].to, (Point{18, 100}));
}

TEST(FloatingHorizon, UprightEdgesAreSkipped) {
  Horizon horizon(SmallGeometry());
  EXPECT_TRUE(EdgeOn(horizon, {5, 100}, {5, 50}).empty());
  EXPECT_DOUBLE_EQ(horizon.At(5), 600);
}

TEST(FloatingHorizon, WhatLiesOutsideOfTheColumnsIsLeftOut) {
  Horizon horizon(SmallGeometry());
  auto visible = EdgeOn(horizon, {-1e30, 100}, {1e30, 100});
  ASSERT_EQ(visible.size(), 1u);
  EXPECT_DOUBLE_EQ(visible[0].from.x, 1);
  EXPECT_DOUBLE_EQ(visible[0].to.x, 20);
  EXPECT_TRUE(EdgeOn(horizon, {30, 1}, {40, 1}).empty());
  EXPECT_TRUE(EdgeOn(horizon, {-40, 1}, {-30, 1}).empty());
}

TEST(FloatingHorizon, ValuesThatAreNoNumbersDrawNothing) {
  Horizon horizon(SmallGeometry());
  double nan = std::numeric_limits<double>::quiet_NaN();
  double endless = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(EdgeOn(horizon, {1, nan}, {10, 10}).empty());
  EXPECT_TRUE(EdgeOn(horizon, {nan, 10}, {10, 10}).empty());
  EXPECT_TRUE(EdgeOn(horizon, {1, endless}, {10, 10}).empty());
}

TEST(FloatingHorizon, ALineIsCroppedToTheScreenLinesAskedFor) {
  Point from{0, -100}, to{10, 100};
  EXPECT_TRUE(CropToLines(from, to, -50, 20));
  EXPECT_EQ(from, (Point{2.5, -50}));
  EXPECT_EQ(to, (Point{6, 20}));
  from = {0, 1e30}, to = {10, -1e30};
  EXPECT_TRUE(CropToLines(from, to, -100, 100));
  EXPECT_DOUBLE_EQ(from.y, 100);
  EXPECT_DOUBLE_EQ(to.y, -100);
  from = {0, -200}, to = {10, -101};
  EXPECT_FALSE(CropToLines(from, to, -100, 100));
  from = {0, 3}, to = {10, 4};
  EXPECT_TRUE(CropToLines(from, to, -100, 100));
  EXPECT_EQ(to, (Point{10, 4}));
}

// The first three columns stand at the same place: of their edges along the load only those of the
// first are seen. Nothing else of a flat sheet hides anything.
TEST_F(Surface, AFlatTableShowsEveryEdgeWholeAndNothingTwice) {
  const SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  const SurfaceNodes nodes = ProjectNodes(g, {-30, 30});
  double expected = 0;
  for (int column : {1, 4, 5, 6, 7, 8, 9, 10, 11, 12})
    for (int row = 1; row <= 10; ++row) {
      if (row > 1) expected += ExtentOf(nodes[column][row - 1], nodes[column][row]);
      if (column > 1) expected += ExtentOf(nodes[column - 1][row], nodes[column][row]);
    }
  double shown = 0;
  for (const Stretch& stretch : VisibleStretches(g, nodes)) {
    EXPECT_GE(stretch.from.x, 1);
    EXPECT_LE(stretch.to.x, 640);
    EXPECT_LE(stretch.from.x, stretch.to.x);
    shown += stretch.to.x - stretch.from.x;
  }
  EXPECT_GT(expected, 2000);
  EXPECT_NEAR(shown, expected, 0.001);
}

TEST_F(Surface, AHighCellHidesTheGroundBehindIt) {
  SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  auto length = [&] {
    double sum = 0;
    for (const Stretch& stretch : VisibleStretches(g, ProjectNodes(g, {-50, 50})))
      sum += stretch.to.x - stretch.from.x;
    return sum;
  };
  double flat = length();
  for (int column = 1; column <= 12; ++column) TableWork[1][column] = 50;
  EXPECT_LT(length(), flat);
}

TEST_F(Surface, EdgesTakeTheColourOfTheNodeTheyLeadTo) {
  for (auto& row : TableColours) row.fill(White);
  TableColours[10][12] = Red;
  SurfaceGeometry g = SurfaceGeometryOf(640, 480);
  int red = 0;
  for (const Stretch& stretch : VisibleStretches(g, ProjectNodes(g, {-30, 30})))
    if (stretch.colour == Red) ++red;
  EXPECT_EQ(red, 2);  // one edge along each axis
}

// ---- keys and titles ----------------------------------------------------------------------------

TEST(GraphKeys, RightFromElevenLandsOnFour) {
  EXPECT_EQ(ColumnAfter(11, true), 4);
  EXPECT_EQ(ColumnAfter(1, true), 2);
  EXPECT_EQ(ColumnAfter(10, true), 11);
}

TEST(GraphKeys, LeftFromFourLandsOnOneAndFromOneOnEleven) {
  EXPECT_EQ(ColumnAfter(4, false), 1);
  EXPECT_EQ(ColumnAfter(1, false), 11);
  EXPECT_EQ(ColumnAfter(3, false), 2);
  EXPECT_EQ(ColumnAfter(2, false), 1);
  EXPECT_EQ(ColumnAfter(11, false), 10);
}

TEST(GraphKeys, RowsWrapAtTenAndOne) {
  EXPECT_EQ(RowAfter(10, true), 1);
  EXPECT_EQ(RowAfter(1, false), 10);
  EXPECT_EQ(RowAfter(4, true), 5);
  EXPECT_EQ(RowAfter(4, false), 3);
}

TEST(GraphKeys, StepsAndLimitsOfEachTable) {
  auto rule = [](int table) {
    StepRule r = StepRuleOf(table);
    return std::array<double, 3>{r.step, r.top, r.bottom};
  };
  EXPECT_EQ(rule(TableVe), (std::array<double, 3>{1, 50, -50}));
  EXPECT_EQ(rule(TableGpo), (std::array<double, 3>{1, 100, 0}));
  EXPECT_EQ(rule(TableAdvance), (std::array<double, 3>{1, 60, 0}));
  EXPECT_EQ(rule(TableAirFuel), (std::array<double, 3>{0.01, 19.14, 10.14}));
}

TEST(GraphTitles, EachTableAndView) {
  auto title = [](int table, int view) {
    std::array<std::string, 3> lines;
    auto given = SurfaceTitle(table, view);
    std::copy(given.begin(), given.end(), lines.begin());
    return lines;
  };
  using Lines = std::array<std::string, 3>;
  EXPECT_EQ(title(TableVe, 0), (Lines{"Volumetric", "Efficiency", "(% FPW)"}));
  EXPECT_EQ(title(TableVe, 1), (Lines{"VE Enhanced", "Fundamental", "Pulsewidth (ms)"}));
  EXPECT_EQ(title(TableVe, 2), (Lines{"VE Enhanced", "Fundamental PW", "Duty Cycle (%)"}));
  EXPECT_EQ(title(TableGpo, 0), (Lines{"General Purpose Output", "Duty Cycle (%)", ""}));
  EXPECT_EQ(title(TableAdvance, 1), (Lines{"Main Ignition", "Advance", "(degrees BTDC)"}));
  EXPECT_EQ(title(TableAirFuel, 0), (Lines{"Desired Air/Fuel Ratio (14.64)", "", ""}));
}

TEST(GraphTicks, BothEndsAndEvenSteps) {
  EXPECT_EQ(ValueTicks({-30, 30}), (std::vector<double>{-30, -15, 0, 15, 30}));
  EXPECT_EQ(ValueTicks({0, 100}), (std::vector<double>{0, 25, 50, 75, 100}));
}
