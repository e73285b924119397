// The running engine behind the live frame: air, fuel, spark, speed and temperatures of a V8 in
// steps of ten milliseconds, as the programmed calibration and the run-time offsets tell it. It
// moves only when told the time, and its noise comes from its own seed.
#pragma once

#include <array>
#include <cstdint>
#include <deque>

#include "simulator/calibration.h"
#include "simulator/driver.h"

namespace sim {

using LiveBytes = std::array<std::uint8_t, 27>;

// Run-time offsets, as the bytes that came over the line.
struct Offsets {
  std::uint8_t advance = 0;   // sign in bit 7, 4.25 to the degree
  std::uint8_t gama = 0;      // sign in bit 7, 255 to the whole
  std::uint8_t tpsBlend = 0;  // 51 to the volt
  std::uint8_t injector = 0;  // sign in bit 7, 8 to the millisecond
  std::uint8_t togHigh = 0;   // 256/125 ms
  std::uint8_t togLow = 0;    // 1/125 ms
  std::uint8_t gpo = 0;       // two's complement, 255 to the whole
  std::uint8_t afr = 0;       // two's complement, counts of the air/fuel table
  bool openLoop = false;
  bool zeroAdvance = false;
};

// The value of a byte with its sign in bit 7.
int SignAndMagnitude(std::uint8_t byte);

// The gama offset as it is read back: two's complement, 2.7128 to the percent.
std::uint8_t GamaReadBack(std::uint8_t gama);

// Bits of the frame's sensor flags.
enum class Sensor { Coolant, Air, Map, Ego, Knock, Throttle, LowBattery };

class Engine {
 public:
  enum class State { Off, Cranking, Running };

  // A warm engine, idling, at time 0.
  Engine(const Image& image, std::uint64_t seed);

  // Catches up to a time; one that lies behind changes nothing.
  void AdvanceTo(std::int64_t nowUs);
  // The 27 bytes of the live frame, as of now.
  LiveBytes Frame() const;

  void Kill();   // ignition off until the driver turns the key again
  void Start();  // the driver turns the key
  void Halt();   // the control unit is busy: no ignition, no fuel, until Restart
  // New calibration, offsets lost, and the engine is started.
  void Restart(const Image& image);
  // A few bytes were rewritten while it runs: what depends on them follows.
  void Rewrite(const Image& image, int first, int count);

  Driver driver;
  Offsets offsets;

  void SetCoolant(double celsius) { coolant_ = celsius; }
  void FailSensor(Sensor sensor, bool failed);

  State Now() const { return state_; }
  double Rpm() const { return rpm_; }
  double MapKpa() const { return map_; }
  double Coolant() const { return coolant_; }
  double BatteryVolts() const { return battery_; }
  double Throttle() const { return throttle_; }
  double AirFuelRatio() const { return airFuel_; }  // in the cylinders
  double EgoCorrection() const { return correction_; }
  double AdvanceDegrees() const { return advance_; }
  double PulseMs() const { return pulseMs_; }
  bool RevCut() const { return revCut_; }

  static constexpr std::int64_t StepUs = 10'000;
  static constexpr double RestartAfterKillS = 10;

 private:
  void LoadOffsets(int first, int count);
  void Step();
  void StepDriver();
  void StepState();
  void StepAir();
  void StepIdle();
  void StepSpark();
  void StepKnock();
  void StepFuel();
  double Enrichment();
  void StepMixture();
  void StepEgo();
  void StepSpeed();
  void StepTemperatures();
  bool Idling() const;
  bool Fails(Sensor sensor) const { return failed_ >> static_cast<int>(sensor) & 1; }
  double LoadKpa() const;
  double BlendedLoad() const;
  double TogMs() const;
  double DesiredCounts() const;
  double ActualCounts() const;
  double GpoShare() const;
  double Noise();

  Calibration cal_;
  State state_ = State::Running;
  bool halted_ = false;
  std::int64_t timeUs_ = 0;
  std::uint64_t noise_;

  double rpm_ = 750;
  double map_ = 35;
  double coolant_ = 88;
  double air_ = 32;
  double battery_ = 13.9;
  double throttle_ = 0;      // 0 to 1
  double throttleRate_ = 0;  // V/s
  double idleSteps_ = 70;
  double idleWaitS_ = 0;
  double stateS_ = 60;   // seconds in this state
  double advance_ = 17;  // degrees
  double idleAdvance_ = 0;
  double knockRetard_ = 0;
  double knockLevel_ = 0;  // counts
  bool revCut_ = false;
  double gama_ = 1;
  double acceleration_ = 0;  // enrichment, decaying
  double tipIn_ = 0;         // share of fuel that the walls take
  double afterDecelS_ = 0;
  bool decelCut_ = false;
  double pulseMs_ = 2;
  double airFuel_ = 14.64;
  double egoVolts_ = 2.5;
  double correction_ = 0;  // fraction
  double egoAverage_ = 0;
  double egoEvents_ = 0;
  std::deque<double> exhaust_;  // ratios on their way to the sensor
  int failed_ = 0;              // bits of Sensor
  int everFailed_ = 0;
};

}  // namespace sim
