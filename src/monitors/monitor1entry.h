// The nine run-time offsets of the analog monitor: the rows of its fields, and what typing into
// them does. A handler never sends; it stores the value and sets the pending flag.
#pragma once

#include <array>
#include <span>

#include "monitors/livefigures.h"
#include "platform/screen.h"

// A field that takes a number. Values are tested and stored as the mask shows them.
struct OffsetField {
  const char* control;  // "Text3"
  const char* caption;  // with its key
  const char* mask;     // "" takes whole numbers only
  double low;
  double high;
  const char* refusal;    // the range, as the refusal tells it
  const char* wholeText;  // what a period is answered with; "" where one is allowed
  double& value;
  double scale;  // value := entry / scale
  int& pending;
};

// While a field has the focus, frames flow and the display stands still. Starts as false.
extern bool FieldEditing;
// The panel "DATA INPUT ERROR" with the range that an entry must keep.
extern Screen MonitorInputError;

// Adds the two options, captions and fields to the grid of this name. Result: how many of its rows
// they take.
int AddOffsetControls(Screen& screen, const char* container, const MonitorColours& colours);
// Start values of a session: nothing is edited, zero advance is cleared.
void BeginOffsets(Screen& screen);
// What the opening commands have left in the control unit: the injector offset that it has told, no
// advance, the gama that was sent last, no zero advance. What was entered meanwhile and is to be
// sent stands in its place.
void ShowOpenedOffsets(Screen& screen);
// Between entries TOG, TPS blend and AFR offset follow the frame, and the injector offset is the
// one that was sent; during an entry of the AFR offset the wished ratio stands.
void ShowOffsets(Screen& screen);

// Events of the screen.
void OffsetGotFocus(Screen& screen, Control& control);
void OffsetLostFocus(Screen& screen, Control& control);
void OffsetClicked(Screen& screen, Control& control);
void OffsetKeyPress(Screen& screen, Control& control, KeyPress& press);
// Arrows, Enter and Esc of the AFR field. Result: whether the key was for it.
bool OffsetKeyDown(Screen& screen, KeyEvent& event);
