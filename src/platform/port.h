// A plain byte port: what the serial line is made of. One thread; bytes are told from the event
// queue. Implemented by each platform.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

// A number that names an open port; 0 is none.
using PortHandle = int;

struct PortEvents {
  // Bytes have come, in order; told from a yield, never from inside a write.
  std::function<void(std::span<const std::uint8_t>)> received;
  // The device has gone (a read of nothing, a failing write). Told once; the handle stays to close.
  std::function<void(const std::string& why)> disconnected;
  // A line event by its number (break 1001, framing 1004, overrun 1006, parity 1009, ...).
  std::function<void(int number)> line;
};

struct PortResult {
  PortHandle port = 0;
  std::string why;  // in words that a user can act on, when port is 0
};

// Opens a device raw at the settings, "9600,N,8,1". Never blocks.
PortResult OpenPort(const std::string& device, const std::string& settings, PortEvents events);
// Writes and flushes at once. False when the device has gone (which is also told).
bool WritePort(PortHandle port, std::span<const std::uint8_t> bytes);
// Forgets bytes that came but have not been told yet.
void DiscardInput(PortHandle port);
void ClosePort(PortHandle port);

// The device of port number 1 to 4: HALVANE2_COM<n> of the environment, COM<n> on Windows, else
// the first that exists of /dev/ttyS<n-1>, /dev/ttyUSB<n-1>, /dev/ttyACM<n-1> (the first when
// none). On Linux a ttyS that the kernel knows to be without hardware does not count.
std::string DeviceOfPort(int number);
