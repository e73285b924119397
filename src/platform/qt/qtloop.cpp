// The event queue on top of Qt's event loop: turns, yields that sleep, timers, the clock.
#include "platform/qt/qtloop.h"

#include <QApplication>
#include <QBasicTimer>
#include <QDateTime>
#include <QEventLoop>
#include <QSettings>
#include <QTimerEvent>
#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <thread>

#include "platform/frame.h"
#include "platform/loop.h"
#include "platform/native.h"
#include "platform/qt/qtaccess.h"
#include "platform/qt/qtactivation.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtboxes.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtkeys.h"
#include "platform/qt/qtport.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtsignals.h"
#include "platform/qt/qtstyle.h"
#include "platform/qt/qtsystem.h"
#include "platform/qt/qttoolkit.h"

namespace {

// How long a yield sleeps at most, and what of a pass counts as sleep when handling events took
// longer than that.
constexpr int SleepMilliseconds = 1;
constexpr std::int64_t SleepCountsAtMost = 1300;
// While bytes keep coming the toolkit still gets its turn this often.
constexpr std::int64_t ToolkitTurnMicroseconds = 1000;

struct Ticking {
  std::function<void()> routine;
  bool onStack = false;
};

struct State {
  std::unique_ptr<QApplication> application;
  QEventLoop* mainLoop = nullptr;
  std::map<int, std::shared_ptr<Ticking>> timers;
  bool turnWaits = false;
  bool routinesWait = false;
  bool queueWaits = false;
  bool inQueue = false;  // a routine of the queue runs; it may yield for hours
  bool ending = false;
  int exitCode = 0;
  int holds = 0;
  int sleepingAt = 0;  // depth of the yield that sleeps, 0 when none does
  std::int64_t passesLeft = 0;
  std::int64_t toolkitTurn = 0;
};
// Lives until the process is gone: the toolkit's own statics do not outlive main reliably.
State& Loop() {
  static State* state = Make<State>();
  return *state;
}

void Turn() {
  State& loop = Loop();
  loop.turnWaits = false;
  CarryOutChanges();
  AskForKeys();
  if (loop.holds > 0 && YieldDepth() == 0) return;
  loop.routinesWait = false;
  if (RunSoonRoutines()) CarryOutChanges();
  if (YieldDepth() == 0) {
    loop.queueWaits = false;
    loop.inQueue = true;
    const bool ran = RunQueuedRoutines();
    loop.inQueue = false;
    if (ran) NativeWake();
  }
  ReleaseScreens();
}

class Queue : public QObject {
 public:
  QBasicTimer sleep;

 protected:
  void customEvent(QEvent*) override { Turn(); }

  void timerEvent(QTimerEvent* event) override {
    if (event->timerId() == sleep.timerId()) {
      // Nobody sleeps in this loop any more: the queue is back at the program, or in a box.
      if (Loop().sleepingAt != YieldDepth()) sleep.stop();
      return;
    }
    auto found = Loop().timers.find(event->timerId());
    if (found == Loop().timers.end()) return;
    std::shared_ptr<Ticking> ticking = found->second;
    if (ticking->onStack) return;
    ticking->onStack = true;
    Guarded(ticking->routine);
    ticking->onStack = false;
  }
};

Queue& TheQueue() {
  static Queue* queue = Make<Queue>();
  return *queue;
}

// What has come up at depth 0 can run as soon as the last yield has been left. Behind a routine of
// the queue comes a turn anyway; one for each of its yields would keep them all from sleeping.
void LeftYield() {
  State& loop = Loop();
  if (loop.queueWaits && YieldDepth() == 0 && !loop.inQueue) ScheduleTurn();
}

// Bytes that are here are told without a turn of the whole toolkit. Result: whether there were any
// and the toolkit can wait.
bool OnlyBytes(std::int64_t now) {
  if (!TellPortBytes()) return false;
  return !Loop().routinesWait && now - Loop().toolkitTurn < ToolkitTurnMicroseconds;
}

// One turn of the toolkit that sleeps when nothing is pending; the passes that fit into the sleep
// are left to count off.
void SleepInTheQueue(std::int64_t start) {
  State& loop = Loop();
  if (!TheQueue().sleep.isActive())
    TheQueue().sleep.start(SleepMilliseconds, Qt::PreciseTimer, &TheQueue());
  loop.sleepingAt = YieldDepth();
  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  loop.sleepingAt = 0;
  std::int64_t now = MonotonicMicroseconds();
  loop.toolkitTurn = now;
  loop.passesLeft = std::min(now - start, SleepCountsAtMost) / PassMicroseconds - 1;
}

// A request to end takes the road of the frame's close box, which asks about unsaved work; also
// where a box or another window keeps the user from it.
void CloseByRequest() {
  NativeFrame native;
  if (Frame* frame = TheFrame())
    UserFrameClose(*frame);
  else
    EndProgram();
}

}  // namespace

// ---- start ------------------------------------------------------------------------------------

void StartPlatform(int& argc, char** argv) {
  State& loop = Loop();
  if (loop.application) {
    ResetLoop();
    return;
  }
  loop.application = StartToolkit(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setApplicationName("Halvane2");
  ApplyStyle();
  ListenToKeys();
  TellScreenReaders();
}

void ResetLoop() {
  State& loop = Loop();
  ResetPlatform();
  while (!loop.timers.empty()) StopTimer(loop.timers.begin()->first);
  loop.ending = false;
  loop.exitCode = 0;
  loop.passesLeft = 0;
  loop.queueWaits = false;
  loop.inQueue = false;
  loop.routinesWait = false;
  ReleaseScreens();
  ResetBoxes();
}

// ---- turns ------------------------------------------------------------------------------------

void ScheduleTurn() {
  if (Loop().turnWaits) return;
  Loop().turnWaits = true;
  QCoreApplication::postEvent(&TheQueue(), Make<QEvent>(QEvent::User), Qt::HighEventPriority);
}

QueueHold::QueueHold() { ++Loop().holds; }
QueueHold::~QueueHold() {
  if (--Loop().holds == 0) ScheduleTurn();
}

bool TurnWaits() { return Loop().turnWaits; }

QObject* QueueObject() { return &TheQueue(); }

void NativeWake() {
  Loop().routinesWait = true;
  Loop().queueWaits = true;
  ScheduleTurn();
}

void Yield() {
  State& loop = Loop();
  {
    YieldScope scope;
    if (loop.passesLeft > 0 && !loop.routinesWait) {
      --loop.passesLeft;
      return;
    }
    loop.passesLeft = 0;
    std::int64_t now = MonotonicMicroseconds();
    if (!OnlyBytes(now)) SleepInTheQueue(now);
  }
  LeftYield();
}

int RunProgram() {
  State& loop = Loop();
  if (!loop.ending) {
    QEventLoop events;
    loop.mainLoop = &events;
    if (loop.queueWaits) ScheduleTurn();
    SignalWatch requests(CloseByRequest);
    events.exec();
    loop.mainLoop = nullptr;
  }
  SettingsStore().sync();
  return loop.exitCode;
}

void EndProgram(int exitCode) {
  State& loop = Loop();
  loop.ending = true;
  loop.exitCode = exitCode;
  CloseOpenBoxes();
  if (loop.mainLoop) loop.mainLoop->exit();
}

bool ProgramEnding() { return Loop().ending; }

// ---- timers and clock -------------------------------------------------------------------------

int StartTimer(int milliseconds, std::function<void()> routine) {
  constexpr int exactBelow = 100;
  int timer = TheQueue().startTimer(std::max(milliseconds, 1),
                                    milliseconds < exactBelow ? Qt::PreciseTimer : Qt::CoarseTimer);
  Loop().timers[timer] = std::make_shared<Ticking>(Ticking{std::move(routine)});
  return timer;
}

void StopTimer(int timer) {
  if (Loop().timers.erase(timer) > 0) TheQueue().killTimer(timer);
}

void Pause(int units) {
  if (units > 0) std::this_thread::sleep_for(std::chrono::microseconds(100) * units);
}

std::int64_t MonotonicMicroseconds() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

double SecondsSinceMidnight() { return QTime::currentTime().msecsSinceStartOfDay() / 1000.0; }
std::string DateText() { return FromQt(QDate::currentDate().toString(Qt::ISODate)); }
std::string TimeText() { return FromQt(QTime::currentTime().toString(u"HH:mm:ss")); }
