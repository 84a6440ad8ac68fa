#include "lowhigh/lowhigh.h"

#include <algorithm>
#include <unordered_set>

#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "host/host.h"

namespace kestrana::lowhigh {

using core::General;
using core::NodeField;
using core::PipeField;

namespace {

// Levels are compared to 7 places, so that a level read back from its text
// equals the level written.
constexpr int kLevelPlaces = 7;
// Start values of the search for the lowest and highest neighbour.
constexpr double kNoLowest = 1000000000;
constexpr double kNoHighest = -1000000000;

// Columns of the settings table.
constexpr int kNetworkColumn = 0;
constexpr int kShownColumn = 1;
constexpr char kShown[] = "1";
constexpr char kHidden[] = "0";

core::Record ReadNodeRecord(const host::Object& node) {
  return core::ReadRecordWithFields(node, core::kNodeRecordLength, "node");
}

core::Record ReadMarkerRecord(const host::Object& marker) {
  return core::ReadRecordWithFields(marker, kLowHighRecordLength,
                                    "low/high point");
}

double LevelOf(const core::Record& node) {
  return core::RoundHalfEven(node.Number(NodeField::kSumpLevel), kLevelPlaces);
}

// The ID in a one-entry reference list (";RelatedTo<ID>").
std::string IdOfReference(const std::string& reference) {
  std::vector<std::string> values = core::ReferenceValues(reference);
  return values.empty() ? std::string() : values.front();
}

// The nodes at the far ends of the node's pipes: first through the pipes
// that start here, then through those that end here. A node whose pipe lists
// are empty has none.
std::vector<std::string> NeighbourIds(host::Document& document,
                                      const core::Record& node) {
  std::vector<std::string> ids;
  auto far_ends = [&](NodeField pipes, PipeField far_node) {
    for (const std::string& pipe_id : core::ReferenceValues(node.Text(pipes))) {
      const core::Record pipe =
          core::ReadRecordWithFields(core::EntityFromIdText(document, pipe_id),
                                     core::kPipeRecordLength, "pipe");
      ids.push_back(IdOfReference(pipe.Text(far_node)));
    }
  };
  far_ends(NodeField::kPipesAtStartOID, PipeField::kEndNodeOID);
  far_ends(NodeField::kPipesAtEndOID, PipeField::kStartNodeOID);
  return ids;
}

// Removes the node's marker and draws the new one; nullptr for kNone.
host::BlockReference* ReplaceMarker(host::Document& document,
                                    host::Entity& node_entity, LowHighCode code,
                                    std::string_view network_name) {
  core::Record node = ReadNodeRecord(node_entity);
  if (!node.Text(NodeField::kLowHighOIDRef).empty()) {
    core::EntityFromReference(document, node.Text(NodeField::kLowHighOIDRef))
        .Delete();
    node.SetText(NodeField::kLowHighLabelRef, "");
    node.SetText(NodeField::kLowHighOIDRef, "");
  }
  host::BlockReference* marker = nullptr;
  if (code != LowHighCode::kNone) {
    const std::string node_label =
        General::EntityLabelFromCombined(node.Text(NodeField::kCombinedLabel));
    const std::string marker_label = node_label + kMarkerSuffix;
    marker = &document.ModelSpace().InsertBlock(
        host::As<host::BlockReference>(node_entity).InsertionPoint(),
        code == LowHighCode::kLow ? core::kLowPointBlock
                                  : core::kHighPointBlock,
        1, 1, 1, 0);
    marker->SetLayer(
        General::CreateStandardLayer(document, network_name, "LowHighPoint")
            .Name());
    core::Record record = core::Record::WithCodes(kLowHighRecordCodes);
    record.SetText(LowHighField::kCombinedLabel,
                   core::CombinedLabel{kLowHighKind, std::string(network_name),
                                       marker_label}
                       .Format());
    record.SetText(LowHighField::kElementType, kLowHighPoint);
    record.SetText(LowHighField::kNodeLabelRef,
                   core::ReferenceEntry(node_label));
    record.SetText(LowHighField::kNodeOIDRef,
                   core::ReferenceEntry(core::IdText(node_entity.ObjectID())));
    record.Write(*marker);
    node.SetText(NodeField::kLowHighLabelRef,
                 core::ReferenceEntry(marker_label));
    node.SetText(NodeField::kLowHighOIDRef,
                 core::ReferenceEntry(core::IdText(marker->ObjectID())));
  }
  node.Write(node_entity);
  return marker;
}

// The working list of one analysis: nodes are added at the end, each once,
// and never removed.
class Analysis {
 public:
  Analysis(host::Document& document, std::string_view network_name,
           host::SelectionSet& markers)
      : document_(document), network_(network_name), markers_(markers) {}

  void Add(const std::string& id) {
    if (listed_.insert(id).second)
      work_.push_back({&core::EntityFromIdText(document_, id), false});
  }

  // Passes until one examines no node; what a pass adds waits for the next.
  void Run() {
    size_t examined = 0;
    do {
      examined = 0;
      const size_t end = work_.size();
      for (size_t i = 0; i < end; ++i) {
        if (work_[i].done) continue;
        Examine(*work_[i].node);
        work_[i].done = true;
        ++examined;
      }
    } while (examined > 0);
  }

 private:
  struct Entry {
    host::Entity* node;
    bool done;
  };

  void Examine(host::Entity& node_entity) {
    const core::Record node = ReadNodeRecord(node_entity);
    const double level = LevelOf(node);
    double lowest = kNoLowest, highest = kNoHighest;
    const std::vector<std::string> neighbours = NeighbourIds(document_, node);
    for (const std::string& id : neighbours) {
      const double other =
          LevelOf(ReadNodeRecord(core::EntityFromIdText(document_, id)));
      lowest = std::min(lowest, other);
      highest = std::max(highest, other);
    }
    LowHighCode code = LowHighCode::kNone;
    if (!neighbours.empty() && level <= lowest)
      code = LowHighCode::kLow;
    else if (!neighbours.empty() && level >= highest)
      code = LowHighCode::kHigh;
    if (host::BlockReference* marker =
            ReplaceMarker(document_, node_entity, code, network_)) {
      // The search stops at a low or high point.
      markers_.AddItems({marker});
      return;
    }
    for (const std::string& id : neighbours) Add(id);
  }

  host::Document& document_;
  const std::string network_;
  host::SelectionSet& markers_;
  std::vector<Entry> work_;
  std::unordered_set<std::string> listed_;
};

}  // namespace

void LowHigh::BuildLowHighPointsAfterImporting(
    host::Document& document,
    const std::vector<std::string>& ar_nodes_low_high_oid,
    std::string_view network_name) {
  if (ar_nodes_low_high_oid.empty() || ar_nodes_low_high_oid.front().empty())
    return;
  host::Entity& first =
      core::EntityFromIdText(document, ar_nodes_low_high_oid.front());
  if (General::GetElementType(first) == core::kGravityNode) return;
  General::CreateStandardBlock(document, "LowHighPoint");
  General::CreateStandardLayer(document, network_name, "LowHighPoint");
  host::SelectionSet& markers =
      General::InitializeSelectionSet(document, "SetLowHighPoints");
  Analysis analysis(document, network_name, markers);
  for (const std::string& id : ar_nodes_low_high_oid) analysis.Add(id);
  analysis.Run();
  ApplyLowHighSettings(document, markers);
}

std::vector<std::string> LowHigh::GetInitialNodesOIDArrayForLowHigh(
    host::Document& document, host::SelectionSet& set_nodes) {
  std::vector<std::string> ids;
  std::unordered_set<std::string> seen;
  auto add = [&](const std::string& id) {
    if (seen.insert(id).second) ids.push_back(id);
  };
  for (host::Entity* node : set_nodes.Entities()) {
    add(core::IdText(node->ObjectID()));
    for (const std::string& id : NeighbourIds(document, ReadNodeRecord(*node)))
      add(id);
  }
  if (ids.empty()) ids.emplace_back();
  return ids;
}

std::string LowHigh::DrawLowHighPoint(host::Document& document,
                                      host::Entity& node_entity,
                                      LowHighCode low_high_code,
                                      std::string_view network_name) {
  host::BlockReference* marker =
      ReplaceMarker(document, node_entity, low_high_code, network_name);
  return marker == nullptr ? "" : core::IdText(marker->ObjectID());
}

void LowHigh::ApplyLowHighSettings(host::Document& document,
                                   host::SelectionSet& set_low_high_points) {
  if (set_low_high_points.Count() == 0) return;
  const core::TextTable settings = GetLowHighSettings(document);
  std::unordered_set<std::string> shown;
  for (int row = 0; row < settings.Rows(); ++row)
    if (settings(row, kShownColumn) == kShown)
      shown.insert(settings(row, kNetworkColumn));
  for (host::Entity* marker : set_low_high_points.Entities())
    marker->SetVisible(shown.contains(General::EntityNetworkFromCombined(
        ReadMarkerRecord(*marker).Text(LowHighField::kCombinedLabel))));
}

core::TextTable LowHigh::GetLowHighSettings(host::Document& document) {
  const core::TextTable networks = General::GetNetworkDefinitions(document);
  std::vector<std::string> pressure;
  for (int row = 0; row < networks.Rows(); ++row)
    if (networks(row, core::network_column::kType) == core::kPressure)
      pressure.push_back(networks(row, core::network_column::kName));
  core::TextTable table(static_cast<int>(pressure.size()), 2);
  for (int row = 0; row < table.Rows(); ++row) {
    table(row, kNetworkColumn) = pressure[row];
    table(row, kShownColumn) = kHidden;
  }
  // A stored name that is no longer a pressure network matches no row.
  const std::vector<std::string> stored =
      core::ListEntries(core::ReadProjectRecord(document).Text(
          core::ProjectField::kLowHighNetworks));
  for (const std::string& name : stored)
    for (int row = 0; row < table.Rows(); ++row)
      if (table(row, kNetworkColumn) == name) table(row, kShownColumn) = kShown;
  return table;
}

void LowHigh::SetLowHighSettings(host::Document& document,
                                 const core::TextTable& ar_low_high_settings) {
  std::vector<std::string> shown;
  for (int row = 0; row < ar_low_high_settings.Rows(); ++row)
    if (ar_low_high_settings(row, kShownColumn) == kShown)
      shown.push_back(ar_low_high_settings(row, kNetworkColumn));
  core::Record project = core::ReadProjectRecord(document);
  project.SetText(core::ProjectField::kLowHighNetworks,
                  core::JoinEntries(shown));
  core::WriteProjectRecord(document, project);
}

host::SelectionSet& LowHigh::GetExistingLowHighPointsSet(
    host::Document& document, std::string_view net_name) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "SetLowHighPoints");
  set.Select(
      host::SelectMode::kAll, {}, {},
      core::BlockInsertsFilter({core::kLowPointBlock, core::kHighPointBlock}));
  if (net_name.empty() || set.Count() == 0) return set;
  std::vector<host::Entity*> kept;
  for (host::Entity* marker : set.Entities())
    if (General::EntityNetworkFromCombined(ReadMarkerRecord(*marker).Text(
            LowHighField::kCombinedLabel)) == net_name)
      kept.push_back(marker);
  set.Clear();
  set.AddItems(kept);
  return set;
}

void LowHigh::DeleteNetworkLowHighPoints(host::Document& document,
                                         std::string_view net_name) {
  GetExistingLowHighPointsSet(document, net_name).Erase();
}

}  // namespace kestrana::lowhigh
