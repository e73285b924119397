// The digital monitor's figures, keys and commands.
#include "monitors/monitor3.h"

#include <array>
#include <string>
#include <vector>

#include "core/globalstate.h"
#include "link/comm.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "monitors/monitorkeys.h"
#include "platform/fit.h"
#include "shell/calscreen.h"
#include "shell/navigation.h"

namespace {

// Three blocks of six, beside each other, so that the window stays low above an editor.
constexpr int rowsOfBlock = 6;
constexpr int columnsOfFigure = 3;
constexpr FigureStyle figureStyle{.scale = 1.3, .digits = 7, .unitDigits = 6, .framed = true};

double DutyPercent() { return Live.duty * 100; }

constexpr std::array<LiveFigure, 18> figures = {{
    {"Erpm", "ERPM", "", "####0", [] { return LastFramePair().erpm; }},
    {"Adv", "ADV", "DEGS", "##.0", Plain<LiveField::Adv>},
    {"Map", "MAP", "", "###.0", ShownLoad, nullptr, LoadUnit},
    {"Clt", "CLT", "", "##0", ShownClt, nullptr, TemperatureUnit},
    {"Mat", "MAT", "", "##0", ShownMat, nullptr, TemperatureUnit},
    {"Tps", "TPS", "V.", "#.00", Plain<LiveField::Tps>},
    {"Ego", "EGO", "V.", "#.0", Plain<LiveField::Ego>},
    {"EgoCr", "EGO CR", "", "##0", TimesHundred<LiveField::Cr>, LoopWords},
    {"Gpo", "GPO", "", "###0", Plain<LiveField::Gpo>},
    {"Bat", "BAT", "V.", "##.0", Plain<LiveField::Bat>},
    {"Duty", "INJ DUTY", "", "###.00", DutyPercent},
    {"Gama", "GAMA", "", "###0", TimesHundred<LiveField::Gama>, GamaWords},
    {"Knock", "KNOCK", "", "##0", Plain<LiveField::Knock>},
    {"FuelFlow", "FUEL FLOW", "", "##0.00", ShownFuelFlow, FuelFlowWords, FuelFlowUnit},
    {"AfrActual", "AFR", "ACTL", "###.00", Plain<LiveField::AfrActual>},
    {"AfrDesired", "AFR", "DES", "###.00", Plain<LiveField::AfrDesired>},
    {"InjOn", "INJ", "ON", "##.00", [] { return Live.pwOnMs; }},
    {"InjOff", "INJ", "OFF", "##.00", [] { return Live.pwOffMs; }},
}};

constexpr std::array helpLines = {
    "C = Toggle between Open Loop and Close Loop",
    "F = Toggle Fuel Flow Between LPH and GPH",
    "T = Toggle between Celsius and Fahrenheit temperature scales.",
    "K = Kill the Engine",
};

// As the screen was built.
MonitorColours colours;

// While the screen is loaded.
std::vector<FigureLabels> labels;

// ---- picture ------------------------------------------------------------------------------------

void Build(Screen& screen) {
  colours = ColoursOfSetting();
  screen.backColour = colours.back;
  FitTexts(screen, {.smallest = 0.65, .largest = 1, .widthShare = 0.64});  // the fields beside it
  Add(screen, {.name = "Figures", .kind = ControlKind::Grid, .backColour = colours.back});
  int at = 0;
  for (const LiveFigure& figure : figures) {
    AddFigure(screen, figure, "Figures", at % rowsOfBlock, at / rowsOfBlock * columnsOfFigure,
              figureStyle, colours);
    ++at;
  }
  Add(screen, {.name = "Foot", .kind = ControlKind::Row, .backColour = colours.back});
  Add(screen, {.name = "Status",
               .place = {.in = "Foot"},
               .widthChars = 16,
               .textAlign = Align::Centre,
               .bold = true,
               .framed = true});
  Add(screen, {.name = "FootGap", .kind = ControlKind::Spacer, .place = {.in = "Foot"}});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "EXIT",
               .place = {.in = "Foot"},
               .backColour = Rgb(225, 225, 225),
               .foreColour = Black});
}

void ShowStatus(const char* text, Colour colour) {
  Control& status = At(Monitor3, "Status");
  SetCaption(status, text);
  SetBackColour(status, colour);
}

void ShowAll() {
  ShowFigures(labels);
  SetForeColour(At(Monitor3, "DutyCaption"),
                DutyPercent() > 100 ? colours.warning : colours.caption);
}

void ShowAge() { ColourFigures(labels, LiveFiguresOld() ? colours.muted : colours.figure); }

// ---- the loop's routines ------------------------------------------------------------------------

void TransferPosted() {
  if (!(OnflyByteCount > 0)) return;
  ShowStatus("ONFLY ACTIVE", Red);
  TransferPostedWrite();
}

AfterCommands SendCommands() {
  if (PendEgo == 1) {
    togego();
    return AfterCommands::BeginPassAgain;
  }
  SendPendingOffsets();
  if (CommError == 0 && !LoopMustEnd()) TransferPosted();
  return AfterCommands::RequestFrame;
}

void Prepare() {
  ClearFigures(labels);
  ShowAge();
  ShowStatus("ONFLY OFF", SystemButtonFace);
}

// Whoever unloaded it, or cancelled, goes on where the screens stand; so does who has typed a value
// and not entered it.
void SessionIsOver(SessionOver why) {
  if (why == SessionOver::Left && !HeldByPendingEntry()) ShowCalibrationScreen();
  if (why != SessionOver::ProgramEnds) ReturnToMainMenu();
}

constexpr LiveMonitor monitor = {
    .screen = &Monitor3,
    .mode = OnflyLive,
    .frameWait = WaitForOnflyFrame,
    .modeLine = "                Brantwell Engine Controls         ONFLY MODE",
    .leavesKeysToEditor = true,
    .refused = [] { MonitorMode = NothingLive; },
    .prepare = Prepare,
    .send = SendCommands,
    .decoded = [] { ShowStatus("ONFLY IDLE", Green); },
    .show = ShowAll,
    .aged = ShowAge,
    .over = SessionIsOver,
};

// ---- keys ---------------------------------------------------------------------------------------

constexpr MonitorKey keys[] = {
    {KeyEnter, [] { Monitor3KeyCode = KeyEnter; }}, {KeyEscape, StopLive},
    {'T', [] { ToggleShown(ImperialUnits); }},      {'C', ToggleLoopControl},
    {'F', [] { ToggleShown(FuelInLitres); }},       {'K', AskToKillEngine},
    {KeyF1, [] { ShowScreen(Monitor3Help); }},
};

void Unload(Screen&) {
  labels.clear();
  LiveScreenUnloaded();
  UnloadScreen(Monitor3Help);
}

}  // namespace

int Monitor3KeyCode = 0;

Screen Monitor3{.name = "Monitor3",
                .title = "Click Form to Activate Keys    \"F1\" For Help",
                .placement = ScreenPlacement::Above,
                .build = Build,
                .on = {.load = [](Screen& screen) { labels = LabelsOf(screen, figures); },
                       .unload = Unload,
                       .closeBox = [](Screen&) { StopLive(); },
                       .keyDown = [](Screen&, KeyEvent& event) { RunMonitorKey(keys, event); },
                       .click =
                           [](Screen&, Control& control) {
                             if (control.name == "Command1") StopLive();
                           }},
                .cancelButton = "Command1",
                .defaultFocus = "Command1"};

Screen Monitor3Help = MonitorHelp("Monitor3Help", "Halvane2 Fast Help", helpLines);

std::span<const LiveFigure> Monitor3Figures() { return figures; }

void RegisterMonitor3() {
  RegisterScreen("Monitor3", [] { RunLive(monitor); });
}
