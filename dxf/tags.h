// The lowest layer of DXF: lines into (group code, value) tags, values into
// numbers, and numbers back into text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/errors.h"

namespace kestrana::dxf {

// Anything wrong with a file being read. The message names the line.
class DxfError : public InvalidInputError {
 public:
  // line 0: an error about the file as a whole.
  DxfError(size_t line, const std::string& message);
  size_t line() const { return line_; }
  // The same error with the file's name in front.
  DxfError InFile(const std::string& path) const;

 private:
  DxfError(std::string text, size_t line)
      : InvalidInputError(text), line_(line) {}
  size_t line_;
};

// One (group code, value) pair. `value` is the value line without its line
// ending, untrimmed; `offset` is where the group code line starts.
struct Tag {
  int code = 0;
  uint32_t line = 0;  // 1-based line of the group code
  size_t offset = 0;
  std::string_view value;
};

// The longest line accepted; anything longer is not DXF.
inline constexpr size_t kMaxLineLength = 1 << 20;

// Splits a file's text into tags. Accepts LF and CRLF line endings.
class Tokenizer {
 public:
  // `first_line` numbers the first line of `text` (for pieces of a file).
  explicit Tokenizer(std::string_view text, size_t base_offset = 0,
                     uint32_t first_line = 1);
  // False at the end of the text; DxfError for a malformed tag.
  bool Next(Tag& tag);
  // Byte offset (including the base) of the next tag.
  size_t Offset() const { return base_ + pos_; }
  uint32_t Line() const { return line_; }

 private:
  std::string_view ReadLine();
  // A group code line that is not of the usual form; DxfError when it is
  // no number.
  static int ParseCode(std::string_view code_text, const Tag& tag);

  std::string_view text_;
  size_t base_;
  size_t pos_ = 0;
  uint32_t line_;
};

// What kind of value a group code carries.
enum class ValueType { kText, kReal, kInt, kHandle };
ValueType TypeOfCode(int code);

// Strict conversions of a tag's value; DxfError naming the line otherwise.
double RealValue(const Tag& tag);
int64_t IntValue(const Tag& tag);
uint64_t HandleValue(const Tag& tag);
// Parsers without errors, for values that only decide whether to reuse a text.
bool ParseReal(std::string_view text, double& out);
bool ParseInt(std::string_view text, int64_t& out);
bool ParseHandle(std::string_view text, uint64_t& out);

// Shortest text that reads back as the same double, with a decimal point.
// InvalidInputError for NaN and infinities, which no reader takes.
std::string FormatReal(double value);
std::string FormatHandle(uint64_t handle);

// Appends tags in the usual layout: group code right-aligned in three
// columns, then the value, each on its own line.
class TagWriter {
 public:
  explicit TagWriter(std::string& out, std::string_view eol = "\n")
      : out_(out), eol_(eol) {}
  void Text(int code, std::string_view value);
  void Real(int code, double value);
  void Int(int code, int64_t value);
  void Handle(int code, uint64_t handle);
  void Point(int code, double x, double y, double z);
  // Bytes copied as they stand (a span of the original file).
  void Raw(std::string_view bytes) { out_.append(bytes); }
  std::string& Out() { return out_; }
  std::string_view Eol() const { return eol_; }

 private:
  void Code(int code);
  std::string& out_;
  std::string_view eol_;
};

}  // namespace kestrana::dxf
