// The analog monitor: picture, keys, commands and showing.
#include "monitors/monitor1.h"

#include <array>
#include <string>
#include <vector>

#include "core/globalstate.h"
#include "core/numbers.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "monitors/dials.h"
#include "monitors/instruments.h"
#include "monitors/monitor1entry.h"
#include "monitors/monitor1picture.h"
#include "monitors/monitorkeys.h"
#include "monitors/sensorstatus.h"
#include "platform/system.h"
#include "shell/calscreen.h"
#include "shell/commands.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"

namespace {

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

// As the screen was built.
MonitorColours colours;
InstrumentFaces faces;
bool leaveForEditors = false;
// While the screen is loaded.
std::vector<FigureLabels> labels;

// ---- picture ------------------------------------------------------------------------------------

void Build(Screen& screen) {
  colours = ColoursOfSetting();
  BuildMonitor1(screen, figures, colours);
}

// ---- showing ------------------------------------------------------------------------------------

InstrumentFaces FacesNow() {
  return {.revLimitRpm = CalValues[4],
          .fahrenheit = ImperialUnits,
          .temperatureUnit = TemperatureUnit(),
          .loadUnit = LoadUnit(),
          .loadMaximum = MapBarMaximum(LoadMode, ImperialUnits, MapBar)};
}

void ShowFaces() {
  faces = FacesNow();
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
  readings.old = LiveFiguresOld();
  return readings;
}

// The faces follow what they depend on: another calibration may have been opened.
void ShowInstruments() {
  if (FacesNow() != faces) ShowFaces();
  DrawReadings(At(Monitor1, "Dials"), faces, Readings(), colours);
}

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

void ShowAge() {
  ColourFigures(labels, LiveFiguresOld() ? colours.muted : colours.figure);
  if (Live.decoded) ShowInstruments();
}

void ShowAll() {
  ShowFigures(labels);
  ShowInstruments();
  ShowSensors();
  ShowOffsets(Monitor1);
}

// ---- the loop's routines ------------------------------------------------------------------------

void ClearSensors() {
  for (const StatusColumn& column : statusColumns)
    for (int line = 0; line < column.lines; ++line)
      SetCaption(At(Monitor1, LineName(column, line)), "");
  for (const Lamp& lamp : lamps) ShowLamp(lamp, false);
}

void ShowNoBin() { SetVisible(At(Monitor1, "NoBin"), CurrentBinPath.empty()); }

void Prepare() {
  ClearFigures(labels);
  for (const char* line : {"BinName", "PromVersion"}) SetCaption(At(Monitor1, line), "");
  ShowAge();
  ClearSensors();
  ShowNoBin();
  BeginOffsets(Monitor1);
  ShowFaces();
}

void ShowLoadedProgram() {
  const auto program = QueryLoadedProgram();
  if (!IsUp(Monitor1)) return;
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
  if (!LoopMustEnd()) ShowNoBin();
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
    .mode = Monitor1Live,
    .frameWait = WaitForFrame,
    .modeLine = "                Brantwell Engine Controls         MONITOR MODE",
    .refused = [] { ReturnToMainMenu(); },
    .prepare = Prepare,
    .opened = Opened,
    .reopened = [] { ShowOpenedOffsets(Monitor1); },
    .send = SendCommands,
    .takesFrames = [] { return !FieldEditing; },
    .failed = [] { UnloadScreen(MonitorInputError); },
    .decoded = Decoded,
    .show = ShowAll,
    .aged = ShowAge,
    .over = SessionIsOver,
};

// ---- keys ---------------------------------------------------------------------------------------

void ToggleUnits() {
  ImperialUnits = !ImperialUnits;
  ShowFaces();
  ShowLiveNow();
}

constexpr MonitorKey keys[] = {
    {KeyEscape, StopLive},
    {'C', ToggleLoopControl},
    {'E',
     [] {
       leaveForEditors = true;
       StopLive();
     }},
    {'F', [] { ToggleShown(FuelInLitres); }},
    {'K', AskToKillEngine},
    {'T', ToggleUnits},
    {KeyF1, [] { ShowScreen(Monitor1Help); }},
};

void OnKey(Screen& screen, KeyEvent& event) {
  if (OffsetKeyDown(screen, event))
    event.handled = true;
  else
    RunMonitorKey(keys, event);
}

void OnClick(Screen& screen, Control& control) {
  if (control.name == "Command1")
    StopLive();
  else
    OffsetClicked(screen, control);
}

void Unload(Screen&) {
  labels.clear();
  LiveScreenUnloaded();
  UnloadScreen(Monitor1Help);
  UnloadScreen(MonitorInputError);
}

void Resized(Screen&, Control&) {
  ShowFaces();
  if (Live.decoded) ShowInstruments();
}

}  // namespace

Screen Monitor1{.name = "Monitor1",
                .title = "ENGINE MONITOR",
                .build = Build,
                .on = {.load = [](Screen& screen) { labels = LabelsOf(screen, figures); },
                       .unload = Unload,
                       .closeBox = [](Screen&) { StopLive(); },
                       .keyDown = OnKey,
                       .keyPress = OffsetKeyPress,
                       .gotFocus = OffsetGotFocus,
                       .lostFocus = OffsetLostFocus,
                       .click = OnClick,
                       .resized = Resized},
                .cancelButton = "Command1",
                .defaultFocus = "Command1"};

Screen Monitor1Help = MonitorHelp("Monitor1Help", "Halvane Monitor Help Screen", helpLines);

std::span<const LiveFigure> Monitor1Figures() { return figures; }
std::span<const char* const> Monitor1HelpLines() { return helpLines; }

void RegisterMonitor1() {
  RegisterScreen("Monitor1", [] { RunLive(monitor); });
}
