// Profile records, back-references and update flags.
#include <algorithm>
#include <cmath>

#include "core/filters.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/references.h"
#include "core/text.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_style_record.h"

namespace kestrana::profile {

using core::General;
using core::PipeField;

namespace {

core::Record ReadProfileRecord(const host::Object& block) {
  return core::ReadRecordWithFields(block, kProfileRecordLength, "profile");
}

core::Record ReadPipeRecord(const host::Object& pipe) {
  return core::ReadRecordWithFields(pipe, core::kPipeRecordLength, "pipe");
}

constexpr int16_t kLayerCode = 8;  // selection filters: the layer

// "1" for a switch that is on, as the record stores it.
std::string SwitchText(bool on) { return on ? "1" : "0"; }

std::string Flipped(std::string_view direction) {
  if (direction == kAlong) return kAgainst;
  if (direction == kAgainst) return kAlong;
  return std::string(direction);  // not a direction: nothing to flip
}

// The style marker whose record names the style, or nullptr.
host::Object* FindStyleMarker(host::Document& document,
                              std::string_view style_name) {
  const std::string wanted = ";;" + std::string(style_name);
  core::Record project = core::ReadProjectRecord(document);
  for (const std::string& id :
       core::ListEntries(project.Text(core::ProjectField::kProfileStyles))) {
    host::Object& marker = core::ObjectFromIdText(document, id);
    std::optional<core::Record> record = core::Record::Read(marker);
    if (record && record->Has(ProfileStyleItem::kCombinedLabel) &&
        record->Text(ProfileStyleItem::kCombinedLabel) == wanted)
      return &marker;
  }
  return nullptr;
}

void AppendToPipe(host::Document& document, const std::string& pipe_oid,
                  std::string_view profile_name, const std::string& block_id) {
  host::Entity& pipe = core::EntityFromIdText(document, pipe_oid);
  core::Record record = ReadPipeRecord(pipe);
  record.SetText(PipeField::kProfileRefs,
                 record.Text(PipeField::kProfileRefs) +
                     core::ReferenceEntry(profile_name));
  record.SetText(
      PipeField::kProfileOIDRefs,
      record.Text(PipeField::kProfileOIDRefs) + core::ReferenceEntry(block_id));
  record.Write(pipe);
}

// The stamp stands in the middle of the profile, a quarter of its height
// tall and never wider than the profile.
void AddStamp(host::Document& document, const host::Entity& profile_block,
              const core::Record& profile) {
  host::Layer* layer = document.GetLayers().Find(kStampLayer);
  if (layer == nullptr) {
    layer = &document.GetLayers().Add(kStampLayer);
    layer->SetTrueColor(host::color::kRed);
  }
  const host::BoundingBox box = profile_block.GetBoundingBox();
  const double width = box.max.x - box.min.x;
  const double height_of_box = box.max.y - box.min.y;
  constexpr double kWidthPerHeight = 9.0;  // "NeedsUpdate" is 8.5 h wide
  double height = std::min(height_of_box / 4, width / kWidthPerHeight);
  if (!(height > 0)) height = 1.0;
  const host::Point3 middle{(box.min.x + box.max.x) / 2,
                            (box.min.y + box.max.y) / 2, 0};
  host::Text& stamp = document.ModelSpace().AddText(kStampText, middle, height);
  stamp.SetLayer(kStampLayer);
  stamp.SetAlignment(host::TextAlignment::kMiddleCenter);
  stamp.SetTextAlignmentPoint(middle);
  // The stamp names its profile, so that it goes when the profile does.
  core::Record link = core::Record::WithCodes(kStampRecordCodes);
  link.SetText(StampField::kCombinedLabel,
               std::string(kStampKind) + ";" +
                   General::EntityNetworkFromCombined(
                       profile.Text(ProfileField::kCombinedLabel)) +
                   ";" +
                   General::EntityLabelFromCombined(
                       profile.Text(ProfileField::kCombinedLabel)));
  link.SetText(StampField::kElementType, kStampKind);
  link.SetText(StampField::kProfileOIDRef,
               core::ReferenceEntry(core::IdText(profile_block.ObjectID())));
  link.Write(stamp);
}

}  // namespace

std::vector<int16_t> Profile::GetProfileStyleXdataTypeArray() {
  std::vector<int16_t> codes(kProfileStyleRecordLength, core::code::kText);
  codes.front() = core::code::kAppName;
  return codes;
}

std::optional<core::Record> Profile::GetProfileStyleSettings(
    host::Document& document, std::string_view profile_style) {
  host::Object* marker = FindStyleMarker(document, profile_style);
  if (marker == nullptr) return std::nullopt;
  return core::Record::ReadRequired(*marker);
}

std::string Profile::GetProfileStyleOID(host::Document& document,
                                        std::string_view profile_style_name) {
  host::Object* marker = FindStyleMarker(document, profile_style_name);
  return marker == nullptr ? "" : core::IdText(marker->ObjectID());
}

void Profile::BuildProfileBlockXData(host::Document& document,
                                     const ProfileInputs& inputs,
                                     host::BlockReference& profile_block,
                                     host::BlockReference* plan_block) {
  host::Object* style = FindStyleMarker(document, inputs.style_name);
  if (style == nullptr)
    throw std::invalid_argument("there is no profile style named \"" +
                                inputs.style_name + "\"");
  const std::string block_id = core::IdText(profile_block.ObjectID());

  using F = ProfileField;
  core::Record record = core::Record::WithCodes(kProfileRecordCodes);
  record.SetText(F::kCombinedLabel, std::string(kProfileKind) + ";" +
                                        inputs.network_name + ";" +
                                        inputs.profile_name);
  record.SetText(F::kElementType, kProfileKind);
  record.SetText(F::kNetworkType, inputs.network_type);
  record.SetText(F::kPipeLabels, inputs.pipes.labels);
  record.SetText(F::kPipeOIDs, inputs.pipes.oids);
  record.SetText(F::kDirections, inputs.pipes.directions);
  record.SetText(F::kStyleNameRef, core::ReferenceEntry(inputs.style_name));
  record.SetText(F::kStyleOIDRef,
                 core::ReferenceEntry(core::IdText(style->ObjectID())));
  if (plan_block != nullptr) {
    record.SetText(F::kPlanAnnoLabelRef,
                   core::ReferenceEntry(inputs.profile_name + kPlanAnnoSuffix));
    record.SetText(F::kPlanAnnoOIDRef,
                   core::ReferenceEntry(core::IdText(plan_block->ObjectID())));
  }
  record.SetText(F::kDatum, SwitchText(inputs.datum_auto) + ";" +
                                core::GeneralText(inputs.custom_datum_value));
  record.SetText(F::kGround, SwitchText(inputs.ground_from_surface) + ";" +
                                 inputs.ground_surface_name);
  record.SetText(F::kInsertionPoint,
                 core::GeneralText(inputs.insertion_point.x) + ";" +
                     core::GeneralText(inputs.insertion_point.y) + ";" +
                     core::GeneralText(inputs.insertion_point.z));
  record.SetText(F::kPlanSwitches, SwitchText(inputs.name_on_plan) + ";" +
                                       SwitchText(inputs.stations_on_plan));
  record.SetInt16(F::kUpdateFlag, kCurrent);
  record.Write(profile_block);

  core::Record style_record = core::ReadRecordWithFields(
      *style, kProfileStyleRecordLength, "profile style");
  auto append = [&](ProfileStyleItem item, const std::string& entry) {
    style_record.SetText(item, style_record.Text(item) + entry);
  };
  append(ProfileStyleItem::kProfileNames,
         core::ReferenceEntry(inputs.profile_name));
  append(ProfileStyleItem::kProfileOIDs, core::ReferenceEntry(block_id));
  append(ProfileStyleItem::kProfileNetworks, ";" + inputs.network_name);
  style_record.Write(*style);

  for (const std::string& pipe_oid : core::ReferenceValues(inputs.pipes.oids))
    AppendToPipe(document, pipe_oid, inputs.profile_name, block_id);
}

void Profile::BuildProfilePlanAnnoBlockXData(
    std::string_view profile_name, std::string_view profile_network_name,
    host::BlockReference& profile_block, host::BlockReference& plan_block) {
  using F = PlanAnnoField;
  core::Record record = core::Record::WithCodes(kPlanAnnoRecordCodes);
  record.SetText(F::kCombinedLabel, std::string(kPlanAnnoKind) + ";" +
                                        std::string(profile_network_name) +
                                        ";" + std::string(profile_name) +
                                        kPlanAnnoSuffix);
  record.SetText(F::kElementType, kPlanAnnoKind);
  record.SetText(F::kProfileNameRef, core::ReferenceEntry(profile_name));
  record.SetText(F::kProfileOIDRef,
                 core::ReferenceEntry(core::IdText(profile_block.ObjectID())));
  record.Write(plan_block);
}

void Profile::FlagProfileForUpdate(host::Document& document,
                                   std::string_view profile_oid) {
  host::Entity& block = core::EntityFromIdText(document, profile_oid);
  core::Record record = ReadProfileRecord(block);
  if (record.Int16(ProfileField::kUpdateFlag) == kNeedsUpdate) return;
  record.SetInt16(ProfileField::kUpdateFlag, kNeedsUpdate);
  record.Write(block);
  AddStamp(document, block, record);
}

void Profile::FlagProfilesRelatedToCrossingPoints(
    host::Document& document,
    const std::vector<types::CrossPoint>& ar_cross_points) {
  for (const types::CrossPoint& point : ar_cross_points) {
    if (types::IsNoCrossing(point)) continue;
    for (const std::string* pipe_oid : {&point.Pipe1OID, &point.Pipe2OID}) {
      host::Entity& pipe = core::EntityFromIdText(document, *pipe_oid);
      for (const std::string& profile_oid : core::ReferenceValues(
               ReadPipeRecord(pipe).Text(PipeField::kProfileOIDRefs)))
        FlagProfileForUpdate(document, profile_oid);
    }
  }
}

void Profile::DeleteProfileStamps(host::Document& document,
                                  const host::Entity& profile_block) {
  const core::Record profile = ReadProfileRecord(profile_block);
  // Only a flagged profile has a stamp.
  if (profile.Int16(ProfileField::kUpdateFlag) != kNeedsUpdate) return;
  const std::string label =
      std::string(kStampKind) + ";" +
      General::EntityNetworkFromCombined(
          profile.Text(ProfileField::kCombinedLabel)) +
      ";" +
      General::EntityLabelFromCombined(
          profile.Text(ProfileField::kCombinedLabel));
  const std::string id_ref =
      core::ReferenceEntry(core::IdText(profile_block.ObjectID()));
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "SetProfileStamps");
  set.Select(host::SelectMode::kAll, {}, {},
             {{core::code::kAppName, host::XValue(std::string(core::kAppName))},
              {kLayerCode, host::XValue(std::string(kStampLayer))}});
  for (host::Entity* stamp : set.Entities()) {
    const std::optional<core::Record> link = core::Record::Read(*stamp);
    if (!link || !link->Has(StampField::kProfileOIDRef) ||
        link->Text(StampField::kElementType) != kStampKind)
      continue;
    if (link->Text(StampField::kCombinedLabel) == label ||
        link->Text(StampField::kProfileOIDRef) == id_ref)
      if (!stamp->Erased()) stamp->Delete();
  }
  set.Delete();
}

host::SelectionSet& Profile::GetExistingProfileSet(host::Document& document,
                                                   std::string_view net_name) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(document, "SetProfiles");
  set.Select(
      host::SelectMode::kAll, {}, {},
      core::BlockInsertsFilter({std::string(kProfileBlockPrefix) + "*"}));
  if (net_name.empty() || set.Count() == 0) return set;
  std::vector<host::Entity*> kept;
  for (host::Entity* block : set.Entities())
    if (General::EntityNetworkFromCombined(ReadProfileRecord(*block).Text(
            ProfileField::kCombinedLabel)) == net_name)
      kept.push_back(block);
  set.Clear();
  set.AddItems(kept);
  return set;
}

std::string Profile::GetMergedPipeDirectionInProfile(
    host::Document& document, const host::LwPolyline& new_pipe,
    std::string_view old_pipe_oid, std::string_view old_pipe_direction) {
  const auto& old_pipe = host::As<host::LwPolyline>(
      core::EntityFromIdText(document, old_pipe_oid));
  const std::vector<double> a = new_pipe.Coordinates();
  const std::vector<double> b = old_pipe.Coordinates();
  if (a.size() < 2 || b.size() < 2) return std::string(old_pipe_direction);
  auto distance = [](const std::vector<double>& p, size_t i,
                     const std::vector<double>& q, size_t j) {
    return std::hypot(p[i] - q[j], p[i + 1] - q[j + 1]);
  };
  const size_t a_last = a.size() - 2, b_last = b.size() - 2;
  // The old pipe lies somewhere along the merged one: its ends are nearer to
  // the merged ends of the same kind when both run the same way.
  const bool same_way = distance(a, 0, b, 0) + distance(a, a_last, b, b_last) <=
                        distance(a, 0, b, b_last) + distance(a, a_last, b, 0);
  return same_way ? std::string(old_pipe_direction)
                  : Flipped(old_pipe_direction);
}

void Profile::ReversePipeDirectionInProfile(host::Document& document,
                                            std::string_view pipe_oid,
                                            std::string_view profile_oid) {
  host::Entity& block = core::EntityFromIdText(document, profile_oid);
  core::Record record = ReadProfileRecord(block);
  const std::vector<std::string> ids =
      core::Split(record.Text(ProfileField::kPipeOIDs));
  const std::vector<std::string> directions =
      core::Split(record.Text(ProfileField::kDirections));
  const std::string reversed = core::RelatedTo(pipe_oid);
  std::string rebuilt;
  for (size_t k = 1; k < directions.size(); ++k) {
    const bool flip = k < ids.size() && ids[k] == reversed;
    rebuilt += ";" + (flip ? Flipped(directions[k]) : directions[k]);
  }
  record.SetText(ProfileField::kDirections, rebuilt);
  record.Write(block);
}

void Profile::DeleteProfileReferenceFromPipe(
    host::Document& document, std::string_view profile_name,
    std::string_view profile_oid, std::string_view pipe_oid,
    std::string_view erased_entites_object_id,
    std::string_view entities_to_be_erased_object_id) {
  if (General::Check_ID_Exists(pipe_oid, erased_entites_object_id) ||
      General::Check_ID_Exists(pipe_oid, entities_to_be_erased_object_id))
    return;
  host::Entity& pipe = core::EntityFromIdText(document, pipe_oid);
  core::Record record = ReadPipeRecord(pipe);
  record.SetText(PipeField::kProfileRefs,
                 General::DeleteReferenceInReferenceString(
                     record.Text(PipeField::kProfileRefs),
                     core::RelatedTo(profile_name), 0));
  record.SetText(PipeField::kProfileOIDRefs,
                 General::DeleteReferenceInReferenceString(
                     record.Text(PipeField::kProfileOIDRefs),
                     core::RelatedTo(profile_oid), 0));
  record.Write(pipe);
}

PipeChain ReadPipeChain(const core::Record& profile) {
  PipeChain chain;
  chain.labels = core::ReferenceValues(profile.Text(ProfileField::kPipeLabels));
  chain.ids = core::ReferenceValues(profile.Text(ProfileField::kPipeOIDs));
  // ";0;1": piece 0 is the empty text before the first ";".
  chain.directions = core::Split(profile.Text(ProfileField::kDirections));
  if (!chain.directions.empty())
    chain.directions.erase(chain.directions.begin());
  chain.labels.resize(chain.ids.size());
  chain.directions.resize(chain.ids.size(), kAlong);
  return chain;
}

void WritePipeChain(core::Record& profile, const PipeChain& chain) {
  std::string labels, ids, directions;
  for (size_t i = 0; i < chain.ids.size(); ++i) {
    labels +=
        core::ReferenceEntry(i < chain.labels.size() ? chain.labels[i] : "");
    ids += core::ReferenceEntry(chain.ids[i]);
    directions +=
        ";" + (i < chain.directions.size() ? chain.directions[i] : kAlong);
  }
  profile.SetText(ProfileField::kPipeLabels, labels);
  profile.SetText(ProfileField::kPipeOIDs, ids);
  profile.SetText(ProfileField::kDirections, directions);
}

}  // namespace kestrana::profile
