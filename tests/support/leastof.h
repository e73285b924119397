// Limits of time, on a machine that has other things to do.
#pragma once

#include <algorithm>

// A machine that is busy elsewhere makes things last longer, never shorter: what must not take
// longer than a limit is tried again, and the least disturbed round counts.
template <typename Round>
double LeastOf(double limit, Round round) {
  constexpr int roundsAtMost = 50;
  double least = round();
  for (int i = 1; i < roundsAtMost && least >= limit; ++i) least = std::min(least, round());
  return least;
}
