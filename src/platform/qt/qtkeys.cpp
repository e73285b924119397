// Looks at every key and mouse button before the toolkit's widgets do: the screen comes first.
#include "platform/qt/qtkeys.h"

#include <QAbstractButton>
#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <cctype>
#include <optional>

#include "platform/native.h"
#include "platform/qt/qtactivation.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtboxes.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtscreen.h"

namespace {

// ---- from the toolkit's keys to ours ------------------------------------------------------------

struct KeyRow {
  int qt;
  int key;
};
constexpr KeyRow KeyRows[] = {
    {Qt::Key_Backspace, KeyBackspace},
    {Qt::Key_Tab, KeyTab},
    {Qt::Key_Backtab, KeyTab},
    {Qt::Key_Return, KeyEnter},
    {Qt::Key_Enter, KeyEnter},
    {Qt::Key_Escape, KeyEscape},
    {Qt::Key_Left, KeyLeft},
    {Qt::Key_Up, KeyUp},
    {Qt::Key_Right, KeyRight},
    {Qt::Key_Down, KeyDown},
    {Qt::Key_Home, KeyHome},
    {Qt::Key_End, KeyEnd},
    {Qt::Key_PageUp, KeyPageUp},
    {Qt::Key_PageDown, KeyPageDown},
    {Qt::Key_Insert, KeyInsert},
    {Qt::Key_Delete, KeyDelete},
    {Qt::Key_Shift, KeyShift},
    {Qt::Key_Control, KeyControl},
    {Qt::Key_Alt, KeyAlt},
};

int KeyOf(int qtKey) {
  for (const KeyRow& row : KeyRows)
    if (row.qt == qtKey) return row.key;
  if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F12) return KeyF1 + (qtKey - Qt::Key_F1);
  return qtKey > 0 && qtKey < 256 ? qtKey : KeyNone;
}

int CharacterOf(const QKeyEvent& event) {
  QString text = event.text();
  if (text.size() != 1) return 0;
  char16_t character = text.front().unicode();
  constexpr char16_t deleteKey = 127;
  return character >= ' ' && character != deleteKey ? character : 0;
}

// The decimal key of a keypad types a comma in many countries; numbers have a point here.
bool IsDecimalComma(const QKeyEvent& event) {
  return event.modifiers().testFlag(Qt::KeypadModifier) && event.text() == u",";
}

KeyEvent ToKeyEvent(const QKeyEvent& event) {
  Qt::KeyboardModifiers held = event.modifiers();
  KeyEvent key{.key = KeyOf(event.key()),
               .ctrl = held.testFlag(Qt::ControlModifier),
               .alt = held.testFlag(Qt::AltModifier),
               .shift = held.testFlag(Qt::ShiftModifier),
               .keypad = held.testFlag(Qt::KeypadModifier)};
  key.character = CharacterOf(event);
  if (IsDecimalComma(event)) key.key = key.character = '.';
  // Both together write the third sign of a key on some keyboards.
  if (key.ctrl && key.alt && key.character != 0) key.ctrl = key.alt = false;
  if (key.ctrl || key.alt) key.character = 0;
  return key;
}

bool IsMarkedLetter(const KeyEvent& key) { return key.alt && !key.ctrl && key.key < 256; }
bool IsHotKey(const KeyEvent& key) {
  return key.ctrl && !key.alt && key.key >= 'A' && key.key <= 'Z';
}

// ---- who gets a key -----------------------------------------------------------------------------

// Where a key that the toolkit sends to this widget belongs: to the screen that has the keys, or to
// none, the frame; nothing for menus, boxes, open lists and for a key on its way up to a parent.
struct Receiver {
  Screen* screen = nullptr;
  QWidget* widget = nullptr;
};

std::optional<Receiver> ReceiverOf(QObject* watched) {
  if (!watched->isWidgetType() || QApplication::activePopupWidget()) return std::nullopt;
  auto* widget = static_cast<QWidget*>(watched);
  QWidget* window = widget->window();
  QWidget* focus = window->focusWidget();
  if (focus ? focus != widget : window != widget) return std::nullopt;
  if (qobject_cast<QMenuBar*>(widget) || qobject_cast<QMenu*>(widget)) return std::nullopt;
  // An open list closes before the key that closes it has been delivered.
  if (window->windowType() == Qt::Popup) return std::nullopt;
  if (window != FrameWindow() && !ScreenOfWidget(widget)) return std::nullopt;
  Screen* dialog = OpenDialogScreen();
  return Receiver{dialog ? dialog : ActiveScreen(), widget};
}

// A press that follows its own release at once is none of the user's: on X11 a key that is held
// down is told like that, and the toolkit takes it for a new one when the press has not arrived yet
// as it looks for it.
class HeldKeys {
 public:
  void Released(const QKeyEvent& event) {
    key = event.key();
    at = event.timestamp();
  }
  bool Repeats(const QKeyEvent& event) const {
    return event.isAutoRepeat() || (onX11 && event.key() == key && event.timestamp() == at);
  }

 private:
  const bool onX11 = QGuiApplication::platformName() == u"xcb";
  int key = 0;
  quint64 at = 0;
};

bool IsInBox(QObject* watched) {
  return watched->isWidgetType() && IsOpenBox(*static_cast<QWidget*>(watched)->window());
}

// What leaves a box, or operates a button in it; the blank is typed elsewhere.
bool AnswersABox(QObject* watched, const KeyEvent& key) {
  return key.key == KeyEscape || key.key == KeyEnter || IsMarkedLetter(key) ||
         (key.key == KeySpace && qobject_cast<QAbstractButton*>(watched));
}

// ---- the filter
// -----------------------------------------------------------------------------------

class Filter : public QObject {
 public:
  bool eventFilter(QObject* watched, QEvent* event) override {
    switch (event->type()) {
      case QEvent::ShortcutOverride:
        return Override(watched, static_cast<QKeyEvent&>(*event));
      case QEvent::KeyPress:
        return KeyDown(watched, static_cast<QKeyEvent&>(*event));
      case QEvent::KeyRelease:
        return KeyUp(watched, static_cast<QKeyEvent&>(*event));
      case QEvent::InputMethod:
        return Composed(watched, static_cast<QInputMethodEvent&>(*event));
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonDblClick:
        return MouseDown(watched);
      case QEvent::MouseMove:
        return swallowsMouse && watched->isWidgetType();
      case QEvent::MouseButtonRelease:
        return MouseUp(watched, static_cast<QMouseEvent&>(*event));
      default:
        return false;
    }
  }

 private:
  KeyEvent Told(const QKeyEvent& event) const;
  bool IsHeldInBox(QObject* watched, const QKeyEvent& event) const;
  bool Override(QObject* watched, QKeyEvent& event);
  bool KeyDown(QObject* watched, QKeyEvent& event);
  bool KeyUp(QObject* watched, QKeyEvent& event);
  bool Composed(QObject* watched, QInputMethodEvent& event);
  bool MouseDown(QObject* watched);
  bool MouseUp(QObject* watched, QMouseEvent& event);
  bool PassOn(Screen& screen, QWidget& asked, const QKeyEvent& event, int character, bool changed);
  void Send(QWidget& widget, QEvent& event);

  HeldKeys held;
  bool passesOn = false;  // an event of our own to a widget: not looked at again
  bool swallowsMouse = false;
};

KeyEvent Filter::Told(const QKeyEvent& event) const {
  KeyEvent key = ToKeyEvent(event);
  key.repeat = held.Repeats(event);
  return key;
}

// A key that is held down answers no box: it was pressed for what stood there before.
bool Filter::IsHeldInBox(QObject* watched, const QKeyEvent& event) const {
  return held.Repeats(event) && IsInBox(watched) && AnswersABox(watched, ToKeyEvent(event));
}

// Accepted: the key comes as a key, and no shortcut of the menu bar or of a field takes it.
bool Filter::Override(QObject* watched, QKeyEvent& event) {
  if (IsHeldInBox(watched, event)) {
    event.accept();
    return true;
  }
  auto receiver = ReceiverOf(watched);
  if (!receiver) return false;
  KeyEvent key = ToKeyEvent(event);
  bool takes =
      IsHotKey(key) || (IsMarkedLetter(key) && receiver->screen && UserReaches(*receiver->screen) &&
                        ScreenTakesAccelerator(*receiver->screen, key.key));
  if (takes) event.accept();
  return takes;
}

void Filter::Send(QWidget& widget, QEvent& event) {
  passesOn = true;
  QCoreApplication::sendEvent(&widget, &event);
  passesOn = false;
}

// The toolkit's part of a key. Result: whether it has been done here.
bool Filter::PassOn(Screen& screen, QWidget& asked, const QKeyEvent& event, int character,
                    bool changed) {
  Control* control = screen.focus;
  QWidget* widget = control ? WidgetOf(*control) : nullptr;
  CarryOutChanges();
  if (!widget || (widget == &asked && !changed)) return false;
  FocusByRecord(screen);
  QString text = changed ? QString(QChar(static_cast<char16_t>(character))) : event.text();
  QKeyEvent copy(event.type(), event.key(), event.modifiers(), text, event.isAutoRepeat(),
                 static_cast<quint16>(event.count()));
  Send(*widget, copy);
  return true;
}

bool Filter::KeyDown(QObject* watched, QKeyEvent& event) {
  if (passesOn) return false;
  if (IsHeldInBox(watched, event)) return true;
  auto receiver = ReceiverOf(watched);
  if (!receiver) return false;
  KeyEvent key = Told(event);
  if (key.key == KeyNone && key.character == 0) return false;
  NativeFrame frame;
  CarryOutChanges();
  int before = key.character;
  Screen* screen = receiver->screen;
  if (UserKeyDown(screen, key)) {
    event.accept();
    return true;
  }
  if (!screen || !IsUp(*screen)) return false;
  // A field would type the letter.
  if (IsMarkedLetter(key)) return true;
  bool changed = before != 0 && (key.character != before || IsDecimalComma(event));
  return PassOn(*screen, *receiver->widget, event, key.character, changed);
}

bool Filter::KeyUp(QObject* watched, QKeyEvent& event) {
  held.Released(event);
  if (passesOn || event.isAutoRepeat()) return false;
  auto receiver = ReceiverOf(watched);
  if (!receiver || !receiver->screen || !UserReaches(*receiver->screen)) return false;
  NativeFrame frame;
  KeyEvent key = ToKeyEvent(event);
  UserKeyUp(receiver->screen, key);
  return false;
}

// Characters that an input method has put together come to the screen one by one, as keys do.
bool Filter::Composed(QObject* watched, QInputMethodEvent& event) {
  auto receiver = ReceiverOf(watched);
  if (!receiver || !receiver->screen || event.commitString().isEmpty()) return false;
  NativeFrame frame;
  for (QChar character : event.commitString()) {
    int code = character.unicode();
    QKeyEvent asKey(QEvent::KeyPress, code < 256 ? std::toupper(code) : Qt::Key_unknown,
                    Qt::NoModifier, QString(character));
    QWidget* focus = receiver->widget->window()->focusWidget();
    if (focus && !KeyDown(focus, asKey)) Send(*focus, asKey);
  }
  QInputMethodEvent nothing;
  Send(*receiver->widget, nothing);
  return true;
}

QtControl* ControlAround(QWidget* widget) {
  for (; widget; widget = widget->parentWidget())
    if (QtControl* found = ControlOfWidget(widget)) return found;
  return nullptr;
}

// A press asks the screen for the focus first; refused, nobody gets the press.
bool Filter::MouseDown(QObject* watched) {
  if (!watched->isWidgetType() || QApplication::activePopupWidget()) return false;
  auto* widget = static_cast<QWidget*>(watched);
  ForgetActivationWish();
  WishActivation(*widget->window());  // another one may have been asked for a moment ago
  swallowsMouse = false;
  QtScreen* native = ScreenOfWidget(widget);
  if (!native || !native->screen) return false;
  NativeFrame frame;
  Screen& screen = *native->screen;
  if (!UserReaches(screen)) return swallowsMouse = true;
  if (ActiveScreen() != &screen) UserActivated(screen);
  QtControl* control = ControlAround(widget);
  bool brings = control && control->control && TakesFocus(*control->control) &&
                screen.focus != control->control;
  if (brings) {
    CarryOutChanges();
    UserFocus(*control->control);
    if (!control->control || screen.focus != control->control) swallowsMouse = true;
  }
  if (native->screen) FocusByRecord(screen);
  // The press will place the cursor; a selection that has just been made comes back after it.
  if (brings && !swallowsMouse && control->control->selLength > 0)
    NativeControlChanged(*control->control, ChangedSelection);
  return swallowsMouse;
}

bool Filter::MouseUp(QObject* watched, QMouseEvent& event) {
  if (!watched->isWidgetType()) return false;
  if (swallowsMouse) {
    swallowsMouse = false;
    return true;
  }
  auto* widget = static_cast<QWidget*>(watched);
  QtControl* native = ControlOfWidget(widget);
  if (!native || !native->control || event.button() != Qt::LeftButton) return false;
  ControlKind kind = native->control->kind;
  if (kind != ControlKind::Label && kind != ControlKind::Picture) return false;
  if (!widget->rect().contains(event.position().toPoint())) return false;
  if (!UserReaches(*native->control->owner)) return false;
  NativeFrame frame;
  UserClick(*native->control);
  return true;
}

}  // namespace

void ListenToKeys() { qApp->installEventFilter(Make<Filter>()); }
