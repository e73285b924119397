// The user at the keyboard and the mouse, for tests that run on both platforms: headless, and Qt
// with real key and mouse events. Implemented in support/headless and support/qt. What the user
// does is done when the routine returns; what it asked of the queue (RunSoon, RunFromQueue, the
// focus of a control that was disabled) comes with RunPending: a test is the queue.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dialogs.h"
#include "platform/screen.h"

// "Enter", "Esc", "Tab", "Up", "F5", "Ctrl+S", "Alt+O", "Shift+Tab", "A", "7", ".", "-",
// "Backspace", "Plus", "Minus", "KeypadPlus", "Ctrl" alone; see keynames.h.
void PressKey(std::string_view key);
void RepeatKey(std::string_view key);  // once more by itself, since it is held down
void TypeText(std::string_view text);  // one key after the other
void ClickOn(Screen& screen, std::string_view control);
void ChooseItem(Screen& screen, std::string_view control, int index);  // of a list
void DoubleClickNode(Screen& screen, std::string_view tree, std::string_view text);
void ChooseMenu(std::string_view name);  // an entry of the menu bar, by its name
void CloseByUser(Screen& screen);        // the window's own close box
void CloseFrameByUser();
// Lets the queue run until nothing is pending.
void RunPending();

// Boxes. Answers are taken in the order given; a box without one is left by its close box.
struct ShownBox {
  std::string title;
  std::string text;  // prompt of an input box; preset name of a file dialog
  std::string kind;  // "message", "input", "open", "save"
  Buttons buttons = Buttons::Ok;
  std::string filter;  // file dialogs
};
void AnswerNextBox(Answer answer);
void AnswerNextInput(std::optional<std::string> text);
void AnswerNextFile(std::optional<std::string> path);
// The oldest box that was shown and not taken yet; a test failure when there is none.
ShownBox TakeBox();
bool AnyBoxShown();
// The name of the menu popped up last, "" when none since it was asked.
std::string TakePopUpMenu();

// What stands on the screen as the platform shows it (not only in the record), changes that are
// still collected included. A field's text, else the chosen item, else the caption without "&".
std::string ShownText(Screen& screen, std::string_view control);
bool ShownVisible(Screen& screen, std::string_view control);
bool ShownEnabled(Screen& screen, std::string_view control);
std::string ShownFocus();  // name of the control that has the keys
int ShownFocusMoves();     // how often that has changed since the start of the test

// Starts the platform anew for each test; at the end no box and no answer may be left over. Screens
// are unloaded at the end: let them be members of the fixture, or longer lived.
class PlatformTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
};
