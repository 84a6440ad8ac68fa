// What a profile shows at its nodes and where other pipes cross it: node
// data, the pipes connected at a node, and the crossing pipes of a pipe.
#include <algorithm>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "crossing/crossing_record.h"
#include "crossing/crossing_search.h"
#include "host/host.h"
#include "profile/part_data.h"
#include "profile/profile.h"
#include "profile/profile_series.h"

namespace kestrana::profile {

namespace {

using core::NodeField;
using core::PipeField;

// The values of a connected-pipe or crossing-pipe record after the invert.
constexpr int kSectionValues = 4;
constexpr int kPipeRecordValues = 1 + kSectionValues;

core::Record ReadPipe(const host::Object& pipe) {
  return core::ReadRecordWithFields(pipe, core::kPipeRecordLength, "pipe");
}

// Invert, shape index ("0" circular, "1" otherwise), span, rise, cells.
std::string PipeAtDistanceRecord(const core::Record& pipe, double invert) {
  const bool circular =
      pipe.Text(PipeField::kSectionShape) == core::kSectionShapeCircular;
  return core::GeneralText(invert) + ";" + (circular ? "0" : "1") + ";" +
         core::GeneralText(pipe.Number(PipeField::kSpan)) + ";" +
         core::GeneralText(pipe.Number(PipeField::kRise)) + ";" +
         std::to_string(pipe.Int16(PipeField::kNumCells));
}

}  // namespace

IdSet IdsOf(std::string_view list) {
  IdSet ids;
  for (std::string piece : core::Split(list)) {
    if (piece.starts_with(core::kRelatedTo))
      piece.erase(0, std::string_view(core::kRelatedTo).size());
    if (!piece.empty()) ids.insert(std::move(piece));
  }
  return ids;
}

ProfileNodeData NodeDataFor(host::Document& document,
                            const host::Surface* surface, host::Entity& node,
                            const IdSet& excluded) {
  const core::Record record =
      core::ReadRecordWithFields(node, core::kNodeRecordLength, "node");
  ProfileNodeData data;
  data.label = core::General::EntityLabelFromCombined(
      record.Text(NodeField::kCombinedLabel));
  data.ground =
      surface != nullptr
          ? core::GeneralText(GroundAt(
                *surface, host::As<host::BlockReference>(node).InsertionPoint(),
                node))
          : core::GeneralText(record.Number(NodeField::kGroundLevel));
  data.sump = core::GeneralText(record.Number(NodeField::kSumpLevel));
  for (NodeField list :
       {NodeField::kPipesAtStartOID, NodeField::kPipesAtEndOID})
    for (const std::string& pipe : core::ReferenceValues(record.Text(list)))
      if (!excluded.contains(pipe))
        data.connected_pipes += Profile::GetConnectedPipeDataForProfile(
                                    document, pipe, data.label) +
                                ";";
  return data;
}

ProfileNodeData Profile::GetNodeDataForProfile(
    host::Document& document, host::CivilDocument& aecc_doc,
    std::string_view node_oid, bool use_ground_surface,
    std::string_view ground_surface_name, std::string_view excluded_pipe_oids) {
  return NodeDataFor(
      document,
      use_ground_surface ? &GroundSurface(aecc_doc, ground_surface_name)
                         : nullptr,
      core::EntityFromIdText(document, node_oid), IdsOf(excluded_pipe_oids));
}

std::string Profile::GetConnectedPipeDataForProfile(
    host::Document& document, std::string_view pipe_oid,
    std::string_view node_label) {
  const core::Record pipe =
      ReadPipe(core::EntityFromIdText(document, pipe_oid));
  const bool starts_here =
      pipe.Text(PipeField::kStartNodeLabel) == core::ReferenceEntry(node_label);
  return PipeAtDistanceRecord(pipe,
                              pipe.Number(starts_here ? PipeField::kStartInvert
                                                      : PipeField::kEndInvert));
}

std::string Profile::IncludedDistanceInConnectedPipesString(
    std::string_view original_string, double distance) {
  const std::vector<std::string> pieces = core::Split(original_string);
  std::string series;
  for (size_t i = 0; i + kPipeRecordValues <= pieces.size();
       i += kPipeRecordValues) {
    AppendValue(series, distance);
    for (size_t k = i; k < i + kPipeRecordValues; ++k)
      AppendValue(series, pieces[k]);
  }
  return series;
}

std::string Profile::GetCrossingStringForProfile(
    host::Document& document, std::string_view crossing_points_oids,
    const host::LwPolyline& original_pipe, double start_distance,
    int direction_index) {
  using F = crossing::CrossingAnnoField;
  const std::string original_id = core::IdText(original_pipe.ObjectID());
  const double length = ProfilePipeLength(original_pipe);
  const std::vector<double> xy = original_pipe.Coordinates();
  std::string series;
  for (const std::string& annotation_id :
       core::ReferenceValues(crossing_points_oids)) {
    const core::Record annotation = core::ReadRecordWithFields(
        core::ObjectFromIdText(document, annotation_id),
        crossing::kCrossingAnnoRecordLength, "crossing annotation");
    const std::string pipe1 =
        core::SingleReference(annotation, F::kPipe1OIDRef);
    const std::string other =
        pipe1 == original_id
            ? core::SingleReference(annotation, F::kPipe2OIDRef)
            : pipe1;
    const host::Point3 at =
        core::CrossingPoint::Parse(annotation.Text(F::kPoint)).ToPoint();
    double station = core::General::GetPointStationOnPolyline(xy, at);
    if (direction_index == 1) station = length - station;
    AppendValue(series,
                core::RoundHalfEven(start_distance + station, kDistancePlaces));
    AppendValue(series, GetCrossingPipeDataForProfile(document, other, at));
  }
  return SortCrossingPipesString(series);
}

std::string Profile::SortCrossingPipesString(std::string_view original_string) {
  const std::vector<std::string> pieces = core::Split(original_string);
  struct Crossing {
    double distance;
    size_t first;  // piece of the distance
  };
  std::vector<Crossing> crossings;
  for (size_t i = 1; i + kPipeAtDistanceValues <= pieces.size();
       i += kPipeAtDistanceValues)
    crossings.push_back({core::NumericValue(pieces[i]), i});
  std::stable_sort(crossings.begin(), crossings.end(),
                   [](const Crossing& a, const Crossing& b) {
                     return a.distance < b.distance;
                   });
  std::string sorted;
  for (const Crossing& crossing : crossings)
    for (size_t k = crossing.first; k < crossing.first + kPipeAtDistanceValues;
         ++k)
      AppendValue(sorted, pieces[k]);
  return sorted;
}

std::string Profile::GetCrossingPipeDataForProfile(
    host::Document& document, std::string_view pipe_oid,
    const host::Point3& cross_point_coord) {
  host::Entity& entity = core::EntityFromIdText(document, pipe_oid);
  const core::Record pipe = ReadPipe(entity);
  const double ratio = crossing::StationRatio(
      host::As<host::LwPolyline>(entity), pipe, cross_point_coord);
  return PipeAtDistanceRecord(
      pipe, core::RoundHalfEven(crossing::InvertAt(pipe, ratio), kLevelPlaces));
}

}  // namespace kestrana::profile
