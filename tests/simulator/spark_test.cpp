// Spark and knock answer to the calibration and to what is tuned.
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

TEST(EngineKnock, ControlIsInhibitedAboveItsSpeed) {
  const Knocking inhibited = TooMuchAdvance(With({{26, 0}, {27, 0}}));
  const Knocking left = TooMuchAdvance(With({{0, 0xF8 & ~16}}));
  EXPECT_NEAR(inhibited.advance, left.advance, 0.3);
}

TEST(EngineSpark, CoolantAdvanceAdds) {
  const auto advance = [](std::uint8_t byte) {
    Image image = sim::DefaultImage();
    std::fill(image.begin() + 225, image.begin() + 237, byte);
    Bench bench(image);
    bench.engine.driver.Hold(15);
    bench.Run(0.5);
    return AdvanceOf(bench.engine.Frame());
  };
  EXPECT_NEAR(advance(43) - advance(0), 10, 1);
}

}  // namespace
