// What the files of the headless platform share among themselves. Nobody else includes this.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/frame.h"
#include "platform/screen.h"

namespace headless {

void ResetLoop();
void ResetFiles();
void ResetPorts();
void ResetSystem();
void ResetBoxes();
void ResetScreens();
void ResetText();

// One turn of the queue at the present time: what is due, then RunSoon. Result: whether anything
// ran. Events that come up meanwhile wait for the next turn.
bool RunTurn();
// Tells ports whose device was unplugged. Result: whether one was told.
bool TellGonePorts();

// A message, an input box or a file dialog stands in front of everything.
bool BoxIsOpen();

// The full path of a name: from the current folder, without "." and "..".
std::string FullPath(const std::string& path);
std::string FolderOf(const std::string& path);
std::string NameOf(const std::string& path);

// The default action of a key that no routine took, in the control that has the focus.
void EditText(Control& control, const KeyEvent& event);
// A click places the cursor behind the text.
void CursorToEnd(Control& control);

// What the user sees of a control: the record as of the last told change.
struct ShownControl {
  std::string text;
  std::string caption;
  bool visible = true;
  bool enabled = true;
  bool checked = false;
  int listIndex = -1;
};
// The field shows what the user typed.
void Typed(Control& control, const std::string& text);
// The list shows what the user chose.
void Chosen(Control& control, int index);
// Null when its screen is not created.
const ShownControl* ShownOf(const Control& control);
// The control that the native focus of the screen stands on, or null.
Control* NativeFocusOf(Screen& screen);

}  // namespace headless
