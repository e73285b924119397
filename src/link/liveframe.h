// The control unit's running state: the 27 bytes of its reply to "F", what they mean, and the
// values computed from them. Monitors, logger and Auto VE decode with the same routine; the
// external logger's records hold the same bytes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

inline constexpr std::size_t LiveFrameLength = 27;
// One reply to "F", byte 0 first on the wire.
using LiveFrame = std::array<std::uint8_t, LiveFrameLength>;

// ---- process-wide flags -------------------------------------------------------------------------

// Keys C, T and F of the monitors. Start as true, false and true.
extern bool ClosedLoop;
extern bool ImperialUnits;
extern bool FuelInLitres;
// The option byte that the "G" reply returned; a clear bit means the function is disabled: 3 REV,
// 4 KNO, 5 IDL, 6 EGO, 7 MAT. Starts as 0.
extern int OptionFlags;

// ---- the fields ---------------------------------------------------------------------------------

enum class LiveField {
  Erpm,
  Adv,
  Map,
  Clt,
  Gama,
  Knock,
  Mat,
  Tps,
  Bat,
  Failed,
  Gpo,
  Tog,
  AfrActual,
  Intermit,
  Cr,
  AfrDesired,
  AfrBase,
  Ego,
  Defaulted,
  TpsBlend,
  SignedOffset,
  Ref,
  PwOn,
  Count,
};
inline constexpr std::size_t LiveFieldCount = static_cast<std::size_t>(LiveField::Count);

// One field of the frame. Temperatures decode by their table here; which reading is shown depends
// on the sensor flags, see DecodeFrame. AfrDesired decodes to the ratio, its raw byte stays in the
// frame.
struct LiveFieldRow {
  LiveField field;
  std::string_view name;
  int firstByte;
  int byteCount;  // 2: high byte first
  double (*decode)(const LiveFrame& frame);
  std::string_view scale;   // in words, for documents
  std::string_view unit;    // "" for ratios, flags and raw values
  std::string_view format;  // mask of the monitors
};
std::span<const LiveFieldRow> LiveFieldRows();
const LiveFieldRow& RowOf(LiveField field);

// Bits of the FAILED and INTERMIT bytes, by sensor; FAILED has no LOB. MAP reads "MAF" in MAF mode.
enum SensorBit : int {
  SensorClt = 1,
  SensorMat = 2,
  SensorMap = 4,
  SensorEgo = 8,
  SensorKno = 16,
  SensorTps = 32,
  SensorLob = 64,
};

// ---- the live values ----------------------------------------------------------------------------

// What the last frame said, and what was computed from it. Values that a frame cannot give anew
// keep what they had.
struct LiveState {
  bool decoded = false;                         // a frame stands here
  LiveFrame frame{};                            // as received; all zero before the first
  std::array<double, LiveFieldCount> fields{};  // by LiveField; temperatures as to be shown, deg C
  double eventMs = 0;  // T: time between injections of one injector, ms; 0 at or below 300 rev/min
  double fireFactor = 0;  // N: 1 when all injectors fire at once, else half the cylinders
  double pwOnMs = 0;
  double pwOffMs = 0;
  double duty = 0;  // a fraction; 1 is always open
  double operator[](LiveField field) const { return fields[static_cast<std::size_t>(field)]; }
};
extern LiveState Live;

enum class FrameReader { Monitor, Logger };

// Decodes the frame that stands in RxBuffer into Live. Nothing of it is checked; a subscript
// failure (9) when it is shorter than a frame, with Live as it was. The temperature rules and the
// firing time are those of the reader.
void DecodeFrame(FrameReader reader);
// The same for bytes from elsewhere.
void DecodeFrame(const LiveFrame& frame, FrameReader reader);

// Back to what stands before a session's first frame.
void ResetLiveState();
// The flags too; start-up and tests.
void ResetLiveFlags();

// ---- single rules -------------------------------------------------------------------------------

double DefaultCltCelsius(int count);
double DefaultMatCelsius(int count);
double Fahrenheit(double celsius);
// The air/fuel ratio of a raw value, which an offset may have moved out of a byte.
double AfrOfRaw(double raw);
// What offset D of the last `oafr` makes of the desired air/fuel ratio: the difference, as shown.
double AfrOffsetShown(int desiredRaw, double offset);

// Litres an hour at this duty; nothing when no injector size is known (the display is then "0").
std::optional<double> LitresPerHour(double duty);
double GallonsPerHour(double litresPerHour);

// The mean of two readings in a row: the first of each pair is only kept.
struct PairMean {
  std::optional<double> first;
  // The mean at the second reading of a pair; nothing at the first.
  std::optional<double> Add(double reading);
};
