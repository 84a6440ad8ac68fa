#include <algorithm>
#include <cmath>

#include "memhost/document.h"
#include "memhost/text_metrics.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;
using host::TextAlignment;

namespace {

constexpr double kTwoPi = 6.283185307179586;

void CheckFinite(double v, const char* what) {
  if (!std::isfinite(v))
    throw HostError(ErrorCode::kBadArgument,
                    std::string(what) + " must be a finite number");
}

void CheckFinite(const Point3& p, const char* what) {
  if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
    throw HostError(ErrorCode::kBadArgument,
                    std::string(what) + " must have finite coordinates");
}

void AddPoint(const Affine& m, const Point3& p, Box2& box) {
  Point3 q = m.Apply(p);
  box.Add(q.x, q.y);
}

// Arcs under an arbitrary transform: sampled densely enough for extents.
void AddConicSamples(const Affine& m, const Point3& center, const Point3& major,
                     const Point3& minor, double start, double sweep,
                     Box2& box) {
  constexpr int kSamples = 64;
  for (int i = 0; i <= kSamples; ++i) {
    double t = start + sweep * i / kSamples;
    Point3 p{center.x + major.x * std::cos(t) + minor.x * std::sin(t),
             center.y + major.y * std::cos(t) + minor.y * std::sin(t),
             center.z};
    AddPoint(m, p, box);
  }
}

void AddArcSamples(const Affine& m, const Point3& center, const Point3& major,
                   double ratio, double start, double sweep, Box2& box) {
  AddConicSamples(m, center, major, {-major.y * ratio, major.x * ratio, 0},
                  start, sweep, box);
}

// Where the values of an entity's plane land on the plan, then under `m`.
Affine PlaneThen(const Point3& normal, double z, const Affine& m) {
  return TiltToPlan(normal, z).Then(m);
}

void AddPiecesExtents(const std::vector<CurvePiece>& pieces, const Affine& m,
                      Box2& box) {
  bool identity =
      m.a == 1 && m.b == 0 && m.c == 0 && m.d == 1 && m.e == 0 && m.f == 0;
  for (const auto& piece : pieces) {
    if (identity) {
      AddPieceExtents(piece, box);
    } else if (piece.is_arc) {
      AddArcSamples(m, piece.center, {piece.radius, 0, 0}, 1.0,
                    piece.start_angle, piece.sweep, box);
    } else {
      AddPoint(m, piece.p0, box);
      AddPoint(m, piece.p1, box);
    }
  }
}

// Each entity's extents routine walks nested blocks; a block that contains
// itself must not recurse forever.
thread_local int g_extent_depth = 0;

}  // namespace

// ------------------------------------------------------------ EntityImpl

template <class Base>
host::Block& EntityImpl<Base>::OwnerBlock() const {
  this->CheckAlive();
  return *this->owner_;
}

template <class Base>
void EntityImpl<Base>::SetLayer(const std::string& layer) {
  this->CheckWritable();
  MemLayer* l = this->doc_->FindLayer(layer);
  if (l == nullptr)
    throw HostError(ErrorCode::kNoSuchKey, "no layer named \"" + layer + "\"");
  this->SetLayerUnchecked(l->name_);
}

template <class Base>
void EntityImpl<Base>::SetTrueColor(int color_index) {
  this->CheckWritable();
  if (color_index < 0 || color_index > 256)
    throw HostError(ErrorCode::kBadArgument,
                    "a colour index runs from 0 to 256, not " +
                        std::to_string(color_index));
  this->color_ = color_index;
}

template <class Base>
void EntityImpl<Base>::Delete() {
  this->CheckWritable();
  if (auto* ref = this->AsBlockReference())
    for (MemAttributeReference* a : ref->Attributes())
      if (!a->IsErased()) {
        a->erased_ = true;
        this->doc_->OnErased(*a);
      }
  this->doc_->OnErased(*this);
  this->erased_ = true;
  if (this->owner_ != nullptr &&
      this->Kind() != EntityKind::kAttributeReference)
    ++this->owner_->erased_count_;
}

template <class Base>
BoundingBox EntityImpl<Base>::GetBoundingBox() const {
  this->CheckAlive();
  Box2 box;
  this->AddExtents(Affine{}, box);
  if (box.empty)
    throw HostError(ErrorCode::kNotSupported,
                    "entity " + std::to_string(this->id_) + " has no extents");
  return BoundingBox{{box.min_x, box.min_y, 0}, {box.max_x, box.max_y, 0}};
}

template <class Base>
std::vector<double> EntityImpl<Base>::IntersectWith(
    const host::Entity& other, host::ExtendOption option) const {
  this->CheckAlive();
  auto* o = dynamic_cast<const MemEntity*>(&other);
  if (o == nullptr)
    throw HostError(ErrorCode::kBadArgument,
                    "cannot intersect with an entity of another drawing");
  if (o->IsErased())
    throw HostError(ErrorCode::kErased,
                    "entity " + std::to_string(o->Id()) + " was erased");
  bool extend_this = option == host::ExtendOption::kThis ||
                     option == host::ExtendOption::kBoth;
  bool extend_other = option == host::ExtendOption::kOther ||
                      option == host::ExtendOption::kBoth;
  std::vector<double> flat;
  for (const Point3& p : IntersectCurves(this->Pieces(), extend_this,
                                         o->Pieces(), extend_other)) {
    flat.push_back(p.x);
    flat.push_back(p.y);
    flat.push_back(p.z);
  }
  return flat;
}

template <class Base>
host::Entity& EntityImpl<Base>::Copy() const {
  this->CheckAlive();
  if (dynamic_cast<const MemAttributeReference*>(this))
    throw HostError(ErrorCode::kNotSupported,
                    "an attribute is copied with its block reference");
  std::unique_ptr<MemEntity> clone = this->CloneState();
  MemEntity& copy = this->owner_->Adopt(std::move(clone), 0);
  if (auto* ref = dynamic_cast<const MemBlockReference*>(this)) {
    auto& new_ref = dynamic_cast<MemBlockReference&>(copy);
    for (MemAttributeReference* a : ref->Attributes()) {
      if (a->IsErased()) continue;
      std::unique_ptr<MemEntity> attr_clone = a->CloneState();
      auto& attr = static_cast<MemAttributeReference&>(
          this->doc_->RegisterObject(std::move(attr_clone), 0));
      attr.owner_ = this->owner_;
      new_ref.AttachAttribute(attr);
      this->doc_->OnLayerChanged(attr, "", attr.layer_);
      attr.ForEachXDataApp(
          [&](const std::string& app) { this->doc_->RegisterApp(app); });
    }
  }
  return copy.AsHostEntity();
}

// --------------------------------------------------------------- kinds

std::vector<double> MemLwPolyline::Coordinates() const {
  CheckAlive();
  return xy_;
}

void MemLwPolyline::SetCoordinates(const std::vector<double>& xy) {
  CheckWritable();
  if (xy.size() < 4 || xy.size() % 2 != 0)
    throw HostError(ErrorCode::kBadArgument,
                    "a polyline needs X, Y pairs for at least two vertices");
  for (double v : xy) CheckFinite(v, "a polyline coordinate");
  size_t n = xy.size() / 2;
  xy_ = xy;
  bulges_.resize(n, 0.0);
  widths_.resize(n, {0.0, 0.0});
}

int MemLwPolyline::NumberOfVertices() const {
  CheckAlive();
  return static_cast<int>(xy_.size() / 2);
}

double MemLwPolyline::Length() const {
  CheckAlive();
  double length = 0;
  for (const auto& piece : Pieces()) length += PieceLength(piece);
  return length;
}

bool MemLwPolyline::Closed() const {
  CheckAlive();
  return closed_;
}

void MemLwPolyline::SetClosed(bool closed) {
  CheckWritable();
  closed_ = closed;
}

void MemLwPolyline::CheckIndex(int index) const {
  if (index < 0 || static_cast<size_t>(index) >= xy_.size() / 2)
    throw HostError(ErrorCode::kBadArgument,
                    "the polyline has no vertex " + std::to_string(index));
}

double MemLwPolyline::GetBulge(int index) const {
  CheckAlive();
  CheckIndex(index);
  return bulges_[index];
}

void MemLwPolyline::SetBulge(int index, double bulge) {
  CheckWritable();
  CheckIndex(index);
  CheckFinite(bulge, "a bulge");
  bulges_[index] = bulge;
}

double MemLwPolyline::ConstantWidth() const {
  CheckAlive();
  return constant_width_;
}

void MemLwPolyline::SetConstantWidth(double width) {
  CheckWritable();
  if (!(width >= 0))
    throw HostError(ErrorCode::kBadArgument, "a width cannot be negative");
  constant_width_ = width;
  for (auto& w : widths_) w = {width, width};
}

std::pair<double, double> MemLwPolyline::GetWidth(int index) const {
  CheckAlive();
  CheckIndex(index);
  return widths_[index];
}

void MemLwPolyline::SetWidth(int index, double start_width, double end_width) {
  CheckWritable();
  CheckIndex(index);
  if (!(start_width >= 0) || !(end_width >= 0))
    throw HostError(ErrorCode::kBadArgument, "a width cannot be negative");
  widths_[index] = {start_width, end_width};
}

double MemLwPolyline::Elevation() const {
  CheckAlive();
  return elevation_;
}

void MemLwPolyline::SetElevation(double elevation) {
  CheckWritable();
  CheckFinite(elevation, "an elevation");
  elevation_ = elevation;
}

void MemLwPolyline::Transform(const Affine& m) {
  for (size_t i = 0; i + 1 < xy_.size(); i += 2) {
    Point3 p = m.Apply({xy_[i], xy_[i + 1], 0});
    xy_[i] = p.x;
    xy_[i + 1] = p.y;
  }
  if (m.Mirrors())
    for (double& b : bulges_) b = -b;
  double s = m.Scale();
  constant_width_ *= s;
  for (auto& w : widths_) w = {w.first * s, w.second * s};
  elevation_ = m.sz * elevation_ + m.tz;
}

void MemLwPolyline::AddExtents(const Affine& m, Box2& box) const {
  if (xy_.size() == 2) AddPoint(m, {xy_[0], xy_[1], 0}, box);
  AddPiecesExtents(Pieces(), m, box);
}

std::vector<CurvePiece> MemLwPolyline::Pieces() const {
  return PolylinePieces(xy_, bulges_, closed_);
}

std::unique_ptr<MemEntity> MemLwPolyline::CloneState() const {
  return std::make_unique<MemLwPolyline>(*this);
}

Point3 MemLine::StartPoint() const {
  CheckAlive();
  return start_;
}
void MemLine::SetStartPoint(const Point3& p) {
  CheckWritable();
  CheckFinite(p, "a start point");
  start_ = p;
}
Point3 MemLine::EndPoint() const {
  CheckAlive();
  return end_;
}
void MemLine::SetEndPoint(const Point3& p) {
  CheckWritable();
  CheckFinite(p, "an end point");
  end_ = p;
}
double MemLine::Length() const {
  CheckAlive();
  return std::sqrt((end_.x - start_.x) * (end_.x - start_.x) +
                   (end_.y - start_.y) * (end_.y - start_.y) +
                   (end_.z - start_.z) * (end_.z - start_.z));
}
void MemLine::Transform(const Affine& m) {
  start_ = m.Apply(start_);
  end_ = m.Apply(end_);
}
void MemLine::AddExtents(const Affine& m, Box2& box) const {
  AddPoint(m, start_, box);
  AddPoint(m, end_, box);
}
std::vector<CurvePiece> MemLine::Pieces() const {
  CurvePiece piece;
  piece.p0 = start_;
  piece.p1 = end_;
  return {piece};
}
std::unique_ptr<MemEntity> MemLine::CloneState() const {
  return std::make_unique<MemLine>(*this);
}

Point3 MemPoint::Coordinates() const {
  CheckAlive();
  return position_;
}
void MemPoint::SetCoordinates(const Point3& p) {
  CheckWritable();
  CheckFinite(p, "a point");
  position_ = p;
}
void MemPoint::Transform(const Affine& m) { position_ = m.Apply(position_); }
void MemPoint::AddExtents(const Affine& m, Box2& box) const {
  AddPoint(m, position_, box);
}
std::unique_ptr<MemEntity> MemPoint::CloneState() const {
  return std::make_unique<MemPoint>(*this);
}

Point3 MemCircle::Center() const {
  CheckAlive();
  return center_;
}
void MemCircle::SetCenter(const Point3& p) {
  CheckWritable();
  CheckFinite(p, "a centre");
  center_ = p;
}
double MemCircle::Radius() const {
  CheckAlive();
  return radius_;
}
void MemCircle::SetRadius(double r) {
  CheckWritable();
  if (!(r > 0) || !std::isfinite(r))
    throw HostError(ErrorCode::kBadArgument, "a radius must be positive");
  radius_ = r;
}
void MemCircle::Transform(const Affine& m) {
  CheckFlat(normal_);
  center_ = m.Apply(center_);
  radius_ *= m.Scale();
}
void MemCircle::AddExtents(const Affine& outer, Box2& box) const {
  Affine m = PlaneThen(normal_, center_.z, outer);
  AddArcSamples(m, center_, {radius_, 0, 0}, 1.0, 0, kTwoPi, box);
  if (std::fabs(m.ScaleX() - m.ScaleY()) < 1e-12 &&
      std::fabs(m.a * m.b + m.c * m.d) < 1e-12) {
    // A similarity keeps the circle a circle: the exact box.
    Point3 c = m.Apply(center_);
    double r = radius_ * m.ScaleX();
    box.Add(c.x - r, c.y - r);
    box.Add(c.x + r, c.y + r);
  }
}
std::vector<CurvePiece> MemCircle::Pieces() const {
  CheckFlat(normal_);
  return {FullCircle(center_, radius_)};
}
std::unique_ptr<MemEntity> MemCircle::CloneState() const {
  return std::make_unique<MemCircle>(*this);
}

Point3 MemArc::Center() const {
  CheckAlive();
  return center_;
}
void MemArc::SetCenter(const Point3& p) {
  CheckWritable();
  CheckFinite(p, "a centre");
  center_ = p;
}
double MemArc::Radius() const {
  CheckAlive();
  return radius_;
}
void MemArc::SetRadius(double r) {
  CheckWritable();
  if (!(r > 0) || !std::isfinite(r))
    throw HostError(ErrorCode::kBadArgument, "a radius must be positive");
  radius_ = r;
}
double MemArc::StartAngle() const {
  CheckAlive();
  return start_angle_;
}
void MemArc::SetStartAngle(double angle) {
  CheckWritable();
  CheckFinite(angle, "an angle");
  start_angle_ = angle;
}
double MemArc::EndAngle() const {
  CheckAlive();
  return end_angle_;
}
void MemArc::SetEndAngle(double angle) {
  CheckWritable();
  CheckFinite(angle, "an angle");
  end_angle_ = angle;
}
Point3 MemArc::StartPoint() const {
  CheckAlive();
  return {center_.x + radius_ * std::cos(start_angle_),
          center_.y + radius_ * std::sin(start_angle_), center_.z};
}
Point3 MemArc::EndPoint() const {
  CheckAlive();
  return {center_.x + radius_ * std::cos(end_angle_),
          center_.y + radius_ * std::sin(end_angle_), center_.z};
}
double MemArc::Length() const {
  CheckAlive();
  return radius_ * ArcSweep(start_angle_, end_angle_);
}
void MemArc::Transform(const Affine& m) {
  CheckFlat(normal_);
  // Turned by the transform's angle; a mirror also swaps the ends, so
  // that the arc still runs counter-clockwise. The sweep stays as it is.
  double turn = m.RotationAngle();
  center_ = m.Apply(center_);
  radius_ *= m.Scale();
  if (m.Mirrors()) {
    double start = turn - end_angle_;
    end_angle_ = turn - start_angle_;
    start_angle_ = start;
  } else {
    start_angle_ += turn;
    end_angle_ += turn;
  }
}
void MemArc::AddExtents(const Affine& m, Box2& box) const {
  CurvePiece piece = ArcPiece(center_, radius_, start_angle_,
                              ArcSweep(start_angle_, end_angle_));
  AddPiecesExtents({piece}, PlaneThen(normal_, center_.z, m), box);
}
std::vector<CurvePiece> MemArc::Pieces() const {
  CheckFlat(normal_);
  return {ArcPiece(center_, radius_, start_angle_,
                   ArcSweep(start_angle_, end_angle_))};
}
std::unique_ptr<MemEntity> MemArc::CloneState() const {
  return std::make_unique<MemArc>(*this);
}

Point3 MemEllipse::Center() const {
  CheckAlive();
  return center_;
}
void MemEllipse::SetCenter(const Point3& p) {
  CheckWritable();
  CheckFinite(p, "a centre");
  center_ = p;
}
Point3 MemEllipse::MajorAxis() const {
  CheckAlive();
  return major_axis_;
}
void MemEllipse::SetMajorAxis(const Point3& v) {
  CheckWritable();
  CheckFinite(v, "a major axis");
  if (v.x == 0 && v.y == 0)
    throw HostError(ErrorCode::kBadArgument, "a major axis cannot be zero");
  major_axis_ = v;
}
double MemEllipse::RadiusRatio() const {
  CheckAlive();
  return ratio_;
}
void MemEllipse::SetRadiusRatio(double ratio) {
  CheckWritable();
  if (!(ratio > 0 && ratio <= 1))
    throw HostError(ErrorCode::kBadArgument,
                    "a radius ratio lies between 0 (excluded) and 1");
  ratio_ = ratio;
}
double MemEllipse::StartParameter() const {
  CheckAlive();
  return start_param_;
}
double MemEllipse::EndParameter() const {
  CheckAlive();
  return end_param_;
}
void MemEllipse::SetParameters(double start, double end) {
  CheckWritable();
  CheckFinite(start, "a parameter");
  CheckFinite(end, "a parameter");
  start_param_ = start;
  end_param_ = end;
}
void MemEllipse::Transform(const Affine& m) {
  CheckFlat(normal_);
  center_ = m.Apply(center_);
  major_axis_ = m.ApplyVector(major_axis_);
}
void MemEllipse::AddExtents(const Affine& m, Box2& box) const {
  double sweep = end_param_ - start_param_;
  if (sweep <= 0) sweep += kTwoPi;
  AddConicSamples(m, center_, major_axis_,
                  EllipseMinorAxis(major_axis_, ratio_, normal_), start_param_,
                  sweep, box);
}
std::unique_ptr<MemEntity> MemEllipse::CloneState() const {
  return std::make_unique<MemEllipse>(*this);
}

int MemHatch::PatternType() const {
  CheckAlive();
  return pattern_type_;
}
std::string MemHatch::PatternName() const {
  CheckAlive();
  return pattern_name_;
}
bool MemHatch::AssociativeHatch() const {
  CheckAlive();
  return associative_;
}
bool MemHatch::IsSolidFill() const {
  CheckAlive();
  return pattern_name_ == "SOLID" || pattern_name_ == "solid";
}
int MemHatch::NumberOfLoops() const {
  CheckAlive();
  return static_cast<int>(loops_.size());
}
std::vector<host::HatchLoop> MemHatch::Loops() const {
  CheckAlive();
  return loops_;
}

void MemHatch::AppendOuterLoop(const std::vector<host::Entity*>& objects) {
  CheckWritable();
  if (!loops_.empty())
    throw HostError(ErrorCode::kBadArgument,
                    "the outer loop of a hatch must be appended first");
  AppendLoop(objects, 1);
}

void MemHatch::AppendInnerLoop(const std::vector<host::Entity*>& objects) {
  CheckWritable();
  if (loops_.empty())
    throw HostError(ErrorCode::kBadArgument,
                    "a hatch needs its outer loop before inner loops");
  AppendLoop(objects, 0);
}

void MemHatch::AppendLoop(const std::vector<host::Entity*>& objects,
                          int flags) {
  if (objects.empty())
    throw HostError(ErrorCode::kBadArgument, "a hatch loop needs objects");
  host::HatchLoop loop;
  loop.flags = flags;
  auto* only_pline =
      objects.size() == 1 ? dynamic_cast<MemLwPolyline*>(objects[0]) : nullptr;
  if (only_pline != nullptr && only_pline->closed_) {
    loop.is_polyline = true;
    loop.flags |= 2;
    loop.vertices = only_pline->xy_;
    loop.bulges = only_pline->bulges_;
    loop.closed = true;
  } else {
    for (host::Entity* h : objects) {
      auto* e = dynamic_cast<MemEntity*>(h);
      if (e == nullptr || e->IsErased())
        throw HostError(ErrorCode::kBadArgument,
                        "a hatch loop takes live entities of this drawing");
      if (auto* arc = dynamic_cast<MemArc*>(e)) {
        arc->CheckFlat(arc->normal_);
        host::HatchEdge edge;
        edge.type = host::HatchEdge::Type::kArc;
        edge.center = arc->center_;
        edge.radius = arc->radius_;
        edge.start_angle = arc->start_angle_;
        edge.end_angle =
            arc->start_angle_ + ArcSweep(arc->start_angle_, arc->end_angle_);
        loop.edges.push_back(edge);
      } else if (auto* circle = dynamic_cast<MemCircle*>(e)) {
        circle->CheckFlat(circle->normal_);
        host::HatchEdge edge;
        edge.type = host::HatchEdge::Type::kArc;
        edge.center = circle->center_;
        edge.radius = circle->radius_;
        edge.start_angle = 0;
        edge.end_angle = kTwoPi;
        loop.edges.push_back(edge);
      } else if (auto* ellipse = dynamic_cast<MemEllipse*>(e)) {
        ellipse->CheckFlat(ellipse->normal_);
        host::HatchEdge edge;
        edge.type = host::HatchEdge::Type::kEllipseArc;
        edge.center = ellipse->center_;
        edge.major_axis = ellipse->major_axis_;
        edge.ratio = ellipse->ratio_;
        edge.start_angle = ellipse->start_param_;
        edge.end_angle = ellipse->end_param_;
        loop.edges.push_back(edge);
      } else if (dynamic_cast<MemLine*>(e) || dynamic_cast<MemLwPolyline*>(e)) {
        for (const CurvePiece& piece : e->Pieces()) {
          host::HatchEdge edge;
          if (piece.is_arc) {
            edge.type = host::HatchEdge::Type::kArc;
            edge.center = piece.center;
            edge.radius = piece.radius;
            edge.counter_clockwise = piece.sweep > 0;
            edge.start_angle = piece.start_angle;
            edge.end_angle = piece.start_angle + piece.sweep;
          } else {
            edge.start = piece.p0;
            edge.end = piece.p1;
          }
          loop.edges.push_back(edge);
        }
      } else {
        throw HostError(
            ErrorCode::kBadArgument,
            "a " + e->AsHostEntity().ObjectName() + " cannot bound a hatch");
      }
    }
  }
  if (associative_)
    for (host::Entity* h : objects) loop.sources.push_back(h->ObjectID());
  loops_.push_back(std::move(loop));
}

void MemHatch::Transform(const Affine& m) {
  CheckFlat(normal_);
  double rot = m.RotationAngle();
  double s = m.Scale();
  for (auto& loop : loops_) {
    for (size_t i = 0; i + 1 < loop.vertices.size(); i += 2) {
      Point3 p = m.Apply({loop.vertices[i], loop.vertices[i + 1], 0});
      loop.vertices[i] = p.x;
      loop.vertices[i + 1] = p.y;
    }
    if (m.Mirrors())
      for (double& b : loop.bulges) b = -b;
    for (auto& edge : loop.edges) {
      edge.start = m.Apply(edge.start);
      edge.end = m.Apply(edge.end);
      edge.center = m.Apply(edge.center);
      edge.radius *= s;
      edge.major_axis = m.ApplyVector(edge.major_axis);
      if (edge.type == host::HatchEdge::Type::kArc) {
        edge.start_angle += rot;
        edge.end_angle += rot;
      }
      for (auto& p : edge.control_points) p = m.Apply(p);
    }
  }
  pattern_angle_ += rot;
  pattern_scale_ *= s;
}

void MemHatch::AddExtents(const Affine& outer, Box2& box) const {
  Affine m = PlaneThen(normal_, elevation_, outer);
  for (const auto& loop : loops_) {
    if (loop.is_polyline) {
      AddPiecesExtents(PolylinePieces(loop.vertices, loop.bulges, loop.closed),
                       m, box);
      continue;
    }
    for (const auto& edge : loop.edges) {
      switch (edge.type) {
        case host::HatchEdge::Type::kLine:
          AddPoint(m, edge.start, box);
          AddPoint(m, edge.end, box);
          break;
        case host::HatchEdge::Type::kArc: {
          double sweep = edge.end_angle - edge.start_angle;
          AddArcSamples(m, edge.center, {edge.radius, 0, 0}, 1.0,
                        edge.start_angle, sweep, box);
          break;
        }
        case host::HatchEdge::Type::kEllipseArc: {
          double sweep = edge.end_angle - edge.start_angle;
          if (sweep <= 0) sweep += kTwoPi;
          AddArcSamples(m, edge.center, edge.major_axis, edge.ratio,
                        edge.start_angle, sweep, box);
          break;
        }
        case host::HatchEdge::Type::kSpline:
          for (const auto& p : edge.control_points) AddPoint(m, p, box);
          break;
      }
    }
  }
}

std::unique_ptr<MemEntity> MemHatch::CloneState() const {
  return std::make_unique<MemHatch>(*this);
}

// ----------------------------------------------------------------- texts

namespace {

// Offsets of the baseline start from the anchor, in the text's frame.
void AlignmentOffset(TextAlignment a, double w, double h, double& dx,
                     double& dy) {
  switch (a) {
    case TextAlignment::kCenter:
    case TextAlignment::kMiddle:
    case TextAlignment::kTopCenter:
    case TextAlignment::kMiddleCenter:
    case TextAlignment::kBottomCenter:
      dx = -w / 2;
      break;
    case TextAlignment::kRight:
    case TextAlignment::kTopRight:
    case TextAlignment::kMiddleRight:
    case TextAlignment::kBottomRight:
      dx = -w;
      break;
    default:
      dx = 0;
  }
  switch (a) {
    case TextAlignment::kMiddle:
    case TextAlignment::kMiddleLeft:
    case TextAlignment::kMiddleCenter:
    case TextAlignment::kMiddleRight:
      dy = -h / 2;
      break;
    case TextAlignment::kTopLeft:
    case TextAlignment::kTopCenter:
    case TextAlignment::kTopRight:
      dy = -h;
      break;
    default:
      dy = 0;  // baseline; bottom alignments sit on the baseline as well
  }
}

bool AnchoredAtInsertion(TextAlignment a) {
  return a == TextAlignment::kLeft || a == TextAlignment::kAligned ||
         a == TextAlignment::kFit;
}

}  // namespace

template <class Base>
double TextImpl<Base>::DisplayWidth() const {
  return TextWidth(text_, height_, width_factor_);
}

namespace {
// Which side of its baseline a text's letters stand on, seen from above:
// 1 to the left, -1 to the right for a text facing down.
double UpSide(const Point3& normal) {
  return FacingOf(normal) == Facing::kDown ? -1.0 : 1.0;
}
}  // namespace

template <class Base>
Point3 TextImpl<Base>::BaselineStart() const {
  if (AnchoredAtInsertion(alignment_)) return insertion_;
  double dx = 0, dy = 0;
  AlignmentOffset(alignment_, DisplayWidth(), height_, dx, dy);
  dy *= UpSide(normal_);
  double c = std::cos(rotation_), s = std::sin(rotation_);
  return Point3{alignment_point_.x + c * dx - s * dy,
                alignment_point_.y + s * dx + c * dy, alignment_point_.z};
}

template <class Base>
std::array<Point3, 4> TextImpl<Base>::Corners() const {
  Point3 start = BaselineStart();
  double w = DisplayWidth();
  double angle = rotation_;
  if (alignment_ == TextAlignment::kAligned ||
      alignment_ == TextAlignment::kFit) {
    w = Distance2d(insertion_, alignment_point_);
    if (w > 0)
      angle = std::atan2(alignment_point_.y - insertion_.y,
                         alignment_point_.x - insertion_.x);
  }
  double c = std::cos(angle), s = std::sin(angle);
  double h = height_ * UpSide(normal_);
  auto at = [&](double x, double y) {
    return Point3{start.x + c * x - s * y, start.y + s * x + c * y, start.z};
  };
  return {at(0, 0), at(w, 0), at(w, h), at(0, h)};
}

template <class Base>
std::string TextImpl<Base>::TextString() const {
  this->CheckAlive();
  return text_;
}
template <class Base>
void TextImpl<Base>::SetTextString(const std::string& text) {
  this->CheckWritable();
  text_ = text;
}
template <class Base>
double TextImpl<Base>::Height() const {
  this->CheckAlive();
  return height_;
}
template <class Base>
void TextImpl<Base>::SetHeight(double height) {
  this->CheckWritable();
  if (!(height > 0) || !std::isfinite(height))
    throw HostError(ErrorCode::kBadArgument, "a text height must be positive");
  height_ = height;
}
template <class Base>
TextAlignment TextImpl<Base>::Alignment() const {
  this->CheckAlive();
  return alignment_;
}
template <class Base>
void TextImpl<Base>::SetAlignment(TextAlignment alignment) {
  this->CheckWritable();
  int code = static_cast<int>(alignment);
  if (code < 0 || code > 14)
    throw HostError(ErrorCode::kBadArgument,
                    "text alignment " + std::to_string(code) + " is not valid");
  // The text keeps its place: the old anchor becomes the new one.
  Point3 anchor =
      AnchoredAtInsertion(alignment_) ? insertion_ : alignment_point_;
  Point3 start = BaselineStart();
  if (AnchoredAtInsertion(alignment)) {
    insertion_ = AnchoredAtInsertion(alignment_) ? insertion_ : start;
  } else {
    alignment_point_ = anchor;
  }
  alignment_ = alignment;
}
template <class Base>
Point3 TextImpl<Base>::InsertionPoint() const {
  this->CheckAlive();
  return BaselineStart();
}
template <class Base>
void TextImpl<Base>::SetInsertionPoint(const Point3& p) {
  this->CheckWritable();
  CheckFinite(p, "an insertion point");
  if (AnchoredAtInsertion(alignment_)) {
    if (alignment_ != TextAlignment::kLeft) {
      alignment_point_.x += p.x - insertion_.x;
      alignment_point_.y += p.y - insertion_.y;
    }
    insertion_ = p;
    return;
  }
  Point3 start = BaselineStart();
  alignment_point_.x += p.x - start.x;
  alignment_point_.y += p.y - start.y;
  alignment_point_.z = p.z;
}
template <class Base>
Point3 TextImpl<Base>::TextAlignmentPoint() const {
  this->CheckAlive();
  return alignment_point_;
}
template <class Base>
void TextImpl<Base>::SetTextAlignmentPoint(const Point3& p) {
  this->CheckWritable();
  CheckFinite(p, "an alignment point");
  alignment_point_ = p;
}
template <class Base>
double TextImpl<Base>::Rotation() const {
  this->CheckAlive();
  return rotation_;
}
template <class Base>
void TextImpl<Base>::SetRotation(double angle) {
  this->CheckWritable();
  CheckFinite(angle, "a rotation");
  rotation_ = angle;
}
template <class Base>
std::string TextImpl<Base>::StyleName() const {
  this->CheckAlive();
  return style_;
}
template <class Base>
void TextImpl<Base>::SetStyleName(const std::string& style) {
  this->CheckWritable();
  MemTextStyle* s = this->doc_->FindTextStyle(style);
  if (s == nullptr)
    throw HostError(ErrorCode::kNoSuchKey,
                    "no text style named \"" + style + "\"");
  style_ = s->name_;
}
template <class Base>
double TextImpl<Base>::ScaleFactor() const {
  this->CheckAlive();
  return width_factor_;
}
template <class Base>
void TextImpl<Base>::SetScaleFactor(double factor) {
  this->CheckWritable();
  if (!(factor > 0) || !std::isfinite(factor))
    throw HostError(ErrorCode::kBadArgument, "a width factor must be positive");
  width_factor_ = factor;
}
template <class Base>
double TextImpl<Base>::ObliqueAngle() const {
  this->CheckAlive();
  return oblique_;
}
template <class Base>
void TextImpl<Base>::SetObliqueAngle(double angle) {
  this->CheckWritable();
  CheckFinite(angle, "an oblique angle");
  oblique_ = angle;
}
template <class Base>
void TextImpl<Base>::Transform(const Affine& m) {
  this->CheckFlat(normal_);
  insertion_ = m.Apply(insertion_);
  alignment_point_ = m.Apply(alignment_point_);
  rotation_ += m.RotationAngle();
  height_ *= m.ScaleY();
  width_factor_ *= m.ScaleY() > 0 ? m.ScaleX() / m.ScaleY() : 1.0;
}
template <class Base>
void TextImpl<Base>::AddExtents(const Affine& m, Box2& box) const {
  Affine t = PlaneThen(normal_, insertion_.z, m);
  for (const Point3& p : Corners()) AddPoint(t, p, box);
}

std::unique_ptr<MemEntity> MemText::CloneState() const {
  return std::make_unique<MemText>(*this);
}

std::string MemAttributeReference::TagString() const {
  CheckAlive();
  return tag_;
}
void MemAttributeReference::SetTagString(const std::string& tag) {
  CheckWritable();
  if (tag.empty() || tag.find(' ') != std::string::npos)
    throw HostError(ErrorCode::kBadArgument,
                    "an attribute tag must be non-empty and hold no blanks");
  tag_ = tag;
}
bool MemAttributeReference::Invisible() const {
  CheckAlive();
  return invisible_;
}
void MemAttributeReference::SetInvisible(bool invisible) {
  CheckWritable();
  invisible_ = invisible;
}
void MemAttributeReference::CheckWritable() const {
  CheckModifiable();
  if (insert_ != nullptr && !doc_->Loading()) {
    MemLayer* layer = doc_->FindLayer(insert_->LayerName());
    if (layer != nullptr && layer->locked_)
      throw HostError(ErrorCode::kLockedLayer,
                      "the block reference of attribute " +
                          std::to_string(id_) + " is on locked layer \"" +
                          layer->name_ + "\"");
  }
}
std::unique_ptr<MemEntity> MemAttributeReference::CloneState() const {
  auto copy = std::make_unique<MemAttributeReference>(*this);
  copy->insert_ = nullptr;
  return copy;
}

std::string MemAttributeDefinition::TagString() const {
  CheckAlive();
  return tag_;
}
void MemAttributeDefinition::SetTagString(const std::string& tag) {
  CheckWritable();
  if (tag.empty() || tag.find(' ') != std::string::npos)
    throw HostError(ErrorCode::kBadArgument,
                    "an attribute tag must be non-empty and hold no blanks");
  tag_ = tag;
}
std::string MemAttributeDefinition::PromptString() const {
  CheckAlive();
  return prompt_;
}
void MemAttributeDefinition::SetPromptString(const std::string& prompt) {
  CheckWritable();
  prompt_ = prompt;
}
int MemAttributeDefinition::Mode() const {
  CheckAlive();
  return mode_;
}
void MemAttributeDefinition::SetMode(int mode) {
  CheckWritable();
  if (mode < 0 || mode > 15)
    throw HostError(ErrorCode::kBadArgument,
                    "attribute mode " + std::to_string(mode) + " is not valid");
  mode_ = mode;
}
std::unique_ptr<MemEntity> MemAttributeDefinition::CloneState() const {
  return std::make_unique<MemAttributeDefinition>(*this);
}

// ------------------------------------------------------ block references

namespace {
// A reference moves its attributes along: all must be movable before
// anything moves.
void CheckAllFlat(const MemBlockReference& ref) {
  ref.CheckFlat(ref.normal_);
  for (const MemAttributeReference* a : ref.Attributes())
    if (!a->IsErased()) a->CheckFlat(a->normal_);
}
}  // namespace

std::string MemBlockReference::Name() const {
  CheckAlive();
  return block_name_;
}

Point3 MemBlockReference::InsertionPoint() const {
  CheckAlive();
  return insertion_;
}

void MemBlockReference::SetInsertionPoint(const Point3& p) {
  CheckWritable();
  CheckFinite(p, "an insertion point");
  CheckAllFlat(*this);
  Affine move = Affine::Translation(p.x - insertion_.x, p.y - insertion_.y,
                                    p.z - insertion_.z);
  insertion_ = p;
  for (MemAttributeReference* a : attributes_) a->Transform(move);
}

double MemBlockReference::Rotation() const {
  CheckAlive();
  return rotation_;
}

void MemBlockReference::SetRotation(double angle) {
  CheckWritable();
  CheckFinite(angle, "a rotation");
  CheckAllFlat(*this);
  Affine turn = Affine::Rotation(insertion_, angle - rotation_);
  rotation_ = angle;
  for (MemAttributeReference* a : attributes_) a->Transform(turn);
}

double MemBlockReference::XScaleFactor() const {
  CheckAlive();
  return sx_;
}
double MemBlockReference::YScaleFactor() const {
  CheckAlive();
  return sy_;
}
double MemBlockReference::ZScaleFactor() const {
  CheckAlive();
  return sz_;
}

void MemBlockReference::SetScaleFactors(double x, double y, double z) {
  CheckWritable();
  if (x == 0 || y == 0 || z == 0 || !std::isfinite(x) || !std::isfinite(y) ||
      !std::isfinite(z))
    throw HostError(ErrorCode::kBadArgument, "scale factors cannot be zero");
  CheckAllFlat(*this);
  Affine old_t = BlockTransform();
  sx_ = x;
  sy_ = y;
  sz_ = z;
  Affine change = old_t.Inverse().Then(BlockTransform());
  for (MemAttributeReference* a : attributes_) a->Transform(change);
}

bool MemBlockReference::HasAttributes() const {
  CheckAlive();
  return std::any_of(
      attributes_.begin(), attributes_.end(),
      [](const MemAttributeReference* a) { return !a->IsErased(); });
}

std::vector<host::AttributeReference*> MemBlockReference::GetAttributes()
    const {
  CheckAlive();
  std::vector<host::AttributeReference*> out;
  for (MemAttributeReference* a : attributes_)
    if (!a->IsErased()) out.push_back(a);
  return out;
}

Affine MemBlockReference::BlockTransform() const {
  MemBlock* block = doc_->FindBlock(block_name_);
  Point3 origin = block ? block->origin_ : Point3{};
  return Affine::Insert(origin, insertion_, sx_, sy_, sz_, rotation_);
}

void MemBlockReference::AttachAttribute(MemAttributeReference& attribute) {
  attribute.insert_ = this;
  attribute.owner_ = owner_;
  attributes_.push_back(&attribute);
}

MemAttributeReference& MemBlockReference::AdoptAttribute(
    std::unique_ptr<MemAttributeReference> attribute, uint64_t handle) {
  if (attribute->layer_.empty()) attribute->layer_ = "0";
  auto& a = static_cast<MemAttributeReference&>(
      doc_->RegisterObject(std::move(attribute), handle));
  if (doc_->FindLayer(a.layer_) == nullptr) doc_->AddLayer(a.layer_);
  AttachAttribute(a);
  doc_->OnLayerChanged(a, "", a.layer_);
  a.ForEachXDataApp([&](const std::string& app) { doc_->RegisterApp(app); });
  return a;
}

void MemBlockReference::Transform(const Affine& m) {
  CheckAllFlat(*this);
  insertion_ = m.Apply(insertion_);
  rotation_ += m.RotationAngle();
  double sx = m.ScaleX(), sy = m.ScaleY();
  sx_ *= m.Mirrors() ? -sx : sx;
  sy_ *= sy;
  sz_ *= m.sz;
  for (MemAttributeReference* a : attributes_) a->Transform(m);
}

void MemBlockReference::AddExtents(const Affine& m, Box2& box) const {
  MemBlock* block = doc_->FindBlock(block_name_);
  if (block != nullptr && g_extent_depth < 16) {
    ++g_extent_depth;
    Affine t = BlockTransform().Then(PlaneThen(normal_, insertion_.z, m));
    for (MemEntity* e : block->MemEntities()) e->AddExtents(t, box);
    --g_extent_depth;
  }
  for (const MemAttributeReference* a : attributes_)
    if (!a->IsErased() && !a->invisible_) a->AddExtents(m, box);
  if (box.empty) AddPoint(PlaneThen(normal_, insertion_.z, m), insertion_, box);
}

std::unique_ptr<MemEntity> MemBlockReference::CloneState() const {
  auto copy = std::make_unique<MemBlockReference>(*this);
  copy->attributes_.clear();
  return copy;
}

void MemOtherEntity::Transform(const Affine& m) {
  throw HostError(ErrorCode::kNotSupported,
                  "a " + type_name_ + " cannot be moved by this system");
}

void MemOtherEntity::AddExtents(const Affine& m, Box2& box) const {
  for (const Point3& p : extent_points_) AddPoint(m, p, box);
}

std::unique_ptr<MemEntity> MemOtherEntity::CloneState() const {
  return std::make_unique<MemOtherEntity>(*this);
}

// --------------------------------------------------------------- blocks

std::string MemBlock::Name() const {
  CheckAlive();
  return name_;
}
Point3 MemBlock::Origin() const {
  CheckAlive();
  return origin_;
}
void MemBlock::SetOrigin(const Point3& p) {
  CheckAlive();
  CheckFinite(p, "a block origin");
  origin_ = p;
}
bool MemBlock::IsLayout() const {
  CheckAlive();
  return is_layout_;
}
bool MemBlock::IsXRef() const {
  CheckAlive();
  return is_xref_;
}

void MemBlock::Compact() const {
  if (erased_count_ == 0) return;
  std::erase_if(entities_, [](const MemEntity* e) { return e->IsErased(); });
  erased_count_ = 0;
}

int MemBlock::Count() const {
  CheckAlive();
  Compact();
  return static_cast<int>(entities_.size());
}

host::Entity& MemBlock::Item(int index) const {
  CheckAlive();
  Compact();
  if (index < 0 || static_cast<size_t>(index) >= entities_.size())
    throw HostError(
        ErrorCode::kBadArgument,
        "block \"" + name_ + "\" has no item " + std::to_string(index));
  return entities_[index]->AsHostEntity();
}

std::vector<host::Entity*> MemBlock::Entities() const {
  CheckAlive();
  Compact();
  std::vector<host::Entity*> out;
  out.reserve(entities_.size());
  for (MemEntity* e : entities_) out.push_back(&e->AsHostEntity());
  return out;
}

std::vector<MemEntity*> MemBlock::MemEntities() const {
  Compact();
  return entities_;
}

void MemBlock::Delete() {
  CheckAlive();
  if (is_layout_)
    throw HostError(ErrorCode::kInUse,
                    "the layout block \"" + name_ + "\" cannot be deleted");
  for (MemBlock* b : doc_->BlockList())
    for (MemEntity* e : b->MemEntities())
      if (auto* ref = e->AsBlockReference())
        if (doc_->FindBlock(ref->block_name_) == this)
          throw HostError(ErrorCode::kInUse,
                          "block \"" + name_ + "\" is inserted in the drawing");
  for (MemEntity* e : MemEntities()) {
    e->erased_ = true;
    doc_->OnErased(*e);
  }
  entities_.clear();
  erased_ = true;
  auto& blocks = doc_->blocks_;
  blocks.erase(std::find(blocks.begin(), blocks.end(), this));
}

MemEntity& MemBlock::Adopt(std::unique_ptr<MemEntity> entity, uint64_t handle) {
  CheckAlive();
  MemEntity& e =
      static_cast<MemEntity&>(doc_->RegisterObject(std::move(entity), handle));
  e.owner_ = this;
  if (e.layer_.empty()) e.layer_ = "0";
  MemLayer* layer = doc_->FindLayer(e.layer_);
  if (layer == nullptr) layer = &doc_->AddLayer(e.layer_);
  e.layer_ = layer->name_;
  ++layer->use_count_;
  e.ForEachXDataApp([&](const std::string& app) { doc_->RegisterApp(app); });
  entities_.push_back(&e);
  doc_->IndexEntity(e);
  return e;
}

namespace {
template <class T>
std::unique_ptr<T> OnCurrentLayer(MemDocument& doc) {
  auto e = std::make_unique<T>();
  e->SetLayerUnchecked(doc.ActiveLayer().Name());
  return e;
}
}  // namespace

host::LwPolyline& MemBlock::AddLightWeightPolyline(
    const std::vector<double>& xy) {
  CheckAlive();
  if (xy.size() < 4 || xy.size() % 2 != 0)
    throw HostError(ErrorCode::kBadArgument,
                    "a polyline needs X, Y pairs for at least two vertices");
  for (double v : xy) CheckFinite(v, "a polyline coordinate");
  auto e = OnCurrentLayer<MemLwPolyline>(*doc_);
  e->xy_ = xy;
  e->bulges_.assign(xy.size() / 2, 0.0);
  e->widths_.assign(xy.size() / 2, {0.0, 0.0});
  return AddNew(std::move(e));
}

host::Line& MemBlock::AddLine(const Point3& start, const Point3& end) {
  CheckAlive();
  CheckFinite(start, "a start point");
  CheckFinite(end, "an end point");
  auto e = OnCurrentLayer<MemLine>(*doc_);
  e->start_ = start;
  e->end_ = end;
  return AddNew(std::move(e));
}

host::Point& MemBlock::AddPoint(const Point3& p) {
  CheckAlive();
  CheckFinite(p, "a point");
  auto e = OnCurrentLayer<MemPoint>(*doc_);
  e->position_ = p;
  return AddNew(std::move(e));
}

host::Circle& MemBlock::AddCircle(const Point3& center, double radius) {
  CheckAlive();
  CheckFinite(center, "a centre");
  if (!(radius > 0) || !std::isfinite(radius))
    throw HostError(ErrorCode::kBadArgument, "a radius must be positive");
  auto e = OnCurrentLayer<MemCircle>(*doc_);
  e->center_ = center;
  e->radius_ = radius;
  return AddNew(std::move(e));
}

host::Arc& MemBlock::AddArc(const Point3& center, double radius,
                            double start_angle, double end_angle) {
  CheckAlive();
  CheckFinite(center, "a centre");
  if (!(radius > 0) || !std::isfinite(radius))
    throw HostError(ErrorCode::kBadArgument, "a radius must be positive");
  CheckFinite(start_angle, "an angle");
  CheckFinite(end_angle, "an angle");
  auto e = OnCurrentLayer<MemArc>(*doc_);
  e->center_ = center;
  e->radius_ = radius;
  e->start_angle_ = start_angle;
  e->end_angle_ = end_angle;
  return AddNew(std::move(e));
}

host::Ellipse& MemBlock::AddEllipse(const Point3& center,
                                    const Point3& major_axis,
                                    double radius_ratio) {
  CheckAlive();
  CheckFinite(center, "a centre");
  CheckFinite(major_axis, "a major axis");
  if (major_axis.x == 0 && major_axis.y == 0)
    throw HostError(ErrorCode::kBadArgument, "a major axis cannot be zero");
  if (!(radius_ratio > 0 && radius_ratio <= 1))
    throw HostError(ErrorCode::kBadArgument,
                    "a radius ratio lies between 0 (excluded) and 1");
  auto e = OnCurrentLayer<MemEllipse>(*doc_);
  e->center_ = center;
  e->major_axis_ = major_axis;
  e->ratio_ = radius_ratio;
  return AddNew(std::move(e));
}

host::Text& MemBlock::AddText(const std::string& text,
                              const Point3& insertion_point, double height) {
  CheckAlive();
  CheckFinite(insertion_point, "an insertion point");
  if (!(height > 0) || !std::isfinite(height))
    throw HostError(ErrorCode::kBadArgument, "a text height must be positive");
  auto e = OnCurrentLayer<MemText>(*doc_);
  auto& style = static_cast<MemTextStyle&>(doc_->ActiveTextStyle());
  e->text_ = text;
  e->insertion_ = insertion_point;
  e->height_ = height;
  e->style_ = style.name_;
  e->width_factor_ = style.width_;
  e->oblique_ = style.oblique_;
  return AddNew(std::move(e));
}

host::AttributeDefinition& MemBlock::AddAttribute(double height, int mode,
                                                  const std::string& prompt,
                                                  const Point3& insertion_point,
                                                  const std::string& tag,
                                                  const std::string& value) {
  CheckAlive();
  CheckFinite(insertion_point, "an insertion point");
  if (!(height > 0) || !std::isfinite(height))
    throw HostError(ErrorCode::kBadArgument, "a text height must be positive");
  if (tag.empty() || tag.find(' ') != std::string::npos)
    throw HostError(ErrorCode::kBadArgument,
                    "an attribute tag must be non-empty and hold no blanks");
  if (mode < 0 || mode > 15)
    throw HostError(ErrorCode::kBadArgument,
                    "attribute mode " + std::to_string(mode) + " is not valid");
  auto e = OnCurrentLayer<MemAttributeDefinition>(*doc_);
  auto& style = static_cast<MemTextStyle&>(doc_->ActiveTextStyle());
  e->text_ = value;
  e->insertion_ = insertion_point;
  e->height_ = height;
  e->style_ = style.name_;
  e->width_factor_ = style.width_;
  e->tag_ = tag;
  e->prompt_ = prompt;
  e->mode_ = mode;
  return AddNew(std::move(e));
}

host::Hatch& MemBlock::AddHatch(int pattern_type,
                                const std::string& pattern_name,
                                bool associativity) {
  CheckAlive();
  if (pattern_type < 0 || pattern_type > 2)
    throw HostError(
        ErrorCode::kBadArgument,
        "hatch pattern type " + std::to_string(pattern_type) + " is not valid");
  if (pattern_name.empty())
    throw HostError(ErrorCode::kBadArgument, "a hatch needs a pattern name");
  auto e = OnCurrentLayer<MemHatch>(*doc_);
  e->pattern_type_ = pattern_type;
  e->pattern_name_ = pattern_name;
  e->associative_ = associativity;
  return AddNew(std::move(e));
}

host::BlockReference& MemBlock::InsertBlock(const Point3& insertion_point,
                                            const std::string& name,
                                            double x_scale, double y_scale,
                                            double z_scale, double rotation) {
  CheckAlive();
  CheckFinite(insertion_point, "an insertion point");
  CheckFinite(rotation, "a rotation");
  MemBlock* def = doc_->FindBlock(name);
  if (def == nullptr)
    throw HostError(ErrorCode::kNoSuchKey, "no block named \"" + name + "\"");
  if (def->is_layout_ || def == this)
    throw HostError(ErrorCode::kBadArgument,
                    "block \"" + name + "\" cannot be inserted here");
  if (x_scale == 0 || y_scale == 0 || z_scale == 0 || !std::isfinite(x_scale) ||
      !std::isfinite(y_scale) || !std::isfinite(z_scale))
    throw HostError(ErrorCode::kBadArgument, "scale factors cannot be zero");
  auto e = OnCurrentLayer<MemBlockReference>(*doc_);
  e->block_name_ = def->name_;
  e->insertion_ = insertion_point;
  e->sx_ = x_scale;
  e->sy_ = y_scale;
  e->sz_ = z_scale;
  e->rotation_ = rotation;
  auto& ref = AddNew(std::move(e));
  Affine t = ref.BlockTransform();
  for (MemEntity* item : def->MemEntities()) {
    auto* attdef = dynamic_cast<MemAttributeDefinition*>(item);
    if (attdef == nullptr || (attdef->mode_ & 2) != 0) continue;  // constant
    auto attr = std::make_unique<MemAttributeReference>();
    attr->text_ = attdef->text_;
    attr->height_ = attdef->height_;
    attr->alignment_ = attdef->alignment_;
    attr->insertion_ = attdef->insertion_;
    attr->alignment_point_ = attdef->alignment_point_;
    attr->rotation_ = attdef->rotation_;
    attr->style_ = attdef->style_;
    attr->width_factor_ = attdef->width_factor_;
    attr->oblique_ = attdef->oblique_;
    attr->color_ = attdef->color_;
    if (FacingOf(attdef->normal_) != Facing::kTilted)
      attr->normal_ = attdef->normal_;
    attr->tag_ = attdef->tag_;
    attr->invisible_ = (attdef->mode_ & 1) != 0;
    // Attributes defined on layer 0 take the layer of the reference.
    attr->SetLayerUnchecked(attdef->layer_ == "0" ? ref.layer_
                                                  : attdef->layer_);
    attr->Transform(t);
    auto& a = static_cast<MemAttributeReference&>(
        doc_->RegisterObject(std::move(attr), 0));
    ref.AttachAttribute(a);
    doc_->OnLayerChanged(a, "", a.layer_);
  }
  return ref;
}

template class EntityImpl<host::LwPolyline>;
template class EntityImpl<host::Line>;
template class EntityImpl<host::Point>;
template class EntityImpl<host::Circle>;
template class EntityImpl<host::Arc>;
template class EntityImpl<host::Ellipse>;
template class EntityImpl<host::Hatch>;
template class EntityImpl<host::Text>;
template class EntityImpl<host::AttributeReference>;
template class EntityImpl<host::AttributeDefinition>;
template class EntityImpl<host::BlockReference>;
template class EntityImpl<host::OtherEntity>;
template class TextImpl<host::Text>;
template class TextImpl<host::AttributeReference>;
template class TextImpl<host::AttributeDefinition>;

}  // namespace kestrana::memhost
