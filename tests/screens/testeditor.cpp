// The small editor of the cycle's tests.
#include "screens/testeditor.h"

#include <optional>
#include <string>
#include <vector>

#include "core/globalstate.h"
#include "core/numbers.h"

EditorNotes notes;

namespace {

double Twice(double stored) { return stored * 2; }
double Half(double entry) { return entry / 2; }

EditorField Row(int number, const std::string& control, const char* caption, int calIndex,
                Bound low, Bound high, Words rangeText) {
  return {.number = number,
          .control = control,
          .label = control + "Label",
          .caption = caption,
          .calIndex = calIndex,
          .low = low,
          .high = high,
          .rangeText = rangeText};
}

// One field of each kind: plain, masked, whole, signed, scaled, ONFLY, and those that do something
// else when they refuse.
std::vector<EditorField> Fields() {
  EditorField plain = Row(1, "Plain", "&Plain =", 10, 0, 100, "  (0 to 100 Units)");
  plain.refused = [](Editor&, const EditorField&) { ++notes.refusals; };
  plain.leaving = [](Editor&, const EditorField&) { ++notes.leaves; };

  EditorField masked = Row(2, "Masked", "&Masked =", 11, 0.25, 10, "  (0.25 to 10 Deg)");
  masked.mask = "##.00";

  EditorField whole = Row(3, "Whole", "&Whole =", 12, 0, 250, "  (0 to 250% FPW)");
  whole.wholeNumber = true;
  whole.toStored = [](double entry) { return entry / 100; };
  whole.toShown = [](double stored) { return stored * 100; };

  EditorField withSign = Row(4, "Signed", "&Signed =", 13, -30, 80, "  (-30 to 80C)");
  withSign.takesMinus = true;

  EditorField onfly = Row(5, "Onfly", "&Onfly =", 37, 2, 100, "  (2 to 100 Units)");
  onfly.imageByte = 21;

  EditorField keeps = Row(
      6, "Keeps", "&Keeps =", 15, [] { return MapBar * 10.0; }, [] { return MapBar * 104.0; },
      [] { return "  (" + NumberText(MapBar * 10) + " kPa)"; });
  keeps.afterRefusal = AfterRefusal::HoldFocus;

  EditorField message = Row(7, "Message", "M&essage =", 16, 0, 5, "  (0 to 5 Volts)");
  message.afterRefusal = AfterRefusal::MessageOnly;

  EditorField scaled = Row(8, "Scaled", "S&caled =", 410, 20, 208, "  (20 to 208 kPa)");
  scaled.toStored = Half;
  scaled.toShown = Twice;
  scaled.imageByte = 418;

  EditorField checked = Row(9, "Checked", "C&hecked =", 413, 2, 64, "  (2 to 64)");
  checked.afterRefusal = AfterRefusal::GotFocusAgain;
  checked.check = [](Editor&, const EditorField&, double entry) -> std::optional<std::string> {
    if (entry == 4) return std::nullopt;
    return "Data Input Error\n\r(Divisor Must be 4)";
  };

  return {plain, masked, whole, withSign, onfly, keeps, message, scaled, checked};
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
