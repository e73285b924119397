// The picture of the analog monitor: which controls stand where. It is seen whole on displays from
// 1024 x 768 on, with normal and with large fonts.
#pragma once

#include <span>
#include <string>

#include "monitors/livefigures.h"
#include "platform/screen.h"

// A column of the panel "Sensors Status".
struct StatusColumn {
  const char* name;
  const char* title;
  int lines;
};
inline constexpr StatusColumn statusColumns[] = {
    {"Failed", "FAILED", 6},
    {"Disabled", "DISABLED", 5},
    {"Intermit", "INTERMIT", 7},
};
// The label of a line, counted from 0.
std::string LineName(const StatusColumn& column, int line);

struct Lamp {
  const char* name;
  const char* caption;
};
inline constexpr Lamp lamps[] = {
    {"OverRev", "OverRev"},
    {"SensorFailed", "Sensor Failed"},
    {"IntermittentFail", "Intermittent Fail"},
};
inline constexpr Colour lampRed = Rgb(220, 40, 40);
inline constexpr Colour lampGreen = Rgb(30, 150, 60);

// Fills in the record: the canvas "Dials", a label with caption and unit for each figure, header,
// offsets, sensor panel, lamps and the button.
void BuildMonitor1(Screen& screen, std::span<const LiveFigure> figures,
                   const MonitorColours& colours);
