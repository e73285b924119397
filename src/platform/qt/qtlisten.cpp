// What the user does on the widgets, told to the records.
#include "platform/native.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtwidgets.h"

namespace {

// Runs the routine for an action of the user; nothing for what the program does, on a released
// screen, or where no input gets through.
template <typename Routine>
void FromUser(QtControl& native, Routine routine) {
  if (native.applying || !native.control || !UserReaches(*native.control->owner)) return;
  NativeFrame frame;
  routine(*native.control);
}

void TellSelection(QtControl& native, const QString& text, int start, int length) {
  FromUser(native, [&](Control& control) {
    if (control.changes & (ChangedSelection | ChangedText)) return;  // the program's wish stands
    int from = BytePosition(text, start);
    UserSelection(control, from, BytePosition(text, start + length) - from);
  });
}

void ListenToField(QtControl& native, Field& field) {
  auto position = [&field] {
    return field.hasSelectedText() ? field.selectionStart() : field.cursorPosition();
  };
  auto length = [&field] { return static_cast<int>(field.selectedText().size()); };
  QObject::connect(&field, &QLineEdit::textEdited, &field,
                   [&native, position](const QString& text) {
                     FromUser(native, [&](Control& control) {
                       UserText(control, FromQt(text), BytePosition(text, position()), 0);
                     });
                   });
  auto tell = [&native, &field, position, length] {
    if (field.losesKeys) return;
    TellSelection(native, field.text(), position(), length());
  };
  QObject::connect(&field, &QLineEdit::selectionChanged, &field, tell);
  QObject::connect(&field, &QLineEdit::cursorPositionChanged, &field, tell);
  field.gotKeys = [&native] {
    if (native.control) ShowSelectionOf(native);
  };
  field.released = [&native] { FromUser(native, [](Control& control) { UserClick(control); }); };
}

void ListenToArea(QtControl& native, Area& area) {
  QObject::connect(&area, &QPlainTextEdit::textChanged, &area, [&native, &area] {
    FromUser(native, [&](Control& control) {
      QString text = area.toPlainText();
      UserText(control, FromQt(text), BytePosition(text, area.textCursor().position()), 0);
    });
  });
  QObject::connect(&area, &QPlainTextEdit::selectionChanged, &area, [&native, &area] {
    QTextCursor cursor = area.textCursor();
    TellSelection(native, area.toPlainText(), cursor.selectionStart(),
                  cursor.selectionEnd() - cursor.selectionStart());
  });
  area.released = [&native] { FromUser(native, [](Control& control) { UserClick(control); }); };
}

void ListenToTree(QtControl& native, Tree& tree) {
  auto index = [](const QTreeWidgetItem& item) { return item.data(0, Qt::UserRole).toInt(); };
  tree.chosen = [&native, index](QTreeWidgetItem& item) {
    FromUser(native, [&](Control& control) { UserListChoice(control, index(item)); });
  };
  QObject::connect(
      &tree, &QTreeWidget::itemDoubleClicked, &tree, [&native, index](QTreeWidgetItem* item, int) {
        FromUser(native, [&](Control& control) { UserDoubleClick(control, index(*item)); });
      });
}

}  // namespace

void ListenToWidget(QtControl& native) {
  QWidget& widget = *native.widget;
  auto choose = [&native](int index) {
    FromUser(native, [&](Control& control) { UserListChoice(control, index); });
  };
  switch (native.control->kind) {
    case ControlKind::TextField:
      ListenToField(native, static_cast<Field&>(widget));
      break;
    case ControlKind::TextArea:
      ListenToArea(native, static_cast<Area&>(widget));
      break;
    case ControlKind::Button:
    case ControlKind::RadioButton:
    case ControlKind::CheckBox:
      QObject::connect(
          static_cast<QAbstractButton*>(&widget), &QAbstractButton::clicked, &widget,
          [&native] { FromUser(native, [](Control& control) { UserClick(control); }); });
      break;
    case ControlKind::DropDownList:
      QObject::connect(static_cast<DropDown*>(&widget), &QComboBox::activated, &widget, choose);
      break;
    case ControlKind::ListBox: {
      auto& list = static_cast<List&>(widget);
      list.chosen = choose;
      QObject::connect(
          &list, &QListWidget::itemDoubleClicked, &widget, [&native, &list](QListWidgetItem* item) {
            FromUser(native, [&](Control& control) { UserDoubleClick(control, list.row(item)); });
          });
      break;
    }
    case ControlKind::TreeView:
      ListenToTree(native, static_cast<Tree&>(widget));
      break;
    default:
      break;
  }
}
