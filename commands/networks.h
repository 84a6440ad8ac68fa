// Networks: `kestrana network add|list|delete|show|hide`. The shape of a
// command: command.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/section_size.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct AddNetworkOptions {
  std::string name;
  std::string type;  // "Gravity" or "Pressure"
};
// The network with its layers, shown in the active view style and crossed
// with every network before it. OptionError for another type or an empty
// name; InvalidInputError for a name with a banned character; RefusedError
// for a name in use.
void AddNetwork(host::Document& document, const AddNetworkOptions& options);

struct DeleteNetworkOptions {
  std::string name;
};
// The network and everything that belongs to it; NotFoundError for a
// network that is not there.
// Returns the name as the project spelt it.
std::string DeleteNetwork(host::Document& document,
                          const DeleteNetworkOptions& options);

struct NetworkInfo {
  std::string name;
  std::string type;
  int pipes = 0;
  int nodes = 0;
  friend bool operator==(const NetworkInfo&, const NetworkInfo&) = default;
};
// In the order they were made.
std::vector<NetworkInfo> ListNetworks(host::Document& document);

struct ListElementsOptions {
  std::string network;
};
struct PlanPoint {
  double x = 0, y = 0;
  friend bool operator==(const PlanPoint&, const PlanPoint&) = default;
};
struct PipeListing {
  std::string label;
  std::string handle;
  std::string from, to;       // node labels
  std::string size;           // as annotations write it: "%%c300", "1200X800"
  core::SectionSize section;  // the size as numbers
  std::string material;
  double length = 0;
  double start_invert = 0, end_invert = 0;
  // Fall from start to end over the length (negative when the pipe
  // rises); none for a pipe of no length.
  std::optional<double> slope;
  std::vector<PlanPoint> vertices;
};
struct NodeListing {
  std::string label;
  std::string handle;
  PlanPoint position;
  double ground = 0, sump = 0;
  double depth = 0;      // ground less sump
  std::string matching;  // "" for a rule code of no rule
  std::string low_high;  // "low" or "high" when marked so, else ""
};
struct NetworkElements {
  std::vector<PipeListing> pipes;
  std::vector<NodeListing> nodes;
};
// The pipes and nodes of a network with their data, in the network's
// order; NotFoundError for a network that is not there.
NetworkElements ListElements(host::Document& document,
                             const ListElementsOptions& options);

struct NetworkShownOptions {
  std::string name;
  bool shown = true;
};
// Shows or hides a network's elements, annotations and arrows, and keeps
// it in the project's visibility text.
void SetNetworkShown(host::Document& document,
                     const NetworkShownOptions& options);

}  // namespace kestrana::commands
