// Columns of the "Sensors Status" panel.
#include "monitors/sensorstatus.h"

#include <array>
#include <span>

#include "link/liveframe.h"

namespace {

struct BitName {
  int bit;
  const char* name;
};

// The column of what has failed has a line for all but the last.
constexpr std::array<BitName, 7> sensorNames = {{
    {SensorClt, "CLT"},
    {SensorMat, "MAT"},
    {SensorMap, "MAP"},
    {SensorEgo, "EGO"},
    {SensorKno, "KNO"},
    {SensorTps, "TPS"},
    {SensorLob, "LOB"},
}};
constexpr std::array<BitName, 5> disabledNames = {{
    {1 << 3, "REV"},
    {1 << 4, "KNO"},
    {1 << 5, "IDL"},
    {1 << 6, "EGO"},
    {1 << 7, "MAT"},
}};

// The names of the bits that are set in `bits`.
SensorColumn Column(std::span<const BitName> names, int bits) {
  SensorColumn column;
  for (const BitName& row : names) {
    const bool set = (bits & row.bit) != 0;
    column.lines.push_back(set ? row.name : "");
    column.any = column.any || set;
  }
  if (!column.any) column.lines.front() = "NONE";
  return column;
}

}  // namespace

SensorColumn FailedColumn(int failedBits, int defaultedBits) {
  SensorColumn column = Column(std::span(sensorNames).first<6>(), failedBits);
  if (failedBits & defaultedBits & SensorMap) column.lines[2] += " DFL";
  return column;
}

SensorColumn DisabledColumn(int optionFlags) { return Column(disabledNames, ~optionFlags); }

SensorColumn IntermitColumn(int intermitBits, std::string_view loadMode) {
  SensorColumn column = Column(sensorNames, ~intermitBits);
  if (!column.lines[2].empty()) column.lines[2] = loadMode == "MAP" ? "MAP" : "MAF";
  return column;
}
