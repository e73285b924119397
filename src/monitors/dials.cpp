// Scales, needle steps and bands of the analog monitor.
#include "monitors/dials.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"

namespace {

constexpr TachScale scales[] = {
    {6000, 33.3, 33.33},
    {8000, 44.4, 46},
    {12000, 66.66666667, 69.6},
};
constexpr double leftEnd = 174;
constexpr double redEnd = -4;
constexpr double yellowBelowLimitRpm = 1000;

// The step of a value; far away and what is no number is held where an int still has room.
int StepOf(double steps) {
  constexpr double farAway = 1e6;
  if (std::isnan(steps)) return 0;
  return static_cast<int>(Int(std::clamp(steps, -farAway, farAway)));
}

}  // namespace

const TachScale& TachScaleOf(double revLimitRpm) {
  if (revLimitRpm > 7500) return scales[2];
  return revLimitRpm > 5500 ? scales[1] : scales[0];
}

int TachStep(const TachScale& scale, double rpm) {
  return StepOf(std::min(rpm, scale.dialRpm) / scale.rpmPerStep);
}

TachBands TachBandsOf(double revLimitRpm) {
  const double divisor = TachScaleOf(revLimitRpm).bandDivisor;
  return {leftEnd - (revLimitRpm - yellowBelowLimitRpm) / divisor, leftEnd - revLimitRpm / divisor,
          redEnd};
}

int TemperatureStep(double shown, bool fahrenheit) {
  return StepOf(shown / (fahrenheit ? 1.477777777778 : 0.7388888888889));
}

int TpsStep(double volts) { return StepOf(volts / 0.027777777); }

int HeldStep(int step) { return std::clamp(step, 0, DialSteps); }

int DutyBarValue(double duty) {
  if (std::isnan(duty)) return 0;
  return static_cast<int>(Fix(std::clamp(duty * DutyBarMaximum, 0.0, 1.0 * DutyBarMaximum)));
}

double MapBarMaximum(std::string_view loadMode, bool imperial, int mapBar) {
  if (loadMode != "MAP") return mapBar * 105.0;
  return mapBar * (imperial ? 32.0 : 110.0);
}

bool LoadBeeps(std::string_view loadMode, int rawLoad) {
  return loadMode != "MAP" && rawLoad / 255.0 > 0.99;
}
