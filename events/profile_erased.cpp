#include <string>
#include <vector>

#include "core/general.h"
#include "core/lists.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "events/events.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_style_record.h"

namespace kestrana::events {

namespace {

using core::General;
using profile::ProfileField;
using profile::ProfileStyleItem;

// The list without its `index`-th ";"-piece (piece 0 is the empty text
// before the first ";").
std::string WithoutPiece(const std::string& list, size_t index) {
  std::vector<std::string> pieces = core::Split(list);
  if (index >= pieces.size()) return list;
  pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(index));
  std::string joined;
  for (size_t i = 0; i < pieces.size(); ++i)
    joined += (i ? ";" : "") + pieces[i];
  return joined;
}

// Drops the profile from the three lists of its style, which name each
// profile by name, block ID and network, in step.
void RemoveFromStyle(host::Document& document, const core::Record& profile,
                     const std::string& name, const std::string& network,
                     const std::string& id) {
  const std::string style_ref = profile.Text(ProfileField::kStyleOIDRef);
  if (style_ref.empty()) return;
  host::Entity& marker = core::EntityFromReference(document, style_ref);
  core::Record style = core::Record::ReadRequired(marker);
  const std::vector<std::string> names =
      core::Split(style.Text(ProfileStyleItem::kProfileNames));
  const std::vector<std::string> ids =
      core::Split(style.Text(ProfileStyleItem::kProfileOIDs));
  const std::vector<std::string> networks =
      core::Split(style.Text(ProfileStyleItem::kProfileNetworks));
  // By block ID; by name and network where the IDs are not current.
  size_t found = 0;
  for (size_t i = 1; i < ids.size() && found == 0; ++i)
    if (ids[i] == "RelatedTo" + id) found = i;
  for (size_t i = 1; i < names.size() && found == 0; ++i)
    if (names[i] == "RelatedTo" + name &&
        (i >= networks.size() || networks[i] == network))
      found = i;
  if (found == 0) return;
  for (auto item :
       {ProfileStyleItem::kProfileNames, ProfileStyleItem::kProfileOIDs,
        ProfileStyleItem::kProfileNetworks})
    style.SetText(item, WithoutPiece(style.Text(item), found));
  style.Write(marker);
}

}  // namespace

void Events::ProfileWillBeErased(
    host::Document& document, host::BlockReference& profile_block,
    std::string_view erased_entites_object_id,
    std::string_view entities_to_be_erased_object_id) {
  const core::Record record = core::ReadRecordWithFields(
      profile_block, profile::kProfileRecordLength, "profile");
  const std::string combined = record.Text(ProfileField::kCombinedLabel);
  const std::string name = General::EntityLabelFromCombined(combined);
  const std::string network = General::EntityNetworkFromCombined(combined);
  const std::string id = core::IdText(profile_block.ObjectID());

  RemoveFromStyle(document, record, name, network, id);
  profile::Profile::DeleteProfileStamps(document, profile_block);
  for (const std::string& pipe_oid :
       core::ReferenceValues(record.Text(ProfileField::kPipeOIDs)))
    profile::Profile::DeleteProfileReferenceFromPipe(
        document, name, id, pipe_oid, erased_entites_object_id,
        entities_to_be_erased_object_id);

  const std::string plan_ref = record.Text(ProfileField::kPlanAnnoOIDRef);
  if (plan_ref.empty()) return;
  const std::string plan_id = core::ReferenceValues(plan_ref).front();
  if (General::Check_ID_Exists(plan_id, erased_entites_object_id) ||
      General::Check_ID_Exists(plan_id, entities_to_be_erased_object_id))
    return;
  try {
    core::EntityFromIdText(document, plan_id).Delete();
  } catch (const host::HostError&) {
    // Already gone.
  }
}

}  // namespace kestrana::events
