// The test user on Qt: keys and mouse buttons through the windows, as a desktop sends them.
#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QScrollArea>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QWindow>
#include <filesystem>
#include <fstream>
#include <memory>

#include "platform/frame.h"
#include "platform/native.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtloop.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtsystem.h"
#include "platform/qt/qtwidgets.h"
#include "support/keynames.h"
#include "support/qt/boxes_qt.h"
#include "support/testfolder.h"
#include "support/user.h"

namespace {

// More turns than any test needs; a routine that asks for itself for ever ends here.
constexpr int TurnsAtMost = 10000;

std::unique_ptr<QTemporaryDir> testFolder;

// Lets the toolkit settle without running what waits in the queue.
void LetToolkitSettle() {
  QueueHold hold;
  for (int turn = 0; turn < 20; ++turn) QCoreApplication::processEvents();
}

// Around everything the user does: before it the picture is up to date, afterwards a menu that has
// popped up is noted.
struct Action {
  Action() {
    NotePopUp();
    CarryOutChanges();
    LetToolkitSettle();
  }
  ~Action() {
    LetToolkitSettle();
    NotePopUp();
  }
  Action(const Action&) = delete;
  Action& operator=(const Action&) = delete;
  NativeFrame screensStay;
  QueueHold hold;
};

// The keys go to another window: the offscreen desktop forgets to give them to a window that had
// them last when it was hidden.
void LookElsewhere() {
  static QWidget* elsewhere = Make<QWidget>();
  elsewhere->show();
  elsewhere->activateWindow();
  LetToolkitSettle();
  elsewhere->hide();
}

// ---- keys ---------------------------------------------------------------------------------------

struct KeyRow {
  int key;
  Qt::Key qt;
};
constexpr KeyRow KeyRows[] = {
    {KeyBackspace, Qt::Key_Backspace},
    {KeyTab, Qt::Key_Tab},
    {KeyEnter, Qt::Key_Return},
    {KeyEscape, Qt::Key_Escape},
    {KeyLeft, Qt::Key_Left},
    {KeyUp, Qt::Key_Up},
    {KeyRight, Qt::Key_Right},
    {KeyDown, Qt::Key_Down},
    {KeyHome, Qt::Key_Home},
    {KeyEnd, Qt::Key_End},
    {KeyPageUp, Qt::Key_PageUp},
    {KeyPageDown, Qt::Key_PageDown},
    {KeyInsert, Qt::Key_Insert},
    {KeyDelete, Qt::Key_Delete},
    {KeyShift, Qt::Key_Shift},
    {KeyControl, Qt::Key_Control},
    {KeyAlt, Qt::Key_Alt},
};

Qt::Key QtKeyOf(const KeyEvent& event) {
  if (event.key == KeyEnter && event.keypad) return Qt::Key_Enter;
  if (event.key == KeyTab && event.shift) return Qt::Key_Backtab;
  for (const KeyRow& row : KeyRows)
    if (row.key == event.key) return row.qt;
  if (event.key >= KeyF1 && event.key <= KeyF12) return Qt::Key(Qt::Key_F1 + event.key - KeyF1);
  return Qt::Key(event.key);
}

Qt::KeyboardModifiers ModifiersOf(const KeyEvent& event) {
  Qt::KeyboardModifiers held;
  held.setFlag(Qt::ControlModifier, event.ctrl);
  held.setFlag(Qt::AltModifier, event.alt);
  held.setFlag(Qt::ShiftModifier, event.shift);
  held.setFlag(Qt::KeypadModifier, event.keypad);
  return held;
}

// What a keyboard would send along: control characters with Ctrl, the letter itself with Alt.
QString TextOf(const KeyEvent& event) {
  if (event.ctrl && event.key >= 'A' && event.key <= 'Z') return QChar(event.key - 'A' + 1);
  if (event.alt && event.key < 128) return QChar(event.key).toLower();
  if (event.key == KeyTab) return "\t";
  if (event.key == KeyDelete) return QChar(127);
  return event.character ? QString(QChar(event.character)) : QString();
}

QWidget* WindowWithKeys() {
  if (QWidget* popup = QApplication::activePopupWidget()) return popup;
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  if (QWidget* active = QApplication::activeWindow()) return active;
  return FrameWindow();
}

void Send(const KeyEvent& event) {
  Action action;
  QWidget* window = WindowWithKeys();
  if (!window || !window->windowHandle()) {
    ADD_FAILURE() << "no window has the keys";
    return;
  }
  QString text = TextOf(event);
  for (bool press : {true, false}) {
    QWidget* now = WindowWithKeys();
    QTest::simulateEvent(now->windowHandle(), press, QtKeyOf(event), ModifiersOf(event), text,
                         event.repeat);
    LetToolkitSettle();
  }
}

// ---- mouse --------------------------------------------------------------------------------------

// Scrolls to the widget as a user would. Result: its window, null when it cannot be seen.
QWindow* BringIntoSight(QWidget& widget, QPoint at) {
  for (QWidget* around = widget.parentWidget(); around; around = around->parentWidget())
    if (auto* area = qobject_cast<QScrollArea*>(around)) area->ensureWidgetVisible(&widget);
  LetToolkitSettle();
  bool seen = widget.isVisible() && !widget.visibleRegion().isEmpty();
  return seen && widget.rect().contains(at) ? widget.window()->windowHandle() : nullptr;
}

void ClickAt(QWidget& widget, QPoint at, bool twice = false) {
  QWindow* window = BringIntoSight(widget, at);
  if (!window) return;
  QPoint inWindow = widget.mapTo(widget.window(), at);
  QTest::mouseClick(window, Qt::LeftButton, {}, inWindow);
  if (twice) QTest::mouseDClick(window, Qt::LeftButton, {}, inWindow);
  // The next click is none of a double click.
  QTest::lastMouseTimestamp += QTest::mouseDoubleClickInterval;
}

// The part of a control that a user aims at.
QPoint AimAt(const Control& control, const QWidget& widget) {
  bool marked = control.kind == ControlKind::RadioButton || control.kind == ControlKind::CheckBox;
  return marked ? QPoint(8, widget.height() / 2) : widget.rect().center();
}

void ChooseInPopUp(DropDown& list, int index) {
  ClickAt(list, list.rect().center());
  LetToolkitSettle();
  QAbstractItemView* view = list.view();
  if (!view->isVisible()) return;
  QModelIndex item = list.model()->index(index, 0);
  view->scrollTo(item);
  QPoint at = view->visualRect(item).center();
  QTest::mouseMove(view->viewport(), at);
  ClickAt(*view->viewport(), at);
}

void ClickOnRow(QAbstractItemView& view, const QModelIndex& item, bool twice) {
  view.scrollTo(item);
  LetToolkitSettle();
  ClickAt(*view.viewport(), view.visualRect(item).center(), twice);
}

QWidget* Shown(Screen& screen, std::string_view name) {
  CarryOutChanges();
  return WidgetOf(At(screen, name));
}

}  // namespace

void PressKey(std::string_view key) { Send(KeyNamed(key)); }

void RepeatKey(std::string_view key) {
  KeyEvent event = KeyNamed(key);
  event.repeat = true;
  Send(event);
}

void TypeText(std::string_view text) {
  for (char character : text) Send(KeyTyping(character));
}

void ClickOn(Screen& screen, std::string_view name) {
  Action action;
  Control& control = At(screen, name);
  if (QWidget* widget = WidgetOf(control)) ClickAt(*widget, AimAt(control, *widget));
}

void ChooseItem(Screen& screen, std::string_view name, int index) {
  Action action;
  Control& control = At(screen, name);
  QWidget* widget = WidgetOf(control);
  if (!widget) return;
  if (control.kind == ControlKind::DropDownList) {
    ChooseInPopUp(static_cast<DropDown&>(*widget), index);
    return;
  }
  auto& view = static_cast<QAbstractItemView&>(*widget);
  if (control.kind == ControlKind::ListBox) {
    ClickOnRow(view, view.model()->index(index, 0), false);
    return;
  }
  ClickOnRow(view, IndexOfNode(static_cast<Tree&>(*widget), index), false);
}

void DoubleClickNode(Screen& screen, std::string_view name, std::string_view text) {
  Action action;
  Control& control = At(screen, name);
  QWidget* widget = WidgetOf(control);
  if (!widget) return;
  for (std::size_t i = 0; i < control.nodes.size(); ++i) {
    if (control.nodes[i].text != text) continue;
    auto& tree = static_cast<Tree&>(*widget);
    ClickOnRow(tree, IndexOfNode(tree, static_cast<int>(i)), true);
    return;
  }
  ADD_FAILURE() << "no node " << text << " in " << name;
}

void ChooseMenu(std::string_view name) {
  Action action;
  Frame* frame = TheFrame();
  MenuItem* item = frame ? FindMenu(*frame, name) : nullptr;
  QAction* entry = item ? ActionOf(*item) : nullptr;
  if (!entry) {
    ADD_FAILURE() << "no menu entry " << name;
    return;
  }
  bool blocked = QApplication::activeModalWidget() != nullptr;
  if (!blocked && MenuReachable(*item)) entry->trigger();
}

void CloseByUser(Screen& screen) {
  Action action;
  auto* native = static_cast<QtScreen*>(screen.native);
  if (!native) return;
  if (native->window && native->window->isWindow())
    native->window->close();
  else if (auto* button =
               (native->window ? native->window : native->page)->findChild<QToolButton*>("close"))
    ClickAt(*button, button->rect().center());
}

void CloseFrameByUser() {
  Action action;
  if (FrameWindow() && !QApplication::activeModalWidget()) FrameWindow()->close();
}

void RunPending() {
  for (int turn = 0; turn < TurnsAtMost; ++turn) {
    bool any = QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
    if (!any && !TurnWaits()) break;
  }
  NotePopUp();
}

// ---- what is shown
// --------------------------------------------------------------------------------

std::string ShownText(Screen& screen, std::string_view control) {
  Shown(screen, control);
  return FromQt(ShownOn(At(screen, control)));
}

bool ShownVisible(Screen& screen, std::string_view control) {
  QWidget* widget = Shown(screen, control);
  return widget && widget->isVisible();
}

bool ShownEnabled(Screen& screen, std::string_view control) {
  QWidget* widget = Shown(screen, control);
  return widget && widget->isEnabled();
}

std::string ShownFocus() {
  CarryOutChanges();
  LetToolkitSettle();
  QWidget* window = WindowWithKeys();
  QtControl* control = window ? ControlOfWidget(window->focusWidget()) : nullptr;
  return control && control->control ? control->control->name : "";
}

int ShownFocusMoves() {
  LetToolkitSettle();
  return FocusMovesSoFar();
}

// ---- testfolder.h -------------------------------------------------------------------------------

std::string TestFolder() {
  if (!testFolder) testFolder = std::make_unique<QTemporaryDir>();
  return FromQt(testFolder->path());
}

void MakeFolder(const std::string& path) { std::filesystem::create_directories(path); }

void MakeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

void MakeLink(const std::string& path, const std::string& target) {
  std::filesystem::create_symlink(target, path);
}

void MakeReadOnly(const std::string& path, bool readOnly) {
  using std::filesystem::perms;
  std::filesystem::permissions(path, perms::owner_write | perms::group_write | perms::others_write,
                               std::filesystem::perm_options::remove);
  if (!readOnly)
    std::filesystem::permissions(path, perms::owner_write, std::filesystem::perm_options::add);
}

// ---- the fixture --------------------------------------------------------------------------------

void PlatformTest::SetUp() {
  WatchBoxes();
  ResetLoop();
  SettingsStore().clear();
  QApplication::clipboard()->clear();
  LookElsewhere();
  ResetBoxRecords();
}

void PlatformTest::TearDown() {
  ExpectNoBoxLeft();
  ResetLoop();
  RunPending();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  testFolder.reset();
}
