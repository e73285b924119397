// The main frame: caption, menu bar, status bar, place. There is one. Standard C++.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/keys.h"

// One entry of the menu bar. The caption stands as given; blanks in front of a "Ctrl+" at its end
// are drawn as a column.
struct MenuItem {
  std::string name;
  std::string caption;
  std::vector<MenuItem> items;  // a menu when not empty
  bool enabled = true;
  bool checked = false;
  bool visible = true;
  bool separatorBefore = false;
  std::function<void()> click;
};

struct Frame {
  std::string name;
  std::string title;
  std::string icon;
  double left = 1000, top = 1000, width = 6500, height = 6500;  // 1/1440 inch, restored size
  bool maximised = false;
  bool minimised = false;
  bool enabled = true;  // disabled: no key, click or menu gets through
  std::vector<MenuItem> menus;
  std::vector<std::string> statusPanels;   // each sized to its content
  double statusPointSize = 0;              // 0 is the size of the desktop
  std::function<void(KeyEvent&)> keyDown;  // keys while no screen has them
  std::function<void()> closeBox;          // the user closes the window

  // Kept by the platform layer.
  bool shown = false;
  void* native = nullptr;
};

// The frame of this run, set by ShowFrame; the record stays the shell's.
Frame* TheFrame();
void ShowFrame(Frame& frame);
void CloseFrame(Frame& frame);
void SetFrameTitle(Frame& frame, std::string title);
void SetFrameEnabled(Frame& frame, bool enabled);
void SetStatusPanel(Frame& frame, std::size_t panel, std::string text);
void SetStatusPointSize(Frame& frame, double pointSize);
// Writes place and size as shown into the record.
void ReadFramePlace(Frame& frame);
// Width of the maximised frame in pixels: the desktop's width and 8 for the borders.
int MaximisedFrameWidth();

// The entry of this name anywhere below the menu bar, or null.
MenuItem* FindMenu(Frame& frame, std::string_view name);
void SetMenuEnabled(Frame& frame, std::string_view name, bool enabled);
void SetMenuChecked(Frame& frame, std::string_view name, bool checked);
void SetMenuVisible(Frame& frame, std::string_view name, bool visible);
void SetMenuCaption(Frame& frame, std::string_view name, std::string caption);
// Shows a menu of the bar as a pop-up over the active screen; returns at once. A chosen entry's
// click comes from the event queue.
void PopUpMenu(Frame& frame, std::string_view name);
