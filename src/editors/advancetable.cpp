// The rules of Ign_adv_tbl: cells, both axes and the initial advance.
#include "editors/advancetable.h"

#include "core/encoder.h"
#include "core/numbers.h"
#include "editors/tableeditor.h"
#include "shell/calscreen.h"

namespace {

constexpr const char* topic = "Ign_adv_tbl";
constexpr const char* axisTitle = "INPUT ERROR";
constexpr int firstSpeedValue = 45;
constexpr int lastSpeedValue = 52;
constexpr int initialAdvanceNumber = 81;  // behind the 80 positions
constexpr int openedByAdvanceTable = 1;

// ---- axes ---------------------------------------------------------------------------------------

std::string AxisRefusal(const std::string& range, const std::string& order) {
  return "Data Input Error\n\r\n\rValues should be in the range of (" + range +
         ")\n\rand in Ascending Order from " + order + ".";
}

std::string SpeedRefusal() { return AxisRefusal("0 to 12000 RPM", "Left to Right"); }

std::string LoadRefusal() {
  return AxisRefusal(NumberText(SensorLowKpa()) + " to " + NumberText(SensorHighKpa()) + " kPa",
                     "Bottom to Top");
}

// A breakpoint stays strictly between its neighbours, as the single that it will be stored as: the
// double 1500.1 lies beside the stored 1500.1.
std::optional<std::string> CheckOrder(Editor&, const EditorField& row, double entry) {
  const auto at = static_cast<std::size_t>(row.calIndex);
  const auto stored = static_cast<float>(entry);
  const bool aboveLeft = row.calIndex == firstSpeedValue || stored > CalValues[at - 1];
  const bool belowRight = row.calIndex == lastSpeedValue || stored < CalValues[at + 1];
  if (aboveLeft && belowRight) return std::nullopt;
  return SpeedRefusal();
}

double PerBar(double kpa) {
  if (MapBar == 0) RaiseFailure(FailureDivisionByZero);
  return kpa / MapBar;
}

EditorField SpeedAxis() {
  return {.low = 0,
          .high = 12000,
          .refusal = SpeedRefusal,
          .refusalTitle = axisTitle,
          .check = CheckOrder,
          .helpTopic = topic};
}

// The message speaks of an order that nothing tests.
EditorField LoadAxis() {
  return {.low = SensorLowKpa,
          .high = SensorHighKpa,
          .refusal = LoadRefusal,
          .refusalTitle = axisTitle,
          .toStored = PerBar,
          .toShown = [](double stored) { return stored * MapBar; },
          .helpTopic = topic};
}

// ---- the rest -----------------------------------------------------------------------------------

EditorField Cell() {
  return {.low = 0, .high = 60, .rangeText = "  (0 to 60 DEG)", .helpTopic = topic};
}

EditorField InitAdv() {
  return {.number = initialAdvanceNumber,
          .control = "InitAdv",
          .label = "InitAdv_Label",
          .caption = "&Initial Advance =",
          .unit = "DEG",
          .calIndex = 3,
          .low = 0,
          .high = 30,
          .rangeText = "  (0 to 30 DEG)",
          .imageByte = 3,
          .accepted = [](Editor&, const EditorField&,
                         double stored) { InitialAdvance = static_cast<float>(stored); },
          .helpTopic = topic};
}

void OpenRevLimiter(Editor& editor, const EditorButton& row) {
  if (!ScreenRegistered(row.opens)) return;
  RevLimiterCaller = openedByAdvanceTable;
  LeaveFor(editor, row.opens);
}

TableRules Rules() {
  return {.table = TableAdvance,
          .grid = GridWithAxes,
          .cells = "Table_ADV",
          .calBase = 60,
          .imageBase = 53,
          .cell = Cell(),
          .speedAxis = SpeedAxis(),
          .loadAxis = LoadAxis(),
          .fill = {.constantTitle = "ADV CONSTANT",
                   .tableTitle = "ADV TABLE",
                   .constantPrompt = "Enter New ADV Table Constant:",
                   .rowPrompt = "Enter New ADV Row Value:",
                   .columnPrompt = "Enter New ADV Column Value:"},
          .graphButton = "Command1",
          .graphCaption = "Main Advance Table &Graph",
          .handOver = [] {
            return GraphHandOver{"Advance &Value =", "Degrees"};
          }};
}

Editor Parts() {
  Editor editor;
  editor.name = "Ign_adv_tbl";
  editor.title = "IGNITION ADVANCE TABLE";
  editor.fields = {InitAdv()};
  editor.buttons = {{.control = "Command2", .caption = "&Coolant Advance", .opens = "Cool_Adv"},
                    {.control = "Command4", .caption = "&MAP Sensor", .opens = "Map_sen"},
                    {.control = "Command5",
                     .caption = "&Rev Limiter",
                     .opens = "Rev_limiter",
                     .click = OpenRevLimiter}};
  editor.backButton = "Command3";
  editor.back = {.screen = "CSForm1", .button = "Ignition &Advance Table"};
  editor.saveLine = "Must Press Enter to Save New Value";
  return editor;
}

}  // namespace

Editor& IgnAdvTbl() {
  static TableEditor& table = AddTable(Rules(), Parts());
  return table.editor;
}
