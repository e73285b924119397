// Writes of one or two bytes into the running control unit.
#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "core/calfix.h"
#include "core/globalstate.h"
#include "core/numbers.h"
#include "core/s19file.h"
#include "link/comm.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "platform/failure.h"
#include "platform/loop.h"

namespace {

constexpr WaitRule waitForOpening{32767, 0.1, WaitTest::AtLeast};
constexpr WaitRule waitForRecord{10000, 1, WaitTest::Equal};
constexpr WaitRule waitForEnd{32767, 1, WaitTest::Equal};

// Why a write was refused: 11 at the opening, 12 at the record, 13 at its end or by an old PROM.
constexpr float faultOpening = 11;
constexpr float faultRecord = 12;
constexpr float faultEnd = 13;

enum class Write { Accepted, Refused, InvalidProm, Left };

bool RepliedWith(char first, char second) { return RxByte(0) == first && RxByte(1) == second; }

// A command that was sent more than once is answered more than once. The unit answers in turn: all
// of these come before the answer to the next command, and must not be taken for it.
struct LateAnswers {
  char first = 0;
  char second = 0;
  int count = 0;  // at most
};

// Takes them off RxBuffer; whether something else is there. Half an answer behind them goes back to
// the port, where it waits for its other half.
bool MoreThan(LateAnswers& late) {
  const int before = late.count;
  while (late.count > 0 && RxBuffer.size() >= 2 && RepliedWith(late.first, late.second)) {
    --late.count;
    RxBuffer.erase(RxBuffer.begin(), RxBuffer.begin() + 2);
  }
  if (late.count < before && RxBuffer.size() == 1) {
    MSComm1.unread.push_front(RxBuffer.front());
    RxBuffer.clear();
  }
  return !RxBuffer.empty();
}

using LeaveRule = std::function<bool()>;

// Sends again and again until an answer comes. Result: how often; 0 when it was left.
int SendUntilAnswered(const std::function<void()>& send, const WaitRule& rule,
                      const LeaveRule& leave, LateAnswers late = {}) {
  for (int times = 1;; ++times) {
    send();
    while (PollingWait(rule, leave) == WaitEnd::Reply)
      if (MoreThan(late)) return times;
    if (leave()) return 0;
  }
}

// Nobody waits for the write any more, or it is one of a calibration that is not open now. What the
// unit has of it so far changes nothing there.
LeaveRule Unwanted() {
  return [loads = CalibrationLoads] { return LoopMustEnd() || CalibrationLoads != loads; };
}

// The unit carries the write out with its end record: who leaves while the answer is due still
// wants to know whether it has. From now on; one that is silent then is not waited for again.
LeaveRule AnswerIsNotDue() {
  constexpr std::int64_t answerUs = 60'000;
  return [dueUs = MonotonicMicroseconds() + answerUs] {
    return LoopMustEnd() && (LinkLost() || MonotonicMicroseconds() > dueUs);
  };
}

void SendOpening() {
  MSComm1.RThreshold = 2;
  MSComm1.InputLen = 0;
  RxBuffer.clear();
  MSComm1.Output("P");
  Pause(PauseInCommand);
  MSComm1.DropInput();
  MSComm1.Output("2");
  Yield();
  Pause(PauseInCommand);
}

void SendRecord(const std::string& record) {
  RxBuffer.clear();
  MSComm1.Output(record);
  Yield();
}

void SendEndRecord() {
  for (char character : S9Record) MSComm1.Output(std::string_view(&character, 1));
  RxBuffer.clear();
  Yield();
}

Write Refuse(float fault) {
  OnflyFault = fault;
  return Write::Refused;
}

Write WriteRecord(const std::string& record) {
  const LeaveRule unwanted = Unwanted();
  const int openings = SendUntilAnswered(SendOpening, waitForOpening, unwanted);
  if (openings == 0 || unwanted()) return Write::Left;
  if (RxByte(0) != 'A') return Refuse(faultOpening);
  if (RxByte(1) != 'X') {
    OnflyFault = faultEnd;
    return Write::InvalidProm;
  }
  const int records = SendUntilAnswered([&] { SendRecord(record); }, waitForRecord, unwanted,
                                        {'A', 'X', openings - 1});
  if (records == 0 || unwanted()) return Write::Left;
  if (!RepliedWith('P', 'N')) return Refuse(faultRecord);
  if (SendUntilAnswered(SendEndRecord, waitForEnd, AnswerIsNotDue(), {'P', 'N', records - 1}) == 0)
    return Write::Left;
  if (!RepliedWith('P', 'C')) return Refuse(faultEnd);
  return Write::Accepted;
}

Write TryWrite(int index, int count) {
  try {
    return WriteRecord(OnflyRecord(index, count));
  } catch (const Failure&) {
    return Refuse(WaitCount);
  }
}

// Tells the user of a write that the control unit did not take.
Write WriteAndTell(int index, float count) {
  const Write write = TryWrite(index, static_cast<int>(count));
  if (write == Write::Refused || write == Write::InvalidProm) ShowScreen(frmerr);
  if (write == Write::InvalidProm) PROME();
  return write;
}

// The GPO word is stored by its own screen.
bool BelongsToItsScreen(int index) { return index == 244 || index == 245; }

struct PostedWrite {
  int calIndex;
  double value;
  int imageIndex;
  float count;
  StoreRoutine store;
  long loads;
  std::array<std::int16_t, 2> bytes;
};

bool InImage(int index) { return index >= 0 && index < static_cast<int>(BinImage.size()); }

// Taken off before it is sent: what an editor posts meanwhile is the next write, and its value must
// not be stored for this one.
PostedWrite TakePosted() {
  PostedWrite posted{OnflyCalIndex, OnflyValue, OnflyImageIndex, OnflyByteCount, OnflyStore,
                     OnflyLoads,    {}};
  for (int i = 0; i < 2; ++i)
    if (InImage(posted.imageIndex + i))
      posted.bytes[static_cast<std::size_t>(i)] =
          BinImage[static_cast<std::size_t>(posted.imageIndex + i)];
  OnflyImageIndex = 0;
  OnflyByteCount = 0;
  return posted;
}

// The session has ended in the middle. Should it be taken up again, the write goes out then; a save
// may have encoded the image anew meanwhile.
void PostAgain(const PostedWrite& posted) {
  const int count = static_cast<int>(posted.count);
  for (int i = 0; i < std::min(count, 2); ++i)
    if (InImage(posted.imageIndex + i))
      BinImage[static_cast<std::size_t>(posted.imageIndex + i)] =
          posted.bytes[static_cast<std::size_t>(i)];
  PostWrite(posted.calIndex, posted.value, posted.imageIndex, count, posted.store);
}

// A save may have cleared CalChanged since the entry.
void StoreAccepted(const PostedWrite& posted) {
  if (!BelongsToItsScreen(posted.imageIndex))
    ElementAt(std::span<float>(CalValues), posted.calIndex) = static_cast<float>(posted.value);
  else if (posted.store)
    posted.store(posted.calIndex, posted.value);
  else
    return;
  CalChanged = true;
}

void AwaitFrames() {
  MSComm1.RThreshold = static_cast<int>(LiveFrameLength);
  MSComm1.InputLen = 0;
}

// Another calibration has been opened since it was posted: its value is not for that one.
Transfer Disown() {
  ShowScreen(frmerr);
  RefreshActiveEditor();
  AwaitFrames();
  return Transfer::Refused;
}

}  // namespace

std::string OnflyRecord(int index, int count) {
  std::array<std::int16_t, 2> bytes{};
  for (int i = 0; i < count; ++i) {
    const int byte = ElementAt<std::int16_t>(std::span(BinImage).first<512>(), index + i);
    if (byte < 0 || byte > 255) RaiseFailure(FailureOverflow);
    ElementAt<std::int16_t>(bytes, i) = static_cast<std::int16_t>(byte);
  }
  return S1Record(CalibrationAddress + static_cast<unsigned>(index),
                  std::span(bytes).first(static_cast<std::size_t>(count)));
}

void ONFLY(int index, float count, float& result) {
  result = 1;
  if (WriteAndTell(index, count) == Write::Accepted) result = BelongsToItsScreen(index) ? 2 : 0;
}

Transfer TransferPostedWrite() {
  if (!(OnflyByteCount > 0)) return Transfer::Nothing;
  const PostedWrite posted = TakePosted();
  const WriteBeingSent mark(posted.calIndex, posted.loads);
  if (posted.loads != CalibrationLoads) return Disown();
  const Write write = WriteAndTell(posted.imageIndex, posted.count);
  if (posted.loads != CalibrationLoads) return Disown();
  if (write == Write::Left && !(OnflyByteCount > 0)) PostAgain(posted);
  if (write == Write::Accepted) {
    StoreAccepted(posted);
    RefreshActiveEditor();
  }
  AwaitFrames();
  if (write == Write::Left) return Transfer::Unsent;
  if (write != Write::Accepted) return Transfer::Refused;
  return BelongsToItsScreen(posted.imageIndex) ? Transfer::Written : Transfer::Stored;
}
