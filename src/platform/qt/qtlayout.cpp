// Layouts: containers become box and grid layouts, everything gets at least the size of its text.
#include "platform/qt/qtlayout.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/fit.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtscreen.h"

namespace {

constexpr int ScreenMargin = 12;
constexpr int BetweenControls = 7;
constexpr int BetweenGridColumns = 9;

bool IsContainer(ControlKind kind) {
  return kind == ControlKind::Group || kind == ControlKind::Row || kind == ControlKind::Column ||
         kind == ControlKind::Grid;
}

// The containers of a screen by name ("" is the screen itself) with what stands in them.
struct Box {
  const Control* control = nullptr;  // null for the screen itself
  QWidget* widget = nullptr;
  std::vector<QtControl*> children;
  bool IsGrid() const {
    if (control && control->kind == ControlKind::Grid) return true;
    if (control && control->kind != ControlKind::Group) return false;
    return std::any_of(children.begin(), children.end(),
                       [](const QtControl* child) { return child->control->place.row >= 0; });
  }
  bool IsRow() const { return control && control->kind == ControlKind::Row; }
};
using Boxes = std::map<std::string, Box>;

// ---- who makes use of more room -----------------------------------------------------------------

Expands ExpandsOf(const Screen& screen, const Control& control) {
  switch (control.kind) {
    case ControlKind::Canvas:
    case ControlKind::ListBox:
    case ControlKind::TextArea:
    case ControlKind::TreeView:
      return {true, true};
    case ControlKind::ProgressBar:
      return {true, false};
    case ControlKind::TextField:
      return {control.widthChars == 0 || control.place.stretch > 0, false};
    case ControlKind::Spacer:
      return {true, true};
    default:
      break;
  }
  if (!IsContainer(control.kind))
    return {control.place.stretch > 0 && control.kind != ControlKind::Picture, false};
  Expands all{control.place.stretch > 0, false};
  for (const Control& child : screen.controls) {
    if (child.place.in != control.name) continue;
    Expands one = ExpandsOf(screen, child);
    bool spacer = child.kind == ControlKind::Spacer;
    bool row = control.kind == ControlKind::Row;
    all.horizontally |= one.horizontally && (!spacer || row);
    all.vertically |= one.vertically && (!spacer || !row);
  }
  return all;
}

// ---- placing ------------------------------------------------------------------------------------

Qt::Alignment DefaultAlignment(const Control& control, const Box& box) {
  switch (control.kind) {
    case ControlKind::TextField:
    case ControlKind::DropDownList:
    case ControlKind::Picture:
      return Qt::AlignLeft | Qt::AlignVCenter;
    case ControlKind::Button:
      // Buttons below each other are a menu: all as wide as the widest.
      return box.control ? Qt::Alignment() : Qt::AlignLeft | Qt::AlignVCenter;
    default:
      return {};
  }
}

Qt::Alignment CellAlignment(const Control& control, const Box& box) {
  switch (control.place.align) {
    case Align::Left:
      return Qt::AlignLeft | Qt::AlignVCenter;
    case Align::Centre:
      return Qt::AlignHCenter | Qt::AlignVCenter;
    case Align::Right:
      return Qt::AlignRight | Qt::AlignVCenter;
    case Align::Fill:
      return {};
    case Align::Default:
      break;
  }
  bool fillsByItself = control.widthChars == 0 && control.kind == ControlKind::TextField;
  return fillsByItself ? Qt::Alignment() : DefaultAlignment(control, box);
}

void PlaceInGrid(const Screen& screen, Box& box, QGridLayout& grid) {
  int next = 0;
  Expands all;
  for (QtControl* child : box.children) {
    const Place& place = child->control->place;
    int row = place.row >= 0 ? place.row : next;
    int column = std::max(place.column, 0);
    int rows = std::max(place.rowSpan, 1);
    int columns = std::max(place.columnSpan, 1);
    grid.addWidget(child->widget, row, column, rows, columns, CellAlignment(*child->control, box));
    next = std::max(next, row + rows);
    Expands one = ExpandsOf(screen, *child->control);
    if (place.stretch > 0) grid.setColumnStretch(column, place.stretch);
    if (one.vertically && rows == 1) grid.setRowStretch(row, std::max(place.stretch, 1));
    all.horizontally |= one.horizontally;
    all.vertically |= one.vertically;
  }
  if (!all.horizontally) grid.setColumnStretch(grid.columnCount(), 1);
  if (!all.vertically) grid.setRowStretch(grid.rowCount(), 1);
}

void PlaceInLine(const Screen& screen, Box& box, QBoxLayout& line) {
  bool row = box.IsRow();
  bool filled = false;
  for (QtControl* child : box.children) {
    const Control& control = *child->control;
    Expands one = ExpandsOf(screen, control);
    bool expands = row ? one.horizontally : one.vertically;
    if (control.kind == ControlKind::Spacer)
      child->widget->setSizePolicy(row ? QSizePolicy::Expanding : QSizePolicy::Ignored,
                                   row ? QSizePolicy::Ignored : QSizePolicy::Expanding);
    int stretch = control.place.stretch > 0 ? control.place.stretch : expands ? 1 : 0;
    filled |= stretch > 0;
    line.addWidget(child->widget, stretch, CellAlignment(control, box));
  }
  if (!filled) line.addStretch(1);
}

void LayOut(const Screen& screen, Box& box) {
  const int wished = FitOf(screen).spacing;
  const bool close = wished >= 0;
  const int margin = close ? 2 * wished : ScreenMargin;
  bool inner = box.control && box.control->kind != ControlKind::Group;
  QLayout* layout = nullptr;
  if (box.IsGrid()) {
    auto* grid = Make<QGridLayout>(box.widget);
    PlaceInGrid(screen, box, *grid);
    grid->setHorizontalSpacing(close ? 2 * wished : BetweenGridColumns);
    grid->setVerticalSpacing(close ? wished : BetweenControls);
    layout = grid;
  } else {
    auto direction = box.IsRow() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    auto* line = Make<QBoxLayout>(direction, box.widget);
    line->setSpacing(close && !box.IsRow() ? wished : BetweenControls);
    PlaceInLine(screen, box, *line);
    layout = line;
  }
  if (inner) layout->setContentsMargins(0, 0, 0, 0);
  if (!inner && close) layout->setContentsMargins(margin, margin, margin, margin);
  if (!box.control) layout->setContentsMargins(margin, margin, margin, margin);
}

}  // namespace

Expands ExpandsOf(const Screen& screen) {
  Expands all;
  for (const Control& control : screen.controls) {
    if (!control.place.in.empty()) continue;
    Expands one = ExpandsOf(screen, control);
    bool spacer = control.kind == ControlKind::Spacer;
    all.horizontally |= one.horizontally && !spacer;
    all.vertically |= one.vertically;
  }
  return all;
}

void BuildControls(QtScreen& native) {
  Screen& screen = *native.screen;
  Boxes boxes;
  boxes[""].widget = native.root;
  for (Control& control : screen.controls) {
    QtControl& child = native.controls.emplace_back();
    child.control = &control;
    control.native = &child;
    auto around = boxes.find(control.place.in);
    CreateWidget(child, around != boxes.end() ? around->second.widget : native.root);
    if (IsContainer(control.kind)) {
      boxes[control.name].control = &control;
      boxes[control.name].widget = child.widget;
    }
  }
  for (QtControl& child : native.controls) {
    auto around = boxes.find(child.control->place.in);
    boxes[around != boxes.end() ? child.control->place.in : std::string()].children.push_back(
        &child);
    ListenToWidget(child);
  }
  for (auto& [name, box] : boxes) LayOut(screen, box);
}
