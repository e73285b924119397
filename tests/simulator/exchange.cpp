// Records as the PC's side builds them.
#include "exchange.h"

std::string HexByte(int value) {
  constexpr std::string_view Digits = "0123456789ABCDEF";
  return {Digits[static_cast<std::size_t>(value >> 4 & 15)],
          Digits[static_cast<std::size_t>(value & 15)]};
}

std::string S1(int address, const std::vector<int>& data) {
  const int count = static_cast<int>(data.size()) + 3;
  int sum = count + (address >> 8) + (address & 255);
  std::string text = "S1" + HexByte(count) + HexByte(address >> 8) + HexByte(address);
  for (int byte : data) {
    text += HexByte(byte);
    sum += byte;
  }
  return text + HexByte(~sum);
}

std::vector<std::string> RecordsOf(const sim::Image& image) {
  std::vector<std::string> records;
  for (int first = 0; first < sim::ImageSize; first += 16) {
    records.push_back(
        S1(sim::ImageAddress + first, {image.begin() + first, image.begin() + first + 16}));
  }
  records.push_back("S9030000FC");
  return records;
}
