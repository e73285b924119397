// The controls of an editor screen from its rows: captions, fields and units in columns, groups,
// buttons and the standing lines. Screens with a layout of their own use the pieces.
#pragma once

#include <string>
#include <vector>

#include "editors/editcycle.h"

// The whole screen in its standard layout: a titled frame for each group, below each other, then
// the foot.
void BuildEditor(Editor& editor);

// Where the next row of a group or grid goes.
struct GridCursor {
  std::string container;
  int row = 0;
};

// The pieces. One row each: caption, control and unit in the columns 0, 1 and 2.
void AddField(Editor& editor, const EditorField& row, GridCursor& cursor);
void AddShown(Editor& editor, const EditorValue& row, GridCursor& cursor);
void AddList(Editor& editor, const EditorList& row, GridCursor& cursor);
void AddPair(Editor& editor, const EditorPair& row, GridCursor& cursor);
// A little room between two sets of rows whose columns go on.
void AddGap(Editor& editor, GridCursor& cursor);
// A field alone at a place of a grid, as the cells of a table stand.
void AddCell(Editor& editor, const EditorField& row, const std::string& container, int gridRow,
             int gridColumn);
// All rows of a group, fields first.
void AddGroupRows(Editor& editor, const std::string& group, GridCursor& cursor);
// A button of a row, with its picture in front.
void AddButton(Editor& editor, const EditorButton& row, const std::string& container);
// Standing lines on the left, the buttons and Back on the right. Stands last on every screen.
void AddFoot(Editor& editor);
void AddStandingLines(Editor& editor, const std::string& container);

// Names of the groups in the order in which the rows name them first.
std::vector<std::string> GroupsOf(const Editor& editor);
// The screen has fields that an ONFLY session posts.
bool HasOnflyFields(const Editor& editor);

// Keeps the controls by row, for quick look-up. After the screen is built.
void IndexControls(Editor& editor);
// Writes the captions and units that routines make.
void RewriteCaptions(Editor& editor);
