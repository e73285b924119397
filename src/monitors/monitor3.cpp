// The digital monitor's figures, keys and commands.
#include "monitors/monitor3.h"

#include <array>
#include <string>

#include "core/globalstate.h"
#include "link/comm.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "shell/calscreen.h"
#include "shell/navigation.h"

namespace {

// Three blocks of six, beside each other, so that the window stays low above an editor.
constexpr int rowsOfBlock = 6;
constexpr int unitChars = 6;

template <LiveField field>
double Plain() {
  return Live[field];
}
template <LiveField field>
double TimesHundred() {
  return Live[field] * 100;
}
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

std::string Named(std::string_view control, std::string_view part) {
  return std::string(control) + std::string(part);
}
constexpr std::string_view captionPart = "Caption";
constexpr std::string_view unitPart = "Unit";

// ---- picture ------------------------------------------------------------------------------------

void AddFigure(Screen& screen, const LiveFigure& figure, int index) {
  const int row = index % rowsOfBlock;
  const int column = index / rowsOfBlock * 3;
  Add(screen, {.name = Named(figure.control, captionPart),
               .caption = std::string(figure.caption),
               .place = {.in = "Figures", .row = row, .column = column, .align = Align::Fill},
               .textAlign = Align::Right,
               .backColour = colours.back,
               .foreColour = colours.caption});
  Add(screen, {.name = std::string(figure.control),
               .place = {.in = "Figures", .row = row, .column = column + 1, .align = Align::Fill},
               .widthChars = 7,
               .textAlign = Align::Right,
               .fontScale = 1.3,
               .bold = true,
               .backColour = colours.back,
               .foreColour = colours.figure,
               .framed = true,
               .accessibleName = Named(figure.caption, Named(" ", figure.unit))});
  Add(screen, {.name = Named(figure.control, unitPart),
               .caption = FigureUnit(figure),
               .place = {.in = "Figures", .row = row, .column = column + 2, .align = Align::Fill},
               .widthChars = unitChars,
               .textAlign = Align::Left,
               .backColour = colours.back,
               .foreColour = colours.caption});
}

void Build(Screen& screen) {
  colours = ColoursOfSetting();
  screen.backColour = colours.back;
  Add(screen, {.name = "Figures", .kind = ControlKind::Grid, .backColour = colours.back});
  for (std::size_t i = 0; i < figures.size(); ++i)
    AddFigure(screen, figures[i], static_cast<int>(i));
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

void BuildHelp(Screen& screen) {
  int number = 1;
  for (const char* line : helpLines)
    Add(screen, {.name = "Label" + std::to_string(number++), .caption = line});
  Add(screen, {.name = "Command1",
               .kind = ControlKind::Button,
               .caption = "<< BACK",
               .place = {.align = Align::Right}});
}

void ShowStatus(const char* text, Colour colour) {
  Control& status = At(Monitor3, "Status");
  SetCaption(status, text);
  SetBackColour(status, colour);
}

// The labels of the figures while the screen is loaded, so that a frame is shown without a search.
struct FigureLabels {
  Control* value;
  Control* unit;
};
std::array<FigureLabels, figures.size()> labels;

void Load(Screen& screen) {
  for (std::size_t i = 0; i < figures.size(); ++i)
    labels[i] = {&At(screen, figures[i].control), &At(screen, Named(figures[i].control, unitPart))};
}

void ShowFigures() {
  for (std::size_t i = 0; i < figures.size(); ++i) {
    SetCaption(*labels[i].value, FigureText(figures[i]));
    if (figures[i].unitNow) SetCaption(*labels[i].unit, FigureUnit(figures[i]));
  }
  SetForeColour(At(Monitor3, "DutyCaption"),
                DutyPercent() > 100 ? colours.warning : colours.caption);
}

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
  for (const LiveFigure& figure : figures) SetCaption(At(Monitor3, figure.control), "");
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
    .mode = 3,
    .frameWait = WaitForOnflyFrame,
    .modeLine = "                Brantwell Engine Controls         ONFLY MODE",
    .leavesKeysToEditor = true,
    .refused = [] { MonitorMode = 0; },
    .prepare = Prepare,
    .send = SendCommands,
    .decoded = [] { ShowStatus("ONFLY IDLE", Green); },
    .show = ShowFigures,
    .over = SessionIsOver,
};

// ---- keys ---------------------------------------------------------------------------------------

void Toggle(bool& flag) {
  flag = !flag;
  ShowLiveNow();
}

struct KeyRow {
  int key;
  void (*run)();
};
constexpr KeyRow keys[] = {
    {KeyEnter, [] { Monitor3KeyCode = KeyEnter; }},
    {KeyEscape, StopLive},
    {'T', [] { Toggle(ImperialUnits); }},
    {'C', ToggleLoopControl},
    {'F', [] { Toggle(FuelInLitres); }},
    {'K', AskToKillEngine},
    {KeyF1, [] { ShowScreen(Monitor3Help); }},
};

void OnKey(Screen&, KeyEvent& event) {
  if (event.ctrl || event.alt) return;
  for (const KeyRow& row : keys) {
    if (row.key != event.key) continue;
    event.handled = true;
    row.run();
    return;
  }
}

void Unload(Screen&) {
  LiveScreenUnloaded();
  UnloadScreen(Monitor3Help);
}

}  // namespace

int Monitor3KeyCode = 0;

Screen Monitor3{.name = "Monitor3",
                .title = "Click Form to Activate Keys    \"F1\" For Help",
                .placement = ScreenPlacement::Above,
                .build = Build,
                .on = {.load = Load,
                       .unload = Unload,
                       .closeBox = [](Screen&) { StopLive(); },
                       .keyDown = OnKey,
                       .click =
                           [](Screen&, Control& control) {
                             if (control.name == "Command1") StopLive();
                           }},
                .cancelButton = "Command1",
                .defaultFocus = "Command1"};

Screen Monitor3Help{.name = "Monitor3Help",
                    .title = "Halvane2 Fast Help",
                    .placement = ScreenPlacement::Above,
                    .build = BuildHelp,
                    .on = {.click =
                               [](Screen& screen, Control& control) {
                                 if (control.name == "Command1") UnloadScreen(screen);
                               }},
                    .cancelButton = "Command1"};

std::span<const LiveFigure> Monitor3Figures() { return figures; }

void RegisterMonitor3() {
  RegisterScreen("Monitor3", [] { RunLive(monitor); });
}
