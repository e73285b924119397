// Texts that shrink and grow with the room of the frame.
#include <QApplication>
#include <QLayout>
#include <QMainWindow>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include "platform/contract.h"
#include "platform/fit.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtscreen.h"

namespace {

class FitQtTest : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    ShowScreen(screen);
    RunPending();
  }
  void TearDown() override {
    QApplication::setFont(font);
    ContractTest::TearDown();
  }
  QWidget& Widget(const std::string& name) { return *WidgetOf(At(screen, name)); }
  QScrollArea& Scrolled() {
    return *static_cast<QtScreen*>(screen.native)->page->findChild<QScrollArea*>();
  }
  bool Scrolls() {
    return Scrolled().horizontalScrollBar()->maximum() > 0 ||
           Scrolled().verticalScrollBar()->maximum() > 0;
  }
  void Resize(int width, int height) {
    FrameWindow()->resize(width, height);
    RunPending();
  }
  // Against the size of the desktop's texts.
  double Factor(const std::string& name) {
    return Widget(name).font().pointSizeF() / QApplication::font().pointSizeF();
  }

  QFont font = QApplication::font();
  Screen screen{
      .name = "frmFit", .title = "Fit", .build = [](Screen& s) {
        Add(s, {.name = "Dial",
                .kind = ControlKind::Canvas,
                .place = {.stretch = 1},
                .minWidth = 80,
                .minHeight = 40});
        Add(s, {.name = "Grid1", .kind = ControlKind::Grid});
        for (int row = 0; row < 6; ++row) {
          const std::string number = std::to_string(row);
          Add(s, {.name = "Label" + number,
                  .caption = "Minimum Injector Turn-on Time =",
                  .place = {.in = "Grid1", .row = row, .column = 0}});
          Add(s, {.name = "Text" + number,
                  .kind = ControlKind::TextField,
                  .place = {.in = "Grid1", .row = row, .column = 1},
                  .widthChars = 8});
        }
        Add(s, {.name = "Live", .caption = "0", .widthChars = 6, .fontScale = 2});
        FitTexts(
            s,
            {.smallest = 0.5, .largest = 1.5, .canvas = "Dial", .canvasShare = 0.4, .spacing = 2});
      }};
};

TEST_F(FitQtTest, TextsGrowWithTheRoomUpToTheLargest) {
  Resize(780, 780);
  EXPECT_NEAR(Factor("Label0"), 1.5, 0.01);
  EXPECT_NEAR(Factor("Text5"), 1.5, 0.01);
  EXPECT_NEAR(Factor("Live"), 3, 0.01);
  EXPECT_FALSE(Scrolls());
}

TEST_F(FitQtTest, TextsShrinkUntilNothingHasToBeScrolled) {
  Resize(780, 780);
  double before = Factor("Label0");
  for (int height : {400, 350, 310}) {
    Resize(620, height);
    EXPECT_LT(Factor("Label0"), before) << height;
    EXPECT_FALSE(Scrolls()) << height;
    before = Factor("Label0");
  }
  Resize(780, 780);
  EXPECT_NEAR(Factor("Label0"), 1.5, 0.01);
}

TEST_F(FitQtTest, BelowTheSmallestTextsTheScreenScrolls) {
  Resize(230, 200);
  EXPECT_NEAR(Factor("Label0"), 0.5, 0.01);
  EXPECT_TRUE(Scrolls());
}

TEST_F(FitQtTest, CanvasKeepsItsShareOfTheHeight) {
  for (int height : {780, 400, 310}) {
    Resize(620, height);
    EXPECT_GE(At(screen, "Dial").canvasHeight, 0.4 * Scrolled().height() - 1) << height;
  }
}

TEST_F(FitQtTest, LargeFontsOfTheDesktopAreFittedToo) {
  UnloadScreen(screen);
  RunPending();
  QFont large = font;
  large.setPointSizeF(font.pointSizeF() * 2);
  QApplication::setFont(large);
  FrameWindow()->resize(620, 420);
  ShowScreen(screen);
  RunPending();
  EXPECT_FALSE(Scrolls());
  EXPECT_LT(Factor("Label0"), 1);
}

TEST_F(FitQtTest, WhatIsShownLaterIsFittedIn) {
  Resize(620, 420);
  const double without = Factor("Label0");
  UnloadScreen(screen);
  RunPending();
  auto build = screen.build;
  screen.build = [build](Screen& s) {
    build(s);
    Add(s, {.name = "Late", .caption = "NO FILE", .fontScale = 4, .visible = false});
  };
  ShowScreen(screen);
  Resize(620, 420);
  EXPECT_NEAR(Factor("Label0"), without, 0.02);
  SetVisible(At(screen, "Late"), true);
  RunPending();
  EXPECT_LT(Factor("Label0"), without - 0.02);
  EXPECT_FALSE(Scrolls());
}

// What is worked on below it stands at the left.
TEST_F(FitQtTest, WindowAboveTheFrameLeavesSomeOfTheDesktopsWidth) {
  const int desktop = FrameWindow()->screen()->availableGeometry().width();
  Screen above{.name = "frmAbove",
               .title = "Above",
               .placement = ScreenPlacement::Above,
               .build = [](Screen& s) {
                 Add(s, {.name = "Label", .caption = "0", .widthChars = 40});
                 FitTexts(s, {.smallest = 0.5, .largest = 1, .widthShare = 0.6});
               }};
  for (double enlarged : {1.0, 1.5, 2.0}) {
    SCOPED_TRACE(enlarged);
    QFont large = font;
    large.setPointSizeF(font.pointSizeF() * enlarged);
    QApplication::setFont(large);
    ShowScreen(above);
    RunPending();
    const QWidget& window = *static_cast<QtScreen*>(above.native)->window;
    const auto& scrolled = *static_cast<QtScreen*>(above.native)->page->findChild<QScrollArea*>();
    const double factor =
        WidgetOf(At(above, "Label"))->font().pointSizeF() / QApplication::font().pointSizeF();
    EXPECT_LE(window.width(), 0.6 * desktop + 2);
    EXPECT_EQ(scrolled.horizontalScrollBar()->maximum(), 0);
    if (enlarged == 1.0) {
      EXPECT_NEAR(factor, 1, 0.01) << "texts that fit stay as they are";
    }
    if (enlarged == 2.0) {
      EXPECT_LT(factor, 0.95);
    }
    UnloadScreen(above);
    RunPending();
  }
}

TEST_F(FitQtTest, SmallFieldsAreAsHighAsTheirFontNeeds) {
  Resize(620, 400);
  QWidget& field = Widget("Text0");
  EXPECT_GE(field.height(), field.fontMetrics().height() + 4);
  EXPECT_LE(field.height(), field.fontMetrics().height() + 14);
  EXPECT_EQ(Widget("Text1").y() - Widget("Text0").y() - field.height(), 2) << "the spacing";
}

}  // namespace
