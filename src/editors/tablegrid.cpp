// Positions of a table screen.
#include "editors/tablegrid.h"

#include "editors/tableviews.h"

namespace {

bool HasAxes(const TableGrid& grid) { return grid.perRow > TableSide; }

}  // namespace

int RowAt(const TableGrid& grid, int position) {
  return HasAxes(grid) ? position / grid.perRow : (position - 1) / grid.perRow + 1;
}

int ColumnAt(const TableGrid& grid, int position) {
  return HasAxes(grid) ? position % grid.perRow : (position - 1) % grid.perRow + 1;
}

int CellAt(const TableGrid& grid, int position) {
  const int row = RowAt(grid, position);
  const int column = ColumnAt(grid, position);
  return row == 0 || column == 0 ? 0 : (row - 1) * TableSide + column;
}

int PositionAt(const TableGrid& grid, int row, int column) {
  return HasAxes(grid) ? grid.perRow * row + column : grid.perRow * (row - 1) + column;
}

std::vector<int> PositionsOfRow(const TableGrid& grid, int row) {
  std::vector<int> positions;
  for (int column = 1; row > 0 && column <= TableSide; ++column)
    positions.push_back(PositionAt(grid, row, column));
  return positions;
}

std::vector<int> PositionsOfColumn(const TableGrid& grid, int column) {
  std::vector<int> positions;
  for (int row = 1; column > 0 && row <= TableSide; ++row)
    positions.push_back(PositionAt(grid, row, column));
  return positions;
}

std::vector<int> PositionsOfTable(const TableGrid& grid) {
  std::vector<int> positions;
  for (int position = 1; position <= grid.positions; ++position)
    if (CellAt(grid, position) != 0) positions.push_back(position);
  return positions;
}

int StepFrom(const TableGrid& grid, int position, Arrow arrow) {
  const int by = arrow == Arrow::Left || arrow == Arrow::Right ? 1 : grid.perRow;
  const bool back = arrow == Arrow::Left || arrow == Arrow::Down;
  const int target = back ? position - by : position + by;
  if (target < 1) return target + grid.positions;
  return target > grid.positions ? target - grid.positions : target;
}
