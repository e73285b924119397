// The live loop of the monitors: opening, passes, retry, release.
#include "monitors/livesession.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "core/globalstate.h"
#include "link/linetime.h"
#include "link/liveframe.h"
#include "link/onfly.h"
#include "link/postedwrite.h"
#include "platform/dialogs.h"
#include "platform/failure.h"
#include "platform/loop.h"
#include "shell/mainframe.h"
#include "shell/mainmenu.h"

namespace {

constexpr int timeOutsAtMost = 10;
// A little less than the time between two pictures of a display.
constexpr std::int64_t showEveryUs = 16'000;

// The session that runs; there is one at a time, since it holds the port.
struct LiveRun {
  const LiveMonitor* monitor = nullptr;
  unsigned life = 0;  // of the screen
  OnflySession session;
  int timeOuts = 0;
  bool commandRuns = false;  // an answer other than a frame is awaited
  bool killAsked = false;
  std::int64_t killAskedUs = 0;
  int killTimer = 0;  // while a kill waits
  long framesTaken = 0;
  std::int64_t frameUs = 0;   // the last frame came, or the session began
  std::int64_t unreadUs = 0;  // an answer was there that nobody had taken yet
  bool old = false;           // the figures are not those of now
  bool toldSilent = false;    // the status bar tells of a unit that does not answer
  bool frameHeld = false;     // decoded, not shown yet
  bool shownOpen = false;     // the figures show open loop
  std::int64_t shownUs = 0;
  bool onWire = false;         // the last frame took the time of a wire
  bool inLumps = false;        // and came as an adapter gathers bytes
  std::int64_t inPlaceUs = 0;  // nothing was on the line before the answer
  PairMean speeds;
  FramePair pair;
};
LiveRun run;

bool ScreenUp() {
  const Screen& screen = *run.monitor->screen;
  return IsUp(screen) && screen.life == run.life;
}

bool Stopped() { return MonitorStop == 1 || ProgramEnding() || !ScreenUp(); }

void Call(void (*routine)()) {
  if (routine) routine();
}

// ---- showing ------------------------------------------------------------------------------------

void Show() {
  run.frameHeld = false;
  run.shownOpen = !ClosedLoop;
  run.shownUs = MonotonicMicroseconds();
  run.monitor->show();
}

// On a wire the answer to "F" takes two byte times to begin; painting has the rest of the frame's
// time, so that it is seen when the first byte comes.
bool TimeToPaint() {
  const bool listening = run.onWire && MSComm1.heard.empty();
  return !listening || MonotonicMicroseconds() - MSComm1.times.sentUs > 3 * ByteMicroseconds;
}

void ShowHeldFrame() {
  if (!run.frameHeld || !ScreenUp() || !TimeToPaint()) return;
  if (run.shownUs == 0 || MonotonicMicroseconds() - run.shownUs >= showEveryUs) Show();
}

// Figures that stand still look as if they were measured now. The first opening, which takes a
// while, has none yet, and is told of at once when it has to be tried again. An answer that nobody
// has taken says that a box of the program keeps the loop, and that the unit is there.
void LookAtAge() {
  constexpr std::int64_t oldUs = 1'000'000;
  constexpr std::int64_t openingUs = 2 * oldUs;
  if (Stopped() || LinkLost()) return;
  const std::int64_t now = MonotonicMicroseconds();
  const bool opening = run.framesTaken == 0 && run.session.tries < 2;
  if (now - run.frameUs < (opening ? openingUs : oldUs)) return;
  if (!std::exchange(run.old, true)) Call(run.monitor->aged);
  if (!RxBuffer.empty()) run.unreadUs = now;
  if (run.toldSilent || now - run.unreadUs < oldUs) return;
  run.toldSilent = true;
  ShowLinkStatus("The ZEM does not answer.");
}

void TakeSilenceBack() {
  if (std::exchange(run.toldSilent, false)) RefreshStatusLine();
}

void NoteFrame() {
  run.frameUs = MonotonicMicroseconds();
  TakeSilenceBack();
  if (std::exchange(run.old, false)) Call(run.monitor->aged);
}

// The keys stay in an editor that is being worked in. The main menu has nothing to type, and its
// Esc would end the program.
void ShowMonitorScreen() {
  Screen& screen = *run.monitor->screen;
  if (screen.visible) return;
  Screen* before = ActiveScreen();
  ShowScreen(screen);
  const bool editing = before && before != &Form1 && before->placement == ScreenPlacement::Work;
  if (run.monitor->leavesKeysToEditor && editing) ActivateScreen(*before);
}

// ---- one pass -----------------------------------------------------------------------------------

enum class Step { Go, Stop, Failed };

// A kill that waits behind a command goes out before the session is given up. None is left for a
// later session, whose engine the user wants to run.
void SendKillAskedFor() {
  if (run.killTimer != 0) StopTimer(std::exchange(run.killTimer, 0));
  if (std::exchange(run.killAsked, false)) KillEngine();
}

// A unit that has said nothing for longer than any answer takes may say nothing for minutes, and
// one that answers wrongly is asked again and again: a kill waits for neither.
bool KillOverdue() {
  constexpr std::int64_t longestUs = 100'000;
  const HeardTimes& times = MSComm1.times;
  const std::int64_t now = MonotonicMicroseconds();
  return now - std::max(times.sentUs, times.lastUs) > longestUs ||
         now - run.killAskedUs > longestUs;
}

void SendKillIfOverdue() {
  if (KillOverdue()) SendKillAskedFor();
}

AfterCommands SendCommands() {
  run.commandRuns = true;
  MSComm1.DropInput();
  SendKillAskedFor();
  const AfterCommands after = run.monitor->send();
  run.commandRuns = false;
  return after;
}

// The request is on the wire before anything is painted.
void RequestFrame() {
  SendKillAskedFor();
  MSComm1.RThreshold = static_cast<int>(LiveFrameLength);
  MSComm1.InputLen = 0;
  MSComm1.DropInput();
  RxBuffer.clear();
  MSComm1.Output("F");
  ShowHeldFrame();
}

// An answer that is still on its way would stand in front of the answer to the next command, also
// that of whoever opens the port next. Waits until the line is quiet again.
void WaitForQuietLine() {
  const std::int64_t quietUs = run.inLumps ? 20'000 : 5'000;
  constexpr std::int64_t longestUs = 60'000;  // the longest answer, and the unit's own time
  const std::int64_t begunUs = MonotonicMicroseconds();
  std::int64_t lastByteUs = begunUs;
  std::size_t heard = MSComm1.heard.size();
  while (!LinkLost() && MonotonicMicroseconds() - begunUs < longestUs) {
    if (heard > 0 && MonotonicMicroseconds() - lastByteUs >= quietUs) return;
    Yield();
    if (MSComm1.heard.size() == heard) continue;
    heard = MSComm1.heard.size();
    lastByteUs = MonotonicMicroseconds();
  }
}

// A byte too many in one answer is on its way while the next frame is asked for already, and takes
// the first place in every frame after it. Where times do not tell, a pause that is too short to be
// seen ends that.
void KeepFramesInPlace() {
  constexpr std::int64_t everyUs = 2'000'000;
  const std::int64_t now = MonotonicMicroseconds();
  if (now - run.inPlaceUs < everyUs || MSComm1.heard.empty()) return;
  run.inPlaceUs = now;
  WaitForQuietLine();
}

// Whether the answer stands in its place in RxBuffer, as far as times tell.
bool FrameInPlace() {
  if (BeganTooSoon(MSComm1)) return false;
  run.onWire = CameByWire(MSComm1);
  run.inLumps = run.onWire && CameInLumps(MSComm1);
  if (run.onWire && !run.inLumps) run.inPlaceUs = MSComm1.times.firstUs;
  return true;
}

bool FrameWaitEnds() {
  ShowHeldFrame();
  return LoopMustEnd();
}

// A frame behind bytes of the answer before is asked for again when the line is quiet. When it has
// such bytes in front of it once more, it counts as one that did not come.
Step ReceiveFrame() {
  bool shifted = false;
  for (;;) {
    RequestFrame();
    const WaitEnd end = PollingWait(run.monitor->frameWait, FrameWaitEnds);
    if (Stopped()) return Step::Stop;
    if (end == WaitEnd::Reply) {
      if (FrameInPlace()) {
        NoteFrame();
        return Step::Go;
      }
      WaitForQuietLine();
      if (Stopped()) return Step::Stop;
      if (!std::exchange(shifted, true)) continue;
    }
    if (LinkLost()) return Step::Failed;
    if (++run.timeOuts < timeOutsAtMost) continue;
    WaitCount = 0;
    return Step::Failed;
  }
}

void TakeFrame() {
  DecodeFrame(FrameReader::Monitor);
  if (const auto mean = run.speeds.Add(Live[LiveField::Erpm]))
    run.pair = {*mean, Live.pwOnMs, Live.pwOffMs};
  ++run.framesTaken;
  run.frameHeld = true;
  Call(run.monitor->decoded);
}

bool TakesFrames() { return !run.monitor->takesFrames || run.monitor->takesFrames(); }

Step RunPass() {
  if (Stopped()) return Step::Stop;
  if (SendCommands() == AfterCommands::BeginPassAgain) return LinkLost() ? Step::Failed : Step::Go;
  if (Stopped()) return Step::Stop;
  if (CommError != 0 || LinkLost()) return Step::Failed;
  KeepFramesInPlace();
  if (Stopped()) return Step::Stop;
  Step step = ReceiveFrame();
  while (step == Step::Go && !TakesFrames()) step = ReceiveFrame();
  if (step == Step::Go) TakeFrame();
  return step;
}

// ---- a session ----------------------------------------------------------------------------------

Step StepOf(SessionEnd end) {
  run.commandRuns = false;
  if (Stopped() || end == SessionEnd::Left) return Step::Stop;
  return end == SessionEnd::Open ? Step::Go : Step::Failed;
}

void BeginSession() {
  MonitorStop = 0;
  run.session = {};
  run.timeOuts = 0;
  run.framesTaken = 0;
  run.frameUs = MonotonicMicroseconds();
  run.inPlaceUs = MonotonicMicroseconds();
  run.onWire = run.inLumps = false;
  run.frameHeld = false;
  run.speeds = {};
  run.pair = {};
  if (MapBar == 0) MapBar = 1;
  ResetLiveState();
  Call(run.monitor->prepare);
  ShowMonitorScreen();
}

Step OpenSession() {
  BeginSession();
  run.commandRuns = true;
  const Step step = StepOf(OpenOnflySession(run.session));
  if (step != Step::Go) return step;
  run.commandRuns = true;
  Call(run.monitor->opened);
  run.commandRuns = false;
  return Stopped() ? Step::Stop : Step::Go;
}

// Passes until one does not go on. A command that failed opens the session anew, as long as it has
// tries; a frame that does not come ends it.
Step RunSession() {
  Step step = OpenSession();
  while (step == Step::Go) {
    step = RunPass();
    if (step != Step::Failed || CommError == 0) continue;
    run.commandRuns = true;
    MSComm1.DropInput();
    step = StepOf(ReopenOnflySession(run.session));
    if (step == Step::Go) Call(run.monitor->reopened);
  }
  return step;
}

// A unit that is left in forced open loop would stay there: whoever shows open loop, has it in
// force, has asked for a change or had no answer to the release gives it back.
void GiveBackLoopControl() {
  const bool forced = run.shownOpen || !ClosedLoop || PendEgo == 1 || LoopForcedOpen;
  ClosedLoop = true;
  PendEgo = 0;
  run.shownOpen = false;
  if (forced && MSComm1.PortOpen && !MSComm1.gone) togego();
}

// A session that is over, or taken up again, has no figures that could be old.
void ForgetAge() {
  run.old = false;
  TakeSilenceBack();
}

// Nothing of the session is on the line any more when the port closes.
void ReleaseLine() {
  WaitForQuietLine();
  MSComm1.DropInput();
  SendKillAskedFor();
  GiveBackLoopControl();
  MSComm1.Close();
}

void DropOffsets() {
  for (int* pending : {&PendZeroAdv, &PendClearZero, &PendAdv, &PendGama, &PendTog, &PendInj,
                       &PendTpsBlend, &PendGpo, &PendAfr, &PendEgo})
    *pending = 0;
  AfrCleared = false;
}

// What was entered before the failure must not go out unasked after it.
bool RetryWanted() {
  MonitorStop = 1;
  ForgetAge();
  if (ScreenUp()) Call(run.monitor->failed);
  if (ScreenUp()) HideScreen(*run.monitor->screen);
  ReleaseLine();
  ComErrorDialog();
  DropOffsets();
  return DialogChoice == RetryComPort && ScreenUp() && !ProgramEnding();
}

SessionOver WhyStopped() {
  if (ProgramEnding()) return SessionOver::ProgramEnds;
  return ScreenUp() ? SessionOver::Left : SessionOver::Unloaded;
}

SessionOver RunSessions() {
  constexpr float invalidProm = 99;
  for (;;) {
    if (RunSession() == Step::Stop) return WhyStopped();
    if (CommError == invalidProm) return SessionOver::InvalidProm;
    if (RetryWanted()) continue;
    return ScreenUp() && !ProgramEnding() ? SessionOver::Cancelled : WhyStopped();
  }
}

// ---- from start to release ----------------------------------------------------------------------

// Result: whether an entry was among it, which nobody will store any more.
bool DropUnsent() {
  const bool entryLost = OnflyByteCount > 0;
  DropOffsets();
  ResetPostedWrite();
  return entryLost;
}

void Begin(const LiveMonitor& monitor) {
  run = {};
  run.monitor = &monitor;
  LoadScreen(*monitor.screen);
  run.life = monitor.screen->life;
  MonitorMode = SessionMode = monitor.mode;
  SetModeLine(monitor.modeLine);
  RefreshMainMenu();
  RefreshActiveEditor();
}

// The screen goes first, so that the user sees the answer while the unit is still told.
// Result: whether an entry of the user was lost.
bool Finish() {
  MonitorStop = 1;
  MonitorMode = SessionMode = NothingLive;
  if (ScreenUp()) UnloadScreen(*run.monitor->screen);
  ForgetAge();
  ReleaseLine();
  PortHeld = false;
  CommError = 0;
  const bool entryLost = DropUnsent();
  run = {};
  if (ProgramEnding()) return false;
  SetModeLine(EditModeLine);
  RefreshMainMenu();
  RefreshActiveEditor();
  return entryLost;
}

struct Outcome {
  SessionOver why = SessionOver::Left;
  std::string failure;  // of the program itself, told once the unit is released
};

Outcome RunTrapped() {
  try {
    return {RunSessions(), {}};
  } catch (const Failure& failure) {
    return {WhyStopped(), FailureText(failure)};
  }
}

Outcome RunWatched() {
  constexpr int everyMs = 250;
  const int timer = StartTimer(everyMs, LookAtAge);
  Outcome outcome = RunTrapped();
  StopTimer(timer);
  return outcome;
}

}  // namespace

void RunLive(const LiveMonitor& monitor) {
  if (YieldDepth() > 0) {
    RunFromQueue([&monitor] { RunLive(monitor); });
    return;
  }
  if (RefusedWhilePortHeld()) {
    Call(monitor.refused);
    return;
  }
  Begin(monitor);
  const Outcome outcome = RunWatched();
  const bool entryLost = Finish();
  if (monitor.over) monitor.over(outcome.why);
  if (!outcome.failure.empty()) MsgBox(outcome.failure, Buttons::Ok, "Error", BoxIcon::Critical);
  if (entryLost) ShowScreen(frmerr);
}

void StopLive() {
  if (run.monitor) MonitorStop = 1;
}

void LiveScreenUnloaded() { StopLive(); }

void ToggleLoopControl() {
  ClosedLoop = !ClosedLoop;
  PendEgo = 1;
}

void AskToKillEngine() {
  KillFirst = false;
  if (!run.monitor || Stopped()) return;
  if (!std::exchange(run.killAsked, true)) run.killAskedUs = MonotonicMicroseconds();
  if (!run.commandRuns || KillOverdue()) return SendKillAskedFor();
  if (run.killTimer == 0) run.killTimer = StartTimer(20, SendKillIfOverdue);
}

void ShowLiveNow() {
  if (run.monitor && run.framesTaken > 0 && ScreenUp()) Show();
}

const FramePair& LastFramePair() { return run.pair; }

bool LiveFiguresOld() { return run.old; }

long LiveFramesTaken() { return run.framesTaken; }
