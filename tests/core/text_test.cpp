#include "core/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>

#include "host/types.h"

namespace kestrana::core {
namespace {

TEST(NumericValue, ReadsTheLeadingNumber) {
  EXPECT_EQ(NumericValue("12"), 12);
  EXPECT_EQ(NumericValue(" 12abc"), 12);
  EXPECT_EQ(NumericValue("\t\n 3.25"), 3.25);
  EXPECT_EQ(NumericValue("17.1s (LMS Tech)"), 17.1);
  EXPECT_EQ(NumericValue("-.5"), -0.5);
  EXPECT_EQ(NumericValue("+5"), 5);
  EXPECT_EQ(NumericValue("1.2.3"), 1.2);
  EXPECT_EQ(NumericValue("0042"), 42);
  // A comma never separates decimals, and a blank ends the number.
  EXPECT_EQ(NumericValue("1,5"), 1);
  EXPECT_EQ(NumericValue("1 2"), 1);
}

TEST(NumericValue, ReadsExponentsOnlyWithDigits) {
  EXPECT_EQ(NumericValue("1e3"), 1000);
  EXPECT_EQ(NumericValue("2.5E-2"), 0.025);
  EXPECT_EQ(NumericValue("1d2"), 100);
  EXPECT_EQ(NumericValue("1e"), 1);
  EXPECT_EQ(NumericValue("1e+"), 1);
  EXPECT_EQ(NumericValue("7E+x"), 7);
}

TEST(NumericValue, NonNumericTextIsZero) {
  for (const char* text : {"", "abc", "-", ".", "+.", "--5", "e5", "0x10z"})
    EXPECT_EQ(NumericValue(text), 0) << text;
  EXPECT_EQ(NumericValue("0x10"), 0);
}

TEST(NumericValue, ReadsHexAndOctal) {
  EXPECT_EQ(NumericValue("&H1F"), 31);
  EXPECT_EQ(NumericValue("&hff rest"), 255);
  EXPECT_EQ(NumericValue("&O17"), 15);
  EXPECT_EQ(NumericValue("&O19"), 1);  // 9 is no octal digit
  EXPECT_EQ(NumericValue("&Hxyz"), 0);
  EXPECT_EQ(NumericValue("&"), 0);
}

TEST(NumericValue, OutOfRange) {
  EXPECT_THROW(NumericValue("1e400"), std::overflow_error);
  EXPECT_EQ(NumericValue("1e-400"), 0);
}

TEST(NumericValue, InRangeOnlyWhatADrawingHolds) {
  EXPECT_EQ(ParseNumberInRange(" 1e9 "), 1e9);
  EXPECT_EQ(ParseNumberInRange("-1000000000"), -1e9);
  EXPECT_EQ(ParseNumberInRange("0.5"), 0.5);
  for (const char* bad :
       {"1000000000.5", "-2e9", "1e400", "nan", "inf", "", "12abc"})
    EXPECT_EQ(ParseNumberInRange(bad), std::nullopt) << bad;
  EXPECT_FALSE(InNumberRange(std::nan("")));
  EXPECT_FALSE(InNumberRange(-HUGE_VAL));
  EXPECT_TRUE(InNumberRange(-1e9));
  EXPECT_EQ(NumberRangeText(), "from -1000000000 to 1000000000");
}

TEST(NumericValue, OfRecordValues) {
  EXPECT_EQ(NumericValue(host::XValue("2.5 m")), 2.5);
  EXPECT_EQ(NumericValue(host::XValue(12.75)), 12.75);
  EXPECT_EQ(NumericValue(host::XValue(int16_t{-3})), -3);
  EXPECT_EQ(NumericValue(host::XValue("")), 0);
}

TEST(ToInteger, RoundsHalfToEvenAndChecksRange) {
  EXPECT_EQ(ToInt16(2.5), 2);
  EXPECT_EQ(ToInt16(3.5), 4);
  EXPECT_EQ(ToInt16(-2.5), -2);
  EXPECT_EQ(ToInt16(2.5000001), 3);
  EXPECT_EQ(ToInt16(32767.4), 32767);
  EXPECT_EQ(ToInt16(-32768.5), -32768);
  EXPECT_THROW(ToInt16(32767.5), std::overflow_error);
  EXPECT_THROW(ToInt16(40000), std::overflow_error);
  EXPECT_THROW(ToInt16(std::nan("")), std::overflow_error);
  EXPECT_EQ(ToInt32(303.0303), 303);
  EXPECT_EQ(ToInt32(2147483647.0), 2147483647);
  EXPECT_THROW(ToInt32(2147483648.0), std::overflow_error);
}

TEST(GeneralText, ShortestFormWithFifteenDigits) {
  EXPECT_EQ(GeneralText(200), "200");
  EXPECT_EQ(GeneralText(1200), "1200");
  EXPECT_EQ(GeneralText(0.5), "0.5");
  EXPECT_EQ(GeneralText(-0.25), "-0.25");
  EXPECT_EQ(GeneralText(0), "0");
  EXPECT_EQ(GeneralText(-0.0), "0");
  EXPECT_EQ(GeneralText(0.1 + 0.2), "0.3");
  EXPECT_EQ(GeneralText(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(GeneralText(2.0 / 3), "0.666666666666667");
  EXPECT_EQ(GeneralText(123456789012345.0), "123456789012345");
  EXPECT_EQ(GeneralText(2130567256.0), "2130567256");
  EXPECT_EQ(GeneralText(12.30), "12.3");
}

TEST(GeneralText, ScientificOutsideTheUsualRange) {
  EXPECT_EQ(GeneralText(1e15), "1E+15");
  EXPECT_EQ(GeneralText(-1.5e20), "-1.5E+20");
  EXPECT_EQ(GeneralText(0.0001), "0.0001");
  EXPECT_EQ(GeneralText(0.00001), "0.00001");
  EXPECT_EQ(GeneralText(0.000001), "1E-06");
  EXPECT_EQ(GeneralText(1.5e-7), "1.5E-07");
  EXPECT_EQ(GeneralText(1e-300), "1E-300");
}

TEST(GeneralText, OfRecordValues) {
  EXPECT_EQ(TextOf(host::XValue(200.0)), "200");
  EXPECT_EQ(TextOf(host::XValue(int16_t{1})), "1");
  EXPECT_EQ(TextOf(host::XValue(" 2.00 ")), " 2.00 ");
}

double Parse(const std::string& text) {
  return std::strtod(text.c_str(), nullptr);
}

TEST(RoundHalfEven, DecidesOnTheDecimalFormNotTheBinary) {
  // 2.675 is stored just below 2.675 and 1.015 just below 1.015; the host
  // rounds their decimal forms, where both are exact ties.
  EXPECT_EQ(RoundHalfEven(2.675, 2), 2.68);
  EXPECT_EQ(RoundHalfEven(1.015, 2), 1.02);
  EXPECT_EQ(RoundHalfEven(2.665, 2), 2.66);
  EXPECT_EQ(RoundHalfEven(1.005, 2), 1.0);
  EXPECT_EQ(RoundHalfEven(0.285, 2), 0.28);
  EXPECT_EQ(RoundHalfEven(-2.675, 2), -2.68);
}

TEST(RoundHalfEven, TiesAtEveryPlaceCount) {
  for (int places = 0; places <= 9; ++places) {
    std::string zeros(places, '0');
    std::string scale = "e-" + std::to_string(places);
    SCOPED_TRACE(places);
    // x.5 at the place after the last kept one.
    EXPECT_EQ(RoundHalfEven(Parse("0.5" + scale), places), 0.0);
    EXPECT_EQ(RoundHalfEven(Parse("1.5" + scale), places), Parse("2" + scale));
    EXPECT_EQ(RoundHalfEven(Parse("2.5" + scale), places), Parse("2" + scale));
    EXPECT_EQ(RoundHalfEven(Parse("7.5" + scale), places), Parse("8" + scale));
    EXPECT_EQ(RoundHalfEven(Parse("-3.5" + scale), places),
              Parse("-4" + scale));
    // Just off the tie goes to the nearer side.
    EXPECT_EQ(RoundHalfEven(Parse("2.5000001" + scale), places),
              Parse("3" + scale));
    EXPECT_EQ(RoundHalfEven(Parse("1.4999999" + scale), places),
              Parse("1" + scale));
  }
}

TEST(RoundHalfEven, CarriesAndExtremes) {
  EXPECT_EQ(RoundHalfEven(99.995, 2), 100.0);
  EXPECT_EQ(RoundHalfEven(9.5, 0), 10.0);
  EXPECT_EQ(RoundHalfEven(12.3456789, 4), 12.3457);
  EXPECT_EQ(RoundHalfEven(123456789.125, 2), 123456789.12);
  EXPECT_EQ(RoundHalfEven(1e20, 2), 1e20);
  EXPECT_EQ(RoundHalfEven(1e-20, 2), 0.0);
  EXPECT_EQ(RoundHalfEven(1250, -2), 1200);
  EXPECT_EQ(RoundHalfEven(1350, -2), 1400);
  EXPECT_EQ(RoundHalfEven(0.1234, 10), 0.1234);
  double negative_tiny = RoundHalfEven(-0.004, 2);
  EXPECT_EQ(negative_tiny, 0.0);
  EXPECT_FALSE(std::signbit(negative_tiny));
}

TEST(RoundHalfEven, QuickPathAgreesWithTheDecimalForm) {
  std::mt19937_64 random(20261122);
  std::uniform_real_distribution<double> mantissa(-1, 1);
  std::uniform_int_distribution<int> exponent(-8, 16), places(0, 12);
  for (int i = 0; i < 200000; ++i) {
    double value = mantissa(random) * std::pow(10.0, exponent(random));
    int p = places(random);
    if (i % 4 == 0) value = RoundHalfEvenDecimal(value, p + 1);  // near ties
    ASSERT_EQ(RoundHalfEven(value, p), RoundHalfEvenDecimal(value, p))
        << GeneralText(value) << " at " << p;
  }
}

TEST(FormatNumber, FixedDecimals) {
  EXPECT_EQ(FormatNumber(1234.5, "###0.00"), "1234.50");
  EXPECT_EQ(FormatNumber(0.05, "###0.00"), "0.05");
  EXPECT_EQ(FormatNumber(0, "###0.00"), "0.00");
  EXPECT_EQ(FormatNumber(-3.2, "###0.00"), "-3.20");
  EXPECT_EQ(FormatNumber(1234567.891, "###0.00"), "1234567.89");
  EXPECT_EQ(FormatNumber(12.3456, "0.000"), "12.346");
  EXPECT_EQ(FormatNumber(-1, "0.000"), "-1.000");
  EXPECT_EQ(FormatNumber(7, "###0"), "7");
  EXPECT_EQ(FormatNumber(1e20, "###0.00"), "100000000000000000000.00");
  EXPECT_EQ(FormatNumber(1e-20, "###0.00"), "0.00");
}

TEST(FormatNumber, RoundsHalfAwayFromZeroOnTheDecimalForm) {
  EXPECT_EQ(FormatNumber(2.675, "0.00"), "2.68");
  EXPECT_EQ(FormatNumber(0.125, "0.00"), "0.13");
  EXPECT_EQ(FormatNumber(-0.125, "0.00"), "-0.13");
  EXPECT_EQ(FormatNumber(2.5, "0"), "3");
  EXPECT_EQ(FormatNumber(0.4999, "0"), "0");
  EXPECT_EQ(FormatNumber(99.995, "0.00"), "100.00");
  for (int places = 1; places <= 6; ++places) {
    std::string pattern = "0." + std::string(places, '0');
    std::string expected = "1." + std::string(places - 1, '0') + "2";
    double tie = Parse("1." + std::string(places - 1, '0') + "15");
    EXPECT_EQ(FormatNumber(tie, pattern), expected) << pattern;
  }
}

TEST(FormatNumber, NoNegativeZero) {
  EXPECT_EQ(FormatNumber(-0.004, "0.00"), "0.00");
  EXPECT_EQ(FormatNumber(-0.0, "###0.00"), "0.00");
  EXPECT_EQ(FormatNumber(-0.4, "0"), "0");
  EXPECT_EQ(FormatNumber(-0.005, "0.00"), "-0.01");
  EXPECT_EQ(FormatNumber(-0.00004, "0.0%"), "0.0%");
}

TEST(FormatNumber, OptionalDigits) {
  EXPECT_EQ(FormatNumber(2.5, "0.0##"), "2.5");
  EXPECT_EQ(FormatNumber(0.125, "0.0##"), "0.125");
  EXPECT_EQ(FormatNumber(2, "0.0##"), "2.0");
  EXPECT_EQ(FormatNumber(2.01, "0.0##"), "2.01");
  EXPECT_EQ(FormatNumber(2.12345, "0.0##"), "2.123");
  EXPECT_EQ(FormatNumber(2.1235, "0.0##"), "2.124");
  EXPECT_EQ(FormatNumber(100, "0.00#"), "100.00");
  EXPECT_EQ(FormatNumber(99.9995, "0.00#"), "100.00");
  EXPECT_EQ(FormatNumber(12.345, "0.00#"), "12.345");
  EXPECT_EQ(FormatNumber(0.5, "#.##"), ".5");
  EXPECT_EQ(FormatNumber(2, "#.##"), "2.");
  EXPECT_EQ(FormatNumber(0, "#"), "");
  EXPECT_EQ(FormatNumber(1.5, ".00"), "1.50");
}

TEST(FormatNumber, ZeroPadding) {
  EXPECT_EQ(FormatNumber(12, "0000"), "0012");
  EXPECT_EQ(FormatNumber(0, "0000"), "0000");
  EXPECT_EQ(FormatNumber(12345, "0000"), "12345");
  EXPECT_EQ(FormatNumber(7.5, "0000"), "0008");
  EXPECT_EQ(FormatNumber(5, "0#"), "05");
  EXPECT_EQ(FormatNumber(5, "#0#"), "05");
}

TEST(FormatNumber, Percent) {
  EXPECT_EQ(FormatNumber(0.0125, "###0.0%"), "1.3%");
  EXPECT_EQ(FormatNumber(0.5, "###0%"), "50%");
  EXPECT_EQ(FormatNumber(0.005, "###0.00%"), "0.50%");
  EXPECT_EQ(FormatNumber(-0.0333, "###0.00%"), "-3.33%");
  EXPECT_EQ(FormatNumber(0.00125, "###0.000%"), "0.125%");
  EXPECT_EQ(FormatNumber(0.001, "0%%"), "10%%");
  EXPECT_EQ(FormatNumber(0, "###0.00%"), "0.00%");
  EXPECT_EQ(FormatNumber(0, "#,##0,"), "0");
}

TEST(FormatNumber, StationsWithALiteralPlus) {
  EXPECT_EQ(FormatNumber(1234.5, "0+000.00"), "1+234.50");
  EXPECT_EQ(FormatNumber(12.3, "0+000.00"), "0+012.30");
  EXPECT_EQ(FormatNumber(123456.789, "0+000.00"), "123+456.79");
  EXPECT_EQ(FormatNumber(-1234.5, "0+000.00"), "-1+234.50");
  EXPECT_EQ(FormatNumber(1234.5, "0+00.00"), "12+34.50");
  EXPECT_EQ(FormatNumber(1234.5, "0+0000.00"), "0+1234.50");
  EXPECT_EQ(FormatNumber(1234.5, "0+0"), "123+5");
  EXPECT_EQ(FormatNumber(999.996, "0+000.00"), "1+000.00");
}

TEST(FormatNumber, GroupingScalingLiteralsAndSections) {
  EXPECT_EQ(FormatNumber(1234567.5, "#,##0.00"), "1,234,567.50");
  EXPECT_EQ(FormatNumber(123, "#,##0.00"), "123.00");
  EXPECT_EQ(FormatNumber(-1234, "#,##0"), "-1,234");
  EXPECT_EQ(FormatNumber(12345, "0,"), "12");
  EXPECT_EQ(FormatNumber(12.345, "\"L=\"0.00\" m\""), "L=12.35 m");
  EXPECT_EQ(FormatNumber(5, "\\#0"), "#5");
  EXPECT_EQ(FormatNumber(-1.5, "0.00;(0.00)"), "(1.50)");
  EXPECT_EQ(FormatNumber(1.5, "0.00;(0.00)"), "1.50");
  EXPECT_EQ(FormatNumber(0, "0.00;(0.00);\"none\""), "none");
  EXPECT_EQ(FormatNumber(-2, "0.0;;\"none\""), "-2.0");
  EXPECT_EQ(FormatNumber(3, "abc"), "abc");
}

TEST(FormatNumber, Scientific) {
  EXPECT_EQ(FormatNumber(12345, "0.00E+00"), "1.23E+04");
  EXPECT_EQ(FormatNumber(0.00012345, "0.00E+00"), "1.23E-04");
  EXPECT_EQ(FormatNumber(9.999, "0.00E+00"), "1.00E+01");
  EXPECT_EQ(FormatNumber(0, "0.00E+00"), "0.00E+00");
  EXPECT_EQ(FormatNumber(1500, "0.0e-0"), "1.5e3");
  EXPECT_EQ(FormatNumber(-0.015, "0.0e-0"), "-1.5e-2");
}

TEST(FormatNumber, EmptyPatternIsGeneralText) {
  EXPECT_EQ(FormatNumber(0.5, ""), "0.5");
  EXPECT_EQ(FormatNumber(1200, ""), "1200");
}

TEST(NumberPatterns, DecimalsAndPercent) {
  EXPECT_EQ(DecimalsPattern("0", "0"), "###0");
  EXPECT_EQ(DecimalsPattern("2", "1"), "###0.000");
  EXPECT_EQ(DecimalsPattern("3", "2"), "###0.00000");
  EXPECT_EQ(DecimalsPattern("4", "2"), "");
  EXPECT_EQ(DecimalsPattern("-1", "0"), "");
  EXPECT_EQ(DecimalsPattern("abc", "2"), "###0.00");
  EXPECT_EQ(DecimalsPattern("1.5", "1"), "###0.00");  // 2.5 -> 2
  EXPECT_EQ(DecimalsPattern("99999", "0"), "");
  EXPECT_EQ(PercentPattern("0", "0"), "###0%");
  EXPECT_EQ(PercentPattern("2", "0"), "###0.00%");
  EXPECT_EQ(PercentPattern("2", "1"), "###0.000%");
  EXPECT_EQ(PercentPattern("2", "2"), "");
}

TEST(NumberPatterns, Stations) {
  EXPECT_EQ(StationPattern("1", "1", "3"), "0+0000.00");
  EXPECT_EQ(StationPattern("0", "2", "2"), "0+000.00");
  EXPECT_EQ(StationPattern("0", "0", "0"), "0+0");
  EXPECT_EQ(StationPattern("3", "3", "1"), "0+0");
  EXPECT_EQ(StationPattern("0", "0", "9"), "0");
  EXPECT_EQ(StationPattern("2", "0", "2.5"), "0.00");
  EXPECT_EQ(StationPattern("0", "5", "4"), "0+00000.00000");
  EXPECT_EQ(FormatNumber(1234.5, StationPattern("0", "2", "2")), "1+234.50");
}

TEST(Split, KeepsEveryEmptyPiece) {
  using V = std::vector<std::string>;
  EXPECT_EQ(Split("a;;b"), (V{"a", "", "b"}));
  EXPECT_EQ(Split(";a"), (V{"", "a"}));
  EXPECT_EQ(Split("a;"), (V{"a", ""}));
  EXPECT_EQ(Split(""), (V{""}));
  EXPECT_EQ(Split(";"), (V{"", ""}));
  EXPECT_EQ(Split("a b  c", ' '), (V{"a", "b", "", "c"}));
}

}  // namespace
}  // namespace kestrana::core
