// The BIN files of six older tools: lists of singles like ours, but shorter and ordered
// differently. They are known by their length, and the user is asked before one is taken in.
#pragma once

#include <span>
#include <string>
#include <string_view>

// One type of BIN file.
struct BinType {
  std::string_view name;  // as BinFileType has it
  int singles;            // length of its files
  // The rest is empty in our own type.
  std::string_view question;  // follows the path in the question
  std::string_view plainName;
  void (*convert)();         // fills CalValues from RawSingles; null while nobody can
  std::string_view closing;  // tells of the conversion
};

inline constexpr std::string_view NativeBinType = "Halv2";

// All seven, our own first, the others in the order in which they are tested.
std::span<const BinType> BinTypes();

// The type of files of so many singles, or null.
const BinType* BinTypeOfLength(int singles);
// The type of this name, or null.
const BinType* BinTypeNamed(std::string_view name);

// Asks whether to convert the file whose singles are in RawSingles, and does it. True when it is
// the open calibration then; false when the user declined or the type cannot be taken in: nothing
// has changed then.
bool ConvertForeignBin(const BinType& type, const std::string& path);
