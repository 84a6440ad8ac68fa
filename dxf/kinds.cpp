#include "dxf/kinds.h"

#include <algorithm>
#include <cmath>

#include "dxf/kind_fields.h"

namespace kestrana::dxf {

using host::Point3;
using memhost::MemEntity;

namespace kinds {

int64_t OriginalInt(const Shape* original, std::string_view marker, int code,
                    int64_t fallback) {
  if (original == nullptr) return fallback;
  const Shape::Group* g =
      original->has_markers
          ? original->Find(marker)
          : (original->groups.empty() ? nullptr : &original->groups[0]);
  if (g == nullptr) return fallback;
  for (size_t i = g->begin; i < g->end; ++i)
    if (original->tags[i].code == code) {
      int64_t v;
      return ParseInt(original->tags[i].value, v) ? v : fallback;
    }
  return fallback;
}

}  // namespace kinds

namespace {

using kinds::ForBody;

// ---------------------------------------------------------- the others

std::unique_ptr<MemEntity> ReadOther(const Shape& s) {
  std::string object_name = "AcDb" + std::string(s.Type());
  if (s.has_markers && !s.groups.empty() && !s.groups.back().marker.empty())
    object_name = std::string(s.groups.back().marker);
  auto e = std::make_unique<memhost::MemOtherEntity>(std::string(s.Type()),
                                                     std::move(object_name));
  // Points that stand for the extent: every X/Y pair of codes 10 to 18.
  const Tag* x = nullptr;
  ForBody(s, {}, [&](std::string_view, const Tag& t) {
    if (t.code >= 10 && t.code <= 18) {
      x = &t;
    } else if (x != nullptr && t.code == x->code + 10) {
      double px, py;
      if (ParseReal(x->value, px) && ParseReal(t.value, py))
        e->extent_points_.push_back({px, py, 0});
      x = nullptr;
    } else {
      x = nullptr;
    }
  });
  return e;
}

const EntityCodec* const kCodecs[] = {
    &kinds::kLineCodec,    &kinds::kLwPolylineCodec, &kinds::kPointCodec,
    &kinds::kTextCodec,    &kinds::kCircleCodec,     &kinds::kArcCodec,
    &kinds::kEllipseCodec, &kinds::kHatchCodec,      &kinds::kInsertCodec,
    &kinds::kAttribCodec,  &kinds::kAttdefCodec,
};

}  // namespace

const EntityCodec* FindEntityCodec(std::string_view type) {
  for (const EntityCodec* c : kCodecs)
    if (c->type == type) return c;
  return nullptr;
}

host::TextAlignment AlignmentFromCodes(int h, int v) {
  using A = host::TextAlignment;
  if (h < 0 || h > 5) h = 0;
  if (v <= 0 || v > 3 || h > 2) {
    static constexpr A kBaseline[] = {A::kLeft,    A::kCenter, A::kRight,
                                      A::kAligned, A::kMiddle, A::kFit};
    return kBaseline[h];
  }
  int base = v == 3 ? 6 : v == 2 ? 9 : 12;
  return static_cast<A>(base + h);
}

void AlignmentToCodes(host::TextAlignment a, int& h, int& v) {
  int code = static_cast<int>(a);
  if (code <= 5) {
    h = code;
    v = 0;
    return;
  }
  h = (code - 6) % 3;
  v = code < 9 ? 3 : code < 12 ? 2 : 1;
}

std::unique_ptr<MemEntity> ReadEntityOfShape(const Shape& s, ReadContext& ctx,
                                             bool& paper_space, bool raw_only) {
  const EntityCodec* codec = raw_only ? nullptr : FindEntityCodec(s.Type());
  std::unique_ptr<MemEntity> e = codec ? codec->read(s, ctx) : ReadOther(s);
  paper_space = false;
  std::string layer = "0";
  if (const Shape::Group* g = s.EntityGroup()) {
    for (size_t i = g->begin; i < g->end; ++i) {
      const Tag& t = s.tags[i];
      switch (t.code) {
        case 8:
          if (!t.value.empty()) layer = ctx.codec.Decode(t.value);
          break;
        case 62:
          e->color_ = static_cast<int>(IntValue(t));
          break;
        case 60:
          e->visible_ = IntValue(t) == 0;
          break;
        case 67:
          paper_space = IntValue(t) == 1;
          break;
        default:
          break;
      }
    }
  }
  e->SetLayerUnchecked(layer);
  return e;
}

FileXData::FileXData(std::shared_ptr<const std::string> file,
                     const TextCodec& codec)
    : file_(std::move(file)), codec_(codec) {}

std::vector<host::XRecord> FileXData::Parse(uint64_t at, uint32_t line) const {
  return ParseXDataText(*file_, at, line, codec_);
}

void FileXData::Apply(const Shape& shape, memhost::MemObject& obj) {
  if (shape.xdata_begin == shape.tags.size()) return;
  std::vector<std::string> apps = CheckXData(shape, codec_);
  // Most objects name the same applications: one list for all of them.
  if (last_apps_ == nullptr || *last_apps_ != apps)
    last_apps_ =
        std::make_shared<const std::vector<std::string>>(std::move(apps));
  const Tag& first = shape.tags[shape.xdata_begin];
  obj.SetPendingXData(shared_from_this(), last_apps_, first.offset, first.line);
}

namespace {

// The codec of a modelled entity, found by its kind.
const EntityCodec* CodecOf(const MemEntity& e) {
  host::EntityKind kind = e.KindOf();
  for (const EntityCodec* c : kCodecs)
    if (c->kind == kind) return c;
  return nullptr;
}

}  // namespace

uint64_t EntityHash(const MemEntity& e) {
  Hasher h;
  h.Add(static_cast<int64_t>(e.KindOf()));
  h.Add(std::string_view(e.LayerName()));
  h.Add(static_cast<int64_t>(e.color_));
  h.Add(e.visible_);
  if (const EntityCodec* codec = CodecOf(e)) codec->hash(e, h);
  return h.Value();
}

void EntityPlan(MemEntity& e, const WriteContext& ctx, WritePlan& plan) {
  FieldGroup& common = plan.groups.emplace_back("AcDbEntity");
  common.IntOr(67, ctx.paper_space ? 1 : 0, 0);
  common.Text(8, e.LayerName());
  common.IntOr(62, e.color_, host::color::kByLayer);
  common.IntOr(60, e.visible_ ? 0 : 1, 0);
  if (const EntityCodec* codec = CodecOf(e)) codec->fields(e, ctx, plan);
  PlanXData(e, plan);
}

}  // namespace kestrana::dxf
