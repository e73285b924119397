// Screens that consist of buttons.
#include "shell/buttonmenu.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "core/globalstate.h"

namespace {

// Wide enough for the longest caption, so that all buttons of a screen are of one width.
constexpr int buttonChars = 34;
constexpr double buttonFontScale = 1.15;

bool InRow(Screen& screen, std::string_view container) {
  const Control* found = Find(screen, container);
  return found && found->kind == ControlKind::Row;
}

// The group beside the one in which the control stands, or null.
const Control* GroupBeside(Screen& screen, const Control& from, int step) {
  const Control* own = Find(screen, from.place.in);
  if (!own || own->kind != ControlKind::Group) return nullptr;
  for (const Control& other : screen.controls)
    if (other.kind == ControlKind::Group && other.place.in == own->place.in &&
        other.place.row == own->place.row && other.place.column == own->place.column + step)
      return &other;
  return nullptr;
}

std::vector<Control*> StopsIn(Screen& screen, const std::string& container) {
  std::vector<Control*> stops;
  for (Control& control : screen.controls)
    if (control.kind == ControlKind::Button && control.place.in == container && IsShown(control))
      stops.push_back(&control);
  return stops;
}

// The usable button in the group that stands nearest to the height of this one in its own.
Control* Nearest(Screen& screen, const Control& from, const std::string& group) {
  const std::vector<Control*> here = StopsIn(screen, from.place.in);
  const auto height = std::find(here.begin(), here.end(), &from) - here.begin();
  Control* nearest = nullptr;
  std::ptrdiff_t best = 0, at = 0;
  for (Control* stop : StopsIn(screen, group)) {
    const std::ptrdiff_t distance = std::abs(at++ - height);
    if (!IsUsable(*stop) || (nearest && distance >= best)) continue;
    nearest = stop;
    best = distance;
  }
  return nearest;
}

}  // namespace

void AddButtonGroup(Screen& screen, const std::string& name, const std::string& caption, int row,
                    int column) {
  Add(screen, {.name = name,
               .kind = ControlKind::Group,
               .caption = caption,
               .place = {.in = "Groups", .row = row, .column = column}});
}

void AddButtons(Screen& screen, std::span<const ButtonRow> rows) {
  for (const ButtonRow& row : rows) {
    Control button;
    button.name = row.name;
    button.kind = ControlKind::Button;
    button.caption = row.caption;
    button.place.in = row.group;
    button.widthChars = InRow(screen, row.group) ? 0 : buttonChars;
    button.fontScale = buttonFontScale;
    button.icon = row.icon;
    Add(screen, std::move(button));
  }
}

void RefreshButtons(Screen& screen, std::span<const ButtonRow> rows) {
  for (const ButtonRow& row : rows) {
    const bool off = row.offWhileOnfly && MonitorMode == OnflyLive;
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
  const Control* own = Find(screen, screen.focus->place.in);
  if (screen.focus->kind != ControlKind::Button || !own || own->kind != ControlKind::Group) return;
  event.handled = true;
  const Control* group = GroupBeside(screen, *screen.focus, event.key == KeyLeft ? -1 : 1);
  if (Control* to = group ? Nearest(screen, *screen.focus, group->name) : nullptr) SetFocus(*to);
}
