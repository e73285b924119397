// The event queue on a virtual clock: a yield is one pass of 30 microseconds, and nothing sleeps.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <utility>

#include "platform/headless/headless.h"
#include "platform/headless/script.h"
#include "platform/loop.h"
#include "platform/native.h"

namespace {

constexpr std::int64_t MicrosecondsPerDay = 86400LL * 1000000;
// A routine that asks for itself again in every turn would never leave the queue idle.
constexpr int TurnsAtMost = 10000;

using Moment = std::pair<std::int64_t, std::uint64_t>;  // time, then order of asking

struct Timer {
  std::int64_t intervalUs = 0;
  std::function<void()> routine;
  bool running = false;
};

std::map<Moment, std::function<void()>> events;
std::map<int, Timer> timers;
std::uint64_t nextOrder = 0;
int nextTimer = 1;
std::int64_t nowUs = 0;
std::int64_t passes = 0;
std::int64_t midnightUs = 0;  // of the day of `clockDay`, on the virtual clock
std::chrono::sys_days clockDay;
bool ending = false;
int exitCode = 0;

// The earliest event that is due and was asked for before `order`.
std::map<Moment, std::function<void()>>::iterator NextDue(std::uint64_t order) {
  for (auto at = events.begin(); at != events.end() && at->first.first <= nowUs; ++at)
    if (at->first.second < order) return at;
  return events.end();
}

bool RunDueEvents() {
  if (events.empty() || events.begin()->first.first > nowUs) return false;
  std::uint64_t order = nextOrder;
  bool ran = false;
  for (auto at = NextDue(order); at != events.end(); at = NextDue(order)) {
    auto routine = std::move(at->second);
    events.erase(at);
    Guarded(routine);
    ran = true;
  }
  return ran;
}

void Tick(int id, std::int64_t dueUs) {
  auto found = timers.find(id);
  if (found == timers.end()) return;
  std::int64_t next = std::max(dueUs, nowUs - found->second.intervalUs) + found->second.intervalUs;
  AtUs(next, [id, next] { Tick(id, next); });
  if (found->second.running) return;
  found->second.running = true;
  auto routine = found->second.routine;
  Guarded(routine);
  found = timers.find(id);
  if (found != timers.end()) found->second.running = false;
}

std::int64_t SinceMidnightUs() {
  std::int64_t since = (nowUs - midnightUs) % MicrosecondsPerDay;
  return since < 0 ? since + MicrosecondsPerDay : since;
}

std::chrono::sys_days Today() {
  std::int64_t days = (nowUs - midnightUs - SinceMidnightUs()) / MicrosecondsPerDay;
  return clockDay + std::chrono::days(days);
}

}  // namespace

namespace headless {

void ResetLoop() {
  events.clear();
  timers.clear();
  nowUs = 0;
  passes = 0;
  ending = false;
  exitCode = 0;
  SetClock("2026-11-21", 12 * 3600);
}

bool RunTurn() {
  bool ran = TellGonePorts();
  ran |= RunDueEvents();
  ran |= RunSoonRoutines();
  return ran;
}

}  // namespace headless

// ---- the script's side --------------------------------------------------------------------------

std::int64_t NowUs() { return nowUs; }
std::int64_t PassCount() { return passes; }

void AtUs(std::int64_t time, std::function<void()> routine) {
  events.emplace(Moment{time, nextOrder++}, std::move(routine));
}

void AfterMs(double milliseconds, std::function<void()> routine) {
  AtUs(nowUs + std::llround(milliseconds * 1000), std::move(routine));
}

void RunUntilIdle() {
  for (int turn = 0; turn < TurnsAtMost; ++turn) {
    bool ran = headless::RunTurn();
    ran |= RunQueuedRoutines();
    if (!ran) return;
  }
}

void AdvanceUs(std::int64_t microseconds) {
  std::int64_t until = nowUs + microseconds;
  RunUntilIdle();
  while (!events.empty() && events.begin()->first.first <= until) {
    nowUs = std::max(nowUs, events.begin()->first.first);
    RunUntilIdle();
  }
  nowUs = std::max(nowUs, until);
}

void AdvanceMs(double milliseconds) { AdvanceUs(std::llround(milliseconds * 1000)); }

void SetClock(const std::string& date, double secondsSinceMidnight) {
  int year = 0;
  unsigned month = 0, day = 0;
  if (std::sscanf(date.c_str(), "%d-%u-%u", &year, &month, &day) == 3)
    clockDay = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
  midnightUs = nowUs - std::llround(secondsSinceMidnight * 1e6);
}

// ---- loop.h -------------------------------------------------------------------------------------

void StartPlatform(int&, char**) { ResetHeadless(); }

void Yield() {
  YieldScope scope;
  ++passes;
  nowUs += PassMicroseconds;
  headless::RunTurn();
}

void Pause(int units) { nowUs += std::max(units, 0) * 100LL; }

void NativeWake() {}  // nothing sleeps here

int StartTimer(int milliseconds, std::function<void()> routine) {
  int id = nextTimer++;
  std::int64_t interval = std::max(milliseconds, 1) * 1000LL;
  timers[id] = {.intervalUs = interval, .routine = std::move(routine)};
  std::int64_t due = nowUs + interval;
  AtUs(due, [id, due] { Tick(id, due); });
  return id;
}

void StopTimer(int timer) { timers.erase(timer); }

std::int64_t MonotonicMicroseconds() { return nowUs; }
double SecondsSinceMidnight() { return static_cast<double>(SinceMidnightUs()) / 1e6; }

std::string DateText() {
  std::chrono::year_month_day day(Today());
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
  return text;
}

std::string TimeText() {
  int seconds = static_cast<int>(SinceMidnightUs() / 1000000);
  char text[32];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60,
                seconds % 60);
  return text;
}

// A queue that nothing can reach any more ends too: the scripted user has left.
int RunProgram() {
  while (!ending) {
    RunUntilIdle();
    if (ending || events.empty()) break;
    nowUs = std::max(nowUs, events.begin()->first.first);
  }
  return exitCode;
}

void EndProgram(int code) {
  ending = true;
  exitCode = code;
}

bool ProgramEnding() { return ending; }
