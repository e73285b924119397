// Focus, typing, Enter, Back and hot keys of the editor screens.
#include "editors/editcycle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/numbers.h"
#include "editors/editevents.h"
#include "editors/editlayout.h"
#include "link/postedwrite.h"
#include "platform/dialogs.h"
#include "shell/navigation.h"

int EntryPending = 0;
int EnterPressed = 0;
std::string EntryText;
int ActiveField = 0;
std::string HelpScreen;
std::function<bool(std::string_view topic)> ShowHelpTopic;

namespace {

constexpr Colour highlight = White;

std::vector<Editor*> loadedEditors;  // in the order of loading

bool HasOnflyPath(const EditorField& row) { return row.imageByte != NoImageByte; }

Colour RestColour(Editor& editor, const EditorField& row) {
  if (editor.fieldColour) return editor.fieldColour(editor, row);
  return HasOnflyPath(row) && MonitorMode == OnflyLive ? Yellow : SystemWindow;
}

void ColourLabel(Editor& editor, const std::string& label, Colour colour) {
  if (label.empty()) return;
  if (Control* control = Find(editor.screen, label)) SetBackColour(*control, colour);
}

const EditorList* ListOfNumber(const Editor& editor, int number) {
  for (const EditorList& row : editor.lists)
    if (row.number == number) return &row;
  return nullptr;
}

Control& ControlOf(Editor& editor, const EditorList& row) {
  return *editor.listControls[static_cast<std::size_t>(&row - editor.lists.data())];
}

bool PendingHere(const Editor& editor, const EditorField& row) {
  return EntryPending == 1 && ActiveField == row.number && !editor.listIsActive;
}

bool PendingHere(const Editor& editor, const EditorList& row) {
  return EntryPending == 1 && ActiveField == row.number && editor.listIsActive;
}

// ---- redraw -------------------------------------------------------------------------------------

std::string& WrittenText(Editor& editor, const EditorField& row) {
  return editor.writtenTexts[static_cast<std::size_t>(&row - editor.fields.data())];
}

// A minus or a point that begins a new value leaves nothing pending, and is the user's all the
// same.
bool IsBeingEdited(Editor& editor, const EditorField& row) {
  const Control& control = ControlOf(editor, row);
  return FocusedControl(editor.screen) == &control && control.text != WrittenText(editor, row);
}

// Who asks for a redraw: the user, by what he does on the screen, or the live loop and what it
// shows.
enum class Asked { ByUser, ByLoop };

void RedrawField(Editor& editor, const EditorField& row, Asked asked) {
  Control& control = ControlOf(editor, row);
  SetBackColour(control, RestColour(editor, row));
  if (PendingHere(editor, row)) return;
  if (asked == Asked::ByLoop && IsBeingEdited(editor, row)) return;
  const std::string text = TextOfField(row);
  const bool isThere = control.text == text;
  WriteField(editor, row, text);
  if (isThere) return;
  if (FocusedControl(editor.screen) == &control)
    SelectText(control, 0, static_cast<int>(control.text.size()));
}

void RedrawList(Editor& editor, const EditorList& row) {
  if (!row.index || PendingHere(editor, row)) return;
  Control& control = ControlOf(editor, row);
  SetListIndex(control, row.index());
  editor.shownIndex[static_cast<std::size_t>(&row - editor.lists.data())] = control.listIndex;
}

void RedrawPair(Editor& editor, const EditorPair& row) {
  if (!row.isOn) return;
  const bool on = row.isOn();
  Control& onControl = At(editor.screen, row.onControl);
  Control& offControl = At(editor.screen, row.offControl);
  SetChecked(on ? onControl : offControl, true);
  SetBackColour(onControl, on ? row.onColour : SystemButtonFace);
  SetBackColour(offControl, on ? SystemButtonFace : row.offColour);
}

// A session may have begun or ended since.
void RedrawButton(Editor& editor, const EditorButton& row) {
  const bool reachable = row.opens.empty() || ScreenRegistered(row.opens);
  const bool offNow = row.offInOnflySession && MonitorMode == OnflyLive;
  SetEnabled(At(editor.screen, row.control), reachable && !offNow);
  if (Control* picture = Find(editor.screen, row.control + "Picture"))
    SetEnabled(*picture, reachable && !offNow);
}

// ---- entry --------------------------------------------------------------------------------------

// What the mask makes of an entry. A text without a number that it can show stays as it is.
std::string Masked(const EditorField& row, const std::string& text) {
  const bool digits = text.find_first_of("0123456789") != std::string::npos;
  const double number = LeadingNumber(text);
  return row.mask.empty() || !digits || !std::isfinite(number) ? text : Format(number, row.mask);
}

void AfterRefused(Editor& editor, const EditorField& row) {
  switch (row.afterRefusal) {
    case AfterRefusal::HoldFocus:
      Activate(editor, row);
      EntryPending = 1;
      reinit(editor);
      break;
    case AfterRefusal::GotFocusAgain:
      GotFocusStep(editor, row);
      break;
    case AfterRefusal::Reinit:
      reinit(editor);
      break;
    case AfterRefusal::MessageOnly:
      break;
  }
  if (row.refused) row.refused(editor, row);
}

void Refuse(Editor& editor, const EditorField& row, const std::string& message) {
  MsgBox(message, Buttons::Ok, row.refusalTitle);
  if (IsUp(editor.screen)) AfterRefused(editor, row);
}

// Whether a text could have been typed, or is a number as the program writes it. The clipboard can
// bring anything.
bool CouldBeTyped(const EditorField& row, const std::string& text) {
  const char* taken = row.takesMinus ? "0123456789.,-" : "0123456789.,";
  return text.find_first_not_of(taken) == std::string::npos || IsNumeric(text);
}

// Why an entry is refused, or nothing.
std::optional<std::string> Objection(Editor& editor, const EditorField& row, double entry) {
  if (!CouldBeTyped(row, ControlOf(editor, row).text)) return RangeMessage("  Retype Data");
  if (row.wholeNumber && EntryText.find('.') != std::string::npos)
    return "  Data Input Error\n\rWhole Numbers Only";
  if (!(entry >= row.low() && entry <= row.high()))
    return row.refusal.Empty() ? RangeMessage(row.rangeText()) : row.refusal();
  return row.check ? row.check(editor, row, entry) : std::nullopt;
}

// Of a value that the live loop leaves to its screen, also when that is closed meanwhile.
void StoreAccepted(int calIndex, double value) {
  CalValues[static_cast<std::size_t>(calIndex)] = static_cast<float>(value);
}

// The image takes the bytes at once; CalValues follow when the control unit has accepted them.
void Post(const EditorField& row, double stored) {
  std::array<int, 2> bytes{};
  if (row.encode) {
    bytes[0] = row.encode(stored);
  } else {
    // A byte that nothing has encoded must not reach the engine.
    const auto encoded = EncodeParameter(row.calIndex, static_cast<float>(stored));
    if (!encoded) RaiseFailure(FailureSubscript);
    bytes = encoded->bytes;
  }
  for (std::size_t i = 0; i < static_cast<std::size_t>(row.byteCount); ++i)
    BinImage[static_cast<std::size_t>(row.imageByte) + i] = static_cast<std::int16_t>(bytes[i]);
  // The encoder may want the sign of a zero, the calibration does not.
  PostWrite(row.calIndex, stored + 0.0, row.imageByte, row.byteCount, StoreAccepted);
}

void Accept(Editor& editor, const EditorField& row, double entry) {
  const double stored = row.toStored ? row.toStored(entry) : entry;
  if (!HasOnflyPath(row) || !OnlyConfirms(editor, row.calIndex)) {
    StoreOrPost(editor, row, stored);
    if (row.accepted) row.accepted(editor, row, stored);
  }
  if (!IsUp(editor.screen)) return;
  reinit(editor);
  CalChanged = true;
  Redraw(editor);
  Control& control = ControlOf(editor, row);
  SelectText(control, 0, static_cast<int>(control.text.size()));
}

}  // namespace

// ---- rows ---------------------------------------------------------------------------------------

const EditorField* RowOfField(const Editor& editor, int number) {
  for (const EditorField& row : editor.fields)
    if (row.number == number) return &row;
  return nullptr;
}

Control& ControlOf(Editor& editor, const EditorField& row) {
  return *editor.fieldControls[static_cast<std::size_t>(&row - editor.fields.data())];
}

double ValueOfField(const EditorField& row) {
  const double stored = CalValues[static_cast<std::size_t>(row.calIndex)];
  // Shown values are singles: a stored 0.12 times 100 reads 12.
  return row.toShown ? static_cast<float>(row.toShown(stored)) : stored;
}

std::string TextOfField(const EditorField& row) {
  if (row.show) return row.show(row);
  if (row.calIndex == NoCalValue) return {};
  const double value = ValueOfField(row);
  return row.mask.empty() ? NumberText(value) : Format(value, row.mask);
}

std::vector<EditorField> FieldArray(const EditorField& pattern, int firstIndex, int count) {
  std::vector<EditorField> rows;
  for (int i = 0; i < count; ++i) {
    EditorField& row = rows.emplace_back(pattern);
    row.control += "(" + std::to_string(firstIndex + i) + ")";
    row.number += i;
    if (row.calIndex != NoCalValue) row.calIndex += i;
    if (row.imageByte != NoImageByte) row.imageByte += i;
    if (i > 0) row.caption = {};
  }
  return rows;
}

bool OptionIsSet(int mask) {
  const double options = RoundEven(static_cast<double>(CalValues[0]));
  return options >= -32768 && options <= 32767 && (static_cast<int>(options) & mask) != 0;
}

void ChooseOption(int mask, bool on) {
  const int options = ToInt16(CalValues[0]);
  if (((options & mask) != 0) == on) return;
  CalValues[0] = static_cast<float>(options ^ mask);
  CalChanged = true;
}

// ---- focus --------------------------------------------------------------------------------------

void Activate(Editor& editor, const EditorField& row) {
  ActiveField = row.number;
  editor.listIsActive = false;
}

void Activate(Editor& editor, const EditorList& row) {
  ActiveField = row.number;
  editor.listIsActive = true;
}

void GotFocusStep(Editor& editor, const EditorField& row) {
  if (EntryPending == 1) {
    reinit(editor);
    return;
  }
  Control& control = ControlOf(editor, row);
  ColourLabel(editor, row.label, highlight);
  SelectText(control, 0, static_cast<int>(control.text.size()));
  Activate(editor, row);
  if (editor.focused) editor.focused(editor, row);
}

void LostFocusStep(Editor& editor, const EditorField& row) {
  if (EntryPending == 1) return;
  if (row.leaving) {
    Activate(editor, row);
    row.leaving(editor, row);
  }
  Control& control = ControlOf(editor, row);
  // In a window that does not have the keys itself a selection would stay in sight.
  SelectText(control, 0, 0);
  SetBackColour(control, RestColour(editor, row));
  ColourLabel(editor, row.label, SystemButtonFace);
}

void GotFocusStep(Editor& editor, const EditorList& row) {
  if (EntryPending == 1 && !PendingHere(editor, row)) {
    reinit(editor);
    return;
  }
  ColourLabel(editor, row.label, highlight);
  Activate(editor, row);
}

void LostFocusStep(Editor& editor, const EditorList& row) {
  if (EntryPending == 0) ColourLabel(editor, row.label, SystemButtonFace);
}

void reinit(Editor& editor) {
  const EditorField* row = editor.listIsActive ? nullptr : RowOfField(editor, ActiveField);
  if (row) {
    Control& control = ControlOf(editor, *row);
    ColourLabel(editor, row->label, highlight);
    if (editor.reinit) editor.reinit(editor, *row);
    SetFocus(control);
    SelectText(control, 0, static_cast<int>(control.text.size()));
  } else if (const EditorList* list = ListOfNumber(editor, ActiveField)) {
    ColourLabel(editor, list->label, highlight);
    SetFocus(ControlOf(editor, *list));
  }
}

void clrfocus(Editor& editor) {
  for (const EditorField& row : editor.fields) ColourLabel(editor, row.label, SystemButtonFace);
  for (const EditorList& row : editor.lists) ColourLabel(editor, row.label, SystemButtonFace);
}

void FocusField(Editor& editor, int number) {
  if (const EditorField* row = RowOfField(editor, number)) SetFocus(ControlOf(editor, *row));
}

// ---- redraw -------------------------------------------------------------------------------------

namespace {

void RedrawAll(Editor& editor, Asked asked) {
  if (!IsUp(editor.screen)) return;
  if (editor.compute) editor.compute(editor);
  for (const EditorField& row : editor.fields) RedrawField(editor, row, asked);
  for (const EditorValue& row : editor.shown)
    if (row.show) SetCaption(At(editor.screen, row.control), row.show());
  for (const EditorList& row : editor.lists) RedrawList(editor, row);
  for (const EditorPair& row : editor.pairs) RedrawPair(editor, row);
  for (const EditorButton& row : editor.buttons) RedrawButton(editor, row);
  RewriteCaptions(editor);
  if (editor.draw) editor.draw(editor);
}

}  // namespace

void Redraw(Editor& editor) { RedrawAll(editor, Asked::ByUser); }

void RedrawSparingEdits(Editor& editor) { RedrawAll(editor, Asked::ByLoop); }

void WriteField(Editor& editor, const EditorField& row, const std::string& text) {
  WrittenText(editor, row) = text;
  SetText(ControlOf(editor, row), text);
}

// ---- entry --------------------------------------------------------------------------------------

std::string RangeMessage(const std::string& rangeText) {
  return "Data Input Error\n\r" + rangeText;
}

void EntryHandler(Editor& editor, const EditorField& row) {
  if (EntryPending == 1) return;
  const std::string typed = ControlOf(editor, row).text;
  EntryText = Masked(row, typed);
  if (EntryText.empty() || EnterPressed == 0) return;
  EnterPressed = 0;
  if (row.claims && row.claims(editor, row, EntryText)) return;
  const double entry = LeadingNumber(EntryText);
  if (const auto objection = Objection(editor, row, entry))
    Refuse(editor, row, *objection);
  else
    Accept(editor, row, row.asTyped ? LeadingNumber(typed) : entry);
}

void PressEnter(Editor& editor, const EditorField& row) {
  editor.typed = EntryPending == 1 || ControlOf(editor, row).text != WrittenText(editor, row);
  EnterPressed = 1;
  EntryPending = 0;
  EntryHandler(editor, row);
  // An empty field leaves it set; the next text that the program writes must not count as entered.
  EnterPressed = 0;
}

void EnterText(Editor& editor, const EditorField& row, const std::string& text) {
  SetText(ControlOf(editor, row), text);
  Activate(editor, row);
  EntryPending = 1;
  PressEnter(editor, row);
}

bool OnlyConfirms(const Editor& editor, int calIndex) {
  return MonitorMode == OnflyLive && !editor.typed && WriteOnItsWay(calIndex);
}

void StoreOrPost(Editor& editor, const EditorField& row, double stored) {
  if (MonitorMode == OnflyLive && HasOnflyPath(row))
    Post(row, stored);
  else if (row.store)
    row.store(editor, row, stored);
  else if (row.calIndex != NoCalValue)
    CalValues[static_cast<std::size_t>(row.calIndex)] = static_cast<float>(stored);
}

// ---- coming and going ---------------------------------------------------------------------------

Editor* TopEditor() {
  const Screen* top = TopWorkScreen();
  for (Editor* editor : loadedEditors)
    if (&editor->screen == top) return editor;
  return nullptr;
}

namespace {

bool HoldForPendingEntry() {
  Editor* top = TopEditor();
  if (EntryPending == 0 || !top) return false;
  reinit(*top);
  return true;
}

}  // namespace

void EditorLoaded(Editor& editor) {
  EntryPending = 0;
  EnterPressed = 0;
  ActiveField = editor.fields.empty() ? 0 : editor.fields.front().number;
  editor.listIsActive = false;
  HelpScreen = editor.name;
  loadedEditors.push_back(&editor);
  RefreshActiveEditor = [] {
    if (Editor* top = TopEditor()) RedrawSparingEdits(*top);
  };
  HeldByPendingEntry = HoldForPendingEntry;
  Redraw(editor);
  if (editor.loaded) editor.loaded(editor);
}

void EditorUnloaded(Editor& editor) {
  std::erase(loadedEditors, &editor);
  editor.places.clear();
}

namespace {

// The button of the parent that opened the screen left, by its name or by its caption.
void FocusButton(Screen& screen, const std::string& button) {
  if (button.empty()) return;
  for (Control& control : screen.controls)
    if (control.name == button || (TakesFocus(control) && control.caption == button)) {
      SetFocus(control);
      return;
    }
}

}  // namespace

void RunBack(Editor& editor) {
  if (!IsUp(editor.screen)) return;
  if (EntryPending == 1) {
    reinit(editor);
    return;
  }
  if (editor.leave) editor.leave(editor);
  const BackTarget target = editor.backTo ? editor.backTo() : editor.back;
  UnloadScreen(editor.screen);
  OpenScreen(target.screen);
  if (Screen* parent = FindLoaded(target.screen)) FocusButton(*parent, target.button);
}

void LeaveFor(Editor& editor, const std::string& screen) {
  if (!ScreenRegistered(screen)) return;
  UnloadScreen(editor.screen);
  OpenScreen(screen);
}

void RegisterEditor(Editor& editor) {
  PrepareEditor(editor);
  RegisterScreen(editor.name, [&editor] { ShowScreen(editor.screen); });
}

void ResetEditCycle() {
  EntryPending = 0;
  EnterPressed = 0;
  EntryText.clear();
  ActiveField = 0;
  HelpScreen.clear();
}
