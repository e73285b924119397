// The map between the calibration in engineering units and the 512 image bytes: one row for every
// parameter, table and constant, in image order. The encoder, report, editors and documents walk
// the same rows.
#pragma once

#include <optional>
#include <span>
#include <string_view>

// How an element v of CalValues becomes its image bytes. Round goes to the nearest whole number,
// ties to the even neighbour; Fix drops the fraction. Factor and shift are those of the row.
enum class Encoding {
  Carried,          // no image byte: kept in the file, or read by others alone
  OptionBits,       // the low bits; bit 7 follows the MAT sensor's failure voltage
  CopiedInMap,      // v in "MAP" mode, 0 in "MAF" mode
  SignMagnitude,    // top bit the sign, below it Round(|v * factor|)
  Linear,           // Round((v + shift) * factor)
  Divided,          // Round(v / factor)
  WaitPeriod,       // Round(v / factor) - 1
  SpeedPair,        // x = v * 8191 / 12000; Round(x / 256), then Round(x - 256 * the first)
  SwitchSpeedPair,  // the same two bytes of x = v * factor
  LoadUnlimited,    // "MAP": Round(v * 2.4425); "MAF": Round(v * 2.55), at most 255
  LoadLimited,      // as LoadUnlimited, at most 255 in both modes
  Percent,          // Round(v / 100 * factor)
  Correction,       // Round(Fix(v * 255) + 127)
  WrappedDegrees,   // Round(v * factor), negative v plus 255
  EightDotEight,    // x = v * 125 / 256; Round(x), then the rest in eight binary digits
  AirFuel,          // Fix((14.64 / v - 0.5) * 255), out of range as 14.64
  SensorBits,       // a bit for each of CLT, TPS and MAP that has no failure voltage
  Constant,         // the factor
  Marks,            // ImageMarks
  ClearedValue,     // 0, and so becomes v
  GpoTable,         // as Percent, in GPO mode 0; this row's bytes carry GpoParameter else
  GpoSpeed,         // in the threshold modes as SpeedPair, in the temperature mode an ADC count
  GpoLoad,          // in the threshold modes Round(v * factor)
  EgoSlopes,        // the slopes between the points of the EGO curve
  EgoVolts,         // points 2 to 9 of the EGO curve, Fix(v * 51)
  EgoRatios,        // Fix(256 - (14.64 / v - 0.5) * 255), at most 255
  FileName,         // the name without its extension
  NeverWritten,     // stays as it is, 0 from the start
};

struct ValueRange {
  double low = 0;
  double high = 0;
};

inline constexpr int NoIndex = -1;

struct MapRow {
  int calIndex = NoIndex;   // the first element of CalValues
  int calCount = 0;         // how many elements
  int imageByte = NoIndex;  // the first image byte
  int imageCount = 0;       // how many bytes in all
  std::string_view meaning;
  std::string_view unit;            // of the stored value
  std::optional<ValueRange> range;  // what an editor lets in, as the value is stored
  Encoding encoding = Encoding::Carried;
  double factor = 0;
  double shift = 0;
};

// Every row, in image order; rows without image bytes stand where their CalValues belong.
std::span<const MapRow> CalibrationMap();

// The row of an element of CalValues, or nothing for an index out of range.
const MapRow* RowOfValue(int calIndex);

// The row of an image byte; for those that the GPO table shares with the GPO parameters, the table.
const MapRow* RowOfImageByte(int imageByte);

// The image bytes of one element of a row; 0 when it has none.
int BytesPerValue(const MapRow& row);
