// Pulse widths from pressure, firing scheme and rev limit.
#include "editors/injectortimes.h"

#include <cmath>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/numbers.h"

namespace {

constexpr double msPerMinute = 60000;

double TimeBetweenInjections() {
  const double everyEvents = msPerMinute / static_cast<double>(WorkRevLimit) * FiringInterval;
  if (!SimultaneousFiring()) return everyEvents;
  return everyEvents / (static_cast<double>(WorkCylinders) / 2);
}

}  // namespace

InjectorTimes ComputeInjectorTimes() {
  const double iot = WorkIot;
  const double tog = WorkTog;
  const double manifold = MaxManifoldKpa;
  const double low = MapLow;
  const double high = MapHigh;
  InjectorTimes times;
  times.wotPw = iot + tog * ((manifold - low) / (high - low));
  times.revTime = TimeBetweenInjections();
  times.revLimitMaxPw = times.revTime - InjectorRecoveryMs;
  times.maxControllableTog =
      times.revTime / (manifold / SensorHighKpa()) - InjectorRecoveryMs - iot;
  return times;
}

bool SimultaneousFiring() {
  return std::fabs(std::fmod(RoundEven(static_cast<double>(CalValues[0])), 2)) == 1;
}

RoundedOffset RoundInjectorOffset(double ms) {
  constexpr int signBit = 128;
  constexpr int magnitude = 127;
  const int eighths = ToInt16(std::fabs(ms * 8));
  RoundedOffset offset;
  offset.imageByte = ms >= 0 ? eighths & magnitude : (eighths | signBit) & 255;
  offset.ms = (offset.imageByte & magnitude) / 8.0;
  if (offset.imageByte > magnitude) offset.ms = -offset.ms;
  return offset;
}
