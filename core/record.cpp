#include "core/record.h"

#include <utility>

#include "core/names.h"
#include "core/text.h"
#include "host/host.h"

namespace kestrana::core {

namespace {

enum class Kind { kText, kReal, kInt16 };

// The value kind a group code holds in XData.
Kind KindOf(int16_t code) {
  if (code == code::kInt16) return Kind::kInt16;
  if ((code >= 1010 && code <= 1042) || code == 1071) return Kind::kReal;
  return Kind::kText;
}

host::XValue EmptyValue(int16_t code) {
  switch (KindOf(code)) {
    case Kind::kReal:
      return host::XValue(0.0);
    case Kind::kInt16:
      return host::XValue(int16_t{0});
    default:
      return host::XValue(std::string());
  }
}

std::string Describe(const host::Object& object) {
  return "object " + std::to_string(object.ObjectID()) + " (" +
         object.ObjectName() + ")";
}

}  // namespace

Record::Record(host::XRecord items) : items_(std::move(items)) {
  if (items_.empty() || items_[0].code != code::kAppName)
    throw std::invalid_argument("a record starts with its application name");
}

Record Record::WithCodes(std::span<const int16_t> codes) {
  host::XRecord items{{code::kAppName, host::XValue(kAppName)}};
  for (int16_t c : codes) items.push_back({c, EmptyValue(c)});
  return Record(std::move(items));
}

std::optional<Record> Record::Read(const host::Object& object) {
  std::optional<host::XRecord> items = object.GetXData(kAppName);
  if (!items || items->empty()) return std::nullopt;
  return Record(std::move(*items));
}

Record Record::ReadRequired(const host::Object& object) {
  std::optional<Record> record = Read(object);
  if (!record)
    throw MissingRecordError(Describe(object) + " carries no " +
                             std::string(kAppName) + " record");
  return std::move(*record);
}

void Record::Write(host::Object& object) const { object.SetXData(items_); }

const host::XItem& Record::At(Field field) const {
  if (!Has(field))
    throw std::out_of_range("record field " + std::to_string(field.index) +
                            " is missing (the record has " +
                            std::to_string(Size()) + " fields)");
  return items_[field.index];
}

host::XItem& Record::At(Field field) {
  return const_cast<host::XItem&>(std::as_const(*this).At(field));
}

int16_t Record::Code(Field field) const { return At(field).code; }

const host::XValue& Record::Value(Field field) const { return At(field).value; }

std::string Record::Text(Field field) const { return TextOf(Value(field)); }

double Record::Number(Field field) const { return NumericValue(Value(field)); }

int16_t Record::Int16(Field field) const { return ToInt16(Number(field)); }

void Record::SetText(Field field, std::string_view text) {
  host::XItem& item = At(field);
  switch (KindOf(item.code)) {
    case Kind::kText:
      item.value = host::XValue(std::string(text));
      break;
    case Kind::kReal:
      item.value = host::XValue(NumericValue(text));
      break;
    case Kind::kInt16:
      item.value = host::XValue(ToInt16(NumericValue(text)));
      break;
  }
}

void Record::SetReal(Field field, double value) {
  host::XItem& item = At(field);
  switch (KindOf(item.code)) {
    case Kind::kText:
      item.value = host::XValue(GeneralText(value));
      break;
    case Kind::kReal:
      item.value = host::XValue(value);
      break;
    case Kind::kInt16:
      item.value = host::XValue(ToInt16(value));
      break;
  }
}

void Record::SetInt16(Field field, int16_t value) {
  host::XItem& item = At(field);
  switch (KindOf(item.code)) {
    case Kind::kText:
      item.value = host::XValue(std::to_string(value));
      break;
    case Kind::kReal:
      item.value = host::XValue(static_cast<double>(value));
      break;
    case Kind::kInt16:
      item.value = host::XValue(value);
      break;
  }
}

void Record::Set(Field field, int16_t code, host::XValue value) {
  At(field) = host::XItem{code, std::move(value)};
}

}  // namespace kestrana::core
