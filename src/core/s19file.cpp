// Lays out S-records and writes them.
#include "core/s19file.h"

#include "core/ansi.h"
#include "core/globalstate.h"
#include "core/messages.h"
#include "core/numbers.h"
#include "core/shortname.h"
#include "platform/files.h"

namespace {

constexpr std::size_t imageBytes = 512;
constexpr std::size_t recordBytes = 16;
constexpr unsigned addressAndChecksumBytes = 3;  // they count in a record's length
constexpr const char* lineEnd = "\r\n";

}  // namespace

std::string S1Record(unsigned address, std::span<const std::int16_t> data) {
  std::string record = "S1";
  unsigned sum = 0;
  const auto put = [&](unsigned byte) {
    record += HexText(byte & 255U, 2);
    sum += byte & 255U;
  };
  put(static_cast<unsigned>(data.size()) + addressAndChecksumBytes);
  put(address >> 8);
  put(address);
  for (const std::int16_t byte : data) put(static_cast<unsigned>(byte));
  put(~sum);
  return record;
}

std::string S19Text(const std::array<std::int16_t, 513>& image) {
  const std::span<const std::int16_t> bytes(image);
  std::string text;
  for (std::size_t at = 0; at < imageBytes; at += recordBytes)
    text +=
        S1Record(CalibrationAddress + static_cast<unsigned>(at), bytes.subspan(at, recordBytes)) +
        lineEnd;
  return text.append(S9Record).append(lineEnd);
}

std::string S19Path(const std::string& binPath) {
  const std::size_t ending = LastCharacters(binPath, 4).size();
  return binPath.substr(0, binPath.size() - ending) + ".S19";
}

bool WriteS19() {
  try {
    const std::string text = S19Text(BinImage);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    SaveWholeFile(S19Path(CurrentBinPath.empty() ? TargetBinPath : CurrentBinPath),
                  std::span(bytes, text.size()));
    return true;
  } catch (const Failure& failure) {
    ShowFailure(failure);
    return false;
  }
}
