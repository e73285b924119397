// The entry cycle on a small screen of its own, by keys and clicks: focus and typing.
#include <gtest/gtest.h>

#include "core/globalstate.h"
#include "screens/testeditor.h"

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

TEST_F(EditCycleTest, AcceleratorOfThePendingFieldSelectsItForTypingOver) {
  TypeText("75");
  PressKey("Alt+P");
  EXPECT_TRUE(AllSelected("Plain"));
  EXPECT_EQ(Text("Plain"), "75") << "nothing is lost until it is typed over";
  EXPECT_EQ(EntryPending, 1);
  TypeText("6");
  PressKey("Enter");
  EXPECT_EQ(CalValues[10], 6);
  EXPECT_EQ(EntryPending, 0);
}

TEST_F(EditCycleTest, AcceleratorOfTheFieldWithTheFocusSelectsItsTextAnew) {
  PressKey("End");
  PressKey("Alt+P");
  EXPECT_TRUE(AllSelected("Plain"));
  TypeText("6");
  PressKey("Enter");
  EXPECT_EQ(CalValues[10], 6);
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
  EXPECT_EQ(notes.pressed, "");
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
  EXPECT_EQ(notes.leaves, 1);
  SetFocus(The("Plain"));
  PressKey("7");
  PressKey("Tab");
  EXPECT_EQ(notes.leaves, 1);
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
