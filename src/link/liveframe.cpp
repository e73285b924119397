// Decoding of the live frame.
#include "link/liveframe.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/numbers.h"
#include "link/comm.h"
#include "platform/failure.h"

bool ClosedLoop = true;
bool ImperialUnits = false;
bool FuelInLitres = true;
int OptionFlags = 0;
LiveState Live;

namespace {

double Word(const LiveFrame& frame, std::size_t first) {
  return frame[first] * 256.0 + frame[first + 1];
}

template <std::size_t at>
double Raw(const LiveFrame& frame) {
  return frame[at];
}

template <std::size_t at>
double AfrRatio(const LiveFrame& frame) {
  return AfrOfRaw(frame[at]);
}

// 8192 counts of the speed word are 12150 rev/min.
double Erpm(const LiveFrame& frame) { return Int(12150 * (Word(frame, 0) / 8192)); }

double Load(const LiveFrame& frame) {
  if (LoadMode == "MAP") return frame[3] * 0.4094 * MapBar;
  return frame[3] / 255.0 * 100;
}

double EgoCorrection(const LiveFrame& frame) {
  const double count = frame[17];
  return count < 128 ? count / 255 : (256 - count) / -255;
}

double Table(int count) { return ThermistorTable[static_cast<std::size_t>(count)]; }

// Voltages are 8-bit conversions of 0 to 5 V, 51 to the volt (TPS 51.2); pulse widths are counts
// of 8 us, 125 to the ms.
constexpr LiveFieldRow rows[] = {
    {LiveField::Erpm, "ERPM", 0, 2, Erpm, "Int(12150 * word / 8192)", "rev/min", "####0"},
    {LiveField::Adv, "ADV", 2, 1, [](const LiveFrame& f) { return f[2] / 4.25; }, "byte / 4.25",
     "deg", "##.0"},
    {LiveField::Map, "MAP", 3, 1, Load, "byte * 0.4094 * MapBar, in MAF mode byte / 255 * 100",
     "kPa or %", "###.0"},
    {LiveField::Clt, "CLT", 4, 1, [](const LiveFrame& f) { return Table(f[4]); },
     "ThermistorTable[byte], default byte / 2.3182 - 30", "deg C", "##0"},
    {LiveField::Gama, "GAMA", 5, 2,
     [](const LiveFrame& f) { return (128.0 + f[5] + 3.0 * f[6]) / 256; },
     "(128 + first + 3 * second) / 256", "", "###0%"},
    {LiveField::Knock, "KNOCK", 7, 1, [](const LiveFrame& f) { return f[7] / 2.55; }, "byte / 2.55",
     "%", "##0"},
    {LiveField::Mat, "MAT", 8, 1, [](const LiveFrame& f) { return Table(f[8]); },
     "ThermistorTable[byte], default byte / 2.3273 - 30", "deg C", "##0"},
    {LiveField::Tps, "TPS", 9, 1, [](const LiveFrame& f) { return f[9] / 51.2; }, "byte / 51.2",
     "V", "#.00"},
    {LiveField::Bat, "BAT", 10, 1, [](const LiveFrame& f) { return f[10] * 0.067432; },
     "byte * 0.067432", "V", "##.0"},
    {LiveField::Failed, "FAILED", 11, 1, Raw<11>, "bits, set: failed", "", ""},
    {LiveField::Gpo, "GPO", 12, 1, [](const LiveFrame& f) { return f[12] / 255.0 * 100; },
     "byte / 255 * 100", "%", "###0"},
    {LiveField::Tog, "TOG", 13, 2,
     [](const LiveFrame& f) { return (f[13] + f[14] / 256.0) * 256 / 125; },
     "(first + second / 256) * 256 / 125", "ms", "##.00"},
    {LiveField::AfrActual, "AFR actual", 15, 1, AfrRatio<15>, "14.64 / ((128 + byte) / 255)", "",
     "###.00"},
    {LiveField::Intermit, "INTERMIT", 16, 1, Raw<16>, "bits, clear: has failed at some time", "",
     ""},
    {LiveField::Cr, "CR", 17, 1, EgoCorrection, "byte / 255, from 128 on (256 - byte) / -255", "",
     "##0"},
    {LiveField::AfrDesired, "AFR desired", 18, 1, AfrRatio<18>, "14.64 / ((128 + byte) / 255)", "",
     "###.00"},
    {LiveField::AfrBase, "AFR base", 19, 1, Raw<19>, "raw", "", ""},
    {LiveField::Ego, "EGO", 20, 1, [](const LiveFrame& f) { return f[20] / 51.0; }, "byte / 51",
     "V", "#.0"},
    {LiveField::Defaulted, "DEFAULT", 21, 1, Raw<21>, "bits, set: sensor on its default", "", ""},
    {LiveField::TpsBlend, "TPS blend", 22, 1,
     [](const LiveFrame& f) { return RoundEven(f[22] / 51.0 * 100) / 100; },
     "Round(byte / 51 * 100) / 100", "V", "#.00"},
    {LiveField::SignedOffset, "signed offset", 23, 1,
     [](const LiveFrame& f) { return f[23] > 127 ? f[23] - 256.0 : f[23]; },
     "byte, less 256 above 127", "", ""},
    {LiveField::Ref, "REF", 24, 1, Raw<24>, "raw barometric reference", "", ""},
    {LiveField::PwOn, "PW on", 25, 2, [](const LiveFrame& f) { return Word(f, 25) / 125; },
     "word / 125", "ms", "##.00"},
};
static_assert(std::size(rows) == LiveFieldCount);

double& Field(LiveState& live, LiveField field) {
  return live.fields[static_cast<std::size_t>(field)];
}

bool Has(double flags, int bit) { return (static_cast<int>(flags) & bit) != 0; }

// The monitors read the FAILED byte after the temperatures, so that the rule sees that of the frame
// before.
void ReadMonitorTemperatures(LiveState& live, double failedBefore) {
  const LiveFrame& frame = live.frame;
  if (Has(failedBefore, SensorClt) || Has(live[LiveField::Defaulted], SensorClt))
    Field(live, LiveField::Clt) = DefaultCltCelsius(frame[4]);
  if (Has(failedBefore, SensorMat))
    Field(live, LiveField::Mat) = std::max(0.0, DefaultMatCelsius(frame[8]));
}

void ReadLoggerTemperatures(LiveState& live) {
  if (Has(live[LiveField::Failed], SensorMat))
    Field(live, LiveField::Mat) = DefaultMatCelsius(live.frame[8]);
  for (LiveField field : {LiveField::Clt, LiveField::Mat})
    Field(live, field) = std::max(0.0, live[field]);
}

void ComputeEventTime(LiveState& live, FrameReader reader) {
  const double cylinders = CalValues[217];
  const double interval = CalValues[233];
  if (reader == FrameReader::Monitor && !(interval >= 1)) return;
  const double erpm = live[LiveField::Erpm];
  live.eventMs = erpm > 300 ? 1000 / (erpm / (120 / cylinders)) : 0;
  if (interval >= 1) live.eventMs *= interval;
}

void ComputeFiring(LiveState& live, FrameReader reader) {
  const double cylinders = CalValues[217];
  if (cylinders == 0) return;
  ComputeEventTime(live, reader);
  const bool together = std::fmod(Fix(CalValues[0]), 2) != 0;
  live.fireFactor = together ? 1 : cylinders / 2;
  const double cycleMs = live.fireFactor * live.eventMs;
  live.pwOnMs = live.eventMs == 0 ? 0 : live[LiveField::PwOn];
  live.duty = live.eventMs == 0 ? 0 : live.pwOnMs / cycleMs;
  live.pwOffMs = cycleMs - live.pwOnMs;
}

}  // namespace

std::span<const LiveFieldRow> LiveFieldRows() { return rows; }

const LiveFieldRow& RowOf(LiveField field) { return rows[static_cast<std::size_t>(field)]; }

void DecodeFrame(const LiveFrame& frame, FrameReader reader) {
  const double failedBefore = Live[LiveField::Failed];
  Live.decoded = true;
  Live.frame = frame;
  for (const LiveFieldRow& row : rows) Field(Live, row.field) = row.decode(frame);
  if (reader == FrameReader::Monitor)
    ReadMonitorTemperatures(Live, failedBefore);
  else
    ReadLoggerTemperatures(Live);
  ComputeFiring(Live, reader);
}

void DecodeFrame(FrameReader reader) {
  if (RxBuffer.size() < LiveFrameLength) RaiseFailure(FailureSubscript);
  LiveFrame frame;
  std::copy_n(RxBuffer.begin(), frame.size(), frame.begin());
  DecodeFrame(frame, reader);
}

void ResetLiveState() { Live = LiveState{}; }

void ResetLiveFlags() {
  ClosedLoop = true;
  ImperialUnits = false;
  FuelInLitres = true;
  OptionFlags = 0;
}

double DefaultCltCelsius(int count) { return count / 2.3182 - 30; }
double DefaultMatCelsius(int count) { return count / 2.3273 - 30; }
double Fahrenheit(double celsius) { return 32 + 9 * (celsius / 5); }

double AfrOfRaw(double raw) {
  return raw == -128 ? 9.75 : StoichiometricRatio / ((128 + raw) / 255);
}

double AfrOffsetShown(int desiredRaw, double offset) {
  return AfrOfRaw(desiredRaw + offset) - AfrOfRaw(desiredRaw);
}

std::optional<double> LitresPerHour(double duty) {
  const double injectorSize = CalValues[474];
  const double injectors = CalValues[467];
  if (injectorSize == 0) return std::nullopt;
  const double flow = duty * injectorSize * injectors;
  return 60 * ((10.5 * flow) / 1000);
}

double GallonsPerHour(double litresPerHour) { return litresPerHour / 3.79; }

std::optional<double> PairMean::Add(double reading) {
  if (!first) {
    first = reading;
    return std::nullopt;
  }
  const double mean = (*first + reading) / 2;
  first.reset();
  return mean;
}
