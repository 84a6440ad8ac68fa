// Lines, points, circles, arcs, ellipses and lightweight polylines.
#include <algorithm>
#include <cmath>

#include "dxf/kind_fields.h"

namespace kestrana::dxf::kinds {

namespace {

// ---------------------------------------------------------------- LINE

const FieldTable<memhost::MemLine> kLineFields = {
    {"AcDbLine",
     {PointF(10, &memhost::MemLine::start_),
      PointF(11, &memhost::MemLine::end_)}},
};

std::unique_ptr<MemEntity> ReadLine(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemLine>();
  ReadFields(kLineFields, s, ctx.codec, *e);
  return e;
}
void LineFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  WriteFields(kLineFields, static_cast<memhost::MemLine&>(me), plan);
}
void LineHash(const MemEntity& me, Hasher& h) {
  HashFields(kLineFields, static_cast<const memhost::MemLine&>(me), h);
}

// --------------------------------------------------------------- POINT

const FieldTable<memhost::MemPoint> kPointFields = {
    {"AcDbPoint", {PointF(10, &memhost::MemPoint::position_)}},
};

std::unique_ptr<MemEntity> ReadPoint(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemPoint>();
  ReadFields(kPointFields, s, ctx.codec, *e);
  return e;
}
void PointFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  WriteFields(kPointFields, static_cast<memhost::MemPoint&>(me), plan);
}
void PointHash(const MemEntity& me, Hasher& h) {
  HashFields(kPointFields, static_cast<const memhost::MemPoint&>(me), h);
}

// --------------------------------------------------------- CIRCLE, ARC

template <class T>
GroupSpec<T> CircleGroup() {
  return {"AcDbCircle",
          {PointF(10, &T::center_), RealF(40, &T::radius_),
           NormalF(&T::normal_)}};
}

const FieldTable<memhost::MemCircle> kCircleFields = {
    CircleGroup<memhost::MemCircle>(),
};

void CircleToPlane(memhost::MemCircle& e) { e.center_ = Flip(e.center_); }

std::unique_ptr<MemEntity> ReadCircle(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemCircle>();
  ReadFields(kCircleFields, s, ctx.codec, *e);
  if (FacesDown(e->normal_)) CircleToPlane(*e);
  return e;
}
void CircleFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  std::optional<memhost::MemCircle> plane;
  WriteFields(kCircleFields,
              InPlane(static_cast<memhost::MemCircle&>(me), plane,
                      CircleToPlane),
              plan);
}
void CircleHash(const MemEntity& me, Hasher& h) {
  HashFields(kCircleFields, static_cast<const memhost::MemCircle&>(me), h);
}

const FieldTable<memhost::MemArc> kArcFields = {
    CircleGroup<memhost::MemArc>(),
    {"AcDbArc",
     {DegreesF(50, &memhost::MemArc::start_angle_),
      DegreesF(51, &memhost::MemArc::end_angle_)}},
};

// Counter-clockwise in a plane facing down is clockwise from above: the
// ends change places.
void ArcToPlane(memhost::MemArc& e) {
  e.center_ = Flip(e.center_);
  double start = FlipAngle(e.end_angle_);
  e.end_angle_ = FlipAngle(e.start_angle_);
  e.start_angle_ = start;
}

std::unique_ptr<MemEntity> ReadArc(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemArc>();
  ReadFields(kArcFields, s, ctx.codec, *e);
  if (FacesDown(e->normal_)) ArcToPlane(*e);
  return e;
}
void ArcFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  std::optional<memhost::MemArc> plane;
  WriteFields(kArcFields,
              InPlane(static_cast<memhost::MemArc&>(me), plane, ArcToPlane),
              plan);
}
void ArcHash(const MemEntity& me, Hasher& h) {
  HashFields(kArcFields, static_cast<const memhost::MemArc&>(me), h);
}

// ------------------------------------------------------------- ELLIPSE

using memhost::MemEllipse;
const FieldTable<MemEllipse> kEllipseFields = {
    {"AcDbEllipse",
     {PointF(10, &MemEllipse::center_), PointF(11, &MemEllipse::major_axis_),
      NormalF(&MemEllipse::normal_), RealF(40, &MemEllipse::ratio_),
      RealNearF(41, &MemEllipse::start_param_),
      RealNearF(42, &MemEllipse::end_param_)}},
};

// Centre and axis are world values; facing down, the parameter runs
// clockwise from above.
void EllipseToPlane(MemEllipse& e) {
  double start = kTwoPi - e.end_param_;
  e.end_param_ = kTwoPi - e.start_param_;
  e.start_param_ = start;
}

std::unique_ptr<MemEntity> ReadEllipse(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<MemEllipse>();
  ReadFields(kEllipseFields, s, ctx.codec, *e);
  if (FacesDown(e->normal_)) EllipseToPlane(*e);
  return e;
}
void EllipseFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  std::optional<MemEllipse> plane;
  WriteFields(kEllipseFields,
              InPlane(static_cast<MemEllipse&>(me), plane, EllipseToPlane),
              plan);
}
void EllipseHash(const MemEntity& me, Hasher& h) {
  HashFields(kEllipseFields, static_cast<const MemEllipse&>(me), h);
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


}  // namespace

using host::EntityKind;
const EntityCodec kLineCodec = {"LINE", EntityKind::kLine, ReadLine,
                                LineFields, LineHash};
const EntityCodec kPointCodec = {"POINT", EntityKind::kPoint, ReadPoint,
                                 PointFields, PointHash};
const EntityCodec kCircleCodec = {"CIRCLE", EntityKind::kCircle, ReadCircle,
                                  CircleFields, CircleHash};
const EntityCodec kArcCodec = {"ARC", EntityKind::kArc, ReadArc, ArcFields,
                               ArcHash};
const EntityCodec kEllipseCodec = {"ELLIPSE", EntityKind::kEllipse,
                                   ReadEllipse, EllipseFields, EllipseHash};
const EntityCodec kLwPolylineCodec = {"LWPOLYLINE", EntityKind::kLwPolyline,
                                      ReadLwPolyline, LwPolylineFields,
                                      LwPolylineHash};

}  // namespace kestrana::dxf::kinds
