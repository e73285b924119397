// Reads the settings of a line, and says why a port cannot be opened.
#include "platform/qt/qtport.h"

#include <charconv>
#include <string_view>

namespace {

bool IsOneOf(char character, std::string_view characters) {
  return characters.find(character) != std::string_view::npos;
}

}  // namespace

std::optional<LineSettings> ReadLineSettings(const std::string& text) {
  LineSettings line;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, line.baud);
  const std::string_view mode(rest, end);
  if (error != std::errc() || mode.size() != 6) return std::nullopt;
  if (mode[0] != ',' || mode[2] != ',' || mode[4] != ',') return std::nullopt;
  if (!IsOneOf(mode[1], "NEO") || !IsOneOf(mode[3], "78") || !IsOneOf(mode[5], "12"))
    return std::nullopt;
  line.parity = mode[1];
  line.dataBits = mode[3] - '0';
  line.stopBits = mode[5] - '0';
  return line;
}

std::string NoSuchDevice(const std::string& device) {
  return "There is no device " + device + ". Connect the cable or the adapter and try again.";
}

std::string UsedByOther(const std::string& device) {
  return device + " is in use by another program. Close that program and try again.";
}

std::string NoSerialPort(const std::string& device) { return device + " is no serial port."; }

std::string NotOpened(const std::string& device, const std::string& reason) {
  return device + " cannot be opened: " + reason + ".";
}
