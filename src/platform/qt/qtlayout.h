// From the places of the records to layouts.
#pragma once

struct QtScreen;

// Creates the widgets of all controls below `root` and lays them out.
void BuildControls(QtScreen& screen);

// Whether a screen has something that makes use of more room than it needs.
struct Expands {
  bool horizontally = false;
  bool vertically = false;
};
struct Screen;
Expands ExpandsOf(const Screen& screen);
