// What the events of an editor screen run: keys judged, clicks, focus, loading and leaving.
#include "editors/editevents.h"

#include <algorithm>

#include "core/globalstate.h"
#include "editors/editlayout.h"
#include "platform/dialogs.h"
#include "shell/hotkeys.h"
#include "shell/mainframe.h"

namespace {

using Kind = Editor::Kind;

const Editor::Place* PlaceOf(const Editor& editor, const Control& control) {
  auto found = editor.places.find(&control);
  return found == editor.places.end() ? nullptr : &found->second;
}

const EditorField* FieldAt(const Editor& editor, const Control* control) {
  const Editor::Place* place = control ? PlaceOf(editor, *control) : nullptr;
  return place && place->kind == Kind::Field ? &editor.fields[place->row] : nullptr;
}

const EditorList* ListAt(const Editor& editor, const Control* control) {
  const Editor::Place* place = control ? PlaceOf(editor, *control) : nullptr;
  return place && place->kind == Kind::List ? &editor.lists[place->row] : nullptr;
}

// ---- lists --------------------------------------------------------------------------------------

int& LastIndexOf(Editor& editor, const EditorList& row) {
  return editor.shownIndex[static_cast<std::size_t>(&row - editor.lists.data())];
}

// The list moved by click or arrow; what it shows now waits for Enter.
void ListMoved(Editor& editor, const EditorList& row, Control& control, int index) {
  int& last = LastIndexOf(editor, row);
  if (row.flips) index = last == 0 ? 1 : 0;
  SetListIndex(control, index);
  last = control.listIndex;
  if (row.movingIsChange) CalChanged = true;
  EntryPending = 1;
  Activate(editor, row);
  SetFocus(control);
}

void ListArrow(Editor& editor, const EditorList& row, Control& control, int key) {
  const int count = static_cast<int>(control.items.size());
  const int step = key == KeyDown ? 1 : -1;
  const int index = std::clamp(control.listIndex + step, 0, count - 1);
  if (row.flips && key == KeyUp && index == control.listIndex) return;
  ListMoved(editor, row, control, index);
}

void ListEnter(Editor& editor, const EditorList& row, Control& control) {
  editor.typed = EntryPending == 1;
  EntryPending = 0;
  Activate(editor, row);
  if (row.enter) row.enter(editor, row, control.listIndex);
  if (IsUp(editor.screen) && row.redrawsOnEnter) Redraw(editor);
}

void ListKeyPress(Editor& editor, const EditorList& row, Control& control, KeyPress& press) {
  if (press.character == KeyEnter)
    ListEnter(editor, row, control);
  else if (press.character == KeyEscape)
    RunBack(editor);
  else
    return;
  press.character = 0;
}

// ---- keys of a field ----------------------------------------------------------------------------

bool IsDigit(int character) { return character >= '0' && character <= '9'; }

bool PassesSilently(const EditorField& row, int character) {
  return character == ',' || character == '.' || character == KeyBackspace ||
         (character == '-' && row.takesMinus);
}

void RefuseCharacter(Editor& editor, const EditorField& row) {
  MsgBox(RangeMessage("  Retype Data"));
  if (IsUp(editor.screen)) GotFocusStep(editor, row);
}

void JudgeKey(Editor& editor, const EditorField& row, KeyPress& press) {
  const int character = press.character;
  if (IsDigit(character)) {
    EntryPending = 1;
    Activate(editor, row);
    return;
  }
  if (PassesSilently(row, character)) return;
  press.character = 0;
  if (character == KeyEnter) {
    PressEnter(editor, row);
    return;
  }
  if (character == KeyEscape) RunBack(editor);
  if (IsUp(editor.screen)) RefuseCharacter(editor, row);
}

void KeyPressed(Editor& editor, Control& control, KeyPress& press) {
  if (const EditorField* row = FieldAt(editor, &control)) {
    JudgeKey(editor, *row, press);
  } else if (const EditorList* list = ListAt(editor, &control)) {
    ListKeyPress(editor, *list, control, press);
  } else if (press.character == KeyEscape) {
    press.character = 0;
    RunBack(editor);
  }
}

// ---- keys of the screen -------------------------------------------------------------------------

std::string TopicOf(const Editor& editor, const std::string& own, const std::string& control) {
  return own.empty() ? editor.name + "." + control : own;
}

void OpenHelp(const std::string& topic) {
  if (ShowHelpTopic && !topic.empty()) ShowHelpTopic(topic);
}

void HelpKey(Editor& editor) {
  const Control* control = FocusedControl(editor.screen);
  const Editor::Place* place = control ? PlaceOf(editor, *control) : nullptr;
  if (const EditorList* list = ListAt(editor, control)) {
    OpenHelp(TopicOf(editor, list->helpTopic, list->control));
  } else if (EntryPending == 1) {
    return;
  } else if (const EditorField* row = FieldAt(editor, control)) {
    OpenHelp(TopicOf(editor, row->helpTopic, row->control));
  } else if (place && place->kind == Kind::Button &&
             !editor.buttons[place->row].helpTopic.empty()) {
    OpenHelp(editor.buttons[place->row].helpTopic);
  } else {
    OpenHelp(editor.screenTopic);
  }
}

// Hot keys are dead while an entry is pending, and so is every other Ctrl key.
void ControlKey(Editor& editor, KeyEvent& event) {
  if (event.key == KeyControl) return;
  if (EntryPending == 1) {
    event.handled = true;
    return;
  }
  HandleHotKey(event, {.portOneOrTwoOnly = editor.portFlipsTwo});
}

void ScreenKey(Editor& editor, KeyEvent& event) {
  if (event.key == KeyF1) {
    event.handled = true;
    HelpKey(editor);
    return;
  }
  if (event.ctrl && !event.alt) {
    ControlKey(editor, event);
    return;
  }
  if (EntryPending == 0 && editor.keys) editor.keys(editor, event);
  if (event.handled || !IsUp(editor.screen)) return;
  Control* control = FocusedControl(editor.screen);
  const EditorList* list = ListAt(editor, control);
  if (list && !event.alt && (event.key == KeyUp || event.key == KeyDown)) {
    event.handled = true;
    ListArrow(editor, *list, *control, event.key);
  }
  if (!control && event.key == KeyEscape) {
    event.handled = true;
    RunBack(editor);
  }
}

// ---- focus and clicks ---------------------------------------------------------------------------

void GotFocus(Editor& editor, Control& control) {
  if (const EditorField* row = FieldAt(editor, &control)) {
    GotFocusStep(editor, *row);
  } else if (const EditorList* list = ListAt(editor, &control)) {
    GotFocusStep(editor, *list);
  } else if (EntryPending == 1) {
    reinit(editor);
  } else if (control.kind == ControlKind::Button) {
    SetBackColour(control, White);
  }
}

void LostFocus(Editor& editor, Control& control) {
  if (const EditorField* row = FieldAt(editor, &control))
    LostFocusStep(editor, *row);
  else if (const EditorList* list = ListAt(editor, &control))
    LostFocusStep(editor, *list);
  else if (control.kind == ControlKind::Button)
    SetBackColour(control, SystemButtonFace);
}

void PressEditorButton(Editor& editor, const EditorButton& row) {
  if (row.click)
    row.click(editor, row);
  else
    LeaveFor(editor, row.opens);
}

void ChoosePair(Editor& editor, const EditorPair& row, bool on) {
  clrfocus(editor);
  if (row.choose) row.choose(editor, row, on);
  Redraw(editor);
}

void ClickedRow(Editor& editor, const Editor::Place& place, Control& control) {
  switch (place.kind) {
    case Kind::List: {
      const EditorList& row = editor.lists[place.row];
      ListMoved(editor, row, control, control.listIndex);
      break;
    }
    case Kind::OnOption:
    case Kind::OffOption:
      ChoosePair(editor, editor.pairs[place.row], place.kind == Kind::OnOption);
      break;
    case Kind::Button:
    case Kind::Picture:
      PressEditorButton(editor, editor.buttons[place.row]);
      break;
    case Kind::Back:
      RunBack(editor);
      break;
    case Kind::Field:
    case Kind::Shown:
      break;
  }
}

void Clicked(Editor& editor, Control& control) {
  const Editor::Place* place = PlaceOf(editor, control);
  const bool pendingList = place && place->kind == Kind::List && editor.listIsActive &&
                           editor.lists[place->row].number == ActiveField;
  if (EntryPending == 1 && !pendingList)
    reinit(editor);
  else if (place)
    ClickedRow(editor, *place, control);
  else if (editor.click)
    editor.click(editor, control);
}

}  // namespace

void ConnectEvents(Editor& editor) {
  ScreenEvents& on = editor.screen.on;
  on.load = [&editor](Screen&) {
    IndexControls(editor);
    EditorLoaded(editor);
  };
  // It may come back to another calibration, or to a session that has begun or ended. What covered
  // it may have come while the user was typing.
  on.shown = [&editor](Screen&) {
    DoStats();
    RedrawSparingEdits(editor);
  };
  on.unload = [&editor](Screen&) { EditorUnloaded(editor); };
  on.closeBox = [&editor](Screen&) { RunBack(editor); };
  on.keyDown = [&editor](Screen&, KeyEvent& event) { ScreenKey(editor, event); };
  on.keyPress = [&editor](Screen&, Control& control, KeyPress& press) {
    KeyPressed(editor, control, press);
  };
  on.gotFocus = [&editor](Screen&, Control& control) { GotFocus(editor, control); };
  on.lostFocus = [&editor](Screen&, Control& control) { LostFocus(editor, control); };
  on.change = [&editor](Screen&, Control& control) {
    if (const EditorField* row = FieldAt(editor, &control)) EntryHandler(editor, *row);
  };
  on.click = [&editor](Screen&, Control& control) { Clicked(editor, control); };
  on.resized = [&editor](Screen&, Control&) {
    if (editor.draw) editor.draw(editor);
  };
}

void PrepareEditor(Editor& editor) {
  editor.screen.name = editor.name;
  editor.screen.title = editor.title;
  editor.screen.placement = ScreenPlacement::Work;
  if (!editor.fields.empty()) editor.screen.defaultFocus = editor.fields.front().control;
  editor.screen.build = [&editor](Screen&) {
    if (editor.build)
      editor.build(editor);
    else
      BuildEditor(editor);
  };
  ConnectEvents(editor);
}
