// The steps of the entry cycle that the events of a screen run. Nobody outside of the cycle
// includes this.
#pragma once

#include "editors/editcycle.h"

// The field or list takes ActiveField.
void Activate(Editor& editor, const EditorField& row);
void Activate(Editor& editor, const EditorList& row);

void GotFocusStep(Editor& editor, const EditorField& row);
void LostFocusStep(Editor& editor, const EditorField& row);
void GotFocusStep(Editor& editor, const EditorList& row);
void LostFocusStep(Editor& editor, const EditorList& row);

// The entry handler: runs on each change, takes an entry only when EnterPressed is set.
void EntryHandler(Editor& editor, const EditorField& row);
// Enter in a field.
void PressEnter(Editor& editor, const EditorField& row);

// Redraw that leaves the field that has the focus and whose text the user has edited.
void RedrawSparingEdits(Editor& editor);

void EditorLoaded(Editor& editor);
void EditorUnloaded(Editor& editor);

// Connects the events of the screen's record to the steps.
void ConnectEvents(Editor& editor);
