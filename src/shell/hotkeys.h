// The hot keys that every screen shares.
#pragma once

#include "platform/keys.h"

// What a screen does otherwise.
struct HotKeyRules {
  bool calibrationScreen = true;  // Ctrl+E; the calibration screen itself has none
  bool portOneOrTwoOnly = false;  // Ctrl+P flips between ports 1 and 2 and keeps no setting
};

// Called first in a screen's key-down while nothing stands in the way there (a pending entry).
// Result: whether it was a hot key; the event is then handled.
bool HandleHotKey(KeyEvent& event, const HotKeyRules& rules = {});

// Save and program in one go, then back to the monitor. The digital monitor and the active screen
// are closed at once; the rest runs from the queue, outside of every live loop. Without a good save
// nothing is programmed; while another session keeps the port it saves and refuses the rest. Does
// nothing while a request of before waits for its session to be released.
void SaveAndProgram();
