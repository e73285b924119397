// Keys and mouse as records. Standard C++.
#pragma once

#include <string>
#include <string_view>

// Codes of the keys that are no characters stand above 255; letters are 'A' to 'Z', digits '0' to
// '9', others the ASCII character that they type.
enum Key : int {
  KeyNone = 0,
  KeyBackspace = 8,
  KeyTab = 9,
  KeyEnter = 13,
  KeyEscape = 27,
  KeySpace = 32,
  KeyLeft = 256,
  KeyUp,
  KeyRight,
  KeyDown,
  KeyHome,
  KeyEnd,
  KeyPageUp,
  KeyPageDown,
  KeyInsert,
  KeyDelete,
  KeyShift,
  KeyControl,
  KeyAlt,
  KeyF1 = 301,
  KeyF2,
  KeyF3,
  KeyF4,
  KeyF5,
  KeyF6,
  KeyF7,
  KeyF8,
  KeyF9,
  KeyF10,
  KeyF11,
  KeyF12,
};

struct KeyEvent {
  int key = KeyNone;
  bool ctrl = false;
  bool alt = false;
  bool shift = false;
  bool keypad = false;
  int character = 0;     // what a text would get (Unicode), 0 when none, and with Ctrl or Alt
  bool repeat = false;   // a key that is held down, not pressed anew
  bool handled = false;  // set by a routine: nobody else sees the key
};

struct KeyPress {
  int character = 0;  // Unicode; a routine may set it to 0 to drop it
};

struct MouseEvent {
  enum Kind { Down, Move, Up } kind = Down;
  int button = 1;  // 1 left, 2 right
  double x = 0;
  double y = 0;
  bool shift = false;
  bool ctrl = false;
};

// The accelerator letter of a caption ('O' of "Time &On"), upper case, 0 when there is none.
// "&&" is a literal ampersand.
int AcceleratorOf(std::string_view caption);
// The caption without its mark.
std::string PlainCaption(std::string_view caption);
