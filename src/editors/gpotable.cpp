// The rules of GPO_Ctl: cells that switch the output to its table, and the frequency list.
#include "editors/gpotable.h"

#include <algorithm>
#include <array>

#include "editors/tableeditor.h"

namespace {

constexpr std::size_t gpoMode = 491;     // 0 is the table
constexpr std::size_t gpoControl = 498;  // 0 is this screen
constexpr int frequencyValue = 325;
constexpr int frequencyByte = 308;
constexpr const char* frequencyList = "Combo1";
constexpr const char* frequencyCaption = "Combo1_Label";

// ---- cells --------------------------------------------------------------------------------------

void CellAccepted(Editor&, const EditorField&, double) {
  CalValues[gpoMode] = 0;
  if (MonitorMode != OnflyLive) CalValues[gpoControl] = 0;
}

EditorField Cell() {
  return {.wholeNumber = true,
          .low = 0,
          .high = 100,
          .rangeText = "  (0 to 100 %)",
          .accepted = CellAccepted,
          .helpTopic = "GPO_Ctl.Table_GPO"};
}

// ---- frequency ----------------------------------------------------------------------------------

struct Frequency {
  const char* text;
  int divisor;  // of 244 Hz
};
constexpr std::array<Frequency, 6> frequencies = {
    {{"16Hz", 15}, {"24Hz", 10}, {"31Hz", 8}, {"61Hz", 4}, {"122Hz", 2}, {"244Hz", 1}}};

int FrequencyIndex() {
  const auto found =
      std::find_if(frequencies.begin(), frequencies.end(), [](const Frequency& frequency) {
        return static_cast<float>(frequency.divisor) == CalValues[frequencyValue];
      });
  return found == frequencies.end() ? -1 : static_cast<int>(found - frequencies.begin());
}

// What an entry of the list goes through.
EditorField FrequencyEntry() {
  return {.calIndex = frequencyValue,
          .imageByte = frequencyByte,
          .store = [](Editor&, const EditorField&, double divisor) {
            CalValues[frequencyValue] = static_cast<float>(divisor);
            CalValues[gpoMode] = 0;
            CalValues[gpoControl] = 0;
          }};
}

// A list that shows nothing, because the file holds a divisor that it does not know, keeps it.
void EnterFrequency(Editor& editor, const EditorList&, int index) {
  if (index < 0) return;
  if (!OnlyConfirms(editor, frequencyValue))
    StoreOrPost(editor, FrequencyEntry(), frequencies[static_cast<std::size_t>(index)].divisor);
  reinit(editor);
  CalChanged = true;
}

EditorList FrequencyList() {
  EditorList list{.number = 21,
                  .control = frequencyList,
                  .label = frequencyCaption,
                  .caption = "GPO &Frequency:",
                  .index = FrequencyIndex,
                  .movingIsChange = false,
                  .enter = EnterFrequency,
                  .helpTopic = "GPO_Ctl.Combo1"};
  for (const Frequency& frequency : frequencies) list.items.emplace_back(frequency.text);
  return list;
}

// ---- screen -------------------------------------------------------------------------------------

void Drawn(TableEditor& table) {
  SetBackColour(At(table.editor.screen, frequencyList),
                MonitorMode == OnflyLive ? Yellow : SystemWindow);
}

TableRules Rules() {
  return {.table = TableGpo,
          .cells = "Table_GPO",
          .calBase = 260,
          .imageBase = 243,
          .cell = Cell(),
          .captions = {.rpm = "RPM_GPO", .map = "MAP_GPO"},
          .fill = {.constantTitle = "GPO CONSTANT",
                   .tableTitle = "GPO TABLE",
                   .constantPrompt = "Fill Table with GPO Table Constant:",
                   .rowPrompt = "Enter New GPO Row Value:",
                   .columnPrompt = "Enter New GPO Column Value:"},
          .graphButton = "Command1",
          .graphCaption = " GPO Table   &Graph",
          .handOver =
              [] {
                return GraphHandOver{"GPO Duty Cycle &Value =", "%"};
              },
          .lines =
              [](TableEditor& table) {
                AddHint(table.editor, "FrequencyLine",
                        "Use Mouse or Up and Down Arrow Keys to Change GPO Frequency");
              },
          .drawn = Drawn};
}

Editor Parts() {
  Editor editor;
  editor.name = "GPO_Ctl";
  editor.title = "GPO PARAMETERS";
  editor.lists = {FrequencyList()};
  editor.backButton = "Command2";
  editor.back = {.screen = "CSForm1", .button = "&GPO Control"};
  editor.saveLine = "Must Press Enter to Save New Value";
  return editor;
}

}  // namespace

Editor& GpoCtl() {
  static TableEditor& table = AddTable(Rules(), Parts());
  return table.editor;
}
