// How src/platform calls the routines of a screen. Nobody else includes this.
#pragma once

#include "platform/native.h"
#include "platform/screen.h"

// Stands around every routine of a screen: a screen that is unloaded meanwhile is released at the
// end of the outermost one.
struct ScreenCall {
  explicit ScreenCall(Screen& calledScreen);
  ~ScreenCall();
  ScreenCall(const ScreenCall&) = delete;
  ScreenCall& operator=(const ScreenCall&) = delete;
  Screen& screen;
};

// Whether a screen still leads the life that it led when this was made: a routine may have unloaded
// it, and even loaded it anew with other controls.
struct Watch {
  explicit Watch(const Screen& watched) : screen(watched), life(watched.life) {}
  bool Alive() const { return IsUp(screen) && screen.life == life; }
  const Screen& screen;
  unsigned life;
};

// Calls a routine of the screen, if it has one. A Failure goes no further.
template <typename Routine, typename... Arguments>
void CallScreen(Screen& screen, const Routine& routine, Arguments&&... arguments) {
  if (!routine) return;
  ScreenCall call(screen);
  auto copy = routine;  // the record may be filled in anew meanwhile
  Guarded([&] { copy(screen, arguments...); });
}

void CallChange(Control& control);
void CallClick(Control& control);
// The screen got the keys; no event of ours.
void NoteActive(Screen& screen);

// Gives a shown screen without a focus its first one.
void SettleFocus(Screen& screen);
// A control was enabled, disabled, shown or hidden.
void NoteUsability();
// Moves the focus on from controls that cannot have it any more. Result: whether it had to look.
bool SettleLostFocus();
