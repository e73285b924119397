// What primitives look like in pixels.
#include <QApplication>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>

#include "platform/contract.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtpaint.h"

namespace {

class CanvasQtTest : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    ShowScreen(screen);
    ClearCanvas(Canvas(), White);
  }
  Control& Canvas() { return At(screen, "Canvas1"); }
  QImage Picture() {
    RunPending();
    return WidgetOf(Canvas())->grab().toImage();
  }
  QRgb Pixel(int x, int y) { return Picture().pixel(x, y); }

  Screen screen{
      .name = "frmCanvas", .build = [](Screen& s) {
        Add(s, {.name = "Canvas1", .kind = ControlKind::Canvas, .minWidth = 120, .minHeight = 90});
      }};
};

constexpr QRgb WhitePixel = 0xFFFFFFFF;
constexpr QRgb BlackPixel = 0xFF000000;
constexpr QRgb RedPixel = 0xFFFF0000;

TEST_F(CanvasQtTest, LineOfWidthOneFillsOneRowOfPixels) {
  for (bool smooth : {false, true}) {
    ClearCanvas(Canvas(), White);
    DrawLine(Canvas(), {10, 20}, {60, 20}, {.colour = Black, .antialias = smooth});
    QImage picture = Picture();
    EXPECT_EQ(picture.pixel(30, 19), WhitePixel) << smooth;
    EXPECT_EQ(picture.pixel(30, 20), BlackPixel) << smooth;
    EXPECT_EQ(picture.pixel(30, 21), WhitePixel) << smooth;
  }
}

TEST_F(CanvasQtTest, TextsFollowTheFontOfTheDesktop) {
  const QFont before = QApplication::font();
  const TextSize size = MeasureText("1234", 0, false);
  QFont larger = before;
  larger.setPointSizeF(2 * before.pointSizeF());
  QApplication::setFont(larger);
  EXPECT_GT(MeasureText("1234", 0, false).width, 1.5 * size.width);
  QApplication::setFont(before);
  EXPECT_EQ(MeasureText("1234", 0, false).width, size.width);
}

TEST_F(CanvasQtTest, LineOfWidthTwoFillsTwoRows) {
  DrawLine(Canvas(), {10, 20}, {60, 20}, {.colour = Red, .width = 2});
  QImage picture = Picture();
  int rows = 0;
  for (int y = 15; y < 26; ++y) rows += picture.pixel(30, y) == RedPixel;
  EXPECT_EQ(rows, 2);
}

TEST_F(CanvasQtTest, ExclusiveOrTwiceLeavesWhatWasThere) {
  FillRectangle(Canvas(), {30, 10}, {60, 60}, {.colour = Red});
  QImage before = Picture();
  Stroke cross{.colour = White, .pen = PenMode::ExclusiveOr};
  DrawLine(Canvas(), {5, 30}, {100, 30}, cross);
  EXPECT_EQ(Pixel(10, 30), BlackPixel);
  EXPECT_EQ(Pixel(40, 30), 0xFF00FFFFu) << "red inverted";
  DrawLine(Canvas(), {5, 30}, {100, 30}, cross);
  EXPECT_EQ(Picture(), before);
}

TEST_F(CanvasQtTest, ExclusiveOrIsExactAlsoWhereSmoothIsAskedFor) {
  QImage before = Picture();
  Stroke cross{.colour = 0x123456, .pen = PenMode::ExclusiveOr, .antialias = true};
  for (int times = 0; times < 2; ++times) DrawLine(Canvas(), {5, 8}, {100, 71}, cross);
  EXPECT_EQ(Picture(), before);
}

TEST_F(CanvasQtTest, AppendingGivesTheSamePictureAsDrawingItAtOnce) {
  auto step = [&](int i) {
    DrawLine(Canvas(), {5.0 + i, 10}, {60, 70.0 - i}, {.colour = Blue, .antialias = true});
    DrawCircle(Canvas(), {50, 40}, 3.0 * i, {.colour = Red, .width = 2});
    DrawText(Canvas(), {20, 10.0 * i}, "12.5", {.colour = Black});
  };
  for (int i = 1; i < 6; ++i) {
    step(i);
    Picture();  // painted in between
  }
  QImage appended = Picture();
  ClearCanvas(Canvas(), White);
  for (int i = 1; i < 6; ++i) step(i);
  EXPECT_EQ(Picture(), appended);
}

TEST_F(CanvasQtTest, ForegroundGoesAndTheBackgroundPictureStays) {
  FillRectangle(Canvas(), {10, 10}, {30, 30}, {.colour = Red});
  KeepAsBackground(Canvas());
  QImage background = Picture();
  DrawLine(Canvas(), {0, 20}, {100, 20}, {.colour = Black});
  EXPECT_NE(Picture(), background);
  ClearForeground(Canvas());
  EXPECT_EQ(Picture(), background);
  // As many primitives as were painted before the clear are still no append.
  DrawLine(Canvas(), {0, 50}, {100, 50}, {.colour = Black});
  EXPECT_EQ(Pixel(15, 20), RedPixel);
  EXPECT_EQ(Pixel(15, 50), BlackPixel);
}

// Whatever the foreground was, what follows it stands on the whole background.
TEST_F(CanvasQtTest, ForegroundsThatFollowEachOtherLeaveNothingBehind) {
  auto foreground = [&](int i) {
    const double at = 10 + 13 * i;
    FillPolygon(Canvas(), {{at, 5}, {at + 20, 70}, {at - 9, 44}},
                {.colour = Red, .antialias = true});
    FillCircle(Canvas(), {at, 40}, 7, {.colour = Blue, .antialias = true});
    DrawLine(Canvas(), {at, 80}, {at + 30, 61}, {.colour = Black, .width = 5, .antialias = true});
    DrawText(Canvas(), {at, 25}, "88.8", {.colour = Black, .anchor = TextAnchor::Right});
    DrawText(Canvas(), {60, at}, "Mg", {.colour = Black, .turnDegrees = 90});
  };
  FillRectangle(Canvas(), {20, 10}, {90, 80}, {.colour = 0x80D0F0});
  KeepAsBackground(Canvas());
  const QImage background = Picture();
  for (int i = 0; i < 6; ++i) {
    ClearForeground(Canvas());
    foreground(i);
    EXPECT_NE(Picture(), background);
  }
  QImage last = Picture();
  ClearCanvas(Canvas(), White);
  FillRectangle(Canvas(), {20, 10}, {90, 80}, {.colour = 0x80D0F0});
  foreground(5);
  EXPECT_EQ(Picture(), last);
  KeepAsBackground(Canvas());
  ClearForeground(Canvas());
  EXPECT_EQ(Picture(), last);
}

// What of a widget has been painted.
struct Painted : QObject {
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) region += static_cast<QPaintEvent*>(event)->region();
    return false;
  }
  QRegion region;
};

void ExpectAllChangesPainted(const QImage& before, const QImage& after, const QRegion& painted) {
  EXPECT_NE(after, before);
  for (int y = 0; y < after.height(); ++y)
    for (int x = 0; x < after.width(); ++x)
      if (after.pixel(x, y) != before.pixel(x, y)) {
        ASSERT_TRUE(painted.contains(QPoint(x, y))) << x << " " << y;
      }
}

// Only what a new foreground changes is painted anew on the display.
TEST_F(CanvasQtTest, AllThatANewForegroundChangesIsPaintedAnewAndNotMuchMore) {
  Painted painted;
  FillRectangle(Canvas(), {0, 0}, {120, 90}, {.colour = 0x80D0F0});
  KeepAsBackground(Canvas());
  FillCircle(Canvas(), {30, 30}, 6, {.colour = Red, .antialias = true});
  const QImage before = Picture();
  WidgetOf(Canvas())->installEventFilter(&painted);
  ClearForeground(Canvas());
  DrawText(Canvas(), {70, 60}, "4", {.colour = Black, .anchor = TextAnchor::Centre});
  RunPending();
  WidgetOf(Canvas())->removeEventFilter(&painted);
  const QImage after = Picture();
  int pixels = 0;
  for (const QRect& rect : painted.region) pixels += rect.width() * rect.height();
  EXPECT_LT(pixels, after.width() * after.height() / 2);
  ExpectAllChangesPainted(before, after, painted.region);
}

// A window that moves away asks for its place before the queue has had its turn.
TEST_F(CanvasQtTest, PartThatIsExposedBeforeTheTurnLeavesNothingOldBesideIt) {
  FillRectangle(Canvas(), {0, 0}, {120, 90}, {.colour = 0x80D0F0});
  KeepAsBackground(Canvas());
  FillCircle(Canvas(), {30, 30}, 6, {.colour = Red});
  for (bool small : {true, false}) {
    const QImage before = Picture();
    Painted painted;
    WidgetOf(Canvas())->installEventFilter(&painted);
    if (small)
      ClearForeground(Canvas());
    else
      ClearCanvas(Canvas(), White);
    FillCircle(Canvas(), {70, 60}, 6, {.colour = Blue});
    WidgetOf(Canvas())->repaint(QRect(0, 0, 10, 10));
    RunPending();
    WidgetOf(Canvas())->removeEventFilter(&painted);
    ExpectAllChangesPainted(before, Picture(), painted.region);
  }
}

TEST_F(CanvasQtTest, ClearAndRedrawInOneTurnShowsTheNewPicture) {
  FillRectangle(Canvas(), {0, 0}, {50, 50}, {.colour = Red});
  Picture();
  ClearCanvas(Canvas(), Black);
  FillRectangle(Canvas(), {60, 0}, {80, 50}, {.colour = Red});
  EXPECT_EQ(Pixel(20, 20), BlackPixel);
  EXPECT_EQ(Pixel(70, 20), RedPixel);
}

TEST_F(CanvasQtTest, ShapesFillWhatTheyShould) {
  FillPolygon(Canvas(), {{10, 10}, {40, 10}, {10, 40}}, {.colour = Red});
  FillCircle(Canvas(), {80, 40}, 12, {.colour = Blue});
  EXPECT_EQ(Pixel(14, 14), RedPixel);
  EXPECT_EQ(Pixel(38, 38), WhitePixel);
  EXPECT_EQ(Pixel(80, 40), 0xFF0000FFu);
  EXPECT_EQ(Pixel(80, 55), WhitePixel);
}

TEST_F(CanvasQtTest, ArcRunsCounterClockwiseFromThreeOClock) {
  DrawArc(Canvas(), {60, 45}, 30, 0, 90, {.colour = Black, .width = 2});
  auto near = [&](int x, int y) {
    QImage picture = Picture();
    for (int dy = -2; dy <= 2; ++dy)
      for (int dx = -2; dx <= 2; ++dx)
        if (picture.pixel(x + dx, y + dy) == BlackPixel) return true;
    return false;
  };
  EXPECT_TRUE(near(81, 24)) << "upper right";
  EXPECT_FALSE(near(81, 66)) << "lower right";
  EXPECT_FALSE(near(39, 24)) << "upper left";
}

TEST_F(CanvasQtTest, BroadArcEndsAtItsAngle) {
  DrawArc(Canvas(), {60, 45}, 30, 0, 90, {.colour = Red, .width = 12});
  EXPECT_EQ(Pixel(90, 42), RedPixel);
  EXPECT_EQ(Pixel(90, 47), WhitePixel);
  EXPECT_EQ(Pixel(57, 15), WhitePixel);
}

TEST_F(CanvasQtTest, TextStandsAtItsAnchor) {
  auto inked = [&](int from, int to) {
    QImage picture = Picture();
    for (int x = from; x < to; ++x)
      for (int y = 0; y < picture.height(); ++y)
        if (picture.pixel(x, y) != WhitePixel) return true;
    return false;
  };
  DrawText(Canvas(), {60, 40}, "888", {.colour = Black, .anchor = TextAnchor::Right});
  EXPECT_TRUE(inked(30, 60));
  EXPECT_FALSE(inked(61, 120));
  ClearCanvas(Canvas(), White);
  DrawText(Canvas(), {60, 40}, "888", {.colour = Black});
  EXPECT_FALSE(inked(0, 60));
  EXPECT_TRUE(inked(60, 110));
}

TEST_F(CanvasQtTest, PictureHasTheDetailOfTheDisplay) {
  Drawing drawing{.paper = White};
  drawing.primitives.push_back({.kind = PrimitiveKind::Line,
                                .stroke = {.colour = Black, .antialias = true},
                                .points = {{0, 10}, {40, 10}}});
  QImage picture(80, 40, QImage::Format_RGB32);
  picture.setDevicePixelRatio(2);
  picture.fill(Qt::white);
  {
    QPainter painter(&picture);
    PaintPrimitives(painter, drawing, 0, 1);
  }
  EXPECT_EQ(picture.pixel(20, 19), WhitePixel);
  EXPECT_EQ(picture.pixel(20, 20), BlackPixel);
  EXPECT_EQ(picture.pixel(20, 21), BlackPixel);
  EXPECT_EQ(picture.pixel(20, 22), WhitePixel);
}

TEST_F(CanvasQtTest, ManyLinesArePaintedInTime) {
  for (int i = 0; i < 20000; ++i)
    DrawLine(Canvas(), {i % 100 + 0.0, 5}, {i % 90 + 0.0, 80}, {.colour = Blue});
  Picture();
  DrawLine(Canvas(), {5, 5}, {5, 80}, {.colour = Red});
  EXPECT_EQ(Pixel(5, 40), RedPixel);
}

TEST_F(CanvasQtTest, RepaintsOfOneTurnAreOne) {
  struct Counter : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
      count += event->type() == QEvent::Paint;
      return false;
    }
    int count = 0;
  } counter;
  Picture();
  WidgetOf(Canvas())->installEventFilter(&counter);
  for (int i = 0; i < 50; ++i) DrawLine(Canvas(), {1.0 * i, 0}, {50, 50}, {});
  RunPending();
  EXPECT_EQ(counter.count, 1);
}

}  // namespace
