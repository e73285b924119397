// The working views of the four tables by their numbers.
#include "editors/tableviews.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/encoder.h"

namespace {

constexpr std::array<float, 8> speeds = {500, 1000, 1500, 2000, 3000, 4000, 5000, 6000};
constexpr std::array<float, 8> loads = {20, 30, 40, 50, 60, 70, 85, 100};

// A 1 bar sensor, TOG 10 ms, IOT 1 ms, so that the full span of 94 kPa is worth 10 ms.
class TableViews : public testing::Test {
 protected:
  void SetUp() override {
    ResetCalibrationState();
    ResetTableViews();
    std::copy(speeds.begin(), speeds.end(), &CalValues[45]);
    std::copy(loads.begin(), loads.end(), &CalValues[53]);
    CalValues[2] = 1;
    CalValues[3] = 12;
    CalValues[4] = 6500;
    CalValues[232] = 10;
    Publish();
  }
  void TearDown() override {
    ResetCalibrationState();
    ResetTableViews();
  }

  static void Publish() {
    PublishCalGlobals();
    CopyTablesToWork();
  }
  static void Build(int table, int view = 0) {
    SelectedTable = table;
    VeView = view;
    BuildTableViews();
  }
  static void FillCells(int base, float first) {
    for (int cell = 1; cell <= TableCells; ++cell)
      CalValues[static_cast<std::size_t>(base + cell)] = first + static_cast<float>(cell);
    CopyTablesToWork();
  }
};

}  // namespace

// ---- axes ---------------------------------------------------------------------------------------

TEST_F(TableViews, SpeedAxisHasZerosInFrontAndTheRevLimitBehind) {
  RpmAxis.fill(9);
  Build(TableVe);
  const std::array<float, 13> expected = {9,    0,    0,    0,    500,  1000, 1500,
                                          2000, 3000, 4000, 5000, 6000, 6500};
  EXPECT_EQ(RpmAxis, expected);
}

TEST_F(TableViews, LoadAxisHasTheSensorsEndsAroundTheBreakpoints) {
  LoadAxis.fill(9);
  Build(TableVe);
  const std::array<float, 11> expected = {9, 10, 20, 30, 40, 50, 60, 70, 85, 100, 104};
  EXPECT_EQ(LoadAxis, expected);
}

TEST_F(TableViews, LoadBreakpointsAreMultipliedByTheBar) {
  MapBar = 3;
  PublishCalGlobals();
  Build(TableVe);
  const std::array<float, 11> expected = {0, 30, 60, 90, 120, 150, 180, 210, 255, 300, 312};
  EXPECT_EQ(LoadAxis, expected);
}

TEST_F(TableViews, LoadBreakpointsStandAsTheyAreInMafMode) {
  MapBar = 2;
  LoadMode = "MAF";
  PublishCalGlobals();
  Build(TableVe);
  EXPECT_EQ(LoadAxis[1], 20);
  EXPECT_EQ(LoadAxis[2], 20);
  EXPECT_EQ(LoadAxis[9], 100);
  EXPECT_EQ(LoadAxis[10], 208);
}

TEST_F(TableViews, AnAxisEditShowsWithoutPublishing) {
  CalValues[52] = 6200;
  CalValues[53] = 15;
  Build(TableVe);
  EXPECT_EQ(RpmAxis[11], 6200);
  EXPECT_EQ(LoadAxis[2], 15);
}

// ---- pulse and duty -----------------------------------------------------------------------------

TEST_F(TableViews, PulseIsTheOffsetAtTheLowEndOfTheSensor) {
  EXPECT_EQ(CorrectedPulseMs(0, 10), 1);
  EXPECT_EQ(CorrectedPulseMs(50, 10), 1);
}

TEST_F(TableViews, PulseIsOffsetAndTogAtFullLoad) {
  EXPECT_EQ(CorrectedPulseMs(0, 104), 11);
  EXPECT_EQ(CorrectedPulseMs(25, 104), 13.5);
  EXPECT_EQ(CorrectedPulseMs(-50, 104), 6);
  EXPECT_EQ(CorrectedPulseMs(0, 57), 6);
}

TEST_F(TableViews, DutyIsTheShareOfTheTimeBetweenEvents) {
  EXPECT_EQ(DutyPercent(5, 6000), 50);
  EXPECT_EQ(DutyPercent(20, 3000), 100);
}

TEST_F(TableViews, LoadDutyTakesTheRecoveryTimeOffTheTimeThereIs) {
  EXPECT_DOUBLE_EQ(LoadDutyPercent(4.4, 6000), 50);
}

TEST_F(TableViews, NoSpeedIsNoDuty) {
  EXPECT_EQ(DutyPercent(5, 0), 0);
  EXPECT_EQ(LoadDutyPercent(5, 0), 0);
}

TEST_F(TableViews, ExactlySeventyFiveIsYellow) {
  EXPECT_EQ(ColourOfLoadDuty(std::nextafter(75.0, 0)), White);
  EXPECT_EQ(ColourOfLoadDuty(75), Yellow);
}

TEST_F(TableViews, ExactlyAHundredIsRed) {
  EXPECT_EQ(ColourOfLoadDuty(std::nextafter(100.0, 0)), Yellow);
  EXPECT_EQ(ColourOfLoadDuty(100), Red);
  EXPECT_EQ(ColourOfLoadDuty(1000), Red);
}

TEST_F(TableViews, NoLoadIsWhite) {
  EXPECT_EQ(ColourOfLoadDuty(0), White);
  EXPECT_EQ(ColourOfLoadDuty(-20), White);
}

// ---- VE views -----------------------------------------------------------------------------------

TEST_F(TableViews, CorrectionViewShowsPercent) {
  CalValues[125] = -0.25F;
  CalValues[132] = 0.12F;
  CalValues[188] = 0.5F;
  CopyTablesToWork();
  Build(TableVe, 0);
  EXPECT_EQ(TableWork[2][4], -25);
  EXPECT_EQ(TableWork[2][11], 12);
  EXPECT_EQ(TableWork[9][11], 50);
}

TEST_F(TableViews, CellsRunAlongTheRows) {
  FillCells(124, 0);
  Build(TableVe, 0);
  for (int cell = 1; cell <= TableCells; ++cell) {
    const GridPlace place = PlaceOfCell(cell);
    EXPECT_EQ(place.row, 2 + (cell - 1) / 8);
    EXPECT_EQ(place.column, 4 + (cell - 1) % 8);
    EXPECT_EQ(TableWork[place.row][place.column], static_cast<float>(cell * 100)) << cell;
  }
}

TEST_F(TableViews, PulseViewShowsMilliseconds) {
  CalValues[125] = 0.25F;
  CopyTablesToWork();
  Build(TableVe, 1);
  EXPECT_FLOAT_EQ(TableWork[2][4], static_cast<float>(1 + 1.25 * 10 * 10 / 94.0));  // 20 kPa
  EXPECT_FLOAT_EQ(TableWork[9][11], static_cast<float>(1 + 10 * 90 / 94.0));        // 100 kPa
}

TEST_F(TableViews, DutyViewShowsPercentWithoutTheRecoveryTime) {
  Build(TableVe, 2);
  EXPECT_FLOAT_EQ(TableWork[9][11], static_cast<float>((1 + 10 * 90 / 94.0) * 10));  // 6000 RPM
  EXPECT_FLOAT_EQ(TableWork[9][4], static_cast<float>((1 + 10 * 90 / 94.0) / 1.2));  // 500 RPM
}

TEST_F(TableViews, PulsesUseTheRealLoadOfALargerSensor) {
  MapBar = 2;
  PublishCalGlobals();
  Build(TableVe, 1);
  // 200 kPa of a sensor from 20 to 208 kPa is the same share as 100 kPa of one from 10 to 104.
  EXPECT_FLOAT_EQ(TableWork[9][4], static_cast<float>(1 + 10 * 180 / 188.0));
}

TEST_F(TableViews, TheRowAboveTheTableStandsForTheHighestPressureOfTheEngine) {
  MaxManifoldKpa = 57;
  Build(TableVe, 1);
  EXPECT_EQ(NodePulseMs(10, 4), 6);
  MaxManifoldKpa = 104;
  EXPECT_EQ(NodePulseMs(10, 4), 11);
}

TEST_F(TableViews, TheRowAboveTheTableUsesTheVeOfTheHighestLoad) {
  CalValues[181] = 0.25F;  // cell 57, the first of the highest load
  CopyTablesToWork();
  MaxManifoldKpa = 104;
  Build(TableVe, 1);
  EXPECT_EQ(NodePulseMs(10, 4), 13.5);
}

// ---- margins ------------------------------------------------------------------------------------

TEST_F(TableViews, MarginsOfTheVeTable) {
  FillCells(124, 0);
  TableWork[2].fill(7);
  for (int view = 0; view <= 2; ++view) {
    Build(TableVe, view);
    for (int row = 1; row <= 10; ++row) {
      for (int column = 1; column <= 3; ++column) EXPECT_EQ(TableWork[row][column], 0);
      EXPECT_EQ(TableWork[row][12], TableWork[row][11]) << "view " << view << " row " << row;
    }
    for (int column = 1; column <= 12; ++column) {
      EXPECT_EQ(TableWork[1][column], TableWork[2][column]);
      EXPECT_EQ(TableWork[10][column], TableWork[9][column]);
    }
  }
}

TEST_F(TableViews, HighestPressureDoesNotShowInTheTopMargin) {
  MaxManifoldKpa = 57;
  Build(TableVe, 1);
  EXPECT_EQ(TableWork[10][4], TableWork[9][4]);
}

TEST_F(TableViews, MarginOfTheAdvanceTableIsTheInitialAdvance) {
  FillCells(60, 0);
  Build(TableAdvance);
  for (int row = 1; row <= 10; ++row)
    for (int column = 1; column <= 3; ++column) EXPECT_EQ(TableWork[row][column], 12);
  EXPECT_EQ(TableWork[5][12], TableWork[5][11]);
  EXPECT_EQ(TableWork[10][6], TableWork[9][6]);
}

TEST_F(TableViews, MarginOfTheAirFuelTableIsStoichiometric) {
  FillCells(344, 10);
  Build(TableAirFuel);
  for (int row = 1; row <= 10; ++row)
    for (int column = 1; column <= 3; ++column) EXPECT_EQ(TableWork[row][column], 14.64F);
}

TEST_F(TableViews, MarginOfTheGpoTableIsZero) {
  FillCells(260, 10);
  Build(TableGpo);
  for (int row = 1; row <= 10; ++row)
    for (int column = 1; column <= 3; ++column) EXPECT_EQ(TableWork[row][column], 0);
}

// ---- the other tables ---------------------------------------------------------------------------

TEST_F(TableViews, EachTableShowsItsOwnCells) {
  FillCells(60, 100);
  FillCells(260, 200);
  FillCells(344, 300);
  struct Case {
    int table;
    float first;
    Colour colour;
  };
  for (const Case& c : {Case{TableAdvance, 101, Yellow}, Case{TableGpo, 201, White},
                        Case{TableAirFuel, 301, Blue}}) {
    Build(c.table);
    EXPECT_EQ(TableWork[2][4], c.first);
    EXPECT_EQ(TableWork[2][11], c.first + 7);
    EXPECT_EQ(TableWork[9][11], c.first + 63);
    for (int row = 1; row <= 10; ++row)
      for (int column = 1; column <= 12; ++column)
        EXPECT_EQ(TableColours[row][column], c.colour) << c.table << " " << row << " " << column;
  }
}

TEST_F(TableViews, TheViewOfTheVeTableDoesNotReachOtherTables) {
  FillCells(60, 0);
  Build(TableAdvance, 2);
  EXPECT_EQ(TableWork[2][4], 1);
}

// ---- colours of the VE table --------------------------------------------------------------------

namespace {

// The VE, in percent, at which a node of the highest load has this load duty.
double VeOfLoadDuty(double duty, double rpm, double loadKpa) {
  const double pulseMs = duty / 100 * (60000 / rpm - 1.2);
  return ((pulseMs - 1) * 94 / (10 * (loadKpa - 10)) - 1) * 100;
}

}  // namespace

TEST_F(TableViews, NodesTurnYellowAndRedAtTheirThresholds) {
  const double yellow = VeOfLoadDuty(75, 6000, 100);
  const double red = VeOfLoadDuty(100, 5000, 100);
  CalValues[188] = static_cast<float>((yellow - 0.01) / 100);  // 6000 RPM, 100 kPa
  CalValues[187] = static_cast<float>((red + 0.01) / 100);     // 5000 RPM
  CalValues[186] = static_cast<float>((VeOfLoadDuty(75, 4000, 100) + 0.01) / 100);
  CopyTablesToWork();
  for (int view = 0; view <= 2; ++view) {
    Build(TableVe, view);
    EXPECT_EQ(TableColours[9][11], White);
    EXPECT_EQ(TableColours[9][10], Red);
    EXPECT_EQ(TableColours[9][9], Yellow);
  }
}

// 6000 RPM leaves 8.8 ms; 6.6 ms are 75 % of it and 8.8 ms are all of it.
TEST_F(TableViews, APulseExactlyAtAThresholdHasItsColour) {
  EXPECT_EQ(ColourOfLoadDuty(LoadDutyPercent(6.59, 6000)), White);
  EXPECT_EQ(ColourOfLoadDuty(LoadDutyPercent(6.6, 6000)), Yellow);
  EXPECT_EQ(ColourOfLoadDuty(LoadDutyPercent(8.79, 6000)), Yellow);
  EXPECT_EQ(ColourOfLoadDuty(LoadDutyPercent(8.8, 6000)), Red);
}

TEST_F(TableViews, TheRowAboveTheTableHasTheColourOfTheHighestLoad) {
  CalValues[232] = 30;
  Publish();
  MaxManifoldKpa = 10;  // by itself it would leave that row white
  Build(TableVe, 0);
  ASSERT_EQ(TableColours[9][11], Red);
  EXPECT_EQ(TableColours[10][11], Red);
  EXPECT_EQ(TableColours[10], TableColours[9]);
}

TEST_F(TableViews, TheColourAtTheRevLimitIsItsOwn) {
  CalValues[4] = 12000;  // 3.8 ms are left
  CalValues[232] = 5;    // 5.8 ms at 100 kPa
  Publish();
  Build(TableVe, 0);
  EXPECT_EQ(TableColours[9][11], White);
  EXPECT_EQ(TableColours[9][12], Red);
}

TEST_F(TableViews, StandstillIsWhite) {
  CalValues[232] = 30;
  Publish();
  Build(TableVe, 2);
  for (int row = 1; row <= 10; ++row)
    for (int column = 1; column <= 3; ++column) EXPECT_EQ(TableColours[row][column], White);
}

// ---- what a file can hold -----------------------------------------------------------------------

TEST_F(TableViews, ARevLimitOfZeroIsNoDuty) {
  CalValues[4] = 0;
  PublishCalGlobals();
  Build(TableVe, 2);
  EXPECT_EQ(RpmAxis[12], 0);
  EXPECT_EQ(TableColours[9][12], White);
  EXPECT_EQ(TableWork[9][12], TableWork[9][11]);
}

TEST_F(TableViews, ASpeedBreakpointOfZeroIsNoDuty) {
  CalValues[45] = 0;
  Build(TableVe, 2);
  EXPECT_EQ(TableWork[9][4], 0);
  EXPECT_EQ(TableColours[9][4], White);
}

TEST_F(TableViews, ASensorWithoutARangeLeavesTheOffset) {
  MapBar = 0;
  PublishCalGlobals();
  Build(TableVe, 1);
  for (int row = 2; row <= 9; ++row)
    for (int column = 4; column <= 11; ++column) EXPECT_EQ(TableWork[row][column], 1);
}

TEST_F(TableViews, ExtremesOfTogAndOffset) {
  CalValues[2] = -15.875F;
  CalValues[232] = 3;
  Publish();
  Build(TableVe, 2);
  EXPECT_LT(TableWork[9][11], 0);
  EXPECT_EQ(TableColours[9][11], White);
  CalValues[2] = 15.875F;
  CalValues[232] = 30;
  Publish();
  Build(TableVe, 2);
  EXPECT_FLOAT_EQ(TableWork[9][11], static_cast<float>((15.875 + 30 * 90 / 94.0) * 10));
  EXPECT_EQ(TableColours[9][11], Red);
}

TEST_F(TableViews, ContentThatIsNoNumberDoesNotFail) {
  CalValues[232] = std::numeric_limits<float>::infinity();
  CalValues[125] = std::numeric_limits<float>::quiet_NaN();
  Publish();
  Build(TableVe, 1);
  EXPECT_TRUE(std::isnan(TableWork[2][4]));
  EXPECT_EQ(TableColours[2][4], White);
  EXPECT_EQ(TableColours[9][11], Red);
}

// ---- start values -------------------------------------------------------------------------------

TEST_F(TableViews, ResetGoesBackToTheCorrectionViewOfVe) {
  Build(TableAirFuel, 2);
  ResetTableViews();
  EXPECT_EQ(SelectedTable, 0);
  EXPECT_EQ(VeView, 0);
  EXPECT_EQ(TableWork, WorkGrid{});
}
