// Pipes and nodes built by hand with their records, for tests and benches
// that need a network without converting drawn lines.
#pragma once

#include <string>
#include <vector>

#include "core/names.h"

namespace kestrana::host {
class BlockReference;
class Document;
class LwPolyline;
}  // namespace kestrana::host

namespace kestrana::test {

struct FixtureNetwork {
  std::string name;
  std::string type;  // "Gravity" or "Pressure"
};

// Defines the network in the project record, with its layers.
FixtureNetwork AddFixtureNetwork(host::Document& document,
                                 const std::string& name,
                                 const std::string& type);

struct NodeSpec {
  std::string label;
  double x = 0, y = 0;
  double sump = 0, ground = 0;
};

// A "Kestrana_Node" insert with its record and no pipes yet.
host::BlockReference& AddNode(host::Document& document,
                              const FixtureNetwork& network,
                              const NodeSpec& wanted);

struct PipeSpec {
  std::string label;
  std::vector<double> xy = {};  // flat X0, Y0, X1, Y1, ...
  double start_invert = 0, end_invert = 0;
  double span = 200, rise = 200;
  std::string shape = core::kSectionShapeCircular;
  int cells = 1;
  // When given, both records are linked, as conversion links them.
  host::BlockReference* start_node = nullptr;
  host::BlockReference* end_node = nullptr;
};

host::LwPolyline& AddPipe(host::Document& document,
                          const FixtureNetwork& network, const PipeSpec& wanted);

// A straight pipe from one node to another, linked at both ends, its
// inverts at the nodes' sump levels.
host::LwPolyline& ConnectNodes(host::Document& document,
                               const FixtureNetwork& network,
                               const std::string& label,
                               host::BlockReference& from,
                               host::BlockReference& to);

}  // namespace kestrana::test
