// From the user's actions to the routines of a screen: keys, text, clicks.
#include <exception>

#include "platform/calls.h"
#include "platform/dialogs.h"
#include "platform/failure.h"
#include "platform/native.h"

namespace {

bool Alive(const Screen& screen) { return Watch(screen).Alive(); }

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

bool IsOperated(const Control& control) {
  return control.kind == ControlKind::Button || control.kind == ControlKind::RadioButton ||
         control.kind == ControlKind::CheckBox;
}

// The letter of a field that has the keys already is no move of the focus, and nobody is told of
// one. What is typed next takes the place of the old text all the same.
void SelectForTypingOver(Control& field) {
  if (field.kind == ControlKind::TextField)
    SelectText(field, 0, static_cast<int>(field.text.size()));
}

bool TakeAccelerator(Screen& screen, const KeyEvent& event) {
  Control* target = AcceleratorTarget(screen, event.key);
  if (!target) return false;
  if (IsOperated(*target)) {
    if (!event.repeat) UserClick(*target);
    return true;
  }
  const bool isThere = screen.focus == target;
  SetFocus(*target);
  if (isThere) SelectForTypingOver(*target);
  return true;
}

// What a key does by itself in a control that is operated, not edited, and Tab everywhere; the same
// on every platform. A key that is held down operates nothing anew: a button that has got the focus
// meanwhile is not what it was pressed for. Result: true when the toolkit must do nothing more.
bool OperateByKey(Screen& screen, const KeyEvent& event) {
  if (event.ctrl || event.alt) return false;
  if (event.key == KeyTab) {
    UserTab(screen, !event.shift);
    return true;
  }
  Control* control = screen.focus;
  if (!control || !IsOperated(*control)) return false;
  if (event.key == KeySpace || (event.key == KeyEnter && control->kind == ControlKind::Button)) {
    if (!event.repeat) UserClick(*control);
    return true;
  }
  if (event.key < KeyLeft || event.key > KeyDown) return false;
  bool forward = event.key == KeyRight || event.key == KeyDown;
  if (control->kind != ControlKind::RadioButton)
    UserTab(screen, forward);
  else if (Control* next = NextInRadioGroup(*control, forward))
    UserClick(*next);
  return true;
}

// Esc clicks the cancel button where there is one. Enter, Esc, backspace and characters reach the
// focused control as a key press. An Esc that is held down leaves one screen, not all behind it.
// Result: true when nobody must see the key any more.
bool PressCharacter(Screen& screen, KeyEvent& event) {
  if (event.key == KeyEscape && event.repeat) return true;
  if (event.key == KeyEscape && !screen.cancelButton.empty()) {
    Control* cancel = Find(screen, screen.cancelButton);
    if (cancel && IsUsable(*cancel)) {
      CallClick(*cancel);
      return true;
    }
  }
  if (Control* control = screen.focus) {
    Watch watch(screen);
    KeyPress press{event.character};
    CallScreen(screen, screen.on.keyPress, *control, press);
    event.character = press.character;
    if (!watch.Alive() || press.character == 0 || screen.focus != control) return true;
  }
  return event.key == KeyEscape;
}

bool IsCharacter(const KeyEvent& event) {
  return event.character != 0 || event.key == KeyEnter || event.key == KeyEscape ||
         event.key == KeyBackspace;
}

// The frame's keys: those of no screen.
bool KeyOfFrame(KeyEvent& event) {
  Frame* frame = TheFrame();
  if (!frame || !frame->enabled) return true;
  if (frame->keyDown) Guarded([&] { frame->keyDown(event); });
  return event.handled;
}

void ShowInErrorBox(const Failure& failure) {
  if (failure.number == FailureCancel) return;
  MsgBox(FailureText(failure), Buttons::Ok, "Error", BoxIcon::Critical);
}

}  // namespace

// ---- clicks and text --------------------------------------------------------------------------

void CallChange(Control& control) {
  Screen& screen = *control.owner;
  if (IsUp(screen)) CallScreen(screen, screen.on.change, control);
}

void CallClick(Control& control) {
  Screen& screen = *control.owner;
  if (Alive(screen)) CallScreen(screen, screen.on.click, control);
}

void ClickControl(Control& control) { UserClick(control); }

// A button whose focus is refused by a routine is not operated.
void UserClick(Control& control) {
  Screen& screen = *control.owner;
  if (!Alive(screen) || !IsUsable(control)) return;
  ScreenCall call(screen);
  Watch watch(screen);
  if (TakesFocus(control)) {
    UserFocus(control);
    if (!watch.Alive() || screen.focus != &control) return;
  }
  if (control.kind == ControlKind::RadioButton) SetChecked(control, true);
  if (control.kind == ControlKind::CheckBox) SetChecked(control, !control.checked);
  CallClick(control);
}

void UserListChoice(Control& control, int index) {
  Screen& screen = *control.owner;
  if (!Alive(screen) || !IsUsable(control)) return;
  ScreenCall call(screen);
  Watch watch(screen);
  UserFocus(control);
  if (!watch.Alive()) return;
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
  CallScreen(screen, screen.on.doubleClick, control);
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
  if (Alive(screen)) CallScreen(screen, screen.on.mouse, control, event);
}

void UserCanvasSize(Control& control, int width, int height) {
  Screen& screen = *control.owner;
  if (!Alive(screen) || (control.canvasWidth == width && control.canvasHeight == height)) return;
  control.canvasWidth = width;
  control.canvasHeight = height;
  CallScreen(screen, screen.on.resized, control);
}

void UserActivated(Screen& screen) { NoteActive(screen); }

void UserCloseBox(Screen& screen) {
  if (!Alive(screen)) return;
  ScreenCall call(screen);
  if (screen.on.closeBox) {
    CallScreen(screen, screen.on.closeBox);
    return;
  }
  Control* cancel = screen.cancelButton.empty() ? nullptr : Find(screen, screen.cancelButton);
  if (cancel)
    CallClick(*cancel);
  else
    UnloadScreen(screen);
}

// ---- keys -------------------------------------------------------------------------------------

bool UserReaches(const Screen& screen) {
  if (!Alive(screen) || !screen.visible || !screen.enabled) return false;
  const Screen* dialog = OpenDialogScreen();
  if (dialog && dialog != &screen) return false;
  const Frame* frame = TheFrame();
  bool inside =
      screen.placement == ScreenPlacement::Work || screen.placement == ScreenPlacement::Child;
  return !inside || !frame || frame->enabled;
}

void UserTab(Screen& screen, bool forward) {
  Control* next = NextInTabOrder(screen, screen.focus, forward);
  if (next) UserFocus(*next);
}

bool ScreenTakesAccelerator(Screen& screen, int letter) {
  return Alive(screen) && AcceleratorTarget(screen, letter) != nullptr;
}

bool UserKeyDown(Screen* screen, KeyEvent& event) {
  SettleLostFocus();
  if (!screen) return KeyOfFrame(event);
  if (!UserReaches(*screen)) return true;
  ScreenCall call(*screen);
  Watch watch(*screen);
  if (event.key == KeyTab || event.key == KeyDelete) event.character = 0;
  if (event.alt && !event.ctrl && TakeAccelerator(*screen, event)) return true;
  CallScreen(*screen, screen->on.keyDown, event);
  if (event.handled || !watch.Alive()) return true;
  if (Control* control = screen->focus)
    CallScreen(*screen, screen->on.controlKeyDown, *control, event);
  if (event.handled || !watch.Alive()) return true;
  if (event.ctrl && event.key >= 'A' && event.key <= 'Z') {
    Control* control = screen->focus;
    return !(control && control->kind == ControlKind::TextArea);
  }
  if (!event.alt && !event.ctrl && IsCharacter(event)) {
    if (event.character == 0) event.character = event.key;
    if (PressCharacter(*screen, event)) return true;
  }
  if (OperateByKey(*screen, event)) return true;
  Control* control = screen->focus;
  return event.key == KeyEnter && !(control && control->kind == ControlKind::TextArea);
}

void UserKeyUp(Screen* screen, KeyEvent& event) {
  if (screen && UserReaches(*screen)) CallScreen(*screen, screen->on.keyUp, event);
}

void Guarded(const std::function<void()>& routine) {
  try {
    routine();
  } catch (const Failure& failure) {
    ShowInErrorBox(failure);
  } catch (const std::exception& unforeseen) {
    // A mistake of ours must not take the user's unsaved work with it.
    ShowInErrorBox({FailureInternal, "Halvane2", unforeseen.what()});
  }
}
