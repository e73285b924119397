// The 3D graph: a table as a surface over engine speed and load, with a marker that walks over the
// nodes and changes the value under it. Draws what surface.h reckons.
#pragma once

#include "editors/surface.h"
#include "platform/screen.h"

extern Screen Graph3D;

// Node of the marker: column 1 to 11 (engine speed), row 1 to 10 (load). Both start as 1, anew each
// time the screen is loaded.
extern int CursorColumn;
extern int CursorRow;

// Geometry for the size of the canvas.
void GraphDims();
// Back walls, floor, tick marks and axis texts.
void DrawAxes();
// The whole picture: box, surface, titles, labels, marker.
void PlotData();

// The graph of this table is not available in the session that runs: says so and returns true.
bool GraphRefused(int table);

// The title of a table and view, three lines, empty where there is none.
std::array<const char*, 3> SurfaceTitle(int table, int veView);
// What + and - do to the values of a table.
struct StepRule {
  double step = 1;
  double top = 0;
  double bottom = 0;
};
StepRule StepRuleOf(int table);
// Where an arrow key takes the marker.
int ColumnAfter(int column, bool right);
int RowAfter(int row, bool up);

void RegisterGraph3D();
