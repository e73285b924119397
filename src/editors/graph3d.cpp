// The screen of the 3D graph: keys, fields, writing back.
#include "editors/graph3d.h"

#include <algorithm>
#include <string>

#include "core/calfix.h"
#include "core/encoder.h"
#include "core/numbers.h"
#include "editors/editcycle.h"
#include "editors/graph3dpicture.h"
#include "editors/graphcaption.h"
#include "shell/guards.h"
#include "shell/hotkeys.h"
#include "shell/mainframe.h"

Screen Graph3D;
int CursorColumn = 1;
int CursorRow = 1;

namespace {

constexpr int LastCursorColumn = 11;
constexpr int LastCursorRow = 10;
constexpr int FirstBreakpointColumn = FirstTableColumn;

// What belongs to each table, in the order of TableKind: where + and - write, where Back goes, and
// whether the graph may be used beside the analog monitor and the logger.
struct TableRow {
  WorkGrid& working;
  int calBase;   // index of the cell before the first
  double scale;  // shown value against the stored one
  StepRule rule;
  const char* screen;
  const char* graphButton;
  bool besideLogging = false;
};
const TableRow rows[] = {
    {VeWork, 124, 100, {1, 50, -50}, "frmVETable", "VEGraph"},
    {GpoWork, 260, 1, {1, 100, 0}, "GPO_Ctl", "Command1"},
    {AdvanceWork, 60, 1, {1, 60, 0}, "Ign_adv_tbl", "Command1"},
    {AfrWork, 344, 1, {0.01, 19.14, 10.14}, "EGO_AF_TBL", "Command2", true},
};

const TableRow& RowOf(int table) { return rows[std::clamp(table, 0, 3)]; }

bool Editable() { return SelectedTable != TableVe || VeView == 0; }

// CalibrationLoads when the views on show were built; -1 before they are for this opening.
long viewsOf = -1;

float& ValueAtCursor() { return TableWork[CursorRow][CursorColumn]; }

void ShowFields() {
  double value = ValueAtCursor();
  SetText(At(Graph3D, "Value_Text"), value == 0 ? "0" : Format(value, "##0.00"));
  SetText(At(Graph3D, "MAP_Text"), NumberText(RoundEven(LoadAxis[CursorRow])));
  SetText(At(Graph3D, "RPM_Text"), NumberText(RpmAxis[CursorColumn]));
}

// Every cell goes back, as the picture shows it.
void WriteBack() {
  const TableRow& row = RowOf(SelectedTable);
  for (int cell = 1; cell <= TableCells; ++cell) {
    GridPlace place = PlaceOfCell(cell);
    float shown = TableWork[place.row][place.column];
    row.working[place.row][place.column] = shown;
    CalValues[row.calBase + cell] = static_cast<float>(shown / row.scale);
  }
  CalChanged = true;
}

// A session may have begun since the graph was opened, and nothing is posted from here.
void StepValue(bool up) {
  if (CursorColumn == 1 || !Editable() || GraphRefused(SelectedTable)) return;
  SetText(At(Graph3D, "Value_Text"), "");
  const StepRule rule = RowOf(SelectedTable).rule;
  const double value = ValueOfNode(ValueAtCursor());
  if (up ? value >= rule.top : value <= rule.bottom) return;
  // A value with a fraction does not step over the limit.
  const double next =
      up ? std::min(value + rule.step, rule.top) : std::max(value - rule.step, rule.bottom);
  ValueAtCursor() = static_cast<float>(next);
  WriteBack();
}

// Nothing is left to draw when the session or the program has closed the graph behind a box.
void Draw() {
  if (!IsUp(Graph3D)) return;
  GraphDims();
  PlotData();
  ShowFields();
}

// What the views show of the calibration: all but what + and - have changed in the margins.
bool SameCalibration(const WorkGrid& one, const WorkGrid& other) {
  for (int cell = 1; cell <= TableCells; ++cell) {
    const GridPlace place = PlaceOfCell(cell);
    if (one[place.row][place.column] != other[place.row][place.column]) return false;
  }
  // The column of standstill, which no key changes, has the value of the low margin.
  for (int row = 1; row <= LastCursorRow; ++row)
    if (one[row][1] != other[row][1]) return false;
  return true;
}

// The calibration may be another one since the views were built. Every + and - writes them back, so
// that old ones would overwrite it. If it is the same, what was stepped in a margin stays.
void Rebuild() {
  const WorkGrid shown = TableWork;
  const auto rpmAxis = RpmAxis;
  const auto loadAxis = LoadAxis;
  PublishCalGlobals();
  CopyTablesToWork();
  BuildTableViews();
  if (viewsOf == CalibrationLoads && Editable() && rpmAxis == RpmAxis && loadAxis == LoadAxis &&
      SameCalibration(shown, TableWork))
    TableWork = shown;
  viewsOf = CalibrationLoads;
  Draw();
}

// Result: whether the key is one of the graph's.
bool TakeKey(const KeyEvent& event) {
  if (event.ctrl || event.alt) return false;
  switch (event.key) {
    case KeyUp:
    case KeyDown:
      CursorRow = RowAfter(CursorRow, event.key == KeyUp);
      return true;
    case KeyRight:
    case KeyLeft:
      CursorColumn = ColumnAfter(CursorColumn, event.key == KeyRight);
      return true;
    default:
      break;
  }
  if (event.character != '+' && event.character != '-') return false;
  StepValue(event.character == '+');
  return true;
}

void TakeKeyDown(Screen&, KeyEvent& event) {
  if (event.key == KeyShift || event.key == KeyControl) return;
  if (event.key == KeyF1) {
    event.handled = true;
    if (ShowHelpTopic) ShowHelpTopic("Graph3D");
    return;
  }
  if (TakeKey(event)) {
    event.handled = true;
    Draw();
    return;
  }
  HandleHotKey(event);
}

void GoBack() {
  const TableRow& row = RowOf(SelectedTable);
  UnloadScreen(Graph3D);
  OpenScreen(row.screen);
  for (Screen* screen : LoadedScreens())
    if (screen->name == row.screen)
      if (Control* button = Find(*screen, row.graphButton)) SetFocus(*button);
}

void AddField(const char* name, const std::string& caption, int column, int widthChars) {
  std::string label = std::string(name) + "_Label";
  Add(Graph3D, {.name = label,
                .kind = ControlKind::Label,
                .caption = caption,
                .place = {.in = "fields", .row = 0, .column = column},
                .labelFor = name});
  Add(Graph3D, {.name = name,
                .kind = ControlKind::TextField,
                .place = {.in = "fields", .row = 0, .column = column + 1},
                .widthChars = widthChars,
                .textAlign = Align::Right,
                .readOnly = true});
}

void Build(Screen&) {
  Add(Graph3D, {.name = "Picture1",
                .kind = ControlKind::Canvas,
                .place = {.stretch = 1},
                .minWidth = 540,
                .minHeight = 300,
                .backColour = SystemWindow,
                .foreColour = SystemWindowText,
                .framed = true,
                .accessibleName = "3D graph"});
  Add(Graph3D, {.name = "fields", .kind = ControlKind::Grid});
  AddField("RPM_Text", "Engine Speed Value =", 0, 5);
  AddField("MAP_Text", "MAP Value =", 2, 4);
  AddField("Value_Text", Graph3DCaption.fieldCaption, 4, 6);
  Add(Graph3D, {.name = "Unit_Label",
                .kind = ControlKind::Label,
                .caption = Graph3DCaption.unit,
                .place = {.in = "fields", .row = 0, .column = 6}});
  Add(Graph3D, {.name = "bottom", .kind = ControlKind::Row});
  Add(Graph3D, {.name = "Command1",
                .kind = ControlKind::Button,
                .caption = "<< Back",
                .place = {.in = "bottom"}});
  Add(Graph3D, {.name = "Hint",
                .kind = ControlKind::Label,
                .caption = Editable() ? "Use + or - Keys to Adjust Graph Values"
                                      : "Values in this graph are not Editable",
                .place = {.in = "bottom", .stretch = 1},
                .textAlign = Align::Centre});
  Add(Graph3D, {.name = "HelpLine",
                .kind = ControlKind::Label,
                .caption = "Press F1 For Help",
                .place = {.in = "bottom"}});
}

void Load(Screen&) {
  EntryPending = 0;
  HelpScreen = Graph3D.name;
  CursorColumn = 1;
  CursorRow = 1;
  viewsOf = -1;
  GraphDims();
  ShowFields();
}

void Shown(Screen&) {
  DoStats();
  Rebuild();
}

void Resized(Screen&, Control&) {
  GraphDims();
  PlotData();
}

}  // namespace

bool GraphRefused(int table) {
  if (RowOf(table).besideLogging && MonitorMode != OnflyLive) return false;
  return RefusedWhileLive();
}

StepRule StepRuleOf(int table) { return RowOf(table).rule; }

int ColumnAfter(int column, bool right) {
  if (right) return column + 1 > LastCursorColumn ? FirstBreakpointColumn : column + 1;
  int next = column - 1;
  if (next < 1) return LastCursorColumn;
  return next == FirstBreakpointColumn - 1 ? 1 : next;
}

int RowAfter(int row, bool up) {
  if (up) return row + 1 > LastCursorRow ? 1 : row + 1;
  return row - 1 < 1 ? LastCursorRow : row - 1;
}

void RegisterGraph3D() {
  Graph3D.name = "Graph3D";
  Graph3D.title = "3D GRAPH  -  Halvane2";
  Graph3D.cancelButton = "Command1";
  Graph3D.defaultFocus = "Command1";
  Graph3D.build = Build;
  Graph3D.on = {};
  Graph3D.on.load = Load;
  Graph3D.on.shown = Shown;
  Graph3D.on.keyDown = TakeKeyDown;
  Graph3D.on.resized = Resized;
  Graph3D.on.click = [](Screen&, Control& control) {
    if (control.name == "Command1") GoBack();
  };
  RegisterScreen("Graph3D", [] { ShowScreen(Graph3D); });
}
