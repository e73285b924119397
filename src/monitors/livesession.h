// What the analog and the digital monitor share: one live session from opening to release, with
// frames requested one after the other and shown as fast as a display can follow. A monitor is a
// record with its own order of commands and its own figures.
#pragma once

#include <string>
#include <string_view>

#include "core/globalstate.h"
#include "link/comm.h"
#include "platform/screen.h"

// Why a session is over.
enum class SessionOver {
  Left,         // the user left it (StopLive)
  Unloaded,     // somebody unloaded its screen
  Cancelled,    // "Cancel Session"
  InvalidProm,  // the unit's PROM is too old
  ProgramEnds,
};

// What the next step of a pass is, once the monitor has sent what was pending.
enum class AfterCommands { RequestFrame, BeginPassAgain };

// A monitor. None of its routines but refused and over is called when the screen has been unloaded.
// Each may be null, but send and show. Only opened and send may yield.
struct LiveMonitor {
  Screen* screen = nullptr;
  int mode = NothingLive;             // MonitorMode while it runs
  WaitRule frameWait = WaitForFrame;  // of one "F"
  std::string_view modeLine;          // of the menu bar while it runs
  bool leavesKeysToEditor = false;    // an editor that has the keys keeps them when it is shown

  // The port is held by somebody else; the user has been told.
  void (*refused)() = nullptr;
  // Before each opening, that of a retry too: colours, and start values of what is shown.
  void (*prepare)() = nullptr;
  // The session is open, before its first frame. May send commands.
  void (*opened)() = nullptr;
  // The opening commands were sent again after a failure: the offsets of before are gone.
  void (*reopened)() = nullptr;
  // The top of each pass: pending commands in the monitor's order. One that fails leaves CommError.
  AfterCommands (*send)() = nullptr;
  // Whether a frame is decoded; one that is not keeps the link alive, and no command is sent.
  bool (*takesFrames)() = nullptr;
  // The link has failed; the failure screen is next.
  void (*failed)() = nullptr;
  // A new frame stands in Live. Every frame; what costs time belongs into show.
  void (*decoded)() = nullptr;
  // Writes the figures. Runs while the next frame is on its way, about 60 times a second at most.
  void (*show)() = nullptr;
  // LiveFiguresOld has changed. The frame that makes the figures new is not decoded yet.
  void (*aged)() = nullptr;
  // The port is released, MonitorMode is 0 and the screen is unloaded.
  void (*over)(SessionOver why) = nullptr;
};

// Runs a monitor until it is left: refuses when the port is held, opens the session, sends and
// shows, offers a retry when the link fails. The loop runs at the queue, inside no other yield: a
// call from a yield is put off until then. Whatever ends it, loop control is given back to the
// unit, the port is released, and what nobody has sent (pending offsets, a posted write) is
// dropped; frmerr tells of an entry among it, unless the program ends.
void RunLive(const LiveMonitor& monitor);

// The user leaves: Esc, the button, the close box. Answered with the next pass.
void StopLive();
// Stands in the monitor's unload event.
void LiveScreenUnloaded();
// Key C: changes ClosedLoop at once; the command goes out with the next pass.
void ToggleLoopControl();
// Key K: "K" goes out at once, or behind the command whose answer is awaited, a tenth of a second
// later at most; when the session is given up before, it goes out just before the port is released.
void AskToKillEngine();
// Shows Live without a new frame: keys T and F. Nothing happens before the first frame.
void ShowLiveNow();

// Frames decoded in the session that runs.
long LiveFramesTaken();
// No frame has been taken for a second: the figures do not tell what the engine does now. The
// status bar tells of a unit that does not answer; a box that keeps the loop is seen by itself.
bool LiveFiguresOld();

// What the last complete pair of frames says: the mean of its two speeds, and the injector's times
// at its second frame. All 0 before the first pair of a session.
struct FramePair {
  double erpm = 0;
  double pwOnMs = 0;
  double pwOffMs = 0;
};
const FramePair& LastFramePair();
