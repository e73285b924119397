// The engine behaves like one: idle, warm-up, throttle, limits, outputs, starting and stopping.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "bench.h"
#include "exchange.h"
#include "simulator/physics.h"

namespace {

using sim::Engine;
using sim::Image;
using sim::LiveBytes;
using namespace std::string_literals;

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

TEST(EngineIdle, CoarseStepsLeadToTheTargetWithoutFineOnes) {
  Bench bench(With({{203, 0}}));
  bench.engine.SetCoolant(0);
  bench.Run(6);
  EXPECT_GT(bench.engine.Rpm(), 1050);
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

TEST(EngineBytes, FrameCarriesTheEngineInItsScales) {
  Bench bench;
  bench.engine.driver.Hold(70);
  for (int i = 0; i < 40; ++i) {
    bench.Run(0.25);
    const LiveBytes frame = bench.engine.Frame();
    EXPECT_NEAR(ErpmOf(frame), bench.engine.Rpm(), 2);
    EXPECT_NEAR(AdvanceOf(frame), bench.engine.AdvanceDegrees(), 0.5 / 4.25 + 1e-9);
    EXPECT_NEAR(frame[3] * 0.4094, bench.engine.MapKpa(), 0.25);
    EXPECT_EQ(frame[10], std::nearbyint(bench.engine.BatteryVolts() / 0.067432));
    EXPECT_NEAR(PulseOf(frame), bench.engine.PulseMs(), 0.5 / 125 + 1e-9);
    EXPECT_NEAR(CorrectionOf(frame), bench.engine.EgoCorrection(), 0.5 / 255 + 1e-9);
    EXPECT_EQ(frame[24], 244);
  }
}

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
