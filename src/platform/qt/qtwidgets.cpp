// The few widgets that differ from the toolkit's own.
#include "platform/qt/qtwidgets.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QProgressBar>
#include <QStyle>
#include <QStyleOption>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/qt/qtbase.h"

namespace {

constexpr int CaptionMargin = 3;  // beside the text, so that a coloured ground shows
constexpr int WrapChars = 72;     // width of a text of many lines that has no wish
constexpr int FieldCharsByDefault = 16;

int Digits(const QWidget& widget, int count) {
  return static_cast<int>(std::ceil(QFontMetricsF(widget.font()).horizontalAdvance(u'0') * count));
}

// Size of a list, tree or text area of so many lines and digits.
QSize AreaSize(const QAbstractScrollArea& area, int content, int chars, int lines, int lineHeight) {
  int frame = 2 * area.frameWidth();
  int bar = area.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &area);
  int width = chars > 0 ? Digits(area, chars) : content;
  return {width + frame + bar + 2 * CaptionMargin, lines * lineHeight + frame + CaptionMargin};
}

}  // namespace

// ---- Caption ----------------------------------------------------------------------------------

Caption::Caption(QWidget* parent) : QFrame(parent) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

int Caption::Flags() const {
  int flags = static_cast<int>(align) | Qt::TextShowMnemonic;
  if (wrap) flags |= Qt::TextWordWrap;
  return flags;
}

QSize Caption::SizeOf(const QString& shown, int width) const {
  QRect bounds = fontMetrics().boundingRect(QRect(0, 0, width, 100000),
                                            Flags() & ~int(Qt::AlignVertical_Mask), shown);
  int frame = 2 * (frameWidth() + CaptionMargin);
  return {bounds.width() + frame,
          std::max(bounds.height(), fontMetrics().height()) + 2 * frameWidth() + 2};
}

void Caption::SetCaption(const QString& newText) {
  if (text == newText) return;
  text = newText;
  bool fits = widthChars > 0 && !wrap && hint.isValid();
  if (fits) {
    QSize needs = SizeOf(text, 100000);
    fits = needs.width() <= hint.width() && needs.height() <= hint.height();
  }
  if (!fits) {
    hint = QSize();
    updateGeometry();
  }
  update();
}

void Caption::SetAlignment(Qt::Alignment alignment) {
  align = alignment;
  update();
}

void Caption::SetWidthChars(int digits) {
  widthChars = digits;
  hint = QSize();
  updateGeometry();
}

void Caption::SetWrap(bool wraps) {
  wrap = wraps;
  QSizePolicy policy(QSizePolicy::Preferred, wraps ? QSizePolicy::Minimum : QSizePolicy::Fixed);
  policy.setHeightForWidth(wraps);
  setSizePolicy(policy);
  hint = QSize();
}

QSize Caption::sizeHint() const {
  if (hint.isValid()) return hint;
  int wished = Digits(*this, widthChars) + 2 * (frameWidth() + CaptionMargin);
  if (wrap) {
    int width = widthChars > 0 ? wished : Digits(*this, WrapChars);
    hint = {std::min(SizeOf(text, 100000).width(), width), heightForWidth(width)};
    if (widthChars > 0) hint.setWidth(width);
  } else {
    hint = SizeOf(text, 100000);
    if (widthChars > 0) hint.setWidth(std::max(hint.width(), wished));
  }
  return hint;
}

QSize Caption::minimumSizeHint() const { return sizeHint(); }

int Caption::heightForWidth(int width) const {
  return SizeOf(text, std::max(width - 2 * (frameWidth() + CaptionMargin), 1)).height();
}

void Caption::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);
  QPainter painter(this);
  QRect inside = contentsRect().adjusted(CaptionMargin, 0, -CaptionMargin, 0);
  style()->drawItemText(&painter, inside, Flags(), palette(), isEnabled(), text,
                        QPalette::WindowText);
}

void Caption::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    hint = QSize();
    updateGeometry();
  }
  QFrame::changeEvent(event);
}

// ---- Field ------------------------------------------------------------------------------------

void Field::SetWidthChars(int digits) {
  widthChars = digits;
  updateGeometry();
}

QSize Field::sizeHint() const {
  // The toolkit's own hint is for 17 letters.
  QSize size = QLineEdit::sizeHint();
  int chars = widthChars > 0 ? widthChars : FieldCharsByDefault;
  size.rwidth() += Digits(*this, chars) - 17 * fontMetrics().horizontalAdvance(u'x') + 4;
  // It leaves room for an icon too, which a field of small texts would show as empty height.
  constexpr double mostOfFont = 1.6;
  size.setHeight(std::min(size.height(), static_cast<int>(mostOfFont * fontMetrics().height())));
  return size;
}

void Field::Select(int start, int length) {
  if (length > 0)
    setSelection(start, length);
  else {
    deselect();
    setCursorPosition(start);
  }
  holdsSelection = true;
}

// An arrow key at a selection goes to that end of it.
void Field::keyPressEvent(QKeyEvent* event) {
  bool left = event->key() == Qt::Key_Left;
  bool arrow = left || event->key() == Qt::Key_Right;
  bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (!arrow || !plain || !hasSelectedText()) {
    QLineEdit::keyPressEvent(event);
    return;
  }
  int end = left ? selectionStart() : selectionEnd();
  deselect();
  setCursorPosition(end);
}

void Field::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  if (gotKeys) gotKeys();
}

void Field::focusOutEvent(QFocusEvent* event) {
  losesKeys = true;
  QLineEdit::focusOutEvent(event);
  losesKeys = false;
}

void Field::mousePressEvent(QMouseEvent* event) {
  holdsSelection = false;
  QLineEdit::mousePressEvent(event);
}

void Field::mouseMoveEvent(QMouseEvent* event) {
  if (!holdsSelection || event->buttons() == Qt::NoButton) QLineEdit::mouseMoveEvent(event);
}

void Field::mouseReleaseEvent(QMouseEvent* event) {
  if (!holdsSelection) QLineEdit::mouseReleaseEvent(event);
  if (event->button() == Qt::LeftButton && released) released();
}

// ---- Area -------------------------------------------------------------------------------------

QSize Area::sizeHint() const {
  int chars = widthChars > 0 ? widthChars : 40;
  int lines = heightLines > 0 ? heightLines : 6;
  return AreaSize(*this, 0, chars, lines, fontMetrics().lineSpacing()) +
         QSize(0, 2 * static_cast<int>(document()->documentMargin()));
}

void Area::mouseReleaseEvent(QMouseEvent* event) {
  QPlainTextEdit::mouseReleaseEvent(event);
  if (event->button() == Qt::LeftButton && released) released();
}

// ---- buttons and lists ------------------------------------------------------------------------

Radio::Radio(QWidget* parent) : QRadioButton(parent) { setAutoExclusive(false); }

DropDown::DropDown(QWidget* parent) : QComboBox(parent) {
  setSizeAdjustPolicy(QComboBox::AdjustToContents);
  setMaxVisibleItems(20);
}

QSize DropDown::sizeHint() const {
  QSize size = QComboBox::sizeHint();
  if (widthChars > 0) size.setWidth(std::max(size.width(), Digits(*this, widthChars + 5)));
  return size;
}

void DropDown::wheelEvent(QWheelEvent* event) { event->ignore(); }

List::List(QWidget* parent) : QListWidget(parent) {
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setUniformItemSizes(true);
}

QSize List::sizeHint() const {
  int lines = heightLines > 0 ? heightLines : std::clamp(count(), 3, 12);
  int line = std::max(sizeHintForRow(0), fontMetrics().height() + 2);
  return AreaSize(*this, std::max(sizeHintForColumn(0), Digits(*this, 8)), widthChars, lines, line);
}

void List::mouseReleaseEvent(QMouseEvent* event) {
  QListWidget::mouseReleaseEvent(event);
  bool again = std::exchange(doubleClicked, false);
  if (event->button() != Qt::LeftButton || again) return;
  if (currentRow() >= 0 && chosen) chosen(currentRow());
}

void List::mouseDoubleClickEvent(QMouseEvent* event) {
  doubleClicked = true;
  QListWidget::mouseDoubleClickEvent(event);
}

void List::keyPressEvent(QKeyEvent* event) {
  int before = currentRow();
  QListWidget::keyPressEvent(event);
  if (currentRow() != before && chosen) chosen(currentRow());
}

Tree::Tree(QWidget* parent) : QTreeWidget(parent) {
  setColumnCount(1);
  setHeaderHidden(true);
  setExpandsOnDoubleClick(false);
  setUniformRowHeights(true);
}

QSize Tree::sizeHint() const {
  int lines = heightLines > 0 ? heightLines : 16;
  int line = std::max(sizeHintForRow(0), fontMetrics().height() + 2);
  return AreaSize(*this, std::max(sizeHintForColumn(0), Digits(*this, 20)), widthChars, lines,
                  line);
}

void Tree::mouseReleaseEvent(QMouseEvent* event) {
  QTreeWidget::mouseReleaseEvent(event);
  bool again = std::exchange(doubleClicked, false);
  if (event->button() != Qt::LeftButton || again) return;
  if (currentItem() && chosen) chosen(*currentItem());
}

void Tree::mouseDoubleClickEvent(QMouseEvent* event) {
  doubleClicked = true;
  QTreeWidget::mouseDoubleClickEvent(event);
}

void Tree::keyPressEvent(QKeyEvent* event) {
  QTreeWidgetItem* before = currentItem();
  QTreeWidget::keyPressEvent(event);
  if (currentItem() && currentItem() != before && chosen) chosen(*currentItem());
}

// ---- Progress and Picture ---------------------------------------------------------------------

Progress::Progress(QWidget* parent)
    : QWidget(parent), caption(Make<Caption>(this)), bar(Make<QProgressBar>(this)) {
  auto* row = Make<QHBoxLayout>(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(caption);
  row->addWidget(bar, 1);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Progress::Show(const QString& captionText, int value, int maximum) {
  caption->SetCaption(captionText);
  caption->setVisible(!captionText.isEmpty());
  bar->setRange(0, std::max(maximum, 1));
  bar->setValue(std::clamp(value, 0, std::max(maximum, 1)));
}

QString Progress::Text() const { return caption->Text(); }

void Picture::SetPixmap(const QPixmap& picture) {
  pixmap = picture;
  updateGeometry();
  update();
}

QSize Picture::sizeHint() const {
  return pixmap.isNull() ? QSize(32, 32) : pixmap.deviceIndependentSize().toSize();
}

void Picture::paintEvent(QPaintEvent*) {
  if (pixmap.isNull()) return;
  QPainter painter(this);
  QSizeF size = pixmap.deviceIndependentSize();
  painter.drawPixmap(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), pixmap);
}
