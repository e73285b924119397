// Reads and lays out singles bit by bit, so that a number that is none comes through unchanged.
#include "core/singles.h"

#include <algorithm>
#include <bit>

#include "core/openedfile.h"
#include "platform/failure.h"

std::array<float, 513> RawSingles{};

namespace {

constexpr std::size_t singleBytes = 4;
constexpr std::size_t fileSingles = 512;

float SingleAt(std::span<const std::uint8_t> bytes, std::size_t index) {
  std::uint32_t bits = 0;
  for (std::size_t k = singleBytes; k-- > 0;) bits = bits << 8 | bytes[index * singleBytes + k];
  return std::bit_cast<float>(bits);
}

}  // namespace

void ResetRawSingles() { RawSingles.fill(0); }

std::vector<float> ReadSingles(const std::string& path) {
  const OpenedFile file(path, FileMode::Read);
  std::array<std::uint8_t, (fileSingles + 1) * singleBytes> bytes{};
  std::vector<float> singles(ReadFile(file.handle, bytes) / singleBytes);
  for (std::size_t i = 0; i < singles.size(); ++i) singles[i] = SingleAt(bytes, i);
  return singles;
}

int ReadRawSingles(const std::string& path) {
  const std::vector<float> singles = ReadSingles(path);
  std::copy(singles.begin(), singles.end(), RawSingles.begin());
  if (singles.size() > fileSingles) RaiseFailure(FailureSubscript);
  return static_cast<int>(singles.size()) + 1;
}

std::vector<std::uint8_t> BytesOfSingles(std::span<const float> singles) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(singles.size() * singleBytes);
  for (const float single : singles) {
    const auto bits = std::bit_cast<std::uint32_t>(single);
    for (unsigned shift = 0; shift < 32; shift += 8)
      bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
  }
  return bytes;
}
