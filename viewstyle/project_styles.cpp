#include "viewstyle/project_styles.h"

#include <algorithm>
#include <stdexcept>

#include "core/lists.h"
#include "core/project_record.h"
#include "core/record.h"
#include "core/text.h"
#include "core/user_names.h"
#include "host/host.h"
#include "viewstyle/view_style.h"

namespace kestrana::viewstyle {

core::ViewStylesField ReadStyleField(host::Document& document) {
  return core::ViewStylesField::Parse(
      core::ReadProjectRecord(document).Text(core::ProjectField::kViewStyles));
}

ViewStyleSettings SettingsOfRecord(const core::Record& record) {
  ViewStyleSettings settings;
  for (int i = 0; i < record.Size(); ++i)
    settings.push_back(record.Text(core::Field::At(i)));
  return settings;
}

ViewStyleSettings ReadMarkerSettings(host::Document& document,
                                     std::string_view marker) {
  host::Object& point =
      document.ObjectIdToObject(core::ToInt32(core::NumericValue(marker)));
  return ViewStyle::ValidateViewStyleSettings(
      SettingsOfRecord(core::Record::ReadRequired(point)));
}

std::vector<ViewStyleSettings> ReadViewStyles(host::Document& document) {
  std::vector<ViewStyleSettings> styles;
  for (const std::string& marker : ReadStyleField(document).markers)
    styles.push_back(ReadMarkerSettings(document, marker));
  return styles;
}

std::optional<size_t> FindViewStyle(
    const std::vector<ViewStyleSettings>& styles, std::string_view name) {
  std::vector<std::string> names;
  for (const ViewStyleSettings& style : styles)
    names.push_back(StyleNameOf(style));
  const std::optional<std::string> stored = core::MatchName(names, name);
  if (!stored) return std::nullopt;
  return std::find(names.begin(), names.end(), *stored) - names.begin();
}

namespace {

// The network's position in the project record's list of names.
size_t NetworkPosition(host::Document& document, std::string_view network) {
  std::vector<std::string> names =
      core::ListEntries(core::ReadProjectRecord(document).Text(
          core::ProjectField::kNetworkNames));
  for (size_t k = 0; k < names.size(); ++k)
    if (names[k] == network) return k;
  throw std::invalid_argument("there is no network named \"" +
                              std::string(network) + "\"");
}

constexpr char kVisible = '1';
constexpr char kInvisible = '0';

}  // namespace

bool NetworkVisible(host::Document& document, std::string_view network) {
  size_t k = NetworkPosition(document, network);
  std::string visibility = ReadStyleField(document).visibility;
  return k >= visibility.size() || visibility[k] != kInvisible;
}

void SetNetworkVisibility(host::Document& document, std::string_view network,
                          bool visible) {
  size_t k = NetworkPosition(document, network);
  core::ViewStylesField field = ReadStyleField(document);
  std::string visibility = field.visibility;
  if (visibility.size() <= k) visibility.resize(k + 1, kVisible);
  visibility[k] = visible ? kVisible : kInvisible;
  ViewStyle::ChangeNetworkVisibility(document, network,
                                     visible ? kShow : kHide);
  ViewStyle::UpdateMoSpaceXdataForViewStyle(document, field.active, visibility);
}

}  // namespace kestrana::viewstyle
