// Derived times of the injectors and the rounding of their offset.
#include "editors/injectortimes.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "platform/failure.h"

namespace {

class InjectorTimesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetCalibrationState();
    CalValues[2] = 1;
    CalValues[4] = 6000;
    CalValues[217] = 8;
    CalValues[232] = 10;
    CalValues[233] = 1;
    PublishCalGlobals();
  }
  InjectorTimes Times() {
    PublishCalGlobals();
    return ComputeInjectorTimes();
  }
};

}  // namespace

TEST_F(InjectorTimesTest, AlternatingSchemeHasTheWholeTimeBetweenTachEvents) {
  const InjectorTimes times = Times();
  EXPECT_DOUBLE_EQ(times.revTime, 10);
  EXPECT_DOUBLE_EQ(times.revLimitMaxPw, 10 - 1.2);
  EXPECT_DOUBLE_EQ(times.wotPw, 11);
  EXPECT_DOUBLE_EQ(times.maxControllableTog, 10 - 1.2 - 1);
}

TEST_F(InjectorTimesTest, SimultaneousSchemeDividesByHalfTheCylinders) {
  CalValues[0] = 1;
  EXPECT_DOUBLE_EQ(Times().revTime, 2.5);
  EXPECT_DOUBLE_EQ(Times().revLimitMaxPw, 1.3);
}

TEST_F(InjectorTimesTest, EverySecondEventDoublesTheTimeInBothSchemes) {
  CalValues[233] = 2;
  EXPECT_DOUBLE_EQ(Times().revTime, 20);
  CalValues[0] = 1;
  EXPECT_DOUBLE_EQ(Times().revTime, 5);
}

TEST_F(InjectorTimesTest, FiringIntervalIsRounded) {
  CalValues[233] = 2.4F;
  EXPECT_DOUBLE_EQ(Times().revTime, 20);
}

TEST_F(InjectorTimesTest, LowerManifoldPressureShortensThePulseAndRaisesTheControllableTog) {
  MaxManifoldKpa = 57;
  const InjectorTimes times = Times();
  EXPECT_DOUBLE_EQ(times.wotPw, 1 + 10 * (47.0 / 94.0));
  EXPECT_DOUBLE_EQ(times.maxControllableTog, 10 / (57.0 / 104.0) - 1.2 - 1);
}

TEST_F(InjectorTimesTest, ThreeBarSensorSpansThreeTimesThePressure) {
  MapBar = 3;
  MaxManifoldKpa = 171;
  const InjectorTimes times = Times();
  EXPECT_DOUBLE_EQ(times.wotPw, 1 + 10 * ((171.0 - 30) / (312.0 - 30)));
  EXPECT_DOUBLE_EQ(times.maxControllableTog, 10 / (171.0 / 312) - 1.2 - 1);
}

TEST_F(InjectorTimesTest, RevLimitOfZeroLeavesThePulseWithoutLimit) {
  CalValues[4] = 0;
  EXPECT_TRUE(std::isinf(Times().revLimitMaxPw));
  EXPECT_TRUE(std::isinf(Times().maxControllableTog));
}

TEST_F(InjectorTimesTest, NoCylindersInTheSimultaneousSchemeLeaveThePulseWithoutLimit) {
  CalValues[0] = 1;
  CalValues[217] = 0;
  EXPECT_TRUE(std::isinf(Times().revTime));
}

TEST_F(InjectorTimesTest, NoManifoldPressureLeavesTheTogWithoutLimit) {
  MaxManifoldKpa = 0;
  EXPECT_TRUE(std::isinf(Times().maxControllableTog));
}

TEST_F(InjectorTimesTest, FiringSchemeIsTheLowestOptionBit) {
  for (float options : {0.0F, 2.0F, 254.0F, 0.4F}) {
    CalValues[0] = options;
    EXPECT_FALSE(SimultaneousFiring()) << options;
  }
  for (float options : {1.0F, 3.0F, 255.0F, 0.6F, -1.0F}) {
    CalValues[0] = options;
    EXPECT_TRUE(SimultaneousFiring()) << options;
  }
}

TEST_F(InjectorTimesTest, OptionsThatAreNoNumberCountAsAlternating) {
  CalValues[0] = std::nanf("");
  EXPECT_FALSE(SimultaneousFiring());
  CalValues[0] = 3e38F;
  EXPECT_FALSE(SimultaneousFiring());
}

TEST(RoundInjectorOffset, GoesToEighthsWithTiesToEven) {
  struct Case {
    double entry;
    double ms;
    int byte;
  };
  for (const Case& each : {Case{1.06, 1.0, 8}, Case{1.0625, 1.0, 8}, Case{1.1875, 1.25, 10},
                           Case{-0.1, -0.125, 129}, Case{15.875, 15.875, 127},
                           Case{-15.875, -15.875, 255}, Case{0, 0, 0}, Case{-1.5, -1.5, 140}}) {
    EXPECT_EQ(RoundInjectorOffset(each.entry).ms, each.ms) << each.entry;
    EXPECT_EQ(RoundInjectorOffset(each.entry).imageByte, each.byte) << each.entry;
  }
}

TEST(RoundInjectorOffset, KeepsTheSignOfWhatRoundsToZeroFromBelow) {
  EXPECT_EQ(RoundInjectorOffset(-0.01).imageByte, 128);
  EXPECT_EQ(RoundInjectorOffset(-0.01).ms, 0);
  EXPECT_EQ(RoundInjectorOffset(0.01).imageByte, 0);
}

TEST(RoundInjectorOffset, FarOutsideItsRangeFailsWithOverflow) {
  try {
    RoundInjectorOffset(5000);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number, FailureOverflow);
  }
}
