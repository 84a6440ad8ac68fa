// info, dump and save: reading drawings and writing them back from the
// command line.
#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>

#include "cli/command_fixture.h"
#include "cli/info.h"
#include "dxf/io.h"
#include "memhost/document.h"
#include "support/project.h"

namespace kestrana::cli {
namespace {

class DrawingCommands : public test::CommandTest {
 protected:
  // The sample drawing, saved.
  std::string Sample() {
    std::string path = Path("sample.dxf");
    dxf::SaveDrawing(*test::SampleDrawing(), path);
    return path;
  }
};

TEST_F(DrawingCommands, InfoReportsVersionEntitiesLayersAndTheProject) {
  std::string path = Sample();
  ASSERT_EQ(Run({"info", path}), 0) << err_.str();
  std::string text = out_.str();
  EXPECT_NE(text.find("version: AC1024\n"), std::string::npos) << text;
  EXPECT_NE(text.find("project: yes\n"), std::string::npos);
  EXPECT_NE(text.find("model space: 3 entities\n  LINE            2\n  "
                      "LWPOLYLINE      1\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("Sewer - Network"), std::string::npos);
  EXPECT_NE(text.find("locked"), std::string::npos);

  ASSERT_EQ(Run({"info", path, "--json"}), 0);
  std::string json = out_.str();
  EXPECT_NE(json.find("\"project\": true"), std::string::npos);
  EXPECT_NE(json.find("\"by_type\": {\"LINE\": 2, \"LWPOLYLINE\": 1}"),
            std::string::npos)
      << json;
  EXPECT_NE(
      json.find("{\"name\": \"Sewer - Network\", \"color\": 7, \"on\": true, "
                "\"frozen\": false, \"locked\": true, \"entities\": 3}"),
      std::string::npos)
      << json;

  // A drawing without a project says so.
  memhost::MemDocument plain;
  dxf::SaveDrawing(plain, Path("plain.dxf"));
  ASSERT_EQ(Run({"info", Path("plain.dxf")}), 0);
  EXPECT_NE(out_.str().find("project: no\n"), std::string::npos);
}

InfoSectionRegistrar test_section(
    [](memhost::MemDocument& doc) -> std::optional<InfoSection> {
      if (!doc.ModelSpace().GetXData("Kestrana")) return std::nullopt;
      return InfoSection{"extension",
                         {{"lines", "2", true}, {"note", "from a test"}}};
    });

TEST_F(DrawingCommands, InfoTakesSectionsFromOtherParts) {
  std::string path = Sample();
  ASSERT_EQ(Run({"info", path}), 0);
  EXPECT_NE(out_.str().find("extension:\n  lines: 2\n  note: from a test\n"),
            std::string::npos);
  ASSERT_EQ(Run({"info", "--json", path}), 0);
  EXPECT_NE(out_.str().find(
                "\"extension\": {\"lines\": 2, \"note\": \"from a test\"}"),
            std::string::npos);
}

TEST_F(DrawingCommands, DumpListsEveryKestranaRecord) {
  std::string path = Sample();
  auto doc = dxf::LoadDrawing(path);
  ASSERT_EQ(Run({"dump", path}), 0);
  std::string text = out_.str();
  std::string ms = doc->ModelSpace().Handle();
  EXPECT_EQ(
      text.find(
          "BLOCK_RECORD " + ms + " (ID " +
          std::to_string(doc->ModelSpace().ObjectID()) +
          ") in \"*Model_Space\"\n  1001 Kestrana\n  1000 2.00\n  1070 1\n"),
      0u)
      << text;
  EXPECT_NE(
      text.find(
          "on layer \"Sewer - Network\" in \"*Model_Space\"\n  1001 Kestrana\n"
          "  1000 Pipe;Sewer;P-1\n  1040 200.0\n"),
      std::string::npos)
      << text;
  ASSERT_EQ(Run({"dump", path, "--json"}), 0);
  EXPECT_NE(
      out_.str().find(
          "\"record\": [[1001, \"Kestrana\"], [1000, \"Pipe;Sewer;P-1\"], "
          "[1040, 200]]"),
      std::string::npos)
      << out_.str();
}

TEST_F(DrawingCommands, SaveWritesTheSameBytesAndFailsCleanly) {
  std::string path = Sample();
  std::string before = Bytes(path);
  ASSERT_EQ(Run({"save", path, "-o", Path("copy.dxf")}), 0) << err_.str();
  EXPECT_EQ(Bytes(Path("copy.dxf")), before);
  ASSERT_EQ(Run({"save", path}), 0);
  EXPECT_EQ(Bytes(path), before);

  std::string broken = before.substr(0, before.size() / 2);
  std::ofstream(Path("broken.dxf"), std::ios::binary) << broken;
  EXPECT_EQ(Run({"save", Path("broken.dxf")}), 1);
  EXPECT_NE(err_.str().find("kestrana save: " + Path("broken.dxf") + ": line "),
            std::string::npos)
      << err_.str();
  EXPECT_EQ(Bytes(Path("broken.dxf")), broken);

  EXPECT_EQ(Run({"info"}), 2);
  EXPECT_NE(err_.str().find("missing the drawing"), std::string::npos);
  EXPECT_EQ(Run({"dump", path, "--bogus"}), 2);
  EXPECT_EQ(Run({"info", Path("none.dxf")}), 1);
  EXPECT_NE(err_.str().find("cannot open"), std::string::npos);
  EXPECT_EQ(Run({"save", "--help"}), 0);
  EXPECT_NE(out_.str().find("Usage: kestrana save DRAWING [-o OUT]"),
            std::string::npos);
}

}  // namespace
}  // namespace kestrana::cli
