// The menu bar of the frame, from the entries of its record.
#pragma once

struct Frame;
class QMenuBar;

// Menus are filled when they are opened for the first time.
void BuildMenus(QMenuBar& bar, Frame& frame);
