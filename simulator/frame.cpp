// The live frame: 27 bytes of the engine's state.
#include <algorithm>
#include <cmath>

#include "simulator/engine.h"
#include "simulator/physics.h"

namespace sim {
namespace {

std::uint8_t ByteOf(double value) {
  return static_cast<std::uint8_t>(std::clamp(std::nearbyint(value), 0.0, 255.0));
}

// Fraction in 1/255, two's complement.
std::uint8_t SignedByteOf(double value) {
  return static_cast<std::uint8_t>(
      static_cast<int>(std::clamp(std::nearbyint(value), -128.0, 127.0)) & 255);
}

void PutWord(LiveBytes& frame, std::size_t index, double value) {
  const int word = static_cast<int>(std::clamp(std::nearbyint(value), 0.0, 65535.0));
  frame[index] = static_cast<std::uint8_t>(word >> 8);
  frame[index + 1] = static_cast<std::uint8_t>(word & 255);
}

// (128 + first + 3 * second) / 256 is the ratio: a quarter of the counts in the second byte, and
// the first takes as much again and what is left.
void PutGama(LiveBytes& frame, double gama) {
  const int counts = static_cast<int>(std::clamp(std::nearbyint(gama * 256) - 128, 0.0, 1020.0));
  const int quarter = std::min(counts / 4, 255);
  frame[6] = static_cast<std::uint8_t>(quarter);
  frame[5] = static_cast<std::uint8_t>(std::min(counts - 3 * quarter, 255));
}

}  // namespace

// The general purpose output, 0 to 1, by its mode: duty table, temperature switch, or thresholds.
double Engine::GpoShare() const {
  const int mode = static_cast<int>(cal_.Raw(cell::GpoMode));
  double share = 0;
  if (mode == 0) {
    share = cal_.Table(cell::Gpo, rpm_, LoadKpa()) / 255;
  } else if (mode == 4) {
    share = CountOfCelsius(coolant_) <= cal_.Raw(cell::Gpo) ? 1 : 0;  // hot is a low count
  } else {
    share = rpm_ > cal_.Speed(cell::Gpo) && LoadKpa() > cal_.Kpa(cell::Gpo + 4) ? 1 : 0;
  }
  return std::clamp(share + static_cast<std::int8_t>(offsets.gpo) / 255.0, 0.0, 1.0);
}

LiveBytes Engine::Frame() const {
  LiveBytes frame{};
  PutWord(frame, 0, rpm_ * 8192 / 12150);
  frame[2] = ByteOf(advance_ * 4.25);
  frame[3] = ByteOf(LoadKpa() * 2.4425);
  frame[4] = Fails(Sensor::Coolant) ? ByteOf(cal_.Raw(cell::CoolantDefault))
                                    : ByteOf(CountOfCelsius(coolant_));
  PutGama(frame, gama_);
  frame[7] = ByteOf(knockLevel_);
  frame[8] = Fails(Sensor::Air) ? ByteOf(cal_.Raw(cell::AirDefault)) : ByteOf(CountOfCelsius(air_));
  frame[9] = ByteOf((Fails(Sensor::Throttle) ? cal_.Scaled(cell::ThrottleDefault, 51)
                                             : ThrottleVolts(throttle_)) *
                    51.2);
  frame[10] = ByteOf(battery_ / 0.067432);
  frame[11] = static_cast<std::uint8_t>(failed_ & 63);
  frame[12] = ByteOf(GpoShare() * 255);
  frame[13] = offsets.togHigh;
  frame[14] = offsets.togLow;
  frame[15] = ByteOf(ActualCounts());
  frame[16] = static_cast<std::uint8_t>(~everFailed_ & 127);
  frame[17] = SignedByteOf(correction_ * 255);
  frame[18] = ByteOf(DesiredCounts());
  frame[19] = ByteOf(cal_.Table(cell::AirFuelTable, rpm_, LoadKpa()));
  frame[20] = ByteOf(egoVolts_ * 51);
  frame[21] =
      static_cast<std::uint8_t>((Fails(Sensor::Coolant) ? 1 : 0) | (Fails(Sensor::Map) ? 4 : 0));
  frame[22] = offsets.tpsBlend;
  frame[23] = SignedByteOf(SignAndMagnitude(offsets.advance));
  frame[24] = ByteOf(BarometerKpa * 2.4425);
  PutWord(frame, 25, pulseMs_ * 125);
  return frame;
}

}  // namespace sim
