// The run-time offsets, what the control unit tells of itself, and the opening of a live session.
#include "link/onfly.h"

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>

#include "core/numbers.h"
#include "link/comm.h"
#include "link/liveframe.h"
#include "platform/dialogs.h"
#include "platform/failure.h"
#include "platform/loop.h"

int PendZeroAdv = 0;
int PendClearZero = 0;
int PendAdv = 0;
int PendGama = 0;
int PendTog = 0;
int PendInj = 0;
int PendTpsBlend = 0;
int PendGpo = 0;
int PendAfr = 0;
int PendEgo = 0;

double OnAdvance = 0;
double OnGama = 0;
double OnTog = 0;
double OnInjOffset = 0;
double OnTpsBlend = 0;
double OnGpo = 0;
double OnAfr = 0;

int OnflyInit = 0;
int TogChanged = 0;
double LastGama = 0;
double AfrOffset = 0;
double GamaNow = 0;
double InjectorOffset = 0;
bool AfrCleared = false;
bool LoopForcedOpen = false;

void ResetOnflyState() {
  for (int* flag : {&PendZeroAdv, &PendClearZero, &PendAdv, &PendGama, &PendTog, &PendInj,
                    &PendTpsBlend, &PendGpo, &PendAfr, &PendEgo, &OnflyInit, &TogChanged})
    *flag = 0;
  for (double* value : {&OnAdvance, &OnGama, &OnTog, &OnInjOffset, &OnTpsBlend, &OnGpo, &OnAfr,
                        &LastGama, &AfrOffset, &GamaNow, &InjectorOffset})
    *value = 0;
  AfrCleared = LoopForcedOpen = false;
}

// ---- the "R" exchange ---------------------------------------------------------------------------

namespace {

enum class Reply { Accepted, Refused, InvalidProm };

// The answer begins behind the value: what has come by then is late, and would be taken for it.
void SendR(char code, int value) {
  MSComm1.Output("R");
  Pause(PauseInCommand);
  MSComm1.Output(std::string_view(&code, 1));
  Pause(PauseInCommand);
  MSComm1.DropInput();
  MSComm1.OutputByte(value);
}

// Time-out and a first byte that is wrong are one failure; a second byte that is wrong means the
// PROM is too old, unless it is not tested.
Reply ExchangeR(char code, int value, bool testSecond = true) {
  MSComm1.RThreshold = 2;
  MSComm1.InputLen = 0;
  RxBuffer.clear();
  SendR(code, value);
  if (PollingWait(WaitForOffset, LoopMustEnd) != WaitEnd::Reply) return Reply::Refused;
  if (RxBuffer[0] != 'A') return Reply::Refused;
  if (!testSecond) return Reply::Accepted;
  if (RxBuffer.size() < 2) return Reply::Refused;
  return RxBuffer[1] == 'X' ? Reply::Accepted : Reply::InvalidProm;
}

// What CommError says of the command that failed.
constexpr float errorGetGama = 1;
constexpr float errorAdvance = 2;
constexpr float errorGama = 3;
constexpr float errorTurn = 4;
constexpr float errorGpo = 5;
constexpr float errorAfr = 6;
constexpr float errorTpsBlend = 7;
constexpr float errorTog = 8;
constexpr float errorInvalidProm = 99;

bool Settle(Reply reply, float code, float promCode) {
  if (reply == Reply::Accepted) return true;
  CommError = reply == Reply::InvalidProm ? promCode : code;
  if (reply == Reply::InvalidProm) PROME();
  return false;
}

bool Settle(Reply reply, float code) { return Settle(reply, code, code); }

}  // namespace

// Each clears its flag before it sends: what is entered while the answer is awaited is the next
// command, and must not be taken for this one.

void ADDADV() {
  PendAdv = 0;
  if (OnflyInit == 1) OnAdvance = 0;
  Settle(ExchangeR('3', AdvanceByte(OnAdvance)), errorAdvance, errorInvalidProm);
}

void gama() {
  PendGama = 0;
  if (OnflyInit != 1) LastGama = OnGama;
  Settle(ExchangeR('4', GamaByte(LastGama)), errorGama);
}

void fik() {
  PendTpsBlend = 0;
  TogChanged = 0;
  Settle(ExchangeR('5', TpsBlendByte(OnTpsBlend)), errorTpsBlend);
}

void turn() {
  PendInj = 0;
  OnInjOffset = InjectorStep(OnflyInit == 1 ? InjectorOffset : OnInjOffset);
  Settle(ExchangeR('6', InjectorByte(OnInjOffset)), errorTurn);
}

void ogpo() {
  PendGpo = 0;
  if (OnflyInit == 1) OnGpo = 0;
  Settle(ExchangeR('7', GpoByte(OnGpo)), errorGpo);
}

void oafr(double value) {
  PendAfr = 0;
  AfrOffset = OnflyInit == 1 ? 0 : RoundEven(Live[LiveField::AfrBase] - value);
  Settle(ExchangeR('O', AfrByte(AfrOffset), false), errorAfr);
}

void settog() {
  PendTog = 0;
  const TogBytes bytes = TogToBytes(OnTog);
  TogChanged = 0;
  if (!Settle(ExchangeR('8', bytes.high), errorTog)) return;
  if (Settle(ExchangeR('9', bytes.low), errorTog)) TogChanged = 1;
}

// ---- commands of their own kind -----------------------------------------------------------------

namespace {

// "R" "U" is the one exchange with a threshold of 1: the second byte of its reply comes a byte time
// after the first, and would stand in front of the next frame.
void TakeSecondByte() {
  constexpr WaitRule shortWait{700, 1, WaitTest::AtLeast};
  WaitEnd end = WaitEnd::Reply;
  while (MSComm1.heard.size() < 2 && end == WaitEnd::Reply) {
    RxBuffer.clear();
    end = PollingWait(shortWait);
  }
}

// The release on leaving is sent when the user is off already: a unit that answers does so within
// milliseconds, and a silent one must not keep the port.
std::function<bool()> LeavingRule() {
  constexpr std::int64_t longEnoughUs = 1'000'000;
  if (MonitorStop != 1) return LoopMustEnd;
  return
      [until = MonotonicMicroseconds() + longEnoughUs] { return MonotonicMicroseconds() >= until; };
}

// A unit that has not said "A" to the release may be in forced open loop still.
void SendLoopControl() {
  const bool release = ClosedLoop;
  RxBuffer.clear();
  if (!release) LoopForcedOpen = true;
  SendR('U', release ? 0 : 255);
  Pause(PauseInCommand);
  MSComm1.RThreshold = 1;
  MSComm1.InputLen = 0;
  if (PollingWait(WaitForOffset, LeavingRule()) != WaitEnd::Reply) return;
  // With a threshold of 1 the second byte may have replaced the first by now.
  if (release && !MSComm1.heard.empty() && MSComm1.heard.front() == 'A') LoopForcedOpen = false;
  TakeSecondByte();
}

void SendUnanswered(std::string_view command, int& pending) {
  pending = 0;
  RxBuffer.clear();
  MSComm1.RThreshold = 1;
  MSComm1.Output(command);
  Pause(PauseInCommand);
  Yield();
}

int HexDigit(long index) {
  const int digit = RxByte(index);
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  RaiseFailure(FailureTypeMismatch);
}

int HexByte(long index) { return HexDigit(index) * 16 + HexDigit(index + 1); }

// The first three data bytes of the line: option flags, gama, injector offset.
void TakeReadBack() {
  if (RxByte(42) != 13) RaiseFailure(FailureTypeMismatch);
  const int flags = HexByte(8);
  const int gamaByte = HexByte(10);
  const int injectorByte = HexByte(12);
  OptionFlags = flags & 248;
  GamaNow = (gamaByte > 127 ? gamaByte - 256 : gamaByte) / 2.7128;
  InjectorOffset = (injectorByte & 127) / 8.0;
  if (injectorByte > 127) InjectorOffset = -InjectorOffset;
}

}  // namespace

void togego() {
  PendEgo = 0;
  try {
    SendLoopControl();
  } catch (const Failure& failure) {
    if (failure.number != FailureCancel)
      MsgBox(FailureText(failure), Buttons::Ok, "Error", BoxIcon::Exclamation);
  }
}

void cleartdc() { SendUnanswered("C", PendClearZero); }
void settdc() { SendUnanswered("Z", PendZeroAdv); }

void KillEngine() {
  MSComm1.Output("K");
  Pause(PauseAfterKill);
}

void getgama() {
  MSComm1.RThreshold = 43;
  MSComm1.InputLen = 43;
  RxBuffer.clear();
  MSComm1.Output("G");
  try {
    if (PollingWait(WaitForOffset, LoopMustEnd) != WaitEnd::Reply) RaiseFailure(FailureDeviceIo);
    TakeReadBack();
  } catch (const Failure&) {
    CommError = errorGetGama;
  }
}

std::optional<LoadedProgram> QueryLoadedProgram() {
  MSComm1.RThreshold = 19;
  MSComm1.InputLen = 0;
  RxBuffer.clear();
  MSComm1.Output("B");
  if (PollingWait(WaitForFrame, LoopMustEnd) != WaitEnd::Reply || RxBuffer.size() < 19)
    return std::nullopt;
  auto text = [](std::size_t first, std::size_t last) -> std::optional<std::string> {
    std::string characters;
    for (std::size_t i = first; i <= last && RxBuffer[i] != 0; ++i) {
      if (RxBuffer[i] < 32 || RxBuffer[i] > 122) return std::nullopt;
      characters += static_cast<char>(RxBuffer[i]);
    }
    return characters;
  };
  const auto name = text(1, 13);
  const auto version = text(14, 18);
  if (!name || !version) return std::nullopt;
  return LoadedProgram{*name, *version};
}

// ---- pending commands ---------------------------------------------------------------------------

namespace {

void SendAfr() { oafr(std::exchange(AfrCleared, false) ? Live[LiveField::AfrBase] : OnAfr); }

}  // namespace

void SendPendingOffsets() {
  struct Row {
    int& pending;
    void (*send)();
  };
  const Row order[] = {
      {PendAdv, ADDADV},   {PendGama, gama},          {PendTog, settog},
      {PendAfr, SendAfr},  {PendGpo, ogpo},           {PendInj, turn},
      {PendTpsBlend, fik}, {PendClearZero, cleartdc}, {PendZeroAdv, settdc},
  };
  for (const Row& row : order) {
    if (CommError != 0 || LoopMustEnd()) return;
    if (row.pending == 1) row.send();
  }
}

// ---- the live session ---------------------------------------------------------------------------

namespace {

bool AllowLoopControl() {
  MSComm1.RThreshold = 2;
  MSComm1.InputLen = 0;
  RxBuffer.clear();
  SendR('U', 0);
  if (PollingWait(WaitForFrame, LoopMustEnd) != WaitEnd::Reply) return false;
  CommError = 0;
  ClosedLoop = true;
  if (RxByte(0) == 'A') LoopForcedOpen = false;
  return true;
}

// What the run-time offsets of a fresh session are: none, or those that the unit holds already.
bool SendOpeningOffsets() {
  OnflyInit = 1;
  const std::array<void (*)(), 5> commands = {ADDADV, gama, turn, ogpo,
                                              [] { oafr(Live.frame[18]); }};
  for (auto command : commands) {
    command();
    if (CommError != 0 || LoopMustEnd()) break;
  }
  OnflyInit = 0;
  return CommError == 0;
}

bool TryOpening(const OnflySession& session) {
  constexpr WaitRule waitAfterClear{32721, 1, WaitTest::Equal};
  MSComm1.DropInput();
  if (!AllowLoopControl()) return false;
  MSComm1.DropInput();
  getgama();
  if (CommError != 0 || LoopMustEnd()) return false;
  cleartdc();
  if (session.logger) PollingWait(waitAfterClear, LoopMustEnd);
  WaitCount = 0;
  return !LoopMustEnd() && SendOpeningOffsets();
}

// Whether there is use in another try; nothing when there is.
std::optional<SessionEnd> NoMoreTries(const OnflySession& session) {
  if (CommError == errorInvalidProm) return SessionEnd::InvalidProm;
  if (MonitorStop == 1 || ProgramEnding()) return SessionEnd::Left;
  if (LinkLost() || session.tries >= SessionTriesAtMost) return SessionEnd::Failed;
  return std::nullopt;
}

SessionEnd TryUntilOpen(OnflySession& session) {
  for (;;) {
    ++session.tries;
    if (TryOpening(session) && !LoopMustEnd()) return SessionEnd::Open;
    if (const auto end = NoMoreTries(session)) return *end;
  }
}

}  // namespace

SessionEnd OpenOnflySession(OnflySession& session) {
  session.tries = 0;
  CommError = 0;
  if (!OpenCommPort(2, 0)) return SessionEnd::Failed;
  PortHeld = true;
  return TryUntilOpen(session);
}

SessionEnd ReopenOnflySession(OnflySession& session) {
  if (const auto end = NoMoreTries(session)) return *end;
  return TryUntilOpen(session);
}
