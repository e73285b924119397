// The symbolic link under which the simulator's terminal can always be found.
#pragma once

#include <string>

namespace sim {

// Points the link at the terminal, replacing an older link but never a file. Empty, or what is
// wrong.
std::string PointLink(const std::string& link, const std::string& terminal);

// Removes the link if it still points at this terminal.
void RemoveLink(const std::string& link, const std::string& terminal);

}  // namespace sim
