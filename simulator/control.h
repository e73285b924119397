// Commands in words, for the control file and for whoever sits at the keyboard, and the file
// itself.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/zem.h"

namespace sim {

enum class ControlResult { Done, Quit, NotUnderstood };

// Carries out one line; an empty one and one that begins with "#" do nothing.
ControlResult Control(Zem& zem, std::string_view line);

// All commands and fault names, a line each.
std::string ControlHelp();

// Follows a file to which lines are added. What stands in it at first is old.
class LineFollower {
 public:
  explicit LineFollower(std::filesystem::path path);
  // The whole lines that have come since the last call. A file that is new or has become shorter is
  // read from its beginning; one that cannot be read has none.
  std::vector<std::string> NewLines();

 private:
  std::filesystem::path path_;
  std::uintmax_t read_ = 0;
};

}  // namespace sim
