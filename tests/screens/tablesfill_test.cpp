// The fill keys S, F3 and F4 of the table screens: questions, refusals, what is stored and shown.
#include <gtest/gtest.h>

#include <tuple>

#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/gpotable.h"
#include "editors/vetable.h"
#include "link/postedwrite.h"
#include "screens/tablescreens.h"

namespace {

class FillTest : public TableTest {
 protected:
  // Cells 1 to 64 whose stored value is this one.
  std::vector<int> CellsWith(float value) {
    std::vector<int> cells;
    const int base = TableOf(Edited()).rules.calBase;
    for (int cell = 1; cell <= 64; ++cell)
      if (CalValues[static_cast<std::size_t>(base + cell)] == value) cells.push_back(cell);
    return cells;
  }
};

const std::vector<int> all = [] {
  std::vector<int> cells;
  for (int cell = 1; cell <= 64; ++cell) cells.push_back(cell);
  return cells;
}();
const std::vector<int> secondRow = {9, 10, 11, 12, 13, 14, 15, 16};
const std::vector<int> fifthColumn = {5, 13, 21, 29, 37, 45, 53, 61};

using Asked = std::pair<std::string, std::string>;

constexpr const char* keyS = "\n\rThe S Key DOES NOT SUPPORT ONFLY";
constexpr const char* keyF3 = "\n\rThe F3 Key DOES NOT SUPPORT ONFLY";
constexpr const char* keyF4 = "\n\rThe F4 Key DOES NOT SUPPORT ONFLY";

}  // namespace

// ---- the questions ------------------------------------------------------------------------------

TEST_F(FillTest, QuestionsOfTheFourTables) {
  struct Case {
    Editor& editor;
    const char* constantTitle;
    const char* tableTitle;
    const char* constant;
    const char* row;
    const char* column;
  };
  for (const Case& c :
       {Case{FrmVETable(), "VE CONSTANT", "VE TABLE", "Enter New VE Table Constant:",
             "Enter New VE Row Value:", "Enter New VE Column Value:"},
        Case{EgoAfTbl(), "AFR CONSTANT", "AFR TABLE", "Enter New AFR Table Constant:",
             "Enter New AFR Row Value:", "Enter New AFR Column Value:"},
        Case{IgnAdvTbl(), "ADV CONSTANT", "ADV TABLE", "Enter New ADV Table Constant:",
             "Enter New ADV Row Value:", "Enter New ADV Column Value:"},
        Case{GpoCtl(), "GPO CONSTANT", "GPO TABLE", "Fill Table with GPO Table Constant:",
             "Enter New GPO Row Value:", "Enter New GPO Column Value:"}}) {
    OpenTable(c.editor);
    Select(20);
    for (const char* key : {"S", "Alt+S", "Shift+S"}) {
      FillWith(key, std::nullopt);
      EXPECT_EQ(Question(), Asked(c.constantTitle, std::string(c.constant) + keyS)) << key;
    }
    FillWith("F3", std::nullopt);
    EXPECT_EQ(Question(), Asked(c.tableTitle, std::string(c.row) + keyF3));
    FillWith("F4", std::nullopt);
    EXPECT_EQ(Question(), Asked(c.tableTitle, std::string(c.column) + keyF4));
    EXPECT_FALSE(AnyBoxShown()) << "no complaint about the letter";
    EXPECT_EQ(EntryPending, 0);
    EXPECT_FALSE(CalChanged);
    UnloadScreen(Up());
  }
}

TEST_F(FillTest, CancelledAndEmptyAndWordsChangeNothing) {
  for (Editor* editor : {&FrmVETable(), &EgoAfTbl(), &IgnAdvTbl(), &GpoCtl()}) {
    OpenTable(*editor);
    Select(20);
    const auto before = CalValues;
    const std::string text = CellText(20);
    const std::vector<std::optional<std::string>> answers = {std::nullopt, "",     " ", "twelve",
                                                             "12abc",      "1e39", "-"};
    for (const char* key : {"S", "F3", "F4"}) {
      for (const auto& answer : answers) {
        FillWith(key, answer);
        Question();
        EXPECT_EQ(CalValues, before);
        EXPECT_EQ(CellText(20), text);
        EXPECT_EQ(CellColour(20), SystemButtonFace);
      }
    }
    EXPECT_FALSE(AnyBoxShown());
    EXPECT_FALSE(CalChanged);
    UnloadScreen(Up());
  }
}

TEST_F(FillTest, OutOfRangeIsRefusedAndAskedAgain) {
  struct Case {
    Editor& editor;
    std::vector<const char*> refused;
    const char* message;
    const char* accepted;
    float stored;
  };
  for (const Case& c :
       {Case{
            FrmVETable(), {"51", "-50.5"}, "Data Input Error\n\r  (-50% to 50% FPW)", "-50", -0.5F},
        Case{EgoAfTbl(),
             {"9.75", "29.29", "0"},
             "Data Input Error\n\r  (9.76 to 29.28 AFR)",
             "29.28",
             29.28F},
        Case{IgnAdvTbl(), {"60.5", "-1"}, "Data Input Error\n\r  (0 to 60 DEG)", "60", 60},
        Case{GpoCtl(), {"101", "-1"}, "Data Input Error\n\r  (0 to 100 %)", "100", 100}}) {
    for (const char* key : {"S", "F3", "F4"}) {
      OpenTable(c.editor);
      Select(20);
      for (const char* answer : c.refused) AnswerNextInput(answer);
      FillWith(key, c.accepted);
      for (std::size_t i = 0; i < c.refused.size(); ++i) {
        Question();
        EXPECT_EQ(Message(), c.message) << key;
      }
      Question();
      EXPECT_FALSE(CellsWith(c.stored).empty()) << key;
      EXPECT_TRUE(CalChanged);
      UnloadScreen(Up());
    }
  }
}

TEST_F(FillTest, LowestValuesAreAccepted) {
  OpenTable(EgoAfTbl());
  FillWith("S", "9.76");
  Question();
  EXPECT_EQ(CellsWith(9.76F), all);
  EXPECT_FALSE(AnyBoxShown());
}

TEST_F(FillTest, LeavingAfterARefusalChangesNothing) {
  OpenTable(FrmVETable());
  Select(20);
  const auto before = CalValues;
  AnswerNextInput("60");
  FillWith("F3", std::nullopt);
  Question();
  EXPECT_EQ(Message(), "Data Input Error\n\r  (-50% to 50% FPW)");
  Question();
  EXPECT_EQ(CalValues, before);
  EXPECT_FALSE(CalChanged);
}

// ---- what is filled -----------------------------------------------------------------------------

TEST_F(FillTest, SFillsTheWholeTable) {
  OpenTable(FrmVETable());
  Select(20);
  FillWith("S", "7");
  Question();
  EXPECT_EQ(CellsWith(0.07F), all);
  EXPECT_EQ(CalValues[124], 32);  // the last cell of the advance table
  EXPECT_EQ(CalValues[189], 0);
  for (int cell : all) EXPECT_EQ(CellText(cell), "7");
  EXPECT_TRUE(CalChanged);
  EXPECT_EQ(Focused(), At(20));
  EXPECT_TRUE(AllSelected(At(20)));
}

TEST_F(FillTest, SReachesTheWorkingTablesAndTheirMargins) {
  OpenTable(FrmVETable());
  FillWith("S", "7");
  Question();
  for (int row = 2; row <= 10; ++row)
    for (int column = 4; column <= 12; ++column) {
      EXPECT_EQ(TableWork[row][column], 7) << row << " " << column;
      const bool corner = row == 10 && column == 12;
      EXPECT_EQ(VeWork[row][column], corner ? 0 : 7) << row << " " << column;
    }
}

TEST_F(FillTest, F3FillsTheRowOfTheSelectedCell) {
  OpenTable(FrmVETable());
  for (const auto& [cell, value, stored] :
       {std::tuple{9, "41", 0.41F}, std::tuple{13, "45", 0.45F}, std::tuple{16, "50", 0.5F}}) {
    Select(cell);
    FillWith("F3", value);
    Question();
    EXPECT_EQ(CellsWith(stored), secondRow) << cell;
    EXPECT_EQ(Focused(), At(cell));
    EXPECT_TRUE(AllSelected(At(cell)));
  }
  EXPECT_EQ(CellText(8), "-24");
  EXPECT_EQ(CellText(9), "50");
  EXPECT_EQ(CellText(17), "-15");
}

TEST_F(FillTest, F4FillsTheColumnOfTheSelectedCell) {
  OpenTable(GpoCtl());
  for (int cell : {5, 29, 61}) {
    Select(cell);
    FillWith("F4", "99");
    Question();
    EXPECT_EQ(CellsWith(99), fifthColumn);
    EXPECT_EQ(CellText(13), "99");
    EXPECT_EQ(TableWork[9][8], 99);
    EXPECT_EQ(Focused(), At(cell));
    Reopen();
  }
}

TEST_F(FillTest, FillsTakeDecimalsThatACellRefuses) {
  OpenTable(FrmVETable());
  Select(9);
  FillWith("F3", "12.5");
  Question();
  EXPECT_EQ(CellsWith(0.125F), secondRow);
  EXPECT_EQ(CellText(9), "12.5");
  EXPECT_EQ(CellText(1), "-31");
}

TEST_F(FillTest, LeavingAFilledCellShowsItRounded) {
  OpenTable(FrmVETable());
  FillWith("S", "12.5");
  Question();
  PressKey("Right");
  EXPECT_EQ(CellText(1), "13");
  EXPECT_EQ(CellText(3), "12.5");
}

TEST_F(FillTest, AbsoluteFillKeepsTheHundred) {
  OpenTable(FrmVETable());
  PressKey("F2");
  FillWith("S", "120");
  Question();
  EXPECT_EQ(CellsWith(1.2F), all);
  for (int cell : all) EXPECT_EQ(CellText(cell), "120");
  PressKey("F2");
  EXPECT_EQ(CellText(1), "120");
}

TEST_F(FillTest, AbsoluteRowFillShowsTheOtherCellsAsStored) {
  OpenTable(FrmVETable());
  PressKey("F2");
  Select(9);
  FillWith("F3", "120");
  Question();
  EXPECT_EQ(CellsWith(1.2F), secondRow);
  EXPECT_EQ(CellText(9), "120");
  EXPECT_EQ(CellText(1), "-31");
  EXPECT_EQ(CellText(64), "32");
}

TEST_F(FillTest, AbsoluteFillHasTheAbsoluteRange) {
  OpenTable(FrmVETable());
  PressKey("F2");
  AnswerNextInput("20");
  FillWith("S", "50");
  Question();
  EXPECT_EQ(Message(), "Data Input Error\n\r  (50% to 150% FPW)");
  Question();
  EXPECT_EQ(CellsWith(0.5F), all);
}

TEST_F(FillTest, AdvanceCellsFromTheAxesUseTheRowOrColumnTheyBelongTo) {
  OpenTable(IgnAdvTbl());
  Select(18);  // load axis, second row
  FillWith("F3", "41");
  Question();
  EXPECT_EQ(CellsWith(41), secondRow);
  EXPECT_EQ(Focused(), At(18));
  Select(5);  // speed axis, fifth column
  FillWith("F4", "42");
  Question();
  EXPECT_EQ(CellsWith(42), fifthColumn);
  EXPECT_EQ(CalValues[49], 3000);
  EXPECT_EQ(CalValues[54], 30);
}

TEST_F(FillTest, AnAxisIsNeverFilled) {
  OpenTable(IgnAdvTbl());
  Select(5);
  PressKey("F3");
  Select(18);
  PressKey("F4");
  EXPECT_FALSE(AnyBoxShown());
  EXPECT_FALSE(CalChanged);
}

TEST_F(FillTest, AdvanceFillLeavesTheAxesAlone) {
  OpenTable(IgnAdvTbl());
  FillWith("S", "33.5");
  Question();
  EXPECT_EQ(CellsWith(33.5F), all);
  EXPECT_EQ(CellText(10), "33.5");
  EXPECT_EQ(CellText(1), "500");
  EXPECT_EQ(CellText(9), "20");
  EXPECT_EQ(CalValues[52], 6000);
  EXPECT_EQ(CalValues[53], 20);
}

TEST_F(FillTest, GpoFillLeavesTheModeAlone) {
  OpenTable(GpoCtl());
  FillWith("S", "12.5");
  Question();
  EXPECT_EQ(CellsWith(12.5F), all);
  EXPECT_EQ(CalValues[491], 4);
  EXPECT_EQ(CalValues[498], 3);
}

// ---- around it ----------------------------------------------------------------------------------

TEST_F(FillTest, AFillInASessionPostsNothing) {
  MonitorMode = 3;
  for (Editor* editor : {&FrmVETable(), &EgoAfTbl(), &IgnAdvTbl(), &GpoCtl()}) {
    OpenTable(*editor);
    Select(20);
    for (const char* key : {"S", "F3", "F4"}) {
      CalChanged = false;
      FillWith(key, "20");
      Question();
      EXPECT_TRUE(CalChanged);
      EXPECT_EQ(OnflyByteCount, 0);
      EXPECT_EQ(CellColour(20), Yellow);
    }
    EXPECT_EQ(CellsWith(editor == &FrmVETable() ? 0.2F : 20.F), all);
    UnloadScreen(Up());
  }
  EXPECT_EQ(BinImage[118], 0);
}
