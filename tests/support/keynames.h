// Names of keys as tests write them, the same for every platform.
#pragma once

#include <string_view>

#include "platform/keys.h"

// "Enter", "Ctrl+S", "Shift+Tab", "KeypadPlus", "Ctrl" alone. A letter is the key without Shift: it
// types the small letter, "Shift+A" the large one. A name that no key has is a test failure.
KeyEvent KeyNamed(std::string_view name);
// The key that types this character.
KeyEvent KeyTyping(char character);
