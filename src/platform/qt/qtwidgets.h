// The few widgets that differ from the toolkit's own.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <functional>

// A caption: plain text with a marked letter that is underlined and nothing else (the screen has
// the letters). Of a given width in digits it never makes the layout run again, unless a text does
// not fit.
class Caption : public QFrame {
 public:
  explicit Caption(QWidget* parent);
  void SetCaption(const QString& text);
  void SetAlignment(Qt::Alignment alignment);
  void SetWidthChars(int digits);
  void SetWrap(bool wraps);
  const QString& Text() const { return text; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  bool hasHeightForWidth() const override { return wrap; }
  int heightForWidth(int width) const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QSize SizeOf(const QString& shown, int width) const;
  int Flags() const;

  QString text;
  Qt::Alignment align = Qt::AlignLeft | Qt::AlignVCenter;
  int widthChars = 0;
  bool wrap = false;
  mutable QSize hint;  // invalid when it must be computed anew
};

// One line of text. After the program has set the selection, a mouse button that is still down
// does not change it. Without the keys it shows no selection; `gotKeys` brings it back.
class Field : public QLineEdit {
 public:
  explicit Field(QWidget* parent) : QLineEdit(parent) {}
  void SetWidthChars(int digits);
  void Select(int start, int length);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }
  std::function<void()> released;
  std::function<void()> gotKeys;
  bool losesKeys = false;  // what it tells of its selection now is no action of the user

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  int widthChars = 0;
  bool holdsSelection = false;
};

// Many lines; the wished height counts lines.
class Area : public QPlainTextEdit {
 public:
  explicit Area(QWidget* parent) : QPlainTextEdit(parent) {}
  int widthChars = 0;
  int heightLines = 0;
  QSize sizeHint() const override;
  std::function<void()> released;

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;
};

// The record says whether they are checked; a click only asks.
class Radio : public QRadioButton {
 public:
  explicit Radio(QWidget* parent);

 protected:
  void nextCheckState() override {}
};
class Check : public QCheckBox {
 public:
  explicit Check(QWidget* parent) : QCheckBox(parent) {}

 protected:
  void nextCheckState() override {}
};

// A list that is not changed by a wheel that passes over it.
class DropDown : public QComboBox {
 public:
  explicit DropDown(QWidget* parent);
  int widthChars = 0;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void wheelEvent(QWheelEvent* event) override;
};

class List : public QListWidget {
 public:
  explicit List(QWidget* parent);
  int widthChars = 0;
  int heightLines = 0;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }
  std::function<void(int row)> chosen;

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool doubleClicked = false;  // the release that follows chooses nothing anew
};

class Tree : public QTreeWidget {
 public:
  explicit Tree(QWidget* parent);
  int widthChars = 0;
  int heightLines = 0;
  QSize sizeHint() const override;
  std::function<void(QTreeWidgetItem& item)> chosen;
  using QTreeWidget::indexFromItem;

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  bool doubleClicked = false;
};

// A caption and a bar.
class Progress : public QWidget {
 public:
  explicit Progress(QWidget* parent);
  void Show(const QString& captionText, int value, int maximum);
  QString Text() const;

 private:
  Caption* caption;
  class QProgressBar* bar;
};

// A picture of the program.
class Picture : public QWidget {
 public:
  explicit Picture(QWidget* parent) : QWidget(parent) {}
  void SetPixmap(const QPixmap& picture);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QPixmap pixmap;
};
