// What the keys of the monitors share: their tables, flags of what is shown, panels.
#pragma once

#include <span>
#include <string>

#include "platform/screen.h"

struct MonitorKey {
  int key;
  void (*run)();
};
// Runs what the key does and marks it as handled, unless Ctrl or Alt is held. A key that is held
// down acts once.
void RunMonitorKey(std::span<const MonitorKey> keys, KeyEvent& event);

// Changes a flag that figures are shown by, and shows them anew.
void ToggleShown(bool& flag);

// The click of a panel whose button "Command1" closes it.
void CloseByButton(Screen& screen, Control& control);
// The panel that F1 opens: lines "Label1" and so on, and a button that closes it.
Screen MonitorHelp(std::string name, std::string title, std::span<const char* const> lines);
