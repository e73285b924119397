// Scales, needle steps and bands of the analog monitor.
#include "monitors/dials.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(Dials, TachometerScaleFollowsTheRevLimit) {
  struct Row {
    double limit, dial, perStep, divisor;
  };
  for (const Row& row :
       {Row{0, 6000, 33.3, 33.33}, Row{5500, 6000, 33.3, 33.33}, Row{5501, 8000, 44.4, 46},
        Row{7500, 8000, 44.4, 46}, Row{7501, 12000, 66.66666667, 69.6},
        Row{15000, 12000, 66.66666667, 69.6}}) {
    const TachScale& scale = TachScaleOf(row.limit);
    EXPECT_EQ(scale.dialRpm, row.dial) << row.limit;
    EXPECT_EQ(scale.rpmPerStep, row.perStep) << row.limit;
    EXPECT_EQ(scale.bandDivisor, row.divisor) << row.limit;
  }
}

TEST(Dials, TachometerStepIsRoundedDownAndHeldAtFullScale) {
  const TachScale& small = TachScaleOf(5500);
  EXPECT_EQ(TachStep(small, 0), 0);
  EXPECT_EQ(TachStep(small, 33.2), 0);
  EXPECT_EQ(TachStep(small, 33.4), 1);
  EXPECT_EQ(TachStep(small, 3000), 90);
  EXPECT_EQ(TachStep(small, 6000), 180);
  EXPECT_EQ(TachStep(small, 9999), 180);
  EXPECT_EQ(TachStep(TachScaleOf(7500), 4000), 90);
  EXPECT_EQ(TachStep(TachScaleOf(7500), 20000), 180);
  EXPECT_EQ(TachStep(TachScaleOf(9000), 6001), 90);
  EXPECT_EQ(TachStep(TachScaleOf(9000), 12000), 179);  // 179.99999999
}

TEST(Dials, BandsCountFromTheLeftEnd) {
  struct Row {
    double limit, yellow, red;
  };
  for (const Row& row : {Row{5500, 38.98650, 8.98350}, Row{5501, 76.15217, 54.41304},
                         Row{6500, 54.43478, 32.69565}, Row{7501, 80.59483, 66.22701}}) {
    const TachBands bands = TachBandsOf(row.limit);
    EXPECT_NEAR(bands.yellowFrom, row.yellow, 1e-5);
    EXPECT_NEAR(bands.redFrom, row.red, 1e-5);
    EXPECT_EQ(bands.end, -4);
  }
}

TEST(Dials, HundredThirtyThreeDegreesAreAHairBelowFullScale) {
  EXPECT_EQ(TemperatureStep(133, false), 179);
  EXPECT_EQ(TemperatureStep(266, true), 179);
  EXPECT_EQ(TemperatureStep(133.01, false), 180);
  EXPECT_EQ(TemperatureStep(0, false), 0);
  EXPECT_EQ(TemperatureStep(88, false), 119);
  EXPECT_EQ(TemperatureStep(190, true), 128);
}

TEST(Dials, BelowZeroStepsGoDownAndAreHeldForDrawing) {
  EXPECT_EQ(TemperatureStep(-10, false), -14);
  EXPECT_EQ(HeldStep(-14), 0);
  EXPECT_EQ(HeldStep(200), DialSteps);
  EXPECT_EQ(HeldStep(77), 77);
}

TEST(Dials, FiveVoltsAreTheWholeDial) {
  EXPECT_EQ(TpsStep(0), 0);
  EXPECT_EQ(TpsStep(0.0277), 0);
  EXPECT_EQ(TpsStep(2.5), 90);
  EXPECT_EQ(TpsStep(5), 180);
}

TEST(Dials, WhatIsNoNumberPointsToZero) {
  EXPECT_EQ(TpsStep(std::nan("")), 0);
  EXPECT_EQ(HeldStep(TpsStep(std::numeric_limits<double>::infinity())), DialSteps);
}

TEST(Dials, DutyBarIsCutTowardsZeroAndHeld) {
  EXPECT_EQ(DutyBarValue(0), 0);
  EXPECT_EQ(DutyBarValue(0.5), 500);
  EXPECT_EQ(DutyBarValue(0.12399), 123);
  EXPECT_EQ(DutyBarValue(0.99999), 999);
  EXPECT_EQ(DutyBarValue(1), 1000);
  EXPECT_EQ(DutyBarValue(1.7), 1000);
  EXPECT_EQ(DutyBarValue(-0.3), 0);
  EXPECT_EQ(DutyBarValue(std::nan("")), 0);
}

TEST(Dials, MapBarEndsByUnitAndSensor) {
  EXPECT_EQ(MapBarMaximum("MAP", false, 1), 110);
  EXPECT_EQ(MapBarMaximum("MAP", false, 3), 330);
  EXPECT_EQ(MapBarMaximum("MAP", true, 2), 64);
  EXPECT_EQ(MapBarMaximum("MAF", false, 1), 105);
  EXPECT_EQ(MapBarMaximum("MAF", true, 4), 420);
}

TEST(Dials, OnlyAnAirMeterBeepsAndOnlyAbove99Percent) {
  EXPECT_FALSE(LoadBeeps("MAF", 252));
  EXPECT_TRUE(LoadBeeps("MAF", 253));
  EXPECT_TRUE(LoadBeeps("MAF", 255));
  EXPECT_FALSE(LoadBeeps("MAP", 255));
}
