// How screens are laid out on the desktop: nothing is cut, nothing jumps, all of it can be reached.
#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include "platform/contract.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtscreen.h"

namespace {

class LayoutQtTest : public ContractTest {
 protected:
  void TearDown() override {
    QApplication::setFont(font);
    ContractTest::TearDown();
  }

  QWidget& Widget(const std::string& name) { return *WidgetOf(At(screen, name)); }
  void UseFontOf(double pointSize) {
    QFont large = font;
    large.setPointSizeF(pointSize);
    QApplication::setFont(large);
  }
  QScrollArea& Scrolled() {
    return *static_cast<QtScreen*>(screen.native)->page->findChild<QScrollArea*>();
  }

  QFont font = QApplication::font();
  Screen screen{.name = "frmLayout", .title = "Layout", .build = [](Screen& s) {
                  Add(s, {.name = "Group1", .kind = ControlKind::Group, .caption = "Injectors"});
                  for (int row = 0; row < 3; ++row) {
                    std::string number = std::to_string(row);
                    Add(s, {.name = "Label" + number,
                            .caption = "Minimum &Injector Turn-on Time =",
                            .place = {.in = "Group1", .row = row, .column = 0},
                            .labelFor = "Text" + number});
                    Add(s, {.name = "Text" + number,
                            .kind = ControlKind::TextField,
                            .place = {.in = "Group1", .row = row, .column = 1},
                            .widthChars = 6 + row});
                    Add(s, {.name = "Unit" + number,
                            .caption = "ms",
                            .place = {.in = "Group1", .row = row, .column = 2}});
                  }
                  Add(s, {.name = "Row1", .kind = ControlKind::Row});
                  Add(s, Radio("Option1", "&Normal Contrast Monitor Screen (Blue)", "Row1"));
                  Add(s, {.name = "Check1",
                          .kind = ControlKind::CheckBox,
                          .caption = "Show tips at startup",
                          .place = {.in = "Row1"}});
                  Add(s, {.name = "Combo1",
                          .kind = ControlKind::DropDownList,
                          .place = {.in = "Row1"},
                          .items = {"Every", "Every 2nd"}});
                  Add(s, {.name = "Live", .caption = "0", .widthChars = 10, .fontScale = 2});
                  Add(s, {.name = "Help", .caption = "Must Press Enter to Save New Values"});
                  Add(s, Button("Command1", "&TPS Parameters"));
                }};
};

const char* const WithText[] = {"Label0", "Unit2", "Option1", "Check1",
                                "Combo1", "Help",  "Live",    "Command1"};

TEST_F(LayoutQtTest, NoTextIsCutWhateverTheFont) {
  for (double size : {8.0, 10.0, 16.0, 24.0}) {
    UseFontOf(size);
    ShowScreen(screen);
    for (const char* name : WithText) {
      QWidget& widget = Widget(name);
      QSize text = widget.fontMetrics().size(Qt::TextShowMnemonic | Qt::TextSingleLine,
                                             FromQt(ShownOn(At(screen, name))).c_str());
      EXPECT_GE(widget.width(), text.width()) << name << " at " << size;
      EXPECT_GE(widget.height(), text.height()) << name << " at " << size;
    }
    UnloadScreen(screen);
    RunPending();
  }
}

TEST_F(LayoutQtTest, FieldsOfAGroupBeginAtOneEdgeAndUnitsBehindThem) {
  ShowScreen(screen);
  EXPECT_EQ(Widget("Text0").x(), Widget("Text2").x());
  EXPECT_EQ(Widget("Label0").x(), Widget("Label2").x());
  EXPECT_EQ(Widget("Unit0").x(), Widget("Unit2").x());
  EXPECT_GE(Widget("Unit2").x(), Widget("Text2").geometry().right());
}

TEST_F(LayoutQtTest, FieldHasRoomForItsDigits) {
  ShowScreen(screen);
  QWidget& field = Widget("Text0");
  int digits = field.fontMetrics().horizontalAdvance("000000");
  EXPECT_GE(field.width(), digits + 6);
  EXPECT_LT(field.width(), digits * 2);
  EXPECT_GT(Widget("Text2").width(), field.width());
}

TEST_F(LayoutQtTest, WhatDoesNotFitIsReachedByScrolling) {
  ShowScreen(screen);
  FrameWindow()->resize(220, 180);
  RunPending();
  EXPECT_GT(Scrolled().horizontalScrollBar()->maximum(), 0);
  EXPECT_GT(Scrolled().verticalScrollBar()->maximum(), 0);
  EXPECT_TRUE(Widget("Command1").visibleRegion().isEmpty());
  SetFocus(At(screen, "Command1"));
  RunPending();
  EXPECT_FALSE(Widget("Command1").visibleRegion().isEmpty()) << "the focus is brought into sight";
}

TEST_F(LayoutQtTest, FrameGrowsUntilTheWorkFits) {
  FrameWindow()->resize(220, 180);
  ShowScreen(screen);
  RunPending();
  EXPECT_EQ(Scrolled().horizontalScrollBar()->maximum(), 0);
  EXPECT_EQ(Scrolled().verticalScrollBar()->maximum(), 0);
  QRect desktop = FrameWindow()->screen()->availableGeometry();
  EXPECT_TRUE(desktop.contains(FrameWindow()->frameGeometry()));
}

TEST_F(LayoutQtTest, FrameDoesNotOutgrowTheDesktop) {
  UseFontOf(40);
  ShowScreen(screen);
  RunPending();
  QSize desktop = FrameWindow()->screen()->availableGeometry().size();
  EXPECT_LE(FrameWindow()->width(), desktop.width());
  EXPECT_LE(FrameWindow()->height(), desktop.height());
}

TEST_F(LayoutQtTest, LargeFrameIsLeftAsItIs) {
  FrameWindow()->resize(700, 600);
  ShowScreen(screen);
  EXPECT_EQ(FrameWindow()->size(), QSize(700, 600));
}

TEST_F(LayoutQtTest, ContentStandsInTheMiddleOfALargeFrame) {
  FrameWindow()->resize(780, 700);
  ShowScreen(screen);
  RunPending();
  QWidget* root = static_cast<QtScreen*>(screen.native)->root;
  int left = root->mapTo(Scrolled().viewport(), QPoint()).x();
  int right = Scrolled().viewport()->width() - left - root->width();
  EXPECT_LE(std::abs(left - right), 1);
  EXPECT_GT(left, 20);
}

// Counts how often the layout of a widget is asked to run again.
class LayoutCounter : public QObject {
 public:
  bool eventFilter(QObject*, QEvent* event) override {
    count += event->type() == QEvent::LayoutRequest;
    return false;
  }
  int count = 0;
};

TEST_F(LayoutQtTest, ChangingALabelOfFixedWidthMovesNothing) {
  screen.build = [](Screen& s) {
    Add(s, {.name = "Live", .caption = "0", .widthChars = 10, .fontScale = 2});
    Add(s, Button("Command1", "Stop"));
  };
  ShowScreen(screen);
  RunPending();
  LayoutCounter counter;
  qApp->installEventFilter(&counter);
  QRect before = Widget("Live").geometry();
  for (int value = 0; value < 100; ++value) {
    SetCaption(At(screen, "Live"), std::to_string(value * 7.25));
    RunPending();
  }
  EXPECT_EQ(counter.count, 0);
  EXPECT_EQ(Widget("Live").geometry(), before);
  EXPECT_EQ(ShownText(screen, "Live"), "717.750000");
}

TEST_F(LayoutQtTest, LabelWhoseTextOutgrowsItsWidthGrows) {
  ShowScreen(screen);
  RunPending();
  int before = Widget("Live").width();
  SetCaption(At(screen, "Live"), "CLOSED LOOP OF THE EXHAUST GAS SENSOR");
  RunPending();
  EXPECT_GT(Widget("Live").width(), before);
}

TEST_F(LayoutQtTest, HiddenControlsLeaveNoGap) {
  ShowScreen(screen);
  RunPending();
  int before = Widget("Command1").y();
  SetVisible(At(screen, "Group1"), false);
  RunPending();
  EXPECT_LT(static_cast<QtScreen*>(screen.native)->root->sizeHint().height(), before);
}

TEST_F(LayoutQtTest, TitleOfAWorkScreenStandsAboveIt) {
  ShowScreen(screen);
  QWidget* page = static_cast<QtScreen*>(screen.native)->page;
  EXPECT_TRUE(page->isVisible());
  SetScreenTitle(screen, "Other");
  RunPending();
  EXPECT_TRUE(FrameWindow()->isVisible());
  EXPECT_EQ(ToQt("Other"), TitleShownOn(screen));
}

TEST_F(LayoutQtTest, ControlsCarryTheirNameAndAnAccessibleName) {
  ShowScreen(screen);
  EXPECT_EQ(Widget("Text1").objectName(), "Text1");
  EXPECT_EQ(Widget("Text1").accessibleName(), "Minimum Injector Turn-on Time =");
  EXPECT_EQ(Widget("Command1").accessibleName(), "TPS Parameters");
  EXPECT_EQ(Widget("Option1").accessibleName(), "Normal Contrast Monitor Screen (Blue)");
}

TEST_F(LayoutQtTest, ScreenReadersAreToldCaptionsAsTextsAndFieldsByTheirCaption) {
  ShowScreen(screen);
  auto* label = QAccessible::queryAccessibleInterface(&Widget("Label0"));
  EXPECT_EQ(label->role(), QAccessible::StaticText);
  EXPECT_EQ(label->text(QAccessible::Name), "Minimum Injector Turn-on Time =");
  auto* field = QAccessible::queryAccessibleInterface(&Widget("Text0"));
  EXPECT_EQ(field->role(), QAccessible::EditableText);
  EXPECT_EQ(field->text(QAccessible::Name), "Minimum Injector Turn-on Time =");
}

TEST_F(LayoutQtTest, CanvasTakesTheRoomThatIsLeft) {
  screen.build = [](Screen& s) {
    Add(s, Button("Command1", "<< Back"));
    Add(s, {.name = "Canvas1", .kind = ControlKind::Canvas, .minWidth = 80, .minHeight = 60});
  };
  FrameWindow()->resize(700, 600);
  ShowScreen(screen);
  EXPECT_GT(At(screen, "Canvas1").canvasWidth, 600);
  EXPECT_GT(At(screen, "Canvas1").canvasHeight, 400);
  int told = 0;
  screen.on.resized = [&](Screen&, Control&) { ++told; };
  FrameWindow()->resize(500, 400);
  RunPending();
  EXPECT_GE(told, 1);
  EXPECT_LT(At(screen, "Canvas1").canvasWidth, 500);
}

}  // namespace
