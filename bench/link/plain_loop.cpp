// A bare event loop that does nothing when it is woken.
#include "plain_loop.h"

#include <QEventLoop>
#include <QTimer>

void RunPlainLoop(int milliseconds) {
  QEventLoop loop;
  QTimer tick;
  tick.setTimerType(Qt::PreciseTimer);
  tick.start(1);
  QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
  loop.exec();
}
