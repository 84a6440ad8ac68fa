#include "profile/profile_series.h"

#include <cmath>
#include <optional>

#include "core/general.h"
#include "core/geometry.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "editing/editing.h"
#include "host/errors.h"
#include "host/host.h"

namespace kestrana::profile {

namespace {

// Station arithmetic works on sums of rounded lengths: two places that
// agree to this many decimals are the same place.
constexpr int kSamePlace = 7;

}  // namespace

void AppendValue(std::string& series, std::string_view text) {
  series += ';';
  series += text;
}

void AppendValue(std::string& series, double value) {
  AppendValue(series, core::GeneralText(value));
}

void AppendPair(std::string& series, double distance, double value) {
  AppendValue(series, distance);
  AppendValue(series, value);
}

void AppendPair(std::string& series, double distance, std::string_view text) {
  AppendValue(series, distance);
  AppendValue(series, text);
}

int DirectionIndexOf(std::string_view direction) {
  return core::NumericValue(direction) == 1 ? 1 : 0;
}

std::string DescribeElement(const host::Entity& element) {
  const std::string type = core::General::GetElementType(element);
  const char* kind = type.ends_with("Pipe")   ? "pipe"
                     : type.ends_with("Node") ? "node"
                                              : nullptr;
  if (kind == nullptr) return "object " + std::to_string(element.ObjectID());
  // Pipe and node records keep their combined label in the same field.
  return std::string(kind) + " " +
         core::General::EntityLabelFromCombined(
             core::Record::ReadRequired(element).Text(
                 core::PipeField::kCombinedLabel));
}

double ProfilePipeLength(const host::LwPolyline& pipe) {
  const double length = core::RoundHalfEven(pipe.Length(), kDistancePlaces);
  if (length == 0)
    throw InvalidInputError(DescribeElement(pipe) +
                            " has no length, so it has no place in a profile");
  return length;
}

std::vector<double> VerticesFromA(const host::LwPolyline& pipe,
                                  int direction_index) {
  const std::vector<double> xy = pipe.Coordinates();
  return direction_index == 1 ? editing::Editing::ReversePolylineCoordinates(xy)
                              : xy;
}

host::Point3 PointAlong(const std::vector<double>& xy, double distance) {
  // The station walk counts each segment rounded, so the end is where the
  // rounded segments end, and the last vertex stands for anything beyond.
  double walkable = 0;
  for (size_t k = 2; k + 1 < xy.size(); k += 2)
    walkable += core::RoundHalfEven(
        core::PlanDistance(xy[k - 2], xy[k - 1], xy[k], xy[k + 1]), 7);
  if (xy.size() >= 2 && distance >= walkable)
    return {xy[xy.size() - 2], xy[xy.size() - 1], 0};
  return core::General::GetCoordinatesAtPipeStation(xy, distance);
}

std::vector<double> RegularStations(double start_profile_distance,
                                    double length, double interval) {
  if (!(interval > 0))
    throw InvalidInputError("a station interval must be greater than 0, not " +
                            core::GeneralText(interval));
  std::vector<double> stations;
  // A pipe that starts on a multiple has its first station one interval
  // in: the node is already in the node series.
  double multiple = std::floor(core::RoundHalfEven(
                        start_profile_distance / interval, kSamePlace)) +
                    1;
  for (;; multiple += 1) {
    const double station = multiple * interval;
    if (core::RoundHalfEven(station - start_profile_distance, kSamePlace) >=
        length)
      break;
    stations.push_back(station);
  }
  return stations;
}

const host::Surface& GroundSurface(host::CivilDocument& aecc_doc,
                                   std::string_view name) {
  const host::Surfaces& surfaces = aecc_doc.GetSurfaces();
  std::string names;
  for (int i = 0; i < surfaces.Count(); ++i) {
    const host::Surface& surface = surfaces.Item(i);
    if (surface.Name() == name) return surface;
    names += (names.empty() ? "\"" : ", \"") + surface.Name() + "\"";
  }
  throw NotFoundError(
      "there is no surface named \"" + std::string(name) + "\" (" +
      (names.empty() ? "there are none" : "there are " + names) + ")");
}

double GroundAt(const host::Surface& surface, const host::Point3& point,
                const host::Entity& element) {
  try {
    return core::RoundHalfEven(surface.FindElevationAtXY(point.x, point.y),
                               kLevelPlaces);
  } catch (const host::HostError& e) {
    if (e.code() != host::ErrorCode::kOutsideSurface) throw;
    throw InvalidInputError("the surface \"" + surface.Name() +
                            "\" does not cover " + DescribeElement(element) +
                            " at (" + core::FormatNumber(point.x, "0.00") +
                            ", " + core::FormatNumber(point.y, "0.00") + ")");
  }
}

}  // namespace kestrana::profile
