// A mean-value model: good enough to drive, to tune and to get wrong.
#include "simulator/physics.h"

#include <algorithm>
#include <cmath>

#include "simulator/calibration.h"

namespace sim {
namespace {

const Calibration& BestKnown() {
  static const Calibration calibration(DefaultImage());
  return calibration;
}

constexpr double NeedAtOneGamaMs = 6.872;

// The sensor's curve, from lean to rich.
constexpr double Volts[] = {0, .45, .65, 1.6, 2.5, 4.0, 4.2, 4.62, 4.8, 5.0};
constexpr double MinusRatios[] = {-22.4, -15.89, -14.9, -14.72, -14.64,
                                  -14.3, -13.8,  -12.6, -11.2,  -10.0};

}  // namespace

double ThrottleVolts(double throttle) {
  return ClosedThrottleVolts + throttle * (OpenThrottleVolts - ClosedThrottleVolts);
}

double IdleAir(double steps) { return 0.008 + steps / 255 * 0.05; }

double ManifoldKpa(double opening, double rpm) {
  const double filling = opening * 13750 / std::max(rpm, 60.0);
  const double share = filling / std::cbrt(1 + filling * filling * filling);
  return std::max(BarometerKpa * share, 16.0);
}

double BestAdvance(double rpm, double mapKpa) {
  return 18 + 0.0045 * std::min(rpm, 4000.0) + 0.15 * (BarometerKpa - mapKpa);
}

double KnockLimit(double rpm, double mapKpa) {
  return BestAdvance(rpm, mapKpa) + 4 - 0.25 * std::max(mapKpa - 70, 0.0);
}

bool Burns(double airFuel) { return airFuel > 4.5 && airFuel < 22; }

double Torque(double rpm, double mapKpa, double advance, double airFuel) {
  const double lambda = airFuel / StoichiometricRatio;
  if (lambda > 1.6 || lambda < 0.4) return 0;
  double mixture = 1 - 1.6 * (lambda - 0.9) * (lambda - 0.9);
  if (lambda > 1.35) mixture *= (1.6 - lambda) / 0.25;
  if (lambda < 0.6) mixture *= (lambda - 0.4) / 0.2;
  const double off = advance - BestAdvance(rpm, mapKpa);
  const double spark = std::max(1 - 0.0005 * off * off, 0.05);
  const double breathing = 1 - 0.3 * std::pow((rpm - 3600) / 5600, 2);
  return 480 * std::max(mapKpa - 22, 0.0) / 78 * spark * std::max(mixture, 0.0) *
         std::max(breathing, 0.2);
}

double Friction(double rpm, double mapKpa, double coolant) {
  if (rpm < 1) return 0;
  const double cold = 1 + 0.5 * std::clamp((80 - coolant) / 80, 0.0, 1.5);
  return (40 + 0.012 * rpm) * cold + 0.2 * (BarometerKpa - mapKpa);
}

double FuelNeedMs(double rpm, double mapKpa, double airCelsius, double coolant) {
  const Calibration& known = BestKnown();
  const double shape = 1 + (known.Table(cell::FuelTable, rpm, mapKpa) - 127) / 255;
  const double surprise = 1 + 0.025 * std::sin(rpm / 900 + mapKpa / 20);
  const double density = (273 + AirReference) / (273 + airCelsius);
  const double wetWalls = 1 + known.OverCoolant(cell::WarmUp, 11, coolant) / 85;
  return NeedAtOneGamaMs * std::max(mapKpa - 10, 1.0) / 94 * shape * surprise * density * wetWalls;
}

double DeadTimeMs(double batteryVolts) { return 0.5 + 0.1 * (14 - batteryVolts); }

double StartingNeed(double coolant) {
  return 0.5 + 1.2 * std::clamp((80 - coolant) / 110, 0.0, 1.0);
}

double EgoVolts(double airFuel) { return Interpolate(MinusRatios, Volts, -airFuel); }

}  // namespace sim
