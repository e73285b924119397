// The bytes of the run-time offsets over their whole ranges.
#include <gtest/gtest.h>

#include <cmath>

#include "link/onfly.h"

namespace {

TEST(AdvanceByte, KnownValues) {
  EXPECT_EQ(AdvanceByte(10), 42);
  EXPECT_EQ(AdvanceByte(-10), 170);
  EXPECT_EQ(AdvanceByte(0), 0);
  EXPECT_EQ(AdvanceByte(1), 4);
  EXPECT_EQ(AdvanceByte(-1), 132);
  EXPECT_EQ(AdvanceByte(-2), 136) << "8.5 goes to the even neighbour";
  EXPECT_EQ(AdvanceByte(2), 8);
}

TEST(AdvanceByte, UpIsCutAndDownIsRoundedOverTheWholeRange) {
  // In hundredths, so that the expectation is whole-number arithmetic: x * 4.25 = 17 * x / 4.
  for (int hundredths = -1000; hundredths <= 1000; ++hundredths) {
    const int counts = 17 * std::abs(hundredths);  // 400 to the count
    int expected = counts / 400;
    if (hundredths < 0) {
      const int rest = counts % 400;
      if (rest == 200) continue;  // a tie, told by KnownValues
      expected = 128 | (expected + (rest > 200 ? 1 : 0));
    }
    EXPECT_EQ(AdvanceByte(hundredths / 100.0), expected) << hundredths;
  }
  EXPECT_EQ(AdvanceByte(4), 17);
  EXPECT_EQ(AdvanceByte(8), 34);
}

TEST(GamaByte, EveryWholePercent) {
  EXPECT_EQ(GamaByte(0.4), 102);
  EXPECT_EQ(GamaByte(-0.4), 230);
  EXPECT_EQ(GamaByte(0.01), 2);
  EXPECT_EQ(GamaByte(-0.01), 131) << "2.55 is rounded";
  EXPECT_EQ(GamaByte(0), 0);
  for (int percent = -40; percent <= 40; ++percent) {
    const int counts = 255 * std::abs(percent);  // 100 to the count
    const int expected = percent >= 0 ? counts / 100 : 128 | ((counts + 50) / 100);
    if (percent < 0 && counts % 100 == 50) continue;  // a tie, told below
    EXPECT_EQ(GamaByte(percent / 100.0), expected) << percent;
  }
  EXPECT_EQ(GamaByte(0.2), 51);
  EXPECT_EQ(GamaByte(-0.2), 128 | 51);
  EXPECT_EQ(GamaByte(-0.1), 128 | 26) << "25.5 goes to the even neighbour";
  EXPECT_EQ(GamaByte(-0.3), 128 | 76) << "and so does 76.5";
}

TEST(TpsBlendByte, EveryHundredthOfAVolt) {
  for (int hundredths = 0; hundredths <= 150; ++hundredths) {
    const int counts = 51 * hundredths;
    const int rest = counts % 100;
    const int whole = counts / 100;
    const int expected = rest == 50 ? whole + whole % 2 : whole + (rest > 50 ? 1 : 0);
    EXPECT_EQ(TpsBlendByte(hundredths / 100.0), expected) << hundredths;
  }
  EXPECT_EQ(TpsBlendByte(1.5), 76);
}

TEST(InjectorByte, EveryStepInBothDirections) {
  for (int step = 0; step <= 127; ++step) {
    EXPECT_EQ(InjectorByte(step / 8.0), step);
    EXPECT_EQ(InjectorStep(step / 8.0), step / 8.0);
    if (step > 0) {
      EXPECT_EQ(InjectorByte(-step / 8.0), 128 | step);
    }
    EXPECT_EQ(InjectorStep(-step / 8.0), -step / 8.0);
  }
  EXPECT_EQ(InjectorByte(15.875), 127);
  EXPECT_EQ(InjectorByte(-15.875), 255);
}

TEST(InjectorStep, KeepsEighths) {
  EXPECT_EQ(InjectorStep(1.07), 1.125);
  EXPECT_EQ(InjectorByte(InjectorStep(1.07)), 9);
  EXPECT_EQ(InjectorStep(-1.07), -1.125);
  EXPECT_EQ(InjectorStep(0.0625), 0) << "half a step goes to the even one";
  EXPECT_EQ(InjectorStep(0.1875), 0.25);
}

TEST(GpoByte, EveryWholePercent) {
  EXPECT_EQ(GpoByte(-30), 180);
  EXPECT_EQ(GpoByte(30), 76);
  EXPECT_EQ(GpoByte(0), 0);
  EXPECT_EQ(GpoByte(-1), 253);
  EXPECT_EQ(GpoByte(10), 26) << "25.5 goes to the even neighbour";
  EXPECT_EQ(GpoByte(-10), 230);
  EXPECT_EQ(GpoByte(-0.1), 0) << "rounded to nothing, it is not negative any more";
  for (int percent = -30; percent <= 30; ++percent) {
    const int counts = 255 * std::abs(percent);
    if (counts % 100 == 50) continue;  // a tie, told above
    const int magnitude = (counts + 50) / 100;
    EXPECT_EQ(GpoByte(percent), percent < 0 && magnitude > 0 ? 256 - magnitude : magnitude);
  }
}

TEST(AfrByte, NegatesClipsAtTheTopAndWrapsBelow) {
  EXPECT_EQ(AfrByte(0), 0);
  EXPECT_EQ(AfrByte(-5), 5);
  EXPECT_EQ(AfrByte(-127), 127);
  EXPECT_EQ(AfrByte(-128), 127);
  EXPECT_EQ(AfrByte(-200), 127);
  EXPECT_EQ(AfrByte(5), 251);
  EXPECT_EQ(AfrByte(128), 128);
  for (int offset = 1; offset <= 255; ++offset) EXPECT_EQ(AfrByte(offset), 256 - offset);
  for (int offset = -255; offset <= 0; ++offset) EXPECT_EQ(AfrByte(offset), std::min(-offset, 127));
}

TEST(TogToBytes, TenMillisecondsAre1250Counts) {
  const TogBytes bytes = TogToBytes(10);
  EXPECT_EQ(bytes.high, 4);
  EXPECT_EQ(bytes.low, 226);
}

TEST(TogToBytes, CutsToCountsOfEightMicroseconds) {
  for (int hundredths = 300; hundredths <= 3000; ++hundredths) {
    const double ms = hundredths / 100.0;
    const TogBytes bytes = TogToBytes(ms);
    const int counts = bytes.high * 256 + bytes.low;
    EXPECT_EQ(counts, static_cast<int>(std::floor(125 * ms))) << ms;
    EXPECT_GE(bytes.low, 0);
    EXPECT_LE(bytes.low, 255);
  }
}

}  // namespace
