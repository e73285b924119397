// The rules of frmVETable: correction in two modes, pulse width and duty cycle to look at.
#include "editors/vetable.h"

#include "core/numbers.h"
#include "editors/tableeditor.h"

int GamaOffset = 0;

namespace {

constexpr int absoluteOffset = 100;
constexpr int correctionView = 0;
constexpr int pulseView = 1;
constexpr int views = 3;
constexpr int firstCell = 124;  // CalValues in front of cell 1

struct ViewTexts {
  const char* caption;
  const char* mode;
  const char* thirdLine;
  const char* unit;  // on the 3D graph
};

constexpr const char* modeLine = "F2 Switches from OFFSET to ABSOLUTE GAMA";
constexpr const char* readOnlyLine = "  This Table is Based on OFFSET Gama and is not Editable";
constexpr ViewTexts offsetTexts = {"Correction (-50% to 50% FPW)", "OFFSET", modeLine, "% FPW"};
constexpr ViewTexts absoluteTexts = {"Correction (50% to 150% FPW)", "ABSOLUTE", modeLine, "% FPW"};
constexpr ViewTexts pulseTexts = {"(Corrected Injector PulseWidth (ms))", "", readOnlyLine,
                                  "ms PW"};
constexpr ViewTexts dutyTexts = {"(Calculated Duty Cycle (%))", "", readOnlyLine, "% Duty Cycle"};

const ViewTexts& TextsOfView() {
  if (VeView == correctionView) return GamaOffset == 0 ? offsetTexts : absoluteTexts;
  return VeView == pulseView ? pulseTexts : dutyTexts;
}

bool Editable() { return VeView == correctionView; }

// ---- cells --------------------------------------------------------------------------------------

std::string CellText(const EditorField& row) {
  const GridPlace place = PlaceOfCell(row.calIndex - firstCell);
  const double shown =
      TableWork[static_cast<std::size_t>(place.row)][static_cast<std::size_t>(place.column)];
  return VeView == pulseView ? Format(shown, "#0.0#") : Format(GamaOffset + shown, "##0");
}

EditorField Cell() {
  return {.wholeNumber = true,
          .takesMinus = true,
          .low = [] { return GamaOffset - 50.0; },
          .high = [] { return GamaOffset + 50.0; },
          .rangeText = []() -> std::string {
            return GamaOffset == 0 ? "  (-50% to 50% FPW)" : "  (50% to 150% FPW)";
          },
          .toStored = [](double entry) { return (entry - GamaOffset) / 100; },
          .show = CellText,
          // What was typed into a view that cannot be edited is dropped.
          .claims =
              [](Editor& editor, const EditorField&, const std::string&) {
                if (Editable()) return false;
                Redraw(editor);
                return true;
              },
          .helpTopic = "frmVETable.Table_VE"};
}

// ---- views --------------------------------------------------------------------------------------

void SwitchMode(TableEditor& table) {
  if (!Editable()) return;
  GamaOffset = GamaOffset == 0 ? absoluteOffset : 0;
  Redraw(table.editor);
}

void NextView(TableEditor& table) {
  VeView = (VeView + 1) % views;
  GamaOffset = 0;
  Redraw(table.editor);
}

void Keys(TableEditor& table, KeyEvent& event) {
  if (event.key != KeyF2 && event.key != KeyF5) return;
  event.handled = true;
  event.key == KeyF2 ? SwitchMode(table) : NextView(table);
}

// ---- screen -------------------------------------------------------------------------------------

// In the views that show what the injectors do, each cell near or beyond their limit has a mark, so
// that nobody has to tell the colours apart.
void DrawMarks(TableEditor& table) {
  for (int cell = 1; cell <= TableCells; ++cell) {
    const GridPlace place = PlaceOfCell(cell);
    const Colour colour = Editable() ? White
                                     : TableColours[static_cast<std::size_t>(place.row)]
                                                   [static_cast<std::size_t>(place.column)];
    Control& mark = *table.marks[static_cast<std::size_t>(cell)];
    SetCaption(mark, colour == Red ? "!!" : colour == Yellow ? "!" : "");
    SetBackColour(mark, colour == White ? SystemButtonFace : colour);
    SetVisible(mark, colour != White);
  }
}

void Drawn(TableEditor& table) {
  Screen& screen = table.editor.screen;
  const ViewTexts& texts = TextsOfView();
  SetCaption(At(screen, "RangeCaption"), texts.caption);
  SetCaption(At(screen, "ModeCaption"), texts.mode);
  SetCaption(At(screen, "ThirdLine"), texts.thirdLine);
  SetCaption(
      At(screen, "MarksLine"),
      Editable() ? "" : "!  Injector load 75 % and more      !!  Injector load 100 % and more");
  DrawMarks(table);
}

void AddHeadLabel(Editor& editor, const std::string& name, const std::string& caption, int chars,
                  bool bold) {
  Add(editor.screen, {.name = name,
                      .caption = caption,
                      .place = {.in = "Above"},
                      .widthChars = chars,
                      .fontScale = TableFontScale(ScreenClass),
                      .bold = bold});
}

void Head(TableEditor& table) {
  AddHeadLabel(table.editor, "ValueTitle", "Volumetric Efficiency ", 0, true);
  AddHeadLabel(table.editor, "RangeCaption", "", 36, false);
  AddHeadLabel(table.editor, "ModeCaption", "", 12, true);
}

void Lines(TableEditor& table) {
  AddHint(table.editor, "ViewLine", "F5 switches from VE (% FPW) to PW (ms) to Duty Cycle (%)");
  AddHint(table.editor, "ThirdLine", modeLine, 56);
  AddHint(table.editor, "MarksLine", "", 66);
}

TableRules Rules() {
  return {.table = TableVe,
          .cells = "Table_VE",
          .calBase = firstCell,
          .imageBase = 117,
          .cell = Cell(),
          .captions = {.rpm = "RPM_VE", .map = "MAP_VE"},
          .hasMarks = true,
          .fillScale = 100,
          .fill = {.constantTitle = "VE CONSTANT",
                   .tableTitle = "VE TABLE",
                   .constantPrompt = "Enter New VE Table Constant:",
                   .rowPrompt = "Enter New VE Row Value:",
                   .columnPrompt = "Enter New VE Column Value:"},
          .graphButton = "VEGraph",
          .graphCaption = "VE Table &Graph",
          .handOver =
              [] {
                return GraphHandOver{"VE &Value =", TextsOfView().unit};
              },
          .editable = Editable,
          .keys = Keys,
          .opening = [](TableEditor&) { GamaOffset = 0; },
          .head = Head,
          .lines = Lines,
          .drawn = Drawn};
}

Editor Parts() {
  Editor editor;
  editor.name = "frmVETable";
  editor.title = "VOLUMETRIC EFFICIENCY TABLE";
  editor.back = {.screen = "CSForm1", .button = "&Volumetric Efficiency Table"};
  return editor;
}

}  // namespace

Editor& FrmVETable() {
  static TableEditor& table = AddTable(Rules(), Parts());
  return table.editor;
}
