// Messages of several lines.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

// The lines with CR LF between them.
inline std::string Lines(std::initializer_list<std::string_view> lines) {
  std::string text;
  bool first = true;
  for (std::string_view line : lines) {
    if (!first) text += "\r\n";
    first = false;
    text += line;
  }
  return text;
}
