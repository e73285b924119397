// Parsing of fault names, and what each does to a command or to the reply on its way out.
#include "simulator/faults.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <utility>

namespace sim {
namespace {

constexpr FaultRow Rows[] = {
    {Fault::Silent, "silent", "", 0, 0, "hears nothing"},
    {Fault::SilentAfter, "silent-after", "commands", 1, 0, "hears nothing after n more commands"},
    {Fault::SilentAfterBytes, "silent-after-bytes", "bytes", 1, 0,
     "the line goes dead after n more bytes of reply"},
    {Fault::Slow, "slow", "ms", 200, 0, "answers n ms late"},
    {Fault::WrongSecondByte, "wrong-second", "byte", '?', 0, "the second byte of a reply reads n"},
    {Fault::ShortReply, "short", "bytes", 1, 0, "leaves out the last n bytes of a reply"},
    {Fault::LongReply, "long", "bytes", 1, 0, "adds n bytes to a reply"},
    {Fault::GarbageBefore, "garbage", "bytes", 3, 0, "n bytes of noise before a reply"},
    {Fault::RefuseRecord, "refuse", "record", 1, 1, "refuses record n"},
    {Fault::LostAnswer, "lost", "answer", 1, 1, "the nth answer never arrives"},
    {Fault::Echo, "echo", "", 0, 0, "sends back every byte it receives"},
    {Fault::Unplug, "unplug", "command", 0, 1, "the cable is pulled as the nth command arrives"},
};

// Noise with every awkward kind of byte first: mark, break, control, high bit, letters of replies.
constexpr std::array<std::uint8_t, 8> Noise = {0xFF, 0x00, 0x0D, 0x9C, 'A', 0x7F, 'P', 0xE3};

const FaultRow& RowOf(Fault fault) {
  return *std::find_if(std::begin(Rows), std::end(Rows),
                       [&](const FaultRow& row) { return row.fault == fault; });
}

// Cuts the text before the mark off and returns it; what follows the mark stays.
std::string_view CutAt(std::string_view& text, char mark) {
  const std::size_t at = text.find(mark);
  const std::string_view head = text.substr(0, at);
  text = at == std::string_view::npos ? std::string_view{} : text.substr(at + 1);
  return head;
}

std::optional<int> WholeNumber(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || value < 0) return std::nullopt;
  return value;
}

}  // namespace

std::span<const FaultRow> FaultRows() { return Rows; }

std::optional<FaultRule> ParseFault(std::string_view text) {
  std::string_view command = text;
  std::string_view counts = CutAt(command, '@');
  if (text.find('@') != std::string_view::npos && command.empty()) return std::nullopt;
  const bool hasN = counts.find(':') != std::string_view::npos;
  const std::string_view name = CutAt(counts, ':');
  const auto row = std::find_if(std::begin(Rows), std::end(Rows),
                                [&](const FaultRow& r) { return r.name == name; });
  if (row == std::end(Rows)) return std::nullopt;
  FaultRule rule{.fault = row->fault, .command = std::string(command)};
  if (!hasN) return rule;
  const bool hasTimes = counts.find(':') != std::string_view::npos;
  const std::optional<int> n = WholeNumber(CutAt(counts, ':'));
  if (!n) return std::nullopt;
  rule.n = *n;
  if (!hasTimes) return rule;
  const std::optional<int> times = WholeNumber(counts);
  if (!times) return std::nullopt;
  rule.times = *times;
  return rule;
}

// No command begins another, so a whole name fits itself alone and a letter its family.
bool Faults::Active::Applies(std::string_view command) const {
  return command.starts_with(rule.command);
}

void Faults::Add(FaultRule rule) {
  const FaultRow& row = RowOf(rule.fault);
  if (rule.n == DefaultOfRow) rule.n = row.n;
  if (rule.times == DefaultOfRow) rule.times = row.times;
  active_.push_back({.rule = std::move(rule)});
}

bool Faults::Hears(std::string_view command) {
  bool hears = true;
  for (Active& active : active_) {
    const Fault fault = active.rule.fault;
    if (fault != Fault::Silent && fault != Fault::SilentAfter) continue;
    if (active.Spent() || !active.Applies(command)) continue;
    if (fault == Fault::SilentAfter && active.seen++ < active.rule.n) continue;
    ++active.acted;
    hears = false;
  }
  return hears;
}

bool Faults::Unplugs(std::string_view command) {
  bool unplugs = false;
  for (Active& active : active_) {
    if (active.rule.fault != Fault::Unplug || active.Spent() || !active.Applies(command)) continue;
    if (++active.seen < active.rule.n) continue;
    ++active.acted;
    active.seen = 0;
    unplugs = true;
  }
  return unplugs;
}

bool Faults::Refuses(std::string_view command, int number) {
  for (Active& active : active_) {
    if (active.rule.fault != Fault::RefuseRecord || active.Spent()) continue;
    if (active.rule.n != number || !active.Applies(command)) continue;
    ++active.acted;
    return true;
  }
  return false;
}

bool Faults::Echoes() const {
  return std::any_of(active_.begin(), active_.end(),
                     [](const Active& active) { return active.rule.fault == Fault::Echo; });
}

SpoiltReply Faults::Spoil(std::string_view command, std::vector<std::uint8_t> reply) {
  SpoiltReply spoilt{.bytes = std::move(reply)};
  for (const FaultRow& row : Rows) {  // in the table's order, whatever order they were added in
    for (Active& active : active_) {
      if (active.rule.fault != row.fault || active.Spent() || !active.Applies(command)) continue;
      SpoilBy(active, spoilt);
    }
  }
  // A dead line cuts what the others have left.
  for (Active& active : active_) {
    if (active.rule.fault != Fault::SilentAfterBytes || !active.Applies(command)) continue;
    const std::size_t left = static_cast<std::size_t>(active.rule.n - active.seen);
    if (spoilt.bytes.size() > left) spoilt.bytes.resize(left);
    active.seen += static_cast<int>(spoilt.bytes.size());
  }
  return spoilt;
}

void Faults::SpoilBy(Active& active, SpoiltReply& reply) {
  const int n = active.rule.n;
  std::vector<std::uint8_t>& bytes = reply.bytes;
  switch (active.rule.fault) {
    case Fault::Slow:
      reply.delayUs += std::int64_t{1000} * n;
      break;
    case Fault::ShortReply:
      bytes.resize(bytes.size() - std::min(bytes.size(), static_cast<std::size_t>(n)));
      break;
    case Fault::LongReply:
      for (int i = 0; i < n; ++i) bytes.push_back(Noise[static_cast<std::size_t>(i) % 8]);
      break;
    case Fault::GarbageBefore:
      for (int i = n; i-- > 0;) bytes.insert(bytes.begin(), Noise[static_cast<std::size_t>(i) % 8]);
      break;
    case Fault::WrongSecondByte:
      if (bytes.size() > 1) bytes[1] = static_cast<std::uint8_t>(n);
      break;
    case Fault::LostAnswer:
      if (++active.seen < n) return;
      bytes.clear();
      break;
    default:
      return;
  }
  ++active.acted;
}

}  // namespace sim
