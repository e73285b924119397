// The small editor of the cycle's tests.
#include "screens/testeditor.h"

#include <optional>
#include <vector>

#include "core/globalstate.h"
#include "core/numbers.h"

EditorNotes notes;

namespace {

double Twice(double stored) { return stored * 2; }
double Half(double entry) { return entry / 2; }

// One field of each kind: plain, masked, whole, signed, scaled, ONFLY, and one that keeps the
// focus.
std::vector<EditorField> Fields() {
  return {
      {.number = 1,
       .control = "Plain",
       .label = "PlainLabel",
       .caption = "&Plain =",
       .calIndex = 10,
       .low = 0,
       .high = 100,
       .rangeText = "  (0 to 100 Units)",
       .refused = [](Editor&, const EditorField&) { ++notes.refusals; },
       .leaving = [](Editor&, const EditorField&) { ++notes.leaves; }},
      {.number = 2,
       .control = "Masked",
       .label = "MaskedLabel",
       .caption = "&Masked =",
       .calIndex = 11,
       .mask = "##.00",
       .low = 0.25,
       .high = 10,
       .rangeText = "  (0.25 to 10 Deg)"},
      {.number = 3,
       .control = "Whole",
       .label = "WholeLabel",
       .caption = "&Whole =",
       .calIndex = 12,
       .wholeNumber = true,
       .low = 0,
       .high = 250,
       .rangeText = "  (0 to 250% FPW)",
       .toStored = [](double entry) { return entry / 100; },
       .toShown = [](double stored) { return stored * 100; }},
      {.number = 4,
       .control = "Signed",
       .label = "SignedLabel",
       .caption = "&Signed =",
       .calIndex = 13,
       .takesMinus = true,
       .low = -30,
       .high = 80,
       .rangeText = "  (-30 to 80C)"},
      {.number = 5,
       .control = "Onfly",
       .label = "OnflyLabel",
       .caption = "&Onfly =",
       .calIndex = 37,
       .low = 2,
       .high = 100,
       .rangeText = "  (2 to 100 Units)",
       .imageByte = 21},
      {.number = 6,
       .control = "Keeps",
       .label = "KeepsLabel",
       .caption = "&Keeps =",
       .calIndex = 15,
       .low = [] { return MapBar * 10.0; },
       .high = [] { return MapBar * 104.0; },
       .rangeText = [] { return "  (" + NumberText(MapBar * 10) + " kPa)"; },
       .afterRefusal = AfterRefusal::HoldFocus},
      {.number = 7,
       .control = "Message",
       .label = "MessageLabel",
       .caption = "M&essage =",
       .calIndex = 16,
       .low = 0,
       .high = 5,
       .rangeText = "  (0 to 5 Volts)",
       .afterRefusal = AfterRefusal::MessageOnly},
      {.number = 8,
       .control = "Scaled",
       .label = "ScaledLabel",
       .caption = "S&caled =",
       .calIndex = 410,
       .low = 20,
       .high = 208,
       .rangeText = "  (20 to 208 kPa)",
       .toStored = Half,
       .toShown = Twice,
       .imageByte = 418},
      {.number = 9,
       .control = "Checked",
       .label = "CheckedLabel",
       .caption = "C&hecked =",
       .calIndex = 413,
       .low = 2,
       .high = 64,
       .rangeText = "  (2 to 64)",
       .afterRefusal = AfterRefusal::GotFocusAgain,
       .check = [](Editor&, const EditorField&, double entry) -> std::optional<std::string> {
         if (entry == 4) return std::nullopt;
         return "Data Input Error\n\r(Divisor Must be 4)";
       }},
  };
}

Editor MakeTestEditor() {
  Editor editor;
  editor.name = "TestEditor";
  editor.title = "TEST PARAMETERS";
  editor.fields = Fields();
  editor.lists = {{.number = 21,
                   .control = "List",
                   .label = "ListLabel",
                   .caption = "L&ist:",
                   .items = {"16Hz", "24Hz", "31Hz"},
                   .index = [] { return static_cast<int>(CalValues[325]); },
                   .movingIsChange = false,
                   .enter =
                       [](Editor&, const EditorList&, int index) {
                         CalValues[325] = static_cast<float>(index);
                         CalChanged = true;
                       }}};
  editor.pairs = {{.label = "PairLabel",
                   .caption = "Rev Limit &Activation:",
                   .onControl = "Option1",
                   .offControl = "Option2",
                   .isOn = [] { return OptionIsSet(8); },
                   .choose = [](Editor&, const EditorPair&, bool on) { ChooseOption(8, on); }}};
  editor.buttons = {
      {.control = "Command2", .caption = "O&ther", .opens = "Other"},
      {.control = "Command3",
       .caption = "&Run",
       .click = [](Editor&, const EditorButton& row) { notes.pressed = row.control; },
       .helpTopic = "Run.Topic"},
      {.control = "Command4",
       .caption = "&Graph",
       .offInOnflySession = true,
       .click = [](Editor&, const EditorButton& row) { notes.pressed = row.control; }}};
  editor.back = {.screen = "CSForm1", .button = "Button7"};
  editor.screenTopic = "Screen.Topic";
  editor.compute = [](Editor&) { ++notes.redraws; };
  return editor;
}

}  // namespace

Editor& TestEditor() {
  static Editor editor = MakeTestEditor();
  return editor;
}

void EditCycleTest::SetUp() {
  EditorTest::SetUp();
  CalValues[10] = 50;
  CalValues[11] = 2.5F;
  CalValues[12] = 0.12F;
  CalValues[13] = -20;
  CalValues[37] = 40;
  CalValues[15] = 40;
  CalValues[16] = 4;
  CalValues[410] = 25;
  CalValues[413] = 4;
  Open(TestEditor());
  notes = {};
  CalChanged = false;
}
