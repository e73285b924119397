// The fixture of the editor screens.
#include "screens/editorscreens.h"

#include "core/globalstate.h"
#include "link/postedwrite.h"

namespace {

constexpr const char* injectorButton = "Basic Injector Graph/&Parameters";

void FillCalibration() {
  ResetCalibrationState();
  CalValues[2] = 1;
  CalValues[4] = 6000;
  CalValues[9] = 4.92F;
  CalValues[217] = 8;
  CalValues[232] = 10;
  CalValues[233] = 1;
  CalValues[344] = 1.5F;
}

}  // namespace

void EditorTest::SetUp() {
  PlatformTest::SetUp();
  FillCalibration();
  ResetEditCycle();
  ResetPostedWrite();
  parent_.build = [](Screen& screen) {
    Add(screen, {.name = "Back", .kind = ControlKind::Button, .caption = "<< Back"});
    Add(screen, {.name = "Button7", .kind = ControlKind::Button, .caption = injectorButton});
  };
  RegisterOther(parent_, "CSForm1");
}

void EditorTest::TearDown() {
  ShowHelpTopic = nullptr;
  UnloadAllScreens();
  PlatformTest::TearDown();
  ResetCalibrationState();
}

void EditorTest::RegisterOther(Screen& screen, std::string name) {
  screen.name = name;
  RegisterScreen(std::move(name), [&screen] { ShowScreen(screen); });
}

void EditorTest::Open(Editor& editor) {
  editor_ = &editor;
  RegisterEditor(editor);
  OpenScreen(editor.name);
  RunPending();
}

bool EditorTest::AllSelected(std::string_view control) {
  const Control& field = The(control);
  return field.selStart == 0 && field.selLength == static_cast<int>(field.text.size());
}

void EditorTest::Type(std::string_view control, std::string_view text) {
  ClickOn(Up(), control);
  SelectText(The(control), 0, 1000);
  RunPending();
  TypeText(text);
}

void EditorTest::Enter(std::string_view control, std::string_view text) {
  Type(control, text);
  PressKey("Enter");
}

std::string EditorTest::Message() {
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.kind, "message");
  EXPECT_EQ(box.title, "");
  EXPECT_EQ(box.buttons, Buttons::Ok);
  return box.text;
}
