// The windows and pages that screens stand on.
#pragma once

#include <QWidget>
#include <deque>

#include "platform/qt/qtcontrols.h"
#include "platform/screen.h"

// What Screen::native points to. `screen` is null once it has been released.
struct QtScreen {
  Screen* screen = nullptr;
  QWidget* page = nullptr;  // heading and scrolled content; what a window or the frame holds
  class Caption* heading = nullptr;  // title of a screen of work
  QWidget* root = nullptr;           // holds the controls; has the keys when no control has them
  QWidget* window = nullptr;  // its own window, or its small window inside the frame; null for Work
  std::deque<QtControl> controls;
  bool shown = false;  // at least once: the record stands on the widgets
};

// The title as it stands above a screen or in its title bar.
QString TitleShownOn(const Screen& screen);
// The close box of a screen: its button, and what it does.
class QToolButton;
QToolButton* CreateCloseButton(QtScreen& native, QWidget* parent);
void CloseByUserOf(QtScreen& native);
// The screen whose page or window the widget stands on, or null.
QtScreen* ScreenOfWidget(const QWidget* widget);
// Moves the toolkit's focus to where the record says.
void FocusByRecord(Screen& screen);
// Deletes released screens, unless a native routine of one may be on the stack.
void ReleaseScreens();
void ReleaseSoon();  // in the next turn, if there are any
// The screen inside the frame that has the keys when the frame's window has them, or null.
Screen* ScreenInFrame();
