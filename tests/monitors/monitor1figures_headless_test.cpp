// The analog monitor's instruments, lamps and fields from the bytes of a frame to what is drawn, in
// numbers; its panels, its way to the editors, and how long it waits for a frame.
#include <cmath>
#include <numbers>

#include "core/globalstate.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "monitors/livesession.h"
#include "monitors/monitor1test.h"
#include "platform/loop.h"

namespace {

constexpr Colour red = Rgb(220, 40, 40);
constexpr Colour green = Rgb(30, 150, 60);

class Monitor1Figures : public Monitor1Test {
 protected:
  void SetUp() override {
    Monitor1Test::SetUp();
    unit.frame[4] = 41;   // 98 °C
    unit.frame[8] = 100;  // 61 °C
  }
  static std::vector<Primitive> Drawn(PrimitiveKind kind, bool foreground) {
    const Drawing& drawing = At(Monitor1, "Dials").drawing;
    std::vector<Primitive> found;
    for (std::size_t i = 0; i < drawing.primitives.size(); ++i)
      if (drawing.primitives[i].kind == kind && (i >= drawing.backgroundCount) == foreground)
        found.push_back(drawing.primitives[i]);
    return found;
  }
  static bool OnFaces(std::string_view text) {
    for (const Primitive& primitive : Drawn(PrimitiveKind::Text, false))
      if (primitive.text == text) return true;
    return false;
  }
  // Where the needles of ERPM, CLT, MAT and TPS point, in degrees from three o'clock.
  static std::vector<int> Needles() {
    std::vector<int> degrees;
    const auto needles = Drawn(PrimitiveKind::Polygon, true);
    const auto hubs = Drawn(PrimitiveKind::Disc, true);
    for (std::size_t i = 0; i < needles.size() && i < hubs.size(); ++i) {
      const Point tip = needles[i].points.at(0), hub = hubs[i].points.at(0);
      const double turned = std::atan2(hub.y - tip.y, tip.x - hub.x) * 180 / std::numbers::pi;
      degrees.push_back(static_cast<int>(std::lround(turned)));
    }
    return degrees;
  }
  // How far the bars of MAP, EGO and duty reach, in thousandths.
  static std::vector<int> Bars() {
    std::vector<int> shares;
    const auto backs = Drawn(PrimitiveKind::Rectangle, false);
    const auto levels = Drawn(PrimitiveKind::Rectangle, true);
    for (std::size_t i = 0; i < backs.size() && i < levels.size(); ++i)
      shares.push_back(
          static_cast<int>(std::lround(1000 * (levels[i].points[1].x - levels[i].points[0].x) /
                                       (backs[i].points[1].x - backs[i].points[0].x))));
    return shares;
  }
  static Colour Lamp(const char* name) { return At(Monitor1, name).backColour; }
};

}  // namespace

TEST_F(Monitor1Figures, NeedlesPointToTheirStepsInBothUnits) {
  CalValues[4] = 7000;  // 8000 rev/min are the whole dial
  Work([] {
    // 177 degrees is the left end: 4449 rev/min are step 100, 98 °C 132, 61 °C 82, 1.25 V 45.
    EXPECT_EQ(Needles(), (std::vector<int>{77, 45, 95, 132}));
    EXPECT_TRUE(OnFaces("125"));
    PressKey("T");
    Later([] {
      EXPECT_EQ(Needles(), (std::vector<int>{77, 36, 82, 132}));  // 208.4 °F are 141, 141.8 °F 95
      EXPECT_TRUE(OnFaces("250"));
      EXPECT_FALSE(OnFaces("125"));
    });
  });
}

TEST_F(Monitor1Figures, BarsReachAsFarAsTheirValuesInBothUnits) {
  Work([] {
    EXPECT_EQ(Bars(), (std::vector<int>{744, 600, 370}));  // 81.88 of 110 kPa, 3 of 5 V, 37.08 %
    EXPECT_TRUE(OnFaces("110"));
    PressKey("T");
    Later([] {
      EXPECT_EQ(Bars(), (std::vector<int>{756, 600, 370}));  // 24.18 of 32 inches
      EXPECT_TRUE(OnFaces("32"));
    });
  });
}

TEST_F(Monitor1Figures, TachometerFollowsTheRevLimit) {
  struct Row {
    float limit;
    const char* last;
    int needle;
  };
  for (const Row& row :
       {Row{5500, "6", 44}, Row{5501, "8", 77}, Row{7500, "8", 77}, Row{7501, "12", 111}}) {
    CalValues[4] = row.limit;
    unit.frames = 0;
    Work([&] {
      EXPECT_TRUE(OnFaces(row.last)) << row.limit;
      EXPECT_EQ(Needles().at(0), row.needle) << row.limit;
    });
  }
}

TEST_F(Monitor1Figures, LampsAreRedWhenSomethingIsWrongAndGreenOtherwise) {
  CalValues[4] = 4449;
  Work(
      [&] {
        for (const char* lamp : {"OverRev", "SensorFailed", "IntermittentFail"})
          EXPECT_EQ(Lamp(lamp), green) << lamp;
        CalValues[4] = 4448;
        Later([&] {
          EXPECT_EQ(Lamp("OverRev"), red);
          EXPECT_EQ(Lamp("SensorFailed"), green);
          EXPECT_EQ(Lamp("IntermittentFail"), green);
          unit.frame[11] = 1;
          Later([&] {
            EXPECT_EQ(Lamp("SensorFailed"), red);
            EXPECT_EQ(Lamp("IntermittentFail"), green);
            unit.frame[11] = 0;
            unit.frame[16] = 126;
            Later([] {
              EXPECT_EQ(Lamp("SensorFailed"), green);
              EXPECT_EQ(Lamp("IntermittentFail"), red);
            });
          });
        });
      },
      300);
}

TEST_F(Monitor1Figures, FahrenheitDigitsStandOnTheDials) {
  ImperialUnits = true;
  Work([] {
    std::vector<std::string> texts;
    for (const Primitive& text : Drawn(PrimitiveKind::Text, true)) texts.push_back(text.text);
    EXPECT_EQ(texts,
              (std::vector<std::string>{"4449", "208", "142", "1.25", "24.2", "3.0", "37.08"}));
  });
}

TEST_F(Monitor1Figures, FrameIsWaitedForThrough32720PassesAndAskedAgain) {
  std::vector<std::int64_t> asked;
  unit.mute = [](std::string_view command) { return command == "F"; };
  unit.onFrame = [&] { asked.push_back(PassCount()); };
  AfterFrames(3, [] { StopLive(); });
  Run("Monitor1");
  ASSERT_EQ(asked.size(), 3U);
  EXPECT_EQ(asked[1] - asked[0], 32720);
  EXPECT_EQ(asked[2] - asked[1], 32720);
}

TEST_F(Monitor1Figures, FiguresAndDialsAreMutedWhileNoFrameComes) {
  bool silent = false;
  unit.mute = [&](std::string_view command) { return silent && command == "F"; };
  auto ExpectColours = [](Colour figure, bool muted) {
    EXPECT_EQ(At(Monitor1, "Adv").foreColour, figure);
    for (const Primitive& digits : Drawn(PrimitiveKind::Text, true))
      EXPECT_EQ(digits.stroke.colour, figure) << digits.text;
    for (auto kind : {PrimitiveKind::Polygon, PrimitiveKind::Disc, PrimitiveKind::Rectangle})
      for (const Primitive& drawn : Drawn(kind, true))
        EXPECT_EQ(drawn.stroke.colour == ColoursOfSetting().muted, muted);
  };
  AfterMs(400, [&] {
    ExpectColours(ColoursOfSetting().figure, false);
    silent = true;
  });
  AfterMs(1800, [&] {
    ExpectColours(ColoursOfSetting().muted, true);
    EXPECT_EQ(Shown("Adv"), "20.0");
    silent = false;
  });
  AfterMs(3000, [&] {
    ExpectColours(ColoursOfSetting().figure, false);
    StopLive();
  });
  Run("Monitor1");
  ExpectReleased();
}

// ---- fields -------------------------------------------------------------------------------------

TEST_F(Monitor1Figures, InjectorOffsetThatTheUnitHoldsIsShown) {
  unit.mute = [](std::string_view command) {
    if (command != "G") return false;
    const std::string line = "S113B600F8008C" + std::string(26, '0') + "00\r";  // 12 eighths less
    AfterMs(1, [line] { DeliverAt("COM1", NowUs(), {line.begin(), line.end()}); });
    return true;
  };
  Work([&] {
    EXPECT_EQ(Shown("Text6"), "-1.500");
    EXPECT_EQ(OnInjOffset, -1.5);
  });
}

// A frame that is shown before the command is out must not take the entry off its field.
TEST_F(Monitor1Figures, EntryStandsUntilItIsSent) {
  Work([&] {
    Enter("Alt+5", "20");
    Enter("Alt+7", "1.25");
    Enter("Alt+6", "2");
    PressKey("F");  // shows the last frame once more
    EXPECT_EQ(Shown("Text5"), "20.00");
    EXPECT_EQ(Shown("Text7"), "1.25");
    EXPECT_EQ(Shown("Text6"), "2.00");
  });
}

TEST_F(Monitor1Figures, WishedRatioStandsThroughAChangeOfUnits) {
  Work([] {
    PressKey("Alt+9");
    PressKey("Up");
    PressKey("Up");
    EXPECT_EQ(Shown("AfrDesired"), "15.36");  // 14.64 * 255 / 243
    PressKey("T");
    EXPECT_EQ(Shown("AfrDesired"), "15.36");
    EXPECT_EQ(Shown("Text9"), "15.36");
    SetFocus(At(Monitor1, "Command1"));
  });
}

// ---- panels and ways out ------------------------------------------------------------------------

TEST_F(Monitor1Figures, PanelsGoWithTheMonitor) {
  Work([] {
    PressKey("F1");
    EXPECT_TRUE(Monitor1Help.visible);
    ActivateScreen(Monitor1);
    Enter("Alt+3", "99");
    EXPECT_TRUE(MonitorInputError.visible);
  });
  EXPECT_FALSE(Monitor1Help.loaded);
  EXPECT_FALSE(MonitorInputError.loaded);
  ExpectReleased();
}

TEST_F(Monitor1Figures, EWithoutACalibrationAsksForOne) {
  CurrentBinPath.clear();
  AnswerNextFile(std::nullopt);
  Work([] { PressKey("E"); });
  EXPECT_EQ(TakeBox().kind, "open");
  ExpectReleased();
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(Monitor1Figures, OldPromEndsTheScreenWithoutRetry) {
  unit.wrongSecond = "R3";
  Run("Monitor1");
  EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
  EXPECT_EQ(unit.TakeHeard(), "RU00 G C R300");
  ExpectReleased();
  EXPECT_FALSE(helpfrm.loaded);
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(Monitor1Figures, KeysActWhileTheSessionOpens) {
  unit.mute = [](std::string_view command) { return command == "R700"; };
  AfterMs(150, [&] {
    PressKey("T");
    EXPECT_TRUE(ImperialUnits);
    EXPECT_TRUE(OnFaces("CLT °F"));
    EXPECT_TRUE(Needles().empty());
    PressKey("F");
    EXPECT_FALSE(FuelInLitres);
    EXPECT_EQ(Shown("Adv"), "");
    PressKey("F1");
    EXPECT_TRUE(Monitor1Help.visible);
    ActivateScreen(Monitor1);
    PressKey("C");
    EXPECT_FALSE(ClosedLoop);
    PressKey("Esc");
    AfterMs(1, [] { EXPECT_FALSE(Monitor1.loaded); });
  });
  Run("Monitor1");
  EXPECT_EQ(unit.TakeHeard(), "RU00 G C R300 R400 R600 R700 RU00");
  ExpectReleased();
}
