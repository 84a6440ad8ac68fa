// Node and pipe data: levels, matching rules, sections and materials, and
// how a change at one element reaches the elements connected to it.
#include <algorithm>
#include <unordered_set>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "crossing/crossing.h"
#include "crossing/crossing_search.h"
#include "editing/editing.h"
#include "editing/pipe_matching.h"
#include "host/host.h"
#include "library/library.h"
#include "profile/profile.h"
#include "viewstyle/view_style.h"

namespace kestrana::editing {

using core::General;
using core::NodeField;
using core::PipeField;

namespace {

// GetMinimumLevel's answer for a side without pipes, and the start of its
// search.
constexpr double kNoPipeLevel = -999;
constexpr double kMinimumSearchStart = 100000000;

// "SectionShape_" before the shape word; the form's size texts carry the
// diameter after "Circular - " and the box size after "Box - ".
constexpr size_t kShapePrefixLength = 13;
constexpr size_t kCircularSizeOffset = 11;
constexpr size_t kBoxSizeOffset = 6;
constexpr char kBoxFormPrefix[] = "Box";

// The text from `offset` on, or "" when the text is shorter.
std::string_view After(std::string_view text, size_t offset) {
  return offset < text.size() ? text.substr(offset) : std::string_view();
}

double RiseOf(const core::Record& pipe, const std::string& units) {
  return crossing::RiseInLevelUnits(pipe, units);
}

// The invert of a pipe end at a node by the node's rule; nullopt leaves it.
std::optional<double> MatchedInvert(int16_t matching, double largest_rise,
                                    double sump, double rise) {
  switch (static_cast<Matching>(matching)) {
    case Matching::kCenterlines:
      return largest_rise / 2 + sump - rise / 2;
    case Matching::kSoffits:
      return largest_rise + sump - rise;
    case Matching::kInverts:
      return sump;
    default:
      return std::nullopt;
  }
}

// The node's sump after one pipe end moved to `invert`.
double SumpFromPipe(host::Document& document, const core::Record& node,
                    int16_t matching, double largest_rise, double invert,
                    double rise) {
  switch (static_cast<Matching>(matching)) {
    case Matching::kNone:
      return Editing::GetSumpElevation(document,
                                       node.Text(NodeField::kPipesAtStartOID),
                                       node.Text(NodeField::kPipesAtEndOID));
    case Matching::kCenterlines:
      return invert + rise / 2 - largest_rise / 2;
    case Matching::kSoffits:
      return invert + rise - largest_rise;
    case Matching::kInverts:
      return invert;
  }
  return 0;
}

// The label list with the label of the pipe whose ID entry is `id_entry`
// replaced; the first match counts. Rebuilt from its entries either way.
std::string RelabelPipeEntry(std::string_view id_list,
                             std::string_view label_list,
                             const std::string& id_entry,
                             const std::string& label_entry) {
  const std::vector<std::string> ids = core::Split(id_list);
  std::vector<std::string> labels = core::Split(label_list);
  for (size_t k = 1; k < ids.size(); ++k) {
    if (ids[k] != id_entry) continue;
    if (k < labels.size()) labels[k] = label_entry;
    break;
  }
  std::string rebuilt;
  for (size_t k = 1; k < labels.size(); ++k) rebuilt += ";" + labels[k];
  return rebuilt;
}

std::optional<Matching> MatchingOfText(std::string_view text) {
  if (text == kNoMatching) return Matching::kNone;
  if (text == kMatchCenterlines) return Matching::kCenterlines;
  if (text == kMatchSoffits) return Matching::kSoffits;
  if (text == kMatchInverts) return Matching::kInverts;
  return std::nullopt;
}

// The section a size text of the pipe form stands for.
struct Section {
  std::string shape;  // record value
  double span = 0;
  double rise = 0;
};

Section SectionOfFormText(std::string_view text) {
  if (text.substr(0, 3) != kBoxFormPrefix) {
    const double span = core::NumericValue(After(text, kCircularSizeOffset));
    return {core::kSectionShapeCircular, span, span};
  }
  std::vector<std::string> sides =
      core::Split(After(text, kBoxSizeOffset), 'x');
  sides.resize(2);
  return {core::kSectionShapeBox, core::NumericValue(sides[0]),
          core::NumericValue(sides[1])};
}

// The ID of a pipe's end node; the host's error when the pipe names none.
std::string NodeIdOf(const core::Record& pipe, PipeField field,
                     const char* end) {
  std::vector<std::string> ids = core::ReferenceValues(pipe.Text(field));
  if (ids.empty())
    throw host::HostError(host::ErrorCode::kNoSuchObject,
                          "the pipe \"" +
                              General::EntityLabelFromCombined(
                                  pipe.Text(PipeField::kCombinedLabel)) +
                              "\" names no " + end + " node");
  return ids.front();
}

void AddToSet(host::SelectionSet& set, host::Entity& entity) {
  set.AddItems({&entity});
}

}  // namespace

core::Record ReadPipe(const host::Object& pipe) {
  return crossing::ReadPipeRecord(pipe);
}

core::Record ReadNode(const host::Object& node) {
  return core::ReadRecordWithFields(node, core::kNodeRecordLength, "node");
}

void MatchPipesAtNode(host::Document& document, host::Entity& node_entity,
                      std::string_view node_label,
                      std::string_view pipes_at_start_oid,
                      std::string_view pipes_at_end_oid, double sump_level,
                      int16_t matching, const PipeMatched& matched) {
  // Only the rules that line pipes up on the tallest one need its rise.
  const auto rule = static_cast<Matching>(matching);
  const bool by_tallest =
      rule == Matching::kCenterlines || rule == Matching::kSoffits;
  const double largest =
      by_tallest ? Editing::GetLargestRise(document, node_entity) : 0;
  const std::string units = General::GetModelUnits(document);
  const std::string node_entry = core::ReferenceEntry(node_label);
  auto match_side = [&](std::string_view list, PipeField invert_field,
                        PipeField node_label_field) {
    for (const std::string& id : core::ReferenceValues(list)) {
      host::Entity& pipe = core::EntityFromIdText(document, id);
      core::Record record = ReadPipe(pipe);
      const host::XValue invert_before = record.Value(invert_field);
      const host::XValue label_before = record.Value(node_label_field);
      if (std::optional<double> invert = MatchedInvert(
              matching, largest, sump_level, RiseOf(record, units)))
        record.SetReal(invert_field, *invert);
      record.SetText(node_label_field, node_entry);
      const bool changed = !(record.Value(invert_field) == invert_before &&
                             record.Value(node_label_field) == label_before);
      if (changed) record.Write(pipe);
      matched(pipe, changed);
    }
  };
  match_side(pipes_at_start_oid, PipeField::kStartInvert,
             PipeField::kStartNodeLabel);
  match_side(pipes_at_end_oid, PipeField::kEndInvert, PipeField::kEndNodeLabel);
}

void RefreshEditedPipe(host::Document& document, host::Entity& pipe) {
  const std::string id = core::IdText(pipe.ObjectID());
  viewstyle::ViewStyle::UpdateAnnotationsAfterEditing(
      document, core::IdListEntry(pipe.ObjectID()), false);
  crossing::Crossing::UpdateCrossingsAfterEditing(document, id);
  for (const std::string& profile :
       core::ReferenceValues(ReadPipe(pipe).Text(PipeField::kProfileOIDRefs)))
    profile::Profile::FlagProfileForUpdate(document, profile);
}

void RefreshEditedPipes(host::Document& document,
                        const std::vector<host::Entity*>& pipes) {
  std::unordered_set<host::Entity*> seen;
  std::vector<host::Entity*> unique;
  std::string ids;
  for (host::Entity* pipe : pipes) {
    if (!seen.insert(pipe).second) continue;
    unique.push_back(pipe);
    ids += core::IdListEntry(pipe->ObjectID());
  }
  if (unique.empty()) return;
  viewstyle::ViewStyle::UpdateAnnotationsAfterEditing(document, ids, false);
  for (host::Entity* pipe : unique) {
    const core::Record record = ReadPipe(*pipe);
    if (!record.Text(PipeField::kCrossingOIDRefs).empty())
      crossing::Crossing::UpdateCrossingsAfterEditing(
          document, core::IdText(pipe->ObjectID()));
    for (const std::string& profile :
         core::ReferenceValues(record.Text(PipeField::kProfileOIDRefs)))
      profile::Profile::FlagProfileForUpdate(document, profile);
  }
}

double Editing::GetMinimumLevel(host::Document& document,
                                std::string_view pipes_oids,
                                std::string_view side) {
  if (pipes_oids.empty()) return kNoPipeLevel;
  const PipeField field =
      side == kStartSide ? PipeField::kStartInvert : PipeField::kEndInvert;
  double minimum = kMinimumSearchStart;
  for (const std::string& id : core::ReferenceValues(pipes_oids))
    minimum = std::min(
        minimum, ReadPipe(core::EntityFromIdText(document, id)).Number(field));
  return minimum;
}

double Editing::GetSumpElevation(host::Document& document,
                                 std::string_view pipes_at_start_oids,
                                 std::string_view pipes_atend_oids) {
  const double at_start =
      GetMinimumLevel(document, pipes_at_start_oids, kStartSide);
  const double at_end = GetMinimumLevel(document, pipes_atend_oids, kEndSide);
  if (at_start == kNoPipeLevel && at_end == kNoPipeLevel) return 0;
  if (at_start == kNoPipeLevel) return at_end;
  if (at_end == kNoPipeLevel) return at_start;
  return at_start < at_end ? at_start : at_end;
}

double Editing::GetLargestRise(host::Document& document,
                               host::Entity& node_entity) {
  const core::Record node = ReadNode(node_entity);
  const std::string units = General::GetModelUnits(document);
  double largest = 0;
  for (NodeField list :
       {NodeField::kPipesAtStartOID, NodeField::kPipesAtEndOID})
    for (const std::string& id : core::ReferenceValues(node.Text(list)))
      largest = std::max(
          largest,
          RiseOf(ReadPipe(core::EntityFromIdText(document, id)), units));
  return largest;
}

void Editing::UpdateConnectedPipesAtNode(host::Document& document,
                                         host::Entity& node_entity,
                                         std::string_view node_label,
                                         std::string_view pipes_at_start_oid,
                                         std::string_view pipes_at_end_oid,
                                         double sump_level, int16_t matching) {
  MatchPipesAtNode(
      document, node_entity, node_label, pipes_at_start_oid, pipes_at_end_oid,
      sump_level, matching,
      [&](host::Entity& pipe, bool) { RefreshEditedPipe(document, pipe); });
}

void Editing::UpdateNodeData(host::Document& document,
                             std::string_view node_oid, std::string_view label,
                             double ground_level, double sump_level,
                             std::string_view pipes_matching,
                             host::SelectionSet& set_nodes_for_low_high) {
  host::Entity& node = core::EntityFromIdText(document, node_oid);
  core::Record record = ReadNode(node);
  const std::string network = General::EntityNetworkFromCombined(
      record.Text(NodeField::kCombinedLabel));
  record.SetText(
      NodeField::kCombinedLabel,
      core::CombinedLabel{core::kNodeKind, network, std::string(label)}
          .Format());
  record.SetReal(NodeField::kGroundLevel, ground_level);
  record.SetReal(NodeField::kSumpLevel, sump_level);
  if (std::optional<Matching> matching = MatchingOfText(pipes_matching)) {
    record.SetInt16(NodeField::kMatching, static_cast<int16_t>(*matching));
    // A sump never lies above the lowest invert of its pipes.
    if (*matching == Matching::kNone) {
      const double lowest =
          GetSumpElevation(document, record.Text(NodeField::kPipesAtStartOID),
                           record.Text(NodeField::kPipesAtEndOID));
      if (sump_level > lowest) record.SetReal(NodeField::kSumpLevel, lowest);
    }
  }
  record.Write(node);
  UpdateConnectedPipesAtNode(document, node, label,
                             record.Text(NodeField::kPipesAtStartOID),
                             record.Text(NodeField::kPipesAtEndOID), sump_level,
                             record.Int16(NodeField::kMatching));
  viewstyle::ViewStyle::UpdateAnnotationsAfterEditing(
      document, std::string(node_oid) + ";", false);
  if (record.Text(NodeField::kElementType) == core::kPressureNode)
    AddToSet(set_nodes_for_low_high, node);
}

void Editing::UpdateConnectedNodeAtPipe(host::Document& document,
                                        std::string_view node_oid,
                                        std::string_view pipe_label,
                                        std::string_view pipe_oid,
                                        double invert_level, double rise) {
  host::Entity& node = core::EntityFromIdText(document, node_oid);
  core::Record record = ReadNode(node);
  const double largest = GetLargestRise(document, node);
  const int16_t matching = record.Int16(NodeField::kMatching);
  const double sump =
      SumpFromPipe(document, record, matching, largest, invert_level, rise);
  record.SetReal(NodeField::kSumpLevel, sump);
  const std::string id_entry = core::RelatedTo(pipe_oid);
  const std::string label_entry = core::RelatedTo(pipe_label);
  record.SetText(NodeField::kPipesAtStartLabels,
                 RelabelPipeEntry(record.Text(NodeField::kPipesAtStartOID),
                                  record.Text(NodeField::kPipesAtStartLabels),
                                  id_entry, label_entry));
  record.SetText(NodeField::kPipesAtEndLabels,
                 RelabelPipeEntry(record.Text(NodeField::kPipesAtEndOID),
                                  record.Text(NodeField::kPipesAtEndLabels),
                                  id_entry, label_entry));
  record.Write(node);
  UpdateConnectedPipesAtNode(
      document, node,
      General::EntityLabelFromCombined(record.Text(NodeField::kCombinedLabel)),
      record.Text(NodeField::kPipesAtStartOID),
      record.Text(NodeField::kPipesAtEndOID), sump, matching);
  viewstyle::ViewStyle::UpdateAnnotationsAfterEditing(
      document, std::string(node_oid) + ";", false);
}

void Editing::UpdatePipeData(
    host::Document& document, std::string_view pipe_oid, std::string_view label,
    double start_invert, double end_invert, std::string_view material,
    std::string_view section_size_shape, int16_t number_of_cells,
    const core::TextTable& ar_circular_sizes,
    const core::TextTable& ar_box_sizes, const core::TextTable& ar_materials,
    host::SelectionSet& set_nodes_for_low_high) {
  const std::string units = General::GetModelUnits(document);
  host::Entity& pipe = core::EntityFromIdText(document, pipe_oid);
  core::Record record = ReadPipe(pipe);
  const std::string start_node =
      NodeIdOf(record, PipeField::kStartNodeOID, "start");
  const std::string end_node = NodeIdOf(record, PipeField::kEndNodeOID, "end");
  const std::string network = General::EntityNetworkFromCombined(
      record.Text(PipeField::kCombinedLabel));
  record.SetText(
      PipeField::kCombinedLabel,
      core::CombinedLabel{core::kPipeKind, network, std::string(label)}
          .Format());

  const library::PipeSize old_size = library::PipeSizeOf(record);
  const Section section = SectionOfFormText(section_size_shape);
  record.SetText(PipeField::kSectionShape, section.shape);
  record.SetReal(PipeField::kSpan, section.span);
  record.SetReal(PipeField::kRise, section.rise);
  const library::PipeSize new_size = library::PipeSizeOf(record);
  const double rise = RiseOf(record, units);

  core::TextTable size_change(2, library::size_change_column::kColumns);
  size_change(0, library::size_change_column::kKey) = old_size.key;
  size_change(0, library::size_change_column::kShape) = old_size.shape;
  size_change(0, library::size_change_column::kChange) = "-1";
  size_change(1, library::size_change_column::kKey) = new_size.key;
  size_change(1, library::size_change_column::kShape) = new_size.shape;
  size_change(1, library::size_change_column::kChange) = "1";
  library::Library::UpdateSizeUsage(document, ar_circular_sizes, ar_box_sizes,
                                    size_change);

  record.SetInt16(PipeField::kNumCells, number_of_cells);
  record.SetReal(PipeField::kStartInvert, start_invert);
  record.SetReal(PipeField::kEndInvert, end_invert);

  core::TextTable material_change(2, library::materials_column::kColumns);
  material_change(0, library::materials_column::kName) =
      record.Text(PipeField::kMaterial);
  material_change(0, library::materials_column::kCount) = "-1";
  material_change(1, library::materials_column::kName) = std::string(material);
  material_change(1, library::materials_column::kCount) = "1";
  library::Library::UpdateMaterialUsage(document, ar_materials,
                                        material_change);
  record.SetText(PipeField::kMaterial, material);
  record.Write(pipe);

  // Each end node takes the pipe's invert by its rule and passes it on.
  UpdateConnectedNodeAtPipe(document, start_node, label, pipe_oid,
                            record.Number(PipeField::kStartInvert), rise);
  UpdateConnectedNodeAtPipe(document, end_node, label, pipe_oid,
                            record.Number(PipeField::kEndInvert), rise);
  RefreshEditedPipe(document, pipe);
  if (record.Text(PipeField::kElementType) == core::kPressurePipe) {
    AddToSet(set_nodes_for_low_high,
             core::EntityFromIdText(document, start_node));
    AddToSet(set_nodes_for_low_high,
             core::EntityFromIdText(document, end_node));
  }
}

}  // namespace kestrana::editing
