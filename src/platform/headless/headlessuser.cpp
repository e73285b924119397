// The user: keys, clicks, choices, and what the controls do with a key that no routine took.
#include <algorithm>
#include <cctype>
#include <vector>

#include "platform/headless/headless.h"
#include "platform/headless/script.h"
#include "platform/native.h"

namespace {

Screen* KeyScreen() { return OpenDialogScreen() ? OpenDialogScreen() : ActiveScreen(); }

bool FrameReachable() {
  Frame* frame = TheFrame();
  return !OpenDialogScreen() && (!frame || frame->enabled);
}

// Whether the mouse gets through to the screen: a dialog has all attention, and a disabled frame
// takes what stands inside it along.
bool Reachable(Screen& screen) {
  if (!screen.visible || screen.closing || !screen.enabled) return false;
  if (Screen* dialog = OpenDialogScreen()) return dialog == &screen;
  bool inside =
      screen.placement == ScreenPlacement::Work || screen.placement == ScreenPlacement::Child;
  if (inside && !FrameReachable()) return false;
  return screen.placement != ScreenPlacement::Work || TopWorkScreen() == &screen;
}

bool Touch(Control& control) {
  Screen& screen = *control.owner;
  if (!Reachable(screen) || !IsUsable(control)) return false;
  if (ActiveScreen() != &screen) UserActivated(screen);
  return true;
}

// ---- moving the focus ---------------------------------------------------------------------------

bool InTabOrder(const Control& control) {
  return TakesFocus(control) && control.tabStop && IsUsable(control);
}

void MoveFocus(Screen& screen, bool forward) {
  std::vector<Control*> order;
  std::size_t from = 0;
  bool found = false;
  for (Control& control : screen.controls) {
    if (!InTabOrder(control) && &control != screen.focus) continue;
    if (&control == screen.focus) {
      from = order.size();
      found = true;
    }
    order.push_back(&control);
  }
  if (order.empty()) return;
  std::size_t count = order.size();
  std::size_t to = !found ? (forward ? 0 : count - 1) : (from + (forward ? 1 : count - 1)) % count;
  if (order[to] != screen.focus) UserFocus(*order[to]);
}

void MoveInRadioGroup(Control& control, bool forward) {
  std::vector<Control*> group;
  std::size_t from = 0;
  for (Control& other : control.owner->controls) {
    if (other.kind != ControlKind::RadioButton || other.place.in != control.place.in) continue;
    if (!IsUsable(other)) continue;
    if (&other == &control) from = group.size();
    group.push_back(&other);
  }
  std::size_t count = group.size();
  if (count > 1) UserClick(*group[(from + (forward ? 1 : count - 1)) % count]);
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

bool IsArrow(int key) { return key >= KeyLeft && key <= KeyDown; }

void KeyInControl(Control& control, const KeyEvent& event) {
  bool forward = event.key == KeyRight || event.key == KeyDown;
  switch (control.kind) {
    case ControlKind::TextField:
    case ControlKind::TextArea:
      headless::EditText(control, event);
      break;
    case ControlKind::RadioButton:
      if (event.key == KeySpace) UserClick(control);
      if (IsArrow(event.key)) MoveInRadioGroup(control, forward);
      break;
    case ControlKind::Button:
    case ControlKind::CheckBox:
      if (event.key == KeySpace) UserClick(control);
      if (IsArrow(event.key)) MoveFocus(*control.owner, forward);
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

void DefaultAction(Screen& screen, const KeyEvent& event) {
  if (!screen.visible || screen.closing) return;
  if (event.key == KeyTab && !event.ctrl && !event.alt)
    MoveFocus(screen, !event.shift);
  else if (screen.focus && IsUsable(*screen.focus))
    KeyInControl(*screen.focus, event);
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
  Screen* screen = KeyScreen();
  bool taken = UserKeyDown(screen, event);
  if (!taken && screen) DefaultAction(*screen, event);
  event.handled = false;
  UserKeyUp(KeyScreen(), event);
}

void HeadlessClick(Control& control) {
  if (!Touch(control)) return;
  Screen& screen = *control.owner;
  if (control.kind == ControlKind::Canvas) {
    double x = control.canvasWidth / 2.0, y = control.canvasHeight / 2.0;
    UserMouse(control, {.kind = MouseEvent::Down, .x = x, .y = y});
    UserMouse(control, {.kind = MouseEvent::Up, .x = x, .y = y});
  }
  bool text = control.kind == ControlKind::TextField || control.kind == ControlKind::TextArea;
  if (text) {
    UserFocus(control);
    if (screen.focus != &control) return;
    headless::CursorToEnd(control);
  }
  UserClick(control);
}

void HeadlessChoose(Control& control, int index) {
  if (index < 0 || index >= CountOf(control) || !Touch(control)) return;
  UserListChoice(control, index);
  NativeControlChanged(control, ChangedListIndex);
}

void HeadlessDoubleClick(Control& control, int index) {
  if (index < 0 || index >= CountOf(control)) return;
  HeadlessChoose(control, index);
  if (Reachable(*control.owner) && IsUsable(control)) UserDoubleClick(control, index);
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
