// The "Sensors Status" panel of the analog monitor: which names stand in its three columns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The texts of a column, one for each of its lines; "" where nothing stands. "NONE" stands in the
// first line when there is nothing to tell.
struct SensorColumn {
  std::vector<std::string> lines;
  bool any = false;  // something stands there: the column's lamp is red
};

// From bytes 11 and 21 of a frame: a set bit has failed. MAP reads "MAP DFL" when it runs on its
// default as well. Six lines.
SensorColumn FailedColumn(int failedBits, int defaultedBits);
// From OptionFlags: a clear bit of 3 to 7 is disabled. Five lines.
SensorColumn DisabledColumn(int optionFlags);
// From byte 16 of a frame: a clear bit failed at some time since the start. Seven lines.
SensorColumn IntermitColumn(int intermitBits, std::string_view loadMode);
