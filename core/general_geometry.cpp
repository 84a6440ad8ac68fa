// Plan geometry of points, lines and pipes.
#include <cmath>
#include <variant>

#include "core/general.h"
#include "core/geometry.h"
#include "core/text.h"
#include "host/host.h"

namespace kestrana::core {

bool General::CheckPointOnLine(const host::Point3& my_point,
                               const host::Line& my_line) {
  host::Point3 a = my_line.StartPoint(), b = my_line.EndPoint();
  double sum = PlanDistance(my_point.x, my_point.y, a.x, a.y) +
               PlanDistance(my_point.x, my_point.y, b.x, b.y);
  return RoundHalfEven(sum, kLinePlaces) ==
         RoundHalfEven(my_line.Length(), kLinePlaces);
}

bool General::CheckPointOnPolyline(const host::Point3& my_point,
                                   const host::LwPolyline& my_line) {
  return PointOnVertexList(my_line.Coordinates(), my_point.x, my_point.y,
                           kLinePlaces);
}

int16_t General::PointIsOnPolyline(const host::Point3& my_point,
                                   const host::LwPolyline& my_polyline) {
  return PointPositionOnVertexList(my_polyline.Coordinates(), my_point.x,
                                   my_point.y);
}

double General::GetStation(const host::LwPolyline& pipe, double x, double y) {
  return StationOnVertexList(pipe.Coordinates(), x, y);
}

double General::GetPointStationOnPolyline(
    const std::vector<double>& pl_coordinates, const host::Point3& my_point) {
  return StationOnVertexList(pl_coordinates, my_point.x, my_point.y);
}

int16_t General::GetNodeIndexOnPolyline(const host::LwPolyline& pipe,
                                        const host::Point3& my_point) {
  return ToInt16(
      VertexIndexForPoint(pipe.Coordinates(), my_point.x, my_point.y));
}

host::Point3 General::GetCoordinatesAtPipeStation(
    const std::vector<double>& ar_coordinates, double station) {
  return PointAtStation(ar_coordinates, station);
}

double General::GetAngleFromDelta(double delta_x, double delta_y) {
  return AngleFromDelta(delta_x, delta_y);
}

namespace {
host::Point3 Direction(host::Document& document, const char* variable) {
  host::SysVar value = document.GetVariable(variable);
  if (const auto* point = std::get_if<host::Point3>(&value)) return *point;
  throw host::HostError(host::ErrorCode::kWrongKind,
                        std::string(variable) + " is not a direction");
}
}  // namespace

double General::GetCorrectionAngleForCS(host::Document& document) {
  host::Point3 x_dir = Direction(document, "UCSXDIR");
  host::Point3 y_dir = Direction(document, "UCSYDIR");
  double ax = AngleFromDelta(x_dir.x, x_dir.y);
  double ay = AngleFromDelta(y_dir.x, y_dir.y);
  double d = ay - ax;
  if (d < 0) d += kTwoPi;
  // The Y axis clockwise from the X axis: a mirrored system.
  if (RoundHalfEven(d, 5) > RoundHalfEven(kPi / 2, 5)) return ax + kPi;
  return ax;
}

int32_t General::RoundUp(double my_double) {
  double whole = std::floor(my_double);
  return ToInt32(whole == my_double ? my_double : whole + 1);
}

}  // namespace kestrana::core
