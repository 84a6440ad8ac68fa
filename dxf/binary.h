// Binary DXF: the tags of an ASCII DXF file, each value in a fixed binary
// form chosen by its group code. kestrana reads a binary file as the ASCII
// text of its tags, so that one reader and one writer serve both, and
// writes the text back in the form it was read in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrana::dxf {

// The 22 bytes a binary DXF file starts with.
inline constexpr std::string_view kBinarySentinel{
    "AutoCAD Binary DXF\r\n\x1a\0", 22};

bool IsBinaryDxf(std::string_view bytes);

// How a binary file encodes what is not in its tags.
struct BinaryForm {
  // R12 and earlier write group codes in one byte (255 and two bytes for
  // larger ones); later versions in two.
  bool one_byte_codes = false;
  // Bytes after the "0 EOF" tag, kept as they were.
  std::string after_eof;
};

// The tags of a binary file as ASCII DXF text. DxfError (naming the byte
// offset) when the file is malformed.
std::string BinaryToText(std::string_view bytes, BinaryForm& form);

// ASCII DXF text in binary form. DxfError for a value its group code's
// binary form cannot hold.
std::string TextToBinary(std::string_view text, const BinaryForm& form);

// The tags of `text`, whole tags of ASCII DXF starting at byte `offset`
// and line `first_line` of the text being converted (errors name them),
// appended to `out` in binary form: what TextToBinary writes between the
// sentinel and form.after_eof.
void AppendBinaryTags(std::string_view text, size_t offset,
                      uint32_t first_line, const BinaryForm& form,
                      std::string& out);

}  // namespace kestrana::dxf
