// The two modes and three views of the volumetric efficiency table.
#include <gtest/gtest.h>

#include "editors/vetable.h"
#include "screens/tablescreens.h"

namespace {

class VeViewTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    OpenTable(FrmVETable());
  }
};

constexpr const char* rangeAbsolute = "Data Input Error\n\r  (50% to 150% FPW)";

}  // namespace

// ---- modes --------------------------------------------------------------------------------------

TEST_F(VeViewTest, StartsInOffsetMode) {
  EXPECT_EQ(Text("RangeCaption"), "Correction (-50% to 50% FPW)");
  EXPECT_EQ(Text("ModeCaption"), "OFFSET");
}

TEST_F(VeViewTest, F2ShowsAbsoluteValues) {
  PressKey("F2");
  EXPECT_EQ(GamaOffset, 100);
  EXPECT_EQ(Text("RangeCaption"), "Correction (50% to 150% FPW)");
  EXPECT_EQ(Text("ModeCaption"), "ABSOLUTE");
  EXPECT_EQ(Text("ThirdLine"), "F2 Switches from OFFSET to ABSOLUTE GAMA");
  EXPECT_EQ(CellText(1), "69");
  EXPECT_EQ(CellText(64), "132");
  EXPECT_EQ(TableWork[2][4], -31);
  PressKey("F2");
  EXPECT_EQ(GamaOffset, 0);
  EXPECT_EQ(Text("ModeCaption"), "OFFSET");
  EXPECT_EQ(CellText(1), "-31");
  EXPECT_FALSE(CalChanged);
}

TEST_F(VeViewTest, AbsoluteEntriesAreStoredWithoutTheHundred) {
  PressKey("F2");
  EnterCell(1, "150");
  EXPECT_EQ(CalValues[125], 0.5F);
  EXPECT_EQ(CellText(1), "150");
  EnterCell(1, "50");
  EXPECT_EQ(CalValues[125], -0.5F);
}

TEST_F(VeViewTest, AbsoluteRangeHasItsOwnMessage) {
  PressKey("F2");
  for (const char* entry : {"49", "151", "-10"}) {
    EnterCell(1, entry);
    EXPECT_EQ(Message(), rangeAbsolute);
    EXPECT_EQ(CellText(1), "69");
  }
  EXPECT_FALSE(CalChanged);
}

TEST_F(VeViewTest, AbsoluteModeEndsWithTheScreen) {
  PressKey("F2");
  Reopen();
  EXPECT_EQ(GamaOffset, 0);
  EXPECT_EQ(Text("ModeCaption"), "OFFSET");
  EXPECT_EQ(CellText(1), "-31");
}

// ---- views --------------------------------------------------------------------------------------

TEST_F(VeViewTest, F5RunsThroughTheViews) {
  PressKey("F5");
  EXPECT_EQ(VeView, 1);
  EXPECT_EQ(Text("RangeCaption"), "(Corrected Injector PulseWidth (ms))");
  EXPECT_EQ(Text("ModeCaption"), "");
  EXPECT_EQ(The("ThirdLine").caption, "  This Table is Based on OFFSET Gama and is not Editable");
  PressKey("F5");
  EXPECT_EQ(VeView, 2);
  EXPECT_EQ(Text("RangeCaption"), "(Calculated Duty Cycle (%))");
  EXPECT_EQ(Text("ModeCaption"), "");
  EXPECT_EQ(The("ThirdLine").caption, "  This Table is Based on OFFSET Gama and is not Editable");
  PressKey("F5");
  EXPECT_EQ(VeView, 0);
  EXPECT_EQ(Text("RangeCaption"), "Correction (-50% to 50% FPW)");
  EXPECT_EQ(The("ThirdLine").caption, "F2 Switches from OFFSET to ABSOLUTE GAMA");
  EXPECT_FALSE(CalChanged);
}

// 100 kPa at 6000 RPM with 32 %: 1 + 1.32 * 10 * 90 / 94 = 13.638 ms, of 10 ms between two events.
TEST_F(VeViewTest, PulseViewShowsOneOrTwoDecimals) {
  PressKey("F5");
  EXPECT_EQ(CellText(64), "13.64");
  CalValues[188] = 0;
  CalValues[60] = 104;
  Reopen();
  EXPECT_EQ(CellText(64), "11.0");
}

TEST_F(VeViewTest, DutyViewShowsWholePercent) {
  PressKey("F5");
  PressKey("F5");
  EXPECT_EQ(CellText(64), "136");
}

TEST_F(VeViewTest, F5FromAbsoluteModeReturnsInOffsetMode) {
  PressKey("F2");
  PressKey("F5");
  EXPECT_EQ(GamaOffset, 0);
  EXPECT_EQ(CellText(64), "13.64");
  PressKey("F5");
  PressKey("F5");
  EXPECT_EQ(Text("ModeCaption"), "OFFSET");
  EXPECT_EQ(CellText(64), "32");
}

TEST_F(VeViewTest, TheViewSurvivesTheScreen) {
  PressKey("F5");
  Reopen();
  EXPECT_EQ(VeView, 1);
  EXPECT_EQ(Text("RangeCaption"), "(Corrected Injector PulseWidth (ms))");
  EXPECT_EQ(CellText(64), "13.64");
}

TEST_F(VeViewTest, ReadOnlyViewsDropEntriesAtEnter) {
  for (int view = 1; view <= 2; ++view) {
    PressKey("F5");
    const std::string before = CellText(64);
    EnterCell(64, "20");
    EXPECT_FALSE(AnyBoxShown());
    EXPECT_EQ(CellText(64), before) << view;
    EnterCell(64, "12.5");
    EXPECT_FALSE(AnyBoxShown());
    EXPECT_EQ(CellText(64), before) << view;
  }
  EXPECT_EQ(CalValues[188], 0.32F);
  EXPECT_FALSE(CalChanged);
}

TEST_F(VeViewTest, ReadOnlyViewsStayAsTheyAreWhenWalked) {
  PressKey("F5");
  Select(64);
  PressKey("Left");
  PressKey("Up");
  EXPECT_EQ(CellText(64), "13.64");
}

TEST_F(VeViewTest, OnlyTheCorrectionViewHasFillsAndF2) {
  for (int view = 1; view <= 2; ++view) {
    PressKey("F5");
    for (const char* key : {"S", "Alt+S", "F2", "F3", "F4"}) PressKey(key);
    EXPECT_FALSE(AnyBoxShown());
    EXPECT_EQ(GamaOffset, 0);
  }
}

TEST_F(VeViewTest, CellsNearTheInjectorsLimitAreMarkedInTheReadOnlyViews) {
  EXPECT_EQ(The("Mark(64)").caption, "");
  for (int view = 1; view <= 2; ++view) {
    PressKey("F5");
    EXPECT_EQ(The("Mark(64)").caption, "!!");
    EXPECT_EQ(Back("Mark(64)"), Red);
    EXPECT_EQ(The("Mark(1)").caption, "");
    EXPECT_EQ(Back("Mark(1)"), SystemButtonFace);
    EXPECT_NE(The("MarksLine").caption, "");
  }
  PressKey("F5");
  EXPECT_EQ(The("Mark(64)").caption, "");
  EXPECT_EQ(The("MarksLine").caption, "");
}

TEST_F(VeViewTest, MarksFollowTheLoadDutyOfTheirCell) {
  CalValues[188] = -0.4F;  // 6.74 of 8.8 ms
  VeView = 2;
  Reopen();
  EXPECT_EQ(The("Mark(64)").caption, "!");
  EXPECT_EQ(Back("Mark(64)"), Yellow);
}

TEST_F(VeViewTest, AClickOnAMarkSelectsItsCell) {
  PressKey("F5");
  ASSERT_TRUE(ShownVisible(Up(), "Mark(64)"));
  EXPECT_FALSE(ShownVisible(Up(), "Mark(1)"));
  ClickOn(Up(), "Mark(64)");
  EXPECT_EQ(Focused(), At(64));
}
