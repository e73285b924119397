// The test user on the headless platform.
#include "platform/frame.h"
#include "platform/headless/script.h"
#include "support/keynames.h"
#include "support/testfolder.h"
#include "support/user.h"

void PressKey(std::string_view key) { HeadlessKey(KeyNamed(key)); }

void RepeatKey(std::string_view key) {
  KeyEvent event = KeyNamed(key);
  event.repeat = true;
  HeadlessKey(event);
}

void TypeText(std::string_view text) {
  for (char character : text) HeadlessKey(KeyTyping(character));
}

void ClickOn(Screen& screen, std::string_view control) { HeadlessClick(At(screen, control)); }

void ChooseItem(Screen& screen, std::string_view control, int index) {
  HeadlessChoose(At(screen, control), index);
}

void DoubleClickNode(Screen& screen, std::string_view tree, std::string_view text) {
  Control& control = At(screen, tree);
  for (std::size_t i = 0; i < control.nodes.size(); ++i) {
    if (control.nodes[i].text != text) continue;
    HeadlessDoubleClick(control, static_cast<int>(i));
    return;
  }
  ADD_FAILURE() << "no node " << text << " in " << tree;
}

void ChooseMenu(std::string_view name) {
  Frame* frame = TheFrame();
  if (!frame || !FindMenu(*frame, name)) {
    ADD_FAILURE() << "no menu entry " << name;
    return;
  }
  HeadlessMenu(std::string(name));
}

void CloseByUser(Screen& screen) { HeadlessCloseBox(screen); }
void CloseFrameByUser() { HeadlessCloseFrame(); }
void RunPending() { RunUntilIdle(); }

void AnswerNextBox(Answer answer) { PushAnswer(answer); }
void AnswerNextInput(std::optional<std::string> text) { PushInput(std::move(text)); }
void AnswerNextFile(std::optional<std::string> path) { PushFile(std::move(path)); }

ShownBox TakeBox() {
  auto& boxes = HeadlessBoxes();
  if (boxes.empty()) {
    ADD_FAILURE() << "no box was shown";
    return {};
  }
  HeadlessBox box = boxes.front();
  boxes.erase(boxes.begin());
  return {.title = box.title,
          .text = box.text,
          .kind = box.kind,
          .buttons = box.buttons,
          .filter = box.filter};
}

bool AnyBoxShown() { return !HeadlessBoxes().empty(); }
std::string TakePopUpMenu() { return LastPopUpMenu(); }

std::string ShownText(Screen& screen, std::string_view control) {
  return SeenText(At(screen, control));
}
bool ShownVisible(Screen& screen, std::string_view control) {
  return SeenVisible(At(screen, control));
}
bool ShownEnabled(Screen& screen, std::string_view control) {
  return SeenEnabled(At(screen, control));
}
std::string ShownFocus() {
  Control* control = SeenFocus();
  return control ? control->name : "";
}

int ShownFocusMoves() { return SeenFocusMoves(); }

// ---- testfolder.h -------------------------------------------------------------------------------

std::string TestFolder() {
  PutFolder("/home/user/test");
  return "/home/user/test";
}
void MakeFolder(const std::string& path) { PutFolder(path); }
void MakeFile(const std::string& path, const std::string& bytes) { PutTextFile(path, bytes); }
void MakeLink(const std::string& path, const std::string& target) { PutLink(path, target); }
void MakeReadOnly(const std::string& path, bool readOnly) { SetReadOnlyFile(path, readOnly); }

// ---- the fixture --------------------------------------------------------------------------------

void PlatformTest::SetUp() { ResetHeadless(); }

void PlatformTest::TearDown() {
  for (const HeadlessBox& box : HeadlessBoxes())
    ADD_FAILURE() << "a box nobody looked at: " << box.kind << " \"" << box.text << "\"";
  EXPECT_EQ(AnswersLeft(), 0u) << "answers that no box asked for";
  ResetHeadless();
}
