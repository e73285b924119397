// Makes base.bin from its readable source: lines of first index, values and meaning, in commas.
// Runs while the program is built, so it relies on the standard library alone.
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t valueCount = 512;

struct Calibration {
  std::array<float, valueCount> values{};
  std::array<bool, valueCount> named{};
};

// The number that a whole text is.
template <typename Number>
std::optional<Number> Parsed(std::string_view text) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

// Takes one line in; what is wrong with it, or nothing.
std::string TakeLine(Calibration& calibration, const std::string& line) {
  const std::size_t first = line.find(',');
  const std::size_t second = first == std::string::npos ? first : line.find(',', first + 1);
  if (second == std::string::npos) return "not index, values and meaning";
  if (second + 1 == line.size()) return "no meaning";
  std::optional<std::size_t> index = Parsed<std::size_t>(line.substr(0, first));
  if (!index) return "no index";
  std::istringstream words(line.substr(first + 1, second - first - 1));
  if ((words >> std::ws).eof()) return "no value";
  for (std::string word; words >> word; ++*index) {
    const std::optional<float> value = Parsed<float>(word);
    if (!value) return "no number: " + word;
    if (*index >= valueCount) return "index beyond 511";
    if (calibration.named[*index]) return "named twice: " + std::to_string(*index);
    calibration.named[*index] = true;
    calibration.values[*index] = *value;
  }
  return "";
}

bool ReadSource(Calibration& calibration, const char* path) {
  std::ifstream source(path);
  std::string line;
  int number = 0;
  while (std::getline(source, line)) {
    ++number;
    if (line.empty() || line.front() == '#') continue;
    const std::string fault = TakeLine(calibration, line);
    if (fault.empty()) continue;
    std::cerr << path << ":" << number << ": " << fault << "\n";
    return false;
  }
  if (number == 0) std::cerr << path << ": cannot be read\n";
  return number != 0;
}

// Singles in little-endian order, whatever the machine.
bool WriteBin(const Calibration& calibration, const char* path) {
  std::ofstream bin(path, std::ios::binary | std::ios::trunc);
  for (float value : calibration.values) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    for (int shift = 0; shift < 32; shift += 8) bin.put(static_cast<char>(bits >> shift & 0xFFU));
  }
  bin.close();
  if (!bin) std::cerr << path << ": cannot be written\n";
  return static_cast<bool>(bin);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "usage: makebase source.csv base.bin\n";
    return 2;
  }
  Calibration calibration;
  return ReadSource(calibration, arguments[1]) && WriteBin(calibration, arguments[2]) ? 0 : 1;
}
