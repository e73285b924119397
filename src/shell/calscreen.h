// The calibration screen.
#pragma once

#include <span>
#include <string_view>

#include "platform/screen.h"
#include "shell/buttonmenu.h"

extern Screen CSForm1;

// Who opened Rev_limiter: 1 the advance table, 2 the calibration screen, 0 nobody said. The rev
// limiter takes it when it loads and puts 0 back.
extern int RevLimiterCaller;

struct CalibrationRow {
  ButtonRow button;
  bool quickStart;  // shown in QUICK START
};

std::span<const CalibrationRow> CalibrationRows();
// Leaves what is up and shows the calibration screen, with the focus on the button that opens the
// screen of this name: the Back of an editor.
void ShowCalibrationScreen(std::string_view openedScreen = {});
