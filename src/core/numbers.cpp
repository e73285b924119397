// Conversions between numbers and text. Text is made and read with to_chars and from_chars, so
// neither the locale nor the rounding mode of the machine can change a byte.
#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "core/mask.h"

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string WithoutBlanks(std::string_view text) {
  std::string result;
  for (char c : text)
    if (!IsBlank(c)) result += c;
  return result;
}

std::size_t SkipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at;
}

bool IsSign(std::string_view text, std::size_t at) {
  return at < text.size() && (text[at] == '+' || text[at] == '-');
}

// Length of the number at the start of the text: sign, digits with at most one point, exponent.
// 0 when there is no digit in front of the exponent. An exponent without digits is left out.
std::size_t NumberLength(std::string_view text) {
  std::size_t at = IsSign(text, 0) ? 1 : 0;
  const std::size_t whole = at;
  at = SkipDigits(text, at);
  std::size_t digits = at - whole;
  if (at < text.size() && text[at] == '.') {
    const std::size_t fraction = at + 1;
    at = SkipDigits(text, fraction);
    digits += at - fraction;
  }
  if (digits == 0) return 0;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    const std::size_t power = at + 1 + (IsSign(text, at + 1) ? 1 : 0);
    const std::size_t end = SkipDigits(text, power);
    if (end > power) at = end;
  }
  return at;
}

// Whether an unsigned number that no double holds is too large, rather than too small: by the
// decimal place of its first digit that is not zero.
bool IsTooLarge(std::string_view text) {
  const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
  const std::string_view digits = text.substr(0, mark);
  const auto point = static_cast<double>(std::min(digits.find('.'), digits.size()));
  const auto first = static_cast<double>(digits.find_first_of("123456789"));
  const double power = mark == text.size() ? 0 : LeadingNumber(text.substr(mark + 1));
  return point - first + power > 0;
}

// The value of a text that NumberLength accepts whole: infinite beyond the range of a double, and
// zero below it.
double NumberValue(std::string_view text) {
  const bool negative = text.front() == '-';
  if (IsSign(text, 0)) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range)
    value = IsTooLarge(text) ? std::numeric_limits<double>::infinity() : 0;
  return negative ? -value : value;
}

std::string NotFiniteText(double value) {
  if (std::isnan(value)) return "NaN";
  return value < 0 ? "-Inf" : "Inf";
}

}  // namespace

double RoundEven(double value) {
  const double below = std::floor(value);
  const double rest = value - below;
  if (rest < 0.5) return below;
  if (rest > 0.5) return below + 1;
  // A tie, or NaN, which stays itself. Halving tells odd from even at any magnitude.
  return std::floor(below / 2) * 2 == below ? below : below + 1;
}

double Fix(double value) { return std::trunc(value); }

double Int(double value) { return std::floor(value); }

int ToInt16(double value) {
  const double rounded = RoundEven(value);
  constexpr double lowest = std::numeric_limits<std::int16_t>::min();
  constexpr double highest = std::numeric_limits<std::int16_t>::max();
  if (!(rounded >= lowest && rounded <= highest)) RaiseFailure(FailureOverflow);
  return static_cast<int>(rounded);
}

double LeadingNumber(std::string_view text) {
  const std::string packed = WithoutBlanks(text);
  const std::size_t length = NumberLength(packed);
  return length == 0 ? 0 : NumberValue(std::string_view(packed).substr(0, length));
}

bool IsNumeric(std::string_view text) {
  text = Trimmed(text);
  return !text.empty() && NumberLength(text) == text.size() && std::isfinite(NumberValue(text));
}

std::string NumberText(double value) {
  if (!std::isfinite(value)) return NotFiniteText(value);
  if (std::abs(value) > std::numeric_limits<float>::max()) RaiseFailure(FailureOverflow);
  const float single = static_cast<float>(value);
  if (single == 0) return "0";
  std::array<char, 32> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), single,
                                          std::chars_format::general, 7);
  std::string text(buffer.data(), end);
  if (const std::size_t power = text.find('e'); power != std::string::npos) text[power] = 'E';
  return text;
}

std::string Format(double value, std::string_view mask) {
  if (!std::isfinite(value)) return NotFiniteText(value);
  return FormatByMask(value, ParseMask(mask));
}

std::string HexText(unsigned value, int digits) {
  static constexpr std::string_view hex = "0123456789ABCDEF";
  std::string text;
  for (; value != 0; value /= 16) text.insert(text.begin(), hex[value % 16]);
  while (static_cast<int>(text.size()) < digits) text.insert(text.begin(), '0');
  return text;
}
