// Entry of the analog monitor's run-time offsets.
#include "monitors/monitor1entry.h"

#include <algorithm>
#include <string>

#include "core/numbers.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "monitors/monitorkeys.h"
#include "platform/dialogs.h"

namespace {

constexpr const char* afrField = "Text9";
constexpr const char* afrCaption = "&9. CHANGE AFR OFFSET (UP/ DOWN Arrow Keys) =";
constexpr const char* zeroOption = "Option1";
constexpr const char* clearOption = "Option2";
constexpr const char* backButton = "Command1";
constexpr const char* statusLabel = "EntryStatus";

const std::array<OffsetField, 6> fields = {{
    {"Text3", "&3. ADD FIXED ADV/RTD (-10 to 10 Deg) =", "#0", -10, 10, "  (-10 to 10 Degrees)", "",
     OnAdvance, 1, PendAdv},
    {"Text4", "&4. ADD GAMA OFFSET(-40% to 40% Gama) =", "", -40, 40, "  (-40% to 40% Gama)",
     "Whole Numbers Only", OnGama, 100, PendGama},
    {"Text5", "&5. CHANGE TOG ( 3 to 30 ms) =", "##.00", 3, 30, "  (3 to 30 ms)", "", OnTog, 1,
     PendTog},
    {"Text6", "&6. CHANGE INJ. OFFSET ( -15.875 to 15.875 ms) =", "##.00", -15.875, 15.875,
     "  (-15.875 to 15.875 ms)", "", OnInjOffset, 1, PendInj},
    {"Text7", "&7. CHANGE TPS BLEND OFFSET (0 to 1.5 Volts) =", "#.00", 0, 1.5,
     "  (0 to 1.5 Volts)", "", OnTpsBlend, 1, PendTpsBlend},
    {"Text8", "&8. CHANGE GPO OFFSET ( -30% to +30%) =", "", -30, 30, "  (-30% to +30%)",
     "Enter Whole Numbers Only", OnGpo, 1, PendGpo},
}};

// Text of the field that has the focus, as it was before the entry.
std::string savedText;
std::string shownRefusal;
// OnAfr and PendAfr as they were before the entry. What the arrows step through meanwhile is not
// sent.
struct KeptAfr {
  double value = 0;
  int pending = 0;
};
KeptAfr keptAfr;
// Byte 22 has been shown in this session.
bool tpsBlendShown = false;
// The option that is in force. A session opens with zero advance cleared.
bool advanceIsZero = false;

const OffsetField* RowOf(const Control& control) {
  for (const OffsetField& row : fields)
    if (control.name == row.control) return &row;
  return nullptr;
}

bool IsOffsetField(const Control& control) { return RowOf(control) || control.name == afrField; }

std::string LabelOf(std::string_view control) { return std::string(control) + "Label"; }

void Mark(Screen& screen, const Control& control, bool marked) {
  Control& label = At(screen, LabelOf(control.name));
  SetBackColour(label, marked ? White : screen.backColour);
  SetForeColour(label, marked ? Black : At(screen, "EnterLine").foreColour);
}

void ShowStatus(Screen& screen) {
  constexpr Colour green = Rgb(30, 150, 60), amber = Rgb(200, 110, 0);
  Control& status = At(screen, statusLabel);
  SetCaption(status, FieldEditing ? "SUSPENDED" : "ACTIVE");
  SetBackColour(status, FieldEditing ? amber : green);
}

void Select(Control& control) { SelectText(control, 0, static_cast<int>(control.text.size())); }

void TakeBack(Control& control) {
  SetText(control, savedText);
  Select(control);
}

// The panel stays in front until it is answered; the loop goes on behind it.
void ShowRefusal(const OffsetField& row) {
  shownRefusal = row.refusal;
  ShowScreen(MonitorInputError);
}

void BuildRefusal(Screen& screen) {
  constexpr int titleDigits = 30;  // the title bar shows its whole text
  Add(screen, {.name = "Label1", .caption = "  Enter New Value"});
  Add(screen, {.name = "Label2", .caption = "    in the Range:"});
  Add(screen, {.name = "Label3", .caption = shownRefusal, .widthChars = titleDigits, .bold = true});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "OK",
               .place = {.align = Align::Centre}});
}

struct Entry {
  double value;
  std::string text;
};

// The number as the mask shows it is what is sent. Only where the end of a range has more digits
// than the mask, the mask would leave the range: then it stays as it was typed.
Entry EntryOf(const OffsetField& row, double typed) {
  const std::string text = *row.mask ? Format(typed, row.mask) : NumberText(typed);
  const double value = LeadingNumber(text);
  if (value < row.low || value > row.high) return {typed, NumberText(typed)};
  return {value, text};
}

void Accept(Screen& screen, Control& control, const OffsetField& row, const Entry& entry) {
  row.value = entry.value / row.scale;
  row.pending = 1;
  SetText(control, entry.text);
  savedText = entry.text;
  SetFocus(At(screen, backButton));
}

bool RefusedAsFraction(Screen& screen, Control& control, const OffsetField& row) {
  if (*row.mask || control.text.find('.') == std::string::npos) return false;
  const unsigned life = screen.life;
  MsgBox(std::string("  Data Input Error\n\r") + row.wholeText);
  if (IsUp(screen) && screen.life == life) TakeBack(control);
  return true;
}

// Enter in a field. An empty one is passed over; "-" and "." are not 0, and the clipboard can bring
// anything.
void TakeEntry(Screen& screen, Control& control, const OffsetField& row) {
  if (control.text.empty() || RefusedAsFraction(screen, control, row)) return;
  const double typed = LeadingNumber(control.text);
  if (IsNumeric(control.text) && typed >= row.low && typed <= row.high) {
    Accept(screen, control, row, EntryOf(row, typed));
    return;
  }
  TakeBack(control);
  ShowRefusal(row);
}

// ---- the AFR offset -----------------------------------------------------------------------------

std::uint8_t Raw(int byte) { return Live.frame[static_cast<std::size_t>(byte)]; }
constexpr int desiredByte = 18;
constexpr int baseByte = 19;

std::string AfrOffsetText() { return Format(AfrOffsetShown(Raw(desiredByte), AfrOffset), "##.00"); }

void ShowWishedAfr(Screen& screen) {
  const std::string text = Format(AfrOfRaw(OnAfr), "###.00");
  SetText(At(screen, afrField), text);
  SetCaption(At(screen, "AfrDesired"), text);
}

void StepAfr(Screen& screen, double by) {
  OnAfr = std::clamp(OnAfr + by, 0.0, 255.0);
  ShowWishedAfr(screen);
}

// What the unit aims at now is where the arrows begin; a wish that has not been sent yet stands.
void BeginAfrEntry() {
  if (PendAfr == 0 || AfrCleared)
    OnAfr = std::clamp(Raw(baseByte) - (AfrCleared ? 0 : AfrOffset), 0.0, 255.0);
  PendAfr = 0;
}

// The engine may be in another cell by the time that the command goes out: to clear is to have no
// offset there either.
void EndAfrEntry(bool cleared) {
  AfrCleared = cleared;
  if (cleared) OnAfr = Raw(baseByte);
  PendAfr = 1;
  keptAfr = {OnAfr, PendAfr};
}

}  // namespace

bool FieldEditing = false;

Screen MonitorInputError{.name = "MonitorInputError",
                         .title = "DATA INPUT ERROR",
                         .placement = ScreenPlacement::Dialog,
                         .build = BuildRefusal,
                         .on = {.click = CloseByButton},
                         .cancelButton = "Command1",
                         .defaultFocus = "Command1"};

namespace {

void SetAdvanceIsZero(Screen& screen, bool zero) {
  advanceIsZero = zero;
  SetChecked(At(screen, zero ? zeroOption : clearOption), true);
}

// A field in which an entry has begun keeps what was typed; leaving it shows the new value.
void ShowUnlessEdited(Screen& screen, std::string_view field, const std::string& text) {
  Control& control = At(screen, field);
  if (FieldEditing && FocusedControl(screen) == &control)
    savedText = text;
  else
    SetText(control, text);
}

// So does one whose entry has not been sent yet.
void ShowUnlessPending(Screen& screen, const char* field, const std::string& text) {
  if (const OffsetField* row = RowOf(At(screen, field)); row->pending == 0)
    ShowUnlessEdited(screen, field, text);
}

void AddField(Screen& screen, const char* container, int row, const char* control,
              const char* caption, const MonitorColours& colours) {
  Add(screen, {.name = LabelOf(control),
               .caption = caption,
               .place = {.in = container, .row = row, .column = 0, .align = Align::Fill},
               .labelFor = control,
               .textAlign = Align::Right,
               .backColour = colours.back,
               .foreColour = colours.caption});
  Add(screen, {.name = control,
               .kind = ControlKind::TextField,
               .place = {.in = container, .row = row, .column = 1},
               .widthChars = 8,
               .textAlign = Align::Right,
               .backColour = White,
               .foreColour = Black});
}

constexpr const char* optionsRow = "Options";

void AddOption(Screen& screen, const char* name, const char* caption,
               const MonitorColours& colours) {
  Add(screen, {.name = name,
               .kind = ControlKind::RadioButton,
               .caption = caption,
               .place = {.in = optionsRow},
               .foreColour = colours.caption});
}

}  // namespace

int AddOffsetControls(Screen& screen, const char* container, const MonitorColours& colours) {
  Add(screen, {.name = optionsRow,
               .kind = ControlKind::Row,
               .place = {.in = container, .row = 0, .column = 0, .columnSpan = 2}});
  AddOption(screen, zeroOption, "&1. SET ADVANCE TO ZERO", colours);
  AddOption(screen, clearOption, "&2. CLEAR ZERO ADVANCE", colours);
  int line = 1;
  for (const OffsetField& row : fields)
    AddField(screen, container, line++, row.control, row.caption, colours);
  AddField(screen, container, line++, afrField, afrCaption, colours);
  return line;
}

void BeginOffsets(Screen& screen) {
  keptAfr = {OnAfr, PendAfr};
  SetFocus(At(screen, backButton));
  FieldEditing = false;
  tpsBlendShown = false;
  SetAdvanceIsZero(screen, false);
  for (const OffsetField& row : fields) {
    SetText(At(screen, row.control), "0");
    Mark(screen, At(screen, row.control), false);
  }
  SetText(At(screen, afrField), "");
  Mark(screen, At(screen, afrField), false);
  ShowStatus(screen);
}

void ShowOpenedOffsets(Screen& screen) {
  SetAdvanceIsZero(screen, PendZeroAdv == 1);
  ShowUnlessPending(screen, "Text3", NumberText(OnAdvance));
  ShowUnlessPending(screen, "Text4", NumberText(RoundEven(LastGama * 100)));
  ShowUnlessPending(screen, "Text6", Format(InjectorOffset, "##.000"));
  ShowUnlessPending(screen, "Text8", NumberText(OnGpo));
}

void ShowOffsets(Screen& screen) {
  if (FieldEditing) {
    const Control* focus = FocusedControl(screen);
    if (focus && focus->name == afrField) ShowWishedAfr(screen);
    return;
  }
  if (!PendTog) SetText(At(screen, "Text5"), Format(Live[LiveField::Tog], "##.00"));
  if ((TogChanged == 0 || !tpsBlendShown) && !PendTpsBlend) {
    SetText(At(screen, "Text7"), Format(Live[LiveField::TpsBlend], "#.00"));
    tpsBlendShown = true;
  }
  if (!PendInj) SetText(At(screen, "Text6"), Format(OnInjOffset, "##.000"));
  SetText(At(screen, afrField), AfrOffsetText());
}

// Before the first frame nobody knows where the arrows of the AFR field begin.
void OffsetGotFocus(Screen& screen, Control& control) {
  const bool tooSoon = control.name == afrField && !Live.decoded;
  FieldEditing = IsOffsetField(control) && !tooSoon;
  ShowStatus(screen);
  savedText = control.text;
  keptAfr = {OnAfr, PendAfr};
  if (tooSoon) SetFocus(At(screen, backButton));
  if (!FieldEditing) return;
  Mark(screen, control, true);
  if (control.name == afrField) BeginAfrEntry();
  Select(control);
}

// An entry that Enter has not confirmed does not stay.
void OffsetLostFocus(Screen& screen, Control& control) {
  if (!IsOffsetField(control)) return;
  SetText(control, savedText);
  if (control.name == afrField) {
    OnAfr = keptAfr.value;
    PendAfr = keptAfr.pending;
  }
  Mark(screen, control, false);
}

// Of the two options the one that is not the current state, once chosen, becomes current. The other
// may not have been sent yet: it goes out no more.
void OffsetClicked(Screen&, Control& control) {
  const bool zero = control.name == zeroOption;
  if ((!zero && control.name != clearOption) || zero == advanceIsZero) return;
  advanceIsZero = zero;
  PendZeroAdv = zero;
  PendClearZero = !zero;
}

void OffsetKeyPress(Screen& screen, Control& control, KeyPress& press) {
  if (control.name == afrField) {
    press.character = 0;
    return;
  }
  const OffsetField* row = RowOf(control);
  if (!row) return;
  if (press.character == KeyEnter) {
    press.character = 0;
    TakeEntry(screen, control, *row);
    return;
  }
  constexpr std::string_view allowed = "0123456789.-+\b";
  if (allowed.find(static_cast<char>(press.character)) == std::string_view::npos)
    press.character = 0;
}

bool OffsetKeyDown(Screen& screen, KeyEvent& event) {
  Control* focus = FocusedControl(screen);
  if (!focus || focus->name != afrField || event.ctrl || event.alt) return false;
  switch (event.key) {
    case KeyUp:
      StepAfr(screen, -1);
      return true;
    case KeyDown:
      StepAfr(screen, 1);
      return true;
    case KeyEscape:
    case KeyEnter:
      EndAfrEntry(event.key == KeyEscape);
      break;
    default:
      return false;
  }
  SetFocus(At(screen, backButton));
  return true;
}
