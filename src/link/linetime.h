// What the times of bytes tell about an answer. On a line of 9600 baud a byte takes its time, both
// ways, so an answer cannot begin before the command and a byte of its own have gone over the wire;
// what is heard sooner belongs to an answer before. Adapters that deliver late and in lumps, and
// lines that are no wire at all, tell less, and say so here.
#pragma once

#include <cstdint>

#include "link/comm.h"

// Ten bits at 9600 baud, rounded down.
inline constexpr std::int64_t ByteMicroseconds = 1041;

// What was heard took the time of a wire: at least half of it. A unit that is simulated without
// pacing takes less.
bool CameByWire(const SerialControl& line);

// The bytes came in few chunks, as an adapter gathers them; their times say little.
bool CameInLumps(const SerialControl& line);

// On a wire: the first byte was heard too soon to be one of the answer to a command of one byte.
bool BeganTooSoon(const SerialControl& line);
