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

namespace {
// Pieces of field 1.
constexpr size_t kActivePiece = 0;
constexpr size_t kVisibilityPiece = 1;
constexpr size_t kFirstMarkerPiece = 2;
}  // namespace

StyleField StyleField::Parse(std::string_view field) {
  std::vector<std::string> pieces = core::Split(field);
  StyleField parsed;
  parsed.active = pieces[kActivePiece];
  if (pieces.size() > kVisibilityPiece)
    parsed.visibility = pieces[kVisibilityPiece];
  // The last piece is the empty text after the final ";".
  for (size_t k = kFirstMarkerPiece; k + 1 < pieces.size(); ++k)
    parsed.markers.push_back(pieces[k]);
  return parsed;
}

StyleField StyleField::Read(host::Document& document) {
  return Parse(
      core::ReadProjectRecord(document).Text(core::ProjectField::kViewStyles));
}

std::string StyleField::Format() const {
  std::string text = active + ";" + visibility + ";";
  for (const std::string& marker : markers) text += marker + ";";
  return text;
}

ViewStyleSettings SettingsOfRecord(const core::Record& record) {
  ViewStyleSettings settings;
  for (int i = 0; i < record.Size(); ++i) settings.push_back(record.Text(i));
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
  for (const std::string& marker : StyleField::Read(document).markers)
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
  std::string visibility = StyleField::Read(document).visibility;
  return k >= visibility.size() || visibility[k] != kInvisible;
}

void SetNetworkVisibility(host::Document& document, std::string_view network,
                          bool visible) {
  size_t k = NetworkPosition(document, network);
  StyleField field = StyleField::Read(document);
  std::string visibility = field.visibility;
  if (visibility.size() <= k) visibility.resize(k + 1, kVisible);
  visibility[k] = visible ? kVisible : kInvisible;
  ViewStyle::ChangeNetworkVisibility(document, network,
                                     visible ? kShow : kHide);
  ViewStyle::UpdateMoSpaceXdataForViewStyle(document, field.active, visibility);
}

}  // namespace kestrana::viewstyle
