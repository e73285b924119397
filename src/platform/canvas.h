// The drawing surface of a canvas control: a list of primitives in device-independent pixels, kept
// with the control and painted by the platform. Standard C++; the same on every platform.
#pragma once

#include <string>
#include <vector>

#include "platform/colour.h"

enum class PenMode { Copy, ExclusiveOr };
enum class TextAnchor { Left, Centre, Right };

struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

// How a primitive is drawn. Width is 1 or 2 where it marks data (the surface promises these two);
// dials and frames may use any. Antialiased lines are for dials; graphs that need exact pixels
// leave it off.
struct Stroke {
  Colour colour = Black;
  double width = 1;
  PenMode pen = PenMode::Copy;
  bool antialias = false;
  bool dashed = false;
  friend bool operator==(const Stroke&, const Stroke&) = default;
};

enum class PrimitiveKind { Line, Polyline, Circle, Disc, Arc, Polygon, Rectangle, Text };

struct Primitive {
  PrimitiveKind kind = PrimitiveKind::Line;
  Stroke stroke;
  std::vector<Point> points;  // Line 2, Polyline and Polygon any, Circle/Disc/Arc centre, Rectangle
                              // two corners, Text one anchor point (the middle of its height)
  double radius = 0;          // Circle, Disc, Arc
  double startDegrees = 0;    // Arc: counter-clockwise from three o'clock
  double sweepDegrees = 0;    // Arc
  std::string text;           // Text
  double pointSize = 0;       // Text; 0 is the size of the desktop
  bool bold = false;          // Text
  double turnDegrees = 0;     // Text, counter-clockwise about its anchor
  TextAnchor anchor = TextAnchor::Left;
  friend bool operator==(const Primitive&, const Primitive&) = default;
};

// What stands on a canvas. The first `backgroundCount` primitives are the background, which the
// platform may keep as a picture; the rest is drawn above it. `generation` counts the clears, so
// that a platform can tell an append from a new picture; `foreground` counts those above a kept
// background.
struct Drawing {
  Colour paper = SystemWindow;
  std::vector<Primitive> primitives;
  std::size_t backgroundCount = 0;
  unsigned long generation = 0;
  unsigned long foreground = 0;
};

struct Control;

// All of these take a control of kind Canvas and mark it for repainting.
void ClearCanvas(Control& canvas, Colour paper);
// What is drawn so far becomes the background.
void KeepAsBackground(Control& canvas);
// Removes everything that was drawn after KeepAsBackground.
void ClearForeground(Control& canvas);
void Draw(Control& canvas, Primitive primitive);
void DrawLine(Control& canvas, Point from, Point to, const Stroke& stroke);
void DrawPolyline(Control& canvas, std::vector<Point> points, const Stroke& stroke);
void DrawCircle(Control& canvas, Point centre, double radius, const Stroke& stroke);
void FillCircle(Control& canvas, Point centre, double radius, const Stroke& stroke);
void DrawArc(Control& canvas, Point centre, double radius, double startDegrees, double sweepDegrees,
             const Stroke& stroke);
void FillPolygon(Control& canvas, std::vector<Point> points, const Stroke& stroke);
void FillRectangle(Control& canvas, Point corner, Point opposite, const Stroke& stroke);

struct TextStyle {
  Colour colour = SystemWindowText;
  double pointSize = 0;  // 0 is the size of the desktop
  bool bold = false;
  TextAnchor anchor = TextAnchor::Left;
  double turnDegrees = 0;
};
void DrawText(Control& canvas, Point anchor, std::string text, const TextStyle& style);

struct TextSize {
  double width = 0;
  double height = 0;
};
// Size of one line of text in pixels on this desktop. Implemented by each platform.
TextSize MeasureText(const std::string& text, double pointSize = 0, bool bold = false);
