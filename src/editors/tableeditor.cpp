// What the four table screens have in common: cells as rows of the entry cycle, keys, views, the
// way to the 3D graph.
#include "editors/tableeditor.h"

#include <deque>
#include <utility>

#include "core/encoder.h"
#include "core/numbers.h"
#include "editors/graph3d.h"

int SelectedCell = 1;

namespace {

constexpr int firstSpeed = 44;  // CalValues in front of the breakpoints
constexpr int firstLoad = 52;
constexpr Colour selectedAxis = White;
constexpr Colour selectedAxisField = Rgb(0xC8, 0xDE, 0xFA);
constexpr const char* graphScreen = "Graph3D";

std::deque<TableEditor>& Tables() {
  static std::deque<TableEditor> tables;
  return tables;
}

bool IsPosition(const TableEditor& table, const EditorField& row) {
  return row.number >= 1 && row.number <= table.rules.grid.positions;
}

// ---- rows ---------------------------------------------------------------------------------------

EditorField FieldAt(const TableRules& rules, int position) {
  const int cell = CellAt(rules.grid, position);
  EditorField row = cell                               ? rules.cell
                    : RowAt(rules.grid, position) == 0 ? rules.speedAxis
                                                       : rules.loadAxis;
  row.number = position;
  row.control = rules.cells + "(" + std::to_string(position) + ")";
  if (cell) {
    row.calIndex = rules.calBase + cell;
    row.imageByte = rules.imageBase + cell;
  } else {
    row.calIndex = RowAt(rules.grid, position) == 0 ? firstSpeed + ColumnAt(rules.grid, position)
                                                    : firstLoad + RowAt(rules.grid, position);
  }
  return row;
}

// ---- text and colour ----------------------------------------------------------------------------

void RestoreText(Editor& editor, const EditorField& row) {
  TableEditor& table = TableOf(editor);
  if (!IsPosition(table, row)) return;
  RefreshWork(table);
  WriteField(editor, row, TextOfField(row));
}

Colour ColourAt(TableEditor& table, const EditorField& row) {
  const TableGrid& grid = table.rules.grid;
  if (!IsPosition(table, row))
    return row.imageByte != NoImageByte && MonitorMode == OnflyLive ? Yellow : SystemWindow;
  if (CellAt(grid, row.number))
    return MonitorMode == OnflyLive && IsEditable(table) ? Yellow : SystemButtonFace;
  const bool selected = row.number == ColumnAt(grid, SelectedCell) ||
                        row.number == PositionAt(grid, RowAt(grid, SelectedCell), 0);
  return selected && CellAt(grid, SelectedCell) ? selectedAxisField : SystemWindow;
}

// Row and column of the selected cell stand out on the axes.
void MarkAxes(TableEditor& table) {
  const TableGrid& grid = table.rules.grid;
  for (int i = 1; i <= TableSide; ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (Control* caption = table.rpmCaptions[at])
      SetBackColour(*caption, i == ColumnAt(grid, SelectedCell) ? selectedAxis : SystemButtonFace);
    if (Control* caption = table.mapCaptions[at])
      SetBackColour(*caption, i == RowAt(grid, SelectedCell) ? selectedAxis : SystemButtonFace);
  }
  for (const EditorField& row : table.editor.fields)
    if (IsPosition(table, row) && !CellAt(grid, row.number))
      SetBackColour(ControlOf(table.editor, row), ColourAt(table, row));
}

void DrawAxisTexts(TableEditor& table) {
  const double scale = LoadScale();
  for (std::size_t i = 1; i <= TableSide; ++i) {
    if (Control* caption = table.rpmCaptions[i])
      SetCaption(*caption, NumberText(CalValues[firstSpeed + i]));
    if (Control* caption = table.mapCaptions[i])
      SetCaption(*caption, NumberText(scale * CalValues[firstLoad + i]));
  }
  SetCaption(At(table.editor.screen, "MAP_Label"), LoadRangeText());
}

void DrawTable(Editor& editor) {
  TableEditor& table = TableOf(editor);
  DrawAxisTexts(table);
  MarkAxes(table);
  if (table.rules.drawn) table.rules.drawn(table);
}

// ---- keys ---------------------------------------------------------------------------------------

bool ListHasArrows(Editor& editor) {
  const Control* control = FocusedControl(editor.screen);
  return control && control->kind == ControlKind::DropDownList;
}

void MoveBy(TableEditor& table, KeyEvent& event, Arrow arrow) {
  const bool vertical = arrow == Arrow::Up || arrow == Arrow::Down;
  if (vertical && ListHasArrows(table.editor)) return;
  event.handled = true;
  SetFocus(ControlAt(table, StepFrom(table.rules.grid, SelectedCell, arrow)));
}

// S is taken in every view, so that it never reaches a cell as a character.
void Fill(TableEditor& table, KeyEvent& event, FillKind kind) {
  event.handled = true;
  if (IsEditable(table)) FillTable(table, kind);
}

void TableKeys(Editor& editor, KeyEvent& event) {
  TableEditor& table = TableOf(editor);
  // With Alt the other keys belong to the desktop, which closes a window by Alt+F4.
  if (event.ctrl || (event.alt && event.key != 'S')) return;
  switch (event.key) {
    case KeyLeft:
      return MoveBy(table, event, Arrow::Left);
    case KeyRight:
      return MoveBy(table, event, Arrow::Right);
    case KeyUp:
      return MoveBy(table, event, Arrow::Up);
    case KeyDown:
      return MoveBy(table, event, Arrow::Down);
    case 'S':
      return Fill(table, event, FillKind::Table);
    case KeyF3:
      return Fill(table, event, FillKind::Row);
    case KeyF4:
      return Fill(table, event, FillKind::Column);
    default:
      if (table.rules.keys) table.rules.keys(table, event);
  }
}

// ---- marks --------------------------------------------------------------------------------------

// A click on a mark is one on the cell beneath it.
void Clicked(Editor& editor, Control& control) {
  TableEditor& table = TableOf(editor);
  for (std::size_t cell = 1; cell < table.marks.size(); ++cell)
    if (table.marks[cell] == &control) SetFocus(ControlAt(table, static_cast<int>(cell)));
}

// ---- graph --------------------------------------------------------------------------------------

// The graph may draw as soon as it is loaded, so that its views are built before.
void OpenGraph(Editor& editor, const EditorButton&) {
  TableEditor& table = TableOf(editor);
  if (GraphRefused(table.rules.table)) return;
  PublishCalGlobals();
  RefreshWork(table);
  Graph3DCaption = table.rules.handOver();
  LeaveFor(editor, graphScreen);
}

// ---- hooks of the cycle -------------------------------------------------------------------------

// Other screens change what the views are reckoned from, such as the rev limit and the sensor.
void Build(Editor& editor) {
  TableEditor& table = TableOf(editor);
  SelectedCell = 1;
  PublishCalGlobals();
  if (table.rules.opening) table.rules.opening(table);
  BuildTable(editor);
}

void Focused(Editor& editor, const EditorField& row) {
  TableEditor& table = TableOf(editor);
  if (!IsPosition(table, row)) return;
  SelectedCell = row.number;
  MarkAxes(table);
}

void Connect(TableEditor& table) {
  Editor& editor = table.editor;
  const TableRules& rules = table.rules;
  std::vector<EditorField> fields;
  for (int position = 1; position <= rules.grid.positions; ++position) {
    fields.push_back(FieldAt(rules, position));
    fields.back().leaving = RestoreText;
  }
  for (EditorField& row : editor.fields) fields.push_back(std::move(row));
  editor.fields = std::move(fields);
  editor.buttons.insert(editor.buttons.begin(), {.control = rules.graphButton,
                                                 .caption = rules.graphCaption,
                                                 .opens = graphScreen,
                                                 .click = OpenGraph});
  for (EditorButton& button : editor.buttons) button.offInOnflySession = true;
  editor.screenTopic = rules.cell.helpTopic;
  editor.build = Build;
  editor.compute = [](Editor& own) { RefreshWork(TableOf(own)); };
  editor.draw = DrawTable;
  editor.reinit = RestoreText;
  editor.keys = TableKeys;
  editor.focused = Focused;
  editor.click = Clicked;
  editor.fieldColour = [](Editor& own, const EditorField& row) {
    return ColourAt(TableOf(own), row);
  };
}

}  // namespace

TableEditor& AddTable(TableRules rules, Editor editor) {
  TableEditor& table = Tables().emplace_back();
  table.rules = std::move(rules);
  table.editor = std::move(editor);
  Connect(table);
  return table;
}

TableEditor& TableOf(Editor& editor) {
  for (TableEditor& table : Tables())
    if (&table.editor == &editor) return table;
  RaiseFailure(FailureSubscript);
}

Control& ControlAt(TableEditor& table, int position) {
  return *table.editor.fieldControls[static_cast<std::size_t>(position - 1)];
}

bool IsEditable(const TableEditor& table) {
  return !table.rules.editable || table.rules.editable();
}

void RefreshWork(TableEditor& table) {
  SelectedTable = table.rules.table;
  CopyTablesToWork();
  BuildTableViews();
}

std::string LoadRangeText() {
  return "(" + NumberText(SensorLowKpa()) + " to " + NumberText(SensorHighKpa()) + " kPa)";
}
