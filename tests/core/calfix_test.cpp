// What opening repairs in a calibration.
#include "core/calfix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "core/globalstate.h"
#include "filestest.h"

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
const float notANumber = std::numeric_limits<float>::quiet_NaN();

class CalFix : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetCalibrationState();
    const std::vector<float> sound = SoundSingles();
    std::copy(sound.begin(), sound.end(), CalValues.begin());
  }
};

std::vector<float> Curve() { return {&CalValues[415], &CalValues[435]}; }

std::vector<float> DefaultCurve() {
  return {0,     0.45F,  0.65F, 1.6F,   2.5F,   4.0F,  4.2F,  4.62F, 4.8F,  5.0F,
          22.4F, 15.89F, 14.9F, 14.72F, 14.64F, 14.3F, 13.8F, 12.6F, 11.2F, 10.0F};
}

std::vector<float> BlendSpeeds() { return {&CalValues[435], &CalValues[443]}; }

}  // namespace

TEST_F(CalFix, SoundCalibrationStaysAsItIs) {
  const auto before = CalValues;
  FixLoadedCalibration();
  FixOpenedCalibration();
  EXPECT_EQ(CalValues, before);
}

TEST_F(CalFix, AuthorityIsKeptForTheLogger) {
  FixLoadedCalibration();
  EXPECT_EQ(OpenedEgoAuthority, 0.25F);
}

TEST_F(CalFix, LoadSensorIsAlwaysMap) {
  CalValues[234] = -1;
  LoadMode = "MAF";
  FixLoadedCalibration();
  EXPECT_EQ(CalValues[234], 0);
  EXPECT_EQ(LoadMode, "MAP");
}

TEST_F(CalFix, MapRangeIsTheWholeNumberBelow) {
  const struct {
    float stored;
    int bar;
  } rows[] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {1.9F, 1}, {4.99F, 4}};
  for (const auto& row : rows) {
    CalValues[459] = row.stored;
    FixLoadedCalibration();
    EXPECT_EQ(MapBar, row.bar) << row.stored;
    EXPECT_EQ(MapFullScale, row.bar * 104) << row.stored;
  }
}

TEST_F(CalFix, MapRangeOutsideOfOneToFourKeepsTheLast) {
  MapBar = 3;
  for (float stored : {0.0F, 0.99F, 5.0F, -1.0F, -0.5F, 1e30F, infinity, -infinity, notANumber}) {
    CalValues[459] = stored;
    MapFullScale = 0;
    FixLoadedCalibration();
    EXPECT_EQ(MapBar, 3) << stored;
    EXPECT_EQ(MapFullScale, 312) << stored;
  }
}

TEST_F(CalFix, EgoCurveIsResetWholeForOneRatioOutOfRange) {
  for (std::size_t index = 425; index <= 434; ++index)
    for (float ratio : {9.79F, 29.31F, 0.0F, -15.0F, infinity, notANumber}) {
      SetUp();
      CalValues[index] = ratio;
      FixLoadedCalibration();
      EXPECT_EQ(Curve(), DefaultCurve()) << index << " " << ratio;
    }
}

TEST_F(CalFix, EgoCurveIsResetForALastVoltageAboveFive) {
  for (float volts : {5.01F, notANumber}) {
    SetUp();
    CalValues[424] = volts;
    FixLoadedCalibration();
    EXPECT_EQ(Curve(), DefaultCurve()) << volts;
  }
}

TEST_F(CalFix, EgoCurveAtTheLimitsStays) {
  CalValues[425] = 29.3F;
  CalValues[434] = 9.8F;
  CalValues[424] = 5;
  CalValues[415] = -3;  // the other voltages are not looked at
  CalValues[420] = 7;
  const std::vector<float> before = Curve();
  FixLoadedCalibration();
  EXPECT_EQ(Curve(), before);
}

TEST_F(CalFix, AirFuelCellOutOfRangeBecomesStoichiometric) {
  for (std::size_t index : {345, 376, 408})
    for (float ratio : {9.75F, 29.29F, 0.0F, -1.0F, infinity}) {
      SetUp();
      CalValues[index] = ratio;
      FixLoadedCalibration();
      EXPECT_EQ(CalValues[index], 14.64F) << index << " " << ratio;
      EXPECT_EQ(std::count(&CalValues[345], &CalValues[409], 13.5F), 63) << index;
    }
}

TEST_F(CalFix, AirFuelCellAtTheLimitsStays) {
  CalValues[345] = 9.76F;
  CalValues[408] = 29.28F;
  CalValues[344] = 3;
  CalValues[409] = 3;
  FixLoadedCalibration();
  EXPECT_EQ(CalValues[345], 9.76F);
  EXPECT_EQ(CalValues[408], 29.28F);
  EXPECT_EQ(CalValues[344], 3);
  EXPECT_EQ(CalValues[409], 3);
}

TEST_F(CalFix, IdleSpeedsAreHeldTo500To2000) {
  CalValues[204] = CalValues[208] = 7;
  CalValues[205] = 499.9F;
  CalValues[206] = 2000.5F;
  CalValues[207] = 2000;
  FixLoadedCalibration();
  EXPECT_EQ(CalValues[205], 500);
  EXPECT_EQ(CalValues[206], 2000);
  EXPECT_EQ(CalValues[207], 2000);
  EXPECT_EQ(CalValues[204], 7);
  EXPECT_EQ(CalValues[208], 7);
}

TEST_F(CalFix, InterrogatedRangeIsCleared) {
  CalValues[339] = 3;
  FixOpenedCalibration();
  EXPECT_EQ(CalValues[339], 0);
}

TEST_F(CalFix, MissingBlendSpeedsComeFromTheRevLimit) {
  CalValues[4] = 6500;  // steps of 812, not of 812.5
  CalValues[435] = 0;
  CalValues[443] = 33;
  FixOpenedCalibration();
  EXPECT_EQ(BlendSpeeds(), (std::vector<float>{400, 1628, 2440, 3252, 4064, 4876, 5688, 6500}));
  EXPECT_EQ(CalValues[443], 33);
}

TEST_F(CalFix, BlendSpeedsThatAreThereStay) {
  CalValues[435] = -1;
  const std::vector<float> before = BlendSpeeds();
  FixOpenedCalibration();
  EXPECT_EQ(BlendSpeeds(), before);
}

TEST_F(CalFix, StrangeRevLimitsFillTheBlendSpeedsWithoutFailing) {
  for (float limit : {0.0F, -100.0F, 3e38F, infinity, notANumber}) {
    CalValues[4] = limit;
    CalValues[435] = 0;
    FixOpenedCalibration();
    EXPECT_EQ(CalValues[435], 400) << limit;
    EXPECT_TRUE(CalValues[442] == limit || std::isnan(limit)) << limit;
  }
}

TEST_F(CalFix, WorkingValuesFollow) {
  MapBar = 2;
  CalValues[45] = 700;
  CalValues[125] = 0.5F;
  MaxManifoldKpa = 90;
  PublishLoadedCalibration();
  EXPECT_EQ(RpmAxis[4], 700);
  EXPECT_EQ(VeWork[2][4], 50);
  EXPECT_EQ(LimitHighKpa, 208);
  EXPECT_EQ(MaxManifoldKpa, 208);
}
