// The serial dialogue with the control unit: the serial control, the state that every command
// shares, the polling wait, the link test and the screens that tell of a failed link. One thread:
// a reply comes only while a routine waits, and every routine that waits yields.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/port.h"
#include "platform/screen.h"

// ---- the serial control -------------------------------------------------------------------------

// When the bytes came that were heard since the last Output. In microseconds of the clock.
struct HeardTimes {
  std::int64_t sentUs = 0;  // the Output
  std::int64_t firstUs = 0;
  std::int64_t lastUs = 0;
  int arrivals = 0;  // chunks in which they came
};

// A serial port that tells of bytes once a threshold is reached, in binary input. A chunk of bytes
// that comes is one arrival: it raises the receive event when the number of unread bytes is at the
// threshold or above, and bytes left over wait for the next arrival.
struct SerialControl {
  int CommPort = 1;
  std::string Settings = "9600,N,8,1";
  bool PortOpen = false;  // stays true when the device goes, until Close
  int RThreshold = 0;     // 0: the receive event never fires
  int InputLen = 0;       // bytes that Input takes, 0 takes all
  int CommEvent = 0;      // what the event is about; see CommEventRows

  // Opens the device of CommPort with nothing unread. False when it cannot be opened, or is open
  // already; PortTrouble has the reason.
  bool Open();
  void Close();
  // Sends each character as one byte, at once. Nothing happens on a port that is closed or gone.
  void Output(std::string_view bytes);
  void OutputByte(int byte);
  // Takes up to InputLen unread bytes; meant for the receive event.
  std::vector<std::uint8_t> Input();
  // Forgets what is unread, also what has come and was not told yet: a byte that came late must not
  // stand in front of the next answer, whose bytes count by their places.
  void DropInput();

  // Kept by the control.
  PortHandle port = 0;
  bool gone = false;                // the device went while the port was open
  std::deque<std::uint8_t> unread;  // never more than InputBufferSize
  std::vector<std::uint8_t> heard;  // all that came since the last Output, read or not
  HeardTimes times;                 // of `heard`
};

inline constexpr std::size_t InputBufferSize = 1024;

extern SerialControl MSComm1;

// The receive and error event: takes the input into RxBuffer, or shows "Status: " and the event's
// text in the first panel of the status bar.
void MSComm1_OnComm();

enum CommEventNumber : int {
  CommEvSend = 1,
  CommEvReceive = 2,
  CommEvEndOfFile = 7,
  CommEventReceiveOverflow = 1008,
};
// The status text of an event; "Unknown error or event" when it has no row.
std::string CommEventText(int commEvent);

// Shows "Status: " and the text in the first panel of the status bar.
void ShowLinkStatus(const std::string& text);

// ---- the state of the link ----------------------------------------------------------------------

// The last input that was delivered; it replaces the one before. Empty: no reply yet.
extern std::vector<std::uint8_t> RxBuffer;
// Counter of the polling wait that runs, or ran last. Starts as 0.
extern float WaitCount;
// A monitor, the logger, Auto VE or the programmer holds the port. Starts false.
extern bool PortHeld;
// It is held: says so and returns true.
bool RefusedWhilePortHeld();
// 0 when no command has failed, else the code of the one that failed; after programming the
// WaitCount at the failure. Starts as 0.
extern float CommError;
// Why ONFLY refused: 11, 12, 13, or WaitCount after a run-time error. Starts as 0.
extern float OnflyFault;
// 0 while a live loop may run, 1 when the user has asked it to stop. Starts as 0.
extern int MonitorStop;
// MonitorMode of the live session that runs, from its start to its release. Starts as NothingLive.
extern int SessionMode;
// The answer of ComErrorDialog: 0 while it is open. Starts as 0.
extern int DialogChoice;
inline constexpr int RetryComPort = 7;
inline constexpr int CancelSession = 2;
// Why the port could not be opened, or that its device has gone, in words for the user; empty when
// all is well. Starts empty.
extern std::string PortTrouble;
// Writes both panels of the status bar anew. Set by the shell; does nothing until then.
extern void (*RefreshStatusLine)();

// Closes the port and puts every start value back; RefreshStatusLine stays.
void ResetLinkState();

// Byte of RxBuffer; a subscript failure (9) behind its end.
int RxByte(long index);

// ---- waiting ------------------------------------------------------------------------------------

// Gaps between the bytes of a command, in units of 0.1 ms; no yield.
inline constexpr int PauseBeforeProgram = 20;
inline constexpr int PauseAfterTest = 50;
inline constexpr int PauseInCommand = 100;
inline constexpr int PauseInAutoVe = 300;
inline constexpr int PauseAfterKill = 1000;

enum class WaitTest { AtLeast, Equal };

// A limit in passes of the event queue: WaitCount goes up by `step` (stored as a single) with each
// and the wait has failed when it reaches `limit`.
struct WaitRule {
  float limit;
  double step;
  WaitTest test;
};
inline constexpr WaitRule WaitForLinkTest{32767, 0.1, WaitTest::AtLeast};
inline constexpr WaitRule WaitForOffset{32700, 0.1, WaitTest::AtLeast};  // "R" commands and "G"
inline constexpr WaitRule WaitForFrame{32720, 1, WaitTest::Equal};       // also "B", first "R" "U"
inline constexpr WaitRule WaitForOnflyFrame{32767, 1, WaitTest::Equal};  // "F" of Monitor3

enum class WaitEnd { Reply, TimeOut, Left };

// Waits for a reply with WaitCount from 0. Each pass yields, counts, and looks at RxBuffer. Ends as
// Left, which callers take as a time-out, when the link is lost or `left` says that the user is
// off.
WaitEnd PollingWait(const WaitRule& rule, const std::function<bool()>& left = {});

// The port is closed, its device has gone, or the program ends: no reply will come any more.
bool LinkLost();
// The live loop is to stop, or the link is lost.
bool LoopMustEnd();

// ---- routines -----------------------------------------------------------------------------------

// Closes what is open and opens the port of the setting "Comport" at "9600,N,8,1" with this
// threshold and input length. False when it cannot be opened; PortTrouble has the reason.
bool OpenCommPort(int rThreshold, int inputLen);

// Opens the port and tests that a control unit with a valid PROM answers. True at once, and without
// a test, when the port is open. False: the port is closed; PROME has told of an old PROM, and
// PortTrouble is set when the port could not be opened. Yields.
bool ZEMLive();

// Shows the message of the invalid PROM. The event queue runs while it is open.
void PROME();

// Shows `helpfrm` with CommError in its caption and yields until the user has chosen: DialogChoice
// is then RetryComPort or CancelSession. The end of the program and the close box cancel.
void ComErrorDialog();

// The screen of ComErrorDialog, and the one that tells of a memory write that was refused.
extern Screen helpfrm;
extern Screen frmerr;
