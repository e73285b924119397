// Who works the throttle: a fixed pedal position, or a drive that repeats.
#pragma once

#include <algorithm>
#include <cstdint>

namespace sim {

class Driver {
 public:
  // Holds the throttle at this percentage.
  void Hold(double percent) {
    drives_ = false;
    percent_ = std::clamp(percent, 0.0, 100.0);
  }
  // Drives the scripted cycle from its beginning.
  void Drive() {
    drives_ = true;
    seconds_ = 0;
  }
  bool Drives() const { return drives_; }
  // Moves the cycle on and returns where the pedal is now, 0 to 1.
  double Pedal(double seconds);

 private:
  bool drives_ = false;
  double percent_ = 0;
  double seconds_ = 0;
};

// Seconds of one round of the cycle.
double DriveSeconds();

}  // namespace sim
