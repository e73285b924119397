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
constexpr Colour wallColour = Rgb(24, 28, 34);
constexpr Colour surfaceBlue = Rgb(110, 170, 255);
constexpr double tickLength = 6;
constexpr int valueDivisions = 4;
constexpr double markerRadius = 3;
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

// Ground axes from the near corner: speed to the right, load to the left.
double SpeedAxisY(double x) { return picture.speedIntercept + picture.speedSlope * x; }
double LoadAxisY(double x) { return picture.loadIntercept + picture.loadSlope * x; }

void DrawSpeedTicks(Control& canvas) {
  const SurfaceGeometry& g = picture.geometry;
  for (int column = SurfaceColumns; column >= FirstTableColumn; --column) {
    double share = GroundOf(column, 1).speedShare;
    if (!(share >= 0 && share <= 1)) continue;
    double x = g.originX + share * g.cosine * g.speedLength;
    Point foot{x, SpeedAxisY(x)};
    Point end{x + tickLength * g.cosine, foot.y + tickLength * g.sine};
    DrawLine(canvas, foot, end, {.colour = textColour});
    PlaceText(canvas, {end.x + textGap, end.y + MeasureText("0").height / 2},
              NumberText(RpmAxis[static_cast<std::size_t>(column)]), {.colour = textColour});
  }
}

void DrawLoadTicks(Control& canvas) {
  const SurfaceGeometry& g = picture.geometry;
  for (int row = SurfaceRows; row >= 1; --row) {
    double share = GroundOf(1, row).loadShare;
    if (!(share >= 0 && share <= 1)) continue;
    double x = g.originX - share * g.cosine * g.loadLength;
    Point foot{x, LoadAxisY(x)};
    Point end{x - tickLength * g.cosine, foot.y + tickLength * g.sine};
    DrawLine(canvas, foot, end, {.colour = textColour});
    PlaceText(canvas, {end.x - textGap, end.y + MeasureText("0").height / 2},
              NumberText(LoadAxis[static_cast<std::size_t>(row)]),
              {.colour = textColour, .anchor = TextAnchor::Right});
  }
}

void DrawValueTicks(Control& canvas) {
  const SurfaceBox& box = picture.box;
  double height = box.leftBottom.y - box.leftTop.y;
  for (double value : ValueTicks(picture.axis)) {
    double share = (value - picture.axis.bottom) / (picture.axis.top - picture.axis.bottom);
    double lift = share * height;
    auto at = [&](Point corner) { return Point{corner.x, corner.y - lift}; };
    DrawPolyline(canvas, {at(box.leftBottom), at(box.farBottom), at(box.rightBottom)},
                 {.colour = boxColour, .dashed = share > 0 && share < 1});
    Point foot = at(box.leftBottom);
    DrawLine(canvas, {foot.x - tickLength, foot.y}, foot, {.colour = textColour});
    PlaceText(canvas, {foot.x - tickLength - textGap, foot.y}, Format(value, "#0.00"),
              {.colour = textColour, .anchor = TextAnchor::Right});
  }
}

void DrawAxisTexts(Control& canvas) {
  const SurfaceBox& box = picture.box;
  double line = MeasureText("0").height;
  double below = std::min(box.nearBottom.y + 3 * line, canvas.canvasHeight - line);
  double speedX = (box.nearBottom.x + box.rightBottom.x) / 2 + 6 * line;
  double loadX = (box.nearBottom.x + box.leftBottom.x) / 2 - 6 * line;
  PlaceText(canvas, {speedX, below - line}, "Engine Speed",
            {.colour = textColour, .bold = true, .anchor = TextAnchor::Centre});
  PlaceText(canvas, {speedX, below}, "(RPM)", {.colour = textColour, .anchor = TextAnchor::Centre});
  PlaceText(canvas, {loadX, below - line}, "MAP (kPa)",
            {.colour = textColour, .bold = true, .anchor = TextAnchor::Centre});
}

void DrawTitle(Control& canvas) {
  double line = MeasureText("0", 0, true).height * 1.2;
  double y = line;
  for (const char* text : SurfaceTitle(SelectedTable, VeView)) {
    PlaceText(canvas, {line, y}, text, {.colour = textColour, .bold = true});
    y += line;
  }
}

void DrawSurface(Control& canvas, const SurfaceNodes& nodes) {
  for (const Stretch& stretch : VisibleStretches(picture.geometry, nodes))
    DrawLine(canvas, stretch.from, stretch.to, {.colour = OnPaper(stretch.colour)});
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
  picture.geometry = SurfaceGeometryOf(canvas.canvasWidth, canvas.canvasHeight);
  picture.box = BoxOf(picture.geometry);
  picture.axis = ValueAxisOf(SelectedTable, VeView, TableWork);
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
  DrawAxes();
  DrawTitle(canvas);
  DrawValueTicks(canvas);
  SurfaceNodes nodes = ProjectNodes(picture.geometry, picture.axis);
  DrawSurface(canvas, nodes);
  DrawSpeedTicks(canvas);
  DrawLoadTicks(canvas);
  DrawAxisTexts(canvas);
  const SurfaceNode& node = nodes[CursorColumn][CursorRow];
  Colour marker = Rgb(60, 130, 255);
  FillCircle(canvas, {node.x, node.y}, markerRadius, {.colour = marker, .antialias = true});
  DrawCircle(canvas, {node.x, node.y}, markerRadius,
             {.colour = marker, .width = 2, .antialias = true});
}
