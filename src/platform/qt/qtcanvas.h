// The widget of a canvas control.
#pragma once

struct Control;
class QWidget;

QWidget* CreateCanvas(const Control& control, QWidget* parent);
// The drawing has changed: painted anew before long.
void RepaintCanvas(QWidget& canvas);
