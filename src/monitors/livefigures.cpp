// Figures of the monitors: values from the live state, units, words, colours and labels.
#include "monitors/livefigures.h"

#include "core/globalstate.h"
#include "core/numbers.h"
#include "core/settings.h"

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
  constexpr Colour dimBlue = Rgb(110, 125, 185);
  constexpr Colour dimGrey = Rgb(110, 110, 110);
  if (ReadSetting("Options", "Monitor Screen") == 0)
    return {deepBlue, paleBlue, White, brightRed, dimBlue};
  return {Black, grey, White, brightRed, dimGrey};
}

// ---- labels -------------------------------------------------------------------------------------

std::string CaptionLabel(const LiveFigure& figure) {
  return std::string(figure.control) + "Caption";
}
std::string UnitLabel(const LiveFigure& figure) { return std::string(figure.control) + "Unit"; }

void AddFigure(Screen& screen, const LiveFigure& figure, const char* grid, int row, int column,
               const FigureStyle& style, const MonitorColours& colours) {
  const int above = style.captionAbove ? 1 : 0;
  const int digitsColumn = column + 1 - above;
  Control caption{.name = CaptionLabel(figure),
                  .caption = std::string(figure.caption),
                  .place = {.in = grid, .row = row, .column = column, .align = Align::Fill},
                  .textAlign = Align::Right,
                  .backColour = colours.back,
                  .foreColour = colours.caption};
  Control digits = caption, unit = caption;
  digits.name = figure.control;
  digits.caption.clear();
  digits.place = {.in = grid, .row = row + above, .column = digitsColumn, .align = Align::Fill};
  digits.widthChars = style.digits;
  digits.fontScale = style.scale;
  digits.bold = true;
  digits.foreColour = colours.figure;
  digits.framed = style.framed;
  digits.accessibleName = std::string(figure.caption) + " " + std::string(figure.unit);
  unit.name = UnitLabel(figure);
  unit.caption = FigureUnit(figure);
  unit.place = digits.place;
  unit.place.column = digitsColumn + 1;
  unit.widthChars = style.unitDigits;
  unit.textAlign = Align::Left;
  for (Control* control : {&caption, &digits, &unit}) Add(screen, std::move(*control));
}

std::vector<FigureLabels> LabelsOf(Screen& screen, std::span<const LiveFigure> figures) {
  std::vector<FigureLabels> labels;
  for (const LiveFigure& figure : figures)
    labels.push_back({&figure, &At(screen, figure.control), &At(screen, UnitLabel(figure))});
  return labels;
}

void ClearFigures(std::span<const FigureLabels> labels) {
  for (const FigureLabels& label : labels) SetCaption(*label.digits, "");
}

void ShowFigures(std::span<const FigureLabels> labels) {
  for (const FigureLabels& label : labels) {
    SetCaption(*label.digits, FigureText(*label.figure));
    if (label.figure->unitNow) SetCaption(*label.unit, FigureUnit(*label.figure));
  }
}

void ColourFigures(std::span<const FigureLabels> labels, Colour colour) {
  for (const FigureLabels& label : labels) SetForeColour(*label.digits, colour);
}
