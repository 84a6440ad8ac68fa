#include "memhost/geometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace kestrana::memhost {

namespace {
constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;
constexpr double kInf = std::numeric_limits<double>::infinity();
// Parameter and length tolerances for "touching" cases (an end on a segment).
constexpr double kParamEps = 1e-10;
constexpr double kLengthEps = 1e-9;

double Cross(double ax, double ay, double bx, double by) {
  return ax * by - ay * bx;
}

double NormalizeAngle(double a) {
  a = std::fmod(a, kTwoPi);
  if (a < 0) a += kTwoPi;
  return a;
}

// Offset of `angle` from the arc's start along its sweep direction, or a
// negative value when the angle lies outside the arc.
double ArcOffset(const CurvePiece& arc, double angle) {
  double offset = arc.sweep >= 0 ? NormalizeAngle(angle - arc.start_angle)
                                 : NormalizeAngle(arc.start_angle - angle);
  double span = std::fabs(arc.sweep);
  double tol = kLengthEps / std::max(arc.radius, 1e-12);
  if (offset <= span + tol) return offset;
  if (offset >= kTwoPi - tol) return 0.0;  // just before the start
  return -1.0;
}

struct Hit {
  Point3 p;
  double along = 0;  // position along piece a, for ordering
};

struct Range {
  double lo, hi;
};

Range SegmentRange(bool extend, bool first, bool last) {
  return Range{extend && first ? -kInf : 0.0, extend && last ? kInf : 1.0};
}

void SegSeg(const CurvePiece& a, Range ra, const CurvePiece& b, Range rb,
            std::vector<Hit>& out) {
  double dax = a.p1.x - a.p0.x, day = a.p1.y - a.p0.y;
  double dbx = b.p1.x - b.p0.x, dby = b.p1.y - b.p0.y;
  double la = std::hypot(dax, day), lb = std::hypot(dbx, dby);
  if (la < kLengthEps || lb < kLengthEps) {
    // A zero-length piece intersects where its point lies on the other.
    const CurvePiece& pt = la < kLengthEps ? a : b;
    const CurvePiece& seg = la < kLengthEps ? b : a;
    Range rs = la < kLengthEps ? rb : ra;
    double sx = seg.p1.x - seg.p0.x, sy = seg.p1.y - seg.p0.y;
    double ls2 = sx * sx + sy * sy;
    double t =
        ls2 > 0 ? ((pt.p0.x - seg.p0.x) * sx + (pt.p0.y - seg.p0.y) * sy) / ls2
                : 0.0;
    Point3 q{seg.p0.x + t * sx, seg.p0.y + t * sy, seg.p0.z};
    if (Distance2d(q, pt.p0) <= kLengthEps && t >= rs.lo - kParamEps &&
        t <= rs.hi + kParamEps)
      out.push_back({pt.p0, la < kLengthEps ? 0.0 : t});
    return;
  }
  double denom = Cross(dax, day, dbx, dby);
  double wx = b.p0.x - a.p0.x, wy = b.p0.y - a.p0.y;
  if (std::fabs(denom) <= 1e-12 * la * lb) {
    // Parallel: only collinear pieces meet, along their common part.
    if (std::fabs(Cross(wx, wy, dax, day)) / la > kLengthEps) return;
    double t0 = (wx * dax + wy * day) / (la * la);
    double t1 = ((b.p1.x - a.p0.x) * dax + (b.p1.y - a.p0.y) * day) / (la * la);
    double blo = t0, bhi = t1;
    bool forward = t1 >= t0;
    if (!forward) std::swap(blo, bhi);
    // b's own extension maps onto a's parameter line.
    if (rb.lo == -kInf) (forward ? blo : bhi) = forward ? -kInf : kInf;
    if (rb.hi == kInf) (forward ? bhi : blo) = forward ? kInf : -kInf;
    if (blo > bhi) std::swap(blo, bhi);
    double lo = std::max(ra.lo, blo), hi = std::min(ra.hi, bhi);
    if (lo > hi + kParamEps || std::isinf(lo) || std::isinf(hi)) return;
    auto at = [&](double t) {
      return Point3{a.p0.x + t * dax, a.p0.y + t * day, a.p0.z};
    };
    out.push_back({at(lo), lo});
    if ((hi - lo) * la > kLengthEps) out.push_back({at(hi), hi});
    return;
  }
  double t = Cross(wx, wy, dbx, dby) / denom;
  double u = Cross(wx, wy, dax, day) / denom;
  double eps_a = kLengthEps / la, eps_b = kLengthEps / lb;
  if (t < ra.lo - eps_a || t > ra.hi + eps_a) return;
  if (u < rb.lo - eps_b || u > rb.hi + eps_b) return;
  out.push_back({Point3{a.p0.x + t * dax, a.p0.y + t * day, a.p0.z}, t});
}

// Points where the infinite line of `seg` meets the circle of `arc`, with
// their segment parameters.
std::vector<std::pair<double, Point3>> LineCircle(const CurvePiece& seg,
                                                  const CurvePiece& arc) {
  std::vector<std::pair<double, Point3>> res;
  double dx = seg.p1.x - seg.p0.x, dy = seg.p1.y - seg.p0.y;
  double fx = seg.p0.x - arc.center.x, fy = seg.p0.y - arc.center.y;
  double A = dx * dx + dy * dy;
  if (A <= 0) return res;
  double B = 2 * (fx * dx + fy * dy);
  double C = fx * fx + fy * fy - arc.radius * arc.radius;
  double disc = B * B - 4 * A * C;
  // A tangent line touches within the length tolerance.
  double tangent_tol = 4 * A * (2 * arc.radius * kLengthEps);
  if (disc < -tangent_tol) return res;
  if (disc <= tangent_tol) {
    double t = -B / (2 * A);
    res.push_back({t, Point3{seg.p0.x + t * dx, seg.p0.y + t * dy, seg.p0.z}});
    return res;
  }
  double sq = std::sqrt(disc);
  for (double t : {(-B - sq) / (2 * A), (-B + sq) / (2 * A)})
    res.push_back({t, Point3{seg.p0.x + t * dx, seg.p0.y + t * dy, seg.p0.z}});
  return res;
}

void SegArc(const CurvePiece& seg, Range rs, const CurvePiece& arc,
            bool seg_is_a, std::vector<Hit>& out) {
  double len = Distance2d(seg.p0, seg.p1);
  if (len < kLengthEps) {
    double r = Distance2d(seg.p0, arc.center);
    if (std::fabs(r - arc.radius) <= kLengthEps &&
        ArcOffset(arc, std::atan2(seg.p0.y - arc.center.y,
                                  seg.p0.x - arc.center.x)) >= 0)
      out.push_back({seg.p0, 0});
    return;
  }
  double eps = kLengthEps / len;
  for (auto& [t, p] : LineCircle(seg, arc)) {
    if (t < rs.lo - eps || t > rs.hi + eps) continue;
    double off =
        ArcOffset(arc, std::atan2(p.y - arc.center.y, p.x - arc.center.x));
    if (off < 0) continue;
    out.push_back({p, seg_is_a ? t : off});
  }
}

void ArcArc(const CurvePiece& a, const CurvePiece& b, std::vector<Hit>& out) {
  double dx = b.center.x - a.center.x, dy = b.center.y - a.center.y;
  double d = std::hypot(dx, dy);
  if (d < kLengthEps && std::fabs(a.radius - b.radius) < kLengthEps) {
    // Same circle: the ends of either arc that lie on the other.
    for (const Point3& p : {a.p0, a.p1, b.p0, b.p1}) {
      double ang = std::atan2(p.y - a.center.y, p.x - a.center.x);
      double oa = ArcOffset(a, ang), ob = ArcOffset(b, ang);
      if (oa >= 0 && ob >= 0) out.push_back({p, oa});
    }
    return;
  }
  if (d < kLengthEps) return;
  if (d > a.radius + b.radius + kLengthEps ||
      d < std::fabs(a.radius - b.radius) - kLengthEps)
    return;
  double x = (d * d + a.radius * a.radius - b.radius * b.radius) / (2 * d);
  double h2 = a.radius * a.radius - x * x;
  double h = h2 > 0 ? std::sqrt(h2) : 0.0;
  double mx = a.center.x + x * dx / d, my = a.center.y + x * dy / d;
  std::vector<Point3> pts{{mx - h * dy / d, my + h * dx / d, a.p0.z}};
  if (h > kLengthEps) pts.push_back({mx + h * dy / d, my - h * dx / d, a.p0.z});
  for (const Point3& p : pts) {
    double oa = ArcOffset(a, std::atan2(p.y - a.center.y, p.x - a.center.x));
    double ob = ArcOffset(b, std::atan2(p.y - b.center.y, p.x - b.center.x));
    if (oa >= 0 && ob >= 0) out.push_back({p, oa});
  }
}
}  // namespace

Affine Affine::Translation(double dx, double dy, double dz) {
  Affine m;
  m.e = dx;
  m.f = dy;
  m.tz = dz;
  return m;
}

Affine Affine::Rotation(const Point3& base, double angle) {
  Affine m;
  double c = std::cos(angle), s = std::sin(angle);
  m.a = c;
  m.b = -s;
  m.c = s;
  m.d = c;
  m.e = base.x - c * base.x + s * base.y;
  m.f = base.y - s * base.x - c * base.y;
  return m;
}

Affine Affine::Insert(const Point3& origin, const Point3& insertion, double sx,
                      double sy, double sz, double rotation) {
  double c = std::cos(rotation), s = std::sin(rotation);
  Affine m;
  m.a = c * sx;
  m.b = -s * sy;
  m.c = s * sx;
  m.d = c * sy;
  m.sz = sz;
  // origin maps onto insertion
  m.e = insertion.x - (m.a * origin.x + m.b * origin.y);
  m.f = insertion.y - (m.c * origin.x + m.d * origin.y);
  m.tz = insertion.z - sz * origin.z;
  return m;
}

Point3 Affine::Apply(const Point3& p) const {
  return {a * p.x + b * p.y + e, c * p.x + d * p.y + f, sz * p.z + tz};
}

Point3 Affine::ApplyVector(const Point3& v) const {
  return {a * v.x + b * v.y, c * v.x + d * v.y, sz * v.z};
}

Affine Affine::Then(const Affine& n) const {
  Affine m;
  m.a = n.a * a + n.b * c;
  m.b = n.a * b + n.b * d;
  m.c = n.c * a + n.d * c;
  m.d = n.c * b + n.d * d;
  m.e = n.a * e + n.b * f + n.e;
  m.f = n.c * e + n.d * f + n.f;
  m.sz = n.sz * sz;
  m.tz = n.sz * tz + n.tz;
  return m;
}

Affine Affine::Inverse() const {
  double det = a * d - b * c;
  Affine m;
  if (det == 0 || sz == 0) return m;
  m.a = d / det;
  m.b = -b / det;
  m.c = -c / det;
  m.d = a / det;
  m.e = -(m.a * e + m.b * f);
  m.f = -(m.c * e + m.d * f);
  m.sz = 1 / sz;
  m.tz = -tz / sz;
  return m;
}

double Affine::RotationAngle() const { return std::atan2(c, a); }
double Affine::ScaleX() const { return std::hypot(a, c); }
double Affine::ScaleY() const { return std::hypot(b, d); }
double Affine::Scale() const { return std::sqrt(std::fabs(a * d - b * c)); }

double Distance2d(const Point3& p, const Point3& q) {
  return std::hypot(p.x - q.x, p.y - q.y);
}

CurvePiece FullCircle(const Point3& center, double radius) {
  CurvePiece c;
  c.is_arc = true;
  c.center = center;
  c.radius = radius;
  c.start_angle = 0;
  c.sweep = kTwoPi;
  c.p0 = c.p1 = Point3{center.x + radius, center.y, center.z};
  return c;
}

double ArcSweep(double start, double end) {
  if (start == end) return 0;
  double sweep = std::fmod(end - start, kTwoPi);
  if (sweep < 0) sweep += kTwoPi;
  // Rounding of angles meant to be a whole turn apart.
  if (sweep < 1e-12 || sweep > kTwoPi - 1e-12) return kTwoPi;
  return sweep;
}

CurvePiece ArcPiece(const Point3& center, double radius, double start,
                    double sweep) {
  CurvePiece c;
  c.is_arc = true;
  c.center = center;
  c.radius = radius;
  c.start_angle = start;
  c.sweep = sweep;
  c.p0 = Point3{center.x + radius * std::cos(start),
                center.y + radius * std::sin(start), center.z};
  c.p1 = Point3{center.x + radius * std::cos(start + sweep),
                center.y + radius * std::sin(start + sweep), center.z};
  return c;
}

Facing FacingOf(const Point3& n) {
  double len = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  // A missing (zero) normal is the default one.
  if (len == 0) return Facing::kUp;
  if (std::fabs(n.x) > 1e-10 * len || std::fabs(n.y) > 1e-10 * len)
    return Facing::kTilted;
  return n.z > 0 ? Facing::kUp : Facing::kDown;
}

Affine OcsToPlan(const Point3& n, double z) {
  double len = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  if (len == 0 || FacingOf(n) == Facing::kUp) return Affine{};
  Point3 u{n.x / len, n.y / len, n.z / len};
  auto cross = [](const Point3& a, const Point3& b) {
    return Point3{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z,
                  a.x * b.y - a.y * b.x};
  };
  Point3 ax = (std::fabs(u.x) < 1.0 / 64 && std::fabs(u.y) < 1.0 / 64)
                  ? cross({0, 1, 0}, u)
                  : cross({0, 0, 1}, u);
  double ax_len = std::sqrt(ax.x * ax.x + ax.y * ax.y + ax.z * ax.z);
  ax = {ax.x / ax_len, ax.y / ax_len, ax.z / ax_len};
  Point3 ay = cross(u, ax);
  Affine m;
  m.a = ax.x;
  m.b = ay.x;
  m.c = ax.y;
  m.d = ay.y;
  m.e = u.x * z;
  m.f = u.y * z;
  return m;
}

Affine TiltToPlan(const Point3& normal, double z) {
  if (FacingOf(normal) != Facing::kTilted) return Affine{};
  return OcsToPlan(normal, z);
}

Point3 EllipseMinorAxis(const Point3& major, double ratio, const Point3& n) {
  if (FacingOf(n) != Facing::kTilted)
    return {-major.y * ratio, major.x * ratio, 0};
  double len = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  double k = ratio / len;
  return {k * (n.y * major.z - n.z * major.y),
          k * (n.z * major.x - n.x * major.z),
          k * (n.x * major.y - n.y * major.x)};
}

std::vector<CurvePiece> PolylinePieces(const std::vector<double>& xy,
                                       const std::vector<double>& bulges,
                                       bool closed) {
  std::vector<CurvePiece> pieces;
  size_t n = xy.size() / 2;
  if (n < 2) return pieces;
  size_t count = closed ? n : n - 1;
  for (size_t i = 0; i < count; ++i) {
    size_t j = (i + 1) % n;
    CurvePiece piece;
    piece.p0 = Point3{xy[2 * i], xy[2 * i + 1], 0};
    piece.p1 = Point3{xy[2 * j], xy[2 * j + 1], 0};
    double bulge = i < bulges.size() ? bulges[i] : 0.0;
    double chord = Distance2d(piece.p0, piece.p1);
    if (std::fabs(bulge) > 1e-12 && chord > 0) {
      double theta = 4 * std::atan(bulge);  // signed included angle
      double r = chord / (2 * std::sin(std::fabs(theta) / 2));
      double ux = (piece.p1.x - piece.p0.x) / chord;
      double uy = (piece.p1.y - piece.p0.y) / chord;
      double off = r * std::cos(std::fabs(theta) / 2) * (bulge > 0 ? 1 : -1);
      double mx = (piece.p0.x + piece.p1.x) / 2,
             my = (piece.p0.y + piece.p1.y) / 2;
      piece.is_arc = true;
      piece.radius = r;
      piece.center = Point3{mx - uy * off, my + ux * off, 0};
      piece.start_angle =
          std::atan2(piece.p0.y - piece.center.y, piece.p0.x - piece.center.x);
      piece.sweep = theta;
    }
    pieces.push_back(piece);
  }
  return pieces;
}

double PieceLength(const CurvePiece& piece) {
  if (piece.is_arc) return piece.radius * std::fabs(piece.sweep);
  return Distance2d(piece.p0, piece.p1);
}

void AddPieceExtents(const CurvePiece& piece, Box2& box) {
  if (!piece.is_arc) {
    box.Add(piece.p0.x, piece.p0.y);
    box.Add(piece.p1.x, piece.p1.y);
    return;
  }
  box.Add(piece.p0.x, piece.p0.y);
  box.Add(piece.p1.x, piece.p1.y);
  for (int k = 0; k < 4; ++k) {
    double ang = k * kPi / 2;
    if (ArcOffset(piece, ang) >= 0)
      box.Add(piece.center.x + piece.radius * std::cos(ang),
              piece.center.y + piece.radius * std::sin(ang));
  }
}

std::vector<Point3> IntersectCurves(const std::vector<CurvePiece>& a,
                                    bool extend_a,
                                    const std::vector<CurvePiece>& b,
                                    bool extend_b) {
  std::vector<Point3> result;
  auto seen = [&](const Point3& p) {
    for (const Point3& q : result)
      if (Distance2d(p, q) <= kLengthEps) return true;
    return false;
  };
  for (size_t i = 0; i < a.size(); ++i) {
    Range ra = SegmentRange(extend_a, i == 0, i + 1 == a.size());
    for (size_t j = 0; j < b.size(); ++j) {
      Range rb = SegmentRange(extend_b, j == 0, j + 1 == b.size());
      std::vector<Hit> hits;
      const CurvePiece& pa = a[i];
      const CurvePiece& pb = b[j];
      if (!pa.is_arc && !pb.is_arc) {
        SegSeg(pa, ra, pb, rb, hits);
      } else if (!pa.is_arc) {
        SegArc(pa, ra, pb, true, hits);
      } else if (!pb.is_arc) {
        SegArc(pb, rb, pa, false, hits);
        // Order along a: recompute the offsets on a's arc.
        for (Hit& h : hits)
          h.along = ArcOffset(
              pa, std::atan2(h.p.y - pa.center.y, h.p.x - pa.center.x));
      } else {
        ArcArc(pa, pb, hits);
      }
      std::stable_sort(
          hits.begin(), hits.end(),
          [](const Hit& x, const Hit& y) { return x.along < y.along; });
      for (const Hit& h : hits)
        if (!seen(h.p)) result.push_back(h.p);
    }
  }
  return result;
}

}  // namespace kestrana::memhost
