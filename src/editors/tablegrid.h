// Positions of a table screen: the cells, and on one screen the axes among them, counted along the
// rows from the bottom. Pure; no screen.
#pragma once

#include <vector>

// A row holds eight cells; nine where the load axis stands in front of them. Then the speed axis is
// the bottom line, and position 0, where the two meet, does not exist.
struct TableGrid {
  int perRow;
  int positions;
};
inline constexpr TableGrid PlainGrid{.perRow = 8, .positions = 64};
inline constexpr TableGrid GridWithAxes{.perRow = 9, .positions = 80};

// Row (load) and column (speed) of a position, 1 to 8; 0 where it lies on an axis instead.
int RowAt(const TableGrid& grid, int position);
int ColumnAt(const TableGrid& grid, int position);
// Cell 1 to 64 at a position; 0 on an axis.
int CellAt(const TableGrid& grid, int position);
int PositionAt(const TableGrid& grid, int row, int column);

// The cells' positions of a row or column, in order; none for 0.
std::vector<int> PositionsOfRow(const TableGrid& grid, int row);
std::vector<int> PositionsOfColumn(const TableGrid& grid, int column);
std::vector<int> PositionsOfTable(const TableGrid& grid);

enum class Arrow { Left, Right, Up, Down };
// The position that an arrow leads to. Left and right run through all positions; every way wraps.
int StepFrom(const TableGrid& grid, int position, Arrow arrow);
