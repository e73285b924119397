// The controls of a table screen: row 1 at the bottom, the load axis on the left, the speed axis
// below.
#include <algorithm>

#include "core/globalstate.h"
#include "editors/editlayout.h"
#include "editors/tableeditor.h"

namespace {

constexpr const char* gridName = "Grid";
constexpr const char* sideName = "Side";
constexpr int cellChars = 6;
constexpr int markChars = 2;
constexpr int headRow = 0;  // rows of the layout's grid
constexpr int speedRow = TableSide + 1;
constexpr int speedTitleRow = TableSide + 2;

int LayoutRow(int row) { return TableSide + 1 - row; }

int LayoutColumn(const TableRules& rules, int column) {
  return rules.hasMarks && column > 0 ? 2 * column - 1 : column;
}

int LayoutColumns(const TableRules& rules) {
  return LayoutColumn(rules, TableSide) + (rules.hasMarks ? 2 : 1);
}

void AddPosition(TableEditor& table, const EditorField& row) {
  const TableRules& rules = table.rules;
  const int atRow = RowAt(rules.grid, row.number);
  const int atColumn = ColumnAt(rules.grid, row.number);
  const std::string place = "load " + std::to_string(atRow) + ", speed " + std::to_string(atColumn);
  const std::string name = atRow == 0      ? "speed axis " + std::to_string(atColumn)
                           : atColumn == 0 ? "load axis " + std::to_string(atRow)
                                           : place;
  Add(table.editor.screen, {.name = row.control,
                            .kind = ControlKind::TextField,
                            .place = {.in = gridName,
                                      .row = LayoutRow(atRow),
                                      .column = LayoutColumn(rules, atColumn),
                                      .align = Align::Fill},
                            .widthChars = cellChars,
                            .textAlign = Align::Right,
                            .fontScale = TableFontScale(ScreenClass),
                            .bold = CellAt(rules.grid, row.number) == 0,
                            .accessibleName = name});
}

Control* AddAxisCaption(TableEditor& table, const std::string& array, int number, int row,
                        int column) {
  return &Add(table.editor.screen, {.name = array + "(" + std::to_string(number) + ")",
                                    .kind = ControlKind::Label,
                                    .place = {.in = gridName,
                                              .row = row,
                                              .column = LayoutColumn(table.rules, column),
                                              .align = Align::Fill},
                                    .widthChars = cellChars,
                                    .textAlign = Align::Right,
                                    .fontScale = TableFontScale(ScreenClass),
                                    .bold = true});
}

void AddAxisCaptions(TableEditor& table) {
  table.rpmCaptions.fill(nullptr);
  table.mapCaptions.fill(nullptr);
  const AxisCaptions& names = table.rules.captions;
  if (names.rpm.empty()) return;
  for (int i = 1; i <= TableSide; ++i) {
    const auto at = static_cast<std::size_t>(i);
    table.rpmCaptions[at] = AddAxisCaption(table, names.rpm, i, speedRow, i);
    table.mapCaptions[at] = AddAxisCaption(table, names.map, i, LayoutRow(i), 0);
  }
}

void AddMarks(TableEditor& table) {
  table.marks.clear();
  if (!table.rules.hasMarks) return;
  table.marks.push_back(nullptr);
  for (int cell = 1; cell <= TableCells; ++cell) {
    const int column = LayoutColumn(table.rules, (cell - 1) % TableSide + 1) + 1;
    table.marks.push_back(
        &Add(table.editor.screen, {.name = "Mark(" + std::to_string(cell) + ")",
                                   .kind = ControlKind::Label,
                                   .place = {.in = gridName,
                                             .row = LayoutRow((cell - 1) / TableSide + 1),
                                             .column = column,
                                             .align = Align::Fill},
                                   .widthChars = markChars,
                                   .textAlign = Align::Centre,
                                   .fontScale = TableFontScale(ScreenClass),
                                   .bold = true}));
  }
}

void AddGrid(TableEditor& table) {
  Screen& screen = table.editor.screen;
  const int columns = LayoutColumns(table.rules);
  Add(screen, {.name = gridName, .kind = ControlKind::Grid, .place = {.in = "Body"}});
  Add(screen, {.name = "MAP_Label",
               .place = {.in = gridName,
                         .row = headRow,
                         .column = 0,
                         .columnSpan = columns,
                         .align = Align::Left},
               .widthChars = 16});
  for (const EditorField& row : table.editor.fields)
    if (row.number <= table.rules.grid.positions) AddPosition(table, row);
  AddAxisCaptions(table);
  AddMarks(table);
  Add(screen, {.name = "SpeedTitle",
               .caption = "Engine Speed (RPM)",
               .place = {.in = gridName,
                         .row = speedTitleRow,
                         .column = 1,
                         .columnSpan = columns - 1,
                         .align = Align::Centre}});
}

// Fields and lists that a table has besides its cells.
void AddSide(TableEditor& table) {
  Editor& editor = table.editor;
  const auto positions = static_cast<std::size_t>(table.rules.grid.positions);
  if (editor.fields.size() == positions && editor.lists.empty()) return;
  Add(editor.screen, {.name = sideName, .kind = ControlKind::Grid, .place = {.in = "Above"}});
  GridCursor cursor{.container = sideName};
  for (std::size_t i = positions; i < editor.fields.size(); ++i)
    AddField(editor, editor.fields[i], cursor);
  for (const EditorList& row : editor.lists) AddList(editor, row, cursor);
}

}  // namespace

double TableFontScale(int screenClass) {
  if (screenClass <= 2) return 1;
  return screenClass == 3 ? 1.15 : 1.3;
}

void AddHint(Editor& editor, const std::string& name, const std::string& caption, int widthChars) {
  Add(editor.screen, {.name = name,
                      .caption = caption,
                      .place = {.in = "Hints", .align = Align::Left},
                      .widthChars = widthChars});
}

void BuildTable(Editor& editor) {
  TableEditor& table = TableOf(editor);
  Screen& screen = editor.screen;
  Add(screen, {.name = "Above", .kind = ControlKind::Row});
  if (table.rules.head) table.rules.head(table);
  Add(screen, {.name = "Body", .kind = ControlKind::Row});
  AddGrid(table);
  AddSide(table);
  Add(screen, {.name = "Hints", .kind = ControlKind::Column});
  AddHint(editor, "KeysLine",
          "Press F3 to Edit Rows      Press F4 to Edit Columns   Type ALT-S to Edit Full Table.");
  if (table.rules.lines) table.rules.lines(table);
  AddFoot(editor);
}
