#include "commands/pipe_crossings.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include "core/general.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "host/host.h"

namespace kestrana::commands {

namespace {

using core::PipeField;
using core::Record;
using crossing::CrossingAnnoField;

// Removes the entry naming `id` from a pipe's crossing lists, with the
// label in the same place (labels of repeated crossings are equal, so the
// position tells them apart).
void Forget(Record& pipe, const std::string& id) {
  std::vector<std::string> labels =
      core::ReferenceValues(pipe.Text(PipeField::kCrossingRefs));
  std::vector<std::string> ids =
      core::ReferenceValues(pipe.Text(PipeField::kCrossingOIDRefs));
  auto at = std::find(ids.begin(), ids.end(), id);
  if (at == ids.end()) return;
  const size_t k = at - ids.begin();
  ids.erase(at);
  if (k < labels.size()) labels.erase(labels.begin() + k);
  std::string label_list, id_list;
  for (const std::string& l : labels) label_list += core::ReferenceEntry(l);
  for (const std::string& i : ids) id_list += core::ReferenceEntry(i);
  pipe.SetText(PipeField::kCrossingRefs, label_list);
  pipe.SetText(PipeField::kCrossingOIDRefs, id_list);
}

}  // namespace

void CrossNewPipes(host::Document& document,
                   const std::vector<host::Entity*>& pipes) {
  host::SelectionSet& set =
      core::General::InitializeSelectionSet(document, "SetPipesForCrossing");
  set.AddItems(pipes);
  crossing::Crossing::BuildCrossingPointsAfterImporting(
      document, set, core::General::GetModelUnits(document));
}

void DropRepeatedCrossings(host::Document& document, host::Entity& pipe) {
  const std::string pipe_id = core::IdText(pipe.ObjectID());
  std::set<std::string> crossed;
  for (const std::string& anno_id : core::ReferenceValues(
           Record::ReadRequired(pipe).Text(PipeField::kCrossingOIDRefs))) {
    host::Entity& anno = core::EntityFromIdText(document, anno_id);
    const Record record = Record::ReadRequired(anno);
    std::string other = core::SingleReference(record, CrossingAnnoField::kPipe1OIDRef);
    if (other == pipe_id)
      other = core::SingleReference(record, CrossingAnnoField::kPipe2OIDRef);
    if (crossed.insert(other).second) continue;
    for (const std::string& id : {pipe_id, other}) {
      host::Entity& owner = core::EntityFromIdText(document, id);
      Record owner_record = Record::ReadRequired(owner);
      Forget(owner_record, anno_id);
      owner_record.Write(owner);
    }
    core::EraseIfPresent(
        document, core::SingleReference(record, CrossingAnnoField::kLineOIDRef));
    anno.Delete();
  }
}

}  // namespace kestrana::commands
