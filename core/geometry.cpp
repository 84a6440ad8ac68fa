#include "core/geometry.h"

#include <cmath>

#include "core/text.h"

namespace kestrana::core {

namespace {
int VertexCount(const std::vector<double>& xy) {
  return static_cast<int>(xy.size() / 2);
}
}  // namespace

double PlanDistance(double x1, double y1, double x2, double y2) {
  double dx = x2 - x1, dy = y2 - y1;
  return std::sqrt(dx * dx + dy * dy);
}

bool PointOnSegment(double px, double py, double ax, double ay, double bx,
                    double by, int places) {
  double sum = PlanDistance(px, py, ax, ay) + PlanDistance(px, py, bx, by);
  return RoundHalfEven(sum, places) ==
         RoundHalfEven(PlanDistance(ax, ay, bx, by), places);
}

bool PointOnVertexList(const std::vector<double>& xy, double px, double py,
                       int places) {
  for (int k = 0; k + 1 < VertexCount(xy); ++k) {
    if (PointOnSegment(px, py, xy[2 * k], xy[2 * k + 1], xy[2 * k + 2],
                       xy[2 * k + 3], places))
      return true;
  }
  return false;
}

int16_t PointPositionOnVertexList(const std::vector<double>& xy, double px,
                                  double py) {
  int n = VertexCount(xy);
  if (n == 0) return 0;
  auto at_vertex = [&](int k) {
    return RoundHalfEven(px, kStationPlaces) ==
               RoundHalfEven(xy[2 * k], kStationPlaces) &&
           RoundHalfEven(py, kStationPlaces) ==
               RoundHalfEven(xy[2 * k + 1], kStationPlaces);
  };
  if (at_vertex(0) || at_vertex(n - 1)) return 1;
  return PointOnVertexList(xy, px, py, kStationPlaces) ? 2 : 0;
}

double StationOnVertexList(const std::vector<double>& xy, double px,
                           double py) {
  double station = 0;
  for (int k = 0; k + 1 < VertexCount(xy); ++k) {
    double ax = xy[2 * k], ay = xy[2 * k + 1];
    double bx = xy[2 * k + 2], by = xy[2 * k + 3];
    if (PointOnSegment(px, py, ax, ay, bx, by, kStationPlaces))
      return station + PlanDistance(px, py, ax, ay);
    station += PlanDistance(ax, ay, bx, by);
  }
  return 0;
}

int VertexIndexForPoint(const std::vector<double>& xy, double px, double py) {
  for (int k = 0; k + 1 < VertexCount(xy); ++k) {
    if (PointOnSegment(px, py, xy[2 * k], xy[2 * k + 1], xy[2 * k + 2],
                       xy[2 * k + 3], kStationPlaces))
      return k + 1;
  }
  return VertexCount(xy);
}

host::Point3 PointAtStation(const std::vector<double>& xy, double station) {
  double walked = 0;
  for (int k = 0; k + 1 < VertexCount(xy); ++k) {
    double ax = xy[2 * k], ay = xy[2 * k + 1];
    double bx = xy[2 * k + 2], by = xy[2 * k + 3];
    double length = RoundHalfEven(PlanDistance(ax, ay, bx, by), 7);
    if (length == 0) length = 0.000001;
    double rest = station - walked;
    if (rest <= length)
      return {ax + (bx - ax) * rest / length, ay + (by - ay) * rest / length,
              0.0};
    walked += length;
  }
  return {};
}

double AngleFromDelta(double dx, double dy) {
  if (dx == 0) return dy < 0 ? kThreePi / 2 : kPi / 2;
  double a = std::atan(std::fabs(dy) / std::fabs(dx));
  if (dx >= 0 && dy >= 0) return a;
  if (dx < 0 && dy >= 0) return kPi - a;
  if (dx < 0) return a + kPi;
  return kTwoPi - a;
}

}  // namespace kestrana::core
