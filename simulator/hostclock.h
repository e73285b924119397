// The unit's time, in a process that the host may hold back: a unit on a bench does not stand still
// while somebody else's program runs, and must not take that for silence on its line.
#pragma once

#include <cstdint>

namespace sim {

class HostClock {
 public:
  // What one turn may take by itself.
  static constexpr std::int64_t TurnUs = 20'000;

  explicit HostClock(std::int64_t monotonicUs) : lastUs_(monotonicUs) {}

  // The next reading may be this much later, as the process sleeps until then.
  void Sleeps(std::int64_t us) { sleepUs_ = us; }
  // Microseconds that have counted since the start. Of a turn that has taken longer than its sleep
  // and its work nobody knows when the process was held: little of it counts, so that a byte that
  // came meanwhile comes soon after the one before.
  std::int64_t Read(std::int64_t monotonicUs) {
    const std::int64_t passedUs = monotonicUs - lastUs_;
    nowUs_ += passedUs <= sleepUs_ + TurnUs ? passedUs : TurnUs;
    lastUs_ = monotonicUs;
    sleepUs_ = 0;
    return nowUs_;
  }

 private:
  std::int64_t lastUs_;
  std::int64_t sleepUs_ = 0;
  std::int64_t nowUs_ = 0;
};

}  // namespace sim
