// What the programming session shows. Each does nothing when the screen is not loaded.
#pragma once

#include <cstdint>

// The title lines of CurrentBinPath and ComPort, and the progress line; all else is cleared.
void ShowTitle();
// The counters, and how much of the file has been read.
void ShowRecord(int record, int pass, std::int64_t position, std::int64_t length);
void ShowResult(bool verified);
void ShowExitHint();
// Unloads the screen and brings the main menu back when nothing else is up.
void LeaveProgram_ZEM();

// Ends the session that runs, if one does, and closes its file and port; the screen calls it when
// it is unloaded.
void StopProgramming();
