// The canvas: paints the drawing of its record into a picture that it keeps, so that what is
// appended is all that is painted, and shows that picture.
#include "platform/qt/qtcanvas.h"

#include <QApplication>
#include <QFrame>
#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/native.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtpaint.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtstyle.h"

namespace {

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
  void BringUpToDate(const Drawing& drawing);

  QSize wished;
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

void PaintOn(Layer& layer, const Drawing& drawing, std::size_t end) {
  if (layer.count >= end || layer.image.isNull()) return;
  QPainter painter(&layer.image);
  PaintPrimitives(painter, drawing, layer.count, end);
  layer.count = end;
}

void Canvas::BringUpToDate(const Drawing& drawing) {
  std::size_t end = drawing.primitives.size();
  bool appends =
      Fits(shown, drawing) && shown.foreground == drawing.foreground && shown.count <= end;
  if (!appends) {
    if (drawing.backgroundCount > 0) {
      if (!Fits(background, drawing)) Start(background, drawing);
      PaintOn(background, drawing, drawing.backgroundCount);
      shown = background;
      shown.foreground = drawing.foreground;
    } else {
      background = {};
      Start(shown, drawing);
    }
  }
  PaintOn(shown, drawing, end);
}

void Canvas::paintEvent(QPaintEvent* event) {
  if (frameWidth() > 0) QFrame::paintEvent(event);
  Control* control = Record();
  if (!control || contentsRect().isEmpty()) return;
  BringUpToDate(control->drawing);
  QPainter painter(this);
  painter.setClipRect(event->rect() & contentsRect());
  painter.drawImage(contentsRect().topLeft(), shown.image);
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

void RepaintCanvas(QWidget& canvas) { canvas.update(); }
