// Axes, frame and clipping of the small parameter graph.
#include "editors/paramgraphmath.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"

namespace {

// More lines than this cannot be told apart on any canvas.
constexpr double linesAtMost = 60;

std::vector<double> EvenLines(double low, double high, int count) {
  std::vector<double> lines;
  for (int i = 0; i < count; ++i) lines.push_back(low + (high - low) * i / (count - 1));
  return lines;
}

GraphAxis FromZero(double high, int lineCount) {
  return {.low = 0, .high = high, .lines = EvenLines(0, high, lineCount)};
}

double Share(double value, double low, double high) {
  const double share = (value - low) / (high - low);
  return std::isfinite(share) ? share : 0.5;
}

// Shortens [from, to] of the line to where it lies on the inner side of one edge. Result: whether
// anything is left.
bool ClipEdge(double distance, double slope, double& from, double& to) {
  if (slope == 0) return distance >= 0;
  const double at = -distance / slope;
  if (slope > 0)
    from = std::max(from, at);
  else
    to = std::min(to, at);
  return from <= to;
}

bool Touch(const LabelSpan& one, const LabelSpan& other, double gap) {
  return std::fabs(one.middle - other.middle) < (one.extent + other.extent) / 2 + gap;
}

bool EveryNthFits(std::span<const LabelSpan> labels, std::size_t n, double gap) {
  for (std::size_t i = n; i < labels.size(); i += n)
    if (Touch(labels[i - n], labels[i], gap)) return false;
  return true;
}

}  // namespace

GraphAxis PulseAxis(double iot, double tog) {
  if (!std::isfinite(iot) || !std::isfinite(tog)) return FromZero(10, 6);
  double ymin = 0;
  double ymax = 0;
  double divisions = 0;
  for (int step = 1; step <= 10; ++step) {
    ymin = Int(iot / step) * step;
    ymax = (1 + Int((iot + tog) / step)) * step;
    divisions = (ymax - ymin) / step;
    if (divisions >= 4 && divisions <= 6) break;
  }
  if (!(divisions >= 1)) {
    ymax = ymin + 10;
    divisions = 1;
  }
  const int lineCount = static_cast<int>(std::min(divisions, linesAtMost)) + 1;
  return {.low = ymin, .high = ymax, .lines = EvenLines(ymin, ymax, lineCount)};
}

GraphAxis BlendAxis(double largest) { return FromZero(largest <= 40 ? 50 : 100, 6); }

GraphAxis WarmupAxis(double largest) {
  const double high = largest >= 140 ? 250 : largest >= 85 ? 150 : largest >= 40 ? 100 : 50;
  return FromZero(high, 7);
}

GraphAxis CoolantAdvanceAxis(double largest) { return FromZero(largest <= 20 ? 30 : 60, 7); }

GraphFrame PlaceFrame(const FrameShape& shape, double canvasWidth, double canvasHeight,
                      const FrameRoom& room) {
  const double across = std::max(0.0, canvasWidth - room.left - room.right);
  const double down = std::max(0.0, canvasHeight - room.top - room.bottom);
  double scale = std::min(across / shape.width, down / shape.height);
  const double left = std::max(room.left, shape.leftMargin * scale);
  scale = std::min(scale, std::max(0.0, canvasWidth - left - room.right) / shape.width);
  const double width = std::round(shape.width * scale);
  const double height = std::round(shape.height * scale);
  GraphFrame frame;
  frame.left = std::round(left + (canvasWidth - left - room.right - width) / 2);
  frame.top = std::round(room.top + (canvasHeight - room.top - room.bottom - height) / 2);
  frame.right = frame.left + width;
  frame.bottom = frame.top + height;
  return frame;
}

double XPixel(const GraphContent& content, const GraphFrame& frame, double value) {
  const double share = Share(value, content.x.low, content.x.high);
  return std::round(frame.left + share * (frame.right - frame.left));
}

double YPixel(const GraphContent& content, const GraphFrame& frame, double value) {
  const double share = Share(value, content.y.low, content.y.high);
  return std::round(frame.bottom - share * (frame.bottom - frame.top));
}

Point ToPixel(const GraphContent& content, const GraphFrame& frame, Point value) {
  return {XPixel(content, frame, value.x), YPixel(content, frame, value.y)};
}

std::optional<Segment> ClipToFrame(Segment segment, const GraphFrame& frame) {
  const auto [a, b] = segment;
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  double from = 0;
  double to = 1;
  const bool inside =
      ClipEdge(a.x - frame.left, dx, from, to) && ClipEdge(frame.right - a.x, -dx, from, to) &&
      ClipEdge(a.y - frame.top, dy, from, to) && ClipEdge(frame.bottom - a.y, -dy, from, to);
  if (!inside) return std::nullopt;
  return Segment{{a.x + from * dx, a.y + from * dy}, {a.x + to * dx, a.y + to * dy}};
}

std::vector<Segment> HatchLines(const GraphFrame& band, double apart) {
  std::vector<Segment> lines;
  const double height = band.bottom - band.top;
  if (!(height > 0) || !(band.right > band.left)) return lines;
  for (double x = band.left - height + apart; x < band.right; x += apart)
    if (const auto inside = ClipToFrame({{x, band.bottom}, {x + height, band.top}}, band))
      lines.push_back(*inside);
  return lines;
}

std::vector<std::size_t> LabelsThatFit(std::span<const LabelSpan> labels, double gap) {
  std::vector<std::size_t> chosen;
  if (labels.empty()) return chosen;
  const std::size_t last = labels.size() - 1;
  std::size_t n = 1;
  while (n < last && !EveryNthFits(labels.first(last), n, gap)) ++n;
  for (std::size_t i = 0; i < std::max<std::size_t>(last, 1); i += n) chosen.push_back(i);
  while (chosen.size() > 1 && Touch(labels[chosen.back()], labels[last], gap)) chosen.pop_back();
  if (chosen.back() != last && !Touch(labels[chosen.back()], labels[last], gap))
    chosen.push_back(last);
  return chosen;
}

std::string TickText(double value) { return NumberText(std::round(value * 10) / 10); }
