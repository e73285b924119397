// From the user's actions to the routines of a screen: focus, keys, text, clicks.
#include <algorithm>
#include <cctype>
#include <utility>

#include "platform/calls.h"
#include "platform/dialogs.h"
#include "platform/failure.h"
#include "platform/native.h"

namespace {

// More moves in a row than any chain of fields that send the focus on to each other needs.
constexpr int FocusMovesAtMost = 32;

bool Alive(const Screen& screen) { return screen.loaded && !screen.closing; }

template <typename Routine, typename... Arguments>
void Call(Screen& screen, const Routine& routine, Arguments&&... arguments) {
  if (!routine) return;
  ScreenCall call(screen);
  auto copy = routine;
  Guarded([&] { copy(screen, arguments...); });
}

// One move: lost focus of the old control, got focus of the new one. A wish that comes up in
// either is left in screen.focusWish.
void MoveOnce(Screen& screen, Control& to) {
  Control* from = screen.focus;
  if (from) Call(screen, screen.on.lostFocus, *from);
  if (!Alive(screen)) return;
  if (screen.focusWish && screen.focusWish != &to) return;
  screen.focusWish = nullptr;
  screen.focus = &to;
  Call(screen, screen.on.gotFocus, to);
}

void MoveFocus(Screen& screen, Control& target) {
  ScreenCall call(screen);
  screen.focusMoving = true;
  screen.focusWish = &target;
  for (int move = 0; screen.focusWish && Alive(screen) && move < FocusMovesAtMost; ++move) {
    Control& to = *std::exchange(screen.focusWish, nullptr);
    if (&to == screen.focus || !IsUsable(to)) continue;
    MoveOnce(screen, to);
  }
  screen.focusMoving = false;
  screen.focusWish = nullptr;
  if (Alive(screen) && screen.focus) NativeFocus(*screen.focus);
}

Control* AcceleratorTarget(Screen& screen, int letter) {
  for (Control& control : screen.controls) {
    if (AcceleratorOf(control.caption) != letter || !IsShown(control)) continue;
    if (control.kind == ControlKind::Label && control.labelFor.empty()) continue;
    Control* target =
        control.kind == ControlKind::Label ? Find(screen, control.labelFor) : &control;
    if (target && IsUsable(*target) && TakesFocus(*target)) return target;
  }
  return nullptr;
}

bool TakeAccelerator(Screen& screen, int letter) {
  Control* target = AcceleratorTarget(screen, letter);
  if (!target) return false;
  bool clicks = target->kind == ControlKind::Button || target->kind == ControlKind::RadioButton ||
                target->kind == ControlKind::CheckBox;
  if (clicks)
    UserClick(*target);
  else
    SetFocus(*target);
  return true;
}

// Enter, Esc, backspace and characters reach the focused control as a key press. Result: true when
// the toolkit must do nothing more.
bool PressCharacter(Screen& screen, KeyEvent& event) {
  Control* control = screen.focus;
  if (event.key == KeyEscape && !screen.cancelButton.empty()) {
    Control* cancel = Find(screen, screen.cancelButton);
    if (cancel && IsUsable(*cancel)) {
      CallClick(*cancel);
      return true;
    }
  }
  if (!control) return event.key == KeyEscape || event.key == KeyEnter;
  KeyPress press{event.character};
  Call(screen, screen.on.keyPress, *control, press);
  event.character = press.character;
  if (!Alive(screen) || press.character == 0) return true;
  if (event.key == KeyEscape) return true;
  if (event.key != KeyEnter) return false;
  if (control->kind == ControlKind::Button) CallClick(*control);
  return control->kind != ControlKind::TextArea;
}

}  // namespace

// ---- focus ------------------------------------------------------------------------------------

void SetFocus(Control& control) {
  Screen& screen = *control.owner;
  if (!Alive(screen) || !TakesFocus(control) || !IsUsable(control)) return;
  if (screen.focusMoving) {
    screen.focusWish = &control;
    return;
  }
  if (screen.focus == &control) {
    NativeFocus(control);
    return;
  }
  MoveFocus(screen, control);
}

Control* FocusedControl(Screen& screen) { return screen.focus; }

void UserFocus(Control& control) {
  Screen& screen = *control.owner;
  if (!Alive(screen)) return;
  if (screen.focusMoving || screen.focus == &control || !TakesFocus(control)) return;
  MoveFocus(screen, control);
}

// ---- clicks and text --------------------------------------------------------------------------

void CallChange(Control& control) {
  Screen& screen = *control.owner;
  if (screen.loaded && !screen.closing) Call(screen, screen.on.change, control);
}

void CallClick(Control& control) {
  Screen& screen = *control.owner;
  if (Alive(screen)) Call(screen, screen.on.click, control);
}

void ClickControl(Control& control) { UserClick(control); }

// A button whose focus is refused by a routine is not operated.
void UserClick(Control& control) {
  Screen& screen = *control.owner;
  if (!Alive(screen) || !IsUsable(control)) return;
  ScreenCall call(screen);
  if (TakesFocus(control)) {
    UserFocus(control);
    if (!Alive(screen) || screen.focus != &control) return;
  }
  if (control.kind == ControlKind::RadioButton) SetChecked(control, true);
  if (control.kind == ControlKind::CheckBox) SetChecked(control, !control.checked);
  CallClick(control);
}

void UserListChoice(Control& control, int index) {
  Screen& screen = *control.owner;
  if (!Alive(screen) || !IsUsable(control)) return;
  ScreenCall call(screen);
  UserFocus(control);
  if (!Alive(screen)) return;
  if (screen.focus != &control) {
    NativeControlChanged(control, ChangedListIndex);
    return;
  }
  control.listIndex = index;
  CallClick(control);
}

void UserDoubleClick(Control& control, int index) {
  Screen& screen = *control.owner;
  if (!Alive(screen) || !IsUsable(control)) return;
  control.listIndex = index;
  Call(screen, screen.on.doubleClick, control);
}

void UserText(Control& control, const std::string& text, int selStart, int selLength) {
  if (!Alive(*control.owner)) return;
  bool differs = control.text != text;
  control.text = text;
  control.selStart = selStart;
  control.selLength = selLength;
  if (differs) CallChange(control);
}

void UserSelection(Control& control, int selStart, int selLength) {
  control.selStart = selStart;
  control.selLength = selLength;
}

void UserMouse(Control& control, const MouseEvent& event) {
  Screen& screen = *control.owner;
  if (Alive(screen)) Call(screen, screen.on.mouse, control, event);
}

void UserCanvasSize(Control& control, int width, int height) {
  Screen& screen = *control.owner;
  if (!Alive(screen) || (control.canvasWidth == width && control.canvasHeight == height)) return;
  control.canvasWidth = width;
  control.canvasHeight = height;
  Call(screen, screen.on.resized, control);
}

void UserActivated(Screen& screen) { NoteActive(screen); }

void UserCloseBox(Screen& screen) {
  if (!Alive(screen)) return;
  ScreenCall call(screen);
  if (screen.on.closeBox) {
    Call(screen, screen.on.closeBox);
    return;
  }
  Control* cancel = screen.cancelButton.empty() ? nullptr : Find(screen, screen.cancelButton);
  if (cancel)
    CallClick(*cancel);
  else
    UnloadScreen(screen);
}

// ---- keys -------------------------------------------------------------------------------------

bool ScreenTakesAccelerator(Screen& screen, int letter) {
  return Alive(screen) && AcceleratorTarget(screen, letter) != nullptr;
}

bool UserKeyDown(Screen* screen, KeyEvent& event) {
  Frame* frame = TheFrame();
  bool ofTheFrame = !screen || screen->placement == ScreenPlacement::Work;
  if (frame && !frame->enabled && ofTheFrame) return true;
  if (!screen) {
    if (frame && frame->keyDown) Guarded([&] { frame->keyDown(event); });
    return event.handled;
  }
  if (!Alive(*screen) || !screen->enabled) return true;
  ScreenCall call(*screen);
  if (event.alt && !event.ctrl && TakeAccelerator(*screen, event.key)) return true;
  Call(*screen, screen->on.keyDown, event);
  if (event.handled || !Alive(*screen)) return true;
  if (Control* control = screen->focus) Call(*screen, screen->on.controlKeyDown, *control, event);
  if (event.handled || !Alive(*screen)) return true;
  if (event.ctrl && event.key >= 'A' && event.key <= 'Z') {
    Control* control = screen->focus;
    return !(control && control->kind == ControlKind::TextArea);
  }
  if (event.alt || event.ctrl) return false;
  bool character = event.character != 0 || event.key == KeyEnter || event.key == KeyEscape ||
                   event.key == KeyBackspace;
  if (!character) return false;
  if (event.character == 0) event.character = event.key;
  return PressCharacter(*screen, event);
}

void UserKeyUp(Screen* screen, KeyEvent& event) {
  if (screen && Alive(*screen)) Call(*screen, screen->on.keyUp, event);
}

void Guarded(const std::function<void()>& routine) {
  try {
    routine();
  } catch (const Failure& failure) {
    if (failure.number == FailureCancel) return;
    MsgBox(FailureText(failure), Buttons::Ok, "Error", BoxIcon::Critical);
  }
}
