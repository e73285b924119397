// What the user sees: screens, controls, focus and frame as they were told last.
#include <map>
#include <optional>
#include <utility>

#include "platform/headless/headless.h"
#include "platform/headless/script.h"
#include "platform/native.h"

namespace {

using headless::ShownControl;

struct SeenScreen {
  std::map<const Control*, ShownControl> controls;
  Control* focus = nullptr;
  bool seen = false;  // shown at least once in this life
};

// Where the user has moved the frame; without a move it stands where the record says.
struct FramePlace {
  double left = 0, top = 0, width = 0, height = 0;
};

std::map<const Screen*, SeenScreen> seenScreens;
std::optional<FramePlace> movedFrame;
std::optional<bool> frameMinimised;
std::string lastPopUp;
int focusMoves = 0;

SeenScreen* SeenOf(const Screen& screen) {
  auto found = seenScreens.find(&screen);
  return found == seenScreens.end() ? nullptr : &found->second;
}

ShownControl Look(const Control& control) {
  return {.text = control.text,
          .caption = control.caption,
          .visible = control.visible,
          .enabled = control.enabled,
          .checked = control.checked,
          .listIndex = control.listIndex};
}

// Nothing is shown before the first showing: a load routine may fill in the record itself.
void LookAtAll(Screen& screen, SeenScreen& seen) {
  for (const Control& control : screen.controls) seen.controls[&control] = Look(control);
}

const ShownControl& MustSee(const Control& control) {
  static const ShownControl nothing{.visible = false, .enabled = false};
  const ShownControl* seen = headless::ShownOf(control);
  return seen ? *seen : nothing;
}

// A control is seen with every container around it.
bool SeenThrough(const Control& control, bool ShownControl::*flag) {
  const Control* at = &control;
  while (at) {
    if (!(MustSee(*at).*flag)) return false;
    if (at->place.in.empty()) return true;
    at = Find(*at->owner, at->place.in);
  }
  return true;
}

}  // namespace

namespace headless {

void ResetScreens() {
  seenScreens.clear();
  movedFrame.reset();
  frameMinimised.reset();
  lastPopUp.clear();
  focusMoves = 0;
}

void Typed(Control& control, const std::string& text) {
  if (SeenScreen* seen = SeenOf(*control.owner)) seen->controls[&control].text = text;
}

void Chosen(Control& control, int index) {
  if (SeenScreen* seen = SeenOf(*control.owner)) seen->controls[&control].listIndex = index;
}

const ShownControl* ShownOf(const Control& control) {
  SeenScreen* seen = control.owner ? SeenOf(*control.owner) : nullptr;
  if (!seen) return nullptr;
  auto found = seen->controls.find(&control);
  return found == seen->controls.end() ? nullptr : &found->second;
}

Control* NativeFocusOf(Screen& screen) {
  SeenScreen* seen = SeenOf(screen);
  return seen ? seen->focus : nullptr;
}

}  // namespace headless

// ---- native.h -----------------------------------------------------------------------------------

void NativeCreateScreen(Screen& screen) {
  SeenScreen& seen = seenScreens[&screen];
  seen = {};
  LookAtAll(screen, seen);
}

void NativeShowScreen(Screen& screen) {
  SeenScreen* seen = SeenOf(screen);
  if (!seen || std::exchange(seen->seen, true)) return;
  LookAtAll(screen, *seen);
  for (Control& control : screen.controls)
    if (control.kind == ControlKind::Canvas) UserCanvasSize(control, 640, 480);
}

void NativeHideScreen(Screen&) {}
void NativeDestroyScreen(Screen& screen) { seenScreens.erase(&screen); }
void NativeScreenChanged(Screen&) {}

void NativeControlChanged(Control& control, unsigned changes) {
  SeenScreen* seen = control.owner ? SeenOf(*control.owner) : nullptr;
  if (!seen) return;
  ShownControl& shown = seen->controls[&control];
  if (changes & ChangedText) shown.text = control.text;
  if (changes & ChangedCaption) shown.caption = control.caption;
  if (changes & ChangedListIndex) shown.listIndex = control.listIndex;
  if (changes & ChangedState) {
    shown.visible = control.visible;
    shown.enabled = control.enabled;
    shown.checked = control.checked;
  }
}

void NativeFocus(Control& control) {
  SeenScreen* seen = SeenOf(*control.owner);
  if (!seen || seen->focus == &control) return;
  seen->focus = &control;
  ++focusMoves;
}

void NativeActivate(Screen&) {}

void NativeShowFrame(Frame&) {
  movedFrame.reset();
  frameMinimised.reset();
}
void NativeCloseFrame(Frame&) {}
void NativeFrameChanged(Frame&) {}
void NativeMenuChanged(Frame&, MenuItem&) {}
void NativePopUpMenu(Frame&, MenuItem& item) { lastPopUp = item.name; }

void ReadFramePlace(Frame& frame) {
  if (frameMinimised) frame.minimised = *frameMinimised;
  if (!movedFrame) return;
  frame.left = movedFrame->left;
  frame.top = movedFrame->top;
  frame.width = movedFrame->width;
  frame.height = movedFrame->height;
}

// ---- the script's side --------------------------------------------------------------------------

void ResetHeadless() {
  ResetPlatform();
  headless::ResetScreens();
  headless::ResetText();
  headless::ResetBoxes();
  headless::ResetSystem();
  headless::ResetPorts();
  headless::ResetFiles();
  headless::ResetLoop();
}

void HeadlessMoveFrame(double left, double top, double width, double height) {
  movedFrame = {left, top, width, height};
}
void HeadlessMinimiseFrame(bool minimised) { frameMinimised = minimised; }

void HeadlessMoveScreen(Screen& screen, double left, double top) {
  if (!UserReaches(screen)) return;
  screen.left = left;
  screen.top = top;
}

std::string LastPopUpMenu() { return std::exchange(lastPopUp, {}); }

std::string SeenText(const Control& control) {
  const ShownControl& seen = MustSee(control);
  switch (control.kind) {
    case ControlKind::TextField:
    case ControlKind::TextArea:
      return seen.text;
    case ControlKind::DropDownList:
    case ControlKind::ListBox:
      return seen.listIndex < 0 ? "" : control.items[static_cast<std::size_t>(seen.listIndex)];
    case ControlKind::TreeView:
      return seen.listIndex < 0 ? "" : control.nodes[static_cast<std::size_t>(seen.listIndex)].text;
    default:
      return PlainCaption(seen.caption);
  }
}

bool SeenVisible(const Control& control) {
  const Screen& screen = *control.owner;
  bool covered = screen.placement == ScreenPlacement::Work && TopWorkScreen() != &screen;
  return screen.visible && !covered && SeenThrough(control, &ShownControl::visible);
}
bool SeenEnabled(const Control& control) { return SeenThrough(control, &ShownControl::enabled); }

Control* SeenFocus() {
  Screen* screen = OpenDialogScreen() ? OpenDialogScreen() : ActiveScreen();
  return screen ? headless::NativeFocusOf(*screen) : nullptr;
}
int SeenFocusMoves() { return focusMoves; }
