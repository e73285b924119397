// The serial control, the receive event, the polling wait and the link test.
#include "link/comm.h"

#include <algorithm>
#include <span>
#include <utility>

#include "core/globalstate.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "platform/dialogs.h"
#include "platform/frame.h"
#include "platform/loop.h"

SerialControl MSComm1;
std::vector<std::uint8_t> RxBuffer;
float WaitCount = 0;
bool PortHeld = false;
float CommError = 0;
float OnflyFault = 0;
int MonitorStop = 0;
int SessionMode = NothingLive;
int DialogChoice = 0;
std::string PortTrouble;
void (*RefreshStatusLine)() = [] {};

namespace {

struct CommEventRow {
  int number;
  const char* text;
};
constexpr CommEventRow commEventRows[] = {
    {3, "Change in CTS Detected"},
    {4, "Change in DSR Detected"},
    {5, "Change in CD Detected"},
    {6, "The Phone is Ringing"},
    {1001, "Break Received"},
    {1002, "CTS Timeout"},
    {1003, "DSR Timeout"},
    {1004, "Framing Error"},
    {1006, "Overrun Error"},
    {1007, "Carrier Detect Timeout"},
    {CommEventReceiveOverflow, "Receive Buffer Overflow"},
    {1009, "Parity Error"},
    {1010, "Transmit Buffer Full"},
    {1011, "Error retrieving DCB"},
};

void Raise(int commEvent) {
  MSComm1.CommEvent = commEvent;
  MSComm1_OnComm();
}

void NoteTime(HeardTimes& times) {
  times.lastUs = MonotonicMicroseconds();
  if (times.arrivals++ == 0) times.firstUs = times.lastUs;
}

void TakeArrival(std::span<const std::uint8_t> bytes) {
  NoteTime(MSComm1.times);
  const std::size_t room = InputBufferSize - std::min(InputBufferSize, MSComm1.unread.size());
  const auto fitting = bytes.first(std::min(room, bytes.size()));
  MSComm1.unread.insert(MSComm1.unread.end(), fitting.begin(), fitting.end());
  if (MSComm1.heard.size() < InputBufferSize)
    MSComm1.heard.insert(MSComm1.heard.end(), fitting.begin(), fitting.end());
  if (MSComm1.RThreshold > 0 &&
      MSComm1.unread.size() >= static_cast<std::size_t>(MSComm1.RThreshold))
    Raise(CommEvReceive);
  if (fitting.size() < bytes.size()) Raise(CommEventReceiveOverflow);
}

void NoteGone(const std::string& why) {
  if (MSComm1.gone) return;
  MSComm1.gone = true;
  PortTrouble = why;
  ShowLinkStatus(why);
}

}  // namespace

// ---- the serial control -------------------------------------------------------------------------

bool SerialControl::Open() {
  if (PortOpen) {
    PortTrouble = "The port is open already.";
    return false;
  }
  PortResult result = OpenPort(DeviceOfPort(CommPort), Settings,
                               {.received = TakeArrival, .disconnected = NoteGone, .line = Raise});
  PortTrouble = result.why;
  if (result.port == 0) return false;
  port = result.port;
  PortOpen = true;
  gone = false;
  unread.clear();
  heard.clear();
  times = {.sentUs = MonotonicMicroseconds()};
  return true;
}

void SerialControl::Close() {
  if (!PortOpen) return;
  PortOpen = false;
  gone = false;
  unread.clear();
  heard.clear();
  ClosePort(std::exchange(port, 0));
}

void SerialControl::Output(std::string_view bytes) {
  heard.clear();
  times = {.sentUs = MonotonicMicroseconds()};
  if (!PortOpen || gone) return;
  const std::vector<std::uint8_t> raw(bytes.begin(), bytes.end());
  if (!WritePort(port, raw)) NoteGone("The serial port does not take any more data.");
}

void SerialControl::OutputByte(int byte) {
  const char character = static_cast<char>(static_cast<std::uint8_t>(byte));
  Output(std::string_view(&character, 1));
}

std::vector<std::uint8_t> SerialControl::Input() {
  const std::size_t most = InputLen > 0 ? static_cast<std::size_t>(InputLen) : unread.size();
  const auto end = unread.begin() + static_cast<std::ptrdiff_t>(std::min(most, unread.size()));
  std::vector<std::uint8_t> taken(unread.begin(), end);
  unread.erase(unread.begin(), end);
  return taken;
}

void SerialControl::DropInput() {
  unread.clear();
  if (PortOpen && !gone) DiscardInput(port);
}

std::string CommEventText(int commEvent) {
  for (const CommEventRow& row : commEventRows)
    if (row.number == commEvent) return row.text;
  return "Unknown error or event";
}

void ShowLinkStatus(const std::string& text) {
  if (Frame* frame = TheFrame()) SetStatusPanel(*frame, 0, "Status: " + text);
}

void MSComm1_OnComm() {
  switch (MSComm1.CommEvent) {
    case CommEvReceive:
      RxBuffer = MSComm1.Input();
      return;
    case CommEvSend:
    case CommEvEndOfFile:
      return;
    default:
      ShowLinkStatus(CommEventText(MSComm1.CommEvent));
  }
}

// ---- state --------------------------------------------------------------------------------------

void ResetLinkState() {
  MSComm1.Close();
  MSComm1 = SerialControl{};
  RxBuffer.clear();
  WaitCount = 0;
  PortHeld = false;
  CommError = 0;
  OnflyFault = 0;
  MonitorStop = 0;
  SessionMode = NothingLive;
  DialogChoice = 0;
  PortTrouble.clear();
}

int RxByte(long index) { return ElementAt(std::span(RxBuffer), index); }

bool RefusedWhilePortHeld() {
  if (!PortHeld) return false;
  MsgBox("Port is already in use by another process.");
  return true;
}

// ---- waiting ------------------------------------------------------------------------------------

bool LinkLost() { return !MSComm1.PortOpen || MSComm1.gone || ProgramEnding(); }

bool LoopMustEnd() { return MonitorStop == 1 || LinkLost(); }

namespace {

bool LimitReached(const WaitRule& rule) {
  return rule.test == WaitTest::Equal ? WaitCount == rule.limit : WaitCount >= rule.limit;
}

// Goes on from the WaitCount that stands.
WaitEnd ContinueWait(const WaitRule& rule, const std::function<bool()>& left) {
  for (;;) {
    Yield();
    WaitCount = static_cast<float>(WaitCount + rule.step);
    if (!RxBuffer.empty()) return WaitEnd::Reply;
    if (LimitReached(rule)) return WaitEnd::TimeOut;
    if (LinkLost() || (left && left())) return WaitEnd::Left;
  }
}

}  // namespace

WaitEnd PollingWait(const WaitRule& rule, const std::function<bool()>& left) {
  WaitCount = 0;
  return ContinueWait(rule, left);
}

// ---- routines -----------------------------------------------------------------------------------

bool OpenCommPort(int rThreshold, int inputLen) {
  MSComm1.Close();
  MSComm1.CommPort = ReadSetting("Options", "Comport");
  MSComm1.Settings = "9600,N,8,1";
  MSComm1.RThreshold = rThreshold;
  MSComm1.InputLen = inputLen;
  return MSComm1.Open();
}

namespace {

// The bytes of a reply can come a byte time apart, each with an event of its own that replaces
// RxBuffer; what was heard since the command has them together.
bool HeardReply(std::size_t length, const WaitRule& rule) {
  WaitCount = 0;
  while (ContinueWait(rule, {}) == WaitEnd::Reply) {
    if (MSComm1.heard.size() >= length) return true;
    if (MSComm1.heard.empty() || MSComm1.heard.front() != 'A') return false;
    RxBuffer.clear();
  }
  return false;
}

}  // namespace

bool ZEMLive() {
  if (MSComm1.PortOpen) return true;
  if (!OpenCommPort(1, 2)) return false;
  RxBuffer.clear();
  MSComm1.Output("E");
  Pause(PauseAfterTest);
  const bool replied = HeardReply(2, WaitForLinkTest) && MSComm1.heard[0] == 'A';
  if (replied && MSComm1.heard[1] == 'X') return true;
  MSComm1.Close();
  if (replied) PROME();
  return false;
}

void PROME() {
  MsgBox(
      " SOFTWARE CONFIGUATION ERROR\n\r"
      " You may have the Incorrect PROM Version Installed.\n\r"
      "\n\r"
      " PROM Version HV201xx or Greater Required.",
      Buttons::Ok, "INVALID PROM ERROR", BoxIcon::Critical);
}
