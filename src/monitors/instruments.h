// Draws the analog monitor's dials and bars on a canvas, sharp at any size. Faces are the
// background of the canvas; needles, bars and digits stand above it and are drawn for each frame.
#pragma once

#include <string>

#include "monitors/livefigures.h"
#include "platform/screen.h"

// What the instruments show.
struct InstrumentReadings {
  double rpm = 0;
  std::string rpmText;
  int cltStep = 0, matStep = 0, tpsStep = 0;
  std::string cltText, matText, tpsText;
  double load = 0;
  std::string loadText;
  double egoVolts = 0;
  std::string egoText;
  int dutyBar = 0;  // tenths of a percent
  std::string dutyText;
  bool dutyOver = false;  // at or above 100 %
  bool old = false;       // not measured now: all is drawn muted
};

// What the faces depend on.
struct InstrumentFaces {
  double revLimitRpm = 0;
  bool fahrenheit = false;
  std::string temperatureUnit;
  std::string loadUnit;
  double loadMaximum = 110;
  bool operator==(const InstrumentFaces&) const = default;
};

// Clears the canvas and draws the faces as its background. Nothing happens without a size.
void DrawFaces(Control& canvas, const InstrumentFaces& faces, const MonitorColours& colours);
// Needles, bars and digits of one frame.
void DrawReadings(Control& canvas, const InstrumentFaces& faces, const InstrumentReadings& readings,
                  const MonitorColours& colours);

// The direction of a needle step in degrees counter-clockwise from three o'clock. The dial is
// turned so that both its ends stand level.
double NeedleDegrees(int step);
