// The pipes and nodes of a network as `kestrana list` and the demo's
// report show them.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "commands/command.h"
#include "commands/lowhigh.h"
#include "commands/networks.h"
#include "core/names.h"
#include "host/host.h"
#include "support/network_elements.h"

namespace kestrana::commands {
namespace {

class ListElementsTest : public ::testing::Test {
 protected:
  // A pressure main A -> B -> C: a box culvert with a bend falling into B,
  // then a round pipe rising out of it.
  void SetUp() override {
    AddNetwork(*doc_, {"Water", core::kPressure});
    test::NetworkElements water(*doc_, "Water");
    auto& a = water.AddNode("A", 0, 0, 10, 8.5);
    auto& b = water.AddNode("B", 30, 40, 9, 7);
    auto& c = water.AddNode("C", 60, 40, 11, 9.2);
    box_handle_ = water
                      .AddPipe("W-1", {0, 0, 30, 0, 30, 40}, a, b,
                               {.shape = core::kSectionShapeBox,
                                .span = 1200,
                                .rise = 800,
                                .cells = 2,
                                .start_invert = 8.5,
                                .end_invert = 7,
                                .material = "Steel"})
                      .Handle();
    water.AddPipe(
        "W-2", {30, 40, 60, 40}, b, c,
        {.span = 150, .rise = 150, .start_invert = 7, .end_invert = 7.6});
    b_handle_ = b.Handle();
  }
  std::unique_ptr<memhost::MemDocument> doc_ = test::NewFullProjectDocument();
  std::string box_handle_, b_handle_;
};

TEST_F(ListElementsTest, PipesCarryTheirSizeAsNumbersSlopeAndVertices) {
  const NetworkElements listed = ListElements(*doc_, {"Water"});
  ASSERT_EQ(listed.pipes.size(), 2u);
  const PipeListing& box = listed.pipes[0];
  EXPECT_EQ(box.label, "W-1");
  EXPECT_EQ(box.handle, box_handle_);
  EXPECT_EQ(box.from, "A");
  EXPECT_EQ(box.to, "B");
  EXPECT_EQ(box.size, "2 (1200X800)");
  EXPECT_EQ(box.section, (core::SectionSize{true, 1200, 800, 2}));
  EXPECT_EQ(box.material, "Steel");
  EXPECT_DOUBLE_EQ(box.length, 70);  // along the bend, not end to end (50)
  ASSERT_TRUE(box.slope.has_value());
  EXPECT_DOUBLE_EQ(*box.slope, 1.5 / 70);
  EXPECT_EQ(box.vertices, (std::vector<PlanPoint>{{0, 0}, {30, 0}, {30, 40}}));

  const PipeListing& round = listed.pipes[1];
  EXPECT_EQ(round.section, (core::SectionSize{false, 150, 150, 1}));
  // Rising from start to end: a negative fall.
  EXPECT_NEAR(*round.slope, -0.6 / 30, 1e-12);
  EXPECT_EQ(round.vertices.size(), 2u);
}

TEST_F(ListElementsTest, NodesCarryPositionDepthRuleAndTheirMarker) {
  LowHighPoints(*doc_, {.build = true});
  const NetworkElements listed = ListElements(*doc_, {"Water"});
  ASSERT_EQ(listed.nodes.size(), 3u);
  const NodeListing& b = listed.nodes[1];
  EXPECT_EQ(b.label, "B");
  EXPECT_EQ(b.handle, b_handle_);
  EXPECT_EQ(b.position, (PlanPoint{30, 40}));
  EXPECT_EQ(b.ground, 9);
  EXPECT_EQ(b.sump, 7);
  EXPECT_EQ(b.depth, 2);
  EXPECT_EQ(b.matching, "Match Centerlines");
  EXPECT_EQ(b.low_high, "low");
  // Every marker of the drawing shows at its node, and only there.
  std::map<std::string, std::string> marked;
  for (const LowHighListing& p : ListLowHighPoints(*doc_))
    marked[p.node] = p.kind;
  for (const NodeListing& n : listed.nodes)
    EXPECT_EQ(n.low_high, marked.count(n.label) ? marked[n.label] : "")
        << n.label;
}

TEST_F(ListElementsTest, AnotherNetworksMarkersAndUnknownNetworks) {
  // A second main whose node is also called "B" and marked: it is not
  // this network's B.
  AddNetwork(*doc_, {"Main", core::kPressure});
  test::NetworkElements main(*doc_, "Main");
  main.AddPipe("M-1", {100, 0, 130, 0}, main.AddNode("A", 100, 0, 10, 9),
               main.AddNode("B", 130, 0, 10, 9.5));
  LowHighPoints(*doc_, {.build = true});
  std::string main_b;
  for (const LowHighListing& p : ListLowHighPoints(*doc_))
    if (p.network == "Main" && p.node == "B") main_b = p.kind;
  ASSERT_NE(main_b, "low");
  for (const NodeListing& n : ListElements(*doc_, {"Main"}).nodes)
    if (n.label == "B") EXPECT_EQ(n.low_high, main_b);
  EXPECT_THROW(ListElements(*doc_, {"Storm"}), NotFoundError);
}

}  // namespace
}  // namespace kestrana::commands
