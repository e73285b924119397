// The table of the per-user settings: where each stands in the store, what it holds after the first
// run, and what counts as a value of it. All of them are whole numbers, kept as texts.
#pragma once

#include <span>
#include <string>
#include <string_view>

// One setting, or a family of settings that differ in a number ("View#X": "View1X", "View2X" ...).
struct SettingRow {
  std::string_view section;
  std::string_view key;  // "#" stands for the number of a family
  int first;             // numbers of the family; 0 to 0 without one
  int last;
  int (*firstRun)(int number);  // what the first run stores
  int least;                    // a stored text outside of these counts as missing
  int most;
  std::string_view meaning;
};

std::span<const SettingRow> SettingRows();

// The key of one member of the row.
std::string SettingKey(const SettingRow& row, int number);

// On the first run of this user, which is known by the store holding no "Comport", stores every
// row's first value; result: whether it did. ScreenClass must be known, so the frame is up. A first
// run that was cut short is taken up again; a "Comport" that is no number is none.
bool FirstRun();

// The value of a setting of the table; the first run's value when the store has none, no number or
// one out of its range. A key that is in no row is a mistake of ours: a subscript failure (9).
int ReadSetting(std::string_view section, std::string_view key);
// Member `number` of a family: ReadSetting("ViewData", "View#X", 16).
int ReadSetting(std::string_view section, std::string_view family, int number);
void StoreSetting(std::string_view section, std::string_view key, int value);
void StoreSetting(std::string_view section, std::string_view family, int number, int value);
