// kestrana crossings and kestrana lowhigh on drawing files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/command.h"
#include "cli/command_fixture.h"
#include "core/general.h"
#include "core/project_record.h"
#include "core/project_setup.h"
#include "crossing/crossing.h"
#include "dxf/io.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"
#include "support/pipe_fixture.h"

namespace kestrana::cli {
namespace {

namespace fs = std::filesystem;

class CrossingCommands : public test::CommandTest {
 protected:
  // Two sewers crossed by one main whose nodes lie 12, 10, 11: a low point
  // between two high points. The clearances are 88.55 and 89.05.
  std::string Site(bool zero_length_pipe = false) {
    memhost::MemDocument doc;
    core::CreateProjectRecord(doc, "Metric");
    auto sewer = test::AddFixtureNetwork(doc, "Sewer", "Gravity");
    auto water = test::AddFixtureNetwork(doc, "Water", "Pressure");
    test::AddPipe(doc, sewer,
                  {.label = "P-1",
                   .xy = {0, 0, 100, 0},
                   .start_invert = 100,
                   .end_invert = 99});
    test::AddPipe(doc, sewer,
                  {.label = "P-2",
                   .xy = {0, 40, 100, 40},
                   .start_invert = 100,
                   .end_invert = 99});
    if (zero_length_pipe)
      test::AddPipe(doc, sewer, {.label = "P-9", .xy = {25, 20, 25, 20}});
    auto& n1 = test::AddNode(doc, water,
                             {.label = "N-1", .x = 25, .y = -20, .sump = 12});
    auto& n2 = test::AddNode(doc, water,
                             {.label = "N-2", .x = 25, .y = 20, .sump = 10});
    auto& n3 = test::AddNode(doc, water,
                             {.label = "N-3", .x = 25, .y = 60, .sump = 11});
    test::ConnectNodes(doc, water, "W-1", n1, n2);
    test::ConnectNodes(doc, water, "W-2", n2, n3);
    std::string path = (dir_ / "site.dxf").string();
    dxf::SaveDrawing(doc, path);
    return path;
  }
  bool Says(const std::string& text) {
    return out_.str().find(text) != std::string::npos;
  }
};

TEST_F(CrossingCommands, BuildDrawsEachCrossingOnce) {
  std::string site = Site();
  ASSERT_EQ(Run({"crossings", site, "--build"}), 0) << err_.str();
  EXPECT_TRUE(Says("drew 2 new crossing annotations")) << out_.str();
  EXPECT_TRUE(Says("crossing annotations: 2 (2 shown)")) << out_.str();
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(crossing::Crossing::GetExistingCrossingPointsSet(*doc, "").Count(),
            2);

  ASSERT_EQ(Run({"crossings", site, "--build", "--list"}), 0) << err_.str();
  EXPECT_FALSE(Says("drew")) << out_.str();
  EXPECT_TRUE(
      Says("Sewer P-1 (Ø200, I.L. 99.750) x Water W-1 (Ø200, "
           "I.L. 11.000)  clearance 88.550  at 25, 0"))
      << out_.str();
}

TEST_F(CrossingCommands, SettingsAreStoredAndApplied) {
  std::string site = Site();
  ASSERT_EQ(Run({"crossings", site, "--build"}), 0) << err_.str();
  ASSERT_EQ(Run({"crossings", site, "--threshold", "-0.5", "--disable",
                 "Water:Sewer", "--list", "--json"}),
            0)
      << err_.str();
  EXPECT_TRUE(
      Says("{\"threshold\": -0.5, \"pairs\": [{\"networks\": "
           "[\"Sewer\", \"Water\"], \"enabled\": false}], "
           "\"annotations\": 2, \"shown\": 0"))
      << out_.str();
  EXPECT_TRUE(
      Says("\"pipe2\": {\"network\": \"Water\", \"label\": \"W-2\", "
           "\"size\": {\"shape\": \"circular\", \"span\": 200, \"rise\": "
           "200, \"cells\": 1}, \"invert\": 10.5}"))
      << out_.str();
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(
      core::ReadProjectRecord(*doc).Text(core::ProjectField::kCrossingSettings),
      "-0.5");
  for (host::Entity* a :
       crossing::Crossing::GetExistingCrossingPointsSet(*doc, "").Entities())
    EXPECT_FALSE(a->Visible());

  ASSERT_EQ(
      Run({"crossings", site, "--enable", "Sewer:Water", "--threshold", "89"}),
      0);
  EXPECT_TRUE(Says("crossing annotations: 2 (1 shown)")) << out_.str();
}

TEST_F(CrossingCommands, ReadingOnlyLeavesTheFileAlone) {
  std::string site = Site();
  std::string before = Bytes(site);
  ASSERT_EQ(Run({"crossings", site, "--list"}), 0) << err_.str();
  EXPECT_TRUE(
      Says("threshold: -1 (every crossing of an enabled pair is "
           "shown)"));
  EXPECT_TRUE(Says("crossing annotations: 0 (0 shown)"));
  ASSERT_EQ(Run({"lowhigh", site, "--list", "--json"}), 0) << err_.str();
  EXPECT_EQ(Bytes(site), before);
}

TEST_F(CrossingCommands, RefusalsLeaveTheFileAlone) {
  std::string site = Site(true);
  std::string before = Bytes(site);
  EXPECT_EQ(Run({"crossings", site, "--enable", "Sewer:Storm"}), 1);
  EXPECT_EQ(err_.str(),
            "kestrana crossings: The project has no network named \"Storm\"\n");
  EXPECT_EQ(Run({"crossings", site, "--enable", "Sewer"}), 2);
  EXPECT_EQ(Run({"crossings", site, "--threshold", "half"}), 2);
  EXPECT_EQ(Run({"crossings", site, "--enable", "Sewer:Water", "--disable",
                 "Water:Sewer"}),
            2);
  EXPECT_EQ(Run({"crossings", site, "--build"}), 1);
  EXPECT_NE(err_.str().find("pipe P-9 of network Sewer has zero length"),
            std::string::npos)
      << err_.str();
  EXPECT_EQ(Run({"lowhigh", site, "--show", "Sewer"}), 1);
  EXPECT_EQ(err_.str(),
            "kestrana lowhigh: \"Sewer\" is not a pressure network of the "
            "project\n");
  EXPECT_EQ(Run({"crossings", (dir_ / "missing.dxf").string(), "--build"}), 1);
  EXPECT_EQ(Bytes(site), before);
}

TEST_F(CrossingCommands, LowAndHighPointsAreBuiltAndShown) {
  std::string site = Site();
  std::string marked = (dir_ / "marked.dxf").string();
  ASSERT_EQ(Run({"lowhigh", site, "--build", "-o", marked}), 0) << err_.str();
  EXPECT_TRUE(Says("low points: 1, high points: 2")) << out_.str();
  ASSERT_EQ(Run({"lowhigh", marked, "--hide", "Water", "--list"}), 0)
      << err_.str();
  EXPECT_TRUE(Says("  Water  hidden")) << out_.str();
  EXPECT_TRUE(Says("  low  Water N-2  at 25, 20  hidden")) << out_.str();
  auto doc = dxf::LoadDrawing(marked);
  EXPECT_EQ(
      core::ReadProjectRecord(*doc).Text(core::ProjectField::kLowHighNetworks),
      "");
  EXPECT_EQ(
      lowhigh::LowHigh::GetExistingLowHighPointsSet(*doc, "Water").Count(), 3);
}

TEST_F(CrossingCommands, HelpNamesEveryOption) {
  ASSERT_EQ(Run({"crossings", "--help"}), 0);
  for (const char* option : {"--threshold", "--enable", "--disable", "--build",
                             "--list", "--json", "--reset-locations"})
    EXPECT_TRUE(Says(option)) << option;
  ASSERT_EQ(Run({"lowhigh", "--help"}), 0);
  for (const char* option : {"--show", "--hide", "--build", "--list"})
    EXPECT_TRUE(Says(option)) << option;
}

}  // namespace
}  // namespace kestrana::cli
