// EncodeCalibration runs at every save and is to take less than 20 microseconds.
#include <benchmark/benchmark.h>

#include "core/encoder.h"
#include "core/globalstate.h"

namespace {

void SetValues(std::size_t first, std::initializer_list<float> values) {
  for (float value : values) CalValues[first++] = value;
}

// Every step has work to do: speeds, tables, the EGO curve and a full name.
void LoadCalibration(float gpoMode) {
  ResetCalibrationState();
  CalValues.fill(12);
  SetValues(45, {750, 1500, 2250, 3000, 3750, 4500, 5250, 6000});
  SetValues(415, {0, 0.45F, 0.65F, 1.6F, 2.5F, 4.0F, 4.2F, 4.62F, 4.8F, 5.0F});
  SetValues(425, {22.4F, 15.89F, 14.9F, 14.72F, 14.64F, 14.3F, 13.8F, 12.6F, 11.2F, 10.0F});
  CalValues[491] = gpoMode;
  BinShortName = "CALIBRATION_14.BIN";
}

void Encode(benchmark::State& state) {
  LoadCalibration(static_cast<float>(state.range(0)));
  for (auto step : state) {
    EncodeCalibration();
    benchmark::DoNotOptimize(BinImage.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Encode)->ArgName("GpoMode")->Arg(0)->Arg(2)->Arg(4);

void RefillWorkingValues(benchmark::State& state) {
  LoadCalibration(0);
  for (auto step : state) {
    PublishCalGlobals();
    ComputeInjectorLimits();
    CopyTablesToWork();
    benchmark::DoNotOptimize(VeWork.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(RefillWorkingValues);

}  // namespace
