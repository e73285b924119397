// A routine as a user without special rights would run it: root is refused nothing.
#pragma once

#include <functional>
#include <optional>
#include <string>

// Runs the routine in a process of its own, as nobody when the tests run as root, and gives what it
// returned. With a group: as a member of that one only, which needs root.
std::string AsOrdinaryUser(const std::function<std::string()>& routine,
                           std::optional<unsigned> group = std::nullopt);
