// The S19 file: the control unit's memory image as S-records, from which the unit is programmed.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Where the calibration stands in the control unit's memory.
inline constexpr unsigned CalibrationAddress = 0xB600;
// The end record, without its line end.
inline constexpr std::string_view S9Record = "S9030000FC";

// One S1 record without its line end: data at an address from $0000 to $FFFF.
std::string S1Record(unsigned address, std::span<const std::int16_t> data);

// The whole file of an image: 32 records of 16 bytes from CalibrationAddress and the end record,
// CR LF after each.
std::string S19Text(const std::array<std::int16_t, 513>& image);

// The name of the S19 file beside a BIN file: ".S19" instead of the last four characters.
std::string S19Path(const std::string& binPath);

// Writes BinImage to the S19 file of CurrentBinPath, or of TargetBinPath when a failed open has
// left that empty. Either the old file or the whole new one stands on the disk. Failures are told
// in a box; false then. Only savedata calls it.
bool WriteS19();
