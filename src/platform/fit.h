// How a screen of work that is to be seen whole makes use of the room in the frame, and a window
// above the frame leaves some of it: texts shrink or grow until nothing has to be scrolled.
// Standard C++.
#pragma once

#include <string>

struct Screen;

// Pixels.
struct Room {
  int width = 0;
  int height = 0;
};
// What a screen of work has inside the frame as it stands now; the desktop's while no frame is
// shown.
Room RoomForWork();

struct TextFit {
  // Factors on every fontScale. The texts become as large as the room allows between the two; only
  // below the smaller one the screen is scrolled.
  double smallest = 1;
  double largest = 1;
  // A canvas that keeps at least this share of the room's height, whatever the texts would take.
  std::string canvas;
  double canvasShare = 0;
  // Of a window above the frame: the share of the desktop's width that it takes at most, as far as
  // the smallest texts allow, so that the work below it can be seen.
  double widthShare = 1;
  int spacing = -1;  // pixels between controls below each other, twice as many between columns
                     // and around the screen; -1 is the platform's choice
};
// Stands in the `build` of a screen of work or a window above the frame, and holds until it is
// unloaded: the texts are fitted when the screen is shown and whenever its room changes. Labels
// that break their lines are not for such a screen. A platform that shows no texts only remembers
// it.
void FitTexts(Screen& screen, TextFit fit);

// ---- for the platform layer ---------------------------------------------------------------------

// What was told of the screen; without a range when nothing was.
const TextFit& FitOf(const Screen& screen);
void ForgetFit(const Screen& screen);
