// The settings as rows, and the routines that walk them.
#include "core/settings.h"

#include <algorithm>
#include <array>
#include <limits>

#include "core/globalstate.h"
#include "core/numbers.h"
#include "platform/system.h"

namespace {

constexpr int anyLeast = std::numeric_limits<int>::min();
constexpr int anyMost = std::numeric_limits<int>::max();

template <int value>
int Always(int) {
  return value;
}

// The data graphs stand in two columns, in 1/1440 inch.
int GraphLeft(int graph) { return graph % 2 == 0 ? 5160 : 0; }
int GraphTop(int graph) { return 540 + (graph - 1) / 2 * 2040; }

// How many graphs are selected depends on what the screen has room for.
int GraphSelected(int graph) {
  if (graph <= 5) return 1;
  if (graph <= 7) return ScreenClass >= 2 ? 1 : 0;
  if (graph <= 14) return ScreenClass >= 3 ? 1 : 0;
  return ScreenClass == 4 ? 1 : 0;
}

// "Comport" stands last: while it is missing the first run is not complete. A choice of two that
// holds another number is left to its reader, who tests for one of them.
constexpr std::array<SettingRow, 14> rows = {{
    {"Options", "Screensetting", 0, 0, Always<0>, anyLeast, anyMost,
     "Engine monitor: 0 analog (Monitor1), 1 digital (Monitor3)"},
    {"Options", "Monitor Screen", 0, 0, Always<0>, anyLeast, anyMost, "Contrast: 0 normal, 1 high"},
    {"Options", "QuickStart", 0, 0, Always<-1>, anyLeast, anyMost,
     "Start mode of the calibration screen: -1 quick, 0 advanced"},
    {"Options", "Show Tips at Startup", 0, 0, Always<1>, anyLeast, anyMost,
     "Tip of the day: 0 or 1"},
    {"Options", "Current Tip Value", 0, 0, Always<0>, 0, anyMost, "Index of the next tip"},
    {"Settings", "MainLeft", 0, 0, Always<1000>, anyLeast, anyMost, "Left of the frame"},
    {"Settings", "MainTop", 0, 0, Always<1000>, anyLeast, anyMost, "Top of the frame"},
    {"Settings", "MainWidth", 0, 0, Always<6500>, 1, anyMost, "Width of the frame"},
    {"Settings", "MainHeight", 0, 0, Always<6500>, 1, anyMost, "Height of the frame"},
    {"ViewData", "View#X", 1, 16, GraphLeft, anyLeast, anyMost, "Left of a data graph"},
    {"ViewData", "View#Y", 1, 16, GraphTop, anyLeast, anyMost, "Top of a data graph"},
    {"Check", "Viewcheck#", 0, 15, GraphSelected, anyLeast, anyMost,
     "The graph is selected for viewing"},
    {"MultiG", "Multicheck#", 0, 15, Always<1>, anyLeast, anyMost,
     "The multi view selects the graph"},
    {"Options", "Comport", 0, 0, Always<1>, 1, 4, "Serial port"},
}};

struct SettingPlace {
  const SettingRow* row;
  int number;
};

SettingPlace PlaceOf(std::string_view section, std::string_view key) {
  for (const SettingRow& row : rows) {
    if (row.section != section) continue;
    for (int number = row.first; number <= row.last; ++number)
      if (SettingKey(row, number) == key) return {&row, number};
  }
  RaiseFailure(FailureSubscript);
}

SettingPlace PlaceInFamily(std::string_view section, std::string_view family, int number) {
  for (const SettingRow& row : rows)
    if (row.section == section && row.key == family && number >= row.first && number <= row.last)
      return {&row, number};
  RaiseFailure(FailureSubscript);
}

int Read(const SettingPlace& place) {
  const SettingRow& row = *place.row;
  const std::string text =
      GetSetting(std::string(row.section), SettingKey(row, place.number), std::string());
  const double value = RoundEven(LeadingNumber(text));
  const bool counts = IsNumeric(text) && value >= row.least && value <= row.most;
  return counts ? static_cast<int>(value) : row.firstRun(place.number);
}

void Store(const SettingPlace& place, int value) {
  SaveSetting(std::string(place.row->section), SettingKey(*place.row, place.number),
              std::to_string(value));
}

}  // namespace

std::span<const SettingRow> SettingRows() { return rows; }

std::string SettingKey(const SettingRow& row, int number) {
  std::string key(row.key);
  const std::size_t mark = key.find('#');
  if (mark != std::string::npos) key.replace(mark, 1, std::to_string(number));
  return key;
}

bool FirstRun() {
  if (GetAllSettings("Options").contains("Comport")) return false;
  for (const SettingRow& row : rows)
    for (int number = row.first; number <= row.last; ++number)
      Store({&row, number}, row.firstRun(number));
  return true;
}

int ReadSetting(std::string_view section, std::string_view key) {
  return Read(PlaceOf(section, key));
}

int ReadSetting(std::string_view section, std::string_view family, int number) {
  return Read(PlaceInFamily(section, family, number));
}

void StoreSetting(std::string_view section, std::string_view key, int value) {
  Store(PlaceOf(section, key), value);
}

void StoreSetting(std::string_view section, std::string_view family, int number, int value) {
  Store(PlaceInFamily(section, family, number), value);
}
