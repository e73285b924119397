// The queue on the machine's own clock: what a pass takes, what it costs, and the end.
#include <signal.h>

#include <ctime>
#include <vector>

#include "platform/contract.h"
#include "platform/dialogs.h"
#include "platform/loop.h"
#include "support/leastof.h"

namespace {

class LoopQtTest : public ContractTest {
 protected:
  // Microseconds and processor microseconds of so many passes.
  static std::pair<double, double> CostOf(int passes) {
    std::clock_t cpu = std::clock();
    std::int64_t start = MonotonicMicroseconds();
    for (int pass = 0; pass < passes; ++pass) Yield();
    double took = static_cast<double>(MonotonicMicroseconds() - start);
    return {took, static_cast<double>(std::clock() - cpu) * 1e6 / CLOCKS_PER_SEC};
  }
  // How often the signals, all at once, have clicked the close box of the frame, which refuses.
  int TimesClosedBy(const std::vector<int>& requests) {
    int closed = 0, turns = 0;
    frame.closeBox = [&] { ++closed; };
    RunSoon([&] {
      for (int number : requests) ::raise(number);
    });
    const int timer = StartTimer(1, [&] {
      if (++turns == 20) EndProgram();
    });
    RunProgram();
    StopTimer(timer);
    return closed;
  }
};

TEST_F(LoopQtTest, PassesLastAbout30MicrosecondsAndMostlySleep) {
  auto [took, busy] = CostOf(10000);
  EXPECT_GT(took / 10000, 20);
  EXPECT_LT(busy, took / 3);
  EXPECT_LT(LeastOf(300, [] { return CostOf(1000).first / 1000; }), 300);
}

// A routine that waits for the queue must not keep the yields of the one that runs from sleeping.
TEST_F(LoopQtTest, LoopOfTheQueueSleepsAlsoWhileAnotherWaits) {
  double took = 0, busy = 0;
  bool second = false;
  RunFromQueue([&] {
    RunFromQueue([&] { second = true; });
    std::tie(took, busy) = CostOf(6000);
    EXPECT_FALSE(second);
  });
  RunPending();
  EXPECT_TRUE(second);
  EXPECT_GT(took / 6000, 20);
  EXPECT_LT(busy, took / 3);
}

TEST_F(LoopQtTest, SoonRoutineWakesAYield) {
  bool ran = false;
  for (int pass = 0; pass < 10; ++pass) Yield();
  RunSoon([&] { ran = true; });
  Yield();
  EXPECT_TRUE(ran);
}

TEST_F(LoopQtTest, TimersKeepTheirTime) {
  auto millisecondsOfFiveTicks = [] {
    int ticks = 0;
    int timer = StartTimer(20, [&] { ++ticks; });
    std::int64_t start = MonotonicMicroseconds();
    while (ticks < 5) Yield();
    double took = static_cast<double>(MonotonicMicroseconds() - start) / 1000;
    StopTimer(timer);
    EXPECT_GT(took, 80);
    return took;
  };
  EXPECT_LT(LeastOf(400, millisecondsOfFiveTicks), 400);
}

TEST_F(LoopQtTest, PauseLastsATenthOfAMillisecondAUnit) {
  auto microsecondsOfAPause = [] {
    std::int64_t start = MonotonicMicroseconds();
    Pause(50);
    double took = static_cast<double>(MonotonicMicroseconds() - start);
    EXPECT_GE(took, 5000);
    return took;
  };
  EXPECT_LT(LeastOf(50000, microsecondsOfAPause), 50000);
}

TEST_F(LoopQtTest, EndInsideALiveLoopLetsItUnwind) {
  std::vector<std::string> order;
  RunFromQueue([&] {
    RunSoon([&] {
      EndProgram(2);
      order.push_back("end");
    });
    while (!ProgramEnding()) Yield();
    for (int pass = 0; pass < 50; ++pass) Yield();
    order.push_back("unwound");
  });
  EXPECT_EQ(RunProgram(), 2);
  EXPECT_EQ(order, (std::vector<std::string>{"end", "unwound"}));
}

TEST_F(LoopQtTest, ChangesAreSeenBeforeTheNextPassHasSlept) {
  Screen screen{.name = "frmLoop", .build = [](Screen& s) {
                  Add(s, {.name = "Live", .caption = "0", .widthChars = 8});
                }};
  ShowScreen(screen);
  RunPending();
  SetCaption(At(screen, "Live"), "7");
  for (int pass = 0; pass < 100; ++pass) Yield();
  EXPECT_EQ(ShownText(screen, "Live"), "7");
  UnloadScreen(screen);
}

// ---- signals ------------------------------------------------------------------------------------

TEST_F(LoopQtTest, RequestToEndIsTheFramesCloseBox) { EXPECT_EQ(TimesClosedBy({SIGTERM}), 1); }
TEST_F(LoopQtTest, InterruptOfTheTerminalIsTheFramesCloseBox) {
  EXPECT_EQ(TimesClosedBy({SIGINT}), 1);
}
TEST_F(LoopQtTest, ClosedTerminalIsTheFramesCloseBox) { EXPECT_EQ(TimesClosedBy({SIGHUP}), 1); }

TEST_F(LoopQtTest, SignalsOfALogoutAreOneRequest) {
  EXPECT_EQ(TimesClosedBy({SIGTERM, SIGHUP, SIGHUP}), 1);
}

TEST_F(LoopQtTest, BrokenPipeEndsNothing) {
  RunSoon([] {
    ::raise(SIGPIPE);
    EndProgram(3);
  });
  EXPECT_EQ(RunProgram(), 3);
}

TEST_F(LoopQtTest, RequestThatTheProgramWasStartedToIgnoreStaysIgnored) {
  auto before = ::signal(SIGHUP, SIG_IGN);
  EXPECT_EQ(TimesClosedBy({SIGHUP}), 0);
  ::signal(SIGHUP, before);
}

}  // namespace
