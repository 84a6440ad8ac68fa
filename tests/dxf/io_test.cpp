// Opening and saving files.
#include "dxf/io.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "dxf/tags.h"
#include "dxf_test_util.h"
#include "support/project.h"

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
  // The sample drawing, saved.
  std::string Sample() {
    std::string path = Path("sample.dxf");
    SaveDrawing(*test::SampleDrawing(), path);
    return path;
  }
  size_t FilesInDir() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(dir_), {}));
  }

  fs::path dir_;
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

TEST_F(Files, AWriteStoppedPartWayLeavesTheFileAsItWas) {
  std::string path = Sample();
  std::string before = Slurp(path);
  EXPECT_THROW(WriteFileAtomically(path,
                                   [](const ByteSink& sink) {
                                     sink(std::string(100000, 'x'));
                                     sink("0\nEOF\n");
                                     throw std::runtime_error("stopped");
                                   }),
               std::runtime_error);
  EXPECT_EQ(Slurp(path), before);
  EXPECT_EQ(FilesInDir(), 1u);  // the temporary file is gone
  // Pieces reach the file whole and in order.
  WriteFileAtomically(path, [](const ByteSink& sink) {
    sink("0\nSECTION\n");
    sink("");
    sink(std::string(70000, ' '));
    sink("0\nEOF\n");
  });
  EXPECT_EQ(Slurp(path), "0\nSECTION\n" + std::string(70000, ' ') + "0\nEOF\n");
  EXPECT_EQ(FilesInDir(), 1u);
}

}  // namespace
}  // namespace kestrana::dxf
