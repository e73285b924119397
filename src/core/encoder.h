// From the calibration in engineering units to the image of the control unit, and to the working
// values that graphs, tables and monitors read. Nothing here touches a file or a port.
#pragma once

#include <array>
#include <optional>

// Fills BinImage from CalValues, LoadMode and BinShortName. Also writes CalValues[0], sets
// CalValues[236] to 0 and replaces air/fuel cells out of range by 14.64. Fails with overflow (6)
// when a value leaves 16 bits and with a subscript failure (9) when a GPO temperature has no count;
// BinImage is then half done, what was encoded before stands without the final limits.
void EncodeCalibration();

// Refills the working values from CalValues: spans, injector values, rev limit and the axes, also
// MapFullScale from MapBar. Does not fail, whatever CalValues hold. MaxManifoldKpa is left alone.
void PublishCalGlobals();

// The span in kPa of the MAP sensor that is set (MapBar).
double SensorLowKpa();
double SensorHighKpa();

// A breakpoint of load is stored for a sensor of 1 bar: what makes it the one that is set. 1 in MAF
// mode.
double LoadScale();

// Derives the injector pulse widths at idle load, full load and rev limit. Does not fail; a rev
// limit of 0 gives an infinite on-time.
void ComputeInjectorLimits();

// Copies CalValues[415..434] to EgoVolts and EgoRatios.
void LoadEgoCurve();

// Copies the four tables, the VE table in percent and with its margins, and the coolant advance to
// the working tables, and fills TempAxis.
void CopyTablesToWork();

// One parameter as the encoder would store it.
struct EncodedParameter {
  int imageByte = 0;           // the first image byte
  int count = 0;               // 1 or 2
  std::array<int, 2> bytes{};  // limited to 0 to 255, as after the encoder's final pass
};

// The image bytes that EncodeCalibration would write if CalValues[calIndex] held the value, or
// nothing when the element has no image byte of its own (the EGO curve counts as such; the GPO
// parameters are those of the GPO mode in force). Changes nothing. Fails as EncodeCalibration does.
std::optional<EncodedParameter> EncodeParameter(int calIndex, float value);

// Air to petrol by mass, as the air/fuel bytes of image and live frame count it.
inline constexpr double StoichiometricRatio = 14.64;
// The ratio itself, or the one above for a ratio that the control unit does not know.
float LimitedAirFuel(float ratio);

// The first byte of EncodeParameter. Fails with a subscript failure (9) when there is none.
int EncodedByte(int calIndex, float value);
