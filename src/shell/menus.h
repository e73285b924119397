// The menu bar as one table, and what keeps its entries right.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "platform/frame.h"
#include "shell/action.h"

struct MenuRow {
  std::string_view name;
  std::string_view parent;  // "" stands in the bar
  std::string_view caption;
  Action action = {};
  bool fromMain = false;      // off until Main switches it on
  bool advancedOnly = false;  // off in QUICK START
  bool lineBefore = false;
};

std::span<const MenuRow> MenuRows();
std::vector<MenuItem> BuildMenus();
// Switches on the entries that Main enables.
void EnableStartMenus();
// Switches every entry by whether its screen is registered and by the start mode.
void RefreshMenus();
// Check marks of monitor type, contrast and tips as the settings say.
void RefreshMenuMarks();
// Pops a menu of the bar up over the active screen.
void PopUp(std::string_view name);
