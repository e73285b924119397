// The redraw that the live loop asks for, while the user is typing.
#include <gtest/gtest.h>

#include "editors/binjgraph.h"
#include "editors/vetable.h"
#include "link/comm.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"

namespace {

class Refresh : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    OpenTable(FrmVETable());
    MonitorMode = 3;
    RefreshActiveEditor();
  }
  void TearDown() override {
    MonitorMode = 0;
    TableTest::TearDown();
  }
  // The unit accepts what was posted.
  static void Accept() {
    CalValues[static_cast<std::size_t>(OnflyCalIndex)] = static_cast<float>(OnflyValue);
    RefreshActiveEditor();
  }
};

}  // namespace

TEST_F(Refresh, AMinusThatBeginsAValueIsNotLost) {
  EnterCell(1, "3");
  PressKey("Right");
  TypeText("-");
  Accept();
  EXPECT_EQ(CellText(1), "3");
  EXPECT_EQ(CellText(2), "-");
  TypeText("5");
  PressKey("Enter");
  EXPECT_EQ(OnflyCalIndex, 126);
  EXPECT_EQ(OnflyValue, -0.05);
}

TEST_F(Refresh, ABackspaceIsNotUndone) {
  EnterCell(1, "3");
  EnterCell(2, "27");
  Accept();
  PressKey("Right");
  PressKey("Left");
  PressKey("End");
  PressKey("Backspace");
  EXPECT_EQ(CellText(2), "2");
  RefreshActiveEditor();
  EXPECT_EQ(CellText(2), "2");
}

// The refusal of an earlier entry is shown, and answered, in the middle of the next one.
TEST_F(Refresh, AMinusThatBeginsAValueOutlastsTheRefusalOfTheOneBefore) {
  EnterCell(1, "3");
  PressKey("Right");
  TypeText("-");
  ShowScreen(frmerr);
  RunPending();
  PressKey("Enter");
  RunPending();
  ASSERT_FALSE(frmerr.loaded);
  EXPECT_EQ(CellText(2), "-");
  TypeText("5");
  PressKey("Enter");
  EXPECT_EQ(OnflyCalIndex, 126);
  EXPECT_EQ(OnflyValue, -0.05);
}

TEST_F(Refresh, AMinusInAPlainFieldOutlastsItToo) {
  UnloadScreen(Up());
  Open(BinjGraph());
  Type("Text2", "-");
  ShowScreen(frmerr);
  RunPending();
  ClickOn(frmerr, "Command1");
  EXPECT_EQ(Text("Text2"), "-");
  TypeText("5");
  PressKey("Enter");
  EXPECT_EQ(OnflyValue, -5);
}

TEST_F(Refresh, AFieldThatWasNotEditedIsUpToDateAfterIt) {
  Select(2);
  CalValues[126] = 0.44F;
  ShowScreen(frmerr);
  RunPending();
  ClickOn(frmerr, "Command1");
  EXPECT_EQ(CellText(2), "44");
  EXPECT_TRUE(AllSelected(At(2)));
}

TEST_F(Refresh, AFieldThatWasNotEditedShowsTheNewValueSelected) {
  Select(2);
  CalValues[126] = 0.44F;
  RefreshActiveEditor();
  EXPECT_EQ(CellText(2), "44");
  EXPECT_TRUE(AllSelected(At(2)));
}

TEST_F(Refresh, WhatTheProgramHasWrittenIsNotTakenForTyped) {
  Select(2);
  FillWith("F3", "12");
  Question();
  CalValues[126] = 0.44F;
  RefreshActiveEditor();
  EXPECT_EQ(CellText(2), "44");
}

// The calibration has another value by then than the one that was written last.
TEST_F(Refresh, WhatARefusalHasBroughtBackIsNotTakenForTyped) {
  Select(2);
  TypeText("99");
  CalValues[126] = 0.44F;
  RefreshActiveEditor();
  ASSERT_EQ(CellText(2), "99");
  PressKey("Enter");
  Message();
  ASSERT_EQ(CellText(2), "44");
  CalValues[126] = 0.21F;
  RefreshActiveEditor();
  EXPECT_EQ(CellText(2), "21");
}

TEST_F(Refresh, AFieldThatWasLeftIsRewritten) {
  UnloadScreen(Up());
  Open(BinjGraph());
  Type("Text1", ".");
  ClickOn(Up(), "Text11");
  EXPECT_EQ(Text("Text1"), ".");
  RefreshActiveEditor();
  EXPECT_EQ(Text("Text1"), "10.000");
}

TEST_F(Refresh, APointThatBeginsAValueIsNotLostInAPlainField) {
  UnloadScreen(Up());
  Open(BinjGraph());
  Type("Text2", ".");
  RefreshActiveEditor();
  EXPECT_EQ(Text("Text2"), ".");
  TypeText("5");
  PressKey("Enter");
  EXPECT_EQ(OnflyValue, 0.5);
}

TEST_F(Refresh, ARedrawOfTheUsersOwnTakesTheEditedTextBack) {
  Select(2);
  SelectText(The(At(2)), 0, 100);
  TypeText("-");
  Redraw(Edited());
  EXPECT_NE(CellText(2), "-");
}
