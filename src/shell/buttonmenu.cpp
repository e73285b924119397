// Screens that consist of buttons.
#include "shell/buttonmenu.h"

#include <string>
#include <vector>

#include "core/globalstate.h"

namespace {

// What the arrow keys stop at, in order.
std::vector<Control*> Stops(Screen& screen) {
  std::vector<Control*> stops;
  for (Control& control : screen.controls)
    if (control.kind == ControlKind::Button && IsUsable(control)) stops.push_back(&control);
  return stops;
}

int PlaceOf(const std::vector<Control*>& stops, const Control* control) {
  for (std::size_t i = 0; i < stops.size(); ++i)
    if (stops[i] == control) return static_cast<int>(i);
  return -1;
}

// The control as far down its container as the focused one is in its own, in the next container.
Control* Beside(const std::vector<Control*>& stops, const Control& from, int step) {
  std::vector<std::string> groups;
  for (const Control* stop : stops)
    if (groups.empty() || groups.back() != stop->place.in) groups.push_back(stop->place.in);
  int group = 0;
  while (groups[static_cast<std::size_t>(group)] != from.place.in) ++group;
  const int target = group + step;
  if (target < 0 || target >= static_cast<int>(groups.size())) return nullptr;
  std::vector<Control*> here, there;
  for (Control* stop : stops) {
    if (stop->place.in == from.place.in) here.push_back(stop);
    if (stop->place.in == groups[static_cast<std::size_t>(target)]) there.push_back(stop);
  }
  const auto row = static_cast<std::size_t>(PlaceOf(here, &from));
  return row < there.size() ? there[row] : there.back();
}

}  // namespace

void AddButtons(Screen& screen, std::span<const ButtonRow> rows) {
  for (const ButtonRow& row : rows)
    Add(screen, {.name = std::string(row.name),
                 .kind = ControlKind::Button,
                 .caption = std::string(row.caption),
                 .place = {.in = std::string(row.group), .align = Align::Fill},
                 .textAlign = Align::Left,
                 .icon = std::string(row.icon)});
}

void RefreshButtons(Screen& screen, std::span<const ButtonRow> rows) {
  for (const ButtonRow& row : rows) {
    const bool off = row.offWhileOnfly && MonitorMode == 3;
    if (Control* button = Find(screen, row.name)) SetEnabled(*button, IsReady(row.action) && !off);
  }
}

bool RunButton(std::span<const ButtonRow> rows, const Control& button) {
  for (const ButtonRow& row : rows) {
    if (row.name != button.name) continue;
    Run(row.action);
    return true;
  }
  return false;
}

void WalkButtons(Screen& screen, KeyEvent& event) {
  const bool sideways = event.key == KeyLeft || event.key == KeyRight;
  if (!sideways || event.ctrl || event.alt || event.shift || !screen.focus) return;
  const std::vector<Control*> stops = Stops(screen);
  if (PlaceOf(stops, screen.focus) < 0) return;
  event.handled = true;
  if (Control* to = Beside(stops, *screen.focus, event.key == KeyLeft ? -1 : 1)) SetFocus(*to);
}
