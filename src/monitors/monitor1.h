// The analog monitor: the running engine on dials and bars, sensor faults, what the control unit
// has loaded, and nine run-time offsets to be changed through fields that ALT and a number reach.
#pragma once

#include <span>
#include <string>

#include "monitors/livefigures.h"
#include "monitors/livesession.h"
#include "platform/screen.h"

extern Screen Monitor1;
// The panel that F1 opens.
extern Screen Monitor1Help;

// Its figures beside the dials and bars, in the order in which they stand.
std::span<const LiveFigure> Monitor1Figures();
// The lines of the help panel.
std::span<const char* const> Monitor1HelpLines();

void RegisterMonitor1();
