// What a ZEM makes of its 512 bytes: the image decoded into the units an engine understands. Read
// from the bytes alone, so that it is a second opinion on how they are to be written.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "simulator/image.h"

namespace sim {

inline constexpr int AxisLength = 8;

// Straight lines between points; the end values hold outside. x rises.
double Interpolate(std::span<const double> x, std::span<const double> y, double at);

// Degrees Celsius of a temperature sensor's count, and the count that reads nearest to it.
double CelsiusOfCount(int count);
int CountOfCelsius(double celsius);

// The raw counts that stand in a frame for a sensor on its default value.
inline constexpr double DefaultCountsPerDegree = 2.3182;

struct Calibration {
  explicit Calibration(const Image& bytes);

  // A cell of an 8 by 8 table of raw bytes, between its neighbours; load in kPa of a 1 bar sensor.
  double Table(int firstByte, double rpm, double kpa) const;
  bool Enabled(int bit) const { return (image[0] >> bit & 1) != 0; }
  double Raw(int index) const { return image[static_cast<std::size_t>(index)]; }
  double Scaled(int index, double perUnit) const { return Raw(index) / perUnit; }
  double Temperature(int index) const { return Raw(index) / 2.3182 - 30; }
  double Speed(int index) const;  // two bytes, 8191 counts for 12000 rpm
  double CoarseSpeed(int index) const { return Raw(index) * 15.31; }
  double Kpa(int index) const { return Raw(index) / 2.4425; }
  double Signed(int index, double perUnit) const;  // two's complement
  // A curve of raw bytes against coolant temperature: -30 degrees, and every ten from there.
  double OverCoolant(int firstByte, int points, double celsius) const;

  Image image;
  std::array<double, AxisLength> speeds{};
  std::array<double, AxisLength> loads{};
};

// The bytes and bits that the engine asks for.
namespace cell {
inline constexpr int RevCutByZeroAdvance = 2, RevLimiter = 3, KnockControl = 4, IdleControl = 5,
                     EgoControl = 6, AirSensor = 7;  // bits of byte 0
inline constexpr int InjectorOffset = 2, InitialAdvance = 3, RevLimit = 4, RevHysteresis = 6,
                     CoolantDefault = 10, AirDefault = 13, ThrottleDefault = 16, MapDefault = 19,
                     KnockThreshold = 21, AdvanceIncrease = 22, AdvanceRetard = 23, MaxRetard = 25,
                     KnockInhibit = 26, SpeedAxis = 30, LoadAxis = 46, AdvanceTable = 54,
                     FuelTable = 118, Start1Temperature = 182, Start1Constant = 183,
                     Start20Temperature = 184, Start20Constant = 185, ThrottleRate = 186,
                     AccelTemperature = 188, AccelConstant = 189, AccelTime = 190,
                     AccelDecaying = 191, AirDensity = 192, IdleTemperatures = 193,
                     IdleSpeeds = 196, IdleStepsUp = 199, IdleStepsDown = 200, IdleResetSteps = 201,
                     IdleCoarse = 202, IdleStepsFine = 203, IdleWaitDown = 204, IdleWaitUp = 205,
                     EgoTemperature = 206, EgoAuthority = 207, DecelColdSpeed = 208,
                     DecelHotSpeed = 209, DecelMap = 211, DecelAfter = 212, ClosedThrottle = 213,
                     IdleLeastMap = 214, BatteryCompensation = 215, AccelVariable = 217,
                     OneGama = 218, CoolantAdvance = 225, IdleAdvanceLow = 237,
                     IdleAdvanceHigh = 238, StartPulseBelow = 239, StartPulse = 241, Gpo = 244,
                     WarmUp = 311, LeastPulse = 323, AirFuelTable = 325, EgoCurveVolts = 398,
                     EgoCurveRatios = 406, EgoHighMapSpeed = 416, EgoHighMap = 418, EgoEvents = 420,
                     EgoInstant = 421, EgoAverage = 422, BlendSpeeds = 423, BlendPercents = 439,
                     BlendOffset = 447, AirAdvance = 448, GpoMode = 465;
}  // namespace cell

}  // namespace sim
