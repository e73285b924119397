// Calibrations that the tests of the core start from.
#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <utility>

#include "core/globalstate.h"

inline void SetValues(std::size_t first, std::initializer_list<float> values) {
  for (float value : values) CalValues[first++] = value;
}

// All zero but for the EGO curve, which cannot be encoded from zeros.
inline void LoadPlainCalibration() {
  ResetCalibrationState();
  SetValues(415, {0, 0.45F, 0.65F, 1.6F, 2.5F, 4.0F, 4.2F, 4.62F, 4.8F, 5.0F});
  SetValues(425, {22.4F, 15.89F, 14.9F, 14.72F, 14.64F, 14.3F, 13.8F, 12.6F, 11.2F, 10.0F});
}

inline void LoadKnownTables() {
  for (std::size_t k = 0; k < 64; ++k) {
    const auto cell = static_cast<float>(k);
    CalValues[61 + k] = 10 + cell / 2;
    CalValues[125 + k] = (cell - 32) / 100;
    CalValues[261 + k] = cell;
    CalValues[345 + k] = 10 + cell / 4;
  }
}

// A calibration with every parameter at a value of its own.
inline void LoadKnownCalibration() {
  LoadPlainCalibration();
  LoadKnownTables();
  SetValues(0, {127, 7, -1.5F, 10, 6000, 300, 4.92F, 0.04F, 80, 4.92F, 0.04F, 20, 4.92F, 0.1F});
  SetValues(14, {1.5F, 4.92F, 0.1F, 50, 30});
  SetValues(37, {20, 0.5F, 2, 0, 10, 4500});
  SetValues(45, {750, 1500, 2250, 3000, 3750, 4500, 5250, 6000});
  SetValues(53, {20, 32, 44, 56, 68, 80, 92, 104});
  SetValues(189, {0.5F, 0, 0.2F, 0, 0.3F, 0.1F, 4, 1, 0.6F, 0.25F, 0.75F, 0.4F, 0.1F});
  SetValues(202, {0, 40, 80, 1200, 1000, 750, 4, 3, 120, 100, 1, 120, 80, 60});
  SetValues(221, {0.15F, 2000, 1500, 2, 25, 0.1F, 0.6F, 60, 100, 0.3F, 0.05F, 8.3F, 2});
  SetValues(237, {11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 2, 1.5F, 20, 400, 5, 1.5F, 0.5F});
  SetValues(325, {8, 5500});
  SetValues(328, {1.5F, 1.2F, 0.95F, 0.75F, 0.55F, 0.4F, 0.28F, 0.18F, 0.1F, 0.05F, 0.02F});
  SetValues(344, {1.3F});
  SetValues(409, {4000, 80, 0, 9, 8, 16});
  SetValues(435, {400, 1125, 1500, 2250, 3000, 3750, 4500, 6000});
  SetValues(443, {0, 60, 60, 60, 60, 40, 20, -30, 26});
  SetValues(465, {0.85F, -10});
  BinShortName = "STREET.V8.bin";
}
