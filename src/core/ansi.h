// The ANSI character codes (code page 1252) that file names have in the calibration and its image.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The code of each character of a text in UTF-8; 63, the question mark, for one without a code. A
// byte that is no UTF-8 stands for itself.
std::vector<int> AnsiCodes(std::string_view utf8);

// Characters of a text in UTF-8, from a position counted from 1, at most the given count; empty
// when the text ends before. A position below 1 counts as 1.
std::string MidCharacters(std::string_view utf8, long from, long count);
