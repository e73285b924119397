// The conversions between numbers and text.
#include "core/numbers.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

template <typename Action>
int FailureOf(Action action) {
  try {
    action();
  } catch (const Failure& failure) {
    return failure.number;
  }
  return 0;
}

struct Masked {
  double value;
  const char* mask;
  const char* text;
};

void ExpectMasked(const std::vector<Masked>& rows) {
  for (const Masked& row : rows)
    EXPECT_EQ(Format(row.value, row.mask), row.text) << row.value << " in " << row.mask;
}

}  // namespace

TEST(RoundEven, TiesGoToTheEvenNeighbour) {
  EXPECT_EQ(RoundEven(0.5), 0);
  EXPECT_EQ(RoundEven(1.5), 2);
  EXPECT_EQ(RoundEven(2.5), 2);
  EXPECT_EQ(RoundEven(8.5), 8);
  EXPECT_EQ(RoundEven(9.5), 10);
  EXPECT_EQ(RoundEven(-0.5), 0);
  EXPECT_EQ(RoundEven(-1.5), -2);
  EXPECT_EQ(RoundEven(-2.5), -2);
  EXPECT_EQ(RoundEven(-42.5), -42);
}

TEST(RoundEven, OtherFractionsGoToTheNearest) {
  EXPECT_EQ(RoundEven(2.4999), 2);
  EXPECT_EQ(RoundEven(2.5001), 3);
  EXPECT_EQ(RoundEven(-2.4999), -2);
  EXPECT_EQ(RoundEven(-2.5001), -3);
  EXPECT_EQ(RoundEven(0.49999999999999994), 0);
  EXPECT_EQ(RoundEven(-0.49999999999999994), 0);
  EXPECT_EQ(RoundEven(254.99), 255);
}

TEST(RoundEven, NumbersWithoutFractionStand) {
  EXPECT_EQ(RoundEven(0), 0);
  EXPECT_EQ(RoundEven(4503599627370497.0), 4503599627370497.0);
  EXPECT_EQ(RoundEven(1e300), 1e300);
  EXPECT_EQ(RoundEven(infinity), infinity);
  EXPECT_TRUE(std::isnan(RoundEven(notANumber)));
}

TEST(RoundEven, IgnoresTheRoundingModeOfTheProcessor) {
  for (int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    std::fesetround(mode);
    EXPECT_EQ(RoundEven(2.5), 2);
    EXPECT_EQ(RoundEven(3.5), 4);
    EXPECT_EQ(RoundEven(-1.25), -1);
  }
  std::fesetround(FE_TONEAREST);
}

TEST(Fix, DropsTheFractionTowardsZero) {
  EXPECT_EQ(Fix(2.9), 2);
  EXPECT_EQ(Fix(-63.75), -63);
  EXPECT_EQ(Fix(-0.9), 0);
}

TEST(Int, GoesDown) {
  EXPECT_EQ(Int(2.9), 2);
  EXPECT_EQ(Int(-0.1), -1);
  EXPECT_EQ(Int(-3), -3);
}

TEST(ToInt16, HoldsWhatRoundsIntoSixteenBits) {
  EXPECT_EQ(ToInt16(32767.4), 32767);
  EXPECT_EQ(ToInt16(-32768.5), -32768);
  EXPECT_EQ(ToInt16(2.5), 2);
}

TEST(ToInt16, OverflowsOutsideOfSixteenBits) {
  for (double value : {32767.5, 32768.0, -32769.0, -32768.51, 1e9, infinity, -infinity, notANumber})
    EXPECT_EQ(FailureOf([value] { ToInt16(value); }), FailureOverflow) << value;
}

TEST(ElementAt, ReachesEveryElementAndFailsOutside) {
  std::vector<int> list = {10, 20, 30};
  const std::span<int> span(list);
  EXPECT_EQ(ElementAt(span, 0), 10);
  EXPECT_EQ(ElementAt(span, 2), 30);
  EXPECT_EQ(FailureOf([&] { ElementAt(span, 3); }), FailureSubscript);
  EXPECT_EQ(FailureOf([&] { ElementAt(span, -1); }), FailureSubscript);
}

TEST(LeadingNumber, ReadsAsFarAsTheTextIsANumber) {
  EXPECT_EQ(LeadingNumber("12.5 kPa"), 12.5);
  EXPECT_EQ(LeadingNumber("-3.25"), -3.25);
  EXPECT_EQ(LeadingNumber("+7"), 7);
  EXPECT_EQ(LeadingNumber(".5"), 0.5);
  EXPECT_EQ(LeadingNumber("5."), 5);
  EXPECT_EQ(LeadingNumber("-.25x"), -0.25);
  EXPECT_EQ(LeadingNumber("1.2.3"), 1.2);
  EXPECT_EQ(LeadingNumber("1,5"), 1);
  EXPECT_EQ(LeadingNumber("2-1"), 2);
}

TEST(LeadingNumber, SkipsBlanks) {
  EXPECT_EQ(LeadingNumber("   42"), 42);
  EXPECT_EQ(LeadingNumber("\t 1 000 \r\n"), 1000);
  EXPECT_EQ(LeadingNumber("- 3"), -3);
}

TEST(LeadingNumber, TakesAnExponentOnlyWithDigits) {
  EXPECT_EQ(LeadingNumber("1.5e3"), 1500);
  EXPECT_EQ(LeadingNumber("2E-2"), 0.02);
  EXPECT_EQ(LeadingNumber("2E+1"), 20);
  EXPECT_EQ(LeadingNumber("7e"), 7);
  EXPECT_EQ(LeadingNumber("7e+"), 7);
  EXPECT_EQ(LeadingNumber("7 engines"), 7);
}

TEST(LeadingNumber, IsZeroWhereNoNumberBegins) {
  for (const char* text : {"", "   ", "abc", "-", ".", "+.", "e5", "kPa 5", "&H10", "inf", "nan"})
    EXPECT_EQ(LeadingNumber(text), 0) << text;
}

TEST(LeadingNumber, GoesToInfinityAndZeroBeyondTheRange) {
  EXPECT_EQ(LeadingNumber("1e400"), infinity);
  EXPECT_EQ(LeadingNumber("-1e400"), -infinity);
  EXPECT_EQ(LeadingNumber("1e-400"), 0);
  EXPECT_EQ(LeadingNumber(std::string(400, '9')), infinity);
  EXPECT_EQ(LeadingNumber("0." + std::string(400, '0') + "1"), 0);
  EXPECT_EQ(LeadingNumber("1" + std::string(700, '0') + "e-20"), infinity);
}

TEST(IsNumeric, WantsTheWholeTextToBeANumber) {
  for (const char* text : {"0", "-1", "+2.5", ".5", "5.", " 12 ", "1e5", "1E-3"})
    EXPECT_TRUE(IsNumeric(text)) << text;
  for (const char* text :
       {"", " ", "-", ".", "-.", "e", "1e", "12a", "1 2", "1.2.3", "1,5", "--1", "5-", "1e999"})
    EXPECT_FALSE(IsNumeric(text)) << text;
}

TEST(NumberText, HasUpToSevenDigitsAndNoTrailingZeros) {
  EXPECT_EQ(NumberText(0), "0");
  EXPECT_EQ(NumberText(1.2), "1.2");
  EXPECT_EQ(NumberText(14.64F), "14.64");
  EXPECT_EQ(NumberText(100), "100");
  EXPECT_EQ(NumberText(5500), "5500");
  EXPECT_EQ(NumberText(1234567), "1234567");
  EXPECT_EQ(NumberText(1.0 / 3), "0.3333333");
  EXPECT_EQ(NumberText(-15.875), "-15.875");
}

TEST(NumberText, KeepsTheZeroInFrontOfThePoint) {
  EXPECT_EQ(NumberText(0.5), "0.5");
  EXPECT_EQ(NumberText(-0.125), "-0.125");
}

TEST(NumberText, NeverWritesAMinusBeforeZero) {
  EXPECT_EQ(NumberText(-0.0), "0");
  EXPECT_EQ(NumberText(-1e-60), "0");
}

TEST(NumberText, RoundsToASingleFirst) {
  EXPECT_EQ(NumberText(static_cast<double>(0.12F) * 100), "12");
  EXPECT_EQ(NumberText(static_cast<double>(-0.29F) * 100), "-29");
}

TEST(NumberText, UsesAnExponentForTheVeryLargeAndSmall) {
  EXPECT_EQ(NumberText(1e10), "1E+10");
  EXPECT_EQ(NumberText(1e-7), "1E-07");
  EXPECT_EQ(NumberText(12345678), "1.234568E+07");
  EXPECT_EQ(NumberText(0.0001), "0.0001");
  EXPECT_EQ(NumberText(3.4e38), "3.4E+38");
}

TEST(NumberText, TellsWhatIsNoNumber) {
  EXPECT_EQ(NumberText(infinity), "Inf");
  EXPECT_EQ(NumberText(-infinity), "-Inf");
  EXPECT_EQ(NumberText(notANumber), "NaN");
  EXPECT_EQ(FailureOf([] { NumberText(1e39); }), FailureOverflow);
}

TEST(Format, OptionalDigitsPrintNothingWhenMissing) {
  ExpectMasked({{0, "#####", ""},
                {0, "###.0", ".0"},
                {0, "#.00", ".00"},
                {0.5, "#.00", ".50"},
                {7, "#####", "7"},
                {0, "##", ""},
                {0, "##0", "0"},
                {0, "####0", "0"},
                {0, "#0.00", "0.00"}});
}

TEST(Format, EveryEditorMask) {
  ExpectMasked({{8.3333, "##.000", "8.333"},   {1, "##.000", "1.000"},
                {0.95, "#.000", ".950"},       {8.4999, "##0", "8"},
                {104, "##0", "104"},           {12, "#0", "12"},
                {5500, "####0", "5500"},       {0.78125, "##.00000", ".78125"},
                {28.409, "##.00", "28.41"},    {1.45, "#.0", "1.5"},
                {101.325, "##0.00", "101.33"}, {3.10, "#0.0#", "3.1"},
                {3.14, "#0.0#", "3.14"},       {3.999, "#0.0#", "4.0"},
                {0.03, "###0%", "3%"},         {28.409, "###.00", "28.41"},
                {298.3, "###.0", "298.3"},     {-8.25, "##.0", "-8.3"},
                {300, "##00", "300"},          {5, "##00", "05"},
                {0.25, "##0%", "25%"}});
}

TEST(Format, ReportPatternsKeepTheirText) {
  ExpectMasked({{4.95, "0.0# Volts", "4.95 Volts"},
                {4.9, "0.0# Volts", "4.9 Volts"},
                {0.2, "##0 %", "20 %"},
                {-10, "#00 C", "-10 C"},
                {5, "#00 C", "05 C"},
                {800, "#0000 RPM", "0800 RPM"},
                {0.25, "(0.00% / MS)", "(25.00% / MS)"},
                {3, "#0 Degrees", "3 Degrees"},
                {100, "##0 Microseconds/Volt", "100 Microseconds/Volt"},
                {12.25, "0.00 KPA/MS", "12.25 KPA/MS"},
                {14.64, "00.00   ", "14.64   "},
                {9.8, "00.00 ", "09.80 "}});
}

TEST(Format, FixedWidthColumns) {
  ExpectMasked({{12.345, "00000.00 ", "00012.35 "},
                {850, "00000 ", "00850 "},
                {7, "000.0 ", "007.0 "},
                {0.5, "0.000 ", "0.500 "},
                {-0.5, "#.000 ", "-.500 "},
                {104, "000", "104"}});
}

TEST(Format, MoreDigitsThanPlacesAllAppear) {
  ExpectMasked({{12345, "#0", "12345"},
                {12345.678, "0.00", "12345.68"},
                {123, ".0", "123.0"},
                {1e17, "#0", "100000000000000000"}});
}

TEST(Format, RoundsTheDecimalDigitsHalfAwayFromZero) {
  ExpectMasked({{0.285, ".00", ".29"},
                {1.005, "0.00", "1.01"},
                {-0.285, "0.00", "-0.29"},
                {2.5, "#0", "3"},
                {-2.5, "#0", "-3"},
                {0.5, "#0", "1"},
                {0.49999, "#0", "0"},
                {9.995, "0.00", "10.00"},
                {99.95, "##.0", "100.0"},
                {0.285, "0%", "29%"},
                {0.0449, "0.0", "0.0"},
                {0.05, "0.0", "0.1"},
                {0.00004, "#0.0#", "0.0"}});
}

TEST(Format, SeesFifteenDigits) {
  ExpectMasked({{0.1 + 0.2, "0.################", "0.3"},
                {2.4999999999999996, "0", "3"},
                {2.49999999999999, "0", "2"}});
}

TEST(Format, MinusStandsBeforeTheFirstDigitOrPoint) {
  ExpectMasked({{-5, "##0", "-5"},
                {-0.5, " #.0#", " -.5"},
                {-12, "( 0 )", "( -12 )"},
                {-7, "000", "-007"},
                {-0.25, "##0%", "-25%"}});
}

TEST(Format, WhatRoundsToZeroHasNoMinus) {
  ExpectMasked({{-0.4, "##0", "0"},
                {-0.4, "##", ""},
                {-0.004, "0.00", "0.00"},
                {-0.004, "#.00", ".00"},
                {-0.0, "0", "0"}});
}

TEST(Format, OptionalDecimalsEndAtTheLastThatCounts) {
  ExpectMasked({{8, "0.####", "8."},
                {0.5, "0.####", "0.5"},
                {1.0 / 3, "0.####", "0.3333"},
                {2.5, "0.#0", "2.50"},
                {1.05, "0.##", "1.05"},
                {5, "##.", "5."}});
}

TEST(Format, CommasGroupOrDivideByAThousand) {
  ExpectMasked({{1234567, "#,##0", "1,234,567"},
                {999, "#,##0", "999"},
                {12, "0,000", "0,012"},
                {-1234.5, "#,##0.0", "-1,234.5"},
                {1234567, "0,.0", "1234.6"},
                {2500000, "0,,", "3"}});
}

TEST(Format, SecondPointIsText) { ExpectMasked({{1.5, "0.0 a.s.", "1.5 a.s."}}); }

TEST(Format, MaskWithoutPlacesIsItsOwnText) { ExpectMasked({{5, "ZERO", "ZERO"}, {5, "", ""}}); }

TEST(Format, TellsWhatIsNoNumber) {
  EXPECT_EQ(Format(infinity, "##0"), "Inf");
  EXPECT_EQ(Format(notANumber, "##0"), "NaN");
}

TEST(HexText, IsUpperCaseAndPadded) {
  EXPECT_EQ(HexText(0, 2), "00");
  EXPECT_EQ(HexText(10, 2), "0A");
  EXPECT_EQ(HexText(255, 2), "FF");
  EXPECT_EQ(HexText(0xB6F0, 2), "B6F0");
  EXPECT_EQ(HexText(0xB6, 4), "00B6");
}
