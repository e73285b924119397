// The engine behaves like one, and answers to its calibration and to what is tuned.
#include "simulator/engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "exchange.h"
#include "simulator/physics.h"

namespace {

using sim::Engine;
using sim::Image;
using sim::LiveBytes;
using namespace std::string_literals;

double ErpmOf(const LiveBytes& f) { return std::floor(12150 * ((f[0] * 256 + f[1]) / 8192.0)); }
double AdvanceOf(const LiveBytes& f) { return f[2] / 4.25; }
double GamaOf(const LiveBytes& f) { return (128 + f[5] + 3 * f[6]) / 256.0; }
double PulseOf(const LiveBytes& f) { return (f[25] * 256 + f[26]) / 125.0; }
double CorrectionOf(const LiveBytes& f) {
  return f[17] < 128 ? f[17] / 255.0 : (256 - f[17]) / -255.0;
}
double RatioOf(std::uint8_t counts) { return 14.64 / ((128 + counts) / 255.0); }

// An engine with its own clock.
struct Bench {
  Engine engine;
  double seconds = 0;
  explicit Bench(const Image& image = sim::DefaultImage()) : engine(image, 1) {}
  void Run(double more) {
    seconds += more;
    engine.AdvanceTo(static_cast<std::int64_t>(seconds * 1e6));
  }
  // The mean of something over some seconds.
  double Mean(double more, const std::function<double(const LiveBytes&)>& value) {
    double sum = 0;
    const int steps = static_cast<int>(more * 100);
    for (int i = 0; i < steps; ++i) {
      Run(0.01);
      sum += value(engine.Frame());
    }
    return sum / steps;
  }
};

Image With(std::initializer_list<std::pair<int, int>> bytes) {
  Image image = sim::DefaultImage();
  for (const auto& [index, value] : bytes)
    image[static_cast<std::size_t>(index)] = static_cast<std::uint8_t>(value);
  return image;
}

// --- idle ----------------------------------------------------------------------------------------

TEST(EngineIdle, SettlesNearTheTarget) {
  Bench bench;
  bench.Run(20);
  EXPECT_NEAR(bench.Mean(10, ErpmOf), 750, 25);
}

TEST(EngineIdle, FollowsTheProgrammedTarget) {
  Bench bench(With({{198, 65}}));  // 65 * 15.31: 995 rpm when warm
  bench.Run(30);
  EXPECT_NEAR(bench.Mean(10, ErpmOf), 995, 30);
}

TEST(EngineIdle, WithoutIdleControlItStaysWhereTheValveIs) {
  Bench bench(With({{0, 0xF8 & ~32}, {198, 65}}));
  bench.Run(30);
  EXPECT_LT(bench.Mean(5, ErpmOf), 900);
}

TEST(EngineIdle, RunsFasterCold) {
  Bench bench;
  bench.engine.SetCoolant(0);
  bench.Run(10);
  EXPECT_GT(bench.Mean(2, ErpmOf), 1000);
}

TEST(EngineIdle, ReturnsAfterABlip) {
  Bench bench;
  bench.Run(5);
  bench.engine.driver.Hold(30);
  bench.Run(2);
  EXPECT_GT(bench.engine.Rpm(), 1300);
  bench.engine.driver.Hold(0);
  bench.Run(25);
  EXPECT_EQ(bench.engine.Now(), Engine::State::Running);
  EXPECT_NEAR(bench.Mean(5, ErpmOf), 750, 30);
}

// --- warm-up -------------------------------------------------------------------------------------

TEST(EngineWarmUp, CoolantRisesToTheThermostatAndEnrichmentFalls) {
  Bench bench;
  bench.engine.SetCoolant(0);
  bench.Run(2);
  const LiveBytes cold = bench.engine.Frame();
  EXPECT_LT(sim::CelsiusOfCount(cold[4]), 10);
  EXPECT_GT(GamaOf(cold), 1.25);
  EXPECT_GT(cold[4], 200);
  double before = bench.engine.Coolant();
  for (int minute = 0; minute < 6; ++minute) {
    bench.Run(60);
    EXPECT_GE(bench.engine.Coolant(), before);
    before = bench.engine.Coolant();
  }
  const LiveBytes warm = bench.engine.Frame();
  EXPECT_NEAR(sim::CelsiusOfCount(warm[4]), 87, 3);
  EXPECT_NEAR(GamaOf(warm), 1, 0.01);
}

TEST(EngineWarmUp, AirIsWarmerThanOutsideAndColderThanCoolant) {
  Bench bench;
  bench.Run(60);
  const double air = sim::CelsiusOfCount(bench.engine.Frame()[8]);
  EXPECT_GT(air, sim::AmbientCelsius);
  EXPECT_LT(air, 50);
}

TEST(EngineWarmUp, TheLoopOpensBelowTheProgrammedCoolant) {
  Bench bench;
  bench.engine.SetCoolant(20);
  bench.Run(8);
  EXPECT_EQ(bench.engine.Frame()[17], 0);
}

// --- throttle ------------------------------------------------------------------------------------

TEST(EngineThrottle, OpensManifoldAndSpeedAndTheSensorFollows) {
  Bench bench;
  bench.Run(1);
  EXPECT_NEAR(bench.engine.Frame()[9] / 51.2, 0.6, 0.02);
  EXPECT_LT(bench.engine.MapKpa(), 45);
  bench.engine.driver.Hold(100);
  bench.Run(2);
  EXPECT_NEAR(bench.engine.Frame()[9] / 51.2, 4.5, 0.02);
  EXPECT_GT(bench.engine.Frame()[3] * 0.4094, 95);
  EXPECT_GT(bench.engine.Rpm(), 2000);
}

TEST(EngineThrottle, QuickOpeningIsEnriched) {
  Bench bench;
  bench.Run(5);
  bench.engine.driver.Hold(60);
  double richest = 0;
  for (int i = 0; i < 50; ++i) {
    bench.Run(0.01);
    richest = std::max(richest, GamaOf(bench.engine.Frame()));
  }
  EXPECT_GT(richest, 1.25);
  bench.Run(4);
  EXPECT_NEAR(GamaOf(bench.engine.Frame()), 1, 0.01);
}

TEST(EngineThrottle, CoastingCutsTheFuel) {
  Bench bench;
  bench.engine.driver.Hold(30);
  bench.Run(8);
  bench.engine.driver.Hold(0);
  bench.Run(1.5);
  EXPECT_GT(bench.engine.Rpm(), 1900);
  const LiveBytes frame = bench.engine.Frame();
  EXPECT_EQ(PulseOf(frame), 0);
  EXPECT_EQ(frame[17], 0);
  EXPECT_LT(frame[20], 5);  // the sensor sees air
  bench.Run(20);
  EXPECT_GT(PulseOf(bench.engine.Frame()), 2);
}

TEST(EngineThrottle, TheDriveVisitsIdleAndHighSpeedAndNeverStalls) {
  Bench bench;
  bench.engine.driver.Drive();
  double lowest = 9999, highest = 0;
  for (int i = 0; i < 3 * sim::DriveSeconds() * 10; ++i) {
    bench.Run(0.1);
    lowest = std::min(lowest, bench.engine.Rpm());
    highest = std::max(highest, bench.engine.Rpm());
    ASSERT_EQ(bench.engine.Now(), Engine::State::Running);
  }
  EXPECT_GT(lowest, 550);
  EXPECT_LT(lowest, 850);
  EXPECT_GT(highest, 5000);
}

// --- limits --------------------------------------------------------------------------------------

double HighestRpm(Bench& bench) {
  bench.engine.driver.Hold(100);
  double highest = 0;
  for (int i = 0; i < 3000; ++i) {
    bench.Run(0.01);
    highest = std::max(highest, bench.engine.Rpm());
  }
  return highest;
}

TEST(EngineRevLimit, Holds) {
  Bench bench;
  const double highest = HighestRpm(bench);
  EXPECT_GT(highest, 5780);
  EXPECT_LT(highest, 5860);
}

TEST(EngineRevLimit, IsTheProgrammedOne) {
  Bench bench(With({{4, 0x08}, {5, 0x00}}));  // 2048 counts: 3000 rpm
  const double highest = HighestRpm(bench);
  EXPECT_GT(highest, 2990);
  EXPECT_LT(highest, 3080);
}

TEST(EngineRevLimit, LetsGoBelowTheHysteresis) {
  Bench bench(With({{4, 0x08}, {5, 0x00}, {6, 0x02}, {7, 0x00}}));  // 3000 less 750
  HighestRpm(bench);
  double lowest = 9999;
  for (int i = 0; i < 500; ++i) {
    bench.Run(0.01);
    lowest = std::min(lowest, bench.engine.Rpm());
  }
  EXPECT_NEAR(lowest, 2250, 30);
}

TEST(EngineRevLimit, ByZeroAdvanceShowsNoAdvance) {
  Bench bench(With({{0, 0xFC}}));
  bench.engine.driver.Hold(100);
  bool seen = false;
  for (int i = 0; i < 3000; ++i) {
    bench.Run(0.01);
    if (!bench.engine.RevCut()) continue;
    seen = true;
    ASSERT_EQ(bench.engine.Frame()[2], 0);
  }
  EXPECT_TRUE(seen);
  EXPECT_LT(bench.engine.Rpm(), 5950);
}

TEST(EngineRevLimit, DisabledLetsItRunHigher) {
  Bench bench(With({{0, 0xF8 & ~8}}));
  EXPECT_GT(HighestRpm(bench), 6000);
}

// --- spark and knock -----------------------------------------------------------------------------

TEST(EngineSpark, ComesFromTheProgrammedTable) {
  Image image = sim::DefaultImage();
  std::fill(image.begin() + 54, image.begin() + 118, std::uint8_t{85});  // 20 degrees everywhere
  image[448] = 0;  // nothing for the air's temperature
  Bench bench(image);
  bench.engine.driver.Hold(15);
  bench.Run(5);
  EXPECT_EQ(bench.engine.Frame()[2], 85);
}

TEST(EngineSpark, FixedOffsetAddsAndTakesAway) {
  Exchange pc;
  pc.zem.Motor().driver.Hold(15);
  pc.Wait(10);
  const double before = AdvanceOf(pc.Frame());
  pc.Ask("R3\x15");  // 21 / 4.25: 4.94 degrees
  pc.Wait(0.05);
  EXPECT_NEAR(AdvanceOf(pc.Frame()) - before, 4.94, 1);
  pc.Ask("R3\xAA");  // -42 / 4.25: -9.88 degrees
  pc.Wait(0.05);
  EXPECT_NEAR(AdvanceOf(pc.Frame()) - before, -9.88, 1);
  EXPECT_EQ(pc.Frame()[23], 256 - 42);
}

TEST(EngineSpark, ZeroAdvanceIsZeroUntilCleared) {
  Exchange pc;
  pc.Wait(5);
  pc.Ask("Z");
  pc.Wait(0.1);
  EXPECT_EQ(pc.Frame()[2], 0);
  pc.Wait(20);
  EXPECT_EQ(pc.zem.Motor().Now(), Engine::State::Running);
  pc.Ask("C");
  pc.Wait(0.1);
  EXPECT_GT(AdvanceOf(pc.Frame()), 10);
}

struct Knocking {
  int loudest = 0;
  double advance = 0;
};

// Ten degrees too much under load, for half a second.
Knocking TooMuchAdvance(const Image& image) {
  Exchange pc{.zem = sim::Zem({}, image)};
  pc.zem.Motor().driver.Hold(80);
  pc.Wait(3);
  EXPECT_LT(pc.Frame()[7], 76);
  pc.Ask("R3\x2A");
  Knocking knocking;
  for (int i = 0; i < 10; ++i) {
    pc.Wait(0.05);
    const LiveBytes frame = pc.Frame();
    knocking.loudest = std::max<int>(knocking.loudest, frame[7]);
    knocking.advance = AdvanceOf(frame);
  }
  return knocking;
}

TEST(EngineKnock, TooMuchAdvanceKnocksAndIsRetarded) {
  const Knocking controlled = TooMuchAdvance(sim::DefaultImage());
  const Knocking left = TooMuchAdvance(With({{0, 0xF8 & ~16}}));
  EXPECT_GT(controlled.loudest, 76);
  EXPECT_GT(left.loudest, 76);
  EXPECT_LT(controlled.advance, left.advance - 2);
}

TEST(EngineKnock, RetardHasItsProgrammedLimit) {
  const Knocking little = TooMuchAdvance(With({{25, 4}, {23, 43}}));  // a degree at most
  const Knocking left = TooMuchAdvance(With({{0, 0xF8 & ~16}}));
  EXPECT_NEAR(left.advance - little.advance, 0.94, 0.5);
}

// --- fuel ----------------------------------------------------------------------------------------

double MeanPulse(Exchange& pc) {
  double sum = 0;
  for (int i = 0; i < 100; ++i) {
    pc.Wait(0.02);
    sum += PulseOf(pc.Frame());
  }
  return sum / 100;
}

TEST(EngineFuel, GamaOffsetShowsInGamaAndPulse) {
  Exchange pc;
  pc.Ask("RU\xFF");
  pc.zem.Motor().driver.Hold(20);
  pc.Wait(40);
  EXPECT_NEAR(GamaOf(pc.Frame()), 1, 0.005);
  const double before = MeanPulse(pc);
  pc.Ask("R4\x33");  // 51 / 255: 20 %
  pc.Wait(2);
  EXPECT_NEAR(GamaOf(pc.Frame()), 1.2, 0.005);
  EXPECT_NEAR((MeanPulse(pc) - 0.5) / (before - 0.5), 1.2, 0.05);
  pc.Ask("R4\xB3");  // -20 %
  pc.Wait(0.1);
  EXPECT_NEAR(GamaOf(pc.Frame()), 0.8, 0.005);
}

TEST(EngineFuel, TogOffsetShowsInItsBytesAndTheMixture) {
  Exchange pc;
  pc.Ask("RU\xFF");
  pc.Wait(5);
  EXPECT_EQ(pc.Frame()[13], 3);
  EXPECT_EQ(pc.Frame()[14], 91);
  const double before = RatioOf(pc.Frame()[15]);
  pc.Ask("R8\x02");
  pc.Ask("R9\xC0");  // (2 + 192 / 256) * 2.048: 5.6 ms
  pc.Wait(1);
  EXPECT_EQ(pc.Frame()[13], 2);
  EXPECT_EQ(pc.Frame()[14], 192);
  EXPECT_GT(RatioOf(pc.Frame()[15]), before + 0.8);
}

TEST(EngineFuel, InjectorOffsetShowsInThePulse) {
  Exchange pc;
  pc.Ask("RU\xFF");
  pc.zem.Motor().driver.Hold(20);
  pc.Wait(40);
  const double before = MeanPulse(pc);
  pc.Ask("R6\x0C");  // 1.5 ms instead of the calibration's 0.5
  pc.Wait(0.1);
  EXPECT_NEAR(MeanPulse(pc) - before, 1, 0.25);
}

TEST(EngineFuel, NegativeInjectorOffsetTakesAway) {
  Exchange pc;
  pc.Ask("RU\xFF");
  pc.zem.Motor().driver.Hold(40);
  pc.Wait(40);
  const double before = PulseOf(pc.Frame());
  pc.Ask("R6\x84");  // -0.5 ms
  pc.Wait(0.02);
  EXPECT_NEAR(PulseOf(pc.Frame()) - before, -1, 0.1);
}

TEST(EngineFuel, AirFuelOffsetMovesTheDesiredRatioFromItsBase) {
  Exchange pc;
  pc.Wait(5);
  EXPECT_EQ(pc.Frame()[18], pc.Frame()[19]);
  pc.Ask("RO\x0A");
  pc.Wait(0.05);
  EXPECT_EQ(pc.Frame()[18], pc.Frame()[19] + 10);
  pc.Wait(20);
  EXPECT_NEAR(RatioOf(pc.Frame()[15]), RatioOf(pc.Frame()[18]), 0.35);
  pc.Ask("RO\xF6");
  pc.Wait(0.05);
  EXPECT_EQ(pc.Frame()[18], pc.Frame()[19] - 10);
}

TEST(EngineFuel, ThrottleBlendOffsetShowsInItsByte) {
  Exchange pc;
  pc.Ask("R5\x33");
  EXPECT_EQ(pc.Frame()[22], 51);
}

TEST(EngineFuel, BlendedLoadFollowsTheThrottleWherePercentsAreProgrammed) {
  Image blended = sim::DefaultImage();
  std::fill(blended.begin() + 439, blended.begin() + 447, std::uint8_t{255});
  const auto pulse = [](const Image& image, std::string_view offset) {
    Exchange pc{.zem = sim::Zem({}, image)};
    pc.Ask("RU\xFF");
    pc.Ask(offset);
    pc.zem.Motor().driver.Hold(30);
    pc.Wait(0.6);
    return PulseOf(pc.Frame());
  };
  EXPECT_LT(pulse(blended, "R5\x1F"), pulse(blended, "R5\x01") - 0.7);
  EXPECT_NEAR(pulse(sim::DefaultImage(), "R5\x1F"), pulse(sim::DefaultImage(), "R5\x01"), 0.01);
}

TEST(EngineFuel, VeTableByteMovesThePulse) {
  Exchange pc;
  pc.Ask("RU\xFF");
  pc.Wait(5);
  const double before = MeanPulse(pc);
  for (int cell = 118; cell < 182; ++cell) {
    pc.Ask("P2");
    ASSERT_EQ(pc.Ask(S1(sim::ImageAddress + cell, {160})), "PN");
    ASSERT_EQ(pc.Ask("S9030000FC"), "PC");
  }
  EXPECT_GT(MeanPulse(pc), before * 1.1);
}

// --- exhaust feedback ----------------------------------------------------------------------------

TEST(EngineEgo, SwingsAroundStoichiometricInClosedLoop) {
  Bench bench;
  bench.Run(20);
  double leanest = 0, richest = 99, most = -1, least = 1;
  int crossings = 0;
  bool wasLean = false;
  for (int i = 0; i < 2000; ++i) {
    bench.Run(0.01);
    const LiveBytes frame = bench.engine.Frame();
    const double ratio = bench.engine.AirFuelRatio();
    leanest = std::max(leanest, ratio);
    richest = std::min(richest, ratio);
    most = std::max(most, CorrectionOf(frame));
    least = std::min(least, CorrectionOf(frame));
    const bool lean = ratio > 14.64;
    if (i > 0 && lean != wasLean) ++crossings;
    wasLean = lean;
  }
  EXPECT_GT(leanest, 14.7);
  EXPECT_LT(leanest, 15.4);
  EXPECT_LT(richest, 14.6);
  EXPECT_GT(richest, 14.0);
  EXPECT_GT(most - least, 0.01);
  EXPECT_GT(crossings, 20);
}

TEST(EngineEgo, OpenLoopHoldsTheCorrectionAtZero) {
  Exchange pc;
  pc.Wait(20);
  pc.Ask("RU\xFF");
  for (int i = 0; i < 100; ++i) {
    pc.Wait(0.1);
    ASSERT_EQ(pc.Frame()[17], 0);
  }
  pc.Ask("RU\0"s);
  bool moves = false;
  for (int i = 0; i < 50; ++i) {
    pc.Wait(0.1);
    moves = moves || pc.Frame()[17] != 0;
  }
  EXPECT_TRUE(moves);
}

TEST(EngineEgo, DisabledInTheOptionFlagsStaysAtZero) {
  Bench bench(With({{0, 0xF8 & ~64}}));
  bench.Run(30);
  EXPECT_EQ(bench.engine.Frame()[17], 0);
}

TEST(EngineEgo, CorrectsAWrongTogWithinItsAuthority) {
  Exchange pc;
  pc.Ask("R9\x99");  // 7.37 ms: 7 % too rich
  pc.Wait(30);
  double sum = 0;
  for (int i = 0; i < 200; ++i) {
    pc.Wait(0.02);
    sum += CorrectionOf(pc.Frame());
  }
  EXPECT_NEAR(sum / 200, -0.07, 0.04);
  EXPECT_NEAR(pc.zem.Motor().AirFuelRatio(), 14.64, 0.5);
  pc.Ask("R8\x05");  // 11.5 ms: more than it may correct
  pc.Wait(30);
  EXPECT_NEAR(CorrectionOf(pc.Frame()), -0.15, 0.01);
  EXPECT_LT(pc.zem.Motor().AirFuelRatio(), 12.5);
}

TEST(EngineEgo, ReadsTheRatioByTheProgrammedCurve) {
  Bench bench;
  bench.Run(20);
  EXPECT_NEAR(bench.Mean(10, [](const LiveBytes& f) { return RatioOf(f[15]); }), 14.64, 0.15);
}

// --- output, battery, sensors --------------------------------------------------------------------

TEST(EngineOutput, FollowsTheDutyTableAndItsOffset) {
  Image image = sim::DefaultImage();
  std::fill(image.begin() + 244, image.begin() + 308, std::uint8_t{128});
  Exchange pc{.zem = sim::Zem({}, image)};
  EXPECT_EQ(pc.Frame()[12], 128);
  pc.Ask("R7\x4C");
  EXPECT_EQ(pc.Frame()[12], 204);
  pc.Ask("R7\xB4");
  EXPECT_EQ(pc.Frame()[12], 52);
}

TEST(EngineOutput, TemperatureModeSwitchesAFan) {
  Image image = With({{465, 4}, {244, sim::CountOfCelsius(80)}});
  Bench bench(image);
  EXPECT_EQ(bench.engine.Frame()[12], 255);
  bench.engine.SetCoolant(60);
  EXPECT_EQ(bench.engine.Frame()[12], 0);
}

TEST(EngineOutput, ThresholdModeSwitchesOnSpeedAndLoad) {
  Image image = With(
      {{465, 2}, {244, 0x05}, {245, 0x55}, {246, 0}, {247, 0}, {248, 98}});  // 2000 rpm, 40 kPa
  Bench bench(image);
  EXPECT_EQ(bench.engine.Frame()[12], 0);
  bench.engine.driver.Hold(50);
  bench.Run(5);
  EXPECT_EQ(bench.engine.Frame()[12], 255);
}

TEST(EngineBattery, SinksWhileCrankingAndIsChargedWhileRunning) {
  Bench bench;
  bench.Run(5);
  EXPECT_NEAR(bench.engine.Frame()[10] * 0.067432, 13.9, 0.3);
  bench.engine.Kill();
  bench.Run(5);
  EXPECT_NEAR(bench.engine.Frame()[10] * 0.067432, 12.4, 0.3);
  bench.engine.Start();
  bench.Run(0.7);
  EXPECT_LT(bench.engine.Frame()[10] * 0.067432, 11.2);
}

TEST(EngineSensors, AreAllWell) {
  Bench bench;
  EXPECT_EQ(bench.engine.Frame()[11], 0);
  EXPECT_EQ(bench.engine.Frame()[16] & 127, 127);
  EXPECT_EQ(bench.engine.Frame()[21], 0);
}

TEST(EngineSensors, AFailedOneShowsItsDefaultAndIsRemembered) {
  Bench bench;
  bench.engine.FailSensor(sim::Sensor::Coolant, true);
  LiveBytes frame = bench.engine.Frame();
  EXPECT_EQ(frame[11], 1);
  EXPECT_EQ(frame[16], 126);
  EXPECT_EQ(frame[21], 1);
  EXPECT_NEAR(frame[4] / 2.3182 - 30, 70, 0.3);
  bench.engine.FailSensor(sim::Sensor::Coolant, false);
  frame = bench.engine.Frame();
  EXPECT_EQ(frame[11], 0);
  EXPECT_EQ(frame[16], 126);
  bench.engine.FailSensor(sim::Sensor::Map, true);
  frame = bench.engine.Frame();
  EXPECT_EQ(frame[11], 4);
  EXPECT_EQ(frame[21], 4);
  EXPECT_NEAR(frame[3] * 0.4094, 60, 0.5);
  bench.engine.FailSensor(sim::Sensor::LowBattery, true);
  EXPECT_EQ(bench.engine.Frame()[11], 4);
  EXPECT_EQ(bench.engine.Frame()[16], 127 - 1 - 4 - 64);
}

// --- starting and stopping -----------------------------------------------------------------------

TEST(EngineState, KilledItStopsAndTheDriverStartsItAgain) {
  Exchange pc;
  pc.Ask("K");
  pc.Wait(4);
  EXPECT_EQ(ErpmOf(pc.Frame()), 0);
  EXPECT_EQ(PulseOf(pc.Frame()), 0);
  pc.Wait(Engine::RestartAfterKillS);
  EXPECT_EQ(pc.zem.Motor().Now(), Engine::State::Running);
  pc.Wait(20);
  EXPECT_NEAR(ErpmOf(pc.Frame()), 750, 60);
}

TEST(EngineState, StartsFromTheColdOnItsEnrichments) {
  Bench bench;
  bench.engine.SetCoolant(0);
  bench.engine.Restart(sim::DefaultImage());
  EXPECT_EQ(bench.engine.Now(), Engine::State::Cranking);
  bench.Run(3);
  EXPECT_EQ(bench.engine.Now(), Engine::State::Running);
}

TEST(EngineState, StartsAtAnyTemperature) {
  for (int celsius = -20; celsius <= 90; celsius += 10) {
    Bench bench;
    bench.engine.SetCoolant(celsius);
    bench.engine.Restart(sim::DefaultImage());
    bench.Run(10);
    EXPECT_EQ(bench.engine.Now(), Engine::State::Running) << celsius;
    EXPECT_GT(bench.engine.Rpm(), 600) << celsius;
  }
}

TEST(EngineState, AnEmptyCalibrationDoesNotRun) {
  Bench bench;
  bench.Run(1);
  bench.engine.Restart(Image{});
  for (int i = 0; i < 300; ++i) {
    bench.Run(0.1);
    ASSERT_NE(bench.engine.Now(), Engine::State::Running);
  }
}

TEST(EngineState, AnyImageGivesFrames) {
  std::uint64_t seed = 7;
  for (int round = 0; round < 30; ++round) {
    Image image;
    for (std::uint8_t& byte : image) {
      seed = seed * 6364136223846793005u + 1442695040888963407u;
      byte = static_cast<std::uint8_t>(seed >> 56);
    }
    Bench bench(image);
    bench.engine.driver.Drive();
    bench.Run(20);
    EXPECT_GE(bench.engine.Rpm(), 0);
    EXPECT_LE(bench.engine.Rpm(), 9000);
    EXPECT_TRUE(std::isfinite(bench.engine.AirFuelRatio()));
    EXPECT_TRUE(std::isfinite(bench.engine.EgoCorrection()));
  }
}

// --- memory writes -------------------------------------------------------------------------------

TEST(EngineMemory, AWriteActsAtOnce) {
  Exchange pc;
  pc.Ask("P2");
  pc.Ask(S1(0xB602, {24}));  // injector offset 3 ms
  pc.Ask("S9030000FC");
  EXPECT_EQ(pc.zem.Motor().offsets.injector, 24);
  EXPECT_EQ(pc.Ask("G").substr(12, 2), "18");
  pc.Ask("P2");
  pc.Ask(S1(0xB6DA, {5, 9}));
  pc.Ask("S9030000FC");
  EXPECT_EQ(pc.Frame()[13], 5);
  EXPECT_EQ(pc.Frame()[14], 9);
}

TEST(EngineMemory, AWriteElsewhereLeavesTheOffsets) {
  Exchange pc;
  pc.Ask("R6\x10");
  pc.Ask("R8\x05");
  pc.Ask("P2");
  pc.Ask(S1(0xB640, {1}));
  pc.Ask("S9030000FC");
  EXPECT_EQ(pc.zem.Motor().offsets.injector, 0x10);
  EXPECT_EQ(pc.zem.Motor().offsets.togHigh, 5);
}

TEST(EngineMemory, PowerCyclingLosesTheOffsetsAndKeepsTheMemory) {
  Exchange pc;
  pc.Ask("R6\x10");
  pc.Ask("R3\x10");
  pc.Ask("P2");
  pc.Ask(S1(0xB640, {77}));
  pc.Ask("S9030000FC");
  pc.zem.PowerCycle();
  EXPECT_EQ(pc.zem.Motor().offsets.injector, 4);
  EXPECT_EQ(pc.zem.Motor().offsets.advance, 0);
  EXPECT_EQ(pc.zem.Memory()[0x40], 77);
  EXPECT_EQ(pc.zem.Motor().Now(), Engine::State::Cranking);
}

// --- bytes ---------------------------------------------------------------------------------------

TEST(EngineBytes, SignAndMagnitude) {
  EXPECT_EQ(sim::SignAndMagnitude(0), 0);
  EXPECT_EQ(sim::SignAndMagnitude(42), 42);
  EXPECT_EQ(sim::SignAndMagnitude(170), -42);
  EXPECT_EQ(sim::SignAndMagnitude(128), 0);
}

TEST(EngineBytes, GamaReadsBackInPercent) {
  for (int value = 0; value < 256; ++value) {
    const auto sent = static_cast<std::uint8_t>(value);
    const double percent = sim::SignAndMagnitude(sent) / 2.55;
    const double read = static_cast<std::int8_t>(sim::GamaReadBack(sent)) / 2.7128;
    const double bound = std::clamp(percent, -128 / 2.7128, 127 / 2.7128);
    EXPECT_NEAR(read, bound, 0.5 / 2.7128 + 1e-9) << value;
  }
}

}  // namespace
