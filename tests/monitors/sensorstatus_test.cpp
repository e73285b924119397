// Columns of the "Sensors Status" panel, at every byte that feeds them.
#include "monitors/sensorstatus.h"

#include <gtest/gtest.h>

using Lines = std::vector<std::string>;

namespace {

// Each name where its bit is told, "NONE" in the first line when there is none.
Lines Expected(const Lines& names, int told) {
  Lines lines;
  bool any = false;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const bool here = (told >> i & 1) != 0;
    lines.push_back(here ? names[i] : "");
    any = any || here;
  }
  if (!any) lines[0] = "NONE";
  return lines;
}

}  // namespace

TEST(SensorStatus, FailedNamesEachSetBitInItsOwnLine) {
  for (int byte = 0; byte < 256; ++byte) {
    const SensorColumn column = FailedColumn(byte, 0);
    EXPECT_EQ(column.lines, Expected({"CLT", "MAT", "MAP", "EGO", "KNO", "TPS"}, byte)) << byte;
    EXPECT_EQ(column.any, (byte & 63) != 0) << byte;
  }
}

TEST(SensorStatus, FailedMapOnItsDefaultReadsDfl) {
  EXPECT_EQ(FailedColumn(4, 4).lines[2], "MAP DFL");
  EXPECT_EQ(FailedColumn(4, 0xFB).lines[2], "MAP");
  EXPECT_EQ(FailedColumn(0, 4).lines, Lines({"NONE", "", "", "", "", ""}));
  EXPECT_FALSE(FailedColumn(0, 4).any);
}

TEST(SensorStatus, DisabledNamesEachClearFlag) {
  for (int flags = 0; flags < 256; ++flags) {
    const SensorColumn column = DisabledColumn(flags);
    EXPECT_EQ(column.lines, Expected({"REV", "KNO", "IDL", "EGO", "MAT"}, ~flags >> 3 & 31))
        << flags;
    EXPECT_EQ(column.any, (flags & 0xF8) != 0xF8) << flags;
  }
}

TEST(SensorStatus, IntermitNamesEachClearBitByLoadSensor) {
  for (int byte = 0; byte < 256; ++byte)
    for (const char* load : {"MAP", "MAF"}) {
      const SensorColumn column = IntermitColumn(byte, load);
      EXPECT_EQ(column.lines,
                Expected({"CLT", "MAT", load, "EGO", "KNO", "TPS", "LOB"}, ~byte & 127))
          << byte;
      EXPECT_EQ(column.any, (byte & 127) != 127) << byte;
    }
}
