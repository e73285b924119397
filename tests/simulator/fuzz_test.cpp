// Whatever comes over the line, the ZEM answers again after a moment of silence.
#include <gtest/gtest.h>

#include <random>

#include "exchange.h"

namespace {

// The letters that mean something come often; the rest is anything.
std::uint8_t RandomByte(std::mt19937& random) {
  constexpr std::string_view Likely = "EFGBKCZRPS13456789OU0123456789ABCDEF";
  if (random() % 4 != 0) return static_cast<std::uint8_t>(Likely[random() % Likely.size()]);
  return static_cast<std::uint8_t>(random() % 256);
}

void RunNoise(std::uint32_t seed, bool withFaults) {
  std::mt19937 random(seed);
  Exchange pc{.zem = sim::Zem({.paced = random() % 2 == 0})};
  const auto rows = sim::FaultRows();
  for (int burst = 0; burst < 40; ++burst) {
    if (withFaults && random() % 3 == 0) pc.zem.Fail(rows[random() % rows.size()].name);
    const int length = static_cast<int>(random() % 120);
    for (int i = 0; i < length; ++i) pc.zem.Receive(RandomByte(random), pc.nowUs);
    if (random() % 2 == 0) pc.Wait(static_cast<double>(random() % 50) / 1000);
  }
  pc.zem.Fail("clear");
  pc.zem.Fail("replug");
  pc.Ask("");  // what was begun ends
  pc.Wait(0.25);
  ASSERT_EQ(pc.Ask("E"), "AX") << "seed " << seed;
  ASSERT_EQ(pc.Ask("F").size(), 27u) << "seed " << seed;
  ASSERT_EQ(pc.Ask("P1"), "AX") << "seed " << seed;
  for (const std::string& record : RecordsOf(sim::DefaultImage())) {
    ASSERT_EQ(pc.Ask(record), record[1] == '9' ? "PC" : "PN") << "seed " << seed;
  }
  ASSERT_EQ(pc.zem.Memory(), sim::DefaultImage());
}

TEST(Noise, IsSurvived) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) RunNoise(seed, false);
}

TEST(Noise, WithEveryFaultInForceIsSurvived) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) RunNoise(seed + 1000, true);
}

TEST(Noise, MemoryOfTheHistoryIsBounded) {
  Exchange pc{.zem = sim::Zem({.paced = false})};
  for (int i = 0; i < 1000; ++i) pc.Ask("E");
  EXPECT_EQ(pc.zem.History().size(), 256u);
}

}  // namespace
