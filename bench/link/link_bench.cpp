// The serial dialogue in real time: programming a simulated control unit at the pace of 9600 baud
// against the wire's own time, the CPU time of a wait for a silent unit, and how long a reply waits
// until it is seen. The exit code tells whether all three are within their limits.
//   link_bench [ROUNDS]
#include <fcntl.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "bench/support/unit.h"
#include "core/globalstate.h"
#include "core/s19file.h"
#include "link/comm.h"
#include "link/programmer.h"
#include "plain_loop.h"
#include "platform/loop.h"
#include "platform/system.h"

namespace {

using Clock = std::chrono::steady_clock;

// 1,357 characters to the unit and 35 answers of two bytes, ten bits each, one after the other.
constexpr double wireMs = (1357 + 35 * 2) * 10 * 1000.0 / 9600;
// What the protocol demands on top: the rest of the pause after "E" and its answer's way back fall
// together; "P" has left long before its own pause is over.
constexpr double pausesMs = (PauseAfterTest + PauseBeforeProgram) / 10.0;
constexpr double wireRatioToStayUnder = 1.03;
// 3 % on a machine where the bare event loop, woken once a millisecond, takes 1.8 %.
constexpr double cpuRatioToStayUnder = 3 / 1.8;
constexpr double replyMsToStayUnder = 1;

double MillisecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

double CpuMs() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto ms = [](const timeval& time) { return time.tv_sec * 1e3 + time.tv_usec / 1e3; };
  return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// ---- programming --------------------------------------------------------------------------------

bool MeasureProgramming(const BenchFolder& folder, int rounds) {
  const BenchUnit unit(folder);
  setenv("HALVANE2_COM1", folder.Terminal().c_str(), 1);
  CurrentBinPath = (folder.path / "bench.bin").string();
  for (std::size_t i = 0; i < 512; ++i) BinImage[i] = static_cast<std::int16_t>(i * 7 % 256);
  std::ofstream(S19Path(CurrentBinPath), std::ios::binary) << S19Text(BinImage);
  std::vector<double> times;
  for (int round = 0; round < rounds; ++round) {
    const auto begin = Clock::now();
    OpenProgram_ZEM();
    times.push_back(MillisecondsSince(begin));
    const Control* result = Find(Program_ZEM, "Result");
    const bool verified = result && result->caption.find("VERIFIED") != std::string::npos;
    UnloadScreen(Program_ZEM);
    if (!verified) {
      std::puts("programming     not verified");
      return false;
    }
  }
  const double median = Quantile(times, 0.5);
  const bool good = median <= wireMs * wireRatioToStayUnder + pausesMs;
  std::printf("programming     %.1f ms, wire %.1f ms and pauses %.1f ms: %.2f %% above  %s\n",
              median, wireMs, pausesMs, 100 * (median / (wireMs + pausesMs) - 1),
              good ? "ok" : "TOO SLOW");
  return good;
}

// ---- waiting ------------------------------------------------------------------------------------

// A terminal of our own with nobody behind it.
struct Terminal {
  Terminal() : master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) exit(2);
    termios raw{};
    tcgetattr(master, &raw);
    cfmakeraw(&raw);
    tcsetattr(master, TCSANOW, &raw);
    setenv("HALVANE2_COM1", ptsname(master), 1);
  }
  ~Terminal() { close(master); }
  int master;
};

struct Cost {
  double wallMs;
  double cpuMs;
  double Share() const { return cpuMs / wallMs; }
};

template <typename Routine>
Cost CostOf(Routine routine) {
  const double cpuBefore = CpuMs();
  const auto begin = Clock::now();
  routine();
  return {MillisecondsSince(begin), CpuMs() - cpuBefore};
}

bool MeasureSilence() {
  constexpr int passes = 100000;
  Terminal terminal;
  if (!OpenCommPort(2, 0)) return false;
  RxBuffer.clear();
  WaitEnd end = WaitEnd::Reply;
  const Cost wait = CostOf([&] { end = PollingWait({passes, 1, WaitTest::Equal}); });
  MSComm1.Close();
  const Cost plain = CostOf([] { RunPlainLoop(3000); });
  const bool good = end == WaitEnd::TimeOut && wait.Share() < plain.Share() * cpuRatioToStayUnder;
  std::printf("silent unit     %.1f us a pass, %.2f %% of a core, a bare event loop %.2f %%  %s\n",
              1000 * wait.wallMs / passes, 100 * wait.Share(), 100 * plain.Share(),
              good ? "ok" : "TOO MUCH");
  return good;
}

bool MeasureReply(int rounds) {
  Terminal terminal;
  if (!OpenCommPort(2, 0)) return false;
  std::vector<double> delays;
  for (int round = 0; round < rounds; ++round) {
    std::atomic<Clock::time_point> sentAt;
    RxBuffer.clear();
    std::thread unit([&] {
      std::this_thread::sleep_for(std::chrono::microseconds(3000 + 137 * (round % 50)));
      sentAt = Clock::now();
      if (write(terminal.master, "AX", 2) != 2) exit(2);
    });
    const WaitEnd end = PollingWait(WaitForFrame);
    const auto seen = Clock::now();
    unit.join();
    if (end != WaitEnd::Reply) return false;
    delays.push_back(std::chrono::duration<double, std::milli>(seen - sentAt.load()).count());
  }
  MSComm1.Close();
  const double median = Quantile(delays, 0.5);
  const double worst = Quantile(delays, 1);
  const bool good = median < replyMsToStayUnder;
  std::printf("reply seen      after %.3f ms (median of %d), %.3f ms at worst  %s\n", median,
              rounds, worst, good ? "ok" : "TOO LATE");
  return good;
}

}  // namespace

int main(int argc, char** argv) {
  const BenchFolder folder;
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  StartPlatform(argc, argv);
  const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  ComPort = 1;
  SaveSetting("Options", "Comport", "1");
  bool good = MeasureSilence();
  good &= MeasureReply(rounds * 40);
  good &= MeasureProgramming(folder, rounds);
  return good ? 0 : 1;
}
