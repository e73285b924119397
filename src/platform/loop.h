// The event queue, yielding, the clock. One thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

// Makes the toolkit ready; main calls it first, once. Options of the toolkit are taken out of the
// arguments. A second call puts the start state back.
void StartPlatform(int& argc, char** argv);

// One pass of the event queue. When nothing is pending it sleeps in the event loop until a byte, a
// key or a millisecond has come and counts off the passes that fit into that time, so that a pass
// lasts about 30 microseconds on average and costs next to nothing. After a yield look again
// whether your screen and your port are still there.
void Yield();
inline constexpr int PassMicroseconds = 30;

// Sleeps without a yield: 0.1 ms a unit.
void Pause(int units);

// Runs the routine when the stack is back at the queue, in no other routine's yield and in no box.
// Live loops, programming and what opens them are started this way.
void RunFromQueue(std::function<void()> routine);
// Runs the routine from the next pass, wherever that is.
void RunSoon(std::function<void()> routine);
// How deep the stack is in yields: 0 at the queue.
int YieldDepth();

// Calls the routine every so many milliseconds from the queue or a yield, until stopped. A tick
// that comes while the routine still runs (it yields, or its box is open) is left out.
int StartTimer(int milliseconds, std::function<void()> routine);
void StopTimer(int timer);

std::int64_t MonotonicMicroseconds();
double SecondsSinceMidnight();
std::string DateText();  // "2026-11-21", local
std::string TimeText();  // "14:05:09", local

// Runs the queue until EndProgram; returns the program's exit code. Who asks the process to end
// meanwhile (a logout, Ctrl+C in its terminal) clicks the close box of the frame; who asks again
// after a second ends it at once.
int RunProgram();
// The queue ends when the stack has unwound.
void EndProgram(int exitCode = 0);
bool ProgramEnding();
