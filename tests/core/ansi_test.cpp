// Character codes of file names.
#include "core/ansi.h"

#include <gtest/gtest.h>

using Codes = std::vector<int>;

TEST(AnsiCodes, PlainCharactersAreThemselves) {
  EXPECT_EQ(AnsiCodes("Az.9~"), (Codes{65, 122, 46, 57, 126}));
  EXPECT_EQ(AnsiCodes(""), Codes{});
}

TEST(AnsiCodes, LatinAndWindowsCharactersHaveOneCode) {
  EXPECT_EQ(AnsiCodes("\xC3\xA9\xC3\xBF\xC2\xA0"), (Codes{233, 255, 160}));
  EXPECT_EQ(AnsiCodes("\xE2\x82\xAC\xE2\x80\x93\xC5\xB8"), (Codes{128, 150, 159}));
}

TEST(AnsiCodes, CharactersOutsideThePageAreQuestionMarks) {
  EXPECT_EQ(AnsiCodes("\xE4\xB8\xAD\xF0\x9F\x9A\x97\xC2\x81"), (Codes{63, 63, 63}));
}

TEST(AnsiCodes, BytesThatAreNoUtf8StandForThemselves) {
  EXPECT_EQ(AnsiCodes("\xFC\x41\xC3"), (Codes{252, 65, 195}));
  EXPECT_EQ(AnsiCodes("\xE2\x82"), (Codes{226, 130}));
  EXPECT_EQ(AnsiCodes("\xE2\x41\x42"), (Codes{226, 65, 66}));
  EXPECT_EQ(AnsiCodes("\xFF\x80"), (Codes{255, 128}));
}

TEST(MidCharacters, CountsCharactersFromOne) {
  EXPECT_EQ(MidCharacters("abcdef", 1, 3), "abc");
  EXPECT_EQ(MidCharacters("abcdef", 3, 20), "cdef");
  EXPECT_EQ(MidCharacters("a\xC3\xBC\xE2\x82\xACz", 2, 2), "\xC3\xBC\xE2\x82\xAC");
}

TEST(MidCharacters, IsEmptyPastTheEnd) {
  EXPECT_EQ(MidCharacters("abc", 4, 20), "");
  EXPECT_EQ(MidCharacters("abc", 40, 20), "");
  EXPECT_EQ(MidCharacters("abc", 1, 0), "");
}

TEST(MidCharacters, PositionBelowOneCountsAsOne) { EXPECT_EQ(MidCharacters("abc", -3, 2), "ab"); }
