// Frames a second and CPU of a monitor on the desktop, against the simulated unit on a
// pseudo-terminal: at the pace of the wire, and as fast as the unit can answer.
//   monitor_bench [SCREEN [SECONDS]]      on the display that DISPLAY names
// On a machine that has other work the mean rate falls with it; the median time of a frame tells
// what the program and the unit take by themselves.
#include <sys/resource.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "bench/support/unit.h"
#include "core/globalstate.h"
#include "core/settings.h"
#include "monitors/livesession.h"
#include "monitors/monitors.h"
#include "platform/loop.h"
#include "shell/navigation.h"
#include "shell/start.h"

namespace {

// "F" and the 27 bytes of the answer, ten bits each.
constexpr double wireMs = 28 * 10 * 1000.0 / 9600;
constexpr double shareToReach = 0.99;
constexpr double unpacedToReach = 5000;
constexpr double cpuToStayUnder = 0.1;

std::unique_ptr<BenchFolder> folder;
std::string screen = "Monitor3";
int seconds = 20;
bool allGood = true;

double CpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  auto inSeconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return inSeconds(usage.ru_utime) + inSeconds(usage.ru_stime);
}

struct Reading {
  long frames = 0;
  double cpu = 0;
  std::int64_t us = 0;
};
Reading Read() { return {LiveFramesTaken(), CpuSeconds(), MonotonicMicroseconds()}; }

// From one "F" to the next, as the unit has heard them.
std::vector<double> FrameTimesMs() {
  std::vector<double> times;
  double before = 0;
  for (const HeardBytes& heard : HeardByUnit(*folder)) {
    const bool frame = heard.bytes == " 46";
    if (frame && before > 0) times.push_back((heard.seconds - before) * 1000);
    before = frame ? heard.seconds : 0;
  }
  return times;
}

void Report(bool paced, const Reading& begin, const Reading& end) {
  const double span = static_cast<double>(end.us - begin.us) / 1e6;
  const double rate = static_cast<double>(end.frames - begin.frames) / span;
  const double cpu = (end.cpu - begin.cpu) / span;
  std::printf("%s %-8s %9.2f frames/s, %5.1f %% of a core", screen.c_str(),
              paced ? "paced" : "unpaced", rate, cpu * 100);
  bool good = rate >= unpacedToReach;
  if (paced) {
    const std::vector<double> times = FrameTimesMs();
    const double median = Quantile(times, 0.5);
    good = wireMs / median >= shareToReach && cpu < cpuToStayUnder;
    std::printf(", %.1f %% of the wire's; a frame takes %.3f ms (median: %.1f %%), %.3f at 90 %%",
                rate * wireMs / 10, median, 100 * wireMs / median, Quantile(times, 0.9));
  }
  std::printf("  %s\n", good ? "ok" : "MISSED");
  allGood &= good;
}

// One second to settle, then the measured ones.
void Measure(bool paced, std::function<void()> after) {
  auto unit = std::make_shared<BenchUnit>(*folder, paced);
  auto begin = std::make_shared<Reading>();
  auto ticks = std::make_shared<int>(0);
  auto timer = std::make_shared<int>(0);
  *timer = StartTimer(1000, [=] {
    if (++*ticks == 2) *begin = Read();
    if (*ticks < 2 + seconds) return;
    StopTimer(*timer);
    Report(paced, *begin, Read());
    StopLive();
  });
  OpenLive(screen, [unit, after]() mutable {
    unit.reset();
    after();
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) screen = argv[1];
  if (argc > 2) seconds = std::atoi(argv[2]);
  folder = std::make_unique<BenchFolder>();
  StartPlatform(argc, argv);
  RegisterShellScreens();
  RegisterMonitors();
  Main();
  CalValues[4] = 6500;
  CalValues[217] = 8;
  CalValues[233] = 1;
  CalValues[467] = 8;
  CalValues[474] = 30;
  Measure(true, [] { Measure(false, [] { EndProgram(); }); });
  RunProgram();
  folder.reset();
  return allGood ? 0 : 1;
}
