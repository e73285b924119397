// Figures of the monitors: values from the live state, units, words and colours.
#include "core/globalstate.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "link/liveframe.h"
#include "monitors/livesession.h"

std::string FigureText(const LiveFigure& figure) {
  if (figure.words)
    if (std::string words = figure.words(); !words.empty()) return words;
  return Format(figure.value(), figure.mask);
}

std::string FigureUnit(const LiveFigure& figure) {
  return figure.unitNow ? figure.unitNow() : std::string(figure.unit);
}

namespace {

bool IsMap() { return LoadMode == "MAP"; }

double Temperature(LiveField field) {
  return ImperialUnits ? Fahrenheit(Live[field]) : Live[field];
}

}  // namespace

double ShownLoad() {
  constexpr double inchesOfMercuryPerKpa = 0.2953;
  const double load = Live[LiveField::Map];
  return IsMap() && ImperialUnits ? load * inchesOfMercuryPerKpa : load;
}

std::string LoadUnit() {
  if (!IsMap()) return {};
  return ImperialUnits ? "IN-Hg" : "kPa";
}

double ShownClt() { return Temperature(LiveField::Clt); }
double ShownMat() { return Temperature(LiveField::Mat); }

std::string TemperatureUnit() { return ImperialUnits ? "\u00B0F" : "\u00B0C"; }

double ShownFuelFlow() {
  const double litres = LitresPerHour(Live.duty).value_or(0);
  return FuelInLitres ? litres : GallonsPerHour(litres);
}

std::string FuelFlowUnit() { return FuelInLitres ? "LPH" : "GPH"; }
std::string FuelFlowWords() { return LitresPerHour(Live.duty) ? "" : "0"; }
std::string LoopWords() { return ClosedLoop ? "" : "OPEN"; }

std::string GamaWords() {
  constexpr int knockBit = 1 << 4;
  return OptionFlags & knockBit ? "" : "DIS";
}

MonitorColours ColoursOfSetting() {
  constexpr Colour deepBlue = Rgb(0, 0, 128);
  constexpr Colour paleBlue = Rgb(190, 210, 255);
  constexpr Colour grey = Rgb(190, 190, 190);
  constexpr Colour brightRed = Rgb(255, 90, 80);
  if (ReadSetting("Options", "Monitor Screen") == 0) return {deepBlue, paleBlue, White, brightRed};
  return {Black, grey, White, brightRed};
}
