// Frames a second and CPU of a monitor on the desktop, against the simulated unit on a
// pseudo-terminal: at the pace of the wire, and as fast as the unit can answer.
//   monitor_bench [SCREEN [SECONDS]]      on the display that DISPLAY names
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "core/globalstate.h"
#include "core/settings.h"
#include "monitors/livesession.h"
#include "monitors/monitors.h"
#include "platform/loop.h"
#include "shell/navigation.h"
#include "shell/start.h"

namespace {

std::string terminal;
std::string screen = "Monitor3";
int seconds = 20;

pid_t StartUnit(bool paced) {
  std::filesystem::remove(terminal);
  const pid_t unit = fork();
  if (unit == 0) {
    const char* pacing = paced ? "--quiet" : "--unpaced";
    execl(ZEMSIM, ZEMSIM, "--quiet", pacing, "--link", terminal.c_str(), nullptr);
    _exit(1);
  }
  for (int tries = 0; tries < 200 && !std::filesystem::exists(terminal); ++tries)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  return unit;
}

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

// One second to settle, then the measured ones.
void Measure(bool paced, std::function<void()> after) {
  const pid_t unit = StartUnit(paced);
  auto begin = std::make_shared<Reading>();
  auto ticks = std::make_shared<int>(0);
  auto timer = std::make_shared<int>(0);
  *timer = StartTimer(1000, [=] {
    if (++*ticks == 2) *begin = Read();
    if (*ticks < 2 + seconds) return;
    StopTimer(*timer);
    const Reading end = Read();
    const double span = static_cast<double>(end.us - begin->us) / 1e6;
    const double rate = static_cast<double>(end.frames - begin->frames) / span;
    std::printf("%s, %-8s %10.2f frames/s", screen.c_str(), paced ? "paced:" : "unpaced:", rate);
    if (paced) std::printf(" (%.1f %% of 34.29)", rate / 34.29 * 100);
    std::printf(", %.1f %% of a core\n", (end.cpu - begin->cpu) / span * 100);
    StopLive();
  });
  OpenLive(screen, [=] {
    kill(unit, SIGTERM);
    waitpid(unit, nullptr, 0);
    after();
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) screen = argv[1];
  if (argc > 2) seconds = std::atoi(argv[2]);
  const auto folder =
      std::filesystem::temp_directory_path() / ("monitor_bench." + std::to_string(getpid()));
  std::filesystem::create_directories(folder);
  terminal = (folder / "COM1").string();
  setenv("HALVANE2_COM1", terminal.c_str(), 1);
  setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
  StartPlatform(argc, argv);
  RegisterShellScreens();
  RegisterMonitors();
  Main();
  CalValues[217] = 8;
  CalValues[233] = 1;
  CalValues[467] = 8;
  CalValues[474] = 30;
  Measure(true, [] { Measure(false, [] { EndProgram(); }); });
  const int code = RunProgram();
  std::filesystem::remove_all(folder);
  return code;
}
