// A small editor with a field of each kind, a list, a pair and buttons, for the tests of the cycle.
#pragma once

#include <string>

#include "screens/editorscreens.h"

// What the hooks of the small editor have noted since the test began.
struct EditorNotes {
  int redraws = 0;
  int leaves = 0;
  int refusals = 0;
  std::string pressed;
};
extern EditorNotes notes;

Editor& TestEditor();

inline const std::string retype = "Data Input Error\n\r  Retype Data";

class EditCycleTest : public EditorTest {
 protected:
  void SetUp() override;
  std::string Focus() { return ShownFocus(); }
};
