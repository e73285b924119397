// S-records as they come over the line, without line ends: where one ends, and whether it is sound.
#pragma once

#include <cstdint>
#include <vector>

namespace sim {

// What has been collected of a record.
struct Record {
  char type = 0;                   // the digit after the "S"
  int address = 0;                 // of an S1 or S9 record
  std::vector<std::uint8_t> data;  // without address and checksum
  bool sound = false;              // upper-case hexadecimal throughout, and the checksum is right
};

// Collects one record, character by character, from the one after the "S" on.
class RecordReader {
 public:
  enum class Step { More, Complete, NoRecord };

  void Begin();
  // Complete: TakeRecord has it. NoRecord: the first character is no digit, so no record it was.
  Step Feed(std::uint8_t character);
  Record TakeRecord() const;

 private:
  char type_ = 0;
  bool hexOnly_ = true;
  int count_ = 0;                      // bytes after the count, as the count says
  std::vector<std::uint8_t> nibbles_;  // of count, address, data and checksum
};

}  // namespace sim
