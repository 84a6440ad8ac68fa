#include "dxf/kinds.h"

#include <algorithm>
#include <cmath>

namespace kestrana::dxf {

using host::Point3;
using memhost::MemEntity;

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180.0;

using Markers = std::initializer_list<std::string_view>;

// Calls `f(marker, tag)` for every tag of the subclass groups `markers`,
// the groups the kind writes: data in groups of other names (embedded
// objects, subclasses of other programs) stays as read. A file without
// subclass markers gives its whole body; empty `markers` every group but
// AcDbEntity.
template <class F>
void ForBody(const Shape& s, Markers markers, F&& f) {
  for (const Shape::Group& g : s.groups) {
    if (s.has_markers) {
      if (g.marker == "AcDbEntity") continue;
      if (markers.size() > 0 &&
          std::find(markers.begin(), markers.end(), g.marker) == markers.end())
        continue;
    }
    for (size_t i = g.begin; i < g.end; ++i) f(g.marker, s.tags[i]);
  }
}

void SetCoord(Point3& p, const Tag& t, int base) {
  double v = RealValue(t);
  switch ((t.code - base) / 10) {
    case 0:
      p.x = v;
      break;
    case 1:
      p.y = v;
      break;
    default:
      p.z = v;
      break;
  }
}

bool IsCoord(int code, int base) {
  return code == base || code == base + 10 || code == base + 20;
}

// Entities whose plane faces down (what mirroring in CAD programs makes)
// hold their values in a plane whose X and Z axes are the world's turned
// over. memhost keeps world values, so reading and writing both turn X and
// Z over and angles from a to π - a (each map is its own inverse).
// Tilted planes are kept as the file has them.
constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;

bool FacesDown(const Point3& normal) {
  return memhost::FacingOf(normal) == memhost::Facing::kDown;
}
Point3 Flip(const Point3& p) { return {-p.x, p.y, -p.z}; }
double FlipAngle(double a) { return kPi - a; }
// The normal written: left out where the file has none and it is the
// default.
void NormalField(FieldGroup& g, const Point3& normal) {
  g.PointOr(210, normal, normal == Point3{0, 0, 1});
}

// The value of the first tag with `code` in the original's group `marker`.
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

// ---------------------------------------------------------------- LINE

std::unique_ptr<MemEntity> ReadLine(const Shape& s, ReadContext&) {
  auto e = std::make_unique<memhost::MemLine>();
  ForBody(s, {"AcDbLine"}, [&](std::string_view, const Tag& t) {
    if (IsCoord(t.code, 10))
      SetCoord(e->start_, t, 10);
    else if (IsCoord(t.code, 11))
      SetCoord(e->end_, t, 11);
  });
  return e;
}
void LineFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<memhost::MemLine&>(me);
  FieldGroup& g = plan.groups.emplace_back("AcDbLine");
  g.Point(10, e.start_);
  g.Point(11, e.end_);
}
void LineHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemLine&>(me);
  h.Add(e.start_);
  h.Add(e.end_);
}

// --------------------------------------------------------------- POINT

std::unique_ptr<MemEntity> ReadPoint(const Shape& s, ReadContext&) {
  auto e = std::make_unique<memhost::MemPoint>();
  ForBody(s, {"AcDbPoint"}, [&](std::string_view, const Tag& t) {
    if (IsCoord(t.code, 10)) SetCoord(e->position_, t, 10);
  });
  return e;
}
void PointFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<memhost::MemPoint&>(me);
  plan.groups.emplace_back("AcDbPoint").Point(10, e.position_);
}
void PointHash(const MemEntity& me, Hasher& h) {
  h.Add(static_cast<const memhost::MemPoint&>(me).position_);
}

// --------------------------------------------------------- CIRCLE, ARC

// The AcDbCircle part shared by the two kinds.
template <class T>
void ReadCirclePart(const Shape& s, T& e) {
  ForBody(s, {"AcDbCircle"}, [&](std::string_view, const Tag& t) {
    if (IsCoord(t.code, 10))
      SetCoord(e.center_, t, 10);
    else if (t.code == 40)
      e.radius_ = RealValue(t);
    else if (IsCoord(t.code, 210))
      SetCoord(e.normal_, t, 210);
  });
  if (FacesDown(e.normal_)) e.center_ = Flip(e.center_);
}
template <class T>
void CirclePartFields(const T& e, FieldGroup& g) {
  g.Point(10, FacesDown(e.normal_) ? Flip(e.center_) : e.center_);
  g.Real(40, e.radius_);
  NormalField(g, e.normal_);
}

std::unique_ptr<MemEntity> ReadCircle(const Shape& s, ReadContext&) {
  auto e = std::make_unique<memhost::MemCircle>();
  ReadCirclePart(s, *e);
  return e;
}
void CircleFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<memhost::MemCircle&>(me);
  CirclePartFields(e, plan.groups.emplace_back("AcDbCircle"));
}
void CircleHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemCircle&>(me);
  h.Add(e.center_);
  h.Add(e.radius_);
  h.Add(e.normal_);
}

std::unique_ptr<MemEntity> ReadArc(const Shape& s, ReadContext&) {
  auto e = std::make_unique<memhost::MemArc>();
  ReadCirclePart(s, *e);
  ForBody(s, {"AcDbArc"}, [&](std::string_view, const Tag& t) {
    if (t.code == 50)
      e->start_angle_ = RealValue(t) * kDegree;
    else if (t.code == 51)
      e->end_angle_ = RealValue(t) * kDegree;
  });
  if (FacesDown(e->normal_)) {
    // Counter-clockwise in the plane is clockwise from above: the ends
    // change places.
    double start = FlipAngle(e->end_angle_);
    e->end_angle_ = FlipAngle(e->start_angle_);
    e->start_angle_ = start;
  }
  return e;
}
void ArcFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<memhost::MemArc&>(me);
  CirclePartFields(e, plan.groups.emplace_back("AcDbCircle"));
  bool down = FacesDown(e.normal_);
  FieldGroup& g = plan.groups.emplace_back("AcDbArc");
  g.Degrees(50, down ? FlipAngle(e.end_angle_) : e.start_angle_, false);
  g.Degrees(51, down ? FlipAngle(e.start_angle_) : e.end_angle_, false);
}
void ArcHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemArc&>(me);
  h.Add(e.center_);
  h.Add(e.radius_);
  h.Add(e.start_angle_);
  h.Add(e.end_angle_);
  h.Add(e.normal_);
}

// ------------------------------------------------------------- ELLIPSE

std::unique_ptr<MemEntity> ReadEllipse(const Shape& s, ReadContext&) {
  auto e = std::make_unique<memhost::MemEllipse>();
  ForBody(s, {"AcDbEllipse"}, [&](std::string_view, const Tag& t) {
    if (IsCoord(t.code, 10))
      SetCoord(e->center_, t, 10);
    else if (IsCoord(t.code, 11))
      SetCoord(e->major_axis_, t, 11);
    else if (t.code == 40)
      e->ratio_ = RealValue(t);
    else if (t.code == 41)
      e->start_param_ = RealValue(t);
    else if (t.code == 42)
      e->end_param_ = RealValue(t);
    else if (IsCoord(t.code, 210))
      SetCoord(e->normal_, t, 210);
  });
  // Centre and axis are world values; facing down, the parameter runs
  // clockwise from above.
  if (FacesDown(e->normal_)) {
    double start = kTwoPi - e->end_param_;
    e->end_param_ = kTwoPi - e->start_param_;
    e->start_param_ = start;
  }
  return e;
}
void EllipseFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<memhost::MemEllipse&>(me);
  FieldGroup& g = plan.groups.emplace_back("AcDbEllipse");
  bool down = FacesDown(e.normal_);
  g.Point(10, e.center_);
  g.Point(11, e.major_axis_);
  NormalField(g, e.normal_);
  g.Real(40, e.ratio_);
  g.RealNear(41, down ? kTwoPi - e.end_param_ : e.start_param_);
  g.RealNear(42, down ? kTwoPi - e.start_param_ : e.end_param_);
}
void EllipseHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemEllipse&>(me);
  h.Add(e.center_);
  h.Add(e.major_axis_);
  h.Add(e.ratio_);
  h.Add(e.start_param_);
  h.Add(e.end_param_);
  h.Add(e.normal_);
}

// ---------------------------------------------------------- LWPOLYLINE

std::unique_ptr<MemEntity> ReadLwPolyline(const Shape& s, ReadContext&) {
  auto e = std::make_unique<memhost::MemLwPolyline>();
  size_t declared = 0;
  std::vector<bool> has_width;
  ForBody(s, {"AcDbPolyline"}, [&](std::string_view, const Tag& t) {
    switch (t.code) {
      case 90: {
        int64_t n = IntValue(t);
        // Each vertex takes two tags at least: no more room than that.
        declared =
            n > 0 ? std::min(static_cast<size_t>(n), s.tags.size() / 2) : 0;
        e->xy_.reserve(declared * 2);
        e->bulges_.reserve(declared);
        e->widths_.reserve(declared);
        break;
      }
      case 70:
        e->closed_ = (IntValue(t) & 1) != 0;
        break;
      case 43:
        e->constant_width_ = RealValue(t);
        break;
      case 38:
        e->elevation_ = RealValue(t);
        break;
      case 10:
        e->xy_.push_back(RealValue(t));
        e->xy_.push_back(0);
        e->bulges_.push_back(0);
        e->widths_.push_back({-1, -1});
        break;
      case 20:
        if (!e->xy_.empty()) e->xy_.back() = RealValue(t);
        break;
      case 40:
        if (!e->widths_.empty()) e->widths_.back().first = RealValue(t);
        break;
      case 41:
        if (!e->widths_.empty()) e->widths_.back().second = RealValue(t);
        break;
      case 42:
        if (!e->bulges_.empty()) e->bulges_.back() = RealValue(t);
        break;
      case 210:
      case 220:
      case 230:
        SetCoord(e->normal_, t, 210);
        break;
      default:
        break;
    }
  });
  // Vertices without their own widths take the constant width.
  for (auto& w : e->widths_) {
    if (w.first < 0) w.first = e->constant_width_;
    if (w.second < 0) w.second = e->constant_width_;
  }
  return e;
}
void LwPolylineFields(MemEntity& me, const WriteContext& ctx, WritePlan& plan) {
  auto& e = static_cast<memhost::MemLwPolyline&>(me);
  FieldGroup& g = plan.groups.emplace_back("AcDbPolyline");
  size_t n = e.xy_.size() / 2;
  g.Int(90, static_cast<int64_t>(n));
  int64_t flags = OriginalInt(ctx.original, "AcDbPolyline", 70, 0);
  g.Int(70, (flags & ~int64_t{1}) | (e.closed_ ? 1 : 0));
  g.RealOr(43, e.constant_width_, 0);
  g.RealOr(38, e.elevation_, 0);
  g.Own({40, 41, 42});
  for (size_t i = 0; i < n; ++i) {
    g.Real(10, e.xy_[2 * i]);
    g.Real(20, e.xy_[2 * i + 1]);
    if (i < e.widths_.size()) {
      g.RealOr(40, e.widths_[i].first, e.constant_width_);
      g.RealOr(41, e.widths_[i].second, e.constant_width_);
    }
    if (i < e.bulges_.size()) g.RealOr(42, e.bulges_[i], 0);
  }
  bool up = e.normal_ == Point3{0, 0, 1};
  g.PointOr(210, e.normal_, up);
}
void LwPolylineHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemLwPolyline&>(me);
  h.Add(static_cast<int64_t>(e.xy_.size()));
  h.Bytes(e.xy_.data(), e.xy_.size() * sizeof(double));
  h.Bytes(e.bulges_.data(), e.bulges_.size() * sizeof(double));
  for (const auto& w : e.widths_) {
    h.Add(w.first);
    h.Add(w.second);
  }
  h.Add(e.constant_width_);
  h.Add(e.closed_);
  h.Add(e.elevation_);
  h.Add(e.normal_);
}

// ------------------------------------------------ TEXT, ATTRIB, ATTDEF

// Reads the AcDbText part shared by the three kinds; `vertical_code` is 73
// for TEXT and 74 for attributes.
template <class T>
void ReadTextPart(const Shape& s, ReadContext& ctx, T& e, Markers markers,
                  int vertical_code) {
  int h = 0, v = 0;
  bool has_alignment_point = false;
  ForBody(s, markers, [&](std::string_view, const Tag& t) {
    if (IsCoord(t.code, 10)) {
      SetCoord(e.insertion_, t, 10);
    } else if (IsCoord(t.code, 11)) {
      SetCoord(e.alignment_point_, t, 11);
      has_alignment_point = true;
    } else if (t.code == 40) {
      e.height_ = RealValue(t);
    } else if (t.code == 1) {
      e.text_ = ctx.codec.Decode(t.value);
    } else if (t.code == 50) {
      e.rotation_ = RealValue(t) * kDegree;
    } else if (t.code == 41) {
      e.width_factor_ = RealValue(t);
    } else if (t.code == 51) {
      e.oblique_ = RealValue(t) * kDegree;
    } else if (t.code == 7) {
      e.style_ = ctx.codec.Decode(t.value);
    } else if (t.code == 72) {
      h = static_cast<int>(IntValue(t));
    } else if (t.code == vertical_code) {
      v = static_cast<int>(IntValue(t));
    } else if (IsCoord(t.code, 210)) {
      SetCoord(e.normal_, t, 210);
    }
  });
  e.alignment_ = AlignmentFromCodes(h, v);
  if (!has_alignment_point && e.alignment_ != host::TextAlignment::kLeft)
    e.alignment_point_ = e.insertion_;
  if (FacesDown(e.normal_)) {
    e.insertion_ = Flip(e.insertion_);
    e.alignment_point_ = Flip(e.alignment_point_);
    e.rotation_ = FlipAngle(e.rotation_);
  }
}

template <class T>
void TextPartFields(T& e, FieldGroup& g) {
  int h = 0, v = 0;
  AlignmentToCodes(e.alignment_, h, v);
  bool at_insertion = e.alignment_ == host::TextAlignment::kLeft ||
                      e.alignment_ == host::TextAlignment::kAligned ||
                      e.alignment_ == host::TextAlignment::kFit;
  bool down = FacesDown(e.normal_);
  auto plane = [down](const Point3& p) { return down ? Flip(p) : p; };
  g.Point(10, plane(at_insertion ? e.insertion_ : e.BaselineStart()));
  g.Real(40, e.height_);
  g.Text(1, e.text_);
  g.Degrees(50, down ? FlipAngle(e.rotation_) : e.rotation_, true);
  g.RealOr(41, e.width_factor_, 1);
  g.Degrees(51, e.oblique_, true);
  g.TextOr(7, e.style_, "Standard");
  g.IntOr(72, h, 0);
  // Left-aligned texts have no alignment point unless one was set.
  g.PointOr(11, plane(e.alignment_point_),
            e.alignment_ == host::TextAlignment::kLeft &&
                e.alignment_point_ == Point3{});
  NormalField(g, e.normal_);
}

template <class T>
void TextPartHash(const T& e, Hasher& h) {
  h.Add(e.insertion_);
  h.Add(e.alignment_point_);
  h.Add(e.height_);
  h.Add(std::string_view(e.text_));
  h.Add(e.rotation_);
  h.Add(e.width_factor_);
  h.Add(e.oblique_);
  h.Add(std::string_view(e.style_));
  h.Add(static_cast<int64_t>(e.alignment_));
  h.Add(e.normal_);
}

int VerticalCode(host::TextAlignment a) {
  int h = 0, v = 0;
  AlignmentToCodes(a, h, v);
  return v;
}

std::unique_ptr<MemEntity> ReadText(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemText>();
  ReadTextPart(s, ctx, *e, {"AcDbText"}, 73);
  return e;
}
void TextFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<memhost::MemText&>(me);
  TextPartFields(e, plan.groups.emplace_back("AcDbText"));
  plan.groups.emplace_back("AcDbText").IntOr(73, VerticalCode(e.alignment_), 0);
}
void TextHash(const MemEntity& me, Hasher& h) {
  TextPartHash(static_cast<const memhost::MemText&>(me), h);
}

std::unique_ptr<MemEntity> ReadAttrib(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemAttributeReference>();
  ReadTextPart(s, ctx, *e, {"AcDbText", "AcDbAttribute"}, 74);
  ForBody(s, {"AcDbAttribute"}, [&](std::string_view, const Tag& t) {
    if (t.code == 2)
      e->tag_ = ctx.codec.Decode(t.value);
    else if (t.code == 70)
      e->invisible_ = (IntValue(t) & 1) != 0;
  });
  return e;
}
void AttribFields(MemEntity& me, const WriteContext& ctx, WritePlan& plan) {
  auto& e = static_cast<memhost::MemAttributeReference&>(me);
  TextPartFields(e, plan.groups.emplace_back("AcDbText"));
  FieldGroup& g = plan.groups.emplace_back("AcDbAttribute");
  g.Text(2, e.tag_);
  int64_t flags = OriginalInt(ctx.original, "AcDbAttribute", 70, 0);
  g.Int(70, (flags & ~int64_t{1}) | (e.invisible_ ? 1 : 0));
  g.IntOr(74, VerticalCode(e.alignment_), 0);
}
void AttribHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemAttributeReference&>(me);
  TextPartHash(e, h);
  h.Add(std::string_view(e.tag_));
  h.Add(e.invisible_);
}

std::unique_ptr<MemEntity> ReadAttdef(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemAttributeDefinition>();
  ReadTextPart(s, ctx, *e, {"AcDbText", "AcDbAttributeDefinition"}, 74);
  ForBody(s, {"AcDbAttributeDefinition"}, [&](std::string_view, const Tag& t) {
    if (t.code == 2)
      e->tag_ = ctx.codec.Decode(t.value);
    else if (t.code == 3)
      e->prompt_ = ctx.codec.Decode(t.value);
    else if (t.code == 70)
      e->mode_ = static_cast<int>(IntValue(t) & 15);
  });
  return e;
}
void AttdefFields(MemEntity& me, const WriteContext& ctx, WritePlan& plan) {
  auto& e = static_cast<memhost::MemAttributeDefinition&>(me);
  TextPartFields(e, plan.groups.emplace_back("AcDbText"));
  FieldGroup& g = plan.groups.emplace_back("AcDbAttributeDefinition");
  g.Text(3, e.prompt_);
  g.Text(2, e.tag_);
  int64_t flags = OriginalInt(ctx.original, "AcDbAttributeDefinition", 70, 0);
  g.Int(70, (flags & ~int64_t{15}) | e.mode_);
  g.IntOr(74, VerticalCode(e.alignment_), 0);
}
void AttdefHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemAttributeDefinition&>(me);
  TextPartHash(e, h);
  h.Add(std::string_view(e.tag_));
  h.Add(std::string_view(e.prompt_));
  h.Add(static_cast<int64_t>(e.mode_));
}

// -------------------------------------------------------------- INSERT

std::unique_ptr<MemEntity> ReadInsert(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemBlockReference>();
  ForBody(s, {"AcDbBlockReference"}, [&](std::string_view, const Tag& t) {
    if (t.code == 2)
      e->block_name_ = ctx.codec.Decode(t.value);
    else if (IsCoord(t.code, 10))
      SetCoord(e->insertion_, t, 10);
    else if (t.code == 41)
      e->sx_ = RealValue(t);
    else if (t.code == 42)
      e->sy_ = RealValue(t);
    else if (t.code == 43)
      e->sz_ = RealValue(t);
    else if (t.code == 50)
      e->rotation_ = RealValue(t) * kDegree;
    else if (IsCoord(t.code, 210))
      SetCoord(e->normal_, t, 210);
  });
  if (e->block_name_.empty())
    throw DxfError(s.Line(), "the INSERT has no block name (group code 2)");
  if (FacesDown(e->normal_)) {
    // Seen from above: the insert mirrored in X.
    e->insertion_ = Flip(e->insertion_);
    e->rotation_ = -e->rotation_;
    e->sx_ = -e->sx_;
    e->sz_ = -e->sz_;
  }
  return e;
}
void InsertFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<memhost::MemBlockReference&>(me);
  FieldGroup& g = plan.groups.emplace_back("AcDbBlockReference");
  bool attributes = false;
  for (auto* a : e.Attributes()) attributes = attributes || !a->IsErased();
  bool down = FacesDown(e.normal_);
  double flip = down ? -1 : 1;
  g.IntOr(66, attributes ? 1 : 0, 0);
  g.Text(2, e.block_name_);
  g.Point(10, down ? Flip(e.insertion_) : e.insertion_);
  g.RealOr(41, flip * e.sx_, 1);
  g.RealOr(42, e.sy_, 1);
  g.RealOr(43, flip * e.sz_, 1);
  g.Degrees(50, flip * e.rotation_, true);
  NormalField(g, e.normal_);
}
void InsertHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemBlockReference&>(me);
  h.Add(std::string_view(e.block_name_));
  h.Add(e.insertion_);
  h.Add(e.sx_);
  h.Add(e.sy_);
  h.Add(e.sz_);
  h.Add(e.rotation_);
  h.Add(e.normal_);
  for (auto* a : e.Attributes())
    if (!a->IsErased()) h.Add(static_cast<int64_t>(a->HandleValue()));
}

// --------------------------------------------------------------- HATCH

// Where the parts of a HATCH's AcDbHatch group lie, and what they say.
struct HatchData {
  size_t loops_begin = 0, loops_end = 0;  // the "91" tag up to the last loop
  std::vector<host::HatchLoop> loops;
  std::vector<std::vector<uint64_t>> sources;
};

// Walks the group: counted structures are read by their counts.
class HatchParser {
 public:
  HatchParser(const Shape& s, const Shape::Group& g)
      : s_(s), i_(g.begin), end_(g.end) {}

  HatchData Parse() {
    HatchData d;
    while (i_ < end_ && Code() != 91) ++i_;
    d.loops_begin = i_;
    if (i_ == end_) {
      d.loops_end = i_;
      return d;
    }
    int64_t n = Int();
    for (int64_t k = 0; k < n && i_ < end_; ++k) {
      host::HatchLoop loop;
      std::vector<uint64_t> sources;
      if (Code() != 92) Fail("92 (boundary path type)");
      loop.flags = static_cast<int>(Int());
      loop.is_polyline = (loop.flags & 2) != 0;
      if (loop.is_polyline)
        ReadPolyline(loop);
      else
        ReadEdges(loop);
      if (i_ < end_ && Code() == 97) {
        int64_t m = Int();
        for (int64_t q = 0; q < m && i_ < end_ && Code() == 330; ++q)
          sources.push_back(HandleValue(s_.tags[i_++]));
      }
      d.loops.push_back(std::move(loop));
      d.sources.push_back(std::move(sources));
    }
    d.loops_end = i_;
    return d;
  }

 private:
  int Code() const { return s_.tags[i_].code; }
  int64_t Int() { return IntValue(s_.tags[i_++]); }
  double Real() { return RealValue(s_.tags[i_++]); }
  [[noreturn]] void Fail(const char* expected) const {
    const Tag& t = i_ < end_ ? s_.tags[i_] : s_.tags[end_ - 1];
    throw DxfError(t.line,
                   std::string("in the HATCH boundary, expected group code ") +
                       expected + ", found " + std::to_string(t.code));
  }
  double Expect(int code, const char* what) {
    if (i_ >= end_ || Code() != code) Fail(what);
    return Real();
  }
  Point3 XY(int code) {
    Point3 p;
    p.x = Expect(code, code == 10 ? "10 (X)" : "11 (X)");
    p.y = Expect(code + 10, code == 10 ? "20 (Y)" : "21 (Y)");
    return p;
  }

  void ReadPolyline(host::HatchLoop& loop) {
    bool bulged = false;
    if (i_ < end_ && Code() == 72) bulged = Int() != 0;
    if (i_ < end_ && Code() == 73) loop.closed = Int() != 0;
    if (i_ >= end_ || Code() != 93) Fail("93 (vertex count)");
    int64_t n = Int();
    for (int64_t v = 0; v < n; ++v) {
      Point3 p = XY(10);
      loop.vertices.push_back(p.x);
      loop.vertices.push_back(p.y);
      loop.bulges.push_back(bulged && i_ < end_ && Code() == 42 ? Real() : 0.0);
    }
  }

  void ReadEdges(host::HatchLoop& loop) {
    if (i_ >= end_ || Code() != 93) Fail("93 (edge count)");
    int64_t n = Int();
    for (int64_t k = 0; k < n; ++k) {
      if (i_ >= end_ || Code() != 72) Fail("72 (edge type)");
      host::HatchEdge edge;
      int64_t type = Int();
      switch (type) {
        case 1:
          edge.type = host::HatchEdge::Type::kLine;
          edge.start = XY(10);
          edge.end = XY(11);
          break;
        case 2:
        case 3: {
          edge.type = type == 2 ? host::HatchEdge::Type::kArc
                                : host::HatchEdge::Type::kEllipseArc;
          edge.center = XY(10);
          if (type == 3) edge.major_axis = XY(11);
          double r = Expect(40, "40 (radius or ratio)");
          if (type == 2)
            edge.radius = r;
          else
            edge.ratio = r;
          double a0 = Expect(50, "50 (start angle)") * kDegree;
          double a1 = Expect(51, "51 (end angle)") * kDegree;
          edge.counter_clockwise = !(i_ < end_ && Code() == 73) || Int() != 0;
          // Clockwise arcs are stored mirrored.
          edge.start_angle = edge.counter_clockwise ? a0 : -a0;
          edge.end_angle = edge.counter_clockwise ? a1 : -a1;
          break;
        }
        case 4:
          edge.type = host::HatchEdge::Type::kSpline;
          ReadSpline(edge);
          break;
        default:
          throw DxfError(
              s_.tags[i_ - 1].line + 1,
              "a HATCH edge type is 1 to 4, not " + std::to_string(type));
      }
      loop.edges.push_back(std::move(edge));
    }
  }

  void ReadSpline(host::HatchEdge& edge) {
    bool rational = false;
    if (i_ < end_ && Code() == 94) ++i_;
    if (i_ < end_ && Code() == 73) rational = Int() != 0;
    if (i_ < end_ && Code() == 74) ++i_;
    if (i_ >= end_ || Code() != 95) Fail("95 (knot count)");
    int64_t knots = Int();
    if (i_ >= end_ || Code() != 96) Fail("96 (control point count)");
    int64_t controls = Int();
    for (int64_t k = 0; k < knots; ++k) Expect(40, "40 (knot)");
    for (int64_t k = 0; k < controls; ++k) {
      edge.control_points.push_back(XY(10));
      if (rational && i_ < end_ && Code() == 42) ++i_;
    }
    // Fit data: "97 count" followed by fit points, or by the tangents.
    if (i_ + 1 < end_ && Code() == 97) {
      int next = s_.tags[i_ + 1].code;
      int64_t fits = 0;
      ParseInt(s_.tags[i_].value, fits);
      if ((fits > 0 && next == 11) || next == 12 || next == 72) {
        ++i_;
        for (int64_t k = 0; k < fits; ++k) XY(11);
        if (i_ < end_ && Code() == 12) XY(12);
        if (i_ < end_ && Code() == 13) XY(13);
      }
    }
  }

  const Shape& s_;
  size_t i_, end_;
};

bool SameLoops(const std::vector<host::HatchLoop>& a,
               const std::vector<host::HatchLoop>& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const auto& x = a[i];
    const auto& y = b[i];
    if (x.flags != y.flags || x.is_polyline != y.is_polyline ||
        x.vertices != y.vertices || x.bulges != y.bulges ||
        x.closed != y.closed || x.sources != y.sources ||
        x.edges.size() != y.edges.size())
      return false;
    // Angles come back from a plane facing down within rounding.
    auto same_angle = [](double a, double b) {
      return std::fabs(a - b) <= 1e-12 * std::max(1.0, std::fabs(a));
    };
    for (size_t k = 0; k < x.edges.size(); ++k) {
      const auto& p = x.edges[k];
      const auto& q = y.edges[k];
      if (p.type != q.type || !(p.start == q.start) || !(p.end == q.end) ||
          !(p.center == q.center) || p.radius != q.radius ||
          !(p.major_axis == q.major_axis) || p.ratio != q.ratio ||
          !same_angle(p.start_angle, q.start_angle) ||
          !same_angle(p.end_angle, q.end_angle) ||
          p.counter_clockwise != q.counter_clockwise ||
          p.control_points != q.control_points)
        return false;
    }
  }
  return true;
}

// Boundaries between world values and those of a plane facing down.
void FlipLoops(std::vector<host::HatchLoop>& loops) {
  for (auto& loop : loops) {
    for (size_t i = 0; i < loop.vertices.size(); i += 2)
      loop.vertices[i] = -loop.vertices[i];
    for (double& b : loop.bulges) b = -b;
    for (auto& edge : loop.edges) {
      edge.start.x = -edge.start.x;
      edge.end.x = -edge.end.x;
      edge.center.x = -edge.center.x;
      edge.major_axis.x = -edge.major_axis.x;
      for (auto& p : edge.control_points) p.x = -p.x;
      // Arcs and elliptic arcs turn the other way round.
      edge.counter_clockwise = !edge.counter_clockwise;
      if (edge.type == host::HatchEdge::Type::kArc) {
        edge.start_angle = FlipAngle(edge.start_angle);
        edge.end_angle = FlipAngle(edge.end_angle);
      } else if (edge.type == host::HatchEdge::Type::kEllipseArc) {
        edge.start_angle = -edge.start_angle;
        edge.end_angle = -edge.end_angle;
      }
    }
  }
}

// The boundary as the file holds it: in the hatch's plane.
std::vector<host::HatchLoop> PlaneLoops(const memhost::MemHatch& e) {
  std::vector<host::HatchLoop> loops = e.loops_;
  if (FacesDown(e.normal_)) FlipLoops(loops);
  return loops;
}

void WriteLoops(const std::vector<host::HatchLoop>& loops,
                memhost::MemDocument& doc, TagWriter& w) {
  w.Int(91, static_cast<int64_t>(loops.size()));
  for (const auto& loop : loops) {
    w.Int(92, loop.flags | (loop.is_polyline ? 2 : 0));
    if (loop.is_polyline) {
      bool bulged = false;
      for (double b : loop.bulges) bulged = bulged || b != 0;
      w.Int(72, bulged ? 1 : 0);
      w.Int(73, loop.closed ? 1 : 0);
      size_t n = loop.vertices.size() / 2;
      w.Int(93, static_cast<int64_t>(n));
      for (size_t v = 0; v < n; ++v) {
        w.Real(10, loop.vertices[2 * v]);
        w.Real(20, loop.vertices[2 * v + 1]);
        if (bulged) w.Real(42, v < loop.bulges.size() ? loop.bulges[v] : 0.0);
      }
    } else {
      w.Int(93, static_cast<int64_t>(loop.edges.size()));
      for (const auto& edge : loop.edges) {
        w.Int(72, static_cast<int>(edge.type));
        switch (edge.type) {
          case host::HatchEdge::Type::kLine:
            w.Real(10, edge.start.x);
            w.Real(20, edge.start.y);
            w.Real(11, edge.end.x);
            w.Real(21, edge.end.y);
            break;
          case host::HatchEdge::Type::kArc:
          case host::HatchEdge::Type::kEllipseArc: {
            w.Real(10, edge.center.x);
            w.Real(20, edge.center.y);
            bool arc = edge.type == host::HatchEdge::Type::kArc;
            if (!arc) {
              w.Real(11, edge.major_axis.x);
              w.Real(21, edge.major_axis.y);
            }
            w.Real(40, arc ? edge.radius : edge.ratio);
            double sign = edge.counter_clockwise ? 1 : -1;
            w.Real(50, sign * edge.start_angle / kDegree);
            w.Real(51, sign * edge.end_angle / kDegree);
            w.Int(73, edge.counter_clockwise ? 1 : 0);
            break;
          }
          case host::HatchEdge::Type::kSpline: {
            // Only the control points are kept: a clamped uniform B-spline.
            size_t n = edge.control_points.size();
            int degree = n > 3 ? 3 : (n > 1 ? static_cast<int>(n) - 1 : 1);
            w.Int(94, degree);
            w.Int(73, 0);
            w.Int(74, 0);
            size_t knots = n + degree + 1;
            w.Int(95, static_cast<int64_t>(knots));
            w.Int(96, static_cast<int64_t>(n));
            size_t inner = knots - 2 * (degree + 1);
            for (size_t k = 0; k < knots; ++k) {
              double v = k <= static_cast<size_t>(degree) ? 0.0
                         : k >= knots - degree - 1
                             ? 1.0
                             : static_cast<double>(k - degree) / (inner + 1);
              w.Real(40, v);
            }
            for (const auto& p : edge.control_points) {
              w.Real(10, p.x);
              w.Real(20, p.y);
            }
            break;
          }
        }
      }
    }
    std::vector<uint64_t> handles;
    for (host::ObjectId id : loop.sources)
      if (auto* obj = doc.FindById(id)) handles.push_back(obj->HandleValue());
    w.Int(97, static_cast<int64_t>(handles.size()));
    for (uint64_t hnd : handles) w.Handle(330, hnd);
  }
}

std::unique_ptr<MemEntity> ReadHatch(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemHatch>();
  const Shape::Group* g = s.has_markers
                              ? s.Find("AcDbHatch")
                              : (s.groups.empty() ? nullptr : &s.groups[0]);
  if (g == nullptr) return e;
  HatchData d = HatchParser(s, *g).Parse();
  bool seen_point = false, seen_type = false, seen_angle = false,
       seen_scale = false;
  for (size_t i = g->begin; i < g->end; ++i) {
    const Tag& t = s.tags[i];
    if (i >= d.loops_begin && i < d.loops_end) continue;
    bool before = i < d.loops_begin;
    if (before && t.code == 30 && !seen_point) {
      e->elevation_ = RealValue(t);
      seen_point = true;
    } else if (before && IsCoord(t.code, 210)) {
      SetCoord(e->normal_, t, 210);
    } else if (before && t.code == 2) {
      e->pattern_name_ = ctx.codec.Decode(t.value);
    } else if (before && t.code == 71) {
      e->associative_ = IntValue(t) != 0;
    } else if (!before && t.code == 76 && !seen_type) {
      e->pattern_type_ = static_cast<int>(IntValue(t));
      seen_type = true;
    } else if (!before && t.code == 52 && !seen_angle) {
      e->pattern_angle_ = RealValue(t) * kDegree;
      seen_angle = true;
    } else if (!before && t.code == 41 && !seen_scale) {
      e->pattern_scale_ = RealValue(t);
      seen_scale = true;
    }
  }
  e->loops_ = std::move(d.loops);
  // The elevation stays that of the plane.
  if (FacesDown(e->normal_)) {
    FlipLoops(e->loops_);
    e->pattern_angle_ = FlipAngle(e->pattern_angle_);
  }
  for (size_t k = 0; k < d.sources.size(); ++k)
    if (!d.sources[k].empty())
      ctx.pending_sources.push_back({e.get(), k, std::move(d.sources[k])});
  return e;
}

// Fields outside the boundary, each replaced where the original has it.
void WriteHatchGroup(memhost::MemHatch& e, const WriteContext& ctx,
                     const Shape::Group* og, TagWriter& w) {
  const TextCodec& codec = ctx.codec;
  bool solid = e.IsSolidFill();
  double pattern_angle =
      FacesDown(e.normal_) ? FlipAngle(e.pattern_angle_) : e.pattern_angle_;
  if (og == nullptr) {
    w.Point(10, 0, 0, e.elevation_);
    w.Point(210, e.normal_.x, e.normal_.y, e.normal_.z);
    w.Text(2, codec.Encode(e.pattern_name_));
    w.Int(70, solid ? 1 : 0);
    w.Int(71, e.associative_ ? 1 : 0);
    WriteLoops(PlaneLoops(e), ctx.doc, w);
    w.Int(75, 0);
    w.Int(76, e.pattern_type_);
    if (!solid) {
      w.Real(52, pattern_angle / kDegree);
      w.Real(41, e.pattern_scale_);
      w.Int(77, 0);
      w.Int(78, 0);
    }
    w.Int(98, 0);
    return;
  }
  const Shape& s = *ctx.original;
  HatchData d = HatchParser(s, *og).Parse();
  // The original's sources, as IDs, to compare the loops whole.
  for (size_t k = 0; k < d.loops.size(); ++k)
    for (uint64_t hnd : d.sources[k])
      if (auto* obj = ctx.doc.FindByHandle(hnd))
        d.loops[k].sources.push_back(obj->Id());
  std::vector<host::HatchLoop> loops = PlaneLoops(e);
  bool same_loops = SameLoops(d.loops, loops);
  bool seen_point = false, seen_type = false, seen_angle = false,
       seen_scale = false;
  auto keep_or = [&](size_t i, const std::string& text) {
    if (s.tags[i].value == text)
      w.Raw(s.TagBytes(i));
    else
      w.Text(s.tags[i].code, text);
  };
  auto real_or = [&](size_t i, double v) {
    double old;
    if (ParseReal(s.tags[i].value, old) &&
        std::fabs(old - v) <= 1e-12 * std::max(1.0, std::fabs(v)))
      w.Raw(s.TagBytes(i));
    else
      w.Real(s.tags[i].code, v);
  };
  for (size_t i = og->begin; i < og->end; ++i) {
    const Tag& t = s.tags[i];
    if (i == d.loops_begin && d.loops_begin < d.loops_end) {
      if (same_loops) {
        for (size_t k = d.loops_begin; k < d.loops_end; ++k)
          w.Raw(s.TagBytes(k));
      } else {
        WriteLoops(loops, ctx.doc, w);
      }
      i = d.loops_end - 1;
      continue;
    }
    bool before = i < d.loops_begin;
    if (before && t.code == 30 && !seen_point) {
      real_or(i, e.elevation_);
      seen_point = true;
    } else if (before && IsCoord(t.code, 210)) {
      real_or(i, t.code == 210   ? e.normal_.x
                 : t.code == 220 ? e.normal_.y
                                 : e.normal_.z);
    } else if (before && t.code == 2) {
      keep_or(i, codec.Encode(e.pattern_name_));
    } else if (before && t.code == 70) {
      int64_t v;
      keep_or(i, ParseInt(t.value, v) && (v != 0) == solid
                     ? std::string(t.value)
                     : std::to_string(solid ? 1 : 0));
    } else if (before && t.code == 71) {
      int64_t v;
      keep_or(i, ParseInt(t.value, v) && (v != 0) == e.associative_
                     ? std::string(t.value)
                     : std::to_string(e.associative_ ? 1 : 0));
    } else if (!before && t.code == 76 && !seen_type) {
      int64_t v;
      keep_or(i, ParseInt(t.value, v) && v == e.pattern_type_
                     ? std::string(t.value)
                     : std::to_string(e.pattern_type_));
      seen_type = true;
    } else if (!before && t.code == 52 && !seen_angle) {
      real_or(i, pattern_angle / kDegree);
      seen_angle = true;
    } else if (!before && t.code == 41 && !seen_scale) {
      real_or(i, e.pattern_scale_);
      seen_scale = true;
    } else {
      w.Raw(s.TagBytes(i));
    }
  }
  if (d.loops_begin == d.loops_end) WriteLoops(loops, ctx.doc, w);
}

void HatchFields(MemEntity& me, const WriteContext& ctx, WritePlan& plan) {
  auto& e = static_cast<memhost::MemHatch&>(me);
  plan.groups.emplace_back("AcDbHatch");
  plan.custom_marker = "AcDbHatch";
  WriteContext copy = ctx;
  plan.custom = [&e, copy](const Shape::Group* og, TagWriter& w) {
    WriteHatchGroup(e, copy, og, w);
  };
}

void HatchHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemHatch&>(me);
  h.Add(static_cast<int64_t>(e.pattern_type_));
  h.Add(std::string_view(e.pattern_name_));
  h.Add(e.associative_);
  h.Add(e.pattern_angle_);
  h.Add(e.pattern_scale_);
  h.Add(e.elevation_);
  h.Add(e.normal_);
  for (const auto& loop : e.loops_) {
    h.Add(static_cast<int64_t>(loop.flags));
    h.Add(loop.is_polyline);
    h.Add(loop.closed);
    h.Bytes(loop.vertices.data(), loop.vertices.size() * sizeof(double));
    h.Bytes(loop.bulges.data(), loop.bulges.size() * sizeof(double));
    for (const auto& edge : loop.edges) {
      h.Add(static_cast<int64_t>(edge.type));
      h.Add(edge.start);
      h.Add(edge.end);
      h.Add(edge.center);
      h.Add(edge.radius);
      h.Add(edge.major_axis);
      h.Add(edge.ratio);
      h.Add(edge.start_angle);
      h.Add(edge.end_angle);
      h.Add(edge.counter_clockwise);
      for (const auto& p : edge.control_points) h.Add(p);
    }
    for (host::ObjectId id : loop.sources) h.Add(static_cast<int64_t>(id));
  }
}

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

using host::EntityKind;
const EntityCodec kCodecs[] = {
    {"LINE", EntityKind::kLine, ReadLine, LineFields, LineHash},
    {"LWPOLYLINE", EntityKind::kLwPolyline, ReadLwPolyline, LwPolylineFields,
     LwPolylineHash},
    {"POINT", EntityKind::kPoint, ReadPoint, PointFields, PointHash},
    {"TEXT", EntityKind::kText, ReadText, TextFields, TextHash},
    {"CIRCLE", EntityKind::kCircle, ReadCircle, CircleFields, CircleHash},
    {"ARC", EntityKind::kArc, ReadArc, ArcFields, ArcHash},
    {"ELLIPSE", EntityKind::kEllipse, ReadEllipse, EllipseFields, EllipseHash},
    {"HATCH", EntityKind::kHatch, ReadHatch, HatchFields, HatchHash},
    {"INSERT", EntityKind::kBlockReference, ReadInsert, InsertFields,
     InsertHash},
    {"ATTRIB", EntityKind::kAttributeReference, ReadAttrib, AttribFields,
     AttribHash},
    {"ATTDEF", EntityKind::kAttributeDefinition, ReadAttdef, AttdefFields,
     AttdefHash},
};

}  // namespace

const EntityCodec* FindEntityCodec(std::string_view type) {
  for (const EntityCodec& c : kCodecs)
    if (c.type == type) return &c;
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
  for (const EntityCodec& c : kCodecs)
    if (c.kind == kind) return &c;
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
