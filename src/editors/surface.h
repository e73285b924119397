// The numbers of the 3D graph: axis ends, the box in projection, nodes, and the floating horizon
// that leaves only the visible stretches of the surface. No window; a caller draws the result.
#pragma once

#include <array>
#include <vector>

#include "editors/tableviews.h"
#include "platform/canvas.h"

inline constexpr int SurfaceColumns = 12;  // engine speed positions 1 to 12
inline constexpr int SurfaceRows = 10;     // load positions 1 to 10

// A node's value to four decimals, without what single precision leaves on it: a stored 0.3 times
// 100 is 30.000002 there, and neither beyond 30 nor a good start for steps to a whole 20.
double ValueOfNode(float node);

// Ends of the value axis.
struct ValueAxis {
  double bottom = 0;
  double top = 0;
  friend bool operator==(const ValueAxis&, const ValueAxis&) = default;
};
// Chosen from all nodes of TableWork, margins included, for the table and the view of VE.
ValueAxis ValueAxisOf(int table, int veView, const WorkGrid& nodes);

// Fixed geometry in pixels. At 640 by 480 it stands as laid out; on any other canvas it is scaled
// as a whole, with a horizon as wide as the canvas.
struct SurfaceGeometry {
  double scale = 1;
  double originX = 325;
  double originY = 310;
  double speedLength = 210;  // along the speed direction
  double loadLength = 168;   // along the load direction, 4/5 of it
  double height = 115.5;     // of the value axis, 2.75/5 of it
  double cosine = 0;         // of the ground axes' angle, 30 degrees
  double sine = 0;
  int horizonColumns = 640;
  double horizonStart = 600;  // the lowest screen line
};
// The largest that fits, with so many pixels left free below the box for labels.
SurfaceGeometry SurfaceGeometryOf(int widthPixels, int heightPixels, double belowPixels = 0);

// Corners of the box in which the surface stands.
struct SurfaceBox {
  Point nearBottom, leftBottom, leftTop, farBottom, farTop, rightBottom, rightTop, nearTop;
};
SurfaceBox BoxOf(const SurfaceGeometry& geometry);

struct SurfaceNode {
  double x = 0;
  float y = 0;
  float value = 0;
  Colour colour = White;
};
// Index [column][row], both from 1.
using SurfaceNodes = std::array<std::array<SurfaceNode, SurfaceRows + 1>, SurfaceColumns + 1>;

// A point of the ground: shares of the speed and the load axis.
struct GroundPlace {
  double speedShare = 0;
  double loadShare = 0;
};
// Shares of a node by RpmAxis and LoadAxis; 0 where an axis has no length (a rev limit of 0).
GroundPlace GroundOf(int column, int row);
// How far the value 0 (or the middle of the air/fuel axis) stands above the ground, in pixels.
double ZeroHeight(const SurfaceGeometry& geometry, int table, int veView);
Point ProjectValue(const SurfaceGeometry& geometry, const GroundPlace& ground, double value,
                   const ValueAxis& axis, int table, int veView);
// All nodes of TableWork with TableColours.
SurfaceNodes ProjectNodes(const SurfaceGeometry& geometry, const ValueAxis& axis);

// One visible straight piece of an edge.
struct Stretch {
  Point from;
  Point to;
  Colour colour = White;
  friend bool operator==(const Stretch&, const Stretch&) = default;
};

// The floating horizon: the highest screen line drawn so far in each column of pixels.
class Horizon {
 public:
  explicit Horizon(const SurfaceGeometry& geometry);
  // Adds the visible stretches of the edge to the list and raises the horizon along them. An edge
  // of two points with the same X is skipped; what lies outside of the columns is left out.
  void AddEdge(Point from, Point to, Colour colour, std::vector<Stretch>& visible);
  double At(int column) const { return lines[static_cast<std::size_t>(column)]; }

 private:
  std::vector<double> lines;  // index 1 to the number of columns
};

// The piece of a line between two screen lines, so that a value far beyond the axis is no line of
// millions of pixels. Result: false when nothing is left.
bool CropToLines(Point& from, Point& to, double topLine, double bottomLine);

// All visible stretches, in drawing order.
std::vector<Stretch> VisibleStretches(const SurfaceGeometry& geometry, const SurfaceNodes& nodes);
