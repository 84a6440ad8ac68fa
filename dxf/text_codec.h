// Texts inside a DXF file: UTF-8 from R2007 (AC1021) on; before that the
// drawing's code page, with \U+XXXX escapes for characters outside it.
// memhost keeps every text in UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace kestrana::dxf {

class TextCodec {
 public:
  TextCodec() = default;  // UTF-8
  // `version` is $ACADVER ("AC1015"); `codepage` is $DWGCODEPAGE. Code pages
  // other than ANSI_1252 are read as 1252 too; their texts are written with
  // \U+ escapes for everything beyond ASCII, which every code page reads.
  static TextCodec For(std::string_view version, std::string_view codepage);

  bool Utf8() const { return utf8_; }
  std::string Decode(std::string_view file_text) const;
  std::string Encode(std::string_view utf8) const;

 private:
  bool utf8_ = true;
  bool cp1252_ = true;
};

// True for versions that store texts as UTF-8 (AC1021 and later).
bool IsUtf8Version(std::string_view version);

}  // namespace kestrana::dxf
