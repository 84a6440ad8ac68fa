#include "core/text.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <stdexcept>

#include "host/limits.h"
#include "host/types.h"

namespace kestrana::core {

namespace {

// A non-negative decimal: 0.d1 d2 d3 ... x 10^point, that is `point` digits
// stand before the decimal point. No leading or trailing zero digits; zero
// has no digits.
struct Decimal {
  std::string digits;
  int point = 0;
  bool IsZero() const { return digits.empty(); }
};

void Normalize(Decimal& d) {
  size_t lead = d.digits.find_first_not_of('0');
  if (lead == std::string::npos) {
    d.digits.clear();
    d.point = 0;
    return;
  }
  d.digits.erase(0, lead);
  d.point -= static_cast<int>(lead);
  d.digits.erase(d.digits.find_last_not_of('0') + 1);
}

// The magnitude of a finite value, correctly rounded to 15 significant digits.
Decimal ToDecimal(double value) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.14e", std::fabs(value));
  Decimal d;
  const char* p = buf;
  for (; *p != 'e'; ++p)
    if (*p >= '0' && *p <= '9') d.digits += *p;
  d.point = std::atoi(p + 1) + 1;
  Normalize(d);
  return d;
}

enum class Tie { kEven, kAwayFromZero };

// Rounds to `places` digits after the decimal point.
void RoundDecimal(Decimal& d, int places, Tie tie) {
  if (d.IsZero()) return;
  long keep = static_cast<long>(d.point) + places;
  if (keep >= static_cast<long>(d.digits.size())) return;
  if (keep < 0) {
    d = Decimal{};
    return;
  }
  char first = d.digits[keep];
  bool rest_nonzero =
      d.digits.find_first_not_of('0', keep + 1) != std::string::npos;
  bool up;
  if (first != '5') {
    up = first > '5';
  } else if (rest_nonzero) {
    up = true;
  } else if (tie == Tie::kAwayFromZero) {
    up = true;
  } else {
    up = keep > 0 && (d.digits[keep - 1] - '0') % 2 == 1;
  }
  d.digits.resize(keep);
  if (up) {
    long i = keep - 1;
    while (i >= 0 && d.digits[i] == '9') d.digits[i--] = '0';
    if (i < 0) {
      d.digits.insert(d.digits.begin(), '1');
      ++d.point;
    } else {
      ++d.digits[i];
    }
  }
  Normalize(d);
}

// Digit k of the decimal counted from the decimal point: k = 0 is the units,
// k = 1 the tens, k = -1 the tenths.
char DigitAt(const Decimal& d, int k) {
  long index = static_cast<long>(d.point) - 1 - k;
  if (index < 0 || index >= static_cast<long>(d.digits.size())) return '0';
  return d.digits[index];
}

// The integer digits without leading zeros ("" for a value below 1).
std::string IntegerDigits(const Decimal& d) {
  std::string out;
  for (int k = d.point - 1; k >= 0; --k) out += DigitAt(d, k);
  return out;
}

double ToDouble(const Decimal& d, bool negative) {
  if (d.IsZero()) return 0.0;
  std::string text = negative ? "-0." : "0.";
  text += d.digits;
  text += "e" + std::to_string(d.point);
  return std::strtod(text.c_str(), nullptr);
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

double ParseRadix(std::string_view text, size_t i, int radix, size_t& end) {
  double value = 0;
  size_t start = i;
  for (; i < text.size(); ++i) {
    char c = text[i];
    int digit;
    if (IsDigit(c)) {
      digit = c - '0';
    } else if (radix == 16 && c >= 'a' && c <= 'f') {
      digit = c - 'a' + 10;
    } else if (radix == 16 && c >= 'A' && c <= 'F') {
      digit = c - 'A' + 10;
    } else {
      break;
    }
    if (digit >= radix) break;
    value = value * radix + digit;
  }
  if (i > start) end = i;
  return value;
}

}  // namespace

namespace {
// Scans a number at the start of `text` the way NumericValue reads it; `end`
// receives the position after the last character used.
double ScanNumber(std::string_view text, size_t& end) {
  size_t i = 0;
  end = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  if (i + 1 < text.size() && text[i] == '&') {
    char kind = text[i + 1];
    int radix = (kind == 'H' || kind == 'h')   ? 16
                : (kind == 'O' || kind == 'o') ? 8
                                               : 0;
    if (radix == 0) return 0;
    return ParseRadix(text, i + 2, radix, end);
  }
  std::string number;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    if (text[i] == '-') number += '-';
    ++i;
  }
  bool any_digit = false;
  bool seen_point = false;
  for (; i < text.size(); ++i) {
    char c = text[i];
    if (IsDigit(c)) {
      number += c;
      any_digit = true;
    } else if (c == '.' && !seen_point) {
      number += c;
      seen_point = true;
    } else {
      break;
    }
  }
  if (!any_digit) return 0;
  if (i < text.size() &&
      (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
    size_t j = i + 1;
    std::string exponent = "e";
    if (j < text.size() && (text[j] == '+' || text[j] == '-'))
      exponent += text[j++];
    size_t digits_start = j;
    while (j < text.size() && IsDigit(text[j])) exponent += text[j++];
    if (j > digits_start) {
      number += exponent;
      i = j;
    }
  }
  end = i;
  errno = 0;
  double value = std::strtod(number.c_str(), nullptr);
  if (errno == ERANGE && std::isinf(value))
    throw std::overflow_error("Overflow: '" + std::string(text) +
                              "' is too large a number");
  return value;
}
}  // namespace

double NumericValue(std::string_view text) {
  size_t end;
  return ScanNumber(text, end);
}

std::optional<double> ParseNumber(std::string_view text) {
  size_t end;
  double value = ScanNumber(text, end);
  if (end == 0) return std::nullopt;
  while (end < text.size() && IsBlank(text[end])) ++end;
  if (end != text.size()) return std::nullopt;
  return value;
}

bool InNumberRange(double value) {
  return std::isfinite(value) && std::fabs(value) <= host::kLargestNumber;
}

std::string NumberRangeText() {
  return "from " + GeneralText(-host::kLargestNumber) + " to " +
         GeneralText(host::kLargestNumber);
}

std::optional<double> ParseNumberInRange(std::string_view text) {
  std::optional<double> value;
  try {
    value = ParseNumber(text);
  } catch (const std::overflow_error&) {
    return std::nullopt;
  }
  if (value && !InNumberRange(*value)) return std::nullopt;
  return value;
}

double NumericValue(const host::XValue& value) {
  if (value.IsText()) return NumericValue(value.Text());
  if (value.IsReal()) return value.Real();
  return value.Int();
}

namespace {
template <class Int>
Int ToInt(double value, const char* what) {
  double rounded = std::nearbyint(value);
  if (!(rounded >= std::numeric_limits<Int>::min() &&
        rounded <= std::numeric_limits<Int>::max()))
    throw std::overflow_error("Overflow: " + GeneralText(value) +
                              " does not fit a " + what);
  return static_cast<Int>(rounded);
}
}  // namespace

int16_t ToInt16(double value) {
  return ToInt<int16_t>(value, "16-bit integer");
}

int32_t ToInt32(double value) {
  return ToInt<int32_t>(value, "32-bit integer");
}

std::string GeneralText(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
  Decimal d = ToDecimal(value);
  if (d.IsZero()) return "0";
  std::string out = value < 0 ? "-" : "";
  int exponent = d.point - 1;
  if (exponent < -5 || exponent >= 15) {
    out += d.digits[0];
    if (d.digits.size() > 1) out += "." + d.digits.substr(1);
    char buf[16];
    std::snprintf(buf, sizeof buf, "E%c%02d", exponent < 0 ? '-' : '+',
                  std::abs(exponent));
    return out + buf;
  }
  std::string integer = IntegerDigits(d);
  out += integer.empty() ? "0" : integer;
  int last = d.point - static_cast<int>(d.digits.size());  // lowest place
  if (last < 0) {
    out += '.';
    for (int k = -1; k >= last; --k) out += DigitAt(d, k);
  }
  return out;
}

std::string TextOf(const host::XValue& value) {
  if (value.IsText()) return value.Text();
  if (value.IsReal()) return GeneralText(value.Real());
  return std::to_string(value.Int());
}

double RoundHalfEvenDecimal(double value, int places) {
  if (!std::isfinite(value)) return value;
  Decimal d = ToDecimal(value);
  RoundDecimal(d, places, Tie::kEven);
  return ToDouble(d, value < 0);
}

double RoundHalfEven(double value, int places) {
  // Geometry rounds every distance it compares, so the common case avoids
  // the decimal text: away from a tie the nearest whole number of the
  // scaled value is the decimal answer, and k / 10^p is the double nearest
  // to it, as reading the decimal text would give.
  static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3, 1e4,  1e5,
                                       1e6,  1e7,  1e8,  1e9, 1e10, 1e11,
                                       1e12, 1e13, 1e14, 1e15};
  if (places >= 0 && places <= 15 && std::isfinite(value)) {
    double scale = kPowers[places];
    double scaled = value * scale;
    if (std::fabs(scaled) < 1e15) {
      double whole = std::floor(scaled);
      double fraction = scaled - whole;
      if (std::fabs(fraction - 0.5) > std::fabs(scaled) * 4e-15 + 1e-12) {
        double k = fraction < 0.5 ? whole : whole + 1;
        return k == 0 ? 0.0 : k / scale;
      }
    }
  }
  return RoundHalfEvenDecimal(value, places);
}

// ---------------------------------------------------------------------------
// Number patterns

namespace {

struct Token {
  enum Kind { kZero, kHash, kPoint, kComma, kPercent, kExponent, kLiteral };
  Kind kind;
  std::string text;  // literal text; for kExponent "E+" and the like
  bool IsDigit() const { return kind == kZero || kind == kHash; }
};

// Splits a pattern into its sections at ";" outside quotes and escapes.
std::vector<std::string_view> PatternSections(std::string_view pattern) {
  std::vector<std::string_view> sections;
  size_t start = 0;
  bool quoted = false;
  for (size_t i = 0; i < pattern.size(); ++i) {
    char c = pattern[i];
    if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && c == '\\') {
      ++i;
    } else if (!quoted && c == ';') {
      sections.push_back(pattern.substr(start, i - start));
      start = i + 1;
    }
  }
  sections.push_back(pattern.substr(start));
  return sections;
}

std::vector<Token> Tokenize(std::string_view section) {
  std::vector<Token> tokens;
  bool seen_point = false, seen_exponent = false, seen_digit = false;
  auto literal = [&](std::string text) {
    if (!tokens.empty() && tokens.back().kind == Token::kLiteral)
      tokens.back().text += text;
    else
      tokens.push_back({Token::kLiteral, std::move(text)});
  };
  for (size_t i = 0; i < section.size(); ++i) {
    char c = section[i];
    switch (c) {
      case '0':
      case '#':
        tokens.push_back({c == '0' ? Token::kZero : Token::kHash, ""});
        seen_digit = true;
        break;
      case '.':
        if (seen_point || seen_exponent) {
          literal(".");
        } else {
          tokens.push_back({Token::kPoint, ""});
          seen_point = true;
        }
        break;
      case ',':
        if (seen_point || seen_exponent)
          literal(",");
        else
          tokens.push_back({Token::kComma, ""});
        break;
      case '%':
        tokens.push_back({Token::kPercent, "%"});
        break;
      case 'E':
      case 'e':
        if (!seen_exponent && seen_digit && i + 1 < section.size() &&
            (section[i + 1] == '+' || section[i + 1] == '-')) {
          tokens.push_back(
              {Token::kExponent, std::string(section.substr(i, 2))});
          seen_exponent = true;
          ++i;
        } else {
          literal(std::string(1, c));
        }
        break;
      case '\\':
        if (i + 1 < section.size()) literal(std::string(1, section[++i]));
        break;
      case '"': {
        size_t end = section.find('"', i + 1);
        if (end == std::string_view::npos) end = section.size();
        literal(std::string(section.substr(i + 1, end - i - 1)));
        i = end;
        break;
      }
      default:
        literal(std::string(1, c));
    }
  }
  return tokens;
}

// The integer part of a mantissa written into its digit places, right to
// left: every place from the leftmost "0" rightwards is always written, the
// leftmost place takes every remaining digit, literals stay where they are.
std::string RenderInteger(const std::vector<Token>& tokens,
                          const std::string& digits, bool grouping) {
  int places = 0, leftmost_zero = -1;
  for (const Token& t : tokens) {
    if (!t.IsDigit()) continue;
    if (t.kind == Token::kZero && leftmost_zero < 0) leftmost_zero = places;
    ++places;
  }
  // Places counted from the right that are always written.
  int forced = leftmost_zero < 0 ? 0 : places - leftmost_zero;
  std::string reversed;
  int k = 0;  // digit index from the right
  int place = 0;
  auto emit_digit = [&](char digit) {
    if (grouping && k > 0 && k % 3 == 0) reversed += ',';
    reversed += digit;
    ++k;
  };
  int n = static_cast<int>(digits.size());
  for (auto it = tokens.rbegin(); it != tokens.rend(); ++it) {
    const Token& t = *it;
    if (!t.IsDigit()) {
      if (t.kind == Token::kLiteral || t.kind == Token::kPercent)
        reversed.append(t.text.rbegin(), t.text.rend());
      continue;
    }
    ++place;
    bool leftmost = place == places;
    if (k < n) {
      emit_digit(digits[n - 1 - k]);
      while (leftmost && k < n) emit_digit(digits[n - 1 - k]);
    } else if (place <= forced) {
      emit_digit('0');
    }
  }
  return std::string(reversed.rbegin(), reversed.rend());
}

// The fraction places, left to right; "#" places after the last significant
// digit and after the last "0" place are left out.
std::string RenderFraction(const std::vector<Token>& tokens,
                           const std::string& digits) {
  int last_needed = 0, place = 0;
  for (const Token& t : tokens) {
    if (!t.IsDigit()) continue;
    ++place;
    if (t.kind == Token::kZero || digits[place - 1] != '0') last_needed = place;
  }
  std::string out;
  place = 0;
  for (const Token& t : tokens) {
    if (t.IsDigit()) {
      ++place;
      if (place <= last_needed) out += digits[place - 1];
    } else if (t.kind == Token::kLiteral || t.kind == Token::kPercent) {
      out += t.text;
    }
  }
  return out;
}

struct Layout {
  std::vector<Token> integer;  // before the point
  bool has_point = false;
  std::vector<Token> fraction;  // after the point, before any exponent
  const Token* exponent = nullptr;
  std::vector<Token> exponent_part;  // after the exponent marker
  int percents = 0;
  int scale_commas = 0;
  bool grouping = false;
  int fraction_places = 0;
  bool any_digit = false;
};

Layout Analyze(const std::vector<Token>& tokens) {
  Layout l;
  int part = 0;  // 0 integer, 1 fraction, 2 exponent
  for (const Token& t : tokens) {
    if (t.kind == Token::kPercent) ++l.percents;
    if (t.IsDigit() && part < 2) l.any_digit = true;
    if (t.kind == Token::kPoint && part == 0) {
      l.has_point = true;
      part = 1;
      continue;
    }
    if (t.kind == Token::kExponent && part < 2) {
      l.exponent = &t;
      part = 2;
      continue;
    }
    if (part == 0) l.integer.push_back(t);
    if (part == 1) l.fraction.push_back(t);
    if (part == 2) l.exponent_part.push_back(t);
  }
  for (const Token& t : l.fraction)
    if (t.IsDigit()) ++l.fraction_places;
  // Commas: grouping between digit places, scaling at the right end.
  int last_digit = -1, first_digit = -1;
  for (int i = 0; i < static_cast<int>(l.integer.size()); ++i) {
    if (!l.integer[i].IsDigit()) continue;
    if (first_digit < 0) first_digit = i;
    last_digit = i;
  }
  std::vector<Token> kept;
  for (int i = 0; i < static_cast<int>(l.integer.size()); ++i) {
    const Token& t = l.integer[i];
    if (t.kind != Token::kComma) {
      kept.push_back(t);
      continue;
    }
    if (i > last_digit && last_digit >= 0)
      ++l.scale_commas;
    else if (i > first_digit && first_digit >= 0)
      l.grouping = true;
  }
  l.integer = std::move(kept);
  // A pattern with digit places only after the point still shows the
  // integer digits, right before the point.
  bool integer_digit = false;
  for (const Token& t : l.integer) integer_digit |= t.IsDigit();
  if (l.any_digit && !integer_digit) l.integer.push_back({Token::kHash, ""});
  return l;
}

std::string RenderLiterals(const std::vector<Token>& tokens) {
  std::string out;
  for (const Token& t : tokens)
    if (t.kind == Token::kLiteral || t.kind == Token::kPercent) out += t.text;
  return out;
}

std::string Fraction(const Decimal& d, int places) {
  std::string digits;
  for (int k = -1; k >= -places; --k) digits += DigitAt(d, k);
  return digits;
}

// Renders one section for a magnitude; sets `nonzero` when a digit other
// than 0 was written in the mantissa.
std::string RenderSection(std::string_view section, double magnitude,
                          bool& nonzero) {
  std::vector<Token> tokens = Tokenize(section);
  Layout l = Analyze(tokens);
  if (!l.any_digit) {
    nonzero = false;
    return RenderLiterals(tokens);
  }
  Decimal d = ToDecimal(magnitude);
  if (!d.IsZero()) d.point += 2 * l.percents - 3 * l.scale_commas;
  std::string exponent_text;
  if (l.exponent != nullptr) {
    int integer_places = 0;
    for (const Token& t : l.integer) integer_places += t.IsDigit();
    int exponent = 0;
    if (!d.IsZero()) {
      exponent = d.point - integer_places;
      d.point = integer_places;
      RoundDecimal(d, l.fraction_places, Tie::kAwayFromZero);
      if (d.point > integer_places) {  // rounding carried into a new digit
        ++exponent;
        d.point = integer_places;
      }
    }
    std::string sign;
    if (exponent < 0)
      sign = "-";
    else if (l.exponent->text[1] == '+')
      sign = "+";
    std::string exponent_digits = std::to_string(std::abs(exponent));
    exponent_text = l.exponent->text.substr(0, 1) + sign +
                    RenderInteger(l.exponent_part, exponent_digits, false);
  } else {
    RoundDecimal(d, l.fraction_places, Tie::kAwayFromZero);
  }
  nonzero = !d.IsZero();
  std::string out = RenderInteger(l.integer, IntegerDigits(d), l.grouping);
  if (l.has_point) out += '.';
  out += RenderFraction(l.fraction, Fraction(d, l.fraction_places));
  return out + exponent_text;
}

}  // namespace

std::string FormatNumber(double value, std::string_view pattern) {
  if (pattern.empty() || !std::isfinite(value)) return GeneralText(value);
  std::vector<std::string_view> sections = PatternSections(pattern);
  bool negative = value < 0;
  std::string_view section = sections[0];
  bool own_sign = false;  // the negative section writes its own sign
  if (negative && sections.size() > 1 && !sections[1].empty()) {
    section = sections[1];
    own_sign = true;
  } else if (value == 0 && sections.size() > 2 && !sections[2].empty()) {
    section = sections[2];
  }
  bool nonzero = false;
  std::string out = RenderSection(section, std::fabs(value), nonzero);
  if (negative && nonzero && !own_sign) out.insert(out.begin(), '-');
  return out;
}

namespace {
// The 16-bit sum of two stored digit texts; false when it overflows.
bool PatternIndex(std::string_view a, std::string_view b, int& index) {
  try {
    index = ToInt16(NumericValue(a) + NumericValue(b));
    return true;
  } catch (const std::overflow_error&) {
    return false;
  }
}

std::string ZeroPlaces(int count) {
  return count > 0 ? "." + std::string(count, '0') : "";
}
}  // namespace

std::string DecimalsPattern(std::string_view precision,
                            std::string_view decimals) {
  int sum;
  if (!PatternIndex(precision, decimals, sum) || sum < 0 || sum > 5) return "";
  return "###0" + ZeroPlaces(sum);
}

std::string PercentPattern(std::string_view precision,
                           std::string_view decimals) {
  int sum;
  if (!PatternIndex(precision, decimals, sum) || sum < 0 || sum > 3) return "";
  return "###0" + ZeroPlaces(sum) + "%";
}

std::string StationPattern(std::string_view precision,
                           std::string_view decimals,
                           std::string_view format_index) {
  // The format index is matched exactly: "2.5" names no format.
  std::string prefix;
  double format = NumericValue(format_index);
  if (format >= 0 && format <= 4 && format == std::floor(format))
    prefix = "0+" + std::string(static_cast<int>(format), '0');
  int sum;
  if (!PatternIndex(precision, decimals, sum) || sum < 0 || sum > 5)
    return prefix;
  return prefix + "0" + ZeroPlaces(sum);
}

bool SameIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) ==
           std::tolower(static_cast<unsigned char>(y));
  });
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  size_t start = 0;
  while (true) {
    size_t end = text.find(separator, start);
    if (end == std::string_view::npos) {
      pieces.emplace_back(text.substr(start));
      return pieces;
    }
    pieces.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
}

}  // namespace kestrana::core
