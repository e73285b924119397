// Rows of commands; a word that is none of them is a fault's name.
#include "simulator/control.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

namespace sim {
namespace {

struct Word {
  std::string_view name;
  std::string_view argument;  // empty: it takes none
  std::string_view help;
  bool (*run)(Zem&, std::string_view argument);  // false: not understood
};

std::optional<double> Number(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

constexpr std::pair<std::string_view, Sensor> Sensors[] = {
    {"clt", Sensor::Coolant},    {"mat", Sensor::Air},     {"map", Sensor::Map},
    {"ego", Sensor::Ego},        {"knock", Sensor::Knock}, {"tps", Sensor::Throttle},
    {"bat", Sensor::LowBattery},
};

bool SetSensor(Zem& zem, std::string_view name, bool failed) {
  const auto* row = std::find_if(std::begin(Sensors), std::end(Sensors),
                                 [&](const auto& sensor) { return sensor.first == name; });
  if (row == std::end(Sensors)) return false;
  zem.Motor().FailSensor(row->second, failed);
  return true;
}

constexpr Word Words[] = {
    {"throttle", "percent", "holds the throttle at 0 to 100 percent",
     [](Zem& zem, std::string_view argument) {
       const std::optional<double> percent = Number(argument);
       if (!percent || !(*percent >= 0 && *percent <= 100)) return false;
       zem.Motor().driver.Hold(*percent);
       return true;
     }},
    {"drive", "", "drives a cycle of some minutes, over and over",
     [](Zem& zem, std::string_view) { return zem.Motor().driver.Drive(), true; }},
    {"cold", "", "the engine has stood over night",
     [](Zem& zem, std::string_view) { return zem.Motor().SetCoolant(10), true; }},
    {"warm", "", "the engine is at its working temperature",
     [](Zem& zem, std::string_view) { return zem.Motor().SetCoolant(88), true; }},
    {"kill", "", "turns the ignition off",
     [](Zem& zem, std::string_view) { return zem.Motor().Kill(), true; }},
    {"start", "", "turns the key",
     [](Zem& zem, std::string_view) { return zem.Motor().Start(), true; }},
    {"power", "", "turns the ZEM off and on again: run-time offsets are lost",
     [](Zem& zem, std::string_view) { return zem.PowerCycle(), true; }},
    {"fail", "sensor", "a sensor fails: clt mat map ego knock tps bat",
     [](Zem& zem, std::string_view argument) { return SetSensor(zem, argument, true); }},
    {"heal", "sensor", "the sensor works again; that it had failed is remembered",
     [](Zem& zem, std::string_view argument) { return SetSensor(zem, argument, false); }},
};

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view Blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(Blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

void AddHelp(std::string& help, std::string left, std::string_view right) {
  left.resize(std::max<std::size_t>(left.size() + 2, 32), ' ');
  help.append("  ").append(left).append(right).append("\n");
}

}  // namespace

ControlResult Control(Zem& zem, std::string_view line) {
  line = Trimmed(line);
  if (line.empty() || line.front() == '#') return ControlResult::Done;
  if (line == "quit") return ControlResult::Quit;
  const std::size_t blank = line.find_first_of(" \t");
  const std::string_view name = line.substr(0, blank);
  const std::string_view argument =
      blank == std::string_view::npos ? std::string_view{} : Trimmed(line.substr(blank));
  for (const Word& word : Words) {
    if (word.name != name) continue;
    if (word.argument.empty() != argument.empty()) return ControlResult::NotUnderstood;
    return word.run(zem, argument) ? ControlResult::Done : ControlResult::NotUnderstood;
  }
  return zem.Fail(line) ? ControlResult::Done : ControlResult::NotUnderstood;
}

std::string ControlHelp() {
  std::string help = "Commands of the control file:\n";
  for (const Word& word : Words) {
    std::string left(word.name);
    if (!word.argument.empty()) left.append(" ").append(word.argument);
    AddHelp(help, left, word.help);
  }
  AddHelp(help, "unplug, replug", "the cable is pulled, and plugged in again");
  AddHelp(help, "clear", "no fault is in force any more");
  AddHelp(help, "quit", "ends the simulator");
  help +=
      "Faults, as name[:n[:times]][@command]; times 0 is always, command is E F G B K C Z P1 P2\n"
      "R3 to R9 RO RU S1 S9, or R, P or S for all that begin so:\n";
  for (const FaultRow& row : FaultRows()) {
    std::string left(row.name);
    if (!row.meaningOfN.empty()) left.append(":").append(row.meaningOfN);
    std::string right(row.help);
    if (!row.meaningOfN.empty()) right += " (n is " + std::to_string(row.n) + " when not given)";
    AddHelp(help, left, right);
  }
  return help;
}

LineFollower::LineFollower(std::filesystem::path path) : path_(std::move(path)) { NewLines(); }

std::vector<std::string> LineFollower::NewLines() {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path_, error);
  if (error || size < read_) read_ = 0;
  if (error || size == read_) return {};
  std::ifstream file(path_, std::ios::binary);
  file.seekg(static_cast<std::streamoff>(read_));
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(file, line) && !file.eof()) {  // a line without its end is not whole yet
    read_ += line.size() + 1;
    lines.push_back(line);
  }
  return lines;
}

}  // namespace sim
