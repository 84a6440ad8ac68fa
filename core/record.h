// A "Kestrana" XData record of one object: read whole, changed field by
// field, written back whole. Field positions come from the record headers
// (project_record.h, pipe_record.h, node_record.h, ...); numbers go through
// core/text.h, so a numeric text reads the same as a stored real.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

#include "host/errors.h"
#include "host/types.h"

namespace kestrana::host {
class Object;
}

namespace kestrana::core {

// Group codes by name, as the host defines them.
namespace code = host::code;

// A field position: an enumerator of a record header, or Field::At(i) for
// a position counted at run time (walking a whole record). A bare number
// does not convert, so no field is named by its number by accident.
struct Field {
  template <class E>
  requires std::is_enum_v<E>
  constexpr Field(E e) : index(static_cast<int>(e)) {}  // NOLINT
  static constexpr Field At(int i) { return Field(i); }
  int index;

 private:
  explicit constexpr Field(int i) : index(i) {}
};

// A link to another object, kept in two reference-list fields in step: the
// object's label (or name) and its object ID.
struct LinkFields {
  Field labels;
  Field ids;
};

// An object that should carry a record has none.
class MissingRecordError : public NotFoundError {
 public:
  using NotFoundError::NotFoundError;
};

class Record {
 public:
  // Item 0 must be {1001, "Kestrana"}; the items are taken as they are.
  explicit Record(host::XRecord items);
  // A new record: the application name, then one field per group code with
  // the empty value of its kind ("", 0.0 or 0).
  static Record WithCodes(std::span<const int16_t> codes);

  // The object's record, or nullopt when it has none.
  static std::optional<Record> Read(const host::Object& object);
  // The object's record; MissingRecordError when it has none.
  static Record ReadRequired(const host::Object& object);
  void Write(host::Object& object) const;

  // Number of fields, the application name included.
  int Size() const { return static_cast<int>(items_.size()); }
  bool Has(Field field) const {
    return field.index >= 0 && field.index < Size();
  }
  const host::XRecord& Items() const { return items_; }

  // Readers raise std::out_of_range for a field the record lacks.
  int16_t Code(Field field) const;
  const host::XValue& Value(Field field) const;
  std::string Text(Field field) const;
  double Number(Field field) const;
  int16_t Int16(Field field) const;  // the number, half to even

  // Setters keep the field's group code and store the value in the kind
  // that code holds: a number given for a text field is written as its
  // general text, a text given for a number field as its numeric value.
  void SetText(Field field, std::string_view text);
  void SetReal(Field field, double value);
  void SetInt16(Field field, int16_t value);
  // Replaces code and value together.
  void Set(Field field, int16_t code, host::XValue value);

 private:
  host::XItem& At(Field field);
  const host::XItem& At(Field field) const;

  host::XRecord items_;
};

}  // namespace kestrana::core
