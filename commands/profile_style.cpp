#include "commands/profile_style.h"

#include "commands/profile_support.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/text.h"
#include "core/user_names.h"
#include "host/errors.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_style_file.h"
#include "profile/profile_style_record.h"

namespace kestrana::commands {

namespace {

using profile::ProfileStyleItem;

std::vector<std::string> ItemsOf(const core::Record& record) {
  std::vector<std::string> items;
  for (int k = 0; k < profile::kProfileStyleRecordLength; ++k)
    items.push_back(record.Text(k));
  return items;
}

std::string ProfileList(const std::vector<profile::StyleProfile>& profiles) {
  std::string text;
  for (const profile::StyleProfile& p : profiles)
    text += (text.empty() ? "" : ", ") + ("\"" + p.name + "\"") +
            (p.network.empty() ? "" : " (" + p.network + ")");
  return text;
}

}  // namespace

ProfileStyleListResult ProfileStyleList(
    host::Document& document, const ProfileStyleListOptions& /*options*/) {
  ProfileStyleListResult result;
  for (const profile::StyleMarker& style : profile::ReadStyleMarkers(document))
    result.styles.push_back(
        {style.name, profile::ProfilesOfStyle(style.record)});
  return result;
}

ProfileStyleShowResult ProfileStyleShow(
    host::Document& document, const ProfileStyleShowOptions& options) {
  const profile::StyleMarker style =
      RequireProfileStyle(document, options.name);
  return {{style.name, profile::ProfilesOfStyle(style.record)},
          ItemsOf(style.record)};
}

ProfileStyleExportResult ProfileStyleExport(
    host::Document& document, const ProfileStyleExportOptions& options) {
  const profile::StyleMarker style =
      RequireProfileStyle(document, options.name);
  std::vector<std::string> items = ItemsOf(style.record);
  for (ProfileStyleItem drawing_own :
       {ProfileStyleItem::kProfileNames, ProfileStyleItem::kProfileOIDs,
        ProfileStyleItem::kProfileNetworks})
    items[static_cast<int>(drawing_own)].clear();
  return {style.name, profile::WriteProfileStyleText(items)};
}

ProfileStyleImportResult ProfileStyleImport(
    host::Document& document, const ProfileStyleImportOptions& options) {
  std::vector<std::string> items =
      profile::Profile::ValidateProfileStyleSettings(options.items);
  profile::CheckProfileStyleValues(items);
  const std::string name =
      options.name.value_or(profile::ProfileStyleNameOf(items));
  if (name.empty())
    throw InvalidInputError(
        "the style file names no style (its second line is \"" +
        items[static_cast<int>(ProfileStyleItem::kCombinedLabel)] +
        "\"); give the name with --name");
  core::CheckUserName("The profile style name", name);
  std::vector<std::string> names;
  for (const profile::StyleMarker& style : profile::ReadStyleMarkers(document))
    names.push_back(style.name);
  if (std::optional<std::string> taken = core::MatchName(names, name))
    throw RefusedError("the drawing already has a profile style named \"" +
                       *taken + "\"" + core::CaseNote(name, *taken) +
                       "; import it under another name with --name");
  items[static_cast<int>(ProfileStyleItem::kCombinedLabel)] = ";;" + name;
  return {name, profile::Profile::CreateProfileStyle(
                    document, items,
                    profile::Profile::GetProfileStyleXdataTypeArray())};
}

ProfileStyleDeleteResult ProfileStyleDelete(
    host::Document& document, const ProfileStyleDeleteOptions& options) {
  const profile::StyleMarker style =
      RequireProfileStyle(document, options.name);
  const std::vector<profile::StyleProfile> profiles =
      profile::ProfilesOfStyle(style.record);
  if (!profiles.empty())
    throw RefusedError("the profile style \"" + style.name +
                       "\" is in use by " + std::to_string(profiles.size()) +
                       (profiles.size() == 1 ? " profile: " : " profiles: ") +
                       ProfileList(profiles) + "; delete them first");
  profile::Profile::DeleteProfileStyle(document,
                                       core::IdText(style.marker->ObjectID()));
  return {style.name};
}

}  // namespace kestrana::commands
