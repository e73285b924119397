// The analog monitor: picture, keys, commands and showing.
#include "monitors/monitor1.h"

#include <algorithm>
#include <array>
#include <string>

#include "core/globalstate.h"
#include "core/numbers.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "monitors/dials.h"
#include "monitors/instruments.h"
#include "monitors/monitor1entry.h"
#include "monitors/sensorstatus.h"
#include "platform/frame.h"
#include "platform/system.h"
#include "shell/calscreen.h"
#include "shell/commands.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"

namespace {

template <LiveField field>
double Plain() {
  return Live[field];
}
template <LiveField field>
double TimesHundred() {
  return Live[field] * 100;
}

constexpr std::array<LiveFigure, 11> figures = {{
    {"Adv", "ADVANCE", "DEG", "##.0", Plain<LiveField::Adv>},
    {"Gama", "GAMA", "", "###0%", Plain<LiveField::Gama>, GamaWords},
    {"Knock", "KNOCK", "%", "##0", Plain<LiveField::Knock>},
    {"Battery", "BATTERY", "V", "##.0", Plain<LiveField::Bat>},
    {"EgoCr", "EGO CR", "%", "##0", TimesHundred<LiveField::Cr>, LoopWords},
    {"Gpo", "GPO", "%", "###0", Plain<LiveField::Gpo>},
    {"FuelFlow", "FUEL FLOW =", "", "##0.00", ShownFuelFlow, FuelFlowWords, FuelFlowUnit},
    {"AfrActual", "ACTUAL AFR", "", "###.00", Plain<LiveField::AfrActual>},
    {"AfrDesired", "DESIRED AFR", "", "###.00", Plain<LiveField::AfrDesired>},
    {"InjOn", "INJECTOR TIME ON", "Ms", "##.00", [] { return LastFramePair().pwOnMs; }},
    {"InjOff", "OFF", "Ms", "##.00", [] { return LastFramePair().pwOffMs; }},
}};

constexpr const char* helpLines[] = {
    "ALT + 1 = Set Advance to Zero",
    "ALT + 2 = Clear Zero Advance",
    "ALT + 3 = Add Fixed Advance or Retard",
    "ALT + 4 = Add Gama Offset",
    "ALT + 5 = Change TOG",
    "ALT + 6 = Change Injector Offset",
    "ALT + 7 = Change TPS Blend Offset",
    "ALT + 8 = Change GPO Offset",
    "ALT + 9 = Change AFR Offset (Up and Down Arrow Keys, Enter sends, Esc clears)",
    "C = Toggle between Open Loop and Close Loop",
    "E = Leave for the Edit Screens",
    "F = Toggle Fuel Flow Between LPH and GPH",
    "K = Kill the Engine",
    "T = Toggle between Celsius and Fahrenheit temperature scales.",
    "Esc = Leave the Monitor",
    "F1 = This Help Screen",
};

constexpr int failedLines = 6;
constexpr int disabledLines = 5;
constexpr int intermitLines = 7;
struct StatusColumn {
  const char* name;
  const char* title;
  int lines;
};
constexpr StatusColumn statusColumns[] = {
    {"Failed", "FAILED", failedLines},
    {"Disabled", "DISABLED", disabledLines},
    {"Intermit", "INTERMIT", intermitLines},
};

struct Lamp {
  const char* name;
  const char* caption;
};
constexpr Lamp lamps[] = {
    {"OverRev", "OverRev"},
    {"SensorFailed", "Sensor Failed"},
    {"IntermittentFail", "Intermittent Fail"},
};

constexpr Colour lampRed = Rgb(220, 40, 40);
constexpr Colour lampGreen = Rgb(30, 150, 60);
constexpr Colour buttonFace = Rgb(225, 228, 235);

// As the screen was built.
MonitorColours colours;
InstrumentFaces faces;
bool leaveForEditors = false;

// ---- picture ------------------------------------------------------------------------------------

Control Text(std::string name, std::string caption, Place place) {
  return {.name = std::move(name),
          .caption = std::move(caption),
          .place = std::move(place),
          .backColour = colours.back,
          .foreColour = colours.caption};
}

void AddBox(Screen& screen, const char* name, ControlKind kind, Place place,
            const char* caption = "") {
  Add(screen, {.name = name,
               .kind = kind,
               .caption = caption,
               .place = std::move(place),
               .foreColour = colours.caption});
}

void AddCanvas(Screen& screen, const char* name, Place place, int width, int height,
               const char* spoken) {
  Add(screen, {.name = name,
               .kind = ControlKind::Canvas,
               .place = std::move(place),
               .minWidth = width,
               .minHeight = height,
               .backColour = colours.back,
               .accessibleName = spoken});
}

void AddHead(Screen& screen) {
  AddBox(screen, "Head", ControlKind::Row, {});
  Add(screen, Text("BinCaption", "Loaded ZEM \"BIN\" File", {.in = "Head"}));
  Control name = Text("BinName", "", {.in = "Head"});
  name.widthChars = 22;
  name.bold = true;
  name.foreColour = colours.figure;
  name.framed = true;
  Add(screen, name);
  Add(screen, Text("PromCaption", "Halvane Prom Version", {.in = "Head"}));
  name.name = "PromVersion";
  name.widthChars = 10;
  Add(screen, name);
  Add(screen, {.name = "HeadGap", .kind = ControlKind::Spacer, .place = {.in = "Head"}});
  Control none = Text("NoBin", "NO BIN FILE OPEN", {.in = "Head"});
  none.bold = true;
  none.foreColour = colours.warning;
  Add(screen, none);
}

void AddFigure(Screen& screen, const LiveFigure& figure, int index) {
  constexpr int rows = 3;
  const int row = index % rows;
  const int column = index / rows * 3;
  const std::string name(figure.control);
  Control caption = Text(name + "Caption", std::string(figure.caption),
                         {.in = "Figures", .row = row, .column = column, .align = Align::Fill});
  caption.textAlign = Align::Right;
  Add(screen, caption);
  Control value =
      Text(name, "", {.in = "Figures", .row = row, .column = column + 1, .align = Align::Fill});
  value.widthChars = 7;
  value.textAlign = Align::Right;
  value.fontScale = 1.6;
  value.bold = true;
  value.foreColour = colours.figure;
  value.accessibleName = std::string(figure.caption);
  Add(screen, value);
  Control unit = Text(name + "Unit", FigureUnit(figure),
                      {.in = "Figures", .row = row, .column = column + 2, .align = Align::Fill});
  unit.widthChars = 4;
  unit.textAlign = Align::Left;
  Add(screen, unit);
}

std::string LineName(const StatusColumn& column, int line) {
  return column.name + std::to_string(line);
}

void AddSensorStatus(Screen& screen) {
  AddBox(screen, "Sensors", ControlKind::Group, {.in = "Lower"}, "Sensors Status");
  AddBox(screen, "SensorGrid", ControlKind::Grid, {.in = "Sensors"});
  int at = 0;
  for (const StatusColumn& column : statusColumns) {
    Control title = Text(std::string(column.name) + "Title", column.title,
                         {.in = "SensorGrid", .row = 0, .column = at, .align = Align::Fill});
    title.bold = true;
    title.textAlign = Align::Centre;
    title.widthChars = 10;
    Add(screen, title);
    for (int line = 0; line < column.lines; ++line) {
      Control text =
          Text(LineName(column, line), "",
               {.in = "SensorGrid", .row = line + 1, .column = at, .align = Align::Fill});
      text.widthChars = 10;
      text.textAlign = Align::Centre;
      text.foreColour = colours.figure;
      Add(screen, text);
    }
    ++at;
  }
}

void AddLamps(Screen& screen) {
  AddBox(screen, "Lamps", ControlKind::Column, {.in = "Lower"});
  for (const Lamp& lamp : lamps)
    Add(screen, {.name = lamp.name,
                 .caption = lamp.caption,
                 .place = {.in = "Lamps", .align = Align::Fill},
                 .widthChars = 16,
                 .textAlign = Align::Centre,
                 .bold = true,
                 .backColour = lampGreen,
                 .foreColour = White,
                 .framed = true});
  Add(screen, {.name = "LampGap", .kind = ControlKind::Spacer, .place = {.in = "Lamps"}});
}

void AddFoot(Screen& screen) {
  AddBox(screen, "Foot", ControlKind::Row, {});
  Add(screen, Text("EnterLine", "Must Press Enter to Change Values", {.in = "Foot"}));
  Control status = Text("EntryStatus", "ACTIVE", {.in = "Foot"});
  status.widthChars = 12;
  status.foreColour = White;
  status.bold = true;
  status.textAlign = Align::Centre;
  Add(screen, status);
  Add(screen, {.name = "FootGap", .kind = ControlKind::Spacer, .place = {.in = "Foot"}});
  Add(screen, Text("HelpLine", "Press F1 For Help", {.in = "Foot"}));
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "<< BACK",
               .place = {.in = "Foot"},
               .backColour = buttonFace,
               .foreColour = Black});
}

// A monitor that has to be scrolled shows nothing in time: where the desktop's font is too large
// for its display, the texts beside the dials become smaller.
double TextScale() {
  constexpr double linesHigh = 26, restHigh = 310, digitsWide = 68, gapsWide = 110;
  constexpr double smallest = 0.55;
  // Displays of 1024 to 1280 are 4:3; wider ones, and those that a desktop enlarges, 16:9.
  constexpr double first = 1000, last = 1280;
  const double width = MaximisedFrameWidth();
  const double height = width * (width >= first && width < last ? 3.0 / 4 : 9.0 / 16);
  const TextSize digit = MeasureText("0");
  const double caption = MeasureText("9. CHANGE AFR OFFSET (UP/ DOWN Arrow Keys) =").width;
  const double wide = (width - gapsWide) / (caption + digitsWide * digit.width);
  const double high = (height - restHigh) / (linesHigh * digit.height);
  return std::clamp(std::min(wide, high), smallest, 1.0);
}

void Build(Screen& screen) {
  colours = ColoursOfSetting();
  screen.backColour = colours.back;
  AddHead(screen);
  AddCanvas(screen, "Dials", {.stretch = 1}, 480, 150,
            "Dials of ERPM, CLT, MAT and TPS, bars of MAP, EGO and injector duty cycle");
  AddBox(screen, "Figures", ControlKind::Grid, {});
  for (std::size_t i = 0; i < figures.size(); ++i)
    AddFigure(screen, figures[i], static_cast<int>(i));
  AddBox(screen, "Lower", ControlKind::Row, {});
  AddBox(screen, "Offsets", ControlKind::Grid, {.in = "Lower"});
  AddOffsetControls(screen, "Offsets", colours);
  Add(screen, {.name = "LowerGap", .kind = ControlKind::Spacer, .place = {.in = "Lower"}});
  AddSensorStatus(screen);
  AddLamps(screen);
  AddFoot(screen);
  const double scale = TextScale();
  for (Control& control : screen.controls) control.fontScale *= scale;
}

void BuildHelp(Screen& screen) {
  int number = 1;
  for (const char* line : helpLines)
    Add(screen, {.name = "Label" + std::to_string(number++), .caption = line});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "<< BACK",
               .place = {.align = Align::Right}});
}

// ---- showing ------------------------------------------------------------------------------------

void ShowFaces() {
  faces = {.revLimitRpm = CalValues[4],
           .fahrenheit = ImperialUnits,
           .temperatureUnit = TemperatureUnit(),
           .loadUnit = LoadUnit(),
           .loadMaximum = MapBarMaximum(LoadMode, ImperialUnits, MapBar)};
  DrawFaces(At(Monitor1, "Dials"), faces, colours);
}

InstrumentReadings Readings() {
  InstrumentReadings readings;
  readings.rpm = LastFramePair().erpm;
  readings.rpmText = Format(readings.rpm, "#####");
  readings.cltStep = TemperatureStep(ShownClt(), ImperialUnits);
  readings.matStep = TemperatureStep(ShownMat(), ImperialUnits);
  readings.tpsStep = TpsStep(Live[LiveField::Tps]);
  readings.cltText = Format(ShownClt(), "##0");
  readings.matText = Format(ShownMat(), "##0");
  readings.tpsText = Format(Live[LiveField::Tps], "#.00");
  readings.load = ShownLoad();
  readings.loadText = Format(readings.load, "###.0");
  readings.egoVolts = Live[LiveField::Ego];
  readings.egoText = Format(readings.egoVolts, "#.0");
  readings.dutyBar = DutyBarValue(Live.duty);
  readings.dutyText = Format(Live.duty * 100, "###.00");
  readings.dutyOver = Live.duty >= 1;
  return readings;
}

void ShowInstruments() { DrawReadings(At(Monitor1, "Dials"), faces, Readings(), colours); }

void ShowColumn(const StatusColumn& column, const SensorColumn& content) {
  for (int line = 0; line < column.lines; ++line)
    SetCaption(At(Monitor1, LineName(column, line)), content.lines[static_cast<std::size_t>(line)]);
}

void ShowLamp(const Lamp& lamp, bool red) {
  SetBackColour(At(Monitor1, lamp.name), red ? lampRed : lampGreen);
}

int Byte(int index) { return Live.frame[static_cast<std::size_t>(index)]; }

void ShowSensors() {
  constexpr int failedByte = 11, intermitByte = 16, defaultedByte = 21;
  const SensorColumn failed = FailedColumn(Byte(failedByte), Byte(defaultedByte));
  const SensorColumn intermit = IntermitColumn(Byte(intermitByte), LoadMode);
  ShowColumn(statusColumns[0], failed);
  ShowColumn(statusColumns[1], DisabledColumn(OptionFlags));
  ShowColumn(statusColumns[2], intermit);
  ShowLamp(lamps[0], LastFramePair().erpm > CalValues[4]);
  ShowLamp(lamps[1], failed.any);
  ShowLamp(lamps[2], intermit.any);
}

void ShowAll() {
  for (const LiveFigure& figure : figures) {
    SetCaption(At(Monitor1, figure.control), FigureText(figure));
    if (figure.unitNow)
      SetCaption(At(Monitor1, std::string(figure.control) + "Unit"), FigureUnit(figure));
  }
  ShowInstruments();
  ShowSensors();
  ShowOffsets(Monitor1);
}

// ---- the loop's routines ------------------------------------------------------------------------

void Prepare() {
  for (const LiveFigure& figure : figures) SetCaption(At(Monitor1, figure.control), "");
  BeginOffsets(Monitor1);
  ShowFaces();
}

void ShowLoadedProgram() {
  const auto program = QueryLoadedProgram();
  if (!Monitor1.loaded || Monitor1.closing) return;
  SetCaption(At(Monitor1, "BinName"),
             program ? program->binName + ".BIN" : "BIN File Not Available");
  SetCaption(At(Monitor1, "PromVersion"), program ? "HV" + program->promVersion : "");
}

void Opened() {
  ShowOpenedOffsets(Monitor1);
  ShowLoadedProgram();
}

AfterCommands SendCommands() {
  if (PendEgo == 1) {
    togego();
    if (LoopMustEnd()) return AfterCommands::RequestFrame;
    SetCaption(At(Monitor1, "EgoCr"), FigureText(figures[4]));
  }
  SendPendingOffsets();
  if (!LoopMustEnd()) SetVisible(At(Monitor1, "NoBin"), CurrentBinPath.empty());
  return AfterCommands::RequestFrame;
}

void Decoded() {
  constexpr int loadByte = 3;
  if (LoadBeeps(LoadMode, Byte(loadByte))) Beep();
}

void SessionIsOver(SessionOver why) {
  UnloadScreen(MonitorInputError);
  UnloadScreen(Monitor1Help);
  const bool toEditors = leaveForEditors && why == SessionOver::Left;
  leaveForEditors = false;
  if (why == SessionOver::ProgramEnds) return;
  if (!toEditors)
    ReturnToMainMenu();
  else if (CurrentBinPath.empty())
    EditCalibration();
  else
    ShowCalibrationScreen();
}

constexpr LiveMonitor monitor = {
    .screen = &Monitor1,
    .mode = 1,
    .frameWait = WaitForFrame,
    .modeLine = "                Brantwell Engine Controls         MONITOR MODE",
    .refused = [] { ReturnToMainMenu(); },
    .prepare = Prepare,
    .opened = Opened,
    .reopened = [] { ShowOpenedOffsets(Monitor1); },
    .send = SendCommands,
    .takesFrames = [] { return !FieldEditing; },
    .decoded = Decoded,
    .show = ShowAll,
    .over = SessionIsOver,
};

// ---- keys ---------------------------------------------------------------------------------------

void ToggleUnits() {
  ImperialUnits = !ImperialUnits;
  ShowFaces();
  ShowLiveNow();
}

void ToggleFuelUnit() {
  FuelInLitres = !FuelInLitres;
  ShowLiveNow();
}

struct KeyRow {
  int key;
  void (*run)();
};
constexpr KeyRow keys[] = {
    {KeyEscape, StopLive},
    {'C', ToggleLoopControl},
    {'E',
     [] {
       leaveForEditors = true;
       StopLive();
     }},
    {'F', ToggleFuelUnit},
    {'K', AskToKillEngine},
    {'T', ToggleUnits},
    {KeyF1, [] { ShowScreen(Monitor1Help); }},
};

void OnKey(Screen& screen, KeyEvent& event) {
  if (event.ctrl || event.alt) return;
  if (OffsetKeyDown(screen, event)) {
    event.handled = true;
    return;
  }
  for (const KeyRow& row : keys) {
    if (row.key != event.key) continue;
    event.handled = true;
    row.run();
    return;
  }
}

void OnClick(Screen& screen, Control& control) {
  if (control.name == "Command1")
    StopLive();
  else
    OffsetClicked(screen, control);
}

void Unload(Screen&) {
  LiveScreenUnloaded();
  UnloadScreen(Monitor1Help);
  UnloadScreen(MonitorInputError);
}

void Resized(Screen&, Control&) {
  ShowFaces();
  ShowInstruments();
}

}  // namespace

Screen Monitor1{.name = "Monitor1",
                .title = "ENGINE MONITOR",
                .build = Build,
                .on = {.unload = Unload,
                       .closeBox = [](Screen&) { StopLive(); },
                       .keyDown = OnKey,
                       .keyPress = OffsetKeyPress,
                       .gotFocus = OffsetGotFocus,
                       .lostFocus = OffsetLostFocus,
                       .click = OnClick,
                       .resized = Resized},
                .cancelButton = "Command1",
                .defaultFocus = "Command1"};

Screen Monitor1Help{.name = "Monitor1Help",
                    .title = "Halvane Monitor Help Screen",
                    .placement = ScreenPlacement::Above,
                    .build = BuildHelp,
                    .on = {.click =
                               [](Screen& screen, Control& control) {
                                 if (control.name == "Command1") UnloadScreen(screen);
                               }},
                    .cancelButton = "Command1"};

std::span<const LiveFigure> Monitor1Figures() { return figures; }
std::span<const char* const> Monitor1HelpLines() { return helpLines; }

void RegisterMonitor1() {
  RegisterScreen("Monitor1", [] { RunLive(monitor); });
}
