// Drawn sewer lines turned towards their outlet, and a converted network
// read as a graph in the order water flows.
#include <gtest/gtest.h>

#include <algorithm>

#include "commands/networks.h"
#include "core/names.h"
#include "editing/flow_direction.h"
#include "editing/flow_graph.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"
#include "support/network_elements.h"

namespace kestrana::editing {
namespace {

// Ground falling 1 in 10 to the east: z = 100 - x / 10.
memhost::MemSurface EastwardFall() {
  return memhost::MemSurface(
      "EG",
      {{-10, -100, 101}, {310, -100, 69}, {310, 100, 69}, {-10, 100, 101}},
      {{0, 1, 2}, {0, 2, 3}});
}

TEST(FlowDirection, EveryLineConnectedToTheOutletRunsTowardsIt) {
  memhost::MemDocument doc;
  doc.SetActiveLayer(doc.GetLayers().Add("Sewer lines"));
  // A trunk to the outlet at (200, 0), the lowest end, with a branch from
  // the north; some drawn against the flow.
  host::Line& along = doc.ModelSpace().AddLine({0, 0, 0}, {100, 0, 0});
  host::LwPolyline& against =
      doc.ModelSpace().AddLightWeightPolyline({200, 0, 150, 0, 100, 0});
  host::Line& branch = doc.ModelSpace().AddLine({100, 0, 0}, {100, 50, 0});
  // Apart from the others, and on another layer: left as drawn.
  host::Line& apart = doc.ModelSpace().AddLine({10, 80, 0}, {0, 80, 0});
  doc.SetActiveLayer(doc.GetLayers().Add("Water lines"));
  host::Line& water = doc.ModelSpace().AddLine({200, 10, 0}, {0, 10, 0});

  OrientTowardsOutlet(doc, EastwardFall(), "Sewer lines");
  EXPECT_EQ(along.StartPoint(), (host::Point3{0, 0, 0}));
  EXPECT_EQ(against.Coordinates(),
            (std::vector<double>{100, 0, 150, 0, 200, 0}));
  EXPECT_EQ(branch.StartPoint(), (host::Point3{100, 50, 0}));
  EXPECT_EQ(branch.EndPoint(), (host::Point3{100, 0, 0}));
  EXPECT_EQ(apart.StartPoint(), (host::Point3{10, 80, 0}));
  EXPECT_EQ(water.StartPoint(), (host::Point3{200, 10, 0}));
}

TEST(FlowGraph, NodesComeAfterEverythingUpstream) {
  auto doc = test::NewFullProjectDocument("Metric");
  commands::AddNetwork(*doc, {"Sewer", core::kGravity});
  // P-1 and P-2 meet at (50, 0) and run on as P-3.
  test::ConvertDrawn(*doc, {{0, 0, 50, 0}, {50, 40, 50, 0}, {50, 0, 90, 0}},
                     "Sewer", core::kGravity);
  const FlowGraph graph = ReadFlowGraph(*doc, "Sewer");
  ASSERT_EQ(graph.nodes.size(), 4u);
  ASSERT_EQ(graph.pipes.size(), 3u);
  auto pipe = [&](const std::string& label) {
    return *std::find_if(
        graph.pipes.begin(), graph.pipes.end(),
        [&](const FlowGraph::Pipe& p) { return p.label == label; });
  };
  const FlowGraph::Pipe p1 = pipe("P-1"), p2 = pipe("P-2"), p3 = pipe("P-3");
  EXPECT_EQ(p1.to, p2.to);
  EXPECT_EQ(p3.from, p1.to);
  EXPECT_EQ(graph.nodes[p1.to].in.size(), 2u);
  EXPECT_DOUBLE_EQ(p3.length, 40);

  const std::vector<size_t> order = UpstreamFirst(graph);
  ASSERT_EQ(order.size(), 4u);
  auto at = [&](size_t node) {
    return std::find(order.begin(), order.end(), node) - order.begin();
  };
  for (const FlowGraph::Pipe& p : graph.pipes) EXPECT_LT(at(p.from), at(p.to));
}

}  // namespace
}  // namespace kestrana::editing
