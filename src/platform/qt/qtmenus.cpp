// The menu bar of the frame, from the entries of its record.
#include "platform/qt/qtmenus.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/native.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtframe.h"
#include "platform/qt/qtscreen.h"

namespace {

struct Entry {
  QAction* action = nullptr;
  QMenu* menu = nullptr;  // when it has entries of its own
  bool filled = false;
};
std::map<const MenuItem*, Entry> entries;

// "Save   Ctrl+S" with three blanks or more becomes text and column.
QString WithColumn(const std::string& caption) {
  constexpr std::size_t blanksOfAColumn = 3;
  std::size_t key = caption.rfind("Ctrl+");
  if (key == std::string::npos) return ToQt(caption);
  std::size_t end = caption.find_last_not_of(' ', key == 0 ? 0 : key - 1);
  if (key == 0 || end == std::string::npos || key - end - 1 < blanksOfAColumn) return ToQt(caption);
  return ToQt(caption.substr(0, end + 1)) + u'\t' + ToQt(caption.substr(key));
}

bool IsInert(const MenuItem& item) { return item.items.empty() && !item.click; }

void ShowEntry(const MenuItem& item, QAction& action) {
  action.setText(WithColumn(item.caption));
  action.setEnabled(item.enabled && !IsInert(item));
  action.setVisible(item.visible);
  if (item.checked) action.setCheckable(true);
  if (action.isCheckable()) action.setChecked(item.checked);
}

void Trigger(MenuItem& item) {
  NativeFrame frame;
  UserMenu(item);
  // The toolkit has flipped the mark by itself; the record decides.
  auto found = entries.find(&item);
  if (found != entries.end()) ShowEntry(item, *found->second.action);
}

void Fill(MenuItem& item);

void AddEntry(QWidget& parent, MenuItem& item) {
  Entry& entry = entries[&item];
  if (item.items.empty()) {
    entry.action = Make<QAction>(&parent);
    QObject::connect(entry.action, &QAction::triggered, &parent, [&item] { Trigger(item); });
  } else {
    entry.menu = Make<QMenu>(&parent);
    entry.action = entry.menu->menuAction();
    entry.menu->setObjectName(ToQt(item.name));
    QObject::connect(entry.menu, &QMenu::aboutToShow, &parent, [&item] { Fill(item); });
  }
  entry.action->setObjectName(ToQt(item.name));
  ShowEntry(item, *entry.action);
  parent.addAction(entry.action);
}

void Fill(MenuItem& item) {
  Entry& entry = entries[&item];
  if (entry.filled || !entry.menu) return;
  entry.filled = true;
  for (MenuItem& below : item.items) {
    if (below.separatorBefore) entry.menu->addSeparator();
    AddEntry(*entry.menu, below);
  }
}

void ForgetMenus(QMenuBar& bar) {
  for (QAction* action : bar.actions()) bar.removeAction(action);
  for (auto& [item, entry] : entries)
    if (entry.menu)
      entry.menu->deleteLater();
    else
      entry.action->deleteLater();
  entries.clear();
}

// No run of blanks is longer than this.
QString WithBlanks(const std::string& caption, int most) {
  std::string text;
  int run = 0;
  for (char c : caption) {
    run = c == ' ' ? run + 1 : 0;
    if (run <= most) text += c;
  }
  return ToQt(text);
}

// The entry that only tells something, by its record and as it is shown; null when there is none.
struct Line {
  const MenuItem* item = nullptr;
  QAction* action = nullptr;
};
Line LineOfBar() {
  const Frame* frame = TheFrame();
  if (!frame) return {};
  for (const MenuItem& item : frame->menus) {
    auto found = entries.find(&item);
    if (IsInert(item) && item.visible && found != entries.end())
      return {&item, found->second.action};
  }
  return {};
}

int WidthOf(const QMenuBar& bar, const QString& text) {
  return bar.fontMetrics().size(Qt::TextShowMnemonic, text).width();
}

bool Holds(const MenuItem& at, const MenuItem& wanted) {
  if (&at == &wanted) return true;
  return std::any_of(at.items.begin(), at.items.end(),
                     [&](const MenuItem& below) { return Holds(below, wanted); });
}

// Fills the menus on the way down to an entry.
void FillTowards(std::vector<MenuItem>& items, const MenuItem& wanted) {
  for (MenuItem& item : items) {
    if (!Holds(item, wanted)) continue;
    Fill(item);
    FillTowards(item.items, wanted);
  }
}

}  // namespace

void BuildMenus(QMenuBar& bar, Frame& frame) {
  ForgetMenus(bar);
  for (MenuItem& item : frame.menus) AddEntry(bar, item);
}

int WidthOfMenus(const QMenuBar& bar) {
  const int shown = bar.sizeHint().width();
  const Line line = LineOfBar();
  if (!line.item) return shown;
  return shown + WidthOf(bar, ToQt(line.item->caption)) - WidthOf(bar, line.action->text());
}

void FitMenus(QMenuBar& bar, int width) {
  const Line line = LineOfBar();
  if (!line.item) return;
  QString text = ToQt(line.item->caption);
  const int room = WidthOf(bar, text) - std::max(WidthOfMenus(bar) - width, 0);
  constexpr int longestRun = 16;
  for (int blanks = longestRun; blanks > 0 && WidthOf(bar, text) > room; --blanks)
    text = WithBlanks(line.item->caption, blanks);
  if (line.action->text() != text) line.action->setText(text);
}

QAction* ActionOf(const MenuItem& item) {
  if (Frame* frame = TheFrame()) FillTowards(frame->menus, item);
  auto found = entries.find(&item);
  return found != entries.end() ? found->second.action : nullptr;
}

bool MenuReachable(const MenuItem& item) {
  Frame* frame = TheFrame();
  if (!frame || !frame->enabled) return false;
  QAction* action = ActionOf(item);
  if (!action || !action->isEnabled() || !action->isVisible()) return false;
  for (const auto& [above, entry] : entries)
    if (entry.menu && above != &item && Holds(*above, item) &&
        !(entry.action->isEnabled() && entry.action->isVisible()))
      return false;
  return true;
}

void NativeMenuChanged(Frame&, MenuItem& item) {
  auto found = entries.find(&item);
  if (found == entries.end()) return;
  ShowEntry(item, *found->second.action);
  if (IsInert(item)) FitMenusToFrame();
}

void NativePopUpMenu(Frame&, MenuItem& item) {
  ActionOf(item);
  auto found = entries.find(&item);
  if (found == entries.end() || !found->second.menu) return;
  Screen* active = ActiveScreen();
  auto* native = active ? static_cast<QtScreen*>(active->native) : nullptr;
  QWidget* over = native ? native->page : FrameWindow();
  if (!over) return;
  constexpr int inset = 24;
  found->second.menu->popup(over->mapToGlobal(QPoint(inset, inset)));
}
