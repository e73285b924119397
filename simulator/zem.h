// A simulated ZEM: serial line with its pacing, command protocol, calibration memory, and an engine
// behind it. It owns no clock and no port: its owner brings bytes in, moves the time, and takes the
// bytes that have arrived at the other end. The same calls at the same times give the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/engine.h"
#include "simulator/faults.h"
#include "simulator/image.h"
#include "simulator/line.h"
#include "simulator/records.h"

namespace sim {

struct ZemSettings {
  bool paced = true;                  // 9600 baud both ways; otherwise every byte takes no time
  bool oldProm = false;               // a PROM before HV201xx: "A" is followed by "V"
  std::string promVersion = "20105";  // what "B" reports, without "HV"; at most five characters
  std::uint64_t seed = 1;             // of the engine's noise
};

class Zem {
 public:
  // A ZEM that was just turned on, with a warm engine idling, at time 0.
  Zem() : Zem(ZemSettings{}) {}
  explicit Zem(ZemSettings settings, const Image& image = DefaultImage());

  // A byte leaves the PC at this time, or as soon as the line is free. Times never run backwards.
  void Receive(std::uint8_t byte, std::int64_t nowUs);
  void Receive(std::string_view bytes, std::int64_t nowUs);

  // When the next byte completes, in either direction, or a pause on the line means something;
  // nothing when all is quiet. The engine asks for no event: it catches up whenever it is looked
  // at.
  std::optional<std::int64_t> NextEventUs() const;

  // Bytes that have not completed yet, in both directions.
  std::size_t BytesUnderWay() const { return toZem_.bytes.size() + toPc_.bytes.size(); }

  // Moves the clock and returns the bytes that completed on their way to the PC since the last
  // call, each with its time.
  std::vector<TimedByte> Advance(std::int64_t nowUs);

  // A fault by its text ("refuse:5:3", "short@F"), or "clear", "unplug", "replug". False when the
  // text names none.
  bool Fail(std::string_view fault);
  void Fail(FaultRule rule) { faults_.Add(std::move(rule)); }
  void ClearFaults() { faults_.Clear(); }

  // The cable. What is on the line is lost with it; the engine runs on.
  void Unplug();
  void Replug() { plugged_ = true; }
  bool Plugged() const { return plugged_; }

  // Turned off and on again: run-time offsets are lost, the engine starts anew.
  void PowerCycle();

  const Image& Memory() const { return memory_; }
  void SetMemory(const Image& image);
  // The name that "B" reports, at most thirteen characters; programming replaces it.
  void SetName(std::string_view name);
  // Counts complete programmings and accepted memory writes: the owner saves when it has changed.
  int MemoryVersion() const { return memoryVersion_; }
  // False from the opening of programming until its last record is in.
  bool CalibrationComplete() const { return mode_ != Mode::Programming; }

  Engine& Motor() { return engine_; }
  const Engine& Motor() const { return engine_; }

  // The last commands that were heard, the oldest first: "E", "R3 2A", "P1", "S1", "S9".
  const std::deque<std::string>& History() const { return history_; }

  // A pause this long inside a command or record ends it.
  static constexpr std::int64_t SilenceUs = 200'000;
  // A damaged record may have lied about its length: it is over when the line has been quiet so
  // long.
  static constexpr std::int64_t QuietUs = 10'000;

 private:
  enum class Mode { Running, Programming, Writing };
  enum class Expect { Command, OffsetCode, OffsetValue, MemoryCode, RecordText, RecordRest };

  void Process(std::int64_t ticks);
  void Hear(std::uint8_t byte);
  void HearCommand(std::uint8_t byte);
  void HearOffsetCode(std::uint8_t byte);
  void HearMemoryCode(std::uint8_t byte);
  void HearRecord(std::uint8_t byte);
  void EndOnSilence();
  bool Begins(std::string_view command, std::string_view detail = {});

  void EndWriting();
  void AnswerFrame();
  void AnswerReadBack();
  void AnswerName();
  void SetOffset(std::uint8_t code, std::uint8_t value);
  void OpenProgramming();
  void OpenWriting();
  void TakeRecord();
  bool Store(const Record& record);
  void Complete();
  void Refuse(std::string_view command);

  void AnswerAccepted(std::string_view command);
  void Answer(std::string_view command, std::string_view text);
  void Answer(std::string_view command, std::vector<std::uint8_t> bytes);
  std::optional<std::int64_t> SilenceTicks() const;

  ZemSettings settings_;
  Image memory_;
  Engine engine_;
  Faults faults_;
  Wire toZem_;
  Wire toPc_;
  std::int64_t nowTicks_ = 0;
  std::int64_t lastHeardTicks_ = 0;
  bool plugged_ = true;

  Mode mode_ = Mode::Running;
  Expect expect_ = Expect::Command;
  std::uint8_t offsetCode_ = 0;
  RecordReader reader_;
  int recordsIn_ = 0;       // accepted since the memory was opened
  bool refused_ = false;    // the last record was
  bool completed_ = false;  // the last command was the end of a memory session
  std::optional<Record> pendingWrite_;
  int memoryVersion_ = 0;
  std::deque<std::string> history_;
};

}  // namespace sim
