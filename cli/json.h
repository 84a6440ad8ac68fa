// The one way commands write --json: a small streaming writer that places
// the commas, writes numbers as JSON numbers (rounded as the text output
// rounds them) and texts escaped. Keys are snake_case by convention
// ("start_invert"); docs/json.md shows the shape of each command's output.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrana::core {
struct SectionSize;
}

namespace kestrana::cli {

// A name of the system's own ("upstream invert", "gravity pipe") as a key:
// lower case, words joined by "_".
std::string SnakeCase(std::string_view name);

class JsonWriter {
 public:
  JsonWriter& BeginObject();
  JsonWriter& EndObject();
  JsonWriter& BeginArray();
  JsonWriter& EndArray();
  // The key of the next value in an object.
  JsonWriter& Key(std::string_view key);

  JsonWriter& String(std::string_view text);
  // A real rounded half to even to `places` decimals, as the text output
  // shows it; null for a value that is not finite.
  JsonWriter& Number(double value, int places);
  // A real in its shortest general form, unrounded.
  JsonWriter& Real(double value);
  JsonWriter& Int(int64_t value);
  JsonWriter& Bool(bool value);
  JsonWriter& Null();
  // Text already written as JSON (a nested document).
  JsonWriter& Raw(std::string_view json);

  // A pipe size as numbers with its shape: {"shape": "circular" or "box",
  // "span", "rise", "cells"}.
  JsonWriter& Size(const core::SectionSize& size);

  // The document with a final line end.
  std::string Text() const { return out_ + "\n"; }

 private:
  void BeforeValue();

  std::string out_;
  // One entry per open object or array: whether it holds a value yet.
  std::vector<bool> filled_;
  bool after_key_ = false;
};

}  // namespace kestrana::cli
