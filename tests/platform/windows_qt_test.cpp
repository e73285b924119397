// The frame and the windows around it on the desktop.
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTest>

#include "platform/contract.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtmenus.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtwidgets.h"

namespace {

class WindowsQtTest : public ContractTest {
 protected:
  static QMainWindow& Window() { return *static_cast<QMainWindow*>(FrameWindow()); }
  static QWidget& WindowOf(Screen& screen) {
    return *static_cast<QtScreen*>(screen.native)->window;
  }
  // A turn of the queue, without what the desktop has to tell.
  static void LetTurnRun() { QCoreApplication::sendPostedEvents(); }
  static Screen Small(std::string name, ScreenPlacement placement) {
    return {
        .name = std::move(name), .title = "Small", .placement = placement, .build = [](Screen& s) {
          Add(s, TextField("Text1"));
          Add(s, Button("Command1", "Close"));
        }};
  }

  Screen work = Small("frmWork", ScreenPlacement::Work);
  Screen above = Small("Monitor3", ScreenPlacement::Above);
  Screen child = Small("SData1", ScreenPlacement::Child);
  Screen dialog = Small("frmTip", ScreenPlacement::Dialog);
};

TEST_F(WindowsQtTest, FrameStandsWhereTheRecordSays) {
  Frame placed{.name = "frmMain", .left = 1500, .top = 900, .width = 7500, .height = 6000};
  ShowFrame(placed);
  RunPending();
  EXPECT_EQ(Window().pos(), QPoint(100, 60));
  EXPECT_EQ(Window().size(), QSize(500, 400));
  Window().move(120, 80);
  Window().resize(520, 440);
  ReadFramePlace(placed);
  EXPECT_EQ(placed.left, 1800);
  EXPECT_EQ(placed.top, 1200);
  EXPECT_EQ(placed.width, 7800);
  EXPECT_EQ(placed.height, 6600);
  EXPECT_FALSE(placed.minimised);
  CloseFrame(placed);
}

TEST_F(WindowsQtTest, FrameSavedOnAnotherDesktopCanBeReached) {
  Frame placed{.name = "frmMain", .left = 90000, .top = -5000, .width = 90000, .height = 90000};
  ShowFrame(placed);
  RunPending();
  QRect desktop = Window().screen()->availableGeometry();
  EXPECT_LT(Window().x(), desktop.right() - 50);
  EXPECT_GE(Window().y(), desktop.top());
  EXPECT_LE(Window().width(), desktop.width());
  EXPECT_LE(Window().height(), desktop.height());
  CloseFrame(placed);
}

TEST_F(WindowsQtTest, MaximisedFrameRemembersItsRestoredPlace) {
  Frame placed{.name = "frmMain",
               .left = 1500,
               .top = 900,
               .width = 7500,
               .height = 6000,
               .maximised = true};
  ShowFrame(placed);
  RunPending();
  EXPECT_TRUE(Window().isMaximized());
  placed.maximised = false;
  ReadFramePlace(placed);
  EXPECT_TRUE(placed.maximised);
  EXPECT_EQ(placed.width, 7500);
  EXPECT_EQ(placed.height, 6000);
  Window().showNormal();
  CloseFrame(placed);
}

TEST_F(WindowsQtTest, KeyOfAMenuEntryStandsInAColumn) {
  frame.menus = {
      {.name = "mnuFile",
       .caption = "&File",
       .items = {{.name = "mnuFileSave", .caption = "&Save Bin/S19 File                Ctrl+S"},
                 {.name = "mnuOther", .caption = "Press  Ctrl+S"},
                 {.name = "mnuPlain", .caption = "&Main Menu"}}},
      {.name = "mnuname",
       .caption = "                Brantwell Engine Controls         EDIT MODE"}};
  ShowFrame(frame);
  EXPECT_EQ(ActionOf(*FindMenu(frame, "mnuFileSave"))->text(), "&Save Bin/S19 File\tCtrl+S");
  EXPECT_EQ(ActionOf(*FindMenu(frame, "mnuOther"))->text(), "Press  Ctrl+S");
  EXPECT_EQ(ActionOf(*FindMenu(frame, "mnuPlain"))->text(), "&Main Menu");
  QAction* inert = ActionOf(*FindMenu(frame, "mnuname"));
  EXPECT_FALSE(inert->isEnabled());
  EXPECT_EQ(inert->text(), "                Brantwell Engine Controls         EDIT MODE");
  SetMenuCaption(frame, "mnuname", "ONFLY MODE");
  EXPECT_EQ(inert->text(), "ONFLY MODE");
  EXPECT_TRUE(ActionOf(*FindMenu(frame, "mnuFileSave"))->shortcut().isEmpty());
}

TEST_F(WindowsQtTest, LineOfTheMenuBarStaysInSightInANarrowWindow) {
  const std::string line = "                Brantwell Engine Controls         MONITOR MODE";
  frame.menus = {{.name = "mnuFile", .caption = "&File", .items = {{.name = "mnuOpen"}}},
                 {.name = "mnuTools", .caption = "&Tools", .items = {{.name = "mnuMemo"}}},
                 {.name = "mnuname", .caption = "EDIT MODE"}};
  ShowFrame(frame);
  SetMenuCaption(frame, "mnuname", line);
  QMenuBar& bar = *Window().menuBar();
  QAction& shown = *ActionOf(*FindMenu(frame, "mnuname"));
  const int asGiven = WidthOfMenus(bar);
  const int blank = bar.fontMetrics().horizontalAdvance(' ');
  for (int missing : {0, 3 * blank, 8 * blank, 15 * blank}) {
    Window().resize(asGiven - missing, 400);
    RunPending();
    EXPECT_EQ(WidthOfMenus(bar), asGiven);
    EXPECT_EQ(shown.text() == ToQt(line), missing == 0) << missing;
    EXPECT_EQ(shown.text().simplified(), "Brantwell Engine Controls MONITOR MODE");
    QRect place = bar.actionGeometry(&shown);
    EXPECT_FALSE(place.isEmpty()) << missing;
    EXPECT_LE(place.right(), bar.width()) << missing;
    EXPECT_EQ(FindMenu(frame, "mnuname")->caption, line);
  }
  Window().resize(asGiven + 50, 400);
  RunPending();
  EXPECT_EQ(shown.text(), ToQt(line));
}

TEST_F(WindowsQtTest, MenusAreFilledWhenTheyAreOpened) {
  frame.menus = {{.name = "mnuFile",
                  .caption = "&File",
                  .items = {{.name = "mnuOpen", .caption = "Open", .click = [] {}}}}};
  ShowFrame(frame);
  QMenu* menu = Window().menuBar()->actions().front()->menu();
  EXPECT_EQ(menu->actions().size(), 0);
  SetMenuEnabled(frame, "mnuOpen", false);
  menu->popup({});
  ASSERT_EQ(menu->actions().size(), 1);
  EXPECT_FALSE(menu->actions().front()->isEnabled());
  menu->close();
}

TEST_F(WindowsQtTest, StatusPanelsAreAsWideAsTheirContent) {
  SetStatusPanel(frame, 0, " ALT + _Letter = Local HOT KEYS [F1 = HELP] ");
  SetStatusPanel(frame, 1, "1");
  SetStatusPointSize(frame, 14);
  RunPending();
  QList<QWidget*> panels;
  for (QObject* part : Window().statusBar()->children())
    if (auto* panel = dynamic_cast<Caption*>(part)) panels << panel;
  ASSERT_EQ(panels.size(), 2);
  EXPECT_EQ(panels[0]->font().pointSizeF(), 14);
  EXPECT_GE(panels[0]->width(), panels[0]->fontMetrics().horizontalAdvance(
                                    " ALT + _Letter = Local HOT KEYS [F1 = HELP] "));
  EXPECT_LT(panels[1]->width(), 60);
  EXPECT_GT(panels[1]->x(), panels[0]->x());
}

TEST_F(WindowsQtTest, ScreenAboveStaysOnTopAndGivesTheKeysBack) {
  ShowScreen(work);
  ShowScreen(above);
  RunPending();
  EXPECT_TRUE(WindowOf(above).isWindow());
  EXPECT_TRUE(WindowOf(above).windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  EXPECT_TRUE(WindowOf(above).isActiveWindow());
  ActivateScreen(work);
  RunPending();
  EXPECT_TRUE(WindowOf(above).isVisible());
  EXPECT_TRUE(Window().isActiveWindow());
  EXPECT_EQ(ActiveScreen(), &work);
}

TEST_F(WindowsQtTest, UserWhoSwitchesRightAfterAWindowCameUpHasTheKeysThere) {
  ShowScreen(work);
  ShowScreen(above);
  RunPending();
  EXPECT_EQ(ActiveScreen(), &above);
  Window().activateWindow();  // as the window manager does for the user
  RunPending();
  EXPECT_EQ(ActiveScreen(), &work);
  PressKey("7");
  EXPECT_EQ(ShownText(work, "Text1"), "7");
  EXPECT_EQ(ShownText(above, "Text1"), "");
}

TEST_F(WindowsQtTest, KeysReturnWhenTheWindowManagerTakesThemForANewWindow) {
  ShowScreen(work);
  RunPending();
  ShowScreen(above);
  ActivateScreen(work);
  WindowOf(above).activateWindow();
  RunPending();
  EXPECT_EQ(ActiveScreen(), &work);
  EXPECT_TRUE(Window().isActiveWindow());
}

// Counts how often a window gets the keys.
class Activations : public QObject {
 public:
  explicit Activations(QWidget& window) { window.installEventFilter(this); }
  int count = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::WindowActivate) ++count;
    return false;
  }
};

TEST_F(WindowsQtTest, OnlyTheLastWindowThatARoutineGivesTheKeysToIsAskedFor) {
  ShowScreen(work);
  ShowScreen(above);
  ActivateScreen(work);
  RunPending();
  ASSERT_TRUE(Window().isActiveWindow());
  Activations ofAbove(WindowOf(above));
  ActivateScreen(above);
  ActivateScreen(work);
  RunPending();
  EXPECT_EQ(ofAbove.count, 0);
  EXPECT_TRUE(Window().isActiveWindow());
  ActivateScreen(above);
  RunPending();
  EXPECT_EQ(ofAbove.count, 1);
}

TEST_F(WindowsQtTest, WindowAskedForLaterHasTheKeysAlthoughItStillHadThem) {
  ShowScreen(work);
  RunPending();
  ShowScreen(above);
  LetTurnRun();
  ActivateScreen(work);
  LetTurnRun();
  ASSERT_TRUE(Window().isActiveWindow()) << "the desktop has not answered yet";
  RunPending();
  EXPECT_TRUE(Window().isActiveWindow());
  EXPECT_EQ(ActiveScreen(), &work);
}

TEST_F(WindowsQtTest, UserWhoClicksAWindowThatHasJustComeUpHasTheKeysThere) {
  ShowScreen(work);
  RunPending();
  ShowScreen(above);
  ActivateScreen(work);
  ClickOn(above, "Text1");
  WindowOf(above).activateWindow();  // as the window manager does for the click
  RunPending();
  EXPECT_EQ(ActiveScreen(), &above);
  EXPECT_TRUE(WindowOf(above).isActiveWindow());
}

TEST_F(WindowsQtTest, WindowThatHasGivenTheKeysBackKeepsThemWhenTheUserGoesToIt) {
  ShowScreen(work);
  RunPending();
  ShowScreen(above);
  ActivateScreen(work);
  RunPending();
  EXPECT_EQ(ActiveScreen(), &work);
  WindowOf(above).activateWindow();
  RunPending();
  WindowOf(above).activateWindow();
  RunPending();
  EXPECT_EQ(ActiveScreen(), &above);
  EXPECT_TRUE(WindowOf(above).isActiveWindow());
}

TEST_F(WindowsQtTest, ScreenAboveKeepsItsPlaceInTheRecord) {
  above.left = 1500;
  above.top = 750;
  ShowScreen(above);
  RunPending();
  EXPECT_EQ(WindowOf(above).pos(), QPoint(100, 50));
  WindowOf(above).move(200, 60);
  RunPending();
  EXPECT_EQ(above.left, 3000);
  EXPECT_EQ(above.top, 900);
}

TEST_F(WindowsQtTest, PlaceLeftOfTheFirstDisplayIsAPlace) {
  above.left = -1500;
  above.top = -600;
  ShowScreen(above);
  RunPending();
  EXPECT_EQ(WindowOf(above).pos(), QPoint(0, 0)) << "as near as this desktop reaches";
}

TEST_F(WindowsQtTest, ChildIsMovedByItsTitleBarAndStaysWithinReach) {
  child.left = 300;
  child.top = 450;
  ShowScreen(work);
  ShowScreen(child);
  RunPending();
  QWidget& window = WindowOf(child);
  EXPECT_FALSE(window.isWindow());
  EXPECT_EQ(window.pos(), QPoint(20, 30));
  QPoint grip = window.mapTo(FrameWindow(), QPoint(30, 8));
  QTest::mousePress(FrameWindow()->windowHandle(), Qt::LeftButton, {}, grip);
  QTest::mouseMove(FrameWindow()->windowHandle(), grip + QPoint(40, 20));
  QTest::mouseRelease(FrameWindow()->windowHandle(), Qt::LeftButton, {}, grip + QPoint(40, 20));
  RunPending();
  EXPECT_EQ(window.pos(), QPoint(60, 50));
  EXPECT_EQ(child.left, 900);
  EXPECT_EQ(child.top, 750);
  grip += QPoint(40, 20);
  QTest::mousePress(FrameWindow()->windowHandle(), Qt::LeftButton, {}, grip);
  QTest::mouseMove(FrameWindow()->windowHandle(), QPoint(5, -300));
  QTest::mouseRelease(FrameWindow()->windowHandle(), Qt::LeftButton, {}, QPoint(5, -300));
  RunPending();
  EXPECT_GE(window.y(), 0);
  EXPECT_GT(window.x() + window.width(), 20);
}

TEST_F(WindowsQtTest, ChildHasTheSizeOfItsRecord) {
  child.width = 4500;
  child.height = 3000;
  ShowScreen(child);
  EXPECT_EQ(WindowOf(child).size(), QSize(300, 200));
}

TEST_F(WindowsQtTest, DialogStandsInFrontAndShowsAllOfItself) {
  ShowScreen(work);
  ShowScreen(dialog);
  RunPending();
  QWidget& window = WindowOf(dialog);
  EXPECT_EQ(window.windowModality(), Qt::ApplicationModal);
  EXPECT_EQ(QApplication::activeModalWidget(), &window);
  EXPECT_EQ(window.windowTitle(), "Small");
  QWidget& button = *WidgetOf(At(dialog, "Command1"));
  EXPECT_EQ(button.visibleRegion().boundingRect().size(), button.size());
  UnloadScreen(dialog);
  RunPending();
  EXPECT_TRUE(Window().isActiveWindow());
}

TEST_F(WindowsQtTest, LastWorkScreenShownFillsTheMiddle) {
  Screen other = Small("frmOther", ScreenPlacement::Work);
  ShowScreen(work);
  ShowScreen(other);
  EXPECT_FALSE(ShownVisible(work, "Text1"));
  EXPECT_TRUE(ShownVisible(other, "Text1"));
  UnloadScreen(other);
  EXPECT_TRUE(ShownVisible(work, "Text1"));
  UnloadScreen(work);
  RunPending();
  EXPECT_TRUE(Window().isVisible());
}

TEST_F(WindowsQtTest, TwipsAndPixels) {
  EXPECT_EQ(PixelsOfTwips(6500), 433);
  EXPECT_EQ(PixelsOfTwips(15), 1);
  EXPECT_EQ(TwipsOfPixels(96), 1440);
}

}  // namespace
