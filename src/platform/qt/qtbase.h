// Small helpers shared by the Qt files: texts, units, widgets owned by their parent, and the count
// of native frames on the stack. Nobody outside src/platform/qt and tests/support/qt includes it.
#pragma once

#include <QString>
#include <memory>
#include <string>
#include <utility>

// Texts of the records are UTF-8; positions in them count bytes.
QString ToQt(const std::string& text);
std::string FromQt(const QString& text);
int QtPosition(const std::string& text, int bytes);
int BytePosition(const QString& text, int position);
// LF CR, CR LF, CR and LF are each one line break.
QString WithLineBreaks(const std::string& text);

// 1/1440 inch and device-independent pixels, of which 96 are an inch whatever the display's scale.
int PixelsOfTwips(double twips);
double TwipsOfPixels(int pixels);

// A widget or other object that its parent owns.
template <typename Object, typename... Arguments>
Object* Make(Arguments&&... arguments) {
  return std::make_unique<Object>(std::forward<Arguments>(arguments)...).release();
}

// Stands around everything that an event handler of a widget calls: while one is on the stack, no
// widget is deleted.
struct NativeFrame {
  NativeFrame();
  ~NativeFrame();
  NativeFrame(const NativeFrame&) = delete;
  NativeFrame& operator=(const NativeFrame&) = delete;
};
bool NativeFramesOnStack();
