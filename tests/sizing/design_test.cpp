// The sizing rules on flow graphs: sections by what drains through a pipe,
// sumps that keep the cover and the fall, trunk mains by length.
#include "sizing/design.h"

#include <gtest/gtest.h>

#include <map>

#include "core/names.h"
#include "editing/editing.h"
#include "host/errors.h"

namespace kestrana::sizing {
namespace {

using editing::FlowGraph;

constexpr double kTolerance = 1e-9;

// Nodes N-0... with their grounds; pipes P-0... as (from, to, length).
FlowGraph Graph(const std::vector<double>& grounds,
                const std::vector<std::tuple<size_t, size_t, double>>& pipes) {
  FlowGraph graph;
  for (size_t n = 0; n < grounds.size(); ++n)
    graph.nodes.push_back(
        {nullptr, "N-" + std::to_string(n), grounds[n], {}, {}});
  for (const auto& [from, to, length] : pipes) {
    graph.nodes[from].out.push_back(graph.pipes.size());
    graph.nodes[to].in.push_back(graph.pipes.size());
    graph.pipes.push_back(
        {nullptr, "P-" + std::to_string(graph.pipes.size()), from, to, length});
  }
  return graph;
}

TEST(SewerDesign, SectionsGrowWithThePipesDrainingThrough) {
  // A trunk N-0 ... N-6 with a branch of two pipes joining at N-3: P-0 to
  // P-5 along the trunk, P-6 and P-7 the branch.
  FlowGraph graph = Graph(std::vector<double>(9, 100), {{0, 1, 50},
                                                        {1, 2, 50},
                                                        {2, 3, 50},
                                                        {3, 4, 50},
                                                        {4, 5, 50},
                                                        {5, 6, 50},
                                                        {7, 8, 50},
                                                        {8, 3, 50}});
  std::map<std::string, std::string> sizes;
  for (const PipeChoice& p : DesignSewer(graph).pipes)
    sizes[p.label] = p.size + " " + p.material;
  // Drained through: P-0 1, P-2 3, P-3 6 (with the branch), P-4 7, P-5 8.
  EXPECT_EQ(sizes["P-0"], "200 PVC");
  EXPECT_EQ(sizes["P-2"], "200 PVC");
  EXPECT_EQ(sizes["P-3"], "300 Concrete");
  EXPECT_EQ(sizes["P-4"], "300 Concrete");
  EXPECT_EQ(sizes["P-5"], "400 Concrete");
  EXPECT_EQ(sizes["P-7"], "200 PVC");
}

TEST(SewerDesign, SoffitsKeepTheCoverAndFallToTheOutlet) {
  // The ground rises where the sewer runs on and dips near the outlet.
  const std::vector<double> grounds = {100, 101, 100, 95};
  FlowGraph graph = Graph(grounds, {{0, 1, 100}, {1, 2, 40}, {2, 3, 100}});
  const Design design = DesignSewer(graph);
  ASSERT_EQ(design.nodes.size(), 4u);
  std::vector<double> soffit;
  for (const NodeChoice& n : design.nodes) {
    EXPECT_EQ(n.matching, editing::kMatchSoffits);
    soffit.push_back(n.sump + 0.2);  // every pipe here is 200 mm
  }
  EXPECT_NEAR(soffit[0], 100 - kSewerCover, kTolerance);
  // Not the higher ground's cover but the fall from upstream.
  EXPECT_NEAR(soffit[1], soffit[0] - kSewerMinSlope * 100, kTolerance);
  EXPECT_NEAR(soffit[2], soffit[1] - kSewerMinSlope * 40, kTolerance);
  // The dip's cover wins over the fall.
  EXPECT_NEAR(soffit[3], 95 - kSewerCover, kTolerance);
  for (size_t n = 0; n < grounds.size(); ++n)
    EXPECT_LE(soffit[n], grounds[n] - kSewerCover + 1e-12);
}

TEST(SewerDesign, ACircleHasNoOutlet) {
  FlowGraph graph = Graph({100, 100}, {{0, 1, 10}, {1, 0, 10}});
  EXPECT_THROW(DesignSewer(graph), RefusedError);
}

TEST(WaterDesign, TheLongestMainsAreTrunkMains) {
  FlowGraph graph =
      Graph({50, 52, 51, 49}, {{0, 1, 50}, {1, 2, 200}, {2, 3, 120}});
  const Design design = DesignWaterMains(graph);
  ASSERT_EQ(design.pipes.size(), 3u);
  // Set longest first.
  EXPECT_EQ(design.pipes[0].label, "P-1");
  EXPECT_EQ(design.pipes[0].size + " " + design.pipes[0].material,
            "200 Ductile Iron");
  EXPECT_EQ(design.pipes[1].label, "P-2");
  EXPECT_EQ(design.pipes[2].label, "P-0");
  EXPECT_EQ(design.pipes[2].size + " " + design.pipes[2].material, "150 PE");
  // A node on a trunk main lies deeper by the larger main.
  ASSERT_EQ(design.nodes.size(), 4u);
  EXPECT_NEAR(design.nodes[0].sump, 50 - kWaterCover - 0.15, kTolerance);
  EXPECT_NEAR(design.nodes[1].sump, 52 - kWaterCover - 0.2, kTolerance);
  EXPECT_EQ(design.nodes[3].matching, editing::kMatchCenterlines);
}

}  // namespace
}  // namespace kestrana::sizing
