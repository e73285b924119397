// The event queue as the other Qt files see it.
#pragma once

class QObject;

// Asks for a turn of the queue: changes are carried out, waiting routines run.
void ScheduleTurn();
// Whether a turn is asked for that has not run yet (the test user waits for it).
bool TurnWaits();
// While one of these stands and no yield is on the stack, turns carry out changes and leave the
// routines that wait to a later turn: a test is the queue.
struct QueueHold {
  QueueHold();
  ~QueueHold();
  QueueHold(const QueueHold&) = delete;
  QueueHold& operator=(const QueueHold&) = delete;
};
// The object whose events the queue handles; parent of what lives as long as the program.
QObject* QueueObject();
// Start state of the queue: timers stopped, not ending.
void ResetLoop();
