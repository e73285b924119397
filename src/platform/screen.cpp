// The life of screens and the changes of their controls.
#include "platform/screen.h"

#include <algorithm>
#include <cassert>
#include <map>
#include <stdexcept>
#include <utility>

#include "platform/calls.h"
#include "platform/fit.h"
#include "platform/native.h"

namespace {

std::vector<Screen*> loadedScreens;  // in the order of loading
std::vector<Screen*> shownOrder;     // in the order of showing, last on top
std::vector<Screen*> activeOrder;    // in the order of activation, last is active
std::map<std::string, std::function<void()>, std::less<>> openers;

void Forget(std::vector<Screen*>& list, Screen& screen) {
  list.erase(std::remove(list.begin(), list.end(), &screen), list.end());
}

void TakeAway(Screen& screen) {
  screen.visible = false;
  Forget(shownOrder, screen);
  Forget(activeOrder, screen);
  NativeHideScreen(screen);
}

void Release(Screen& screen) {
  NativeDestroyScreen(screen);
  screen.native = nullptr;
  ForgetFit(screen);
  if (!screen.controls.empty()) screen.former.push_back(std::move(screen.controls));
  screen.controls.clear();
  screen.focus = nullptr;
  screen.focusWish = nullptr;
  screen.focusMoving = false;
  screen.loaded = false;
  screen.closing = false;
  if (screen.onStack == 0) screen.former.clear();
}

bool Around(const Control& control, bool Control::*flag) {
  const Control* at = &control;
  while (at) {
    if (!(at->*flag)) return false;
    if (at->place.in.empty() || !at->owner) return true;
    at = Find(*at->owner, at->place.in);
  }
  return true;
}

template <typename T>
bool Change(Control& control, T Control::*member, T value, unsigned change) {
  if (control.*member == value) return false;
  control.*member = std::move(value);
  NativeControlChanged(control, change);
  return true;
}

}  // namespace

// ---- calls ------------------------------------------------------------------------------------

ScreenCall::ScreenCall(Screen& calledScreen) : screen(calledScreen) { ++screen.onStack; }

ScreenCall::~ScreenCall() {
  if (--screen.onStack > 0) return;
  if (screen.closing)
    Release(screen);
  else
    screen.former.clear();
}

// ---- the record -------------------------------------------------------------------------------

Control* Find(Screen& screen, std::string_view name) {
  for (Control& control : screen.controls)
    if (control.name == name) return &control;
  return nullptr;
}

Control& At(Screen& screen, std::string_view name) {
  if (Control* control = Find(screen, name)) return *control;
  throw std::logic_error("Screen " + screen.name + " has no control " + std::string(name) + ".");
}

Control& Add(Screen& screen, Control control) {
  assert(!Find(screen, control.name) && "a control of this name exists");
  control.owner = &screen;
  screen.controls.push_back(std::move(control));
  return screen.controls.back();
}

bool IsField(const Control& control) {
  switch (control.kind) {
    case ControlKind::TextField:
    case ControlKind::TextArea:
    case ControlKind::DropDownList:
    case ControlKind::ListBox:
    case ControlKind::TreeView:
      return true;
    default:
      return false;
  }
}

bool TakesFocus(const Control& control) {
  return IsField(control) || control.kind == ControlKind::Button ||
         control.kind == ControlKind::RadioButton || control.kind == ControlKind::CheckBox;
}

bool IsShown(const Control& control) { return Around(control, &Control::visible); }
bool IsUsable(const Control& control) {
  return IsShown(control) && Around(control, &Control::enabled);
}

// ---- life -------------------------------------------------------------------------------------

void LoadScreen(Screen& screen) {
  if (IsUp(screen)) return;
  if (screen.closing) {
    if (screen.visible) TakeAway(screen);
    Release(screen);
  }
  screen.loaded = true;
  ++screen.life;
  ScreenCall call(screen);
  if (screen.build) screen.build(screen);
  for (Control& control : screen.controls) {
    control.owner = &screen;
    if (control.backColour == SystemButtonFace && IsField(control)) {
      control.backColour = SystemWindow;
      control.foreColour = SystemWindowText;
    }
  }
  loadedScreens.push_back(&screen);
  NativeCreateScreen(screen);
  Guarded([&] {
    if (screen.on.load) screen.on.load(screen);
  });
}

void ShowScreen(Screen& screen) {
  ScreenCall call(screen);
  LoadScreen(screen);
  if (!IsUp(screen)) return;
  Forget(shownOrder, screen);
  shownOrder.push_back(&screen);
  screen.visible = true;
  NativeShowScreen(screen);
  Forget(activeOrder, screen);
  activeOrder.push_back(&screen);
  NativeActivate(screen);
  Guarded([&] {
    if (screen.on.shown) screen.on.shown(screen);
  });
  SettleFocus(screen);
}

namespace {

// The screen that comes to the front when another has left.
void BringBack() {
  if (Screen* work = TopWorkScreen()) NativeShowScreen(*work);
  if (Screen* next = ActiveScreen()) {
    ScreenCall call(*next);
    NativeActivate(*next);
    Guarded([&] {
      if (next->on.shown) next->on.shown(*next);
    });
    SettleFocus(*next);
  }
}

}  // namespace

void HideScreen(Screen& screen) {
  if (!screen.visible) return;
  bool wasActive = ActiveScreen() == &screen;
  TakeAway(screen);
  if (wasActive) BringBack();
}

void UnloadScreen(Screen& screen) {
  if (!IsUp(screen)) return;
  ScreenCall call(screen);
  screen.closing = true;
  Forget(loadedScreens, screen);
  Guarded([&] {
    if (screen.on.unload) screen.on.unload(screen);
  });
  if (!screen.closing) return;  // it has been loaded anew
  bool wasActive = ActiveScreen() == &screen;
  if (screen.visible) TakeAway(screen);
  if (wasActive) BringBack();
}

void UnloadAllScreens() {
  while (!loadedScreens.empty()) UnloadScreen(*loadedScreens.back());
}

bool IsUp(const Screen& screen) { return screen.loaded && !screen.closing; }

Screen* ActiveScreen() { return activeOrder.empty() ? nullptr : activeOrder.back(); }

Screen* TopWorkScreen() {
  for (auto at = shownOrder.rbegin(); at != shownOrder.rend(); ++at)
    if ((*at)->placement == ScreenPlacement::Work) return *at;
  return nullptr;
}

Screen* OpenDialogScreen() {
  for (auto at = shownOrder.rbegin(); at != shownOrder.rend(); ++at)
    if ((*at)->placement == ScreenPlacement::Dialog) return *at;
  return nullptr;
}

const std::vector<Screen*>& LoadedScreens() { return loadedScreens; }

void ActivateScreen(Screen& screen) {
  if (!screen.visible || screen.closing) return;
  NoteActive(screen);
  NativeActivate(screen);
  SettleFocus(screen);
}

void NoteActive(Screen& screen) {
  if (!screen.visible || screen.closing) return;
  Forget(activeOrder, screen);
  activeOrder.push_back(&screen);
}

void SetScreenEnabled(Screen& screen, bool enabled) {
  if (screen.enabled == enabled) return;
  screen.enabled = enabled;
  if (screen.loaded) NativeScreenChanged(screen);
}

void SetScreenTitle(Screen& screen, std::string title) {
  if (screen.title == title) return;
  screen.title = std::move(title);
  if (screen.loaded) NativeScreenChanged(screen);
}

void SetScreenBackColour(Screen& screen, Colour colour) {
  if (screen.backColour == colour) return;
  screen.backColour = colour;
  if (screen.loaded) NativeScreenChanged(screen);
}

// ---- changes ----------------------------------------------------------------------------------

void SetText(Control& control, std::string text) {
  if (control.text == text) return;
  control.text = std::move(text);
  control.selStart = 0;
  control.selLength = 0;
  NativeControlChanged(control, ChangedText | ChangedSelection);
  CallChange(control);
}

void SetCaption(Control& control, std::string caption) {
  Change(control, &Control::caption, std::move(caption), ChangedCaption);
}
void SetBackColour(Control& control, Colour colour) {
  Change(control, &Control::backColour, colour, ChangedColours);
}
void SetForeColour(Control& control, Colour colour) {
  Change(control, &Control::foreColour, colour, ChangedColours);
}
void SetEnabled(Control& control, bool enabled) {
  if (Change(control, &Control::enabled, enabled, ChangedState)) NoteUsability();
}
void SetVisible(Control& control, bool visible) {
  if (Change(control, &Control::visible, visible, ChangedState)) NoteUsability();
}
void SetReadOnly(Control& control, bool readOnly) {
  Change(control, &Control::readOnly, readOnly, ChangedState);
}

void SetChecked(Control& control, bool checked) {
  if (checked && control.kind == ControlKind::RadioButton && control.owner) {
    for (Control& other : control.owner->controls)
      if (&other != &control && other.kind == ControlKind::RadioButton &&
          other.place.in == control.place.in)
        Change(other, &Control::checked, false, ChangedState);
  }
  Change(control, &Control::checked, checked, ChangedState);
}

void SetItems(Control& control, std::vector<std::string> items) {
  control.items = std::move(items);
  if (control.listIndex >= static_cast<int>(control.items.size())) control.listIndex = -1;
  NativeControlChanged(control, ChangedItems | ChangedListIndex);
}

void SetListIndex(Control& control, int index) {
  int count = static_cast<int>(control.kind == ControlKind::TreeView ? control.nodes.size()
                                                                     : control.items.size());
  Change(control, &Control::listIndex, index < 0 || index >= count ? -1 : index, ChangedListIndex);
}

void SetValue(Control& control, int value, int maximum) {
  bool changed = control.value != value || control.maximum != maximum;
  control.value = value;
  control.maximum = maximum;
  if (changed) NativeControlChanged(control, ChangedValue);
}

void SelectText(Control& control, int start, int length) {
  int size = static_cast<int>(control.text.size());
  control.selStart = std::clamp(start, 0, size);
  control.selLength = std::clamp(length, 0, size - control.selStart);
  NativeControlChanged(control, ChangedSelection);
}

// ---- opening by name --------------------------------------------------------------------------

void RegisterScreen(std::string name, std::function<void()> open) {
  openers[std::move(name)] = std::move(open);
}
bool ScreenRegistered(std::string_view name) { return openers.find(name) != openers.end(); }
bool OpenScreen(std::string_view name) {
  auto found = openers.find(name);
  if (found == openers.end()) return false;
  auto open = found->second;
  open();
  return true;
}
void ForgetRegisteredScreens() { openers.clear(); }
