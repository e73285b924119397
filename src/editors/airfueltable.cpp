// The rules of EGO_AF_TBL.
#include "editors/airfueltable.h"

#include "editors/tableeditor.h"

namespace {

EditorField Cell() {
  return {.low = 9.76,
          .high = 29.28,
          .rangeText = "  (9.76 to 29.28 AFR)",
          // The letter that opens the fill dialog is no entry.
          .claims = [](Editor&, const EditorField&,
                       const std::string& entry) { return entry == "s" || entry == "S"; },
          .helpTopic = "EGO_AF_TBL"};
}

TableRules Rules() {
  return {.table = TableAirFuel,
          .cells = "Table_EGO",
          .calBase = 344,
          .imageBase = 324,
          .cell = Cell(),
          .captions = {.rpm = "RPM_EGO", .map = "MAP_EGO"},
          .fill = {.constantTitle = "AFR CONSTANT",
                   .tableTitle = "AFR TABLE",
                   .constantPrompt = "Enter New AFR Table Constant:",
                   .rowPrompt = "Enter New AFR Row Value:",
                   .columnPrompt = "Enter New AFR Column Value:"},
          .graphButton = "Command2",
          .graphCaption = "A/F Ratio &Graph",
          .handOver = [] {
            return GraphHandOver{"Air/Fuel Ratio &Value =", ""};
          }};
}

Editor Parts() {
  Editor editor;
  editor.name = "EGO_AF_TBL";
  editor.title = "EGO AIR/FUEL RATIO TABLE";
  editor.buttons = {
      {.control = "Command3", .caption = "EGO &Parameters", .opens = "EGO_Parameters"},
      {.control = "Command4", .caption = "&Calibrate EGO Sensor", .opens = "EGO_Calb"}};
  editor.back = {.screen = "CSForm1", .button = "&EGO Air/Fuel Ratio Table"};
  editor.saveLine = "Must Press Enter to Save New Value";
  return editor;
}

}  // namespace

Editor& EgoAfTbl() {
  static TableEditor& table = AddTable(Rules(), Parts());
  return table.editor;
}
