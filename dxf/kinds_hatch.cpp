// Hatches: pattern, plane and boundary paths.
#include <algorithm>
#include <cmath>

#include "dxf/kind_fields.h"

namespace kestrana::dxf::kinds {

namespace {

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


}  // namespace

const EntityCodec kHatchCodec = {"HATCH", host::EntityKind::kHatch, ReadHatch,
                                 HatchFields, HatchHash};

}  // namespace kestrana::dxf::kinds
