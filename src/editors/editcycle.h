// The entry cycle of all editor screens: focus, typing, Enter, Back and hot keys worked from the
// rows of a screen. An editor keeps no copy of the calibration: its redraw reads CalValues, an
// accepted entry goes straight back, or is posted to the control unit in an ONFLY session.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "editors/editrows.h"

// 1: a new value is typed in the field ActiveField and Enter has not been pressed. Starts as 0.
extern int EntryPending;
// 1: Enter was pressed and the entry handler has not taken it yet. Starts as 0.
extern int EnterPressed;
// The text of the field of the last entry or change, behind its mask. Starts empty.
extern std::string EntryText;
// Number of the field of the editor on top that has, or had last, the focus. Starts as 0.
extern int ActiveField;

// Name of the editor loaded last, for the help system. Starts empty.
extern std::string HelpScreen;
// Shows a help topic; result: whether there is one. Set by the help system; empty until then.
extern std::function<bool(std::string_view topic)> ShowHelpTopic;

// An editor screen. The rows and hooks are the screen's own; the rest of the record is kept here.
struct Editor {
  std::string name;
  std::string title;
  std::vector<EditorField> fields;
  std::vector<EditorValue> shown;
  std::vector<EditorList> lists;
  std::vector<EditorPair> pairs;
  std::vector<EditorButton> buttons;

  std::string backButton = "Command1";
  std::string backCaption = "<< Back";
  BackTarget back;
  BackTarget (*backTo)() = nullptr;  // instead of `back`, where it depends

  std::string helpLine = "Press F1 For Help";
  std::string saveLine = "Must Press Enter to Save New Values";
  std::string onflyLine = "ONFLY Values have Yellow Background";  // left out without such fields
  std::string fixedLine;      // stands in its place, "These Fields DO NOT USE ONFLY"
  bool portFlipsTwo = false;  // Ctrl+P knows ports 1 and 2 only and does not save
  std::string screenTopic;    // F1 away from the fields

  // Hooks, each may be null.
  void (*build)(Editor&) = nullptr;    // instead of BuildEditor
  void (*loaded)(Editor&) = nullptr;   // after the first redraw
  void (*compute)(Editor&) = nullptr;  // first step of the redraw
  void (*draw)(Editor&) = nullptr;     // last step of the redraw, and when a canvas is resized
  void (*reinit)(Editor&,
                 const EditorField&) = nullptr;  // rewrites the field before it is selected
  void (*keys)(Editor&, KeyEvent&) = nullptr;    // keys of the screen; nothing is pending
  void (*leave)(Editor&) = nullptr;              // before Back closes the screen
  void (*click)(Editor&, Control&) = nullptr;    // controls that no row names
  void (*focused)(Editor&, const EditorField&) = nullptr;  // the field has got the focus
  // Back colour of a field at rest; null is the window's, yellow for ONFLY fields in a session.
  Colour (*fieldColour)(Editor&, const EditorField&) = nullptr;

  Screen screen;

  // Kept by the cycle while the screen is loaded.
  enum class Kind { Field, Shown, List, OnOption, OffOption, Button, Picture, Back };
  struct Place {
    Kind kind;
    std::size_t row;
  };
  std::unordered_map<const Control*, Place> places;
  std::vector<Control*> fieldControls;  // by row
  std::vector<Control*> listControls;
  std::vector<std::string> writtenTexts;  // by row, as last written by the program
  std::vector<int> shownIndex;            // of each list, as last shown
  bool typed = false;         // what Enter takes is the user's, not a text that was written here
  bool listIsActive = false;  // ActiveField is a list's number; a field may have the same one
};

// Fills the screen's record from the rows and connects its events. Once for each editor.
void PrepareEditor(Editor& editor);
// Prepares, and registers the screen by its name.
void RegisterEditor(Editor& editor);

// The focus goes (back) to the field of ActiveField, its caption highlighted, its text selected.
void reinit(Editor& editor);
// Writes every field from CalValues, sets the colours, redraws graph, lists and pairs. A field with
// an entry pending keeps its text. The redraws of RefreshActiveEditor, and of a screen that is
// shown again, leave the field too that has the focus and whose text the user has edited.
void Redraw(Editor& editor);
// Writes a text of the program into a field; what differs from it later was typed by the user.
void WriteField(Editor& editor, const EditorField& row, const std::string& text);
// Takes the highlight off all captions.
void clrfocus(Editor& editor);
// Back of the screen: reinit when an entry is pending, else the screen is left.
void RunBack(Editor& editor);

// Writes the text into a field and takes it as if it had been typed and entered.
void EnterText(Editor& editor, const EditorField& row, const std::string& text);
// What an accepted value goes through: CalValues, or the posted write of an ONFLY session.
void StoreOrPost(Editor& editor, const EditorField& row, double stored);
// Enter was pressed on what stood there while a write of this element is on its way: the old value
// must not follow the new one.
bool OnlyConfirms(const Editor& editor, int calIndex);
// Gives the focus to the field of this number, as the arrow keys of a table do.
void FocusField(Editor& editor, int number);

// The row of a field number, or null; the row and control of a field.
const EditorField* RowOfField(const Editor& editor, int number);
Control& ControlOf(Editor& editor, const EditorField& row);
// The stored value as its field shows it, before any mask; and as text.
double ValueOfField(const EditorField& row);
std::string TextOfField(const EditorField& row);

// Closes this editor and opens another screen by its name. Nothing happens when nobody registered
// it.
void LeaveFor(Editor& editor, const std::string& screen);
// The editor on top, or null.
Editor* TopEditor();

// Messages of the cycle.
std::string RangeMessage(const std::string& rangeText);

// Start values of the cycle's state.
void ResetEditCycle();
