// The printer as a stream of text: columns are characters of the font, lines its line height.
#include "platform/qt/qtprinter.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <memory>

#include "platform/qt/qtbase.h"
#include "platform/qt/qtboxes.h"
#include "platform/system.h"

namespace {

struct Document {
  QPrinter printer{QPrinter::HighResolution};
  QPainter painter;
  QFont font;
  double lineHeight = 0;
  double columnWidth = 0;
  int line = 0;
  double end = 0;  // where the text of the current line ends
  bool onPage = false;
};

std::unique_ptr<Document> document;
QString printsTo;

void MeasureFont() {
  QFontMetricsF metrics(document->font, &document->printer);
  document->lineHeight = metrics.lineSpacing();
  document->columnWidth = metrics.horizontalAdvance(u'0');
  document->painter.setFont(document->font);
}

double PageHeight() {
  return document->printer.pageLayout().paintRectPixels(document->printer.resolution()).height();
}

void NeedPage() {
  if (document->onPage) return;
  document->onPage = true;
  document->line = 0;
  document->end = 0;
}

bool ChoosePrinter(QPrinter& printer) {
  if (!printsTo.isEmpty()) {
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(printsTo);
    return true;
  }
  QPrintDialog dialog(&printer, QApplication::activeWindow());
  return RunBox(dialog) == QDialog::Accepted;
}

}  // namespace

void PrintToFile(const QString& path) { printsTo = path; }

bool PrinterBegin(const std::string& documentName) {
  auto begun = std::make_unique<Document>();
  begun->printer.setDocName(ToQt(documentName));
  if (!ChoosePrinter(begun->printer) || !begun->painter.begin(&begun->printer)) return false;
  document = std::move(begun);
  document->font = QFont("Courier New", 10);
  document->font.setStyleHint(QFont::TypeWriter);
  MeasureFont();
  return true;
}

void PrinterFont(const std::string& name, double pointSize, bool bold) {
  if (!document) return;
  document->font = QFont(ToQt(name));
  document->font.setPointSizeF(pointSize);
  document->font.setBold(bold);
  MeasureFont();
}

void PrintAt(int column, const std::string& text) {
  if (!document) return;
  if (PrinterLine() >= PrinterLinesPerPage()) PrinterNewPage();
  NeedPage();
  QString words = ToQt(text);
  double x = (column - 1) * document->columnWidth;
  if (x < document->end - document->columnWidth / 2) {
    PrintLine();
    if (PrinterLine() >= PrinterLinesPerPage()) PrinterNewPage();
    NeedPage();
  }
  QFontMetricsF metrics(document->font, &document->printer);
  double y = document->line * document->lineHeight + metrics.ascent();
  document->painter.drawText(QPointF(x, y), words);
  document->end = x + metrics.horizontalAdvance(words);
}

void PrintLine(const std::string& text) {
  if (!document) return;
  int next = static_cast<int>(document->end / document->columnWidth + 0.5) + 1;
  if (!text.empty()) PrintAt(document->onPage ? next : 1, text);
  if (PrinterLine() >= PrinterLinesPerPage()) PrinterNewPage();
  NeedPage();
  ++document->line;
  document->end = 0;
}

void PrinterNewPage() {
  if (!document) return;
  document->printer.newPage();
  document->onPage = false;
  document->line = 0;
  document->end = 0;
}

int PrinterLine() { return document ? document->line : 0; }

int PrinterLinesPerPage() {
  if (!document || document->lineHeight <= 0) return 0;
  return static_cast<int>(PageHeight() / document->lineHeight);
}

void PrinterEnd() {
  if (!document) return;
  document->painter.end();
  document.reset();
}

void PrinterAbort() {
  if (!document) return;
  document->printer.abort();
  document->painter.end();
  document.reset();
}
