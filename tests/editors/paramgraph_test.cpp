// The small parameter graph as it stands on a canvas: sharp lines, texts that never touch.
#include "editors/paramgraph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "platform/headless/script.h"

namespace {

struct Box {
  double left;
  double top;
  double right;
  double bottom;
};

// Where a text stands; a turned one is as high as it is long.
Box BoxOf(const Primitive& text) {
  TextSize size = MeasureText(text.text, text.pointSize, text.bold);
  double shift = text.anchor == TextAnchor::Left ? 0 : text.anchor == TextAnchor::Centre ? 0.5 : 1;
  const Point at = text.points.front();
  if (text.turnDegrees != 0) {
    std::swap(size.width, size.height);
    shift = 0.5;
  }
  const double left = at.x - size.width * shift;
  return {left, at.y - size.height / 2, left + size.width, at.y + size.height / 2};
}

bool Overlap(const Box& a, const Box& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

class ParameterGraphTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetHeadless();
    ResetCalibrationState();
    CalValues[2] = 1;
    CalValues[4] = 6000;
    CalValues[217] = 8;
    CalValues[232] = 10;
    CalValues[233] = 1;
    CalValues[344] = 1.5F;
    for (std::size_t i = 0; i < 8; ++i) CalValues[435 + i] = static_cast<float>(400 + 900 * i);
    for (std::size_t i = 0; i < 10; ++i) CalValues[415 + i] = static_cast<float>(i) / 10;
    for (std::size_t i = 0; i < 10; ++i) CalValues[425 + i] = static_cast<float>(19 - i);
    PublishCalGlobals();
    MaxManifoldKpa = MapHigh;
    screen_.name = "GraphScreen";
    screen_.build = [](Screen& screen) {
      Add(screen, {.name = "Graph", .kind = ControlKind::Canvas});
    };
    ShowScreen(screen_);
  }
  void TearDown() override {
    UnloadScreen(screen_);
    ResetHeadless();
    ResetCalibrationState();
  }
  const std::vector<Primitive>& Drawn(int kind, int width = 640, int height = 480) {
    Control& canvas = At(screen_, "Graph");
    canvas.canvasWidth = width;
    canvas.canvasHeight = height;
    GraphKind = kind;
    ParameterGraph(canvas);
    return canvas.drawing.primitives;
  }
  std::vector<Primitive> Texts(int kind, int width = 640, int height = 480) {
    std::vector<Primitive> texts = Drawn(kind, width, height);
    std::erase_if(texts, [](const Primitive& p) { return p.kind != PrimitiveKind::Text; });
    return texts;
  }
  std::vector<Primitive> Lines(int kind, const std::function<bool(const Stroke&)>& wanted) {
    std::vector<Primitive> lines = Drawn(kind);
    std::erase_if(lines, [&](const Primitive& p) {
      return p.kind != PrimitiveKind::Line || !wanted(p.stroke);
    });
    return lines;
  }
  // The frame of the graph that was drawn last.
  Box Frame() {
    for (const Primitive& shape : At(screen_, "Graph").drawing.primitives)
      if (shape.kind == PrimitiveKind::Polyline)
        return {shape.points[0].x, shape.points[0].y, shape.points[2].x, shape.points[2].y};
    return {};
  }
  // Where a value of the pulse width graph stands: 10 to 104 kPa across, 0 to 12 ms up.
  double AtKpa(double kpa) {
    const Box frame = Frame();
    return std::round(frame.left + (kpa - 10) / 94 * (frame.right - frame.left));
  }
  double AtMs(double ms) {
    const Box frame = Frame();
    return std::round(frame.bottom - ms / 12 * (frame.bottom - frame.top));
  }
  std::vector<Point> Level(double y) { return {{Frame().left, y}, {Frame().right, y}}; }
  std::vector<Point> Upright(double x) { return {{x, Frame().top}, {x, Frame().bottom}}; }

 private:
  Screen screen_;
};

bool IsGrid(const Stroke& stroke) { return stroke.dashed; }
bool IsLimit(const Stroke& stroke) { return stroke.colour == Red; }
// The curve is the one thick line that is not level or upright.
bool IsCurve(const Stroke& stroke) { return stroke.antialias && stroke.width == 2; }
bool IsHatching(const Stroke& stroke) { return stroke.antialias && stroke.width == 1; }
bool IsPlainMark(const Stroke& stroke) {
  return !stroke.antialias && stroke.width == 2 && stroke.colour != Red;
}

}  // namespace

TEST_F(ParameterGraphTest, TextsNeverTouchAtAnySize) {
  for (int kind = CurvePulse; kind <= CurveEgo; ++kind) {
    for (const auto& [width, height] : {std::pair{400, 300}, {640, 480}, {500, 900}, {1600, 700}}) {
      const std::vector<Primitive> texts = Texts(kind, width, height);
      ASSERT_GE(texts.size(), 4U);
      for (std::size_t i = 0; i < texts.size(); ++i)
        for (std::size_t j = i + 1; j < texts.size(); ++j)
          EXPECT_FALSE(Overlap(BoxOf(texts[i]), BoxOf(texts[j])))
              << texts[i].text << " and " << texts[j].text << " in kind " << kind << " at "
              << width;
    }
  }
}

TEST_F(ParameterGraphTest, TextsStayOnTheCanvas) {
  for (int kind = CurvePulse; kind <= CurveEgo; ++kind) {
    for (const Primitive& text : Texts(kind, 500, 400)) {
      const Box box = BoxOf(text);
      EXPECT_GE(box.left, 0) << text.text;
      EXPECT_GE(box.top, 0) << text.text;
      EXPECT_LE(box.right, 500) << text.text;
      EXPECT_LE(box.bottom, 400) << text.text;
    }
  }
}

TEST_F(ParameterGraphTest, FailTextsDoNotTouchWhateverTheMinimum) {
  for (float minimum : {0.05F, 0.5F, 1.5F, 6.0F, 11.0F, 11.9F, 20.0F}) {
    CalValues[344] = minimum;
    PublishCalGlobals();
    std::vector<Primitive> texts = Texts(CurvePulse);
    std::erase_if(texts, [](const Primitive& p) {
      return p.text != " INJECTOR  FAIL  ZONE" && p.text != "Minimum Injector Turn-on Time";
    });
    ASSERT_EQ(texts.size(), 2U) << minimum;
    EXPECT_FALSE(Overlap(BoxOf(texts[0]), BoxOf(texts[1]))) << minimum;
  }
}

TEST_F(ParameterGraphTest, LevelAndUprightLinesStandOnWholePixels) {
  for (const Primitive& line : Drawn(CurvePulse, 517, 391)) {
    if (line.kind != PrimitiveKind::Line || line.stroke.antialias) continue;
    for (const Point& point : line.points) {
      EXPECT_EQ(point.x, std::floor(point.x));
      EXPECT_EQ(point.y, std::floor(point.y));
    }
  }
}

TEST_F(ParameterGraphTest, CurveStaysInsideItsFrame) {
  CalValues[443] = -30;
  CalValues[444] = 400;
  Box frame{};
  for (const Primitive& shape : Drawn(CurveBlend)) {
    if (shape.kind != PrimitiveKind::Polyline) continue;
    frame = {shape.points[0].x, shape.points[0].y, shape.points[2].x, shape.points[2].y};
  }
  int curves = 0;
  for (const Primitive& line : Drawn(CurveBlend)) {
    if (line.kind != PrimitiveKind::Line || !line.stroke.antialias) continue;
    ++curves;
    for (const Point& point : line.points) {
      EXPECT_GE(point.x, frame.left);
      EXPECT_LE(point.x, frame.right);
      EXPECT_GE(point.y, frame.top);
      EXPECT_LE(point.y, frame.bottom);
    }
  }
  EXPECT_GE(curves, 6);
}

// ---- the picture of the pulse width -------------------------------------------------------------

TEST_F(ParameterGraphTest, GridLinesStandAtTheValuesOfBothAxes) {
  std::vector<std::vector<Point>> drawn;
  for (const Primitive& line : Lines(CurvePulse, IsGrid)) drawn.push_back(line.points);
  std::vector<std::vector<Point>> expected;
  for (double kpa : {20, 40, 60, 80, 100}) expected.push_back(Upright(AtKpa(kpa)));
  for (double ms : {2, 4, 6, 8, 10}) expected.push_back(Level(AtMs(ms)));
  EXPECT_EQ(drawn, expected);  // the ends are the frame's own lines
}

TEST_F(ParameterGraphTest, GridsOfTheTablesHaveTheirDivisions) {
  for (const auto& [kind, divisions] :
       {std::pair<int, std::size_t>{CurveBlend, 6}, {CurveWarmup, 7}, {CurveCoolant, 7}}) {
    std::vector<double> heights;
    for (const Primitive& line : Lines(kind, IsGrid))
      if (line.points[0].y == line.points[1].y) heights.push_back(line.points[0].y);
    // Between the two ends there is a line less than lines of the grid, and one less again.
    EXPECT_EQ(heights.size(), divisions - 2) << kind;
    const Box frame = Frame();
    for (std::size_t i = 0; i < heights.size(); ++i)
      EXPECT_NEAR(heights[i],
                  frame.bottom - (frame.bottom - frame.top) * static_cast<double>(i + 1) /
                                     static_cast<double>(divisions - 1),
                  0.51)
          << kind;
  }
}

TEST_F(ParameterGraphTest, ThePulseIsAStraightLineFromOffsetToOffsetAndTog) {
  const std::vector<Primitive> curve = Lines(CurvePulse, IsCurve);
  ASSERT_EQ(curve.size(), 1U);
  EXPECT_EQ(curve[0].points,
            (std::vector<Point>{{Frame().left, AtMs(1)}, {Frame().right, AtMs(11)}}));
}

TEST_F(ParameterGraphTest, ALineMarksTheMaxManifoldPressureBelowTheSensorsEnd) {
  MaxManifoldKpa = 73;
  std::vector<std::vector<Point>> marks;
  for (const Primitive& line : Lines(CurvePulse, IsPlainMark)) marks.push_back(line.points);
  ASSERT_EQ(marks.size(), 2U) << "the other one is the edge of the fail zone";
  EXPECT_NE(std::find(marks.begin(), marks.end(), Upright(AtKpa(73))), marks.end());

  MaxManifoldKpa = 104;
  for (const Primitive& line : Lines(CurvePulse, IsPlainMark))
    EXPECT_EQ(line.points[0].y, line.points[1].y);
}

TEST_F(ParameterGraphTest, ARedLineStandsAtTheRevLimitsPulse) {
  std::vector<Primitive> red = Lines(CurvePulse, IsLimit);
  ASSERT_EQ(red.size(), 1U);
  EXPECT_EQ(red[0].points, Level(AtMs(8.8)));  // 60000 / 6000 - 1.2

  CalValues[4] = 1000;  // 58.8 ms are beyond the axis
  PublishCalGlobals();
  EXPECT_TRUE(Lines(CurvePulse, IsLimit).empty());
}

TEST_F(ParameterGraphTest, TheBandBelowTheLeastTurnOnTimeIsHatched) {
  const std::vector<Primitive> hatching = Lines(CurvePulse, IsHatching);
  const Box frame = Frame();
  const double edge = AtMs(1.5);
  ASSERT_GE(hatching.size(), 20U);
  double left = frame.right, right = frame.left, top = frame.bottom, bottom = frame.top;
  for (const Primitive& line : hatching)
    for (const Point& point : line.points) {
      left = std::min(left, point.x);
      right = std::max(right, point.x);
      top = std::min(top, point.y);
      bottom = std::max(bottom, point.y);
    }
  EXPECT_NEAR(left, frame.left, 8);
  EXPECT_NEAR(right, frame.right, 8);
  EXPECT_NEAR(top, edge, 0.01);
  EXPECT_NEAR(bottom, frame.bottom, 0.01);
  const std::vector<Primitive> edges = Lines(CurvePulse, IsPlainMark);
  ASSERT_EQ(edges.size(), 1U);
  EXPECT_EQ(edges[0].points, Level(edge));
}

TEST_F(ParameterGraphTest, WithoutABandThereIsNeitherHatchingNorText) {
  CalValues[344] = 0;  // where the axis begins
  PublishCalGlobals();
  EXPECT_TRUE(Lines(CurvePulse, IsHatching).empty());
  EXPECT_TRUE(Lines(CurvePulse, IsPlainMark).empty());
  for (const Primitive& text : Texts(CurvePulse)) {
    EXPECT_NE(text.text, " INJECTOR  FAIL  ZONE");
    EXPECT_NE(text.text, "Minimum Injector Turn-on Time");
  }
}

TEST_F(ParameterGraphTest, DrawsNothingBeforeTheCanvasHasASize) {
  EXPECT_FALSE(Drawn(CurvePulse).empty());
  const std::size_t before = Drawn(CurvePulse).size();
  EXPECT_EQ(Drawn(CurveWarmup, 0, 0).size(), before);
}

TEST_F(ParameterGraphTest, DrawsOnACanvasTooSmallForItsTexts) {
  for (int kind = CurvePulse; kind <= CurveEgo; ++kind) EXPECT_FALSE(Drawn(kind, 20, 20).empty());
}
