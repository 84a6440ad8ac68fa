#include "cli/json.h"

#include <cmath>

#include "cli/command.h"
#include "core/section_size.h"
#include "core/text.h"

namespace kestrana::cli {

std::string SnakeCase(std::string_view name) {
  std::string key;
  for (char c : name) {
    if (c == ' ' || c == '-' || c == '/') {
      if (!key.empty() && key.back() != '_') key += '_';
    } else {
      key += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    }
  }
  return key;
}

void JsonWriter::BeforeValue() {
  if (after_key_) {
    after_key_ = false;
    return;
  }
  if (!filled_.empty()) {
    if (filled_.back()) out_ += ", ";
    filled_.back() = true;
  }
}

JsonWriter& JsonWriter::BeginObject() {
  BeforeValue();
  out_ += '{';
  filled_.push_back(false);
  return *this;
}

JsonWriter& JsonWriter::EndObject() {
  out_ += '}';
  filled_.pop_back();
  return *this;
}

JsonWriter& JsonWriter::BeginArray() {
  BeforeValue();
  out_ += '[';
  filled_.push_back(false);
  return *this;
}

JsonWriter& JsonWriter::EndArray() {
  out_ += ']';
  filled_.pop_back();
  return *this;
}

JsonWriter& JsonWriter::Key(std::string_view key) {
  BeforeValue();
  out_ += JsonString(std::string(key)) + ": ";
  after_key_ = true;
  return *this;
}

JsonWriter& JsonWriter::String(std::string_view text) {
  BeforeValue();
  out_ += JsonString(std::string(text));
  return *this;
}

JsonWriter& JsonWriter::Number(double value, int places) {
  if (!std::isfinite(value)) return Null();
  return Real(core::RoundHalfEven(value, places));
}

JsonWriter& JsonWriter::Real(double value) {
  if (!std::isfinite(value)) return Null();
  BeforeValue();
  out_ += core::GeneralText(value);
  return *this;
}

JsonWriter& JsonWriter::Int(int64_t value) {
  BeforeValue();
  out_ += std::to_string(value);
  return *this;
}

JsonWriter& JsonWriter::Bool(bool value) {
  BeforeValue();
  out_ += value ? "true" : "false";
  return *this;
}

JsonWriter& JsonWriter::Null() {
  BeforeValue();
  out_ += "null";
  return *this;
}

JsonWriter& JsonWriter::Size(const core::SectionSize& size) {
  BeginObject();
  Key("shape").String(size.box ? "box" : "circular");
  Key("span").Real(size.span);
  Key("rise").Real(size.rise);
  Key("cells").Int(size.cells);
  return EndObject();
}

JsonWriter& JsonWriter::Raw(std::string_view json) {
  BeforeValue();
  out_ += json;
  return *this;
}

}  // namespace kestrana::cli
