#include "memhost/utf8.h"

namespace kestrana::memhost {

namespace {
bool Continuation(std::string_view s, size_t i) {
  return i < s.size() && (static_cast<unsigned char>(s[i]) & 0xC0) == 0x80;
}
}  // namespace

char32_t NextCodePoint(std::string_view s, size_t& i) {
  unsigned char c = static_cast<unsigned char>(s[i]);
  if (c < 0x80) {
    ++i;
    return c;
  }
  char32_t out;
  if (c >= 0xF0 && Continuation(s, i + 1) && Continuation(s, i + 2) &&
      Continuation(s, i + 3)) {
    out = ((c & 0x07u) << 18) | ((s[i + 1] & 0x3Fu) << 12) |
          ((s[i + 2] & 0x3Fu) << 6) | (s[i + 3] & 0x3Fu);
    i += 4;
  } else if (c >= 0xE0 && Continuation(s, i + 1) && Continuation(s, i + 2)) {
    out = ((c & 0x0Fu) << 12) | ((s[i + 1] & 0x3Fu) << 6) | (s[i + 2] & 0x3Fu);
    i += 3;
  } else if (c >= 0xC0 && Continuation(s, i + 1)) {
    out = ((c & 0x1Fu) << 6) | (s[i + 1] & 0x3Fu);
    i += 2;
  } else {
    out = c;
    ++i;
  }
  return out;
}

std::u32string DecodeUtf8(std::string_view s) {
  std::u32string out;
  for (size_t i = 0; i < s.size();) out.push_back(NextCodePoint(s, i));
  return out;
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

}  // namespace kestrana::memhost
