// One widget per control: creation, changes, accessible names.
#include "platform/qt/qtcontrols.h"

#include <QApplication>
#include <QGroupBox>
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "platform/native.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qtcanvas.h"
#include "platform/qt/qtloop.h"
#include "platform/qt/qtscreen.h"
#include "platform/qt/qtstyle.h"
#include "platform/qt/qtwidgets.h"

namespace {

std::vector<Control*> changedControls;

Qt::Alignment TextAlignment(const Control& control) {
  Qt::Alignment vertical = control.wrap ? Qt::AlignTop : Qt::AlignVCenter;
  switch (control.textAlign) {
    case Align::Centre:
      return Qt::AlignHCenter | vertical;
    case Align::Right:
      return Qt::AlignRight | vertical;
    default:
      return Qt::AlignLeft | vertical;
  }
}

// ---- what of the record stands on the widget ----------------------------------------------------

void ShowText(const Control& control, QWidget& widget) {
  QString text = ToQt(control.text);
  if (control.kind == ControlKind::TextField) {
    auto& field = static_cast<Field&>(widget);
    if (field.text() != text) field.setText(text);
  } else if (control.kind == ControlKind::TextArea) {
    auto& area = static_cast<Area&>(widget);
    QString lines = WithLineBreaks(control.text);
    if (area.toPlainText() != lines) area.setPlainText(lines);
  }
}

void ShowSelection(const Control& control, QWidget& widget) {
  if (control.kind == ControlKind::TextField) {
    int start = QtPosition(control.text, control.selStart);
    int end = QtPosition(control.text, control.selStart + control.selLength);
    static_cast<Field&>(widget).Select(start, end - start);
  } else if (control.kind == ControlKind::TextArea) {
    auto& area = static_cast<Area&>(widget);
    auto position = [&](int bytes) {
      auto before = static_cast<std::size_t>(bytes);
      return static_cast<int>(WithLineBreaks(control.text.substr(0, before)).size());
    };
    int last = area.document()->characterCount() - 1;
    QTextCursor cursor = area.textCursor();
    cursor.setPosition(std::min(position(control.selStart), last));
    cursor.setPosition(std::min(position(control.selStart + control.selLength), last),
                       QTextCursor::KeepAnchor);
    area.setTextCursor(cursor);
  }
}

std::string AccessibleName(const Control& control) {
  if (!control.accessibleName.empty()) return control.accessibleName;
  if (!control.caption.empty()) return PlainCaption(control.caption);
  if (control.owner)
    for (const Control& label : control.owner->controls)
      if (label.labelFor == control.name && !control.name.empty())
        return PlainCaption(label.caption);
  return {};
}

void ShowProgress(const Control& control, QWidget& widget) {
  static_cast<Progress&>(widget).Show(ToQt(PlainCaption(control.caption)), control.value,
                                      control.maximum);
}

void ShowCaption(const Control& control, QWidget& widget) {
  QString caption = ToQt(control.caption);
  switch (control.kind) {
    case ControlKind::Label:
      static_cast<Caption&>(widget).SetCaption(WithLineBreaks(control.caption));
      break;
    case ControlKind::Button:
    case ControlKind::RadioButton:
    case ControlKind::CheckBox: {
      auto& button = static_cast<QAbstractButton&>(widget);
      button.setText(caption);
      button.setShortcut(QKeySequence());  // the screen has the letters
      break;
    }
    case ControlKind::Group:
      static_cast<QGroupBox&>(widget).setTitle(ToQt(PlainCaption(control.caption)));
      break;
    case ControlKind::ProgressBar:
      ShowProgress(control, widget);
      break;
    default:
      break;
  }
  widget.setAccessibleName(ToQt(AccessibleName(control)));
}

void ShowNodes(const Control& control, Tree& tree) {
  tree.clear();
  std::map<std::string, QTreeWidgetItem*> byKey;
  for (std::size_t i = 0; i < control.nodes.size(); ++i) {
    const TreeNode& node = control.nodes[i];
    auto parent = byKey.find(node.parent);
    auto* item = node.parent.empty() || parent == byKey.end()
                     ? Make<QTreeWidgetItem>(&tree)
                     : Make<QTreeWidgetItem>(parent->second);
    item->setText(0, ToQt(node.text));
    item->setData(0, Qt::UserRole, static_cast<int>(i));
    QPixmap icon = node.icon.empty() ? QPixmap() : PictureNamed(node.icon);
    if (!icon.isNull()) item->setIcon(0, icon);
    // Drawn only: a disabled item would not tell of a double click.
    if (!node.enabled)
      item->setForeground(0, tree.palette().brush(QPalette::Disabled, QPalette::Text));
    byKey[node.key] = item;
  }
  tree.expandAll();
}

void ShowItems(const Control& control, QWidget& widget) {
  QStringList items;
  for (const std::string& item : control.items) items << ToQt(item);
  if (control.kind == ControlKind::DropDownList) {
    auto& list = static_cast<DropDown&>(widget);
    list.clear();
    list.addItems(items);
    list.updateGeometry();
  } else if (control.kind == ControlKind::ListBox) {
    auto& list = static_cast<List&>(widget);
    list.clear();
    list.addItems(items);
  } else if (control.kind == ControlKind::TreeView) {
    ShowNodes(control, static_cast<Tree&>(widget));
  }
}

QTreeWidgetItem* NodeItem(Tree& tree, int index) {
  for (QTreeWidgetItemIterator at(&tree); *at; ++at)
    if ((*at)->data(0, Qt::UserRole).toInt() == index) return *at;
  return nullptr;
}

void ShowListIndex(const Control& control, QWidget& widget) {
  switch (control.kind) {
    case ControlKind::DropDownList:
      static_cast<DropDown&>(widget).setCurrentIndex(control.listIndex);
      break;
    case ControlKind::ListBox: {
      auto& list = static_cast<List&>(widget);
      list.setCurrentRow(control.listIndex);
      if (control.listIndex < 0) list.clearSelection();
      break;
    }
    case ControlKind::TreeView: {
      auto& tree = static_cast<Tree&>(widget);
      tree.setCurrentItem(control.listIndex < 0 ? nullptr : NodeItem(tree, control.listIndex));
      break;
    }
    default:
      break;
  }
}

void ShowState(const Control& control, QWidget& widget) {
  if (control.kind == ControlKind::TextField)
    static_cast<Field&>(widget).setReadOnly(control.readOnly);
  if (control.kind == ControlKind::TextArea)
    static_cast<Area&>(widget).setReadOnly(control.readOnly);
  if (control.kind == ControlKind::RadioButton || control.kind == ControlKind::CheckBox)
    static_cast<QAbstractButton&>(widget).setChecked(control.checked);
  if (widget.isEnabledTo(widget.parentWidget()) != control.enabled)
    widget.setEnabled(control.enabled);
  if (widget.isVisibleTo(widget.parentWidget()) != control.visible)
    widget.setVisible(control.visible);
}

void Apply(QtControl& native, unsigned changes) {
  Control& control = *native.control;
  QWidget& widget = *native.widget;
  native.applying = true;
  if (changes & ChangedItems) ShowItems(control, widget);
  if (changes & ChangedText) ShowText(control, widget);
  if (changes & ChangedCaption) ShowCaption(control, widget);
  if (changes & ChangedColours) {
    ApplyColours(control, widget);
    if (control.kind == ControlKind::Canvas) RepaintCanvas(widget);
  }
  if (changes & ChangedState) ShowState(control, widget);
  if (changes & (ChangedListIndex | ChangedItems)) ShowListIndex(control, widget);
  if ((changes & ChangedValue) && control.kind == ControlKind::ProgressBar)
    ShowProgress(control, widget);
  if (changes & ChangedSelection) ShowSelection(control, widget);
  if ((changes & ChangedDrawing) && control.kind == ControlKind::Canvas) RepaintCanvas(widget);
  native.applying = false;
}

// ---- creation -----------------------------------------------------------------------------------

QWidget* CreateCaption(const Control& control, QWidget* parent) {
  auto* caption = Make<Caption>(parent);
  caption->SetAlignment(TextAlignment(control));
  caption->SetWrap(control.wrap);
  caption->SetWidthChars(control.widthChars);
  if (control.framed) caption->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  return caption;
}

QWidget* CreateField(const Control& control, QWidget* parent) {
  auto* field = Make<Field>(parent);
  field->SetWidthChars(control.widthChars);
  field->setAlignment(TextAlignment(control));
  field->setDragEnabled(false);
  field->setAcceptDrops(false);
  bool grows = control.widthChars == 0 || control.place.align == Align::Fill;
  field->setSizePolicy(grows ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Fixed);
  return field;
}

QWidget* CreateArea(const Control& control, QWidget* parent) {
  auto* area = Make<Area>(parent);
  area->setTabChangesFocus(true);
  area->widthChars = control.widthChars;
  area->heightLines = control.heightLines;
  return area;
}

QWidget* CreateButton(const Control& control, QWidget* parent) {
  auto* button = Make<QPushButton>(parent);
  button->setAutoDefault(false);
  QPixmap icon = control.icon.empty() ? QPixmap() : PictureNamed(control.icon);
  if (!icon.isNull()) button->setIcon(icon);
  if (control.widthChars > 0)
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance(u'0') * control.widthChars);
  return button;
}

QWidget* CreateDropDown(const Control& control, QWidget* parent) {
  auto* list = Make<DropDown>(parent);
  list->widthChars = control.widthChars;
  bool grows = control.place.align == Align::Fill;
  list->setSizePolicy(grows ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Fixed);
  return list;
}

template <typename Widget>
QWidget* CreateList(const Control& control, QWidget* parent) {
  auto* list = Make<Widget>(parent);
  list->widthChars = control.widthChars;
  list->heightLines = control.heightLines;
  return list;
}

QWidget* CreatePicture(const Control& control, QWidget* parent) {
  auto* picture = Make<Picture>(parent);
  picture->SetPixmap(PictureNamed(control.icon));
  picture->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  return picture;
}

QWidget* CreateByKind(const Control& control, QWidget* parent) {
  switch (control.kind) {
    case ControlKind::Label:
      return CreateCaption(control, parent);
    case ControlKind::TextField:
      return CreateField(control, parent);
    case ControlKind::TextArea:
      return CreateArea(control, parent);
    case ControlKind::Button:
      return CreateButton(control, parent);
    case ControlKind::RadioButton:
      return Make<Radio>(parent);
    case ControlKind::CheckBox:
      return Make<Check>(parent);
    case ControlKind::DropDownList:
      return CreateDropDown(control, parent);
    case ControlKind::ListBox:
      return CreateList<List>(control, parent);
    case ControlKind::TreeView:
      return CreateList<Tree>(control, parent);
    case ControlKind::Canvas:
      return CreateCanvas(control, parent);
    case ControlKind::Picture:
      return CreatePicture(control, parent);
    case ControlKind::ProgressBar:
      return Make<Progress>(parent);
    case ControlKind::Group:
      return Make<QGroupBox>(parent);
    case ControlKind::Row:
    case ControlKind::Column:
    case ControlKind::Grid:
    case ControlKind::Spacer:
      break;
  }
  return Make<QWidget>(parent);
}

// The toolkit moves the focus by Tab alone; clicks ask the screen first.
void SetFocusPolicy(const Control& control, QWidget& widget) {
  widget.setFocusPolicy(TakesFocus(control) ? Qt::TabFocus : Qt::NoFocus);
}

constexpr unsigned ShowsEverything = ChangedText | ChangedCaption | ChangedColours | ChangedState |
                                     ChangedItems | ChangedListIndex | ChangedValue |
                                     ChangedSelection;

}  // namespace

QWidget* CreateWidget(QtControl& native, QWidget* parent) {
  Control& control = *native.control;
  QWidget* widget = CreateByKind(control, parent);
  native.widget = widget;
  widget->setObjectName(ToQt(control.name));
  if (control.fontScale != 1 || control.bold) widget->setFont(FontOf(control));
  SetFocusPolicy(control, *widget);
  return widget;
}

void ShowRecord(QtControl& native) {
  ForgetChanges(*native.control);
  Apply(native, ShowsEverything);
}

void ShowSelectionOf(QtControl& native) {
  native.applying = true;
  ShowSelection(*native.control, *native.widget);
  native.applying = false;
}

// ---- changes ------------------------------------------------------------------------------------

void NativeControlChanged(Control& control, unsigned changes) {
  if (!control.native || (control.changes & changes) == changes) return;
  if (control.changes == 0) changedControls.push_back(&control);
  control.changes |= changes;
  ScheduleTurn();
}

void CarryOutChanges() {
  // What a change leads to (a canvas that is told its size) may change controls again.
  while (!changedControls.empty()) {
    std::vector<Control*> now = std::exchange(changedControls, {});
    for (Control* control : now) {
      unsigned changes = std::exchange(control->changes, 0);
      if (control->native) Apply(*static_cast<QtControl*>(control->native), changes);
    }
  }
}

void ForgetChanges(Control& control) {
  control.changes = 0;
  changedControls.erase(std::remove(changedControls.begin(), changedControls.end(), &control),
                        changedControls.end());
}

// ---- what stands there
// ---------------------------------------------------------------------------

QWidget* WidgetOf(const Control& control) {
  return control.native ? static_cast<QtControl*>(control.native)->widget : nullptr;
}

QString ShownOn(const Control& control) {
  QWidget* widget = WidgetOf(control);
  if (!widget) return {};
  switch (control.kind) {
    case ControlKind::Label:
      return ToQt(PlainCaption(FromQt(static_cast<Caption*>(widget)->Text())));
    case ControlKind::TextField:
      return static_cast<Field*>(widget)->text();
    case ControlKind::TextArea:
      return static_cast<Area*>(widget)->toPlainText();
    case ControlKind::Button:
    case ControlKind::RadioButton:
    case ControlKind::CheckBox:
      return ToQt(PlainCaption(FromQt(static_cast<QAbstractButton*>(widget)->text())));
    case ControlKind::DropDownList:
      return static_cast<DropDown*>(widget)->currentText();
    case ControlKind::ListBox: {
      auto* item = static_cast<List*>(widget)->currentItem();
      return item ? item->text() : QString();
    }
    case ControlKind::TreeView: {
      auto* item = static_cast<Tree*>(widget)->currentItem();
      return item ? item->text(0) : QString();
    }
    case ControlKind::Group:
      return static_cast<QGroupBox*>(widget)->title();
    case ControlKind::ProgressBar:
      return static_cast<Progress*>(widget)->Text();
    default:
      return {};
  }
}

QModelIndex IndexOfNode(Tree& tree, int node) {
  QTreeWidgetItem* item = NodeItem(tree, node);
  return item ? tree.indexFromItem(item) : QModelIndex();
}

QPixmap PictureNamed(const std::string& name) {
  static std::map<std::string, QPixmap> pictures;
  if (name.empty()) return {};
  auto [at, isNew] = pictures.try_emplace(name);
  if (!isNew) return at->second;
  for (const std::string& file : {"icons/" + name + ".png", name + ".png"})
    if (at->second.isNull()) at->second.load(ToQt(DataFile(file)));
  return at->second;
}
