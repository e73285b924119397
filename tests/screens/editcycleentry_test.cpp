// Enter in a field of the entry cycle: masks, ranges, refusals, and the posted write.
#include <gtest/gtest.h>

#include "core/globalstate.h"
#include "core/numbers.h"
#include "link/postedwrite.h"
#include "screens/testeditor.h"

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
  EXPECT_EQ(notes.redraws, 1);
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
  EXPECT_EQ(notes.refusals, 1);
  EXPECT_EQ(notes.redraws, 0);
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

TEST_F(EditCycleTest, ByteThatTheEncoderDoesNotKnowIsNeverPosted) {
  EditorField& field = Edited().fields[4];
  ASSERT_EQ(field.control, "Onfly");
  field.calIndex = 415;  // the curve of the ego sensor is encoded as a whole
  MonitorMode = 3;
  BinImage[21] = 77;
  Enter("Onfly", "50");
  field.calIndex = 37;
  EXPECT_EQ(TakeBox().text.substr(0, 9), "Error # 9");
  EXPECT_EQ(BinImage[21], 77);
  EXPECT_EQ(OnflyByteCount, 0);
  EXPECT_FALSE(CalChanged);
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
  notes.redraws = 0;
  RefreshActiveEditor();
  EXPECT_EQ(notes.redraws, 0);
}
