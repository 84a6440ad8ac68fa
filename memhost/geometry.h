// Plan geometry of the in-memory host: transforms, curve pieces and their
// intersections, extents. Z is carried but never used in plan tests.
#pragma once

#include <vector>

#include "host/types.h"

namespace kestrana::memhost {

using host::Box2;
using host::Point3;

// x' = a·x + b·y + e, y' = c·x + d·y + f; z' = sz·z + tz.
struct Affine {
  double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;
  double sz = 1, tz = 0;

  static Affine Translation(double dx, double dy, double dz = 0);
  static Affine Rotation(const Point3& base, double angle);
  // The transform of a block reference: scale, rotate, then move the block
  // origin to the insertion point.
  static Affine Insert(const Point3& origin, const Point3& insertion, double sx,
                       double sy, double sz, double rotation);

  Point3 Apply(const Point3& p) const;
  // Applies the linear part only (for direction vectors).
  Point3 ApplyVector(const Point3& v) const;
  Affine Then(const Affine& next) const;  // next ∘ this
  Affine Inverse() const;
  // The angle by which the transform turns the X axis.
  double RotationAngle() const;
  // Mean linear scale (for radii and heights).
  double Scale() const;
  double ScaleX() const;
  double ScaleY() const;
  bool Mirrors() const { return a * d - b * c < 0; }
};

// A piece of a plan curve: a straight segment or a circular arc.
struct CurvePiece {
  bool is_arc = false;
  Point3 p0, p1;           // segment ends (also the arc's ends)
  Point3 center;           // arc
  double radius = 0;       // arc
  double start_angle = 0;  // arc, radians
  double sweep = 0;        // arc, signed (positive counter-clockwise)
};

// The counter-clockwise sweep of an arc from `start` to `end` (radians):
// 0 for equal angles, a whole turn for angles a whole turn apart.
double ArcSweep(double start, double end);
// A circular arc piece from its centre, radius, start angle and signed sweep.
CurvePiece ArcPiece(const Point3& center, double radius, double start,
                    double sweep);

// How the plane of an entity (its extrusion direction, group code 210 in
// files) lies against the plan. Entities facing up or down keep world
// coordinates in memory; tilted ones keep the values of their own plane.
enum class Facing { kUp, kDown, kTilted };
Facing FacingOf(const Point3& normal);
// The arbitrary-axis rule: a point of the plane of `normal`, given in that
// plane's coordinates with elevation `z`, seen from above on the plan (Z
// is carried as it is).
Affine OcsToPlan(const Point3& normal, double z);
// For entities that hold world values unless tilted: OcsToPlan for a
// tilted plane, no change otherwise.
Affine TiltToPlan(const Point3& normal, double z);

// The minor axis of an ellipse (centre and major axis in world values) as
// seen on the plan: the major axis turned a quarter counter-clockwise, or
// for a tilted ellipse the normal crossed with the major axis.
Point3 EllipseMinorAxis(const Point3& major, double ratio,
                        const Point3& normal);

// The pieces of a polyline vertex list (bulges may be empty).
std::vector<CurvePiece> PolylinePieces(const std::vector<double>& xy,
                                       const std::vector<double>& bulges,
                                       bool closed);
double PieceLength(const CurvePiece& piece);
void AddPieceExtents(const CurvePiece& piece, Box2& box);
CurvePiece FullCircle(const Point3& center, double radius);

// Intersections of two curves, each given as pieces. `extend_a` and
// `extend_b` extend the first piece backwards and the last forwards (straight
// pieces only). Points come in the order of a's pieces, then b's pieces, then
// the position along a's piece; a point already found is not repeated.
// Collinear overlapping segments yield the two ends of the overlap.
std::vector<Point3> IntersectCurves(const std::vector<CurvePiece>& a,
                                    bool extend_a,
                                    const std::vector<CurvePiece>& b,
                                    bool extend_b);

double Distance2d(const Point3& p, const Point3& q);

}  // namespace kestrana::memhost
