#include <string>
#include <vector>

#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/messages.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "editing/editing.h"
#include "host/host.h"
#include "library/library.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "viewstyle/view_style.h"

namespace kestrana::editing {

namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

constexpr char kOtherNetworks[] =
    "The selected pipes are from different networks!";
constexpr char kOtherMaterials[] =
    "The selected pipes include different materials!";
constexpr char kOtherSizes[] = "The selected pipes include different sizes!";
constexpr char kNotOneLine[] =
    "The selected pipes don't represent a single continuous line!";
constexpr char kLateral[] = "The selected pipes have lateral connections!";

Editing::MergeRunRow RowOf(const Record& pipe) {
  return {pipe.Text(PipeField::kStartNodeLabel),
          pipe.Text(PipeField::kEndNodeLabel),
          core::SingleReference(pipe, PipeField::kStartNodeOID),
          core::SingleReference(pipe, PipeField::kEndNodeOID)};
}

bool Connected(const Editing::MergeRunRow& a, const Editing::MergeRunRow& b) {
  return a.start_label == b.start_label || a.start_label == b.end_label ||
         a.end_label == b.start_label || a.end_label == b.end_label;
}

std::vector<int> ConnectionCounts(
    const std::vector<Editing::MergeRunRow>& rows) {
  std::vector<int> counts(rows.size(), 0);
  for (size_t j = 1; j < rows.size(); ++j)
    for (size_t i = 0; i < j; ++i)
      if (Connected(rows[i], rows[j])) {
        ++counts[i];
        ++counts[j];
      }
  return counts;
}

std::vector<Record> Records(host::SelectionSet& set) {
  std::vector<Record> records;
  for (host::Entity* pipe : set.Entities())
    records.push_back(
        core::ReadRecordWithFields(*pipe, core::kPipeRecordLength, "pipe"));
  return records;
}

}  // namespace

host::SelectionSet& Editing::GetPipesToMerge(host::Document& document) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "TempSetPipesToMerge");
  document.SendCommand(core::kEscape);
  document.GetUtility().Prompt(kMergePrompt);
  set.SelectOnScreen(core::ElementsOfKindFilter(true));
  if (set.Count() < 2) return set;

  auto refuse = [&](const char* message) -> host::SelectionSet& {
    core::ShowMessage(document, message, host::msgbox::kCritical);
    set.Clear();
    return set;
  };
  const std::vector<Record> pipes = Records(set);
  const Record& first = pipes.front();
  const std::string network =
      General::EntityNetworkFromCombined(first.Text(PipeField::kCombinedLabel));
  for (size_t i = 1; i < pipes.size(); ++i) {
    const Record& pipe = pipes[i];
    if (General::EntityNetworkFromCombined(
            pipe.Text(PipeField::kCombinedLabel)) != network)
      return refuse(kOtherNetworks);
    if (pipe.Text(PipeField::kMaterial) != first.Text(PipeField::kMaterial))
      return refuse(kOtherMaterials);
    if (pipe.Text(PipeField::kSectionShape) !=
            first.Text(PipeField::kSectionShape) ||
        pipe.Number(PipeField::kSpan) != first.Number(PipeField::kSpan) ||
        pipe.Number(PipeField::kRise) != first.Number(PipeField::kRise))
      return refuse(kOtherSizes);
  }
  std::vector<MergeRunRow> rows;
  for (const Record& pipe : pipes) rows.push_back(RowOf(pipe));
  const std::vector<int> counts = ConnectionCounts(rows);
  int ends = 0;
  for (int count : counts) {
    if (count == 0) return refuse(kNotOneLine);
    ends += count == 1;
  }
  if (ends != 2) return refuse(kNotOneLine);
  if (!CheckInternalNodes(document, rows, static_cast<int>(rows.size())))
    return refuse(kLateral);
  return set;
}

bool Editing::CheckInternalNodes(host::Document& document,
                                 const std::vector<MergeRunRow>& ar_nodes,
                                 int count_pipes) {
  const size_t n =
      std::min(ar_nodes.size(), static_cast<size_t>(std::max(count_pipes, 0)));
  std::vector<std::string> internal;
  for (size_t i = 0; i < n; ++i)
    for (size_t j = i + 1; j < n; ++j) {
      const MergeRunRow &a = ar_nodes[i], &b = ar_nodes[j];
      if (b.start_label == a.start_label || b.start_label == a.end_label)
        internal.push_back(b.start_oid);
      else if (b.end_label == a.start_label || b.end_label == a.end_label)
        internal.push_back(b.end_oid);
    }
  for (const std::string& node_oid : internal) {
    const Record node =
        Record::ReadRequired(core::EntityFromIdText(document, node_oid));
    const size_t pipes =
        core::ReferenceValues(node.Text(NodeField::kPipesAtStartLabels))
            .size() +
        core::ReferenceValues(node.Text(NodeField::kPipesAtEndLabels)).size();
    if (pipes > 2) return false;
  }
  return true;
}

host::LwPolyline& Editing::CreateMergedPipe(
    host::Document& document, host::SelectionSet& set_pipes_to_merge,
    std::vector<host::Entity*>& ar_final_sequence_pipes,
    std::string& cross_point_labels_string,
    std::string& cross_point_oids_string) {
  const std::vector<host::Entity*> pipes = set_pipes_to_merge.Entities();
  const std::vector<Record> records = Records(set_pipes_to_merge);
  std::vector<MergeRunRow> rows;
  cross_point_labels_string.clear();
  cross_point_oids_string.clear();
  for (const Record& pipe : records) {
    rows.push_back(RowOf(pipe));
    cross_point_labels_string += pipe.Text(PipeField::kCrossingRefs);
    cross_point_oids_string += pipe.Text(PipeField::kCrossingOIDRefs);
  }
  const std::vector<int> counts = ConnectionCounts(rows);

  // From the end whose start lies higher; the later one on a tie.
  int first = -1;
  for (size_t i = 0; i < pipes.size(); ++i) {
    if (counts[i] != 1) continue;
    if (first < 0 || records[i].Number(PipeField::kStartInvert) >=
                         records[first].Number(PipeField::kStartInvert))
      first = static_cast<int>(i);
  }
  if (first < 0)
    throw std::invalid_argument(
        "the pipes to merge have no end: they are not one run");
  std::vector<bool> placed(pipes.size(), false);
  std::vector<size_t> order = {static_cast<size_t>(first)};
  placed[first] = true;
  while (order.size() < pipes.size()) {
    bool found = false;
    for (size_t i = 0; i < pipes.size() && !found; ++i)
      if (!placed[i] && Connected(rows[order.back()], rows[i])) {
        order.push_back(i);
        placed[i] = true;
        found = true;
      }
    if (!found)
      throw std::invalid_argument("the pipes to merge are not one run");
  }

  ar_final_sequence_pipes.clear();
  std::vector<double> xy;
  for (size_t k : order) {
    ar_final_sequence_pipes.push_back(pipes[k]);
    const std::vector<double> next =
        host::As<host::LwPolyline>(*pipes[k]).Coordinates();
    xy = xy.empty() ? next : MergeTwoCoordinatesArrays(xy, next);
  }
  host::LwPolyline& merged = document.ModelSpace().AddLightWeightPolyline(xy);
  merged.SetLayer(pipes[first]->Layer());
  return merged;
}

void Editing::AssignMergedXdata(
    host::Document& document, host::Entity& merged_pipe_entity,
    const std::vector<host::Entity*>& ar_final_sequence_pipes,
    std::string_view cross_point_labels_string,
    std::string_view cross_point_oids_string,
    host::Entity*& first_merged_pipe_entity,
    host::Entity*& last_merged_pipe_entity, std::string& final_start_node_label,
    std::string& final_end_node_label, std::string& merged_element_type,
    std::string& merged_element_network,
    host::SelectionSet& set_nodes_for_low_high) {
  const auto& sequence = ar_final_sequence_pipes;
  first_merged_pipe_entity = sequence.front();
  last_merged_pipe_entity = sequence.back();
  const Record first = Record::ReadRequired(*sequence.front());
  const Record second = Record::ReadRequired(*sequence[1]);
  const Record last = Record::ReadRequired(*sequence.back());
  const Record second_last =
      Record::ReadRequired(*sequence[sequence.size() - 2]);

  // A pipe's free end is the one its neighbour in the run does not share.
  auto shares = [](const std::string& label, const Record& other) {
    return label == other.Text(PipeField::kStartNodeLabel) ||
           label == other.Text(PipeField::kEndNodeLabel);
  };
  struct End {
    std::string label, oid;
    double invert;
  };
  auto free_end = [&](const Record& pipe, const Record& neighbour) {
    const bool start_free =
        shares(pipe.Text(PipeField::kEndNodeLabel), neighbour);
    return start_free ? End{pipe.Text(PipeField::kStartNodeLabel),
                            pipe.Text(PipeField::kStartNodeOID),
                            pipe.Number(PipeField::kStartInvert)}
                      : End{pipe.Text(PipeField::kEndNodeLabel),
                            pipe.Text(PipeField::kEndNodeOID),
                            pipe.Number(PipeField::kEndInvert)};
  };
  const End start = free_end(first, second);
  const End end = free_end(last, second_last);
  final_start_node_label = start.label;
  final_end_node_label = end.label;

  std::string profile_labels, profile_oids;
  for (host::Entity* pipe : sequence) {
    const Record record = Record::ReadRequired(*pipe);
    const std::vector<std::string> labels =
        core::ReferenceValues(record.Text(PipeField::kProfileRefs));
    const std::vector<std::string> ids =
        core::ReferenceValues(record.Text(PipeField::kProfileOIDRefs));
    for (size_t i = 0; i < ids.size(); ++i) {
      if (General::Check_ID_Exists(core::RelatedTo(ids[i]), profile_oids))
        continue;
      profile_oids += ";" + core::RelatedTo(ids[i]);
      profile_labels +=
          ";" + core::RelatedTo(i < labels.size() ? labels[i] : "");
    }
  }

  Record merged = first;
  merged.SetReal(PipeField::kStartInvert, start.invert);
  merged.SetReal(PipeField::kEndInvert, end.invert);
  merged.SetText(PipeField::kStartNodeLabel, start.label);
  merged.SetText(PipeField::kEndNodeLabel, end.label);
  merged.SetText(PipeField::kStartNodeOID, start.oid);
  merged.SetText(PipeField::kEndNodeOID, end.oid);
  merged.SetText(PipeField::kCrossingRefs, cross_point_labels_string);
  merged.SetText(PipeField::kCrossingOIDRefs, cross_point_oids_string);
  merged.SetText(PipeField::kProfileRefs, profile_labels);
  merged.SetText(PipeField::kProfileOIDRefs, profile_oids);
  merged.Write(merged_pipe_entity);
  viewstyle::ViewStyle::InsertAnnotationsForNewEntity(
      document, merged_pipe_entity, General::GetCorrectionAngleForCS(document));

  const std::string combined = first.Text(PipeField::kCombinedLabel);
  const std::string label = General::EntityLabelFromCombined(combined);
  merged_element_type = first.Text(PipeField::kElementType);
  merged_element_network = General::EntityNetworkFromCombined(combined);
  const std::string merged_id = core::IdText(merged_pipe_entity.ObjectID());

  // Each end node forgets its old pipe and lists the merged one.
  auto relink = [&](const End& at, host::Entity& old_pipe, bool at_start) {
    const std::string node_oid = core::ReferenceValues(at.oid).empty()
                                     ? std::string()
                                     : core::ReferenceValues(at.oid).front();
    if (node_oid.empty()) return;
    host::Entity& node = core::EntityFromIdText(document, node_oid);
    Record record = Record::ReadRequired(node);
    const Record old_record = Record::ReadRequired(old_pipe);
    const std::string old_label = General::EntityLabelFromCombined(
        old_record.Text(PipeField::kCombinedLabel));
    const std::string old_id = core::IdText(old_pipe.ObjectID());
    const core::LinkFields start_links{NodeField::kPipesAtStartLabels,
                                       NodeField::kPipesAtStartOID};
    const core::LinkFields end_links{NodeField::kPipesAtEndLabels,
                                     NodeField::kPipesAtEndOID};
    core::DeleteLink(record, start_links, old_label, old_id);
    core::DeleteLink(record, end_links, old_label, old_id);
    core::AddLink(record, at_start ? start_links : end_links, label, merged_id);
    record.Write(node);
    UpdateConnectedPipesAtNode(document, node,
                               General::EntityLabelFromCombined(
                                   record.Text(NodeField::kCombinedLabel)),
                               record.Text(NodeField::kPipesAtStartOID),
                               record.Text(NodeField::kPipesAtEndOID),
                               record.Number(NodeField::kSumpLevel),
                               record.Int16(NodeField::kMatching));
    set_nodes_for_low_high.AddItems({&node});
  };
  relink(start, *sequence.front(), true);
  relink(end, *sequence.back(), false);
}

void Editing::UpdateLibrariesAfterMerging(
    host::Document& document, host::Entity& first_merged_pipe_entity,
    int count_pipes) {
  if (count_pipes < 2) return;
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "MergedPipeSet");
  set.AddItems({&first_merged_pipe_entity});
  library::Library::UpdateLibrariesForPipes(document, set, -(count_pipes - 1));
  set.Delete();
}

void Editing::UpdateCrossingsAfterMerging(
    host::Document& document, std::string_view /*cross_point_labels_string*/,
    std::string_view cross_point_oids_string, host::Entity& merged_pipe_entity,
    host::SelectionSet& set_pipes_to_merge) {
  using F = crossing::CrossingAnnoField;
  const std::string merged =
      core::ReferenceEntry(core::IdText(merged_pipe_entity.ObjectID()));
  for (const std::string& id : core::ReferenceValues(cross_point_oids_string)) {
    host::Entity& annotation = core::EntityFromIdText(document, id);
    Record record = Record::ReadRequired(annotation);
    for (host::Entity* old : set_pipes_to_merge.Entities()) {
      const std::string old_ref =
          core::ReferenceEntry(core::IdText(old->ObjectID()));
      if (record.Text(F::kPipe1OIDRef) == old_ref) {
        record.SetText(F::kPipe1OIDRef, merged);
        break;
      }
      if (record.Text(F::kPipe2OIDRef) == old_ref) {
        record.SetText(F::kPipe2OIDRef, merged);
        break;
      }
    }
    record.Write(annotation);
    crossing::Crossing::UpdateCrossingData(document, annotation);
  }
}

void Editing::UpdateProfilesAfterMerging(
    host::Document& document, host::Entity& merged_pipe_entity,
    host::SelectionSet& set_pipes_to_merge) {
  const Record merged = Record::ReadRequired(merged_pipe_entity);
  const std::string merged_label =
      General::EntityLabelFromCombined(merged.Text(PipeField::kCombinedLabel));
  const std::string merged_id = core::IdText(merged_pipe_entity.ObjectID());
  std::string old_ids;
  for (host::Entity* old : set_pipes_to_merge.Entities())
    old_ids += core::IdText(old->ObjectID()) + ";";
  const auto& polyline = host::As<host::LwPolyline>(merged_pipe_entity);

  for (const std::string& profile_oid :
       core::ReferenceValues(merged.Text(PipeField::kProfileOIDRefs))) {
    host::Entity& block = core::EntityFromIdText(document, profile_oid);
    Record record = core::ReadRecordWithFields(
        block, profile::kProfileRecordLength, "profile");
    const profile::PipeChain chain = profile::ReadPipeChain(record);
    profile::PipeChain merged_chain;
    bool replaced = false;
    for (size_t i = 0; i < chain.ids.size(); ++i) {
      if (!General::Check_ID_Exists(chain.ids[i], old_ids)) {
        merged_chain.labels.push_back(chain.labels[i]);
        merged_chain.ids.push_back(chain.ids[i]);
        merged_chain.directions.push_back(chain.directions[i]);
      } else if (!replaced) {
        // One entry for the merged pipe where the first old one stood.
        replaced = true;
        merged_chain.labels.push_back(merged_label);
        merged_chain.ids.push_back(merged_id);
        merged_chain.directions.push_back(
            profile::Profile::GetMergedPipeDirectionInProfile(
                document, polyline, chain.ids[i], chain.directions[i]));
      }
    }
    profile::WritePipeChain(record, merged_chain);
    record.Write(block);
    profile::Profile::FlagProfileForUpdate(document, profile_oid);
  }
}

void Editing::DeleteOldMergedPipes(host::Document& document,
                                   host::SelectionSet& set_pipes_to_merge,
                                   std::string_view final_start_node_label,
                                   std::string_view final_end_node_label) {
  const std::vector<host::Entity*> pipes = set_pipes_to_merge.Entities();
  for (host::Entity* pipe : pipes) {
    const Record record = Record::ReadRequired(*pipe);
    core::EraseIfPresent(
        document, core::SingleReference(record, PipeField::kAnnotationOIDRef));
    core::EraseIfPresent(
        document, core::SingleReference(record, PipeField::kArrowOIDRef));
    for (auto [label_field, id_field] :
         {std::pair{PipeField::kStartNodeLabel, PipeField::kStartNodeOID},
          std::pair{PipeField::kEndNodeLabel, PipeField::kEndNodeOID}}) {
      const std::string label = record.Text(label_field);
      if (label == final_start_node_label || label == final_end_node_label)
        continue;
      const std::string node_id = core::SingleReference(record, id_field);
      if (node_id.empty()) continue;
      try {
        const Record node =
            Record::ReadRequired(core::EntityFromIdText(document, node_id));
        core::EraseIfPresent(document, core::SingleReference(
                                           node, NodeField::kAnnotationOIDRef));
        // A marker of a node that goes would point at nothing.
        core::EraseIfPresent(
            document, core::SingleReference(node, NodeField::kLowHighOIDRef));
      } catch (const host::HostError&) {
        continue;  // erased with an earlier pipe of the run
      }
      core::EraseIfPresent(document, node_id);
    }
  }
  for (host::Entity* pipe : pipes) pipe->Delete();
}

}  // namespace kestrana::editing
