// Opening and saving files, and the commands built on them.
#include "dxf/io.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/command.h"
#include "cli/info.h"
#include "dxf/tags.h"
#include "dxf_test_util.h"

namespace kestrana::dxf {
namespace {

namespace fs = std::filesystem;

class Files : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("kestrana_io_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string Path(const std::string& name) const {
    return (dir_ / name).string();
  }
  static std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
  }
  static void Put(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }
  // A drawing with a project record, a pipe and a node.
  std::string Sample() {
    memhost::MemDocument doc;
    doc.ModelSpace().SetXData(
        {{1001, "Kestrana"}, {1000, "2.00"}, {1070, int16_t{1}}});
    auto& layer = doc.GetLayers().Add("Sewer - Network");
    doc.SetActiveLayer(layer);
    doc.ModelSpace()
        .AddLightWeightPolyline({0, 0, 10, 0})
        .SetXData(
            {{1001, "Kestrana"}, {1000, "Pipe;Sewer;P-1"}, {1040, 200.0}});
    doc.ModelSpace().AddLine({0, 0, 0}, {1, 1, 0});
    doc.ModelSpace().AddLine({0, 0, 0}, {2, 1, 0});
    layer.SetLock(true);
    std::string path = Path("sample.dxf");
    SaveDrawing(doc, path);
    return path;
  }
  int Run(std::vector<std::string> args) {
    out_.str("");
    err_.str("");
    cli::Io io{out_, err_};
    return cli::Main(args, io);
  }
  size_t FilesInDir() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(dir_), {}));
  }

  fs::path dir_;
  std::ostringstream out_, err_;
};

TEST_F(Files, LoadingNamesTheFileAndWhatIsWrong) {
  try {
    LoadDrawing(Path("missing.dxf"));
    FAIL();
  } catch (const FileError& e) {
    EXPECT_EQ(std::string(e.what()), "cannot open '" + Path("missing.dxf") +
                                         "': No such file or directory");
  }
  EXPECT_THROW(LoadDrawing(dir_.string()), FileError);
  Put(Path("bad.dxf"), testing::MinimalDxf("0\nLINE\n5\n2A\n10\nx\n"));
  try {
    LoadDrawing(Path("bad.dxf"));
    FAIL();
  } catch (const DxfError& e) {
    EXPECT_EQ(std::string(e.what()),
              Path("bad.dxf") +
                  ": line 32: group code 10 expects a real number, found 'x'");
    EXPECT_EQ(e.line(), 32u);
  }
}

TEST_F(Files, SavingReplacesAtomicallyAndKeepsPermissions) {
  std::string path = Sample();
  ::chmod(path.c_str(), 0640);
  auto doc = LoadDrawing(path);
  EXPECT_EQ(doc->Name(), "sample.dxf");
  doc->ModelSpace().AddPoint({1, 2, 3});
  SaveDrawing(*doc, path);
  struct stat st {};
  ASSERT_EQ(::stat(path.c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0640u);
  EXPECT_EQ(FilesInDir(), 1u);  // no temporary file left behind
  EXPECT_NE(Slurp(path).find("POINT"), std::string::npos);
  EXPECT_THROW(SaveDrawing(*doc, Path("no/such/folder/x.dxf")), FileError);
  EXPECT_EQ(FilesInDir(), 1u);
}

TEST_F(Files, AFailedEditLeavesTheInputAsItWas) {
  std::string path = Sample();
  std::string before = Slurp(path);
  EXPECT_THROW(EditDrawing(path, std::nullopt,
                           [](memhost::MemDocument& doc) {
                             doc.ModelSpace().AddPoint({0, 0, 0});
                             throw std::runtime_error("refused");
                           }),
               std::runtime_error);
  EXPECT_EQ(Slurp(path), before);
  EXPECT_THROW(EditDrawing(path, Path("out.dxf"),
                           [](memhost::MemDocument& doc) {
                             // The pipe layer is locked: the host refuses.
                             doc.ModelSpace().Item(0).SetLayer("0");
                           }),
               host::HostError);
  EXPECT_FALSE(fs::exists(Path("out.dxf")));
  EditDrawing(path, Path("out.dxf"), [](memhost::MemDocument& doc) {
    doc.ModelSpace().AddPoint({5, 5, 0});
  });
  EXPECT_EQ(Slurp(path), before);
  EXPECT_NE(Slurp(Path("out.dxf")).find("POINT"), std::string::npos);
}

TEST_F(Files, InfoReportsVersionEntitiesLayersAndTheProject) {
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
  SaveDrawing(plain, Path("plain.dxf"));
  ASSERT_EQ(Run({"info", Path("plain.dxf")}), 0);
  EXPECT_NE(out_.str().find("project: no\n"), std::string::npos);
}

static cli::InfoSectionRegistrar test_section(
    [](memhost::MemDocument& doc) -> std::optional<cli::InfoSection> {
      if (!doc.ModelSpace().GetXData("Kestrana")) return std::nullopt;
      return cli::InfoSection{"extension",
                              {{"lines", "2", true}, {"note", "from a test"}}};
    });

TEST_F(Files, InfoTakesSectionsFromOtherParts) {
  std::string path = Sample();
  ASSERT_EQ(Run({"info", path}), 0);
  EXPECT_NE(out_.str().find("extension:\n  lines: 2\n  note: from a test\n"),
            std::string::npos);
  ASSERT_EQ(Run({"info", "--json", path}), 0);
  EXPECT_NE(out_.str().find(
                "\"extension\": {\"lines\": 2, \"note\": \"from a test\"}"),
            std::string::npos);
}

TEST_F(Files, DumpListsEveryKestranaRecord) {
  std::string path = Sample();
  auto doc = LoadDrawing(path);
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
          "[1040, 200.0]]"),
      std::string::npos)
      << out_.str();
}

TEST_F(Files, SaveWritesTheSameBytesAndFailsCleanly) {
  std::string path = Sample();
  std::string before = Slurp(path);
  ASSERT_EQ(Run({"save", path, "-o", Path("copy.dxf")}), 0) << err_.str();
  EXPECT_EQ(Slurp(Path("copy.dxf")), before);
  ASSERT_EQ(Run({"save", path}), 0);
  EXPECT_EQ(Slurp(path), before);

  std::string broken = before.substr(0, before.size() / 2);
  Put(Path("broken.dxf"), broken);
  EXPECT_EQ(Run({"save", Path("broken.dxf")}), 1);
  EXPECT_NE(err_.str().find("kestrana save: " + Path("broken.dxf") + ": line "),
            std::string::npos)
      << err_.str();
  EXPECT_EQ(Slurp(Path("broken.dxf")), broken);

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
}  // namespace kestrana::dxf
