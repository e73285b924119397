// What an entry of a menu, a button or a node of the tree does, as a record. All three kinds name
// the same screens; what nobody has registered yet is greyed out wherever it stands.
#pragma once

#include <string_view>

struct Action {
  std::string_view screen = {};  // the registered name that it needs, "" when it needs none
  void (*run)() = nullptr;       // what it does; without one the screen is opened
  bool beside = false;           // what is up stays up: the screen is a box or asks first
  std::string_view press = {};   // the button that is pressed on the opened screen, by its caption
  std::string_view (*screenNow)() = nullptr;  // a registered name that depends on the settings
};

// Whether the screen that it needs is registered.
bool IsReady(const Action& action);
// Does it; nothing happens when it is not ready.
void Run(const Action& action);
