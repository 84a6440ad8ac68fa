#include "dxf/text_codec.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <unordered_map>

#include "dxf/tags.h"
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

// One conversion of the C library, closed when done.
class Converter {
 public:
  Converter(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
  ~Converter() {
    if (Ok()) iconv_close(cd_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool Ok() const { return cd_ != reinterpret_cast<iconv_t>(-1); }

  // Converts all of `in` into `out`; the errno of the first failure (EILSEQ:
  // no counterpart, EINVAL: `in` ends inside a character), or 0.
  int Convert(std::string_view in, std::string& out) {
    out.clear();
    iconv(cd_, nullptr, nullptr, nullptr, nullptr);
    char* src = const_cast<char*>(in.data());
    size_t left = in.size();
    char buffer[256];
    while (left > 0) {
      char* dst = buffer;
      size_t room = sizeof buffer;
      size_t done = iconv(cd_, &src, &left, &dst, &room);
      out.append(buffer, static_cast<size_t>(dst - buffer));
      if (done == static_cast<size_t>(-1) && errno != E2BIG) return errno;
    }
    char* dst = buffer;
    size_t room = sizeof buffer;
    iconv(cd_, nullptr, nullptr, &dst, &room);  // back to the initial state
    out.append(buffer, static_cast<size_t>(dst - buffer));
    return 0;
  }

 private:
  iconv_t cd_;
};

// The C library's name of a $DWGCODEPAGE value: "ANSI_1251" is "CP1251",
// "DOS850" is "CP850"; empty for values of another form.
std::string LibraryName(std::string_view codepage) {
  std::string upper;
  for (char c : codepage)
    upper += static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  std::string_view digits = upper;
  if (digits.rfind("ANSI_", 0) == 0)
    digits.remove_prefix(5);
  else if (digits.rfind("DOS", 0) == 0)
    digits.remove_prefix(3);
  else
    return {};
  if (digits.empty()) return {};
  for (char c : digits)
    if (c < '0' || c > '9') return {};
  return "CP" + std::string(digits);
}

bool PlainAscii(std::string_view s) {
  for (char c : s)
    if (static_cast<unsigned char>(c) >= 0x80 || c == '\\') return false;
  return true;
}

}  // namespace

struct TextCodec::Page {
  std::string name;  // the C library's
  // Pages of one byte per character keep a table both ways; bytes the page
  // leaves undefined stand for the code point of their value, so that they
  // go back as they came.
  bool single_byte = true;
  std::array<char32_t, 256> to_unicode{};
  std::unordered_map<char32_t, unsigned char> from_unicode;

  // The page of a $DWGCODEPAGE value, or null when the library lacks it.
  static std::shared_ptr<const Page> Open(std::string_view codepage) {
    std::string name = LibraryName(codepage);
    if (name.empty()) return nullptr;
    Converter decode("UTF-32LE", name.c_str());
    if (!decode.Ok()) return nullptr;
    auto page = std::make_shared<Page>();
    page->name = name;
    std::string out;
    for (int b = 0; b < 256 && page->single_byte; ++b) {
      const char byte = static_cast<char>(b);
      const int error = decode.Convert(std::string_view(&byte, 1), out);
      char32_t cp = static_cast<char32_t>(b);
      if (error == EINVAL) {
        page->single_byte = false;  // a lead byte
      } else if (error == 0 && out.size() == 4) {
        cp = static_cast<char32_t>(static_cast<unsigned char>(out[0]) |
                                   static_cast<unsigned char>(out[1]) << 8 |
                                   static_cast<unsigned char>(out[2]) << 16 |
                                   static_cast<unsigned char>(out[3]) << 24);
      }
      page->to_unicode[b] = cp;
      page->from_unicode.emplace(cp, static_cast<unsigned char>(b));
    }
    return page;
  }
};

bool IsUtf8Version(std::string_view version) {
  return VersionNumber(version) >= kVersionR2007;
}

TextCodec TextCodec::For(std::string_view version, std::string_view codepage) {
  TextCodec codec;
  codec.utf8_ = IsUtf8Version(version);
  codec.cp1252_ = codepage.empty() || LibraryName(codepage) == "CP1252";
  if (!codec.utf8_ && !codec.cp1252_) codec.page_ = Page::Open(codepage);
  return codec;
}

std::string TextCodec::DecodeRun(std::string_view bytes) const {
  std::string out;
  if (page_ && !page_->single_byte) {
    Converter decode("UTF-8", page_->name.c_str());
    if (decode.Convert(bytes, out) == 0) return out;
    out.clear();  // not text of the page after all: byte by byte
  }
  for (char c : bytes) {
    const auto b = static_cast<unsigned char>(c);
    memhost::AppendUtf8(out, page_ && page_->single_byte ? page_->to_unicode[b]
                                                         : FromCp1252(b));
  }
  return out;
}

std::string TextCodec::Decode(std::string_view s) const {
  if (utf8_ || PlainAscii(s)) return std::string(s);
  std::string out;
  out.reserve(s.size() + 8);
  size_t run = 0;  // start of the bytes not yet decoded
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
        out += DecodeRun(s.substr(run, i - run));
        memhost::AppendUtf8(out, static_cast<char32_t>(value));
        i += 6;
        run = i + 1;
      }
    }
  }
  out += DecodeRun(s.substr(run));
  return out;
}

std::string TextCodec::Encode(std::string_view s) const {
  if (utf8_ || PlainAscii(s)) return std::string(s);
  std::unique_ptr<Converter> encode;  // multi-byte pages, opened when needed
  std::string out, bytes;
  for (char32_t cp : memhost::DecodeUtf8(s)) {
    if (cp < 0x80) {
      out += static_cast<char>(cp);
      continue;
    }
    if (cp1252_) {
      if (int byte = ToCp1252(cp); byte >= 0) {
        out += static_cast<char>(byte);
        continue;
      }
    } else if (page_ && page_->single_byte) {
      if (auto it = page_->from_unicode.find(cp);
          it != page_->from_unicode.end()) {
        out += static_cast<char>(it->second);
        continue;
      }
    } else if (page_) {
      if (!encode)
        encode = std::make_unique<Converter>(page_->name.c_str(), "UTF-32LE");
      const char unit[4] = {static_cast<char>(cp & 0xFF),
                            static_cast<char>(cp >> 8 & 0xFF),
                            static_cast<char>(cp >> 16 & 0xFF),
                            static_cast<char>(cp >> 24 & 0xFF)};
      if (encode->Ok() &&
          encode->Convert(std::string_view(unit, 4), bytes) == 0 &&
          !bytes.empty()) {
        out += bytes;
        continue;
      }
    }
    if (cp <= 0xFFFF) {
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
