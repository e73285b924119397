// Editing in a text field the way a line edit of a desktop does it.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

#include "platform/headless/headless.h"
#include "platform/native.h"

namespace {

// Cursor and the other end of the selection.
struct Cursor {
  int anchor = 0;
  int at = 0;
  const Control* field = nullptr;
};

Cursor last;
std::string clipboard;

int Size(const Control& control) { return static_cast<int>(control.text.size()); }

// The record knows where the selection is, not at which end the cursor stands; that is remembered
// as long as the selection is ours.
Cursor CursorOf(const Control& control) {
  int start = std::clamp(control.selStart, 0, Size(control));
  int end = std::clamp(start + control.selLength, start, Size(control));
  bool ours = last.field == &control && std::min(last.anchor, last.at) == start &&
              std::max(last.anchor, last.at) == end;
  return ours ? last : Cursor{start, end, &control};
}

void PlaceCursor(Control& control, const Cursor& cursor) {
  last = cursor;
  UserSelection(control, std::min(cursor.anchor, cursor.at), std::abs(cursor.at - cursor.anchor));
}

void Replace(Control& control, int start, int end, const std::string& by) {
  if (control.readOnly) return;
  std::string text = control.text;
  text.replace(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start), by);
  int at = start + static_cast<int>(by.size());
  last = {at, at, &control};
  headless::Typed(control, text);
  UserText(control, text, at, 0);
}

// Texts are UTF-8: the cursor never stands inside a character.
bool InsideCharacter(const std::string& text, int at) {
  return at > 0 && at < static_cast<int>(text.size()) &&
         (static_cast<unsigned char>(text[static_cast<std::size_t>(at)]) & 0xC0) == 0x80;
}

int OneLeft(const std::string& text, int at) {
  for (--at; InsideCharacter(text, at);) --at;
  return std::max(at, 0);
}

int OneRight(const std::string& text, int at) {
  for (++at; InsideCharacter(text, at);) ++at;
  return std::min(at, static_cast<int>(text.size()));
}

std::string Utf8(int character) {
  auto byte = [](int value) { return static_cast<char>(value); };
  if (character < 0x80) return {byte(character)};
  if (character < 0x800) return {byte(0xC0 | character >> 6), byte(0x80 | (character & 0x3F))};
  return {byte(0xE0 | (character >> 12 & 0x0F)), byte(0x80 | (character >> 6 & 0x3F)),
          byte(0x80 | (character & 0x3F))};
}

int LineStart(const std::string& text, int at) {
  if (at == 0) return 0;
  std::size_t found = text.rfind('\n', static_cast<std::size_t>(at - 1));
  return found == std::string::npos ? 0 : static_cast<int>(found) + 1;
}

int LineEnd(const std::string& text, int at) {
  std::size_t found = text.find('\n', static_cast<std::size_t>(at));
  return static_cast<int>(found == std::string::npos ? text.size() : found);
}

bool WordLetter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

int WordLeft(const std::string& text, int at) {
  auto letter = [&](int i) { return WordLetter(text[static_cast<std::size_t>(i)]); };
  while (at > 0 && !letter(at - 1)) --at;
  while (at > 0 && letter(at - 1)) --at;
  return at;
}

int WordRight(const std::string& text, int at) {
  int size = static_cast<int>(text.size());
  auto letter = [&](int i) { return WordLetter(text[static_cast<std::size_t>(i)]); };
  while (at < size && letter(at)) ++at;
  while (at < size && !letter(at)) ++at;
  return at;
}

int OneLineUp(const std::string& text, int at) {
  int start = LineStart(text, at);
  if (start == 0) return 0;
  int above = LineStart(text, start - 1);
  return std::min(above + at - start, start - 1);
}

int OneLineDown(const std::string& text, int at) {
  int end = LineEnd(text, at);
  if (end == static_cast<int>(text.size())) return end;
  return std::min(end + 1 + at - LineStart(text, at), LineEnd(text, end + 1));
}

// Where a cursor key leads to, or -1 for other keys.
int Destination(const Control& control, const Cursor& cursor, const KeyEvent& event) {
  const std::string& text = control.text;
  bool many = control.kind == ControlKind::TextArea;
  switch (event.key) {
    case KeyLeft:
      return event.ctrl ? WordLeft(text, cursor.at) : OneLeft(text, cursor.at);
    case KeyRight:
      return event.ctrl ? WordRight(text, cursor.at) : OneRight(text, cursor.at);
    case KeyHome:
      return many && !event.ctrl ? LineStart(text, cursor.at) : 0;
    case KeyEnd:
      return many && !event.ctrl ? LineEnd(text, cursor.at) : Size(control);
    case KeyUp:
      return many ? OneLineUp(text, cursor.at) : -1;
    case KeyDown:
      return many ? OneLineDown(text, cursor.at) : -1;
    default:
      return -1;
  }
}

void MoveCursor(Control& control, Cursor cursor, const KeyEvent& event, int to) {
  bool selected = cursor.anchor != cursor.at;
  if (selected && !event.shift && !event.ctrl && event.key == KeyLeft)
    to = std::min(cursor.anchor, cursor.at);
  if (selected && !event.shift && !event.ctrl && event.key == KeyRight)
    to = std::max(cursor.anchor, cursor.at);
  cursor.at = to;
  if (!event.shift) cursor.anchor = to;
  cursor.field = &control;
  PlaceCursor(control, cursor);
}

std::string Selected(const Control& control) {
  return control.text.substr(static_cast<std::size_t>(control.selStart),
                             static_cast<std::size_t>(control.selLength));
}

// Ctrl and a letter reach only a text area, and only when no routine took them.
void UseClipboard(Control& control, const Cursor& cursor, int letter) {
  int start = std::min(cursor.anchor, cursor.at), end = std::max(cursor.anchor, cursor.at);
  if (letter == 'A') PlaceCursor(control, {0, Size(control), &control});
  if ((letter == 'C' || letter == 'X') && start != end) clipboard = Selected(control);
  if (letter == 'X' && start != end) Replace(control, start, end, {});
  if (letter == 'V' && !clipboard.empty()) Replace(control, start, end, clipboard);
}

void Erase(Control& control, const Cursor& cursor, const KeyEvent& event) {
  int start = std::min(cursor.anchor, cursor.at), end = std::max(cursor.anchor, cursor.at);
  if (start == end && event.key == KeyBackspace)
    start = event.ctrl ? WordLeft(control.text, end) : OneLeft(control.text, end);
  else if (start == end)
    end = event.ctrl ? WordRight(control.text, start) : OneRight(control.text, start);
  if (start != end) Replace(control, start, end, {});
}

}  // namespace

namespace headless {

void ResetText() {
  last = {};
  clipboard.clear();
}

void CursorToEnd(Control& control) {
  PlaceCursor(control, {Size(control), Size(control), &control});
}

void EditText(Control& control, const KeyEvent& event) {
  Cursor cursor = CursorOf(control);
  int to = Destination(control, cursor, event);
  if (to >= 0) {
    MoveCursor(control, cursor, event, to);
    return;
  }
  if (event.key == KeyBackspace || event.key == KeyDelete) {
    Erase(control, cursor, event);
    return;
  }
  if (event.ctrl && !event.alt && control.kind == ControlKind::TextArea)
    UseClipboard(control, cursor, event.key);
  bool newLine = event.key == KeyEnter && control.kind == ControlKind::TextArea;
  if (event.ctrl || event.alt || (!newLine && event.character < 32)) return;
  Replace(control, std::min(cursor.anchor, cursor.at), std::max(cursor.anchor, cursor.at),
          newLine ? "\n" : Utf8(event.character));
}

}  // namespace headless
