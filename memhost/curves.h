// Lines, points, lightweight polylines, circles, arcs and ellipses.
#pragma once

#include <utility>

#include "memhost/object.h"

namespace kestrana::memhost {

class MemLwPolyline final : public EntityImpl<host::LwPolyline> {
 public:
  std::string ObjectName() const override { return "AcDbPolyline"; }
  EntityKind Kind() const override { return EntityKind::kLwPolyline; }
  std::string EntityName() const override { return "LWPOLYLINE"; }
  std::vector<double> Coordinates() const override;
  void SetCoordinates(const std::vector<double>& xy) override;
  int NumberOfVertices() const override;
  double Length() const override;
  bool Closed() const override;
  void SetClosed(bool closed) override;
  double GetBulge(int index) const override;
  void SetBulge(int index, double bulge) override;
  double ConstantWidth() const override;
  void SetConstantWidth(double width) override;
  std::pair<double, double> GetWidth(int index) const override;
  void SetWidth(int index, double start_width, double end_width) override;
  double Elevation() const override;
  void SetElevation(double elevation) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::vector<CurvePiece> Pieces() const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  // Plain state, for the file layer and renderer.
  std::vector<double> xy_;
  std::vector<double> bulges_;                     // one per vertex
  std::vector<std::pair<double, double>> widths_;  // one per vertex
  double constant_width_ = 0;
  bool closed_ = false;
  double elevation_ = 0;
  Point3 normal_{0, 0, 1};

 private:
  void CheckIndex(int index) const;
};

class MemLine final : public EntityImpl<host::Line> {
 public:
  std::string ObjectName() const override { return "AcDbLine"; }
  EntityKind Kind() const override { return EntityKind::kLine; }
  std::string EntityName() const override { return "LINE"; }
  Point3 StartPoint() const override;
  void SetStartPoint(const Point3& p) override;
  Point3 EndPoint() const override;
  void SetEndPoint(const Point3& p) override;
  double Length() const override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::vector<CurvePiece> Pieces() const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 start_, end_;
};

class MemPoint final : public EntityImpl<host::Point> {
 public:
  std::string ObjectName() const override { return "AcDbPoint"; }
  EntityKind Kind() const override { return EntityKind::kPoint; }
  std::string EntityName() const override { return "POINT"; }
  Point3 Coordinates() const override;
  void SetCoordinates(const Point3& p) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 position_;
};

class MemCircle final : public EntityImpl<host::Circle> {
 public:
  std::string ObjectName() const override { return "AcDbCircle"; }
  EntityKind Kind() const override { return EntityKind::kCircle; }
  std::string EntityName() const override { return "CIRCLE"; }
  Point3 Center() const override;
  void SetCenter(const Point3& p) override;
  double Radius() const override;
  void SetRadius(double r) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::vector<CurvePiece> Pieces() const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 center_;
  double radius_ = 0;
  // The plane's normal; see Facing. Tilted circles keep the centre in their
  // plane's coordinates.
  Point3 normal_{0, 0, 1};
};

class MemArc final : public EntityImpl<host::Arc> {
 public:
  std::string ObjectName() const override { return "AcDbArc"; }
  EntityKind Kind() const override { return EntityKind::kArc; }
  std::string EntityName() const override { return "ARC"; }
  Point3 Center() const override;
  void SetCenter(const Point3& p) override;
  double Radius() const override;
  void SetRadius(double r) override;
  double StartAngle() const override;
  void SetStartAngle(double angle) override;
  double EndAngle() const override;
  void SetEndAngle(double angle) override;
  Point3 StartPoint() const override;
  Point3 EndPoint() const override;
  double Length() const override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::vector<CurvePiece> Pieces() const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 center_;
  double radius_ = 0;
  double start_angle_ = 0;  // radians, counter-clockwise seen from above
  double end_angle_ = 0;
  // As for circles; a tilted arc's angles are those of its own plane.
  Point3 normal_{0, 0, 1};
};

class MemEllipse final : public EntityImpl<host::Ellipse> {
 public:
  std::string ObjectName() const override { return "AcDbEllipse"; }
  EntityKind Kind() const override { return EntityKind::kEllipse; }
  std::string EntityName() const override { return "ELLIPSE"; }
  Point3 Center() const override;
  void SetCenter(const Point3& p) override;
  Point3 MajorAxis() const override;
  void SetMajorAxis(const Point3& v) override;
  double RadiusRatio() const override;
  void SetRadiusRatio(double ratio) override;
  double StartParameter() const override;
  double EndParameter() const override;
  void SetParameters(double start, double end) override;

  void Transform(const Affine& m) override;
  void AddExtents(const Affine& m, Box2& box) const override;
  std::unique_ptr<MemEntity> CloneState() const override;

  Point3 center_;
  Point3 major_axis_{1, 0, 0};
  double ratio_ = 1;
  double start_param_ = 0;
  double end_param_ = 6.283185307179586;
  // Centre and axis are world values whatever the plane; parameters run
  // counter-clockwise seen from above unless the ellipse is tilted.
  Point3 normal_{0, 0, 1};
};

}  // namespace kestrana::memhost
