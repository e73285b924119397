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
  return std::clamp(trial * std::min(width / size.width, height / size.height), 6.0, 96.0);
}

struct Dial {
  Point centre;
  double radius = 0;
};

// The tachometer takes the left of the canvas at its full height. The other three dials stand on
// the right, and the bars below them.
constexpr double tachShare = 0.36;
constexpr double dialsShare = 0.56;  // of the height

// A dial as large as the room lets it be: a half circle with its digits below.
Dial DialIn(double left, double width, double height) {
  constexpr double side = 8, above = 0.05, below = 0.44;
  const double radius = std::max(10.0, std::min(width / 2 - side, height / (1 + above + below)));
  const double top = (height - radius * (1 + above + below)) / 2;
  return {{left + width / 2, top + radius * (1 + above)}, radius};
}

std::array<Dial, 4> DialsOf(const Control& canvas) {
  const double width = canvas.canvasWidth, height = canvas.canvasHeight;
  const double left = width * tachShare, room = (width - left) / 3;
  return {DialIn(0, left, height), DialIn(left, room, height * dialsShare),
          DialIn(left + room, room, height * dialsShare),
          DialIn(left + 2 * room, room, height * dialsShare)};
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
  const double namePoints = FittingPoints(name, dial.radius * 0.8, dial.radius * 0.17, true);
  DrawText(canvas, {dial.centre.x, dial.centre.y - dial.radius * 0.42}, name,
           {.colour = colours.caption,
            .pointSize = namePoints,
            .bold = true,
            .anchor = TextAnchor::Centre});
}

// What needles, bars and digits are drawn in.
struct Inks {
  Colour needle;
  Colour bar;
  Colour digits;
  Colour barOver;
  Colour digitsOver;
};

Inks InksOf(bool old, const MonitorColours& colours) {
  if (old) return {colours.muted, colours.muted, colours.muted, colours.muted, colours.muted};
  return {needleColour, barColour, colours.figure, bandRed, colours.warning};
}

void DrawNeedle(Control& canvas, const Dial& dial, int step, const std::string& digits,
                const Inks& inks) {
  const double degrees = NeedleDegrees(HeldStep(step));
  const double thick = std::max(2.5, dial.radius * 0.03);
  FillPolygon(canvas,
              {Polar(dial.centre, dial.radius * 0.88, degrees),
               Polar(dial.centre, thick, degrees + 90), Polar(dial.centre, thick, degrees - 90)},
              {.colour = inks.needle, .antialias = true});
  FillCircle(canvas, dial.centre, thick * 1.8, {.colour = inks.needle, .antialias = true});
  const double points = FittingPoints("00000", dial.radius * 1.3, dial.radius * 0.36, true);
  DrawText(
      canvas, {dial.centre.x, dial.centre.y + dial.radius * 0.27}, digits,
      {.colour = inks.digits, .pointSize = points, .bold = true, .anchor = TextAnchor::Centre});
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

// The height that a bar and the line above it have.
double BarRoom(const Control& canvas) {
  return static_cast<double>(canvas.canvasHeight) * (1 - dialsShare) / barCount;
}

double LineHeightOf(const Control& canvas) { return BarRoom(canvas) * 0.52; }

BarPlace PlaceOfBar(const Control& canvas, int index) {
  const double room = BarRoom(canvas);
  const double top = canvas.canvasHeight * dialsShare + room * index;
  return {{canvas.canvasWidth * tachShare + 8, top + room * 0.58},
          {canvas.canvasWidth - 8.0, top + room * 0.94},
          top + room * 0.3};
}

double WidthOf(const BarPlace& place) { return place.opposite.x - place.corner.x; }

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
      canvas, {place.corner.x + WidthOf(place) * 0.84, place.middle}, digits,
      {.colour = digitColour,
       .pointSize = FittingPoints("000.00", WidthOf(place) * 0.2, LineHeightOf(canvas) * 1.1, true),
       .bold = true,
       .anchor = TextAnchor::Right});
}

bool HasSize(const Control& canvas) { return canvas.canvasWidth > 0 && canvas.canvasHeight > 0; }

}  // namespace

double NeedleDegrees(int step) { return leftEnd + turned - step; }

namespace {

void DrawDialFaces(Control& canvas, const InstrumentFaces& faces, const MonitorColours& colours) {
  const auto dials = DialsOf(canvas);
  const TachBands bands = TachBandsOf(faces.revLimitRpm);
  DrawBand(canvas, dials[0], bands.yellowFrom, bands.redFrom, bandYellow);
  DrawBand(canvas, dials[0], bands.redFrom, bands.end, bandRed);
  DrawFace(canvas, dials[0], TachMarks(TachScaleOf(faces.revLimitRpm)), " ERPM   X1000", colours);
  const auto temperatures = TemperatureMarks(faces.fahrenheit);
  DrawFace(canvas, dials[1], temperatures, "CLT " + faces.temperatureUnit, colours);
  DrawFace(canvas, dials[2], temperatures, "MAT " + faces.temperatureUnit, colours);
  DrawFace(canvas, dials[3], VoltMarks(), "TPS V", colours);
}

void DrawBarFace(Control& canvas, const Bar& bar, const BarPlace& place,
                 const MonitorColours& colours) {
  FillRectangle(canvas, place.corner, place.opposite, {.colour = barBack});
  const double points =
      FittingPoints("INJECTOR DUTY CYCLE", WidthOf(place) * 0.42, LineHeightOf(canvas), true);
  DrawText(canvas, {place.corner.x, place.middle}, bar.leftEnd,
           {.colour = colours.caption, .pointSize = points});
  DrawText(
      canvas, {place.corner.x + WidthOf(place) * 0.36, place.middle}, bar.name,
      {.colour = colours.caption, .pointSize = points, .bold = true, .anchor = TextAnchor::Centre});
  DrawText(canvas, {place.opposite.x, place.middle}, bar.rightEnd,
           {.colour = colours.caption, .pointSize = points, .anchor = TextAnchor::Right});
}

void DrawLevels(Control& canvas, const InstrumentFaces& faces, const InstrumentReadings& readings,
                const Inks& inks) {
  constexpr double egoFullVolts = 5;
  DrawLevel(canvas, 0, readings.load / faces.loadMaximum, readings.loadText, inks.bar, inks.digits);
  DrawLevel(canvas, 1, readings.egoVolts / egoFullVolts, readings.egoText, inks.bar, inks.digits);
  DrawLevel(canvas, 2, static_cast<double>(readings.dutyBar) / DutyBarMaximum, readings.dutyText,
            readings.dutyOver ? inks.barOver : inks.bar,
            readings.dutyOver ? inks.digitsOver : inks.digits);
}

}  // namespace

void DrawFaces(Control& canvas, const InstrumentFaces& faces, const MonitorColours& colours) {
  if (!HasSize(canvas)) return;
  ClearCanvas(canvas, colours.back);
  DrawDialFaces(canvas, faces, colours);
  const auto bars = BarsOf(faces);
  for (int i = 0; i < barCount; ++i)
    DrawBarFace(canvas, bars[static_cast<std::size_t>(i)], PlaceOfBar(canvas, i), colours);
  KeepAsBackground(canvas);
}

void DrawReadings(Control& canvas, const InstrumentFaces& faces, const InstrumentReadings& readings,
                  const MonitorColours& colours) {
  if (!HasSize(canvas)) return;
  ClearForeground(canvas);
  const auto dials = DialsOf(canvas);
  const Inks inks = InksOf(readings.old, colours);
  DrawNeedle(canvas, dials[0], TachStep(TachScaleOf(faces.revLimitRpm), readings.rpm),
             readings.rpmText, inks);
  DrawNeedle(canvas, dials[1], readings.cltStep, readings.cltText, inks);
  DrawNeedle(canvas, dials[2], readings.matStep, readings.matText, inks);
  DrawNeedle(canvas, dials[3], readings.tpsStep, readings.tpsText, inks);
  DrawLevels(canvas, faces, readings, inks);
}
