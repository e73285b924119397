// The screen of the program's options: which monitor opens, and in which colours.
#include <array>
#include <string>
#include <string_view>

#include "core/settings.h"
#include "shell/menus.h"
#include "shell/navigation.h"
#include "shell/tools.h"

namespace {

struct Choice {
  std::string_view name;
  std::string_view caption;
  std::string_view group;
  std::string_view setting;
  int value;
};

constexpr std::array<Choice, 4> choices = {{
    {"Option1", "&Analog Monitor Screen (EDIT Mode)", "Monitor", "Screensetting", 0},
    {"Option2", "&Digital Monitor Screen (ONFLY Mode)", "Monitor", "Screensetting", 1},
    {"Option3", "&Normal Contrast Monitor Screen (Blue)", "Contrast", "Monitor Screen", 0},
    {"Option4", "&High Contrast Monitor Screen (Black)", "Contrast", "Monitor Screen", 1},
}};

void Build(Screen& screen) {
  Add(screen, {.name = "Monitor", .kind = ControlKind::Group, .caption = "Engine Monitor Type"});
  Add(screen, {.name = "Contrast", .kind = ControlKind::Group, .caption = "Screen Type"});
  for (const Choice& choice : choices)
    Add(screen, {.name = std::string(choice.name),
                 .kind = ControlKind::RadioButton,
                 .caption = std::string(choice.caption),
                 .place = {.in = std::string(choice.group)}});
  Add(screen, {.name = "Leaving", .kind = ControlKind::Row});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "<< BACK",
               .place = {.in = "Leaving"}});
  Add(screen, {.name = "Rest", .kind = ControlKind::Spacer, .place = {.in = "Leaving"}});
}

// Anything but 0 counts as 1.
void Load(Screen& screen) {
  for (const Choice& choice : choices) {
    const int value = ReadSetting("Options", choice.setting) == 0 ? 0 : 1;
    if (value == choice.value) SetChecked(At(screen, choice.name), true);
  }
}

void Click(Screen& screen, Control& control) {
  for (const Choice& choice : choices)
    if (control.name == choice.name) StoreSetting("Options", choice.setting, choice.value);
  if (control.name != "Command1") return;
  RefreshMenuMarks();
  UnloadScreen(screen);
  ReturnToMainMenu();
}

}  // namespace

Screen Options{.name = "Options",
               .title = "SCREEN OPTIONS",
               .placement = ScreenPlacement::Dialog,
               .build = Build,
               .on = {.load = Load, .click = Click},
               .cancelButton = "Command1"};
