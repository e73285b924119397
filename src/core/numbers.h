// The conversions between numbers and text that the whole system shares. Pure; no locale.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/failure.h"

// Nearest whole number, ties to the even neighbour, whatever the rounding mode of the processor.
double RoundEven(double value);
// Drops the fraction, towards zero.
double Fix(double value);
// The largest whole number not above the value.
double Int(double value);

// Rounds (ties to even) and fits into 16 bits, or fails with overflow (6). NaN overflows too.
int ToInt16(double value);

// Element of a list; fails with a subscript failure (9) outside of it.
template <typename T>
T& ElementAt(std::span<T> list, long index) {
  if (index < 0 || static_cast<std::size_t>(index) >= list.size()) RaiseFailure(FailureSubscript);
  return list[static_cast<std::size_t>(index)];
}

// The leading number of a text as a double: blanks skipped, sign, digits, ".", exponent; 0 if the
// text does not begin with a number.
double LeadingNumber(std::string_view text);

// Whether the whole text (blanks around it aside) is a number.
bool IsNumeric(std::string_view text);

// The text of a number held as a single: up to 7 significant digits, no trailing zeros, "." as
// decimal point, "0.5" with its leading zero, "-0" never. Very large and small: "1E+10", "1E-07".
std::string NumberText(double value);

// Format by a mask of 0 # . , % and literal text. Rounds the decimal digits (15 significant) half
// away from zero; "#" prints nothing for a missing digit ("#.00" of 0.5 is ".50"); "%" multiplies
// by 100; a minus stands in front of the first digit or point.
std::string Format(double value, std::string_view mask);

// Two (or more) upper-case hexadecimal digits.
std::string HexText(unsigned value, int digits);
