// The numbers of the analog monitor's dials and bars: scales, needle steps, bands. No drawing.
#pragma once

#include <string_view>

// A dial has 180 steps, a degree each, from its left end.
inline constexpr int DialSteps = 180;

// The tachometer's scale by the rev limit.
struct TachScale {
  double dialRpm;  // full scale
  double rpmPerStep;
  double bandDivisor;  // rev/min to a degree of the bands
};
const TachScale& TachScaleOf(double revLimitRpm);
// The speed is held at full scale.
int TachStep(const TachScale& scale, double rpm);

// Where the coloured bands begin, in degrees counter-clockwise from three o'clock of a dial whose
// left end stands at 174; the red one runs to -4.
struct TachBands {
  double yellowFrom;
  double redFrom;
  double end;
};
TachBands TachBandsOf(double revLimitRpm);

// 180 steps are 133 degrees C or 266 degrees F.
int TemperatureStep(double shown, bool fahrenheit);
// 180 steps are 5 V.
int TpsStep(double volts);
// A step as it can be drawn: from 0 to 180.
int HeldStep(int step);

// The duty bar: tenths of a percent, held to 0 to 1000; 0 for what is no number.
int DutyBarValue(double duty);
inline constexpr int DutyBarMaximum = 1000;

// The MAP bar by load mode and units: its end, in the unit that is shown.
double MapBarMaximum(std::string_view loadMode, bool imperial, int mapBar);
// In MAF mode the PC beeps above this share of the sensor's range.
bool LoadBeeps(std::string_view loadMode, int rawLoad);
