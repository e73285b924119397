// Axes, content and geometry of the small parameter graph.
#include "editors/paramgraphmath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/encoder.h"
#include "core/globalstate.h"

namespace {

using Doubles = std::vector<double>;

class GraphContentTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetCalibrationState();
    CalValues[2] = 1;
    CalValues[4] = 6000;
    CalValues[217] = 8;
    CalValues[232] = 10;
    CalValues[233] = 1;
    CalValues[344] = 1.5F;
  }
  GraphContent Content(int kind) {
    PublishCalGlobals();
    return ContentOfGraph(kind);
  }
  void Fill(int first, std::initializer_list<float> values) {
    std::copy(values.begin(), values.end(), &CalValues[static_cast<std::size_t>(first)]);
  }
};

struct PulseCase {
  double iot;
  double tog;
  double low;
  double high;
  std::size_t lines;
};

const double notANumber = std::numeric_limits<double>::quiet_NaN();

}  // namespace

// ---- axes ---------------------------------------------------------------------------------------

TEST(PulseAxis, TakesTheFirstStepThatGivesFourToSixDivisions) {
  for (const PulseCase& each : {
           PulseCase{1, 10, 0, 12, 7},      // step 2: 6 divisions
           PulseCase{0.5, 3, 0, 4, 5},      // step 1: 4
           PulseCase{0, 4, 0, 5, 6},        // step 1: an end on a line opens one more
           PulseCase{1, 5, 1, 7, 7},        // step 1: 6
           PulseCase{-1.5, 10, -2, 10, 7},  // step 2: down, not towards zero
       }) {
    const GraphAxis axis = PulseAxis(each.iot, each.tog);
    EXPECT_EQ(axis.low, each.low) << each.iot << " " << each.tog;
    EXPECT_EQ(axis.high, each.high) << each.iot << " " << each.tog;
    EXPECT_EQ(axis.lines.size(), each.lines) << each.iot << " " << each.tog;
    EXPECT_EQ(axis.lines.front(), axis.low);
    EXPECT_EQ(axis.lines.back(), axis.high);
  }
}

TEST(PulseAxis, ThirtyMillisecondsTakeStepsOfSix) {
  EXPECT_EQ(PulseAxis(0.5, 30).lines, (Doubles{0, 6, 12, 18, 24, 30, 36}));
}

TEST(PulseAxis, KeepsTheLastStepWhenNoneFits) {
  EXPECT_EQ(PulseAxis(0, 0).lines, (Doubles{0, 10}));
  const GraphAxis wide = PulseAxis(0, 95);
  EXPECT_EQ(wide.low, 0);
  EXPECT_EQ(wide.high, 100);
  EXPECT_EQ(wide.lines.size(), 11U);
}

TEST(PulseAxis, NonsenseStaysDrawable) {
  EXPECT_EQ(PulseAxis(notANumber, 10).high, 10);
  EXPECT_EQ(PulseAxis(1, std::numeric_limits<double>::infinity()).high, 10);
  EXPECT_LE(PulseAxis(0, 1e30).lines.size(), 61U);
  const GraphAxis falling = PulseAxis(5, -100);
  EXPECT_GT(falling.high, falling.low);
}

TEST(ValueAxes, SwitchAtTheirLimits) {
  EXPECT_EQ(BlendAxis(40).high, 50);
  EXPECT_EQ(BlendAxis(40.01).high, 100);
  EXPECT_EQ(WarmupAxis(39.9).high, 50);
  EXPECT_EQ(WarmupAxis(40).high, 100);
  EXPECT_EQ(WarmupAxis(84.9).high, 100);
  EXPECT_EQ(WarmupAxis(85).high, 150);
  EXPECT_EQ(WarmupAxis(139.9).high, 150);
  EXPECT_EQ(WarmupAxis(140).high, 250);
  EXPECT_EQ(CoolantAdvanceAxis(20).high, 30);
  EXPECT_EQ(CoolantAdvanceAxis(20.1).high, 60);
}

TEST(ValueAxes, HaveSixOrSevenLines) {
  EXPECT_EQ(BlendAxis(0).lines, (Doubles{0, 10, 20, 30, 40, 50}));
  EXPECT_EQ(WarmupAxis(100).lines, (Doubles{0, 25, 50, 75, 100, 125, 150}));
  EXPECT_EQ(CoolantAdvanceAxis(0).lines, (Doubles{0, 5, 10, 15, 20, 25, 30}));
}

// ---- content ------------------------------------------------------------------------------------

TEST_F(GraphContentTest, PulseIsALineFromOffsetToOffsetAndTog) {
  const GraphContent graph = Content(CurvePulse);
  EXPECT_EQ(graph.xTitle, "Displayed MAP (kPa)");
  EXPECT_EQ(graph.yTitle, "Fundamental Pulsewidth (ms)");
  EXPECT_EQ(graph.x.low, 10);
  EXPECT_EQ(graph.x.high, 104);
  EXPECT_EQ(graph.curve, (std::vector<Point>{{10, 1}, {104, 11}}));
}

TEST_F(GraphContentTest, PulseAxisFollowsTheSensor) {
  MapBar = 3;
  MaxManifoldKpa = 312;
  const GraphContent graph = Content(CurvePulse);
  EXPECT_EQ(graph.x.low, 30);
  EXPECT_EQ(graph.x.high, 312);
}

TEST_F(GraphContentTest, ManifoldPressureIsMarkedOnlyBelowTheTopOfTheSensor) {
  EXPECT_FALSE(Content(CurvePulse).verticalMark);
  MaxManifoldKpa = 90;
  EXPECT_EQ(Content(CurvePulse).verticalMark, 90);
}

TEST_F(GraphContentTest, RevLimitPulseIsMarkedOnlyInsideTheAxis) {
  EXPECT_NEAR(Content(CurvePulse).limitLine.value_or(0), 8.8, 1e-12);
  CalValues[4] = 1000;  // 58.8 ms, the axis ends at 12
  EXPECT_FALSE(Content(CurvePulse).limitLine);
  CalValues[4] = 0;
  EXPECT_FALSE(Content(CurvePulse).limitLine);
}

TEST_F(GraphContentTest, FailZoneNeedsAMinimumAboveTheAxis) {
  EXPECT_EQ(Content(CurvePulse).failBelow, 1.5);
  CalValues[344] = 0;
  EXPECT_FALSE(Content(CurvePulse).failBelow);
  CalValues[2] = 5;  // axis from 4
  CalValues[344] = 4;
  EXPECT_FALSE(Content(CurvePulse).failBelow);
}

TEST_F(GraphContentTest, BlendPlotsEightPointsBetweenLowestAndHighestSpeed) {
  Fill(435, {400, 3000, 1000, 2000, 4000, 5000, 6500, 6000});
  Fill(443, {0, 10, 20, 40, 30, 20, 10, -30});
  const GraphContent graph = Content(CurveBlend);
  EXPECT_EQ(graph.xTitle, "Engine Speed (RPM)");
  EXPECT_EQ(graph.yTitle, "TPS Blend (%)");
  EXPECT_EQ(graph.x.low, 400);
  EXPECT_EQ(graph.x.high, 6500);
  EXPECT_EQ(graph.y.high, 50);
  ASSERT_EQ(graph.curve.size(), 8U);
  EXPECT_EQ(graph.curve[1], (Point{3000, 10}));
  EXPECT_EQ(graph.curve[7], (Point{6000, -30}));
  CalValues[446] = 41;
  EXPECT_EQ(Content(CurveBlend).y.high, 100);
}

TEST_F(GraphContentTest, WarmupShowsPercentAndEndsInZeroAt80Degrees) {
  Fill(328, {1.4F, 1.2F, 1, 0.8F, 0.6F, 0.4F, 0.3F, 0.2F, 0.1F, 0.05F, 0.01F, 7});
  const GraphContent graph = Content(CurveWarmup);
  EXPECT_EQ(graph.xTitle,
            "Coolant Temperature (deg \xC2\xB0"
            "C)");
  EXPECT_EQ(graph.yTitle, "Fundamental PW Enrichment (% FPW)");
  EXPECT_EQ(graph.x.low, -30);
  EXPECT_EQ(graph.x.high, 80);
  ASSERT_EQ(graph.curve.size(), 12U);
  EXPECT_NEAR(graph.curve[0].y, 140, 1e-4);
  EXPECT_EQ(graph.curve[0].x, -30);
  EXPECT_NEAR(graph.curve[10].y, 1, 1e-4);
  EXPECT_EQ(graph.curve[11], (Point{80, 0}));
}

TEST_F(GraphContentTest, CoolantAdvanceShowsTwelvePoints) {
  Fill(237, {20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 1, 3});
  const GraphContent graph = Content(CurveCoolant);
  EXPECT_EQ(graph.xTitle, Content(CurveWarmup).xTitle);
  EXPECT_EQ(graph.yTitle, "Additional Ignition Advance (deg)");
  EXPECT_EQ(graph.y.high, 30);
  ASSERT_EQ(graph.curve.size(), 12U);
  EXPECT_EQ(graph.curve[11], (Point{80, 3}));
  CalValues[240] = 21;
  EXPECT_EQ(Content(CurveCoolant).y.high, 60);
}

TEST_F(GraphContentTest, EgoAxisRunsFromTheFirstRatioDownToTheTenth) {
  Fill(415, {0, 0.1F, 0.2F, 0.4F, 0.6F, 0.7F, 0.8F, 0.85F, 0.9F, 1});
  Fill(425, {18, 17, 16, 15, 14.64F, 14, 13, 12, 11, 10});
  const GraphContent graph = Content(CurveEgo);
  EXPECT_EQ(graph.xTitle, "Air Fuel Ratio = 14.64");
  EXPECT_EQ(graph.yTitle, "EGO Volts");
  EXPECT_EQ(graph.x.low, 18);
  EXPECT_EQ(graph.x.high, 10);
  EXPECT_EQ(graph.y.lines, (Doubles{0, 1, 2, 3, 4, 5}));
  ASSERT_EQ(graph.curve.size(), 9U);
  EXPECT_EQ(graph.curve[0], (Point{18, 0}));
  EXPECT_EQ(graph.curve[8].x, 11);
}

TEST_F(GraphContentTest, EveryKindDrawsACalibrationOfZeros) {
  CalValues.fill(0);
  MapBar = 0;
  for (int kind = CurvePulse; kind <= CurveEgo; ++kind) {
    const GraphContent graph = Content(kind);
    const GraphFrame frame{10, 10, 110, 60};
    for (const Point& point : graph.curve) {
      const Point pixel = ToPixel(graph, frame, point);
      EXPECT_TRUE(std::isfinite(pixel.x) && std::isfinite(pixel.y)) << kind;
    }
  }
}

TEST_F(GraphContentTest, ValuesThatAreNoNumbersAreLeftOut) {
  CalValues.fill(std::nanf(""));
  for (int kind = CurvePulse; kind <= CurveEgo; ++kind) {
    const GraphContent graph = Content(kind);
    for (const Point& point : graph.curve)
      EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y)) << kind;
    for (double line : graph.x.lines) EXPECT_TRUE(std::isfinite(line)) << kind;
    for (double line : graph.y.lines) EXPECT_TRUE(std::isfinite(line)) << kind;
  }
}

TEST_F(GraphContentTest, AnUnknownKindIsEmpty) { EXPECT_TRUE(Content(5).curve.empty()); }

// ---- geometry -----------------------------------------------------------------------------------

TEST(PlaceFrame, KeepsItsProportionsAtAnySize) {
  for (const auto& [width, height] : {std::pair{400.0, 300.0}, {900.0, 300.0}, {400.0, 900.0}}) {
    const GraphFrame frame = PlaceFrame(ParameterFrame, width, height, {30, 10, 10, 30});
    EXPECT_NEAR((frame.right - frame.left) / (frame.bottom - frame.top), 4800.0 / 2250, 0.02);
    EXPECT_GE(frame.left, 30);
    EXPECT_LE(frame.right, width - 10);
    EXPECT_GE(frame.top, 10);
    EXPECT_LE(frame.bottom, height - 30);
  }
}

TEST(PlaceFrame, GrowsWithTheCanvas) {
  const GraphFrame small = PlaceFrame(ParameterFrame, 400, 300, {});
  const GraphFrame large = PlaceFrame(ParameterFrame, 800, 600, {});
  EXPECT_NEAR(large.right - large.left, 2 * (small.right - small.left), 2);
}

TEST(PlaceFrame, KeepsTheMarginOfItsShape) {
  const GraphFrame frame = PlaceFrame(ParameterFrame, 1050, 2000, {});
  EXPECT_GE(frame.left, 450 * (frame.right - frame.left) / 4800 - 1);
}

TEST(PlaceFrame, StandsOnWholePixels) {
  const GraphFrame frame = PlaceFrame(CoolantFrame, 433, 277, {31.3, 7.7, 9.1, 33.3});
  for (double edge : {frame.left, frame.top, frame.right, frame.bottom})
    EXPECT_EQ(edge, std::floor(edge));
}

TEST(PlaceFrame, IsNeverInsideOut) {
  const GraphFrame frame = PlaceFrame(ParameterFrame, 20, 10, {30, 30, 30, 30});
  EXPECT_GE(frame.right, frame.left);
  EXPECT_GE(frame.bottom, frame.top);
}

TEST(Pixels, RunFromTheLeftAndFromTheBottom) {
  GraphContent content;
  content.x = {.low = 10, .high = 110};
  content.y = {.low = 0, .high = 10};
  const GraphFrame frame{100, 50, 200, 150};
  EXPECT_EQ(ToPixel(content, frame, {10, 0}), (Point{100, 150}));
  EXPECT_EQ(ToPixel(content, frame, {110, 10}), (Point{200, 50}));
  EXPECT_EQ(ToPixel(content, frame, {60, 2.52}), (Point{150, 125}));
}

TEST(Pixels, AFallingAxisRunsTheOtherWay) {
  GraphContent content;
  content.x = {.low = 18, .high = 10};
  EXPECT_EQ(XPixel(content, {0, 0, 80, 10}, 17), 10);
}

TEST(ClipToFrame, CutsWhatSticksOut) {
  const GraphFrame frame{0, 0, 10, 10};
  const auto cut = ClipToFrame({{-10, 5}, {20, 5}}, frame);
  ASSERT_TRUE(cut);
  EXPECT_EQ(*cut, (Segment{{0, 5}, {10, 5}}));
  EXPECT_EQ(*ClipToFrame({{2, 3}, {4, 5}}, frame), (Segment{{2, 3}, {4, 5}}));
  EXPECT_FALSE(ClipToFrame({{-5, -5}, {-1, 20}}, frame));
  EXPECT_FALSE(ClipToFrame({{0, 11}, {10, 11}}, frame));
  EXPECT_EQ(*ClipToFrame({{5, 20}, {5, -20}}, frame), (Segment{{5, 10}, {5, 0}}));
}

TEST(HatchLines, StayInsideTheBand) {
  const GraphFrame band{20, 90, 120, 100};
  const std::vector<Segment> lines = HatchLines(band, 8);
  EXPECT_GE(lines.size(), 12U);
  for (const auto& [from, to] : lines) {
    for (const Point& point : {from, to}) {
      EXPECT_GE(point.x, band.left);
      EXPECT_LE(point.x, band.right);
      EXPECT_GE(point.y, band.top);
      EXPECT_LE(point.y, band.bottom);
    }
  }
  EXPECT_TRUE(HatchLines({20, 100, 120, 100}, 8).empty());
}

TEST(LabelsThatFit, KeepsAllWhenThereIsRoom) {
  const std::vector<LabelSpan> labels = {{0, 10}, {20, 10}, {40, 10}};
  EXPECT_EQ(LabelsThatFit(labels, 5), (std::vector<std::size_t>{0, 1, 2}));
}

TEST(LabelsThatFit, LeavesOutEvenlyAndPrefersTheLastToItsNeighbour) {
  const std::vector<LabelSpan> labels = {{0, 10}, {8, 10}, {16, 10}, {24, 10}, {32, 10}, {40, 10}};
  EXPECT_EQ(LabelsThatFit(labels, 2), (std::vector<std::size_t>{0, 2, 5}));
  const std::vector<LabelSpan> closeEnd = {{0, 10}, {20, 10}, {40, 10}, {44, 10}};
  EXPECT_EQ(LabelsThatFit(closeEnd, 2), (std::vector<std::size_t>{0, 1, 3}));
  const std::vector<LabelSpan> uneven = {{0, 10}, {8, 10}, {16, 10}, {30, 10}};
  EXPECT_EQ(LabelsThatFit(uneven, 2), (std::vector<std::size_t>{0, 2, 3}));
}

TEST(LabelsThatFit, AlwaysKeepsTheFirst) {
  const std::vector<LabelSpan> labels = {{0, 100}, {8, 100}, {16, 100}};
  EXPECT_EQ(LabelsThatFit(labels, 2), (std::vector<std::size_t>{0}));
  EXPECT_EQ(LabelsThatFit(std::vector<LabelSpan>{{5, 10}}, 2), (std::vector<std::size_t>{0}));
  EXPECT_TRUE(LabelsThatFit({}, 2).empty());
}

TEST(TickText, ShowsATenthOnlyWhereThereIsOne) {
  EXPECT_EQ(TickText(20), "20");
  EXPECT_EQ(TickText(250.0 / 6), "41.7");
  EXPECT_EQ(TickText(-0.04), "0");
  EXPECT_EQ(TickText(12000), "12000");
}
