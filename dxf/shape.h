// The common shape of everything between two "0" tags (entities, table
// records, objects): head tags, subclass groups, extended data. Also the
// other direction: the fields an object's state writes, merged into the
// tags it was read from so that whatever the state does not cover stays
// where it was and untouched values keep their text.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "dxf/tags.h"
#include "dxf/text_codec.h"
#include "host/types.h"

namespace kestrana::dxf {

struct Shape {
  struct Group {
    std::string_view marker;  // subclass name; "" before the first marker
    size_t begin = 0;         // first tag after the marker
    size_t end = 0;
  };

  std::string_view file;  // the whole buffer the offsets refer to
  std::vector<Tag> tags;  // tags[0] is "0 TYPE"
  size_t end_offset = 0;  // where the next object starts
  size_t head_end = 0;    // type, handle, owner and 102 groups end here
  size_t xdata_begin = 0;
  std::vector<Group> groups;
  uint64_t handle = 0;  // 0 when the object has none
  uint64_t owner = 0;
  bool has_markers = false;

  std::string_view Type() const { return tags[0].value; }
  uint32_t Line() const { return tags[0].line; }
  // Splits `tags` into parts; `handle_code` is 105 for DIMSTYLE, else 5.
  void Build(int handle_code = 5);
  // The file bytes of tag `i` (code and value lines).
  std::string_view TagBytes(size_t i) const;
  std::string_view Bytes() const;
  // The group with `marker` (its `occurrence`-th one), or nullptr.
  const Group* Find(std::string_view marker, int occurrence = 0) const;
  // Tags where the common entity fields live: the AcDbEntity group, or
  // the whole body of a file without subclass markers.
  const Group* EntityGroup() const;
};

// Reads the tags of one object from `tok` (after its "0 TYPE" tag, which
// the caller passes as `first`) up to the next "0" tag, which it leaves in
// `next`. Returns false when the text ends first.
bool ReadObject(Tokenizer& tok, const Tag& first, Shape& shape, Tag& next);

// Extended data of a shape, by application in order.
std::vector<host::XRecord> ParseXData(const Shape& shape,
                                      const TextCodec& codec);
// Checks a shape's extended data as ParseXData reads it, with the same
// errors, and returns the application of each record.
std::vector<std::string> CheckXData(const Shape& shape, const TextCodec& codec);
// Extended data from the tags of `file` that start at `begin`, on `line`,
// up to the next group code 0.
std::vector<host::XRecord> ParseXDataText(std::string_view file, size_t begin,
                                          uint32_t line,
                                          const TextCodec& codec);

// A 64-bit fingerprint of the values of an object's state.
class Hasher {
 public:
  void Bytes(const void* data, size_t size);
  void Add(double v);
  void Add(int64_t v);
  void Add(bool v) { Add(static_cast<int64_t>(v)); }
  void Add(std::string_view s);
  void Add(const host::Point3& p);
  void Add(const std::vector<host::XRecord>& xdata);
  uint64_t Value() const { return h_; }

 private:
  uint64_t h_ = 1469598103934665603ull;
};

// One value an object's state writes.
struct Field {
  int code = 0;
  ValueType type = ValueType::kText;
  bool optional = false;  // left out unless the original has it here
  bool new_only = false;  // written for new objects only
  bool approx = false;    // converted value: close enough keeps the text
  double real = 0;
  int64_t integer = 0;
  std::string text;  // UTF-8
};

// The fields of one subclass group, in the order they are written.
class FieldGroup {
 public:
  explicit FieldGroup(std::string_view marker) : marker_(marker) {}
  std::string_view Marker() const { return marker_; }
  const std::vector<Field>& Fields() const { return fields_; }
  bool Owns(int code) const;
  const std::vector<int>& Owned() const { return owned_; }
  // Codes the group writes even when it has no field for them now.
  void Own(std::initializer_list<int> codes);

  void Text(int code, std::string_view v);
  void Real(int code, double v);
  void Int(int code, int64_t v);
  void Handle(int code, uint64_t v);
  void Point(int code, const host::Point3& p);
  void PointOr(int code, const host::Point3& p, bool optional);
  // Left out when equal to `fallback` and absent from the original.
  void TextOr(int code, std::string_view v, std::string_view fallback);
  void RealOr(int code, double v, double fallback);
  // A value converted on reading: close enough to the original keeps its
  // text.
  void RealNear(int code, double v);
  void IntOr(int code, int64_t v, int64_t fallback);
  // An angle kept in radians and written in degrees.
  void Degrees(int code, double radians, bool optional_if_zero);
  // Written for new objects only; an original keeps its own.
  void NewText(int code, std::string_view v);
  void NewInt(int code, int64_t v);
  void NewHandle(int code, uint64_t v);

 private:
  Field& Add(int code, ValueType type);
  std::string_view marker_;
  std::vector<Field> fields_;
  std::vector<int> owned_;
};

// Everything needed to write one object.
struct WritePlan {
  std::string_view type;  // "LINE"
  uint64_t handle = 0;
  int handle_code = 5;
  uint64_t owner = 0;               // 330 of a new object (0: none)
  const Shape* original = nullptr;  // nullptr for a new object
  // Head written anew (type, handle, owner) over an original's body: for
  // copies of an object read from the file.
  bool fresh_head = false;
  std::vector<FieldGroup> groups;
  const std::vector<host::XRecord>* xdata = nullptr;
  // The extended data did not change since it was read: an original's is
  // copied without comparing.
  bool xdata_as_read = false;
  // A group written by its own routine (hatch boundaries): it gets the
  // original group, or nullptr for a new object.
  std::string_view custom_marker;
  std::function<void(const Shape::Group* original, TagWriter& w)> custom;
};

// Points the plan at an object's extended data, unless the original's can
// be copied as it stands (which spares parsing data read from a file).
template <class Object>
void PlanXData(const Object& obj, WritePlan& plan) {
  if (plan.original == nullptr || !plan.xdata_as_read)
    plan.xdata = &obj.XData();
}

// Writes the object: the original's tags with the fields merged in, or,
// for a new object, the fields alone.
void WriteObject(const WritePlan& plan, TagWriter& w, const TextCodec& codec);

// Writes extended data from state.
void WriteXData(const std::vector<host::XRecord>& xdata, TagWriter& w,
                const TextCodec& codec);

}  // namespace kestrana::dxf
