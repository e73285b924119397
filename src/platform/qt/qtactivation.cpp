// The desktop gives the keys to a window of the program when it is asked, in its own time: one that
// has just come up is asked for only when it stands there, which is after what was asked for later.
// So only the last wish of a turn is told.
#include "platform/qt/qtactivation.h"

#include <QElapsedTimer>
#include <QPointer>
#include <utility>

#include "platform/qt/qtloop.h"

namespace {

QPointer<QWidget> wished;     // asked for in the next turn
QPointer<QWidget> asked;      // asked for last
QPointer<QWidget> onItsWay;   // has come up or been asked for, and has not had the keys since
QPointer<QWidget> overtaken;  // was on its way when another one was asked for
QElapsedTimer overtakenSince;

}  // namespace

void WishActivation(QWidget& window) {
  wished = &window;
  ScheduleTurn();
}

void ForgetActivationWish() {
  wished = nullptr;
  overtaken = nullptr;
}

void NoteComingUp(QWidget& window) { onItsWay = &window; }

void AskForKeys() {
  QPointer<QWidget> window = std::exchange(wished, nullptr);
  if (!window || !window->isVisible()) return;
  asked = window;
  if (onItsWay == window) onItsWay = nullptr;
  overtaken = onItsWay;
  overtakenSince.start();
  const bool hasThem = window->isActiveWindow();
  onItsWay = hasThem ? nullptr : window;
  if (!hasThem || overtaken) window->activateWindow();
}

// Some desktops give the keys to every window that comes up. One that has been overtaken, and gets
// them sooner than anybody can have gone to it, gives them back, once.
bool ActivationCounts(const QWidget& window) {
  constexpr qint64 soonerThanAnybodyMs = 500;
  if (wished) return wished == &window;
  onItsWay = nullptr;
  if (asked == &window) return true;
  const bool late = std::exchange(overtaken, nullptr) == &window;
  const bool wanted = asked && asked->isVisible();
  if (!late || !wanted || overtakenSince.elapsed() > soonerThanAnybodyMs) return true;
  WishActivation(*asked);
  return false;
}
