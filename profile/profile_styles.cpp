// Profile styles: making, importing and deleting their markers.
#include <algorithm>
#include <stdexcept>

#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/project_record.h"
#include "core/project_setup.h"
#include "core/references.h"
#include "core/text.h"
#include "core/values.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_style_file.h"
#include "profile/profile_style_record.h"
#include "profile/style_markers.h"

namespace kestrana::profile {

namespace {

// A value in the kind its group code holds, as SetXData stores it.
host::XValue ValueFor(int16_t code, const std::string& text) {
  switch (code) {
    case core::code::kReal:
      return core::NumericValue(text);
    case core::code::kInt16:
      return core::ToInt16(core::NumericValue(text));
    default:
      return text;
  }
}

}  // namespace

std::vector<StyleMarker> ReadStyleMarkers(host::Document& document) {
  std::vector<StyleMarker> styles;
  const core::Record project = core::ReadProjectRecord(document);
  for (const std::string& id :
       core::ListEntries(project.Text(core::ProjectField::kProfileStyles))) {
    host::Object& marker = core::ObjectFromIdText(document, id);
    core::Record record = core::ReadRecordWithFields(
        marker, kProfileStyleRecordLength, "profile style");
    std::string name = core::CombinedLabel::ParsePadded(
                           record.Text(ProfileStyleItem::kCombinedLabel))
                           .label;
    styles.push_back({&marker, std::move(record), std::move(name)});
  }
  return styles;
}

std::optional<StyleMarker> FindStyleMarker(host::Document& document,
                                           std::string_view name) {
  for (StyleMarker& style : ReadStyleMarkers(document))
    if (style.name == name) return std::move(style);
  return std::nullopt;
}

std::vector<StyleProfile> ProfilesOfStyle(const core::Record& style) {
  const std::vector<std::string> names =
      core::ReferenceValues(style.Text(ProfileStyleItem::kProfileNames));
  const std::vector<std::string> ids =
      core::ReferenceValues(style.Text(ProfileStyleItem::kProfileOIDs));
  std::vector<std::string> networks =
      core::Split(style.Text(ProfileStyleItem::kProfileNetworks));
  networks.erase(networks.begin());  // ";<network>..."
  std::vector<StyleProfile> profiles;
  for (size_t i = 0; i < std::max(names.size(), ids.size()); ++i)
    profiles.push_back({i < names.size() ? names[i] : "",
                        i < networks.size() ? networks[i] : "",
                        i < ids.size() ? ids[i] : ""});
  return profiles;
}

std::string Profile::CreateProfileStyle(
    host::Document& document, const std::vector<std::string>& x_data,
    const std::vector<int16_t>& x_data_type) {
  if (x_data.size() != x_data_type.size() || x_data.empty())
    throw std::invalid_argument(
        "a profile style needs one group code per value, not " +
        std::to_string(x_data_type.size()) + " for " +
        std::to_string(x_data.size()));
  host::XRecord record;
  for (size_t i = 0; i < x_data.size(); ++i)
    record.push_back({x_data_type[i], ValueFor(x_data_type[i], x_data[i])});

  core::UnlockedLayers unlocked(document);
  host::Point& marker = core::AddMarkerPoint(document, record);
  core::Record project = core::ReadProjectRecord(document);
  project.SetText(core::ProjectField::kProfileStyles,
                  project.Text(core::ProjectField::kProfileStyles) +
                      core::IdListEntry(marker.ObjectID()));
  core::WriteProjectRecord(document, project);
  unlocked.Restore();
  return core::IdText(marker.ObjectID());
}

std::vector<std::string> Profile::ValidateProfileStyleSettings(
    const std::vector<std::string>& settings_array) {
  if (settings_array.size() == static_cast<size_t>(kProfileStyleRecordLength))
    return settings_array;
  return std::vector<std::string>(kProfileStyleRecordLength);
}

std::optional<std::vector<std::string>> Profile::ImportArProfileSettings(
    const std::string& file_path) {
  try {
    return ReadProfileStyleFile(file_path);
  } catch (const ProfileStyleFileError&) {
    return std::nullopt;
  } catch (const NotFoundError&) {
    return std::nullopt;
  }
}

void Profile::DeleteProfileStyle(host::Document& document,
                                 std::string_view style_point_oid) {
  core::UnlockedLayers unlocked(document);
  core::Record project = core::ReadProjectRecord(document);
  // By value, not by text ending: deleting marker 12 keeps marker 112.
  project.SetText(
      core::ProjectField::kProfileStyles,
      core::General::ExcludeID(
          style_point_oid, project.Text(core::ProjectField::kProfileStyles)));
  core::WriteProjectRecord(document, project);
  core::EntityFromIdText(document, style_point_oid).Delete();
  unlocked.Restore();
}

}  // namespace kestrana::profile
