// The look of the desktop: style, palette, colours of the records.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

#include "platform/colour.h"

struct Control;
class QWidget;

// Once the application object exists. Fonts and colours stay the desktop's.
void ApplyStyle();

QColor ToQColor(Colour colour);
// A text colour that can be read on this ground.
QColor ReadableOn(const QColor& ground);
// The text colour of a control on the ground that it really stands on.
QColor TextColourOf(const Control& control);
// The nearest explicit back colour around a control, its own included, or a role.
Colour GroundOf(const Control& control);
// In the size of the desktop, times the control's scale and a factor of its screen.
QFont FontOf(const Control& control, double factor = 1);
QFont FontOfSize(double pointSize, bool bold);
void ApplyColours(const Control& control, QWidget& widget);
