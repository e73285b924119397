// The canvas: paints the drawing of its record into a picture that it keeps, so that what is
// appended is all that is painted, and shows that picture.
#include "platform/qt/qtcanvas.h"

#include <QApplication>
#include <QFrame>
#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QRegion>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

#include "platform/native.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtpaint.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtstyle.h"

namespace {

// Above a background only what differs is painted, as long as there are no more primitives than
// this.
constexpr std::size_t SmallForeground = 64;

// A picture and what of the drawing is on it.
struct Layer {
  QImage image;
  Colour paper = 0;
  qint64 theme = 0;  // roles had these colours
  unsigned long generation = 0;
  unsigned long foreground = 0;
  std::size_t count = 0;
};

class Canvas : public QFrame {
 public:
  Canvas(const Control& control, QWidget* parent)
      : QFrame(parent), wished(control.minWidth, control.minHeight) {
    if (control.framed) setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(Qt::WA_OpaquePaintEvent, !control.framed);
  }

  QSize minimumSizeHint() const override { return sizeHint(); }
  // The drawing has changed: what that changes of the picture is painted anew.
  void Repaint();
  QSize sizeHint() const override {
    int frame = 2 * frameWidth();
    return {std::max(wished.width(), 1) + frame, std::max(wished.height(), 1) + frame};
  }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override { Tell(*event, MouseEvent::Down); }
  void mouseMoveEvent(QMouseEvent* event) override { Tell(*event, MouseEvent::Move); }
  void mouseReleaseEvent(QMouseEvent* event) override { Tell(*event, MouseEvent::Up); }

 private:
  Control* Record() const {
    QtControl* native = ControlOfWidget(this);
    return native ? native->control : nullptr;
  }
  void Tell(QMouseEvent& event, MouseEvent::Kind kind);
  bool Fits(const Layer& layer, const Drawing& drawing) const;
  void Start(Layer& layer, const Drawing& drawing) const;
  bool ShowsDifferences(const Drawing& drawing) const;
  QRegion Differences(const Drawing& drawing) const;
  bool IsUpToDate(const Drawing& drawing) const;
  QRegion Stale(const Drawing& drawing) const;
  void PutBackgroundBack(const QRegion& region);
  void PaintDifferences(const Drawing& drawing);
  void BringUpToDate(const Drawing& drawing);

  QSize wished;
  // As it stands in `shown` above the background, when it is small.
  std::optional<std::vector<Primitive>> foreground;
  Layer background;
  Layer shown;
};

bool Canvas::Fits(const Layer& layer, const Drawing& drawing) const {
  QSize pixels = contentsRect().size() * devicePixelRatioF();
  return layer.image.size() == pixels && layer.generation == drawing.generation &&
         layer.paper == drawing.paper && layer.theme == QApplication::palette().cacheKey() &&
         !layer.image.isNull();
}

void Canvas::Start(Layer& layer, const Drawing& drawing) const {
  QSize pixels = contentsRect().size() * devicePixelRatioF();
  if (layer.image.size() != pixels) layer.image = QImage(pixels, QImage::Format_RGB32);
  layer.image.setDevicePixelRatio(devicePixelRatioF());
  layer.image.fill(ToQColor(drawing.paper));
  layer.paper = drawing.paper;
  layer.theme = QApplication::palette().cacheKey();
  layer.generation = drawing.generation;
  layer.foreground = drawing.foreground;
  layer.count = 0;
}

bool IsSmall(const Drawing& drawing) {
  return drawing.backgroundCount > 0 &&
         drawing.primitives.size() - drawing.backgroundCount <= SmallForeground;
}

void PaintOn(Layer& layer, const Drawing& drawing, std::size_t end) {
  if (layer.count >= end || layer.image.isNull()) return;
  QPainter painter(&layer.image);
  PaintPrimitives(painter, drawing, layer.count, end);
  layer.count = end;
}

// Not where a pixel of the drawing is no whole number of the display's.
bool Canvas::ShowsDifferences(const Drawing& drawing) const {
  const double scale = devicePixelRatioF();
  return foreground && IsSmall(drawing) && Fits(shown, drawing) && Fits(background, drawing) &&
         scale == std::floor(scale);
}

QRegion Canvas::Differences(const Drawing& drawing) const {
  const auto now = std::span(drawing.primitives).subspan(drawing.backgroundCount);
  QRegion region;
  for (std::size_t i = 0; i < std::max(now.size(), foreground->size()); ++i) {
    const Primitive* before = i < foreground->size() ? &(*foreground)[i] : nullptr;
    const Primitive* after = i < now.size() ? &now[i] : nullptr;
    if (before && after && *before == *after) continue;
    for (const Primitive* one : {before, after})
      if (one) region += BoundsOf(*one).toAlignedRect();
  }
  return region & QRect(QPoint(0, 0), contentsRect().size());
}

bool Canvas::IsUpToDate(const Drawing& drawing) const {
  return Fits(shown, drawing) && shown.foreground == drawing.foreground &&
         shown.count == drawing.primitives.size();
}

// What of the widget no longer shows the drawing.
QRegion Canvas::Stale(const Drawing& drawing) const {
  if (IsUpToDate(drawing)) return {};
  if (!ShowsDifferences(drawing)) return contentsRect();
  return Differences(drawing).translated(contentsRect().topLeft());
}

// A picture of the size of a monitor is millions of bytes: only what is needed is copied.
void Canvas::PutBackgroundBack(const QRegion& region) {
  const int scale = static_cast<int>(devicePixelRatioF());
  for (const QRect& place : region) {
    const QRect pixels = QRect(place.topLeft() * scale, place.size() * scale) & shown.image.rect();
    const auto bytes = static_cast<std::size_t>(pixels.width()) * sizeof(QRgb);
    for (int y = pixels.top(); y <= pixels.bottom(); ++y)
      std::memcpy(reinterpret_cast<QRgb*>(shown.image.scanLine(y)) + pixels.left(),
                  reinterpret_cast<const QRgb*>(background.image.constScanLine(y)) + pixels.left(),
                  bytes);
  }
}

void Canvas::PaintDifferences(const Drawing& drawing) {
  const QRegion region = Differences(drawing);
  if (!region.isEmpty()) {
    PutBackgroundBack(region);
    QPainter painter(&shown.image);
    painter.setClipRegion(region);
    PaintPrimitives(painter, drawing, drawing.backgroundCount, drawing.primitives.size());
  }
  shown.count = drawing.primitives.size();
}

void Canvas::BringUpToDate(const Drawing& drawing) {
  const std::size_t end = drawing.primitives.size();
  if (IsUpToDate(drawing)) return;
  const bool same = Fits(shown, drawing) && shown.foreground == drawing.foreground;
  if (ShowsDifferences(drawing)) {
    PaintDifferences(drawing);
  } else {
    if (!same || shown.count > end) {
      if (drawing.backgroundCount == 0) {
        background = {};
        Start(shown, drawing);
      } else {
        if (!Fits(background, drawing)) Start(background, drawing);
        PaintOn(background, drawing, drawing.backgroundCount);
        shown = background;
      }
    }
    PaintOn(shown, drawing, end);
  }
  shown.foreground = drawing.foreground;
  foreground.reset();
  if (IsSmall(drawing))
    foreground.emplace(
        drawing.primitives.begin() + static_cast<std::ptrdiff_t>(drawing.backgroundCount),
        drawing.primitives.end());
}

void Canvas::Repaint() {
  const Control* control = Record();
  if (control && ShowsDifferences(control->drawing))
    update(Differences(control->drawing).translated(contentsRect().topLeft()));
  else
    update();
}

void Canvas::paintEvent(QPaintEvent* event) {
  if (frameWidth() > 0) QFrame::paintEvent(event);
  Control* control = Record();
  if (!control || contentsRect().isEmpty()) return;
  // The desktop may ask for a part before the queue tells of the change: the rest comes after it.
  const QRegion later = Stale(control->drawing) - event->region();
  BringUpToDate(control->drawing);
  if (!later.isEmpty()) update(later);
  QPainter painter(this);
  for (const QRect& place : event->region() & contentsRect()) {
    painter.setClipRect(place);
    painter.drawImage(contentsRect().topLeft(), shown.image);
  }
}

void Canvas::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  Control* control = Record();
  if (!control) return;
  NativeFrame frame;
  UserCanvasSize(*control, contentsRect().width(), contentsRect().height());
}

void Canvas::Tell(QMouseEvent& event, MouseEvent::Kind kind) {
  Control* control = Record();
  if (!control || !UserReaches(*control->owner)) return;
  NativeFrame frame;
  QPointF at = event.position() - QPointF(contentsRect().topLeft());
  Qt::MouseButtons held = kind == MouseEvent::Move ? event.buttons() : event.button();
  UserMouse(*control, {.kind = kind,
                       .button = held & Qt::LeftButton    ? 1
                                 : held & Qt::RightButton ? 2
                                                          : 0,
                       .x = at.x(),
                       .y = at.y(),
                       .shift = event.modifiers().testFlag(Qt::ShiftModifier),
                       .ctrl = event.modifiers().testFlag(Qt::ControlModifier)});
  if (kind == MouseEvent::Up && event.button() == Qt::LeftButton && Record() &&
      rect().contains(event.position().toPoint()))
    UserClick(*control);
}

}  // namespace

QWidget* CreateCanvas(const Control& control, QWidget* parent) {
  return Make<Canvas>(control, parent);
}

void RepaintCanvas(QWidget& canvas) { static_cast<Canvas&>(canvas).Repaint(); }
