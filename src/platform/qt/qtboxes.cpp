// Message boxes, the input box, file dialogs: each runs the queue until it is closed.
#include "platform/qt/qtboxes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>
#include <QTreeView>
#include <algorithm>
#include <vector>

#include "platform/dialogs.h"
#include "platform/failure.h"
#include "platform/loop.h"
#include "platform/native.h"
#include "platform/qt/qtactivation.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtloop.h"
#include "platform/qt/qtscreen.h"

namespace {

std::vector<QDialog*> openBoxes;
// Folder of the last choice in a file dialog; empty before the first.
QString lastFolder;

struct ButtonsRow {
  Buttons buttons;
  QMessageBox::StandardButtons shown;
  QMessageBox::StandardButton first;   // has the keys
  QMessageBox::StandardButton closes;  // what Esc and the close box mean
};
constexpr ButtonsRow ButtonsRows[] = {
    {Buttons::Ok, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok},
    {Buttons::OkCancel, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok,
     QMessageBox::Cancel},
    {Buttons::YesNo, QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No},
    {Buttons::YesNoCancel, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
     QMessageBox::Yes, QMessageBox::Cancel},
};

const ButtonsRow& RowOf(Buttons buttons) {
  return *std::find_if(std::begin(ButtonsRows), std::end(ButtonsRows),
                       [&](const ButtonsRow& row) { return row.buttons == buttons; });
}

QMessageBox::Icon IconOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::Information:
      return QMessageBox::Information;
    case BoxIcon::Question:
      return QMessageBox::Question;
    case BoxIcon::Exclamation:
      return QMessageBox::Warning;
    case BoxIcon::Critical:
      return QMessageBox::Critical;
    case BoxIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

Answer AnswerOf(int button) {
  switch (button) {
    case QMessageBox::Cancel:
      return Answer::Cancel;
    case QMessageBox::Yes:
      return Answer::Yes;
    case QMessageBox::No:
      return Answer::No;
    default:
      return Answer::Ok;
  }
}

QWidget* BoxParent() {
  QWidget* active = QApplication::activeWindow();
  if (active && active->isVisible()) return active;
  QWidget* frame = FrameWindow();
  return frame && frame->isVisible() ? frame : nullptr;
}

// The window's title when the box has none of its own.
void SetTitle(QDialog& box, const std::string& title) {
  box.setWindowTitle(title.empty() ? QApplication::applicationName() : ToQt(title));
  box.setProperty("givenTitle", ToQt(title));
}

// "Text|*.ext|Text|*.ext" becomes "Text (*.ext)" by "Text (*.ext)".
QStringList NameFilters(const std::string& filter) {
  QStringList parts = ToQt(filter).split(u'|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString patterns = parts[i + 1].trimmed().replace(u';', u' ');
    QString text = parts[i].trimmed();
    qsizetype pattern = text.indexOf(u'(');
    if (pattern > 0) text.truncate(pattern);
    filters << text.trimmed() + " (" + patterns + ")";
  }
  return filters;
}

// Room for names and for the date of each file.
void ShowWholeDates(QFileDialog& box) {
  box.resize(box.sizeHint().expandedTo({box.fontMetrics().averageCharWidth() * 110, 460}));
  auto* files = box.findChild<QTreeView*>();
  if (!files) return;
  files->header()->setStretchLastSection(false);
  files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
}

// Enter takes the name that is typed. The list of completions swallows it on its way to the button,
// and the button is off while the folder is still being read.
void AcceptAtEnter(QFileDialog& box) {
  auto* name = box.findChild<QLineEdit*>("fileNameEdit");
  if (!name) return;
  QObject::connect(name, &QLineEdit::returnPressed, &box, [&box, name] {
    if (name->text().isEmpty()) return;
    QTimer::singleShot(0, &box, [&box] {
      if (box.isVisible()) static_cast<QDialog&>(box).accept();
    });
  });
}

void RunFileDialog(FileDialog& dialog, QFileDialog::AcceptMode mode) {
  QString folder = !dialog.folder.empty() ? ToQt(dialog.folder)
                   : lastFolder.isEmpty() ? QDir::currentPath()
                                          : lastFolder;
  QFileDialog box(BoxParent());
  box.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                 QFileDialog::DontUseCustomDirectoryIcons);
  box.setAcceptMode(mode);
  box.setFileMode(QFileDialog::AnyFile);
  box.setDirectory(folder);
  QStringList filters = NameFilters(dialog.filter);
  if (!filters.isEmpty()) box.setNameFilters(filters);
  if (!dialog.fileName.empty()) box.selectFile(ToQt(dialog.fileName));
  SetTitle(box, dialog.title);
  box.setProperty("filter", ToQt(dialog.filter));
  ShowWholeDates(box);
  AcceptAtEnter(box);
  bool chosen = RunBox(box) == QDialog::Accepted && !box.selectedFiles().isEmpty();
  if (!chosen) RaiseFailure(FailureCancel);
  QString path = box.selectedFiles().front();
  lastFolder = QFileInfo(path).absolutePath();
  dialog.fileName = FromQt(QDir::toNativeSeparators(path));
}

}  // namespace

int RunBox(QDialog& box) {
  NativeFrame frame;
  CarryOutChanges();
  ForgetActivationWish();
  int result = 0;
  {
    YieldScope scope;
    openBoxes.push_back(&box);
    box.setWindowModality(Qt::ApplicationModal);
    result = box.exec();
    openBoxes.erase(std::find(openBoxes.begin(), openBoxes.end(), &box));
  }
  ScheduleTurn();
  if (Screen* active = ActiveScreen(); active && openBoxes.empty()) NativeActivate(*active);
  return result;
}

bool IsOpenBox(const QWidget& window) {
  return std::find(openBoxes.begin(), openBoxes.end(), &window) != openBoxes.end();
}

Answer MsgBox(const std::string& text, Buttons buttons, const std::string& title, BoxIcon icon) {
  const ButtonsRow& row = RowOf(buttons);
  QMessageBox box(BoxParent());
  box.setTextFormat(Qt::PlainText);
  box.setText(WithLineBreaks(text));
  box.setIcon(IconOf(icon));
  box.setStandardButtons(row.shown);
  box.setDefaultButton(row.first);
  box.setEscapeButton(row.closes);
  SetTitle(box, title);
  box.setProperty("givenText", ToQt(text));
  box.setProperty("buttons", static_cast<int>(buttons));
  RunBox(box);
  int pressed =
      box.clickedButton() ? int(box.standardButton(box.clickedButton())) : int(row.closes);
  return AnswerOf(pressed);
}

std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                    const std::string& preset) {
  QInputDialog box(BoxParent());
  box.setInputMode(QInputDialog::TextInput);
  box.setLabelText(WithLineBreaks(prompt));
  box.setTextValue(ToQt(preset));
  SetTitle(box, title);
  box.setProperty("givenText", ToQt(prompt));
  if (RunBox(box) != QDialog::Accepted) return std::nullopt;
  return FromQt(box.textValue());
}

void ShowOpenDialog(FileDialog& dialog) { RunFileDialog(dialog, QFileDialog::AcceptOpen); }
void ShowSaveDialog(FileDialog& dialog) { RunFileDialog(dialog, QFileDialog::AcceptSave); }

void CloseOpenBoxes() {
  std::vector<QDialog*> boxes = openBoxes;
  for (auto box = boxes.rbegin(); box != boxes.rend(); ++box) (*box)->reject();
}

void ResetBoxes() { lastFolder.clear(); }
