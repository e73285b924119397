// The traffic as text: a line for each run of bytes in one direction, with the time it began.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

namespace sim {

class TrafficLog {
 public:
  // False when the file cannot be written.
  bool Open(const std::string& path);
  // A byte that went from ('>') or to ('<') the PC, at a time since the simulator began.
  void Note(char direction, std::uint8_t byte, std::int64_t atUs);
  // Ends the line; for a pause on the line or the end of the run.
  void EndLine();

 private:
  static constexpr std::int64_t PauseUs = 5'000;
  std::ofstream file_;
  char direction_ = 0;
  std::int64_t lastUs_ = 0;
};

}  // namespace sim
