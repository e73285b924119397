// A simulated ZEM at the other end of a device of the headless platform, on its virtual clock.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "simulator/zem.h"

class ZemDevice {
 public:
  // The unit is turned on now, and its cable is in the device of COM1.
  explicit ZemDevice(sim::ZemSettings settings = {}, const sim::Image& image = sim::DefaultImage());
  ~ZemDevice();
  ZemDevice(const ZemDevice&) = delete;
  ZemDevice& operator=(const ZemDevice&) = delete;

  // Pulls the cable, and puts it back. The engine runs on.
  void Unplug();
  void Replug();
  // A fault by its text; a test failure when the text names none.
  void Fail(const std::string& fault);
  // All faults healed, the cable in, and nobody else listening on it.
  void ClearAll();
  // The commands that were heard since the last call; good for 256 commands in all.
  std::vector<std::string> TakeHistory();

  sim::Zem zem;
  static constexpr const char* Name = "COM1";

 private:
  void Connect();
  void Pump();
  void PlanPump();
  // Events that are still due when the device has gone hold only a weak reference to it.
  std::shared_ptr<ZemDevice*> self_;
  std::int64_t plannedUs_ = -1;
  std::size_t taken_ = 0;
};
