// Sets a number into a mask. The value is taken as the 15 significant decimal digits that a person
// would read from it, and is rounded on those: 0.285 to two places is 0.29, although its binary
// neighbour lies below.
#include "core/mask.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

constexpr int significantDigits = 15;

bool IsPlace(char c) { return c == '0' || c == '#'; }

// A comma groups thousands when a whole place stands on both sides of it; when the whole places
// end there it divides by a thousand.
void TakeComma(NumberMask& mask, std::string_view text, std::size_t at) {
  const std::size_t next = text.find_first_not_of(',', at);
  if (next != std::string_view::npos && IsPlace(text[next]))
    mask.thousands = true;
  else
    mask.powerOfTen -= 3;
}

struct Decimal {
  std::string whole;     // no leading zeros, empty for zero
  std::string fraction;  // as many digits as asked for
  bool negative = false;
};

// Adds one to the last digit; the carry may lengthen the text.
void Increment(std::string& digits) {
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
    if (*digit != '9') {
      ++*digit;
      return;
    }
    *digit = '0';
  }
  digits.insert(digits.begin(), '1');
}

// |value| * 10^power, rounded half up on its decimal digits to the number of decimals, as the
// digits of a whole number of units of the last place.
std::string ScaledDigits(double value, int power, int decimals) {
  std::array<char, 64> buffer{};
  const char* begin = buffer.data();
  const char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                  std::chars_format::scientific, significantDigits - 1)
                        .ptr;
  const char* mark = std::find(begin, end, 'e');
  int exponent = 0;
  std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, exponent);
  std::string digits(begin, mark);
  digits.erase(1, 1);
  const int kept = exponent + power + decimals + 1;  // digits in front of the rounding place
  if (kept < 0) return "0";
  if (kept >= significantDigits) return digits.append(kept - significantDigits, '0');
  const bool up = digits[kept] >= '5';
  digits.resize(kept);
  if (up) Increment(digits);
  return digits.empty() ? "0" : digits;
}

Decimal Rounded(double value, int power, int decimals) {
  std::string digits = ScaledDigits(value, power, decimals);
  const bool zero = digits.find_first_not_of('0') == std::string::npos;
  const std::size_t places = static_cast<std::size_t>(decimals);
  if (digits.size() < places) digits.insert(0, places - digits.size(), '0');
  Decimal result;
  result.whole = digits.substr(0, digits.size() - places);
  result.whole.erase(0, std::min(result.whole.find_first_not_of('0'), result.whole.size()));
  result.fraction = digits.substr(digits.size() - places);
  result.negative = value < 0 && !zero;
  return result;
}

// Writes the pieces of one mask; the minus comes out in front of the first digit or point.
class Setter {
 public:
  Setter(const NumberMask& mask, const Decimal& number)
      : mask_(mask), number_(number), placesLeft_(mask.wholePlaces), minus_(number.negative) {}

  std::string Text() {
    for (const NumberMask::Piece& piece : mask_.pieces) Set(piece);
    return text_;
  }

 private:
  void Set(const NumberMask::Piece& piece) {
    if (piece.kind == MaskPiece::Literal) {
      text_ += piece.character;
    } else if (piece.kind == MaskPiece::Point) {
      if (mask_.wholePlaces == 0) SetWholeDigits(static_cast<int>(number_.whole.size()));
      Put('.');
      behindPoint_ = true;
    } else if (behindPoint_) {
      SetDecimal();
    } else {
      SetWholePlace(piece.kind == MaskPiece::OptionalDigit);
    }
  }

  void SetWholePlace(bool optional) {
    const int size = static_cast<int>(number_.whole.size());
    if (placesLeft_ == mask_.wholePlaces && size > placesLeft_) {
      SetWholeDigits(size);  // what the places cannot hold stands in front of the first of them
    } else if (placesLeft_ <= size) {
      SetWholeDigits(placesLeft_);
    } else if (!optional || zerosBegun_) {
      zerosBegun_ = true;
      Put('0');
      Group(placesLeft_);
    }
    --placesLeft_;
  }

  // The digits from the given count of remaining digits down to the place in hand.
  void SetWholeDigits(int remaining) {
    const int size = static_cast<int>(number_.whole.size());
    const int last = mask_.wholePlaces == 0 ? 1 : placesLeft_;
    for (; remaining >= last; --remaining) {
      Put(number_.whole[static_cast<std::size_t>(size - remaining)]);
      Group(remaining);
    }
  }

  void Group(int place) {
    if (mask_.thousands && place > 1 && (place - 1) % 3 == 0) text_ += ',';
  }

  void SetDecimal() {
    const std::size_t significant = number_.fraction.find_last_not_of('0') + 1;
    const std::size_t shown = std::max(significant, static_cast<std::size_t>(mask_.leastDecimals));
    if (decimal_ < shown) Put(number_.fraction[decimal_]);
    ++decimal_;
  }

  void Put(char c) {
    if (minus_) text_ += '-';
    minus_ = false;
    text_ += c;
  }

  const NumberMask& mask_;
  const Decimal& number_;
  int placesLeft_;
  bool minus_;
  bool behindPoint_ = false;
  bool zerosBegun_ = false;
  std::size_t decimal_ = 0;
  std::string text_;
};

}  // namespace

NumberMask ParseMask(std::string_view text) {
  NumberMask mask;
  bool behindPoint = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (IsPlace(c)) {
      mask.pieces.push_back({c == '0' ? MaskPiece::Digit : MaskPiece::OptionalDigit, c});
      ++(behindPoint ? mask.decimalPlaces : mask.wholePlaces);
      if (behindPoint && c == '0') mask.leastDecimals = mask.decimalPlaces;
    } else if (c == '.' && !behindPoint) {
      mask.pieces.push_back({MaskPiece::Point, c});
      behindPoint = true;
    } else if (c == ',' && !behindPoint && mask.wholePlaces > 0) {
      TakeComma(mask, text, at);
    } else {
      if (c == '%') mask.powerOfTen += 2;
      mask.pieces.push_back({MaskPiece::Literal, c});
    }
  }
  return mask;
}

std::string FormatByMask(double value, const NumberMask& mask) {
  const Decimal number = Rounded(value, mask.powerOfTen, mask.decimalPlaces);
  return Setter(mask, number).Text();
}
