// Colours as the system counts them: 0x00BBGGRR, or a role of the desktop's theme.
#pragma once

#include <cstdint>

using Colour = std::uint32_t;

inline constexpr Colour Black = 0x000000;
inline constexpr Colour White = 0xFFFFFF;
inline constexpr Colour Yellow = 65535;
inline constexpr Colour Red = 0x0000FF;
inline constexpr Colour Green = 0x00B000;
inline constexpr Colour Blue = 0xFF0000;

// Roles take the colour of the desktop's theme. A control whose text colour is a role and whose
// back colour is not is given a text colour that can be read on it.
inline constexpr Colour SystemWindow = 0x80000005;
inline constexpr Colour SystemWindowText = 0x80000008;
inline constexpr Colour SystemButtonFace = 0x8000000F;
inline constexpr Colour SystemButtonText = 0x80000012;
inline constexpr Colour SystemHighlight = 0x8000000D;

constexpr bool IsRole(Colour colour) { return (colour & 0x80000000u) != 0; }
constexpr Colour Rgb(unsigned red, unsigned green, unsigned blue) {
  return (blue << 16) | (green << 8) | red;
}
constexpr unsigned RedOf(Colour colour) { return colour & 0xFF; }
constexpr unsigned GreenOf(Colour colour) { return (colour >> 8) & 0xFF; }
constexpr unsigned BlueOf(Colour colour) { return (colour >> 16) & 0xFF; }
