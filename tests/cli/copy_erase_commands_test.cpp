// Copying and erasing from the command line: the copies become elements
// of their own, erasing repairs what stays, and refusals change nothing.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/command_fixture.h"
#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing.h"
#include "dxf/io.h"
#include "host/host.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"

namespace kestrana::cli {
namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

class Copies : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    site_ = Path("site.dxf");
    auto doc = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc, {"Sewer", core::kGravity});
    commands::AddNetwork(*doc, {"Water", core::kPressure});
    test::ConvertDrawn(*doc, {{0, 0, 50, 0}, {50, 0, 90, 0}}, "Sewer",
                       core::kGravity);
    test::ConvertDrawn(*doc, {{70, 40, 70, 90}}, "Water", core::kPressure);
    dxf::SaveDrawing(*doc, site_);
  }
  std::string site_;
};

TEST_F(Copies, CopiesTakeFreeLabelsAndLinkOnlyToEachOther) {
  // P-1 without its start node is refused: its copy would link to nothing.
  const std::string before = Bytes(site_);
  EXPECT_EQ(Run({"copy", site_, "--network", "Sewer", "--pipes", "P-1,P-2",
                 "--nodes", "N-2,N-3", "--by", "0,60"}),
            1);
  EXPECT_NE(err_.str().find("add N-1 to --nodes"), std::string::npos)
      << err_.str();
  EXPECT_TRUE(Bytes(site_) == before);
  // P-2 with its nodes, 60 up: across the main, which runs up x = 70 from
  // 40 to 90.
  ASSERT_EQ(Run({"copy", site_, "--network", "Sewer", "--pipes", "P-2",
                 "--nodes", "N-2,N-3", "--by", "0,60"}),
            0)
      << err_.str();
  EXPECT_EQ(out_.str().rfind("copied into New P-2 New N-2 New N-3\n", 0), 0u)
      << out_.str();
  auto doc = dxf::LoadDrawing(site_);
  EXPECT_TRUE(test::DanglingLinks(*doc).empty())
      << testing::PrintToString(test::DanglingLinks(*doc));
  host::Entity& copy = test::ElementLabelled(*doc, "Sewer", "Pipe", "New P-2");
  Record r = Record::ReadRequired(copy);
  EXPECT_EQ(r.Text(PipeField::kStartNodeLabel), ";RelatedToNew N-2");
  EXPECT_EQ(r.Text(PipeField::kEndNodeLabel), ";RelatedToNew N-3");
  EXPECT_EQ(host::As<host::LwPolyline>(copy).Coordinates(),
            (std::vector<double>{50, 60, 90, 60}));
  Record n = Record::ReadRequired(
      test::ElementLabelled(*doc, "Sewer", "Node", "New N-2"));
  EXPECT_EQ(n.Text(NodeField::kPipesAtStartLabels), ";RelatedToNew P-2");
  EXPECT_EQ(n.Text(NodeField::kPipesAtEndLabels), "");
  // The originals keep theirs.
  EXPECT_EQ(
      Record::ReadRequired(test::ElementLabelled(*doc, "Sewer", "Node", "N-2"))
          .Text(NodeField::kPipesAtEndLabels),
      ";RelatedToP-1");
  EXPECT_EQ(General::GetNetworkSet(*doc, "Sewer", 1).Count(), 3);
  EXPECT_EQ(test::AnnotationTexts(*doc, copy).front(), "New P-2");
  // The copy crosses the main: its crossing is drawn and listed.
  EXPECT_EQ(crossing::Crossing::GetExistingCrossingPointsSet(*doc, "").Count(),
            1);
  EXPECT_EQ(core::ReferenceValues(r.Text(PipeField::kCrossingOIDRefs)).size(),
            1u);
  // Two sewers and a main before, one copied sewer now.
  EXPECT_EQ(test::MaterialUses(*doc, "PVC"), "4");
}

TEST_F(Copies, UnknownLabelsChangeNothing) {
  const std::string before = Bytes(site_);
  EXPECT_EQ(Run({"copy", site_, "--network", "Sewer", "--pipes", "P-7", "--by",
                 "0,10"}),
            1);
  EXPECT_EQ(Run({"copy", site_, "--network", "Sewer", "--by", "0,10"}), 2);
  EXPECT_EQ(Bytes(site_), before);
}

class EraseCommand : public test::CommandTest {};

TEST_F(EraseCommand, NamedElementsGoAndBadNamesChangeNothing) {
  const std::string site = Path("site.dxf");
  ASSERT_EQ(Run({"new", site}), 0);
  {
    auto doc = dxf::LoadDrawing(site);
    doc->ModelSpace().AddLightWeightPolyline({0, 0, 50, 0});
    doc->ModelSpace().AddLightWeightPolyline({50, 0, 90, 0});
    dxf::SaveDrawing(*doc, site);
  }
  ASSERT_EQ(Run({"convert", site, "--network", "Sewer", "--type", "Gravity",
                 "--all"}),
            0)
      << err_.str();
  const std::string before = Bytes(site);
  EXPECT_EQ(Run({"erase", site, "--network", "Sewer", "--pipes", "P-9"}), 1);
  EXPECT_NE(err_.str().find("P-9"), std::string::npos) << err_.str();
  EXPECT_EQ(Run({"erase", site, "--pipes", "P-1"}), 2);
  EXPECT_EQ(Run({"erase", site, "--handles", "FFFFF"}), 1);
  EXPECT_EQ(Bytes(site), before);

  ASSERT_EQ(Run({"erase", site, "--network", "Sewer", "--nodes", "N-1"}), 0)
      << err_.str();
  // N-1 with P-1, their annotations and P-1's arrow.
  EXPECT_EQ(out_.str().rfind("erased 1 chosen and 4 dependent objects\n", 0),
            0u)
      << out_.str();
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(General::GetNetworkSet(*doc, "Sewer", 1).Count(), 1);
  EXPECT_EQ(General::GetNetworkSet(*doc, "Sewer", 2).Count(), 2);
  EXPECT_TRUE(test::DanglingLinks(*doc).empty());
}

}  // namespace
}  // namespace kestrana::cli
