// From primitives to strokes of a painter.
#include "platform/qt/qtpaint.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <map>
#include <utility>

#include "platform/qt/qtbase.h"
#include "platform/qt/qtstyle.h"

namespace {

struct DrawingFont {
  QFont font;
  QFontMetricsF metrics;
};

const DrawingFont& FontFor(double pointSize, bool bold) {
  static std::map<std::pair<double, bool>, DrawingFont> fonts;
  static QFont ofDesktop;
  if (ofDesktop != QApplication::font()) {
    ofDesktop = QApplication::font();
    fonts.clear();
  }
  auto found = fonts.find({pointSize, bold});
  if (found != fonts.end()) return found->second;
  QFont font = FontOfSize(pointSize, bold);
  return fonts.emplace(std::pair{pointSize, bold}, DrawingFont{font, QFontMetricsF(font)})
      .first->second;
}

QPointF ToQPoint(const Point& point) { return {point.x, point.y}; }

QPolygonF ToPolygon(const std::vector<Point>& points) {
  QPolygonF polygon;
  polygon.reserve(static_cast<qsizetype>(points.size()));
  for (const Point& point : points) polygon << ToQPoint(point);
  return polygon;
}

class Pen {
 public:
  Pen(QPainter& onPainter, Colour onPaper) : painter(onPainter), paper(onPaper) {}

  // Sets the painter up for strokes of this kind, unless it is already.
  void Take(const Stroke& stroke, bool fills) {
    if (taken && stroke == last && fills == lastFills) return;
    taken = true;
    last = stroke;
    lastFills = fills;
    bool exclusive = stroke.pen == PenMode::ExclusiveOr;
    // A half covered pixel has no exclusive-or.
    bool smooth = stroke.antialias && !exclusive;
    painter.setRenderHint(QPainter::Antialiasing, smooth);
    painter.setCompositionMode(exclusive ? QPainter::RasterOp_SourceXorDestination
                                         : QPainter::CompositionMode_SourceOver);
    QColor colour = ToQColor(stroke.colour);
    QPen pen(colour, stroke.width);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(stroke.width > 1 ? Qt::RoundCap : Qt::SquareCap);
    if (stroke.dashed) pen.setDashPattern({4, 3});
    painter.setPen(fills ? QPen(Qt::NoPen) : pen);
    painter.setBrush(fills ? QBrush(colour) : QBrush(Qt::NoBrush));
    // Smooth lines go through the middle of the pixel that the others fill.
    painter.resetTransform();
    if (smooth && !fills) painter.translate(0.5, 0.5);
  }

  void Text(const Primitive& text);

 private:
  QPainter& painter;
  Colour paper;
  bool taken = false;
  Stroke last;
  bool lastFills = false;
};

void Pen::Text(const Primitive& text) {
  const DrawingFont& font = FontFor(text.pointSize, text.bold);
  QString words = ToQt(text.text);
  bool readable = IsRole(text.stroke.colour) && !IsRole(paper);
  QColor colour = readable ? ReadableOn(ToQColor(paper)) : ToQColor(text.stroke.colour);
  taken = false;
  painter.setCompositionMode(text.stroke.pen == PenMode::ExclusiveOr
                                 ? QPainter::RasterOp_SourceXorDestination
                                 : QPainter::CompositionMode_SourceOver);
  painter.setFont(font.font);
  painter.setPen(colour);
  double width = text.anchor == TextAnchor::Left ? 0 : font.metrics.horizontalAdvance(words);
  double x = text.anchor == TextAnchor::Centre  ? -width / 2
             : text.anchor == TextAnchor::Right ? -width
                                                : 0;
  double y = (font.metrics.ascent() - font.metrics.descent()) / 2;
  painter.resetTransform();
  painter.translate(ToQPoint(text.points.front()));
  if (text.turnDegrees != 0) painter.rotate(-text.turnDegrees);
  painter.drawText(QPointF(x, y), words);
}

// How many primitives from this one on are single lines of the same stroke.
std::size_t LinesInARow(const std::vector<Primitive>& all, std::size_t from, std::size_t end) {
  std::size_t at = from;
  while (at < end && all[at].kind == PrimitiveKind::Line && all[at].points.size() == 2 &&
         all[at].stroke == all[from].stroke)
    ++at;
  return at - from;
}

void PaintLines(QPainter& painter, const std::vector<Primitive>& all, std::size_t from,
                std::size_t count) {
  QList<QLineF> lines;
  lines.reserve(static_cast<qsizetype>(count));
  for (std::size_t i = from; i < from + count; ++i)
    lines.append(QLineF(ToQPoint(all[i].points[0]), ToQPoint(all[i].points[1])));
  painter.drawLines(lines);
}

void PaintArc(QPainter& painter, const Primitive& arc) {
  QPointF centre = ToQPoint(arc.points.front());
  QRectF around(centre.x() - arc.radius, centre.y() - arc.radius, 2 * arc.radius, 2 * arc.radius);
  QPainterPath path;
  path.arcMoveTo(around, arc.startDegrees);
  path.arcTo(around, arc.startDegrees, arc.sweepDegrees);
  // The band of a dial ends where its value stands.
  const QPen pen = painter.pen();
  QPen flat = pen;
  flat.setCapStyle(Qt::FlatCap);
  painter.setPen(flat);
  painter.drawPath(path);
  painter.setPen(pen);
}

void PaintShape(QPainter& painter, Pen& pen, const Primitive& shape) {
  bool fills = shape.kind == PrimitiveKind::Disc || shape.kind == PrimitiveKind::Polygon ||
               shape.kind == PrimitiveKind::Rectangle;
  pen.Take(shape.stroke, fills);
  QPointF first = ToQPoint(shape.points.front());
  switch (shape.kind) {
    case PrimitiveKind::Line:
    case PrimitiveKind::Polyline:
      painter.drawPolyline(ToPolygon(shape.points));
      break;
    case PrimitiveKind::Circle:
    case PrimitiveKind::Disc:
      painter.drawEllipse(first, shape.radius, shape.radius);
      break;
    case PrimitiveKind::Arc:
      PaintArc(painter, shape);
      break;
    case PrimitiveKind::Polygon:
      painter.drawPolygon(ToPolygon(shape.points));
      break;
    case PrimitiveKind::Rectangle:
      painter.drawRect(QRectF(first, ToQPoint(shape.points.back())).normalized());
      break;
    case PrimitiveKind::Text:
      break;
  }
}

}  // namespace

void PaintPrimitives(QPainter& painter, const Drawing& drawing, std::size_t begin,
                     std::size_t end) {
  Pen pen(painter, drawing.paper);
  const std::vector<Primitive>& all = drawing.primitives;
  for (std::size_t i = begin; i < end;) {
    const Primitive& primitive = all[i];
    std::size_t lines = LinesInARow(all, i, end);
    if (lines > 0) {
      pen.Take(primitive.stroke, false);
      PaintLines(painter, all, i, lines);
      i += lines;
      continue;
    }
    if (!primitive.points.empty()) {
      if (primitive.kind == PrimitiveKind::Text)
        pen.Text(primitive);
      else
        PaintShape(painter, pen, primitive);
    }
    ++i;
  }
}

QRectF BoundsOf(const Primitive& primitive) {
  if (primitive.points.empty()) return {};
  const QRectF points = ToPolygon(primitive.points).boundingRect();
  if (primitive.kind != PrimitiveKind::Text) {
    const double around = primitive.radius + primitive.stroke.width + 2;
    return points.adjusted(-around, -around, around, around);
  }
  const DrawingFont& font = FontFor(primitive.pointSize, primitive.bold);
  const double height = font.metrics.height();
  const double width = font.metrics.horizontalAdvance(ToQt(primitive.text));
  const double left = primitive.anchor == TextAnchor::Left     ? 0
                      : primitive.anchor == TextAnchor::Centre ? width / 2
                                                               : width;
  // Slanted and wide letters stand out of their room a little.
  const double around = height / 2;
  if (primitive.turnDegrees == 0)
    return points.adjusted(-left - around, -height, width - left + around, height);
  return points.adjusted(-width - around, -width - height, width + around, width + height);
}

TextSize MeasureText(const std::string& text, double pointSize, bool bold) {
  const DrawingFont& font = FontFor(pointSize, bold);
  return {font.metrics.horizontalAdvance(ToQt(text)), font.metrics.height()};
}
