// The rows of Binj_graph, its rounding of the injector offset and its two lists.
#include "editors/binjgraph.h"

#include <cmath>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/numbers.h"
#include "editors/editlayout.h"
#include "editors/injectortimes.h"
#include "editors/paramgraph.h"
#include "link/onfly.h"

namespace {

constexpr const char* graphName = "Graph";
constexpr std::size_t optionBits = 0;
constexpr std::size_t injectorOffset = 2;
constexpr std::size_t firingInterval = 233;
constexpr std::size_t minimumTurnOn = 344;

InjectorTimes times;

// ---- fields -------------------------------------------------------------------------------------

std::string PressureRange() {
  return "  (" + NumberText(SensorLowKpa()) + " to " + NumberText(SensorHighKpa()) + " kPa)";
}

double ToEighths(double entry) { return RoundInjectorOffset(entry).ms; }

// A value below 0 that was rounded to 0 keeps its sign bit here.
int OffsetByte(double stored) {
  return RoundInjectorOffset(std::fabs(stored)).imageByte | (std::signbit(stored) ? 128 : 0);
}

void StoreOffset(double stored) { CalValues[injectorOffset] = static_cast<float>(stored + 0.0); }

// In a session the offset also goes out as a run-time offset, which acts at once.
void OffsetAccepted(Editor&, const EditorField&, double stored) {
  if (MonitorMode != OnflyLive) return;
  StoreOffset(stored);
  OnInjOffset = stored;
  PendInj = 1;
}

EditorField TogField() {
  return {.number = 1,
          .control = "Text1",
          .label = "Label1",
          .caption = "Time &On for One Gama (TOG) =",
          .unit = "ms",
          .calIndex = 232,
          .mask = "##.000",
          .low = 3,
          .high = 30,
          .rangeText = "    (3 to 30ms)",
          .afterRefusal = AfterRefusal::HoldFocus,
          .accepted = [](Editor&, const EditorField&, double stored) {
            WorkTog = static_cast<float>(stored);
          }};
}

EditorField OffsetField() {
  return {.number = 2,
          .control = "Text2",
          .label = "Label2",
          .caption = "&Injector Offset Time (IOT) =",
          .unit = "ms",
          .calIndex = injectorOffset,
          .mask = "##.000",
          .takesMinus = true,
          .low = -15.875,
          .high = 15.875,
          .refusal =
              "                    Data Input Error\n\r\n\r"
              "                (-15.875 to 15.875ms)\n\r"
              "System will round to + or -.125ms Increments",
          .asTyped = true,
          .afterRefusal = AfterRefusal::HoldFocus,
          .toStored = ToEighths,
          .imageByte = 2,
          .encode = OffsetByte,
          .store = [](Editor&, const EditorField&, double stored) { StoreOffset(stored); },
          .accepted = OffsetAccepted,
          .leaving =
              [](Editor& editor, const EditorField&) {
                WorkIot = CalValues[injectorOffset];
                Redraw(editor);
              }};
}

EditorField RevLimitField() {
  return {.number = 7,
          .control = "Text7",
          .label = "Label7",
          .caption = "Primary &Rev Limiter = ",
          .unit = "RPM",
          .calIndex = 4,
          .mask = "####0",
          .low = 1000,
          .high = 12000,
          .rangeText = "  (1000 to 12000 RPM)",
          .afterRefusal = AfterRefusal::MessageOnly,
          .accepted = [](Editor&, const EditorField&, double stored) {
            WorkRevLimit = static_cast<float>(stored);
          }};
}

EditorField ManifoldPressureField() {
  return {.number = 8,
          .control = "Text8",
          .label = "Label8",
          .caption = "Max Manifold &Pressure (kPa) =",
          .unit = "kPa",
          .mask = "##0",
          .low = SensorLowKpa,
          .high = SensorHighKpa,
          .rangeText = PressureRange,
          .afterRefusal = AfterRefusal::MessageOnly,
          .show = [](const EditorField&) { return NumberText(MaxManifoldKpa); },
          .store = [](Editor&, const EditorField&,
                      double stored) { MaxManifoldKpa = static_cast<float>(stored); }};
}

EditorField MinimumTurnOnField() {
  return {.number = 11,
          .control = "Text11",
          .label = "Label11",
          .caption = "&Minimum Injector Turn-on Time =",
          .unit = "ms",
          .calIndex = minimumTurnOn,
          .mask = "##.00000",
          .low = 0,
          .high = 8,
          .rangeText = "    (0 to 8ms)",
          .afterRefusal = AfterRefusal::MessageOnly,
          .imageByte = 323,
          .leaving = [](Editor& editor, const EditorField&) {
            MinTurnOnMs = CalValues[minimumTurnOn];
            Redraw(editor);
          }};
}

EditorField CylindersField() {
  return {.number = 12,
          .control = "Text12",
          .label = "Label12",
          .caption = "&Number of Cylinders (1 to 12) =",
          .calIndex = 217,
          .mask = "#0",
          .low = 1,
          .high = 12,
          .rangeText = "  (1 to 12 Cylinders)",
          .afterRefusal = AfterRefusal::GotFocusAgain,
          .accepted = [](Editor&, const EditorField&, double stored) {
            WorkCylinders = static_cast<float>(stored);
          }};
}

std::vector<EditorField> Fields() {
  return {TogField(),           OffsetField(),   RevLimitField(), ManifoldPressureField(),
          MinimumTurnOnField(), CylindersField()};
}

std::vector<EditorValue> Values() {
  return {
      {.control = "Text3",
       .label = "Label3",
       .caption = "Injector Recovery Time (IRT) =",
       .unit = "ms",
       .show = [] { return NumberText(InjectorRecoveryMs); }},
      {.control = "Text4",
       .label = "Label4",
       .caption = "Maximum Controllable TOG =",
       .unit = "ms",
       .show = [] { return Format(times.maxControllableTog, "##.000"); }},
      {.control = "Text9",
       .label = "Label9",
       .caption = "Calc. Fund. Fuel WOT PW =",
       .unit = "ms",
       .show = [] { return Format(times.wotPw, "#.000"); }},
      {.control = "Text10",
       .label = "Label10",
       .caption = "Rev Limit Max. PW =",
       .unit = "ms",
       .show = [] { return Format(times.revLimitMaxPw, "##.000"); }},
  };
}

// ---- lists --------------------------------------------------------------------------------------

// Enter flips the scheme whatever the list shows.
void FlipScheme(Editor&, const EditorList&, int) {
  CalValues[optionBits] = static_cast<float>(ToInt16(CalValues[optionBits]) ^ 1);
}

int IntervalIndex() {
  const double index = RoundEven(static_cast<double>(CalValues[firingInterval]) - 1);
  return index >= 0 && index <= 7 ? static_cast<int>(index) : -1;
}

// A list that shows nothing, because the file holds an interval that it does not know, keeps it.
void StoreInterval(int index) {
  if (index >= 0) CalValues[firingInterval] = static_cast<float>(index + 1);
}

std::vector<EditorList> Lists() {
  return {
      {.number = 21,
       .control = "Combo1",
       .label = "Label21",
       .caption = "Injectors are Set to &Fire in ",
       .unit = "Firing Scheme",
       .items = {"ALT", "SIM"},
       .index = [] { return SimultaneousFiring() ? 1 : 0; },
       .flips = true,
       .enter = FlipScheme},
      {.number = 22,
       .control = "Combo2",
       .label = "Label22",
       .caption = "Injector Drivers are &Set to Fire with",
       .unit = "Crank Revolution",
       .items = {"Every", "Every 2nd", "Every 3rd", "Every 4th", "Every 5th", "Every 6th",
                 "Every 7th", "Every 8th"},
       .index = IntervalIndex,
       .enter = [](Editor&, const EditorList&, int index) { StoreInterval(index); }},
  };
}

// ---- screen -------------------------------------------------------------------------------------

void Build(Editor& editor) {
  Screen& screen = editor.screen;
  const TextSize least = LeastGraphSize();
  Add(screen, {.name = "Body", .kind = ControlKind::Row, .place = {.stretch = 1}});
  Add(screen, {.name = "Side", .kind = ControlKind::Column, .place = {.in = "Body"}});
  Add(screen, {.name = "Parameters", .kind = ControlKind::Grid, .place = {.in = "Side"}});
  Add(screen, {.name = "SideSpace", .kind = ControlKind::Spacer, .place = {.in = "Side"}});
  GridCursor cursor{.container = "Parameters"};
  for (const EditorField& row : editor.fields) AddField(editor, row, cursor);
  AddGap(editor, cursor);
  for (const EditorValue& row : editor.shown) AddShown(editor, row, cursor);
  AddGap(editor, cursor);
  for (const EditorList& row : editor.lists) AddList(editor, row, cursor);
  Add(screen, {.name = graphName,
               .kind = ControlKind::Canvas,
               .place = {.in = "Body", .align = Align::Fill, .stretch = 1},
               .minWidth = static_cast<int>(least.width),
               .minHeight = static_cast<int>(least.height),
               .accessibleName = editor.title});
  AddFoot(editor);
}

void Compute(Editor&) {
  GraphKind = CurvePulse;
  MinTurnOnMs = CalValues[minimumTurnOn];
  PublishCalGlobals();
  times = ComputeInjectorTimes();
}

void Draw(Editor& editor) { ParameterGraph(At(editor.screen, graphName)); }

Editor MakeBinjGraph() {
  Editor editor;
  editor.name = "Binj_graph";
  editor.title = "Basic Injector Fuel Graph/Parameters";
  editor.fields = Fields();
  editor.shown = Values();
  editor.lists = Lists();
  editor.buttons = {
      {.control = "Command2", .caption = "&TPS Parameters", .icon = "tpssensor", .opens = "TPSfrm"},
      {.control = "Command3",
       .caption = "M&AP Parameters",
       .icon = "mapsensor",
       .opens = "frmMAPfrm"}};
  editor.back = {.screen = "CSForm1", .button = "Basic Injector Graph/&Parameters"};
  editor.portFlipsTwo = true;
  editor.build = Build;
  editor.compute = Compute;
  editor.draw = Draw;
  editor.leave = [](Editor& left) { StoreInterval(At(left.screen, "Combo2").listIndex); };
  return editor;
}

}  // namespace

Editor& BinjGraph() {
  static Editor editor = MakeBinjGraph();
  return editor;
}

void RedrawFF() { Redraw(BinjGraph()); }
