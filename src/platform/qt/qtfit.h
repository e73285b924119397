// Texts of a screen of work that shrink or grow until all of it is seen.
#pragma once

#include <QSize>

struct QtScreen;
class QWidget;

// Gives the controls in `content` the largest texts at which it fits into the room. Nothing happens
// to a screen that has told no range.
void FitTextsInto(QtScreen& native, QWidget& content, QSize room);
