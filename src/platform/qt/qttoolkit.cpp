// Starts the toolkit, which knows no other answer to a missing display than an abort.
#include "platform/qt/qttoolkit.h"

#include <QByteArray>
#include <QString>
#include <cstdio>
#include <cstdlib>

namespace {

void TellOfTheStart(QtMsgType type, const QMessageLogContext&, const QString& text) {
  std::fprintf(stderr, "%s\n", qUtf8Printable(text));
  if (type != QtFatalMsg) return;
  const QByteArray display = qgetenv("DISPLAY");
  std::fprintf(stderr,
               "halvane2: no display can be used (DISPLAY is \"%s\"). Start Halvane2 in a desktop "
               "session, or name a display in DISPLAY.\n",
               display.constData());
  std::_Exit(EXIT_FAILURE);
}

}  // namespace

std::unique_ptr<QApplication> StartToolkit(int& argc, char** argv) {
  QtMessageHandler usual = qInstallMessageHandler(TellOfTheStart);
  auto toolkit = std::make_unique<QApplication>(argc, argv);
  qInstallMessageHandler(usual);
  return toolkit;
}
