// Screens and controls as records. A screen fills in its record and gets its events; the platform
// draws the record. Every change of a shown control goes through the routines below, so that the
// picture follows; until its first showing a screen may also fill in the record itself. All texts
// are UTF-8. Standard C++; implemented once, on top of platform/native.h.
#pragma once

#include <deque>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/canvas.h"
#include "platform/colour.h"
#include "platform/keys.h"

struct Screen;

enum class ControlKind {
  Label,         // caption; with `labelFor` its letter focuses that control
  TextField,     // text, one line
  TextArea,      // text, many lines
  Button,        // caption, click
  RadioButton,   // caption, checked; one of its container is checked
  CheckBox,      // caption, checked
  DropDownList,  // items, listIndex; not editable; the wheel of the mouse changes nothing
  ListBox,       // items, listIndex
  TreeView,      // nodes, opens fully expanded
  Canvas,        // drawing
  Picture,       // icon
  ProgressBar,   // value of maximum, caption in front
  // Containers: controls name them in place.in
  Group,   // titled frame; children below each other unless they give row and column
  Row,     // children side by side
  Column,  // children below each other
  Grid,    // children at row and column
  Spacer,  // takes what room is left
};

enum class Align { Default, Left, Centre, Right, Fill };

// Where a control stands. The platform lays out: nothing is cut, whatever the font.
struct Place {
  std::string in;  // name of the container, "" is the screen itself (a column)
  int row = -1;    // in a grid or group
  int column = -1;
  int rowSpan = 1;
  int columnSpan = 1;
  Align align = Align::Default;  // where in a cell that is larger than the control
  int stretch = 0;               // share of the room left over, in a row or column
};

struct TreeNode {
  std::string text;
  std::string key;
  std::string parent;  // key of the parent node, "" at the root
  std::string icon;
  bool enabled = true;  // drawn as switched off otherwise; it still tells of a double click
};

struct Control {
  std::string name;  // "Text8"; unique on its screen
  ControlKind kind = ControlKind::Label;
  std::string caption;
  Place place;
  std::string text;
  std::string labelFor;
  int widthChars = 0;   // wished width in digits of its font; 0 is by its content. Fixed for
                        // labels whose text changes, so that nothing jumps
  int heightLines = 0;  // wished height of lists, trees and text areas
  int minWidth = 0;     // of a canvas, in pixels
  int minHeight = 0;
  Align textAlign = Align::Default;
  double fontScale = 1;  // against the desktop's size
  bool bold = false;
  Colour backColour = SystemButtonFace;
  Colour foreColour = SystemButtonText;
  bool enabled = true;
  bool visible = true;
  bool checked = false;
  bool readOnly = false;
  bool tabStop = true;
  bool framed = false;  // a sunken frame around a label or canvas
  bool wrap = false;    // a label breaks its lines
  std::vector<std::string> items;
  int listIndex = -1;
  std::vector<TreeNode> nodes;
  int value = 0;
  int maximum = 100;
  std::string icon;            // name of a picture of the program, without path and ending
  std::string accessibleName;  // caption without "&" when empty

  // Kept by the platform layer.
  Screen* owner = nullptr;
  int selStart = 0;  // selection of a field, in bytes of its text
  int selLength = 0;
  Drawing drawing;
  int canvasWidth = 0;  // size as shown, in pixels
  int canvasHeight = 0;
  void* native = nullptr;
  unsigned changes = 0;
};

enum class ScreenPlacement {
  Work,    // fills the middle of the main frame; one is seen at a time, the last one shown
  Above,   // a small window of its own that stays above the frame (digital monitor, graph panels)
  Child,   // a small window inside the frame that moves and keeps its place
  Dialog,  // a window in front of the frame that has the user's attention until it is left
};

// Events of a screen, in the order lost focus, got focus, key down, key press, change, click.
// Every routine may be empty. A control's routines are told the control.
struct ScreenEvents {
  std::function<void(Screen&)> load;      // controls exist, nothing is shown yet
  std::function<void(Screen&)> shown;     // after it has come to the front, each time
  std::function<void(Screen&)> unload;    // before its controls go
  std::function<void(Screen&)> closeBox;  // the user closes it by the window's own means; without
                                          // a routine the cancel button is clicked, or it unloads
  std::function<void(Screen&, KeyEvent&)> keyDown;  // before the control sees the key
  std::function<void(Screen&, KeyEvent&)> keyUp;
  std::function<void(Screen&, Control&, KeyEvent&)> controlKeyDown;
  std::function<void(Screen&, Control&, KeyPress&)> keyPress;  // characters, Enter 13, Esc 27, BS 8
  std::function<void(Screen&, Control&)> gotFocus;
  std::function<void(Screen&, Control&)> lostFocus;
  std::function<void(Screen&, Control&)> change;  // text of a field changed, by user or program
  std::function<void(Screen&, Control&)> click;   // button, radio, check box, list item chosen by
                                                  // the user, click in a field, label or canvas
  std::function<void(Screen&, Control&)> doubleClick;  // list, tree (listIndex is the node)
  std::function<void(Screen&, Control&)> resized;      // canvas has a (new) size: draw it anew;
                                                       // the first time before `shown`
  std::function<void(Screen&, Control&, const MouseEvent&)> mouse;  // canvas
};

struct Screen {
  std::string name;
  std::string title;
  ScreenPlacement placement = ScreenPlacement::Work;
  std::function<void(Screen&)> build;  // fills `controls`, called by LoadScreen
  ScreenEvents on;
  std::string cancelButton;  // clicked by Esc when keyDown left it
  std::string defaultFocus;  // first field when empty
  Colour backColour = SystemButtonFace;
  bool enabled = true;
  double left = -1, top = -1, width = 0, height = 0;  // Above, Child: 1/1440 inch; -1 is the
                                                      // platform's choice, 0 is by its content;
                                                      // the user's moves are written here
  std::deque<Control> controls;

  // Kept by the platform layer.
  bool loaded = false;
  bool visible = false;
  unsigned life = 0;     // counts the loads
  bool closing = false;  // unloaded while one of its routines is still on the stack
  int onStack = 0;       // routines of this screen that are running
  Control* focus = nullptr;
  bool focusMoving = false;
  Control* focusWish = nullptr;
  std::list<std::deque<Control>> former;  // controls of an earlier life that a routine may hold
  void* native = nullptr;
};

// The control of this name; throws std::logic_error when there is none (a mistake of ours).
Control& At(Screen& screen, std::string_view name);
Control* Find(Screen& screen, std::string_view name);
// Adds a control to the record while `build` runs.
Control& Add(Screen& screen, Control control);

// Builds and loads the screen if it is not loaded. Nothing is shown.
void LoadScreen(Screen& screen);
// Loads it if need be, shows it and makes it the active one.
void ShowScreen(Screen& screen);
// Out of sight but still loaded.
void HideScreen(Screen& screen);
// Runs unload (it is in LoadedScreens no more), hides it and releases it; if one of its routines is
// on the stack it is only marked, and released when the stack has unwound. The screen below comes
// to the front again.
void UnloadScreen(Screen& screen);
void UnloadAllScreens();  // last loaded first
// Whether it is loaded, and not being unloaded.
bool IsUp(const Screen& screen);
// The screen that has the keys, or null. The frame has them when there is none.
Screen* ActiveScreen();
// The Work screen on top, whatever is above it, or null.
Screen* TopWorkScreen();
// The screen of placement Dialog that has the user's attention, or null.
Screen* OpenDialogScreen();
const std::vector<Screen*>& LoadedScreens();  // in the order of loading
// Gives the keys to a screen that is already shown.
void ActivateScreen(Screen& screen);
void SetScreenEnabled(Screen& screen, bool enabled);

// Changes of one control. A text that is set is a change event too, if it differs; the cursor then
// stands in front of it.
void SetText(Control& control, std::string text);
void SetCaption(Control& control, std::string caption);
void SetBackColour(Control& control, Colour colour);
void SetForeColour(Control& control, Colour colour);
void SetEnabled(Control& control, bool enabled);
void SetVisible(Control& control, bool visible);
void SetChecked(Control& control, bool checked);  // no click event; unchecks the others of a group
void SetReadOnly(Control& control, bool readOnly);
void SetItems(Control& control, std::vector<std::string> items);
void SetListIndex(Control& control, int index);  // no click event
void SetValue(Control& control, int value, int maximum);
void SelectText(Control& control, int start, int length);
void SetScreenTitle(Screen& screen, std::string title);
void SetScreenBackColour(Screen& screen, Colour colour);

// Gives the focus to a control: lost focus of the old one, got focus of this one. Normal inside a
// focus event: the new wish is carried out after the event, never inside it. A control that already
// has the focus, is hidden or disabled gets no event. A lost-focus routine that wishes the focus
// back gets a got-focus event; the control that should have had it gets none.
// Getting the focus leaves cursor and selection of a field as they are, by whatever way it came; a
// click places the cursor, but the click that brings the focus leaves a selection that the
// got-focus routine has made.
// A focused control that is disabled or hidden loses the focus to the next one with the next pass.
void SetFocus(Control& control);
Control* FocusedControl(Screen& screen);
bool TakesFocus(const Control& control);  // its kind can have the focus
bool IsField(const Control& control);  // its kind stands on the colour of windows, not of buttons
// Enabled and visible, and so is every container around it.
bool IsUsable(const Control& control);
bool IsShown(const Control& control);
// Clicks a control as the user would (button, radio, check box).
void ClickControl(Control& control);

// Opening by name. main registers each screen; everybody opens by name.
void RegisterScreen(std::string name, std::function<void()> open);
bool ScreenRegistered(std::string_view name);
// Opens it; nothing happens when nobody registered it. Result: whether it was opened.
bool OpenScreen(std::string_view name);
void ForgetRegisteredScreens();
