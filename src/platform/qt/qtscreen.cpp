// Screens as pages of the frame and as windows: creation, showing, activation, release.
#include "platform/qt/qtscreen.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHash>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "platform/fit.h"
#include "platform/frame.h"
#include "platform/native.h"
#include "platform/qt/qtactivation.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtchild.h"
#include "platform/qt/qtfit.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtlayout.h"
#include "platform/qt/qtloop.h"
#include "platform/qt/qtstyle.h"
#include "platform/qt/qtwidgets.h"

namespace {

// Pages and windows by widget.
QHash<const QWidget*, QtScreen*> screenOf;
QHash<const QWidget*, QtControl*> controlOf;
std::vector<std::unique_ptr<QtScreen>> livingScreens;
std::vector<std::unique_ptr<QtScreen>> releasedScreens;

// Scrolls when there is less room than the content needs, and asks for what it needs. The texts of
// a screen that lets them are fitted into the room before.
class ScrolledContent : public QScrollArea {
 public:
  ScrolledContent(QtScreen& ofScreen, QWidget* parent) : QScrollArea(parent), native(ofScreen) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
  }
  QSize sizeHint() const override { return widget() ? widget()->sizeHint() : QSize(100, 100); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
      updateGeometry();
      FitWhenItHasChanged();
    }
    return QScrollArea::eventFilter(watched, event);
  }

  void resizeEvent(QResizeEvent* event) override {
    Fit();
    QScrollArea::resizeEvent(event);
  }

 private:
  void Fit() {
    if (!widget()) return;
    FitTextsInto(native, *widget(), maximumViewportSize());
    fitted = widget()->minimumSizeHint();
  }
  // A control has been shown or hidden, or a text has outgrown its place.
  void FitWhenItHasChanged() {
    if (isVisible() && widget()->minimumSizeHint() != fitted) Fit();
  }

  QtScreen& native;
  QSize fitted;  // what the content needed when its texts were fitted last
};

// A window of its own, above the frame or in front of it.
class ScreenWindow : public QWidget {
 public:
  ScreenWindow(QtScreen& ofScreen, QWidget* parent, Qt::WindowFlags flags)
      : QWidget(parent, flags), native(ofScreen) {}

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    CloseByUserOf(native);
  }

  bool event(QEvent* event) override {
    if (event->type() == QEvent::WindowActivate && native.screen && ActivationCounts(*this)) {
      NativeFrame frame;
      UserActivated(*native.screen);
    }
    return QWidget::event(event);
  }

  void moveEvent(QMoveEvent* event) override {
    QWidget::moveEvent(event);
    if (!native.screen || !isVisible() || native.screen->placement != ScreenPlacement::Above)
      return;
    native.screen->left = TwipsOfPixels(pos().x());
    native.screen->top = TwipsOfPixels(pos().y());
  }

 private:
  QtScreen& native;
};

// ---- creation -----------------------------------------------------------------------------------

void ShowScreenColour(QtScreen& native) {
  bool role = IsRole(native.screen->backColour);
  QPalette palette;
  if (!role) {
    QColor ground = ToQColor(native.screen->backColour);
    palette.setColor(QPalette::Window, ground);
    palette.setColor(QPalette::WindowText, ReadableOn(ground));
  }
  native.page->setPalette(palette);
  native.page->setAutoFillBackground(!role);
}

// The title of a screen of work stands above it; the others have it in their title bar.
QWidget* CreateHeading(QtScreen& native, QWidget* parent) {
  auto* line = Make<QWidget>(parent);
  auto* row = Make<QHBoxLayout>(line);
  row->setContentsMargins(9, 5, 5, 0);
  native.heading = Make<Caption>(line);
  native.heading->setFont(FontOfSize(QApplication::font().pointSizeF() * 1.15, true));
  native.heading->SetCaption(ToQt(native.screen->title));
  row->addWidget(native.heading, 1);
  row->addWidget(CreateCloseButton(native, line));
  return line;
}

// The content stands in the middle unless something on it makes use of the room.
QWidget* CreateHolder(QtScreen& native, QWidget* parent) {
  auto* holder = Make<QWidget>(parent);
  auto* middle = Make<QGridLayout>(holder);
  middle->setContentsMargins(0, 0, 0, 0);
  native.root = Make<QWidget>(holder);
  native.root->setObjectName(ToQt(native.screen->name));
  native.root->setFocusPolicy(Qt::TabFocus);
  Expands expands = ExpandsOf(*native.screen);
  Qt::Alignment alignment;
  if (!expands.horizontally) alignment |= Qt::AlignHCenter;
  if (!expands.vertically) alignment |= Qt::AlignVCenter;
  middle->addWidget(native.root, 0, 0, alignment);
  return holder;
}

void CreatePage(QtScreen& native) {
  native.page = Make<QWidget>(nullptr);
  auto* column = Make<QVBoxLayout>(native.page);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  if (native.screen->placement == ScreenPlacement::Work)
    column->addWidget(CreateHeading(native, native.page));
  auto* scrolled = Make<ScrolledContent>(native, native.page);
  QWidget* holder = CreateHolder(native, scrolled);
  BuildControls(native);
  scrolled->setWidget(holder);
  holder->setAutoFillBackground(false);
  scrolled->viewport()->setAutoFillBackground(false);
  column->addWidget(scrolled, 1);
  ShowScreenColour(native);
}

void CreateWindow(QtScreen& native) {
  const Screen& screen = *native.screen;
  bool above = screen.placement == ScreenPlacement::Above;
  Qt::WindowFlags flags = above ? Qt::Tool | Qt::WindowStaysOnTopHint : Qt::Dialog;
  native.window = Make<ScreenWindow>(native, FrameWindow(), flags);
  if (above)
    native.window->setAttribute(Qt::WA_ShowWithoutActivating);
  else
    native.window->setWindowModality(Qt::ApplicationModal);
  auto* column = Make<QVBoxLayout>(native.window);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(native.page);
  native.window->setWindowTitle(ToQt(screen.title));
}

void Remember(QtScreen& native) {
  screenOf[native.page] = &native;
  if (native.window) screenOf[native.window] = &native;
  for (QtControl& control : native.controls) controlOf[control.widget] = &control;
}

void Forget(QtScreen& native) {
  screenOf.remove(native.page);
  screenOf.remove(native.window);
  for (QtControl& control : native.controls) controlOf.remove(control.widget);
}

// ---- showing ------------------------------------------------------------------------------------

QRect DesktopOfFrame() {
  QWidget* frame = FrameWindow();
  return (frame ? frame->screen() : QApplication::primaryScreen())->availableGeometry();
}

// A scaled display rounds the size of a window down; without a little more than the content needs,
// scroll bars would come up.
QSize WindowSize(const QtScreen& native, const QRect& desktop) {
  constexpr QSize rounding(2, 2);
  QSize size = native.page->sizeHint() + rounding;
  if (native.screen->width > 0) size.setWidth(PixelsOfTwips(native.screen->width));
  if (native.screen->height > 0) size.setHeight(PixelsOfTwips(native.screen->height));
  constexpr QSize titleBar(20, 48);
  return size.boundedTo(desktop.size() - titleBar);
}

// Beside the frame when the desktop has the room, else over its upper right corner.
QPoint PlaceBeside(const QWidget& frame, QSize size, const QRect& desktop) {
  QRect around = frame.frameGeometry();
  int right = std::min(around.right() + 1, desktop.right() - size.width());
  return {std::max(right, desktop.left()), std::max(around.top(), desktop.top())};
}

void PlaceWindow(QtScreen& native) {
  const Screen& screen = *native.screen;
  QWidget* frame = FrameWindow();
  QRect desktop = DesktopOfFrame();
  QSize size = WindowSize(native, desktop);
  native.window->resize(size);
  if (screen.placement == ScreenPlacement::Dialog) {
    QRect around = frame && frame->isVisible() ? frame->frameGeometry() : desktop;
    QPoint corner = around.center() - QPoint(size.width() / 2, size.height() / 2);
    native.window->move(std::max(corner.x(), desktop.left()), std::max(corner.y(), desktop.top()));
  } else if (screen.left != -1 || screen.top != -1) {
    QPoint corner(PixelsOfTwips(screen.left), PixelsOfTwips(screen.top));
    if (const QScreen* display = QGuiApplication::screenAt(corner))
      desktop = display->availableGeometry();
    native.window->move(std::clamp(corner.x(), desktop.left(), desktop.right() - 40),
                        std::clamp(corner.y(), desktop.top(), desktop.bottom() - 40));
  } else if (frame) {
    native.window->move(PlaceBeside(*frame, size, desktop));
  }
}

// Works out the sizes of everything inside, so that the page can be asked for its own.
void SettleLayouts(QWidget& widget) {
  for (QObject* child : widget.children())
    if (child->isWidgetType()) SettleLayouts(static_cast<QWidget&>(*child));
  if (widget.layout()) widget.layout()->activate();
  widget.updateGeometry();
}

// The work below a window that stands above the frame is to be seen.
void FitAboveWork(QtScreen& native) {
  if (native.screen->placement != ScreenPlacement::Above) return;
  const QSize desktop = DesktopOfFrame().size();
  const int width = static_cast<int>(desktop.width() * FitOf(*native.screen).widthShare);
  FitTextsInto(native, *native.root->parentWidget(), {width, desktop.height()});
  SettleLayouts(*native.page);
}

void ShowWindow(QtScreen& native) {
  if (!native.window->isVisible()) {
    FitAboveWork(native);
    PlaceWindow(native);
    native.window->show();
    NoteComingUp(*native.window);
  }
  native.window->raise();
}

// A load routine may have filled in the record by itself.
void ShowRecords(QtScreen& native) {
  for (QtControl& control : native.controls) ShowRecord(control);
  NativeScreenChanged(*native.screen);
}

// Hands the size of the page down to everything inside.
void ActivateLayouts(QWidget& widget) {
  if (widget.layout()) widget.layout()->activate();
  for (QObject* child : widget.children())
    if (child->isWidgetType()) ActivateLayouts(static_cast<QWidget&>(*child));
}

void TellCanvasSizes(QtScreen& native) {
  bool any = std::any_of(native.controls.begin(), native.controls.end(), [](const auto& child) {
    return child.control->kind == ControlKind::Canvas;
  });
  if (!any) return;
  for (QtControl& child : native.controls) {
    if (!child.control || child.control->kind != ControlKind::Canvas) continue;
    QRect inside = child.widget->contentsRect();
    UserCanvasSize(*child.control, inside.width(), inside.height());
  }
}

QtScreen* NativeOf(const Screen& screen) { return static_cast<QtScreen*>(screen.native); }

}  // namespace

QtControl* ControlOfWidget(const QWidget* widget) { return controlOf.value(widget, nullptr); }

QtScreen* ScreenOfWidget(const QWidget* widget) {
  for (; widget; widget = widget->parentWidget())
    if (QtScreen* found = screenOf.value(widget, nullptr)) return found;
  return nullptr;
}

QToolButton* CreateCloseButton(QtScreen& native, QWidget* parent) {
  auto* close = Make<QToolButton>(parent);
  close->setObjectName("close");
  close->setAutoRaise(true);
  close->setFocusPolicy(Qt::NoFocus);
  close->setIcon(parent->style()->standardIcon(QStyle::SP_TitleBarCloseButton));
  close->setAccessibleName("Close");
  QObject::connect(close, &QToolButton::clicked, close, [&native] { CloseByUserOf(native); });
  return close;
}

void CloseByUserOf(QtScreen& native) {
  if (!native.screen || !UserReaches(*native.screen)) return;
  NativeFrame frame;
  UserCloseBox(*native.screen);
}

// ---- the contract -------------------------------------------------------------------------------

void NativeCreateScreen(Screen& screen) {
  QtScreen& native = *livingScreens.emplace_back(std::make_unique<QtScreen>());
  native.screen = &screen;
  screen.native = &native;
  CreatePage(native);
  switch (screen.placement) {
    case ScreenPlacement::Work:
      AddWorkPage(*native.page);
      break;
    case ScreenPlacement::Child:
      native.window = CreateChildWindow(native, WorkArea());
      break;
    default:
      CreateWindow(native);
      break;
  }
  Remember(native);
}

void NativeShowScreen(Screen& screen) {
  QtScreen& native = *NativeOf(screen);
  NativeFrame frame;
  if (!native.shown) ShowRecords(native);
  CarryOutChanges();
  if (!native.shown) SettleLayouts(*native.page);
  switch (screen.placement) {
    case ScreenPlacement::Work:
      ShowWorkPage(*native.page);
      break;
    case ScreenPlacement::Child:
      ShowChildWindow(native);
      break;
    default:
      ShowWindow(native);
      break;
  }
  if (std::exchange(native.shown, true)) return;
  ActivateLayouts(*native.page);
  TellCanvasSizes(native);
}

void NativeHideScreen(Screen& screen) {
  QtScreen* native = NativeOf(screen);
  if (!native) return;
  if (native->window)
    native->window->hide();
  else
    HideWorkPage(*native->page);
}

void NativeDestroyScreen(Screen& screen) {
  QtScreen* native = NativeOf(screen);
  if (!native) return;
  Forget(*native);
  for (QtControl& control : native->controls) {
    if (!control.control) continue;
    ForgetChanges(*control.control);
    control.control->native = nullptr;
    control.control = nullptr;
  }
  native->screen = nullptr;
  screen.native = nullptr;
  if (native->window) native->window->hide();
  if (!native->window) RemoveWorkPage(*native->page);
  auto at = std::find_if(livingScreens.begin(), livingScreens.end(),
                         [&](const auto& living) { return living.get() == native; });
  releasedScreens.push_back(std::move(*at));
  livingScreens.erase(at);
  ScheduleTurn();
}

void ReleaseScreens() {
  if (NativeFramesOnStack()) return;
  for (auto& released : std::exchange(releasedScreens, {}))
    delete (released->window ? released->window : released->page);
}

void ReleaseSoon() {
  if (!releasedScreens.empty()) ScheduleTurn();
}

void NativeScreenChanged(Screen& screen) {
  QtScreen* native = NativeOf(screen);
  if (!native) return;
  ShowScreenColour(*native);
  for (QtControl& control : native->controls)
    if (control.control) NativeControlChanged(*control.control, ChangedColours);
  if (screen.placement == ScreenPlacement::Work) {
    native->heading->SetCaption(ToQt(screen.title));
  } else {
    native->window->setWindowTitle(ToQt(screen.title));
  }
}

QString TitleShownOn(const Screen& screen) {
  QtScreen* native = NativeOf(screen);
  if (!native) return {};
  return native->window ? native->window->windowTitle() : native->heading->Text();
}

// ---- focus and activation -----------------------------------------------------------------------

void FocusByRecord(Screen& screen) {
  QtScreen* native = NativeOf(screen);
  if (!native || !screen.visible) return;
  QWidget* widget = screen.focus ? WidgetOf(*screen.focus) : nullptr;
  if (!widget || !widget->isEnabled() || !widget->isVisible()) widget = native->root;
  if (widget->window()->focusWidget() == widget && widget->hasFocus()) return;
  if (QApplication::activePopupWidget() || QApplication::activeModalWidget() != nullptr)
    if (widget->window() != QApplication::activeModalWidget()) return;
  widget->setFocus(Qt::OtherFocusReason);
  for (QWidget* at = widget; at && at != native->page; at = at->parentWidget())
    if (auto* area = dynamic_cast<ScrolledContent*>(at)) area->ensureWidgetVisible(widget, 8, 8);
}

void NativeFocus(Control& control) {
  CarryOutChanges();
  FocusByRecord(*control.owner);
}

void NativeActivate(Screen& screen) {
  QtScreen* native = NativeOf(screen);
  if (!native) return;
  bool ownWindow = native->window && native->window->isWindow();
  QWidget* window = ownWindow ? native->window : FrameWindow();
  if (native->window) native->window->raise();
  if (window && window->isVisible()) WishActivation(*window);
  FocusByRecord(screen);
}

Screen* ScreenInFrame() {
  Screen* active = ActiveScreen();
  if (active &&
      (active->placement == ScreenPlacement::Work || active->placement == ScreenPlacement::Child))
    return active;
  return TopWorkScreen();
}
