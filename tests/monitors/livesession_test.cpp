// One live session from opening to release: time-outs, retries, and every way out.
#include "monitors/livesession.h"

#include "core/globalstate.h"
#include "link/comm.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "monitors/livetest.h"
#include "platform/failure.h"
#include "platform/frame.h"
#include "platform/loop.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"
#include "shell/navigation.h"

namespace {

class LiveSession : public LiveTest {
 protected:
  void SilentTo(std::string command) {
    unit.mute = [command](std::string_view heard) { return heard == command; };
  }
  // Answers the failure screen as often as told, and notes what it said.
  void AnswerFailure(std::vector<std::string> buttons) {
    answers_ = std::move(buttons);
    timer_ = StartTimer(500, [this] { Answer(); });
  }
  void TearDown() override {
    if (timer_ != 0) StopTimer(timer_);
    LiveTest::TearDown();
  }
  void LeaveAfterMs(double milliseconds) {
    AfterMs(milliseconds, [] { StopLive(); });
  }
  std::vector<std::string> captions;

 private:
  void Answer() {
    if (!helpfrm.visible || answers_.empty()) return;
    captions.push_back(helpfrm.title);
    const std::string button = answers_.front();
    answers_.erase(answers_.begin());
    EXPECT_TRUE(PortHeld || !PortTrouble.empty());
    EXPECT_FALSE(DeviceIsOpen("COM1"));
    EXPECT_FALSE(Monitor3.visible);
    EXPECT_EQ(MonitorStop, 1);
    ClickOn(helpfrm, button);
  }
  std::vector<std::string> answers_;
  int timer_ = 0;
};

constexpr const char* retry = "Command1";
constexpr const char* cancel = "Command2";
using Titles = std::vector<std::string>;

}  // namespace

// ---- opening ------------------------------------------------------------------------------------

TEST_F(LiveSession, OpensWithTheCommandsOfASessionAndThenAsksForFrames) {
  AfterFrames(3, [] { PressKey("Esc"); });
  Run();
  EXPECT_EQ(unit.TakeHeard(), opening);
  EXPECT_EQ(unit.frames, 3);
  EXPECT_EQ(PortSettingsOf("COM1"), "9600,N,8,1");
  ExpectReleased();
}

TEST_F(LiveSession, HeldPortIsRefusedAndStaysHeld) {
  PortHeld = true;
  MonitorMode = 3;
  OpenScreen("Monitor3");
  EXPECT_EQ(TakeBox().text, "Port is already in use by another process.");
  EXPECT_EQ(MonitorMode, 0);
  EXPECT_TRUE(PortHeld);
  EXPECT_FALSE(Monitor3.loaded);
  EXPECT_EQ(unit.TakeHeard(), "");
}

TEST_F(LiveSession, OpenedFromAYieldItWaitsForTheQueue) {
  int depth = -1;
  unit.onFrame = [&] {
    depth = YieldDepth();
    StopLive();
  };
  AtUs(NowUs(), [] {
    OpenScreen("Monitor3");
    EXPECT_FALSE(Monitor3.loaded);
  });
  Yield();
  EXPECT_EQ(depth, -1);
  RunPending();
  EXPECT_EQ(depth, 0);  // the request goes out from the loop itself
  ExpectReleased();
}

TEST_F(LiveSession, MissingMapBarBecomesOne) {
  MapBar = 0;
  AfterFrames(1, [] { PressKey("Esc"); });
  Run();
  EXPECT_EQ(MapBar, 1);
}

TEST_F(LiveSession, ScreenIsUpAndLeavableWhileItOpens) {
  unit.mute = [](std::string_view) { return true; };
  AfterMs(200, [] {
    EXPECT_TRUE(Monitor3.visible);
    EXPECT_EQ(Seen("Status"), "ONFLY OFF");
    PressKey("Esc");
    AfterMs(0.1, [] { EXPECT_FALSE(Monitor3.visible); });
  });
  const std::int64_t begun = NowUs();
  Run();
  EXPECT_LT(NowUs() - begun, 262'000);
  ExpectReleased();
  EXPECT_EQ(Top(), "CSForm1");
}

TEST_F(LiveSession, SilentUnitGetsTenTriesAndThenTheFailureScreen) {
  unit.mute = [](std::string_view) { return true; };
  AnswerFailure({cancel});
  Run();
  EXPECT_EQ(unit.TakeHeard(), "RU00 RU00 RU00 RU00 RU00 RU00 RU00 RU00 RU00 RU00");
  EXPECT_EQ(captions, Titles{"Halvane2  -  COM ERROR  0"});
  ExpectReleased();
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(LiveSession, CodeOfTheCommandThatFailedStandsInTheFailureScreen) {
  SilentTo("R700");
  AnswerFailure({cancel});
  // Each of its ten waits is 327,000 passes.
  Run();
  EXPECT_EQ(captions, Titles{"Halvane2  -  COM ERROR  5"});
  ExpectReleased();
}

TEST_F(LiveSession, RetryOpensThePortAnewAndCarriesOn) {
  int opened = 0;
  DeviceNamed("COM1")->opened = [&] { ++opened; };
  unit.mute = [&](std::string_view) { return opened == 1; };
  AnswerFailure({retry});
  AfterFrames(5, [] {
    EXPECT_TRUE(Monitor3.visible);
    EXPECT_EQ(Seen("Status"), "ONFLY IDLE");
    PressKey("Esc");
  });
  Run();
  EXPECT_EQ(opened, 2);
  EXPECT_EQ(captions.size(), 1U);
  ExpectReleased();
}

TEST_F(LiveSession, PortThatCannotBeOpenedEndsInTheFailureScreenWithTheReason) {
  RemoveDevice("COM1");
  AnswerFailure({retry, cancel});
  Run();
  EXPECT_EQ(captions.size(), 2U);
  EXPECT_EQ(PortTrouble, "There is no device COM1.");
  EXPECT_FALSE(PortHeld);
  EXPECT_EQ(MonitorMode, 0);
  EXPECT_FALSE(Monitor3.loaded);
}

TEST_F(LiveSession, OldPromOfTheFirstOffsetEndsTheScreenWithoutRetry) {
  unit.wrongSecond = "R3";
  Run();
  EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
  EXPECT_EQ(unit.TakeHeard(), "RU00 G C R300");
  ExpectReleased();
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(LiveSession, OldPromOfAnotherOffsetIsToldAtEachOfTheTenTries) {
  unit.wrongSecond = "R4";
  AnswerFailure({cancel});
  Run();
  for (int i = 0; i < 10; ++i) EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
  EXPECT_EQ(captions, Titles{"Halvane2  -  COM ERROR  3"});
  ExpectReleased();
}

// A wrong answer makes the session open again, and that again: a kill does not wait for ten tries.
TEST_F(LiveSession, KillDoesNotWaitForAnOpeningThatIsTriedAgainAndAgain) {
  std::int64_t asked = 0, killed = 0;
  unit.wrongSecond = "R4";
  DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    for (std::uint8_t byte : bytes) unit.Hear(byte);
    if (bytes.front() == 'K' && killed == 0) killed = nowUs;
  };
  AfterMs(200, [&] {
    asked = NowUs();
    AskToKillEngine();
  });
  AnswerFailure({cancel});
  Run();
  while (AnyBoxShown()) EXPECT_EQ(TakeBox().title, "INVALID PROM ERROR");
  EXPECT_GT(killed, 0);
  EXPECT_LT(killed - asked, 160'000);
}

// ---- a kill while the unit is silent ------------------------------------------------------------

TEST_F(LiveSession, KillDoesNotWaitForAnAnswerThatIsOverdue) {
  for (const char* command : {"P2", "R311", "S104B72C00"}) {
    for (double afterMs : {60.0, 700.0}) {
      std::int64_t asked = 0, killed = 0;
      unit.frames = 0;
      unit.mute = [&](std::string_view heard) { return heard.starts_with(command); };
      AfterFrames(2, [&] {
        PendAdv = 1;
        OnAdvance = 4;
        PostWrite(217, 6, 300, 1);
        AfterMs(afterMs, [&] {
          asked = NowUs();
          AskToKillEngine();
        });
      });
      DeviceNamed("COM1")->written = [&](std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
        for (std::uint8_t byte : bytes) unit.Hear(byte);
        if (bytes.front() == 'K' && killed == 0) killed = nowUs;
      };
      AfterMs(2000, [] { StopLive(); });
      Run();
      EXPECT_GT(killed, 0) << command;
      EXPECT_LT(killed - asked, 125'000) << command;
      ExpectReleased();
      Connect();
    }
  }
}

// ---- figures of a unit that does not answer -----------------------------------------------------

TEST_F(LiveSession, FiguresAreDimmedWhileNoFrameComesAndTheStatusBarTells) {
  bool silent = false;
  unit.mute = [&](std::string_view command) { return silent && command == "F"; };
  auto colour = [] { return At(Monitor3, "Adv").foreColour; };
  const std::string status = frmMain.statusPanels[0];
  AfterMs(400, [&] {
    EXPECT_EQ(colour(), ColoursOfSetting().figure);
    silent = true;
  });
  AfterMs(1300, [&] { EXPECT_EQ(colour(), ColoursOfSetting().figure); });
  AfterMs(1800, [&] {
    EXPECT_EQ(colour(), ColoursOfSetting().muted);
    EXPECT_EQ(frmMain.statusPanels[0], "Status: The ZEM does not answer.");
    EXPECT_EQ(Seen("Status"), "ONFLY IDLE");
    EXPECT_TRUE(LiveFiguresOld());
    silent = false;
  });
  AfterMs(3000, [&] {
    EXPECT_EQ(colour(), ColoursOfSetting().figure);
    EXPECT_EQ(frmMain.statusPanels[0], status);
    StopLive();
  });
  Run();
  ExpectReleased();
}

TEST_F(LiveSession, FiguresAreDimmedWhileACommandIsRepeatedAndWhileTheSessionIsReopened) {
  for (const char* command : {"P2", "R311"}) {
    unit.frames = 0;
    bool silent = true;
    unit.mute = [&](std::string_view heard) { return silent && heard == command; };
    AfterFrames(2, [] {
      PendAdv = 1;
      OnAdvance = 4;
      PostWrite(217, 6, 300, 1);
    });
    AfterMs(2000, [&] {
      EXPECT_TRUE(LiveFiguresOld()) << command;
      EXPECT_EQ(At(Monitor3, "Adv").foreColour, ColoursOfSetting().muted);
      silent = false;
    });
    AfterMs(14'000, [&] {
      EXPECT_FALSE(LiveFiguresOld()) << command;
      EXPECT_EQ(At(Monitor3, "Adv").foreColour, ColoursOfSetting().figure);
      StopLive();
    });
    Run();
  }
}

TEST_F(LiveSession, SilentOpeningIsToldOfFromItsSecondTryAndLeavingTakesItBack) {
  const std::string status = frmMain.statusPanels[0];
  unit.mute = [](std::string_view) { return true; };
  AfterMs(900, [&] { EXPECT_EQ(frmMain.statusPanels[0], status); });
  AfterMs(1500, [&] {
    EXPECT_EQ(frmMain.statusPanels[0], "Status: The ZEM does not answer.");
    StopLive();
  });
  Run();
  EXPECT_EQ(frmMain.statusPanels[0], status);
  EXPECT_FALSE(LiveFiguresOld());
}

// The answer that is missing at the first try is waited for ten seconds.
TEST_F(LiveSession, OpeningThatHangsInItsFirstTryIsToldOfAfterTwoSeconds) {
  const std::string status = frmMain.statusPanels[0];
  bool silent = true;
  unit.mute = [&](std::string_view command) { return silent && command == "G"; };
  AfterMs(1900, [&] { EXPECT_EQ(frmMain.statusPanels[0], status); });
  AfterMs(2300, [&] {
    EXPECT_EQ(frmMain.statusPanels[0], "Status: The ZEM does not answer.");
    silent = false;
  });
  AfterMs(13'000, [&] {
    EXPECT_EQ(frmMain.statusPanels[0], status);
    EXPECT_GT(LiveFramesTaken(), 0);
    StopLive();
  });
  Run();
  ExpectReleased();
}

// A box keeps the loop below it. The unit has answered, and is not said to be silent.
TEST_F(LiveSession, FiguresAreDimmedBehindABoxButTheUnitIsNotSaidToBeSilent) {
  const std::string status = frmMain.statusPanels[0];
  for (const char* awaited : {"F", "R311"}) {
    bool seen = false;
    unit.frames = 0;
    AfterFrames(5, [&] {
      if (*awaited == 'R') {
        PendAdv = 1;
        OnAdvance = 4;
      }
      AfterMs(*awaited == 'R' ? 45 : 10, [&] {
        WhileNextBoxIsOpen([&] {
          const std::int64_t begun = NowUs();
          while (NowUs() - begun < 1'800'000) Yield();
          EXPECT_TRUE(LiveFiguresOld()) << awaited;
          EXPECT_EQ(At(Monitor3, "Adv").foreColour, ColoursOfSetting().muted);
          EXPECT_EQ(frmMain.statusPanels[0], status) << awaited;
          seen = true;
        });
        MsgBox("Data Input Error");
        TakeBox();
      });
    });
    AfterMs(3000, [&] {
      EXPECT_FALSE(LiveFiguresOld()) << awaited;
      EXPECT_EQ(frmMain.statusPanels[0], status);
      StopLive();
    });
    Run();
    EXPECT_TRUE(seen) << awaited;
  }
}

TEST_F(LiveSession, SilenceThatBeginsBehindABoxIsToldOf) {
  bool silent = false;
  unit.mute = [&](std::string_view) { return silent; };
  AfterFrames(5, [&] {
    AfterMs(10, [&] {
      WhileNextBoxIsOpen([&] {
        const std::int64_t begun = NowUs();
        while (NowUs() - begun < 1'800'000) Yield();
        silent = true;
      });
      MsgBox("Data Input Error");
      TakeBox();
      AfterMs(1400, [&] {
        EXPECT_TRUE(LiveFiguresOld());
        EXPECT_EQ(frmMain.statusPanels[0], "Status: The ZEM does not answer.");
        StopLive();
      });
    });
  });
  Run();
}

// ---- time-outs of frames ------------------------------------------------------------------------

TEST_F(LiveSession, AFrameIsWaitedForThrough32767PassesAndAskedAgain) {
  std::vector<std::int64_t> asked;
  SilentTo("F");
  unit.onFrame = [&] { asked.push_back(PassCount()); };
  AfterFrames(3, [] { PressKey("Esc"); });
  Run();
  ASSERT_EQ(asked.size(), 3U);
  EXPECT_EQ(asked[1] - asked[0], 32767);
  EXPECT_EQ(asked[2] - asked[1], 32767);
}

TEST_F(LiveSession, TenthTimeOutEndsTheSessionHoweverManyFramesCameBetween) {
  int timeOuts = 0;
  unit.mute = [&](std::string_view command) {
    const bool silent = command == "F" && unit.frames % 5 == 0;
    timeOuts += silent;
    return silent;
  };
  AnswerFailure({cancel});
  Run();
  EXPECT_EQ(timeOuts, 10);
  EXPECT_EQ(unit.frames, 50);
  EXPECT_EQ(captions, Titles{"Halvane2  -  COM ERROR  0"});
  EXPECT_EQ(WaitCount, 0);
  ExpectReleased();
}

TEST_F(LiveSession, TimeOutsAreCountedOnThroughAReopening) {
  int timeOuts = 0;
  bool failedOnce = false;
  unit.mute = [&](std::string_view command) {
    if (command == "R311" && !failedOnce) return failedOnce = true;
    const bool silent = command == "F";
    timeOuts += silent;
    if (timeOuts == 5 && !failedOnce) {
      PendAdv = 1;
      OnAdvance = 4;
      --timeOuts;
      return false;
    }
    return silent;
  };
  AnswerFailure({cancel});
  Run();
  EXPECT_TRUE(failedOnce);
  EXPECT_EQ(timeOuts, 10);
}

TEST_F(LiveSession, RetryCountsTimeOutsFromZero) {
  SilentTo("F");
  AnswerFailure({retry, cancel});
  Run();
  EXPECT_EQ(unit.frames, 20);
  EXPECT_EQ(captions.size(), 2U);
}

TEST_F(LiveSession, WhatWasEnteredBeforeAFailureDoesNotGoOutAfterARetry) {
  unit.mute = [this](std::string_view command) { return command == "F" && unit.frames < 12; };
  AfterFrames(1, [] {
    PendTog = PendZeroAdv = PendAfr = 1;
    AfrCleared = true;
  });
  AnswerFailure({retry});
  AfterFrames(14, [this] {
    EXPECT_EQ(unit.TakeHeard(), opening + " " + opening);
    EXPECT_FALSE(AfrCleared);
    StopLive();
  });
  Run();
}

// ---- failures in the loop -----------------------------------------------------------------------

TEST_F(LiveSession, CommandThatFailsOpensTheSessionAnew) {
  bool failed = false;
  unit.mute = [&](std::string_view command) {
    if (command != "R311" || failed) return false;
    return failed = true;
  };
  AfterFrames(3, [this] {
    unit.TakeHeard();
    PendAdv = 1;
    OnAdvance = 4;
  });
  AfterFrames(6, [] { PressKey("Esc"); });
  Run();
  EXPECT_EQ(unit.TakeHeard(), "R311 " + opening);
  ExpectReleased();
}

TEST_F(LiveSession, FailuresOfTheLoopUseUpTheSameTenTries) {
  SilentTo("R311");
  unit.onFrame = [] {
    PendAdv = 1;
    OnAdvance = 4;
  };
  AnswerFailure({cancel});
  Run();
  EXPECT_EQ(unit.frames, 10);  // one good frame of each opening
  EXPECT_EQ(captions, Titles{"Halvane2  -  COM ERROR  2"});
  ExpectReleased();
}

TEST_F(LiveSession, LateBytesNeverShiftTheFramesThatFollow) {
  unit.frame[2] = 85;
  unit.onFrame = [&] {
    if (unit.frames == 3) DeliverAt("COM1", NowUs() + 1, {9, 9, 9});  // behind the frame
  };
  AfterFrames(8, [] {
    AfterMs(20, [] {
      EXPECT_EQ(Seen("Adv"), "20.0");
      PressKey("Esc");
    });
  });
  Run();
  EXPECT_EQ(Live.frame, unit.frame);
}

// An adapter hands bytes on every 16 ms, so that their times do not tell a byte that is left from a
// shifted frame. A short pause now and again does.
TEST_F(LiveSession, BehindAnAdapterFramesStandInTheirPlacesAgainAfterTwoSeconds) {
  SilentTo("F");
  std::vector<std::uint8_t> gathered;
  auto handOn = [&](std::size_t most) {
    const auto end =
        gathered.begin() + static_cast<std::ptrdiff_t>(std::min(most, gathered.size()));
    if (end != gathered.begin()) DeliverAt("COM1", NowUs(), {gathered.begin(), end});
    gathered.erase(gathered.begin(), end);
  };
  unit.onFrame = [&] {
    if (unit.frames == 3) gathered.push_back(9);
    gathered.insert(gathered.end(), unit.frame.begin(), unit.frame.end());
    AfterMs(16, [&] { handOn(15); });
    AfterMs(32, [&] { handOn(12); });
    AfterMs(48, [&, frame = unit.frames] {
      if (frame == unit.frames) handOn(1);
    });
  };
  unit.frame[26] = 7;
  int atOneSecond = 0;
  AfterMs(1000, [&] { atOneSecond = Live.frame[0]; });
  AfterMs(2700, [] { StopLive(); });
  Run();
  EXPECT_EQ(atOneSecond, 7) << "the last byte of the frame before stands first";
  EXPECT_EQ(Live.frame, unit.frame);
}

TEST_F(LiveSession, LineThatIsNoWireIsNeverWaitedForInVain) {
  AfterMs(1900, [] { StopLive(); });
  Run();
  EXPECT_GT(unit.frames, 30'000);  // a pass or two each
}

// Somebody else's bytes in front of every answer: no frame can be believed.
TEST_F(LiveSession, FramesThatAlwaysBeginTooSoonEndLikeThoseThatNeverCome) {
  SilentTo("F");
  unit.onFrame = [&] {
    for (int i = 0; i < 30; ++i) DeliverAt("COM1", NowUs() + 500 + 1042 * i, {9});
  };
  AnswerFailure({cancel});
  Run();
  EXPECT_EQ(unit.frames, 11) << "the first is asked for again, ten count";
  EXPECT_EQ(captions, Titles{"Halvane2  -  COM ERROR  0"});
  EXPECT_EQ(Live.frame, LiveFrame{});
  ExpectReleased();
}

// ---- what is shown, and when --------------------------------------------------------------------

// The unit answers in no time, so frames are held back between two pictures; when it falls silent,
// the last one is shown all the same.
TEST_F(LiveSession, HeldFrameIsShownWhenTheNextDoesNotCome) {
  std::int64_t silentUs = 0;
  unit.mute = [&](std::string_view command) {
    if (command != "F" || unit.frames < 40) return false;
    if (silentUs == 0) {
      silentUs = NowUs();
      AfterMs(17, [&] {
        EXPECT_EQ(Seen("Adv"), "20.0");
        StopLive();
      });
    }
    return true;
  };
  AfterFrames(38, [this] { unit.frame[2] = 85; });
  Run();
  EXPECT_GT(silentUs, 0);
}

TEST_F(LiveSession, OnAWireTheFigureIsShownAsTheNextAnswerBegins) {
  SilentTo("F");
  std::int64_t askedUs = 0;
  unit.onFrame = [&] {
    askedUs = NowUs();
    unit.frame[2] = static_cast<std::uint8_t>(unit.frames);
    for (std::size_t i = 0; i < 27; ++i)
      DeliverAt("COM1", NowUs() + 1042 * static_cast<std::int64_t>(i + 2), {unit.frame[i]});
    if (unit.frames < 5) return;
    const std::string shown = Seen("Adv");
    AfterMs(2.0, [shown] { EXPECT_EQ(Seen("Adv"), shown); });
    AfterMs(2.2, [shown] { EXPECT_NE(Seen("Adv"), shown); });
  };
  AfterFrames(9, [] { AfterMs(5, [] { StopLive(); }); });
  Run();
}

// ---- ways out -----------------------------------------------------------------------------------

TEST_F(LiveSession, EscEndsEveryWaitAtOnce) {
  for (const char* command : {"RU00", "G", "R300", "R400", "R600", "R700", "RO00", "F", "R311",
                              "P2", "S104B72C00", "S9030000FC"}) {
    unit.frames = 0;
    std::int64_t pressed = 0;
    unit.mute = [&](std::string_view heard) {
      if (!heard.starts_with(command)) return false;
      AfterMs(60, [&] {
        if (pressed != 0) return;
        pressed = NowUs();
        StopLive();
        AfterMs(0.1, [] { EXPECT_FALSE(Monitor3.visible); });
      });
      return true;
    };
    AfterFrames(2, [] {
      PendAdv = 1;
      OnAdvance = 4;
      PostWrite(217, 6, 300, 1);
    });
    Run();
    EXPECT_GT(pressed, 0) << command;
    EXPECT_LT(NowUs() - pressed, 62'000) << command;  // until the line is quiet
    EXPECT_EQ(CalValues[217], 8) << command;
    ExpectReleased();
  }
}

// Whoever opens the port next hears nothing of the frame that was on its way.
TEST_F(LiveSession, LeavingInTheMiddleOfAFrameWaitsForItsEnd) {
  std::int64_t lastByte = 0, closed = 0;
  DeviceNamed("COM1")->closed = [&] { closed = NowUs(); };
  SilentTo("F");
  unit.onFrame = [&] {
    for (int i = 0; i < 27; ++i) DeliverAt("COM1", NowUs() + 1042 * (i + 1), {0});
    lastByte = NowUs() + 1042 * 27;
    AfterMs(10, [] { StopLive(); });
  };
  Run();
  EXPECT_GT(closed, lastByte);
  EXPECT_LT(closed, lastByte + 6'000);
}

TEST_F(LiveSession, ButtonAndCloseBoxLeave) {
  AfterFrames(2, [] { ClickOn(Monitor3, "Command1"); });
  Run();
  ExpectReleased();
  unit.frames = 0;
  AfterFrames(2, [] { CloseByUser(Monitor3); });
  Run();
  ExpectReleased();
  EXPECT_EQ(Top(), "CSForm1");
}

TEST_F(LiveSession, UnloadedFromOutsideItReleasesAndGoesNowhere) {
  AfterFrames(2, [] { UnloadNamed("Monitor3"); });
  Run();
  ExpectReleased();
  EXPECT_EQ(Top(), "Form1");
}

TEST_F(LiveSession, ForcedOpenLoopIsGivenBackOnEveryWayOut) {
  const std::function<void()> ways[] = {
      [] { StopLive(); },
      [] { UnloadNamed("Monitor3"); },
      [] { UnloadMainFrame(); },
  };
  for (const auto& leave : ways) {
    unit.frames = 0;
    AfterFrames(2, [] {
      ClosedLoop = false;
      PendEgo = 1;
    });
    AfterFrames(5, leave);
    Run();
    EXPECT_EQ(unit.TakeHeard(), opening + " RUFF RU00");
    ExpectReleased();
  }
}

TEST_F(LiveSession, ForcedOpenLoopIsGivenBackBeforeTheFailureScreen) {
  unit.mute = [this](std::string_view command) { return command == "F" && unit.frames > 5; };
  AfterFrames(2, [] {
    ClosedLoop = false;
    PendEgo = 1;
  });
  AnswerFailure({cancel});
  Run();
  EXPECT_EQ(unit.TakeHeard(), opening + " RUFF RU00");
  ExpectReleased();
}

// The key again while its first command is under way.
TEST_F(LiveSession, LoopControlChangedDuringItsCommandGoesOutOnceMore) {
  for (double afterMs : {5.0, 12.0, 19.0, 30.0}) {
    unit.frames = 0;
    unit.mute = [&](std::string_view command) {
      if (command != "RUFF") return false;
      AfterMs(35, [] { DeliverAt("COM1", NowUs(), {'A', 'X'}); });
      return true;
    };
    AfterFrames(2, [&] {
      unit.TakeHeard();
      ToggleLoopControl();
      AfterMs(20 + afterMs, [] { ToggleLoopControl(); });
    });
    AfterMs(600, [this] {
      EXPECT_EQ(unit.TakeHeard(), "RUFF RU00");
      EXPECT_TRUE(ClosedLoop);
      StopLive();
    });
    Run();
    EXPECT_EQ(unit.TakeHeard(), "") << "nothing is left to be given back";
    ExpectReleased();
  }
}

TEST_F(LiveSession, UnitThatHasHeardNoReleaseGetsItOnLeaving) {
  AfterFrames(2, [&] {
    unit.TakeHeard();
    ToggleLoopControl();
    AfterMs(25, [] {
      ToggleLoopControl();
      StopLive();
    });
  });
  unit.mute = [](std::string_view command) { return command == "RUFF"; };
  Run();
  EXPECT_EQ(unit.TakeHeard(), "RUFF RU00");
  ExpectReleased();
}

TEST_F(LiveSession, SilentUnitKeepsTheReleaseForASecondAtMostAndTheScreenGoesAtOnce) {
  std::int64_t left = 0;
  unit.mute = [&](std::string_view) { return left > 0; };
  AfterFrames(2, [] {
    ClosedLoop = false;
    PendEgo = 1;
  });
  AfterFrames(5, [&] {
    left = NowUs();
    AfterMs(50, [] { EXPECT_FALSE(Monitor3.visible); });
    StopLive();
  });
  Run();
  EXPECT_LT(NowUs() - left, 1'200'000);
  ExpectReleased();
}

TEST_F(LiveSession, FailureOfTheProgramIsToldOnceTheUnitIsReleased) {
  LiveMonitor failing;
  failing.screen = &Monitor3;
  failing.mode = 3;
  failing.opened = ToggleLoopControl;
  failing.send = [] {
    togego();
    return AfterCommands::RequestFrame;
  };
  failing.decoded = [] { RaiseFailure(FailureTypeMismatch); };
  bool told = false;
  WhileNextBoxIsOpen([&] {
    told = true;
    EXPECT_FALSE(Monitor3.loaded);
    EXPECT_FALSE(PortHeld);
    EXPECT_FALSE(DeviceIsOpen("COM1"));
    EXPECT_EQ(unit.TakeHeard(), opening + " RUFF RU00");
  });
  RunLive(failing);
  ExpectReleased();
  EXPECT_TRUE(told);
  const ShownBox box = TakeBox();
  EXPECT_EQ(box.title, "Error");
  EXPECT_TRUE(box.text.starts_with("Error # 13 was generated by")) << box.text;
}

TEST_F(LiveSession, EndOfTheProgramReleasesDuringEveryWait) {
  for (const char* command : {"RU00", "G", "R300", "F"}) {
    SilentTo(command);
    AfterMs(300, [] { UnloadMainFrame(); });
    Run();
    EXPECT_TRUE(ProgramEnding());
    ExpectReleased();
    EXPECT_EQ(Top(), "");
    TearDown();
    SetUp();
  }
}

TEST_F(LiveSession, EndOfTheProgramInTheFailureScreenReleases) {
  SilentTo("RU00");
  const int timer = StartTimer(500, [] {
    if (helpfrm.visible) UnloadMainFrame();
  });
  Run();
  StopTimer(timer);
  ExpectReleased();
  EXPECT_FALSE(helpfrm.loaded);
}

TEST_F(LiveSession, UnpluggedUnitEndsInTheFailureScreenAndRetryCarriesOnWhenItIsBack) {
  AfterFrames(3, [] { DeviceNamed("COM1")->gone = true; });
  const int timer = StartTimer(500, [] {
    if (!helpfrm.visible) return;
    EXPECT_EQ(ShownText(helpfrm, "Reason"), "COM1 has been unplugged.");
    DeviceNamed("COM1")->gone = false;
    ClickOn(helpfrm, "Command1");
  });
  AfterFrames(9, [] { PressKey("Esc"); });
  Run();
  StopTimer(timer);
  EXPECT_EQ(unit.TakeHeard(), opening + " " + opening);
  ExpectReleased();
}

TEST_F(LiveSession, WhatNobodyHasSentIsDroppedAtTheEnd) {
  AfterFrames(2, [] {
    PendTog = PendTpsBlend = PendZeroAdv = 1;
    PostWrite(217, 6, 300, 1);
    StopLive();
  });
  Run();
  EXPECT_EQ(PendTog + PendTpsBlend + PendZeroAdv, 0);
  EXPECT_EQ(OnflyByteCount, 0);
  EXPECT_EQ(CalValues[217], 8);
  EXPECT_TRUE(frmerr.visible) << "the user hears of the entry";
}

// ---- beside other screens -----------------------------------------------------------------------

TEST_F(LiveSession, MainMenuLoadedBesideItDoesNotEndTheMode) {
  AfterFrames(2, [] {
    GoTo("CSForm1");
    GoTo("Form1");
    EXPECT_EQ(MonitorMode, 3);
    EXPECT_FALSE(ShownEnabled(Form1, "SoftwareTools"));
    StopLive();
  });
  Run();
  ExpectReleased();
}

TEST_F(LiveSession, MainMenuHasTheKeysNoneAreTakenFromAnEditor) {
  AfterFrames(2, [] {
    EXPECT_EQ(ActiveScreen(), &Monitor3);  // the main menu's Esc would end the program
    StopLive();
  });
  Run();
  unit.frames = 0;
  GoTo("Binj_graph");
  AfterFrames(2, [] {
    EXPECT_EQ(ActiveScreen()->name, "Binj_graph");
    EXPECT_TRUE(Monitor3.visible);
    StopLive();
  });
  Run();
  ExpectReleased();
}
