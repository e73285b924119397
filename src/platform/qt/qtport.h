// Ports as the event queue sees them, and what their tests look at.
#pragma once

#include <string>

// Tells the bytes that have come to open ports. Result: whether there were any.
bool TellPortBytes();

// The device of a port number among those in `devices`: the first that exists and has hardware
// behind it, as far as `kernel`, a folder of the kernel's own words on each, tells; ttyS when none.
std::string FirstSerialDevice(int number, const std::string& devices, const std::string& kernel);

// Why a device file could not be opened, by the error of the system, and what helps.
std::string WhyNotOpened(const std::string& device, int error);
