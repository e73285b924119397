// The one editor of the four 8 by 8 tables. What makes a table is a record of rules: its cells,
// texts, ranges and buttons; what it has beside them is an editor screen like any other
// (editcycle.h), whose entry cycle works the cells too.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "editors/editcycle.h"
#include "editors/graphcaption.h"
#include "editors/tablegrid.h"
#include "editors/tableviews.h"

// Position selected last on the table screen on top; the arrows and fills start from it. Starts as
// 1, and is 1 again whenever a table screen is loaded.
extern int SelectedCell;

struct TableEditor;

// What the fill keys ask.
struct FillTexts {
  std::string constantTitle;
  std::string tableTitle;
  std::string constantPrompt;
  std::string rowPrompt;
  std::string columnPrompt;
};

// Names and texts of the axis captions where the axes are no fields.
struct AxisCaptions {
  std::string rpm;  // control array, "RPM_VE"
  std::string map;
};

struct TableRules {
  TableKind table = TableVe;
  TableGrid grid = PlainGrid;
  std::string cells;      // control array of all positions, "Table_VE"
  int calBase = 0;        // cell k is CalValues[calBase + k]
  int imageBase = 0;      // and image byte imageBase + k
  EditorField cell;       // what the cells have in common
  EditorField speedAxis;  // and the positions of the axes, in a grid with axes
  EditorField loadAxis;
  AxisCaptions captions;  // in a grid without
  bool hasMarks = false;  // each cell of a grid without axes can have a mark on its left end

  double fillScale = 1;  // a fill stores value / fillScale
  FillTexts fill;
  std::string graphButton;  // control of the button that opens the 3D graph
  std::string graphCaption;
  GraphHandOver (*handOver)() = nullptr;

  // Hooks, each may be null.
  bool (*editable)() = nullptr;                     // null is always
  void (*keys)(TableEditor&, KeyEvent&) = nullptr;  // keys that only this table has
  void (*opening)(TableEditor&) = nullptr;          // before the screen is built
  void (*head)(TableEditor&) = nullptr;             // adds what stands above the grid
  void (*lines)(TableEditor&) = nullptr;            // adds lines below it, in "Hints"
  void (*drawn)(TableEditor&) = nullptr;            // last step of the redraw
};

struct TableEditor {
  TableRules rules;
  Editor editor;

  // Captions of the axes from 1, and the marks beside the cells; empty where there are none. Kept
  // while the screen is loaded.
  std::array<Control*, TableSide + 1> rpmCaptions{};
  std::array<Control*, TableSide + 1> mapCaptions{};
  std::vector<Control*> marks;  // by cell, from 1
};

// Keeps the table for the whole run and connects its screen. The editor brings name, title, fields
// beside the table (their numbers lie above the positions), lists, other buttons and Back.
TableEditor& AddTable(TableRules rules, Editor editor);
// The table of an editor made by AddTable.
TableEditor& TableOf(Editor& editor);

Control& ControlAt(TableEditor& table, int position);
bool IsEditable(const TableEditor& table);
// Cells, working tables and views from CalValues, for this table.
void RefreshWork(TableEditor& table);

// Fill keys: asks for one value until it is valid and stores it in all cells, or those of the row
// or column of SelectedCell; nothing happens where that lies on the axis. Shows boxes.
enum class FillKind { Table, Row, Column };
void FillTable(TableEditor& table, FillKind kind);

// The screen's controls: grid with row 1 at the bottom, axes, texts, buttons.
void BuildTable(Editor& editor);
// A line below the grid; one whose words change has its width from the start.
void AddHint(Editor& editor, const std::string& name, const std::string& caption,
             int widthChars = 0);
// The range of the load sensor, "(10 to 104 kPa)".
std::string LoadRangeText();
// Shares of the desktop's font size for the table, by the class of the screen width.
double TableFontScale(int screenClass);
