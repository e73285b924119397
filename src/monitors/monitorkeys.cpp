// What the keys of the monitors share.
#include "monitors/monitorkeys.h"

#include <utility>

#include "monitors/livesession.h"

namespace {

void BuildLines(Screen& screen, std::span<const char* const> lines) {
  int number = 1;
  for (const char* line : lines)
    Add(screen, {.name = "Label" + std::to_string(number++), .caption = line});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "<< BACK",
               .place = {.align = Align::Right}});
}

}  // namespace

void RunMonitorKey(std::span<const MonitorKey> keys, KeyEvent& event) {
  if (event.ctrl || event.alt) return;
  for (const MonitorKey& row : keys) {
    if (row.key != event.key) continue;
    event.handled = true;
    if (!event.repeat) row.run();
    return;
  }
}

void ToggleShown(bool& flag) {
  flag = !flag;
  ShowLiveNow();
}

void CloseByButton(Screen& screen, Control& control) {
  if (control.name == "Command1") UnloadScreen(screen);
}

Screen MonitorHelp(std::string name, std::string title, std::span<const char* const> lines) {
  return {.name = std::move(name),
          .title = std::move(title),
          .placement = ScreenPlacement::Above,
          .build = [lines](Screen& screen) { BuildLines(screen, lines); },
          .on = {.click = CloseByButton},
          .cancelButton = "Command1"};
}
