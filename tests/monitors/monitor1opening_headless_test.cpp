// The analog monitor while its session opens, is opened anew, and after a retry: what is entered
// meanwhile, and what is shown before the first frame.
#include "core/globalstate.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "monitors/livesession.h"
#include "monitors/monitor1test.h"
#include "platform/loop.h"

namespace {

class Monitor1Opening : public Monitor1Test {
 protected:
  void TearDown() override {
    CurrentBinPath.clear();
    Monitor1Test::TearDown();
  }
  // The first time that the unit hears a command.
  void When(std::string command, std::function<void()> routine) {
    unit.mute = [command, routine, done = false](std::string_view heard) mutable {
      if (heard == command && !std::exchange(done, true)) AfterMs(0, routine);
      return false;
    };
  }
  // Opens a session and looks some frames later, still in it, what stands there.
  void LookAfterFrames(int frames, std::function<void()> look) {
    AfterFrames(frames, [look = std::move(look)] {
      AfterMs(30, [look] {
        look();
        StopLive();
      });
    });
    Run("Monitor1");
  }
  // A session whose link fails after `before` has run, and which is taken up again.
  void RunWithRetry(std::function<void()> before, std::function<void()> failed,
                    std::function<void()> after) {
    bool asked = false;
    const int timer = StartTimer(500, [&] {
      if (!helpfrm.visible || asked) return;
      asked = true;
      failed();
      ClickOn(helpfrm, "Command1");
      AfterMs(300, [&] {
        after();
        StopLive();
      });
    });
    AfterFrames(4, [&] {
      AfterMs(30, [&] {
        unit.mute = [](std::string_view command) { return command == "F"; };
        unit.TakeHeard();
        before();
      });
    });
    Run("Monitor1");
    StopTimer(timer);
    EXPECT_TRUE(asked);
    ExpectReleased();
  }
  static bool Marked(const char* option) { return At(Monitor1, option).checked; }
  static std::string Lines() {
    std::string all;
    for (const Control& control : Monitor1.controls)
      if (control.place.in == "SensorGrid" && control.place.row > 0) all += control.caption;
    return all;
  }
  static bool OnFaces(std::string_view text) {
    const Drawing& drawing = At(Monitor1, "Dials").drawing;
    for (std::size_t i = 0; i < drawing.backgroundCount; ++i)
      if (drawing.primitives[i].text == text) return true;
    return false;
  }
  static bool ReadingsDrawn() {
    const Drawing& drawing = At(Monitor1, "Dials").drawing;
    return drawing.primitives.size() > drawing.backgroundCount;
  }
};

}  // namespace

// ---- entries ------------------------------------------------------------------------------------

TEST_F(Monitor1Opening, ZeroAdvanceChosenMeanwhileStaysChosenAndIsSent) {
  When("R600", [] { PressKey("Alt+1"); });
  LookAfterFrames(8, [this] {
    EXPECT_TRUE(Marked("Option1"));
    EXPECT_EQ(unit.TakeHeard(), opening + " B Z");
    PressKey("Alt+1");
    EXPECT_EQ(PendZeroAdv, 0);
    PressKey("Alt+2");
    EXPECT_EQ(PendClearZero, 1);
  });
}

TEST_F(Monitor1Opening, ZeroAdvanceChosenBehindAFailingCommandStaysChosenAndIsSent) {
  auto work = [this] {
    unit.mute = [](std::string_view command) { return command.starts_with("R8"); };
    Enter("Alt+5", "20");
    AfterMs(1000, [] { PressKey("Alt+1"); });
    AfterMs(1500, [this] { unit.mute = {}; });
    AfterMs(14'000, [this] {
      EXPECT_TRUE(Marked("Option1"));
      EXPECT_FALSE(Marked("Option2"));
      EXPECT_EQ(unit.TakeHeard(), "R809 " + opening + " Z");
    });
  };
  Work(work, 15'000);
}

TEST_F(Monitor1Opening, WhatWasEnteredBeforeAFailureIsNeitherShownNorSentAfterARetry) {
  auto before = [] {
    AfterMs(100, [] {
      PressKey("Alt+1");
      Enter("Alt+5", "20");
    });
  };
  auto after = [this] {
    EXPECT_TRUE(Marked("Option2"));
    EXPECT_EQ(Shown("Text5"), "10.00") << "what the unit tells";
    EXPECT_EQ(unit.TakeHeard(), opening + " B");
  };
  auto failed = [this] { unit.mute = {}; };
  RunWithRetry(before, failed, after);
}

TEST_F(Monitor1Opening, OffsetsEnteredMeanwhileAreShownAndSent) {
  unit.mute = [this](std::string_view command) {
    if (command != "RO00" || unit.frames > 0) return false;
    AfterMs(1, [] {
      Enter("Alt+4", "20");
      Enter("Alt+6", "3");
      Enter("Alt+3", "-4");
      Enter("Alt+8", "10");
      DeliverAt("COM1", NowUs() + 1000, {'A', 'X'});
    });
    return true;
  };
  LookAfterFrames(8, [this] {
    EXPECT_EQ(Shown("Text3"), "-4");
    EXPECT_EQ(Shown("Text4"), "20");
    EXPECT_EQ(Shown("Text6"), "3.000");
    EXPECT_EQ(Shown("Text8"), "10");
    EXPECT_EQ(unit.TakeHeard(), opening + " B R391 R433 R71A R618");
  });
}

TEST_F(Monitor1Opening, OffsetsThatAreNotSentYetStandWhileTheSessionHasNoFrame) {
  unit.program.clear();  // a second without an answer
  When("B", [] {
    Enter("Alt+4", "20");
    Enter("Alt+6", "3");
    AfterMs(100, [] {
      EXPECT_EQ(Shown("Text4"), "20");
      EXPECT_EQ(Shown("Text6"), "3.00");
    });
  });
  LookAfterFrames(4, [this] { EXPECT_EQ(unit.TakeHeard(), opening + " B R433 R618"); });
}

TEST_F(Monitor1Opening, AfrFieldCannotBeEnteredBeforeTheFirstFrame) {
  When("R600", [] {
    OnAfr = 3;
    PressKey("Alt+9");
    EXPECT_EQ(ShownFocus(), "Command1");
    EXPECT_FALSE(FieldEditing);
    EXPECT_EQ(Shown("EntryStatus"), "ACTIVE");
    EXPECT_EQ(OnAfr, 3);
  });
  LookAfterFrames(6, [] {
    PressKey("Alt+9");
    EXPECT_EQ(ShownFocus(), "Text9");
    EXPECT_EQ(OnAfr, 117);
  });
}

// ---- what is shown ------------------------------------------------------------------------------

TEST_F(Monitor1Opening, NoBinFileIsOnlyToldWhenNoneIsOpen) {
  for (const char* path : {"/cars/street.bin", ""}) {
    CurrentBinPath = path;
    unit.mute = [](std::string_view) { return true; };
    AfterMs(200, [] {
      EXPECT_EQ(ShownVisible(Monitor1, "NoBin"), CurrentBinPath.empty());
      StopLive();
    });
    Run("Monitor1");
  }
}

TEST_F(Monitor1Opening, DialsShowTheirFacesAloneUntilTheFirstFrame) {
  unit.mute = [](std::string_view) { return true; };
  AfterMs(200, [] {
    EXPECT_TRUE(OnFaces("CLT °C"));
    EXPECT_FALSE(ReadingsDrawn());
    ResizeCanvas(At(Monitor1, "Dials"), 800, 300);
    EXPECT_TRUE(OnFaces("CLT °C"));
    EXPECT_FALSE(ReadingsDrawn());
    StopLive();
  });
  Run("Monitor1");
  unit.mute = {};
  LookAfterFrames(4, [] {
    EXPECT_TRUE(ReadingsDrawn());
    ResizeCanvas(At(Monitor1, "Dials"), 900, 310);
    EXPECT_TRUE(ReadingsDrawn());
  });
}

TEST_F(Monitor1Opening, NothingOfTheSessionBeforeIsShownAfterARetry) {
  unit.frame[11] = 0x25;
  unit.frame[16] = 0;
  CalValues[4] = 1000;
  Colour green = 0;
  When("RU00", [&] {
    green = At(Monitor1, "OverRev").backColour;
    EXPECT_EQ(Lines(), "");
  });
  auto before = [&] {
    for (const char* lamp : {"OverRev", "SensorFailed", "IntermittentFail"})
      EXPECT_NE(At(Monitor1, lamp).backColour, green) << lamp;
    EXPECT_NE(Lines(), "");
    EXPECT_EQ(Shown("BinName"), "STREET.BIN");
  };
  auto failed = [&] { unit.mute = [](std::string_view) { return true; }; };
  auto after = [&] {
    for (const char* lamp : {"OverRev", "SensorFailed", "IntermittentFail"})
      EXPECT_EQ(At(Monitor1, lamp).backColour, green) << lamp;
    EXPECT_EQ(Lines(), "");
    EXPECT_EQ(Shown("BinName") + Shown("PromVersion") + Shown("Adv"), "");
    EXPECT_FALSE(ReadingsDrawn());
  };
  RunWithRetry(before, failed, after);
}

TEST_F(Monitor1Opening, RefusalDoesNotStandInTheWayOfTheFailureScreen) {
  auto failed = [this] {
    EXPECT_FALSE(MonitorInputError.loaded);
    EXPECT_EQ(OpenDialogScreen(), &helpfrm);
    unit.mute = {};
  };
  auto before = [] {
    Enter("Alt+3", "99");
    EXPECT_TRUE(MonitorInputError.loaded);
  };
  RunWithRetry(before, failed, [] {
    EXPECT_EQ(Shown("Adv"), "20.0");
    EXPECT_EQ(ShownFocus(), "Command1");
  });
}

TEST_F(Monitor1Opening, FacesFollowACalibrationThatIsOpenedBesideThem) {
  CalValues[4] = 5000;
  Work([] {
    EXPECT_FALSE(OnFaces("12"));
    EXPECT_FALSE(OnFaces("220"));
    CalValues[4] = 9000;
    MapBar = 2;
    Later([] {
      EXPECT_TRUE(OnFaces("12"));
      EXPECT_TRUE(OnFaces("220"));
    });
  });
}
