// zemsim: a simulated ZEM on a pseudo-terminal. The library has the ZEM; this is the clock, the
// terminal and the files around it.
#include <poll.h>
#include <signal.h>
#include <time.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "simulator/control.h"
#include "simulator/hostclock.h"
#include "simulator/options.h"
#include "simulator/terminal/link.h"
#include "simulator/terminal/pty.h"
#include "simulator/terminal/trafficlog.h"
#include "simulator/zem.h"

namespace {

volatile sig_atomic_t StopAsked = 0;

std::int64_t MonotonicUs() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

// Everything of one run.
struct Simulator {
  sim::Options options;
  sim::Zem zem;
  std::optional<sim::Pty> pty;
  std::optional<sim::LineFollower> control;
  sim::TrafficLog log;
  sigset_t whileWaiting{};  // signals are taken during the wait alone
  sim::HostClock clock{MonotonicUs()};
  int savedVersion = 0;

  std::int64_t NowUs() { return clock.Read(MonotonicUs()); }
  void Say(const std::string& line) const {
    if (!options.quiet) std::cout << line << std::endl;
  }
};

int Complain(const std::string& text) {
  std::cerr << "zemsim: " << text << std::endl;
  return 1;
}

// Signals are blocked but for the wait, so that none can slip in between test and wait.
void CatchSignals(sigset_t& whileWaiting) {
  sigset_t blocked;
  sigemptyset(&blocked);
  struct sigaction action {};
  action.sa_handler = [](int) { StopAsked = 1; };
  for (int number : {SIGTERM, SIGINT, SIGHUP}) {
    sigaddset(&blocked, number);
    sigaction(number, &action, nullptr);
  }
  signal(SIGPIPE, SIG_IGN);
  sigprocmask(SIG_BLOCK, &blocked, &whileWaiting);
  for (int number : {SIGTERM, SIGINT, SIGHUP}) sigdelset(&whileWaiting, number);
}

bool PlugIn(Simulator& s) {
  s.pty.emplace();
  if (!s.pty->Open()) return Complain(s.pty->Error()), false;
  if (!s.options.link.empty()) {
    const std::string wrong = sim::PointLink(s.options.link, s.pty->Name());
    if (!wrong.empty()) return Complain(wrong), false;
  }
  std::cout << "terminal " << s.pty->Name() << std::endl;
  return true;
}

void PullOut(Simulator& s) {
  if (!s.pty) return;
  if (!s.options.link.empty()) sim::RemoveLink(s.options.link, s.pty->Name());
  s.pty.reset();
}

// The terminal follows the ZEM's cable. False when no new terminal can be had.
bool FollowCable(Simulator& s) {
  const bool plugged = s.zem.Plugged();
  if (plugged == s.pty.has_value()) return true;
  if (plugged && !PlugIn(s)) return false;
  if (!plugged) PullOut(s);
  s.Say(plugged ? "replugged" : "unplugged");
  return true;
}

void SaveWhenChanged(Simulator& s) {
  if (s.zem.MemoryVersion() == s.savedVersion) return;
  s.savedVersion = s.zem.MemoryVersion();
  s.Say("memory changed, " + s.zem.History().back() + " was the last record");
  if (s.options.image.empty()) return;
  if (!sim::SaveImage(s.options.image, s.zem.Memory())) {
    Complain(s.options.image + " cannot be written");
  }
}

// False when the control file says so.
bool TakeControl(Simulator& s) {
  if (!s.control) return true;
  for (const std::string& line : s.control->NewLines()) {
    switch (sim::Control(s.zem, line)) {
      case sim::ControlResult::Quit:
        return false;
      case sim::ControlResult::Done:
        s.Say("control: " + line);
        break;
      case sim::ControlResult::NotUnderstood:
        Complain("not understood: " + line);
        break;
    }
  }
  return true;
}

void TakeBytes(Simulator& s) {
  if (!s.pty) return;
  // In this order: who has written these bytes is then known to be there for the answer.
  const std::vector<std::uint8_t> bytes = s.pty->Read();
  s.pty->NoteUsers();
  const std::int64_t now = s.NowUs();
  for (std::uint8_t byte : bytes) {
    s.log.Note('>', byte, now);
    s.zem.Receive(byte, now);
  }
}

void SendBytes(Simulator& s) {
  std::vector<std::uint8_t> due;
  for (const sim::TimedByte& byte : s.zem.Advance(s.NowUs())) {
    s.log.Note('<', byte.value, byte.atUs);
    due.push_back(byte.value);
  }
  if (s.pty && !due.empty()) s.pty->Write(due);
}

// Sleeps until a byte comes, a byte is due, or it is time to look at control file and engine. A
// process is woken some tens of microseconds late. That does not add up within an answer, whose
// times are fixed, but the last byte must not be late, or the next command is: the end of its time
// is waited for awake.
void Wait(Simulator& s) {
  constexpr std::int64_t ControlUs = 50'000;
  constexpr std::int64_t EngineUs = 500'000;
  constexpr std::int64_t AwakeUs = 100;
  const std::int64_t now = s.NowUs();
  std::int64_t sleepUs = s.control ? ControlUs : EngineUs;
  const std::optional<std::int64_t> next = s.zem.NextEventUs();
  const std::int64_t awakeUs = s.zem.BytesUnderWay() == 1 ? AwakeUs : 0;
  if (next) sleepUs = std::clamp<std::int64_t>(*next - awakeUs - now, 0, sleepUs);
  if (!next) s.log.EndLine();
  const timespec timeout{.tv_sec = static_cast<time_t>(sleepUs / 1'000'000),
                         .tv_nsec = static_cast<long>(sleepUs % 1'000'000 * 1000)};
  std::array<pollfd, 2> descriptors = {
      {{.fd = s.pty ? s.pty->Descriptor() : -1, .events = POLLIN, .revents = 0},
       {.fd = s.pty ? s.pty->WatchDescriptor() : -1, .events = POLLIN, .revents = 0}}};
  s.clock.Sleeps(sleepUs);
  ppoll(descriptors.data(), descriptors.size(), &timeout, &s.whileWaiting);
}

// Empty, or what keeps the simulator from starting.
std::string Prepare(Simulator& s) {
  const sim::Options& options = s.options;
  if (!options.image.empty()) {
    if (const auto image = sim::LoadImage(options.image)) {
      s.zem.SetMemory(*image);
    } else if (std::filesystem::exists(options.image)) {
      return options.image + " is no image of 512 bytes";
    }
  }
  if (options.name) s.zem.SetName(*options.name);
  if (options.drive) s.zem.Motor().driver.Drive();
  if (options.cold) s.zem.Motor().SetCoolant(10);
  for (const std::string& fault : options.faults) s.zem.Fail(fault);
  if (!options.control.empty()) s.control.emplace(options.control);
  if (!options.log.empty() && !s.log.Open(options.log)) return options.log + " cannot be written";
  return {};
}

void Run(Simulator& s) {
  while (StopAsked == 0) {
    Wait(s);
    TakeBytes(s);
    SendBytes(s);
    SaveWhenChanged(s);
    if (!TakeControl(s) || !FollowCable(s)) break;
  }
  s.log.EndLine();
  PullOut(s);
}

}  // namespace

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + 1, values + count);
  Simulator s;
  s.options = sim::ParseOptions(arguments);
  if (s.options.help) {
    std::cout << sim::OptionsHelp();
    return 0;
  }
  if (!s.options.error.empty()) {
    std::cerr << "zemsim: " << s.options.error << " (--help shows what there is)" << std::endl;
    return 2;
  }
  s.zem = sim::Zem({.paced = !s.options.unpaced, .oldProm = s.options.oldProm});
  const std::string wrong = Prepare(s);
  if (!wrong.empty()) return Complain(wrong);
#ifdef __linux__
  prctl(PR_SET_TIMERSLACK, 1000UL);  // bytes go out on time, not some fifty microseconds late
#endif
  CatchSignals(s.whileWaiting);
  if (!PlugIn(s)) return 1;
  Run(s);
  return 0;
}
