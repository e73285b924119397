// The bytes that stand for the run-time offsets.
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "link/onfly.h"

namespace {

// The sign stands in bit 7. The two directions differ by design: up is cut off, down is rounded.
int SignAndMagnitude(double value, double scale) {
  if (value >= 0) return static_cast<int>(Int(value * scale));
  return 128 | static_cast<int>(RoundEven(std::abs(value) * scale));
}

}  // namespace

int AdvanceByte(double degrees) { return SignAndMagnitude(degrees, 4.25); }
int GamaByte(double fraction) { return SignAndMagnitude(fraction, 255); }
int TpsBlendByte(double volts) { return static_cast<int>(RoundEven(51 * volts)); }
double InjectorStep(double ms) { return RoundEven(8 * ms) / 8; }

int InjectorByte(double ms) {
  const int magnitude = static_cast<int>(RoundEven(8 * std::abs(ms)));
  return ms < 0 ? magnitude | 128 : magnitude;
}

int GpoByte(double percent) {
  const int steps = static_cast<int>(RoundEven(255 * (percent / 100)));
  return steps < 0 ? steps + 256 : steps;
}

int AfrByte(double offset) {
  const int byte = std::min(static_cast<int>(-offset), 127);
  return byte < 0 ? byte + 256 : byte;
}

// Counts of 8 us over both bytes: the low byte is the fraction of the high one in eight binary
// digits.
TogBytes TogToBytes(double ms) {
  const double count = (125 * ms) / 256;
  const double high = Int(count);
  double rest = count - high;
  int low = 0;
  for (int divisor = 2, bit = 128; divisor < 512; divisor *= 2, bit /= 2) {
    if (rest - 1.0 / divisor < 0) continue;
    low |= bit;
    rest -= 1.0 / divisor;
  }
  return {static_cast<int>(high), low};
}
