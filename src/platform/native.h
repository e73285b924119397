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
// To the front of its placement. The first time it shows the record as it is by now, and every
// canvas is told its size (UserCanvasSize) before this returns.
void NativeShowScreen(Screen& screen);
void NativeHideScreen(Screen& screen);
void NativeDestroyScreen(Screen& screen);
void NativeScreenChanged(Screen& screen);  // title, back colour, enabled
// Collected and carried out before the next pass of the queue; the record holds what to show.
void NativeControlChanged(Control& control, unsigned changes);
// Moves the toolkit's focus; told only when the last wish is settled.
void NativeFocus(Control& control);
// Gives the keys to the screen, and to its `focus` when it has one.
void NativeActivate(Screen& screen);

void NativeShowFrame(Frame& frame);
void NativeCloseFrame(Frame& frame);
void NativeFrameChanged(Frame& frame);  // title, status, enabled
void NativeMenuChanged(Frame& frame, MenuItem& item);
void NativePopUpMenu(Frame& frame, MenuItem& item);

// ---- called by the implementation ---------------------------------------------------------------

// Whether keys and mouse of the user get through to the screen: it is shown and enabled, no dialog
// stands in front of it, and it is not inside a disabled frame. The implementation asks before it
// tells of mouse and close box; the keys are asked for here.
bool UserReaches(const Screen& screen);
// A key of the user: of OpenDialogScreen() when there is one, else of ActiveScreen(), else of none
// (the frame's). Runs accelerators (Alt and a letter), the screen's key-down, the control's
// key-down, the cancel button and, for a character, the key-press; then what the key does by itself
// in buttons, radio groups and check boxes (Space, Enter, arrows), and Tab. Result: true when the
// toolkit must do nothing more with it; what is left to it are the keys of text fields, lists and
// trees. `event.character` may have changed.
bool UserKeyDown(Screen* screen, KeyEvent& event);
void UserKeyUp(Screen* screen, KeyEvent& event);
// Whether Alt and this letter mean something on the screen (before the menu bar gets it).
bool ScreenTakesAccelerator(Screen& screen, int letter);
// The user moved the focus by the mouse.
void UserFocus(Control& control);
// The user moved the focus by Tab: in the order of the controls, over the ends. A radio group is
// one stop. UserKeyDown does it; for a toolkit that moves the focus on its own.
void UserTab(Screen& screen, bool forward);
Control* NextInTabOrder(Screen& screen, const Control* from, bool forward);
// The usable radio button of the same container that an arrow key leads to, over the ends; null
// when there is no other.
Control* NextInRadioGroup(Control& button, bool forward);
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

// Runs a routine of ours that the queue calls. A Failure or a std::exception that escapes it is
// shown in the "Error" box and goes no further.
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
// Routines of RunSoon, and the focus of controls that were disabled or hidden; called in every pass
// before the collected changes are carried out. Result: whether there was anything.
bool RunSoonRoutines();
// Routines of RunFromQueue, run by the implementation's RunProgram when YieldDepth() is 0. Result:
// whether there was one.
bool RunQueuedRoutines();
// Puts the start state back (tests).
void ResetPlatform();
