#include "render/path.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

namespace kestrana::render {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTwoPi = 2 * std::numbers::pi;

double Normalize(double a) {
  a = std::fmod(a, kTwoPi);
  return a < 0 ? a + kTwoPi : a;
}

bool WithinSweep(double t, double t0, double sweep) {
  if (std::fabs(sweep) >= kTwoPi) return true;
  return sweep >= 0 ? Normalize(t - t0) <= sweep : Normalize(t0 - t) <= -sweep;
}

bool Near(const Point3& a, const Point3& b) {
  double scale = std::max({1.0, std::fabs(a.x), std::fabs(a.y)});
  return std::hypot(a.x - b.x, a.y - b.y) <= 1e-9 * scale;
}

}  // namespace

std::string Num(double value) {
  // Rounding noise such as 6e-15 after a quarter turn reads as 0.
  if (std::fabs(value) < 1e-9) value = 0;
  char buf[32];
  auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value,
                                 std::chars_format::general, 10);
  return std::string(buf, end);
}

std::string Xml(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char ch : text) {
    switch (ch) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&apos;";
        break;
      default:
        // Control characters are not allowed in XML 1.0.
        if (static_cast<unsigned char>(ch) < 0x20 && ch != '\t')
          out += ' ';
        else
          out += ch;
    }
  }
  return out;
}

Conic Conic::Circle(const Point3& center, double radius) {
  return {center, {radius, 0, 0}, {0, radius, 0}};
}

Conic Conic::Ellipse(const Point3& center, const Point3& major, double ratio) {
  // The minor axis is the major one turned a quarter counter-clockwise.
  return {center, major, {-major.y * ratio, major.x * ratio, 0}};
}

Point3 Conic::At(double t) const {
  double ct = std::cos(t), st = std::sin(t);
  return {c.x + u.x * ct + v.x * st, c.y + u.y * ct + v.y * st, c.z};
}

Conic Conic::Mapped(const Affine& m) const {
  return {m.Apply(c), m.ApplyVector(u), m.ApplyVector(v)};
}

void Conic::AddArcExtents(double t0, double sweep, Box2& box) const {
  Point3 a = At(t0), b = At(t0 + sweep);
  box.Add(a.x, a.y);
  box.Add(b.x, b.y);
  // x and y are extreme where their derivative vanishes.
  for (double base : {std::atan2(v.x, u.x), std::atan2(v.y, u.y)}) {
    for (double t : {base, base + kPi}) {
      if (!WithinSweep(t, t0, sweep)) continue;
      Point3 p = At(t);
      box.Add(p.x, p.y);
    }
  }
}

Axes PrincipalAxes(const Conic& k) {
  // The axes are the eigenvectors of M·Mᵀ with M = [u v].
  double a = k.u.x * k.u.x + k.v.x * k.v.x;
  double b = k.u.x * k.u.y + k.v.x * k.v.y;
  double c = k.u.y * k.u.y + k.v.y * k.v.y;
  double mean = (a + c) / 2, spread = std::hypot((a - c) / 2, b);
  Axes axes;
  axes.rx = std::sqrt(mean + spread);
  axes.ry = std::sqrt(std::max(0.0, mean - spread));
  axes.angle = 0.5 * std::atan2(2 * b, a - c);
  return axes;
}

std::string ConicElement(const Conic& w) {
  Axes axes = PrincipalAxes(w);
  std::string cx = Num(w.c.x), cy = Num(-w.c.y);
  if (axes.rx - axes.ry <= 1e-9 * std::max(1.0, axes.rx))
    return "<circle cx=\"" + cx + "\" cy=\"" + cy + "\" r=\"" + Num(axes.rx) +
           "\"";
  std::string out = "<ellipse cx=\"" + cx + "\" cy=\"" + cy + "\" rx=\"" +
                    Num(axes.rx) + "\" ry=\"" + Num(axes.ry) + "\"";
  // SVG turns clockwise on screen, which is counter-clockwise in the plan.
  double degrees = -axes.angle * 180 / kPi;
  if (std::fabs(degrees) > 1e-9)
    out += " transform=\"rotate(" + Num(degrees) + " " + cx + " " + cy + ")\"";
  return out;
}

void PathBuilder::Pen(char command, const Point3& w) {
  if (!d_.empty()) d_ += ' ';
  d_ += command;
  d_ += Num(w.x) + " " + Num(-w.y);
  box_.Add(w.x, w.y);
  pen_ = w;
  has_pen_ = true;
}

void PathBuilder::MoveTo(const Point3& p) { Pen('M', m_.Apply(p)); }

void PathBuilder::ContinueTo(const Point3& p) {
  Point3 w = m_.Apply(p);
  if (!has_pen_)
    Pen('M', w);
  else if (!Near(w, pen_))
    Pen('L', w);
}

void PathBuilder::LineTo(const Point3& p) {
  if (!has_pen_) return MoveTo(p);
  Pen('L', m_.Apply(p));
}

void PathBuilder::ArcTo(const Conic& conic, double t0, double sweep) {
  ContinueTo(conic.At(t0));
  if (sweep == 0) return;
  Conic w = conic.Mapped(m_);
  Axes axes = PrincipalAxes(w);
  std::string head = " A" + Num(axes.rx) + " " + Num(axes.ry) + " " +
                     Num(-axes.angle * 180 / kPi) + " 0 ";
  // Counter-clockwise in the plan is the negative sense in SVG.
  head += (w.Orientation() * sweep > 0) ? "0 " : "1 ";
  // Quarter turns at most, so no arc is ambiguous or degenerate.
  int pieces = std::max(
      1, static_cast<int>(std::ceil(std::fabs(sweep) / (kPi / 2) - 1e-9)));
  for (int i = 1; i <= pieces; ++i) {
    Point3 end = w.At(t0 + sweep * i / pieces);
    d_ += head + Num(end.x) + " " + Num(-end.y);
    pen_ = end;
  }
  w.AddArcExtents(t0, sweep, box_);
}

void PathBuilder::CircularArc(const Point3& center, double radius, double start,
                              double sweep) {
  ArcTo(Conic::Circle(center, radius), start, sweep);
}

void PathBuilder::Close() {
  if (!has_pen_) return;
  d_ += " Z";
  has_pen_ = false;
}

}  // namespace kestrana::render
