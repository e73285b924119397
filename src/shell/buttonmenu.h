// Screens that consist of buttons: rows of caption and action, arrow keys to walk them, buttons of
// screens that nobody has registered greyed out.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/screen.h"
#include "shell/action.h"

struct ButtonRow {
  std::string_view name;
  std::string_view caption;
  std::string_view group;  // name of the container it stands in
  Action action;
  std::string_view icon = {};
  bool offWhileOnfly = false;  // switched off while the digital monitor runs
};

// Adds a titled group of buttons at its place in the grid "Groups".
void AddButtonGroup(Screen& screen, const std::string& name, const std::string& caption, int row,
                    int column);
// Adds the buttons while the screen is built.
void AddButtons(Screen& screen, std::span<const ButtonRow> rows);
// Switches each button by whether its action is ready.
void RefreshButtons(Screen& screen, std::span<const ButtonRow> rows);
// Runs the action of the row whose button this is. Result: whether there is one.
bool RunButton(std::span<const ButtonRow> rows, const Control& button);
// Left and Right go to the button beside, in the next group of the grid; Up and Down, and all
// arrows in a row, are left to the platform, which moves through all buttons.
void WalkButtons(Screen& screen, KeyEvent& event);
