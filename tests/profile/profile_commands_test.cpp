#include <gtest/gtest.h>

#include "commands/profile_data.h"
#include "commands/profile_lines.h"
#include "commands/profile_style.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/record.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile.h"
#include "profile/profile_style_file.h"
#include "profile/profile_style_record.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::commands {
namespace {

using core::General;

template <class F>
std::string ErrorOf(F&& f) {
  try {
    f();
  } catch (const Error& e) {
    return e.what();
  }
  return "";
}

// The line MH-A1 - MH-A2 - MH-A3 - OUT falling east (P-1 to P-3), a
// lateral P-4 from MH-B1 into MH-A2, and a water main W-1.
class ProfileCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    General::CreateNetworkDefintion(*doc_, "Sewer", core::kGravity);
    General::CreateNetworkDefintion(*doc_, "Water", core::kPressure);
    test::NetworkElements sewer(*doc_, "Sewer");
    auto& a1 = sewer.AddNode("MH-A1", 0, 0, 103, 101);
    auto& a2 = sewer.AddNode("MH-A2", 40, 0, 103, 100.6);
    auto& a3 = sewer.AddNode("MH-A3", 80, 0, 103, 100.2);
    auto& out = sewer.AddNode("OUT", 120, 0, 103, 99.8);
    auto& b1 = sewer.AddNode("MH-B1", 40, 30, 103, 101.5);
    sewer.AddPipe("P-1", {0, 0, 40, 0}, a1, a2,
                  {.start_invert = 101, .end_invert = 100.6});
    sewer.AddPipe("P-2", {80, 0, 40, 0}, a3, a2,
                  {.start_invert = 100.2, .end_invert = 100.6});
    sewer.AddPipe("P-3", {80, 0, 120, 0}, a3, out,
                  {.start_invert = 100.2, .end_invert = 99.8});
    sewer.AddPipe("P-4", {40, 30, 40, 0}, b1, a2,
                  {.start_invert = 101.5, .end_invert = 100.8});
    test::NetworkElements water(*doc_, "Water");
    water.AddPipeWithNodes("W-1", {0, 50, 120, 50});
  }

  ProfileDataResult Data(ProfileDataOptions options) {
    options.network = options.network.empty() ? "Sewer" : options.network;
    return ProfileData(*doc_, options);
  }
  std::vector<std::string> StyleNames() {
    std::vector<std::string> names;
    for (const auto& style : ProfileStyleList(*doc_, {}).styles)
      names.push_back(style.name);
    return names;
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
};

TEST_F(ProfileCommands, StylesAreListedWithTheirProfiles) {
  test::AddProfileBlock(*doc_, {.name = "Main", .network = "Sewer"});
  const ProfileStyleListResult list = ProfileStyleList(*doc_, {});
  ASSERT_EQ(list.styles.size(), 1u);
  EXPECT_EQ(list.styles[0].name, "Standard");
  ASSERT_EQ(list.styles[0].profiles.size(), 1u);
  EXPECT_EQ(list.styles[0].profiles[0].name, "Main");
  EXPECT_EQ(list.styles[0].profiles[0].network, "Sewer");
  const ProfileStyleShowResult shown = ProfileStyleShow(*doc_, {"Standard"});
  EXPECT_EQ(shown.items.size(), 21u);
  EXPECT_EQ(shown.items[5], "Standard;2;2.5;5");
  // Letter case makes no other name.
  EXPECT_EQ(ProfileStyleShow(*doc_, {"STANDARD"}).items, shown.items);
  EXPECT_EQ(ErrorOf([&] { ProfileStyleShow(*doc_, {"Standard 2"}); }),
            "there is no profile style named \"Standard 2\" (the drawing has "
            "\"Standard\")");
}

TEST_F(ProfileCommands, AnExportedStyleImportsAsTheSameStyle) {
  test::AddProfileBlock(*doc_, {.name = "Main", .network = "Sewer"});
  const std::string text = ProfileStyleExport(*doc_, {"Standard"}).text;
  std::vector<std::string> items = profile::ReadProfileStyleText(text);
  EXPECT_EQ(ErrorOf([&] { ProfileStyleImport(*doc_, {items}); }),
            "the drawing already has a profile style named \"Standard\"; "
            "import it under another name with --name");
  const ProfileStyleImportResult imported =
      ProfileStyleImport(*doc_, {items, "Copy"});
  EXPECT_EQ(imported.name, "Copy");
  EXPECT_EQ(StyleNames(), (std::vector<std::string>{"Standard", "Copy"}));
  const core::Record standard =
      *profile::Profile::GetProfileStyleSettings(*doc_, "Standard");
  const core::Record copy =
      *profile::Profile::GetProfileStyleSettings(*doc_, "Copy");
  for (int k = 5; k <= 19; ++k) EXPECT_EQ(copy.Text(k), standard.Text(k));
  EXPECT_EQ(copy.Text(profile::ProfileStyleItem::kCombinedLabel), ";;Copy");
  EXPECT_EQ(copy.Text(profile::ProfileStyleItem::kProfileNames), "")
      << "the original's profiles stay with it";
  EXPECT_EQ(ProfileStyleExport(*doc_, {"Copy"}).text,
            profile::WriteProfileStyleText([&] {
              items[1] = ";;Copy";
              return items;
            }()));
}

TEST_F(ProfileCommands, ImportRefusesBadNamesAndSettings) {
  std::vector<std::string> items = profile::ReadProfileStyleText(
      ProfileStyleExport(*doc_, {"Standard"}).text);
  EXPECT_NE(ErrorOf([&] {
              ProfileStyleImport(*doc_, {items, "A;B"});
            }).find("contains a character"),
            std::string::npos);
  EXPECT_NE(ErrorOf([&] {
              ProfileStyleImport(*doc_, {items, "Grid\n2"});
            }).find("control character"),
            std::string::npos);
  EXPECT_EQ(ErrorOf([&] {
              ProfileStyleImport(*doc_, {items, "STANDARD"});
            }),
            "the drawing already has a profile style named \"Standard\" "
            "(names that differ only in letter case are the same name); "
            "import it under another name with --name");
  items[1] = ";;";
  EXPECT_NE(ErrorOf([&] {
              ProfileStyleImport(*doc_, {items});
            }).find("names no style"),
            std::string::npos);
  items[9] = "1;1;0";
  EXPECT_EQ(ErrorOf([&] {
              ProfileStyleImport(*doc_, {items, "Grid"});
            }),
            "item 9 (station grid), field 2 (station interval): 0 must be "
            "greater than 0");
  EXPECT_EQ(StyleNames(), std::vector<std::string>{"Standard"});
}

TEST_F(ProfileCommands, AStyleInUseIsNotDeleted) {
  std::vector<std::string> items = profile::ReadProfileStyleText(
      ProfileStyleExport(*doc_, {"Standard"}).text);
  ProfileStyleImport(*doc_, {items, "Spare"});
  test::AddProfileBlock(*doc_, {.name = "Main", .network = "Sewer"});
  test::AddProfileBlock(*doc_, {.name = "Side", .network = "Sewer"});
  EXPECT_EQ(ErrorOf([&] { ProfileStyleDelete(*doc_, {"Standard"}); }),
            "the profile style \"Standard\" is in use by 2 profiles: \"Main\" "
            "(Sewer), \"Side\" (Sewer); delete them first");
  EXPECT_EQ(ProfileStyleDelete(*doc_, {"Spare"}).name, "Spare");
  EXPECT_EQ(StyleNames(), std::vector<std::string>{"Standard"});
  EXPECT_THROW(ProfileStyleDelete(*doc_, {"Spare"}), NotFoundError);
}

TEST_F(ProfileCommands, LinesOfAGravityNetwork) {
  const ProfileLinesResult lines = ProfileLines(*doc_, {"Sewer"});
  ASSERT_EQ(lines.lines.size(), 2u);
  EXPECT_EQ(lines.lines[0], (ProfileLine{"A", {"P-1", "P-2", "P-3"}}));
  EXPECT_EQ(lines.lines[1], (ProfileLine{"B", {"P-4"}}));
  EXPECT_THROW(ProfileLines(*doc_, {"Water"}), InvalidInputError);
  EXPECT_EQ(ErrorOf([&] { ProfileLines(*doc_, {"Storm"}); }),
            "the project has no network named \"Storm\" (it has \"Sewer\", "
            "\"Water\")");
}

TEST_F(ProfileCommands, DataOfARunStartsAtItsLowestInvert) {
  const ProfileDataResult result = Data({.pipes = {"P-2", "P-1", "P-3"}});
  EXPECT_EQ(result.labels, (std::vector<std::string>{"P-3", "P-2", "P-1"}));
  EXPECT_EQ(result.directions, (std::vector<std::string>{"1", "0", "1"}));
  EXPECT_EQ(result.start, (host::Point3{120, 0, 0}));
  EXPECT_EQ(result.style, "Standard");
  EXPECT_EQ(result.surface, "");
  EXPECT_EQ(result.station_pattern, "0+000.00");
  ASSERT_EQ(result.parts.size(), 1u);
  EXPECT_EQ(SeriesValues(result.parts[0][profile::Series::kNodeLabels]),
            (std::vector<std::string>{"OUT", "MH-A3", "MH-A2", "MH-A1"}));
  // The lateral P-4 meets the run at MH-A2, 80 along.
  EXPECT_EQ(SeriesValues(result.parts[0][profile::Series::kConnectedPipes]),
            (std::vector<std::string>{"80", "100.8", "0", "200", "200", "1"}));

  const ProfileDataResult from_west =
      Data({.line = "A", .start = host::Point3{-5, 0, 0}});
  EXPECT_EQ(from_west.labels, (std::vector<std::string>{"P-1", "P-2", "P-3"}));
  EXPECT_TRUE(doc_->GetSession().Empty());
}

TEST_F(ProfileCommands, DataRefusesRunsThatAreNotOne) {
  memhost::Session& session = doc_->GetSession();
  session.ClearLog();
  EXPECT_EQ(ErrorOf([&] {
              Data({.pipes = {"P-1", "P-2", "P-4"}});
            }),
            "The selected pipes don't represent a single continuous line!");
  EXPECT_EQ(session.Messages().size(), 1u);
  EXPECT_TRUE(session.Empty()) << "the unasked start point is taken back";
  EXPECT_EQ(ErrorOf([&] {
              Data({.pipes = {"P-1", "P-9"}});
            }),
            "the network \"Sewer\" has no pipe labelled \"P-9\"");
  EXPECT_EQ(ErrorOf([&] {
              Data({.pipes = {"P-1", "W-1"}});
            }),
            "the network \"Sewer\" has no pipe labelled \"W-1\" (a profile "
            "shows one network; \"W-1\" is a pipe of \"Water\")");
  EXPECT_EQ(ErrorOf([&] {
              Data({.pipes = {"P-1", "P-1"}});
            }),
            "the pipe \"P-1\" is named twice");
  EXPECT_NE(ErrorOf([&] { Data({.line = "Z"}); }).find("its lines: \"A\""),
            std::string::npos);
  EXPECT_THROW(Data({}), InvalidInputError);
  EXPECT_THROW(Data({.pipes = {"P-1"}, .style = "Deep"}), NotFoundError);
  EXPECT_TRUE(session.Empty());
}

TEST_F(ProfileCommands, DataFromASurfaceFile) {
  const std::string surface =
      "<?xml version=\"1.0\"?>\n<LandXML><Surfaces>\n"
      "<Surface name=\"EG\"><Definition surfType=\"TIN\">\n"
      "<Pnts><P id=\"1\">-10 -10 104</P><P id=\"2\">60 -10 104</P>"
      "<P id=\"3\">60 130 104</P><P id=\"4\">-10 130 104</P></Pnts>\n"
      "<Faces><F>1 2 3</F><F>1 3 4</F></Faces>\n"
      "</Definition></Surface></Surfaces></LandXML>\n";
  const ProfileDataResult result = Data({.pipes = {"P-1", "P-2", "P-3"},
                                         .surface_xml = surface,
                                         .surface_file = "eg.xml"});
  EXPECT_EQ(result.surface, "EG");
  EXPECT_EQ(SeriesValues(result.parts[0][profile::Series::kGroundAtNodes]),
            (std::vector<std::string>(4, "104")));
  EXPECT_EQ(ErrorOf([&] {
              Data({.pipes = {"P-1"},
                    .surface_xml = surface,
                    .surface_file = "eg.xml",
                    .surface_name = "FG"});
            }),
            "eg.xml has no surface named \"FG\" (it has \"EG\")");
  EXPECT_NE(ErrorOf([&] {
              Data({.pipes = {"P-1"},
                    .surface_xml = "<LandXML",
                    .surface_file = "eg.xml"});
            }).find("eg.xml"),
            std::string::npos);
  // A surface that ends short of the run's far end.
  std::string narrow = surface;
  for (size_t at; (at = narrow.find(" 130 ")) != std::string::npos;)
    narrow.replace(at, 5, " 10 ");
  EXPECT_NE(ErrorOf([&] {
              Data({.pipes = {"P-1", "P-2", "P-3"},
                    .surface_xml = narrow,
                    .surface_file = "eg.xml"});
            }).find("does not cover node OUT"),
            std::string::npos);
}

}  // namespace
}  // namespace kestrana::commands
