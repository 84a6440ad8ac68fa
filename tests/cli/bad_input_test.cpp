// What a careless or hostile command line must not do to a drawing: every
// case here is refused with a message that says why, and the drawing stays
// byte for byte as it was.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cli/command_fixture.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/project_record.h"
#include "core/user_names.h"
#include "dxf/io.h"
#include "memhost/document.h"
#include "profile/style_markers.h"
#include "viewstyle/project_styles.h"

namespace kestrana::cli {
namespace {

class BadInput : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    // Two sewer pipes P-1, P-2 from N-1 over N-2 to N-3.
    path_ = SewerSite({{0, 0, 50, 0}, {50, 0, 100, 0}});
  }
  // Runs `args`, expects exit `code` with `message` on stderr, and the
  // drawing unchanged.
  void Refused(const std::vector<std::string>& args, const std::string& message,
               int code) {
    std::string shown;
    for (const std::string& a : args) shown += a + " ";
    SCOPED_TRACE(shown);
    const std::string before = Bytes(path_);
    EXPECT_EQ(Run(args), code) << err_.str();
    EXPECT_NE(err_.str().find(message), std::string::npos) << err_.str();
    EXPECT_TRUE(Bytes(path_) == before);
  }
  std::vector<std::string> NodeSet(const std::string& option,
                                   const std::string& value) {
    return {"node",    "set", path_,  "--network", "Sewer",
            "--label", "N-2", option, value};
  }
  std::vector<std::string> PipeSet(const std::string& option,
                                   const std::string& value) {
    return {"pipe",    "set", path_,  "--network", "Sewer",
            "--label", "P-1", option, value};
  }

  // The Standard style as a style file, so style names are judged on a
  // file that would otherwise be taken.
  std::string StyleFile() {
    const std::string file = (dir_ / "standard.style").string();
    EXPECT_EQ(Run({"style", "export", path_, "Standard", "-o", file}), 0)
        << err_.str();
    return file;
  }

  std::string path_;
};

TEST_F(BadInput, NumbersADrawingCannotHoldAreRefusedWithTheirRange) {
  const std::string range = "from -1000000000 to 1000000000";
  for (const char* bad :
       {"nan", "NaN", "inf", "-inf", "infinity", "1e300", "-1e10", "1e999"}) {
    Refused(NodeSet("--sump", bad), range, 2);
    Refused(NodeSet("--ground", bad), range, 2);
    Refused(PipeSet("--start-invert", bad), range, 2);
    Refused(PipeSet("--end-invert", bad), range, 2);
    Refused({"copy", path_, "--network", "Sewer", "--pipes", "P-1", "--nodes",
             "N-1,N-2", "--by", std::string(bad) + ",0"},
            range, 2);
    Refused({"crossings", path_, "--threshold", bad}, range, 2);
    Refused(PipeSet("--size", bad), "--size takes a diameter", 2);
    Refused(PipeSet("--size", std::string("300x") + bad),
            "--size takes a diameter", 2);
  }
  // The edge of the range is still a number.
  EXPECT_EQ(Run(NodeSet("--ground", "1e9")), 0) << err_.str();
  EXPECT_EQ(Run(NodeSet("--sump", "-1000000000")), 0) << err_.str();
  EXPECT_EQ(Run({"info", path_}), 0) << err_.str();
}

TEST_F(BadInput, NamesThatWouldBreakLayersOrFilesAreRefused) {
  const std::string tab_in = "N\t1";
  const std::string style_file = StyleFile();
  for (const std::string& bad :
       {std::string("A\nB"), std::string("A\rB"), std::string(""),
        std::string(" Storm"), std::string("Storm "),
        std::string(core::kLongestName + 1, 'x'), std::string("A;B")}) {
    Refused({"network", "add", path_, bad, "--type", "Gravity"},
            "The network name", 1);
    Refused({"style", "create", path_, bad, "--from", style_file},
            "The view style name", 1);
    Refused({"node", "set", path_, "--network", "Sewer", "--label", "N-1",
             "--new-label", bad},
            "The label", 1);
  }
  for (const std::string& bad : {std::string(""), std::string("PVC "),
                                 std::string("P\nVC"), std::string("A;B")})
    Refused(PipeSet("--material", bad), "The material name", 1);
  // The longest name is taken, and so is a material with what networks
  // cannot hold.
  const std::string longest(core::kLongestName, 'n');
  ASSERT_EQ(Run({"network", "add", path_, longest, "--type", "Pressure"}), 0)
      << err_.str();
  ASSERT_EQ(Run(PipeSet("--material", "PVC-U, SN8")), 0) << err_.str();
  auto doc = dxf::LoadDrawing(path_);
  EXPECT_NE(doc->GetLayers().Find(longest + " - Network"), nullptr);
}

TEST_F(BadInput, NetworkAndStyleNamesAreOneNameWithoutLetterCase) {
  Refused({"network", "add", path_, "sewer", "--type", "Gravity"},
          "A network named \"Sewer\" already exists (names that differ only "
          "in letter case are the same name)",
          1);
  Refused({"style", "create", path_, "STANDARD", "--from", StyleFile()},
          "A view style named \"Standard\" already exists", 1);
  // A name typed in another case finds the network: nodes too, which the
  // layer and filter would match but an exact comparison would miss.
  ASSERT_EQ(Run({"node", "set", path_, "--network", "SEWER", "--label", "N-2",
                 "--ground", "12.5"}),
            0)
      << err_.str();
  EXPECT_NE(out_.str().find("of Sewer"), std::string::npos) << out_.str();
  ASSERT_EQ(Run({"style", "activate", path_, "standard"}), 0) << err_.str();
  EXPECT_EQ(out_.str().rfind("view style \"Standard\" is active", 0), 0u)
      << out_.str();
  auto doc = dxf::LoadDrawing(path_);
  EXPECT_EQ(viewstyle::StyleField::Read(*doc).active, "Standard");
  ASSERT_EQ(Run({"network", "delete", path_, "sEWER"}), 0) << err_.str();
  EXPECT_EQ(out_.str().rfind("deleted network \"Sewer\"", 0), 0u) << out_.str();
  doc = dxf::LoadDrawing(path_);
  EXPECT_FALSE(core::General::CheckNetworkExists(*doc, "Sewer"));
  EXPECT_EQ(core::General::GetNetworkSet(*doc, "Sewer", 0).Count(), 0);
}

TEST_F(BadInput, TheProjectsOwnObjectsAreNotErasedByHandle) {
  std::vector<std::pair<std::string, std::string>> markers;  // handle, what
  {
    auto doc = dxf::LoadDrawing(path_);
    const core::Record project = core::ReadProjectRecord(*doc);
    auto handle = [&](const std::string& id) {
      return doc->ObjectIdToObject(*core::ParseObjectId(id)).Handle();
    };
    markers.emplace_back(
        handle(project.Text(core::ProjectField::kMaterialsLibrary)),
        "materials library; the project cannot work without it");
    markers.emplace_back(
        handle(project.Text(core::ProjectField::kSizesLibrary)),
        "section-sizes library");
    markers.emplace_back(
        handle(viewstyle::StyleField::Read(*doc).markers.front()),
        "view style \"Standard\"");
    const profile::StyleMarker style = profile::ReadStyleMarkers(*doc).front();
    markers.emplace_back(style.marker->Handle(),
                         "profile style \"" + style.name +
                             "\"; remove the style with kestrana profile "
                             "style delete");
  }
  for (const auto& [handle, what] : markers) {
    Refused({"erase", path_, "--handles", handle}, what, 1);
    // Also among other objects: nothing of the list goes.
    Refused({"erase", path_, "--pipes", "P-1", "--network", "Sewer",
             "--handles", handle},
            "the handle " + handle + " is the marker of the", 1);
  }
}

TEST_F(BadInput, EditsThatWouldDoNothingOrLessThanAskedAreRefused) {
  Refused(
      {"copy", path_, "--network", "Sewer", "--pipes", "P-2", "--by", "0,-30"},
      "add N-2,N-3 to --nodes", 1);
  Refused({"copy", path_, "--network", "Sewer", "--pipes", "P-1,P-2", "--nodes",
           "N-1,N-3", "--by", "0,-30"},
          "add N-2 to --nodes", 1);
  Refused({"pipe", "reverse", path_, "--network", "Sewer", "--labels",
           "P-1,P-2,P-1"},
          "the pipe \"P-1\" is named twice", 2);
  ASSERT_EQ(Run({"pipe", "reverse", path_, "--network", "Sewer", "--labels",
                 "P-1,P-2"}),
            0)
      << err_.str();
  EXPECT_NE(out_.str().find("reversed 2 pipes"), std::string::npos)
      << out_.str();
}

TEST_F(BadInput, AFolderIsNotASurfaceOrStyleFile) {
  const std::string folder = dir_.string();
  Refused({"ground", path_, "--surface", folder, "--networks", "Sewer"},
          "'" + folder + "' is a folder, not a LandXML surface file", 1);
  Refused({"style", "create", path_, "Mine", "--from", folder},
          "'" + folder + "' is a folder, not a view style file", 1);
}

TEST_F(BadInput, AFailedDemoLeavesNoFolderBehind) {
  const std::filesystem::path out = dir_ / "new" / "demo";
  EXPECT_EQ(Run({"demo", out.string(), "--examples", Path("no-examples")}), 1);
  EXPECT_NE(err_.str().find("no-examples"), std::string::npos) << err_.str();
  EXPECT_FALSE(std::filesystem::exists(dir_ / "new"));
  // A folder that was there stays.
  std::filesystem::create_directories(out);
  EXPECT_EQ(Run({"demo", out.string(), "--examples", Path("no-examples")}), 1);
  EXPECT_TRUE(std::filesystem::is_directory(out));
  // A folder that cannot be made is named with the reason.
  EXPECT_EQ(Run({"demo", (std::filesystem::path(path_) / "demo").string()}), 1);
  EXPECT_NE(err_.str().find("cannot make the folder"), std::string::npos)
      << err_.str();
}

}  // namespace
}  // namespace kestrana::cli
