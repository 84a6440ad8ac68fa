// Plan geometry written as SVG: numbers, conic arcs and path data.
//
// Pictures keep drawing coordinates with the Y axis turned over (an SVG
// point is (x, -y)), so every number in a picture can be read back as a
// drawing coordinate.
#pragma once

#include <string>
#include <string_view>

#include "host/types.h"
#include "memhost/geometry.h"

namespace kestrana::render {

using host::Box2;
using host::Point3;
using memhost::Affine;

// A number for SVG: at most 10 significant digits, no trailing zeros.
std::string Num(double value);
// Text escaped for XML content and attribute values.
std::string Xml(std::string_view text);

// The ellipse (or circle) C + U·cos t + V·sin t.
struct Conic {
  Point3 c, u, v;

  static Conic Circle(const Point3& center, double radius);
  // The host's ellipse: major axis vector and minor-to-major ratio.
  static Conic Ellipse(const Point3& center, const Point3& major, double ratio);

  Point3 At(double t) const;
  Conic Mapped(const Affine& m) const;
  // Turning sense: positive when growing t runs counter-clockwise.
  double Orientation() const { return u.x * v.y - u.y * v.x; }
  // Adds the arc from t0 over `sweep` (signed) to `box`.
  void AddArcExtents(double t0, double sweep, Box2& box) const;
};

// Semi-axes and the angle of the first one (radians, counter-clockwise).
struct Axes {
  double rx = 0, ry = 0, angle = 0;
};
Axes PrincipalAxes(const Conic& conic);

// A whole conic as an SVG <circle> or <ellipse> element (without the
// closing "/>"), in drawing coordinates.
std::string ConicElement(const Conic& world);

// Builds SVG path data from points given in block coordinates and mapped by
// a transform into the drawing; keeps the plan extent of what it draws.
class PathBuilder {
 public:
  explicit PathBuilder(const Affine& m) : m_(m) {}

  void MoveTo(const Point3& p);
  // Brings the pen to `p`: a new piece when none is open, a line when the
  // pen is elsewhere, nothing when it is already there.
  void ContinueTo(const Point3& p);
  void LineTo(const Point3& p);
  // Follows `conic` (block coordinates) from t0 over `sweep` (signed),
  // continuing to the arc's start first.
  void ArcTo(const Conic& conic, double t0, double sweep);
  // A circular arc from its centre, radius, start angle and signed sweep.
  void CircularArc(const Point3& center, double radius, double start,
                   double sweep);
  // Closes the open piece; the next point starts a new one.
  void Close();

  const std::string& Data() const { return d_; }
  const Box2& Extent() const { return box_; }
  bool Empty() const { return d_.empty(); }

 private:
  void Pen(char command, const Point3& world);

  Affine m_;
  std::string d_;
  Box2 box_;
  Point3 pen_;
  bool has_pen_ = false;
};

}  // namespace kestrana::render
