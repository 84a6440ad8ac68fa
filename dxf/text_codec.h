// Texts inside a DXF file: UTF-8 from R2007 (AC1021) on; before that the
// drawing's code page, with \U+XXXX escapes for characters outside it.
// memhost keeps every text in UTF-8.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace kestrana::dxf {

class TextCodec {
 public:
  TextCodec() = default;  // UTF-8
  // `version` is $ACADVER ("AC1015"); `codepage` is $DWGCODEPAGE
  // ("ANSI_1251", "ANSI_932", ...), read and written through the C
  // library's converters. A code page the library does not know is read as
  // 1252, and everything beyond ASCII is written as \U+ escapes, which every
  // code page reads.
  static TextCodec For(std::string_view version, std::string_view codepage);

  bool Utf8() const { return utf8_; }
  std::string Decode(std::string_view file_text) const;
  std::string Encode(std::string_view utf8) const;

 private:
  struct Page;  // a code page other than 1252

  std::string DecodeRun(std::string_view bytes) const;

  bool utf8_ = true;
  bool cp1252_ = true;
  std::shared_ptr<const Page> page_;  // null: 1252, or one nobody knows
};

// True for versions that store texts as UTF-8 (AC1021 and later).
bool IsUtf8Version(std::string_view version);

}  // namespace kestrana::dxf
