// Project commands as library functions: starting a project, adding and
// listing networks, and the check every command on a project makes first.
#pragma once

#include <string>
#include <vector>

#include "core/project_setup.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::cli {

// Refuses (CommandError) a drawing without a project and a project made by a
// newer version, with the system's messages.
void RequireProject(host::Document& document);

struct NewProjectOptions {
  std::string units = "Metric";  // "Metric" or "US"
};
core::ProjectMarkers NewProject(host::Document& document,
                                const NewProjectOptions& options);

struct AddNetworkOptions {
  std::string name;
  std::string type;  // "Gravity" or "Pressure"
};
void AddNetwork(host::Document& document, const AddNetworkOptions& options);

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

}  // namespace kestrana::cli
