// The commands on pipes from the command line: refusals leave the file as
// it was, and what they do reaches the file.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/command_fixture.h"
#include "commands/networks.h"
#include "core/general.h"
#include "core/names.h"
#include "dxf/io.h"
#include "editing/editing.h"
#include "host/host.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"

namespace kestrana::cli {
namespace {

using core::General;

class SplitCommand : public test::CommandTest {};

TEST_F(SplitCommand, APointOnThePipeSplitsItAndOthersAreRefused) {
  const std::string site = SewerSite({{0, 0, 50, 0}});
  const std::string before = Bytes(site);
  EXPECT_EQ(Run({"pipe", "split", site, "--network", "Sewer", "--label", "P-1",
                 "--at", "50,0"}),
            1);
  EXPECT_NE(err_.str().find(editing::kPointAtPipeEndMessage), std::string::npos)
      << err_.str();
  EXPECT_EQ(Bytes(site), before);
  ASSERT_EQ(Run({"pipe", "split", site, "--network", "Sewer", "--label", "P-1",
                 "--at", "20,0"}),
            0)
      << err_.str();
  EXPECT_EQ(out_.str().rfind("split P-1 of Sewer into P-1 and P-2 at the new "
                             "node N-3\n",
                             0),
            0u)
      << out_.str();
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(
      General::GetNetworkSet(*doc, "Sewer", core::network_set::kPipes).Count(),
      2);
  EXPECT_EQ(
      General::GetNetworkSet(*doc, "Sewer", core::network_set::kNodes).Count(),
      3);
  EXPECT_TRUE(test::DanglingLinks(*doc).empty());
}

class MergeCommand : public test::CommandTest {};

TEST_F(MergeCommand, RefusalsLeaveTheFileAndRunsMerge) {
  const std::string site =
      SewerSite({{0, 0, 50, 0}, {50, 0, 90, 0}, {90, 0, 90, 40}});
  const std::string before = Bytes(site);
  EXPECT_EQ(
      Run({"pipe", "merge", site, "--network", "Sewer", "--labels", "P-1,P-3"}),
      1);
  EXPECT_NE(err_.str().find("single continuous line"), std::string::npos)
      << err_.str();
  EXPECT_EQ(Bytes(site), before);
  ASSERT_EQ(Run({"pipe", "merge", site, "--network", "Sewer", "--labels",
                 "P-1,P-2,P-3"}),
            0)
      << err_.str();
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(
      General::GetNetworkSet(*doc, "Sewer", core::network_set::kPipes).Count(),
      1);
  EXPECT_EQ(
      General::GetNetworkSet(*doc, "Sewer", core::network_set::kNodes).Count(),
      2);
  EXPECT_TRUE(test::DanglingLinks(*doc).empty());
}

class ReverseCommand : public test::CommandTest {};

TEST_F(ReverseCommand, PipesByLabel) {
  const std::string site = SewerSite({{0, 0, 50, 0}, {50, 0, 90, 0}});
  const std::string before = Bytes(site);
  EXPECT_EQ(Run({"pipe", "reverse", site, "--network", "Sewer", "--labels",
                 "P-1,P-7"}),
            1);
  EXPECT_NE(err_.str().find("P-7"), std::string::npos) << err_.str();
  EXPECT_EQ(Bytes(site), before);
  ASSERT_EQ(Run({"pipe", "reverse", site, "--network", "Sewer", "--labels",
                 "P-1,P-2"}),
            0)
      << err_.str();
  EXPECT_EQ(out_.str().rfind("reversed 2 pipes of Sewer\n", 0), 0u);
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(host::As<host::LwPolyline>(
                test::ElementLabelled(*doc, "Sewer", "Pipe", "P-2"))
                .Coordinates(),
            (std::vector<double>{90, 0, 50, 0}));
}

}  // namespace
}  // namespace kestrana::cli
