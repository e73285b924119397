// The peer of the start-up measurement: the least that a desktop program of this toolkit can be, a
// main window with a menu bar and a status bar.
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  window.setWindowTitle("Empty window");
  window.menuBar()->addMenu("&File")->addAction("E&xit", &window, &QWidget::close);
  window.statusBar()->showMessage("Ready");
  window.setGeometry(67, 67, 600, 500);
  window.show();
  return application.exec();
}
