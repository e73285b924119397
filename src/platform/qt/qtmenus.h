// The menu bar of the frame, from the entries of its record.
#pragma once

struct Frame;
class QMenuBar;

// Menus are filled when they are opened for the first time.
void BuildMenus(QMenuBar& bar, Frame& frame);
// What the bar needs with every caption as given.
int WidthOfMenus(const QMenuBar& bar);
// An entry of the bar that only tells something stays in sight where the width is too small for its
// caption as given: its runs of blanks are shortened as far as it takes. The record keeps them.
void FitMenus(QMenuBar& bar, int width);
