// The analog monitor: figures, header, lamps, keys, failures and ways out.
#include "core/globalstate.h"
#include "core/settings.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "monitors/monitor1.h"
#include "monitors/monitor1test.h"
#include "platform/loop.h"
#include "shell/mainframe.h"

namespace {

using Monitor1Screen = Monitor1Test;

std::vector<std::string> DialTexts() {
  std::vector<std::string> texts;
  const Drawing& drawing = At(Monitor1, "Dials").drawing;
  for (std::size_t i = drawing.backgroundCount; i < drawing.primitives.size(); ++i)
    if (drawing.primitives[i].kind == PrimitiveKind::Text)
      texts.push_back(drawing.primitives[i].text);
  return texts;
}

bool OnFaces(const std::string& text) {
  const Drawing& drawing = At(Monitor1, "Dials").drawing;
  for (std::size_t i = 0; i < drawing.backgroundCount; ++i)
    if (drawing.primitives[i].text == text) return true;
  return false;
}

std::string Lines(const std::string& column, int count) {
  std::string all;
  for (int i = 0; i < count; ++i)
    all += (i ? "|" : "") + ShownText(Monitor1, column + std::to_string(i));
  return all;
}

Colour Lamp(const char* name) { return At(Monitor1, name).backColour; }

}  // namespace

TEST_F(Monitor1Screen, EveryFigureStandsInItsFormatWithCaptionAndUnit) {
  struct Expected {
    const char* control;
    std::string caption, text, unit;
  };
  const Expected all[] = {
      {"Adv", "ADVANCE", "20.0", "DEG"},
      {"Gama", "GAMA", "150%", ""},
      {"Knock", "KNOCK", "20", "%"},
      {"Battery", "BATTERY", "13.8", "V"},
      {"EgoCr", "EGO CR", "20", "%"},
      {"Gpo", "GPO", "20", "%"},
      {"FuelFlow", "FUEL FLOW =", "56.06", "LPH"},
      {"AfrActual", "ACTUAL AFR", "14.64", ""},
      {"AfrDesired", "DESIRED AFR", "15.24", ""},
      {"InjOn", "INJECTOR TIME ON", "5.00", "Ms"},
      {"InjOff", "OFF", "8.49", "Ms"},
  };
  EXPECT_EQ(std::size(all), Monitor1Figures().size());
  Work([&] {
    for (const Expected& row : all) {
      EXPECT_EQ(Shown(row.control), row.text) << row.control;
      EXPECT_EQ(Shown(std::string(row.control) + "Caption"), row.caption);
      EXPECT_EQ(Shown(std::string(row.control) + "Unit"), row.unit) << row.control;
    }
    const std::string clt = std::to_string(ThermistorTable[100]);
    const std::string mat = std::to_string(ThermistorTable[150]);
    EXPECT_EQ(DialTexts(),
              (std::vector<std::string>{"4449", clt, mat, "1.25", "81.9", "3.0", "37.08"}));
    EXPECT_EQ(Monitor1.title, "ENGINE MONITOR");
  });
}

TEST_F(Monitor1Screen, WithoutInjectorSizeFuelFlowIsZero) {
  CalValues[474] = 0;
  Work([] { EXPECT_EQ(Shown("FuelFlow"), "0"); });
}

TEST_F(Monitor1Screen, GamaReadsDisWhenItsFlagIsClear) {
  unit.optionFlags = 0xE8;
  Work([] {
    EXPECT_EQ(Shown("Gama"), "DIS");
    EXPECT_EQ(Lines("Disabled", 5), "|KNO|||");
  });
}

TEST_F(Monitor1Screen, DutyAtOneIsHeldAndRed) {
  unit.frame[25] = 6;  // 13.488 ms of 13.486
  unit.frame[26] = 150;
  Work([] {
    EXPECT_EQ(DialTexts().at(6), "100.01");
    const Drawing& drawing = At(Monitor1, "Dials").drawing;
    EXPECT_EQ(drawing.primitives.back().stroke.colour, ColoursOfSetting().warning);
  });
}

TEST_F(Monitor1Screen, SpeedAndInjectorTimesFollowEverySecondFrame) {
  std::vector<std::string> seen;
  unit.mute = [](std::string_view command) { return command == "F"; };
  unit.onFrame = [&] {
    AfterMs(30, [&] {
      LiveFrame frame = KnownFrame();
      frame[0] = static_cast<std::uint8_t>(4 * unit.frames);
      frame[2] = static_cast<std::uint8_t>(17 * unit.frames);
      frame[26] = static_cast<std::uint8_t>(unit.frames);
      DeliverAt("COM1", NowUs(), {frame.begin(), frame.end()});
      AfterMs(5, [&] {
        if (!Monitor1.loaded) return;
        seen.push_back(DialTexts().at(0) + " " + Shown("InjOn") + " " + Shown("Adv"));
      });
    });
  };
  AfterMs(2000, [] { StopLive(); });
  Run("Monitor1");
  ASSERT_GE(seen.size(), 4u);
  EXPECT_EQ(seen[0].substr(seen[0].rfind(' ')), " 4.0");
  EXPECT_EQ(seen[0].substr(0, seen[0].find(' ')), "");  // nothing before the first pair
  EXPECT_EQ(seen[1].substr(seen[1].rfind(' ')), " 8.0");
  EXPECT_NE(seen[1].substr(0, seen[1].find(' ')), "");
  EXPECT_EQ(seen[2].substr(0, seen[2].rfind(' ')), seen[1].substr(0, seen[1].rfind(' ')));
  EXPECT_NE(seen[3].substr(0, seen[3].rfind(' ')), seen[1].substr(0, seen[1].rfind(' ')));
}

TEST_F(Monitor1Screen, OverRevLampIsRedOnlyAboveTheLimit) {
  CalValues[4] = 4449;
  Work([] {
    const Colour green = Lamp("OverRev");
    CalValues[4] = 4448;
    Later([green] { EXPECT_NE(Lamp("OverRev"), green); });
  });
}

TEST_F(Monitor1Screen, SensorColumnsAndLampsFollowTheFrame) {
  Work([&] {
    EXPECT_EQ(Lines("Failed", 6), "NONE|||||");
    EXPECT_EQ(Lines("Disabled", 5), "NONE||||");
    EXPECT_EQ(Lines("Intermit", 7), "NONE||||||");
    const Colour green = Lamp("SensorFailed");
    EXPECT_EQ(Lamp("IntermittentFail"), green);
    unit.frame[11] = 0x25;
    unit.frame[21] = 4;
    unit.frame[16] = 0x3B;
    Later([green] {
      EXPECT_EQ(Lines("Failed", 6), "CLT||MAP DFL|||TPS");
      EXPECT_EQ(Lines("Intermit", 7), "||MAP||||LOB");
      EXPECT_NE(Lamp("SensorFailed"), green);
      EXPECT_NE(Lamp("IntermittentFail"), green);
      EXPECT_EQ(ShownText(Monitor1, "Sensors"), "Sensors Status");
      EXPECT_EQ(Shown("FailedTitle") + Shown("DisabledTitle") + Shown("IntermitTitle"),
                "FAILEDDISABLEDINTERMIT");
    });
  });
}

TEST_F(Monitor1Screen, HeaderShowsWhatTheUnitHasLoaded) {
  Work([] {
    EXPECT_EQ(Shown("BinCaption"), "Loaded ZEM \"BIN\" File");
    EXPECT_EQ(Shown("BinName"), "STREET.BIN");
    EXPECT_EQ(Shown("PromCaption"), "Halvane Prom Version");
    EXPECT_EQ(Shown("PromVersion"), "HV20105");
  });
}

TEST_F(Monitor1Screen, ProgramIsAskedForOnceBeforeTheFirstFrame) {
  AfterFrames(3, [] { StopLive(); });
  Run("Monitor1");
  EXPECT_EQ(unit.TakeHeard(), opening + " B");
}

TEST_F(Monitor1Screen, StrangeCharactersInNameOrVersionGiveNoName) {
  for (const std::string& program : {Program("ST\x1fX", "20105"), Program("ST{", "20105"),
                                     Program("ST", "2\x80"), Program("", "{"), std::string()}) {
    unit.program = program;
    unit.frames = 0;
    Work([] {
      EXPECT_EQ(Shown("BinName"), "BIN File Not Available");
      EXPECT_EQ(Shown("PromVersion"), "");
    });
  }
}

TEST_F(Monitor1Screen, LimitsOfTheNamesCharactersAreAllowed) {
  unit.program = Program(" 345678901xz", "zz zz");
  Work([] {
    EXPECT_EQ(Shown("BinName"), " 345678901xz.BIN");
    EXPECT_EQ(Shown("PromVersion"), "HVzz zz");
  });
}

TEST_F(Monitor1Screen, NoBinFileIsToldAndZerosAreUsed) {
  for (float& value : CalValues) value = 0;
  CurrentBinPath.clear();
  Work([] {
    EXPECT_TRUE(ShownVisible(Monitor1, "NoBin"));
    EXPECT_EQ(Shown("NoBin"), "NO BIN FILE OPEN");
    EXPECT_EQ(Shown("FuelFlow"), "0");
    EXPECT_EQ(DialTexts().at(0), "4449");
    CurrentBinPath = "/cars/street.bin";
    Later([] { EXPECT_FALSE(ShownVisible(Monitor1, "NoBin")); });
  });
  CurrentBinPath.clear();
}

TEST_F(Monitor1Screen, TTurnsUnitsAndRedrawsTheDials) {
  Work([] {
    EXPECT_TRUE(OnFaces("CLT °C"));
    EXPECT_TRUE(OnFaces("MAP  kPa"));
    PressKey("T");
    EXPECT_TRUE(ImperialUnits);
    EXPECT_TRUE(OnFaces("CLT °F"));
    EXPECT_TRUE(OnFaces("MAT °F"));
    EXPECT_TRUE(OnFaces("MAP  IN-Hg"));
    EXPECT_EQ(DialTexts().at(4), "24.2");
    PressKey("T");
    EXPECT_FALSE(ImperialUnits);
  });
}

TEST_F(Monitor1Screen, FTurnsFuelFlow) {
  Work([] {
    PressKey("F");
    EXPECT_FALSE(FuelInLitres);
    EXPECT_EQ(Shown("FuelFlow"), "14.79");
    EXPECT_EQ(Shown("FuelFlowUnit"), "GPH");
    PressKey("F");
    EXPECT_TRUE(FuelInLitres);
  });
}

TEST_F(Monitor1Screen, COpensTheLoopAndShowsIt) {
  Work([&] {
    PressKey("C");
    EXPECT_FALSE(ClosedLoop);
    Later([&] {
      EXPECT_EQ(unit.TakeHeard(), "RUFF");
      EXPECT_EQ(Shown("EgoCr"), "OPEN");
      PressKey("C");
      Later([&] {
        EXPECT_EQ(unit.TakeHeard(), "RU00");
        EXPECT_EQ(Shown("EgoCr"), "20");
      });
    });
  });
}

TEST_F(Monitor1Screen, OpenLoopIsGivenBackOnLeaving) {
  Work([&] {
    PressKey("C");
    Later([&] {
      unit.TakeHeard();
      PressKey("Esc");
    });
  });
  EXPECT_EQ(unit.TakeHeard(), "RU00");
  EXPECT_TRUE(ClosedLoop);
  ExpectReleased();
}

TEST_F(Monitor1Screen, KKillsTheEngine) {
  KillFirst = true;
  Work([&] {
    PressKey("K");
    Later([&] { EXPECT_EQ(unit.TakeHeard(), "K"); });
  });
  EXPECT_FALSE(KillFirst);
}

TEST_F(Monitor1Screen, F1ListsEveryKey) {
  Work([] {
    PressKey("F1");
    ASSERT_TRUE(Monitor1Help.loaded);
    EXPECT_EQ(Monitor1Help.title, "Halvane Monitor Help Screen");
    std::string all;
    for (const char* line : Monitor1HelpLines()) all += std::string(line) + "\n";
    for (const char* key :
         {"ALT + 1 ", "ALT + 2 ", "ALT + 3 ", "ALT + 4 ", "ALT + 5 ", "ALT + 6 ", "ALT + 7 ",
          "ALT + 8 ", "ALT + 9 ", "C = ", "E = ", "F = ", "K = ", "T = ", "Esc = ", "F1 = "})
      EXPECT_NE(all.find(key), std::string::npos) << key;
    UnloadScreen(Monitor1Help);
  });
}

TEST_F(Monitor1Screen, EscBackAndCloseBoxLeaveToTheMainMenu) {
  for (auto leave : {+[] { PressKey("Esc"); }, +[] { ClickOn(Monitor1, "Command1"); },
                     +[] { CloseByUser(Monitor1); }}) {
    unit.frames = 0;
    Work([&] {
      EXPECT_EQ(MonitorMode, 1);
      leave();
    });
    ExpectReleased();
    EXPECT_EQ(Top(), "Form1");
    EXPECT_EQ(ActiveScreen() ? ActiveScreen()->name : "", "Form1");
  }
}

TEST_F(Monitor1Screen, ELeavesForTheEditScreens) {
  CurrentBinPath = "/cars/street.bin";
  Work([] { PressKey("E"); });
  ExpectReleased();
  EXPECT_EQ(Top(), "CSForm1");
  CurrentBinPath.clear();
}

TEST_F(Monitor1Screen, HeldPortIsRefused) {
  PortHeld = true;
  Run("Monitor1");
  EXPECT_EQ(TakeBox().text, "Port is already in use by another process.");
  EXPECT_FALSE(Monitor1.loaded);
  PortHeld = false;
}

TEST_F(Monitor1Screen, SettingPicksBlueOrBlack) {
  StoreSetting("Options", "Monitor Screen", 0);
  Work([] { EXPECT_EQ(Monitor1.backColour, Rgb(0, 0, 128)); });
  StoreSetting("Options", "Monitor Screen", 1);
  unit.frames = 0;
  Work([] { EXPECT_EQ(Monitor1.backColour, Black); });
}

TEST_F(Monitor1Screen, AirMeterBeepsAbove99Percent) {
  LoadMode = "MAF";
  unit.frame[3] = 252;
  Work([&] {
    EXPECT_EQ(BeepCount(), 0);
    EXPECT_EQ(DialTexts().at(4), "98.8");
    EXPECT_TRUE(OnFaces("MAP"));
    unit.frame[3] = 253;
    Later([] { EXPECT_GT(BeepCount(), 0); });
  });
}

TEST_F(Monitor1Screen, TenTimeOutsDuringAnEntryEndInTheFailureScreen) {
  int asked = 0, before = 0;
  const int timer = StartTimer(500, [&] {
    if (!helpfrm.visible) return;
    ++asked;
    EXPECT_EQ(unit.frames - before, 10);
    EXPECT_TRUE(FieldEditing);
    EXPECT_FALSE(DeviceIsOpen("COM1"));
    EXPECT_FALSE(Monitor1.visible);
    ClickOn(helpfrm, "Command2");
  });
  AfterFrames(4, [&] {
    AfterMs(30, [&] {
      PressKey("Alt+3");
      TypeText("5");
      unit.mute = [](std::string_view command) { return command == "F"; };
      before = unit.frames;
    });
  });
  Run("Monitor1");
  StopTimer(timer);
  EXPECT_EQ(asked, 1);
  ExpectReleased();
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(Monitor1Screen, AfterARetryNothingIsEdited) {
  int asked = 0;
  const int timer = StartTimer(500, [&] {
    if (!helpfrm.visible) return;
    ++asked;
    unit.mute = {};
    ClickOn(helpfrm, "Command1");
    AfterMs(300, [&] {
      EXPECT_TRUE(Monitor1.visible);
      EXPECT_FALSE(FieldEditing);
      EXPECT_EQ(Shown("EntryStatus"), "ACTIVE");
      EXPECT_EQ(Shown("Text3"), "0");
      EXPECT_EQ(Shown("Adv"), "20.0");
      EXPECT_EQ(ShownFocus(), "Command1");
      StopLive();
    });
  });
  AfterFrames(4, [&] {
    AfterMs(30, [&] {
      PressKey("Alt+3");
      TypeText("5");
      unit.mute = [](std::string_view command) { return command == "F"; };
    });
  });
  Run("Monitor1");
  StopTimer(timer);
  EXPECT_EQ(asked, 1);
  ExpectReleased();
}
