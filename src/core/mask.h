// The mask language of Format: a mask is read once into its pieces, a value is set into them.
// Pure; no locale.
#pragma once

#include <string>
#include <string_view>
#include <vector>

enum class MaskPiece { Digit, OptionalDigit, Point, Literal };

struct NumberMask {
  struct Piece {
    MaskPiece kind;
    char character;  // of a literal; the percent sign is one
  };
  std::vector<Piece> pieces;
  int wholePlaces = 0;     // digit places in front of the point
  int decimalPlaces = 0;   // digit places behind it
  int leastDecimals = 0;   // up to the last "0" behind the point
  int powerOfTen = 0;      // 2 for each "%", -3 for each "," that ends the whole places
  bool thousands = false;  // "," between two whole places
};

NumberMask ParseMask(std::string_view mask);

// The value must be finite.
std::string FormatByMask(double value, const NumberMask& mask);
