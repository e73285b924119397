// The list of primitives behind a canvas.
#include "platform/canvas.h"

#include <utility>

#include "platform/native.h"

void ClearCanvas(Control& canvas, Colour paper) {
  canvas.drawing.paper = paper;
  canvas.drawing.primitives.clear();
  canvas.drawing.backgroundCount = 0;
  ++canvas.drawing.generation;
  NativeControlChanged(canvas, ChangedDrawing);
}

void KeepAsBackground(Control& canvas) {
  canvas.drawing.backgroundCount = canvas.drawing.primitives.size();
  ++canvas.drawing.generation;
  NativeControlChanged(canvas, ChangedDrawing);
}

void ClearForeground(Control& canvas) {
  canvas.drawing.primitives.resize(canvas.drawing.backgroundCount);
  ++canvas.drawing.foreground;
  NativeControlChanged(canvas, ChangedDrawing);
}

void Draw(Control& canvas, Primitive primitive) {
  canvas.drawing.primitives.push_back(std::move(primitive));
  NativeControlChanged(canvas, ChangedDrawing);
}

void DrawLine(Control& canvas, Point from, Point to, const Stroke& stroke) {
  Draw(canvas, {.kind = PrimitiveKind::Line, .stroke = stroke, .points = {from, to}});
}

void DrawPolyline(Control& canvas, std::vector<Point> points, const Stroke& stroke) {
  Draw(canvas, {.kind = PrimitiveKind::Polyline, .stroke = stroke, .points = std::move(points)});
}

void DrawCircle(Control& canvas, Point centre, double radius, const Stroke& stroke) {
  Draw(canvas,
       {.kind = PrimitiveKind::Circle, .stroke = stroke, .points = {centre}, .radius = radius});
}

void FillCircle(Control& canvas, Point centre, double radius, const Stroke& stroke) {
  Draw(canvas,
       {.kind = PrimitiveKind::Disc, .stroke = stroke, .points = {centre}, .radius = radius});
}

void DrawArc(Control& canvas, Point centre, double radius, double startDegrees, double sweepDegrees,
             const Stroke& stroke) {
  Draw(canvas, {.kind = PrimitiveKind::Arc,
                .stroke = stroke,
                .points = {centre},
                .radius = radius,
                .startDegrees = startDegrees,
                .sweepDegrees = sweepDegrees});
}

void FillPolygon(Control& canvas, std::vector<Point> points, const Stroke& stroke) {
  Draw(canvas, {.kind = PrimitiveKind::Polygon, .stroke = stroke, .points = std::move(points)});
}

void FillRectangle(Control& canvas, Point corner, Point opposite, const Stroke& stroke) {
  Draw(canvas, {.kind = PrimitiveKind::Rectangle, .stroke = stroke, .points = {corner, opposite}});
}

void DrawText(Control& canvas, Point anchor, std::string text, const TextStyle& style) {
  Draw(canvas, {.kind = PrimitiveKind::Text,
                .stroke = {.colour = style.colour},
                .points = {anchor},
                .text = std::move(text),
                .pointSize = style.pointSize,
                .bold = style.bold,
                .turnDegrees = style.turnDegrees,
                .anchor = style.anchor});
}
