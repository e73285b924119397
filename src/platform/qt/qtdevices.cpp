// Which device a port number names.
#include <QtGlobal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/port.h"
#include "platform/qt/qtport.h"

namespace {

// The kernel makes nodes for serial ports that the machine does not have; their type is 0. What is
// not known counts as hardware.
bool HasHardware(const std::string& ofKernel) {
  int type = 1;
  std::ifstream told(ofKernel + "/type");
  return !(told >> type) || type != 0;
}

}  // namespace

std::string FirstSerialDevice(int number, const std::string& devices, const std::string& kernel) {
  const std::string index = std::to_string(number - 1);
  std::error_code error;
  for (const char* kind : {"ttyS", "ttyUSB", "ttyACM"}) {
    const std::string name = kind + index;
    if (std::filesystem::exists(devices + "/" + name, error) && HasHardware(kernel + "/" + name))
      return devices + "/" + name;
  }
  return devices + "/ttyS" + index;
}

std::string DeviceOfPort(int number) {
  std::string variable = "HALVANE2_COM" + std::to_string(number);
  if (const char* named = std::getenv(variable.c_str()); named && *named) return named;
#ifdef Q_OS_WIN
  return "COM" + std::to_string(number);
#else
  return FirstSerialDevice(number, "/dev", "/sys/class/tty");
#endif
}
