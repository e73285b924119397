// The command protocol, byte by byte, as the control unit's side sees it.
#include "simulator/zem.h"

#include <array>
#include <cstdio>
#include <utility>

namespace sim {
namespace {

constexpr std::size_t HistoryLength = 256;
constexpr int NameIndex = 449;
constexpr std::size_t NameLength = 13;
constexpr std::size_t VersionLength = 5;
constexpr int ReadBackAddress = 0x0040;  // the control unit's own memory, where the offsets live
constexpr int LongestWrite = 2;

std::string Hex(std::initializer_list<int> bytes) {
  std::string text;
  for (int byte : bytes) {
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%02X", static_cast<unsigned>(byte) & 255u);
    text += digits.data();
  }
  return text;
}

bool IsOffsetCode(std::uint8_t byte) {
  return (byte >= '3' && byte <= '9') || byte == 'O' || byte == 'U';
}

}  // namespace

Zem::Zem(ZemSettings settings, const Image& image)
    : settings_(std::move(settings)), memory_(image), engine_(image, settings_.seed) {
  if (!settings_.paced) toZem_.byteTicks = toPc_.byteTicks = 0;
}

void Zem::Receive(std::uint8_t byte, std::int64_t nowUs) {
  if (plugged_) toZem_.Put(byte, nowUs * TicksPerUs);
}

void Zem::Receive(std::string_view bytes, std::int64_t nowUs) {
  for (char byte : bytes) Receive(static_cast<std::uint8_t>(byte), nowUs);
}

std::optional<std::int64_t> Zem::SilenceTicks() const {
  if (expect_ == Expect::Command) return std::nullopt;
  const std::int64_t pauseUs = expect_ == Expect::RecordRest ? QuietUs : SilenceUs;
  return lastHeardTicks_ + pauseUs * TicksPerUs;
}

std::optional<std::int64_t> Zem::NextEventUs() const {
  std::optional<std::int64_t> next;
  for (const auto& ticks : {toZem_.NextTicks(), toPc_.NextTicks(), SilenceTicks()}) {
    if (ticks && (!next || *ticks < *next)) next = ticks;
  }
  if (next) next = UsFromTicks(*next);
  return next;
}

std::vector<TimedByte> Zem::Advance(std::int64_t nowUs) {
  Process(nowUs * TicksPerUs);
  std::vector<TimedByte> arrived;
  while (!toPc_.bytes.empty() && toPc_.bytes.front().atTicks <= nowTicks_) {
    const Wire::Item item = toPc_.bytes.front();
    toPc_.bytes.pop_front();
    arrived.push_back({item.value, UsFromTicks(item.atTicks)});
  }
  return arrived;
}

void Zem::Process(std::int64_t ticks) {
  for (;;) {
    const auto byte = toZem_.NextTicks();
    const auto silence = SilenceTicks();
    if (silence && *silence <= ticks && (!byte || *silence < *byte)) {
      nowTicks_ = std::max(nowTicks_, *silence);
      EndOnSilence();
    } else if (byte && *byte <= ticks) {
      nowTicks_ = std::max(nowTicks_, *byte);
      lastHeardTicks_ = nowTicks_;
      const std::uint8_t value = toZem_.bytes.front().value;
      toZem_.bytes.pop_front();
      Hear(value);
    } else {
      break;
    }
  }
  nowTicks_ = std::max(nowTicks_, ticks);
  engine_.AdvanceTo(nowTicks_ / TicksPerUs);
}

void Zem::Hear(std::uint8_t byte) {
  if (faults_.Echoes()) toPc_.Put(byte, nowTicks_);
  switch (expect_) {
    case Expect::Command:
      return HearCommand(byte);
    case Expect::OffsetCode:
      return HearOffsetCode(byte);
    case Expect::OffsetValue:
      expect_ = Expect::Command;
      return SetOffset(offsetCode_, byte);
    case Expect::MemoryCode:
      return HearMemoryCode(byte);
    case Expect::RecordText:
      return HearRecord(byte);
    case Expect::RecordRest:
      return;
  }
}

void Zem::HearCommand(std::uint8_t byte) {
  switch (byte) {
    case 'E':
      if (Begins("E")) AnswerAccepted("E");
      break;
    case 'F':
      return AnswerFrame();
    case 'G':
      return AnswerReadBack();
    case 'B':
      return AnswerName();
    case 'K':
      if (Begins("K")) engine_.Kill();
      break;
    case 'C':
      if (Begins("C")) engine_.offsets.zeroAdvance = false;
      break;
    case 'Z':
      if (Begins("Z")) engine_.offsets.zeroAdvance = true;
      break;
    case 'R':
      expect_ = Expect::OffsetCode;
      break;
    case 'P':
      expect_ = Expect::MemoryCode;
      break;
    case 'S':
      reader_.Begin();
      expect_ = Expect::RecordText;
      break;
    default:
      break;  // noise
  }
}

// A byte that does not go on with what was begun begins something new: the PC may have given up
// in the middle and started over.
void Zem::HearOffsetCode(std::uint8_t byte) {
  expect_ = Expect::Command;
  if (!IsOffsetCode(byte)) return HearCommand(byte);
  offsetCode_ = byte;
  expect_ = Expect::OffsetValue;
}

void Zem::HearMemoryCode(std::uint8_t byte) {
  expect_ = Expect::Command;
  if (byte == '1') return OpenProgramming();
  if (byte == '2') return OpenWriting();
  HearCommand(byte);
}

void Zem::HearRecord(std::uint8_t byte) {
  switch (reader_.Feed(byte)) {
    case RecordReader::Step::More:
      return;
    case RecordReader::Step::NoRecord:
      expect_ = Expect::Command;
      return HearCommand(byte);
    case RecordReader::Step::Complete:
      expect_ = Expect::Command;
      return TakeRecord();
  }
}

// A record that was cut or damaged on its way is refused, so that the PC can send it again; half a
// command is forgotten.
void Zem::EndOnSilence() {
  const bool record = expect_ == Expect::RecordText || expect_ == Expect::RecordRest;
  expect_ = Expect::Command;
  if (record && mode_ != Mode::Running && Begins("S")) Refuse("S");
}

// Notes a command that is complete; false when a fault keeps the ZEM from hearing it.
bool Zem::Begins(std::string_view command, std::string_view detail) {
  engine_.AdvanceTo(nowTicks_ / TicksPerUs);
  if (faults_.Unplugs(command)) Unplug();
  if (!plugged_ || !faults_.Hears(command)) return false;
  if (!command.starts_with('S')) EndWriting();
  std::string entry(command);
  if (!detail.empty()) entry.append(" ").append(detail);
  history_.push_back(std::move(entry));
  if (history_.size() > HistoryLength) history_.pop_front();
  return true;
}

// Any other command ends a memory write that was not finished.
void Zem::EndWriting() {
  completed_ = false;
  if (mode_ == Mode::Writing) mode_ = Mode::Running;
}

void Zem::AnswerFrame() {
  if (!Begins("F")) return;
  const LiveBytes frame = engine_.Frame();
  Answer("F", {frame.begin(), frame.end()});
}

// An S1 line of sixteen bytes: option flags, gama and injector offset, then the other offsets.
void Zem::AnswerReadBack() {
  if (!Begins("G")) return;
  const Offsets& o = engine_.offsets;
  const std::array<int, 16> data = {memory_[0],
                                    GamaReadBack(o.gama),
                                    o.injector,
                                    o.advance,
                                    o.tpsBlend,
                                    o.togHigh,
                                    o.togLow,
                                    o.gpo,
                                    o.afr,
                                    o.openLoop ? 255 : 0,
                                    o.zeroAdvance ? 255 : 0};
  const int count = static_cast<int>(data.size()) + 3;
  int sum = count + (ReadBackAddress >> 8) + (ReadBackAddress & 255);
  std::string line = "S1" + Hex({count, ReadBackAddress >> 8, ReadBackAddress & 255});
  for (int byte : data) {
    line += Hex({byte});
    sum += byte;
  }
  line += Hex({~sum}) + '\r';
  Answer("G", line);
}

void Zem::AnswerName() {
  if (!Begins("B")) return;
  std::string text(1 + NameLength + VersionLength, '\0');
  text[0] = 'B';
  for (std::size_t i = 0; i < NameLength && memory_[NameIndex + i] != 0; ++i) {
    text[1 + i] = static_cast<char>(memory_[NameIndex + i]);
  }
  const std::string version = settings_.oldProm ? "10402" : settings_.promVersion;
  for (std::size_t i = 0; i < std::min(VersionLength, version.size()); ++i) {
    text[1 + NameLength + i] = version[i];
  }
  Answer("B", text);
}

void Zem::SetOffset(std::uint8_t code, std::uint8_t value) {
  const std::string command = {'R', static_cast<char>(code)};
  if (!Begins(command, Hex({value}))) return;
  Offsets& offsets = engine_.offsets;
  switch (code) {
    case '3':
      offsets.advance = value;
      break;
    case '4':
      offsets.gama = value;
      break;
    case '5':
      offsets.tpsBlend = value;
      break;
    case '6':
      offsets.injector = value;
      break;
    case '7':
      offsets.gpo = value;
      break;
    case '8':
      offsets.togHigh = value;
      break;
    case '9':
      offsets.togLow = value;
      break;
    case 'O':
      offsets.afr = value;
      break;
    case 'U':
      offsets.openLoop = value != 0;
      break;
    default:
      break;
  }
  AnswerAccepted(command);
}

void Zem::OpenProgramming() {
  if (!Begins("P1")) return;
  // After a refused record the same programming goes on.
  if (mode_ != Mode::Programming || !refused_) recordsIn_ = 0;
  mode_ = Mode::Programming;
  refused_ = false;
  engine_.Halt();
  AnswerAccepted("P1");
}

void Zem::OpenWriting() {
  if (!Begins("P2")) return;
  // In the middle of a programming there is no running engine to write into.
  if (mode_ == Mode::Running) mode_ = Mode::Writing;
  recordsIn_ = 0;
  refused_ = false;
  pendingWrite_.reset();
  AnswerAccepted("P2");
}

void Zem::TakeRecord() {
  const Record record = reader_.TakeRecord();
  if (!record.sound) {
    expect_ = Expect::RecordRest;
    return;
  }
  const std::string command = {'S', record.type};
  if (!Begins(command)) return;
  if (faults_.Refuses(command, recordsIn_ + 1)) return Refuse(command);
  if (record.type == '9') {
    // The end record may come twice: its answer can have been lost.
    if (mode_ == Mode::Running && !completed_) return Refuse(command);
    if (mode_ != Mode::Running) Complete();
    return Answer(command, "PC");
  }
  if (record.type != '1' || !Store(record)) return Refuse(command);
  ++recordsIn_;
  refused_ = false;
  Answer(command, "PN");
}

// False when the record does not fit into what is open. A write waits for its end record.
bool Zem::Store(const Record& record) {
  const int first = record.address - ImageAddress;
  const int count = static_cast<int>(record.data.size());
  if (count < 1 || first < 0 || first + count > ImageSize) return false;
  if (mode_ == Mode::Running) return false;
  if (mode_ == Mode::Writing) {
    if (count > LongestWrite) return false;
    pendingWrite_ = record;
    return true;
  }
  std::copy(record.data.begin(), record.data.end(), memory_.begin() + first);
  return true;
}

void Zem::Complete() {
  if (mode_ == Mode::Programming) {
    engine_.Restart(memory_);
    ++memoryVersion_;
  } else if (pendingWrite_) {
    const int first = pendingWrite_->address - ImageAddress;
    std::copy(pendingWrite_->data.begin(), pendingWrite_->data.end(), memory_.begin() + first);
    engine_.Rewrite(memory_, first, static_cast<int>(pendingWrite_->data.size()));
    pendingWrite_.reset();
    ++memoryVersion_;
  }
  mode_ = Mode::Running;
  refused_ = false;
  completed_ = true;
}

void Zem::Refuse(std::string_view command) {
  refused_ = true;
  Answer(command, "PR");
}

void Zem::AnswerAccepted(std::string_view command) {
  Answer(command, settings_.oldProm ? "AV" : "AX");
}

void Zem::Answer(std::string_view command, std::string_view text) {
  Answer(command, std::vector<std::uint8_t>(text.begin(), text.end()));
}

void Zem::Answer(std::string_view command, std::vector<std::uint8_t> bytes) {
  const SpoiltReply reply = faults_.Spoil(command, std::move(bytes));
  const std::int64_t readyTicks = nowTicks_ + reply.delayUs * TicksPerUs;
  for (std::uint8_t byte : reply.bytes) toPc_.Put(byte, readyTicks);
}

bool Zem::Fail(std::string_view fault) {
  if (fault == "clear") return ClearFaults(), true;
  if (fault == "replug") return Replug(), true;
  if (fault == "unplug") return Unplug(), true;
  const std::optional<FaultRule> rule = ParseFault(fault);
  if (rule) Fail(*rule);
  return rule.has_value();
}

void Zem::Unplug() {
  plugged_ = false;
  toZem_.Cut(nowTicks_);
  toPc_.Cut(nowTicks_);
  expect_ = Expect::Command;
}

void Zem::PowerCycle() {
  expect_ = Expect::Command;
  completed_ = false;
  toZem_.Cut(nowTicks_);
  toPc_.Cut(nowTicks_);
  if (mode_ == Mode::Programming) return;  // no calibration to run on
  mode_ = Mode::Running;
  engine_.Restart(memory_);
}

void Zem::SetMemory(const Image& image) {
  memory_ = image;
  engine_.Restart(memory_);
}

void Zem::SetName(std::string_view name) {
  for (std::size_t i = 0; i <= NameLength; ++i) {
    memory_[NameIndex + i] =
        i < std::min(NameLength, name.size()) ? static_cast<std::uint8_t>(name[i]) : 0;
  }
}

}  // namespace sim
