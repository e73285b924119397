// Decoding of the calibration image, and the curve of the temperature sensors.
#include "simulator/calibration.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

// The sensors' curve: degrees Celsius for each count, hot to cold.
constexpr std::array<short, 256> SensorCurve = {
    130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 130, 129,
    127, 125, 123, 121, 120, 118, 117, 115, 114, 113, 110, 109, 108, 107, 106, 105, 104, 103, 101,
    100, 99,  98,  98,  96,  96,  95,  94,  94,  93,  92,  91,  90,  89,  88,  87,  86,  85,  85,
    84,  84,  83,  83,  82,  81,  80,  80,  79,  79,  78,  77,  77,  76,  76,  75,  75,  74,  74,
    73,  73,  72,  72,  71,  70,  70,  69,  69,  68,  68,  67,  67,  66,  66,  65,  65,  64,  64,
    63,  63,  62,  62,  61,  61,  60,  60,  59,  59,  59,  58,  58,  57,  57,  57,  56,  56,  56,
    55,  55,  55,  54,  54,  53,  53,  53,  52,  52,  51,  51,  50,  50,  50,  49,  49,  48,  48,
    47,  47,  46,  46,  46,  45,  45,  45,  44,  44,  44,  43,  43,  42,  42,  41,  41,  41,  40,
    40,  40,  39,  39,  38,  38,  38,  37,  37,  36,  36,  35,  35,  35,  34,  34,  34,  33,  33,
    33,  32,  32,  31,  31,  30,  30,  30,  29,  29,  28,  28,  28,  27,  27,  26,  26,  25,  25,
    24,  24,  23,  23,  22,  22,  21,  21,  20,  20,  19,  19,  18,  18,  17,  17,  16,  16,  15,
    14,  13,  13,  12,  12,  11,  10,  10,  9,   8,   8,   7,   7,   6,   5,   5,   4,   4,   3,
    2,   1,   0,   -1,  -2,  -3,  -4,  -5,  -6,  -7,  -8,  -9,  -10, -12, -14, -15, -17, -18, -20,
    -23, -25, -28, -30, -34, -35, -39, -40, -40};

// Where a value stands on a rising axis: index of the point below and the fraction of the way up.
struct Place {
  std::size_t below;
  double fraction;
};

Place Find(std::span<const double> axis, double value) {
  if (!(value > axis.front())) return {0, 0};
  for (std::size_t i = 0; i + 1 < axis.size(); ++i) {
    if (value < axis[i + 1]) return {i, (value - axis[i]) / (axis[i + 1] - axis[i])};
  }
  return {axis.size() - 2, 1};
}

}  // namespace

double Interpolate(std::span<const double> x, std::span<const double> y, double at) {
  const Place place = Find(x, at);
  return y[place.below] + (y[place.below + 1] - y[place.below]) * place.fraction;
}

double CelsiusOfCount(int count) {
  return SensorCurve[static_cast<std::size_t>(std::clamp(count, 0, 255))];
}

int CountOfCelsius(double celsius) {
  const auto at = std::find_if(SensorCurve.begin(), SensorCurve.end(),
                               [&](short degrees) { return degrees <= celsius; });
  return std::min<int>(static_cast<int>(at - SensorCurve.begin()), 255);
}

Calibration::Calibration(const Image& bytes) : image(bytes) {
  for (int i = 0; i < AxisLength; ++i) {
    speeds[static_cast<std::size_t>(i)] = Speed(cell::SpeedAxis + 2 * i);
    loads[static_cast<std::size_t>(i)] = Kpa(cell::LoadAxis + i);
  }
}

double Calibration::Speed(int index) const {
  return (Raw(index) * 256 + Raw(index + 1)) * 12000 / 8191;
}

double Calibration::Signed(int index, double perUnit) const {
  return static_cast<std::int8_t>(image[static_cast<std::size_t>(index)]) / perUnit;
}

double Calibration::Table(int firstByte, double rpm, double kpa) const {
  const Place column = Find(speeds, rpm);
  const Place row = Find(loads, kpa);
  const auto along = [&](std::size_t r) {
    const int first = firstByte + static_cast<int>(8 * r + column.below);
    return Raw(first) + (Raw(first + 1) - Raw(first)) * column.fraction;
  };
  return along(row.below) + (along(row.below + 1) - along(row.below)) * row.fraction;
}

double Calibration::OverCoolant(int firstByte, int points, double celsius) const {
  const double place = std::clamp((celsius + 30) / 10, 0.0, points - 1.0);
  const int below = std::min(static_cast<int>(place), points - 2);
  return Raw(firstByte + below) +
         (Raw(firstByte + below + 1) - Raw(firstByte + below)) * (place - below);
}

}  // namespace sim
