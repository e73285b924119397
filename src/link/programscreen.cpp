// The screen `Program_ZEM`.
#include "link/programscreen.h"

#include <string>
#include <utility>

#include "core/globalstate.h"
#include "core/s19file.h"
#include "core/version.h"
#include "link/programmer.h"

namespace {

struct LabelRow {
  const char* name;
  double fontScale;
  bool bold;
};
constexpr LabelRow titleRows[] = {
    {"FileLine", 1.1, true}, {"SoftwareLine", 1, false}, {"PromLine", 1, false},
    {"Version", 1, false},   {"Progress", 1.1, true},
};
constexpr LabelRow endRows[] = {{"Result", 1.3, true}, {"Hint", 1, false}};

void AddLabel(Screen& screen, const LabelRow& row) {
  Add(screen, {.name = row.name,
               .kind = ControlKind::Label,
               .place = {.in = "Middle", .align = Align::Fill},
               .textAlign = Align::Centre,
               .fontScale = row.fontScale,
               .bold = row.bold});
}

void AddCounter(Screen& screen, const char* name, const char* caption) {
  Add(screen, {.name = std::string(name) + "Caption",
               .kind = ControlKind::Label,
               .caption = caption,
               .place = {.in = "Counters"}});
  Add(screen, {.name = name,
               .kind = ControlKind::Label,
               .place = {.in = "Counters"},
               .widthChars = 4,
               .textAlign = Align::Right,
               .framed = true});
}

void AddCounters(Screen& screen) {
  Add(screen, {.name = "Counters",
               .kind = ControlKind::Row,
               .place = {.in = "Middle", .align = Align::Fill}});
  AddCounter(screen, "Record", "Record");
  AddCounter(screen, "Pass", "Pass");
  Add(screen, {.name = "Bar",
               .kind = ControlKind::ProgressBar,
               .place = {.in = "Counters", .align = Align::Fill, .stretch = 1},
               .accessibleName = "Programmed"});
}

void Build(Screen& screen) {
  Add(screen, {.name = "Above", .kind = ControlKind::Spacer});
  Add(screen, {.name = "Middle", .kind = ControlKind::Column, .place = {.align = Align::Centre}});
  for (const LabelRow& row : titleRows) AddLabel(screen, row);
  At(screen, "FileLine").wrap = true;
  At(screen, "FileLine").widthChars = 64;
  AddCounters(screen);
  for (const LabelRow& row : endRows) AddLabel(screen, row);
  Add(screen, {.name = "Below", .kind = ControlKind::Spacer});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "<< Back",
               .place = {.align = Align::Left}});
}

// A key that is only held down belongs to what opened the screen, and a modifier to a key or menu
// that is still to come.
bool IsAnyKey(const KeyEvent& event) {
  const bool modifier =
      event.key == KeyShift || event.key == KeyControl || event.key == KeyAlt || event.alt;
  return !modifier && !event.repeat && event.key != KeyNone;
}

void ProgramKey(Screen&, KeyEvent& event) {
  if (event.repeat) event.handled = true;
  if (!IsAnyKey(event)) return;
  event.handled = true;
  LeaveProgram_ZEM();
}

void SetLabel(const char* name, std::string text) {
  if (!IsUp(Program_ZEM)) return;
  if (Control* label = Find(Program_ZEM, name)) SetCaption(*label, std::move(text));
}

void SetBar(std::int64_t value, std::int64_t maximum) {
  if (!IsUp(Program_ZEM)) return;
  SetValue(At(Program_ZEM, "Bar"), static_cast<int>(value), static_cast<int>(maximum));
}

}  // namespace

Screen Program_ZEM{.name = "Program_ZEM",
                   .title = "Program ZEM",
                   .build = Build,
                   .on = {.unload = [](Screen&) { StopProgramming(); },
                          .keyDown = ProgramKey,
                          .click =
                              [](Screen&, Control& control) {
                                if (control.name == "Command1") LeaveProgram_ZEM();
                              }},
                   .cancelButton = "Command1",
                   .defaultFocus = "Command1"};

void ShowTitle() {
  SetLabel("FileLine", "Filename " + S19Path(CurrentBinPath) + " is for use with calibration");
  SetLabel("SoftwareLine", "software version = Halvane2");
  SetLabel("PromLine", "and ZEM PROM version HV201xx    Using COM" + std::to_string(ComPort));
  SetLabel("Version", VersionNumberText());
  SetLabel("Progress", "*************** PROGRAMING ZEM ***************");
  for (const char* name : {"Record", "Pass", "Result", "Hint"}) SetLabel(name, "");
  SetBar(0, 100);
}

void ShowRecord(int record, int pass, std::int64_t position, std::int64_t length) {
  SetLabel("Record", std::to_string(record));
  SetLabel("Pass", std::to_string(pass));
  SetBar(position, length);
}

void ShowResult(bool verified) {
  SetLabel("Result", verified ? "*************** PROGRAM VERIFIED ***************"
                              : "*************** CHECKSUM ERROR ***************");
  if (!IsUp(Program_ZEM)) return;
  SetForeColour(At(Program_ZEM, "Result"), verified ? Green : Red);
  if (verified) SetBar(100, 100);
}

void ShowExitHint() { SetLabel("Hint", "Press any key to exit."); }

void LeaveProgram_ZEM() {
  const bool forAnEditor = KillFirst;
  UnloadScreen(Program_ZEM);
  if (!forAnEditor && !TopWorkScreen()) OpenScreen("Form1");
}
