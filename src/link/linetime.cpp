#include "link/linetime.h"

namespace {

// A unit may run a little faster than 9600 baud.
constexpr std::int64_t soonestUs = 2 * ByteMicroseconds - 180;
constexpr std::size_t lumpBytes = 4;

}  // namespace

bool CameByWire(const SerialControl& line) {
  const auto bytes = static_cast<std::int64_t>(line.heard.size());
  return bytes > 1 && line.times.lastUs - line.times.firstUs >= (bytes - 1) * ByteMicroseconds / 2;
}

bool CameInLumps(const SerialControl& line) {
  return line.heard.size() >= static_cast<std::size_t>(line.times.arrivals) * lumpBytes;
}

bool BeganTooSoon(const SerialControl& line) {
  return CameByWire(line) && line.times.firstUs - line.times.sentUs < soonestUs;
}
