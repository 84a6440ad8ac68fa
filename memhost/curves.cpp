// Lines, points, lightweight polylines, circles, arcs and ellipses.
#include <algorithm>
#include <cmath>

#include "memhost/document.h"
#include "memhost/entity_support.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;
using host::TextAlignment;
using namespace support;

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

}  // namespace kestrana::memhost
