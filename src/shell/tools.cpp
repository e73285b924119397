// The software tools.
#include "shell/tools.h"

#include <array>

#include "core/version.h"
#include "shell/guide.h"
#include "shell/hotkeys.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"

namespace {

void BackToMainMenu() { ShowMainMenu("SoftwareTools"); }

constexpr std::array<ButtonRow, 5> rows = {{
    {"Calculator", "&Calculator", "Tools", {"Calculator"}},
    {"MemoPad", "&Memo Pad", "Tools", {"Memoedit"}},
    {"PrintCalibration", "&Print Calibration File", "Tools", {"PRTForm"}},
    {"UsersGuide", "&View Software User's Guide", "Tools", {.run = ViewGuideFromTools}},
    {"Command1", "<< Back", "Leaving", {.run = BackToMainMenu}},
}};

void Build(Screen& screen) {
  Add(screen, {.name = "Groups", .kind = ControlKind::Grid, .place = {.align = Align::Centre}});
  AddButtonGroup(screen, "Tools", "Software Tools", 0, 0);
  Add(screen, {.name = "Leaving",
               .kind = ControlKind::Row,
               .place = {.in = "Groups", .row = 1, .column = 0}});
  AddButtons(screen, rows);
  Add(screen,
      {.name = "Rest", .kind = ControlKind::Spacer, .place = {.in = "Leaving", .stretch = 1}});
}

// It may have been left while the guide was open.
void Load(Screen& screen) { SetScreenEnabled(screen, true); }

void Shown(Screen& screen) {
  DoStats();
  RefreshButtons(screen, rows);
}

void OnKey(Screen& screen, KeyEvent& event) {
  if (!HandleHotKey(event)) WalkButtons(screen, event);
}

}  // namespace

Screen STools{.name = "STools",
              .title = "Software Tools        " + VersionText(),
              .build = Build,
              .on = {.load = Load,
                     .shown = Shown,
                     .keyDown = OnKey,
                     .click = [](Screen&, Control& control) { RunButton(rows, control); }},
              .cancelButton = "Command1"};

std::span<const ButtonRow> ToolRows() { return rows; }
