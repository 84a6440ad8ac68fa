#include "sizing/design.h"

#include <algorithm>
#include <functional>

#include "core/text.h"
#include "editing/editing.h"

namespace kestrana::sizing {

namespace {

constexpr double kMillimetres = 1000;

double RiseOf(const Section& section) {
  return core::NumericValue(section.size) / kMillimetres;
}

// The tallest of the pipes at a node, in metres.
double TallestAt(const editing::FlowGraph::Node& node,
                 const std::vector<double>& rise) {
  double tallest = 0;
  for (const std::vector<size_t>* pipes : {&node.in, &node.out})
    for (size_t p : *pipes) tallest = std::max(tallest, rise[p]);
  return tallest;
}

}  // namespace

// Sizes first, by the pipes draining through each pipe; then the sumps:
// with soffits matched at every manhole each pipe's invert follows from
// its manholes' sumps.
Design DesignSewer(const editing::FlowGraph& graph) {
  std::vector<int> draining(graph.pipes.size(), 0);
  std::function<int(size_t)> count = [&](size_t p) {
    if (draining[p] == 0) {
      draining[p] = 1;
      for (size_t q : graph.nodes[graph.pipes[p].from].in)
        draining[p] += count(q);
    }
    return draining[p];
  };
  Design design;
  std::vector<double> rise(graph.pipes.size());
  for (size_t p = 0; p < graph.pipes.size(); ++p) {
    const Section* section = kSewerSections;
    while (count(p) > section->up_to_pipes) ++section;
    design.pipes.push_back(
        {graph.pipes[p].label, section->size, section->material});
    rise[p] = RiseOf(*section);
  }
  std::vector<double> soffit(graph.nodes.size());
  for (size_t n : editing::UpstreamFirst(graph)) {
    soffit[n] = graph.nodes[n].ground - kSewerCover;
    for (size_t p : graph.nodes[n].in)
      soffit[n] =
          std::min(soffit[n], soffit[graph.pipes[p].from] -
                                  kSewerMinSlope * graph.pipes[p].length);
  }
  for (size_t n = 0; n < graph.nodes.size(); ++n)
    design.nodes.push_back({graph.nodes[n].label,
                            soffit[n] - TallestAt(graph.nodes[n], rise),
                            editing::kMatchSoffits});
  return design;
}

Design DesignWaterMains(const editing::FlowGraph& graph) {
  std::vector<size_t> by_length(graph.pipes.size());
  for (size_t p = 0; p < by_length.size(); ++p) by_length[p] = p;
  std::sort(by_length.begin(), by_length.end(), [&](size_t a, size_t b) {
    return graph.pipes[a].length > graph.pipes[b].length;
  });
  Design design;
  std::vector<double> rise(graph.pipes.size());
  for (size_t rank = 0; rank < by_length.size(); ++rank) {
    const size_t p = by_length[rank];
    const Section& section =
        rank < kTrunkMains ? kTrunkMain : kDistributionMain;
    design.pipes.push_back(
        {graph.pipes[p].label, section.size, section.material});
    rise[p] = RiseOf(section);
  }
  for (const editing::FlowGraph::Node& node : graph.nodes)
    design.nodes.push_back({node.label,
                            node.ground - kWaterCover - TallestAt(node, rise),
                            editing::kMatchCenterlines});
  return design;
}

}  // namespace kestrana::sizing
