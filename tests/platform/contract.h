// What the contract tests share: a shown frame, and a journal of everything that a screen is told.
#pragma once

#include <string>
#include <vector>

#include "platform/frame.h"
#include "platform/screen.h"
#include "support/user.h"

using Journal = std::vector<std::string>;

// Writes every event of the screen into the journal: "got Text1", "press Text1 55",
// "change Text1 7". Keys by their number, with "+" for Ctrl. Routines that stand there already are
// called after their line.
void KeepJournal(Screen& screen, Journal& journal);

class ContractTest : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ShowFrame(frame);
  }

  // What has been told since the last time.
  Journal Told() { return std::exchange(journal, {}); }

  Journal journal;
  Frame frame{.name = "frmMain", .title = "Main"};
};

inline Control TextField(std::string name) {
  return {.name = std::move(name), .kind = ControlKind::TextField, .widthChars = 12};
}
inline Control Button(std::string name, std::string caption) {
  return {.name = std::move(name), .kind = ControlKind::Button, .caption = std::move(caption)};
}
inline Control Radio(std::string name, std::string caption, std::string in = {}) {
  return {.name = std::move(name),
          .kind = ControlKind::RadioButton,
          .caption = std::move(caption),
          .place = {.in = std::move(in)}};
}
