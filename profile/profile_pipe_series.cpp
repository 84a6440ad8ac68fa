// The series of one pipe along a profile: its ground line, its values at
// regular stations and its coordinate labels.
#include <algorithm>
#include <cmath>

#include "core/geometry.h"
#include "core/names.h"
#include "core/text.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_series.h"

namespace kestrana::profile {

namespace {

// Ground samples along a pipe: every 3 m, or every 10 ft.
constexpr double kMetricGroundStep = 3.0;
constexpr double kUSGroundStep = 10.0;

// Coordinates are written to the centimetre (or hundredth of a foot).
constexpr char kCoordinatePattern[] = "0.00";

double Interpolated(double at_a, double at_b, double fraction) {
  return core::RoundHalfEven(at_a + (at_b - at_a) * fraction, kDistancePlaces);
}

std::string CoordinateText(const host::Point3& point) {
  return "E " + core::FormatNumber(point.x, kCoordinatePattern) + " N " +
         core::FormatNumber(point.y, kCoordinatePattern);
}

}  // namespace

std::string Profile::GetGroundLineStringForProfile(
    host::CivilDocument& aecc_doc, const host::LwPolyline& my_pipe,
    bool draw_ground_from_surface, std::string_view ground_surface_name,
    double first_ground, double second_ground, double start_distance,
    std::string_view model_units, int direction_index) {
  const double length = ProfilePipeLength(my_pipe);
  std::string series;
  if (!draw_ground_from_surface) {
    AppendPair(series, start_distance, first_ground);
    AppendPair(series, start_distance + length, second_ground);
    return series;
  }
  const host::Surface& surface = GroundSurface(aecc_doc, ground_surface_name);
  const double step =
      model_units == core::kMetric ? kMetricGroundStep : kUSGroundStep;
  const std::vector<double> xy = VerticesFromA(my_pipe, direction_index);
  auto sample = [&](double distance) {
    AppendPair(series,
               core::RoundHalfEven(start_distance + distance, kDistancePlaces),
               GroundAt(surface, PointAlong(xy, distance), my_pipe));
  };
  const double whole_steps =
      std::floor(core::RoundHalfEven(length / step, kDistancePlaces));
  for (double k = 0; k <= whole_steps; k += 1) sample(k * step);
  if (core::RoundHalfEven(length - whole_steps * step, kDistancePlaces) > 0)
    sample(length);
  return series;
}

StationSeries Profile::GetPipeDataAtStationsArray(
    host::CivilDocument& aecc_doc, const host::LwPolyline& my_pipe,
    double start_part_distance, double start_profile_distance,
    int direction_index, double station_interval, double first_ground,
    double second_ground, double first_invert, double second_invert,
    bool draw_ground_from_surface, std::string_view ground_surface_name,
    double rise_in_elevation_units) {
  const double length = ProfilePipeLength(my_pipe);
  const host::Surface* surface =
      draw_ground_from_surface ? &GroundSurface(aecc_doc, ground_surface_name)
                               : nullptr;
  const std::vector<double> xy = VerticesFromA(my_pipe, direction_index);
  StationSeries result;
  for (double station :
       RegularStations(start_profile_distance, length, station_interval)) {
    const double along = station - start_profile_distance;
    const double distance =
        core::RoundHalfEven(along + start_part_distance, kDistancePlaces);
    const double fraction = along / length;
    const double invert = Interpolated(first_invert, second_invert, fraction);
    const double ground =
        surface != nullptr
            ? GroundAt(*surface, PointAlong(xy, along), my_pipe)
            : Interpolated(first_ground, second_ground, fraction);
    AppendPair(result.inverts, distance, invert);
    AppendPair(result.grounds, distance, ground);
    AppendPair(result.invert_depths, distance,
               core::RoundHalfEven(ground - invert, kDistancePlaces));
    AppendPair(result.cover_depths, distance,
               core::RoundHalfEven(ground - invert - rise_in_elevation_units,
                                   kDistancePlaces));
  }
  return result;
}

std::string Profile::GetCoordinatesStringForProfile(
    const host::LwPolyline& my_pipe, double start_part_distance,
    double start_profile_distance, int pipe_index_on_part, int direction_index,
    bool show_coord_at_stations, bool show_coord_at_nodes,
    bool show_coord_at_vertices, double station_interval) {
  const double length = ProfilePipeLength(my_pipe);
  const std::vector<double> xy = VerticesFromA(my_pipe, direction_index);
  const size_t vertices = xy.size() / 2;
  struct Place {
    double along;
    host::Point3 point;
  };
  std::vector<Place> places;
  if (show_coord_at_nodes && pipe_index_on_part == 0)
    places.push_back({0, PointAlong(xy, 0)});
  if (show_coord_at_vertices) {
    double along = 0;
    for (size_t k = 1; k + 1 < vertices; ++k) {
      along += core::PlanDistance(xy[2 * k - 2], xy[2 * k - 1], xy[2 * k],
                                  xy[2 * k + 1]);
      places.push_back({along, {xy[2 * k], xy[2 * k + 1], 0}});
    }
  }
  if (show_coord_at_stations)
    for (double station :
         RegularStations(start_profile_distance, length, station_interval)) {
      const double along = station - start_profile_distance;
      places.push_back({along, PointAlong(xy, along)});
    }
  if (show_coord_at_nodes) places.push_back({length, PointAlong(xy, length)});

  std::stable_sort(
      places.begin(), places.end(),
      [](const Place& a, const Place& b) { return a.along < b.along; });
  std::string series;
  double last = -1;
  for (const Place& place : places) {
    const double distance =
        core::RoundHalfEven(start_part_distance + place.along, kDistancePlaces);
    if (distance == last) continue;  // a station on a vertex: written once
    last = distance;
    AppendPair(series, distance, CoordinateText(place.point));
  }
  return series;
}

}  // namespace kestrana::profile
