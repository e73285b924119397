// The analog monitor is seen whole, and can be read, on every display from 1024 x 768 on.
#include <QApplication>
#include <QFontInfo>
#include <QMainWindow>
#include <QScrollArea>
#include <QScrollBar>

#include "monitors/monitor1.h"
#include "monitors/monitor1entry.h"
#include "monitors/monitor1picture.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtscreen.h"
#include "screens/monitorscreens.h"

namespace {

// What a maximised window has of a display: the rest is its title and the desktop's panel.
struct DisplaySize {
  int width;
  int height;
};
constexpr int titleAndPanel = 40;
constexpr DisplaySize displays[] = {{1024, 768}, {1366, 768}, {1280, 800}, {1920, 1080}};

class Monitor1Fit : public MonitorScreenTest {
 protected:
  void TearDown() override {
    UnloadAllScreens();
    QApplication::setFont(font);
    MonitorScreenTest::TearDown();
  }
  void ShowOn(const DisplaySize& display, double enlarged) {
    QFont large = font;
    large.setPointSizeF(font.pointSizeF() * enlarged);
    QApplication::setFont(large);
    Start();
    Resize(display);
    ShowScreen(Monitor1);
    BeginOffsets(Monitor1);
    DecodeFrame(LiveFrame{}, FrameReader::Monitor);
    ShowWidestTexts();
    RunPending();
  }
  // As wide as an engine makes them.
  static void ShowWidestTexts() {
    for (const LiveFigure& figure : Monitor1Figures())
      SetCaption(At(Monitor1, figure.control), "388.88");
    for (const StatusColumn& column : statusColumns)
      for (int line = 0; line < column.lines; ++line)
        SetCaption(At(Monitor1, LineName(column, line)), line == 2 ? "MAP DFL" : "NONE");
    SetCaption(At(Monitor1, "BinName"), "BIN File Not Available");
    SetCaption(At(Monitor1, "PromVersion"), "HV20105");
    for (const char* field : {"Text3", "Text4", "Text5", "Text6", "Text7", "Text8", "Text9"})
      SetText(At(Monitor1, field), "-15.875");
  }
  static void Resize(const DisplaySize& display) {
    FrameWindow()->resize(display.width, display.height - titleAndPanel);
    RunPending();
  }
  static void Close() {
    UnloadAllScreens();
    RunPending();
  }
  static QScrollArea& Scrolled() {
    return *static_cast<QtScreen*>(Monitor1.native)->page->findChild<QScrollArea*>();
  }
  static bool Scrolls() {
    return Scrolled().horizontalScrollBar()->maximum() > 0 ||
           Scrolled().verticalScrollBar()->maximum() > 0;
  }
  static bool ShowsText(const Control& control) {
    return control.kind == ControlKind::Label || control.kind == ControlKind::TextField ||
           control.kind == ControlKind::RadioButton || control.kind == ControlKind::Button;
  }

  QFont font = QApplication::font();
};

std::string Told(const DisplaySize& display, double enlarged) {
  return std::to_string(display.width) + " x " + std::to_string(display.height) + ", texts times " +
         std::to_string(enlarged);
}

}  // namespace

TEST_F(Monitor1Fit, AllOfItIsSeenAndNoTextIsCut) {
  for (const DisplaySize& display : displays)
    for (double enlarged : {1.0, 1.5}) {
      SCOPED_TRACE(Told(display, enlarged));
      ShowOn(display, enlarged);
      EXPECT_FALSE(Scrolls());
      const QRect seen(QPoint(), Scrolled().viewport()->size());
      for (const Control& control : Monitor1.controls) {
        const QWidget& widget = *WidgetOf(control);
        if (!widget.isVisible()) continue;
        const QPoint corner = widget.mapTo(Scrolled().viewport(), QPoint());
        EXPECT_TRUE(seen.contains(QRect(corner, widget.size()))) << control.name;
        if (!ShowsText(control)) continue;
        EXPECT_GE(widget.width(), widget.minimumSizeHint().width()) << control.name;
        EXPECT_GE(widget.height(), widget.fontMetrics().height()) << control.name;
      }
      Close();
    }
}

// Nine points of a display of 96 dots to the inch are twelve pixels.
TEST_F(Monitor1Fit, TextsCanBeReadAndTheDialsAreLarge) {
  constexpr int leastPixels = 12;
  for (const DisplaySize& display : displays)
    for (double enlarged : {1.0, 1.5}) {
      SCOPED_TRACE(Told(display, enlarged));
      ShowOn(display, enlarged);
      for (const Control& control : Monitor1.controls)
        if (ShowsText(control)) {
          EXPECT_GE(QFontInfo(WidgetOf(control)->font()).pixelSize(), leastPixels) << control.name;
        }
      EXPECT_GE(At(Monitor1, "Dials").canvasHeight, Scrolled().height() * 3 / 8);
      Close();
    }
}

TEST_F(Monitor1Fit, OffsetsSensorsAndFiguresLineUp) {
  for (const DisplaySize& display : displays) {
    SCOPED_TRACE(Told(display, 1));
    ShowOn(display, 1);
    auto left = [](const char* name) {
      return WidgetOf(At(Monitor1, name))->mapTo(Scrolled().viewport(), QPoint()).x();
    };
    for (const char* field : {"Text4", "Text5", "Text6", "Text7", "Text8", "Text9"})
      EXPECT_EQ(left(field), left("Text3")) << field;
    EXPECT_EQ(left("Adv"), left("FuelFlow"));
    EXPECT_EQ(left("Gama"), left("AfrActual"));
    EXPECT_EQ(left("Failed0"), left("Failed5"));
    Close();
  }
}

TEST_F(Monitor1Fit, FollowsTheWindowAndScrollsOnlyBelowItsSmallestTexts) {
  ShowOn({1920, 1080}, 1);
  const int large = QFontInfo(WidgetOf(At(Monitor1, "Adv"))->font()).pixelSize();
  Resize({1024, 768});
  EXPECT_LT(QFontInfo(WidgetOf(At(Monitor1, "Adv"))->font()).pixelSize(), large);
  EXPECT_FALSE(Scrolls());
  Resize({1920, 1080});
  EXPECT_EQ(QFontInfo(WidgetOf(At(Monitor1, "Adv"))->font()).pixelSize(), large);
  Resize({420, 340});
  EXPECT_TRUE(Scrolls());
  PressKey("Alt+9");
  EXPECT_FALSE(WidgetOf(At(Monitor1, "Text9"))->visibleRegion().isEmpty())
      << "the field that is edited is brought into sight";
}

// Whether a calibration is open is told beside what is there already.
TEST_F(Monitor1Fit, NoBinFileOpenMovesNothingOnAWideDisplay) {
  ShowOn({1366, 768}, 1);
  auto places = [] {
    std::vector<QRect> all;
    for (const char* name : {"Dials", "Adv", "Text3", "Failed0", "BinName", "Command1"})
      all.push_back(WidgetOf(At(Monitor1, name))->geometry());
    return all;
  };
  const auto before = places();
  SetVisible(At(Monitor1, "NoBin"), false);
  RunPending();
  EXPECT_EQ(places(), before);
}
