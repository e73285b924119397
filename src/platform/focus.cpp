// Which control of a screen has the keys: moves of the focus, the tab order, radio groups.
#include <utility>

#include "platform/calls.h"
#include "platform/native.h"

namespace {

// More moves in a row than any chain of fields that send the focus on to each other needs.
constexpr int FocusMovesAtMost = 32;

// A control was disabled, hidden or came back: the focus may stand on nothing.
bool usabilityChanged = false;

// One move: lost focus of the old control, got focus of the new one. A wish that comes up in
// either is left in screen.focusWish; one of lost-focus goes before the move that caused it.
void MoveOnce(Screen& screen, Control& to) {
  Watch watch(screen);
  Control* from = screen.focus;
  if (from) {
    CallScreen(screen, screen.on.lostFocus, *from);
    if (!watch.Alive()) return;
    screen.focus = nullptr;
  }
  Control* wish = screen.focusWish;
  if (wish && wish != &to && IsUsable(*wish)) return;
  bool usable = IsUsable(to);
  screen.focusWish = usable ? nullptr : from;
  if (!usable) return;
  screen.focus = &to;
  CallScreen(screen, screen.on.gotFocus, to);
}

void MoveFocus(Screen& screen, Control& target) {
  ScreenCall call(screen);
  Watch watch(screen);
  screen.focusMoving = true;
  screen.focusWish = &target;
  for (int move = 0; screen.focusWish && watch.Alive() && move < FocusMovesAtMost; ++move) {
    Control& to = *std::exchange(screen.focusWish, nullptr);
    if (&to != screen.focus && IsUsable(to)) MoveOnce(screen, to);
  }
  if (!watch.Alive()) return;
  screen.focusMoving = false;
  screen.focusWish = nullptr;
  if (!screen.focus && IsUsable(target)) screen.focus = &target;
  if (screen.focus) NativeFocus(*screen.focus);
}

Control* FirstField(Screen& screen) {
  if (!screen.defaultFocus.empty()) {
    Control* wished = Find(screen, screen.defaultFocus);
    if (wished && TakesFocus(*wished) && IsUsable(*wished)) return wished;
  }
  return NextInTabOrder(screen, nullptr, true);
}

bool SameGroup(const Control& one, const Control& other) {
  return one.kind == ControlKind::RadioButton && other.kind == ControlKind::RadioButton &&
         one.place.in == other.place.in;
}

// A radio group is one stop: its checked button, or the first one when none is checked.
bool StandsForItsGroup(const Control& button) {
  if (button.checked) return true;
  const Control* first = nullptr;
  for (const Control& other : button.owner->controls) {
    if (!SameGroup(button, other) || !IsUsable(other)) continue;
    if (other.checked) return false;
    if (!first) first = &other;
  }
  return first == &button;
}

bool IsTabStop(const Control& control) {
  if (!TakesFocus(control) || !control.tabStop || !IsUsable(control)) return false;
  return control.kind != ControlKind::RadioButton || StandsForItsGroup(control);
}

// Nobody has the focus, or somebody who can no longer have it.
void Resettle(Screen& screen) {
  if (!screen.visible || !IsUp(screen) || screen.focusMoving) return;
  Control* from = screen.focus;
  if (!from) {
    SettleFocus(screen);
    return;
  }
  if (IsUsable(*from)) return;
  if (Control* next = NextInTabOrder(screen, from, true)) {
    MoveFocus(screen, *next);
    return;
  }
  Watch watch(screen);
  ScreenCall call(screen);
  CallScreen(screen, screen.on.lostFocus, *from);
  if (watch.Alive() && screen.focus == from) screen.focus = nullptr;
}

}  // namespace

// ---- calls.h ------------------------------------------------------------------------------------

void SettleFocus(Screen& screen) {
  if (!screen.visible || screen.closing || screen.focus || screen.focusMoving) return;
  if (Control* first = FirstField(screen)) SetFocus(*first);
}

void NoteUsability() {
  usabilityChanged = true;
  NativeWake();
}

bool SettleLostFocus() {
  if (!std::exchange(usabilityChanged, false)) return false;
  std::vector<Screen*> screens = LoadedScreens();
  for (Screen* screen : screens) Resettle(*screen);
  return true;
}

// ---- screen.h, native.h -------------------------------------------------------------------------

void SetFocus(Control& control) {
  Screen& screen = *control.owner;
  if (!Watch(screen).Alive() || !TakesFocus(control) || !IsUsable(control)) return;
  if (screen.focusMoving)
    screen.focusWish = &control;
  else if (screen.focus == &control)
    NativeFocus(control);
  else
    MoveFocus(screen, control);
}

Control* FocusedControl(Screen& screen) { return screen.focus; }

void UserFocus(Control& control) {
  Screen& screen = *control.owner;
  if (!Watch(screen).Alive() || !TakesFocus(control) || !IsUsable(control)) return;
  if (!screen.focusMoving && screen.focus != &control) MoveFocus(screen, control);
}

Control* NextInTabOrder(Screen& screen, const Control* from, bool forward) {
  std::size_t count = screen.controls.size();
  std::size_t at = forward ? count - 1 : 0;  // so that the first step leads to an end
  for (std::size_t i = 0; from && i < count; ++i)
    if (&screen.controls[i] == from) at = i;
  for (std::size_t step = 0; step < count; ++step) {
    at = forward ? (at + 1) % count : (at + count - 1) % count;
    Control& control = screen.controls[at];
    bool sameStop = from && (&control == from || SameGroup(*from, control));
    if (!sameStop && IsTabStop(control)) return &control;
  }
  return nullptr;
}

Control* NextInRadioGroup(Control& button, bool forward) {
  std::deque<Control>& controls = button.owner->controls;
  Control* before = nullptr;  // the last one of the group ahead of the button
  Control* first = nullptr;
  Control* last = nullptr;
  Control* after = nullptr;
  bool passed = false;
  for (Control& other : controls) {
    if (&other == &button) passed = true;
    if (&other == &button || !SameGroup(button, other) || !IsUsable(other)) continue;
    if (!first) first = &other;
    if (!passed) before = &other;
    if (passed && !after) after = &other;
    last = &other;
  }
  if (forward) return after ? after : first;
  return before ? before : last;
}
