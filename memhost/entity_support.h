// Helpers the entity kinds share: argument checks and extents under a
// transform. Internal to memhost.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "host/errors.h"
#include "memhost/geometry.h"

namespace kestrana::memhost::support {

using host::ErrorCode;
using host::HostError;

constexpr double kTwoPi = 6.283185307179586;

inline void CheckFinite(double v, const char* what) {
  if (!std::isfinite(v))
    throw HostError(ErrorCode::kBadArgument,
                    std::string(what) + " must be a finite number");
}

inline void CheckFinite(const Point3& p, const char* what) {
  if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
    throw HostError(ErrorCode::kBadArgument,
                    std::string(what) + " must have finite coordinates");
}

inline void AddPoint(const Affine& m, const Point3& p, Box2& box) {
  Point3 q = m.Apply(p);
  box.Add(q.x, q.y);
}

// Arcs under an arbitrary transform: sampled densely enough for extents.
inline void AddConicSamples(const Affine& m, const Point3& center, const Point3& major,
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

inline void AddArcSamples(const Affine& m, const Point3& center, const Point3& major,
                   double ratio, double start, double sweep, Box2& box) {
  AddConicSamples(m, center, major, {-major.y * ratio, major.x * ratio, 0},
                  start, sweep, box);
}

// Where the values of an entity's plane land on the plan, then under `m`.
inline Affine PlaneThen(const Point3& normal, double z, const Affine& m) {
  return TiltToPlan(normal, z).Then(m);
}

inline void AddPiecesExtents(const std::vector<CurvePiece>& pieces, const Affine& m,
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
inline thread_local int g_extent_depth = 0;

}  // namespace kestrana::memhost::support
