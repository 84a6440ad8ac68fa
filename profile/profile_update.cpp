// Drawing a profile again from its record, where its block now stands.
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "events/events.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_sheet.h"

namespace kestrana::profile {

using core::General;

ProfileInputs Profile::ReadProfileInputs(host::BlockReference& profile_block) {
  using F = ProfileField;
  const core::Record record = core::ReadRecordWithFields(
      profile_block, kProfileRecordLength, "profile");
  ProfileInputs inputs;
  const std::string combined = record.Text(F::kCombinedLabel);
  inputs.network_name = General::EntityNetworkFromCombined(combined);
  inputs.profile_name = General::EntityLabelFromCombined(combined);
  inputs.network_type = record.Text(F::kNetworkType);
  inputs.pipes.labels = record.Text(F::kPipeLabels);
  inputs.pipes.oids = record.Text(F::kPipeOIDs);
  inputs.pipes.directions = record.Text(F::kDirections);
  const std::vector<std::string> style =
      core::ReferenceValues(record.Text(F::kStyleNameRef));
  inputs.style_name = style.empty() ? "" : style.front();
  const std::vector<std::string> datum = core::Split(record.Text(F::kDatum));
  inputs.datum_auto = core::NumericValue(datum[0]) != 0;
  inputs.custom_datum_value =
      datum.size() > 1 ? core::NumericValue(datum[1]) : 0.0;
  const std::vector<std::string> ground = core::Split(record.Text(F::kGround));
  inputs.ground_from_surface = core::NumericValue(ground[0]) != 0;
  inputs.ground_surface_name = ground.size() > 1 ? ground[1] : "";
  const std::vector<std::string> plan =
      core::Split(record.Text(F::kPlanSwitches));
  inputs.name_on_plan = core::NumericValue(plan[0]) != 0;
  inputs.stations_on_plan =
      plan.size() > 1 && core::NumericValue(plan[1]) != 0;
  inputs.insertion_point = profile_block.InsertionPoint();
  return inputs;
}

std::string Profile::UpdateProfile(host::Document& document,
                                   std::string_view existing_profile_oid) {
  core::UnlockedLayers unlocked(document);
  std::string id;
  {
    TextMeasure measure(document);
    id = UpdateProfile(document, existing_profile_oid, measure);
  }
  unlocked.Restore();
  return id;
}

std::string Profile::UpdateProfile(host::Document& document,
                                   std::string_view existing_profile_oid,
                                   TextMeasure& measure) {
  core::UnlockedLayers unlocked(document);
  auto& block = host::As<host::BlockReference>(
      core::EntityFromIdText(document, existing_profile_oid));
  const ProfileInputs inputs = ReadProfileInputs(block);
  events::Events::ProfileWillBeErased(document, block, "", "");
  block.Delete();
  const std::string id = DrawProfile(document, inputs, measure);
  unlocked.Restore();
  return id;
}

}  // namespace kestrana::profile
