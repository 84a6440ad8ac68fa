// Named selection sets and object-ID strings.
#include <algorithm>
#include <cctype>

#include "core/general.h"
#include "core/lists.h"
#include "core/text.h"
#include "host/host.h"

namespace kestrana::core {

namespace {
// The host refuses a second set whose name differs only in letter case, so
// such a set is the one to replace.
bool SameSetName(std::string_view a, std::string_view b) {
  return SameIgnoringCase(a, b);
}
}  // namespace

host::SelectionSet& General::InitializeSelectionSet(
    host::Document& document, std::string_view selection_set_name) {
  host::SelectionSets& sets = document.GetSelectionSets();
  for (int i = 0; i < sets.Count(); ++i) {
    if (SameSetName(sets.Item(i).Name(), selection_set_name)) {
      sets.Item(i).Delete();
      break;
    }
  }
  return sets.Add(std::string(selection_set_name));
}

std::vector<host::Entity*> General::SelectionSetToArray(
    host::SelectionSet& my_sel_set) {
  return my_sel_set.Entities();
}

host::SelectionSet& General::ConvertOIDStringToSelectionSet(
    host::Document& document, std::string_view oid_string) {
  host::SelectionSet& set = InitializeSelectionSet(document, "TempSet");
  if (oid_string.empty()) return set;
  for (const std::string& piece : Split(oid_string)) {
    std::optional<host::ObjectId> id = ParseObjectId(piece);
    if (!id) continue;
    try {
      if (auto* entity =
              dynamic_cast<host::Entity*>(&document.ObjectIdToObject(*id)))
        set.AddItems({entity});
    } catch (const host::HostError&) {
      // An erased or unknown object adds nothing.
    }
  }
  return set;
}

std::vector<std::string> General::ConvertSelectionSetToOIDArray(
    host::SelectionSet& my_set) {
  std::vector<std::string> ids;
  for (host::Entity* entity : my_set.Entities())
    ids.push_back(IdText(entity->ObjectID()));
  if (ids.empty()) ids.emplace_back();
  return ids;
}

}  // namespace kestrana::core
