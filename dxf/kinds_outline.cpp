// Pictures of kinds the model keeps as read (MTEXT, DIMENSION, LEADER,
// SPLINE, classic POLYLINE, SOLID, TRACE, 3DFACE, WIPEOUT, IMAGE), so that
// a base plan shows behind the network. Only what a plan view needs:
// outlines, texts and a dimension's block.
#include <algorithm>
#include <cmath>

#include "dxf/kind_fields.h"

namespace kestrana::dxf {

using host::Point3;
using memhost::MemOtherEntity;

namespace {

using kinds::ForBody;
using kinds::IsCoord;
using kinds::kDegree;
using kinds::SetCoord;

// Points given by the codes base, base + 10, base + 20 in order of
// appearance (a new point starts at each X).
std::vector<Point3> PointsOf(const Shape& s, int base) {
  std::vector<Point3> points;
  ForBody(s, {}, [&](std::string_view, const Tag& t) {
    if (t.code == base) points.push_back({});
    if (!points.empty() && IsCoord(t.code, base))
      SetCoord(points.back(), t, base);
  });
  return points;
}

std::vector<double> RealsOf(const Shape& s, int code) {
  std::vector<double> values;
  ForBody(s, {}, [&](std::string_view, const Tag& t) {
    if (t.code == code) values.push_back(RealValue(t));
  });
  return values;
}

// Texts of MTEXT without their formatting: paragraphs become lines.
std::string PlainMText(const std::string& raw) {
  std::string out;
  for (size_t i = 0; i < raw.size(); ++i) {
    char c = raw[i];
    if (c == '{' || c == '}') continue;
    if (c != '\\' || i + 1 == raw.size()) {
      out += c;
      continue;
    }
    char code = raw[++i];
    switch (code) {
      case 'P':
      case 'X':
        out += '\n';
        break;
      case '~':
        out += ' ';
        break;
      case '\\':
      case '{':
      case '}':
        out += code;
        break;
      case 'f':
      case 'F':
      case 'H':
      case 'C':
      case 'c':
      case 'A':
      case 'T':
      case 'Q':
      case 'W':
      case 'p': {
        size_t end = raw.find(';', i);
        i = end == std::string::npos ? raw.size() : end;
        break;
      }
      case 'S': {  // stacked fractions: "1^2" shown as "1/2"
        size_t end = raw.find(';', i);
        std::string stack = raw.substr(i + 1, end == std::string::npos
                                                  ? std::string::npos
                                                  : end - i - 1);
        std::replace(stack.begin(), stack.end(), '^', '/');
        std::replace(stack.begin(), stack.end(), '#', '/');
        out += stack;
        i = end == std::string::npos ? raw.size() : end;
        break;
      }
      default:  // \L \l \O \o \K \k and others switch styles only
        break;
    }
  }
  return out;
}

void MText(const Shape& s, const TextCodec& codec, MemOtherEntity& e) {
  MemOtherEntity::Label label;
  std::string text, last;
  int attachment = 1;
  Point3 direction{1, 0, 0};
  bool has_direction = false;
  ForBody(s, {}, [&](std::string_view, const Tag& t) {
    if (IsCoord(t.code, 10)) {
      SetCoord(label.at, t, 10);
    } else if (t.code == 40) {
      label.height = RealValue(t);
    } else if (t.code == 3) {
      text += codec.Decode(t.value);
    } else if (t.code == 1) {
      last = codec.Decode(t.value);
    } else if (t.code == 50) {
      label.rotation = RealValue(t) * kDegree;
    } else if (t.code == 11 || t.code == 21) {
      SetCoord(direction, t, 11);
      has_direction = true;
    } else if (t.code == 71) {
      attachment = static_cast<int>(IntValue(t));
    }
  });
  if (has_direction && (direction.x != 0 || direction.y != 0))
    label.rotation = std::atan2(direction.y, direction.x);
  label.text = PlainMText(text + last);
  if (label.text.empty()) return;
  // The text reads from its attachment point: move to the top left.
  size_t lines = std::count(label.text.begin(), label.text.end(), '\n') + 1;
  double block_height = label.height * (1.667 * (lines - 1) + 1);
  double width = 0;
  size_t start = 0;
  while (start <= label.text.size()) {
    size_t end = label.text.find('\n', start);
    if (end == std::string::npos) end = label.text.size();
    width = std::max(width, 0.8 * label.height * (end - start));
    start = end + 1;
  }
  if (attachment < 1 || attachment > 9) attachment = 1;
  double dx = -width * ((attachment - 1) % 3) / 2;
  double dy = block_height * ((attachment - 1) / 3) / 2;
  double c = std::cos(label.rotation), sn = std::sin(label.rotation);
  label.at.x += c * dx - sn * dy;
  label.at.y += sn * dx + c * dy;
  e.labels_.push_back(std::move(label));
}

// The B-spline through its control points, sampled; the fit points or the
// control polygon when knots and degree do not make one.
std::vector<Point3> SplinePoints(const Shape& s) {
  std::vector<Point3> control = PointsOf(s, 10);
  std::vector<Point3> fit = PointsOf(s, 11);
  std::vector<double> knots = RealsOf(s, 40);
  std::vector<double> weights = RealsOf(s, 41);
  int degree = 3;
  ForBody(s, {}, [&](std::string_view, const Tag& t) {
    if (t.code == 71) degree = static_cast<int>(IntValue(t));
  });
  size_t n = control.size();
  if (n < 2 || degree < 1 || degree > 15 || n < static_cast<size_t>(degree) + 1 ||
      knots.size() != n + degree + 1)
    return fit.size() >= 2 ? fit : control;
  if (weights.size() != n) weights.assign(n, 1.0);
  double t0 = knots[degree], t1 = knots[n];
  if (!(t1 > t0)) return fit.size() >= 2 ? fit : control;
  std::vector<Point3> out;
  size_t samples = std::min<size_t>(8 * n, 2000);
  for (size_t k = 0; k <= samples; ++k) {
    double t = t0 + (t1 - t0) * k / samples;
    // The knot span holding t, then de Boor's steps in homogeneous form.
    size_t span = degree;
    while (span + 1 < n && knots[span + 1] <= t) ++span;
    std::vector<std::array<double, 4>> d(degree + 1);
    for (int j = 0; j <= degree; ++j) {
      const Point3& p = control[span - degree + j];
      double w = weights[span - degree + j];
      d[j] = {p.x * w, p.y * w, p.z * w, w};
    }
    for (int r = 1; r <= degree; ++r)
      for (int j = degree; j >= r; --j) {
        size_t i = span - degree + j;
        double den = knots[i + degree - r + 1] - knots[i];
        double a = den == 0 ? 0 : (t - knots[i]) / den;
        for (int c = 0; c < 4; ++c)
          d[j][c] = (1 - a) * d[j - 1][c] + a * d[j][c];
      }
    double w = d[degree][3] == 0 ? 1 : d[degree][3];
    out.push_back({d[degree][0] / w, d[degree][1] / w, d[degree][2] / w});
  }
  return out;
}

// An image's or wipeout's clip boundary (pixel coordinates from the top
// left) or else its frame, in world coordinates.
std::vector<Point3> ImageFrame(const Shape& s) {
  std::vector<Point3> origin = PointsOf(s, 10), u = PointsOf(s, 11),
                      v = PointsOf(s, 12), size = PointsOf(s, 13);
  if (origin.empty() || u.empty() || v.empty() || size.empty()) return {};
  std::vector<Point3> boundary = PointsOf(s, 14);
  double w = size[0].x, h = size[0].y;
  if (boundary.size() == 2)
    boundary = {boundary[0],
                {boundary[1].x, boundary[0].y, 0},
                boundary[1],
                {boundary[0].x, boundary[1].y, 0}};
  if (boundary.size() < 3)
    boundary = {{-0.5, -0.5, 0}, {w - 0.5, -0.5, 0}, {w - 0.5, h - 0.5, 0},
                {-0.5, h - 0.5, 0}};
  Point3 o = origin[0], a = u[0], b = v[0];
  Point3 base{o.x + a.x * 0.5 - b.x * 0.5, o.y + a.y * 0.5 - b.y * 0.5,
              o.z + a.z * 0.5 - b.z * 0.5};
  std::vector<Point3> out;
  for (const Point3& p : boundary)
    out.push_back({base.x + a.x * p.x + b.x * (h - p.y),
                   base.y + a.y * p.x + b.y * (h - p.y),
                   base.z + a.z * p.x + b.z * (h - p.y)});
  return out;
}

void Corners(const Shape& s, MemOtherEntity& e, bool solid) {
  std::vector<Point3> c;
  for (int base : {10, 11, 12, 13}) {
    std::vector<Point3> p = PointsOf(s, base);
    if (!p.empty()) c.push_back(p[0]);
  }
  if (c.size() < 3) return;
  if (c.size() == 3) c.push_back(c[2]);
  // SOLID and TRACE list their corners in a Z: the third and fourth swap.
  if (solid) std::swap(c[2], c[3]);
  e.outlines_.push_back({c, true});
}

}  // namespace

void ReadOutline(const Shape& s, const TextCodec& codec, MemOtherEntity& e) {
  std::string_view type = s.Type();
  if (type == "MTEXT") {
    MText(s, codec, e);
  } else if (type == "DIMENSION") {
    ForBody(s, {}, [&](std::string_view, const Tag& t) {
      if (t.code == 2 && e.picture_block_.empty())
        e.picture_block_ = codec.Decode(t.value);
    });
  } else if (type == "LEADER") {
    std::vector<Point3> points = PointsOf(s, 10);
    if (points.size() >= 2) e.outlines_.push_back({points, false});
  } else if (type == "SPLINE") {
    std::vector<Point3> points = SplinePoints(s);
    if (points.size() >= 2) e.outlines_.push_back({points, false});
  } else if (type == "SOLID" || type == "TRACE") {
    Corners(s, e, true);
  } else if (type == "3DFACE") {
    Corners(s, e, false);
  } else if (type == "WIPEOUT" || type == "IMAGE") {
    std::vector<Point3> frame = ImageFrame(s);
    if (frame.size() >= 3) e.outlines_.push_back({frame, true});
  }
}

PolylineOutline::PolylineOutline(const Shape& polyline) {
  ForBody(polyline, {}, [&](std::string_view, const Tag& t) {
    if (t.code == 70) flags_ = IntValue(t);
    if (t.code == 30) elevation_ = RealValue(t);
    if (IsCoord(t.code, 210)) SetCoord(normal_, t, 210);
  });
}

void PolylineOutline::AddVertex(const Shape& vertex) {
  Vertex v;
  ForBody(vertex, {}, [&](std::string_view, const Tag& t) {
    if (IsCoord(t.code, 10)) SetCoord(v.at, t, 10);
    if (t.code == 42) v.bulge = RealValue(t);
    if (t.code == 70) v.flags = IntValue(t);
    if (t.code >= 71 && t.code <= 74) v.face[t.code - 71] = IntValue(t);
  });
  vertices_.push_back(v);
}

void PolylineOutline::Finish(MemOtherEntity& e) const {
  constexpr int64_t kClosed = 1, kPlane3d = 8, kMesh = 16, kFaces = 64;
  bool down = kinds::FacesDown(normal_);
  bool flat = (flags_ & (kPlane3d | kMesh | kFaces)) == 0;
  if (flat && !(normal_ == Point3{0, 0, 1}) && !down) return;  // tilted
  auto world = [&](Point3 p) {
    if (flat) p.z = elevation_;
    return down ? kinds::Flip(p) : p;
  };
  if ((flags_ & kFaces) != 0) {
    // Polyface mesh: vertices first, then face records naming them from 1
    // (negative for an invisible edge).
    std::vector<Point3> points;
    for (const Vertex& v : vertices_)
      if ((v.flags & 128) != 0 && (v.flags & 64) != 0) points.push_back(v.at);
    for (const Vertex& v : vertices_) {
      if ((v.flags & 128) == 0 || (v.flags & 64) != 0) continue;
      MemOtherEntity::Outline face{{}, true};
      for (int64_t index : v.face) {
        int64_t i = index < 0 ? -index : index;
        if (i >= 1 && static_cast<size_t>(i) <= points.size())
          face.points.push_back(points[i - 1]);
      }
      if (face.points.size() >= 2) e.outlines_.push_back(std::move(face));
    }
    return;
  }
  if ((flags_ & kMesh) != 0) return;  // polygon meshes are not drawn
  MemOtherEntity::Outline line{{}, (flags_ & kClosed) != 0};
  std::vector<const Vertex*> drawn;
  for (const Vertex& v : vertices_)
    if ((v.flags & 16) == 0) drawn.push_back(&v);  // not a spline frame
  for (size_t i = 0; i < drawn.size(); ++i) {
    const Vertex& a = *drawn[i];
    line.points.push_back(world(a.at));
    bool last = i + 1 == drawn.size();
    if (a.bulge == 0 || !flat || (last && !line.closed)) continue;
    const Vertex& b = *drawn[last ? 0 : i + 1];
    // An arc from a to b turning through 4 atan(bulge).
    double theta = 4 * std::atan(a.bulge);
    double dx = b.at.x - a.at.x, dy = b.at.y - a.at.y;
    double chord = std::hypot(dx, dy);
    if (chord == 0) continue;
    double h = chord / 2 / std::tan(theta / 2);
    Point3 center{(a.at.x + b.at.x) / 2 - dy / chord * h,
                  (a.at.y + b.at.y) / 2 + dx / chord * h, 0};
    double r = std::hypot(a.at.x - center.x, a.at.y - center.y);
    double start = std::atan2(a.at.y - center.y, a.at.x - center.x);
    for (int k = 1; k < 16; ++k) {
      double angle = start + theta * k / 16;
      line.points.push_back(world(
          {center.x + r * std::cos(angle), center.y + r * std::sin(angle), 0}));
    }
  }
  if (line.points.size() >= 2) e.outlines_.push_back(std::move(line));
}

}  // namespace kestrana::dxf
