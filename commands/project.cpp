#include "commands/project.h"

#include "commands/command.h"
#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/project_record.h"
#include "library/library.h"
#include "oids/update_oids.h"
#include "viewstyle/view_style.h"

namespace kestrana::commands {

using core::General;

void RequireProject(host::Document& document) {
  std::optional<core::Record> record = core::FindProjectRecord(document);
  if (!record) throw NotFoundError(core::kNoProjectMessage);
  std::string version = record->Text(core::ProjectField::kProjectVersion);
  if (!General::VerfiyVersionKestranaCompatibility(document))
    throw RefusedError(core::NewerProjectMessage(version));
}

bool OpenProject(host::Document& document) {
  RequireProject(document);
  // A drawing saved in a CAD session stores that session's IDs; they are
  // renewed before anything follows a link.
  if (!oids::UpdateOIDs::StoredIdsAreStale(document)) return false;
  oids::UpdateOIDs::UpdateObjectIDs(document);
  return true;
}

NewProjectResult NewProject(host::Document& document,
                            const NewProjectOptions& options) {
  const std::string& units = options.units;
  if (units != core::kMetric && units != core::kUS)
    throw OptionError("--units must be Metric or US, not '" + units + "'");
  if (core::FindProjectRecord(document))
    throw RefusedError(core::kProjectExistsMessage);
  // Markers go on layer "0", which may be locked.
  core::UnlockedLayers unlocked(document);
  NewProjectResult result{core::CreateProjectRecord(document, units)};
  library::LibraryMarkers libraries =
      library::Library::CreateLibraries(document);
  result.markers.materials = libraries.materials;
  result.markers.sizes = libraries.sizes;
  result.markers.view_style = viewstyle::ViewStyle::CreateViewStyle(
      document, viewstyle::StandardViewStyle(units == core::kMetric));
  return result;
}

RenewIdsResult RenewIds(host::Document& document) {
  RequireProject(document);
  RenewIdsResult result;
  result.was_stale = oids::UpdateOIDs::StoredIdsAreStale(document);
  result.records = oids::UpdateOIDs::UpdateObjectIDs(document);
  return result;
}

std::optional<ProjectSummary> DescribeProject(host::Document& document) {
  std::optional<core::Record> record = core::FindProjectRecord(document);
  if (!record) return std::nullopt;
  auto text = [&](core::ProjectField field) {
    return record->Has(field) ? record->Text(field) : "";
  };
  ProjectSummary summary{text(core::ProjectField::kProjectVersion),
                         text(core::ProjectField::kModelUnits),
                         {}};
  std::vector<std::string> names =
      core::ListEntries(text(core::ProjectField::kNetworkNames));
  std::vector<std::string> types =
      core::ListEntries(text(core::ProjectField::kNetworkTypes));
  for (size_t i = 0; i < names.size(); ++i)
    summary.networks.emplace_back(names[i], i < types.size() ? types[i] : "?");
  return summary;
}

}  // namespace kestrana::commands
