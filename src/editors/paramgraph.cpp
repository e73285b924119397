// Draws the small parameter graph: frame and grid, hatched fail zone, marks, curve, texts.
#include "editors/paramgraph.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

int GraphKind = CurvePulse;

namespace {

// Middle tones that stand out on a light and on a dark desktop alike.
constexpr Colour gridColour = Rgb(150, 150, 150);
constexpr Colour curveColour = Rgb(30, 110, 230);
constexpr Colour failColour = Rgb(215, 120, 30);
constexpr Colour markColour = Rgb(20, 150, 70);

constexpr double gap = 6;
constexpr double hatchApart = 8;
constexpr std::array<const char*, 2> failTexts = {" INJECTOR  FAIL  ZONE",
                                                  "Minimum Injector Turn-on Time"};

struct Picture {
  Control& canvas;
  const GraphContent& content;
  GraphFrame frame;
};

std::vector<std::string> TickTexts(const GraphAxis& axis) {
  std::vector<std::string> texts;
  for (double line : axis.lines) texts.push_back(TickText(line));
  return texts;
}

double WidestOf(const std::vector<std::string>& texts) {
  double widest = 0;
  for (const std::string& text : texts) widest = std::max(widest, MeasureText(text).width);
  return widest;
}

// How far the labels of the x axis stand below the frame: free of the lowest one of the y axis.
double DropOfTicks(double lineHeight) { return std::max(gap, lineHeight / 2); }

FrameRoom RoomForTexts(const GraphContent& content) {
  const double line = MeasureText("0").height;
  const std::vector<std::string> xTexts = TickTexts(content.x);
  FrameRoom room;
  room.left = line + WidestOf(TickTexts(content.y)) + 3 * gap;
  room.top = line / 2 + gap;
  room.right = std::max(gap, xTexts.empty() ? 0 : MeasureText(xTexts.back()).width / 2 + gap);
  room.bottom = DropOfTicks(line) + 2 * line + gap;
  return room;
}

void DrawSegment(Control& canvas, const Segment& segment, const Stroke& stroke) {
  DrawLine(canvas, segment.first, segment.second, stroke);
}

void DrawGrid(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  FillRectangle(canvas, {frame.left, frame.top}, {frame.right, frame.bottom},
                {.colour = SystemWindow});
  const Stroke stroke{.colour = gridColour, .width = 1, .dashed = true};
  for (double line : content.x.lines) {
    const double x = XPixel(content, frame, line);
    if (x > frame.left && x < frame.right)
      DrawLine(canvas, {x, frame.top}, {x, frame.bottom}, stroke);
  }
  for (double line : content.y.lines) {
    const double y = YPixel(content, frame, line);
    if (y > frame.top && y < frame.bottom)
      DrawLine(canvas, {frame.left, y}, {frame.right, y}, stroke);
  }
}

void DrawFrame(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  DrawPolyline(canvas,
               {{frame.left, frame.top},
                {frame.right, frame.top},
                {frame.right, frame.bottom},
                {frame.left, frame.bottom},
                {frame.left, frame.top}},
               {.colour = SystemButtonText, .width = 1});
}

void DrawXTicks(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  const std::vector<std::string> texts = TickTexts(content.x);
  const double height = MeasureText("0").height;
  std::vector<LabelSpan> spans;
  for (std::size_t i = 0; i < texts.size(); ++i)
    spans.push_back({XPixel(content, frame, content.x.lines[i]), MeasureText(texts[i]).width});
  for (std::size_t i : LabelsThatFit(spans, gap)) {
    const double x = spans[i].middle;
    DrawLine(canvas, {x, frame.bottom}, {x, frame.bottom + gap / 2}, {.colour = SystemButtonText});
    DrawText(canvas, {x, frame.bottom + DropOfTicks(height) + height / 2}, texts[i],
             {.colour = SystemButtonText, .anchor = TextAnchor::Centre});
  }
}

void DrawYTicks(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  const std::vector<std::string> texts = TickTexts(content.y);
  const double height = MeasureText("0").height;
  std::vector<LabelSpan> spans;
  for (double line : content.y.lines) spans.push_back({YPixel(content, frame, line), height});
  for (std::size_t i : LabelsThatFit(spans, 0)) {
    const double y = spans[i].middle;
    DrawLine(canvas, {frame.left - gap / 2, y}, {frame.left, y}, {.colour = SystemButtonText});
    DrawText(canvas, {frame.left - gap, y}, texts[i],
             {.colour = SystemButtonText, .anchor = TextAnchor::Right});
  }
}

void DrawTitles(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  const double height = MeasureText("0").height;
  const double ticks = WidestOf(TickTexts(content.y));
  DrawText(
      canvas,
      {(frame.left + frame.right) / 2, frame.bottom + DropOfTicks(height) + gap / 2 + height * 1.5},
      content.xTitle, {.colour = SystemButtonText, .anchor = TextAnchor::Centre});
  DrawText(canvas, {frame.left - ticks - 2 * gap - height / 2, (frame.top + frame.bottom) / 2},
           content.yTitle,
           {.colour = SystemButtonText, .anchor = TextAnchor::Centre, .turnDegrees = 90});
}

// A text on the hatching keeps a plain ground, or it could not be read.
void DrawOnPaper(Control& canvas, Point right, const std::string& text) {
  const TextSize size = MeasureText(text);
  FillRectangle(canvas, {right.x - size.width - 2, right.y - size.height / 2},
                {right.x + 2, right.y + size.height / 2}, {.colour = SystemWindow});
  DrawText(canvas, right, text, {.anchor = TextAnchor::Right});
}

double TopOfFailZone(const Picture& picture) {
  return std::max(picture.frame.top,
                  YPixel(picture.content, picture.frame, *picture.content.failBelow));
}

// The zone's name stands in the band where the band is high enough, else above it; the other text
// always names the upper edge from above, or from below when the band fills the frame.
void DrawFailTexts(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  if (!content.failBelow) return;
  const double top = TopOfFailZone(picture);
  const double height = MeasureText("0").height;
  const double right = frame.right - gap;
  const bool nameInside = frame.bottom - top >= height + 2;
  double line = top - height / 2 - 2;
  if (line - height / 2 < frame.top) line = top + height / 2 + 2;
  DrawOnPaper(canvas, {right, line}, failTexts[1]);
  double name = nameInside ? (top + frame.bottom) / 2 : line - height;
  if (std::fabs(name - line) < height) name = line + height;
  DrawOnPaper(canvas, {right, name}, failTexts[0]);
}

void DrawFailZone(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  if (!content.failBelow) return;
  const double top = TopOfFailZone(picture);
  const GraphFrame band{frame.left, top, frame.right, frame.bottom};
  for (const Segment& line : HatchLines(band, hatchApart))
    DrawSegment(canvas, line, {.colour = failColour, .antialias = true});
  DrawLine(canvas, {frame.left, top}, {frame.right, top}, {.colour = failColour, .width = 2});
}

void DrawMarks(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  if (content.verticalMark) {
    const double x = XPixel(content, frame, *content.verticalMark);
    if (x >= frame.left && x <= frame.right)
      DrawLine(canvas, {x, frame.top}, {x, frame.bottom}, {.colour = markColour, .width = 2});
  }
  if (content.limitLine) {
    const double y = YPixel(content, frame, *content.limitLine);
    DrawLine(canvas, {frame.left, y}, {frame.right, y}, {.colour = Red, .width = 2});
  }
}

void DrawCurve(const Picture& picture) {
  const auto& [canvas, content, frame] = picture;
  for (std::size_t i = 1; i < content.curve.size(); ++i) {
    const Segment segment{ToPixel(content, frame, content.curve[i - 1]),
                          ToPixel(content, frame, content.curve[i])};
    if (const auto inside = ClipToFrame(segment, frame))
      DrawSegment(canvas, *inside, {.colour = curveColour, .width = 2, .antialias = true});
  }
}

}  // namespace

void ParameterGraph(Control& canvas, const FrameShape& shape) {
  if (canvas.canvasWidth <= 0 || canvas.canvasHeight <= 0) return;
  const GraphContent content = ContentOfGraph(GraphKind);
  ClearCanvas(canvas, SystemButtonFace);
  const Picture picture{
      canvas, content,
      PlaceFrame(shape, canvas.canvasWidth, canvas.canvasHeight, RoomForTexts(content))};
  DrawGrid(picture);
  DrawFailZone(picture);
  DrawMarks(picture);
  DrawFailTexts(picture);
  DrawCurve(picture);
  DrawFrame(picture);
  DrawXTicks(picture);
  DrawYTicks(picture);
  DrawTitles(picture);
}

TextSize LeastGraphSize() {
  const TextSize digit = MeasureText("0");
  return {.width = digit.width * 42, .height = digit.height * 16};
}
