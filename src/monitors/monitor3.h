// The digital monitor: plain figures of the running engine that stay above the editors. While it
// runs, an editor's change goes to the control unit.
#pragma once

#include <span>

#include "monitors/livefigures.h"
#include "monitors/livesession.h"
#include "platform/screen.h"

extern Screen Monitor3;
// The panel that F1 opens.
extern Screen Monitor3Help;

// The key code that Enter leaves; nothing else comes of it. Starts as 0.
extern int Monitor3KeyCode;

// Its figures, in the order in which they stand.
std::span<const LiveFigure> Monitor3Figures();

void RegisterMonitor3();
