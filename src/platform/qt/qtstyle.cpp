// Fusion on every desktop, with the desktop's colours; marked letters are always underlined and the
// focus can always be seen.
#include "platform/qt/qtstyle.h"

#include <QApplication>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QWidget>

#include "platform/qt/qtbase.h"
#include "platform/screen.h"

namespace {

class ScreenStyle : public QProxyStyle {
 public:
  ScreenStyle() : QProxyStyle(QStyleFactory::create("Fusion")) {}

  // An entry of the menu bar that is switched off on its own is a line to be read.
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    const auto* item = element == CE_MenuBarItem
                           ? qstyleoption_cast<const QStyleOptionMenuItem*>(option)
                           : nullptr;
    if (!item || item->state & State_Enabled || !widget || !widget->isEnabled()) {
      QProxyStyle::drawControl(element, option, painter, widget);
      return;
    }
    QStyleOptionMenuItem readable = *item;
    for (auto role : {QPalette::ButtonText, QPalette::WindowText, QPalette::Text})
      readable.palette.setColor(QPalette::Disabled, role,
                                readable.palette.color(QPalette::Active, QPalette::WindowText));
    QProxyStyle::drawControl(element, &readable, painter, widget);
  }

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    switch (hint) {
      case SH_UnderlineShortcut:
        return 1;
      case SH_DialogButtonBox_ButtonsHaveIcons:
      case SH_ComboBox_Popup:
        return 0;
      default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
  }

  // The focus is moved by the screens, which the toolkit does not take for the keyboard's doing.
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    if (element == PE_PanelButtonCommand &&
        DrawFocused<QStyleOptionButton>(element, option, painter, widget))
      return;
    if (element == PE_FrameFocusRect &&
        DrawFocused<QStyleOptionFocusRect>(element, option, painter, widget))
      return;
    QProxyStyle::drawPrimitive(element, option, painter, widget);
  }

 private:
  template <typename Option>
  bool DrawFocused(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const {
    const auto* given = qstyleoption_cast<const Option*>(option);
    if (!given || !(given->state & State_HasFocus)) return false;
    Option seen(*given);
    seen.state |= State_KeyboardFocusChange;
    QProxyStyle::drawPrimitive(element, &seen, painter, widget);
    return true;
  }
};

double Luminance(const QColor& colour) {
  return 0.299 * colour.redF() + 0.587 * colour.greenF() + 0.114 * colour.blueF();
}

// Its mark stands on the ground of a field, whatever the ground of its caption is.
bool HasMark(const Control& control) {
  return control.kind == ControlKind::RadioButton || control.kind == ControlKind::CheckBox;
}

bool IsPlain(const Control& control) {
  return IsField(control)
             ? control.backColour == SystemWindow && control.foreColour == SystemWindowText
             : control.backColour == SystemButtonFace && control.foreColour == SystemButtonText;
}

// Texts of a disabled control stay grey: the disabled group keeps the theme's text colours.
void SetText(QPalette& palette, const QColor& colour) {
  for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Active, role, colour);
    palette.setColor(QPalette::Inactive, role, colour);
  }
}

}  // namespace

void ApplyStyle() { QApplication::setStyle(Make<ScreenStyle>()); }

QColor ToQColor(Colour colour) {
  switch (colour) {
    case SystemWindow:
      return QApplication::palette().color(QPalette::Base);
    case SystemWindowText:
      return QApplication::palette().color(QPalette::Text);
    case SystemButtonFace:
      return QApplication::palette().color(QPalette::Window);
    case SystemButtonText:
      return QApplication::palette().color(QPalette::WindowText);
    case SystemHighlight:
      return QApplication::palette().color(QPalette::Highlight);
    default:
      return QColor(static_cast<int>(RedOf(colour)), static_cast<int>(GreenOf(colour)),
                    static_cast<int>(BlueOf(colour)));
  }
}

QColor ReadableOn(const QColor& ground) {
  return Luminance(ground) > 0.5 ? QColor(Qt::black) : QColor(Qt::white);
}

Colour GroundOf(const Control& control) {
  const Control* at = &control;
  while (at) {
    if (at->backColour != SystemButtonFace) return at->backColour;
    if (!at->owner) return SystemButtonFace;
    if (at->place.in.empty()) return at->owner->backColour;
    at = Find(*at->owner, at->place.in);
  }
  return SystemButtonFace;
}

QColor TextColourOf(const Control& control) {
  Colour ground = GroundOf(control);
  bool onButton = control.kind == ControlKind::Button && control.backColour == SystemButtonFace;
  if (IsRole(control.foreColour) && !IsRole(ground) && !onButton)
    return ReadableOn(ToQColor(ground));
  return ToQColor(control.foreColour);
}

QFont FontOfSize(double pointSize, bool bold) {
  QFont font = QApplication::font();
  if (pointSize > 0) font.setPointSizeF(pointSize);
  if (bold) font.setBold(true);
  return font;
}

QFont FontOf(const Control& control, double factor) {
  return FontOfSize(QApplication::font().pointSizeF() * control.fontScale * factor, control.bold);
}

void ApplyColours(const Control& control, QWidget& widget) {
  bool plain = IsPlain(control) && (!control.owner || IsRole(GroundOf(control)));
  bool wasPlain = !widget.testAttribute(Qt::WA_SetPalette);
  if (plain && wasPlain) return;
  if (plain) {
    widget.setPalette(QPalette());
    widget.setAutoFillBackground(false);
    return;
  }
  QPalette palette;
  SetText(palette, TextColourOf(control));
  bool ownGround = IsField(control) || control.backColour != SystemButtonFace;
  if (ownGround) {
    QColor back = ToQColor(control.backColour);
    palette.setColor(QPalette::Window, back);
    palette.setColor(QPalette::Base, back);
    if (!IsRole(control.backColour)) palette.setColor(QPalette::Button, back);
  } else if (HasMark(control)) {
    for (auto group : {QPalette::Active, QPalette::Inactive})
      palette.setColor(group, QPalette::Text, QApplication::palette().color(group, QPalette::Text));
  }
  widget.setPalette(palette);
  bool fills = control.kind == ControlKind::Label || control.kind == ControlKind::RadioButton ||
               control.kind == ControlKind::CheckBox || control.kind == ControlKind::Row ||
               control.kind == ControlKind::Column || control.kind == ControlKind::Grid;
  widget.setAutoFillBackground(fills && ownGround);
}
