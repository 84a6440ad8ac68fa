// Connection upkeep needs the sump rules of editing and the annotations of
// the view styles; General calls them at this level.
#include <stdexcept>
#include <string>
#include <vector>

#include "core/general.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "editing/editing.h"
#include "host/host.h"
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
    if (ids[i].substr(kRelatedTo.size()) == pipe_oid)
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

}  // namespace kestrana::core
