// The small parameter graph as it stands on a canvas: sharp lines, texts that never touch.
#include "editors/paramgraph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

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

 private:
  Screen screen_;
};

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

TEST_F(ParameterGraphTest, DrawsNothingBeforeTheCanvasHasASize) {
  EXPECT_FALSE(Drawn(CurvePulse).empty());
  const std::size_t before = Drawn(CurvePulse).size();
  EXPECT_EQ(Drawn(CurveWarmup, 0, 0).size(), before);
}

TEST_F(ParameterGraphTest, DrawsOnACanvasTooSmallForItsTexts) {
  for (int kind = CurvePulse; kind <= CurveEgo; ++kind) EXPECT_FALSE(Drawn(kind, 20, 20).empty());
}
