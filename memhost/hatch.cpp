// Hatches and their boundary loops.
#include <algorithm>
#include <cmath>

#include "memhost/document.h"
#include "memhost/entity_support.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;
using host::TextAlignment;
using namespace support;

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

}  // namespace kestrana::memhost
