#include "render/picture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace kestrana::render {
namespace {

namespace fs = std::filesystem;

const char* kSvg =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"40\" height=\"20\" "
    "viewBox=\"0 0 4 2\"><rect width=\"4\" height=\"2\" "
    "fill=\"#ff0000\"/></svg>\n";

// Scratch files go to a folder of the test's own, which must be empty
// afterwards.
class PictureBytesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ =
        fs::temp_directory_path() /
        ("kestrana_picture_" +
         std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
         "_" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    const char* tmpdir = std::getenv("TMPDIR");
    if (tmpdir) saved_tmpdir_ = tmpdir;
    ::setenv("TMPDIR", dir_.c_str(), 1);
  }
  void TearDown() override {
    if (saved_tmpdir_)
      ::setenv("TMPDIR", saved_tmpdir_->c_str(), 1);
    else
      ::unsetenv("TMPDIR");
    fs::remove_all(dir_);
  }
  size_t FilesInDir() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(dir_), {}));
  }

  fs::path dir_;
  std::optional<std::string> saved_tmpdir_;
};

TEST(PictureFormat, ComesFromTheFileName) {
  EXPECT_EQ(FormatOf("plan.svg"), PictureFormat::kSvg);
  EXPECT_EQ(FormatOf("out/Plan.PNG"), PictureFormat::kPng);
  EXPECT_THROW(FormatOf("plan.pdf"), std::invalid_argument);
  EXPECT_THROW(FormatOf("plan"), std::invalid_argument);
}

TEST_F(PictureBytesTest, SvgIsTheSvgAsDrawn) {
  EXPECT_EQ(PictureBytes(kSvg, PictureFormat::kSvg), kSvg);
  EXPECT_EQ(FilesInDir(), 0u);
}

TEST_F(PictureBytesTest, PngComesFromRsvgConvertAtThePicturesSize) {
  const std::string png = PictureBytes(kSvg, PictureFormat::kPng);
  ASSERT_GE(png.size(), 24u);
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  // The header chunk holds width and height, big-endian.
  auto be32 = [&](size_t at) {
    return (static_cast<unsigned char>(png[at]) << 24) |
           (static_cast<unsigned char>(png[at + 1]) << 16) |
           (static_cast<unsigned char>(png[at + 2]) << 8) |
           static_cast<unsigned char>(png[at + 3]);
  };
  EXPECT_EQ(be32(16), 40u);
  EXPECT_EQ(be32(20), 20u);
  EXPECT_EQ(FilesInDir(), 0u);
}

TEST_F(PictureBytesTest, AFailedConversionSaysWhyAndLeavesNothingBehind) {
  try {
    PictureBytes(kSvg, PictureFormat::kPng, "kestrana-no-such-converter");
    FAIL() << "a missing converter went unnoticed";
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("librsvg2-bin"), std::string::npos);
  }
  EXPECT_THROW(PictureBytes(kSvg, PictureFormat::kPng, "false"),
               std::runtime_error);
  EXPECT_EQ(FilesInDir(), 0u);
}

}  // namespace
}  // namespace kestrana::render
