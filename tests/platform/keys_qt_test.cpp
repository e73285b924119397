// Keys and mouse on the way through the toolkit: menus, lists that are open, input methods, refused
// presses.
#include <QApplication>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QStyle>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>

#include "platform/contract.h"
#include "platform/dialogs.h"
#include "platform/loop.h"
#include "platform/native.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtscreen.h"

namespace {

class KeysQtTest : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    KeepJournal(screen, journal);
  }
  void Show() {
    ShowScreen(screen);
    RunPending();
    Told();
  }
  QLineEdit& Line(const char* name) { return *static_cast<QLineEdit*>(WidgetOf(At(screen, name))); }
  static QWindow* FrameHandle() { return FrameWindow()->windowHandle(); }

  Screen screen{.name = "frmKeys", .build = [](Screen& s) {
                  Add(s, {.name = "Label2", .caption = "&Offset =", .labelFor = "Text2"});
                  Add(s, TextField("Text1"));
                  Add(s, TextField("Text2"));
                  Add(s, {.name = "Combo1",
                          .kind = ControlKind::DropDownList,
                          .items = {"ALT", "SIM", "BOTH"},
                          .listIndex = 0});
                  Add(s, Button("Command1", "&Go"));
                }};
};

TEST_F(KeysQtTest, KeyThatIsHeldRepeats) {
  Show();
  for (bool repeat : {false, true, true})
    QTest::simulateEvent(FrameHandle(), true, Qt::Key_7, {}, "7", repeat);
  QTest::simulateEvent(FrameHandle(), false, Qt::Key_7, {}, "7", false);
  EXPECT_EQ(ShownText(screen, "Text1"), "777");
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "up 55"), 1);
}

TEST_F(KeysQtTest, ComposedCharactersComeAsKeyPresses) {
  screen.on.keyPress = [](Screen&, Control&, KeyPress& press) {
    if (press.character == 'x') press.character = 0;
  };
  KeepJournal(screen, journal);
  Show();
  QInputMethodEvent composed;
  composed.setCommitString("1x\u00e9");
  QCoreApplication::sendEvent(&Line("Text1"), &composed);
  EXPECT_EQ(ShownText(screen, "Text1"), "1\u00e9");
}

TEST_F(KeysQtTest, DecimalKeyOfAKeypadTypesAPoint) {
  Show();
  auto press = [](Qt::Key key, Qt::KeyboardModifiers held, const char* text) {
    for (bool down : {true, false})
      QTest::simulateEvent(FrameHandle(), down, key, held, text, false);
  };
  press(Qt::Key_1, Qt::KeypadModifier, "1");
  press(Qt::Key_Comma, Qt::KeypadModifier, ",");
  press(Qt::Key_5, Qt::KeypadModifier, "5");
  press(Qt::Key_Comma, {}, ",");
  EXPECT_EQ(ShownText(screen, "Text1"), "1.5,");
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "press Text1 46"), 1);
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "press Text1 44"), 1);
}

TEST_F(KeysQtTest, SelectionCountsBytesOfTheText) {
  Show();
  SetText(At(screen, "Text1"), "\u00b0\u00b0C");
  SelectText(At(screen, "Text1"), 2, 2);
  RunPending();
  EXPECT_EQ(Line("Text1").selectedText(), "\u00b0");
  EXPECT_EQ(Line("Text1").selectionStart(), 1);
  PressKey("Right");
  EXPECT_EQ(At(screen, "Text1").selStart, 4);
}

TEST_F(KeysQtTest, MarkedLettersAreAlwaysUnderlined) {
  EXPECT_EQ(QApplication::style()->styleHint(QStyle::SH_UnderlineShortcut), 1);
}

TEST_F(KeysQtTest, AltLetterThatOnlyAMenuHasOpensIt) {
  frame.menus = {{.name = "mnuFile",
                  .caption = "&File",
                  .items = {{.name = "mnuFileOpen", .caption = "&Open", .click = [] {}}}}};
  ShowFrame(frame);
  Show();
  PressKey("Alt+F");
  EXPECT_EQ(TakePopUpMenu(), "mnuFile");
}

TEST_F(KeysQtTest, KeysOfAnOpenMenuAreTheMenus) {
  int opened = 0;
  frame.menus = {
      {.name = "mnuFile",
       .caption = "&File",
       .items = {{.name = "mnuFileOpen", .caption = "&Open", .click = [&] { ++opened; }}}}};
  ShowFrame(frame);
  Show();
  PopUpMenu(frame, "mnuFile");
  QCoreApplication::processEvents();
  QWidget* menu = QApplication::activePopupWidget();
  ASSERT_TRUE(menu);
  QTest::keyClick(menu, Qt::Key_O);
  EXPECT_EQ(opened, 1);
  EXPECT_EQ(journal, Journal{}) << "the screen has seen nothing of it";
}

TEST_F(KeysQtTest, KeysOfAnOpenListAreTheLists) {
  Show();
  SetFocus(At(screen, "Combo1"));
  Told();
  auto& list = *static_cast<QComboBox*>(WidgetOf(At(screen, "Combo1")));
  list.showPopup();
  QWidget* popUp = QApplication::activePopupWidget();
  ASSERT_TRUE(popUp);
  QTest::keyClick(popUp->focusWidget() ? popUp->focusWidget() : popUp, Qt::Key_Down);
  QTest::keyClick(popUp->focusWidget() ? popUp->focusWidget() : popUp, Qt::Key_Return);
  RunPending();
  EXPECT_EQ(Told(), Journal{"click Combo1"});
  EXPECT_EQ(At(screen, "Combo1").listIndex, 1);
  EXPECT_EQ(FrameWindow()->focusWidget(), &list);
}

TEST_F(KeysQtTest, EscInAnOpenListOnlyClosesIt) {
  screen.cancelButton = "Command1";
  Show();
  auto& list = *static_cast<QComboBox*>(WidgetOf(At(screen, "Combo1")));
  SetFocus(At(screen, "Combo1"));
  Told();
  list.showPopup();
  QWidget* popUp = QApplication::activePopupWidget();
  ASSERT_TRUE(popUp);
  QTest::keyClick(popUp->focusWidget() ? popUp->focusWidget() : popUp, Qt::Key_Escape);
  RunPending();
  EXPECT_FALSE(QApplication::activePopupWidget());
  EXPECT_EQ(Told(), Journal{});
}

TEST_F(KeysQtTest, OpeningAListOrLosingTheWindowIsNoFocusEvent) {
  Show();
  SetFocus(At(screen, "Combo1"));
  Told();
  auto& list = *static_cast<QComboBox*>(WidgetOf(At(screen, "Combo1")));
  list.showPopup();
  RunPending();
  list.hidePopup();
  QWidget other;
  other.show();
  other.activateWindow();
  RunPending();
  EXPECT_FALSE(FrameWindow()->isActiveWindow());
  FrameWindow()->activateWindow();
  RunPending();
  EXPECT_EQ(Told(), Journal{});
  EXPECT_EQ(ShownFocus(), "Combo1");
}

TEST_F(KeysQtTest, PressInARefusedFieldLeavesTheRightOneWithItsSelection) {
  screen.on.gotFocus = [](Screen& s, Control& control) {
    if (control.name == "Text1")
      SelectText(control, 0, static_cast<int>(control.text.size()));
    else
      SetFocus(At(s, "Text1"));
  };
  Show();
  SetText(At(screen, "Text1"), "12.5");
  SetText(At(screen, "Text2"), "7");
  ClickOn(screen, "Text2");
  RunPending();
  EXPECT_EQ(ShownFocus(), "Text1");
  EXPECT_TRUE(Line("Text1").hasFocus());
  EXPECT_EQ(Line("Text1").selectedText(), "12.5");
  EXPECT_FALSE(Line("Text2").hasSelectedText());
  ClickOn(screen, "Command1");
  EXPECT_EQ(std::count(journal.begin(), journal.end(), "click Command1"), 0);
}

TEST_F(KeysQtTest, SelectionOfAClickSurvivesAHandThatShakes) {
  screen.on.gotFocus = [](Screen&, Control& control) {
    SelectText(control, 0, static_cast<int>(control.text.size()));
  };
  Show();
  SetText(At(screen, "Text2"), "123456");
  RunPending();
  QPoint at = Line("Text2").mapTo(FrameWindow(), QPoint(20, 8));
  QTest::mousePress(FrameHandle(), Qt::LeftButton, {}, at);
  RunPending();
  QTest::mouseMove(FrameHandle(), at + QPoint(9, 0));
  RunPending();
  QTest::mouseRelease(FrameHandle(), Qt::LeftButton, {}, at + QPoint(9, 0));
  RunPending();
  EXPECT_EQ(Line("Text2").selectedText(), "123456");
}

TEST_F(KeysQtTest, WheelOverAListChangesNothing) {
  Show();
  SetFocus(At(screen, "Combo1"));
  Told();
  QWidget& list = *WidgetOf(At(screen, "Combo1"));
  QWheelEvent wheel(list.rect().center(), list.mapToGlobal(list.rect().center()), {}, {0, -120},
                    Qt::NoButton, {}, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&list, &wheel);
  EXPECT_EQ(Told(), Journal{});
  EXPECT_EQ(At(screen, "Combo1").listIndex, 0);
}

TEST_F(KeysQtTest, DownInAListIsToldFirstAndThenChooses) {
  Show();
  SetFocus(At(screen, "Combo1"));
  Told();
  PressKey("Down");
  EXPECT_EQ(Told(), (Journal{"down 259", "down Combo1 259", "click Combo1", "up 259"}));
  EXPECT_EQ(ShownText(screen, "Combo1"), "SIM");
}

TEST_F(KeysQtTest, KeysWhileABoxIsOpenAreTheBoxs) {
  Show();
  RunSoon([] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_7); });
  MsgBox("wait");
  TakeBox();
  EXPECT_EQ(journal, Journal{});
}

TEST_F(KeysQtTest, ScreenUnloadedByItsButtonIsDeletedWhenTheClickIsOver) {
  QPointer<QWidget> page;
  screen.on.click = [&](Screen& s, Control&) {
    page = static_cast<QtScreen*>(s.native)->page;
    UnloadScreen(s);
  };
  Show();
  ClickOn(screen, "Command1");
  EXPECT_FALSE(screen.loaded);
  RunPending();
  EXPECT_TRUE(page.isNull());
}

TEST_F(KeysQtTest, ScreenUnloadedInsideAYieldOfItsClickLivesUntilTheClickIsOver) {
  QPointer<QWidget> page;
  bool alive = false;
  screen.on.click = [&](Screen& s, Control&) {
    page = static_cast<QtScreen*>(s.native)->page;
    UnloadScreen(s);
    for (int pass = 0; pass < 100; ++pass) Yield();
    alive = !page.isNull();
  };
  Show();
  ClickOn(screen, "Command1");
  RunPending();
  EXPECT_TRUE(alive) << "its click handler was still on the stack";
  EXPECT_TRUE(page.isNull());
}

}  // namespace
