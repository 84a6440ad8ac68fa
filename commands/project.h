// Projects: `kestrana new` and `kestrana renew-ids`, and how every command
// starts work on a drawing's project. The shape of a command: command.h.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/project_setup.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

// NotFoundError for a drawing without a project, RefusedError for a project
// made by a newer version, with the system's messages.
void RequireProject(host::Document& document);

// How every command starts work on a project: RequireProject, then the
// object IDs another session stored (the CAD add-on's, or a load with
// fresh IDs) are renewed from their labels. Answers whether they were.
bool OpenProject(host::Document& document);

struct NewProjectOptions {
  std::string units = "Metric";  // or "US"
};
struct NewProjectResult {
  core::ProjectMarkers markers;
};
// The project record, the libraries and the "Standard" styles. OptionError
// for other units; RefusedError when the drawing holds a project already.
NewProjectResult NewProject(host::Document& document,
                            const NewProjectOptions& options);

struct RenewIdsResult {
  bool was_stale = false;  // the marker check found another session's IDs
  int records = 0;         // records written
};
// Every stored object ID rebuilt from its label, stale or not.
RenewIdsResult RenewIds(host::Document& document);

// What `kestrana info` tells of a project.
struct ProjectSummary {
  std::string version;
  std::string units;
  // Name and type ("?" when the types list is short), in order.
  std::vector<std::pair<std::string, std::string>> networks;
};
// Nothing for a drawing without a project.
std::optional<ProjectSummary> DescribeProject(host::Document& document);

}  // namespace kestrana::commands
