// The main frame's record and its menus.
#include "platform/frame.h"

#include <utility>

#include "platform/native.h"

namespace {

Frame* theFrame = nullptr;

MenuItem* FindIn(std::vector<MenuItem>& items, std::string_view name) {
  for (MenuItem& item : items) {
    if (item.name == name) return &item;
    if (MenuItem* below = FindIn(item.items, name)) return below;
  }
  return nullptr;
}

template <typename T>
void Change(Frame& frame, std::string_view name, T MenuItem::*member, T value) {
  MenuItem* item = FindMenu(frame, name);
  if (!item || item->*member == value) return;
  item->*member = std::move(value);
  if (frame.shown) NativeMenuChanged(frame, *item);
}

}  // namespace

Frame* TheFrame() { return theFrame; }

void ShowFrame(Frame& frame) {
  theFrame = &frame;
  frame.shown = true;
  NativeShowFrame(frame);
}

void CloseFrame(Frame& frame) {
  if (!frame.shown) return;
  frame.shown = false;
  NativeCloseFrame(frame);
  if (theFrame == &frame) theFrame = nullptr;
}

void SetFrameTitle(Frame& frame, std::string title) {
  frame.title = std::move(title);
  if (frame.shown) NativeFrameChanged(frame);
}

void SetFrameEnabled(Frame& frame, bool enabled) {
  frame.enabled = enabled;
  if (frame.shown) NativeFrameChanged(frame);
}

void SetStatusPanel(Frame& frame, std::size_t panel, std::string text) {
  if (frame.statusPanels.size() <= panel) frame.statusPanels.resize(panel + 1);
  if (frame.statusPanels[panel] == text) return;
  frame.statusPanels[panel] = std::move(text);
  if (frame.shown) NativeFrameChanged(frame);
}

void SetStatusPointSize(Frame& frame, double pointSize) {
  frame.statusPointSize = pointSize;
  if (frame.shown) NativeFrameChanged(frame);
}

MenuItem* FindMenu(Frame& frame, std::string_view name) { return FindIn(frame.menus, name); }

void SetMenuEnabled(Frame& frame, std::string_view name, bool enabled) {
  Change(frame, name, &MenuItem::enabled, enabled);
}
void SetMenuChecked(Frame& frame, std::string_view name, bool checked) {
  Change(frame, name, &MenuItem::checked, checked);
}
void SetMenuVisible(Frame& frame, std::string_view name, bool visible) {
  Change(frame, name, &MenuItem::visible, visible);
}
void SetMenuCaption(Frame& frame, std::string_view name, std::string caption) {
  Change(frame, name, &MenuItem::caption, std::move(caption));
}

void PopUpMenu(Frame& frame, std::string_view name) {
  MenuItem* item = FindMenu(frame, name);
  if (item && frame.shown && frame.enabled && item->enabled) NativePopUpMenu(frame, *item);
}

void UserMenu(MenuItem& item) {
  if (!item.enabled || !item.visible || !item.click) return;
  if (theFrame && !theFrame->enabled) return;
  auto click = item.click;
  Guarded(click);
}

void UserFrameClose(Frame& frame) {
  if (frame.closeBox)
    Guarded(frame.closeBox);
  else
    CloseFrame(frame);
}
