// The repairs of a calibration that has been read.
#include "core/calfix.h"

#include <algorithm>
#include <array>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/numbers.h"

namespace {

constexpr std::size_t curveVolts = 415;  // ten sensor voltages, then ten ratios
constexpr std::size_t curveRatios = 425;
constexpr std::array<float, 20> defaultCurve = {0,      0.45F, 0.65F, 1.6F,  2.5F,   4.0F,  4.2F,
                                                4.62F,  4.8F,  5.0F,  22.4F, 15.89F, 14.9F, 14.72F,
                                                14.64F, 14.3F, 13.8F, 12.6F, 11.2F,  10.0F};

// A file always ends in MAP mode, whatever it says of the load sensor.
void TakeLoadSensor() {
  OpenedEgoAuthority = CalValues[221];
  CalValues[234] = 0;
  LoadMode = "MAP";
  const double bar = Int(CalValues[459]);
  if (bar >= 1 && bar <= 4) MapBar = static_cast<int>(bar);
  MapFullScale = static_cast<int>(SensorHighKpa());
}

bool CurveIsSound() {
  const bool inRange = std::all_of(&CalValues[curveRatios], &CalValues[curveRatios + 10],
                                   [](float ratio) { return ratio >= 9.8F && ratio <= 29.3F; });
  return inRange && CalValues[curveRatios - 1] <= 5;
}

void FixEgoCurve() {
  if (!CurveIsSound()) std::copy(defaultCurve.begin(), defaultCurve.end(), &CalValues[curveVolts]);
}

void FixAirFuelTable() {
  std::transform(&CalValues[345], &CalValues[409], &CalValues[345], LimitedAirFuel);
}

void FixIdleSpeeds() {
  for (std::size_t i = 205; i <= 207; ++i) {
    if (CalValues[i] < 500) CalValues[i] = 500;
    if (CalValues[i] > 2000) CalValues[i] = 2000;
  }
}

}  // namespace

void FixLoadedCalibration() {
  TakeLoadSensor();
  FixEgoCurve();
  FixAirFuelTable();
  FixIdleSpeeds();
}

void FixOpenedCalibration() {
  CalValues[339] = 0;
  if (CalValues[435] != 0) return;
  const double revLimit = CalValues[4];
  const double step = Int(revLimit / 8);
  CalValues[435] = 400;
  double speed = revLimit;
  for (std::size_t index = 442; index >= 436; --index, speed -= step)
    CalValues[index] = static_cast<float>(speed);
}

long CalibrationLoads = 0;

void PublishLoadedCalibration() {
  ++CalibrationLoads;
  PublishCalGlobals();
  ComputeInjectorLimits();
  CopyTablesToWork();
  MaxManifoldKpa = MapHigh;
}
