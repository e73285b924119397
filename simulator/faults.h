// The named ways in which the simulated ZEM can fail, alone or on one command only.
//
// Text form: name[:n[:times]][@command], for example "short", "lost:2", "refuse:5:3",
// "wrong-second@R3". A command is named by its bytes ("E", "F", "P1", "R8", "S1", "S9"); a letter
// alone names the whole family ("R" is every run-time offset, "S" every record).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

enum class Fault {
  Silent,            // hears nothing
  SilentAfter,       // hears nothing after n more commands
  SilentAfterBytes,  // the line goes dead after n more bytes of reply
  Slow,              // answers n ms late
  ShortReply,        // leaves out the last n bytes of a reply
  LongReply,         // adds n bytes to a reply
  GarbageBefore,     // n bytes of noise before a reply
  WrongSecondByte,   // the second byte of a reply reads n
  RefuseRecord,      // refuses record n
  LostAnswer,        // does as told, but the nth answer never arrives
  Echo,              // sends back every byte it receives
  Unplug,            // the cable is pulled as the nth command arrives (0: at once)
};

// Meaning and defaults of one fault; the table drives parser, help and tests.
struct FaultRow {
  Fault fault;
  std::string_view name;
  std::string_view meaningOfN;  // empty: there is none
  int n;                        // when none is given
  int times;                    // when none is given; 0 is always
  std::string_view help;
};
std::span<const FaultRow> FaultRows();

inline constexpr int DefaultOfRow = -1;

struct FaultRule {
  Fault fault;
  int n = DefaultOfRow;
  int times = DefaultOfRow;  // how often it acts; 0 is always
  std::string command;       // acts on this one only; empty: on all
};

// A rule from its text; nothing when the text is none.
std::optional<FaultRule> ParseFault(std::string_view text);

// What is left of a reply after every fault has had its way.
struct SpoiltReply {
  std::vector<std::uint8_t> bytes;
  std::int64_t delayUs = 0;
};

// The faults in force. They count for themselves, from the moment they are added.
class Faults {
 public:
  void Add(FaultRule rule);
  void Clear() { active_.clear(); }
  bool Any() const { return !active_.empty(); }

  // Asked once for each command, before it is carried out.
  bool Hears(std::string_view command);
  // Asked once for each command: whether the cable is pulled now.
  bool Unplugs(std::string_view command);
  // Asked once for each record; number counts from 1 since the memory was opened.
  bool Refuses(std::string_view command, int number);
  bool Echoes() const;
  SpoiltReply Spoil(std::string_view command, std::vector<std::uint8_t> reply);

 private:
  struct Active {
    FaultRule rule;
    int seen = 0;   // commands, bytes or answers since the rule was added
    int acted = 0;  // times
    bool Applies(std::string_view command) const;
    bool Spent() const { return rule.times > 0 && acted >= rule.times; }
  };
  static void SpoilBy(Active& active, SpoiltReply& reply);
  std::vector<Active> active_;
};

}  // namespace sim
