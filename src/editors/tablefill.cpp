// The fill keys of the table screens.
#include <limits>
#include <optional>

#include "core/numbers.h"
#include "editors/tableeditor.h"
#include "platform/dialogs.h"

namespace {

struct Question {
  const std::string& title;
  std::string prompt;
};

Question QuestionOf(const FillTexts& texts, FillKind kind) {
  const auto prompt = [](const std::string& line, const char* key) {
    return line + "\n\rThe " + key + " Key DOES NOT SUPPORT ONFLY";
  };
  switch (kind) {
    case FillKind::Row:
      return {texts.tableTitle, prompt(texts.rowPrompt, "F3")};
    case FillKind::Column:
      return {texts.tableTitle, prompt(texts.columnPrompt, "F4")};
    default:
      return {texts.constantTitle, prompt(texts.constantPrompt, "S")};
  }
}

std::vector<int> PositionsOf(const TableEditor& table, FillKind kind) {
  const TableGrid& grid = table.rules.grid;
  switch (kind) {
    case FillKind::Row:
      return PositionsOfRow(grid, RowAt(grid, SelectedCell));
    case FillKind::Column:
      return PositionsOfColumn(grid, ColumnAt(grid, SelectedCell));
    default:
      return PositionsOfTable(grid);
  }
}

// The value as a single; nothing when the text is no number that a single holds.
std::optional<float> SingleOf(const std::optional<std::string>& text) {
  if (!text || !IsNumeric(*text)) return std::nullopt;
  const double value = LeadingNumber(*text);
  constexpr double most = std::numeric_limits<float>::max();
  if (value > most || value < -most) return std::nullopt;
  return static_cast<float>(value);
}

// The limits are singles here too, so that both ends of the range are inside.
bool InRange(const EditorField& cell, float value) {
  return value >= static_cast<float>(cell.low()) && value <= static_cast<float>(cell.high());
}

// Asks until the value is in range; nothing when the user leaves or enters no number.
std::optional<float> Ask(TableEditor& table, FillKind kind) {
  const EditorField& cell = table.rules.cell;
  const Question question = QuestionOf(table.rules.fill, kind);
  while (IsUp(table.editor.screen)) {
    const std::optional<float> value = SingleOf(InputBox(question.prompt, question.title));
    if (!value || InRange(cell, *value)) return value;
    MsgBox(RangeMessage(cell.rangeText()));
  }
  return std::nullopt;
}

void WriteText(TableEditor& table, int position, const std::string& text) {
  WriteField(table.editor, table.editor.fields[static_cast<std::size_t>(position - 1)], text);
}

void WriteTexts(TableEditor& table, const std::vector<int>& positions, const std::string& text) {
  for (int position : positions) WriteText(table, position, text);
}

// All cells read as stored, whatever the table's view adds to what it shows.
void WriteStoredTexts(TableEditor& table) {
  const TableRules& rules = table.rules;
  for (int position : PositionsOfTable(rules.grid)) {
    const auto index = static_cast<std::size_t>(rules.calBase + CellAt(rules.grid, position));
    WriteText(table, position, NumberText(CalValues[index] * rules.fillScale));
  }
}

void Store(TableEditor& table, const std::vector<int>& positions, float value) {
  const TableRules& rules = table.rules;
  for (int position : positions) {
    const auto index = static_cast<std::size_t>(rules.calBase + CellAt(rules.grid, position));
    CalValues[index] = static_cast<float>(value / rules.fillScale);
  }
  CalChanged = true;
  RefreshWork(table);
}

void SelectCell(TableEditor& table) {
  Control& control = ControlAt(table, SelectedCell);
  SetFocus(control);
  SelectText(control, 0, static_cast<int>(control.text.size()));
}

// White while the question is open.
void ColourCells(TableEditor& table, const std::vector<int>& positions, bool asking) {
  Editor& editor = table.editor;
  for (int position : positions)
    SetBackColour(
        ControlAt(table, position),
        asking ? White
               : editor.fieldColour(editor, editor.fields[static_cast<std::size_t>(position - 1)]));
}

}  // namespace

void FillTable(TableEditor& table, FillKind kind) {
  const std::vector<int> positions = PositionsOf(table, kind);
  if (positions.empty()) return;
  if (kind != FillKind::Table) ColourCells(table, positions, true);
  const std::optional<float> value = Ask(table, kind);
  if (!IsUp(table.editor.screen)) return;
  ColourCells(table, positions, false);
  if (!value) return;
  WriteTexts(table, positions, NumberText(*value));
  Store(table, positions, *value);
  if (kind != FillKind::Table) WriteStoredTexts(table);
  SelectCell(table);
}
