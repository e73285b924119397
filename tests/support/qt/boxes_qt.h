// Boxes that open while a test runs: each is recorded and answered from a list.
#pragma once

#include <QString>
#include <string>

void WatchBoxes();
void ResetBoxRecords();
// Boxes that nobody took and answers that nobody asked for are test failures.
void ExpectNoBoxLeft();
// A menu that has popped up is noted and closed.
void NotePopUp();
int FocusMovesSoFar();
