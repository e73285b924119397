// Boxes on Qt: a filter sees them open, and presses what the test has in store for them.
#include "support/qt/boxes_qt.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <deque>
#include <utility>

#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "support/user.h"

namespace {

struct Records {
  std::deque<ShownBox> boxes;
  std::deque<Answer> answers;
  std::deque<std::optional<std::string>> inputs;
  std::deque<std::optional<std::string>> files;
  std::string popUp;
  const QtControl* focus = nullptr;
  int focusMoves = 0;
};

Records& Kept() {
  static Records records;
  return records;
}

template <typename T>
T Take(std::deque<T>& list) {
  T value = std::move(list.front());
  list.pop_front();
  return value;
}

std::string Property(const QDialog& box, const char* name) {
  return FromQt(box.property(name).toString());
}

QMessageBox::StandardButton ButtonOf(Answer answer) {
  switch (answer) {
    case Answer::Cancel:
      return QMessageBox::Cancel;
    case Answer::Yes:
      return QMessageBox::Yes;
    case Answer::No:
      return QMessageBox::No;
    case Answer::Ok:
      break;
  }
  return QMessageBox::Ok;
}

void AnswerMessage(QMessageBox& box) {
  EXPECT_EQ(FromQt(box.text()), FromQt(WithLineBreaks(Property(box, "givenText"))));
  auto& answers = Kept().answers;
  QAbstractButton* button = answers.empty() ? nullptr : box.button(ButtonOf(answers.front()));
  if (!button) {
    box.close();
    return;
  }
  answers.pop_front();
  QTest::mouseClick(button, Qt::LeftButton);
}

void AnswerInput(QInputDialog& box) {
  auto& inputs = Kept().inputs;
  std::optional<std::string> text = inputs.empty() ? std::nullopt : Take(inputs);
  if (!text) {
    box.close();
    return;
  }
  auto* line = box.findChild<QLineEdit*>();
  line->selectAll();
  line->insert(ToQt(*text));
  QTest::keyClick(line, Qt::Key_Return);
}

void AnswerFile(QFileDialog& box) {
  auto& files = Kept().files;
  std::optional<std::string> path = files.empty() ? std::nullopt : Take(files);
  if (!path) {
    QTest::keyClick(&box, Qt::Key_Escape);
    return;
  }
  auto* line = box.findChild<QLineEdit*>("fileNameEdit");
  line->selectAll();
  line->insert(ToQt(*path));
  QTest::keyClick(line, Qt::Key_Return);
}

// Only the box in front can be answered; the others wait until it has been closed.
template <typename Box>
void AnswerInFront(Box* box, void (*answer)(Box&)) {
  QTimer::singleShot(0, box, [box, answer] {
    if (QApplication::activeModalWidget() == box)
      answer(*box);
    else
      AnswerInFront(box, answer);
  });
}

// What the box has been given to show; the answer comes when the queue runs inside it.
void Record(QDialog& box) {
  ShownBox shown{.title = Property(box, "givenTitle"), .text = Property(box, "givenText")};
  if (auto* message = qobject_cast<QMessageBox*>(&box)) {
    shown.kind = "message";
    shown.buttons = static_cast<Buttons>(box.property("buttons").toInt());
    AnswerInFront(message, AnswerMessage);
  } else if (auto* input = qobject_cast<QInputDialog*>(&box)) {
    shown.kind = "input";
    shown.buttons = Buttons::OkCancel;
    AnswerInFront(input, AnswerInput);
  } else if (auto* file = qobject_cast<QFileDialog*>(&box)) {
    shown.kind = file->acceptMode() == QFileDialog::AcceptOpen ? "open" : "save";
    shown.filter = Property(box, "filter");
    shown.text = FromQt(file->findChild<QLineEdit*>("fileNameEdit")->text());
    AnswerInFront(file, AnswerFile);
  } else {
    return;
  }
  Kept().boxes.push_back(std::move(shown));
}

class Watcher : public QObject {
 public:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (!watched->isWidgetType()) return false;
    auto* widget = static_cast<QWidget*>(watched);
    if (event->type() == QEvent::Show) {
      if (auto* box = qobject_cast<QDialog*>(widget)) Record(*box);
    } else if (event->type() == QEvent::FocusIn) {
      NoteFocus(ControlOfWidget(widget));
    }
    return false;
  }

 private:
  static void NoteFocus(const QtControl* control) {
    if (!control || control == Kept().focus) return;
    Kept().focus = control;
    ++Kept().focusMoves;
  }
};

}  // namespace

void WatchBoxes() {
  static Watcher* watcher = nullptr;
  if (watcher) return;
  watcher = Make<Watcher>();
  qApp->installEventFilter(watcher);
}

void ResetBoxRecords() { Kept() = {}; }
int FocusMovesSoFar() { return Kept().focusMoves; }

void ExpectNoBoxLeft() {
  for (const ShownBox& box : Kept().boxes)
    ADD_FAILURE() << "a box nobody looked at: " << box.kind << " \"" << box.text << "\"";
  EXPECT_EQ(Kept().answers.size() + Kept().inputs.size() + Kept().files.size(), 0u)
      << "answers that no box asked for";
}

void NotePopUp() {
  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  if (!menu) return;
  Kept().popUp = FromQt(menu->objectName());
  menu->close();
}

void AnswerNextBox(Answer answer) { Kept().answers.push_back(answer); }
void AnswerNextInput(std::optional<std::string> text) { Kept().inputs.push_back(std::move(text)); }
void AnswerNextFile(std::optional<std::string> path) { Kept().files.push_back(std::move(path)); }
bool AnyBoxShown() { return !Kept().boxes.empty(); }

ShownBox TakeBox() {
  if (!Kept().boxes.empty()) return Take(Kept().boxes);
  ADD_FAILURE() << "no box was shown";
  return {};
}

std::string TakePopUpMenu() {
  NotePopUp();
  return std::exchange(Kept().popUp, {});
}
