// Decodes UTF-8 and looks code points up in code page 1252.
#include "core/ansi.h"

#include <algorithm>
#include <array>

namespace {

struct Character {
  char32_t point = 0;
  std::size_t length = 1;  // bytes in UTF-8
};

constexpr int questionMark = 63;

// Code points of the codes 128 to 159; 0 where the page has none.
constexpr std::array<char32_t, 32> upperControls = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

unsigned Byte(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

// Bytes of the character that a first byte announces; 1 also for a byte that announces none.
std::size_t AnnouncedLength(unsigned first) {
  if (first >= 0xF0 && first < 0xF8) return 4;
  if (first >= 0xE0) return first < 0xF0 ? 3 : 1;
  return first >= 0xC2 ? 2 : 1;
}

Character CharacterAt(std::string_view text, std::size_t at) {
  const unsigned first = Byte(text, at);
  const std::size_t length = AnnouncedLength(first);
  const Character itself{first, 1};
  if (length == 1 || at + length > text.size()) return itself;
  char32_t point = first & (0x7FU >> length);
  for (std::size_t k = 1; k < length; ++k) {
    if ((Byte(text, at + k) & 0xC0U) != 0x80U) return itself;
    point = (point << 6) | (Byte(text, at + k) & 0x3FU);
  }
  return {point, length};
}

int AnsiCode(const Character& character) {
  const bool plain = character.point < 128 || (character.point >= 160 && character.point < 256);
  if (plain || (character.length == 1)) return static_cast<int>(character.point);
  const auto found = std::find(upperControls.begin(), upperControls.end(), character.point);
  if (found == upperControls.end()) return questionMark;
  return 128 + static_cast<int>(found - upperControls.begin());
}

}  // namespace

std::vector<int> AnsiCodes(std::string_view utf8) {
  std::vector<int> codes;
  for (std::size_t at = 0; at < utf8.size();) {
    const Character character = CharacterAt(utf8, at);
    codes.push_back(AnsiCode(character));
    at += character.length;
  }
  return codes;
}

std::string MidCharacters(std::string_view utf8, long from, long count) {
  std::size_t at = 0;
  for (long position = 1; position < from && at < utf8.size(); ++position)
    at += CharacterAt(utf8, at).length;
  std::size_t end = at;
  for (long taken = 0; taken < count && end < utf8.size(); ++taken)
    end += CharacterAt(utf8, end).length;
  return std::string(utf8.substr(at, end - at));
}
