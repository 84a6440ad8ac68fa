// kestrana ground on a long network mostly off the surface: the warning
// names ten nodes and counts the rest, and the levels taken are said.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "cli/command_fixture.h"

namespace kestrana::cli {
namespace {

class GroundCommand : public test::CommandTest {
 protected:
  // A sewer of 13 nodes along y = 0 at x = 0, 10, ..., 120, and a plane
  // at 100 + x / 100 under the first two only.
  void SetUp() override {
    CommandTest::SetUp();
    std::vector<std::vector<double>> lines;
    for (int i = 0; i < 12; ++i)
      lines.push_back({i * 10.0, 0, i * 10.0 + 10, 0});
    site_ = SewerSite(lines);
    surface_ = Path("ground.xml");
    std::ofstream(surface_)
        << "<?xml version=\"1.0\"?>\n<LandXML><Surfaces><Surface name=\"Site\">"
           "<Definition surfType=\"TIN\"><Pnts><P id=\"1\">-10 -5 99.95</P>"
           "<P id=\"2\">-10 15 100.15</P><P id=\"3\">10 15 100.15</P>"
           "<P id=\"4\">10 -5 99.95</P></Pnts><Faces><F>1 2 3</F><F>1 3 4</F>"
           "</Faces></Definition></Surface></Surfaces></LandXML>\n";
  }
  std::string site_, surface_;
};

TEST_F(GroundCommand, NamesTenNodesOutsideCountsTheRestAndSaysTheLevels) {
  ASSERT_EQ(Run({"ground", site_, "--surface", surface_, "--networks", "Sewer",
                 "-o", Path("out.dxf")}),
            0)
      << err_.str();
  const std::string out = out_.str(), err = err_.str();
  EXPECT_NE(out.find("ground levels of 2 nodes from the surface \"Site\": "
                     "100.00 (Sewer "),
            std::string::npos)
      << out;
  EXPECT_NE(out.find(") to 100.10 (Sewer "), std::string::npos) << out;
  const size_t list = err.find(
      "11 nodes lie outside the surface and keep "
      "their ground levels: ");
  ASSERT_NE(list, std::string::npos) << err;
  const std::string names = err.substr(list);
  EXPECT_EQ(std::count(names.begin(), names.end(), ','), 9) << names;
  EXPECT_NE(names.find(" and 1 more\n"), std::string::npos) << names;

  // JSON keeps every node: the levels taken and all that lie outside.
  ASSERT_EQ(Run({"ground", site_, "--surface", surface_, "--networks", "Sewer",
                 "-o", Path("out.dxf"), "--json"}),
            0)
      << err_.str();
  const std::string json = out_.str();
  EXPECT_EQ(
      json.rfind("{\"surface\": \"Site\", \"updated\": 2, \"levels\": [", 0),
      0u)
      << json;
  EXPECT_NE(json.find("\"ground\": 100.1}"), std::string::npos) << json;
  size_t outside = json.find("\"outside\": [");
  ASSERT_NE(outside, std::string::npos);
  const std::string rest =
      json.substr(outside, json.find(']', outside) - outside);
  EXPECT_EQ(std::count(rest.begin(), rest.end(), ','), 10) << rest;
}

}  // namespace
}  // namespace kestrana::cli
