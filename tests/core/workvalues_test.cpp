// The working values that graphs, tables and monitors read.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/encoder.h"
#include "knowncal.h"

namespace {

class WorkValues : public testing::Test {
 protected:
  void SetUp() override { LoadKnownCalibration(); }
  void TearDown() override { ResetCalibrationState(); }
};

}  // namespace

TEST_F(WorkValues, PublishCopiesTheParameters) {
  CalValues[217] = 8;
  CalValues[325] = 7.5F;
  CalValues[233] = 2.5F;
  PublishCalGlobals();
  EXPECT_EQ(WorkRevLimit, 6000);
  EXPECT_EQ(WorkCylinders, 8);
  EXPECT_EQ(WorkTog, 8.3F);
  EXPECT_EQ(WorkIot, -1.5F);
  EXPECT_EQ(InjectorRecoveryMs, 1.2);
  EXPECT_EQ(InitialAdvance, 10);
  EXPECT_EQ(MinTurnOnMs, 1.3F);
  EXPECT_EQ(FiringInterval, 2);
  EXPECT_EQ(WorkBlendOffset, 1);  // 0.85 V
  EXPECT_EQ(WorkGpoFrequency, 8);
}

TEST_F(WorkValues, PublishPutsTheAxesAtTheirPositions) {
  MapBar = 2;
  PublishCalGlobals();
  const std::array<float, 13> rpm = {0, 0, 0, 0, 750, 1500, 2250, 3000, 3750, 4500, 5250, 6000, 0};
  const std::array<float, 11> load = {0, 0, 40, 64, 88, 112, 136, 160, 184, 208, 0};
  EXPECT_EQ(RpmAxis, rpm);
  EXPECT_EQ(LoadAxis, load);
}

TEST_F(WorkValues, PublishLeavesTheOtherPositionsOfTheAxesAlone) {
  RpmAxis.fill(9);
  LoadAxis.fill(9);
  PublishCalGlobals();
  EXPECT_EQ(RpmAxis[3], 9);
  EXPECT_EQ(RpmAxis[12], 9);
  EXPECT_EQ(LoadAxis[1], 9);
  EXPECT_EQ(LoadAxis[10], 9);
}

TEST_F(WorkValues, MafLoadsAreNotMultipliedByTheBar) {
  MapBar = 3;
  LoadMode = "MAF";
  PublishCalGlobals();
  EXPECT_EQ(LoadAxis[2], 20);
  EXPECT_EQ(LoadAxis[9], 104);
}

TEST_F(WorkValues, SpanOfTheLoadAxisFollowsTheBar) {
  for (int bar : {1, 2, 3, 4}) {
    MapBar = bar;
    PublishCalGlobals();
    EXPECT_EQ(MapLow, 10 * bar);
    EXPECT_EQ(MapHigh, 104 * bar);
    EXPECT_EQ(MapFullScale, 104 * bar);
  }
}

TEST_F(WorkValues, PublishLeavesTheMaximumPressureAlone) {
  MaxManifoldKpa = 95;
  PublishCalGlobals();
  EXPECT_EQ(MaxManifoldKpa, 95);
}

TEST_F(WorkValues, InjectorLimitsOfOneBar) {
  ComputeInjectorLimits();
  EXPECT_EQ(LimitLowKpa, 10);
  EXPECT_EQ(LimitHighKpa, 104);
  EXPECT_EQ(IdleLoadKpa, 70);
  const double gama = 8.3F;
  EXPECT_EQ(IdlePulseMs, static_cast<float>(-1.5 + gama * 60 / 94));
  EXPECT_DOUBLE_EQ(FullLoadPulseMs, -1.5 + gama);
  EXPECT_DOUBLE_EQ(RevLimitPulseMs, 8.8);
}

TEST_F(WorkValues, InjectorLimitsOfMoreBars) {
  for (int bar : {2, 3, 4}) {
    MapBar = bar;
    MapFullScale = 104 * bar;
    ComputeInjectorLimits();
    EXPECT_EQ(LimitLowKpa, 10 * bar);
    EXPECT_EQ(LimitHighKpa, 104 * bar);
    const double gama = 8.3F;
    EXPECT_EQ(IdlePulseMs, static_cast<float>(-1.5 + gama * (70 - 10 * bar) / (94 * bar)));
  }
}

TEST_F(WorkValues, AnyOtherBarReckonsAsFour) {
  for (int bar : {0, 5}) {
    MapBar = bar;
    ComputeInjectorLimits();
    EXPECT_EQ(LimitLowKpa, 40);
    EXPECT_EQ(LimitHighKpa, 416);
  }
}

TEST_F(WorkValues, FullLoadUsesTheScaleThatIsInForce) {
  MapFullScale = 57;
  ComputeInjectorLimits();
  EXPECT_DOUBLE_EQ(FullLoadPulseMs, -1.5 + static_cast<double>(8.3F) * 47 / 94);
}

TEST_F(WorkValues, NoRevLimitGivesNoLimitAndNoFailure) {
  CalValues[4] = 0;
  EXPECT_NO_THROW(ComputeInjectorLimits());
  EXPECT_EQ(RevLimitPulseMs, std::numeric_limits<double>::infinity());
}

TEST_F(WorkValues, AnyContentIsPublishedWithoutFailure) {
  for (float value : {std::numeric_limits<float>::quiet_NaN(), 3e38F, -3e38F,
                      std::numeric_limits<float>::infinity()}) {
    CalValues.fill(value);
    EXPECT_NO_THROW({
      PublishCalGlobals();
      ComputeInjectorLimits();
      CopyTablesToWork();
      LoadEgoCurve();
    });
  }
}

TEST_F(WorkValues, EgoCurveStandsAtPositionsOneToTen) {
  LoadEgoCurve();
  const std::array<float, 11> volts = {0,    0,    0.45F, 0.65F, 1.6F, 2.5F,
                                       4.0F, 4.2F, 4.62F, 4.8F,  5.0F};
  const std::array<float, 11> ratios = {0,     22.4F, 15.89F, 14.9F, 14.72F, 14.64F,
                                        14.3F, 13.8F, 12.6F,  11.2F, 10.0F};
  EXPECT_EQ(EgoVolts, volts);
  EXPECT_EQ(EgoRatios, ratios);
}

TEST_F(WorkValues, TablesLieAtRowsTwoToNineAndColumnsFourToEleven) {
  CopyTablesToWork();
  EXPECT_EQ(GpoWork[2][4], 0);
  EXPECT_EQ(GpoWork[2][11], 7);
  EXPECT_EQ(GpoWork[3][4], 8);
  EXPECT_EQ(GpoWork[9][11], 63);
  EXPECT_EQ(AdvanceWork[2][4], 10);
  EXPECT_EQ(AdvanceWork[9][11], 41.5F);
  EXPECT_EQ(AfrWork[2][4], 10);
  EXPECT_EQ(AfrWork[9][11], 25.75F);
  for (const WorkGrid* grid : {&GpoWork, &AdvanceWork, &AfrWork}) {
    EXPECT_EQ((*grid)[2][12], 0);
    EXPECT_EQ((*grid)[10][4], 0);
    EXPECT_EQ((*grid)[1][4], 0);
    EXPECT_EQ((*grid)[2][3], 0);
  }
}

TEST_F(WorkValues, VeTableIsInPercentAndHasMargins) {
  CopyTablesToWork();
  for (std::size_t k = 0; k < 64; ++k)
    EXPECT_FLOAT_EQ(VeWork[2 + k / 8][4 + k % 8], static_cast<float>(k) - 32) << k;
  for (std::size_t row = 2; row <= 9; ++row) EXPECT_EQ(VeWork[row][12], VeWork[row][11]);
  for (std::size_t column = 4; column <= 11; ++column)
    EXPECT_EQ(VeWork[10][column], VeWork[9][column]);
  EXPECT_EQ(VeWork[10][12], 0);
  EXPECT_EQ(VeWork[1][4], 0);
  EXPECT_EQ(VeWork[2][3], 0);
}

TEST_F(WorkValues, CoolantListsAreFilled) {
  CopyTablesToWork();
  const std::array<float, 13> advance = {0, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0};
  const std::array<float, 17> axis = {0,  -30, -20, -10, 0,  10,  20,  30, 40,
                                      50, 60,  70,  80,  90, 100, 110, 120};
  EXPECT_EQ(CoolantAdvance, advance);
  EXPECT_EQ(TempAxis, axis);
}
