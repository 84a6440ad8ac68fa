#include "dxf/tags.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

namespace kestrana::dxf {

namespace {

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
    s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
    s.remove_suffix(1);
  return s;
}

// Enough of a value to show in a message, without control bytes.
std::string Shown(std::string_view s) {
  std::string out;
  for (char c : s.substr(0, 40))
    out += (static_cast<unsigned char>(c) < 0x20) ? '?' : c;
  if (s.size() > 40) out += "...";
  return out;
}

}  // namespace

DxfError::DxfError(size_t line, const std::string& message)
    : InvalidInputError(line == 0
                            ? message
                            : "line " + std::to_string(line) + ": " + message),
      line_(line) {}

DxfError DxfError::InFile(const std::string& path) const {
  return DxfError(path + ": " + what(), line_);
}

Tokenizer::Tokenizer(std::string_view text, size_t base_offset,
                     uint32_t first_line)
    : text_(text), base_(base_offset), line_(first_line) {}

namespace {

constexpr uint64_t kOnes = 0x0101010101010101ull;

// The eight bytes at `p` with the top bit of the first line feed among
// them set (and maybe of bytes after it); 0 without a line feed.
inline uint64_t NewlineBits(const char* p) {
  uint64_t word;
  std::memcpy(&word, p, 8);
  if constexpr (std::endian::native == std::endian::big)
    word = __builtin_bswap64(word);
  uint64_t x = word ^ (kOnes * '\n');
  return (x - kOnes) & ~x & (kOnes << 7);
}

// The first line feed at or after `p`, or `end`. Lines are mostly a few
// bytes long: eight bytes at a time, without a library call.
inline const char* FindLineFeed(const char* p, const char* end) {
  while (end - p >= 8) {
    uint64_t newline = NewlineBits(p);
    if (newline != 0) return p + (std::countr_zero(newline) >> 3);
    p += 8;
  }
  while (p != end && *p != '\n') ++p;
  return p;
}

}  // namespace

std::string_view Tokenizer::ReadLine() {
  const char* start = text_.data() + pos_;
  const char* end = text_.data() + text_.size();
  const char* p = FindLineFeed(start, end);
  size_t length = static_cast<size_t>(p - start);
  if (length > kMaxLineLength)
    throw DxfError(line_, "the line is " + std::to_string(length) +
                              " bytes long; a DXF line holds one group code or "
                              "one value (at most " +
                              std::to_string(kMaxLineLength) + " bytes)");
  pos_ += p == end ? length : length + 1;
  ++line_;
  // CR of CRLF; stray ones before it are not part of any value either.
  while (length > 0 && start[length - 1] == '\r') --length;
  return std::string_view(start, length);
}

bool Tokenizer::Next(Tag& tag) {
  size_t size = text_.size();
  if (pos_ >= size) return false;
  tag.offset = base_ + pos_;
  tag.line = line_;
  const char* p = text_.data() + pos_;
  int code = -1;
  if (size - pos_ >= 8) {
    // The usual form, read in place: blanks, up to six digits and the line
    // ending within eight bytes.
    uint64_t newline = NewlineBits(p);
    if (newline != 0) {
      int length = std::countr_zero(newline) >> 3;
      int stop = length > 0 && p[length - 1] == '\r' ? length - 1 : length;
      int i = 0;
      while (i < stop && p[i] == ' ') ++i;
      if (i < stop && stop - i <= 6) {
        int value = 0;
        for (; i < stop; ++i) {
          unsigned digit = static_cast<unsigned>(p[i] - '0');
          if (digit > 9) break;
          value = value * 10 + static_cast<int>(digit);
        }
        if (i == stop) {
          code = value;
          pos_ += length + 1;
          ++line_;
        }
      }
    }
  }
  if (code < 0) code = ParseCode(ReadLine(), tag);
  if (pos_ >= size)
    throw DxfError(tag.line,
                   "the file ends after group code " + std::to_string(code) +
                       "; the value line that belongs to it is missing");
  tag.code = code;
  tag.value = ReadLine();
  return true;
}

int Tokenizer::ParseCode(std::string_view code_text, const Tag& tag) {
  // Blanks and digits; else signs, tabs, trailing blanks, or not a number.
  size_t i = 0;
  while (i < code_text.size() && code_text[i] == ' ') ++i;
  int value = 0;
  size_t digits = 0;
  while (i < code_text.size() && code_text[i] >= '0' && code_text[i] <= '9' &&
         digits < 6) {
    value = value * 10 + (code_text[i++] - '0');
    ++digits;
  }
  if (digits > 0 && i == code_text.size()) return value;
  code_text = Trim(code_text);
  const char* first = code_text.data();
  const char* last = first + code_text.size();
  if (first != last && *first == '+') ++first;
  int code = 0;
  auto [ptr, ec] = std::from_chars(first, last, code);
  if (code_text.empty() || ec != std::errc() || ptr != last)
    throw DxfError(tag.line, "expected a group code (a whole number), found '" +
                                 Shown(code_text) + "'");
  return code;
}

ValueType TypeOfCode(int code) {
  if (code == 5 || code == 105 || (code >= 320 && code <= 369) ||
      (code >= 390 && code <= 399) || (code >= 480 && code <= 481) ||
      code == 1005)
    return ValueType::kHandle;
  if ((code >= 10 && code <= 59) || (code >= 110 && code <= 149) ||
      (code >= 210 && code <= 239) || (code >= 460 && code <= 469) ||
      (code >= 1010 && code <= 1059))
    return ValueType::kReal;
  if ((code >= 60 && code <= 99) || (code >= 160 && code <= 179) ||
      (code >= 270 && code <= 299) || (code >= 370 && code <= 389) ||
      (code >= 400 && code <= 409) || (code >= 420 && code <= 429) ||
      (code >= 440 && code <= 459) || (code >= 1060 && code <= 1071))
    return ValueType::kInt;
  return ValueType::kText;
}

namespace {

// Plain decimals of up to 15 digits ("-12.375") read exactly as the
// library would: the digits and the power of ten are both exact doubles,
// and one division rounds correctly. False for anything else.
bool ParsePlainDecimal(std::string_view text, double& out) {
  static constexpr double kPow10[] = {1e0,  1e1,  1e2,  1e3, 1e4,  1e5,
                                      1e6,  1e7,  1e8,  1e9, 1e10, 1e11,
                                      1e12, 1e13, 1e14, 1e15};
  const char* p = text.data();
  const char* end = p + text.size();
  bool negative = p != end && *p == '-';
  if (negative) ++p;
  uint64_t mantissa = 0;
  int digits = 0, scale = 0;
  while (p != end && *p >= '0' && *p <= '9') {
    mantissa = mantissa * 10 + static_cast<unsigned>(*p++ - '0');
    ++digits;
  }
  if (p != end && *p == '.') {
    ++p;
    while (p != end && *p >= '0' && *p <= '9') {
      mantissa = mantissa * 10 + static_cast<unsigned>(*p++ - '0');
      ++digits;
      ++scale;
    }
  }
  if (p != end || digits == 0 || digits > 15) return false;
  double v = static_cast<double>(mantissa) / kPow10[scale];
  out = negative ? -v : v;
  return true;
}

}  // namespace

bool ParseReal(std::string_view text, double& out) {
  text = Trim(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty()) return false;
  if (ParsePlainDecimal(text, out)) return true;
  auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), out);
  return ec == std::errc() && ptr == text.data() + text.size() &&
         std::isfinite(out);
}

bool ParseInt(std::string_view text, int64_t& out) {
  text = Trim(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty()) return false;
  auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), out);
  return ec == std::errc() && ptr == text.data() + text.size();
}

bool ParseHandle(std::string_view text, uint64_t& out) {
  text = Trim(text);
  // Handles stay below 2^60 so that new ones can always follow.
  if (text.empty() || text.size() > 15) return false;
  auto [ptr, ec] =
      std::from_chars(text.data(), text.data() + text.size(), out, 16);
  return ec == std::errc() && ptr == text.data() + text.size();
}

double RealValue(const Tag& tag) {
  double v = 0;
  if (!ParseReal(tag.value, v))
    throw DxfError(tag.line + 1, "group code " + std::to_string(tag.code) +
                                     " expects a real number, found '" +
                                     Shown(tag.value) + "'");
  return v;
}

int64_t IntValue(const Tag& tag) {
  int64_t v = 0;
  if (!ParseInt(tag.value, v))
    throw DxfError(tag.line + 1, "group code " + std::to_string(tag.code) +
                                     " expects a whole number, found '" +
                                     Shown(tag.value) + "'");
  return v;
}

uint64_t HandleValue(const Tag& tag) {
  uint64_t v = 0;
  if (!ParseHandle(tag.value, v))
    throw DxfError(tag.line + 1,
                   "group code " + std::to_string(tag.code) +
                       " expects a handle (hexadecimal), found '" +
                       Shown(tag.value) + "'");
  return v;
}

std::string FormatReal(double value) {
  // The reader refuses "nan" and "inf"; a file must never hold what it
  // cannot read back.
  if (!std::isfinite(value))
    throw InvalidInputError(
        "cannot write the number " +
        std::string(std::isnan(value) ? "NaN" : "infinity") +
        " into a drawing; nothing was written");
  if (value == 0) value = 0;  // no "-0.0"
  char buf[32];
  auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, value);
  std::string s(buf, ptr);
  if (s.find_first_of(".en") == std::string::npos) s += ".0";
  return s;
}

std::string FormatHandle(uint64_t handle) {
  char buf[24];
  auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, handle, 16);
  std::string s(buf, ptr);
  for (char& c : s)
    if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 32);
  return s;
}

void TagWriter::Code(int code) {
  char buf[16];
  auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, code);
  size_t n = ptr - buf;
  if (n < 3) out_.append(3 - n, ' ');
  out_.append(buf, n);
  out_.append(eol_);
}

void TagWriter::Text(int code, std::string_view value) {
  Code(code);
  out_.append(value);
  out_.append(eol_);
}

void TagWriter::Real(int code, double value) { Text(code, FormatReal(value)); }

void TagWriter::Int(int code, int64_t value) {
  Text(code, std::to_string(value));
}

void TagWriter::Handle(int code, uint64_t handle) {
  Text(code, FormatHandle(handle));
}

void TagWriter::Point(int code, double x, double y, double z) {
  Real(code, x);
  Real(code + 10, y);
  Real(code + 20, z);
}

}  // namespace kestrana::dxf
