// The engine's fuel: pulse width from the calibration, the mixture it makes, and the correction
// from the exhaust.
#include <algorithm>
#include <cmath>

#include "simulator/engine.h"
#include "simulator/physics.h"

namespace sim {

// What the control unit takes for the load: the sensor, or its default when that has failed.
double Engine::LoadKpa() const { return Fails(Sensor::Map) ? cal_.Kpa(cell::MapDefault) : map_; }

// Throttle and manifold pressure mixed, as the blend table says for this speed.
double Engine::BlendedLoad() const {
  std::array<double, AxisLength> speeds{}, shares{};
  for (int i = 0; i < AxisLength; ++i) {
    speeds[static_cast<std::size_t>(i)] = cal_.Speed(cell::BlendSpeeds + 2 * i);
    shares[static_cast<std::size_t>(i)] = cal_.Scaled(cell::BlendPercents + i, 255);
  }
  const double share = std::clamp(Interpolate(speeds, shares, rpm_), 0.0, 1.0);
  const double volts =
      Fails(Sensor::Throttle) ? cal_.Scaled(cell::ThrottleDefault, 51) : ThrottleVolts(throttle_);
  const double offset = offsets.tpsBlend / 51.0;
  const double throttleKpa = std::clamp((volts - offset) / (5 - offset), 0.0, 1.0) * 104;
  return LoadKpa() * (1 - share) + throttleKpa * share;
}

double Engine::TogMs() const { return (offsets.togHigh + offsets.togLow / 256.0) * 256 / 125; }

// The air/fuel table with its offset, in its counts: 14.64 / ((128 + counts) / 255).
double Engine::DesiredCounts() const {
  const double base = cal_.Table(cell::AirFuelTable, rpm_, LoadKpa());
  return std::clamp(base + static_cast<std::int8_t>(offsets.afr), 0.0, 255.0);
}

// What the control unit reads from the sensor, by the programmed curve.
double Engine::ActualCounts() const {
  std::array<double, 10> volts{}, ratios{};
  for (std::size_t i = 0; i < 10; ++i) {
    const int index = static_cast<int>(i);
    volts[i] = i == 0 ? 0 : i == 9 ? 255 : cal_.Raw(cell::EgoCurveVolts + index - 1);
    ratios[i] = cal_.Raw(cell::EgoCurveRatios + index);
  }
  return std::clamp(256 - Interpolate(volts, ratios, egoVolts_ * 51), 0.0, 255.0);
}

// All that makes the mixture richer for a while, as a share of the fundamental pulse.
double Engine::Enrichment() {
  const double coldness = std::clamp((80 - coolant_) / 110, 0.0, 1.0);
  const auto share = [&](int index) { return cal_.Scaled(index, 85); };
  double sum = cal_.OverCoolant(cell::WarmUp, 11, coolant_) / 85;
  if (state_ == State::Cranking || stateS_ < 1) {
    sum += share(cell::Start1Temperature) * coldness + share(cell::Start1Constant);
  }
  if (stateS_ < 20) {
    sum += (share(cell::Start20Temperature) * coldness + share(cell::Start20Constant)) *
           (1 - stateS_ / 20);
  }
  // A quick foot earns the whole enrichment with a fifth of the throttle's way, and less with less.
  if (throttleRate_ > cal_.Scaled(cell::ThrottleRate, 2.438)) {
    const double whole = share(cell::AccelTemperature) * coldness + share(cell::AccelConstant) +
                         share(cell::AccelDecaying) + share(cell::AccelVariable);
    const double way = throttleRate_ * StepS / (OpenThrottleVolts - ClosedThrottleVolts);
    acceleration_ = std::min(acceleration_ + whole * way / 0.2, whole);
  }
  acceleration_ *= std::exp(-StepS / std::max(cal_.Scaled(cell::AccelTime, 4), 0.1));
  sum += acceleration_;
  afterDecelS_ = std::max(afterDecelS_ - StepS, 0.0);
  if (afterDecelS_ > 0) sum += share(cell::DecelAfter);
  return sum;
}

void Engine::StepFuel() {
  const double onSpeed =
      cal_.CoarseSpeed(coolant_ < 50 ? cell::DecelColdSpeed : cell::DecelHotSpeed);
  const bool coasts = Idling() && rpm_ > onSpeed && map_ < cal_.Kpa(cell::DecelMap);
  if (decelCut_ && !coasts) afterDecelS_ = 1;
  decelCut_ = coasts;

  gama_ = std::clamp((1 + Enrichment()) * (1 + SignAndMagnitude(offsets.gama) / 255.0), 0.0, 3.9);
  if (state_ == State::Off || decelCut_ || rpm_ < 30) {
    pulseMs_ = 0;
    return;
  }
  const double fuelTable = 1 + (cal_.Table(cell::FuelTable, rpm_, LoadKpa()) - 127) / 255;
  const double ratio = (128 + DesiredCounts()) / 255;
  const double density = 1 + cal_.Scaled(cell::AirDensity, 255) * (AirReference - air_) / 100;
  const double fundamental = TogMs() * std::max(BlendedLoad() - 10, 0.0) / 94;
  const double batteryMs = cal_.Raw(cell::BatteryCompensation) * 2 * (14 - battery_) / 1000;
  double pulse = fundamental * fuelTable * ratio * density * gama_ * (1 + correction_) +
                 SignAndMagnitude(offsets.injector) / 8.0 + batteryMs;
  const bool coldStart = coolant_ < cal_.Temperature(cell::StartPulseBelow) &&
                         (state_ == State::Cranking || stateS_ < 1);
  if (coldStart) pulse += cal_.Scaled(cell::StartPulse, 16);
  pulseMs_ = std::clamp(pulse, cal_.Scaled(cell::LeastPulse, 32), 500.0);
}

// What burns: the fuel that passes the open needle, less what wets the walls when the throttle
// opens.
void Engine::StepMixture() {
  tipIn_ = std::min(tipIn_ + std::max(throttleRate_, 0.0) * StepS * 0.08, 0.3);
  tipIn_ *= std::exp(-StepS / 0.4);
  const double open = std::max(pulseMs_ - DeadTimeMs(battery_), 0.0) * (1 - tipIn_);
  const double sinceStart = state_ == State::Running ? stateS_ : 0;
  const double dryWalls = StartingNeed(coolant_) * std::exp(-sinceStart / 1.0);
  const double need = FuelNeedMs(rpm_, map_, air_, coolant_) * (1 + dryWalls);
  airFuel_ = open > 0.001 ? std::min(StoichiometricRatio * need / open, 99.0) : 99.0;
}

// The gas reaches the sensor late; every few firings the correction is moved by what it tells.
void Engine::StepEgo() {
  exhaust_.push_back(airFuel_);
  const double delayS = 0.05 + 100 / std::max(rpm_, 400.0);
  while (exhaust_.size() > 1 && static_cast<double>(exhaust_.size()) * StepS > delayS) {
    exhaust_.pop_front();
  }
  const double volts = state_ == State::Running ? EgoVolts(exhaust_.front()) : 0;
  egoVolts_ += (volts - egoVolts_) * (1 - std::exp(-StepS / 0.04));

  const double highMap = cal_.Scaled(cell::EgoHighMap, 2.7128) + 10;
  const double highMapSpeed =
      (cal_.Raw(cell::EgoHighMapSpeed) * 256 + cal_.Raw(cell::EgoHighMapSpeed + 1)) / 5.46125;
  const bool closed = state_ == State::Running && stateS_ > 5 && !offsets.openLoop &&
                      cal_.Enabled(cell::EgoControl) && !Fails(Sensor::Ego) && !decelCut_ &&
                      coolant_ > cal_.Temperature(cell::EgoTemperature) &&
                      !(rpm_ > highMapSpeed && LoadKpa() > highMap);
  if (!closed) {
    correction_ = egoAverage_ = 0;
    return;
  }
  egoEvents_ += rpm_ / 60 * FiringsPerTurn * StepS;
  const double every = std::max(cal_.Raw(cell::EgoEvents), 1.0);
  for (; egoEvents_ >= every; egoEvents_ -= every) {
    const double missing = DesiredCounts() - ActualCounts();  // above 0: too lean
    egoAverage_ += (missing - egoAverage_) / 8;
    const double steps = missing / std::max(cal_.Raw(cell::EgoInstant), 1.0) +
                         egoAverage_ / std::max(cal_.Raw(cell::EgoAverage), 1.0);
    constexpr double RestlessCounts = 1.5;  // the loop never rests: it has to see both sides
    correction_ += (std::clamp(steps, -4.0, 4.0) + std::copysign(RestlessCounts, missing)) / 255;
  }
  const double authority = cal_.Scaled(cell::EgoAuthority, 255);
  correction_ = std::clamp(correction_, -std::min(authority, 0.5), std::min(authority, 0.498));
}

}  // namespace sim
