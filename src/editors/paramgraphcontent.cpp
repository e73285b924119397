// What each kind of the small parameter graph takes from the calibration.
#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "core/encoder.h"
#include "core/globalstate.h"
#include "core/numbers.h"
#include "editors/injectortimes.h"
#include "editors/paramgraphmath.h"

namespace {

constexpr int blendPoints = 8;
constexpr int blendSpeeds = 435;
constexpr int blendPercents = 443;
constexpr int warmupPoints = 328;
constexpr int coolantPoints = 237;
constexpr int temperaturePoints = 12;
constexpr int egoPointsShown = 9;
constexpr int egoPoints = 10;

double Value(int index) { return CalValues[static_cast<std::size_t>(index)]; }

double Temperature(int point) { return -30 + 10 * point; }

// The ends and the multiples of a step between them.
GraphAxis AxisOfSteps(double low, double high, double step) {
  GraphAxis axis{.low = low, .high = high, .lines = {low}};
  for (double line = (Int(low / step) + 1) * step; line < high && axis.lines.size() < 60;
       line += step)
    axis.lines.push_back(line);
  axis.lines.push_back(high);
  return axis;
}

// A step of 1, 2 or 5 times a power of ten that gives at most eight divisions.
double NiceStep(double extent) {
  if (!(extent > 0) || !std::isfinite(extent)) return 1;
  const double least = extent / 8;
  const double decade = std::pow(10, std::floor(std::log10(least)));
  for (double factor : {1.0, 2.0, 5.0})
    if (factor * decade >= least) return factor * decade;
  return 10 * decade;
}

GraphAxis TemperatureAxis() { return AxisOfSteps(-30, 80, 10); }

double Largest(const std::vector<Point>& curve) {
  double largest = 0;
  for (const Point& point : curve) largest = std::max(largest, point.y);
  return largest;
}

void FillPulse(GraphContent& graph) {
  const double iot = WorkIot;
  const double tog = WorkTog;
  graph.xTitle = "Displayed MAP (kPa)";
  graph.yTitle = "Fundamental Pulsewidth (ms)";
  graph.x = AxisOfSteps(MapLow, MapHigh, 20.0 * std::max(1, MapBar));
  graph.y = PulseAxis(iot, tog);
  graph.curve = {{MapLow, iot}, {MapHigh, iot + tog}};
  if (MaxManifoldKpa < MapHigh) graph.verticalMark = MaxManifoldKpa;
  const double limit = ComputeInjectorTimes().revLimitMaxPw;
  if (limit >= graph.y.low && limit <= graph.y.high) graph.limitLine = limit;
  if (MinTurnOnMs > graph.y.low) graph.failBelow = MinTurnOnMs;
}

void FillBlend(GraphContent& graph) {
  graph.xTitle = "Engine Speed (RPM)";
  graph.yTitle = "TPS Blend (%)";
  for (int i = 0; i < blendPoints; ++i)
    graph.curve.push_back({Value(blendSpeeds + i), Value(blendPercents + i)});
  const auto [low, high] =
      std::minmax_element(graph.curve.begin(), graph.curve.end(),
                          [](const Point& a, const Point& b) { return a.x < b.x; });
  graph.x = AxisOfSteps(low->x, high->x, NiceStep(high->x - low->x));
  graph.y = BlendAxis(Largest(graph.curve));
}

// The eleven stored points and the twelfth, where the engine is warm and nothing is added.
void FillWarmup(GraphContent& graph) {
  graph.xTitle = "Coolant Temperature (deg \u00B0C)";
  graph.yTitle = "Fundamental PW Enrichment (% FPW)";
  for (int i = 0; i + 1 < temperaturePoints; ++i)
    graph.curve.push_back({Temperature(i), Value(warmupPoints + i) * 100});
  graph.curve.push_back({Temperature(temperaturePoints - 1), 0});
  graph.x = TemperatureAxis();
  graph.y = WarmupAxis(Largest(graph.curve));
}

void FillCoolant(GraphContent& graph) {
  graph.xTitle = "Coolant Temperature (deg \u00B0C)";
  graph.yTitle = "Additional Ignition Advance (deg)";
  for (int i = 0; i < temperaturePoints; ++i)
    graph.curve.push_back({Temperature(i), Value(coolantPoints + i)});
  graph.x = TemperatureAxis();
  graph.y = CoolantAdvanceAxis(Largest(graph.curve));
}

// The ratio falls from the first point to the tenth, and the axis with it.
void FillEgo(GraphContent& graph) {
  LoadEgoCurve();
  graph.xTitle = "Air Fuel Ratio = 14.64";
  graph.yTitle = "EGO Volts";
  for (std::size_t i = 1; i <= egoPointsShown; ++i)
    graph.curve.push_back({EgoRatios[i], EgoVolts[i]});
  const double first = EgoRatios[1];
  const double tenth = EgoRatios[egoPoints];
  graph.x = AxisOfSteps(std::min(first, tenth), std::max(first, tenth),
                        NiceStep(std::fabs(first - tenth)));
  if (first > tenth) {
    std::swap(graph.x.low, graph.x.high);
    std::reverse(graph.x.lines.begin(), graph.x.lines.end());
  }
  graph.y = {.low = 0, .high = 5, .lines = {0, 1, 2, 3, 4, 5}};
}

bool IsNumber(double value) { return std::isfinite(value); }

// What a damaged file holds must not reach the drawing.
void DropWhatIsNoNumber(GraphContent& graph) {
  std::erase_if(graph.curve, [](const Point& p) { return !IsNumber(p.x) || !IsNumber(p.y); });
  for (std::optional<double>* mark : {&graph.verticalMark, &graph.limitLine, &graph.failBelow})
    if (*mark && !IsNumber(**mark)) mark->reset();
  if (!IsNumber(graph.x.low) || !IsNumber(graph.x.high)) graph.x = {.low = 0, .high = 1};
  std::erase_if(graph.x.lines, [](double line) { return !IsNumber(line); });
}

}  // namespace

GraphContent ContentOfGraph(int kind) {
  GraphContent graph;
  switch (kind) {
    case CurvePulse:
      FillPulse(graph);
      break;
    case CurveBlend:
      FillBlend(graph);
      break;
    case CurveWarmup:
      FillWarmup(graph);
      break;
    case CurveCoolant:
      FillCoolant(graph);
      break;
    case CurveEgo:
      FillEgo(graph);
      break;
    default:
      break;
  }
  DropWhatIsNoNumber(graph);
  return graph;
}
