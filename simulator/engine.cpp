// The engine's life: state, air, idle valve, spark, speed, temperatures. Fuel is in fuel.cpp, the
// frame in frame.cpp.
#include "simulator/engine.h"

#include <algorithm>
#include <cmath>

#include "simulator/physics.h"

namespace sim {

int SignAndMagnitude(std::uint8_t byte) { return byte > 127 ? -(byte & 127) : byte; }

std::uint8_t GamaReadBack(std::uint8_t gama) {
  const double percent = SignAndMagnitude(gama) / 2.55;
  const double counts = std::clamp(std::nearbyint(percent * 2.7128), -128.0, 127.0);
  return static_cast<std::uint8_t>(static_cast<int>(counts) & 255);
}

Engine::Engine(const Image& image, std::uint64_t seed) : cal_(image), noise_(seed) {
  LoadOffsets(0, ImageSize);
}

// Even between -1 and 1, from a generator whose sequence is the same everywhere.
double Engine::Noise() {
  noise_ += 0x9E3779B97F4A7C15u;
  std::uint64_t x = noise_;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
  x ^= x >> 31;
  return static_cast<double>(x >> 11) / static_cast<double>(1ull << 52) - 1;
}

void Engine::AdvanceTo(std::int64_t nowUs) {
  while (timeUs_ + StepUs <= nowUs) {
    timeUs_ += StepUs;
    Step();
  }
}

void Engine::Kill() {
  state_ = State::Off;
  stateS_ = 0;
}

void Engine::Start() {
  if (halted_ || state_ == State::Running) return;
  state_ = State::Cranking;
  stateS_ = 0;
  idleSteps_ = cal_.Raw(cell::IdleResetSteps);
  correction_ = egoAverage_ = 0;
}

void Engine::Halt() {
  halted_ = true;
  Kill();
}

void Engine::Restart(const Image& image) {
  cal_ = Calibration(image);
  offsets = {};
  LoadOffsets(0, ImageSize);
  halted_ = false;
  Kill();
  Start();
}

void Engine::Rewrite(const Image& image, int first, int count) {
  cal_ = Calibration(image);
  LoadOffsets(first, count);
}

// Offsets that begin with what the calibration says follow when its bytes change.
void Engine::LoadOffsets(int first, int count) {
  const auto touched = [&](int index) { return index >= first && index < first + count; };
  const auto byte = [&](int index) { return cal_.image[static_cast<std::size_t>(index)]; };
  if (touched(cell::InjectorOffset)) offsets.injector = byte(cell::InjectorOffset);
  if (touched(cell::OneGama)) offsets.togHigh = byte(cell::OneGama);
  if (touched(cell::OneGama + 1)) offsets.togLow = byte(cell::OneGama + 1);
  if (touched(cell::BlendOffset)) offsets.tpsBlend = byte(cell::BlendOffset);
}

void Engine::FailSensor(Sensor sensor, bool failed) {
  const int bit = 1 << static_cast<int>(sensor);
  failed_ = failed ? failed_ | bit : failed_ & ~bit;
  everFailed_ |= failed_;
}

void Engine::Step() {
  stateS_ += StepS;
  StepDriver();
  StepState();
  StepAir();
  StepIdle();
  StepKnock();
  StepSpark();
  StepFuel();
  StepMixture();
  StepEgo();
  StepSpeed();
  StepTemperatures();
}

// A foot takes a quarter of a second for the whole way.
void Engine::StepDriver() {
  const double pedal = driver.Pedal(StepS);
  const double before = throttle_;
  throttle_ += std::clamp(pedal - throttle_, -4 * StepS, 4 * StepS);
  throttleRate_ = (throttle_ - before) * (OpenThrottleVolts - ClosedThrottleVolts) / StepS;
}

void Engine::StepState() {
  switch (state_) {
    case State::Off:
      if (!halted_ && stateS_ > RestartAfterKillS) Start();
      break;
    case State::Cranking:
      if (stateS_ > 0.8 && Burns(airFuel_)) {
        state_ = State::Running;
        stateS_ = 0;
        rpm_ = std::max(rpm_, 450.0);
      } else if (stateS_ > 4) {
        Kill();  // it will not start; the driver lets the starter cool
      }
      break;
    case State::Running:
      if (rpm_ < 250) Kill();
      break;
  }
}

void Engine::StepAir() {
  const double area = IdleAir(idleSteps_) + std::pow(throttle_, 1.5);
  const double target = ManifoldKpa(area, rpm_);
  const double tau = 0.02 + 60 / std::max(rpm_, 200.0);
  map_ += (target - map_) * (1 - std::exp(-StepS / tau)) + Noise() * 0.15;
  map_ = std::clamp(map_, 10.0, BarometerKpa);
}

bool Engine::Idling() const {
  const double volts = ThrottleVolts(throttle_);
  return state_ == State::Running && volts < cal_.Scaled(cell::ClosedThrottle, 51);
}

// The stepper motor of the idle valve: every wait period a few steps towards the target speed.
void Engine::StepIdle() {
  idleAdvance_ = 0;
  const bool active = Idling() && cal_.Enabled(cell::IdleControl) &&
                      map_ > cal_.Kpa(cell::IdleLeastMap) && stateS_ > 1;
  if (!active) return;
  std::array<double, 3> temperatures{}, speeds{};
  for (int i = 0; i < 3; ++i) {
    temperatures[static_cast<std::size_t>(i)] = cal_.Temperature(cell::IdleTemperatures + i);
    speeds[static_cast<std::size_t>(i)] = cal_.CoarseSpeed(cell::IdleSpeeds + i);
  }
  const double missing = Interpolate(temperatures, speeds, coolant_) - rpm_;
  const int gainCell = missing > 0 ? cell::IdleAdvanceLow : cell::IdleAdvanceHigh;
  constexpr double WholeStepRpm = 100;  // off target: the whole of it
  idleAdvance_ = std::clamp(missing / WholeStepRpm, -1.0, 1.0) * cal_.Scaled(gainCell, 20.74);
  constexpr double QuietRpm = 15;
  if (std::abs(missing) < QuietRpm) return;
  idleWaitS_ += StepS;
  const bool up = missing > 0;
  const double waitS = (cal_.Raw(up ? cell::IdleWaitUp : cell::IdleWaitDown) + 1) * 0.004096;
  const bool coarse = std::abs(missing) > cal_.CoarseSpeed(cell::IdleCoarse);
  const double steps =
      cal_.Raw(coarse ? (up ? cell::IdleStepsUp : cell::IdleStepsDown) : cell::IdleStepsFine);
  while (idleWaitS_ >= waitS) {
    idleWaitS_ -= waitS;
    idleSteps_ = std::clamp(idleSteps_ + (up ? steps : -steps), 0.0, 255.0);
  }
}

// The sensor hears every engine; it hears one that knocks much better.
void Engine::StepKnock() {
  const double over = state_ == State::Running ? advance_ - KnockLimit(rpm_, map_) : -1;
  knockLevel_ = std::clamp(10 + 0.003 * rpm_ + 5 * Noise() + 40 * std::max(over, 0.0), 0.0, 255.0);
  const bool controls = cal_.Enabled(cell::KnockControl) && state_ == State::Running &&
                        rpm_ < cal_.Speed(cell::KnockInhibit) && !Fails(Sensor::Knock);
  const double firings = rpm_ / 60 * FiringsPerTurn * StepS;
  const bool knocks = knockLevel_ > cal_.Raw(cell::KnockThreshold);
  const double change = knocks && controls ? cal_.Scaled(cell::AdvanceRetard, 4.25)
                                           : -cal_.Scaled(cell::AdvanceIncrease, 4.25);
  knockRetard_ += change * firings;
  knockRetard_ = std::clamp(knockRetard_, 0.0, cal_.Scaled(cell::MaxRetard, 4.25));
}

void Engine::StepSpark() {
  const double limit = cal_.Speed(cell::RevLimit);
  if (!cal_.Enabled(cell::RevLimiter) || rpm_ < limit - cal_.Speed(cell::RevHysteresis)) {
    revCut_ = false;
  } else if (rpm_ > limit) {
    revCut_ = true;
  }
  if (state_ != State::Running) {
    advance_ = cal_.Scaled(cell::InitialAdvance, 4.25);
  } else {
    const double airAdvance = cal_.Signed(cell::AirAdvance, 4.25) * (AirReference - air_) / 100;
    advance_ = cal_.Table(cell::AdvanceTable, rpm_, LoadKpa()) / 4.25 +
               cal_.OverCoolant(cell::CoolantAdvance, 12, coolant_) / 4.25 + idleAdvance_ +
               airAdvance - knockRetard_ + SignAndMagnitude(offsets.advance) / 4.25;
  }
  const bool limitedToZero = revCut_ && cal_.Enabled(cell::RevCutByZeroAdvance);
  if (offsets.zeroAdvance || limitedToZero) advance_ = 0;
  advance_ = std::clamp(advance_, 0.0, 60.0);
}

void Engine::StepSpeed() {
  const bool sparks = !revCut_ || cal_.Enabled(cell::RevCutByZeroAdvance);
  double torque = 0;
  if (state_ == State::Running && sparks) {
    torque = Torque(rpm_, map_, advance_, airFuel_) + 3 * Noise();
  }
  if (state_ == State::Cranking) torque = (220 - rpm_) * 2 + Friction(rpm_, map_, coolant_);
  torque -= Friction(rpm_, map_, coolant_) + RoadTorque * rpm_ * rpm_;
  const bool inGear = throttle_ > 0.01 || rpm_ > 1700;
  rpm_ += torque / (inGear ? DrivenInertia : FreeInertia) * StepS * 60 / (2 * 3.14159265);
  rpm_ = std::clamp(rpm_, 0.0, 9000.0);
}

void Engine::StepTemperatures() {
  const bool warms = state_ == State::Running;
  const double target = warms ? ThermostatCelsius + std::min(map_ / 25, 4.0) : AmbientCelsius;
  const double tau = warms ? 75.0 : 1200.0;
  coolant_ += (target - coolant_) * StepS / tau;
  const double airTarget = AmbientCelsius + (coolant_ - AmbientCelsius) * (warms ? 0.18 : 0.3);
  air_ += (airTarget - air_) * StepS / 60;
  const double volts = state_ == State::Running ? 13.9 : state_ == State::Cranking ? 10.4 : 12.4;
  battery_ += (volts - battery_) * StepS / 0.3 + 0.02 * Noise();
}

}  // namespace sim
