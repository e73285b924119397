// The drawing list of a canvas, and the size of texts.
#include "platform/canvas.h"

#include "platform/contract.h"

namespace {

class CanvasTest : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    ShowScreen(screen);
  }
  Control& Canvas() { return At(screen, "Canvas1"); }
  const Drawing& Drawn() { return Canvas().drawing; }

  Screen screen{
      .name = "frmCanvas", .build = [](Screen& s) {
        Add(s, {.name = "Canvas1", .kind = ControlKind::Canvas, .minWidth = 100, .minHeight = 80});
      }};
};

TEST_F(CanvasTest, PrimitivesAreKeptInTheirOrder) {
  ClearCanvas(Canvas(), Black);
  DrawLine(Canvas(), {1, 2}, {3, 4}, {.colour = Red, .width = 2});
  DrawCircle(Canvas(), {10, 10}, 5, {.colour = Green});
  DrawText(Canvas(), {0, 0}, "RPM", {.colour = White, .anchor = TextAnchor::Centre});
  ASSERT_EQ(Drawn().primitives.size(), 3u);
  EXPECT_EQ(Drawn().paper, Black);
  EXPECT_EQ(Drawn().primitives[0], (Primitive{.kind = PrimitiveKind::Line,
                                              .stroke = {.colour = Red, .width = 2},
                                              .points = {{1, 2}, {3, 4}}}));
  EXPECT_EQ(Drawn().primitives[1], (Primitive{.kind = PrimitiveKind::Circle,
                                              .stroke = {.colour = Green},
                                              .points = {{10, 10}},
                                              .radius = 5}));
  EXPECT_EQ(Drawn().primitives[2], (Primitive{.kind = PrimitiveKind::Text,
                                              .stroke = {.colour = White},
                                              .points = {{0, 0}},
                                              .text = "RPM",
                                              .anchor = TextAnchor::Centre}));
}

TEST_F(CanvasTest, EveryRoutineDrawsItsKind) {
  Stroke stroke{.colour = Blue};
  DrawPolyline(Canvas(), {{0, 0}, {1, 1}, {2, 0}}, stroke);
  FillCircle(Canvas(), {5, 5}, 2, stroke);
  DrawArc(Canvas(), {5, 5}, 4, 90, 180, stroke);
  FillPolygon(Canvas(), {{0, 0}, {4, 0}, {0, 4}}, stroke);
  FillRectangle(Canvas(), {1, 1}, {3, 4}, stroke);
  std::vector<PrimitiveKind> kinds;
  for (const Primitive& primitive : Drawn().primitives) kinds.push_back(primitive.kind);
  EXPECT_EQ(kinds, (std::vector<PrimitiveKind>{PrimitiveKind::Polyline, PrimitiveKind::Disc,
                                               PrimitiveKind::Arc, PrimitiveKind::Polygon,
                                               PrimitiveKind::Rectangle}));
  EXPECT_EQ(Drawn().primitives[2].startDegrees, 90);
  EXPECT_EQ(Drawn().primitives[2].sweepDegrees, 180);
}

TEST_F(CanvasTest, ClearEmptiesAndBeginsANewPicture) {
  DrawLine(Canvas(), {0, 0}, {1, 1}, {});
  KeepAsBackground(Canvas());
  unsigned long before = Drawn().generation;
  ClearCanvas(Canvas(), Yellow);
  EXPECT_TRUE(Drawn().primitives.empty());
  EXPECT_EQ(Drawn().backgroundCount, 0u);
  EXPECT_EQ(Drawn().paper, Yellow);
  EXPECT_EQ(Drawn().generation, before + 1);
}

TEST_F(CanvasTest, ForegroundGoesAndTheBackgroundStays) {
  DrawLine(Canvas(), {0, 0}, {1, 1}, {.colour = Red});
  KeepAsBackground(Canvas());
  EXPECT_EQ(Drawn().backgroundCount, 1u);
  DrawLine(Canvas(), {0, 0}, {2, 2}, {.colour = Green});
  DrawLine(Canvas(), {0, 0}, {3, 3}, {.colour = Blue});
  ClearForeground(Canvas());
  ASSERT_EQ(Drawn().primitives.size(), 1u);
  EXPECT_EQ(Drawn().primitives[0].stroke.colour, Red);
  EXPECT_EQ(Drawn().backgroundCount, 1u);
}

TEST_F(CanvasTest, DrawingMoreIsNoNewPicture) {
  unsigned long before = Drawn().generation;
  DrawLine(Canvas(), {0, 0}, {1, 1}, {});
  EXPECT_EQ(Drawn().generation, before);
}

TEST_F(CanvasTest, ExclusiveOrPenStandsInTheList) {
  Stroke pen{.colour = White, .pen = PenMode::ExclusiveOr};
  DrawLine(Canvas(), {0, 0}, {1, 1}, pen);
  DrawLine(Canvas(), {0, 0}, {1, 1}, pen);
  ASSERT_EQ(Drawn().primitives.size(), 2u);
  EXPECT_EQ(Drawn().primitives[0].stroke.pen, PenMode::ExclusiveOr);
  EXPECT_EQ(Drawn().primitives[0], Drawn().primitives[1]);
}

TEST_F(CanvasTest, DrawingOutlivesHidingAndGoesWithUnloading) {
  DrawLine(Canvas(), {0, 0}, {1, 1}, {});
  HideScreen(screen);
  ShowScreen(screen);
  EXPECT_EQ(Drawn().primitives.size(), 1u);
  UnloadScreen(screen);
  ShowScreen(screen);
  EXPECT_TRUE(Drawn().primitives.empty());
}

// ---- the size of texts --------------------------------------------------------------------------

TEST_F(CanvasTest, LongerTextIsWider) {
  EXPECT_EQ(MeasureText("").width, 0);
  EXPECT_GT(MeasureText("").height, 0);
  EXPECT_GT(MeasureText("1").width, 0);
  double last = 0;
  for (const char* text : {"1", "12", "123", "1234 RPM"}) {
    double width = MeasureText(text).width;
    EXPECT_GT(width, last) << text;
    last = width;
  }
}

TEST_F(CanvasTest, LargerTextIsWiderAndHigher) {
  TextSize last;
  for (double pointSize : {6.0, 9.0, 14.0, 28.0}) {
    TextSize size = MeasureText("8000", pointSize);
    EXPECT_GT(size.width, last.width) << pointSize;
    EXPECT_GT(size.height, last.height) << pointSize;
    last = size;
  }
}

TEST_F(CanvasTest, BoldTextIsNotNarrower) {
  EXPECT_GE(MeasureText("8000 RPM", 12, true).width, MeasureText("8000 RPM", 12, false).width);
}

}  // namespace
