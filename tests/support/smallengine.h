// An engine of few values, for tests that need one in a file.
#pragma once

#include <string>
#include <vector>

// A V8 that turns 6,000 RPM at the most, by the indices of CalValues.
inline std::vector<float> SmallEngine() {
  std::vector<float> values(512, 0);
  values[2] = 1;  // ms of injector offset
  values[4] = 6000;
  values[9] = 4.92F;
  values[217] = 8;
  values[232] = 10;    // ms for one GAMA
  values[233] = 1;     // an injection at each tach event
  values[344] = 1.5F;  // ms of turn-on time at the least
  values[459] = 1;     // bar
  return values;
}

// As they stand in a BIN file.
inline std::string FileBytes(const std::vector<float>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float)};
}
