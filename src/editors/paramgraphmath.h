// The numbers of the small parameter graph: axes, grid, curve, marks, and where they stand on a
// canvas of a given size. Pure; the drawing is in paramgraph.h.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/canvas.h"

// The five curves. GraphKind of paramgraph.h holds one of them.
enum ParameterCurve : int {
  CurvePulse = 0,    // fundamental pulse width over manifold pressure
  CurveBlend = 1,    // TPS blend over engine speed
  CurveWarmup = 2,   // warm-up enrichment over coolant temperature
  CurveCoolant = 3,  // additional advance over coolant temperature
  CurveEgo = 4,      // EGO volts over air/fuel ratio
};

// An axis with its grid lines, those at both ends included.
struct GraphAxis {
  double low = 0;
  double high = 1;
  std::vector<double> lines;
};

// What a graph shows, in the units of its axes.
struct GraphContent {
  std::string xTitle;
  std::string yTitle;
  GraphAxis x;
  GraphAxis y;
  std::vector<Point> curve;
  std::optional<double> verticalMark;  // on the x axis
  std::optional<double> limitLine;     // on the y axis, red
  std::optional<double> failBelow;     // top of the hatched band, above y.low
};

// Ends and lines of the pulse width axis: the first step of 1 to 10 ms that gives four to six
// divisions, else the step of 10. Values that are no numbers give 0 to 10.
GraphAxis PulseAxis(double iot, double tog);
// Value axes of the tables, by their largest value.
GraphAxis BlendAxis(double largest);
GraphAxis WarmupAxis(double largest);
GraphAxis CoolantAdvanceAxis(double largest);

// The graph of a kind from CalValues and the working values; call PublishCalGlobals before. A
// kind that does not exist gives an empty graph.
GraphContent ContentOfGraph(int kind);

// Proportions of the frame in the units that the screens are laid out in.
struct FrameShape {
  double width = 4800;
  double height = 2250;
  double leftMargin = 450;
};
inline constexpr FrameShape ParameterFrame{};
inline constexpr FrameShape CoolantFrame{.width = 4800, .height = 2100, .leftMargin = 600};

// Pixels that stand around the frame whatever its size: texts.
struct FrameRoom {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
};

// The frame on the canvas, whole pixels.
struct GraphFrame {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
};

// The largest frame of these proportions that leaves the margins of the shape and at least the room
// for the texts; in the middle of what is left. Never inside out, however small the canvas.
GraphFrame PlaceFrame(const FrameShape& shape, double canvasWidth, double canvasHeight,
                      const FrameRoom& room);

// Where a value of the axes stands, in whole pixels. An axis without extent maps to its middle.
double XPixel(const GraphContent& content, const GraphFrame& frame, double value);
double YPixel(const GraphContent& content, const GraphFrame& frame, double value);
Point ToPixel(const GraphContent& content, const GraphFrame& frame, Point value);

using Segment = std::pair<Point, Point>;

// The part of a segment inside the frame, or nothing.
std::optional<Segment> ClipToFrame(Segment segment, const GraphFrame& frame);

// Diagonals across a band, so many pixels apart, each inside of it.
std::vector<Segment> HatchLines(const GraphFrame& band, double apart);

// Which labels of a row can be written without touching: every nth, and the last one in place of
// those that it would touch. The first is always among them. Middle and extent of each along the
// axis, in pixels.
struct LabelSpan {
  double middle = 0;
  double extent = 0;
};
std::vector<std::size_t> LabelsThatFit(std::span<const LabelSpan> labels, double gap);

// The text of a tick: whole, or with one decimal where the grid needs it.
std::string TickText(double value);
