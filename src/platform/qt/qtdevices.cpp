// Which device a port number names.
#include <QtGlobal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/port.h"

std::string DeviceOfPort(int number) {
  std::string variable = "HALVANE2_COM" + std::to_string(number);
  if (const char* named = std::getenv(variable.c_str()); named && *named) return named;
#ifdef Q_OS_WIN
  return "COM" + std::to_string(number);
#else
  std::string index = std::to_string(number - 1);
  std::error_code error;
  for (const char* kind : {"/dev/ttyS", "/dev/ttyUSB", "/dev/ttyACM"})
    if (std::filesystem::exists(kind + index, error)) return kind + index;
  return "/dev/ttyS" + index;
#endif
}
