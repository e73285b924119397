// Enter pressed again while the unit has not answered: what stands in the field is the old value.
#include <gtest/gtest.h>

#include "core/calfix.h"
#include "core/encoder.h"
#include "editors/advancetable.h"
#include "editors/binjgraph.h"
#include "editors/gpotable.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"

namespace {

constexpr int turnOn = 344;  // Text11

class Repeat : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    CalValues[turnOn] = 1.5F;
  }
  void OpenLive(Editor& editor) {
    OpenTable(editor);
    GoLive();
  }
  // The live loop takes off what is posted.
  static void Take() { OnflyByteCount = 0; }
};

}  // namespace

TEST_F(Repeat, TheWriteThatIsPostedStays) {
  OpenLive(BinjGraph());
  Enter("Text11", "1.2");
  EXPECT_EQ(Text("Text11"), "1.50000");
  CalChanged = false;
  PressKey("Enter");
  EXPECT_EQ(OnflyValue, 1.2);
  EXPECT_EQ(BinImage[323], 38);
  EXPECT_EQ(OnflyByteCount, 1);
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Focused(), "Text11");
  EXPECT_TRUE(AllSelected("Text11"));
}

TEST_F(Repeat, NothingFollowsTheWriteThatIsBeingSent) {
  OpenLive(BinjGraph());
  Enter("Text11", "1.2");
  Take();
  {
    const WriteBeingSent mark(turnOn, CalibrationLoads);
    PressKey("Enter");
    EXPECT_EQ(OnflyByteCount, 0);
    EXPECT_EQ(BinImage[323], 38);
  }
  PressKey("Enter");
  EXPECT_EQ(OnflyByteCount, 1) << "refused meanwhile: the old value can be confirmed";
  EXPECT_EQ(OnflyValue, 1.5);
}

TEST_F(Repeat, TheOldValueTypedAgainIsPosted) {
  OpenLive(BinjGraph());
  Enter("Text11", "1.2");
  TypeText("1.5");
  PressKey("Enter");
  EXPECT_EQ(OnflyValue, 1.5);
  EXPECT_EQ(BinImage[323], 48);
}

// Nothing is pending after a backspace.
TEST_F(Repeat, AnEditWithoutADigitIsPosted) {
  OpenLive(BinjGraph());
  CalValues[turnOn] = 1.25F;
  RefreshActiveEditor();
  Enter("Text11", "1.2");
  PressKey("End");
  for (int i = 0; i < 5; ++i) PressKey("Backspace");
  EXPECT_EQ(Text("Text11"), "1.");
  PressKey("Enter");
  EXPECT_EQ(OnflyValue, 1);
}

TEST_F(Repeat, AWriteOfAnotherElementHoldsNothingBack) {
  OpenLive(GpoCtl());
  EnterCell(1, "33");
  Select(2);
  PressKey("Enter");
  EXPECT_EQ(OnflyCalIndex, 262);
  EXPECT_EQ(OnflyValue, 2);
}

TEST_F(Repeat, AWriteOfAnotherCalibrationHoldsNothingBack) {
  OpenLive(BinjGraph());
  Enter("Text11", "1.2");
  PublishLoadedCalibration();
  PressKey("Enter");
  EXPECT_EQ(OnflyValue, 1.5);
  Take();
  const WriteBeingSent mark(turnOn, CalibrationLoads - 1);
  PressKey("Enter");
  EXPECT_EQ(OnflyByteCount, 1);
}

TEST_F(Repeat, WhatGoesWithTheValueStaysToo) {
  OpenLive(IgnAdvTbl());
  Enter("InitAdv", "10");
  PressKey("Enter");
  EXPECT_EQ(InitialAdvance, 10);
  EXPECT_EQ(OnflyValue, 10);
}

TEST_F(Repeat, WithoutASessionItIsStored) {
  OpenTable(BinjGraph());
  PostWrite(turnOn, 1.2, 323, 1);  // left over from a session
  CalValues[turnOn] = 2;
  PressKey("Alt+M");
  ASSERT_EQ(Text("Text11"), "1.50000");
  PressKey("Enter");
  EXPECT_EQ(CalValues[turnOn], 1.5F);
}

TEST_F(Repeat, ALaterFrequencyIsNotFollowedByTheOldOne) {
  OpenLive(GpoCtl());
  ChooseItem(Up(), "Combo1", 4);
  PressKey("Enter");
  EXPECT_EQ(Text("Combo1"), "31Hz");
  CalChanged = false;
  PressKey("Enter");
  EXPECT_EQ(OnflyValue, 2);
  EXPECT_EQ(BinImage[308], 2);
  EXPECT_TRUE(CalChanged);
  Take();
  {
    const WriteBeingSent mark(325, CalibrationLoads);
    PressKey("Enter");
    EXPECT_EQ(OnflyByteCount, 0);
    ChooseItem(Up(), "Combo1", 2);
    PressKey("Enter");
    EXPECT_EQ(OnflyByteCount, 1) << "chosen again";
    EXPECT_EQ(OnflyValue, 8);
  }
}
