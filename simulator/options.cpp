// Rows of options: those that take a value, and those that are there or not.
#include "simulator/options.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "simulator/control.h"
#include "simulator/faults.h"

namespace sim {
namespace {

struct Row {
  std::string_view name;
  std::string_view value;  // empty: a flag
  std::string_view help;
  void (*set)(Options&, const std::string&);
};

constexpr Row Rows[] = {
    {"--link", "PATH", "makes a symbolic link to the terminal",
     [](Options& o, const std::string& v) { o.link = v; }},
    {"--image", "FILE", "the 512 bytes: loaded if there, saved after each change",
     [](Options& o, const std::string& v) { o.image = v; }},
    {"--control", "FILE", "new lines of this file are commands",
     [](Options& o, const std::string& v) { o.control = v; }},
    {"--log", "FILE", "the traffic, in hexadecimal with its times",
     [](Options& o, const std::string& v) { o.log = v; }},
    {"--name", "NAME", "name of the calibration in the ZEM",
     [](Options& o, const std::string& v) { o.name = v; }},
    {"--fault", "NAME", "starts with a fault; may be given often",
     [](Options& o, const std::string& v) { o.faults.push_back(v); }},
    {"--drive", "", "drives about instead of idling",
     [](Options& o, const std::string&) { o.drive = true; }},
    {"--cold", "", "starts with a cold engine",
     [](Options& o, const std::string&) { o.cold = true; }},
    {"--unpaced", "", "answers at once instead of at 9600 baud",
     [](Options& o, const std::string&) { o.unpaced = true; }},
    {"--old-prom", "", "has a PROM before HV201xx",
     [](Options& o, const std::string&) { o.oldProm = true; }},
    {"--quiet", "", "tells the name of its terminal and nothing else",
     [](Options& o, const std::string&) { o.quiet = true; }},
    {"--help", "", "shows this", [](Options& o, const std::string&) { o.help = true; }},
};

bool IsFault(const std::string& text) { return text == "unplug" || ParseFault(text).has_value(); }

}  // namespace

Options ParseOptions(std::span<const std::string> arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const auto* row = std::find_if(std::begin(Rows), std::end(Rows),
                                   [&](const Row& r) { return r.name == argument; });
    if (row == std::end(Rows)) {
      options.error = "unknown option " + argument;
      return options;
    }
    if (!row->value.empty() && i + 1 == arguments.size()) {
      options.error = argument + " needs " + std::string(row->value);
      return options;
    }
    row->set(options, row->value.empty() ? std::string{} : arguments[++i]);
  }
  const auto wrong = std::find_if_not(options.faults.begin(), options.faults.end(), IsFault);
  if (wrong != options.faults.end()) options.error = "unknown fault " + *wrong;
  return options;
}

std::string OptionsHelp() {
  std::string help = "zemsim: a simulated ZEM with a running engine, on a pseudo-terminal\n\n";
  for (const Row& row : Rows) {
    std::string left(row.name);
    if (!row.value.empty()) left.append(" ").append(row.value);
    left.resize(18, ' ');
    help.append("  ").append(left).append(row.help).append("\n");
  }
  return help + "\n" + ControlHelp();
}

}  // namespace sim
