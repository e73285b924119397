// The command line of zemsim.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace sim {

struct Options {
  std::string link;                 // symbolic link to the terminal; empty: none
  std::string image;                // file of the 512 bytes; empty: none
  std::string control;              // control file; empty: none
  std::string log;                  // traffic in hexadecimal; empty: none
  std::optional<std::string> name;  // of the calibration, as "B" reports it
  std::vector<std::string> faults;
  bool drive = false;
  bool cold = false;
  bool unpaced = false;
  bool oldProm = false;
  bool quiet = false;
  bool help = false;
  std::string error;  // what is wrong with the command line; empty: nothing
};

// Reads the arguments after the program's name. Faults are checked by name.
Options ParseOptions(std::span<const std::string> arguments);

std::string OptionsHelp();

}  // namespace sim
