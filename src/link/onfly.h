// Changing the control unit while the engine runs: run-time offsets, the opening of a live session,
// and writes into its memory. Only a live loop calls these, between two frames; a screen stores a
// value and sets the pending flag. All of them yield while they wait; after one of them look again
// at MonitorStop, the screen and the port.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// ---- what screens ask for -----------------------------------------------------------------------

// Pending flags: 1 while a command waits to be sent, 0 otherwise. Start as 0.
extern int PendZeroAdv;
extern int PendClearZero;
extern int PendAdv;
extern int PendGama;
extern int PendTog;
extern int PendInj;
extern int PendTpsBlend;
extern int PendGpo;
extern int PendAfr;
extern int PendEgo;

// Their values. Start as 0.
extern double OnAdvance;    // degrees, -10 to 10
extern double OnGama;       // a fraction, -0.4 to 0.4
extern double OnTog;        // ms, 3 to 30
extern double OnInjOffset;  // ms, -15.875 to 15.875; `turn` rounds it to eighths
extern double OnTpsBlend;   // V, 0 to 1.5
extern double OnGpo;        // %, -30 to 30
extern double OnAfr;        // raw, 0 to 255

// With PendAfr: the offset is to be cleared whatever byte 19 is by then, instead of OnAfr. Starts
// false.
extern bool AfrCleared;
// "R" "U" 255 was sent, and no release has been accepted since. Starts false.
extern bool LoopForcedOpen;

// 1 while a session sends its opening commands. Starts as 0.
extern int OnflyInit;
// 1 after a `settog` that was accepted; 0 after one that failed and after any `fik`. Starts as 0.
extern int TogChanged;
// What was sent last: the gama offset (a fraction), and offset D of the desired air/fuel ratio.
extern double LastGama;
extern double AfrOffset;
// Read back by `getgama`: gama now in %, injector offset in ms. OptionFlags is in liveframe.h.
extern double GamaNow;
extern double InjectorOffset;

void ResetOnflyState();

// ---- run-time offsets ---------------------------------------------------------------------------

// Each clears its pending flag, sends its value (none but togego when the session has failed) and
// waits for the answer; a flag that is set again meanwhile stays for the next pass. CommError keeps
// its value on success and takes the command's code on failure: getgama 1, ADDADV 2 (99: invalid
// PROM), gama 3, turn 4, ogpo 5, oafr 6, fik 7, settog 8.
void getgama();
void ADDADV();
void gama();
void turn();
void ogpo();
void oafr(double value);
void fik();
void settog();
// "R" "U" by ClosedLoop. No code: a time-out is passed over. While the loop is to stop (the release
// on leaving) it waits for the answer for a second at most.
void togego();
void cleartdc();
void settdc();
// Sends "K".
void KillEngine();

// Sends what is pending, all but togego, in the order of the loops: ADDADV, gama, settog, oafr,
// ogpo, turn, fik, cleartdc, settdc. Stops when CommError is not 0 or the loop must end; the rest
// stays pending.
void SendPendingOffsets();

// The bytes that stand for a value.
int AdvanceByte(double degrees);
int GamaByte(double fraction);
int TpsBlendByte(double volts);
double InjectorStep(double ms);  // rounded to eighths, as it is kept
int InjectorByte(double ms);
int GpoByte(double percent);
int AfrByte(double offset);
struct TogBytes {
  int high;
  int low;
};
TogBytes TogToBytes(double ms);

// ---- the live session ---------------------------------------------------------------------------

enum class SessionEnd {
  Open,         // go on with frames
  Left,         // MonitorStop is 1, or the program ends
  InvalidProm,  // CommError is 99; the session ends, PROME has told
  Failed,  // ten tries are over or the port is lost or cannot be opened: ComErrorDialog is next
};
inline constexpr int SessionTriesAtMost = 10;

struct OnflySession {
  bool logger = false;  // waits for a reply after cleartdc
  int tries = 0;        // openings so far
};

// Opens the port, holds it (PortHeld), and goes through the opening commands until they succeed or
// there is no use in it. The caller has set MonitorStop to 0. Whatever the result, the port stays
// as it is for the caller to close and release. ClosedLoop is true after it: the opening allows
// loop control.
SessionEnd OpenOnflySession(OnflySession& session);
// After a failure in the loop (CommError is not 0): the same from the second step on, unless the
// session has used up its tries.
SessionEnd ReopenOnflySession(OnflySession& session);

// What the control unit says of the program that it holds ("B").
struct LoadedProgram {
  std::string binName;      // without ".BIN"
  std::string promVersion;  // without "HV"
};
// Nothing on a time-out and when a character is none of a name ("BIN File Not Available").
std::optional<LoadedProgram> QueryLoadedProgram();

// ---- memory writes ------------------------------------------------------------------------------

// Writes `count` (1 or 2) bytes of BinImage from `index` into the running control unit. `result`:
// 0 accepted, 2 accepted and `index` is 244 or 245, 1 not accepted: frmerr is shown and OnflyFault
// has the reason. A silent unit is asked again without end, until LoopMustEnd or another
// calibration is opened: `result` is 1 then, without a screen.
void ONFLY(int index, float count, float& result);

// The record that carries these bytes; a bounds failure (9) behind the image, overflow (6) when one
// of them is no byte.
std::string OnflyRecord(int index, int count);

enum class Transfer { Nothing, Stored, Written, Refused, Unsent };
// Sends the posted write, if there is one, and takes it off. Stored: CalValues has the value,
// CalChanged is set and RefreshActiveEditor has run; Written: the same, but bytes 244 and 245
// belong to their screen, and OnflyStore has stored; Refused: nothing is stored; Unsent: the loop
// is to end, and the write is posted still, unless a later one has taken its place. The port is set
// for frames again.
Transfer TransferPostedWrite();
