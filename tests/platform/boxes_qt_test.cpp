// Boxes on the desktop as the user sees and leaves them.
#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include "platform/contract.h"
#include "platform/dialogs.h"
#include "platform/failure.h"
#include "platform/loop.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtframe.h"
#include "support/testfolder.h"

namespace {

// Runs a routine on the box that opens next, ahead of the test user's answer.
template <typename Routine>
void OnNextBox(Routine routine) {
  RunSoon([routine] { routine(*QApplication::activeModalWidget()); });
}

class BoxesQtTest : public ContractTest {
 protected:
  Answer LeaveWith(Qt::Key key, Buttons buttons) {
    OnNextBox([key](QWidget& box) { QTest::keyClick(&box, key); });
    Answer answer = MsgBox("text", buttons);
    TakeBox();
    return answer;
  }
};

TEST_F(BoxesQtTest, BreaksAndLeadingBlanksAreShownAsGiven) {
  QString shown;
  QString title;
  OnNextBox([&](QWidget& box) {
    shown = static_cast<QMessageBox&>(box).text();
    title = box.windowTitle();
    EXPECT_EQ(static_cast<QMessageBox&>(box).textFormat(), Qt::PlainText);
    QLabel* label = box.findChild<QLabel*>("qt_msgbox_label");
    ASSERT_TRUE(label);
    EXPECT_GE(label->width(),
              label->fontMetrics().horizontalAdvance("                <b>(3 to 30ms)"));
    EXPECT_GE(label->height(), label->fontMetrics().lineSpacing() * 4);
  });
  MsgBox("Data Input Error\n\r\n\r                <b>(3 to 30ms)\r\nSystem\rlast");
  EXPECT_EQ(shown, "Data Input Error\n\n                <b>(3 to 30ms)\nSystem\nlast");
  EXPECT_EQ(title, "Halvane2") << "a box without a title of its own has the program's";
  EXPECT_EQ(TakeBox().title, "");
}

TEST_F(BoxesQtTest, EscAnswersTheMildest) {
  EXPECT_EQ(LeaveWith(Qt::Key_Escape, Buttons::Ok), Answer::Ok);
  EXPECT_EQ(LeaveWith(Qt::Key_Escape, Buttons::OkCancel), Answer::Cancel);
  EXPECT_EQ(LeaveWith(Qt::Key_Escape, Buttons::YesNo), Answer::No);
  EXPECT_EQ(LeaveWith(Qt::Key_Escape, Buttons::YesNoCancel), Answer::Cancel);
}

TEST_F(BoxesQtTest, EnterPressesTheFirstButton) {
  EXPECT_EQ(LeaveWith(Qt::Key_Return, Buttons::Ok), Answer::Ok);
  EXPECT_EQ(LeaveWith(Qt::Key_Return, Buttons::YesNo), Answer::Yes);
  EXPECT_EQ(LeaveWith(Qt::Key_Return, Buttons::YesNoCancel), Answer::Yes);
}

struct HeldKey {
  Qt::Key key;
  QString text;
  Qt::KeyboardModifiers with = {};
};

// To where the box has the keys, and nothing of the queue runs meanwhile. Result: whether somebody
// took the event.
bool Send(QWidget& box, const HeldKey& held, bool repeats, QEvent::Type type = QEvent::KeyPress) {
  QKeyEvent event(type, held.key, held.with, held.text, repeats);
  event.ignore();
  QCoreApplication::sendEvent(box.focusWidget(), &event);
  return event.isAccepted();
}

const HeldKey enter{Qt::Key_Return, "\r"};
const HeldKey escape{Qt::Key_Escape, "\x1b"};
const HeldKey blank{Qt::Key_Space, " "};

// It was pressed for the screen that has opened the box.
TEST_F(BoxesQtTest, KeyThatIsHeldDownAnswersNothing) {
  for (const HeldKey& held : {escape, enter, blank}) {
    bool stays = false;
    OnNextBox([&](QWidget& box) {
      for (int i = 0; i < 3; ++i) Send(box, held, true);
      stays = box.isVisible();
      Send(box, enter, false);
    });
    EXPECT_EQ(MsgBox("Do you wish to save?", Buttons::YesNo), Answer::Yes) << held.key;
    EXPECT_TRUE(stays) << held.key;
    TakeBox();
  }
}

TEST_F(BoxesQtTest, AltLetterThatIsHeldDownIsNoShortcutOfABox) {
  const HeldKey no{Qt::Key_N, "n", Qt::AltModifier};
  bool pressed = true, held = false;
  OnNextBox([&](QWidget& box) {
    pressed = Send(box, no, false, QEvent::ShortcutOverride);
    held = Send(box, no, true, QEvent::ShortcutOverride);
  });
  MsgBox("Do you wish to save?", Buttons::YesNo);
  EXPECT_FALSE(pressed) << "the box clicks its button";
  EXPECT_TRUE(held) << "it comes as a key, and nobody wants it";
  TakeBox();
}

TEST_F(BoxesQtTest, KeyThatIsHeldDownIsTypedIntoABoxButDoesNotLeaveIt) {
  const HeldKey seven{Qt::Key_7, "7"}, back{Qt::Key_Backspace, ""};
  OnNextBox([&](QWidget& box) {
    for (const HeldKey& held : {seven, blank, seven, seven, back, enter, escape})
      Send(box, held, true);
    Send(box, enter, false);
  });
  EXPECT_EQ(InputBox("Name", "Title", ""), "7 7");
  TakeBox();
}

TEST_F(BoxesQtTest, FileDialogIsNotLeftByAKeyThatIsHeldDown) {
  bool stays = false;
  OnNextBox([&](QWidget& box) {
    Send(box, escape, true);
    Send(box, enter, true);
    stays = box.isVisible();
    Send(box, escape, false);
  });
  FileDialog dialog{.title = "Save", .fileName = "Engine.bin", .folder = TestFolder()};
  EXPECT_THROW(ShowSaveDialog(dialog), Failure);
  EXPECT_TRUE(stays);
  TakeBox();
}

TEST_F(BoxesQtTest, BoxesThatAreOpenAreLeftWhenTheProgramEnds) {
  Answer answer = Answer::Yes;
  RunFromQueue([&] {
    RunSoon([] { EndProgram(4); });
    answer = MsgBox("Do you wish to save?", Buttons::YesNo);
  });
  EXPECT_EQ(RunProgram(), 4);
  EXPECT_EQ(answer, Answer::No);
  TakeBox();
}

TEST_F(BoxesQtTest, KeysAreBackAtTheScreenAfterTheBox) {
  Screen screen{.name = "frmBox", .build = [](Screen& s) { Add(s, TextField("Text1")); }};
  ShowScreen(screen);
  RunPending();
  MsgBox("text");
  TakeBox();
  RunPending();
  EXPECT_TRUE(FrameWindow()->isActiveWindow());
  EXPECT_EQ(ShownFocus(), "Text1");
  UnloadScreen(screen);
}

TEST_F(BoxesQtTest, FilterTakesExtensionsInAnyCase) {
  std::string folder = TestFolder();
  for (const char* name : {"/a.BIN", "/b.bin", "/c.Bin", "/d.s19"}) MakeFile(folder + name, "x");
  QStringList seen;
  QStringList filters;
  OnNextBox([&](QWidget& box) {
    auto& dialog = static_cast<QFileDialog&>(box);
    filters = dialog.nameFilters();
    auto* model = dialog.findChild<QFileSystemModel*>();
    QModelIndex root = model->index(ToQt(folder));
    QSignalSpy read(model, &QFileSystemModel::directoryLoaded);
    while (model->rowCount(root) < 3 && read.wait()) {
    }
    for (int row = 0; row < model->rowCount(root); ++row)
      seen << model->index(row, 0, root).data().toString();
  });
  AnswerNextFile(folder + "/a.BIN");
  FileDialog dialog{
      .title = "Open", .filter = "Halvane2 File(*.BIN)|*.bin|All|*.*", .folder = folder};
  ShowOpenDialog(dialog);
  TakeBox();
  seen.sort();
  EXPECT_EQ(seen, (QStringList{"a.BIN", "b.bin", "c.Bin"}));
  EXPECT_EQ(filters, (QStringList{"Halvane2 File (*.bin)", "All (*.*)"}));
}

TEST_F(BoxesQtTest, TypedPathAndEnterChoose) {
  std::string path = TestFolder() + "/typed.bin";
  // Keys go to the window that has them: a list of completions may have come up.
  auto press = [](QWidget& box, int key, QString text) {
    QWidget* popUp = QApplication::activePopupWidget();
    QWindow* window = (popUp ? popUp : &box)->windowHandle();
    for (bool down : {true, false}) QTest::simulateEvent(window, down, key, {}, text, false);
  };
  OnNextBox([&](QWidget& box) {
    EXPECT_TRUE(QTest::qWaitForWindowActive(&box));
    auto* name = box.findChild<QLineEdit*>("fileNameEdit");
    EXPECT_EQ(box.focusWidget(), name) << "typing begins in the name";
    for (QChar letter : ToQt(path)) press(box, letter.toUpper().unicode(), letter);
    press(box, Qt::Key_Return, "\r");
  });
  FileDialog dialog{.title = "Save", .filter = "BIN|*.bin"};
  ShowSaveDialog(dialog);
  EXPECT_EQ(dialog.fileName, path);
  TakeBox();
}

TEST_F(BoxesQtTest, NextDialogStartsInTheFolderOfTheLastChoice) {
  MakeFolder(TestFolder() + "/deep");
  AnswerNextFile(TestFolder() + "/deep/one.bin");
  FileDialog first{.title = "Open", .filter = "BIN|*.bin", .folder = TestFolder()};
  ShowOpenDialog(first);
  QString folder;
  OnNextBox([&](QWidget& box) { folder = static_cast<QFileDialog&>(box).directory().path(); });
  AnswerNextFile("two.bin");
  FileDialog second{.title = "Open", .filter = "BIN|*.bin"};
  ShowOpenDialog(second);
  EXPECT_EQ(FromQt(folder), TestFolder() + "/deep");
  EXPECT_EQ(second.fileName, TestFolder() + "/deep/two.bin");
  TakeBox();
  TakeBox();
}

TEST_F(BoxesQtTest, YieldsGoOnWhileABoxIsOpen) {
  int passes = 0;
  int timer = StartTimer(1, [&] { ++passes; });
  OnNextBox([&](QWidget&) {
    for (int pass = 0; pass < 500; ++pass) Yield();
  });
  MsgBox("text");
  StopTimer(timer);
  TakeBox();
  EXPECT_GT(passes, 0);
}

}  // namespace
