// Design rules for the sizes and levels of a network drawn in plan: which
// section and material each pipe takes and where each node's sump lies.
// The rules work on the network's flow graph and answer a design; putting
// it into the drawing is the edit commands' work. Levels in metres, sizes
// in millimetres (metric projects).
#pragma once

#include <climits>
#include <string>
#include <vector>

#include "editing/flow_graph.h"

namespace kestrana::sizing {

struct PipeChoice {
  std::string label;
  std::string size;  // a diameter, "300"
  std::string material;
};

struct NodeChoice {
  std::string label;
  double sump = 0;
  std::string matching;  // the node's matching rule
};

// Pipes in the order they are to be set, then the nodes.
struct Design {
  std::vector<PipeChoice> pipes;
  std::vector<NodeChoice> nodes;
};

// A section and material for pipes through which up to `up_to_pipes`
// pipes drain (the pipe itself included).
struct Section {
  int up_to_pipes;
  const char* size;
  const char* material;
};

// Sewers: sized by the pipes draining through them; every sewer's top at
// least the cover below ground and falling at least the minimum slope to
// the outlet, soffits matched at every manhole.
inline constexpr double kSewerCover = 1.8;       // ground to a sewer's top
inline constexpr double kSewerMinSlope = 0.005;  // 1 in 200
inline constexpr Section kSewerSections[] = {
    {3, "200", "PVC"}, {7, "300", "Concrete"}, {INT_MAX, "400", "Concrete"}};

// Water mains: the longest are trunk mains, the others distribution mains;
// every main's top the cover below ground at its nodes, centre lines
// matched.
inline constexpr double kWaterCover = 1.0;  // ground to a main's top
inline constexpr int kTrunkMains = 2;
inline constexpr Section kTrunkMain = {0, "200", "Ductile Iron"};
inline constexpr Section kDistributionMain = {0, "150", "PE"};

// RefusedError for a sewer that runs in a circle.
Design DesignSewer(const editing::FlowGraph& graph);
Design DesignWaterMains(const editing::FlowGraph& graph);

}  // namespace kestrana::sizing
