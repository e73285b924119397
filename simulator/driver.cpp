// The drive: idle, a blip, town, a hill, the open road, overtaking, coasting down, and again.
#include "simulator/driver.h"

#include <cmath>
#include <iterator>
#include <numeric>

namespace sim {
namespace {

struct Leg {
  double seconds;
  double percent;  // of throttle
};

constexpr Leg Cycle[] = {
    {10, 0}, {1.5, 18}, {6, 0},  {6, 14}, {8, 9},     {5, 20}, {8, 12},  {4, 0},
    {6, 16}, {7, 34},   {8, 22}, {4, 65}, {2.5, 100}, {6, 25}, {10, 18}, {14, 0},
};

}  // namespace

double DriveSeconds() {
  return std::accumulate(std::begin(Cycle), std::end(Cycle), 0.0,
                         [](double sum, const Leg& leg) { return sum + leg.seconds; });
}

double Driver::Pedal(double seconds) {
  if (!drives_) return percent_ / 100;
  seconds_ = std::fmod(seconds_ + seconds, DriveSeconds());
  double left = seconds_;
  for (const Leg& leg : Cycle) {
    if (left < leg.seconds) return leg.percent / 100;
    left -= leg.seconds;
  }
  return 0;
}

}  // namespace sim
