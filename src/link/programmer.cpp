// The programming session, from the link test to the last record.
#include "link/programmer.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "core/binfile.h"
#include "core/globalstate.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/s19file.h"
#include "link/comm.h"
#include "link/programscreen.h"
#include "platform/failure.h"
#include "platform/files.h"
#include "platform/loop.h"

namespace {

// Steps of a tenth never land on these limits, so that each wait ends with a reply, with the link
// or with the user.
constexpr WaitRule waitForOpening{32766, 0.1, WaitTest::Equal};
constexpr WaitRule waitForRecord{32721, 0.1, WaitTest::Equal};
constexpr WaitRule waitForReopening{32745, 0.1, WaitTest::Equal};
constexpr int lastTry = 4;  // counted from 0
constexpr std::size_t longestRecord = 44;

// How a session can end.
enum class Ending {
  Verified,
  ChecksumError,
  NoUnit,  // the link test failed, which has told of an old PROM
  OldProm,
  Failed,  // the link is lost or the unit says something else
  Left,    // the user is off, everything is closed
};

FileHandle s19File = 0;
// Counts the times that the screen was left: a session that finds it changed is over.
unsigned timesLeft = 0;

void CloseS19() { CloseFile(std::exchange(s19File, 0)); }

void ReleasePort() {
  MSComm1.Close();
  PortHeld = false;
}

void CleanUp() {
  KillFirst = false;
  CloseS19();
  ReleasePort();
}

// ---- one session --------------------------------------------------------------------------------

// What a step says: go on, or the session is over.
using Step = std::optional<Ending>;
constexpr Step goOn = std::nullopt;

struct Session {
  unsigned startedAt = timesLeft;
  int record = 0;
  std::string text;  // of the record

  bool Left() const { return timesLeft != startedAt || ProgramEnding(); }
  Ending LostOrLeft() const { return Left() ? Ending::Left : Ending::Failed; }
};

// The reply to "P" "1".
Step TakeOpening(const Session& session, const WaitRule& rule) {
  if (PollingWait(rule) != WaitEnd::Reply) return session.LostOrLeft();
  if (session.Left()) return Ending::Left;
  if (RxByte(0) != 'A') return Ending::Failed;
  if (RxByte(1) != 'X') return Ending::OldProm;
  return goOn;
}

Step OpenProgramming(const Session& session) {
  RxBuffer.clear();
  MSComm1.RThreshold = 2;
  MSComm1.Output("P");
  Pause(PauseBeforeProgram);
  MSComm1.Output("1");
  Yield();
  return TakeOpening(session, waitForOpening);
}

// After a refused record. The refusal is cleared first, so that it is not taken for the answer.
Step ReopenProgramming(const Session& session) {
  RxBuffer.clear();
  MSComm1.Output("P");
  MSComm1.Output("1");
  return TakeOpening(session, waitForReopening);
}

bool IsLineEnd(int character) { return character == 13 || character == 10; }

// The next record: from its "S" to the end of its line. Line ends between records are skipped.
std::string ReadRecord() {
  int character = ReadCharacter(s19File);
  while (character != 'S') character = ReadCharacter(s19File);
  std::array<char, longestRecord> record{};
  long length = 0;
  for (; !IsLineEnd(character); character = ReadCharacter(s19File))
    ElementAt<char>(record, length++) = static_cast<char>(character);
  return std::string(record.data(), static_cast<std::size_t>(length));
}

enum class RecordAnswer { Next, Complete, Refused };

// Sends the record and takes its answer; an Ending when there is none that could be one.
std::optional<Ending> SendRecord(const Session& session, RecordAnswer& answer) {
  RxBuffer.clear();
  for (char character : session.text) MSComm1.Output(std::string_view(&character, 1));
  Yield();
  if (PollingWait(waitForRecord) != WaitEnd::Reply) return session.LostOrLeft();
  if (session.Left()) return Ending::Left;
  if (RxByte(0) != 'P') return Ending::Failed;
  const int second = RxByte(1);
  answer = second == 'N'   ? RecordAnswer::Next
           : second == 'C' ? RecordAnswer::Complete
                           : RecordAnswer::Refused;
  return goOn;
}

// Brings one record in, in up to five tries. Verified with the answer to the last.
Step ProgramRecord(const Session& session) {
  for (int attempt = 0;; ++attempt) {
    ShowRecord(session.record, attempt + 1, FilePosition(s19File), FileLength(s19File));
    RecordAnswer answer = RecordAnswer::Refused;
    if (const Step end = SendRecord(session, answer)) return end;
    if (answer == RecordAnswer::Next) return goOn;
    if (answer == RecordAnswer::Complete) return Ending::Verified;
    if (attempt >= lastTry) return Ending::ChecksumError;
    if (const Step end = ReopenProgramming(session)) return end;
  }
}

Ending Program() {
  Session session;
  WaitCount = 0;
  PortTrouble.clear();
  PortHeld = true;
  const bool live = ZEMLive();
  if (session.Left()) return Ending::Left;
  if (!live) return PortTrouble.empty() ? Ending::NoUnit : Ending::Failed;
  if (KillFirst) {
    MSComm1.Output("K");
    Pause(PauseAfterKill);
  }
  s19File = OpenFile(S19Path(CurrentBinPath), FileMode::Read);
  if (const Step end = OpenProgramming(session)) return *end;
  for (;;) {
    session.text = ReadRecord();
    ++session.record;
    if (const Step end = ProgramRecord(session)) return *end;
  }
}

// ---- how it ends --------------------------------------------------------------------------------

// A call from the editors takes the screen away at once, and the live session that follows must not
// hide that the unit has no complete calibration.
void ShowEnd(Ending ending) {
  ShowResult(ending == Ending::Verified);
  if (KillFirst) {
    if (ending == Ending::ChecksumError)
      ShowLinkStatus("CHECKSUM ERROR, the ZEM is not programmed");
    CloseS19();
    KillFirst = false;
  } else {
    ShowExitHint();
  }
}

// The failure screen; whether the user wants another session.
bool AsksForRetry() {
  CloseS19();
  ReleasePort();
  CommError = WaitCount;
  HideScreen(Program_ZEM);
  const unsigned before = timesLeft;
  ComErrorDialog();
  if (timesLeft != before) return false;
  if (DialogChoice == RetryComPort) return true;
  LeaveProgram_ZEM();
  return false;
}

// Result: whether the session starts again.
bool ProgramOnce() {
  ShowTitle();
  const Ending ending = Program();
  switch (ending) {
    case Ending::Verified:
    case Ending::ChecksumError:
      ShowEnd(ending);
      return false;
    case Ending::NoUnit:
      CleanUp();
      if (RxBuffer.empty())
        ShowLinkStatus("No answer from the ZEM on COM" + std::to_string(MSComm1.CommPort));
      return false;
    case Ending::OldProm:
      CleanUp();
      PROME();
      return false;
    case Ending::Failed:
      if (!AsksForRetry()) return false;
      ShowScreen(Program_ZEM);
      return true;
    case Ending::Left:
      if (ProgramEnding()) CleanUp();
      return false;
  }
  return false;
}

bool HasCalibration() {
  if (CurrentBinPath.empty()) OpenCalibration();
  return !CurrentBinPath.empty();
}

}  // namespace

void StopProgramming() {
  ++timesLeft;
  CleanUp();
}

void programT() {
  try {
    if (!HasCalibration()) {
      UnloadScreen(Program_ZEM);
      return;
    }
    while (IsUp(Program_ZEM) && ProgramOnce()) {
    }
  } catch (const Failure& failure) {
    CleanUp();
    ShowFailure(failure);
  }
}

void OpenProgram_ZEM() {
  if (YieldDepth() > 0) {
    RunFromQueue(OpenProgram_ZEM);
    return;
  }
  if (RefusedWhilePortHeld()) return;
  const bool fromEditor = KillFirst;
  ShowScreen(Program_ZEM);
  programT();
  if (fromEditor) UnloadScreen(Program_ZEM);
}
