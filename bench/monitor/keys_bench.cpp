// An editor below the digital monitor while the engine runs: how long a key takes until it is
// shown, and how long a change takes from Enter until its "P" leaves.
//   keys_bench [ENTRIES]      on the display that DISPLAY names
#include <QApplication>
#include <QPaintEvent>
#include <QTest>
#include <QWidget>
#include <QWindow>
#include <cstdio>
#include <memory>
#include <random>
#include <string>

#include "bench/support/unit.h"
#include "core/globalstate.h"
#include "core/settings.h"
#include "editors/binjgraph.h"
#include "editors/editors.h"
#include "link/comm.h"
#include "monitors/livesession.h"
#include "monitors/monitor3.h"
#include "monitors/monitors.h"
#include "platform/loop.h"
#include "shell/navigation.h"
#include "shell/start.h"

namespace {

constexpr double shownMsToStayUnder = 10;
constexpr double frameMs = 28 * 10 * 1000.0 / 9600;
// The wire's time to hear a byte is no part of it, but that of a process to be woken is.
constexpr double wakingMs = 0.3;

std::unique_ptr<BenchFolder> folder;
int entries = 40;

double NowMs() { return static_cast<double>(MonotonicMicroseconds()) / 1000; }

// ---- what is seen -------------------------------------------------------------------------------

// Notes when the widget that has the keys was painted, and the picture is on its way.
class Watcher : public QObject {
 public:
  void Expect() {
    sentMs = NowMs();
    waiting = true;
  }
  bool waiting = false;
  double sentMs = 0;
  std::vector<double> times;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override {
    if (waiting && event->type() == QEvent::Paint && object == QApplication::focusWidget())
      QCoreApplication::postEvent(this, std::make_unique<QEvent>(QEvent::User).release(),
                                  Qt::LowEventPriority);
    return false;
  }
  void customEvent(QEvent*) override {
    if (!waiting) return;
    waiting = false;
    times.push_back(NowMs() - sentMs);
  }
};
Watcher watcher;

// As the window system brings a key.
void Strike(Qt::Key key, const QString& text) {
  QWindow* window = QGuiApplication::focusWindow();
  if (!window) return;
  qt_handleKeyEvent(window, QEvent::KeyPress, key, Qt::NoModifier, text);
  qt_handleKeyEvent(window, QEvent::KeyRelease, key, Qt::NoModifier, text);
}

// ---- the user -----------------------------------------------------------------------------------

// Enter, and the frame that was under way: its number, and how long before it had been asked for.
struct EnterStruck {
  long frame = 0;
  double sinceRequestMs = 0;
};

// Strikes a key each time the one before is shown, at no fixed place in a frame.
struct Typist {
  std::mt19937 random{1};
  std::string text;
  std::size_t next = 0;
  int entry = 0;
  double notBeforeMs = 0;
  std::vector<EnterStruck> enters;
};
Typist typist;

void PauseAtRandom() {
  typist.notBeforeMs = NowMs() + 20 + static_cast<double>(typist.random() % 50);
}

void BeginEntry() {
  typist.text = std::to_string(1 + typist.entry % 2) + "." + std::to_string(1 + typist.entry % 9);
  typist.next = 0;
  ++typist.entry;
}

void StrikeNext() {
  if (typist.next == typist.text.size()) {
    typist.enters.push_back(
        {LiveFramesTaken() + 1, NowMs() - static_cast<double>(MSComm1.times.sentUs) / 1000});
    Strike(Qt::Key_Return, "\r");
    BeginEntry();
    typist.notBeforeMs = NowMs() + 250;  // until it is in the unit and shown
    return;
  }
  const QChar character = QLatin1Char(typist.text[typist.next++]);
  watcher.Expect();
  Strike(character == '.' ? Qt::Key_Period : Qt::Key(character.unicode()), character);
  PauseAtRandom();
}

void Tick() {
  if (!Monitor3.visible || LiveFramesTaken() < 30 || NowMs() < typist.notBeforeMs) return;
  if (watcher.waiting) {
    if (NowMs() - watcher.sentMs < 1000) return;
    std::puts("a key is not shown");
    exit(1);
  }
  if (typist.entry == 0) {
    Screen& editor = BinjGraph().screen;
    ActivateScreen(editor);
    SetFocus(At(editor, "Text11"));
    BeginEntry();
    return PauseAtRandom();
  }
  if (typist.entry > entries) return StopLive();
  StrikeNext();
}

// ---- what the unit has heard --------------------------------------------------------------------

// Milliseconds from Enter to the "P" of its write. The unit's clock is another one, but both know
// when the frame under way was asked for.
std::vector<double> PostTimesMs() {
  std::vector<double> times;
  long frame = 0;
  double requestSeconds = 0;
  auto enter = typist.enters.begin();
  for (const HeardBytes& heard : HeardByUnit(*folder)) {
    if (enter == typist.enters.end()) break;
    if (heard.bytes == " 46" && ++frame == enter->frame) requestSeconds = heard.seconds;
    if (!heard.bytes.starts_with(" 50") || frame < enter->frame) continue;
    times.push_back((heard.seconds - requestSeconds) * 1000 - enter->sinceRequestMs);
    ++enter;
  }
  return times;
}

bool Report(const char* what, const std::vector<double>& times, std::size_t expected,
            double limit) {
  const double worst = Quantile(times, 1);
  const bool good = times.size() == expected && worst <= limit;
  std::printf("%-34s %.2f ms (median of %zu), %.2f at 90 %%, %.2f at worst; limit %.1f  %s\n", what,
              Quantile(times, 0.5), times.size(), Quantile(times, 0.9), worst, limit,
              good ? "ok" : "MISSED");
  return good;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) entries = std::atoi(argv[1]);
  folder = std::make_unique<BenchFolder>();
  auto unit = std::make_unique<BenchUnit>(*folder);
  StartPlatform(argc, argv);
  RegisterShellScreens();
  RegisterEditors();
  RegisterMonitors();
  Main();
  CalValues[4] = 6000;
  CalValues[217] = 8;
  CalValues[232] = 10;
  CalValues[233] = 1;
  CalValues[344] = 1.5F;
  CalValues[459] = 1;
  CalValues[467] = 8;
  CalValues[474] = 30;
  CurrentBinPath = (folder->path / "bench.bin").string();
  qApp->installEventFilter(&watcher);
  GoTo("Binj_graph");
  const int timer = StartTimer(1, Tick);
  OpenLive("Monitor3", [] { EndProgram(); });
  RunProgram();
  StopTimer(timer);
  unit.reset();
  bool good = Report("key shown after", watcher.times, static_cast<std::size_t>(entries) * 3,
                     shownMsToStayUnder);
  good &= Report("\"P\" leaves after Enter by", PostTimesMs(), static_cast<std::size_t>(entries),
                 frameMs + wakingMs);
  folder.reset();
  return good ? 0 : 1;
}
