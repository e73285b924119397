// The one main window: pages of work, status bar, place on the desktop.
#include "platform/qt/qtframe.h"

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QLayout>
#include <QMainWindow>
#include <QMenuBar>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <algorithm>
#include <vector>

#include "platform/fit.h"
#include "platform/frame.h"
#include "platform/native.h"
#include "platform/qt/qtactivation.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcontrols.h"
#include "platform/qt/qtmenus.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtstyle.h"
#include "platform/qt/qtwidgets.h"

namespace {

class MainWindow : public QMainWindow {
 public:
  MainWindow() : stack(Make<QStackedWidget>(this)) {
    setObjectName("frame");
    setContextMenuPolicy(Qt::NoContextMenu);
    nothing = Make<QWidget>(stack);
    nothing->setFocusPolicy(Qt::TabFocus);
    stack->addWidget(nothing);
    setCentralWidget(stack);
  }

  QStackedWidget* stack;
  QWidget* nothing;
  std::vector<Caption*> panels;

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    Frame* frame = TheFrame();
    if (!frame || !frame->enabled) return;
    NativeFrame native;
    UserFrameClose(*frame);
  }

  bool event(QEvent* event) override {
    if (event->type() == QEvent::WindowActivate && ActivationCounts(*this)) {
      NativeFrame native;
      if (Screen* screen = ScreenInFrame()) {
        UserActivated(*screen);
        FocusByRecord(*screen);
      }
    }
    // The desktop has changed to dark or back.
    if (event->type() == QEvent::ApplicationPaletteChange)
      for (Screen* screen : LoadedScreens()) NativeScreenChanged(*screen);
    return QMainWindow::event(event);
  }

  void resizeEvent(QResizeEvent* event) override {
    FitMenus(*menuBar(), width());
    QMainWindow::resizeEvent(event);
  }
};

MainWindow* mainWindow = nullptr;

MainWindow& Window() {
  if (!mainWindow) mainWindow = Make<MainWindow>();
  return *mainWindow;
}

QRect Desktop() { return Window().screen()->availableGeometry(); }

// Room that the window manager's borders take.
QSize Borders(const QWidget& window) {
  constexpr QSize likely(4, 32);
  QSize measured = window.frameGeometry().size() - window.size();
  return measured.isEmpty() ? likely : measured;
}

void PlaceFrame(const Frame& frame) {
  MainWindow& window = Window();
  QRect desktop = Desktop();
  QSize size(PixelsOfTwips(frame.width), PixelsOfTwips(frame.height));
  window.resize(size.boundedTo(desktop.size() - Borders(window)).expandedTo({200, 150}));
  QPoint corner(PixelsOfTwips(frame.left), PixelsOfTwips(frame.top));
  constexpr int reachable = 100;
  window.move(std::clamp(corner.x(), desktop.left() - window.width() + reachable,
                         desktop.right() - reachable),
              std::clamp(corner.y(), desktop.top(), desktop.bottom() - reachable));
}

// Makes the window large enough for the page (if any) and the bars, where the desktop allows it.
// Result: whether the window has grown.
bool GrowOnceFor(const QWidget* page) {
  MainWindow& window = Window();
  if (window.isMaximized() || window.isMinimized() || window.isFullScreen()) return false;
  // Requests for a new layout that wait in the queue would come too late.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
  window.statusBar()->layout()->invalidate();
  window.statusBar()->layout()->activate();
  window.layout()->activate();
  QSize around = window.size() - window.stack->size();
  QRect desktop = Desktop();
  QSize most = desktop.size() - Borders(window);
  QSize needs = page ? page->sizeHint() + around : window.size();
  needs.setWidth(std::max(
      {needs.width(), WidthOfMenus(*window.menuBar()), window.statusBar()->sizeHint().width()}));
  QSize size = needs.boundedTo(most).expandedTo(window.size());
  if (size == window.size()) return false;
  QPoint corner = window.pos();
  QSize whole = size + Borders(window);
  corner.setX(std::max(std::min(corner.x(), desktop.right() + 1 - whole.width()), desktop.left()));
  corner.setY(std::max(std::min(corner.y(), desktop.bottom() + 1 - whole.height()), desktop.top()));
  window.resize(size);
  if (corner != window.pos()) window.move(corner);
  return true;
}

// The bars around the page have their real height only in a window that has been laid out, which
// the first turn may be the first to do.
void GrowFor(const QWidget* page) {
  constexpr int turnsAtMost = 3;
  for (int turn = 0; turn < turnsAtMost && GrowOnceFor(page); ++turn) {
  }
}

// Once more when the queue has laid everything out: fonts and styles of a first page come that
// late.
void GrowSoon() {
  QTimer::singleShot(0, &Window(), [asked = Window().size()] {
    MainWindow& window = Window();
    if (window.size() != asked) return;
    window.statusBar()->layout()->invalidate();
    if (QWidget* page = window.stack->currentWidget()) {
      if (page->layout()) page->layout()->invalidate();
      GrowFor(page);
    }
    window.layout()->invalidate();
    window.layout()->activate();
  });
}

void ShowStatus(const Frame& frame) {
  MainWindow& window = Window();
  while (window.panels.size() < frame.statusPanels.size()) {
    auto* panel = Make<Caption>(window.statusBar());
    panel->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    window.panels.push_back(panel);
    window.statusBar()->addWidget(panel);
  }
  QFont font = FontOfSize(frame.statusPointSize, false);
  bool grows = false;
  for (std::size_t i = 0; i < window.panels.size(); ++i) {
    Caption& panel = *window.panels[i];
    grows |= panel.font() != font;
    if (panel.font() != font) panel.setFont(font);
    bool used = i < frame.statusPanels.size();
    // An ampersand of a panel is no mark.
    if (used) panel.SetCaption(ToQt(frame.statusPanels[i]).replace("&", "&&"));
    panel.setVisible(used);
  }
  if (!grows) return;
  GrowFor(window.stack->currentWidget());
  GrowSoon();
}

}  // namespace

QWidget* FrameWindow() { return mainWindow; }
void FitMenusToFrame() { FitMenus(*Window().menuBar(), Window().width()); }
QWidget* WorkArea() { return Window().stack; }

// ---- pages --------------------------------------------------------------------------------------

void AddWorkPage(QWidget& page) {
  page.hide();
  page.setParent(Window().stack);
}

void ShowWorkPage(QWidget& page) {
  MainWindow& window = Window();
  if (window.stack->indexOf(&page) < 0) window.stack->addWidget(&page);
  GrowFor(&page);
  window.stack->setCurrentWidget(&page);
  if (!window.isVisible()) {
    window.show();
    window.activateWindow();
  }
  GrowSoon();
  window.layout()->activate();
}

void HideWorkPage(QWidget& page) {
  MainWindow& window = Window();
  if (window.stack->currentWidget() == &page) window.stack->setCurrentWidget(window.nothing);
}

void RemoveWorkPage(QWidget& page) {
  HideWorkPage(page);
  Window().stack->removeWidget(&page);
  page.hide();
}

// ---- the contract -------------------------------------------------------------------------------

void NativeShowFrame(Frame& frame) {
  MainWindow& window = Window();
  frame.native = &window;
  BuildMenus(*window.menuBar(), frame);
  FitMenusToFrame();
  NativeFrameChanged(frame);
  QPixmap icon = PictureNamed(frame.icon);
  if (!icon.isNull()) window.setWindowIcon(QIcon(icon));
  PlaceFrame(frame);
  if (frame.maximised)
    window.showMaximized();
  else
    window.show();
  window.activateWindow();
}

void NativeCloseFrame(Frame& frame) {
  frame.native = nullptr;
  Window().hide();
}

void NativeFrameChanged(Frame& frame) {
  MainWindow& window = Window();
  window.setWindowTitle(ToQt(frame.title));
  window.menuBar()->setEnabled(frame.enabled);
  ShowStatus(frame);
}

void ReadFramePlace(Frame& frame) {
  if (!frame.shown) return;
  MainWindow& window = Window();
  frame.minimised = window.isMinimized();
  frame.maximised = window.isMaximized();
  bool restored = !frame.minimised && !frame.maximised;
  QPoint corner = restored ? window.pos() : window.normalGeometry().topLeft();
  QSize size = restored ? window.size() : window.normalGeometry().size();
  frame.left = TwipsOfPixels(corner.x());
  frame.top = TwipsOfPixels(corner.y());
  frame.width = TwipsOfPixels(size.width());
  frame.height = TwipsOfPixels(size.height());
}

Room RoomForWork() {
  const bool shown = mainWindow && mainWindow->isVisible();
  QSize room =
      shown ? mainWindow->stack->size() : QApplication::primaryScreen()->availableGeometry().size();
  return {room.width(), room.height()};
}

int MaximisedFrameWidth() {
  constexpr int borders = 8;
  return QApplication::primaryScreen()->geometry().width() + borders;
}
