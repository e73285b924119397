// The screens that say what the program is.
#include "shell/about.h"

#include "core/version.h"

namespace {

void AddLine(Screen& screen, const char* name, std::string text, double scale, bool bold) {
  Add(screen, {.name = name,
               .caption = std::move(text),
               .place = {.align = Align::Centre},
               .textAlign = Align::Centre,
               .fontScale = scale,
               .bold = bold});
}

void AddName(Screen& screen) {
  AddLine(screen, "ProgramName", "Halvane2", 2, true);
  AddLine(screen, "Version", "Version " + VersionNumberText(), 1, false);
  AddLine(screen, "Maker", "Brantwell Engine Controls", 1.2, false);
}

void BuildAbout(Screen& screen) {
  AddName(screen);
  AddLine(screen, "Purpose", "Engine tuning software for the ZEM engine control unit", 1, false);
  Add(screen, {.name = "cmdOK",
               .kind = ControlKind::Button,
               .caption = "OK",
               .place = {.align = Align::Centre}});
}

}  // namespace

Screen frmAbout{.name = "frmAbout",
                .title = "About Halvane2",
                .placement = ScreenPlacement::Dialog,
                .build = BuildAbout,
                .on = {.click = [](Screen& screen, Control&) { UnloadScreen(screen); }},
                .cancelButton = "cmdOK"};

Screen frmSplash{.name = "frmSplash",
                 .title = "Halvane2",
                 .placement = ScreenPlacement::Above,
                 .build = AddName};
