#include "dxf/text_codec.h"

#include <cstdio>

#include "memhost/utf8.h"

namespace kestrana::dxf {

namespace {

// Code points of bytes 0x80..0x9F in Windows-1252; the five bytes the code
// page leaves undefined map to the C1 controls of the same value.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t FromCp1252(unsigned char b) {
  if (b >= 0x80 && b < 0xA0) return kCp1252High[b - 0x80];
  return b;
}

// The byte for a code point in Windows-1252, or -1.
int ToCp1252(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<int>(cp);
  for (int i = 0; i < 32; ++i)
    if (kCp1252High[i] == cp) return 0x80 + i;
  return -1;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

bool PlainAscii(std::string_view s) {
  for (char c : s)
    if (static_cast<unsigned char>(c) >= 0x80 || c == '\\') return false;
  return true;
}

}  // namespace

bool IsUtf8Version(std::string_view version) {
  return version.size() == 6 && version.substr(0, 2) == "AC" &&
         version >= "AC1021";
}

TextCodec TextCodec::For(std::string_view version, std::string_view codepage) {
  TextCodec codec;
  codec.utf8_ = IsUtf8Version(version);
  codec.cp1252_ =
      codepage.empty() || codepage == "ANSI_1252" || codepage == "ansi_1252";
  return codec;
}

std::string TextCodec::Decode(std::string_view s) const {
  if (utf8_ || PlainAscii(s)) return std::string(s);
  std::string out;
  out.reserve(s.size() + 8);
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\\' && i + 6 < s.size() &&
        (s[i + 1] == 'U' || s[i + 1] == 'u') && s[i + 2] == '+') {
      int value = 0;
      bool ok = true;
      for (size_t k = 3; k < 7; ++k) {
        int d = HexDigit(s[i + k]);
        ok = ok && d >= 0;
        value = value * 16 + (d < 0 ? 0 : d);
      }
      if (ok) {
        memhost::AppendUtf8(out, static_cast<char32_t>(value));
        i += 6;
        continue;
      }
    }
    memhost::AppendUtf8(out, FromCp1252(static_cast<unsigned char>(s[i])));
  }
  return out;
}

std::string TextCodec::Encode(std::string_view s) const {
  if (utf8_ || PlainAscii(s)) return std::string(s);
  std::string out;
  for (char32_t cp : memhost::DecodeUtf8(s)) {
    int byte = cp1252_ ? ToCp1252(cp) : (cp < 0x80 ? static_cast<int>(cp) : -1);
    if (cp == '\\') {
      out += '\\';
    } else if (byte >= 0) {
      out += static_cast<char>(byte);
    } else if (cp <= 0xFFFF) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\U+%04X", static_cast<unsigned>(cp));
      out += buf;
    } else {
      out += '?';  // the escape holds four digits only
    }
  }
  return out;
}

}  // namespace kestrana::dxf
