// Projection and floating horizon of the 3D graph.
#include "editors/surface.h"

#include <algorithm>
#include <cmath>

namespace {

// 94.2477795 / 180 radians: 30 degrees, with the value of pi that the geometry was laid out with.
constexpr double GroundAngle = 94.2477795 / 180;
constexpr double DesignWidth = 640;
constexpr double DesignHeight = 480;

struct NodeRange {
  double lowest;
  double highest;
};

NodeRange RangeOf(const WorkGrid& nodes) {
  NodeRange range{ValueOfNode(nodes[1][1]), ValueOfNode(nodes[1][1])};
  for (int row = 1; row <= SurfaceRows; ++row)
    for (int column = 1; column <= SurfaceColumns; ++column) {
      const double value = ValueOfNode(nodes[row][column]);
      range.lowest = std::min(range.lowest, value);
      range.highest = std::max(range.highest, value);
    }
  return range;
}

bool StandsInTheMiddle(int table, int veView) {
  return table == TableAirFuel || (table == TableVe && veView == 0);
}

}  // namespace

double ValueOfNode(float node) { return std::round(node * 1e4) / 1e4; }

ValueAxis ValueAxisOf(int table, int veView, const WorkGrid& nodes) {
  NodeRange range = RangeOf(nodes);
  switch (table) {
    case TableGpo:
      return {0, range.highest > 50 ? 100.0 : 50.0};
    case TableAdvance:
      return {0, range.highest > 30 ? 60.0 : 30.0};
    case TableAirFuel: {
      bool wide = range.lowest < 13.5 || range.highest > 15.78;
      return wide ? ValueAxis{10.14, 19.14} : ValueAxis{13.5, 15.78};
    }
    default:
      break;
  }
  if (veView == 1) return {0, range.highest > 20 ? 30.0 : range.highest > 10 ? 20.0 : 10.0};
  if (veView == 2) return {0, 100};
  bool wide = range.highest > 30 || range.lowest < -30;
  return wide ? ValueAxis{-50, 50} : ValueAxis{-30, 30};
}

SurfaceGeometry SurfaceGeometryOf(int widthPixels, int heightPixels, double belowPixels) {
  SurfaceGeometry geometry;
  // The box ends at its near corner; what is below is room for labels, whose size is the font's.
  double fitting = (heightPixels - belowPixels) / geometry.originY;
  geometry.scale = std::max(0.1, std::min(widthPixels / DesignWidth, fitting));
  geometry.originX *= geometry.scale;
  geometry.originY *= geometry.scale;
  geometry.speedLength *= geometry.scale;
  geometry.loadLength = geometry.speedLength * 4 / 5;
  geometry.height = geometry.speedLength * 2.75 / 5;
  geometry.cosine = std::cos(GroundAngle);
  geometry.sine = std::sin(GroundAngle);
  geometry.horizonColumns = static_cast<int>(std::lround(DesignWidth * geometry.scale));
  geometry.horizonStart *= geometry.scale;
  double moreLines = std::max(0.0, heightPixels - DesignHeight * geometry.scale) / 2;
  geometry.originX += std::max(0.0, (widthPixels - geometry.horizonColumns) / 2.0);
  geometry.originY += moreLines;
  geometry.horizonStart += moreLines;
  geometry.horizonColumns = std::max(widthPixels, geometry.horizonColumns);
  return geometry;
}

SurfaceBox BoxOf(const SurfaceGeometry& geometry) {
  const SurfaceGeometry& g = geometry;
  auto up = [&](Point point) { return Point{point.x, point.y - g.height}; };
  SurfaceBox box;
  box.nearBottom = {g.originX, g.originY};
  box.leftBottom = {g.originX - g.cosine * g.loadLength, g.originY - g.sine * g.loadLength};
  box.farBottom = {box.leftBottom.x + g.cosine * g.speedLength,
                   box.leftBottom.y - g.sine * g.speedLength};
  box.rightBottom = {g.originX + g.cosine * g.speedLength, g.originY - g.sine * g.speedLength};
  box.leftTop = up(box.leftBottom);
  box.farTop = up(box.farBottom);
  box.rightTop = up(box.rightBottom);
  box.nearTop = up(box.nearBottom);
  return box;
}

GroundPlace GroundOf(int column, int row) {
  double speedEnd = RpmAxis[SurfaceColumns];
  double loadSpan = static_cast<double>(LoadAxis[SurfaceRows]) - LoadAxis[1];
  GroundPlace ground;
  if (speedEnd != 0) ground.speedShare = RpmAxis[static_cast<std::size_t>(column)] / speedEnd;
  if (loadSpan != 0)
    ground.loadShare =
        (static_cast<double>(LoadAxis[static_cast<std::size_t>(row)]) - LoadAxis[1]) / loadSpan;
  return ground;
}

double ZeroHeight(const SurfaceGeometry& geometry, int table, int veView) {
  return StandsInTheMiddle(table, veView) ? geometry.height / 2 : 0;
}

Point ProjectValue(const SurfaceGeometry& geometry, const GroundPlace& ground, double value,
                   const ValueAxis& axis, int table, int veView) {
  const SurfaceGeometry& g = geometry;
  double alongSpeed = ground.speedShare * g.speedLength;
  double alongLoad = ground.loadShare * g.loadLength;
  double shown = table == TableAirFuel ? value - (axis.top + axis.bottom) / 2 : value;
  double base = g.originY - alongSpeed * g.sine - alongLoad * g.sine - ZeroHeight(g, table, veView);
  return {g.originX + alongSpeed * g.cosine - alongLoad * g.cosine,
          base - g.height * shown / (axis.top - axis.bottom)};
}

SurfaceNodes ProjectNodes(const SurfaceGeometry& geometry, const ValueAxis& axis) {
  SurfaceNodes nodes;
  for (int column = 1; column <= SurfaceColumns; ++column)
    for (int row = 1; row <= SurfaceRows; ++row) {
      SurfaceNode& node = nodes[column][row];
      node.value = TableWork[row][column];
      node.colour = TableColours[row][column];
      Point place =
          ProjectValue(geometry, GroundOf(column, row), node.value, axis, SelectedTable, VeView);
      node.x = place.x;
      node.y = static_cast<float>(place.y);
    }
  return nodes;
}

Horizon::Horizon(const SurfaceGeometry& geometry)
    : lines(static_cast<std::size_t>(geometry.horizonColumns) + 1, geometry.horizonStart) {}

void Horizon::AddEdge(Point from, Point to, Colour colour, std::vector<Stretch>& visible) {
  if (!(std::isfinite(from.x) && std::isfinite(to.x) && std::isfinite(from.y) &&
        std::isfinite(to.y)) ||
      from.x == to.x)
    return;
  if (from.x > to.x) std::swap(from, to);
  double slope = (to.y - from.y) / (to.x - from.x);
  double intercept = from.y - slope * from.x;
  double lastColumn = static_cast<double>(lines.size()) - 1;
  int first = static_cast<int>(std::ceil(std::clamp(from.x, 1.0, lastColumn + 1)));
  int last = static_cast<int>(std::floor(std::clamp(to.x, 0.0, lastColumn)));

  bool open = false;
  Point start;
  for (int x = first; x <= last; ++x) {
    double y = intercept + slope * x;
    double& line = lines[static_cast<std::size_t>(x)];
    bool above = y < line;
    if (above && !open) {
      // Where the edge comes up from behind the surface, it begins on the horizon.
      start = x > first ? Point{x - 1.0, lines[static_cast<std::size_t>(x - 1)]}
                        : Point{static_cast<double>(x), y};
      open = true;
    } else if (!above && open) {
      visible.push_back({start, {static_cast<double>(x), line}, colour});
      open = false;
    }
    if (above) line = y;
  }
  if (open)
    visible.push_back({start, {static_cast<double>(last), intercept + slope * last}, colour});
}

bool CropToLines(Point& from, Point& to, double topLine, double bottomLine) {
  if (std::max(from.y, to.y) < topLine || std::min(from.y, to.y) > bottomLine) return false;
  const Point first = from, last = to;
  auto crop = [&](Point& end) {
    double line = std::clamp(end.y, topLine, bottomLine);
    if (line == end.y) return;
    end.x = first.x + (last.x - first.x) * ((line - first.y) / (last.y - first.y));
    end.y = line;
  };
  crop(from);
  crop(to);
  return true;
}

std::vector<Stretch> VisibleStretches(const SurfaceGeometry& geometry, const SurfaceNodes& nodes) {
  Horizon horizon(geometry);
  std::vector<Stretch> visible;
  auto point = [](const SurfaceNode& node) { return Point{node.x, node.y}; };
  for (int column = 1; column <= SurfaceColumns; ++column)
    for (int row = 1; row <= SurfaceRows; ++row) {
      const SurfaceNode& node = nodes[column][row];
      if (column > 1)
        horizon.AddEdge(point(nodes[column - 1][row]), point(node), node.colour, visible);
      if (row > 1)
        horizon.AddEdge(point(nodes[column][row - 1]), point(node), node.colour, visible);
    }
  return visible;
}
