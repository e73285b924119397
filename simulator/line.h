// One direction of a serial line: bytes follow each other, each takes its time.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>

namespace sim {

// A byte and the time at which its last bit has gone by.
struct TimedByte {
  std::uint8_t value;
  std::int64_t atUs;
  friend bool operator==(const TimedByte&, const TimedByte&) = default;
};

// Times are kept in thirds of a microsecond, in which ten bits at 9600 baud are a whole number.
inline constexpr std::int64_t TicksPerUs = 3;
inline constexpr std::int64_t ByteTicks = 3125;

inline std::int64_t UsFromTicks(std::int64_t ticks) {
  return (ticks + TicksPerUs - 1) / TicksPerUs;  // up: complete means complete
}

struct Wire {
  struct Item {
    std::uint8_t value;
    std::int64_t atTicks;
  };
  std::int64_t byteTicks = ByteTicks;  // 0: no pacing
  std::int64_t freeTicks = 0;          // when the last byte is through
  std::deque<Item> bytes;              // not yet taken, in order

  // Queues a byte that is ready now; it starts when those before it are through.
  void Put(std::uint8_t value, std::int64_t nowTicks) {
    freeTicks = std::max(freeTicks, nowTicks) + byteTicks;
    bytes.push_back({value, freeTicks});
  }
  std::optional<std::int64_t> NextTicks() const {
    if (bytes.empty()) return std::nullopt;
    return bytes.front().atTicks;
  }
  void Cut(std::int64_t nowTicks) {
    bytes.clear();
    freeTicks = nowTicks;
  }
};

}  // namespace sim
