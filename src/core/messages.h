// What several routines of the core tell the user in the same way.
#pragma once

#include <string_view>

#include "platform/failure.h"

// How the core's messages break a line.
inline constexpr std::string_view LineBreak = "\n\r";

inline constexpr std::string_view NoBinFileText = "No Valid BIN File is currently Open.";

// Tells of a failure in a box titled "Error", with more words at its end. A cancelled dialog is
// passed over in silence.
void ShowFailure(const Failure& failure, std::string_view more = {});
