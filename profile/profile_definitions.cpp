// The profile definitions array: the drawing's profiles by name and network.
#include "core/general.h"
#include "core/lists.h"
#include "core/project_record.h"
#include "core/references.h"
#include "core/text.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_style_record.h"

namespace kestrana::profile {

namespace {

using Column = ProfileDefColumn;

const std::string& Cell(const ProfileDefinitions& table, int row,
                        Column column) {
  return table(row, static_cast<int>(column));
}

struct Row {
  std::string name, network, oid;
};

ProfileDefinitions TableOf(const std::vector<Row>& rows) {
  ProfileDefinitions table(static_cast<int>(rows.size()), kProfileDefColumns);
  for (int r = 0; r < table.Rows(); ++r) {
    table(r, static_cast<int>(Column::kName)) = rows[r].name;
    table(r, static_cast<int>(Column::kNetwork)) = rows[r].network;
    table(r, static_cast<int>(Column::kOID)) = rows[r].oid;
  }
  return table;
}

std::vector<Row> RowsOf(const std::optional<ProfileDefinitions>& table) {
  std::vector<Row> rows;
  if (!table) return rows;
  for (int r = 0; r < table->Rows(); ++r)
    rows.push_back({Cell(*table, r, Column::kName),
                    Cell(*table, r, Column::kNetwork),
                    Cell(*table, r, Column::kOID)});
  return rows;
}

}  // namespace

ProfileDefinitions Profile::AddProfileToProfileDefArray(
    const std::optional<ProfileDefinitions>& ar_profile_def,
    std::string_view profile_name, std::string_view profile_network,
    std::string_view profile_oid) {
  std::vector<Row> rows = RowsOf(ar_profile_def);
  rows.push_back({std::string(profile_name), std::string(profile_network),
                  std::string(profile_oid)});
  return TableOf(rows);
}

bool Profile::CheckProfileNameExists(
    const std::optional<ProfileDefinitions>& ar_profile_def,
    std::string_view profile_name, std::string_view profile_network) {
  for (const Row& row : RowsOf(ar_profile_def))
    if (core::SameIgnoringCase(row.name, profile_name) &&
        row.network == profile_network)
      return true;
  return false;
}

std::optional<std::string> Profile::GetProfileOIDFromProfileDefArray(
    const std::optional<ProfileDefinitions>& ar_profile_def,
    std::string_view profile_name, std::string_view profile_network) {
  std::optional<std::string> oid;
  for (const Row& row : RowsOf(ar_profile_def))
    if (row.name == profile_name && row.network == profile_network)
      oid = row.oid;
  return oid;
}

std::optional<ProfileDefinitions> Profile::DeleteProfileFromProfileDefArray(
    const std::optional<ProfileDefinitions>& ar_profile_def,
    std::string_view profile_oid) {
  std::vector<Row> kept;
  for (const Row& row : RowsOf(ar_profile_def))
    if (row.oid != profile_oid) kept.push_back(row);
  if (kept.empty()) return std::nullopt;
  return TableOf(kept);
}

std::optional<ProfileDefinitions> Profile::GetProfileDefinitionsArray(
    host::Document& document) {
  std::vector<Row> rows;
  const core::Record project = core::ReadProjectRecord(document);
  for (const std::string& marker_id :
       core::ListEntries(project.Text(core::ProjectField::kProfileStyles))) {
    const core::Record style =
        core::ReadRecordWithFields(core::ObjectFromIdText(document, marker_id),
                                   kProfileStyleRecordLength, "profile style");
    for (const std::string& block_id :
         core::ReferenceValues(style.Text(ProfileStyleItem::kProfileOIDs))) {
      const std::string label =
          core::ReadRecordWithFields(core::ObjectFromIdText(document, block_id),
                                     kProfileRecordLength, "profile")
              .Text(ProfileField::kCombinedLabel);
      rows.push_back({core::General::EntityLabelFromCombined(label),
                      core::General::EntityNetworkFromCombined(label),
                      block_id});
    }
  }
  if (rows.empty()) return std::nullopt;
  return TableOf(rows);
}

}  // namespace kestrana::profile
