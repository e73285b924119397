// Positions of the table screens, without and with the axes among them.
#include "editors/tablegrid.h"

#include <gtest/gtest.h>

namespace {

int Left(const TableGrid& grid, int at) { return StepFrom(grid, at, Arrow::Left); }
int Right(const TableGrid& grid, int at) { return StepFrom(grid, at, Arrow::Right); }
int Up(const TableGrid& grid, int at) { return StepFrom(grid, at, Arrow::Up); }
int Down(const TableGrid& grid, int at) { return StepFrom(grid, at, Arrow::Down); }

}  // namespace

TEST(TableGrid, ArrowsOfAPlainTableWrap) {
  EXPECT_EQ(Right(PlainGrid, 64), 1);
  EXPECT_EQ(Left(PlainGrid, 1), 64);
  EXPECT_EQ(Up(PlainGrid, 8), 16);
  EXPECT_EQ(Up(PlainGrid, 60), 4);
  EXPECT_EQ(Up(PlainGrid, 64), 8);
  EXPECT_EQ(Down(PlainGrid, 3), 59);
  EXPECT_EQ(Down(PlainGrid, 8), 64);
  EXPECT_EQ(Down(PlainGrid, 9), 1);
}

TEST(TableGrid, RightRunsThroughAllRows) {
  EXPECT_EQ(Right(PlainGrid, 8), 9);
  EXPECT_EQ(Left(PlainGrid, 9), 8);
}

TEST(TableGrid, ArrowsWithAxesRunOverEightyPositions) {
  EXPECT_EQ(Right(GridWithAxes, 80), 1);
  EXPECT_EQ(Left(GridWithAxes, 1), 80);
  EXPECT_EQ(Right(GridWithAxes, 8), 9);
  EXPECT_EQ(Up(GridWithAxes, 1), 10);
  EXPECT_EQ(Down(GridWithAxes, 10), 1);
}

TEST(TableGrid, UpFromTheTopRowTakesEightyOff) {
  EXPECT_EQ(Up(GridWithAxes, 72), 1);
  EXPECT_EQ(Up(GridWithAxes, 80), 9);
  EXPECT_EQ(Up(GridWithAxes, 71), 80);
  EXPECT_EQ(Down(GridWithAxes, 1), 72);
  EXPECT_EQ(Down(GridWithAxes, 9), 80);
}

TEST(TableGrid, EveryArrowHasItsOpposite) {
  for (const TableGrid& grid : {PlainGrid, GridWithAxes})
    for (int at = 1; at <= grid.positions; ++at) {
      EXPECT_EQ(Left(grid, Right(grid, at)), at);
      EXPECT_EQ(Down(grid, Up(grid, at)), at);
    }
}

TEST(TableGrid, PlainPositionsAreCells) {
  for (int at = 1; at <= 64; ++at) {
    EXPECT_EQ(CellAt(PlainGrid, at), at);
    EXPECT_EQ(RowAt(PlainGrid, at), (at - 1) / 8 + 1);
    EXPECT_EQ(ColumnAt(PlainGrid, at), (at - 1) % 8 + 1);
  }
}

TEST(TableGrid, FirstEightPositionsAreTheSpeedAxis) {
  for (int at = 1; at <= 8; ++at) {
    EXPECT_EQ(CellAt(GridWithAxes, at), 0);
    EXPECT_EQ(RowAt(GridWithAxes, at), 0);
    EXPECT_EQ(ColumnAt(GridWithAxes, at), at);
  }
}

TEST(TableGrid, EveryNinthPositionIsTheLoadAxis) {
  for (int row = 1; row <= 8; ++row) {
    EXPECT_EQ(CellAt(GridWithAxes, 9 * row), 0);
    EXPECT_EQ(RowAt(GridWithAxes, 9 * row), row);
    EXPECT_EQ(ColumnAt(GridWithAxes, 9 * row), 0);
  }
}

TEST(TableGrid, TheOtherPositionsAreTheCellsInOrder) {
  int cells = 0;
  for (int at = 1; at <= 80; ++at) {
    if (at < 9 || at % 9 == 0) continue;
    EXPECT_EQ(CellAt(GridWithAxes, at), at - at / 9 - 8);
    EXPECT_EQ(CellAt(GridWithAxes, at), ++cells);
  }
  EXPECT_EQ(cells, 64);
}

TEST(TableGrid, RowsAndColumnsOfCells) {
  EXPECT_EQ(PositionsOfRow(PlainGrid, 2), (std::vector{9, 10, 11, 12, 13, 14, 15, 16}));
  EXPECT_EQ(PositionsOfColumn(PlainGrid, 3), (std::vector{3, 11, 19, 27, 35, 43, 51, 59}));
  EXPECT_EQ(PositionsOfRow(GridWithAxes, 1), (std::vector{10, 11, 12, 13, 14, 15, 16, 17}));
  EXPECT_EQ(PositionsOfColumn(GridWithAxes, 8), (std::vector{17, 26, 35, 44, 53, 62, 71, 80}));
}

TEST(TableGrid, AnAxisIsNoRowAndNoColumn) {
  EXPECT_TRUE(PositionsOfRow(GridWithAxes, 0).empty());
  EXPECT_TRUE(PositionsOfColumn(GridWithAxes, 0).empty());
}

TEST(TableGrid, AllCellsOfATable) {
  EXPECT_EQ(PositionsOfTable(PlainGrid).size(), 64u);
  EXPECT_EQ(PositionsOfTable(GridWithAxes).size(), 64u);
  EXPECT_EQ(PositionsOfTable(GridWithAxes).front(), 10);
  EXPECT_EQ(PositionsOfTable(GridWithAxes).back(), 80);
}
