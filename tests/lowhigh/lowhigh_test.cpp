#include "lowhigh/lowhigh.h"

#include <gtest/gtest.h>

#include <map>

#include "core/general.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/pipe_fixture.h"
#include "support/project.h"

namespace kestrana::lowhigh {
namespace {

using core::General;
using core::NodeField;

class LowHighPoints : public ::testing::Test {
 protected:
  // A line of nodes N-1, N-2, ... 10 apart with the given sump levels, each
  // joined to the next by a pipe.
  std::vector<host::BlockReference*> Line(const test::FixtureNetwork& network,
                                          const std::vector<double>& levels,
                                          double y = 0) {
    std::vector<host::BlockReference*> nodes;
    for (size_t i = 0; i < levels.size(); ++i) {
      nodes.push_back(
          &test::AddNode(*doc_, network,
                         {.label = network.name + "-N" + std::to_string(i + 1),
                          .x = 10.0 * i,
                          .y = y,
                          .sump = levels[i]}));
      if (i > 0)
        test::ConnectNodes(*doc_, network,
                           network.name + "-P" + std::to_string(i),
                           *nodes[i - 1], *nodes[i]);
    }
    return nodes;
  }
  host::SelectionSet& Set(const std::vector<host::BlockReference*>& nodes) {
    host::SelectionSet& set =
        General::InitializeSelectionSet(*doc_, "SetNodesForLowHigh");
    for (host::BlockReference* node : nodes) set.AddItems({node});
    return set;
  }
  void Analyse(const std::vector<host::BlockReference*>& nodes,
               const std::string& network) {
    LowHigh::BuildLowHighPointsAfterImporting(
        *doc_, LowHigh::GetInitialNodesOIDArrayForLowHigh(*doc_, Set(nodes)),
        network);
  }
  // "low", "high" or "" for each node, from its record and its marker.
  std::string Kind(host::BlockReference& node) {
    core::Record record = core::Record::ReadRequired(node);
    std::string id = record.Text(NodeField::kLowHighOIDRef);
    if (id.empty()) return "";
    auto& marker = host::As<host::BlockReference>(doc_->ObjectIdToObject(
        std::stoi(id.substr(std::string(";RelatedTo").size()))));
    EXPECT_EQ(marker.InsertionPoint(), node.InsertionPoint());
    return marker.Name() == core::kLowPointBlock    ? "low"
           : marker.Name() == core::kHighPointBlock ? "high"
                                                    : "?";
  }
  std::vector<std::string> KindsOf(
      const std::vector<host::BlockReference*>& n) {
    std::vector<std::string> kinds;
    for (host::BlockReference* node : n) kinds.push_back(Kind(*node));
    return kinds;
  }
  void SetSump(host::BlockReference& node, double level) {
    core::Record record = core::Record::ReadRequired(node);
    record.SetReal(NodeField::kSumpLevel, level);
    record.Write(node);
  }
  int Markers(const std::string& network = "") {
    return LowHigh::GetExistingLowHighPointsSet(*doc_, network).Count();
  }

  std::unique_ptr<memhost::MemDocument> doc_ = test::NewProjectDocument();
  test::FixtureNetwork main_ =
      test::AddFixtureNetwork(*doc_, "Main", "Pressure");
  test::FixtureNetwork sewer_ =
      test::AddFixtureNetwork(*doc_, "Sewer", "Gravity");
};

using Kinds = std::vector<std::string>;

TEST_F(LowHighPoints, LocalMinimaAndMaximaAreMarked) {
  auto valley = Line(main_, {10, 8, 9});
  Analyse(valley, "Main");
  EXPECT_EQ(KindsOf(valley), (Kinds{"high", "low", "high"}));

  doc_ = test::NewProjectDocument();
  main_ = test::AddFixtureNetwork(*doc_, "Main", "Pressure");
  auto ridge = Line(main_, {10, 12, 9});
  Analyse(ridge, "Main");
  EXPECT_EQ(KindsOf(ridge), (Kinds{"low", "high", "low"}));
  EXPECT_EQ(Markers("Main"), 3);

  // Levels equal to seven places are equal; all-equal nodes are all low.
  doc_ = test::NewProjectDocument();
  main_ = test::AddFixtureNetwork(*doc_, "Main", "Pressure");
  auto flat = Line(main_, {5, 5.00000001, 5});
  Analyse(flat, "Main");
  EXPECT_EQ(KindsOf(flat), (Kinds{"low", "low", "low"}));
}

TEST_F(LowHighPoints, MarkersAreLinkedToTheirNodes) {
  auto nodes = Line(main_, {10, 8, 9});
  Analyse(nodes, "Main");
  core::Record node = core::Record::ReadRequired(*nodes[1]);
  EXPECT_EQ(node.Text(NodeField::kLowHighLabelRef), ";RelatedToMain-N2LowHigh");
  const std::string marker_id = node.Text(NodeField::kLowHighOIDRef)
                                    .substr(std::string(";RelatedTo").size());
  host::Entity& marker =
      host::As<host::Entity>(doc_->ObjectIdToObject(std::stoi(marker_id)));
  EXPECT_EQ(marker.Layer(), "Main - Low&High Points");
  EXPECT_EQ(core::Record::ReadRequired(marker).Items(),
            (host::XRecord{
                {1001, "Kestrana"},
                {1000, "LowHigh;Main;Main-N2LowHigh"},
                {1000, "LowHighPoint"},
                {1000, ";RelatedToMain-N2"},
                {1000, ";RelatedTo" + std::to_string(nodes[1]->ObjectID())}}));
  EXPECT_TRUE(marker.Visible()) << "a new pressure network is shown";
}

TEST_F(LowHighPoints, GravityNetworksHaveNone) {
  auto nodes = Line(sewer_, {10, 8, 9});
  Analyse(nodes, "Sewer");
  EXPECT_EQ(KindsOf(nodes), (Kinds{"", "", ""}));
  EXPECT_EQ(Markers(), 0);
  EXPECT_EQ(doc_->GetBlocks().Find(core::kLowPointBlock), nullptr);
}

TEST_F(LowHighPoints, TheSearchSpreadsUntilItMeetsLowOrHighPoints) {
  auto nodes = Line(main_, {5, 4, 3, 5, 6});
  Analyse(nodes, "Main");
  EXPECT_EQ(KindsOf(nodes), (Kinds{"high", "", "low", "", "high"}));
  const std::string old_marker =
      core::Record::ReadRequired(*nodes[4]).Text(NodeField::kLowHighOIDRef);

  // Raised, N3 is no longer low: its marker goes, N2 becomes low, and the
  // search passes N4 to reach N5, which is drawn again.
  SetSump(*nodes[2], 4.5);
  LowHigh::BuildLowHighPointsAfterImporting(
      *doc_, {std::to_string(nodes[2]->ObjectID())}, "Main");
  EXPECT_EQ(KindsOf(nodes), (Kinds{"high", "low", "", "", "high"}));
  EXPECT_NE(
      core::Record::ReadRequired(*nodes[4]).Text(NodeField::kLowHighOIDRef),
      old_marker);
  EXPECT_EQ(Markers(), 3) << "replaced markers are erased";
}

TEST_F(LowHighPoints, TheStartListHoldsTheNodesAndTheirNeighboursOnce) {
  auto nodes = Line(main_, {1, 2, 3, 4});
  auto id = [&](int i) { return std::to_string(nodes[i]->ObjectID()); };
  EXPECT_EQ(LowHigh::GetInitialNodesOIDArrayForLowHigh(
                *doc_, Set({nodes[1], nodes[2]})),
            (std::vector<std::string>{id(1), id(2), id(0), id(3)}));
  EXPECT_EQ(LowHigh::GetInitialNodesOIDArrayForLowHigh(*doc_, Set({})),
            std::vector<std::string>{""});
  // An empty start list changes nothing.
  LowHigh::BuildLowHighPointsAfterImporting(*doc_, {""}, "Main");
  EXPECT_EQ(Markers(), 0);
}

TEST_F(LowHighPoints, ALonelyNodeHasNoMarkerAndABrokenLinkIsAnError) {
  host::BlockReference& lonely =
      test::AddNode(*doc_, main_, {.label = "L", .sump = 3});
  Analyse({&lonely}, "Main");
  EXPECT_EQ(Kind(lonely), "");

  auto nodes = Line(main_, {3, 2, 3}, 50);
  core::Record node = core::Record::ReadRequired(*nodes[0]);
  node.SetText(NodeField::kPipesAtStartOID, ";RelatedTo999999");
  node.Write(*nodes[0]);
  EXPECT_THROW(Analyse({nodes[0]}, "Main"), host::HostError);
}

TEST_F(LowHighPoints, SettingsShowOrHideNetworks) {
  test::AddFixtureNetwork(*doc_, "Zone 2", "Pressure");
  core::TextTable settings = LowHigh::GetLowHighSettings(*doc_);
  ASSERT_EQ(settings.Rows(), 2) << "pressure networks only";
  EXPECT_EQ(settings(0, 0) + settings(0, 1) + settings(1, 0) + settings(1, 1),
            "Main1Zone 21");

  auto main = Line(main_, {10, 8, 9});
  Analyse(main, "Main");
  settings(0, 1) = "0";
  LowHigh::SetLowHighSettings(*doc_, settings);
  EXPECT_EQ(
      core::ReadProjectRecord(*doc_).Text(core::ProjectField::kLowHighNetworks),
      "Zone 2;");
  LowHigh::ApplyLowHighSettings(
      *doc_, LowHigh::GetExistingLowHighPointsSet(*doc_, ""));
  EXPECT_EQ(Markers("Main"), 3) << "hidden markers are kept";
  for (host::Entity* marker :
       LowHigh::GetExistingLowHighPointsSet(*doc_, "Main").Entities())
    EXPECT_FALSE(marker->Visible());

  // Names are compared exactly; a stored name that is no longer a network
  // matches nothing.
  core::Record project = core::ReadProjectRecord(*doc_);
  project.SetText(core::ProjectField::kLowHighNetworks, "main;Gone;Zone 2;");
  core::WriteProjectRecord(*doc_, project);
  settings = LowHigh::GetLowHighSettings(*doc_);
  EXPECT_EQ(settings(0, 1) + settings(1, 1), "01");
}

TEST_F(LowHighPoints, DeletingANetworksPointsLeavesTheOthers) {
  test::FixtureNetwork zone =
      test::AddFixtureNetwork(*doc_, "Zone", "Pressure");
  Analyse(Line(main_, {1, 2, 1}), "Main");
  Analyse(Line(zone, {1, 2}, 30), "Zone");
  EXPECT_EQ(Markers("Main"), 3);
  EXPECT_EQ(Markers("Zone"), 2);
  LowHigh::DeleteNetworkLowHighPoints(*doc_, "Main");
  EXPECT_EQ(Markers("Main"), 0);
  EXPECT_EQ(Markers(), 2);
}

}  // namespace
}  // namespace kestrana::lowhigh
