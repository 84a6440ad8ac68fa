// kestrana convert, node set, pipe set, ground and demo on drawing files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/command.h"
#include "cli/command_fixture.h"
#include "cli/demo.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "commands/project.h"
#include "core/general.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "dxf/io.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"
#include "support/elements.h"

namespace kestrana::cli {
namespace {

namespace fs = std::filesystem;
using core::NodeField;
using core::PipeField;

class EditingCommands : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    path_ = (dir_ / "site.dxf").string();
  }
  // Three sewer lines meeting end to end, and a main of two pipes across
  // them, drawn on their own layers in a project.
  void Site() {
    memhost::MemDocument doc;
    commands::NewProject(doc, {"Metric"});
    doc.GetLayers().Add("Sewer lines");
    doc.GetLayers().Add("Water lines");
    auto on = [](host::Entity& e, const char* layer) { e.SetLayer(layer); };
    on(doc.ModelSpace().AddLine({0, 0, 0}, {50, 0, 0}), "Sewer lines");
    on(doc.ModelSpace().AddLine({50, 0, 0}, {100, 0, 0}), "Sewer lines");
    on(doc.ModelSpace().AddLightWeightPolyline({100, 0, 120, 10, 150, 0}),
       "Sewer lines");
    on(doc.ModelSpace().AddLightWeightPolyline({25, -30, 25, 30}),
       "Water lines");
    on(doc.ModelSpace().AddLightWeightPolyline({25, 30, 125, 30}),
       "Water lines");
    dxf::SaveDrawing(doc, path_);
  }
  void Converted() {
    Site();
    ASSERT_EQ(Run({"convert", path_, "--network", "Sewer", "--type", "Gravity",
                   "--layer", "Sewer lines"}),
              0)
        << err_.str();
    ASSERT_EQ(Run({"convert", path_, "--network", "Water", "--type", "Pressure",
                   "--layer", "Water lines"}),
              0)
        << err_.str();
  }
  // The command fails with `message` on stderr and leaves the file alone.
  void Refused(std::vector<std::string> args, const std::string& message,
               int code = 1) {
    SCOPED_TRACE(args[0] + " ... " + message);
    const std::string before = Bytes(path_);
    EXPECT_EQ(Run(args), code);
    EXPECT_NE(err_.str().find(message), std::string::npos) << err_.str();
    EXPECT_TRUE(Bytes(path_) == before);
  }
  std::unique_ptr<memhost::MemDocument> Load() {
    return dxf::LoadDrawing(path_);
  }
  core::Record Element(memhost::MemDocument& doc, const std::string& network,
                       const std::string& kind, const std::string& label) {
    return core::Record::ReadRequired(
        test::ElementLabelled(doc, network, kind, label));
  }
  std::string WriteSurface(const std::string& name, const std::string& body) {
    const std::string path = (dir_ / name).string();
    std::ofstream(path) << body;
    return path;
  }
  // A plane at 100 + x / 100 over x 0..80, y -40..40 (LandXML points are
  // northing, easting, elevation).
  std::string Surface() {
    return WriteSurface(
        "ground.xml",
        "<?xml version=\"1.0\"?>\n<LandXML version=\"1.2\"><Surfaces>"
        "<Surface name=\"Existing\"><Definition surfType=\"TIN\"><Pnts>"
        "<P id=\"1\">-40 0 100</P><P id=\"2\">-40 80 100.8</P>"
        "<P id=\"3\">40 80 100.8</P><P id=\"4\">40 0 100</P></Pnts>"
        "<Faces><F>1 2 3</F><F>1 3 4</F></Faces></Definition></Surface>"
        "</Surfaces></LandXML>\n");
  }

  std::string path_;
};

TEST_F(EditingCommands, ConvertTurnsTheChosenLinesIntoANetwork) {
  Converted();
  EXPECT_NE(out_.str().find("converted 2 pipes and 3 new nodes into the "
                            "Pressure network \"Water\" (new); 1 new crossing"),
            std::string::npos)
      << out_.str();
  auto doc = Load();
  EXPECT_EQ(core::General::GetNetworkSet(*doc, "Sewer", 1).Count(), 3);
  EXPECT_EQ(core::General::GetNetworkSet(*doc, "Sewer", 2).Count(), 4);
  // The drawn lines are gone, replaced by the pipes.
  int lines = 0;
  for (host::Entity* e : doc->ModelSpace().Entities())
    lines +=
        e->EntityName() == "LINE" && e->Layer() != core::kCrossingLinesLayer;
  EXPECT_EQ(lines, 0);
  // The polyline comes first; the lines' polylines join the set after it.
  core::Record p3 = Element(*doc, "Sewer", "Pipe", "P-3");
  EXPECT_EQ(p3.Text(PipeField::kStartNodeLabel), ";RelatedToN-4");
  EXPECT_EQ(p3.Text(PipeField::kEndNodeLabel), ";RelatedToN-1");
}

TEST_F(EditingCommands, ConvertLabelsPolylinesInTheOrderOfTheFile) {
  // Three polylines and a line, written so that the file's order is not
  // the order of their handles: the last polyline made stands first.
  {
    memhost::MemDocument doc;
    commands::NewProject(doc, {"Metric"});
    doc.ModelSpace().AddLine({-20, 0, 0}, {0, 0, 0});
    for (double x : {0.0, 20.0, 40.0})
      doc.ModelSpace().AddLightWeightPolyline({x, 0, x + 20, 0});
    dxf::SaveDrawing(doc, path_);
  }
  std::istringstream in(Bytes(path_));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  auto trimmed = [](std::string t) {
    while (!t.empty() && (t.back() == '\r' || t.front() == ' '))
      t.erase(t.back() == '\r' ? t.size() - 1 : 0, 1);
    return t;
  };
  const size_t section =
      std::find(lines.begin(), lines.end(), "ENTITIES\r") != lines.end()
          ? std::find(lines.begin(), lines.end(), "ENTITIES\r") - lines.begin()
          : std::find(lines.begin(), lines.end(), "ENTITIES") - lines.begin();
  ASSERT_LT(section, lines.size());
  // The entities as groups of lines, each starting at its "0" tag.
  std::vector<std::vector<std::string>> entities;
  size_t at = section + 1;
  for (; trimmed(lines[at + 1]) != "ENDSEC"; at += 2) {
    if (trimmed(lines[at]) == "0") entities.emplace_back();
    entities.back().push_back(lines[at]);
    entities.back().push_back(lines[at + 1]);
  }
  std::vector<size_t> polylines;
  for (size_t i = 0; i < entities.size(); ++i)
    if (trimmed(entities[i][1]) == "LWPOLYLINE") polylines.push_back(i);
  ASSERT_EQ(polylines.size(), 3u);
  std::swap(entities[polylines[0]], entities[polylines[2]]);  // 40, 20, 0
  std::swap(entities[polylines[1]], entities[polylines[2]]);  // 40, 0, 20
  std::string text;
  for (size_t i = 0; i <= section; ++i) text += lines[i] + "\n";
  for (const auto& entity : entities)
    for (const std::string& line : entity) text += line + "\n";
  for (size_t i = at; i < lines.size(); ++i)
    text += lines[i] + (i + 1 < lines.size() ? "\n" : "");
  std::ofstream(path_, std::ios::binary) << text;

  ASSERT_EQ(Run({"convert", path_, "--network", "Sewer", "--type", "Gravity",
                 "--all"}),
            0)
      << err_.str();
  auto doc = Load();
  auto start_x = [&](const char* label) {
    return host::As<host::LwPolyline>(
               test::ElementLabelled(*doc, "Sewer", "Pipe", label))
        .Coordinates()[0];
  };
  // Polylines in the file's order, then the line drawn before them all.
  EXPECT_EQ(start_x("P-1"), 40);
  EXPECT_EQ(start_x("P-2"), 0);
  EXPECT_EQ(start_x("P-3"), 20);
  EXPECT_EQ(start_x("P-4"), -20);
}

TEST_F(EditingCommands, ConvertPicksByHandlesOrWindowIntoAnExistingNetwork) {
  Site();
  std::string handle;
  {
    auto doc = Load();
    for (host::Entity* e : doc->ModelSpace().Entities())
      if (e->EntityName() == "LINE" && handle.empty()) handle = e->Handle();
  }
  ASSERT_EQ(Run({"convert", path_, "--network", "Sewer", "--type", "Gravity",
                 "--handles", handle}),
            0)
      << err_.str();
  // The window holds the second line and the bent polyline's first half
  // only, so just the line.
  ASSERT_EQ(
      Run({"convert", path_, "--network", "Sewer", "--window", "45,-5,110,5"}),
      0)
      << err_.str();
  auto doc = Load();
  EXPECT_EQ(core::General::GetNetworkSet(*doc, "Sewer", 1).Count(), 2);
  EXPECT_EQ(core::General::GetNetworkSet(*doc, "Sewer", 2).Count(), 3);
}

TEST_F(EditingCommands, ConvertRefusalsLeaveTheDrawingAsItWas) {
  Site();
  const std::vector<std::string> to_sewer = {"convert", path_,    "--network",
                                             "Sewer",   "--type", "Gravity"};
  auto with = [&](std::vector<std::string> more) {
    std::vector<std::string> args = to_sewer;
    args.insert(args.end(), more.begin(), more.end());
    return args;
  };
  Refused(with({"--layer", "Roads"}), "the drawing has no layer \"Roads\"");
  Refused(with({"--handles", "FFFF0"}),
          "no entity of the drawing has the handle");
  Refused(with({"--window", "1000,1000,1100,1100"}),
          "the window 1000,1000,1100,1100 holds no entity");
  Refused(with({"--layer", "0"}), "nothing to convert");
  Refused(with({"--all", "--layer", "Sewer lines"}), "choose what to convert",
          2);
  Refused({"convert", path_, "--network", "Sewer", "--all"}, "give its --type",
          2);
  Refused(with({"--all", "--type", "Storm"}), "given twice", 2);
  ASSERT_EQ(Run(with({"--layer", "Sewer lines"})), 0) << err_.str();
  Refused(with({"--layer", "Sewer lines"}), "nothing to convert");
  Refused(
      {"convert", path_, "--network", "Sewer", "--type", "Pressure", "--all"},
      "\"Sewer\" is a Gravity network");
  {
    auto doc = Load();
    doc->ModelSpace().AddLine({7, 7, 0}, {7, 7, 0}).SetLayer("Water lines");
    dxf::SaveDrawing(*doc, path_);
  }
  Refused({"convert", path_, "--network", "Water", "--type", "Pressure",
           "--layer", "Water lines"},
          "has no length and cannot become a pipe");
}

TEST_F(EditingCommands, NodeAndPipeSetStoreTheirDataAndPassItOn) {
  Converted();
  ASSERT_EQ(Run({"pipe", "set", path_, "--network", "Sewer", "--label", "P-3",
                 "--size", "1200x800", "--material", "Concrete",
                 "--start-invert", "99.5", "--end-invert", "99"}),
            0)
      << err_.str();
  EXPECT_NE(out_.str().find("1200X800 Concrete, inverts 99.5 to 99"),
            std::string::npos)
      << out_.str();
  ASSERT_EQ(Run({"pipe", "set", path_, "--network", "Sewer", "--label", "P-2",
                 "--size", "300"}),
            0)
      << err_.str();
  EXPECT_NE(out_.str().find(": Ø300 PVC,"), std::string::npos) << out_.str();
  ASSERT_EQ(Run({"node", "set", path_, "--network", "Sewer", "--label", "N-4",
                 "--new-label", "MH-4", "--ground", "101.5", "--sump", "98.75",
                 "--matching", "Match Inverts"}),
            0)
      << err_.str();
  auto doc = Load();
  core::Record node = Element(*doc, "Sewer", "Node", "MH-4");
  EXPECT_EQ(node.Number(NodeField::kGroundLevel), 101.5);
  EXPECT_EQ(node.Int16(NodeField::kMatching), 3);
  // Both pipes at the manhole now start or end at its sump.
  EXPECT_EQ(Element(*doc, "Sewer", "Pipe", "P-2").Number(PipeField::kEndInvert),
            98.75);
  core::Record p3 = Element(*doc, "Sewer", "Pipe", "P-3");
  EXPECT_EQ(p3.Number(PipeField::kStartInvert), 98.75);
  EXPECT_EQ(p3.Number(PipeField::kEndInvert), 99);
  EXPECT_EQ(p3.Text(PipeField::kStartNodeLabel), ";RelatedToMH-4");
  EXPECT_EQ(p3.Text(PipeField::kSectionShape), core::kSectionShapeBox);
}

TEST_F(EditingCommands, PressureEditsMoveTheLowAndHighPoints) {
  Converted();
  auto listed = [&](const std::string& line) {
    EXPECT_EQ(Run({"lowhigh", path_, "--list"}), 0);
    return out_.str().find(line) != std::string::npos;
  };
  // All three nodes level: all low points.
  EXPECT_TRUE(listed("low points: 3, high points: 0"));
  ASSERT_EQ(Run({"node", "set", path_, "--network", "Water", "--label", "N-2",
                 "--sump", "1", "--ground", "3"}),
            0)
      << err_.str();
  EXPECT_TRUE(listed("low points: 2, high points: 1"));
  EXPECT_TRUE(listed("high  Water N-2")) << out_.str();
  // A gravity edit leaves the markers alone.
  ASSERT_EQ(Run({"node", "set", path_, "--network", "Sewer", "--label", "N-1",
                 "--sump", "5"}),
            0);
  EXPECT_TRUE(listed("low points: 2, high points: 1"));
}

TEST_F(EditingCommands, NodeAndPipeSetRefusals) {
  Converted();
  {  // Two sewer nodes labelled alike, as a careless edit leaves them.
    auto doc = Load();
    host::Entity& n3 = test::ElementLabelled(*doc, "Sewer", "Node", "N-3");
    core::Record record = core::Record::ReadRequired(n3);
    record.SetText(NodeField::kCombinedLabel, "Node;Sewer;N-4");
    record.Write(n3);
    dxf::SaveDrawing(*doc, path_);
  }
  auto node = [&](std::vector<std::string> more) {
    std::vector<std::string> args = {"node", "set", path_, "--network",
                                     "Sewer"};
    args.insert(args.end(), more.begin(), more.end());
    return args;
  };
  auto pipe = [&](std::vector<std::string> more) {
    std::vector<std::string> args = {"pipe", "set", path_, "--network",
                                     "Sewer"};
    args.insert(args.end(), more.begin(), more.end());
    return args;
  };
  Refused(node({"--label", "N-9", "--sump", "1"}),
          "the network \"Sewer\" has no node labelled \"N-9\"");
  Refused(node({"--label", "N-4", "--sump", "1"}),
          "the label \"N-4\" names 2 nodes");
  Refused(node({"--label", "N-1", "--new-label", "n-2"}),
          "already has a node labelled \"N-2\"");
  Refused(node({"--label", "N-1", "--new-label", "A;B"}),
          "contains a character");
  Refused(node({"--label", "N-1", "--matching", "Sideways"}),
          "--matching must be", 2);
  Refused({"node", "set", path_, "--network", "Storm", "--label", "N-1"},
          "no network named \"Storm\"");
  Refused(pipe({"--label", "P-1", "--size", "12a"}), "--size takes a diameter",
          2);
  Refused(pipe({"--label", "P-1", "--size", "1200x"}),
          "--size takes a diameter", 2);
  Refused(pipe({"--label", "P-1", "--size", "-300"}), "--size takes a diameter",
          2);
  Refused(pipe({"--label", "P-1", "--new-label", "P-3"}),
          "already has a pipe labelled \"P-3\"");
  Refused(pipe({"--label", "P-7", "--material", "PE"}),
          "has no pipe labelled \"P-7\"");
}

TEST_F(EditingCommands, GroundTakesLevelsFromTheSurfaceAndNamesNodesOutside) {
  Converted();
  ASSERT_EQ(Run({"ground", path_, "--surface", Surface(), "--networks",
                 "Sewer,Water"}),
            0)
      << err_.str();
  EXPECT_NE(out_.str().find("ground levels of 4 nodes from the surface "
                            "\"Existing\""),
            std::string::npos)
      << out_.str();
  // N-1 (100, 0) and N-2 (150, 0) of the sewer, N-3 (125, 30) of the main.
  EXPECT_NE(err_.str().find("3 nodes lie outside the surface and keep their "
                            "ground levels: Sewer N-1, Sewer N-2, Water N-3\n"),
            std::string::npos)
      << err_.str();
  auto doc = Load();
  host::Entity& n4 = test::ElementLabelled(*doc, "Sewer", "Node", "N-4");
  EXPECT_NEAR(core::Record::ReadRequired(n4).Number(NodeField::kGroundLevel),
              100.5, 1e-9);
  EXPECT_EQ(test::AnnotationTexts(*doc, n4).at(1), "GL=100.50");
  host::Entity& n1 = test::ElementLabelled(*doc, "Sewer", "Node", "N-1");
  EXPECT_EQ(core::Record::ReadRequired(n1).Number(NodeField::kGroundLevel), 0);
}

TEST_F(EditingCommands, GroundRefusals) {
  Converted();
  const std::string surface = Surface();
  Refused({"ground", path_, "--surface", path_, "--networks", "Sewer"},
          "is not a LandXML surface file");
  Refused({"ground", path_, "--surface", WriteSurface("svg.xml", "<svg/>"),
           "--networks", "Sewer"},
          "not a LandXML file");
  Refused({"ground", path_, "--surface", surface, "--surface-name", "Design",
           "--networks", "Sewer"},
          "has no surface named \"Design\" (it has \"Existing\")");
  Refused({"ground", path_, "--surface", surface, "--networks", "Sewer,Storm"},
          "no network named \"Storm\"");
  Refused({"ground", path_, "--surface", (dir_ / "none.xml").string(),
           "--networks", "Sewer"},
          "none.xml");
  const std::string far = WriteSurface(
      "far.xml",
      "<LandXML><Surfaces><Surface name=\"Far\"><Definition surfType=\"TIN\">"
      "<Pnts><P id=\"1\">1000 1000 5</P><P id=\"2\">1000 1010 5</P>"
      "<P id=\"3\">1010 1000 5</P></Pnts><Faces><F>1 2 3</F></Faces>"
      "</Definition></Surface></Surfaces></LandXML>");
  Refused({"ground", path_, "--surface", far, "--networks", "Sewer"},
          "no node lies on the surface \"Far\"; nothing was changed");
}

TEST_F(EditingCommands, DemoDesignsTheExampleTown) {
  const std::string example =
      Bytes(std::string(KESTRANA_SOURCE_DIR) + "/examples/town.dxf");
  const std::string out = (dir_ / "demo").string();
  ASSERT_EQ(Run({"demo", out, "--size", "600"}), 0) << err_.str();
  EXPECT_TRUE(Bytes(std::string(KESTRANA_SOURCE_DIR) + "/examples/town.dxf") ==
              example);
  EXPECT_EQ(Bytes(out + "/town-network.png").substr(1, 3), "PNG");
  const std::string report = Bytes(out + "/report.txt");
  EXPECT_NE(report.find("Sewer  Gravity  9 pipes  10 nodes"), std::string::npos)
      << report;
  EXPECT_NE(report.find("Water  Pressure  3 pipes  5 nodes"),
            std::string::npos);

  auto doc = dxf::LoadDrawing(out + "/town-network.dxf");
  // Every sewer falls in its direction at 1 in 200 or more, below cover.
  for (host::Entity* pipe :
       core::General::GetNetworkSet(*doc, "Sewer", 1).Entities()) {
    core::Record r = core::Record::ReadRequired(*pipe);
    const double fall =
        r.Number(PipeField::kStartInvert) - r.Number(PipeField::kEndInvert);
    EXPECT_GE(fall, 0.005 * host::As<host::LwPolyline>(*pipe).Length() - 1e-9)
        << r.Text(PipeField::kCombinedLabel);
  }
  // Three crossings, each with room between the pipes.
  int crossings = 0;
  for (size_t at = report.find("clearance "); at != std::string::npos;
       at = report.find("clearance ", at + 1), ++crossings)
    EXPECT_GT(std::stod(report.substr(at + 10)), 0.2) << report.substr(at);
  EXPECT_EQ(crossings, 3);
  EXPECT_GT(
      lowhigh::LowHigh::GetExistingLowHighPointsSet(*doc, "Water").Count(), 0);
  // The main sewer's profile with its ground from the surface, and a water
  // main's, each drawn once; the sewer's picture beside the plan.
  EXPECT_EQ(Bytes(out + "/sewer-profile.png").substr(1, 3), "PNG");
  EXPECT_EQ(profile::Profile::GetExistingProfileSet(*doc, "Sewer").Count(), 1);
  EXPECT_EQ(profile::Profile::GetExistingProfileSet(*doc, "Water").Count(), 1);
  const core::Record sewer = core::Record::ReadRequired(
      profile::Profile::GetExistingProfileSet(*doc, "Sewer").Item(0));
  EXPECT_EQ(sewer.Text(profile::ProfileField::kGround), "1;Existing Ground");
  EXPECT_NE(report.find("Main Sewer  Sewer  1 part  pipes P-2 P-3 P-4 P-5 "
                        "P-6 P-7"),
            std::string::npos)
      << report;
}

}  // namespace
}  // namespace kestrana::cli
