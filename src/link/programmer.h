// Loading the open calibration into the control unit: the screen `Program_ZEM` and its routine.
#pragma once

#include "platform/screen.h"

// The screen. Back and any key leave it at any moment, also in the middle of a wait: file and port
// are closed and the main menu returns. Unloading it by other means cleans up just the same.
extern Screen Program_ZEM;

// Opens the screen and programs; main registers it as "Program_ZEM". The callers have tested that
// nothing is live; a port that is held is refused here too. Called inside a yield it runs later,
// from the queue. Otherwise it returns when programming has ended:
// - with the screen up, showing how it ended, until the user leaves it;
// - with the screen gone, when the user has left, or when no calibration was opened;
// - with the screen gone in any case, when KillFirst was set: the engine is killed first, and the
//   caller goes on. KillFirst is cleared.
void OpenProgram_ZEM();

// Sends the S19 file of CurrentBinPath record by record, on the loaded screen. Asks for a
// calibration when none is open. Yields; whatever goes wrong is told, and nothing is thrown.
void programT();
