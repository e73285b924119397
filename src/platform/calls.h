// How src/platform calls the routines of a screen. Nobody else includes this.
#pragma once

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

void CallChange(Control& control);
void CallClick(Control& control);
// The screen got the keys; no event of ours.
void NoteActive(Screen& screen);
