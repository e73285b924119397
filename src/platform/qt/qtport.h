// Ports as the event queue sees them, and what their tests look at.
#pragma once

#include <optional>
#include <string>

// Tells the bytes that have come to open ports. Result: whether there were any.
bool TellPortBytes();

// The settings of a line, "9600,N,8,1".
struct LineSettings {
  int baud = 0;
  char parity = 'N';  // or E, O
  int dataBits = 8;   // or 7
  int stopBits = 1;   // or 2
};
std::optional<LineSettings> ReadLineSettings(const std::string& text);  // nothing when that is none

// The device of a port number among those in `devices`: the first that exists and has hardware
// behind it, as far as `kernel`, a folder of the kernel's own words on each, tells; ttyS when none.
std::string FirstSerialDevice(int number, const std::string& devices, const std::string& kernel);

// Why a port cannot be opened, or is lost, in words for the user.
std::string NoSuchDevice(const std::string& device);
std::string UsedByOther(const std::string& device);
std::string NoSerialPort(const std::string& device);
std::string NotOpened(const std::string& device, const std::string& reason);
inline constexpr const char* Unplugged = "The device has been disconnected.";

// Why a device file could not be opened, by the error of the system, and what helps.
std::string WhyNotOpened(const std::string& device, int error);
