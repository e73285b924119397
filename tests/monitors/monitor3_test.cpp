// The digital monitor: its figures, keys, status field and the order of its commands.
#include "monitors/monitor3.h"

#include <array>
#include <set>

#include "core/globalstate.h"
#include "core/settings.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "monitors/livetest.h"
#include "platform/frame.h"
#include "platform/loop.h"
#include "shell/mainframe.h"

namespace {

class Monitor3Test : public LiveTest {
 protected:
  void SetUp() override {
    LiveTest::SetUp();
    unit.frame = KnownFrame();
    unit.frame[19] = 0;  // what is sent of an AFR offset counts from here
  }
  // Strikes K while a command has no answer; what comes then is up to the test.
  void KillDuringACommand(std::function<void()> then) {
    unit.mute = [](std::string_view command) { return command == "R311"; };
    AfterFrames(4, [this, then = std::move(then)] {
      unit.TakeHeard();
      PendAdv = 1;
      OnAdvance = 4;
      AfterMs(60, [] { TypeText("k"); });
      AfterMs(100, [this, then] {
        EXPECT_EQ(unit.TakeHeard(), "R311");
        then();
      });
    });
    Run();
  }
  void RunUntilShown(std::function<void()> look) {
    AfterFrames(4, [look = std::move(look)] {
      AfterMs(20, [look] {
        look();
        PressKey("Esc");
      });
    });
    Run();
  }
};

std::string Celsius(int byte) {
  return std::to_string(ThermistorTable[static_cast<std::size_t>(byte)]);
}
std::string InFahrenheit(int byte) {
  const double shown = 32 + 9 * (ThermistorTable[static_cast<std::size_t>(byte)] / 5.0);
  return std::to_string(static_cast<int>(shown + 0.5));
}

}  // namespace

// ---- figures ------------------------------------------------------------------------------------

TEST_F(Monitor3Test, EveryFigureStandsInItsFormatWithCaptionAndUnit) {
  struct Expected {
    const char* control;
    std::string caption, text, unit;
  };
  const Expected all[] = {
      {"Erpm", "ERPM", "4449", ""},
      {"Adv", "ADV", "20.0", "DEGS"},
      {"Map", "MAP", "81.9", "kPa"},
      {"Clt", "CLT", Celsius(100), "°C"},
      {"Mat", "MAT", Celsius(150), "°C"},
      {"Tps", "TPS", "1.25", "V."},
      {"Ego", "EGO", "3.0", "V."},
      {"EgoCr", "EGO CR", "20", ""},
      {"Gpo", "GPO", "20", ""},
      {"Bat", "BAT", "13.8", "V."},
      {"Duty", "INJ DUTY", "37.08", ""},
      {"Gama", "GAMA", "150", ""},
      {"Knock", "KNOCK", "20", ""},
      {"FuelFlow", "FUEL FLOW", "56.06", "LPH"},
      {"AfrActual", "AFR", "14.64", "ACTL"},
      {"AfrDesired", "AFR", "15.24", "DES"},
      {"InjOn", "INJ", "5.00", "ON"},
      {"InjOff", "INJ", "8.49", "OFF"},
  };
  EXPECT_EQ(std::size(all), Monitor3Figures().size());
  RunUntilShown([&] {
    for (const Expected& row : all) {
      EXPECT_EQ(Seen(row.control), row.text) << row.control;
      EXPECT_EQ(Seen(std::string(row.control) + "Caption"), row.caption);
      EXPECT_EQ(Seen(std::string(row.control) + "Unit"), row.unit) << row.control;
    }
  });
}

TEST_F(Monitor3Test, FiguresAreEmptyAndStatusIsOffBeforeTheFirstFrame) {
  int looked = 0;
  unit.onFrame = [&] {
    if (unit.frames != 1) return;
    ++looked;
    EXPECT_EQ(Seen("Status"), "ONFLY OFF");
    for (const LiveFigure& figure : Monitor3Figures()) EXPECT_EQ(Seen(figure.control), "");
  };
  RunUntilShown([] {});
  EXPECT_EQ(looked, 1);
}

TEST_F(Monitor3Test, TTurnsUnitsAtOnce) {
  RunUntilShown([] {
    PressKey("T");
    EXPECT_TRUE(ImperialUnits);
    EXPECT_EQ(Seen("Map"), "24.2");
    EXPECT_EQ(Seen("MapUnit"), "IN-Hg");
    EXPECT_EQ(Seen("Clt"), InFahrenheit(100));
    EXPECT_EQ(Seen("CltUnit"), "°F");
    EXPECT_EQ(Seen("Mat"), InFahrenheit(150));
    EXPECT_EQ(Seen("MatUnit"), "°F");
    TypeText("t");
    EXPECT_FALSE(ImperialUnits);
    EXPECT_EQ(Seen("Map"), "81.9");
    EXPECT_EQ(Seen("MapUnit"), "kPa");
  });
}

TEST_F(Monitor3Test, FTurnsFuelFlowAtOnce) {
  RunUntilShown([] {
    PressKey("F");
    EXPECT_FALSE(FuelInLitres);
    EXPECT_EQ(Seen("FuelFlow"), "14.79");
    EXPECT_EQ(Seen("FuelFlowUnit"), "GPH");
    TypeText("f");
    EXPECT_EQ(Seen("FuelFlow"), "56.06");
    EXPECT_EQ(Seen("FuelFlowUnit"), "LPH");
  });
}

TEST_F(Monitor3Test, FuelFlowIsZeroWithoutInjectorSize) {
  CalValues[474] = 0;
  RunUntilShown([] { EXPECT_EQ(Seen("FuelFlow"), "0"); });
}

TEST_F(Monitor3Test, MafSensorShowsPercentWithoutUnit) {
  LoadMode = "MAF";
  ImperialUnits = true;
  RunUntilShown([] {
    EXPECT_EQ(Seen("Map"), "78.4");
    EXPECT_EQ(Seen("MapUnit"), "");
  });
}

TEST_F(Monitor3Test, GamaReadsDisWhileKnockControlIsDisabled) {
  unit.optionFlags = 0xE8;
  RunUntilShown([] { EXPECT_EQ(Seen("Gama"), "DIS"); });
}

TEST_F(Monitor3Test, DutyCaptionIsRedAboveHundredPercentOnly) {
  unit.frame[25] = 6;  // 13.48 ms of 13.485
  unit.frame[26] = 149;
  Colour normal = 0;
  AfterFrames(4, [&] {
    AfterMs(20, [&] {
      normal = At(Monitor3, "DutyCaption").foreColour;
      EXPECT_EQ(Seen("Duty"), "99.95");
      unit.frame[26] = 151;
      AfterMs(40, [&] {
        EXPECT_EQ(Seen("Duty"), "100.07");
        EXPECT_EQ(At(Monitor3, "DutyCaption").foreColour, ColoursOfSetting().warning);
        unit.frame[26] = 149;
        AfterMs(40, [&] {
          EXPECT_EQ(At(Monitor3, "DutyCaption").foreColour, normal);
          PressKey("Esc");
        });
      });
    });
  });
  Run();
  EXPECT_EQ(normal, ColoursOfSetting().caption);
  EXPECT_NE(normal, ColoursOfSetting().warning);
}

// One frame a picture: the speed follows every second one, the advance every one.
TEST_F(Monitor3Test, ErpmIsTheMeanOfPairsAndFollowsEverySecondFrame) {
  std::vector<std::string> seen;
  unit.mute = [](std::string_view command) { return command == "F"; };
  unit.onFrame = [&] {
    AfterMs(30, [&] {
      LiveFrame frame{};
      frame[0] = static_cast<std::uint8_t>(4 * unit.frames);
      frame[2] = static_cast<std::uint8_t>(17 * unit.frames);
      DeliverAt("COM1", NowUs(), {frame.begin(), frame.end()});
    });
    AfterMs(1, [&] { seen.push_back(Seen("Erpm") + " at " + Seen("Adv")); });
  };
  AfterFrames(6, [] { AfterMs(2, [] { PressKey("Esc"); }); });
  Run();
  // 4 * 256 counts are 1518 rev/min, 8 * 256 are 3037 and so on.
  EXPECT_EQ(seen, (std::vector<std::string>{" at ", "0 at 4.0", "2278 at 8.0", "2278 at 12.0",
                                            "5316 at 16.0", "5316 at 20.0"}));
}

TEST_F(Monitor3Test, CaptionOfTheWindowAsksForTheClick) {
  EXPECT_EQ(Monitor3.title, "Click Form to Activate Keys    \"F1\" For Help");
  EXPECT_EQ(Monitor3.placement, ScreenPlacement::Above);
}

TEST_F(Monitor3Test, ContrastSettingPicksBlueOrBlack) {
  StoreSetting("Options", "Monitor Screen", 0);
  RunUntilShown([] {
    EXPECT_GT(BlueOf(Monitor3.backColour), 100U);
    EXPECT_EQ(RedOf(Monitor3.backColour), 0U);
    EXPECT_EQ(At(Monitor3, "Erpm").backColour, Monitor3.backColour);
  });
  StoreSetting("Options", "Monitor Screen", 1);
  unit.frames = 0;
  RunUntilShown([] {
    EXPECT_EQ(Monitor3.backColour, Black);
    ActivateScreen(Monitor3);  // the calibration screen kept the keys
    EXPECT_EQ(At(Monitor3, "Erpm").backColour, Black);
  });
}

TEST_F(Monitor3Test, EveryFigureHasAFixedWidthThatTakesItsWidestText) {
  RunUntilShown([] {
    for (const LiveFigure& figure : Monitor3Figures()) {
      const Control& control = At(Monitor3, figure.control);
      EXPECT_GE(control.widthChars, 6) << figure.control;
      EXPECT_EQ(control.textAlign, Align::Right) << figure.control;
      EXPECT_GT(At(Monitor3, std::string(figure.control) + "Unit").widthChars, 0);
    }
    EXPECT_GT(At(Monitor3, "Status").widthChars, 12);
  });
}

// ---- keys ---------------------------------------------------------------------------------------

TEST_F(Monitor3Test, CTurnsTheLoopAtOnceAndSendsItWithTheNextPass) {
  AfterFrames(4, [this] {
    unit.TakeHeard();
    PressKey("C");
    EXPECT_FALSE(ClosedLoop);
    EXPECT_EQ(PendEgo, 1);
    EXPECT_EQ(unit.TakeHeard(), "");
    AfterMs(60, [this] {
      EXPECT_EQ(unit.TakeHeard(), "RUFF");
      EXPECT_EQ(Seen("EgoCr"), "OPEN");
      TypeText("c");
      EXPECT_TRUE(ClosedLoop);
      AfterMs(60, [this] {
        EXPECT_EQ(unit.TakeHeard(), "RU00");
        EXPECT_EQ(Seen("EgoCr"), "20");
        PressKey("Esc");
      });
    });
  });
  Run();
  EXPECT_EQ(unit.TakeHeard(), "");  // nothing to give back
  ExpectReleased();
}

TEST_F(Monitor3Test, EnterKeepsItsCodeAndDoesNothingElse) {
  RunUntilShown([] {
    PressKey("Enter");
    EXPECT_EQ(Monitor3KeyCode, 13);
    EXPECT_EQ(MonitorStop, 0);
    EXPECT_TRUE(Monitor3.loaded);
  });
}

TEST_F(Monitor3Test, KeysWithCtrlDoNothing) {
  RunUntilShown([] {
    for (const char* key : {"Ctrl+T", "Ctrl+C", "Ctrl+F", "Ctrl+K"}) PressKey(key);
    EXPECT_FALSE(ImperialUnits);
    EXPECT_TRUE(ClosedLoop);
    EXPECT_TRUE(FuelInLitres);
    EXPECT_EQ(TakePopUpMenu(), "");
  });
  EXPECT_EQ(unit.TakeHeard(), opening);
}

TEST_F(Monitor3Test, KKillsTheEngineAndForgetsTheKillBeforeProgramming) {
  KillFirst = true;
  RunUntilShown([this] {
    unit.TakeHeard();
    const std::int64_t before = NowUs();
    PressKey("K");
    EXPECT_EQ(unit.TakeHeard(), "K");
    EXPECT_EQ(NowUs() - before, 100'000);
    EXPECT_FALSE(KillFirst);
  });
}

TEST_F(Monitor3Test, KeyThatIsHeldDownActsOnce) {
  RunUntilShown([this] {
    unit.TakeHeard();
    PressKey("C");
    PressKey("T");
    PressKey("F");
    PressKey("K");
    for (const char* key : {"C", "T", "F", "K", "Esc"}) RepeatKey(key);
    EXPECT_FALSE(ClosedLoop);
    EXPECT_TRUE(ImperialUnits);
    EXPECT_FALSE(FuelInLitres);
    EXPECT_EQ(unit.TakeHeard(), "K");
    EXPECT_EQ(MonitorStop, 0);
  });
}

TEST_F(Monitor3Test, KDuringACommandGoesOutBehindIt) {
  KillDuringACommand([this] {
    DeliverAt("COM1", NowUs(), {'A', 'X'});
    AfterMs(300, [this] {
      EXPECT_EQ(unit.TakeHeard(), "K");
      PressKey("Esc");
    });
  });
}

TEST_F(Monitor3Test, KDuringACommandIsSentOnLeavingWhenItsAnswerNeverComes) {
  KillDuringACommand([] { PressKey("Esc"); });
  EXPECT_EQ(unit.TakeHeard(), "K");
  ExpectReleased();
}

// The engine that runs when the session is taken up again is not the one that was to be killed.
TEST_F(Monitor3Test, KThatCouldNotBeSentBeforeTheCableWasPulledIsForgotten) {
  bool pulled = false;
  unit.mute = [&](std::string_view command) { return command == "R700" && !pulled; };
  AfterMs(150, [] { AskToKillEngine(); });
  AfterMs(180, [&] { DeviceNamed("COM1")->gone = pulled = true; });
  const int timer = StartTimer(500, [] {
    if (!helpfrm.visible) return;
    DeviceNamed("COM1")->gone = false;
    ClickOn(helpfrm, "Command1");
  });
  AfterFrames(9, [] { PressKey("Esc"); });
  Run();
  StopTimer(timer);
  EXPECT_EQ(unit.TakeHeard(), "RU00 G C R300 R400 R600 R700 " + opening);
  ExpectReleased();
}

TEST_F(Monitor3Test, F1OpensThePanelOfTheKeysAndBackClosesIt) {
  RunUntilShown([] {
    PressKey("F1");
    ASSERT_TRUE(Monitor3Help.visible);
    EXPECT_EQ(Monitor3Help.title, "Halvane2 Fast Help");
    EXPECT_EQ(ShownText(Monitor3Help, "Label1"), "C = Toggle between Open Loop and Close Loop");
    EXPECT_EQ(ShownText(Monitor3Help, "Label2"), "F = Toggle Fuel Flow Between LPH and GPH");
    EXPECT_EQ(ShownText(Monitor3Help, "Label3"),
              "T = Toggle between Celsius and Fahrenheit temperature scales.");
    EXPECT_EQ(ShownText(Monitor3Help, "Label4"), "K = Kill the Engine");
    EXPECT_EQ(ShownText(Monitor3Help, "Command1"), "<< BACK");
    ClickOn(Monitor3Help, "Command1");
    EXPECT_FALSE(Monitor3Help.loaded);
    EXPECT_TRUE(Monitor3.visible);
    PressKey("F1");
    ActivateScreen(Monitor3);
  });
  ExpectReleased();  // the panel goes with the monitor
}

// ---- status field and posted writes -------------------------------------------------------------

TEST_F(Monitor3Test, PostedWriteTurnsTheStatusRedAndTheNextFrameTurnsItGreen) {
  unit.mute = [](std::string_view command) { return command == "P2" || command == "F"; };
  unit.onFrame = [this] {
    AfterMs(10, [this] { DeliverAt("COM1", NowUs(), {unit.frame.begin(), unit.frame.end()}); });
  };
  auto look = [](const char* text, Colour colour) {
    EXPECT_EQ(Seen("Status"), text);
    EXPECT_EQ(At(Monitor3, "Status").backColour, colour);
  };
  AfterFrames(2, [&] {
    look("ONFLY IDLE", Green);
    BinImage[300] = 0x5A;
    PostWrite(217, 6, 300, 1);
    AfterMs(40, [&] {
      look("ONFLY ACTIVE", Red);
      EXPECT_EQ(CalValues[217], 8);
      DeliverAt("COM1", NowUs(), {'A', 'X'});
      AfterMs(2, [&] {
        look("ONFLY ACTIVE", Red);  // until the next good frame
        EXPECT_EQ(CalValues[217], 6);
      });
      AfterMs(30, [&] {
        look("ONFLY IDLE", Green);
        PressKey("Esc");
      });
    });
  });
  Run();
  EXPECT_EQ(unit.TakeHeard(), opening + " P2 S104B72C5ABE S9030000FC");
}

TEST_F(Monitor3Test, RefusedWriteShowsFrmerrAndStoresNothing) {
  unit.memoryAnswer = "PX";
  AfterFrames(2, [&] {
    PostWrite(217, 6, 300, 1);
    AfterMs(100, [&] {
      EXPECT_TRUE(frmerr.visible);
      EXPECT_EQ(OpenDialogScreen(), &frmerr);
      EXPECT_EQ(CalValues[217], 8);
      const int frames = unit.frames;
      AfterMs(100, [this, frames] {
        EXPECT_GT(unit.frames, frames);  // the loop goes on behind it
        PressKey("Enter");
        EXPECT_FALSE(frmerr.loaded);
        StopLive();
      });
    });
  });
  Run();
  EXPECT_EQ(CalValues[217], 8);
  ExpectReleased();
}

TEST_F(Monitor3Test, PendingCommandsGoOutInTheirOrderWithTheLoopFirstAndTheWriteLast) {
  AfterFrames(3, [&] {
    unit.TakeHeard();
    unit.frame[19] = 100;
    PendZeroAdv = PendClearZero = PendAdv = PendGama = PendTog = PendInj = PendTpsBlend = 1;
    PendGpo = PendAfr = 1;
    OnAdvance = -10;
    OnGama = 0.1;
    OnTog = 10;
    OnInjOffset = 1;
    OnTpsBlend = 1;
    OnGpo = 10;
    OnAfr = 0;
    BinImage[5] = 7;
    PostWrite(5, 1, 5, 1);
    PressKey("C");
    AfterMs(2000, [] { PressKey("Esc"); });
  });
  Run();
  EXPECT_EQ(unit.TakeHeard(),
            "RUFF R3AA R419 R804 R9E2 RO00 R71A R608 R533 C Z P2 S104B6050739 S9030000FC RU00");
}

TEST_F(Monitor3Test, ACommandNeverFallsInsideAFrame) {
  unit.mute = [](std::string_view command) { return command == "F"; };
  unit.onFrame = [this] {
    AfterMs(5, [this] { PendAdv = 1; });
    AfterMs(28, [this] {
      EXPECT_EQ(unit.TakeHeard(), unit.frames == 1 ? opening : "R300");
      DeliverAt("COM1", NowUs(), {unit.frame.begin(), unit.frame.end()});
    });
  };
  AfterFrames(6, [] { PressKey("Esc"); });
  Run();
  EXPECT_EQ(unit.frames, 6);
}

// ---- showing ------------------------------------------------------------------------------------

// The request of the next frame is on the wire before the last one is painted.
TEST_F(Monitor3Test, AFrameIsPaintedBehindTheNextRequest) {
  std::vector<std::string> atRequest;
  unit.onFrame = [&] { atRequest.push_back(Seen("Adv")); };
  AfterFrames(2, [] {
    EXPECT_EQ(Seen("Adv"), "20.0");
    PressKey("Esc");
  });
  Run();
  EXPECT_EQ(atRequest, (std::vector<std::string>{"", ""}));
}

TEST_F(Monitor3Test, FastUnitIsDecodedCompletelyAndShownAtTheRateOfADisplay) {
  std::set<std::string> shown;
  int firstFrame = 0, lastFrame = 0;
  unit.onFrame = [&] {
    unit.frame[9] = static_cast<std::uint8_t>(unit.frames % 251);
    unit.frame[12] = static_cast<std::uint8_t>(unit.frames / 251 % 256);
  };
  AfterFrames(10, [&] {
    firstFrame = unit.frames;
    for (int pass = 0; pass < 1000; ++pass)
      AfterMs(pass, [&] { shown.insert(Seen("Tps") + " " + Seen("Gpo")); });
    AfterMs(1000, [&] {
      lastFrame = unit.frames;
      PressKey("Esc");
    });
  });
  Run();
  EXPECT_GT(lastFrame - firstFrame, 20'000);
  EXPECT_GE(shown.size(), 55U);
  EXPECT_LE(shown.size(), 64U);
}

// ---- its place among the screens ----------------------------------------------------------------

TEST_F(Monitor3Test, WhileItRunsModeIsThreeAndTheMenuLineSaysSo) {
  RunUntilShown([] {
    EXPECT_EQ(MonitorMode, 3);
    EXPECT_TRUE(PortHeld);
    EXPECT_EQ(FindMenu(frmMain, "mnuname")->caption,
              "                Brantwell Engine Controls         ONFLY MODE");
  });
  ExpectReleased();
}

TEST_F(Monitor3Test, LeavingShowsTheCalibrationScreen) {
  RunUntilShown([] { EXPECT_EQ(Top(), "Form1"); });
  EXPECT_EQ(Top(), "CSForm1");
  ExpectReleased();
}
