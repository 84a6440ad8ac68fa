#include "dxf/binary.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>

#include "dxf/tags.h"

namespace kestrana::dxf {

namespace {

enum class BinType { kText, kReal, kInt16, kInt32, kInt64, kByte, kChunk };

bool In(int code, int first, int last) { return code >= first && code <= last; }

// The binary form of a group code's value.
BinType BinaryTypeOf(int code) {
  if (In(code, 310, 319) || code == 1004) return BinType::kChunk;
  if (In(code, 290, 299)) return BinType::kByte;
  if (In(code, 60, 79) || In(code, 170, 179) || In(code, 270, 289) ||
      In(code, 370, 389) || In(code, 400, 409) || In(code, 1060, 1070))
    return BinType::kInt16;
  if (In(code, 90, 99) || In(code, 420, 459) || code == 1071)
    return BinType::kInt32;
  if (In(code, 160, 169)) return BinType::kInt64;
  if (In(code, 10, 59) || In(code, 110, 149) || In(code, 210, 239) ||
      In(code, 460, 469) || In(code, 1010, 1059))
    return BinType::kReal;
  return BinType::kText;
}

template <class T>
T Load(const char* p) {
  T v;
  std::memcpy(&v, p, sizeof v);  // files are little-endian, as is the host
  return v;
}

template <class T>
void Store(std::string& out, T v) {
  char buf[sizeof v];
  std::memcpy(buf, &v, sizeof v);
  out.append(buf, sizeof v);
}

// The shortest text that reads back as the same double, sign of zero kept.
void AppendReal(std::string& out, double v) {
  char buf[40];
  auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, v);
  std::string_view s(buf, static_cast<size_t>(ptr - buf));
  out += s;
  if (s.find_first_of(".enai") == std::string_view::npos) out += ".0";
}

template <class T>
void AppendInt(std::string& out, T v) {
  char buf[24];
  auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, v);
  out.append(buf, ptr);
}

class BinaryReader {
 public:
  explicit BinaryReader(std::string_view bytes) : b_(bytes) {}

  std::string Run(BinaryForm& form) {
    pos_ = kBinarySentinel.size();
    // The first tag is "0 SECTION": in one-byte form its text follows the
    // single code byte.
    form.one_byte_codes = b_.size() > pos_ + 1 && b_[pos_ + 1] != '\0';
    std::string out;
    out.reserve(b_.size() * 2);
    while (pos_ < b_.size()) {
      size_t tag_at = pos_;
      int code = Code(form.one_byte_codes);
      AppendInt(out, code);
      out += '\n';
      Value(code, tag_at, out);
      out += '\n';
      if (code == 0 && out.size() >= 5 &&
          std::string_view(out).substr(out.size() - 5) == "\nEOF\n") {
        form.after_eof = std::string(b_.substr(pos_));
        return out;
      }
    }
    return out;
  }

 private:
  [[noreturn]] void Fail(size_t at, const std::string& what) const {
    throw DxfError(0, "binary DXF, byte " + std::to_string(at) + ": " + what);
  }
  void Need(size_t n, size_t tag_at) const {
    if (b_.size() - pos_ < n)
      Fail(tag_at, "the file ends inside a tag; it is truncated");
  }
  int Code(bool one_byte) {
    size_t at = pos_;
    if (one_byte) {
      Need(1, at);
      auto c = static_cast<unsigned char>(b_[pos_++]);
      if (c != 255) return c;
      Need(2, at);
      int code = Load<int16_t>(b_.data() + pos_);
      pos_ += 2;
      return code;
    }
    Need(2, at);
    int code = Load<int16_t>(b_.data() + pos_);
    pos_ += 2;
    return code;
  }
  void Value(int code, size_t tag_at, std::string& out) {
    switch (BinaryTypeOf(code)) {
      case BinType::kReal:
        Need(8, tag_at);
        AppendReal(out, Load<double>(b_.data() + pos_));
        pos_ += 8;
        return;
      case BinType::kInt16:
        Need(2, tag_at);
        AppendInt(out, Load<int16_t>(b_.data() + pos_));
        pos_ += 2;
        return;
      case BinType::kInt32:
        Need(4, tag_at);
        AppendInt(out, Load<int32_t>(b_.data() + pos_));
        pos_ += 4;
        return;
      case BinType::kInt64:
        Need(8, tag_at);
        AppendInt(out, Load<int64_t>(b_.data() + pos_));
        pos_ += 8;
        return;
      case BinType::kByte:
        Need(1, tag_at);
        AppendInt(out, static_cast<unsigned>(static_cast<unsigned char>(b_[pos_++])));
        return;
      case BinType::kChunk: {
        Need(1, tag_at);
        size_t n = static_cast<unsigned char>(b_[pos_++]);
        Need(n, tag_at);
        static constexpr char kHex[] = "0123456789ABCDEF";
        for (size_t i = 0; i < n; ++i) {
          auto c = static_cast<unsigned char>(b_[pos_ + i]);
          out += kHex[c >> 4];
          out += kHex[c & 15];
        }
        pos_ += n;
        return;
      }
      case BinType::kText: {
        size_t end = b_.find('\0', pos_);
        if (end == std::string_view::npos)
          Fail(tag_at, "the file ends inside a text; it is truncated");
        std::string_view text = b_.substr(pos_, end - pos_);
        if (text.find_first_of("\r\n") != std::string_view::npos)
          Fail(tag_at, "a text of group code " + std::to_string(code) +
                           " holds a line break, which DXF texts cannot");
        out += text;
        pos_ = end + 1;
        return;
      }
    }
  }

  std::string_view b_;
  size_t pos_ = 0;
};

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

[[noreturn]] void Unfit(const Tag& t, const char* form) {
  throw DxfError(t.line + 1, "group code " + std::to_string(t.code) +
                                 " is written in binary DXF as " + form +
                                 ", which cannot hold '" +
                                 std::string(t.value.substr(0, 40)) + "'");
}

template <class T>
void StoreInt(std::string& out, const Tag& t, const char* form) {
  int64_t v = 0;
  if (!ParseInt(t.value, v) || v < std::numeric_limits<T>::min() ||
      v > std::numeric_limits<T>::max())
    Unfit(t, form);
  Store(out, static_cast<T>(v));
}

}  // namespace

bool IsBinaryDxf(std::string_view bytes) {
  return bytes.substr(0, kBinarySentinel.size()) == kBinarySentinel;
}

std::string BinaryToText(std::string_view bytes, BinaryForm& form) {
  return BinaryReader(bytes).Run(form);
}

std::string TextToBinary(std::string_view text, const BinaryForm& form) {
  std::string out(kBinarySentinel);
  out.reserve(text.size());
  AppendBinaryTags(text, 0, 1, form, out);
  out += form.after_eof;
  return out;
}

void AppendBinaryTags(std::string_view text, size_t offset,
                      uint32_t first_line, const BinaryForm& form,
                      std::string& out) {
  Tokenizer tok(text, offset, first_line);
  Tag t;
  while (tok.Next(t)) {
    if (t.code < 0 || t.code > 32767) Unfit(t, "a group code");
    if (form.one_byte_codes && t.code < 255) {
      out += static_cast<char>(t.code);
    } else {
      if (form.one_byte_codes) out += static_cast<char>(255);
      Store(out, static_cast<int16_t>(t.code));
    }
    switch (BinaryTypeOf(t.code)) {
      case BinType::kReal: {
        double v = 0;
        if (!ParseReal(t.value, v)) {
          // Not-a-number and infinities read from a binary file go back.
          auto [ptr, ec] = std::from_chars(
              t.value.data(), t.value.data() + t.value.size(), v);
          if (ec != std::errc() || ptr != t.value.data() + t.value.size())
            Unfit(t, "a real number");
        }
        Store(out, v);
        break;
      }
      case BinType::kInt16:
        StoreInt<int16_t>(out, t, "a 16-bit number");
        break;
      case BinType::kInt32:
        StoreInt<int32_t>(out, t, "a 32-bit number");
        break;
      case BinType::kInt64:
        StoreInt<int64_t>(out, t, "a 64-bit number");
        break;
      case BinType::kByte:
        StoreInt<uint8_t>(out, t, "one byte");
        break;
      case BinType::kChunk: {
        if (t.value.size() % 2 != 0 || t.value.size() > 510)
          Unfit(t, "up to 255 bytes of data");
        out += static_cast<char>(t.value.size() / 2);
        for (size_t i = 0; i < t.value.size(); i += 2) {
          int hi = HexDigit(t.value[i]), lo = HexDigit(t.value[i + 1]);
          if (hi < 0 || lo < 0) Unfit(t, "bytes in hexadecimal");
          out += static_cast<char>(hi * 16 + lo);
        }
        break;
      }
      case BinType::kText:
        if (t.value.find('\0') != std::string_view::npos)
          Unfit(t, "a text ending in a zero byte");
        out += t.value;
        out += '\0';
        break;
    }
  }
}

}  // namespace kestrana::dxf
