// The one main window: menu bar, pages of work, status bar.
#pragma once

class QAction;
class QMenu;
class QWidget;
struct MenuItem;

// The main window; null before something has asked for it.
QWidget* FrameWindow();
// What the small windows of the frame stand on.
QWidget* WorkArea();
void AddWorkPage(QWidget& page);
// To the front; the window grows as far as the desktop allows when the page does not fit.
void ShowWorkPage(QWidget& page);
void HideWorkPage(QWidget& page);
void RemoveWorkPage(QWidget& page);
// The action of an entry of the menu bar; null when there is none.
QAction* ActionOf(const MenuItem& item);
// The entries of the menu bar in the width that the window has.
void FitMenusToFrame();
// Whether a user can get to it: every menu on the way is enabled and visible, as it is.
bool MenuReachable(const MenuItem& item);
