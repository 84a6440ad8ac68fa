// The one home for reading and writing numbers as text, and for splitting
// ";" lists. Records, annotations, tables and the command line all go
// through here, so a number reads and prints the same everywhere.
//
// Reading (NumericValue) follows the host's Val:
//   - leading blanks (space, tab, CR, LF) are skipped;
//   - then an optional sign, digits with at most one ".", and an optional
//     exponent "E"/"e"/"D"/"d" with optional sign and at least one digit;
//   - the number ends at the first character that cannot continue it, so
//     " 12abc" is 12, "17.1s (LMS Tech)" is 17.1, "1e3" is 1000, "1e" is 1,
//     "-.5" is -0.5, "1,5" is 1 (a comma is never a decimal separator);
//   - "&H1F" and "&O17" read hexadecimal and octal whole numbers (31, 15),
//     unsigned and without the host's 16-bit wrap-around;
//   - text with no leading number is 0 ("abc", "", "-", ".", "--5");
//   - unlike the host, a blank inside the number ends it ("1 2" is 1, not 12);
//   - a value beyond the range of a double raises std::overflow_error, as the
//     host's overflow does; a value too small to hold reads as 0.
//
// Writing:
//   - GeneralText: at most 15 significant digits, no trailing zeros, no
//     grouping; plain notation for decimal exponents -5 to 14 ("200",
//     "0.5", "-0.25", "0.00001"), otherwise "1E+15", "1.5E-06".
//   - RoundHalfEven rounds the 15-significant-digit decimal form of a value,
//     not its binary expansion, so 2.675 rounds to 2.68 and 2.665 to 2.66 at
//     two places, as the host's decimal rounding does.
//   - FormatNumber applies a number pattern (see its comment).
//
// Lists: Split keeps every empty piece; n separators give n + 1 pieces, so the
// empty text is one empty piece.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrana::host {
class XValue;
}

namespace kestrana::core {

// The numeric value of a text (see the rules above).
double NumericValue(std::string_view text);
inline double NumericValue(const std::string& text) {
  return NumericValue(std::string_view(text));
}
inline double NumericValue(const char* text) {
  return NumericValue(std::string_view(text));
}
// The value of a text that is wholly one number in the syntax above (blanks
// around it allowed), or nullopt: for IDs and user input, where "12abc" is
// an error rather than 12.
std::optional<double> ParseNumber(std::string_view text);
// True for a number a drawing holds: finite and within
// host::kLargestNumber either side of 0.
bool InNumberRange(double value);
// The range above as users read it: "from -1000000000 to 1000000000".
std::string NumberRangeText();
// ParseNumber limited to that range: nullopt for a text that is no number
// or a number outside it (including one beyond any double). For user input
// and the values of files.
std::optional<double> ParseNumberInRange(std::string_view text);
// Texts through NumericValue; reals and integers as they are.
double NumericValue(const host::XValue& value);

// Whole numbers the host's way: half to even on the binary value, then a range
// check that raises std::overflow_error.
int16_t ToInt16(double value);
int32_t ToInt32(double value);

// The shortest general text of a real (see above). NaN and infinities, which
// no record holds, print as "NaN", "Inf", "-Inf".
std::string GeneralText(double value);
// The text of a record value: texts as stored, reals in general form,
// integers in decimal.
std::string TextOf(const host::XValue& value);

// Half-to-even rounding to `places` decimal places (negative places round to
// tens, hundreds, ...), done on the 15-significant-digit decimal form.
double RoundHalfEven(double value, int places);
// The same, always through the decimal text: the plain form that the quick
// path of RoundHalfEven must agree with.
double RoundHalfEvenDecimal(double value, int places);

// Formats a value with a number pattern in the host's Format style.
//   0  digit, always written (leading and trailing zeros)
//   #  digit, written only when significant
//   .  decimal point (written whenever the pattern has one)
//   ,  between integer digit places: thousands grouping;
//      right before the point (or the end): divides by 1000 each
//   %  multiplies by 100 and is written where it stands
//   E+ E- e+ e-  scientific notation; the digit places after it give the
//      exponent's width; "+" always writes the exponent's sign, "-" only "-"
//   \c  the character c; "text" the text; any other character as it stands,
//      so "+" in "0+000.00" prints 1234.5 as "1+234.50"
//   ;  separates sections: positive;negative;zero. A negative value with a
//      negative section prints without its own minus sign.
// An empty pattern writes the general text. Digits are taken from the
// 15-significant-digit decimal form and rounded half away from zero at the
// last digit place, as the host's Format does ("0.0%" writes 0.0125 as
// "1.3%"). A value that prints as all zeros never gets a minus sign: -0.004
// with "0.00" is "0.00". Digits beyond the integer places are all written.
std::string FormatNumber(double value, std::string_view pattern);

// The number patterns of the view style and profile settings. Each takes the
// stored digit texts, adds their numeric values and converts the sum to a
// 16-bit integer; a sum outside the table (or outside 16 bits) gives "".
//   DecimalsPattern:  0 "###0", 1 "###0.0", ... 5 "###0.00000"
//   PercentPattern:   0 "###0%", 1 "###0.0%", ... 3 "###0.000%"
std::string DecimalsPattern(std::string_view precision,
                            std::string_view decimals);
std::string PercentPattern(std::string_view precision,
                           std::string_view decimals);
// Station pattern: a prefix by the format index (0 "0+", 1 "0+0", 2 "0+00",
// 3 "0+000", 4 "0+0000", other none) followed by the number part for the sum
// of precision and decimals (0 "0", 1 "0.0", ... 5 "0.00000", other "").
std::string StationPattern(std::string_view precision,
                           std::string_view decimals,
                           std::string_view format_index);

// Splits at every `separator`, keeping empty pieces.
std::vector<std::string> Split(std::string_view text, char separator = ';');

// Equal texts when letter case is ignored, as the host compares names
// (ASCII letters; other bytes as they are).
bool SameIgnoringCase(std::string_view a, std::string_view b);

}  // namespace kestrana::core
