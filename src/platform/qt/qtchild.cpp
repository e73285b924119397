// Small windows inside the frame: moved by their title bar, kept within reach, place in the record.
#include "platform/qt/qtchild.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/native.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtwidgets.h"

namespace {

// As much of a title bar as must stay within the frame to be taken hold of.
constexpr int StaysInSight = 40;

class ChildWindow;

class TitleBar : public QWidget {
 public:
  TitleBar(ChildWindow& ofWindow, QtScreen& native);
  Caption* caption;

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  ChildWindow& window;
  QPoint grip;
};

class ChildWindow : public QFrame {
 public:
  ChildWindow(QtScreen& ofScreen, QWidget* area) : QFrame(area), native(ofScreen) {
    setFrameStyle(QFrame::Panel | QFrame::Raised);
    setAutoFillBackground(true);
    auto* column = Make<QVBoxLayout>(this);
    column->setContentsMargins(1, 1, 1, 1);
    column->setSpacing(0);
    bar = Make<TitleBar>(*this, native);
    column->addWidget(bar);
    column->addWidget(native.page, 1);
    bar->caption->SetCaption(ToQt(native.screen->title));
    hide();
  }

  void MoveTo(QPoint corner) {
    QRect room = parentWidget()->rect();
    corner.setX(
        std::clamp(corner.x(), StaysInSight - width(), std::max(room.width() - StaysInSight, 0)));
    corner.setY(std::clamp(corner.y(), 0, std::max(room.height() - bar->height(), 0)));
    move(corner);
  }

  void MoveByUser(QPoint corner) {
    MoveTo(corner);
    if (!native.screen) return;
    native.screen->left = TwipsOfPixels(pos().x());
    native.screen->top = TwipsOfPixels(pos().y());
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() == QEvent::WindowTitleChange) bar->caption->SetCaption(windowTitle());
    return QFrame::event(event);
  }

 private:
  QtScreen& native;
  TitleBar* bar;
};

TitleBar::TitleBar(ChildWindow& ofWindow, QtScreen& native)
    : QWidget(&ofWindow), caption(Make<Caption>(this)), window(ofWindow) {
  auto* row = Make<QHBoxLayout>(this);
  row->setContentsMargins(4, 2, 2, 2);
  QFont bold = font();
  bold.setBold(true);
  caption->setFont(bold);
  row->addWidget(caption, 1);
  row->addWidget(CreateCloseButton(native, this));
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Midlight);
}

void TitleBar::mousePressEvent(QMouseEvent* event) {
  grip = event->globalPosition().toPoint() - window.pos();
  window.raise();
}

void TitleBar::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() & Qt::LeftButton)
    window.MoveByUser(event->globalPosition().toPoint() - grip);
}

}  // namespace

QWidget* CreateChildWindow(QtScreen& native, QWidget* area) {
  return Make<ChildWindow>(native, area);
}

void ShowChildWindow(QtScreen& native) {
  auto& window = static_cast<ChildWindow&>(*native.window);
  const Screen& screen = *native.screen;
  QSize size = window.sizeHint();
  if (screen.width > 0) size.setWidth(PixelsOfTwips(screen.width));
  if (screen.height > 0) size.setHeight(PixelsOfTwips(screen.height));
  if (!window.isVisible()) {
    window.resize(size);
    window.MoveTo(
        {PixelsOfTwips(std::max(screen.left, 0.0)), PixelsOfTwips(std::max(screen.top, 0.0))});
    window.show();
  }
  window.raise();
}
