// Tests of editor screens: a known calibration, the parent screen, and short words for what a user
// does in a field.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "editors/editcycle.h"
#include "support/user.h"

class EditorTest : public PlatformTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Opens the editor as the menus do.
  void Open(Editor& editor);
  Editor& Edited() { return *editor_; }
  Screen& Up() { return editor_->screen; }
  Control& The(std::string_view control) { return At(Up(), control); }

  std::string Text(std::string_view control) { return ShownText(Up(), control); }
  Colour Back(std::string_view control) { return The(control).backColour; }
  bool AllSelected(std::string_view control);
  // Clicks into the field, types over what stands there, and presses Enter.
  void Enter(std::string_view control, std::string_view text);
  void Type(std::string_view control, std::string_view text);
  // The text of the message shown; a failure when there is none, or it has a title or more buttons.
  std::string Message();

  // The screen that Back leads to, and what else may be opened.
  Screen& Parent() { return parent_; }
  void RegisterOther(Screen& screen, std::string name);

 private:
  Editor* editor_ = nullptr;
  Screen parent_;
};
