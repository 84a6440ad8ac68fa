// The project commands on real files, through the command line entry.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/command.h"
#include "cli/command_fixture.h"
#include "commands/project.h"
#include "core/general.h"
#include "core/project_record.h"
#include "dxf/io.h"

namespace kestrana::cli {
namespace {

namespace fs = std::filesystem;

class ProjectCommands : public test::CommandTest {
 protected:
};

TEST_F(ProjectCommands, NewMakesADrawingThatReadsBack) {
  std::string site = Path("site.dxf");
  ASSERT_EQ(Run({"new", site, "--units", "US"}), 0) << err_.str();
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(core::General::GetModelUnits(*doc), "US");
  EXPECT_TRUE(core::General::VerfiyVersionKestranaCompatibility(*doc));

  std::string before = Bytes(site);
  EXPECT_EQ(Run({"new", site}), 1);
  EXPECT_EQ(err_.str(),
            "kestrana new: This drawing already contains a Kestrana "
            "project!\n");
  EXPECT_EQ(Bytes(site), before);
  EXPECT_EQ(Run({"new", site, "--units", "SI"}), 2);
  EXPECT_EQ(Bytes(site), before);
}

TEST_F(ProjectCommands, NewAddsAProjectToAnExistingDrawing) {
  std::string plain = Path("plain.dxf"), out = Path("out.dxf");
  {
    memhost::MemDocument doc;
    doc.ModelSpace().AddLine({0, 0, 0}, {10, 0, 0});
    dxf::SaveDrawing(doc, plain);
  }
  std::string before = Bytes(plain);
  ASSERT_EQ(Run({"new", plain, "-o", out}), 0) << err_.str();
  EXPECT_EQ(Bytes(plain), before);
  auto doc = dxf::LoadDrawing(out);
  EXPECT_EQ(core::General::GetModelUnits(*doc), "Metric");
  int lines = 0;
  for (host::Entity* e : doc->ModelSpace().Entities())
    lines += e->EntityName() == "LINE";
  EXPECT_EQ(lines, 1);
}

TEST_F(ProjectCommands, NetworksAreAddedAndListed) {
  std::string site = Path("site.dxf");
  ASSERT_EQ(Run({"new", site}), 0);
  ASSERT_EQ(Run({"network", "add", site, "Sewer A", "--type", "Gravity"}), 0)
      << err_.str();
  ASSERT_EQ(Run({"network", "add", site, "Water 1", "--type=Pressure"}), 0);
  std::string before = Bytes(site);
  EXPECT_EQ(Run({"network", "add", site, "Sewer A", "--type", "Pressure"}), 1);
  EXPECT_EQ(err_.str(),
            "kestrana network add: A network named \"Sewer A\" already "
            "exists\n");
  EXPECT_EQ(Run({"network", "add", site, "Storm"}), 2);  // no --type
  EXPECT_EQ(Bytes(site), before);

  ASSERT_EQ(Run({"network", "list", site, "--json"}), 0);
  EXPECT_EQ(out_.str(),
            "[{\"name\": \"Sewer A\", \"type\": \"Gravity\", \"pipes\": 0, "
            "\"nodes\": 0}, {\"name\": \"Water 1\", \"type\": "
            "\"Pressure\", \"pipes\": 0, \"nodes\": 0}]\n");
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(
      core::ReadProjectRecord(*doc).Text(core::ProjectField::kCrossingSettings),
      "-1;Water 1;Sewer A");
  EXPECT_NE(doc->GetLayers().Find("Water 1 - Arrow"), nullptr);
}

TEST_F(ProjectCommands, DrawingsWithoutOrWithNewerProjectsAreRefused) {
  std::string plain = Path("plain.dxf"), newer = Path("newer.dxf");
  {
    memhost::MemDocument doc;
    dxf::SaveDrawing(doc, plain);
    commands::NewProject(doc, {"Metric"});
    core::Record record = core::ReadProjectRecord(doc);
    record.SetText(core::ProjectField::kProjectVersion, "2.10");
    core::WriteProjectRecord(doc, record);
    dxf::SaveDrawing(doc, newer);
  }
  EXPECT_EQ(Run({"network", "list", plain}), 1);
  EXPECT_EQ(err_.str(),
            "kestrana network list: This drawing does not contain a Kestrana "
            "project!\n");
  std::string before = Bytes(newer);
  EXPECT_EQ(Run({"network", "add", newer, "S", "--type", "Gravity"}), 1);
  EXPECT_EQ(err_.str(), "kestrana network add: " +
                            core::NewerProjectMessage("2.10") + "\n");
  EXPECT_EQ(Bytes(newer), before);
  EXPECT_EQ(Run({"network", "list", Path("missing.dxf")}), 1);
  EXPECT_NE(err_.str().find("missing.dxf"), std::string::npos);
}

TEST_F(ProjectCommands, NetworksAreDeletedByName) {
  std::string site = Path("site.dxf");
  ASSERT_EQ(Run({"new", site}), 0) << err_.str();
  ASSERT_EQ(Run({"network", "add", site, "Sewer", "--type", "Gravity"}), 0);
  ASSERT_EQ(Run({"network", "add", site, "Water", "--type", "Pressure"}), 0);
  const std::string before = Bytes(site);
  EXPECT_EQ(Run({"network", "delete", site, "Gas"}), 1);
  EXPECT_EQ(
      err_.str(),
      "kestrana network delete: the project has no network named \"Gas\"\n");
  EXPECT_EQ(Bytes(site), before);

  ASSERT_EQ(Run({"network", "delete", site, "Sewer"}), 0) << err_.str();
  EXPECT_EQ(out_.str(), "deleted network \"Sewer\" from " + site + "\n");
  auto doc = dxf::LoadDrawing(site);
  EXPECT_EQ(core::General::GetNetworkNames(*doc),
            std::vector<std::string>{"Water"});
  EXPECT_EQ(doc->GetLayers().Find("Sewer - Network"), nullptr);
  EXPECT_NE(doc->GetLayers().Find("Water - Network"), nullptr);
}

TEST_F(ProjectCommands, CommandWordsAreFoundOrExplained) {
  EXPECT_EQ(Run({"--version"}), 0);
  EXPECT_EQ(out_.str().rfind("kestrana ", 0), 0u);
  EXPECT_EQ(Run({}), 2);  // the overview, but a failure: nothing was done
  EXPECT_NE(out_.str().find("  style apply "), std::string::npos);

  EXPECT_EQ(Run({"frobnicate"}), 2);
  EXPECT_EQ(err_.str(),
            "kestrana: unknown command 'frobnicate' (see kestrana --help)\n");
  // A group word lists its commands: on stdout when asked for, on stderr
  // as a failure otherwise.
  EXPECT_EQ(Run({"network", "--help"}), 0);
  EXPECT_NE(out_.str().find("  network add  "), std::string::npos);
  EXPECT_NE(out_.str().find("  network show  "), std::string::npos);
  EXPECT_EQ(out_.str().find("style"), std::string::npos);
  EXPECT_EQ(Run({"style"}), 2);
  EXPECT_EQ(err_.str().rfind("kestrana style: which one?\n", 0), 0u);
  EXPECT_EQ(Run({"style", "paint", "x.dxf"}), 2);
  EXPECT_EQ(err_.str().rfind("kestrana style: unknown command 'paint'\n", 0),
            0u);
  EXPECT_TRUE(out_.str().empty());
  // A command's own --help is its usage, wherever the flag stands.
  EXPECT_EQ(Run({"style", "apply", "x.dxf", "--help"}), 0);
  EXPECT_NE(out_.str().find("style apply"), std::string::npos);
}

}  // namespace
}  // namespace kestrana::cli
