// What is drawn of the analog monitor's dials and bars: directions, bands, texts, colours.
#include "monitors/instruments.h"

#include <cmath>
#include <numbers>
#include <set>

#include "monitors/dials.h"
#include "platform/headless/script.h"
#include "support/user.h"

namespace {

constexpr MonitorColours colours{Black, Rgb(190, 190, 190), White, Rgb(255, 90, 80),
                                 Rgb(110, 110, 110)};

class Instruments : public PlatformTest {
 protected:
  void SetUp() override {
    PlatformTest::SetUp();
    ShowScreen(screen);
    Resize(1000, 260);
  }
  void Resize(int width, int height) { ResizeCanvas(Canvas(), width, height); }
  Control& Canvas() { return At(screen, "Dials"); }
  void Draw(const InstrumentReadings& readings) {
    DrawFaces(Canvas(), faces, colours);
    DrawReadings(Canvas(), faces, readings, colours);
  }
  std::vector<Primitive> Drawn(PrimitiveKind kind, bool foreground) {
    const Drawing& drawing = Canvas().drawing;
    std::vector<Primitive> found;
    for (std::size_t i = 0; i < drawing.primitives.size(); ++i)
      if (drawing.primitives[i].kind == kind && (i >= drawing.backgroundCount) == foreground)
        found.push_back(drawing.primitives[i]);
    return found;
  }
  std::multiset<std::string> Texts(bool foreground) {
    std::multiset<std::string> texts;
    for (const Primitive& text : Drawn(PrimitiveKind::Text, foreground)) texts.insert(text.text);
    return texts;
  }
  // The direction of the nth needle, from its hub to its tip.
  double Pointed(std::size_t index) {
    const Point tip = Drawn(PrimitiveKind::Polygon, true).at(index).points.at(0);
    const Point hub = Drawn(PrimitiveKind::Disc, true).at(index).points.at(0);
    return std::atan2(hub.y - tip.y, tip.x - hub.x) * 180 / std::numbers::pi;
  }
  std::vector<Primitive> Bands() {
    std::vector<Primitive> bands;
    for (const Primitive& arc : Drawn(PrimitiveKind::Arc, false))
      if (arc.stroke.width > 2) bands.push_back(arc);
    return bands;
  }

  InstrumentFaces faces{.revLimitRpm = 6500,
                        .temperatureUnit = "°C",
                        .loadUnit = "kPa",
                        .loadMaximum = 110};
  Screen screen{.name = "Panel", .build = [](Screen& built) {
                  Add(built, {.name = "Dials", .kind = ControlKind::Canvas});
                }};
};

}  // namespace

TEST_F(Instruments, EachNeedlePointsToItsStep) {
  Draw({.rpm = 4000, .cltStep = 0, .matStep = 179, .tpsStep = 45});
  EXPECT_NEAR(Pointed(0), 87, 1e-9);
  EXPECT_NEAR(Pointed(1), 177, 1e-9);
  EXPECT_NEAR(Pointed(2), -2, 1e-9);
  EXPECT_NEAR(Pointed(3), 132, 1e-9);
}

TEST_F(Instruments, BothEndsOfADialStandLevelAndAStepIsADegreeClockwise) {
  EXPECT_DOUBLE_EQ(NeedleDegrees(0), 177);
  EXPECT_DOUBLE_EQ(NeedleDegrees(180), -3);
  for (int step = 0; step < DialSteps; ++step)
    EXPECT_DOUBLE_EQ(NeedleDegrees(step) - NeedleDegrees(step + 1), 1);
}

TEST_F(Instruments, NeedlesStayOnTheirDials) {
  Draw({.rpm = 20000, .cltStep = -40, .matStep = 300, .tpsStep = 180});
  EXPECT_NEAR(Pointed(0), -3, 1e-9);
  EXPECT_NEAR(Pointed(1), 177, 1e-9);
  EXPECT_NEAR(Pointed(2), -3, 1e-9);
}

TEST_F(Instruments, YellowAndRedBandStandAtTheirDegrees) {
  Draw({});
  const auto bands = Bands();
  ASSERT_EQ(bands.size(), 2u);
  // 174 - 5500 / 46 and 174 - 6500 / 46, and three degrees that the dial is turned by.
  EXPECT_NEAR(bands[0].startDegrees + bands[0].sweepDegrees, 57.43478, 1e-5);
  EXPECT_NEAR(bands[0].startDegrees, 35.69565, 1e-5);
  EXPECT_NEAR(bands[1].startDegrees + bands[1].sweepDegrees, 35.69565, 1e-5);
  EXPECT_NEAR(bands[1].startDegrees, -1, 1e-9);
  EXPECT_NE(bands[0].stroke.colour, bands[1].stroke.colour);
}

TEST_F(Instruments, WithoutARevLimitTheWholeDialIsRed) {
  faces.revLimitRpm = 0;
  Draw({});
  const auto bands = Bands();
  ASSERT_EQ(bands.size(), 1u);
  EXPECT_NEAR(bands[0].sweepDegrees, 178, 1e-9);
}

TEST_F(Instruments, NumbersOfTheTachometerFollowTheRevLimit) {
  struct Row {
    double limit;
    std::string last;
    std::string none;
  };
  for (const Row& row : {Row{5500, "6", "7"}, Row{5501, "8", "9"}, Row{7501, "12", "13"}}) {
    faces.revLimitRpm = row.limit;
    Draw({});
    EXPECT_TRUE(Texts(false).contains(row.last)) << row.limit;
    EXPECT_FALSE(Texts(false).contains(row.none)) << row.limit;
  }
}

TEST_F(Instruments, NamesOfTheInstrumentsStandOnTheirFaces) {
  Draw({});
  for (const char* text :
       {" ERPM   X1000", "CLT °C", "MAT °C", "MAP  kPa", "INJECTOR DUTY CYCLE", "LEAN", "RICH"})
    EXPECT_EQ(Texts(false).count(text), 1u) << text;
  EXPECT_TRUE(Texts(false).contains("110"));
  EXPECT_EQ(Texts(false).count("125"), 2u);
}

TEST_F(Instruments, FahrenheitAndAirMeterHaveTheirOwnFaces) {
  faces = {.revLimitRpm = 6500, .fahrenheit = true, .temperatureUnit = "°F", .loadMaximum = 105};
  Draw({});
  EXPECT_EQ(Texts(false).count("250"), 2u);
  EXPECT_TRUE(Texts(false).contains("CLT °F"));
  EXPECT_TRUE(Texts(false).contains("MAP"));
  EXPECT_TRUE(Texts(false).contains("105"));
}

TEST_F(Instruments, DigitsStandAboveTheFaces) {
  Draw({.rpmText = "4449",
        .cltText = "87",
        .matText = "32",
        .tpsText = ".61",
        .loadText = "81.9",
        .egoText = "3.0",
        .dutyText = "37.08"});
  EXPECT_EQ(Texts(true),
            (std::multiset<std::string>{"4449", "87", "32", ".61", "81.9", "3.0", "37.08"}));
}

TEST_F(Instruments, OldReadingsAreMutedAllOfThem) {
  Draw({.rpmText = "4449", .load = 55, .egoVolts = 1, .dutyBar = 1000, .dutyOver = true, .old = true});
  for (auto kind : {PrimitiveKind::Polygon, PrimitiveKind::Disc, PrimitiveKind::Rectangle,
                    PrimitiveKind::Text})
    for (const Primitive& drawn : Drawn(kind, true))
      EXPECT_EQ(drawn.stroke.colour, colours.muted);
}

TEST_F(Instruments, BarsReachToTheirShare) {
  Draw({.load = 55, .egoVolts = 1.25, .dutyBar = 1000});
  const auto backs = Drawn(PrimitiveKind::Rectangle, false);
  const auto levels = Drawn(PrimitiveKind::Rectangle, true);
  ASSERT_EQ(backs.size(), 3u);
  ASSERT_EQ(levels.size(), 3u);
  const double shares[] = {0.5, 0.25, 1};
  for (std::size_t i = 0; i < 3; ++i) {
    const double room = backs[i].points[1].x - backs[i].points[0].x;
    EXPECT_NEAR(levels[i].points[1].x - levels[i].points[0].x, room * shares[i], 1e-6) << i;
    EXPECT_EQ(levels[i].points[0], backs[i].points[0]);
  }
}

TEST_F(Instruments, EmptyBarsDrawNothingAndFullOnesStayInside) {
  Draw({.load = 0, .egoVolts = 9, .dutyBar = 0});
  const auto levels = Drawn(PrimitiveKind::Rectangle, true);
  ASSERT_EQ(levels.size(), 1u);
  EXPECT_EQ(levels[0].points[1], Drawn(PrimitiveKind::Rectangle, false)[1].points[1]);
}

TEST_F(Instruments, DutyAtTheLimitIsWrittenInRed) {
  auto colourOf = [&](const std::string& text) {
    for (const Primitive& primitive : Drawn(PrimitiveKind::Text, true))
      if (primitive.text == text) return primitive.stroke.colour;
    return Colour{};
  };
  Draw({.dutyText = "99.99"});
  EXPECT_EQ(colourOf("99.99"), colours.figure);
  Draw({.dutyBar = 1000, .dutyText = "100.00", .dutyOver = true});
  EXPECT_EQ(colourOf("100.00"), colours.warning);
}

TEST_F(Instruments, EverythingStandsInsideAtEverySize) {
  for (auto [width, height] : {std::pair{640, 190}, {1000, 260}, {1900, 560}, {1300, 200}}) {
    Resize(width, height);
    Draw({.rpm = 8000, .rpmText = "8000"});
    for (const Primitive& primitive : Canvas().drawing.primitives)
      for (const Point& point : primitive.points) {
        EXPECT_GE(point.x, 0) << width;
        EXPECT_LE(point.x, width);
        EXPECT_GE(point.y, 0) << height;
        EXPECT_LE(point.y, height);
      }
  }
}

TEST_F(Instruments, NewReadingsKeepTheFaces) {
  Draw({.rpm = 1000});
  const std::size_t faceCount = Canvas().drawing.backgroundCount;
  const std::size_t all = Canvas().drawing.primitives.size();
  const unsigned long picture = Canvas().drawing.generation;
  DrawReadings(Canvas(), faces, {.rpm = 2000}, colours);
  EXPECT_EQ(Canvas().drawing.backgroundCount, faceCount);
  EXPECT_EQ(Canvas().drawing.primitives.size(), all);
  EXPECT_EQ(Canvas().drawing.generation, picture);
}

TEST_F(Instruments, CanvasWithoutASizeStaysEmpty) {
  Control nowhere;
  DrawFaces(nowhere, faces, colours);
  DrawReadings(nowhere, faces, {}, colours);
  EXPECT_TRUE(nowhere.drawing.primitives.empty());
}
