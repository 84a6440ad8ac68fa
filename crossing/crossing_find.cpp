// Finding crossing points: the pipes of a set against the pipes of all other
// networks, with inverts and clearance, without repeats.
#include <unordered_map>
#include <unordered_set>

#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/references.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "crossing/crossing_search.h"
#include "crossing/pair_key.h"
#include "host/host.h"

namespace kestrana::crossing {

using core::General;
using core::PipeField;

std::vector<types::CrossPoint> Crossing::GetCrossingPointsArrayForSetOfPipes(
    host::Document& document, host::SelectionSet& my_pipes_set) {
  std::vector<host::SelectionSet*> sets =
      GetNetworkSetsAll(document, General::GetNetworkDefinitions(document));
  return GetCrossPointsFromNetSetsAndPipeSet(document, sets, my_pipes_set);
}

std::vector<host::SelectionSet*> Crossing::GetNetworkSetsAll(
    host::Document& document, const core::TextTable& ar_network_definitions) {
  std::vector<host::SelectionSet*> sets;
  std::unordered_map<std::string, host::SelectionSet*> by_name;
  for (int row = 0; row < ar_network_definitions.Rows(); ++row) {
    const std::string& name =
        ar_network_definitions(row, core::network_column::kName);
    if (name.empty()) continue;  // the row of a project without networks
    auto [it, added] = by_name.try_emplace(name, nullptr);
    if (added) it->second = &General::InitializeSelectionSet(document, name);
    sets.push_back(it->second);
  }
  host::SelectionSet& all =
      General::InitializeSelectionSet(document, "TotalSelectionSet");
  all.Select(host::SelectMode::kAll, {}, {}, core::AllPipesFilter());
  for (host::Entity* pipe : all.Entities()) {
    auto it = by_name.find(General::GetElementNetwork(*pipe));
    if (it != by_name.end()) it->second->AddItems({pipe});
  }
  return sets;
}

std::vector<types::CrossPoint> Crossing::GetCrossPointsFromNetSetsAndPipeSet(
    host::Document& document,
    const std::vector<host::SelectionSet*>& ar_network_sets,
    host::SelectionSet& my_pipes_set) {
  return SearchCrossPoints(document, ar_network_sets, my_pipes_set,
                           CandidateSearch::kPlanIndex);
}

bool Crossing::CheckIntersectionPoint(const host::Point3& int_point,
                                      const host::Entity& first_entity,
                                      const host::Entity& second_entity) {
  auto on = [&](const host::Entity& entity) {
    if (auto* line = dynamic_cast<const host::Line*>(&entity))
      return General::CheckPointOnLine(int_point, *line);
    if (auto* polyline = dynamic_cast<const host::LwPolyline*>(&entity))
      return General::CheckPointOnPolyline(int_point, *polyline);
    throw host::HostError(host::ErrorCode::kWrongKind,
                          "entity " + core::IdText(entity.ObjectID()) + " (" +
                              entity.ObjectName() +
                              ") is neither a line nor a polyline");
  };
  return on(first_entity) && on(second_entity);
}

types::CrossPoint Crossing::GetSingleCrossPointData(
    const core::Record& x_data1, const core::Record& x_data2,
    double int_distance_ratio1, double int_distance_ratio2,
    std::string_view model_units) {
  types::CrossPoint point;
  const std::string label1 = x_data1.Text(PipeField::kCombinedLabel);
  const std::string label2 = x_data2.Text(PipeField::kCombinedLabel);
  point.Pipe1Net = General::EntityNetworkFromCombined(label1);
  point.Pipe1Label = General::EntityLabelFromCombined(label1);
  point.Pipe2Net = General::EntityNetworkFromCombined(label2);
  point.Pipe2Label = General::EntityLabelFromCombined(label2);
  point.Pipe1Rise = RiseInLevelUnits(x_data1, model_units);
  point.Pipe2Rise = RiseInLevelUnits(x_data2, model_units);
  point.Pipe1Invert = InvertAt(x_data1, int_distance_ratio1);
  point.Pipe2Invert = InvertAt(x_data2, int_distance_ratio2);
  point.Clearance = Clearance(point.Pipe1Invert, point.Pipe1Rise,
                              point.Pipe2Invert, point.Pipe2Rise);
  point.Pipe1SizeString = General::BuildSectionSizeString(x_data1);
  point.Pipe2SizeString = General::BuildSectionSizeString(x_data2);
  return point;
}

std::vector<types::CrossPoint> Crossing::CheckCrossingPointsDuplication(
    host::Document& document,
    const std::vector<types::CrossPoint>& ar_unchecked_cross_points) {
  // The pairs already annotated, as (network, label reference) couples.
  std::unordered_set<std::string> annotated;
  for (host::Entity* annotation :
       GetExistingCrossingPointsSet(document, "").Entities()) {
    core::Record record = core::ReadRecordWithFields(
        *annotation, kCrossingAnnoRecordLength, "crossing annotation");
    annotated.insert(PairKey(record.Text(CrossingAnnoField::kPipe1Net),
                             record.Text(CrossingAnnoField::kPipe1LabelRef),
                             record.Text(CrossingAnnoField::kPipe2Net),
                             record.Text(CrossingAnnoField::kPipe2LabelRef)));
  }
  std::vector<types::CrossPoint> result;
  for (types::CrossPoint point : ar_unchecked_cross_points) {
    if (types::IsNoCrossing(point)) continue;
    point.Duplicated = annotated.contains(
        PairKey(point.Pipe1Net, core::ReferenceEntry(point.Pipe1Label),
                point.Pipe2Net, core::ReferenceEntry(point.Pipe2Label)));
    if (!point.Duplicated) result.push_back(std::move(point));
  }
  if (result.empty()) result.emplace_back();
  return result;
}

}  // namespace kestrana::crossing
