// Project commands: `kestrana new`, `kestrana network add`, `kestrana network
// list`. Each is a function on a drawing file (options in, result out) built
// on a function on an open document, and every command that works on a
// project opens it through RequireProject first.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/project_setup.h"
#include "memhost/document.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::cli {

// Refuses (CommandError) a drawing without a project and a project made by a
// newer version, with the system's messages.
void RequireProject(host::Document& document);

// How every command opens a drawing whose project it works on: load, then
// RequireProject; object IDs stored by another session (the CAD add-on's,
// or a load with fresh IDs) are then renewed from their labels.
std::unique_ptr<memhost::MemDocument> OpenProjectDrawing(
    const std::string& path);
// The same for commands that change the drawing: `change` runs on the
// checked project, then the result replaces `input` or goes to `output`;
// nothing is written when anything fails.
void EditProjectDrawing(
    const std::string& input, const std::optional<std::string>& output,
    const std::function<void(memhost::MemDocument&)>& change);

// --- On an open document ---------------------------------------------------

// UsageError for units other than "Metric" and "US"; CommandError when the
// drawing already holds a project.
core::ProjectMarkers NewProject(host::Document& document,
                                const std::string& units);
// UsageError for another type or an empty name; CommandError for a name
// with a banned character or a name in use.
void AddNetwork(host::Document& document, const std::string& name,
                const std::string& type);

struct NetworkInfo {
  std::string name;
  std::string type;
  int pipes = 0;
  int nodes = 0;
  friend bool operator==(const NetworkInfo&, const NetworkInfo&) = default;
};
std::vector<NetworkInfo> ListNetworks(host::Document& document);
std::string NetworksJson(const std::vector<NetworkInfo>& networks);
std::string NetworksTable(const std::vector<NetworkInfo>& networks);

// --- On drawing files ------------------------------------------------------

struct NewOptions {
  std::string drawing;                // read when it exists
  std::optional<std::string> output;  // else the drawing is written
  std::string units = "Metric";
};
struct NewResult {
  std::string written;
  bool new_drawing = false;  // the drawing did not exist and was made
  core::ProjectMarkers markers;
};
NewResult New(const NewOptions& options);

struct RenewIdsOptions {
  std::string drawing;
  std::optional<std::string> output;
};
struct RenewIdsResult {
  std::string written;
  bool was_stale = false;  // the marker check found another session's IDs
  int records = 0;         // records written
};
// `kestrana renew-ids`: every stored object ID rebuilt from its label.
RenewIdsResult RenewIds(const RenewIdsOptions& options);

struct NetworkAddOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::string name;
  std::string type;
};
// The file written.
std::string NetworkAdd(const NetworkAddOptions& options);

struct NetworkDeleteOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::string name;
};
// `kestrana network delete`: the network and everything that belongs to it
// (CommandError for a network that is not there). The file written.
std::string NetworkDelete(const NetworkDeleteOptions& options);

struct NetworkListOptions {
  std::string drawing;
};
std::vector<NetworkInfo> NetworkList(const NetworkListOptions& options);

}  // namespace kestrana::cli
