// Tuning the running engine: each key of the monitors changes what the simulated unit does, and the
// figures that are shown afterwards follow by the right amount.
#include <cstdlib>
#include <deque>
#include <optional>

#include "core/globalstate.h"
#include "editors/binjgraph.h"
#include "link/onfly.h"
#include "monitors/monitor1test.h"
#include "shell/navigation.h"
#include "support/headless/zemdevice.h"

namespace {

constexpr const char* analog = "Monitor1";
constexpr const char* digital = "Monitor3";

// The factory calibration with everything even that would move a figure by itself: 20 degrees, no
// VE correction, 14.64 and 40 % of GPO everywhere, and nothing by air temperature or battery.
sim::Image EvenImage() {
  struct Block {
    std::size_t first;
    std::size_t count;
    std::uint8_t value;
  };
  constexpr Block blocks[] = {
      {21, 1, 255},    // knock is never heard
      {54, 64, 85},    // advance
      {118, 64, 127},  // VE
      {192, 1, 0},     // air density
      {215, 1, 0},     // battery compensation
      {225, 12, 0},    // coolant advance
      {244, 64, 102},  // GPO
      {325, 64, 127},  // air/fuel ratio
      {448, 1, 0},     // advance by air temperature
      {465, 1, 0},     // GPO by its table
  };
  sim::Image image = sim::DefaultImage();
  for (const Block& block : blocks)
    std::fill_n(image.begin() + static_cast<std::ptrdiff_t>(block.first), block.count, block.value);
  return image;
}

struct Mean {
  double sum = 0;
  int count = 0;
  operator double() const { return count ? sum / count : 0; }
};

// A session is a row of routines, each so long after the one before.
class Tuning : public Monitor1Test {
 protected:
  void SetUp() override {
    Monitor1Test::SetUp();
    TurnOn(EvenImage());
  }
  void TearDown() override {
    device.reset();
    Monitor1Test::TearDown();
  }
  void TurnOn(const sim::Image& image) {
    device.reset();
    device.emplace(sim::ZemSettings{}, image);
    Motor().driver.Hold(20);
    AdvanceMs(30'000);  // it settles before anybody looks
  }
  sim::Engine& Motor() { return device->zem.Motor(); }
  const sim::Offsets& Offsets() { return Motor().offsets; }

  void Then(double seconds, std::function<void()> routine) {
    startMs_ += seconds * 1000;
    AfterMs(startMs_, std::move(routine));
  }
  // The mean of what a figure shows during the next so many seconds.
  const Mean& Watch(double seconds, std::string figure) {
    constexpr double everySeconds = 0.05;
    Mean& mean = means_.emplace_back();
    for (double done = 0; done < seconds; done += everySeconds)
      Then(everySeconds, [&mean, figure] {
        mean.sum += std::atof(Figure(figure).c_str());
        ++mean.count;
      });
    return mean;
  }
  // Opens the monitor, runs the routines and leaves it.
  void RunThrough(const char* monitor) {
    monitor_ = monitor;
    Then(0.1, [] { StopLive(); });
    LiveTest::Run(monitor);
    ExpectReleased();
    startMs_ = 0;
  }
  static std::string Figure(const std::string& control) {
    if (monitor_ == digital) return Seen(control);
    return control == "Erpm" ? SpeedOnTheDial() : Shown(control);
  }
  static void Type(std::string_view text) {
    TypeText(text);
    PressKey("Enter");
  }

  std::optional<ZemDevice> device;

 private:
  static std::string SpeedOnTheDial() {
    const Drawing& dials = At(Monitor1, "Dials").drawing;
    for (std::size_t i = dials.backgroundCount; i < dials.primitives.size(); ++i)
      if (dials.primitives[i].kind == PrimitiveKind::Text) return dials.primitives[i].text;
    return {};
  }
  static inline std::string_view monitor_;
  std::deque<Mean> means_;
  double startMs_ = 0;
};

}  // namespace

// ---- spark --------------------------------------------------------------------------------------

TEST_F(Tuning, FixedAdvanceAddsAndTakesAwayItsDegrees) {
  Then(2, [&] {
    EXPECT_EQ(Figure("Adv"), "20.0");
    Enter("Alt+3", "5");
  });
  Then(0.3, [&] {
    EXPECT_EQ(Offsets().advance, 21);
    EXPECT_EQ(Figure("Adv"), "24.9");
    Enter("Alt+3", "-10");
  });
  Then(0.3, [&] {
    EXPECT_EQ(Offsets().advance, 128 | 42);
    EXPECT_EQ(Figure("Adv"), "10.1");
    Enter("Alt+3", "0");
  });
  Then(0.3, [&] { EXPECT_EQ(Figure("Adv"), "20.0"); });
  RunThrough(analog);
}

// 20 degrees are too late for this load: with ten more the engine pulls better.
TEST_F(Tuning, MoreAdvanceSpeedsTheEngineUpAndZeroAdvanceSlowsItDown) {
  Then(1, [] {});
  const Mean& before = Watch(0.5, "Erpm");
  Then(0, [] { Enter("Alt+3", "10"); });
  Then(6, [] {});
  const Mean& advanced = Watch(0.5, "Erpm");
  Then(0, [] { PressKey("Alt+1"); });
  Then(4, [] {});
  const Mean& late = Watch(0.5, "Erpm");
  RunThrough(analog);
  EXPECT_GT(before, 1500);
  EXPECT_GT(advanced, before + 50);
  EXPECT_LT(late, before - 200);
}

TEST_F(Tuning, FirstOptionSetsAdvanceToZeroAndTheSecondClearsIt) {
  Then(2, [] { PressKey("Alt+1"); });
  Then(0.3, [&] {
    EXPECT_TRUE(Offsets().zeroAdvance);
    EXPECT_EQ(Figure("Adv"), ".0");
    EXPECT_TRUE(At(Monitor1, "Option1").checked);
    PressKey("Alt+2");
  });
  Then(0.3, [&] {
    EXPECT_FALSE(Offsets().zeroAdvance);
    EXPECT_EQ(Figure("Adv"), "20.0");
  });
  RunThrough(analog);
}

// ---- fuel ---------------------------------------------------------------------------------------

TEST_F(Tuning, GamaOffsetShowsInGamaAndInTheInjectorsTime) {
  Then(1, [] { PressKey("C"); });
  Then(5, [&] { EXPECT_EQ(Figure("Gama"), "100%"); });
  const Mean& before = Watch(0.5, "InjOn");
  Then(0, [] { Enter("Alt+4", "20"); });
  Then(0.2, [&] {
    EXPECT_EQ(Offsets().gama, 51);
    EXPECT_EQ(Figure("Gama"), "120%");
  });
  const Mean& richer = Watch(0.5, "InjOn");
  Then(0, [] { Enter("Alt+4", "-10"); });
  Then(0.2, [&] {
    EXPECT_EQ(Offsets().gama, 128 | 26);
    EXPECT_EQ(Figure("Gama"), "90%");
  });
  const Mean& leaner = Watch(0.5, "InjOn");
  RunThrough(analog);
  // The half millisecond of the injector offset is not multiplied.
  EXPECT_NEAR((richer - 0.5) / (before - 0.5), 1.2, 0.04);
  EXPECT_NEAR((leaner - 0.5) / (before - 0.5), 0.9, 0.04);
}

TEST_F(Tuning, TogShowsInItsFieldInTheInjectorsTimeAndInTheMixture) {
  Then(1, [] { PressKey("C"); });
  Then(5, [&] { EXPECT_EQ(Shown("Text5"), "6.87"); });
  const Mean& before = Watch(0.5, "InjOn");
  const Mean& ratioBefore = Watch(1, "AfrActual");
  Then(0, [] { Enter("Alt+5", "8"); });
  Then(0.2, [&] {
    EXPECT_EQ(Offsets().togHigh, 3);
    EXPECT_EQ(Offsets().togLow, 232);  // 1000 counts of 8 us
    EXPECT_EQ(Shown("Text5"), "8.00");
  });
  const Mean& longer = Watch(0.5, "InjOn");
  Then(1, [] {});
  const Mean& ratioAfter = Watch(1, "AfrActual");
  RunThrough(analog);
  EXPECT_NEAR((longer - 0.5) / (before - 0.5), 8 / 6.872, 0.04);
  EXPECT_LT(ratioAfter, ratioBefore - 1);
}

TEST_F(Tuning, InjectorOffsetAddsItsMillisecondsToEachPulse) {
  Then(1, [&] {
    EXPECT_EQ(Shown("Text6"), ".500");
    PressKey("C");
  });
  Then(5, [] {});
  const Mean& before = Watch(0.5, "InjOn");
  Then(0, [] { Enter("Alt+6", "1.5"); });
  Then(0.2, [&] { EXPECT_EQ(Offsets().injector, 12); });
  const Mean& longer = Watch(0.5, "InjOn");
  Then(0, [] { Enter("Alt+6", "-0.25"); });
  Then(0.2, [&] { EXPECT_EQ(Offsets().injector, 128 | 2); });
  const Mean& shorter = Watch(0.5, "InjOn");
  RunThrough(analog);
  EXPECT_NEAR(longer - before, 1, 0.1);
  EXPECT_NEAR(shorter - before, -0.75, 0.1);
}

// Where the throttle tells the load, a volt more that counts as closed is less load.
TEST_F(Tuning, TpsBlendOffsetShowsInItsFieldAndInTheInjectorsTime) {
  sim::Image blended = EvenImage();
  std::fill_n(blended.begin() + 439, 8, std::uint8_t{128});
  blended[218] = 5;  // TOG of 11.68 ms: the throttle tells less load than there is
  blended[219] = 180;
  TurnOn(blended);
  Then(1, [] { PressKey("C"); });
  Then(3, [&] { EXPECT_EQ(Shown("Text7"), ".84"); });
  const Mean& before = Watch(0.4, "InjOn");
  Then(0, [] { Enter("Alt+7", "0.2"); });
  Then(0.2, [&] {
    EXPECT_EQ(Offsets().tpsBlend, 10);
    EXPECT_EQ(Shown("Text7"), ".20");
  });
  const Mean& longer = Watch(0.4, "InjOn");
  RunThrough(analog);
  // 1.38 V is 12.9 % of the way from 0.84 V to 5 V, and 24.7 % of that from 0.2 V: half of 12.3
  // kPa.
  EXPECT_NEAR(longer - before, 11.68 * 0.5 * (0.247 - 0.129) * 104 / 94, 0.1);
}

TEST_F(Tuning, AfrOffsetMovesTheDesiredRatioAndTheMixtureFollowsInClosedLoop) {
  Then(1, [&] { EXPECT_EQ(Figure("AfrDesired"), "14.64"); });
  const Mean& before = Watch(2, "AfrActual");
  Then(0, [] {
    PressKey("Alt+9");
    for (int i = 0; i < 10; ++i) PressKey("Down");
    PressKey("Enter");
  });
  Then(0.3, [&] {
    EXPECT_EQ(Offsets().afr, 10);
    EXPECT_EQ(Figure("AfrDesired"), "14.09");  // 14.64 / (265 / 255)
  });
  Then(6, [] {});
  const Mean& after = Watch(2, "AfrActual");
  Then(0, [] {
    PressKey("Alt+9");
    PressKey("Esc");
  });
  Then(0.3, [&] {
    EXPECT_EQ(Offsets().afr, 0);
    EXPECT_EQ(Figure("AfrDesired"), "14.64");
  });
  RunThrough(analog);
  EXPECT_NEAR(before, 14.64, 0.15);
  EXPECT_NEAR(after, 14.09, 0.15);
}

// ---- the output ---------------------------------------------------------------------------------

TEST_F(Tuning, GpoOffsetAddsItsPercent) {
  Then(2, [&] {
    EXPECT_EQ(Figure("Gpo"), "40");
    Enter("Alt+8", "20");
  });
  Then(0.3, [&] {
    EXPECT_EQ(Offsets().gpo, 51);
    EXPECT_EQ(Figure("Gpo"), "60");
    Enter("Alt+8", "-30");
  });
  Then(0.3, [&] {
    EXPECT_EQ(Offsets().gpo, 256 - 76);
    EXPECT_EQ(Figure("Gpo"), "10");
  });
  RunThrough(analog);
}

// ---- the loop -----------------------------------------------------------------------------------

// Seven percent too much fuel: closed, the loop takes it out again; open, it stays.
TEST_F(Tuning, COpensAndClosesTheLoopOnBothMonitors) {
  for (const char* monitor : {analog, digital}) {
    SCOPED_TRACE(monitor);
    sim::Image rich = EvenImage();
    rich[219] = 153;  // TOG of 7.37 ms
    TurnOn(rich);
    Then(1, [] {});
    const Mean& closed = Watch(2, "EgoCr");
    const Mean& corrected = Watch(2, "AfrActual");
    Then(0, [] { PressKey("C"); });
    Then(0.3, [&] {
      EXPECT_TRUE(Offsets().openLoop);
      EXPECT_EQ(Figure("EgoCr"), "OPEN");
      EXPECT_EQ(Motor().EgoCorrection(), 0);
    });
    Then(2, [&] { EXPECT_EQ(Motor().EgoCorrection(), 0) << "it stays where it is"; });
    const Mean& open = Watch(2, "AfrActual");
    Then(0, [] { PressKey("C"); });
    Then(10, [&] { EXPECT_FALSE(Offsets().openLoop); });
    const Mean& again = Watch(2, "EgoCr");
    RunThrough(monitor);
    EXPECT_LT(closed, -2);
    EXPECT_NEAR(corrected, 14.64, 0.2);
    EXPECT_LT(open, corrected - 0.3);
    EXPECT_NEAR(again, closed, 1.5);
  }
}

TEST_F(Tuning, ALoopLeftOpenIsGivenBackToTheUnit) {
  for (const char* monitor : {analog, digital}) {
    SCOPED_TRACE(monitor);
    Then(2, [] { PressKey("C"); });
    Then(1, [&] { EXPECT_TRUE(Offsets().openLoop); });
    RunThrough(monitor);
    EXPECT_FALSE(Offsets().openLoop);
    EXPECT_TRUE(ClosedLoop);
  }
}

// ---- the engine ---------------------------------------------------------------------------------

TEST_F(Tuning, KStopsTheEngineOnBothMonitors) {
  for (const char* monitor : {analog, digital}) {
    SCOPED_TRACE(monitor);
    TurnOn(EvenImage());
    Motor().driver.Hold(0);
    Then(3, [&] {
      EXPECT_EQ(Motor().Now(), sim::Engine::State::Running);
      EXPECT_GT(std::atof(Figure("Erpm").c_str()), 600);
      EXPECT_GT(std::atof(Figure("InjOn").c_str()), 1);
      PressKey("K");
    });
    Then(5, [&] {
      EXPECT_EQ(Motor().Now(), sim::Engine::State::Off);
      EXPECT_EQ(Figure("Erpm"), monitor == analog ? "" : "0");
      EXPECT_EQ(Figure("InjOn"), ".00");
      EXPECT_EQ(Figure("InjOff"), ".00");
    });
    RunThrough(monitor);
  }
}

// ---- from one session to the next ---------------------------------------------------------------

// What was tuned stays in the unit until it is turned off; a session that opens takes back all but
// gama and injector offset.
TEST_F(Tuning, TheNextSessionFindsGamaAndInjectorOffsetAndClearsTheOthers) {
  Then(1, [] { Enter("Alt+3", "5"); });
  Then(0.3, [] { Enter("Alt+4", "20"); });
  Then(0.3, [] { Enter("Alt+6", "1.5"); });
  Then(0.3, [] { Enter("Alt+8", "20"); });
  Then(0.3, [] { PressKey("Alt+1"); });
  Then(0.3, [] {});
  RunThrough(analog);
  EXPECT_EQ(Offsets().advance, 21);
  EXPECT_EQ(Offsets().gpo, 51);
  EXPECT_TRUE(Offsets().zeroAdvance);

  Then(1, [&] {
    EXPECT_EQ(Offsets().advance, 0);
    EXPECT_EQ(Offsets().gpo, 0);
    EXPECT_FALSE(Offsets().zeroAdvance);
    EXPECT_EQ(Offsets().gama, 51);
    EXPECT_EQ(Offsets().injector, 12);
    EXPECT_EQ(Figure("Adv"), "20.0");
    EXPECT_EQ(Figure("Gpo"), "40");
    EXPECT_EQ(Figure("Gama"), "120");
    EXPECT_EQ(InjectorOffset, 1.5);
    EXPECT_NEAR(GamaNow, 20, 0.2);
  });
  RunThrough(digital);

  device->zem.PowerCycle();
  Then(1, [&] {
    EXPECT_EQ(Offsets().injector, 4) << "as the calibration says";
    EXPECT_EQ(Shown("Text6"), ".500");
  });
  RunThrough(analog);
}

// ---- memory writes ------------------------------------------------------------------------------

TEST_F(Tuning, InjectorOffsetOfTheEditorArrivesInTheMemoryAndLengthensThePulse) {
  GoTo("Binj_graph");
  Then(1, [] {
    ActivateScreen(Monitor3);
    PressKey("C");
  });
  Then(5, [] {});
  const Mean& before = Watch(0.5, "InjOn");
  Then(0, [] {
    ClickOn(BinjGraph().screen, "Text2");
    Type("2.5");
  });
  Then(0.3, [&] {
    EXPECT_EQ(device->zem.Memory()[2], 20);
    EXPECT_EQ(Offsets().injector, 20);
    EXPECT_EQ(CalValues[2], 2.5F);
  });
  const Mean& longer = Watch(0.3, "InjOn");
  RunThrough(digital);
  EXPECT_NEAR(longer - before, 2, 0.15);
}

TEST_F(Tuning, LeastTurnOnTimeOfTheEditorHoldsThePulseUp) {
  GoTo("Binj_graph");
  Then(2, [&] {
    EXPECT_LT(std::atof(Figure("InjOn").c_str()), 5);
    ClickOn(BinjGraph().screen, "Text11");
    Type("6");
  });
  Then(0.3, [&] {
    EXPECT_EQ(device->zem.Memory()[323], 192);
    EXPECT_EQ(CalValues[344], 6);
    EXPECT_EQ(Figure("InjOn"), "6.00");
  });
  RunThrough(digital);
}
