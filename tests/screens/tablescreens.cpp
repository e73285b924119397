// The fixture of the table screens.
#include "screens/tablescreens.h"

#include <algorithm>

#include "core/encoder.h"

namespace {

constexpr std::array<float, 8> speeds = {500, 1000, 1500, 2000, 3000, 4000, 5000, 6000};
constexpr std::array<float, 8> loads = {20, 30, 40, 50, 60, 70, 85, 100};

// VE -31 to 32 %, advance 0.5 to 32 degrees, air/fuel 10.25 to 26, GPO 1 to 64 %.
void FillTables() {
  std::copy(speeds.begin(), speeds.end(), &CalValues[45]);
  std::copy(loads.begin(), loads.end(), &CalValues[53]);
  for (std::size_t cell = 1; cell <= 64; ++cell) {
    const auto number = static_cast<float>(cell);
    CalValues[124 + cell] = (number - 32) / 100;
    CalValues[60 + cell] = number / 2;
    CalValues[344 + cell] = 10 + number / 4;
    CalValues[260 + cell] = number;
  }
  CalValues[3] = 12;
  CalValues[4] = 6500;
  CalValues[325] = 8;
  CalValues[491] = 4;
  CalValues[498] = 3;
  PublishCalGlobals();
  CopyTablesToWork();
  MaxManifoldKpa = 104;
}

void AddButton(Screen& screen, const char* name, const char* caption) {
  Add(screen, {.name = name, .kind = ControlKind::Button, .caption = caption});
}

}  // namespace

void TableTest::SetUp() {
  EditorTest::SetUp();
  FillTables();
  ResetTableViews();
  Graph3DCaption = {};
  ScreenClass = 3;
  calibration.build = [](Screen& screen) {
    AddButton(screen, "Back", "<< Back");
    AddButton(screen, "VolumetricEfficiency", "&Volumetric Efficiency Table");
    AddButton(screen, "EgoTable", "&EGO Air/Fuel Ratio Table");
    AddButton(screen, "IgnitionAdvance", "Ignition &Advance Table");
    AddButton(screen, "GpoControl", "&GPO Control");
  };
  graph.build = other.build = [](Screen& screen) { AddButton(screen, "Command1", "<< Back"); };
  RegisterOther(calibration, "CSForm1");
  RegisterOther(graph, "Graph3D");
}

void TableTest::TearDown() {
  EditorTest::TearDown();
  ResetTableViews();
}

void TableTest::OpenTable(Editor& editor) {
  Open(editor);
  CalChanged = false;
}

void TableTest::Reopen() {
  UnloadScreen(Up());
  OpenTable(Edited());
}

void TableTest::GoLive() {
  MonitorMode = 3;
  Reopen();
}

void TableTest::ExpectCaptions(std::vector<std::pair<const char*, const char*>> own) {
  own.insert(
      own.end(),
      {{"KeysLine",
        "Press F3 to Edit Rows      Press F4 to Edit Columns   Type ALT-S to Edit Full Table."},
       {"SpeedTitle", "Engine Speed (RPM)"},
       {"HelpLine", "Press F1 For Help"},
       {"OnflyLine", "ONFLY Values have Yellow Background"}});
  for (const auto& [control, caption] : own) EXPECT_EQ(The(control).caption, caption);
}

std::string TableTest::At(int position) {
  return TableOf(Edited()).rules.cells + "(" + std::to_string(position) + ")";
}

void TableTest::FillWith(std::string_view key, std::optional<std::string> answer) {
  AnswerNextInput(std::move(answer));
  PressKey(key);
}

std::pair<std::string, std::string> TableTest::Question() {
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.kind, "input");
  return {box.title, box.text};
}
