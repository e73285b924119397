// The parts of starting and ending the program that need no screen: state, screen class, and what
// is asked and kept at the end.
#pragma once

#include <optional>

struct Frame;

// False when another instance of the program runs: then end at once. Otherwise puts the start
// values of the core's state in place, and StartDir.
bool StartCore();

// 1 to 4 for the screen widths that have a class; the width itself for any other.
int ScreenClassOfWidth(int widthPixels);
// Point size of the status bar; nothing for a width without a class, which leaves it as it is.
std::optional<double> StatusPointSizeOfWidth(int widthPixels);
// Sets ScreenClass and the status bar's size from the width of the shown frame.
void TakeScreenWidth(Frame& frame);

// Puts the place and size of the last run into a record that is not shown yet.
void RestoreFramePlace(Frame& frame);
// Keeps the place and size for the next run, unless the frame is minimised.
void StoreFramePlace(Frame& frame);

// With unsaved changes, asks whether to save, and saves on Yes. False when a wanted save has
// failed.
bool OfferSavingChanges();
