// "   12.345678 > 46": seconds, direction, bytes in hexadecimal.
#include "simulator/terminal/trafficlog.h"

#include <array>
#include <cstdio>
#include <ios>

namespace sim {

bool TrafficLog::Open(const std::string& path) {
  file_.open(path, std::ios::trunc);
  return file_.is_open();
}

void TrafficLog::Note(char direction, std::uint8_t byte, std::int64_t atUs) {
  if (!file_.is_open()) return;
  std::array<char, 48> text{};
  if (direction != direction_ || atUs - lastUs_ > PauseUs) {
    EndLine();
    std::snprintf(text.data(), text.size(), "%12.6f %c", static_cast<double>(atUs) / 1e6,
                  direction);
    file_ << text.data();
    direction_ = direction;
  }
  std::snprintf(text.data(), text.size(), " %02X", byte);
  file_ << text.data();
  lastUs_ = atUs;
}

void TrafficLog::EndLine() {
  if (direction_ == 0) return;
  direction_ = 0;
  file_ << std::endl;
}

}  // namespace sim
