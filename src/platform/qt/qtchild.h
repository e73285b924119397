// Small windows inside the frame, with a title bar of their own.
#pragma once

struct QtScreen;
class QWidget;

QWidget* CreateChildWindow(QtScreen& native, QWidget* area);
void ShowChildWindow(QtScreen& native);
