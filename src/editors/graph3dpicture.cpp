// Draws the 3D graph: back walls and floor, tick marks, surface, titles, marker.
#include "editors/graph3dpicture.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "editors/graph3d.h"

namespace {

constexpr Colour boxColour = Rgb(150, 150, 150);
// The surface's colours are told on black: white, yellow, red and blue all stand out on it.
constexpr Colour paperColour = Black;
constexpr Colour textColour = White;
constexpr Colour gridColour = Rgb(70, 76, 84);
constexpr Colour wallColour = Rgb(24, 28, 34);
constexpr Colour surfaceBlue = Rgb(110, 170, 255);
constexpr double tickLength = 6;
constexpr int valueDivisions = 4;
constexpr double markerRadius = 3;
constexpr double markerRim = 1.5;
constexpr Colour markerColour = Rgb(30, 80, 255);
constexpr double textGap = 4;

struct Picture {
  SurfaceGeometry geometry;
  SurfaceBox box;
  ValueAxis axis;
  // Slope and intercept of the two ground axes, on which the tick marks stand.
  double speedSlope = 0, speedIntercept = 0;
  double loadSlope = 0, loadIntercept = 0;
};
Picture picture;

// Texts that are on the picture already, so that none is drawn over another.
struct Taken {
  double left, top, right, bottom;
};
std::vector<Taken> taken;

bool PlaceText(Control& canvas, Point at, const std::string& text, const TextStyle& style) {
  TextSize size = MeasureText(text, style.pointSize, style.bold);
  double left = style.anchor == TextAnchor::Left    ? at.x
                : style.anchor == TextAnchor::Right ? at.x - size.width
                                                    : at.x - size.width / 2;
  Taken place{left - 1, at.y - size.height / 2, left + size.width + 1, at.y + size.height / 2};
  for (const Taken& other : taken)
    if (place.left < other.right && other.left < place.right && place.top < other.bottom &&
        other.top < place.bottom)
      return false;
  taken.push_back(place);
  DrawText(canvas, at, text, style);
  return true;
}

Colour OnPaper(Colour colour) { return colour == Blue ? surfaceBlue : colour; }

double LineHeight() { return MeasureText("0").height; }

// Ground axes from the near corner: speed to the right, load to the left.
double SpeedAxisY(double x) { return picture.speedIntercept + picture.speedSlope * x; }
double LoadAxisY(double x) { return picture.loadIntercept + picture.loadSlope * x; }

// Of the nodes of one ground axis.
struct Tick {
  Point foot;
  double value = 0;
};

std::vector<Tick> SpeedTicks() {
  const SurfaceGeometry& g = picture.geometry;
  std::vector<Tick> ticks;
  for (int column = SurfaceColumns; column >= FirstTableColumn; --column) {
    double share = GroundOf(column, 1).speedShare;
    if (!(share >= 0 && share <= 1)) continue;
    double x = g.originX + share * g.cosine * g.speedLength;
    ticks.push_back({{x, SpeedAxisY(x)}, RpmAxis[static_cast<std::size_t>(column)]});
  }
  return ticks;
}

std::vector<Tick> LoadTicks() {
  const SurfaceGeometry& g = picture.geometry;
  std::vector<Tick> ticks;
  for (int row = SurfaceRows; row >= 1; --row) {
    double share = GroundOf(1, row).loadShare;
    if (!(share >= 0 && share <= 1)) continue;
    double x = g.originX - share * g.cosine * g.loadLength;
    ticks.push_back({{x, LoadAxisY(x)}, LoadAxis[static_cast<std::size_t>(row)]});
  }
  return ticks;
}

// A ground axis with its ticks; its texts stand on the outer side of it, to the right of the near
// corner (+1) or to the left (-1).
struct GroundAxis {
  std::vector<Tick> ticks;
  double side = 1;
  TextAnchor anchor = TextAnchor::Left;
};

double WidestText(const std::vector<Tick>& ticks) {
  double width = 0;
  for (const Tick& tick : ticks) width = std::max(width, MeasureText(NumberText(tick.value)).width);
  return width;
}

// Below the labels, however many of them there are: a text that begins where the label of the
// axis' middle ends has only labels of higher ticks above it.
void DrawAxisTitle(Control& canvas, const GroundAxis& axis, Point middle,
                   const std::vector<const char*>& lines) {
  double line = LineHeight();
  double away = tickLength + 2 * textGap + WidestText(axis.ticks);
  double width = 0;
  for (const char* text : lines) width = std::max(width, MeasureText(text, 0, true).width);
  double x = middle.x + axis.side * (away + width / 2);
  double y = middle.y + tickLength + 2 * line;
  for (const char* text : lines) {
    PlaceText(canvas, {x, y}, text,
              {.colour = textColour, .bold = text == lines.front(), .anchor = TextAnchor::Centre});
    y += line;
  }
}

void DrawGroundTicks(Control& canvas, const GroundAxis& axis) {
  const SurfaceGeometry& g = picture.geometry;
  for (const Tick& tick : axis.ticks) {
    Point end{tick.foot.x + axis.side * tickLength * g.cosine, tick.foot.y + tickLength * g.sine};
    DrawLine(canvas, tick.foot, end, {.colour = textColour});
    // A line below the axis, clear of the value axis' lowest label.
    PlaceText(canvas, {end.x + axis.side * textGap, end.y + LineHeight()}, NumberText(tick.value),
              {.colour = textColour, .anchor = axis.anchor});
  }
}

double LiftOf(double value) {
  double height = picture.box.leftBottom.y - picture.box.leftTop.y;
  return height * (value - picture.axis.bottom) / (picture.axis.top - picture.axis.bottom);
}

// Lines of equal value on the back walls.
void DrawValueLines(Control& canvas) {
  const SurfaceBox& box = picture.box;
  std::vector<double> ticks = ValueTicks(picture.axis);
  for (double value : ticks) {
    double lift = LiftOf(value);
    auto at = [&](Point corner) { return Point{corner.x, corner.y - lift}; };
    bool inside = value != ticks.front() && value != ticks.back();
    DrawPolyline(canvas, {at(box.leftBottom), at(box.farBottom), at(box.rightBottom)},
                 {.colour = inside ? gridColour : boxColour});
  }
}

void DrawValueLabels(Control& canvas) {
  for (double value : ValueTicks(picture.axis)) {
    Point foot = picture.box.leftBottom;
    foot.y -= LiftOf(value);
    DrawLine(canvas, {foot.x - tickLength, foot.y}, foot, {.colour = textColour});
    PlaceText(canvas, {foot.x - tickLength - textGap, foot.y}, Format(value, "#0.00"),
              {.colour = textColour, .anchor = TextAnchor::Right});
  }
}

void DrawTitle(Control& canvas) {
  double line = MeasureText("0", 0, true).height;
  double y = line;
  for (const char* text : SurfaceTitle(SelectedTable, VeView)) {
    if (*text) PlaceText(canvas, {line, y}, text, {.colour = textColour, .bold = true});
    y += line * 1.1;
  }
}

// Titles first: a label that has no room beside them is left out, never a title.
void DrawLabels(Control& canvas) {
  const SurfaceBox& box = picture.box;
  auto middle = [](Point a, Point b) { return Point{(a.x + b.x) / 2, (a.y + b.y) / 2}; };
  GroundAxis speed{SpeedTicks(), +1, TextAnchor::Left};
  GroundAxis load{LoadTicks(), -1, TextAnchor::Right};
  DrawTitle(canvas);
  DrawAxisTitle(canvas, speed, middle(box.nearBottom, box.rightBottom), {"Engine Speed", "(RPM)"});
  DrawAxisTitle(canvas, load, middle(box.nearBottom, box.leftBottom), {"MAP (kPa)"});
  DrawValueLabels(canvas);
  DrawGroundTicks(canvas, speed);
  DrawGroundTicks(canvas, load);
}

// One canvas above and below is plenty for what an eye can follow.
bool Crop(const Control& canvas, Point& from, Point& to) {
  return CropToLines(from, to, -1.0 * canvas.canvasHeight, 2.0 * canvas.canvasHeight);
}

void DrawSurface(Control& canvas, const SurfaceNodes& nodes) {
  for (const Stretch& stretch : VisibleStretches(picture.geometry, nodes)) {
    Point from = stretch.from, to = stretch.to;
    if (Crop(canvas, from, to)) DrawLine(canvas, from, to, {.colour = OnPaper(stretch.colour)});
  }
}

// Blue with a white rim, to be seen on lines of every colour.
void DrawMarker(Control& canvas, const SurfaceNode& node) {
  Point centre{node.x, node.y}, same = centre;
  if (!std::isfinite(node.x) || !std::isfinite(node.y) || !Crop(canvas, centre, same)) return;
  double radius = markerRadius * std::clamp(picture.geometry.scale, 1.0, 2.0);
  FillCircle(canvas, centre, radius + markerRim, {.colour = White, .antialias = true});
  FillCircle(canvas, centre, radius, {.colour = markerColour, .antialias = true});
}

}  // namespace

std::vector<double> ValueTicks(const ValueAxis& axis) {
  std::vector<double> ticks;
  for (int i = 0; i <= valueDivisions; ++i)
    ticks.push_back(axis.bottom + (axis.top - axis.bottom) * i / valueDivisions);
  return ticks;
}

std::array<const char*, 3> SurfaceTitle(int table, int veView) {
  switch (table) {
    case TableGpo:
      return {"General Purpose Output", "Duty Cycle (%)", ""};
    case TableAdvance:
      return {"Main Ignition", "Advance", "(degrees BTDC)"};
    case TableAirFuel:
      return {"Desired Air/Fuel Ratio (14.64)", "", ""};
    default:
      break;
  }
  if (veView == 1) return {"VE Enhanced", "Fundamental", "Pulsewidth (ms)"};
  if (veView == 2) return {"VE Enhanced", "Fundamental PW", "Duty Cycle (%)"};
  return {"Volumetric", "Efficiency", "(% FPW)"};
}

void GraphDims() {
  const Control& canvas = At(Graph3D, "Picture1");
  // Room for the labels of the near corner.
  double below = tickLength + 2 * MeasureText("0").height;
  picture.geometry = SurfaceGeometryOf(canvas.canvasWidth, canvas.canvasHeight, below);
  picture.box = BoxOf(picture.geometry);
}

void DrawAxes() {
  Control& canvas = At(Graph3D, "Picture1");
  const SurfaceBox& box = picture.box;
  FillPolygon(canvas, {box.leftBottom, box.leftTop, box.farTop, box.farBottom},
              {.colour = wallColour});
  FillPolygon(canvas, {box.farBottom, box.farTop, box.rightTop, box.rightBottom},
              {.colour = wallColour});
  DrawPolyline(canvas,
               {box.nearBottom, box.leftBottom, box.farBottom, box.rightBottom, box.nearBottom},
               {.colour = boxColour});
  DrawPolyline(canvas, {box.leftBottom, box.leftTop, box.farTop, box.rightTop, box.rightBottom},
               {.colour = boxColour});
  DrawLine(canvas, box.farBottom, box.farTop, {.colour = boxColour});

  auto line = [](Point from, Point to, double& slope, double& intercept) {
    slope = (to.y - from.y) / (to.x - from.x);
    intercept = from.y - slope * from.x;
  };
  line(box.nearBottom, box.rightBottom, picture.speedSlope, picture.speedIntercept);
  line(box.nearBottom, box.leftBottom, picture.loadSlope, picture.loadIntercept);
}

void PlotData() {
  Control& canvas = At(Graph3D, "Picture1");
  if (canvas.canvasWidth <= 0 || canvas.canvasHeight <= 0) return;
  ClearCanvas(canvas, paperColour);
  taken.clear();
  picture.axis = ValueAxisOf(SelectedTable, VeView, TableWork);
  DrawAxes();
  DrawValueLines(canvas);
  SurfaceNodes nodes = ProjectNodes(picture.geometry, picture.axis);
  DrawSurface(canvas, nodes);
  DrawLabels(canvas);
  DrawMarker(canvas, nodes[CursorColumn][CursorRow]);
}
