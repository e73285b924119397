// Fuel and exhaust feedback answer to the calibration and to what is tuned.
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

// The pulse of an image shortly after the start of the clock, loop open, so that nothing else
// moved.
double EarlyPulse(const Image& image, double throttle = 0) {
  Bench bench(image);
  bench.engine.offsets.openLoop = true;
  bench.engine.driver.Hold(throttle);
  bench.Run(0.3);
  return PulseOf(bench.engine.Frame());
}

TEST(EngineFuel, AirDensityTakesFromThePulseInWarmAir) {
  // 32 degrees are 7 above the reference: seven percent, of the whole density enrichment.
  const double without = EarlyPulse(With({{192, 0}}), 40) - 0.5;
  const double with = EarlyPulse(With({{192, 255}}), 40) - 0.5;
  EXPECT_NEAR(with / without, 0.93, 0.015);
}

TEST(EngineFuel, PulsesAreNeverShorterThanTheLeast) {
  EXPECT_DOUBLE_EQ(EarlyPulse(With({{323, 128}})), 4);
}

double CrankingPulse(const Image& image, double coolant) {
  Bench bench(image);
  bench.engine.SetCoolant(coolant);
  bench.engine.Restart(image);
  bench.Run(0.7);
  EXPECT_EQ(bench.engine.Now(), Engine::State::Cranking);
  return PulseOf(bench.engine.Frame());
}

TEST(EngineFuel, ALowBatteryLengthensThePulse) {
  // 10.7 V or so: 3.3 V below the reference, at 0.2 ms a volt.
  EXPECT_NEAR(CrankingPulse(With({{215, 100}}), 88) - CrankingPulse(With({{215, 0}}), 88), 0.66,
              0.2);
}

TEST(EngineFuel, AColdStartHasItsFixedPulse) {
  EXPECT_NEAR(CrankingPulse(With({{241, 64}}), 5) - CrankingPulse(With({{241, 0}}), 5), 4, 0.01);
  EXPECT_NEAR(CrankingPulse(With({{241, 64}}), 20) - CrankingPulse(With({{241, 0}}), 20), 0, 0.01);
}

TEST(EngineFuel, IsEnrichedForASecondAfterCoasting) {
  Bench bench(With({{212, 85}}));
  bench.engine.driver.Hold(30);
  bench.Run(8);
  bench.engine.driver.Hold(0);
  double richest = 0;
  int enriched = 0;
  for (int i = 0; i < 2000; ++i) {
    bench.Run(0.01);
    const double gama = GamaOf(bench.engine.Frame());
    richest = std::max(richest, gama);
    if (gama > 1.9) ++enriched;
  }
  EXPECT_NEAR(richest, 2, 0.02);
  EXPECT_NEAR(enriched, 100, 5);
}

TEST(EngineFuel, AFailedThrottleSensorCountsAsItsDefault) {
  Image image = With({{16, 204}});  // 4 V
  std::fill(image.begin() + 439, image.begin() + 447, std::uint8_t{255});
  Bench bench(image);
  bench.Run(0.05);
  const double before = PulseOf(bench.engine.Frame());
  bench.engine.FailSensor(sim::Sensor::Throttle, true);
  bench.Run(0.05);
  EXPECT_GT(PulseOf(bench.engine.Frame()), before + 2);
  EXPECT_EQ(bench.engine.Frame()[9], 205);  // 4 * 51.2
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

TEST(EngineEgo, OpensAboveTheHighMapSwitch) {
  Bench bench;
  bench.Run(20);
  bench.engine.driver.Hold(100);
  bench.Run(4);
  EXPECT_GT(bench.engine.Rpm(), 3200);
  for (int i = 0; i < 100; ++i) {
    bench.Run(0.02);
    ASSERT_EQ(bench.engine.Frame()[17], 0);
  }
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

}  // namespace
