// A record's end is known from its count alone; a character that is no digit spoils it, not its
// end.
#include "simulator/records.h"

#include <numeric>

namespace sim {
namespace {

constexpr int NoDigit = -1;

// Only upper case counts: lower case is not what the format prints.
int HexDigit(std::uint8_t character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return NoDigit;
}

}  // namespace

void RecordReader::Begin() { *this = {}; }

RecordReader::Step RecordReader::Feed(std::uint8_t character) {
  if (type_ == 0) {
    if (character < '0' || character > '9') return Step::NoRecord;
    type_ = static_cast<char>(character);
    return Step::More;
  }
  const int digit = HexDigit(character);
  hexOnly_ = hexOnly_ && digit != NoDigit;
  nibbles_.push_back(static_cast<std::uint8_t>(digit == NoDigit ? 0 : digit));
  if (nibbles_.size() == 2) count_ = nibbles_[0] * 16 + nibbles_[1];
  const bool all = nibbles_.size() >= 2 && nibbles_.size() == 2u * (1u + unsigned(count_));
  return all ? Step::Complete : Step::More;
}

Record RecordReader::TakeRecord() const {
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i + 1 < nibbles_.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(nibbles_[i] * 16 + nibbles_[i + 1]));
  }
  Record record{.type = type_};
  if (bytes.size() < 4) return record;  // count, two of address, checksum
  const unsigned sum = std::accumulate(bytes.begin(), bytes.end(), 0u);
  record.sound = hexOnly_ && (sum & 255) == 255;
  record.address = bytes[1] * 256 + bytes[2];
  record.data.assign(bytes.begin() + 3, bytes.end() - 1);
  return record;
}

}  // namespace sim
