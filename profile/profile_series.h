// What the gathering of profile data shares between its files: writing
// series values, walking a pipe in profile direction, regular stations and
// ground levels from a surface.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/types.h"
#include "profile/profile.h"

namespace kestrana::host {
class CivilDocument;
class Document;
class Entity;
class LwPolyline;
class Surface;
}  // namespace kestrana::host

namespace kestrana::profile {

// Lengths and distances along a profile keep 7 decimals; levels computed
// from others (depths, interpolations) keep the same, so that their texts
// carry no floating-point dust.
inline constexpr int kDistancePlaces = 7;
// Levels read from a surface and interpolated crossing inverts.
inline constexpr int kLevelPlaces = 5;
// Slopes are ratios: 9 decimals is a hundredth of a millimetre per km.
inline constexpr int kSlopePlaces = 9;

// Appends ";" and the value (the shortest text of a number).
void AppendValue(std::string& series, std::string_view text);
void AppendValue(std::string& series, double value);
// Appends ";<distance>;<value>".
void AppendPair(std::string& series, double distance, double value);
void AppendPair(std::string& series, double distance, std::string_view text);

// "0" (the pipe's own orientation) gives 0; "1" gives 1.
int DirectionIndexOf(std::string_view direction);

// The pipe's length rounded to 7 decimals, as every series counts it.
// InvalidInputError naming the pipe when it is zero.
double ProfilePipeLength(const host::LwPolyline& pipe);
// The pipe's vertices from its a end (reversed for direction 1).
std::vector<double> VerticesFromA(const host::LwPolyline& pipe,
                                  int direction_index);
// The plan point `distance` along vertices; the last vertex at or beyond
// their end.
host::Point3 PointAlong(const std::vector<double>& xy, double distance);

// The profile distances of the regular stations on a pipe that starts at
// `start_profile_distance` and is `length` long: the multiples of
// `interval` after its a end and before its b end.
std::vector<double> RegularStations(double start_profile_distance,
                                    double length, double interval);

// The surface of that name; NotFoundError naming the surfaces there are.
const host::Surface& GroundSurface(host::CivilDocument& aecc_doc,
                                   std::string_view name);
// The surface's level at the point, rounded to 5 decimals;
// InvalidInputError naming the element (pipe or node) and the place when
// the surface does not cover it.
double GroundAt(const host::Surface& surface, const host::Point3& point,
                const host::Entity& element);

// Object IDs as records write them.
using IdSet = std::unordered_set<std::string>;
// The IDs of a list in any of the forms ";<ID>...", ";RelatedTo<ID>..."
// or "<ID>;...".
IdSet IdsOf(std::string_view list);

// GetNodeDataForProfile for a node in hand: the ground from `surface` when
// there is one, else from the node's record.
ProfileNodeData NodeDataFor(host::Document& document,
                            const host::Surface* surface, host::Entity& node,
                            const IdSet& excluded);

// "pipe P-3" or "node N-4": how messages name an element.
std::string DescribeElement(const host::Entity& element);

}  // namespace kestrana::profile
