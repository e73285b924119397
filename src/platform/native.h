// What each implementation provides below the records, and what it calls when the user does
// something. Nobody but src/platform includes this.
#pragma once

#include "platform/frame.h"
#include "platform/screen.h"

// ---- provided by the implementation -------------------------------------------------------------

// What of a control has changed since it was drawn last; bits of Control::changes.
enum Changed : unsigned {
  ChangedText = 1,
  ChangedCaption = 2,
  ChangedColours = 4,
  ChangedState = 8,  // enabled, visible, checked, readOnly
  ChangedItems = 16,
  ChangedListIndex = 32,
  ChangedValue = 64,
  ChangedSelection = 128,
  ChangedDrawing = 256,
};

void NativeCreateScreen(Screen& screen);
void NativeShowScreen(Screen& screen);  // to the front of its placement
void NativeHideScreen(Screen& screen);
void NativeDestroyScreen(Screen& screen);
void NativeScreenChanged(Screen& screen);  // title, back colour, enabled
// Collected and carried out before the next pass of the queue; the record holds what to show.
void NativeControlChanged(Control& control, unsigned changes);
// Moves the toolkit's focus; told only when the last wish is settled.
void NativeFocus(Control& control);
void NativeActivate(Screen& screen);

void NativeShowFrame(Frame& frame);
void NativeCloseFrame(Frame& frame);
void NativeFrameChanged(Frame& frame);  // title, status, enabled
void NativeMenuChanged(Frame& frame, MenuItem& item);
void NativePopUpMenu(Frame& frame, MenuItem& item);

// ---- called by the implementation ---------------------------------------------------------------

// A key of the user in a screen (or in none: the frame's). Runs accelerators (Alt and a letter),
// the screen's key-down, the control's key-down, the cancel button and, for a character, the
// key-press. Result: true when the toolkit must do nothing more with it. `event.character` may have
// changed.
bool UserKeyDown(Screen* screen, KeyEvent& event);
void UserKeyUp(Screen* screen, KeyEvent& event);
// Whether Alt and this letter mean something on the screen (before the menu bar gets it).
bool ScreenTakesAccelerator(Screen& screen, int letter);
// The user moved the focus by Tab or mouse.
void UserFocus(Control& control);
// The user edited a field or moved its selection.
void UserText(Control& control, const std::string& text, int selStart, int selLength);
void UserSelection(Control& control, int selStart, int selLength);
void UserClick(Control& control);  // a click, Space on a button, a choice of a radio button
void UserListChoice(Control& control, int index);  // change of listIndex by the user, then click
void UserDoubleClick(Control& control, int index);
void UserMouse(Control& control, const MouseEvent& event);
void UserCanvasSize(Control& control, int width, int height);
void UserActivated(Screen& screen);  // its window got the keys
void UserCloseBox(Screen& screen);
void UserFrameClose(Frame& frame);
void UserMenu(MenuItem& item);

// Runs a routine of ours that the queue calls. A Failure that escapes it is shown in the "Error"
// box and goes no further.
void Guarded(const std::function<void()>& routine);

// The implementation's Yield, boxes and RunProgram: everything that runs the event queue from
// inside a routine stands in one of these.
struct YieldScope {
  YieldScope();
  ~YieldScope();
  YieldScope(const YieldScope&) = delete;
  YieldScope& operator=(const YieldScope&) = delete;
};
// Wakes the event loop: a routine waits in RunSoon or RunFromQueue.
void NativeWake();
// Routines of RunSoon; called in every pass. Result: whether there was one.
bool RunSoonRoutines();
// Routines of RunFromQueue, run by the implementation's RunProgram when YieldDepth() is 0. Result:
// whether there was one.
bool RunQueuedRoutines();
// Puts the start state back (tests).
void ResetPlatform();
