// The user: keys, clicks, choices, and what the controls do with a key that no routine took.
#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "platform/calls.h"
#include "platform/headless/headless.h"
#include "platform/headless/script.h"
#include "platform/native.h"

namespace {

Screen* KeyScreen() { return OpenDialogScreen() ? OpenDialogScreen() : ActiveScreen(); }

bool FrameReachable() {
  Frame* frame = TheFrame();
  return !headless::BoxIsOpen() && !OpenDialogScreen() && (!frame || frame->enabled);
}

// Whether the mouse gets through to the screen.
bool Reachable(Screen& screen) {
  if (headless::BoxIsOpen() || !UserReaches(screen)) return false;
  return screen.placement != ScreenPlacement::Work || TopWorkScreen() == &screen;
}

bool Touch(Control& control) {
  Screen& screen = *control.owner;
  SettleLostFocus();
  if (!Reachable(screen) || !IsUsable(control)) return false;
  if (ActiveScreen() != &screen) UserActivated(screen);
  return true;
}

// ---- lists --------------------------------------------------------------------------------------

int CountOf(const Control& control) {
  return static_cast<int>(control.kind == ControlKind::TreeView ? control.nodes.size()
                                                                : control.items.size());
}

const std::string& ItemText(const Control& control, int index) {
  auto at = static_cast<std::size_t>(index);
  return control.kind == ControlKind::TreeView ? control.nodes[at].text : control.items[at];
}

// The next item that begins with the character, or the present one.
int SearchItem(const Control& control, int character) {
  int count = CountOf(control);
  for (int step = 1; step <= count; ++step) {
    int index = (std::max(control.listIndex, -1) + step) % count;
    const std::string& text = ItemText(control, index);
    if (!text.empty() &&
        std::tolower(static_cast<unsigned char>(text[0])) == std::tolower(character))
      return index;
  }
  return control.listIndex;
}

void KeyInList(Control& control, const KeyEvent& event) {
  int count = CountOf(control), index = control.listIndex;
  if (count == 0) return;
  int page = std::max(control.heightLines - 1, 1);
  switch (event.key) {
    case KeyUp:
      index = std::max(index - 1, 0);
      break;
    case KeyDown:
      index = std::min(index + 1, count - 1);
      break;
    case KeyPageUp:
      index = std::max(index - page, 0);
      break;
    case KeyPageDown:
      index = std::min(index + page, count - 1);
      break;
    case KeyHome:
      index = 0;
      break;
    case KeyEnd:
      index = count - 1;
      break;
    default:
      if (event.character > 32) index = SearchItem(control, event.character);
  }
  if (index != control.listIndex) HeadlessChoose(control, index);
}

// ---- what a key does by itself ------------------------------------------------------------------

void KeyInControl(Control& control, const KeyEvent& event) {
  switch (control.kind) {
    case ControlKind::TextField:
    case ControlKind::TextArea:
      headless::EditText(control, event);
      break;
    case ControlKind::DropDownList:
    case ControlKind::ListBox:
    case ControlKind::TreeView:
      KeyInList(control, event);
      break;
    default:
      break;
  }
}

MenuItem* ChoosableIn(std::vector<MenuItem>& items, const std::string& name) {
  for (MenuItem& item : items) {
    if (!item.enabled || !item.visible) continue;
    if (item.name == name) return &item;
    if (MenuItem* below = ChoosableIn(item.items, name)) return below;
  }
  return nullptr;
}

}  // namespace

void HeadlessKey(KeyEvent event) {
  if (headless::BoxIsOpen()) return;
  Screen* screen = KeyScreen();
  bool taken = UserKeyDown(screen, event);
  if (!taken && screen && UserReaches(*screen) && screen->focus && IsUsable(*screen->focus))
    KeyInControl(*screen->focus, event);
  event.handled = false;
  UserKeyUp(KeyScreen(), event);
}

void HeadlessClick(Control& control) {
  if (!Touch(control)) return;
  Screen& screen = *control.owner;
  ScreenCall call(screen);
  Watch watch(screen);
  if (control.kind == ControlKind::Canvas) {
    double x = control.canvasWidth / 2.0, y = control.canvasHeight / 2.0;
    UserMouse(control, {.kind = MouseEvent::Down, .x = x, .y = y});
    UserMouse(control, {.kind = MouseEvent::Up, .x = x, .y = y});
  }
  bool text = control.kind == ControlKind::TextField || control.kind == ControlKind::TextArea;
  if (text) {
    bool brings = screen.focus != &control;
    UserFocus(control);
    if (!watch.Alive() || screen.focus != &control) return;
    if (!brings || control.selLength == 0) headless::CursorToEnd(control);
  }
  if (watch.Alive()) UserClick(control);
}

void HeadlessChoose(Control& control, int index) {
  if (index < 0 || index >= CountOf(control) || !Touch(control)) return;
  headless::Chosen(control, index);
  UserListChoice(control, index);
}

void HeadlessDoubleClick(Control& control, int index) {
  if (index < 0 || index >= CountOf(control)) return;
  Screen& screen = *control.owner;
  ScreenCall call(screen);
  Watch watch(screen);
  HeadlessChoose(control, index);
  if (watch.Alive() && Reachable(screen) && IsUsable(control)) UserDoubleClick(control, index);
}

void HeadlessMouse(Control& control, const MouseEvent& event) {
  if (Touch(control)) UserMouse(control, event);
}

void HeadlessMenu(const std::string& name) {
  Frame* frame = TheFrame();
  if (!frame || !FrameReachable()) return;
  if (MenuItem* item = ChoosableIn(frame->menus, name)) UserMenu(*item);
}

void HeadlessCloseBox(Screen& screen) {
  if (Reachable(screen)) UserCloseBox(screen);
}

void HeadlessCloseFrame() {
  if (TheFrame() && FrameReachable()) UserFrameClose(*TheFrame());
}

void ResizeCanvas(Control& control, int width, int height) {
  UserCanvasSize(control, width, height);
}
