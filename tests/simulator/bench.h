// An engine on the bench: its own clock, its frame in units, and images with a few bytes changed.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <utility>

#include "simulator/engine.h"

inline double ErpmOf(const sim::LiveBytes& f) {
  return std::floor(12150 * ((f[0] * 256 + f[1]) / 8192.0));
}
inline double AdvanceOf(const sim::LiveBytes& f) { return f[2] / 4.25; }
inline double GamaOf(const sim::LiveBytes& f) { return (128 + f[5] + 3 * f[6]) / 256.0; }
inline double PulseOf(const sim::LiveBytes& f) { return (f[25] * 256 + f[26]) / 125.0; }
inline double CorrectionOf(const sim::LiveBytes& f) {
  return f[17] < 128 ? f[17] / 255.0 : (256 - f[17]) / -255.0;
}
inline double RatioOf(std::uint8_t counts) { return 14.64 / ((128 + counts) / 255.0); }

// An engine with its own clock.
struct Bench {
  sim::Engine engine;
  double seconds = 0;
  explicit Bench(const sim::Image& image = sim::DefaultImage()) : engine(image, 1) {}
  void Run(double more) {
    seconds += more;
    engine.AdvanceTo(static_cast<std::int64_t>(seconds * 1e6));
  }
  // The mean of something over some seconds.
  double Mean(double more, const std::function<double(const sim::LiveBytes&)>& value) {
    double sum = 0;
    const int steps = static_cast<int>(more * 100);
    for (int i = 0; i < steps; ++i) {
      Run(0.01);
      sum += value(engine.Frame());
    }
    return sum / steps;
  }
};

inline sim::Image With(std::initializer_list<std::pair<int, int>> bytes) {
  sim::Image image = sim::DefaultImage();
  for (const auto& [index, value] : bytes)
    image[static_cast<std::size_t>(index)] = static_cast<std::uint8_t>(value);
  return image;
}
