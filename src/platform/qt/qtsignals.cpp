// Signals become an event: the handler only writes into a pipe that the event loop watches.
#include "platform/qt/qtsignals.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX

#include <fcntl.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <utility>
#include <vector>

namespace {

constexpr std::array Requests = {SIGTERM, SIGINT, SIGHUP};
constexpr std::int64_t OneRequestNanoseconds = 1'000'000'000;

// What a handler may touch.
std::atomic<int> signalPipe = -1;
std::atomic<std::int64_t> firstRequest = 0;
static_assert(std::atomic<std::int64_t>::is_always_lock_free);

std::int64_t NowNanoseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * std::int64_t{1'000'000'000} + now.tv_nsec;
}

extern "C" void TakeRequest(int number) {
  const int error = errno;
  const std::int64_t now = NowNanoseconds();
  std::int64_t first = 0;
  if (firstRequest.compare_exchange_strong(first, now)) {
    const char byte = 0;
    [[maybe_unused]] ssize_t written = ::write(signalPipe, &byte, 1);
  } else if (now - first > OneRequestNanoseconds) {
    ::signal(number, SIG_DFL);
    ::raise(number);
  }
  errno = error;
}

}  // namespace

struct SignalWatch::State {
  std::array<int, 2> pipe = {-1, -1};
  std::unique_ptr<QSocketNotifier> notifier;
  std::vector<std::pair<int, struct sigaction>> before;

  void Take(int number, void (*handler)(int)) {
    struct sigaction former = {};
    ::sigaction(number, nullptr, &former);
    if (former.sa_handler == SIG_IGN) return;
    struct sigaction mine = {};
    mine.sa_handler = handler;
    ::sigemptyset(&mine.sa_mask);
    mine.sa_flags = SA_RESTART;
    if (::sigaction(number, &mine, nullptr) == 0) before.emplace_back(number, former);
  }
};

SignalWatch::SignalWatch(std::function<void()> routine) : state(std::make_unique<State>()) {
  state->Take(SIGPIPE, SIG_IGN);
  if (::pipe(state->pipe.data()) != 0) return;
  for (int end : state->pipe) {
    ::fcntl(end, F_SETFD, FD_CLOEXEC);
    ::fcntl(end, F_SETFL, O_NONBLOCK);
  }
  firstRequest = 0;
  signalPipe = state->pipe[1];
  state->notifier = std::make_unique<QSocketNotifier>(state->pipe[0], QSocketNotifier::Read);
  QObject::connect(state->notifier.get(), &QSocketNotifier::activated, state->notifier.get(),
                   [notifier = state->notifier.get(), routine = std::move(routine)] {
                     notifier->setEnabled(false);
                     routine();
                   });
  for (int number : Requests) state->Take(number, TakeRequest);
}

SignalWatch::~SignalWatch() {
  for (const auto& [number, former] : state->before) ::sigaction(number, &former, nullptr);
  signalPipe = -1;
  state->notifier.reset();
  for (int end : state->pipe)
    if (end >= 0) ::close(end);
}

#else

struct SignalWatch::State {};

SignalWatch::SignalWatch(std::function<void()>) {}
SignalWatch::~SignalWatch() = default;

#endif
