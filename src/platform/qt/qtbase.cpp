// Texts, units and the count of native frames.
#include "platform/qt/qtbase.h"

#include <algorithm>
#include <cmath>

#include "platform/qt/qtscreen.h"

namespace {

constexpr double TwipsPerPixel = 1440.0 / 96.0;
int nativeFrames = 0;

bool IsAscii(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 128; });
}

}  // namespace

QString ToQt(const std::string& text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string FromQt(const QString& text) { return text.toStdString(); }

int QtPosition(const std::string& text, int bytes) {
  int within = std::clamp(bytes, 0, static_cast<int>(text.size()));
  if (IsAscii(text)) return within;
  return static_cast<int>(ToQt(text.substr(0, static_cast<std::size_t>(within))).size());
}

int BytePosition(const QString& text, int position) {
  return static_cast<int>(text.left(position).toUtf8().size());
}

QString WithLineBreaks(const std::string& text) {
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c != '\n' && c != '\r') {
      lines += c;
      continue;
    }
    char other = c == '\n' ? '\r' : '\n';
    if (i + 1 < text.size() && text[i + 1] == other) ++i;
    lines += '\n';
  }
  return ToQt(lines);
}

int PixelsOfTwips(double twips) { return static_cast<int>(std::lround(twips / TwipsPerPixel)); }
double TwipsOfPixels(int pixels) { return pixels * TwipsPerPixel; }

NativeFrame::NativeFrame() { ++nativeFrames; }
NativeFrame::~NativeFrame() {
  if (--nativeFrames == 0) ReleaseSoon();
}
bool NativeFramesOnStack() { return nativeFrames > 0; }
