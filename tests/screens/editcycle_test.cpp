// The entry cycle on a small screen of its own, by keys and clicks.
#include "editors/editcycle.h"

#include <gtest/gtest.h>

#include "core/globalstate.h"
#include "core/numbers.h"
#include "editors/editlayout.h"
#include "link/postedwrite.h"
#include "screens/editorscreens.h"

namespace {

int redraws = 0;
int leaves = 0;
int refusals = 0;
std::string pressed;

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
       .refused = [](Editor&, const EditorField&) { ++refusals; },
       .leaving = [](Editor&, const EditorField&) { ++leaves; }},
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
  editor.buttons = {{.control = "Command2", .caption = "O&ther", .opens = "Other"},
                    {.control = "Command3",
                     .caption = "&Run",
                     .click = [](Editor&, const EditorButton& row) { pressed = row.control; },
                     .helpTopic = "Run.Topic"},
                    {.control = "Command4",
                     .caption = "&Graph",
                     .offInOnflySession = true,
                     .click = [](Editor&, const EditorButton& row) { pressed = row.control; }}};
  editor.back = {.screen = "CSForm1", .button = "Button7"};
  editor.screenTopic = "Screen.Topic";
  editor.compute = [](Editor&) { ++redraws; };
  return editor;
}

Editor& TestEditor() {
  static Editor editor = MakeTestEditor();
  return editor;
}

class EditCycleTest : public EditorTest {
 protected:
  void SetUp() override {
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
    pressed.clear();
    Open(TestEditor());
    redraws = leaves = refusals = 0;
    CalChanged = false;
  }
  std::string Focus() { return ShownFocus(); }
};

const std::string retype = "Data Input Error\n\r  Retype Data";

}  // namespace

// ---- load and redraw ----------------------------------------------------------------------------

TEST_F(EditCycleTest, OpensOnItsFirstFieldWithItsTextSelected) {
  EXPECT_EQ(Focus(), "Plain");
  EXPECT_EQ(ActiveField, 1);
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(Back("PlainLabel"), White);
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(HelpScreen, "TestEditor");
  EXPECT_FALSE(CalChanged);
}

TEST_F(EditCycleTest, ShowsEveryFieldFromTheCalibrationThroughItsMaskAndScale) {
  EXPECT_EQ(Text("Plain"), "50");
  EXPECT_EQ(Text("Masked"), "2.50");
  EXPECT_EQ(Text("Whole"), "12");
  EXPECT_EQ(Text("Signed"), "-20");
  EXPECT_EQ(Text("Scaled"), "50");
}

TEST_F(EditCycleTest, CarriesTheStandingLines) {
  EXPECT_EQ(Text("HelpLine"), "Press F1 For Help");
  EXPECT_EQ(Text("SaveLine"), "Must Press Enter to Save New Values");
  EXPECT_EQ(Text("OnflyLine"), "ONFLY Values have Yellow Background");
}

TEST_F(EditCycleTest, LoadClearsAPendingEntry) {
  PressKey("7");
  UnloadScreen(Up());
  Open(TestEditor());
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(Text("Plain"), "50");
}

TEST_F(EditCycleTest, AnotherCalibrationShowsWhenTheScreenIsShownAgain) {
  CalValues[10] = 77;
  ShowScreen(Up());
  EXPECT_EQ(Text("Plain"), "77");
}

// ---- focus --------------------------------------------------------------------------------------

TEST_F(EditCycleTest, FocusMovesTheHighlightAndTheActiveField) {
  PressKey("Tab");
  EXPECT_EQ(Focus(), "Masked");
  EXPECT_EQ(ActiveField, 2);
  EXPECT_TRUE(AllSelected("Masked"));
  EXPECT_EQ(Back("MaskedLabel"), White);
  EXPECT_EQ(Back("PlainLabel"), SystemButtonFace);
  EXPECT_EQ(Back("Plain"), SystemWindow);
}

TEST_F(EditCycleTest, AcceleratorOfTheCaptionLeadsToItsField) {
  PressKey("Alt+S");
  EXPECT_EQ(Focus(), "Signed");
  EXPECT_EQ(ActiveField, 4);
}

TEST_F(EditCycleTest, TypedDigitReplacesTheSelectedValueAndIsPending) {
  PressKey("7");
  EXPECT_EQ(Text("Plain"), "7");
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(CalValues[10], 50);
  EXPECT_FALSE(CalChanged);
}

TEST_F(EditCycleTest, PendingEntryBringsTheFocusBackFromAClickedField) {
  PressKey("7");
  ClickOn(Up(), "Masked");
  EXPECT_EQ(Focus(), "Plain");
  EXPECT_EQ(ActiveField, 1);
  EXPECT_EQ(Text("Plain"), "7");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(Back("PlainLabel"), White);
  EXPECT_EQ(Back("MaskedLabel"), SystemButtonFace);
  EXPECT_EQ(EntryPending, 1);
}

TEST_F(EditCycleTest, PendingEntryBringsTheFocusBackFromTabAndAccelerator) {
  PressKey("7");
  PressKey("Tab");
  EXPECT_EQ(Focus(), "Plain");
  PressKey("Alt+S");
  EXPECT_EQ(Focus(), "Plain");
  EXPECT_EQ(Text("Plain"), "7");
}

TEST_F(EditCycleTest, ClickInThePendingFieldSelectsItsText) {
  TypeText("75");
  ClickOn(Up(), "Plain");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(Text("Plain"), "75");
}

TEST_F(EditCycleTest, PendingEntryKeepsButtonsFromBeingOperated) {
  PressKey("7");
  ClickOn(Up(), "Command3");
  PressKey("Alt+R");
  EXPECT_EQ(pressed, "");
  EXPECT_EQ(Focus(), "Plain");
  EXPECT_EQ(Back("Command3"), SystemButtonFace);
}

TEST_F(EditCycleTest, PendingEntryKeepsPairsAndListsAsTheyAre) {
  PressKey("7");
  ClickOn(Up(), "Option1");
  ChooseItem(Up(), "List", 2);
  EXPECT_EQ(Focus(), "Plain");
  EXPECT_EQ(CalValues[0], 0);
  EXPECT_EQ(The("List").listIndex, 0);
  EXPECT_TRUE(The("Option2").checked);
}

TEST_F(EditCycleTest, ButtonTakesTheHighlightWhileItHasTheFocus) {
  SetFocus(The("Command3"));
  EXPECT_EQ(Back("Command3"), White);
  SetFocus(The("Plain"));
  EXPECT_EQ(Back("Command3"), SystemButtonFace);
}

TEST_F(EditCycleTest, LeavingRunsTheValidateStepOnlyWithNothingPending) {
  PressKey("Tab");
  EXPECT_EQ(leaves, 1);
  SetFocus(The("Plain"));
  PressKey("7");
  PressKey("Tab");
  EXPECT_EQ(leaves, 1);
}

// ---- characters ---------------------------------------------------------------------------------

TEST_F(EditCycleTest, PeriodCommaAndBackspaceAreTakenButNotPending) {
  for (const char* key : {".", ",", "Backspace"}) {
    PressKey(key);
    EXPECT_EQ(EntryPending, 0) << key;
  }
  EXPECT_EQ(Text("Plain"), ".");
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(EditCycleTest, UnpendingEditLetsTheFocusGoAndIsKeptUntilTheNextRedraw) {
  PressKey("End");
  PressKey("Backspace");
  EXPECT_EQ(Text("Plain"), "5");
  PressKey("Tab");
  EXPECT_EQ(Focus(), "Masked");
  EXPECT_EQ(Text("Plain"), "5");
  EXPECT_EQ(CalValues[10], 50);
  Enter("Masked", "3");
  EXPECT_EQ(Text("Plain"), "50");
}

TEST_F(EditCycleTest, MinusIsABadCharacterInAnUnsignedField) {
  PressKey("-");
  EXPECT_EQ(Message(), retype);
  EXPECT_EQ(Text("Plain"), "50");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(EntryPending, 0);
}

TEST_F(EditCycleTest, MinusIsTakenInASignedField) {
  Enter("Signed", "-12.5");
  EXPECT_EQ(CalValues[13], -12.5F);
  EXPECT_EQ(Text("Signed"), "-12.5");
}

TEST_F(EditCycleTest, LettersBlanksAndSignsAreBadCharacters) {
  for (const char* text : {"a", " ", "+", "%"}) {
    TypeText(text);
    EXPECT_EQ(Message(), retype) << text;
    EXPECT_EQ(Text("Plain"), "50") << text;
    EXPECT_EQ(Focus(), "Plain");
  }
  EXPECT_FALSE(CalChanged);
}

TEST_F(EditCycleTest, BadCharacterInAPendingEntrySelectsItForTypingOver) {
  TypeText("12x");
  EXPECT_EQ(Message(), retype);
  EXPECT_EQ(Text("Plain"), "12");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(EntryPending, 1);
  TypeText("34");
  EXPECT_EQ(Text("Plain"), "34");
}

// ---- Enter --------------------------------------------------------------------------------------

TEST_F(EditCycleTest, EnterStoresAndStaysOnTheFieldSelected) {
  TypeText("75");
  PressKey("Enter");
  EXPECT_EQ(CalValues[10], 75);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(EnterPressed, 0);
  EXPECT_EQ(EntryText, "75");
  EXPECT_EQ(Focus(), "Plain");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(Back("PlainLabel"), White);
  EXPECT_EQ(redraws, 1);
}

TEST_F(EditCycleTest, EnterOnAnUnchangedValueCountsAsAChange) {
  PressKey("Enter");
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(CalValues[10], 50);
}

TEST_F(EditCycleTest, EnterInAnEmptyFieldIsIgnored) {
  PressKey("Backspace");
  EXPECT_EQ(Text("Plain"), "");
  PressKey("Enter");
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(CalValues[10], 50);
  EXPECT_EQ(EntryPending, 0);
}

TEST_F(EditCycleTest, WhatIsTypedAfterAnIgnoredEnterIsNoEntryUntilEnter) {
  PressKey("Backspace");
  PressKey("Enter");
  PressKey(".");
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(CalValues[10], 50);
}

TEST_F(EditCycleTest, TextWrittenByTheProgramIsNoEntry) {
  SetText(The("Plain"), "99");
  EXPECT_EQ(CalValues[10], 50);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(EntryText, "99");
}

TEST_F(EditCycleTest, EntryGoesThroughTheMask) {
  Enter("Masked", "3.456");
  EXPECT_EQ(EntryText, "3.46");
  EXPECT_EQ(CalValues[11], 3.46F);
  EXPECT_EQ(Text("Masked"), "3.46");
}

TEST_F(EditCycleTest, BothEndsOfARangeAreAccepted) {
  Enter("Masked", "0.25");
  EXPECT_EQ(CalValues[11], 0.25F);
  Enter("Masked", "10");
  EXPECT_EQ(CalValues[11], 10);
  Enter("Plain", "0");
  EXPECT_EQ(CalValues[10], 0);
  Enter("Plain", "100");
  EXPECT_EQ(CalValues[10], 100);
}

TEST_F(EditCycleTest, OutOfRangeIsRefusedAndTheTextStaysSelected) {
  Enter("Plain", "101");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (0 to 100 Units)");
  EXPECT_EQ(CalValues[10], 50);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(Text("Plain"), "101");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(EntryPending, 0);
  EXPECT_EQ(refusals, 1);
  EXPECT_EQ(redraws, 0);
}

TEST_F(EditCycleTest, RefusedTextIsReplacedByTheNextRedraw) {
  Enter("Plain", "101");
  Message();
  Enter("Masked", "3");
  EXPECT_EQ(Text("Plain"), "50");
}

TEST_F(EditCycleTest, NumberTooLongForAnyRangeIsRefused) {
  Enter("Plain", std::string(400, '9'));
  EXPECT_EQ(Message(), "Data Input Error\n\r  (0 to 100 Units)");
  Enter("Masked", std::string(400, '9'));
  EXPECT_EQ(Message(), "Data Input Error\n\r  (0.25 to 10 Deg)");
  EXPECT_FALSE(CalChanged);
}

TEST_F(EditCycleTest, EntryEndsAtACommaForItsValue) {
  Enter("Plain", "1,5");
  EXPECT_EQ(CalValues[10], 1);
}

TEST_F(EditCycleTest, TextThatNobodyCouldTypeIsRefusedAtEnter) {
  for (const char* pasted : {"abc", "12 Volts", "Inf"}) {
    SetText(The("Plain"), pasted);
    PressKey("Enter");
    EXPECT_EQ(Message(), retype) << pasted;
    EXPECT_EQ(CalValues[10], 50);
    EXPECT_TRUE(AllSelected("Plain"));
  }
  EXPECT_FALSE(CalChanged);
}

TEST_F(EditCycleTest, SmallNumberAsTheProgramWritesItIsTakenBack) {
  CalValues[10] = 1e-7F;
  Redraw(Edited());
  EXPECT_EQ(Text("Plain"), "1E-07");
  PressKey("Enter");
  EXPECT_EQ(CalValues[10], 1e-7F);
  EXPECT_TRUE(CalChanged);
}

TEST_F(EditCycleTest, WholeNumberFieldRefusesAPeriod) {
  for (const char* text : {"5.", "12.5", "."}) {
    Enter("Whole", text);
    EXPECT_EQ(Message(), "  Data Input Error\n\rWhole Numbers Only") << text;
    EXPECT_EQ(CalValues[12], 0.12F);
    EXPECT_TRUE(AllSelected("Whole"));
  }
  EXPECT_FALSE(CalChanged);
}

TEST_F(EditCycleTest, WholeNumberIsStoredThroughItsScale) {
  Enter("Whole", "250");
  EXPECT_EQ(CalValues[12], 2.5F);
  Enter("Whole", "13");
  EXPECT_EQ(CalValues[12], 0.13F);
  EXPECT_EQ(Text("Whole"), "13");
}

TEST_F(EditCycleTest, RangeAndItsTextFollowTheSensor) {
  MapBar = 2;
  Enter("Keeps", "208");
  EXPECT_EQ(CalValues[15], 208);
  Enter("Keeps", "19");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (20 kPa)");
}

TEST_F(EditCycleTest, FieldThatHoldsTheFocusMustBeCorrected) {
  Enter("Keeps", "9");
  Message();
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ActiveField, 6);
  ClickOn(Up(), "Plain");
  EXPECT_EQ(Focus(), "Keeps");
  TypeText("50");
  PressKey("Enter");
  EXPECT_EQ(EntryPending, 0);
  ClickOn(Up(), "Plain");
  EXPECT_EQ(Focus(), "Plain");
}

TEST_F(EditCycleTest, FieldWithTheMessageOnlyIsLeftAsItIs) {
  Enter("Message", "6");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (0 to 5 Volts)");
  EXPECT_EQ(Text("Message"), "6");
  EXPECT_FALSE(AllSelected("Message"));
  EXPECT_EQ(EntryPending, 0);
}

TEST_F(EditCycleTest, CheckOfAScreenRefusesWithItsOwnMessage) {
  Enter("Checked", "3");
  EXPECT_EQ(Message(), "Data Input Error\n\r(Divisor Must be 4)");
  EXPECT_EQ(CalValues[413], 4);
  EXPECT_TRUE(AllSelected("Checked"));
  Enter("Checked", "65");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (2 to 64)");
}

TEST_F(EditCycleTest, TextEnteredByTheScreenIsAnEntry) {
  EnterText(Edited(), *RowOfField(Edited(), 2), "4");
  EXPECT_EQ(CalValues[11], 4);
  EXPECT_EQ(ActiveField, 2);
  EXPECT_EQ(Focus(), "Masked");
}

// ---- Back ---------------------------------------------------------------------------------------

TEST_F(EditCycleTest, BackReturnsToTheButtonThatOpensTheScreen) {
  ClickOn(Up(), "Command1");
  RunPending();
  EXPECT_FALSE(Up().loaded);
  EXPECT_EQ(ActiveScreen(), &Parent());
  EXPECT_EQ(Focus(), "Button7");
}

TEST_F(EditCycleTest, EscInAFieldRunsBackAndLeavesNothingToJudge) {
  PressKey("Esc");
  EXPECT_FALSE(Up().loaded);
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(EditCycleTest, EscOnAButtonRunsBack) {
  SetFocus(The("Command3"));
  PressKey("Esc");
  EXPECT_FALSE(Up().loaded);
}

TEST_F(EditCycleTest, EscWithAPendingEntryIsRefusedAndJudgedAsACharacter) {
  TypeText("7");
  PressKey("Esc");
  EXPECT_EQ(Message(), retype);
  EXPECT_TRUE(Up().loaded);
  EXPECT_EQ(Focus(), "Plain");
  EXPECT_EQ(Text("Plain"), "7");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(EntryPending, 1);
}

TEST_F(EditCycleTest, BackButtonDoesNothingWithAPendingEntry) {
  TypeText("7");
  ClickOn(Up(), "Command1");
  EXPECT_TRUE(Up().loaded);
  EXPECT_EQ(Focus(), "Plain");
}

TEST_F(EditCycleTest, CloseBoxRunsBack) {
  TypeText("7");
  CloseByUser(Up());
  EXPECT_TRUE(Up().loaded);
  PressKey("Enter");
  CloseByUser(Up());
  EXPECT_FALSE(Up().loaded);
  EXPECT_EQ(ActiveScreen(), &Parent());
}

// ---- other screens ------------------------------------------------------------------------------

TEST_F(EditCycleTest, ButtonIsGreyUntilItsScreenIsRegistered) {
  EXPECT_FALSE(ShownEnabled(Up(), "Command2"));
  Screen other;
  other.build = [](Screen&) {};
  RegisterOther(other, "Other");
  UnloadScreen(Up());
  Open(TestEditor());
  EXPECT_TRUE(ShownEnabled(Up(), "Command2"));
  ClickOn(Up(), "Command2");
  EXPECT_FALSE(Up().loaded);
  EXPECT_EQ(ActiveScreen(), &other);
  UnloadScreen(other);
}

TEST_F(EditCycleTest, ButtonThatLeadsElsewhereIsOffInAnOnflySession) {
  EXPECT_TRUE(ShownEnabled(Up(), "Command4"));
  UnloadScreen(Up());
  MonitorMode = 3;
  Open(TestEditor());
  EXPECT_FALSE(ShownEnabled(Up(), "Command4"));
  EXPECT_TRUE(ShownEnabled(Up(), "Command3"));
}

// ---- help ---------------------------------------------------------------------------------------

TEST_F(EditCycleTest, HelpKeyOpensTheTopicOfTheFieldWithNothingPending) {
  std::vector<std::string> topics;
  ShowHelpTopic = [&](std::string_view topic) {
    topics.emplace_back(topic);
    return true;
  };
  PressKey("F1");
  PressKey("7");
  PressKey("F1");
  EXPECT_EQ(topics, (std::vector<std::string>{"TestEditor.Plain"}));
  PressKey("Enter");
  SetFocus(The("Command3"));
  PressKey("F1");
  SetFocus(The("Command4"));
  PressKey("F1");
  EXPECT_EQ(topics, (std::vector<std::string>{"TestEditor.Plain", "Run.Topic", "Screen.Topic"}));
}

TEST_F(EditCycleTest, HelpKeyInAListIgnoresAPendingEntry) {
  std::string topic;
  ShowHelpTopic = [&](std::string_view asked) {
    topic = asked;
    return true;
  };
  SetFocus(The("List"));
  PressKey("Down");
  EXPECT_EQ(EntryPending, 1);
  PressKey("F1");
  EXPECT_EQ(topic, "TestEditor.List");
}

TEST_F(EditCycleTest, HelpKeyWithoutAHelpSystemIsHarmless) {
  PressKey("F1");
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_TRUE(Up().loaded);
}

// ---- lists and pairs ----------------------------------------------------------------------------

TEST_F(EditCycleTest, ListMovesByArrowsAndWaitsForEnter) {
  SetFocus(The("List"));
  EXPECT_EQ(Back("ListLabel"), White);
  PressKey("Down");
  PressKey("Down");
  EXPECT_EQ(The("List").listIndex, 2);
  EXPECT_EQ(EntryPending, 1);
  EXPECT_EQ(ActiveField, 21);
  EXPECT_FALSE(CalChanged);
  EXPECT_EQ(CalValues[325], 0);
  PressKey("Up");
  PressKey("Enter");
  EXPECT_EQ(CalValues[325], 1);
  EXPECT_EQ(EntryPending, 0);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Focus(), "List");
}

TEST_F(EditCycleTest, PendingListBringsTheFocusBack) {
  ChooseItem(Up(), "List", 1);
  EXPECT_EQ(EntryPending, 1);
  ClickOn(Up(), "Plain");
  EXPECT_EQ(Focus(), "List");
  EXPECT_EQ(The("List").listIndex, 1);
}

TEST_F(EditCycleTest, EscInAListRunsBackWithoutAMessage) {
  ChooseItem(Up(), "List", 1);
  PressKey("Esc");
  EXPECT_TRUE(Up().loaded);
  EXPECT_FALSE(AnyBoxShown());
  PressKey("Enter");
  PressKey("Esc");
  EXPECT_FALSE(Up().loaded);
}

TEST_F(EditCycleTest, PairFlipsItsBitOnlyWhenItDiffers) {
  CalValues[0] = 5;
  ClickOn(Up(), "Option1");
  EXPECT_EQ(CalValues[0], 13);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Back("Option1"), White);
  EXPECT_EQ(Back("Option2"), SystemButtonFace);
  CalChanged = false;
  ClickOn(Up(), "Option1");
  EXPECT_EQ(CalValues[0], 13);
  EXPECT_FALSE(CalChanged);
  ClickOn(Up(), "Option2");
  EXPECT_EQ(CalValues[0], 5);
  EXPECT_EQ(Back("Option2"), White);
}

TEST_F(EditCycleTest, PairTakesTheHighlightOffTheCaptions) {
  ClickOn(Up(), "Option1");
  EXPECT_EQ(Back("PlainLabel"), SystemButtonFace);
}

// ---- ONFLY --------------------------------------------------------------------------------------

TEST_F(EditCycleTest, OnflyFieldsAreYellowOnlyInASession) {
  EXPECT_EQ(Back("Onfly"), SystemWindow);
  for (int mode : {1, 2, 3}) {
    MonitorMode = mode;
    Redraw(Edited());
    EXPECT_EQ(Back("Onfly"), mode == 3 ? Yellow : SystemWindow) << mode;
    EXPECT_EQ(Back("Plain"), SystemWindow) << mode;
  }
  SetFocus(The("Onfly"));
  SetFocus(The("Plain"));
  EXPECT_EQ(Back("Onfly"), Yellow);
}

TEST_F(EditCycleTest, EntryInASessionIsPostedAndNotStored) {
  MonitorMode = 3;
  Enter("Onfly", "50");
  EXPECT_EQ(OnflyCalIndex, 37);
  EXPECT_EQ(OnflyValue, 50);
  EXPECT_EQ(OnflyImageIndex, 21);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_EQ(BinImage[21], 127);  // 2.55 lies just below itself, and so does 127.5
  EXPECT_EQ(CalValues[37], 40);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Text("Onfly"), "40");
  EXPECT_EQ(Focus(), "Onfly");
}

TEST_F(EditCycleTest, PostedValueIsTheOneThatCalValuesWouldHaveTaken) {
  MonitorMode = 3;
  Enter("Scaled", "90");
  EXPECT_EQ(OnflyValue, 45);
  EXPECT_EQ(BinImage[418], 95);  // (45 - 10) * 2.7128
}

TEST_F(EditCycleTest, EntryWithoutAnOnflyPathIsStoredInASessionToo) {
  MonitorMode = 3;
  Enter("Plain", "60");
  EXPECT_EQ(CalValues[10], 60);
  EXPECT_EQ(OnflyByteCount, 0);
}

TEST_F(EditCycleTest, EntryOutsideASessionIsStoredAndNotPosted) {
  for (int mode : {0, 1, 2}) {
    MonitorMode = mode;
    Enter("Onfly", NumberText(60 + mode));
    EXPECT_EQ(CalValues[37], 60 + mode);
    EXPECT_EQ(OnflyByteCount, 0);
    EXPECT_EQ(BinImage[21], 0);
  }
}

TEST_F(EditCycleTest, SecondPostBeforeTheFirstIsSentReplacesIt) {
  MonitorMode = 3;
  Enter("Onfly", "50");
  Enter("Scaled", "90");
  EXPECT_EQ(OnflyCalIndex, 410);
  EXPECT_EQ(OnflyImageIndex, 418);
  EXPECT_EQ(CalValues[37], 40);
}

TEST_F(EditCycleTest, RefusedEntryInASessionPostsNothing) {
  MonitorMode = 3;
  Enter("Onfly", "1");
  EXPECT_EQ(Message(), "Data Input Error\n\r  (2 to 100 Units)");
  EXPECT_EQ(OnflyByteCount, 0);
  EXPECT_EQ(BinImage[21], 0);
}

TEST_F(EditCycleTest, AcceptedWriteRefreshesTheEditorOnTop) {
  MonitorMode = 3;
  Enter("Onfly", "50");
  CalValues[37] = 50;
  RefreshActiveEditor();
  EXPECT_EQ(Text("Onfly"), "50");
  EXPECT_TRUE(AllSelected("Onfly"));
}

TEST_F(EditCycleTest, RefreshLeavesAPendingEntryAlone) {
  MonitorMode = 3;
  Enter("Onfly", "50");
  Type("Plain", "6");
  CalValues[37] = 50;
  CalValues[10] = 33;
  RefreshActiveEditor();
  EXPECT_EQ(Text("Onfly"), "50");
  EXPECT_EQ(Text("Plain"), "6");
  TypeText("1");
  PressKey("Enter");
  EXPECT_EQ(CalValues[10], 61);
}

TEST_F(EditCycleTest, RefreshWithoutAnEditorIsHarmless) {
  UnloadScreen(Up());
  redraws = 0;
  RefreshActiveEditor();
  EXPECT_EQ(redraws, 0);
}

// ---- generated cells ----------------------------------------------------------------------------

namespace {

void CellKeys(Editor& editor, KeyEvent& event) {
  const int step = event.key == KeyUp      ? 8
                   : event.key == KeyDown  ? -8
                   : event.key == KeyRight ? 1
                                           : 0;
  if (step == 0) return;
  event.handled = true;
  FocusField(editor, (ActiveField + step + 63) % 64 + 1);
}

Editor MakeCellEditor() {
  Editor editor;
  editor.name = "CellEditor";
  editor.fields = FieldArray({.number = 1,
                              .control = "Table_ADV",
                              .calIndex = 61,
                              .low = 0,
                              .high = 60,
                              .rangeText = "  (0 to 60 DEG)",
                              .widthChars = 4,
                              .imageByte = 54,
                              .helpTopic = "Table"},
                             1, 64);
  editor.keys = CellKeys;
  editor.fieldColour = [](Editor&, const EditorField& row) {
    return row.number > 32 ? Red : White;
  };
  editor.build = [](Editor& built) {
    Add(built.screen, {.name = "Cells", .kind = ControlKind::Grid});
    for (const EditorField& row : built.fields)
      AddCell(built, row, "Cells", 7 - (row.number - 1) / 8, (row.number - 1) % 8);
    AddFoot(built);
  };
  return editor;
}

class CellsTest : public EditorTest {
 protected:
  void SetUp() override {
    EditorTest::SetUp();
    for (int k = 0; k < 64; ++k)
      CalValues[static_cast<std::size_t>(61 + k)] = static_cast<float>(k);
    static Editor editor = MakeCellEditor();
    Open(editor);
  }
};

}  // namespace

TEST_F(CellsTest, ShowTheirOwnElementAndColour) {
  EXPECT_EQ(Text("Table_ADV(1)"), "0");
  EXPECT_EQ(Text("Table_ADV(64)"), "63");
  EXPECT_EQ(Back("Table_ADV(32)"), White);
  EXPECT_EQ(Back("Table_ADV(33)"), Red);
  EXPECT_EQ(RowOfField(Edited(), 64)->imageByte, 117);
}

TEST_F(CellsTest, ArrowsWalkThemUntilAnEntryIsPending) {
  PressKey("Up");
  EXPECT_EQ(ShownFocus(), "Table_ADV(9)");
  EXPECT_EQ(ActiveField, 9);
  PressKey("Down");
  PressKey("Down");
  EXPECT_EQ(ShownFocus(), "Table_ADV(57)");
  TypeText("3");
  PressKey("Up");
  EXPECT_EQ(ShownFocus(), "Table_ADV(57)");
}

TEST_F(CellsTest, EntryIsStoredInItsElementOrPostedToItsByte) {
  Enter("Table_ADV(10)", "12.5");
  EXPECT_EQ(CalValues[70], 12.5F);
  MonitorMode = 3;
  Enter("Table_ADV(64)", "40");
  EXPECT_EQ(OnflyCalIndex, 124);
  EXPECT_EQ(OnflyImageIndex, 117);
  EXPECT_EQ(BinImage[117], 170);
  EXPECT_EQ(CalValues[124], 63);
}

TEST_F(CellsTest, PendingCellTakesTheFocusBackFromAnother) {
  Type("Table_ADV(10)", "1");
  EXPECT_EQ(ActiveField, 10);
  ClickOn(Up(), "Table_ADV(20)");
  EXPECT_EQ(ShownFocus(), "Table_ADV(10)");
  EXPECT_EQ(Text("Table_ADV(10)"), "1");
}
