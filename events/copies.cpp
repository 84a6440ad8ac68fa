#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "crossing/crossing.h"
#include "editing/editing.h"
#include "events/events.h"
#include "host/host.h"
#include "library/library.h"
#include "lowhigh/lowhigh.h"
#include "viewstyle/view_style.h"

namespace kestrana::events {

namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

struct Copy {
  host::Entity* entity;
  Record record;
  std::string original_label;
  std::string final_label;
};

// The copies of one network, pipes and nodes apart.
struct NetworkCopies {
  std::string type;  // "Gravity" or "Pressure"
  std::vector<Copy> pipes, nodes;
};

std::string NetworkTypeOf(const std::string& element_type) {
  return element_type.rfind(core::kGravity, 0) == 0 ? core::kGravity
                                                    : core::kPressure;
}

}  // namespace

std::string Events::GetFinalLabel(
    const std::string& original_label,
    const std::vector<std::string>& ex_labels_array) {
  for (size_t i = 0; i + 1 < ex_labels_array.size(); ++i)
    if (ex_labels_array[i] == original_label)
      return GetFinalLabel("New " + original_label, ex_labels_array);
  return original_label;
}

bool Events::CheckAndAddNetworkDefinition(host::Document& document,
                                          std::string_view network_name,
                                          std::string_view network_type) {
  if (General::CheckNetworkExists(document, network_name)) return true;
  General::CreateNetworkDefintion(document, network_name, network_type);
  return false;
}

void Events::VerifyCopiedElements(host::Document& document,
                                  std::string_view /*changed_pipe_object_id*/,
                                  std::string_view copied_elements_oid) {
  const std::string units = General::GetModelUnits(document);
  host::SelectionSet& pipes_for_crossing =
      General::InitializeSelectionSet(document, "SetPipesForCrossing");
  host::SelectionSet& nodes_for_low_high =
      General::InitializeSelectionSet(document, "SetNodesForLowHigh");

  std::map<std::string, NetworkCopies> networks;
  std::vector<std::string> copy_ids;
  for (host::Entity* entity :
       General::ConvertOIDStringToSelectionSet(document, copied_elements_oid)
           .Entities()) {
    std::optional<Record> record = Record::Read(*entity);
    if (!record || !record->Has(PipeField::kElementType)) continue;
    const std::string type = record->Text(PipeField::kElementType);
    const bool pipe = type == core::kGravityPipe || type == core::kPressurePipe;
    const bool node = type == core::kGravityNode || type == core::kPressureNode;
    if (!pipe && !node) continue;
    const std::string combined = record->Text(PipeField::kCombinedLabel);
    NetworkCopies& copies =
        networks[General::EntityNetworkFromCombined(combined)];
    copies.type = NetworkTypeOf(type);
    const std::string label = General::EntityLabelFromCombined(combined);
    (pipe ? copies.pipes : copies.nodes)
        .push_back({entity, *record, label, label});
    copy_ids.push_back(core::IdText(entity->ObjectID()));
  }

  const double correction = General::GetCorrectionAngleForCS(document);
  for (auto& [network, copies] : networks) {
    if (CheckAndAddNetworkDefinition(document, network, copies.type)) {
      for (auto* group : {&copies.pipes, &copies.nodes}) {
        if (group->empty()) continue;
        const std::string element_type =
            group->front().record.Text(PipeField::kElementType);
        std::vector<std::string> taken =
            editing::Editing::GetExistingLabelsArray(document, network,
                                                     element_type, copy_ids);
        if (taken.empty()) taken.push_back("");  // the list's closing entry
        // A copy's label is taken for the copies after it: copying "N-1"
        // and "New N-1" together must not give both "New New N-1".
        for (Copy& copy : *group) {
          copy.final_label = GetFinalLabel(copy.original_label, taken);
          taken.insert(taken.end() - 1, copy.final_label);
        }
      }
    }
    // Nothing of the originals stays with a copy.
    std::map<std::string, Copy*> node_by_label;
    for (Copy& node : copies.nodes) {
      node.record.SetText(
          NodeField::kCombinedLabel,
          core::CombinedLabel{core::kNodeKind, network, node.final_label}
              .Format());
      for (auto field :
           {NodeField::kPipesAtStartLabels, NodeField::kPipesAtEndLabels,
            NodeField::kPipesAtStartOID, NodeField::kPipesAtEndOID,
            NodeField::kAnnotationLabelRef, NodeField::kAnnotationOIDRef,
            NodeField::kLowHighLabelRef, NodeField::kLowHighOIDRef})
        node.record.SetText(field, "");
      node_by_label[core::ReferenceEntry(node.original_label)] = &node;
    }
    std::vector<Copy*> kept;
    for (Copy& pipe : copies.pipes) {
      auto start =
          node_by_label.find(pipe.record.Text(PipeField::kStartNodeLabel));
      auto end = node_by_label.find(pipe.record.Text(PipeField::kEndNodeLabel));
      if (start == node_by_label.end() || end == node_by_label.end()) {
        pipe.entity->Delete();  // its nodes stayed behind
        continue;
      }
      const std::string id = core::IdText(pipe.entity->ObjectID());
      Record& r = pipe.record;
      r.SetText(PipeField::kCombinedLabel,
                core::CombinedLabel{core::kPipeKind, network, pipe.final_label}
                    .Format());
      r.SetText(PipeField::kStartNodeLabel,
                core::ReferenceEntry(start->second->final_label));
      r.SetText(PipeField::kEndNodeLabel,
                core::ReferenceEntry(end->second->final_label));
      r.SetText(PipeField::kStartNodeOID,
                core::ReferenceEntry(
                    core::IdText(start->second->entity->ObjectID())));
      r.SetText(
          PipeField::kEndNodeOID,
          core::ReferenceEntry(core::IdText(end->second->entity->ObjectID())));
      for (auto field :
           {PipeField::kAnnotationLabelRef, PipeField::kAnnotationOIDRef,
            PipeField::kArrowLabelRef, PipeField::kArrowOIDRef,
            PipeField::kCrossingRefs, PipeField::kCrossingOIDRefs,
            PipeField::kProfileRefs, PipeField::kProfileOIDRefs})
        r.SetText(field, "");
      core::AddLink(
          start->second->record,
          {NodeField::kPipesAtStartLabels, NodeField::kPipesAtStartOID},
          pipe.final_label, id);
      core::AddLink(end->second->record,
                    {NodeField::kPipesAtEndLabels, NodeField::kPipesAtEndOID},
                    pipe.final_label, id);
      kept.push_back(&pipe);
    }
    for (Copy* pipe : kept) pipe->record.Write(*pipe->entity);
    for (Copy& node : copies.nodes) node.record.Write(*node.entity);
    for (Copy* pipe : kept) {
      viewstyle::ViewStyle::InsertAnnotationsForNewEntity(
          document, *pipe->entity, correction);
      pipes_for_crossing.AddItems({pipe->entity});
    }
    for (Copy& node : copies.nodes) {
      viewstyle::ViewStyle::InsertAnnotationsForNewEntity(
          document, *node.entity, correction);
      nodes_for_low_high.AddItems({node.entity});
    }
    // Each copied pipe is one more of its material and size.
    if (!kept.empty()) {
      host::SelectionSet& counted =
          General::InitializeSelectionSet(document, "CopiedPipeSet");
      for (Copy* pipe : kept) counted.AddItems({pipe->entity});
      library::Library::UpdateLibrariesForPipes(document, counted, 1);
      counted.Delete();
    }
    if (copies.type == core::kPressure && !copies.nodes.empty()) {
      host::SelectionSet& nodes =
          General::InitializeSelectionSet(document, "CopiedNodeSet");
      for (Copy& node : copies.nodes) nodes.AddItems({node.entity});
      lowhigh::LowHigh::BuildLowHighPointsAfterImporting(
          document,
          lowhigh::LowHigh::GetInitialNodesOIDArrayForLowHigh(document, nodes),
          network);
      nodes.Delete();
    }
  }
  if (pipes_for_crossing.Count() > 0)
    crossing::Crossing::BuildCrossingPointsAfterImporting(
        document, pipes_for_crossing, units);
}

}  // namespace kestrana::events
