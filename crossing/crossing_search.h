// The crossing search itself and the small computations the search and the
// upkeep of annotations share.
#pragma once

#include <string_view>
#include <vector>

#include "core/record.h"
#include "types/cross_point.h"

namespace kestrana::host {
class Document;
class Entity;
class LwPolyline;
class Object;
class SelectionSet;
struct Point3;
}  // namespace kestrana::host

namespace kestrana::crossing {

// How the search meets the pipes of the other networks. Both give the same
// crossings in the same order: every pipe of the set is tried against the
// other networks' pipes in set order, and the index only leaves out pipes
// whose extents cannot touch.
enum class CandidateSearch {
  kEveryPipe,  // every pair, as the steps read
  kPlanIndex,  // an R-tree over the extents of the other networks' pipes
};

std::vector<types::CrossPoint> SearchCrossPoints(
    host::Document& document,
    const std::vector<host::SelectionSet*>& network_sets,
    host::SelectionSet& pipes, CandidateSearch search);

// A pipe's record, which must be whole.
core::Record ReadPipeRecord(const host::Object& pipe);

// The pipe's rise in level units: mm to m in a metric project, inches to
// feet for a circular section otherwise, a box's rise as stored.
double RiseInLevelUnits(const core::Record& pipe, std::string_view model_units);

// The station of a point on the pipe as a fraction of its length.
// std::domain_error for a pipe of zero length.
double StationRatio(const host::LwPolyline& pipe, const core::Record& record,
                    const host::Point3& point);

// The invert interpolated along the pipe at a fraction of its length.
double InvertAt(const core::Record& pipe, double ratio);

// The upper pipe's invert above the lower pipe's top; never negative.
double Clearance(double invert1, double rise1, double invert2, double rise2);

}  // namespace kestrana::crossing
