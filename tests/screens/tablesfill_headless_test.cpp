// What stands on a table screen while a fill key's question is open.
#include <gtest/gtest.h>

#include "editors/gpotable.h"
#include "editors/vetable.h"
#include "platform/headless/script.h"
#include "screens/tablescreens.h"

namespace {

class OpenQuestionTest : public TableTest {
 protected:
  // Numbers of the white cells while the question of this key is open.
  std::vector<int> WhiteWhileAsked(const char* key, std::optional<std::string> answer) {
    std::vector<int> cells;
    WhileNextBoxIsOpen([&] {
      for (int cell = 1; cell <= 64; ++cell)
        if (CellColour(cell) == White) cells.push_back(cell);
    });
    FillWith(key, std::move(answer));
    Question();
    return cells;
  }
  void ExpectAll(Colour colour) {
    for (int cell = 1; cell <= 64; ++cell) EXPECT_EQ(CellColour(cell), colour) << cell;
  }
};

}  // namespace

TEST_F(OpenQuestionTest, TheCellsOfTheRowAreWhite) {
  OpenTable(FrmVETable());
  Select(12);
  EXPECT_EQ(WhiteWhileAsked("F3", "5"), (std::vector{9, 10, 11, 12, 13, 14, 15, 16}));
  ExpectAll(SystemButtonFace);
}

TEST_F(OpenQuestionTest, TheCellsOfTheColumnAreWhite) {
  OpenTable(FrmVETable());
  Select(12);
  EXPECT_EQ(WhiteWhileAsked("F4", std::nullopt), (std::vector{4, 12, 20, 28, 36, 44, 52, 60}));
  ExpectAll(SystemButtonFace);
}

TEST_F(OpenQuestionTest, TheWholeTableKeepsItsColour) {
  OpenTable(FrmVETable());
  EXPECT_TRUE(WhiteWhileAsked("S", "5").empty());
}

TEST_F(OpenQuestionTest, TheyAreYellowAgainInASession) {
  MonitorMode = 3;
  OpenTable(GpoCtl());
  Select(12);
  EXPECT_EQ(WhiteWhileAsked("F3", "5").size(), 8u);
  ExpectAll(Yellow);
}

TEST_F(OpenQuestionTest, AScreenThatGoesMeanwhileIsLeftAlone) {
  OpenTable(FrmVETable());
  const auto before = CalValues;
  WhileNextBoxIsOpen([&] { UnloadScreen(Up()); });
  FillWith("F3", "5");
  Question();
  EXPECT_EQ(CalValues, before);
  EXPECT_FALSE(Up().loaded);
}
