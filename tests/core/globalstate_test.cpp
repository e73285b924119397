// Start values and constant lists of the core.
#include "core/globalstate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

TEST(ThermistorTable, StandsAt130UpToCount17AndEndsAtMinus40) {
  EXPECT_TRUE(std::all_of(ThermistorTable.begin(), ThermistorTable.begin() + 18,
                          [](int degrees) { return degrees == 130; }));
  EXPECT_EQ(ThermistorTable[18], 129);
  EXPECT_EQ(ThermistorTable[19], 127);
  EXPECT_EQ(ThermistorTable[41], 98);
  EXPECT_EQ(ThermistorTable[42], 96);
  EXPECT_EQ(ThermistorTable[100], 61);
  EXPECT_EQ(ThermistorTable[232], -2);
  EXPECT_EQ(ThermistorTable[233], -3);
  EXPECT_EQ(ThermistorTable[253], -39);
  EXPECT_EQ(ThermistorTable[254], -40);
  EXPECT_EQ(ThermistorTable[255], -40);
}

TEST(ThermistorTable, NeverRisesAndKeepsItsSums) {
  EXPECT_TRUE(std::is_sorted(ThermistorTable.rbegin(), ThermistorTable.rend()));
  EXPECT_EQ(std::accumulate(ThermistorTable.begin(), ThermistorTable.end(), 0), 13437);
  // A degree moved from one count to another changes this sum.
  std::array<int, 256> counts{};
  std::iota(counts.begin(), counts.end(), 0);
  EXPECT_EQ(std::inner_product(counts.begin(), counts.end(), ThermistorTable.begin(), 0), 935902);
}

TEST(WizardLists, HaveTheirShapes) {
  const std::array<int, 16> none{};
  const std::array<int, 16> b = {0, 60, 60, 60, 60, 40, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const std::array<int, 16> c = {0, 60, 60, 60, 60, 60, 40, 40, 40, 40, 20, 0, 0, 0, 0, 0};
  const std::array<int, 16> d = {0, 75, 75, 75, 75, 75, 60, 60, 40, 40, 40, 20, 20, 0, 0, 0};
  EXPECT_EQ(WizardListA, none);
  EXPECT_EQ(WizardListB, b);
  EXPECT_EQ(WizardListC, c);
  EXPECT_EQ(WizardListD, d);
}

TEST(ResetCalibrationState, PutsEveryStartValueBack) {
  CalValues.fill(1);
  BinImage.fill(1);
  LoadMode = "MAF";
  MapBar = MapFullScale = MonitorMode = ComPort = ScreenClass = QuickStart = 3;
  StartDir = CurrentBinPath = TargetBinPath = BinShortName = BinFileType = "x";
  FileIsOpen = UseDialogName = CalChanged = KillFirst = true;
  OpenedEgoAuthority = MapLow = MapHigh = WorkTog = WorkIot = WorkRevLimit = WorkCylinders = 3;
  MinTurnOnMs = InitialAdvance = MaxManifoldKpa = IdlePulseMs = 3;
  FiringInterval = WorkBlendOffset = WorkGpoFrequency = 3;
  LimitLowKpa = LimitHighKpa = IdleLoadKpa = FullLoadPulseMs = RevLimitPulseMs = 3;
  for (WorkGrid* grid : {&VeWork, &GpoWork, &AdvanceWork, &AfrWork}) (*grid)[14][16] = 3;
  RpmAxis.fill(3);
  LoadAxis.fill(3);
  CoolantAdvance.fill(3);
  TempAxis.fill(3);
  EgoVolts.fill(3);
  EgoRatios.fill(3);

  ResetCalibrationState();

  EXPECT_EQ(CalValues, (std::array<float, 513>{}));
  EXPECT_EQ(BinImage, (std::array<std::int16_t, 513>{}));
  EXPECT_EQ(LoadMode, "MAP");
  EXPECT_EQ(MapBar, 1);
  EXPECT_EQ(MapFullScale, 104);
  EXPECT_EQ(StartDir + CurrentBinPath + TargetBinPath + BinShortName + BinFileType, "");
  EXPECT_FALSE(FileIsOpen || UseDialogName || CalChanged || KillFirst);
  EXPECT_EQ(MonitorMode, 0);
  EXPECT_EQ(ComPort, 1);
  EXPECT_EQ(ScreenClass, 1);
  EXPECT_EQ(QuickStart, -1);
  EXPECT_EQ(MapLow, 10);
  EXPECT_EQ(MapHigh, 104);
  EXPECT_EQ(MaxManifoldKpa, 104);
  EXPECT_EQ(OpenedEgoAuthority + WorkTog + WorkIot + WorkRevLimit + WorkCylinders, 0);
  EXPECT_EQ(MinTurnOnMs + InitialAdvance + IdlePulseMs, 0);
  EXPECT_EQ(FiringInterval + WorkBlendOffset + WorkGpoFrequency, 0);
  EXPECT_EQ(LimitLowKpa + LimitHighKpa + IdleLoadKpa + FullLoadPulseMs + RevLimitPulseMs, 0);
  for (const WorkGrid* grid : {&VeWork, &GpoWork, &AdvanceWork, &AfrWork})
    EXPECT_EQ(*grid, WorkGrid{});
  EXPECT_EQ(RpmAxis, (std::array<float, 13>{}));
  EXPECT_EQ(LoadAxis, (std::array<float, 11>{}));
  EXPECT_EQ(CoolantAdvance, (std::array<float, 13>{}));
  EXPECT_EQ(TempAxis, (std::array<float, 17>{}));
  EXPECT_EQ(EgoVolts, (std::array<float, 11>{}));
  EXPECT_EQ(EgoRatios, (std::array<float, 11>{}));
}
