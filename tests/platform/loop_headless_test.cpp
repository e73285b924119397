// The virtual clock: passes, pauses, events and timers at their exact times.
#include "platform/dialogs.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "support/user.h"

namespace {

class ClockTest : public PlatformTest {
 protected:
  // Notes the time when it runs.
  std::function<void()> Note() {
    return [this] { times.push_back(NowUs()); };
  }
  std::vector<std::int64_t> times;
};

using Times = std::vector<std::int64_t>;

TEST_F(ClockTest, YieldIsOnePassOfThirtyMicroseconds) {
  EXPECT_EQ(NowUs(), 0);
  for (int pass = 0; pass < 1000; ++pass) Yield();
  EXPECT_EQ(NowUs(), 30000);
  EXPECT_EQ(PassCount(), 1000);
  EXPECT_EQ(MonotonicMicroseconds(), 30000);
}

TEST_F(ClockTest, StartingThePlatformAgainPutsTheStartStateBack) {
  int argc = 0;
  AtUs(100, Note());
  PutTextFile("a", "text");
  Pause(5);
  StartPlatform(argc, nullptr);
  EXPECT_EQ(NowUs(), 0);
  EXPECT_TRUE(AllFiles().empty());
  AdvanceMs(1);
  EXPECT_EQ(times, Times{});
}

TEST_F(ClockTest, PauseIsATenthOfAMillisecondAUnitAndNoPass) {
  Pause(25);
  EXPECT_EQ(NowUs(), 2500);
  EXPECT_EQ(PassCount(), 0);
  Pause(0);
  Pause(-5);
  EXPECT_EQ(NowUs(), 2500);
}

TEST_F(ClockTest, EventRunsInTheFirstPassThatReachesItsTime) {
  AtUs(45, Note());
  Yield();
  EXPECT_EQ(times, Times{});
  Yield();
  EXPECT_EQ(times, (Times{60}));
}

TEST_F(ClockTest, EventsOfAPauseComeWithTheNextYield) {
  AtUs(500, Note());
  Pause(10);
  EXPECT_EQ(times, Times{});
  Yield();
  EXPECT_EQ(times, (Times{1030}));
}

TEST_F(ClockTest, DueEventsRunInTheOrderOfTheirTimes) {
  std::vector<int> order;
  AtUs(300, [&] { order.push_back(3); });
  AtUs(100, [&] { order.push_back(1); });
  AtUs(200, [&] { order.push_back(2); });
  AtUs(100, [&] { order.push_back(11); });
  Pause(10);
  Yield();
  EXPECT_EQ(order, (std::vector<int>{1, 11, 2, 3}));
}

TEST_F(ClockTest, EventAskedForByAnEventWaitsForTheNextPass) {
  int runs = 0;
  std::function<void()> again = [&] {
    ++runs;
    AtUs(NowUs(), again);
  };
  AtUs(0, again);
  Yield();
  EXPECT_EQ(runs, 1);
  Yield();
  EXPECT_EQ(runs, 2);
}

TEST_F(ClockTest, AdvanceRunsEachEventAtItsOwnTime) {
  AfterMs(1, Note());
  AfterMs(2.5, Note());
  AfterMs(4, Note());
  AdvanceMs(3);
  EXPECT_EQ(times, (Times{1000, 2500}));
  EXPECT_EQ(NowUs(), 3000);
  AdvanceUs(1000);
  EXPECT_EQ(times, (Times{1000, 2500, 4000}));
}

TEST_F(ClockTest, AdvanceRunsTheQueueBetweenEvents) {
  AfterMs(1, [&] { RunFromQueue(Note()); });
  AdvanceMs(5);
  EXPECT_EQ(times, (Times{1000}));
  EXPECT_EQ(NowUs(), 5000);
}

TEST_F(ClockTest, LiveLoopThatWasRequestedRunsInsideRunPending) {
  bool stop = false;
  int passes = 0;
  AfterMs(3, [&] { stop = true; });
  RunFromQueue([&] {
    while (!stop) {
      Yield();
      ++passes;
    }
  });
  RunPending();
  EXPECT_EQ(passes, 100) << "3 ms in passes of 30 us";
}

TEST_F(ClockTest, TimerTicksAtItsMultiples) {
  StartTimer(2, Note());
  AdvanceMs(7);
  EXPECT_EQ(times, (Times{2000, 4000, 6000}));
}

TEST_F(ClockTest, TimerThatIsLateDoesNotCatchUp) {
  StartTimer(1, Note());
  Pause(100);
  Yield();
  EXPECT_EQ(times.size(), 1u);
  AdvanceMs(2);
  EXPECT_LE(times.size(), 4u);
}

TEST_F(ClockTest, ClockGoesOnThroughMidnight) {
  SetClock("2026-12-31", 86399);
  EXPECT_EQ(DateText(), "2026-12-31");
  EXPECT_EQ(TimeText(), "23:59:59");
  EXPECT_DOUBLE_EQ(SecondsSinceMidnight(), 86399);
  AdvanceMs(1500);
  EXPECT_EQ(DateText(), "2027-01-01");
  EXPECT_EQ(TimeText(), "00:00:00");
  EXPECT_DOUBLE_EQ(SecondsSinceMidnight(), 0.5);
}

TEST_F(ClockTest, ProgramGoesFromEventToEventAndEndsWithTheLast) {
  AtUs(5000000, Note());
  AtUs(9000000, Note());
  EXPECT_EQ(RunProgram(), 0);
  EXPECT_EQ(times, (Times{5000000, 9000000}));
}

// ---- boxes and the clock ------------------------------------------------------------------------

TEST_F(ClockTest, HookRunsWhileTheNextBoxIsOpen) {
  AfterMs(1, Note());
  WhileNextBoxIsOpen([&] {
    EXPECT_EQ(HeadlessBoxes().back().text, "open");
    EXPECT_EQ(YieldDepth(), 1);
    AdvanceMs(2);
  });
  MsgBox("open");
  EXPECT_EQ(times, (Times{1000}));
  MsgBox("second");
  TakeBox();
  TakeBox();
}

TEST_F(ClockTest, QueueDoesNotRunInsideABoxHoweverItIsDriven) {
  bool ran = false;
  RunFromQueue([&] { ran = true; });
  WhileNextBoxIsOpen([&] {
    RunPending();
    AdvanceMs(5);
    EXPECT_FALSE(ran);
  });
  MsgBox("open");
  EXPECT_FALSE(ran);
  RunPending();
  EXPECT_TRUE(ran);
  TakeBox();
}

TEST_F(ClockTest, AnswerThatABoxHasNoButtonForStays) {
  PushAnswer(Answer::Yes);
  EXPECT_EQ(MsgBox("sure?", Buttons::OkCancel), Answer::Cancel);
  EXPECT_EQ(AnswersLeft(), 1u);
  EXPECT_EQ(MsgBox("sure?", Buttons::YesNo), Answer::Yes);
  EXPECT_EQ(AnswersLeft(), 0u);
  TakeBox();
  TakeBox();
}

TEST_F(ClockTest, ScreensGetNoKeyAndNoClickWhileABoxIsOpen) {
  Screen screen{.name = "frm", .build = [](Screen& s) {
                  Add(s, {.name = "Text1", .kind = ControlKind::TextField});
                  Add(s, {.name = "Command1", .kind = ControlKind::Button});
                }};
  int clicks = 0;
  screen.on.click = [&](Screen&, Control&) { ++clicks; };
  ShowScreen(screen);
  WhileNextBoxIsOpen([&] {
    TypeText("7");
    ClickOn(screen, "Command1");
  });
  MsgBox("open");
  EXPECT_EQ(At(screen, "Text1").text, "");
  EXPECT_EQ(clicks, 0);
  TakeBox();
  UnloadScreen(screen);
}

}  // namespace
