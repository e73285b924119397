// One widget per control, and what of the record is shown on it.
#pragma once

#include <QPixmap>
#include <QString>
#include <string>

struct Control;
class QWidget;

// What Control::native points to. `control` is null once the screen has been released.
struct QtControl {
  Control* control = nullptr;
  QWidget* widget = nullptr;
  bool applying = false;  // the program sets the widget: what it tells is no action of the user
};

// The bare widget of a control; ShowRecord fills it.
QWidget* CreateWidget(QtControl& native, QWidget* parent);
// Puts cursor and selection of the record on the widget.
void ShowSelectionOf(QtControl& native);
// Everything of the record, as it stands now.
void ShowRecord(QtControl& native);
// Connects what the user does on it.
void ListenToWidget(QtControl& native);
// Carries out the changes of all controls that have been collected.
void CarryOutChanges();
void ForgetChanges(Control& control);
QWidget* WidgetOf(const Control& control);
// Null when the widget is no control's.
QtControl* ControlOfWidget(const QWidget* widget);
// The text, caption or value as it stands on the widget.
QString ShownOn(const Control& control);
// Where a node of the record stands in its tree.
class QModelIndex;
class Tree;
QModelIndex IndexOfNode(Tree& tree, int node);
// A picture of the program's data by its name; null when there is none.
QPixmap PictureNamed(const std::string& name);
