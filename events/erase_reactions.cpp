#include <algorithm>
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
#include "crossing/crossing_record.h"
#include "events/events.h"
#include "events/id_lists.h"
#include "host/host.h"
#include "library/library.h"
#include "lowhigh/lowhigh.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "types/cross_point.h"
#include "viewstyle/annotation_record.h"

namespace kestrana::events {

namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

// Queues an object for erasure unless it goes already.
void Queue(const std::string& id, std::string_view erased,
           std::string& to_be_erased) {
  if (!Listed(id, erased)) AppendOnce(to_be_erased, id);
}

// The owner of an annotation or arrow empties its two link fields.
void Unlink(host::Document& document, host::Entity& reference,
            std::string_view erased, bool arrow) {
  const Record record = Record::ReadRequired(reference);
  const std::string owner_id =
      core::SingleReference(record, viewstyle::AnnotationField::kElementOIDRef);
  if (owner_id.empty() || Listed(owner_id, erased) ||
      !Exists(document, owner_id))
    return;
  host::Entity& owner = core::EntityFromIdText(document, owner_id);
  Record owner_record = Record::ReadRequired(owner);
  const std::string type = owner_record.Text(PipeField::kElementType);
  const bool pipe = type == core::kGravityPipe || type == core::kPressurePipe;
  if (arrow) {
    if (!pipe) return;
    owner_record.SetText(PipeField::kArrowLabelRef, "");
    owner_record.SetText(PipeField::kArrowOIDRef, "");
  } else if (pipe) {
    owner_record.SetText(PipeField::kAnnotationLabelRef, "");
    owner_record.SetText(PipeField::kAnnotationOIDRef, "");
  } else {
    owner_record.SetText(NodeField::kAnnotationLabelRef, "");
    owner_record.SetText(NodeField::kAnnotationOIDRef, "");
  }
  owner_record.Write(owner);
}

}  // namespace

void Events::PipeWillBeErased(host::Document& document, host::Entity& pipe,
                              std::string_view erased,
                              std::string& to_be_erased,
                              std::string& nodes_for_low_high) {
  const Record record =
      core::ReadRecordWithFields(pipe, core::kPipeRecordLength, "pipe");
  const std::string pipe_id = core::IdText(pipe.ObjectID());
  const std::string start =
      core::SingleReference(record, PipeField::kStartNodeOID);
  const std::string end = core::SingleReference(record, PipeField::kEndNodeOID);
  // A node that is gone already has nothing left to repair.
  if (!start.empty() && !Listed(start, erased) && Exists(document, start))
    General::RemovePipeFromNode(document, start, pipe_id, "Start");
  if (!end.empty() && !Listed(end, erased) && Exists(document, end))
    General::RemovePipeFromNode(document, end, pipe_id, "End");
  AppendOnce(nodes_for_low_high, start);
  AppendOnce(nodes_for_low_high, end);

  Queue(core::SingleReference(record, PipeField::kAnnotationOIDRef), erased,
        to_be_erased);
  Queue(core::SingleReference(record, PipeField::kArrowOIDRef), erased,
        to_be_erased);
  for (const std::string& id :
       core::ReferenceValues(record.Text(PipeField::kCrossingOIDRefs))) {
    if (Listed(id, erased) || Listed(id, to_be_erased) || !Exists(document, id))
      continue;
    CrossingAnnoWillBeErased(document, core::EntityFromIdText(document, id),
                             erased, to_be_erased);
    AppendOnce(to_be_erased, id);
  }
  for (const std::string& id :
       core::ReferenceValues(record.Text(PipeField::kProfileOIDRefs)))
    if (!Listed(id, erased) && !Listed(id, to_be_erased) &&
        Exists(document, id))
      DeletePipeFromProfile(document, id, pipe_id, erased, to_be_erased);

  // One use less of its material and size.
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "ErasedPipeSet");
  set.AddItems({&pipe});
  library::Library::UpdateLibrariesForPipes(document, set, -1);
  set.Delete();
}

void Events::NodeWillBeErased(host::Document& document, host::Entity& node,
                              std::string_view erased,
                              std::string& to_be_erased,
                              std::string& nodes_for_low_high) {
  const Record record =
      core::ReadRecordWithFields(node, core::kNodeRecordLength, "node");
  for (auto field : {NodeField::kPipesAtStartOID, NodeField::kPipesAtEndOID}) {
    for (const std::string& id : core::ReferenceValues(record.Text(field))) {
      if (Listed(id, erased) || Listed(id, to_be_erased) ||
          !Exists(document, id))
        continue;
      PipeWillBeErased(document, core::EntityFromIdText(document, id), erased,
                       to_be_erased, nodes_for_low_high);
      AppendOnce(to_be_erased, id);
    }
  }
  Queue(core::SingleReference(record, NodeField::kAnnotationOIDRef), erased,
        to_be_erased);
  Queue(core::SingleReference(record, NodeField::kLowHighOIDRef), erased,
        to_be_erased);
  AppendOnce(nodes_for_low_high, core::IdText(node.ObjectID()));
}

void Events::CrossingAnnoWillBeErased(host::Document& document,
                                      host::Entity& crossing_anno,
                                      std::string_view erased,
                                      std::string& to_be_erased) {
  using F = crossing::CrossingAnnoField;
  const Record record = Record::ReadRequired(crossing_anno);
  const std::string label =
      General::EntityLabelFromCombined(record.Text(F::kCombinedLabel));
  const std::string id = core::IdText(crossing_anno.ObjectID());
  types::CrossPoint pipes;
  pipes.Pipe1OID = core::SingleReference(record, F::kPipe1OIDRef);
  pipes.Pipe2OID = core::SingleReference(record, F::kPipe2OIDRef);
  bool both_stay = true;
  for (const std::string* pipe_id : {&pipes.Pipe1OID, &pipes.Pipe2OID}) {
    if (pipe_id->empty() || Listed(*pipe_id, erased) ||
        Listed(*pipe_id, to_be_erased) || !Exists(document, *pipe_id)) {
      both_stay = false;
      continue;
    }
    host::Entity& pipe = core::EntityFromIdText(document, *pipe_id);
    Record pipe_record = Record::ReadRequired(pipe);
    core::DeleteLink(pipe_record, core::kCrossingLinks, label, id);
    pipe_record.Write(pipe);
  }
  Queue(core::SingleReference(record, F::kLineOIDRef), erased, to_be_erased);
  // The profiles along a pipe that goes are cut at it instead.
  if (both_stay)
    profile::Profile::FlagProfilesRelatedToCrossingPoints(document, {pipes});
}

void Events::AnnotationWillBeErased(host::Document& document,
                                    host::Entity& annotation,
                                    std::string_view erased) {
  Unlink(document, annotation, erased, false);
}

void Events::ArrowWillBeErased(host::Document& document, host::Entity& arrow,
                               std::string_view erased) {
  Unlink(document, arrow, erased, true);
}

void Events::DeletePipeFromProfile(host::Document& document,
                                   std::string_view profile_oid,
                                   std::string_view pipe_oid,
                                   std::string_view erased,
                                   std::string& to_be_erased) {
  using F = profile::ProfileField;
  host::Entity& block = core::EntityFromIdText(document, profile_oid);
  Record record = core::ReadRecordWithFields(
      block, profile::kProfileRecordLength, "profile");
  const std::string name =
      General::EntityLabelFromCombined(record.Text(F::kCombinedLabel));
  const profile::PipeChain chain = profile::ReadPipeChain(record);
  const auto at =
      std::find(chain.ids.begin(), chain.ids.end(), std::string(pipe_oid));
  if (at == chain.ids.end()) return;  // not in this profile
  const size_t cut = static_cast<size_t>(at - chain.ids.begin());

  // A profile is one run: the pipes after the cut leave it too.
  for (size_t i = cut + 1; i < chain.ids.size(); ++i)
    profile::Profile::DeleteProfileReferenceFromPipe(
        document, name, profile_oid, chain.ids[i], erased, to_be_erased);
  if (cut == 0) {
    ProfileWillBeErased(document, host::As<host::BlockReference>(block), erased,
                        to_be_erased);
    AppendOnce(to_be_erased, std::string(profile_oid));
    return;
  }
  profile::PipeChain kept;
  for (size_t i = 0; i < cut; ++i) {
    kept.labels.push_back(chain.labels[i]);
    kept.ids.push_back(chain.ids[i]);
    kept.directions.push_back(chain.directions[i]);
  }
  profile::WritePipeChain(record, kept);
  record.Write(block);
  profile::Profile::FlagProfileForUpdate(document, profile_oid);
}

void Events::AnalyzeLowHighAfterDeleting(host::Document& document,
                                         std::string_view nodes) {
  const core::TextTable networks = General::GetNetworkDefinitions(document);
  using namespace core::network_column;
  if (networks.Rows() == 0 || networks(0, kName).empty()) return;
  std::vector<std::vector<std::string>> per_network(
      static_cast<size_t>(networks.Rows()));
  // The nodes and their neighbours, as after an edit: a node whose sump
  // moved when it lost a pipe may have become a low or high point itself,
  // and then the analysis would not spread from it to the neighbours whose
  // status its new level changes.
  std::string with_neighbours;
  for (const std::string& id : lowhigh::LowHigh::GetInitialNodesOIDArrayForLowHigh(
           document, General::ConvertOIDStringToSelectionSet(document, nodes)))
    if (std::optional<host::ObjectId> node_id = core::ParseObjectId(id))
      with_neighbours += core::IdListEntry(*node_id);
  for (host::Entity* node :
       General::ConvertOIDStringToSelectionSet(document, with_neighbours)
           .Entities()) {
    const std::string network = General::GetElementNetwork(*node);
    for (int row = 0; row < networks.Rows(); ++row)
      if (networks(row, kName) == network)
        per_network[static_cast<size_t>(row)].push_back(
            core::IdText(node->ObjectID()));
  }
  for (int row = 0; row < networks.Rows(); ++row)
    if (networks(row, kType) == core::kPressure &&
        !per_network[static_cast<size_t>(row)].empty())
      lowhigh::LowHigh::BuildLowHighPointsAfterImporting(
          document, per_network[static_cast<size_t>(row)],
          networks(row, kName));
}

}  // namespace kestrana::events
