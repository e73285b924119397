// The working views of the four 8 by 8 tables: what the table screens show and the 3D graph draws.
// Pure arithmetic on the core's working values; no screen.
#pragma once

#include <array>

#include "core/globalstate.h"
#include "platform/colour.h"

// Which table the views are built for. Every table screen sets it first. Starts as VE.
enum TableKind : int { TableVe = 0, TableGpo = 1, TableAdvance = 2, TableAirFuel = 3 };
extern int SelectedTable;

// View of the VE table: 0 correction, 1 pulse width, 2 duty cycle. Survives the screen. Starts as
// 0.
extern int VeView;

// What is shown, in the unit of the table and view. The 8 by 8 table lies at rows 2 to 9 (load) and
// columns 4 to 11 (engine speed); rows 1 and 10 and columns 1 to 3 and 12 are margins.
extern WorkGrid TableWork;

// Colour of each node by how near the injector is to its limit (VE), or that of the table.
using ColourGrid = std::array<std::array<Colour, 17>, 15>;
extern ColourGrid TableColours;

inline constexpr int FirstTableRow = 2;
inline constexpr int FirstTableColumn = 4;
inline constexpr int TableSide = 8;
inline constexpr int TableCells = TableSide * TableSide;

// Row and column in the working grids of cell 1 to 64 (cell 1 is lowest load, lowest speed).
struct GridPlace {
  int row;
  int column;
};
constexpr GridPlace PlaceOfCell(int cell) {
  return {FirstTableRow + (cell - 1) / TableSide, FirstTableColumn + (cell - 1) % TableSide};
}

// Duty in percent from which a node is coloured as near its limit, and as beyond it.
inline constexpr double DutyNearLimit = 75;
inline constexpr double DutyAtLimit = 100;

// Fundamental pulse width in ms at a load in kPa with a VE correction in % FPW.
double CorrectedPulseMs(double vePercent, double loadKpa);
// That of a node with its working VE. The row above the table stands for the highest pressure that
// the engine reaches, not for the end of the sensor's range.
double NodePulseMs(int row, int column);
// Share of the time between tach events, in %, that a pulse takes; 0 at standstill. The second one
// takes the injector's recovery time off the time there is.
double DutyPercent(double pulseMs, double rpm);
double LoadDutyPercent(double pulseMs, double rpm);
// White below 75, yellow from 75, red from 100.
Colour ColourOfLoadDuty(double loadDutyPercent);

// Fills RpmAxis and LoadAxis: the breakpoints of CalValues, and the positions around them.
void ExtendAxes();
// Extends the axes and fills TableWork and TableColours for SelectedTable and VeView from the
// working tables, margins included.
void BuildTableViews();

// SelectedTable, VeView, TableWork and the colours at their start values.
void ResetTableViews();
