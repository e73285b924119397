// The working values that graphs, tables and monitors read, refilled from the calibration.
#include <algorithm>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/numbers.h"

namespace {

// What a MAP sensor measures for each bar of its range.
constexpr int lowKpaPerBar = 10;
constexpr int highKpaPerBar = 104;

constexpr std::size_t breakpoints = 8;
constexpr std::size_t firstRow = 2;  // of an 8 by 8 table in its grid
constexpr std::size_t firstColumn = 4;

void FillTable(WorkGrid& grid, std::size_t firstValue) {
  for (std::size_t k = 0; k < breakpoints * breakpoints; ++k)
    grid[firstRow + k / breakpoints][firstColumn + k % breakpoints] = CalValues[firstValue + k];
}

// Each cell goes to its right and upper neighbour too; the next cell overwrites it there, so that
// the last column and row end up beyond the table's edge.
void FillVeTable() {
  for (std::size_t k = 0; k < breakpoints * breakpoints; ++k) {
    const std::size_t row = firstRow + k / breakpoints;
    const std::size_t column = firstColumn + k % breakpoints;
    const auto percent = static_cast<float>(static_cast<double>(CalValues[125 + k]) * 100);
    VeWork[row][column] = VeWork[row][column + 1] = VeWork[row + 1][column] = percent;
  }
}

}  // namespace

double SensorLowKpa() { return MapBar * lowKpaPerBar; }
double SensorHighKpa() { return MapBar * highKpaPerBar; }
double LoadScale() { return LoadMode == "MAP" ? MapBar : 1; }

void PublishCalGlobals() {
  MapFullScale = static_cast<int>(SensorHighKpa());
  MapLow = static_cast<float>(SensorLowKpa());
  MapHigh = static_cast<float>(MapFullScale);
  WorkRevLimit = CalValues[4];
  WorkCylinders = CalValues[217];
  WorkTog = CalValues[232];
  WorkIot = CalValues[2];
  MinTurnOnMs = CalValues[344];
  FiringInterval = RoundEven(CalValues[233]);
  WorkBlendOffset = RoundEven(CalValues[465]);
  InitialAdvance = CalValues[3];
  WorkGpoFrequency = RoundEven(CalValues[325]);
  std::copy_n(&CalValues[45], breakpoints, &RpmAxis[4]);
  for (std::size_t i = 0; i < breakpoints; ++i)
    LoadAxis[2 + i] = static_cast<float>(CalValues[53 + i] * LoadScale());
}

void ComputeInjectorLimits() {
  const int bar = MapBar >= 1 && MapBar <= 3 ? MapBar : 4;
  LimitLowKpa = lowKpaPerBar * bar;
  LimitHighKpa = highKpaPerBar * bar;
  IdleLoadKpa = 70;
  const double offset = CalValues[2];
  const double gama = CalValues[232];
  const double span = LimitHighKpa - LimitLowKpa;
  IdlePulseMs = static_cast<float>(offset + gama * (IdleLoadKpa - LimitLowKpa) / span);
  FullLoadPulseMs = offset + gama * (MapFullScale - LimitLowKpa) / span;
  RevLimitPulseMs = 60000 / static_cast<double>(CalValues[4]) - InjectorRecoveryMs;
}

void LoadEgoCurve() {
  std::copy_n(&CalValues[415], 10, &EgoVolts[1]);
  std::copy_n(&CalValues[425], 10, &EgoRatios[1]);
}

void CopyTablesToWork() {
  FillTable(GpoWork, 261);
  FillTable(AdvanceWork, 61);
  FillTable(AfrWork, 345);
  FillVeTable();
  std::copy_n(&CalValues[237], 12, &CoolantAdvance[1]);
  for (std::size_t position = 1; position <= 16; ++position)
    TempAxis[position] = static_cast<float>(static_cast<int>(position) * 10 - 40);
}
