// Dials and bars of the analog monitor.
#include "monitors/instruments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "core/numbers.h"
#include "monitors/dials.h"

namespace {

// The bands count from a left end at 174 degrees; turned by 3 both ends stand level.
constexpr double leftEnd = 174;
constexpr double turned = 3;
constexpr Colour bandYellow = Rgb(250, 205, 40);
constexpr Colour bandRed = Rgb(230, 50, 40);
constexpr Colour needleColour = Rgb(255, 140, 30);
constexpr Colour barColour = Rgb(70, 190, 110);
constexpr Colour barBack = Rgb(40, 44, 60);

Point Polar(Point centre, double radius, double degrees) {
  const double angle = degrees * std::numbers::pi / 180;
  return {centre.x + radius * std::cos(angle), centre.y - radius * std::sin(angle)};
}

// The largest size in points at which the text fits.
double FittingPoints(const std::string& text, double width, double height, bool bold) {
  constexpr double trial = 20;
  const TextSize size = MeasureText(text, trial, bold);
  if (size.width <= 0 || size.height <= 0) return trial;
  return std::clamp(trial * std::min(width / size.width, height / size.height), 6.0, 48.0);
}

struct Dial {
  Point centre;
  double radius = 0;
};

// Four dials beside each other, the tachometer twice as wide as the others.
std::array<Dial, 4> DialsOf(const Control& canvas) {
  constexpr std::array<double, 4> shares = {0.37, 0.21, 0.21, 0.21};
  const double width = canvas.canvasWidth, height = canvas.canvasHeight;
  std::array<Dial, 4> dials;
  double left = 0;
  for (std::size_t i = 0; i < dials.size(); ++i) {
    const double room = shares[i] * width;
    const double radius = std::max(10.0, std::min(room / 2 - 14, height * 0.66));
    dials[i] = {{left + room / 2, height * 0.76}, radius};
    left += room;
  }
  return dials;
}

struct ScaleMark {
  int step;
  std::string text;  // "" is a small mark
};

std::vector<ScaleMark> TachMarks(const TachScale& scale) {
  std::vector<ScaleMark> marks;
  for (double rpm = 0; rpm <= scale.dialRpm; rpm += 500)
    marks.push_back(
        {HeldStep(TachStep(scale, rpm)), std::fmod(rpm, 1000) == 0 ? NumberText(rpm / 1000) : ""});
  return marks;
}

std::vector<ScaleMark> TemperatureMarks(bool fahrenheit) {
  std::vector<ScaleMark> marks;
  const double big = fahrenheit ? 50 : 25;
  for (double degrees = 0; degrees <= (fahrenheit ? 250 : 125); degrees += big)
    marks.push_back({HeldStep(TemperatureStep(degrees, fahrenheit)), NumberText(degrees)});
  return marks;
}

std::vector<ScaleMark> VoltMarks() {
  std::vector<ScaleMark> marks;
  for (int halves = 0; halves <= 10; ++halves)
    marks.push_back(
        {HeldStep(TpsStep(halves / 2.0)), halves % 2 == 0 ? NumberText(halves / 2) : ""});
  return marks;
}

void DrawBand(Control& canvas, const Dial& dial, double from, double to, Colour colour) {
  const double start = std::clamp(from, -4.0, leftEnd);
  const double end = std::clamp(to, -4.0, leftEnd);
  if (start <= end) return;
  DrawArc(canvas, dial.centre, dial.radius * 0.94, end + turned, start - end,
          {.colour = colour, .width = std::max(3.0, dial.radius * 0.08), .antialias = true});
}

void DrawFace(Control& canvas, const Dial& dial, const std::vector<ScaleMark>& marks,
              const std::string& name, const MonitorColours& colours) {
  const Stroke line{.colour = colours.caption, .width = 2, .antialias = true};
  DrawArc(canvas, dial.centre, dial.radius, NeedleDegrees(DialSteps),
          NeedleDegrees(0) - NeedleDegrees(DialSteps), line);
  const double points = FittingPoints("00", dial.radius * 0.22, dial.radius * 0.17, false);
  for (const ScaleMark& mark : marks) {
    const double degrees = NeedleDegrees(mark.step);
    DrawLine(canvas, Polar(dial.centre, dial.radius, degrees),
             Polar(dial.centre, dial.radius * (mark.text.empty() ? 0.93 : 0.87), degrees), line);
    if (!mark.text.empty())
      DrawText(canvas, Polar(dial.centre, dial.radius * 0.72, degrees), mark.text,
               {.colour = colours.figure, .pointSize = points, .anchor = TextAnchor::Centre});
  }
  const double namePoints = FittingPoints(name, dial.radius * 1.1, dial.radius * 0.17, true);
  DrawText(canvas, {dial.centre.x, dial.centre.y - dial.radius * 0.42}, name,
           {.colour = colours.caption,
            .pointSize = namePoints,
            .bold = true,
            .anchor = TextAnchor::Centre});
}

void DrawNeedle(Control& canvas, const Dial& dial, int step, const std::string& digits,
                const MonitorColours& colours) {
  const double degrees = NeedleDegrees(HeldStep(step));
  const double thick = std::max(2.5, dial.radius * 0.03);
  FillPolygon(canvas,
              {Polar(dial.centre, dial.radius * 0.88, degrees),
               Polar(dial.centre, thick, degrees + 90), Polar(dial.centre, thick, degrees - 90)},
              {.colour = needleColour, .antialias = true});
  FillCircle(canvas, dial.centre, thick * 1.8, {.colour = needleColour, .antialias = true});
  const double points = FittingPoints("00000", dial.radius * 0.9, dial.radius * 0.26, true);
  DrawText(
      canvas, {dial.centre.x, dial.centre.y + dial.radius * 0.24}, digits,
      {.colour = colours.figure, .pointSize = points, .bold = true, .anchor = TextAnchor::Centre});
}

// ---- bars ---------------------------------------------------------------------------------------

struct Bar {
  std::string name;
  std::string leftEnd;
  std::string rightEnd;
};

struct BarPlace {
  Point corner;
  Point opposite;
  double middle;  // of the line of texts above it
};

constexpr int barCount = 3;

BarPlace PlaceOfBar(const Control& canvas, int index) {
  const double room = static_cast<double>(canvas.canvasHeight) / barCount;
  const double top = room * index;
  return {{8, top + room * 0.52}, {canvas.canvasWidth - 8.0, top + room * 0.9}, top + room * 0.27};
}

double LineHeightOf(const Control& canvas) {
  return static_cast<double>(canvas.canvasHeight) / barCount * 0.42;
}

std::array<Bar, barCount> BarsOf(const InstrumentFaces& faces) {
  const std::string load = faces.loadUnit.empty() ? "MAP" : "MAP  " + faces.loadUnit;
  return {{{load, "0", NumberText(faces.loadMaximum)},
           {"EGO", "LEAN", "RICH"},
           {"INJECTOR DUTY CYCLE", "0", "100"}}};
}

void DrawLevel(Control& canvas, int index, double share, const std::string& digits, Colour colour,
               Colour digitColour) {
  const BarPlace place = PlaceOfBar(canvas, index);
  const double held = std::isnan(share) ? 0 : std::clamp(share, 0.0, 1.0);
  const double right = place.corner.x + held * (place.opposite.x - place.corner.x);
  if (right > place.corner.x)
    FillRectangle(canvas, place.corner, {right, place.opposite.y}, {.colour = colour});
  DrawText(
      canvas, {place.opposite.x - canvas.canvasWidth * 0.22, place.middle}, digits,
      {.colour = digitColour,
       .pointSize = FittingPoints("000.00", canvas.canvasWidth * 0.2, LineHeightOf(canvas), true),
       .bold = true,
       .anchor = TextAnchor::Right});
}

bool HasSize(const Control& canvas) { return canvas.canvasWidth > 0 && canvas.canvasHeight > 0; }

}  // namespace

double NeedleDegrees(int step) { return leftEnd + turned - step; }

void DrawDialFaces(Control& canvas, const InstrumentFaces& faces, const MonitorColours& colours) {
  if (!HasSize(canvas)) return;
  ClearCanvas(canvas, colours.back);
  const auto dials = DialsOf(canvas);
  const TachBands bands = TachBandsOf(faces.revLimitRpm);
  DrawBand(canvas, dials[0], bands.yellowFrom, std::min(bands.redFrom, leftEnd), bandYellow);
  DrawBand(canvas, dials[0], bands.redFrom, bands.end, bandRed);
  DrawFace(canvas, dials[0], TachMarks(TachScaleOf(faces.revLimitRpm)), " ERPM   X1000", colours);
  const auto temperatures = TemperatureMarks(faces.fahrenheit);
  DrawFace(canvas, dials[1], temperatures, "CLT " + faces.temperatureUnit, colours);
  DrawFace(canvas, dials[2], temperatures, "MAT " + faces.temperatureUnit, colours);
  DrawFace(canvas, dials[3], VoltMarks(), "TPS V", colours);
  KeepAsBackground(canvas);
}

void DrawDialNeedles(Control& canvas, const InstrumentFaces& faces,
                     const InstrumentReadings& readings, const MonitorColours& colours) {
  if (!HasSize(canvas)) return;
  ClearForeground(canvas);
  const auto dials = DialsOf(canvas);
  DrawNeedle(canvas, dials[0], TachStep(TachScaleOf(faces.revLimitRpm), readings.rpm),
             readings.rpmText, colours);
  DrawNeedle(canvas, dials[1], readings.cltStep, readings.cltText, colours);
  DrawNeedle(canvas, dials[2], readings.matStep, readings.matText, colours);
  DrawNeedle(canvas, dials[3], readings.tpsStep, readings.tpsText, colours);
}

void DrawBarFaces(Control& canvas, const InstrumentFaces& faces, const MonitorColours& colours) {
  if (!HasSize(canvas)) return;
  ClearCanvas(canvas, colours.back);
  const auto bars = BarsOf(faces);
  for (int i = 0; i < barCount; ++i) {
    const Bar& bar = bars[static_cast<std::size_t>(i)];
    const BarPlace place = PlaceOfBar(canvas, i);
    FillRectangle(canvas, place.corner, place.opposite, {.colour = barBack});
    const double points =
        FittingPoints("INJECTOR DUTY CYCLE", canvas.canvasWidth * 0.44, LineHeightOf(canvas), true);
    DrawText(canvas, {place.corner.x, place.middle}, bar.leftEnd,
             {.colour = colours.caption, .pointSize = points});
    DrawText(canvas, {canvas.canvasWidth * 0.3, place.middle}, bar.name,
             {.colour = colours.caption,
              .pointSize = points,
              .bold = true,
              .anchor = TextAnchor::Centre});
    DrawText(canvas, {place.opposite.x, place.middle}, bar.rightEnd,
             {.colour = colours.caption, .pointSize = points, .anchor = TextAnchor::Right});
  }
  KeepAsBackground(canvas);
}

void DrawBarLevels(Control& canvas, const InstrumentFaces& faces,
                   const InstrumentReadings& readings, const MonitorColours& colours) {
  if (!HasSize(canvas)) return;
  constexpr double egoFullVolts = 5;
  ClearForeground(canvas);
  DrawLevel(canvas, 0, readings.load / faces.loadMaximum, readings.loadText, barColour,
            colours.figure);
  DrawLevel(canvas, 1, readings.egoVolts / egoFullVolts, readings.egoText, barColour,
            colours.figure);
  DrawLevel(canvas, 2, static_cast<double>(readings.dutyBar) / DutyBarMaximum, readings.dutyText,
            readings.dutyOver ? bandRed : barColour,
            readings.dutyOver ? colours.warning : colours.figure);
}
