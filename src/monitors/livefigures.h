// The figures of the monitors: where their texts come from, the labels that show them, and the
// colours of a monitor.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "link/liveframe.h"
#include "platform/screen.h"

// A figure of a monitor: where its text comes from.
struct LiveFigure {
  std::string_view control;            // the label that shows it
  std::string_view caption;            // in front of it
  std::string_view unit;               // behind it
  std::string_view mask;               // of Format
  double (*value)();                   // from Live
  std::string (*words)() = nullptr;    // stands in its place unless empty ("OPEN", "DIS")
  std::string (*unitNow)() = nullptr;  // a unit that depends on the keys, instead of `unit`
};
std::string FigureText(const LiveFigure& figure);
std::string FigureUnit(const LiveFigure& figure);

// Values of rows that show a field as it is, or a share in percent.
template <LiveField field>
double Plain() {
  return Live[field];
}
template <LiveField field>
double TimesHundred() {
  return Live[field] * 100;
}

// Values, units and words as both monitors show them, in the units that are chosen.
double ShownLoad();  // kPa or IN-Hg; % in MAF mode
std::string LoadUnit();
double ShownClt();
double ShownMat();
std::string TemperatureUnit();  // degree sign and letter
double ShownFuelFlow();
std::string FuelFlowUnit();   // "LPH" or "GPH"
std::string FuelFlowWords();  // "0" without an injector size
std::string LoopWords();      // "OPEN" while ClosedLoop is false
std::string GamaWords();      // "DIS" while bit 4 of OptionFlags is clear

// ---- colours ------------------------------------------------------------------------------------

struct MonitorColours {
  Colour back;
  Colour caption;
  Colour figure;
  Colour warning;
  Colour muted;  // of figures that are old
};
// By the setting "Monitor Screen": blue for 0, otherwise black.
MonitorColours ColoursOfSetting();

// ---- labels -------------------------------------------------------------------------------------

struct FigureStyle {
  bool captionAbove = false;  // else in front
  double scale = 1;           // of the digits
  int digits = 7;
  int unitDigits = 4;
  bool framed = false;
};
// Adds caption, digits and unit to a grid; they take three columns, or two with the caption in the
// row above the digits.
void AddFigure(Screen& screen, const LiveFigure& figure, const char* grid, int row, int column,
               const FigureStyle& style, const MonitorColours& colours);
std::string CaptionLabel(const LiveFigure& figure);  // names of the two around the digits
std::string UnitLabel(const LiveFigure& figure);

// The labels of a screen that is loaded, so that a frame is shown without a search.
struct FigureLabels {
  const LiveFigure* figure;
  Control* digits;
  Control* unit;
};
std::vector<FigureLabels> LabelsOf(Screen& screen, std::span<const LiveFigure> figures);
void ClearFigures(std::span<const FigureLabels> labels);
void ShowFigures(std::span<const FigureLabels> labels);
void ColourFigures(std::span<const FigureLabels> labels, Colour colour);
