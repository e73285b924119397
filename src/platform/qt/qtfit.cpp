// Texts of a screen of work that shrink or grow until all of it is seen.
#include "platform/qt/qtfit.h"

#include <QLayout>
#include <QWidget>
#include <algorithm>

#include "platform/fit.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtstyle.h"

namespace {

bool HasText(const Control& control) {
  switch (control.kind) {
    case ControlKind::Canvas:
    case ControlKind::Picture:
    case ControlKind::Row:
    case ControlKind::Column:
    case ControlKind::Grid:
    case ControlKind::Spacer:
      return false;
    default:
      return true;
  }
}

// Sizes that layouts remember are of the former texts. Asks without laying anything out: a canvas
// would be drawn anew at every trial.
void ForgetSizes(QWidget& widget) {
  for (QObject* child : widget.children())
    if (child->isWidgetType()) ForgetSizes(static_cast<QWidget&>(*child));
  if (widget.layout()) widget.layout()->invalidate();
  widget.updateGeometry();
}

QSize NeedsAt(QtScreen& native, QWidget& content, double factor) {
  for (QtControl& child : native.controls)
    if (child.control && HasText(*child.control))
      child.widget->setFont(FontOf(*child.control, factor));
  ForgetSizes(content);
  return content.minimumSizeHint();
}

void KeepShare(QtScreen& native, const TextFit& fit, int roomHeight) {
  for (QtControl& child : native.controls)
    if (child.control && child.control->name == fit.canvas)
      child.widget->setMinimumHeight(
          std::max(child.control->minHeight, static_cast<int>(fit.canvasShare * roomHeight)));
}

}  // namespace

void FitTextsInto(QtScreen& native, QWidget& content, QSize room) {
  if (!native.screen) return;
  const TextFit& fit = FitOf(*native.screen);
  if (fit.smallest >= fit.largest) return;
  KeepShare(native, fit, room.height());
  auto fits = [&](double factor) {
    const QSize needs = NeedsAt(native, content, factor);
    return needs.width() <= room.width() && needs.height() <= room.height();
  };
  if (fits(fit.largest)) return;
  constexpr int trials = 6;
  double smaller = fit.smallest, larger = fit.largest;
  for (int trial = 0; trial < trials; ++trial) {
    const double middle = (smaller + larger) / 2;
    (fits(middle) ? smaller : larger) = middle;
  }
  NeedsAt(native, content, smaller);
}
