// The controls of a table screen: row 1 at the bottom, the load axis on the left, the speed axis
// below.
#include "core/globalstate.h"
#include "editors/editlayout.h"
#include "editors/tableeditor.h"

namespace {

constexpr const char* gridName = "Grid";
constexpr const char* sideName = "Side";
constexpr int cellChars = 6;
constexpr int markChars = 1;
constexpr int speedRow = TableSide;  // rows of the layout's grid, from the top
constexpr int titleRow = TableSide + 1;
constexpr int mapLabelColumns = 2;

int LayoutRow(int row) { return TableSide - row; }

// Not enough height for everything: the buttons go before the lines.
bool IsLowScreen() { return ScreenClass == 1 || (ScreenClass > 4 && ScreenClass < 800); }

void AddPosition(TableEditor& table, const EditorField& row) {
  const TableRules& rules = table.rules;
  const int atRow = RowAt(rules.grid, row.number);
  const int atColumn = ColumnAt(rules.grid, row.number);
  const std::string place = "load " + std::to_string(atRow) + ", speed " + std::to_string(atColumn);
  const std::string name = atRow == 0      ? "speed axis " + std::to_string(atColumn)
                           : atColumn == 0 ? "load axis " + std::to_string(atRow)
                                           : place;
  Add(table.editor.screen,
      {.name = row.control,
       .kind = ControlKind::TextField,
       .place = {.in = gridName, .row = LayoutRow(atRow), .column = atColumn, .align = Align::Fill},
       .widthChars = cellChars,
       .textAlign = Align::Right,
       .fontScale = TableFontScale(ScreenClass),
       .bold = CellAt(rules.grid, row.number) == 0,
       .accessibleName = name});
}

Control* AddAxisCaption(TableEditor& table, const std::string& array, int number, int row,
                        int column) {
  return &Add(table.editor.screen,
              {.name = array + "(" + std::to_string(number) + ")",
               .kind = ControlKind::Label,
               .place = {.in = gridName, .row = row, .column = column, .align = Align::Fill},
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

// A mark stands on the left end of its cell, whose text keeps to the right.
void AddMarks(TableEditor& table) {
  table.marks.clear();
  if (!table.rules.hasMarks) return;
  table.marks.push_back(nullptr);
  for (int cell = 1; cell <= TableCells; ++cell)
    table.marks.push_back(
        &Add(table.editor.screen, {.name = "Mark(" + std::to_string(cell) + ")",
                                   .kind = ControlKind::Label,
                                   .place = {.in = gridName,
                                             .row = LayoutRow((cell - 1) / TableSide + 1),
                                             .column = (cell - 1) % TableSide + 1,
                                             .align = Align::Left},
                                   .widthChars = markChars,
                                   .textAlign = Align::Centre,
                                   .fontScale = TableFontScale(ScreenClass),
                                   .bold = true,
                                   .visible = false}));
}

void AddGrid(TableEditor& table) {
  Screen& screen = table.editor.screen;
  Add(screen, {.name = gridName, .kind = ControlKind::Grid, .place = {.in = "Body"}});
  for (const EditorField& row : table.editor.fields)
    if (row.number <= table.rules.grid.positions) AddPosition(table, row);
  AddAxisCaptions(table);
  AddMarks(table);
  Add(screen, {.name = "MAP_Label",
               .place = {.in = gridName,
                         .row = titleRow,
                         .column = 0,
                         .columnSpan = mapLabelColumns,
                         .align = Align::Left}});
  Add(screen, {.name = "SpeedTitle",
               .caption = "Engine Speed (RPM)",
               .place = {.in = gridName,
                         .row = titleRow,
                         .column = mapLabelColumns,
                         .columnSpan = TableSide + 1 - mapLabelColumns,
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

// Hint lines on the left, the standing lines of every editor beside them where there is room.
void AddTexts(TableEditor& table) {
  Editor& editor = table.editor;
  Screen& screen = editor.screen;
  Add(screen, {.name = "Texts", .kind = IsLowScreen() ? ControlKind::Column : ControlKind::Row});
  Add(screen, {.name = "Hints", .kind = ControlKind::Column, .place = {.in = "Texts"}});
  AddHint(editor, "KeysLine",
          "Press F3 to Edit Rows      Press F4 to Edit Columns   Type ALT-S to Edit Full Table.");
  if (table.rules.lines) table.rules.lines(table);
  if (!IsLowScreen())
    Add(screen, {.name = "TextsGap", .kind = ControlKind::Spacer, .place = {.in = "Texts"}});
  Add(screen, {.name = "Lines", .kind = ControlKind::Column, .place = {.in = "Texts"}});
  AddStandingLines(editor, "Lines");
}

void AddButtons(Editor& editor) {
  Add(editor.screen, {.name = "Foot", .kind = ControlKind::Row});
  Add(editor.screen, {.name = "FootGap", .kind = ControlKind::Spacer, .place = {.in = "Foot"}});
  for (const EditorButton& row : editor.buttons) AddButton(editor, row, "Foot");
  Add(editor.screen, {.name = editor.backButton,
                      .kind = ControlKind::Button,
                      .caption = editor.backCaption,
                      .place = {.in = "Foot"}});
}

}  // namespace

// A class above 4 is the width of a screen that has no class.
double TableFontScale(int screenClass) {
  if (screenClass == 4) return 1.3;
  return screenClass == 3 || screenClass >= 1024 ? 1.15 : 1;
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
  AddSide(table);
  Add(screen, {.name = "Body", .kind = ControlKind::Row});
  AddGrid(table);
  if (IsLowScreen()) {
    AddButtons(editor);
    AddTexts(table);
  } else {
    AddTexts(table);
    Add(screen, {.name = "FootSpace", .kind = ControlKind::Spacer});
    AddButtons(editor);
  }
}
