// The table screens: views of 64 cells, the redraw of a screen, and a key from press to redrawn
// table on the headless platform. Time to reach: 10 microseconds for the views, 5 ms for a key.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>

#include "core/encoder.h"
#include "editors/editors.h"
#include "editors/tableeditor.h"
#include "editors/vetable.h"
#include "platform/headless/script.h"
#include "platform/keys.h"

namespace {

void FillCalibration() {
  constexpr std::array<float, 8> speeds = {750, 1500, 2250, 3000, 3750, 4500, 5250, 6000};
  constexpr std::array<float, 8> loads = {20, 30, 40, 50, 60, 70, 85, 100};
  ResetCalibrationState();
  std::copy(speeds.begin(), speeds.end(), &CalValues[45]);
  std::copy(loads.begin(), loads.end(), &CalValues[53]);
  for (std::size_t cell = 1; cell <= 64; ++cell)
    CalValues[124 + cell] = (static_cast<float>(cell) - 32) / 100;
  CalValues[2] = 0.75F;
  CalValues[4] = 6500;
  CalValues[232] = 12;
  PublishCalGlobals();
  CopyTablesToWork();
}

Screen& OpenVeTable() {
  ResetHeadless();
  FillCalibration();
  ResetTableViews();
  RegisterEditors();
  OpenScreen("frmVETable");
  RunUntilIdle();
  return FrmVETable().screen;
}

void Press(int key) {
  HeadlessKey({.key = key, .character = key < 256 && key >= KeySpace ? key : 0});
  RunUntilIdle();
}

void BuildViews(benchmark::State& state) {
  FillCalibration();
  VeView = static_cast<int>(state.range(0));
  for (auto _ : state) {
    BuildTableViews();
    benchmark::DoNotOptimize(TableWork);
  }
  ResetTableViews();
}
BENCHMARK(BuildViews)->DenseRange(0, 2);

// Nothing has changed: every cell is compared.
void RedrawUnchanged(benchmark::State& state) {
  OpenVeTable();
  for (auto _ : state) Redraw(FrmVETable());
  ResetHeadless();
}
BENCHMARK(RedrawUnchanged);

// Another view: all 64 cells get another text.
void KeyThatChangesAllCells(benchmark::State& state) {
  OpenVeTable();
  for (auto _ : state) Press(KeyF5);
  ResetHeadless();
}
BENCHMARK(KeyThatChangesAllCells);

// One digit and Enter.
void EntryInACell(benchmark::State& state) {
  OpenVeTable();
  int digit = 0;
  for (auto _ : state) {
    Press('0' + digit);
    Press(KeyEnter);
    digit = (digit + 1) % 10;
  }
  ResetHeadless();
}
BENCHMARK(EntryInACell);

void ArrowToTheNextCell(benchmark::State& state) {
  OpenVeTable();
  for (auto _ : state) Press(KeyRight);
  ResetHeadless();
}
BENCHMARK(ArrowToTheNextCell);

}  // namespace
