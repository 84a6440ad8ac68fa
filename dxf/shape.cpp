#include "dxf/shape.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <unordered_map>

namespace kestrana::dxf {

// ------------------------------------------------------------------ shape

void Shape::Build(int handle_code) {
  handle = 0;
  owner = 0;
  groups.clear();
  size_t n = tags.size();
  size_t i = 1;
  while (i < n) {
    const Tag& t = tags[i];
    if (t.code == handle_code && handle == 0) {
      handle = HandleValue(t);
      ++i;
    } else if (t.code == 330 && owner == 0) {
      owner = HandleValue(t);
      ++i;
    } else if (t.code == 102 && !t.value.empty() && t.value[0] == '{') {
      size_t j = i + 1;
      while (j < n && !(tags[j].code == 102 && !tags[j].value.empty() &&
                        tags[j].value[0] == '}'))
        ++j;
      if (j == n)
        throw DxfError(t.line, "the application group \"" +
                                   std::string(t.value) +
                                   "\" is not closed (expected 102 \"}\")");
      i = j + 1;
    } else if (t.code == 360 || t.code == 330) {
      ++i;
    } else {
      break;
    }
  }
  head_end = i;
  xdata_begin = n;
  for (size_t k = head_end; k < n; ++k)
    if (tags[k].code >= 1000) {
      xdata_begin = k;
      break;
    }
  has_markers = false;
  Group current{"", head_end, head_end};
  for (size_t k = head_end; k < xdata_begin; ++k) {
    // 101 opens an embedded object, kept like an unknown subclass.
    if (tags[k].code != 100 && tags[k].code != 101) continue;
    current.end = k;
    if (current.begin < current.end || has_markers) groups.push_back(current);
    has_markers = true;
    current = Group{tags[k].value, k + 1, k + 1};
  }
  current.end = xdata_begin;
  if (has_markers || current.begin < current.end) groups.push_back(current);
}

std::string_view Shape::TagBytes(size_t i) const {
  size_t begin = tags[i].offset;
  size_t end = i + 1 < tags.size() ? tags[i + 1].offset : end_offset;
  return file.substr(begin, end - begin);
}

std::string_view Shape::Bytes() const {
  return file.substr(tags[0].offset, end_offset - tags[0].offset);
}

const Shape::Group* Shape::Find(std::string_view marker, int occurrence) const {
  for (const Group& g : groups)
    if (g.marker == marker && occurrence-- == 0) return &g;
  return nullptr;
}

const Shape::Group* Shape::EntityGroup() const {
  if (!has_markers) return groups.empty() ? nullptr : &groups.front();
  return Find("AcDbEntity");
}

bool ReadObject(Tokenizer& tok, const Tag& first, Shape& shape, Tag& next) {
  shape.tags.clear();
  shape.tags.push_back(first);
  Tag tag;
  while (tok.Next(tag)) {
    if (tag.code == 0) {
      next = tag;
      shape.end_offset = tag.offset;
      return true;
    }
    shape.tags.push_back(tag);
  }
  shape.end_offset = tok.Offset();
  return false;
}

namespace {

// Reads extended data tags: into records when `records` is given, else
// only checking them; either way with the same errors. `apps` receives the
// application of each record.
void ReadXData(const Tag* tags, size_t n, const TextCodec& codec,
               std::vector<host::XRecord>* records,
               std::vector<std::string>* apps) {
  bool open = false;
  for (size_t i = 0; i < n; ++i) {
    const Tag& t = tags[i];
    if (t.code == 1001) {
      if (t.value.empty())
        throw DxfError(t.line + 1, "group code 1001 needs an application name");
      open = true;
      std::string app = codec.Decode(t.value);
      if (records != nullptr) {
        // Each record in one allocation: count its items first.
        size_t end = i + 1;
        while (end < n && tags[end].code != 1001) ++end;
        host::XRecord& record = records->emplace_back();
        record.reserve(end - i);
        record.push_back(host::XItem{1001, app});
      }
      if (apps != nullptr) apps->push_back(std::move(app));
      continue;
    }
    if (!open)
      throw DxfError(t.line,
                     "extended data must start with group code 1001 "
                     "(the application name), found group code " +
                         std::to_string(t.code));
    // Checking alone builds no values: most data is only checked at load.
    auto keep = [&](host::XValue value) {
      if (records != nullptr)
        records->back().push_back(
            host::XItem{static_cast<int16_t>(t.code), std::move(value)});
    };
    if (t.code >= 1000 && t.code <= 1009) {
      if (records != nullptr) keep(codec.Decode(t.value));
    } else if (t.code >= 1010 && t.code <= 1059) {
      double v = RealValue(t);
      if (records != nullptr) keep(v);
    } else if (t.code >= 1060 && t.code <= 1070) {
      int64_t v = IntValue(t);
      if (v < -32768 || v > 65535)
        throw DxfError(t.line + 1,
                       "group code " + std::to_string(t.code) +
                           " expects a 16-bit whole number, found " +
                           std::to_string(v));
      if (records != nullptr) keep(static_cast<int16_t>(v));
    } else if (t.code == 1071) {
      int64_t v = IntValue(t);
      if (records != nullptr) keep(static_cast<double>(v));
    } else {
      throw DxfError(t.line, "group code " + std::to_string(t.code) +
                                 " cannot be part of extended data");
    }
  }
}

}  // namespace

std::vector<host::XRecord> ParseXData(const Shape& shape,
                                      const TextCodec& codec) {
  std::vector<host::XRecord> out;
  size_t n = shape.tags.size() - shape.xdata_begin;
  ReadXData(shape.tags.data() + shape.xdata_begin, n, codec, &out, nullptr);
  return out;
}

std::vector<std::string> CheckXData(const Shape& shape,
                                    const TextCodec& codec) {
  std::vector<std::string> apps;
  size_t n = shape.tags.size() - shape.xdata_begin;
  ReadXData(shape.tags.data() + shape.xdata_begin, n, codec, nullptr, &apps);
  return apps;
}

std::vector<host::XRecord> ParseXDataText(std::string_view file, size_t begin,
                                          uint32_t line,
                                          const TextCodec& codec) {
  Tokenizer tok(file.substr(begin), begin, line);
  std::vector<Tag> tags;
  Tag t;
  while (tok.Next(t) && t.code != 0) tags.push_back(t);
  std::vector<host::XRecord> out;
  ReadXData(tags.data(), tags.size(), codec, &out, nullptr);
  return out;
}

// ----------------------------------------------------------------- hasher

namespace {
// One 64-bit word into the state: multiply and fold.
inline uint64_t Mix(uint64_t h, uint64_t word) {
  h ^= word;
  h *= 0x9E3779B97F4A7C15ull;
  return h ^ (h >> 29);
}
}  // namespace

void Hasher::Bytes(const void* data, size_t size) {
  const auto* p = static_cast<const unsigned char*>(data);
  uint64_t h = h_;
  while (size >= 8) {
    uint64_t word;
    std::memcpy(&word, p, 8);
    h = Mix(h, word);
    p += 8;
    size -= 8;
  }
  if (size > 0) {
    uint64_t word = 0;
    std::memcpy(&word, p, size);
    h = Mix(h, word ^ (uint64_t{size} << 56));
  }
  h_ = h;
}

void Hasher::Add(double v) {
  if (v == 0) v = 0;
  uint64_t bits;
  std::memcpy(&bits, &v, sizeof bits);
  h_ = Mix(h_, bits);
}

void Hasher::Add(int64_t v) { h_ = Mix(h_, static_cast<uint64_t>(v)); }

void Hasher::Add(std::string_view s) {
  Add(static_cast<int64_t>(s.size()));
  Bytes(s.data(), s.size());
}

void Hasher::Add(const host::Point3& p) {
  Add(p.x);
  Add(p.y);
  Add(p.z);
}

void Hasher::Add(const std::vector<host::XRecord>& xdata) {
  Add(static_cast<int64_t>(xdata.size()));
  for (const auto& record : xdata) {
    Add(static_cast<int64_t>(record.size()));
    for (const auto& item : record) {
      Add(static_cast<int64_t>(item.code));
      if (item.value.IsText())
        Add(std::string_view(item.value.Text()));
      else if (item.value.IsReal())
        Add(item.value.Real());
      else
        Add(static_cast<int64_t>(item.value.Int()) + 0x10000);
    }
  }
}

// ----------------------------------------------------------------- fields

bool FieldGroup::Owns(int code) const {
  return std::find(owned_.begin(), owned_.end(), code) != owned_.end();
}

void FieldGroup::Own(std::initializer_list<int> codes) {
  for (int c : codes)
    if (!Owns(c)) owned_.push_back(c);
}

Field& FieldGroup::Add(int code, ValueType type) {
  if (!Owns(code)) owned_.push_back(code);
  Field& f = fields_.emplace_back();
  f.code = code;
  f.type = type;
  return f;
}

void FieldGroup::Text(int code, std::string_view v) {
  Add(code, ValueType::kText).text = v;
}
void FieldGroup::Real(int code, double v) {
  Add(code, ValueType::kReal).real = v;
}
void FieldGroup::Int(int code, int64_t v) {
  Add(code, ValueType::kInt).integer = v;
}
void FieldGroup::Handle(int code, uint64_t v) {
  Add(code, ValueType::kHandle).integer = static_cast<int64_t>(v);
}
void FieldGroup::Point(int code, const host::Point3& p) {
  Real(code, p.x);
  Real(code + 10, p.y);
  Real(code + 20, p.z);
}
void FieldGroup::PointOr(int code, const host::Point3& p, bool optional) {
  Point(code, p);
  for (size_t k = fields_.size() - 3; k < fields_.size(); ++k)
    fields_[k].optional = optional;
}
void FieldGroup::TextOr(int code, std::string_view v,
                        std::string_view fallback) {
  Field& f = Add(code, ValueType::kText);
  f.text = v;
  f.optional = v == fallback;
}
void FieldGroup::RealOr(int code, double v, double fallback) {
  Field& f = Add(code, ValueType::kReal);
  f.real = v;
  f.optional = v == fallback;
}
void FieldGroup::RealNear(int code, double v) {
  Field& f = Add(code, ValueType::kReal);
  f.real = v;
  f.approx = true;
}
void FieldGroup::IntOr(int code, int64_t v, int64_t fallback) {
  Field& f = Add(code, ValueType::kInt);
  f.integer = v;
  f.optional = v == fallback;
}
void FieldGroup::Degrees(int code, double radians, bool optional_if_zero) {
  Field& f = Add(code, ValueType::kReal);
  f.real = radians * 180.0 / 3.14159265358979323846;
  f.approx = true;
  f.optional = optional_if_zero && radians == 0;
}
void FieldGroup::NewText(int code, std::string_view v) {
  Field& f = fields_.emplace_back();
  f.code = code;
  f.text = v;
  f.new_only = true;
}
void FieldGroup::NewInt(int code, int64_t v) {
  Field& f = fields_.emplace_back();
  f.code = code;
  f.type = ValueType::kInt;
  f.integer = v;
  f.new_only = true;
}
void FieldGroup::NewHandle(int code, uint64_t v) {
  Field& f = fields_.emplace_back();
  f.code = code;
  f.type = ValueType::kHandle;
  f.integer = static_cast<int64_t>(v);
  f.new_only = true;
}

// ----------------------------------------------------------------- writer

namespace {

void Emit(const Field& f, TagWriter& w, const TextCodec& codec) {
  switch (f.type) {
    case ValueType::kText:
      w.Text(f.code, codec.Encode(f.text));
      break;
    case ValueType::kReal:
      w.Real(f.code, f.real);
      break;
    case ValueType::kInt:
      w.Int(f.code, f.integer);
      break;
    case ValueType::kHandle:
      w.Handle(f.code, static_cast<uint64_t>(f.integer));
      break;
  }
}

// True when the original text already says what the field says.
bool Same(const Field& f, const Tag& t, const TextCodec& codec) {
  switch (f.type) {
    case ValueType::kText:
      return codec.Encode(f.text) == t.value;
    case ValueType::kReal: {
      double v;
      if (!ParseReal(t.value, v)) return false;
      if (v == f.real) return true;
      return f.approx &&
             std::fabs(v - f.real) <= 1e-12 * std::max(1.0, std::fabs(v));
    }
    case ValueType::kInt: {
      int64_t v;
      return ParseInt(t.value, v) && v == f.integer;
    }
    case ValueType::kHandle: {
      uint64_t v;
      return ParseHandle(t.value, v) && v == static_cast<uint64_t>(f.integer);
    }
  }
  return false;
}

// The fields of a group as written over an original: new-only fields out.
std::vector<const Field*> MergeFields(const FieldGroup& g) {
  std::vector<const Field*> out;
  out.reserve(g.Fields().size());
  for (const Field& f : g.Fields())
    if (!f.new_only) out.push_back(&f);
  return out;
}

// The original group's tags with the fields merged in: owned tags are
// matched in order to fields of the same code (their text kept when the
// value is unchanged), fields without a match go in before the next match,
// owned tags without one are dropped, and other tags stay where they are.
void MergeGroup(const Shape& o, size_t begin, size_t end,
                const std::vector<const Field*>& fields,
                const std::vector<int>& owned_codes, TagWriter& w,
                const TextCodec& codec) {
  auto owns = [&](int code) {
    return std::find(owned_codes.begin(), owned_codes.end(), code) !=
           owned_codes.end();
  };
  std::unordered_map<int, std::vector<size_t>> positions;
  for (size_t k = 0; k < fields.size(); ++k)
    positions[fields[k]->code].push_back(k);
  std::unordered_map<int, size_t> cursor;
  size_t j = 0;
  for (size_t i = begin; i < end; ++i) {
    const Tag& t = o.tags[i];
    if (!owns(t.code)) {
      w.Raw(o.TagBytes(i));
      continue;
    }
    auto it = positions.find(t.code);
    if (it == positions.end()) continue;
    size_t& cur = cursor[t.code];
    while (cur < it->second.size() && it->second[cur] < j) ++cur;
    if (cur == it->second.size()) continue;  // no field left for it: dropped
    size_t k = it->second[cur++];
    for (size_t m = j; m < k; ++m)
      if (!fields[m]->optional) Emit(*fields[m], w, codec);
    if (Same(*fields[k], t, codec))
      w.Raw(o.TagBytes(i));
    else
      Emit(*fields[k], w, codec);
    j = k + 1;
  }
  for (size_t m = j; m < fields.size(); ++m)
    if (!fields[m]->optional) Emit(*fields[m], w, codec);
}

void WriteNewGroup(const WritePlan& plan, const FieldGroup& g, TagWriter& w,
                   const TextCodec& codec) {
  if (!g.Marker().empty()) w.Text(100, g.Marker());
  if (plan.custom && g.Marker() == plan.custom_marker) {
    plan.custom(nullptr, w);
    return;
  }
  for (const Field& f : g.Fields())
    if (!f.optional) Emit(f, w, codec);
}

bool SameXData(const std::vector<host::XRecord>& a,
               const std::vector<host::XRecord>& b) {
  return a == b;
}

}  // namespace

void WriteXData(const std::vector<host::XRecord>& xdata, TagWriter& w,
                const TextCodec& codec) {
  for (const auto& record : xdata) {
    for (const auto& item : record) {
      if (item.value.IsText()) {
        w.Text(item.code, codec.Encode(item.value.Text()));
      } else if (item.value.IsReal()) {
        if (item.code == 1071)
          w.Int(item.code, std::llround(item.value.Real()));
        else
          w.Real(item.code, item.value.Real());
      } else {
        w.Int(item.code, item.value.Int());
      }
    }
  }
}

void WriteObject(const WritePlan& plan, TagWriter& w, const TextCodec& codec) {
  if (plan.original == nullptr) {
    w.Text(0, plan.type);
    w.Handle(plan.handle_code, plan.handle);
    if (plan.owner != 0) w.Handle(330, plan.owner);
    for (const FieldGroup& g : plan.groups) WriteNewGroup(plan, g, w, codec);
    if (plan.xdata) WriteXData(*plan.xdata, w, codec);
    return;
  }
  const Shape& o = *plan.original;
  if (plan.fresh_head) {
    w.Text(0, plan.type);
    w.Handle(plan.handle_code, plan.handle);
    if (plan.owner != 0) w.Handle(330, plan.owner);
  } else {
    size_t head_end_offset =
        o.head_end < o.tags.size() ? o.tags[o.head_end].offset : o.end_offset;
    w.Raw(o.file.substr(o.tags[0].offset, head_end_offset - o.tags[0].offset));
  }

  if (!o.has_markers) {
    // A file without subclass markers: one body holds every group's fields.
    std::vector<const Field*> fields;
    std::vector<int> codes;
    for (const FieldGroup& g : plan.groups) {
      for (const Field* f : MergeFields(g)) fields.push_back(f);
      for (int c : g.Owned()) codes.push_back(c);
    }
    size_t begin = o.head_end;
    MergeGroup(o, begin, o.xdata_begin, fields, codes, w, codec);
  } else {
    // Match the state's groups to the original's by marker and occurrence.
    std::vector<int> match(o.groups.size(), -1);
    for (size_t fi = 0; fi < plan.groups.size(); ++fi) {
      int occurrence = 0;
      for (size_t p = 0; p < fi; ++p)
        occurrence += plan.groups[p].Marker() == plan.groups[fi].Marker();
      int seen = 0;
      for (size_t gi = 0; gi < o.groups.size(); ++gi)
        if (o.groups[gi].marker == plan.groups[fi].Marker() &&
            seen++ == occurrence) {
          match[gi] = static_cast<int>(fi);
          break;
        }
    }
    std::vector<bool> done(plan.groups.size(), false);
    for (size_t gi = 0; gi < o.groups.size(); ++gi) {
      const Shape::Group& og = o.groups[gi];
      int fi = match[gi];
      if (fi >= 0)
        for (int p = 0; p < fi; ++p)
          if (!done[p]) {
            WriteNewGroup(plan, plan.groups[p], w, codec);
            done[p] = true;
          }
      if (og.begin > o.head_end && (o.tags[og.begin - 1].code == 100 ||
                                    o.tags[og.begin - 1].code == 101))
        w.Raw(o.TagBytes(og.begin - 1));
      if (fi < 0) {
        for (size_t i = og.begin; i < og.end; ++i) w.Raw(o.TagBytes(i));
        continue;
      }
      done[fi] = true;
      const FieldGroup& g = plan.groups[fi];
      if (plan.custom && g.Marker() == plan.custom_marker) {
        plan.custom(&og, w);
        continue;
      }
      MergeGroup(o, og.begin, og.end, MergeFields(g), g.Owned(), w, codec);
    }
    for (size_t p = 0; p < plan.groups.size(); ++p)
      if (!done[p]) WriteNewGroup(plan, plan.groups[p], w, codec);
  }

  // Extended data: as read while the state still says the same.
  if (plan.xdata == nullptr || plan.xdata_as_read ||
      (o.xdata_begin < o.tags.size() &&
       SameXData(ParseXData(o, codec), *plan.xdata)) ||
      (o.xdata_begin == o.tags.size() && plan.xdata->empty())) {
    for (size_t i = o.xdata_begin; i < o.tags.size(); ++i) w.Raw(o.TagBytes(i));
  } else {
    WriteXData(*plan.xdata, w, codec);
  }
}

}  // namespace kestrana::dxf
