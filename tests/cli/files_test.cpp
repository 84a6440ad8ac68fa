// What commands read and write: links, permissions, read-only files, pipes
// and standard output on the way out; devices, pipes, folders, files of
// another kind and oversized files on the way in.
#include "cli/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <string>

#include "cli/command_fixture.h"
#include "dxf/io.h"
#include "host/errors.h"
#include "support/project.h"

namespace kestrana::cli {
namespace {

namespace fs = std::filesystem;

class OutputFiles : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    drawing_ = SewerSite({{0, 0, 50, 0}});
    // What `save` writes for it, which loading and saving keeps as it is.
    ASSERT_EQ(Run({"save", drawing_, "-o", Path("expected.dxf")}), 0)
        << err_.str();
    expected_ = Bytes(Path("expected.dxf"));
  }
  static mode_t Mode(const std::string& path) {
    struct stat st {};
    EXPECT_EQ(::stat(path.c_str(), &st), 0) << path;
    return st.st_mode & 07777;
  }
  std::string drawing_, expected_;
};

TEST_F(OutputFiles, ALinkIsFollowedAndTheFileKeepsItsPermissions) {
  const std::string real = Path("real.dxf");
  fs::copy_file(drawing_, real);
  ASSERT_EQ(::chmod(real.c_str(), 0640), 0);
  fs::create_directory(Path("links"));
  // A relative link, resolved from the link's own folder.
  fs::create_symlink("../real.dxf", Path("links/link.dxf"));

  ASSERT_EQ(Run({"save", Path("links/link.dxf")}), 0) << err_.str();
  EXPECT_TRUE(fs::is_symlink(Path("links/link.dxf")));
  EXPECT_EQ(Bytes(real), expected_);
  EXPECT_EQ(Mode(real), 0640u);
  // No temporary file is left beside the link or the file.
  EXPECT_EQ(std::distance(fs::directory_iterator(Path("links")),
                          fs::directory_iterator{}),
            1);

  // Pictures are saved the same way.
  { std::ofstream(Path("real.svg")) << "old"; }
  ASSERT_EQ(::chmod(Path("real.svg").c_str(), 0640), 0);
  fs::create_symlink(Path("real.svg"), Path("links/plan.svg"));
  ASSERT_EQ(Run({"render", drawing_, "-o", Path("links/plan.svg")}), 0)
      << err_.str();
  EXPECT_TRUE(fs::is_symlink(Path("links/plan.svg")));
  EXPECT_NE(Bytes(Path("real.svg")).find("<svg"), std::string::npos);
  EXPECT_EQ(Mode(Path("real.svg")), 0640u);

  // A link to a file still to be written makes that file.
  fs::create_symlink(Path("new.dxf"), Path("dangling.dxf"));
  ASSERT_EQ(Run({"save", drawing_, "-o", Path("dangling.dxf")}), 0)
      << err_.str();
  EXPECT_TRUE(fs::is_symlink(Path("dangling.dxf")));
  EXPECT_EQ(Bytes(Path("new.dxf")), expected_);
}

TEST_F(OutputFiles, AReadOnlyTargetOrAFolderIsRefusedAndLeftAlone) {
  const std::string locked = Path("locked.dxf");
  { std::ofstream(locked) << "keep me"; }
  ASSERT_EQ(::chmod(locked.c_str(), 0444), 0);
  EXPECT_EQ(Run({"save", drawing_, "-o", locked}), 1);
  EXPECT_NE(err_.str().find("read-only"), std::string::npos) << err_.str();
  EXPECT_EQ(Bytes(locked), "keep me");
  EXPECT_EQ(Mode(locked), 0444u);

  // The same through a link, and for a drawing replacing itself.
  fs::create_symlink(locked, Path("to-locked.dxf"));
  EXPECT_EQ(Run({"save", drawing_, "-o", Path("to-locked.dxf")}), 1);
  EXPECT_EQ(Bytes(locked), "keep me");
  const std::string before = Bytes(drawing_);
  ASSERT_EQ(::chmod(drawing_.c_str(), 0444), 0);
  EXPECT_EQ(Run({"network", "add", drawing_, "Water", "--type", "Pressure"}),
            1);
  EXPECT_EQ(Bytes(drawing_), before);

  fs::create_directory(Path("folder"));
  EXPECT_EQ(Run({"save", drawing_, "-o", Path("folder")}), 1);
  EXPECT_NE(err_.str().find("folder"), std::string::npos) << err_.str();
  EXPECT_TRUE(fs::is_directory(Path("folder")));
}

TEST_F(OutputFiles, APipeOrStandardOutputIsWrittenDirectly) {
  const std::string pipe = Path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  auto reader = std::async(std::launch::async, [&] { return Bytes(pipe); });
  ASSERT_EQ(Run({"save", drawing_, "-o", pipe}), 0) << err_.str();
  EXPECT_EQ(reader.get(), expected_);
  EXPECT_TRUE(fs::is_fifo(pipe));

  // Standard output holds the drawing alone; what the command says goes to
  // stderr.
  ASSERT_EQ(Run({"save", drawing_, "-o", "-"}), 0) << err_.str();
  EXPECT_EQ(out_.str(), expected_);
  EXPECT_NE(err_.str().find("saved -"), std::string::npos) << err_.str();
  const std::string before = Bytes(drawing_);
  ASSERT_EQ(Run({"network", "add", drawing_, "Water", "--type", "Pressure",
                 "--output=-"}),
            0)
      << err_.str();
  EXPECT_EQ(Bytes(drawing_), before);
  const std::string changed = Path("changed.dxf");
  { std::ofstream(changed, std::ios::binary) << out_.str(); }
  ASSERT_EQ(Run({"network", "list", changed}), 0) << err_.str();
  EXPECT_NE(out_.str().find("Water"), std::string::npos) << out_.str();

  // A style file goes the same way.
  ASSERT_EQ(Run({"style", "export", drawing_, "Standard", "-o", "-"}), 0)
      << err_.str();
  EXPECT_NE(out_.str().find("[gravity pipe]"), std::string::npos);
}

class InputFiles : public test::CommandTest {};

TEST_F(InputFiles, WhatIsNotARegularFileIsRefusedAtOnce) {
  // /dev/zero would never end; a pipe without a writer would wait for one.
  EXPECT_EQ(Run({"info", "/dev/zero"}), 1);
  EXPECT_NE(err_.str().find("'/dev/zero' is not a regular file"),
            std::string::npos)
      << err_.str();
  const std::string pipe = Path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(Run({"info", pipe}), 1);
  EXPECT_NE(err_.str().find("not a regular file"), std::string::npos);
  EXPECT_EQ(Run({"info", dir_.string()}), 1);
  EXPECT_NE(err_.str().find("is a folder"), std::string::npos) << err_.str();
  EXPECT_EQ(Run({"info", Path("missing.dxf")}), 1);
  EXPECT_NE(err_.str().find("cannot open the drawing"), std::string::npos);
}

TEST_F(InputFiles, FilesOfAnotherKindAreRefusedBeforeTheyAreRead) {
  const std::string drawing = Path("site.dxf");
  dxf::SaveDrawing(*test::SampleDrawing(), drawing);
  const std::string before = Bytes(drawing);
  const std::string text = Path("notes.txt");
  { std::ofstream(text) << "Meeting notes\nnothing to see\n"; }
  const std::string empty = Path("empty.dxf");
  { std::ofstream{empty}; }

  EXPECT_EQ(Run({"info", text}), 1);
  EXPECT_NE(err_.str().find("is not a DXF drawing"), std::string::npos)
      << err_.str();
  EXPECT_EQ(Run({"info", empty}), 1);
  EXPECT_NE(err_.str().find("is empty"), std::string::npos) << err_.str();
  // A drawing given where a surface or a style file belongs.
  EXPECT_EQ(
      Run({"ground", drawing, "--surface", drawing, "--networks", "Sewer"}), 1);
  EXPECT_NE(err_.str().find("is not a LandXML surface file"), std::string::npos)
      << err_.str();
  EXPECT_EQ(Run({"style", "create", drawing, "Mine", "--from", drawing}), 1);
  EXPECT_NE(err_.str().find("is not a view style file"), std::string::npos)
      << err_.str();
  EXPECT_EQ(Run({"profile", "style", "import", drawing, text}), 1);
  EXPECT_NE(err_.str().find("is not a profile style file"), std::string::npos)
      << err_.str();
  EXPECT_EQ(Bytes(drawing), before);
}

TEST_F(InputFiles, ReadingIsBoundedAndTheLimitIsSaid) {
  // A sparse file: large on paper, nothing on disk.
  const std::string huge = Path("huge.dxf");
  { std::ofstream(huge) << "0\nSECTION\n"; }
  fs::resize_file(huge, MaxInputBytes(InputKind::kDrawing) + 1);
  EXPECT_EQ(Run({"info", huge}), 1);
  EXPECT_NE(err_.str().find("at most 1024 MB"), std::string::npos)
      << err_.str();

  const std::string style = Path("big.kpsty");
  { std::ofstream(style) << "\"\"\n"; }
  fs::resize_file(style, MaxInputBytes(InputKind::kProfileStyle) + 1);
  try {
    ReadInput(style, InputKind::kProfileStyle);
    ADD_FAILURE() << "an oversized style file was read";
  } catch (const InvalidInputError& e) {
    EXPECT_NE(std::string(e.what()).find("at most 1 MB"), std::string::npos)
        << e.what();
  }
  // Within the limit the same start is read.
  fs::resize_file(style, 3);
  EXPECT_EQ(ReadInput(style, InputKind::kProfileStyle), "\"\"\n");
}

TEST(InputKinds, TheFirstBytesTellTheKind) {
  using K = InputKind;
  // ASCII DXF, after a byte-order mark or blank lines, and binary DXF.
  EXPECT_TRUE(LooksLike(K::kDrawing, "  0\r\nSECTION\r\n"));
  EXPECT_TRUE(LooksLike(K::kDrawing, "\xEF\xBB\xBF\n999\ncomment\n"));
  EXPECT_TRUE(
      LooksLike(K::kDrawing, std::string("AutoCAD Binary DXF\r\n\x1a\0", 22)));
  EXPECT_FALSE(LooksLike(K::kDrawing, "SECTION\n0\n"));
  EXPECT_FALSE(LooksLike(K::kDrawing, "0 SECTION\n"));
  EXPECT_FALSE(LooksLike(K::kDrawing, std::string("0\n\0\0\0", 5)));
  EXPECT_FALSE(LooksLike(K::kDrawing, "1234567\nX\n"));
  EXPECT_FALSE(LooksLike(K::kDrawing, "<?xml version=\"1.0\"?>"));

  EXPECT_TRUE(LooksLike(K::kSurface, "<?xml version=\"1.0\"?>\n<LandXML>"));
  EXPECT_TRUE(LooksLike(K::kSurface, "\n  <LandXML>"));
  EXPECT_FALSE(LooksLike(K::kSurface, "0\nSECTION\n"));

  EXPECT_TRUE(LooksLike(K::kViewStyle, "# comment\ntext style = \"S\"\n"));
  EXPECT_TRUE(LooksLike(K::kViewStyle, "[gravity pipe]\n"));
  EXPECT_FALSE(LooksLike(K::kViewStyle, "0\nSECTION\n"));
  EXPECT_TRUE(LooksLike(K::kProfileStyle, "\xEF\xBB\xBF\"\"\r\n\"Mine\"\r\n"));
  EXPECT_FALSE(LooksLike(K::kProfileStyle, "Mine\n"));
  // Nothing is no kind.
  for (K kind : {K::kDrawing, K::kSurface, K::kViewStyle, K::kProfileStyle})
    EXPECT_FALSE(LooksLike(kind, "\n\n"));
}

}  // namespace
}  // namespace kestrana::cli
