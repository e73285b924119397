// Routines that wait for the queue, and how deep the stack stands in yields.
#include <deque>
#include <utility>

#include "platform/calls.h"
#include "platform/loop.h"
#include "platform/native.h"
#include "platform/screen.h"

namespace {

std::deque<std::function<void()>> fromQueue;
std::deque<std::function<void()>> soon;
int yieldDepth = 0;

// Those that stand in the list now; what they add waits for the next turn.
bool RunList(std::deque<std::function<void()>>& list) {
  std::size_t count = list.size();
  for (std::size_t i = 0; i < count && !list.empty(); ++i) {
    auto routine = std::move(list.front());
    list.pop_front();
    Guarded(routine);
  }
  return count > 0;
}

}  // namespace

void RunFromQueue(std::function<void()> routine) {
  fromQueue.push_back(std::move(routine));
  NativeWake();
}

void RunSoon(std::function<void()> routine) {
  soon.push_back(std::move(routine));
  NativeWake();
}

int YieldDepth() { return yieldDepth; }

YieldScope::YieldScope() { ++yieldDepth; }
YieldScope::~YieldScope() { --yieldDepth; }

bool RunSoonRoutines() {
  bool settled = SettleLostFocus();
  return (!soon.empty() && RunList(soon)) || settled;
}

bool RunQueuedRoutines() {
  if (yieldDepth > 0 || fromQueue.empty()) return false;
  return RunList(fromQueue);
}

void ResetPlatform() {
  UnloadAllScreens();
  if (Frame* frame = TheFrame()) CloseFrame(*frame);
  fromQueue.clear();
  soon.clear();
  ForgetRegisteredScreens();
}
