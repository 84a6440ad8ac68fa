// What the entity kinds share: walking a kind's subclass groups, planes
// that face down, and the field tables that drive reading, writing and
// fingerprinting of a kind's plain values. Internal to dxf/.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

#include "dxf/kinds.h"

namespace kestrana::dxf::kinds {

using host::Point3;
using memhost::MemEntity;

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;
constexpr double kDegree = kPi / 180.0;

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

inline void SetCoord(Point3& p, const Tag& t, int base) {
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

inline bool IsCoord(int code, int base) {
  return code == base || code == base + 10 || code == base + 20;
}

// Entities whose plane faces down (what mirroring in CAD programs makes)
// hold their values in a plane whose X and Z axes are the world's turned
// over. memhost keeps world values, so reading and writing both turn X and
// Z over and angles from a to π - a (each map is its own inverse).
// Tilted planes are kept as the file has them.
inline bool FacesDown(const Point3& normal) {
  return memhost::FacingOf(normal) == memhost::Facing::kDown;
}
inline Point3 Flip(const Point3& p) { return {-p.x, p.y, -p.z}; }
inline double FlipAngle(double a) { return kPi - a; }
// The normal written: left out where the file has none and it is the
// default.
inline void NormalField(FieldGroup& g, const Point3& normal) {
  g.PointOr(210, normal, normal == Point3{0, 0, 1});
}

// The value of the first tag with `code` in the original's group `marker`.
int64_t OriginalInt(const Shape* original, std::string_view marker, int code,
                    int64_t fallback);

// One plain value of a kind: its group code, where it lives in the state
// and how it is written. The same entry reads the value, writes it and
// adds it to the fingerprint, so the three cannot drift apart.
template <class E>
struct FieldSpec {
  enum class How {
    kPoint,      // three codes: base, base + 10, base + 20
    kNormal,     // 210, left out while it is the default
    kReal,
    kRealOr,     // left out while it is `fallback`
    kRealNear,   // converted on reading: close enough keeps the text
    kDegrees,    // radians in the state, degrees in the file
    kDegreesOr,  // the same, left out while zero
    kText,
  };
  How how;
  int code;
  Point3 E::*point = nullptr;
  double E::*real = nullptr;
  std::string E::*text = nullptr;
  double fallback = 0;
};

template <class E>
FieldSpec<E> PointF(int code, Point3 E::*m) {
  return {FieldSpec<E>::How::kPoint, code, m};
}
template <class E>
FieldSpec<E> NormalF(Point3 E::*m) {
  return {FieldSpec<E>::How::kNormal, 210, m};
}
template <class E>
FieldSpec<E> RealF(int code, double E::*m) {
  return {FieldSpec<E>::How::kReal, code, nullptr, m};
}
template <class E>
FieldSpec<E> RealOrF(int code, double E::*m, double fallback) {
  return {FieldSpec<E>::How::kRealOr, code, nullptr, m, nullptr, fallback};
}
template <class E>
FieldSpec<E> RealNearF(int code, double E::*m) {
  return {FieldSpec<E>::How::kRealNear, code, nullptr, m};
}
template <class E>
FieldSpec<E> DegreesF(int code, double E::*m) {
  return {FieldSpec<E>::How::kDegrees, code, nullptr, m};
}
template <class E>
FieldSpec<E> DegreesOrF(int code, double E::*m) {
  return {FieldSpec<E>::How::kDegreesOr, code, nullptr, m};
}
template <class E>
FieldSpec<E> TextF(int code, std::string E::*m) {
  return {FieldSpec<E>::How::kText, code, nullptr, nullptr, m};
}

// The fields of one subclass group, in the order they are written.
template <class E>
struct GroupSpec {
  std::string_view marker;
  std::vector<FieldSpec<E>> fields;
};
template <class E>
using FieldTable = std::vector<GroupSpec<E>>;

// Reads the fields of `table` from the groups they belong to.
template <class E>
void ReadFields(const FieldTable<E>& table, const Shape& s,
                const TextCodec& codec, E& e) {
  using How = typename FieldSpec<E>::How;
  for (const GroupSpec<E>& group : table) {
    ForBody(s, {group.marker}, [&](std::string_view, const Tag& t) {
      for (const FieldSpec<E>& f : group.fields) {
        switch (f.how) {
          case How::kPoint:
          case How::kNormal:
            if (!IsCoord(t.code, f.code)) continue;
            SetCoord(e.*f.point, t, f.code);
            return;
          case How::kText:
            if (t.code != f.code) continue;
            e.*f.text = codec.Decode(t.value);
            return;
          case How::kDegrees:
          case How::kDegreesOr:
            if (t.code != f.code) continue;
            e.*f.real = RealValue(t) * kDegree;
            return;
          default:
            if (t.code != f.code) continue;
            e.*f.real = RealValue(t);
            return;
        }
      }
    });
  }
}

// Writes the fields of one group of `table` into `g`.
template <class E>
void WriteFields(const GroupSpec<E>& group, const E& e, FieldGroup& g) {
  using How = typename FieldSpec<E>::How;
  for (const FieldSpec<E>& f : group.fields) {
    switch (f.how) {
      case How::kPoint:
        g.Point(f.code, e.*f.point);
        break;
      case How::kNormal:
        NormalField(g, e.*f.point);
        break;
      case How::kReal:
        g.Real(f.code, e.*f.real);
        break;
      case How::kRealOr:
        g.RealOr(f.code, e.*f.real, f.fallback);
        break;
      case How::kRealNear:
        g.RealNear(f.code, e.*f.real);
        break;
      case How::kDegrees:
        g.Degrees(f.code, e.*f.real, false);
        break;
      case How::kDegreesOr:
        g.Degrees(f.code, e.*f.real, true);
        break;
      case How::kText:
        g.Text(f.code, e.*f.text);
        break;
    }
  }
}

// Writes every group of `table`, each a group of its own.
template <class E>
void WriteFields(const FieldTable<E>& table, const E& e, WritePlan& plan) {
  for (const GroupSpec<E>& group : table)
    WriteFields(group, e, plan.groups.emplace_back(group.marker));
}

template <class E>
void HashFields(const FieldTable<E>& table, const E& e, Hasher& h) {
  using How = typename FieldSpec<E>::How;
  for (const GroupSpec<E>& group : table)
    for (const FieldSpec<E>& f : group.fields) {
      if (f.how == How::kPoint || f.how == How::kNormal)
        h.Add(e.*f.point);
      else if (f.how == How::kText)
        h.Add(std::string_view(e.*f.text));
      else
        h.Add(e.*f.real);
    }
}

// The values as the file holds them: `e` itself, or a copy in its plane
// (kept in `storage`) when the plane faces down. `to_plane` is its own
// inverse, so reading uses it the other way.
template <class E>
const E& InPlane(const E& e, std::optional<E>& storage, void (*to_plane)(E&)) {
  if (!FacesDown(e.normal_)) return e;
  storage.emplace(e);
  to_plane(*storage);
  return *storage;
}

// The codecs of each kind family.
extern const EntityCodec kLineCodec;
extern const EntityCodec kPointCodec;
extern const EntityCodec kCircleCodec;
extern const EntityCodec kArcCodec;
extern const EntityCodec kEllipseCodec;
extern const EntityCodec kLwPolylineCodec;
extern const EntityCodec kTextCodec;
extern const EntityCodec kAttribCodec;
extern const EntityCodec kAttdefCodec;
extern const EntityCodec kInsertCodec;
extern const EntityCodec kHatchCodec;

}  // namespace kestrana::dxf::kinds
