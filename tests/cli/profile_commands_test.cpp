// Profile style, line and data commands on drawing files, through the
// command line entry.
#include <gtest/gtest.h>

#include <fstream>

#include "cli/command.h"
#include "cli/command_fixture.h"
#include "core/general.h"
#include "core/names.h"
#include "dxf/io.h"
#include "support/network_elements.h"

namespace kestrana::cli {
namespace {

using core::General;

class ProfileCommandLine : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    site_ = Path("site.dxf");
    auto doc = test::NewFullProjectDocument("Metric");
    General::CreateNetworkDefintion(*doc, "Sewer", core::kGravity);
    test::NetworkElements sewer(*doc, "Sewer");
    auto& a = sewer.AddNode("MH-1", 0, 0, 101, 99);
    auto& b = sewer.AddNode("MH-2", 40, 30, 100, 98.5);
    auto& c = sewer.AddNode("MH-3", 40, 80, 99.8, 98);
    auto& d = sewer.AddNode("MH-4", 90, 30, 100, 99);
    sewer.AddPipe("P-1", {0, 0, 40, 30}, a, b,
                  {.start_invert = 99, .end_invert = 98.5});
    sewer.AddPipe("P-2", {40, 30, 40, 80}, b, c,
                  {.start_invert = 98.5, .end_invert = 98});
    sewer.AddPipe("P-3", {90, 30, 40, 30}, d, b,
                  {.start_invert = 99, .end_invert = 98.6});
    dxf::SaveDrawing(*doc, site_);
  }
  void Write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }
  // Runs a command that must fail with `code`, leaving the drawing as it
  // was; answers what it said on stderr.
  std::string Refused(std::vector<std::string> args, int code = 1) {
    const std::string before = Bytes(site_);
    EXPECT_EQ(Run(args), code) << out_.str();
    EXPECT_EQ(Bytes(site_), before);
    return err_.str();
  }

  std::string site_;
};

TEST_F(ProfileCommandLine, ThreeWordCommandsAndTheirGroup) {
  EXPECT_EQ(Run({"profile", "style", "list", site_}), 0) << err_.str();
  EXPECT_EQ(out_.str(), "NAME      PROFILES\nStandard  none\n");
  EXPECT_EQ(Run({"profile", "style", "list", site_, "--json"}), 0);
  EXPECT_EQ(out_.str(), "[{\"name\": \"Standard\", \"profiles\": []}]\n");
  EXPECT_EQ(Run({"profile", "style"}), 2);
  EXPECT_NE(err_.str().find("kestrana profile style: which one?"),
            std::string::npos);
  EXPECT_NE(err_.str().find("profile style import"), std::string::npos);
  EXPECT_EQ(Run({"profile", "style", "--help"}), 0);
  EXPECT_NE(out_.str().find("Commands of 'profile style'"), std::string::npos);
  EXPECT_EQ(Run({"profile", "style", "rename"}), 2);
  EXPECT_NE(err_.str().find("unknown command 'rename'"), std::string::npos);
  EXPECT_EQ(Run({"profile", "style", "show", "--help"}), 0);
  EXPECT_NE(out_.str().find("Usage: kestrana profile style show"),
            std::string::npos);
}

TEST_F(ProfileCommandLine, ExportThenImportIntoAnotherDrawing) {
  const std::string file = Path("standard.txt");
  EXPECT_EQ(Run({"profile", "style", "export", site_, "Standard", "-o", file}),
            0)
      << err_.str();
  const std::string other = Path("other.dxf");
  dxf::SaveDrawing(*test::NewFullProjectDocument("Metric"), other);
  EXPECT_EQ(Run({"profile", "style", "import", other, file, "--name", "Copy"}),
            0)
      << err_.str();
  EXPECT_EQ(Run({"profile", "style", "export", other, "Copy"}), 0);
  std::string expected = Bytes(file);
  expected.replace(expected.find(";;Standard"), 10, ";;Copy");
  EXPECT_EQ(out_.str(), expected);
  // Under the file's own name it would be a second "Standard".
  const std::string before = Bytes(other);
  EXPECT_EQ(Run({"profile", "style", "import", other, file}), 1);
  EXPECT_NE(err_.str().find("already has a profile style named \"Standard\""),
            std::string::npos);
  EXPECT_EQ(Bytes(other), before);
}

TEST_F(ProfileCommandLine, BadInputLeavesTheDrawingAsItWas) {
  const std::string bad = Path("bad.txt");
  Write(bad,
        "\"Kestrana\"\n\";;Deep\"\n\"\"\n\"\"\n\"\"\n\"Standard;2;2.5\"\n");
  EXPECT_NE(Refused({"profile", "style", "import", site_, bad})
                .find("line 6, item 5 (text): 3 fields where 4 are needed"),
            std::string::npos);
  EXPECT_NE(Refused({"profile", "style", "import", site_, Path("none.txt")})
                .find("cannot open the profile style file"),
            std::string::npos);
  EXPECT_NE(Refused({"profile", "style", "delete", site_, "Deep"})
                .find("no profile style named \"Deep\""),
            std::string::npos);
  EXPECT_NE(Refused({"profile", "data", site_, "--network", "Sewer", "--pipes",
                     "P-1,P-2,P-3"})
                .find("The selected pipes don't represent a single "
                      "continuous line!"),
            std::string::npos);
  EXPECT_NE(Refused({"profile", "data", site_, "--network", "Sewer", "--pipes",
                     "P-1", "--start", "1a,2"},
                    2)
                .find("--start X: '1a' is not a number"),
            std::string::npos);
  EXPECT_NE(Refused({"profile", "data", site_, "--network", "Sewer", "--pipes",
                     "P-1", "--surface", Path("none.xml")})
                .find("cannot open the surface file"),
            std::string::npos);
  Write(Path("broken.xml"), "<LandXML><Surfaces>");
  EXPECT_NE(Refused({"profile", "data", site_, "--network", "Sewer", "--pipes",
                     "P-1", "--surface", Path("broken.xml")})
                .find("broken.xml"),
            std::string::npos);
  Refused({"profile", "data", site_, "--network", "Sewer"}, 2);
  Refused({"profile", "lines", site_, "--network", "Storm"});
}

TEST_F(ProfileCommandLine, DataAsATableAndAsJson) {
  EXPECT_EQ(Run({"profile", "data", site_, "--network", "Sewer", "--pipes",
                 "P-2,P-1", "--start", "0,0"}),
            0)
      << err_.str();
  EXPECT_EQ(out_.str(),
            "profile of the network \"Sewer\" with the style \"Standard\"; "
            "ground from the nodes' levels\n"
            "2 pipes from the end nearest (0.00, 0.00): P-1 P-2\n"
            "\n"
            "Part 1 of 1: 0+000.00 to 0+100.00\n"
            "  NODE DISTANCE  STATION  GROUND   SUMP\n"
            "  MH-1    0.000 0+000.00 101.000 99.000\n"
            "  MH-2   50.000 0+050.00 100.000 98.500\n"
            "  MH-3  100.000 0+100.00  99.800 98.000\n"
            "\n"
            "  PIPE FROM   TO LENGTH   SIZE SLOPE INVERT A INVERT B DEPTH A "
            "DEPTH B\n"
            "  P-1  MH-1 MH-2 50.000 200 mm 1.00%   99.000   98.500   2.000 "
            "  1.500\n"
            "  P-2  MH-2 MH-3 50.000 200 mm 1.00%   98.500   98.000   1.500 "
            "  1.800\n"
            "  connected pipes at the nodes: 1; crossing pipes: 0\n");
  EXPECT_EQ(Run({"profile", "data", site_, "--network", "Sewer", "--pipes",
                 "P-1", "--json"}),
            0);
  const std::string json = out_.str();
  // Object IDs and directions as numbers, labels as texts.
  EXPECT_EQ(json.rfind("{\"labels\": [\"P-1\"], \"oids\": [21", 0), 0u) << json;
  EXPECT_NE(json.find("\"directions\": [1]"), std::string::npos)
      << "from MH-2, the lower end";
  EXPECT_NE(json.find("[\"MH-2\", \"MH-1\"]"), std::string::npos);
}


TEST_F(ProfileCommandLine, DrawListUpdateAndDelete) {
  const std::string out = Path("drawn.dxf");
  EXPECT_EQ(Run({"profile", "draw", site_, "--network", "Sewer", "--name",
                 "Main", "--pipes", "P-1,P-2", "--start", "0,0", "--at",
                 "0,-300", "--plan-name", "-o", out}),
            0)
      << err_.str();
  EXPECT_NE(out_.str().find("Drew the profile \"Main\" of \"Sewer\" (2 "
                            "pipes) at 0,-300"),
            std::string::npos)
      << out_.str();
  EXPECT_EQ(Run({"profile", "list", out, "--json"}), 0) << err_.str();
  EXPECT_EQ(out_.str(),
            "[{\"name\": \"Main\", \"network\": \"Sewer\", \"style\": "
            "\"Standard\", \"block\": \"Kestrana_Profile_Sewer_Main\", "
            "\"pipes\": [\"P-1\", \"P-2\"], \"at\": [0, -300], "
            "\"plan_annotation\": true, \"needs_update\": false}]\n");
  // The picture of the profile block alone.
  EXPECT_EQ(Run({"render", out, "--block", "Kestrana_Profile_Sewer_Main", "-o",
                 Path("main.svg")}),
            0)
      << err_.str();

  // Nothing flagged: nothing to redraw, the file is not touched.
  const std::string before = Bytes(out);
  EXPECT_EQ(Run({"profile", "update", out, "--all-flagged"}), 0);
  EXPECT_NE(out_.str().find("No profile needs an update"), std::string::npos);
  EXPECT_EQ(Bytes(out), before);
  EXPECT_EQ(Run({"profile", "update", out, "--network", "Sewer", "--name",
                 "main"}),
            0)
      << err_.str();
  EXPECT_NE(out_.str().find("Redrew the profile \"Main\""), std::string::npos);

  EXPECT_EQ(Run({"profile", "delete", out, "--network", "Sewer", "--name",
                 "Main"}),
            0)
      << err_.str();
  EXPECT_EQ(Run({"profile", "list", out}), 0);
  EXPECT_EQ(out_.str(), "The drawing holds no profiles.\n");
}

TEST_F(ProfileCommandLine, UpdateTakesTheGroundSurfaceAgain) {
  const std::string ground = Path("ground.xml");
  Write(ground,
        "<LandXML><Surfaces><Surface name=\"EG\"><Definition "
        "surfType=\"TIN\"><Pnts><P id=\"1\">-50 -50 101</P><P id=\"2\">"
        "300 -50 101</P><P id=\"3\">-50 300 101</P></Pnts><Faces><F>1 2 "
        "3</F></Faces></Definition></Surface></Surfaces></LandXML>");
  ASSERT_EQ(Run({"profile", "draw", site_, "--network", "Sewer", "--name",
                 "Main", "--pipes", "P-1,P-2", "--at", "0,-300", "--surface",
                 ground}),
            0)
      << err_.str();
  EXPECT_NE(Refused({"profile", "update", site_, "--network", "Sewer",
                     "--name", "Main"})
                .find("takes its ground from the surface \"EG\""),
            std::string::npos);
  EXPECT_EQ(Run({"profile", "update", site_, "--network", "Sewer", "--name",
                 "Main", "--surface", ground}),
            0)
      << err_.str();
}

TEST_F(ProfileCommandLine, DrawRefusesBadRequests) {
  const std::vector<std::string> main = {
      "profile", "draw", site_, "--network", "Sewer", "--name", "Main",
      "--pipes", "P-1,P-2", "--at", "0,-300"};
  auto with = [&](std::vector<std::string> extra) {
    std::vector<std::string> args = main;
    args.insert(args.end(), extra.begin(), extra.end());
    return args;
  };
  EXPECT_NE(Refused(with({"--style", "Deep"})).find("Deep"),
            std::string::npos);
  EXPECT_NE(Refused(with({"--datum", "99.5"})).find("above the lowest level"),
            std::string::npos);
  EXPECT_NE(Refused(with({"--start", "40,200"}))
                .find("far from both free ends of the run"),
            std::string::npos);
  EXPECT_NE(Refused(with({"--datum", "low"}), 2).find("--datum"),
            std::string::npos);
  Write(Path("far.xml"),
        "<LandXML><Surfaces><Surface name=\"Far\"><Definition "
        "surfType=\"TIN\"><Pnts><P id=\"1\">1000 1000 5</P><P id=\"2\">"
        "1000 1010 5</P><P id=\"3\">1010 1000 5</P></Pnts><Faces><F>1 2 "
        "3</F></Faces></Definition></Surface></Surfaces></LandXML>");
  EXPECT_FALSE(Refused(with({"--surface", Path("far.xml")})).empty());
  Refused({"profile", "draw", site_, "--network", "Sewer", "--name", "Main",
           "--pipes", "P-1"},
          2);  // no --at
  Refused({"profile", "update", site_}, 2);
  EXPECT_NE(Refused({"profile", "delete", site_, "--network", "Sewer",
                     "--name", "Main"})
                .find("no profile named \"Main\""),
            std::string::npos);
  // A second profile of the same name, in another letter case.
  EXPECT_EQ(Run(main), 0) << err_.str();
  EXPECT_NE(Refused({"profile", "draw", site_, "--network", "Sewer", "--name",
                     "MAIN", "--pipes", "P-1", "--at", "0,-600"})
                .find("already has a profile named \"MAIN\""),
            std::string::npos);
}

}  // namespace
}  // namespace kestrana::cli
