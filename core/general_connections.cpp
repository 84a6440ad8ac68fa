// Connection and label upkeep need the sump rules and labels of editing,
// the annotations of the view styles and the manhole labels of profiles;
// General calls them at this level.
#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "editing/editing.h"
#include "host/host.h"
#include "profile/profile.h"
#include "viewstyle/view_style.h"

namespace kestrana::core {

void General::RemovePipeFromNode(host::Document& document,
                                 std::string_view node_oid,
                                 std::string_view pipe_oid,
                                 std::string_view side) {
  host::Entity& node = EntityFromIdText(document, node_oid);
  Record record = Record::ReadRequired(node);
  const bool start = side == "Start";
  const Field ids_field =
      start ? NodeField::kPipesAtStartOID : NodeField::kPipesAtEndOID;
  const Field labels_field =
      start ? NodeField::kPipesAtStartLabels : NodeField::kPipesAtEndLabels;
  constexpr std::string_view kRelatedTo = "RelatedTo";

  const std::vector<std::string> ids = Split(record.Text(ids_field));
  std::string kept_ids;
  size_t removed = 0;  // the last matching position; 0 when none matched
  for (size_t i = 1; i < ids.size(); ++i) {
    if (ids[i].size() < kRelatedTo.size())
      throw std::invalid_argument("node " + std::string(node_oid) +
                                  " lists a pipe as \"" + ids[i] +
                                  "\", which is no reference");
    if (core::ReferenceValues(";" + ids[i]).front() == pipe_oid)
      removed = i;
    else
      kept_ids += ";" + ids[i];
  }
  const std::vector<std::string> labels = Split(record.Text(labels_field));
  std::string kept_labels;
  for (size_t i = 1; i < labels.size(); ++i)
    if (i != removed) kept_labels += ";" + labels[i];
  record.SetText(ids_field, kept_ids);
  record.SetText(labels_field, kept_labels);

  const std::string start_ids =
      start ? kept_ids : record.Text(NodeField::kPipesAtStartOID);
  const std::string end_ids =
      start ? record.Text(NodeField::kPipesAtEndOID) : kept_ids;
  record.SetReal(NodeField::kSumpLevel, editing::Editing::GetSumpElevation(
                                            document, start_ids, end_ids));
  record.Write(node);
  viewstyle::ViewStyle::UpdateAnnotationsAfterEditing(
      document, std::string(node_oid) + ";", false);
}

bool General::CheckLabelDuplication(host::Document& document,
                                    std::string_view network_name,
                                    std::string_view element_type,
                                    std::string_view element_label) {
  if (element_type == kGravityPipe || element_type == kPressurePipe) {
    host::SelectionSet& set =
        InitializeSelectionSet(document, "CheckLabelDuplicatoinSet");
    const std::string combined =
        CombinedLabel{kPipeKind, std::string(network_name),
                      std::string(element_label)}
            .Format();
    set.Select(host::SelectMode::kAll, {}, {},
               {{code::kAppName, host::XValue(std::string(kAppName))},
                {code::kText, host::XValue(combined)}});
    return set.Count() > 0;
  }
  if (element_type == kGravityNode || element_type == kPressureNode) {
    for (const std::string& label : editing::Editing::GetExistingLabelsArray(
             document, network_name, element_type, {}))
      if (!label.empty() && SameIgnoringCase(label, element_label)) return true;
  }
  return false;
}

namespace {

// A label piece as it sorts: numbers as four digits or more.
std::string SortPiece(const std::string& piece) {
  if (piece.empty()) return piece;
  auto padded = [](double value) { return FormatNumber(value, "0000"); };
  if (piece.size() == 1 || (piece[0] >= '1' && piece[0] <= '9'))
    return padded(NumericValue(piece));
  if (piece.size() > 1) {
    if (double rest = NumericValue(piece.substr(1)); rest != 0)
      return piece.substr(0, 1) + padded(rest);
  }
  if (piece.size() > 2) {
    if (double rest = NumericValue(piece.substr(2)); rest != 0)
      return piece.substr(0, 2) + padded(rest);
  }
  return piece;
}

}  // namespace

std::vector<std::string> General::NumericSort(
    const std::vector<std::string>& ar_strings) {
  std::string delimiter;
  for (const std::string& label : ar_strings) {
    delimiter = profile::Profile::GetManholeLabelDelimiter(label);
    if (!delimiter.empty()) break;
  }
  constexpr size_t kPositions = 11;
  std::vector<std::string> keys;
  for (const std::string& label : ar_strings) {
    std::vector<std::string> pieces = delimiter.empty()
                                          ? std::vector<std::string>{label}
                                          : Split(label, delimiter[0]);
    std::string key;
    for (size_t i = 0; i < kPositions; ++i)
      key += i < pieces.size() ? SortPiece(pieces[i]) : "0000";
    keys.push_back(key + ";" + label);
  }
  std::vector<std::string> sorted;
  for (const std::string& key : BubbleSort(keys))
    sorted.push_back(key.substr(key.find(';') + 1));
  return sorted;
}

}  // namespace kestrana::core
