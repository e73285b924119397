#include "support/keynames.h"

#include <gtest/gtest.h>

#include <cctype>

namespace {

struct Row {
  std::string_view name;
  int key;
  int character;
  bool keypad = false;
};

constexpr Row Rows[] = {
    {"Enter", KeyEnter, 13},
    {"KeypadEnter", KeyEnter, 13, true},
    {"Esc", KeyEscape, 27},
    {"Backspace", KeyBackspace, 8},
    {"Tab", KeyTab, 0},
    {"Space", KeySpace, ' '},
    {"Left", KeyLeft, 0},
    {"Up", KeyUp, 0},
    {"Right", KeyRight, 0},
    {"Down", KeyDown, 0},
    {"Home", KeyHome, 0},
    {"End", KeyEnd, 0},
    {"PageUp", KeyPageUp, 0},
    {"PageDown", KeyPageDown, 0},
    {"Insert", KeyInsert, 0},
    {"Delete", KeyDelete, 0},
    {"Plus", '+', '+'},
    {"Minus", '-', '-'},
    {"KeypadPlus", '+', '+', true},
    {"KeypadMinus", '-', '-', true},
    {"Shift", KeyShift, 0},
    {"Ctrl", KeyControl, 0},
    {"Alt", KeyAlt, 0},
    {"F1", KeyF1, 0},
    {"F2", KeyF2, 0},
    {"F3", KeyF3, 0},
    {"F4", KeyF4, 0},
    {"F5", KeyF5, 0},
    {"F6", KeyF6, 0},
    {"F7", KeyF7, 0},
    {"F8", KeyF8, 0},
    {"F9", KeyF9, 0},
    {"F10", KeyF10, 0},
    {"F11", KeyF11, 0},
    {"F12", KeyF12, 0},
};

bool TakePrefix(std::string_view& name, std::string_view prefix) {
  if (name.size() <= prefix.size() || !name.starts_with(prefix)) return false;
  name.remove_prefix(prefix.size());
  return true;
}

KeyEvent PlainKey(std::string_view name) {
  if (name.size() == 1) {
    char typed = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
    return KeyTyping(typed);
  }
  for (const Row& row : Rows)
    if (row.name == name) return {.key = row.key, .keypad = row.keypad, .character = row.character};
  ADD_FAILURE() << "no key is named " << name;
  return {};
}

}  // namespace

KeyEvent KeyTyping(char character) {
  auto byte = static_cast<unsigned char>(character);
  return {.key = std::toupper(byte), .shift = std::isupper(byte) != 0, .character = byte};
}

KeyEvent KeyNamed(std::string_view name) {
  bool ctrl = false, alt = false, shift = false;
  for (bool more = true; more;) {
    more = false;
    if (TakePrefix(name, "Ctrl+")) more = ctrl = true;
    if (TakePrefix(name, "Alt+")) more = alt = true;
    if (TakePrefix(name, "Shift+")) more = shift = true;
  }
  KeyEvent event = PlainKey(name);
  event.ctrl = ctrl;
  event.alt = alt;
  event.shift = event.shift || shift;
  if (shift && event.key >= 'A' && event.key <= 'Z') event.character = event.key;
  if (ctrl || alt) event.character = 0;
  return event;
}
