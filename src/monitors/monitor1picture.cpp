// The picture of the analog monitor.
#include "monitors/monitor1picture.h"

#include <string>

#include "monitors/monitor1entry.h"
#include "platform/fit.h"

namespace {

constexpr Colour buttonFace = Rgb(225, 228, 235);

// The dials take what the texts leave to them, and the texts are as large as the room allows.
TextFit Fit() {
  return {.smallest = 0.65, .largest = 1.8, .canvas = "Dials", .canvasShare = 0.38, .spacing = 3};
}

// On a wide display the figures stand between offsets and sensors, so that the dials are high.
// Elsewhere they stand in two lines below the dials, and the header between offsets and sensors.
constexpr int figuresPerLineBeside = 3;
constexpr int figuresPerLineBelow = 6;
constexpr int rowsOfFigure = 2;
constexpr int columnsOfFigure = 2;
constexpr FigureStyle figureStyle{.captionAbove = true, .scale = 1.6, .digits = 6, .unitDigits = 3};
bool IsWide(Room room) {
  constexpr double wide = 1.75;
  return room.width > wide * room.height;
}

// Adds controls in the colours of the screen.
struct Builder {
  Screen& screen;
  const MonitorColours& colours;

  Control Text(std::string name, std::string caption, Place place) const {
    return {.name = std::move(name),
            .caption = std::move(caption),
            .place = std::move(place),
            .backColour = colours.back,
            .foreColour = colours.caption};
  }
  void AddText(std::string name, std::string caption, Place place) {
    Add(screen, Text(std::move(name), std::move(caption), std::move(place)));
  }
  void AddBox(const char* name, ControlKind kind, Place place, const char* caption = "") {
    Add(screen, {.name = name,
                 .kind = kind,
                 .caption = caption,
                 .place = std::move(place),
                 .foreColour = colours.caption});
  }
  void AddGap(const char* name, const char* in) {
    Add(screen, {.name = name, .kind = ControlKind::Spacer, .place = {.in = in}});
  }
};

// What the unit has loaded, in frames.
void AddLoaded(Builder& to, const char* name, int digits) {
  Control text = to.Text(name, "", {.in = "Head"});
  text.widthChars = digits;
  text.bold = true;
  text.foreColour = to.colours.figure;
  text.framed = true;
  Add(to.screen, text);
}

// In a line above the dials, or in a column beside the sensors.
void AddHead(Builder& to, ControlKind kind, const char* in) {
  to.AddBox("Head", kind, {.in = in});
  to.AddText("BinCaption", "Loaded ZEM \"BIN\" File", {.in = "Head"});
  AddLoaded(to, "BinName", 20);
  to.AddText("PromCaption", "Halvane Prom Version", {.in = "Head"});
  AddLoaded(to, "PromVersion", 10);
  if (kind == ControlKind::Row) to.AddGap("HeadGap", "Head");
  Control none = to.Text("NoBin", "NO BIN FILE OPEN", {.in = "Head"});
  none.bold = true;
  none.foreColour = to.colours.warning;
  Add(to.screen, none);
}

// At the end of the header.
void AddBack(Builder& to) {
  to.AddText("HelpLine", "Press F1 For Help", {.in = "Head"});
  Add(to.screen, {.name = "Command1",
                  .kind = ControlKind::Button,
                  .caption = "<< BACK",
                  .place = {.in = "Head"},
                  .backColour = buttonFace,
                  .foreColour = Black});
}

void AddDials(Builder& to) {
  Add(to.screen, {.name = "Dials",
                  .kind = ControlKind::Canvas,
                  .place = {.stretch = 1},
                  .minWidth = 480,
                  .minHeight = 150,
                  .backColour = to.colours.back,
                  .accessibleName =
                      "Dials of ERPM, CLT, MAT and TPS, bars of MAP, EGO and injector duty cycle"});
}

void AddFigures(Builder& to, std::span<const LiveFigure> figures, const char* in, int perLine) {
  to.AddBox("Figures", ControlKind::Grid, {.in = in});
  int at = 0;
  for (const LiveFigure& figure : figures) {
    AddFigure(to.screen, figure, "Figures", at / perLine * rowsOfFigure,
              at % perLine * columnsOfFigure, figureStyle, to.colours);
    ++at;
  }
}

void AddOffsets(Builder& to) {
  to.AddBox("Offsets", ControlKind::Grid, {.in = "Lower"});
  const int rows = AddOffsetControls(to.screen, "Offsets", to.colours);
  Add(to.screen, {.name = "EntryRow",
                  .kind = ControlKind::Row,
                  .place = {.in = "Offsets", .row = rows, .column = 0, .columnSpan = 2}});
  to.AddText("EnterLine", "Must Press Enter to Change Values", {.in = "EntryRow"});
  Control status = to.Text("EntryStatus", "ACTIVE", {.in = "EntryRow"});
  status.widthChars = 12;
  status.foreColour = White;
  status.bold = true;
  status.textAlign = Align::Centre;
  Add(to.screen, status);
}

void AddStatusColumn(Builder& to, const StatusColumn& column, int at) {
  constexpr int digits = 9;
  Control title = to.Text(std::string(column.name) + "Title", column.title,
                          {.in = "SensorGrid", .row = 0, .column = at, .align = Align::Fill});
  title.bold = true;
  title.textAlign = Align::Centre;
  title.widthChars = digits;
  Add(to.screen, title);
  for (int line = 0; line < column.lines; ++line) {
    Control text =
        to.Text(LineName(column, line), "",
                {.in = "SensorGrid", .row = line + 1, .column = at, .align = Align::Fill});
    text.widthChars = digits;
    text.textAlign = Align::Centre;
    text.foreColour = to.colours.figure;
    Add(to.screen, text);
  }
}

void AddSide(Builder& to) {
  to.AddBox("Side", ControlKind::Column, {.in = "Lower"});
  to.AddBox("Sensors", ControlKind::Group, {.in = "Side"}, "Sensors Status");
  to.AddBox("SensorGrid", ControlKind::Grid, {.in = "Sensors"});
  int at = 0;
  for (const StatusColumn& column : statusColumns) AddStatusColumn(to, column, at++);
  to.AddBox("Lamps", ControlKind::Row, {.in = "Side"});
  for (const Lamp& lamp : lamps)
    Add(to.screen, {.name = lamp.name,
                    .caption = lamp.caption,
                    .place = {.in = "Lamps", .align = Align::Fill, .stretch = 1},
                    .textAlign = Align::Centre,
                    .bold = true,
                    .backColour = lampGreen,
                    .foreColour = White,
                    .framed = true});
}

}  // namespace

std::string LineName(const StatusColumn& column, int line) {
  return column.name + std::to_string(line);
}

void BuildMonitor1(Screen& screen, std::span<const LiveFigure> figures,
                   const MonitorColours& colours) {
  Builder to{screen, colours};
  const bool wide = IsWide(RoomForWork());
  screen.backColour = colours.back;
  FitTexts(screen, Fit());
  if (wide) AddHead(to, ControlKind::Row, "");
  AddDials(to);
  if (!wide) AddFigures(to, figures, "", figuresPerLineBelow);
  to.AddBox("Lower", ControlKind::Row, {});
  AddOffsets(to);
  to.AddGap("LowerGap", "Lower");
  if (wide)
    AddFigures(to, figures, "Lower", figuresPerLineBeside);
  else
    AddHead(to, ControlKind::Column, "Lower");
  to.AddGap("SideGap", "Lower");
  AddSide(to);
  AddBack(to);
}
