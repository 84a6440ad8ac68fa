// Plan geometry on vertex lists (flat X0, Y0, X1, Y1, ...). Z is ignored.
// The tolerances are decimal places of a distance-sum test: P lies on AB when
// |PA| + |PB| and |AB|, each rounded half to even to that many places, are
// equal. Which operation uses 8 and which 4 places is part of its behaviour.
#pragma once

#include <cstdint>
#include <vector>

#include "host/types.h"

namespace kestrana::core {

// π and its multiples to ten significant digits, as every stored angle and
// every comparison of the system has always used them.
inline constexpr double kPi = 3.141592654;
inline constexpr double kTwoPi = 6.283185308;
inline constexpr double kThreePi = 9.424777962;

inline constexpr int kLinePlaces = 8;     // lines and CheckPointOnPolyline
inline constexpr int kStationPlaces = 4;  // stations, vertex positions

double PlanDistance(double x1, double y1, double x2, double y2);

bool PointOnSegment(double px, double py, double ax, double ay, double bx,
                    double by, int places);

// True when the point lies on some segment of the list.
bool PointOnVertexList(const std::vector<double>& xy, double px, double py,
                       int places);

// 1 at the first or last vertex (coordinates equal after rounding to 4
// places), 2 elsewhere on the list, 0 off it.
int16_t PointPositionOnVertexList(const std::vector<double>& xy, double px,
                                  double py);

// The station of the point: the length walked to the first segment that
// holds it plus the distance from that segment's start; 0 off the list.
double StationOnVertexList(const std::vector<double>& xy, double px, double py);

// The vertex position at which a vertex at the point would be inserted: the
// index of the end vertex of the first segment that holds it, or the number
// of vertices when none does.
int VertexIndexForPoint(const std::vector<double>& xy, double px, double py);

// The plan point at a station; segment lengths are rounded to 7 places (a
// zero length counts as 0.000001). Beyond the last segment: (0, 0).
host::Point3 PointAtStation(const std::vector<double>& xy, double station);

// The direction of (dx, dy) in [0, 2π), with the system's π; straight up for
// (0, 0).
double AngleFromDelta(double dx, double dy);

}  // namespace kestrana::core
