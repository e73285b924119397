// Walks the calibration map and writes the image. Arithmetic is in double on the single values; a
// result must fit 16 bits before any limit is applied to it.
#include "core/encoder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/ansi.h"
#include "core/calmap.h"
#include "core/globalstate.h"
#include "core/numbers.h"

namespace {

constexpr int highestByte = 255;
constexpr int matSensorBit = 128;

// Image bytes of one element, before the final pass.
struct ByteGroup {
  int count = 1;
  std::array<int, 2> values{};
};

enum class GpoMode { Table, Temperature, Thresholds };

GpoMode CurrentGpoMode() {
  const float mode = CalValues[491];
  if (mode == 0) return GpoMode::Table;
  return mode == 4 ? GpoMode::Temperature : GpoMode::Thresholds;
}

ByteGroup One(int value) { return {1, {value, 0}}; }

int OptionBits(double value) {
  const int bits = ToInt16(value);
  return CalValues[9] == 0 ? bits & (matSensorBit - 1) : bits | matSensorBit;
}

int SignMagnitude(double value, double factor) {
  const int magnitude = ToInt16(std::abs(value * factor));
  return value >= 0 ? magnitude & 127 : magnitude | 128;
}

// The high byte is rounded, not cut, so the low byte can come out negative; the final pass makes it
// 0. The control unit gets the pair as it is.
ByteGroup Pair(double counts) {
  const int high = ToInt16(counts / 256);
  return {2, {high, ToInt16(counts - 256.0 * high)}};
}

ByteGroup SpeedPair(double rpm) { return Pair(rpm * 8191 / 12000); }

int Load(double value, bool limitedInMap) {
  const bool map = LoadMode == "MAP";
  const int counts = ToInt16(value * (map ? 2.4425 : 2.55));
  return limitedInMap || !map ? std::min(counts, highestByte) : counts;
}

int WrappedDegrees(double value, double factor) {
  const int counts = ToInt16(value * factor);
  return value < 0 ? counts + highestByte : counts;
}

// 125 counts of 8 us to the millisecond, in units of 256 counts. The whole part is rounded: with a
// fraction of a half or more nothing is left for the second byte.
ByteGroup EightDotEight(double ms) {
  const double counts = ms * 125 / 256;
  const int whole = ToInt16(counts);
  double rest = counts - whole;
  int fraction = 0;
  for (int weight = 128, part = 2; weight >= 1; weight /= 2, part *= 2) {
    if (rest - 1.0 / part < 0) continue;
    fraction |= weight;
    rest -= 1.0 / part;
  }
  return {2, {whole, fraction}};
}

int AirFuel(double ratio, double factor) {
  return ToInt16(Fix((StoichiometricRatio / ratio - 0.5) * factor));
}

// The ADC count at which a temperature sensor reads the temperature; counts past the end of the
// table are the bounds failure of a temperature that no count has.
int TemperatureCount(double degreesC) {
  const std::span<const int> table(ThermistorTable);
  for (long k = 0;; ++k) {
    const int here = ElementAt(table, k);
    if (here == degreesC) return static_cast<int>(k);
    if (ElementAt(table, k + 1) < degreesC && degreesC < here) return static_cast<int>(k);
  }
}

// The encodings of one element that need nothing but its value and its row.
ByteGroup PlainBytes(const MapRow& row, double v) {
  switch (row.encoding) {
    case Encoding::OptionBits:
      return One(OptionBits(v));
    case Encoding::CopiedInMap:
      return One(LoadMode == "MAP" ? ToInt16(v) : 0);
    case Encoding::SignMagnitude:
      return One(SignMagnitude(v, row.factor));
    case Encoding::Linear:
      return One(ToInt16((v + row.shift) * row.factor));
    case Encoding::Divided:
      return One(ToInt16(v / row.factor));
    case Encoding::WaitPeriod:
      return One(ToInt16(ToInt16(v / row.factor) - 1));
    case Encoding::SpeedPair:
      return SpeedPair(v);
    case Encoding::SwitchSpeedPair:
      return Pair(v * row.factor);
    case Encoding::LoadUnlimited:
      return One(Load(v, false));
    case Encoding::LoadLimited:
      return One(Load(v, true));
    case Encoding::Percent:
    case Encoding::GpoTable:
      return One(ToInt16(v / 100 * row.factor));
    case Encoding::Correction:
      return One(ToInt16(Fix(v * 255) + 127));
    case Encoding::WrappedDegrees:
      return One(WrappedDegrees(v, row.factor));
    case Encoding::EightDotEight:
      return EightDotEight(v);
    case Encoding::AirFuel:
      return One(AirFuel(LimitedAirFuel(static_cast<float>(v)), row.factor));
    case Encoding::GpoSpeed:
      return CurrentGpoMode() == GpoMode::Temperature ? One(TemperatureCount(v)) : SpeedPair(v);
    case Encoding::GpoLoad:
      return One(ToInt16(v * row.factor));
    default:
      return One(static_cast<int>(row.factor));
  }
}

void Put(int imageByte, int value) {
  BinImage[static_cast<std::size_t>(imageByte)] = static_cast<std::int16_t>(value);
}

float& Value(int calIndex) { return CalValues[static_cast<std::size_t>(calIndex)]; }

void PutPlainRow(const MapRow& row) {
  const int width = BytesPerValue(row);
  for (int k = 0; k < row.calCount; ++k) {
    const ByteGroup bytes = PlainBytes(row, Value(row.calIndex + k));
    for (int b = 0; b < width; ++b)
      Put(row.imageByte + width * k + b, bytes.values[static_cast<std::size_t>(b)]);
  }
}

void PutOptionBits(const MapRow& row) {
  const int bits = OptionBits(CalValues[0]);
  CalValues[0] = static_cast<float>(bits);
  Put(row.imageByte, bits);
}

void PutSensorBits(const MapRow& row) {
  const int absent =
      (CalValues[6] == 0 ? 1 : 0) | (CalValues[12] == 0 ? 2 : 0) | (CalValues[15] == 0 ? 4 : 0);
  Put(row.imageByte, absent);
}

// The table, or what the mode keeps at the start of its bytes; the rest of them stay as they are.
void PutGpo(const MapRow& table) {
  const GpoMode mode = CurrentGpoMode();
  if (mode == GpoMode::Table) return PutPlainRow(table);
  if (mode == GpoMode::Thresholds) {
    PutPlainRow(*RowOfValue(492));
    PutPlainRow(*RowOfValue(493));
    return PutPlainRow(*RowOfValue(494));
  }
  Put(table.imageByte, TemperatureCount(CalValues[492]));
  Put(table.imageByte + 1, TemperatureCount(CalValues[493]));
}

void PutAirFuel(const MapRow& row) {
  for (int k = 0; k < row.calCount; ++k) {
    float& ratio = Value(row.calIndex + k);
    ratio = LimitedAirFuel(ratio);
    Put(row.imageByte + k, AirFuel(ratio, row.factor));
  }
}

constexpr std::size_t curvePoints = 10;
using CurveList = std::array<double, curvePoints>;

// Sensor voltages in counts. The curve runs over the whole range of the converter, whatever the
// first and the last voltage are.
CurveList CurveCounts() {
  CurveList counts{};
  counts.back() = highestByte;
  for (std::size_t i = 1; i + 1 < curvePoints; ++i)
    counts[i] = ToInt16(Fix(static_cast<double>(CalValues[415 + i]) * 51));
  return counts;
}

CurveList CurveRatios() {
  CurveList ratios{};
  for (std::size_t i = 0; i < curvePoints; ++i) {
    const double ratio = CalValues[425 + i];
    const int counts = ToInt16(Fix(256 - (StoichiometricRatio / ratio - 0.5) * 255));
    ratios[i] = std::min(counts, highestByte);
  }
  return ratios;
}

// Two equal voltages divide by zero: the slope is then no number that fits, and overflows.
void PutEgoSlopes(const MapRow& row) {
  const CurveList counts = CurveCounts();
  const CurveList ratios = CurveRatios();
  for (std::size_t i = 0; i + 1 < curvePoints; ++i) {
    const double slope = std::abs(ratios[i + 1] - ratios[i]) / (counts[i + 1] - counts[i]);
    Put(row.imageByte + static_cast<int>(i), std::min(ToInt16(slope * 10), highestByte));
  }
}

void PutEgoVolts(const MapRow& row) {
  const CurveList counts = CurveCounts();
  for (int k = 0; k < row.imageCount; ++k)
    Put(row.imageByte + k, static_cast<int>(counts[static_cast<std::size_t>(k + 1)]));
}

void PutEgoRatios(const MapRow& row) {
  const CurveList ratios = CurveRatios();
  for (int k = 0; k < row.imageCount; ++k)
    Put(row.imageByte + k, static_cast<int>(ratios[static_cast<std::size_t>(k)]));
}

void PutFileName(const MapRow& row) {
  constexpr int point = '.';
  for (int k = 0; k < row.imageCount; ++k) Put(row.imageByte + k, 0);
  int at = row.imageByte;
  for (int code : AnsiCodes(BinShortName)) {
    if (code == point || at == row.imageByte + row.imageCount) return;
    Put(at++, code);
  }
}

void PutMarks(const MapRow& row) {
  for (int k = 0; k < row.imageCount; ++k)
    Put(row.imageByte + k, ImageMarks[static_cast<std::size_t>(k)]);
}

void PutRow(const MapRow& row) {
  switch (row.encoding) {
    case Encoding::Carried:
    case Encoding::NeverWritten:
    case Encoding::GpoSpeed:
    case Encoding::GpoLoad:
      return;
    case Encoding::OptionBits:
      return PutOptionBits(row);
    case Encoding::SensorBits:
      return PutSensorBits(row);
    case Encoding::Constant:
      return Put(row.imageByte, static_cast<int>(row.factor));
    case Encoding::Marks:
      return PutMarks(row);
    case Encoding::ClearedValue:
      Value(row.calIndex) = 0;
      return Put(row.imageByte, 0);
    case Encoding::GpoTable:
      return PutGpo(row);
    case Encoding::AirFuel:
      return PutAirFuel(row);
    case Encoding::EgoSlopes:
      return PutEgoSlopes(row);
    case Encoding::EgoVolts:
      return PutEgoVolts(row);
    case Encoding::EgoRatios:
      return PutEgoRatios(row);
    case Encoding::FileName:
      return PutFileName(row);
    default:
      return PutPlainRow(row);
  }
}

int LimitedToByte(int value) { return std::clamp(value, 0, highestByte); }

// Whether an element has bytes that follow from it alone, in the GPO mode in force.
bool HasOwnBytes(const MapRow& row) {
  switch (row.encoding) {
    case Encoding::Carried:
    case Encoding::EgoVolts:
    case Encoding::EgoRatios:
      return false;
    case Encoding::GpoSpeed:
      return CurrentGpoMode() != GpoMode::Table;
    case Encoding::GpoLoad:
      return CurrentGpoMode() == GpoMode::Thresholds;
    default:
      return true;
  }
}

// In the temperature mode the two GPO parameters are one byte each, side by side.
int FirstByte(const MapRow& row, int calIndex, int count) {
  if (row.encoding == Encoding::GpoSpeed && count == 1) return 244 + calIndex - 492;
  return row.imageByte + BytesPerValue(row) * (calIndex - row.calIndex);
}

}  // namespace

float LimitedAirFuel(float ratio) {
  const bool outside = ratio < 9.76F || ratio > 29.28F;
  return outside ? static_cast<float>(StoichiometricRatio) : ratio;
}

void EncodeCalibration() {
  for (const MapRow& row : CalibrationMap()) PutRow(row);
  for (std::size_t n = 0; n < 512; ++n)
    BinImage[n] = static_cast<std::int16_t>(LimitedToByte(BinImage[n]));
}

std::optional<EncodedParameter> EncodeParameter(int calIndex, float value) {
  const MapRow* row = RowOfValue(calIndex);
  if (row == nullptr || !HasOwnBytes(*row)) return std::nullopt;
  const ByteGroup bytes = PlainBytes(*row, value);
  EncodedParameter result{FirstByte(*row, calIndex, bytes.count), bytes.count, bytes.values};
  for (int& byte : result.bytes) byte = LimitedToByte(byte);
  return result;
}

int EncodedByte(int calIndex, float value) {
  const std::optional<EncodedParameter> encoded = EncodeParameter(calIndex, value);
  if (!encoded) RaiseFailure(FailureSubscript);
  return encoded->bytes[0];
}
