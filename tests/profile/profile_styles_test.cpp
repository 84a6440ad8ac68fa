#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/general.h"
#include "core/lists.h"
#include "core/project_defaults.h"
#include "core/project_record.h"
#include "core/project_setup.h"
#include "core/record.h"
#include "core/references.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile.h"
#include "profile/profile_style_file.h"
#include "profile/profile_style_record.h"
#include "profile/style_markers.h"

namespace kestrana::profile {
namespace {

std::vector<std::string> StandardItems(bool metric = true) {
  std::vector<std::string> items;
  for (const host::XItem& item : core::StandardProfileStyleRecord(metric))
    items.push_back(item.value.Text());
  return items;
}

// The text of a style file with the items given, one quoted item a line.
std::string FileText(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += "\"" + item + "\"\n";
  return text;
}

std::string ErrorOf(std::string_view text, int* line = nullptr) {
  try {
    ReadProfileStyleText(text);
  } catch (const ProfileStyleFileError& e) {
    if (line != nullptr) *line = e.line();
    return e.what();
  }
  return "";
}

TEST(ProfileStyleFile, WritingAndReadingGiveTheSameStyle) {
  for (bool metric : {true, false}) {
    const std::vector<std::string> items = StandardItems(metric);
    const std::string text = WriteProfileStyleText(items);
    EXPECT_EQ(text.substr(0, 24), "\"Kestrana\"\n\";;Standard\"\n");
    EXPECT_EQ(ReadProfileStyleText(text), items);
    EXPECT_EQ(ProfileStyleNameOf(items), "Standard");
    EXPECT_NO_THROW(CheckProfileStyleValues(items));
  }
}

TEST(ProfileStyleFile, ItemsTheDrawingKeepsNeverComeFromTheFile) {
  std::vector<std::string> items = StandardItems();
  items[0] = "Other";
  items[2] = "Marker";
  items[3] = ";RelatedToMain";
  items[4] = ";RelatedTo123";
  items[20] = ";Sewer";
  // Windows line ends, a byte-order mark and lines after the 21st.
  std::string text = "\xEF\xBB\xBF" + FileText(items) + "\"extra\"\nrubbish";
  for (size_t at;
       (at = text.find('\n')) != std::string::npos && text[at - 1] != '\r';)
    text.replace(at, 1, "\r\n");
  const std::vector<std::string> read = ReadProfileStyleText(text);
  EXPECT_EQ(read, StandardItems());
}

TEST(ProfileStyleFile, AWrongFieldCountNamesTheLineAndItem) {
  std::vector<std::string> items = StandardItems();
  items[11] = "2;Slope;1;2;0;1";  // 6 of 7 fields
  int line = 0;
  EXPECT_EQ(ErrorOf(FileText(items), &line),
            "line 12, item 11 (slope band): 6 fields where 7 are needed, "
            "separated by \";\"");
  EXPECT_EQ(line, 12);

  items = StandardItems();
  items[1] = "Standard";
  EXPECT_NE(ErrorOf(FileText(items), &line).find("item 1 (style name)"),
            std::string::npos);
  EXPECT_EQ(line, 2);
}

TEST(ProfileStyleFile, AnEmptyLineEndsTheItems) {
  // Before the sixth line: item 5 is then missing.
  std::vector<std::string> items = StandardItems();
  std::string text = FileText({items.begin(), items.begin() + 5}) + "\n" +
                     FileText({items.begin() + 5, items.end()});
  int line = 0;
  EXPECT_EQ(ErrorOf(text, &line),
            "item 5 (text) is missing: it belongs on line 6, but the items "
            "stop after 5 lines (the end of the file or an empty line ends "
            "them)");
  EXPECT_EQ(line, 6);
  EXPECT_NE(ErrorOf("").find("item 1 (style name) is missing"),
            std::string::npos);
}

TEST(ProfileStyleFile, ItemsStandBetweenDoubleQuotes) {
  std::vector<std::string> items = StandardItems();
  std::string text = FileText(items);
  text.replace(text.find("\"Standard;2;2.5;5\""), 18, "Standard;2;2.5;5");
  int line = 0;
  EXPECT_NE(ErrorOf(text, &line).find("line 6: an item stands between"),
            std::string::npos);
  EXPECT_EQ(line, 6);
  EXPECT_NE(ErrorOf("\"\n").find("line 1"), std::string::npos);
}

TEST(ProfileStyleFile, ValuesThatMustBeNumbersAreChecked) {
  auto error = [](int item, const std::string& text) {
    std::vector<std::string> items = StandardItems();
    items[item] = text;
    try {
      CheckProfileStyleValues(items);
    } catch (const InvalidInputError& e) {
      return std::string(e.what());
    }
    return std::string();
  };
  EXPECT_EQ(error(5, "Standard;0;2.5;5"),
            "item 5 (text), field 1 (data text height): 0 must be greater "
            "than 0");
  EXPECT_EQ(error(18, "9;Station;0;2;2;ten;0"),
            "item 18 (station band), field 5 (station interval): \"ten\" is "
            "not a number from -1000000000 to 1000000000");
  EXPECT_EQ(error(6, "1;0"),
            "item 6 (part splitting), field 1 (maximum part length): 0 must "
            "be greater than 0");
  EXPECT_EQ(error(6, "0;0"), "") << "no parts, no length";
  EXPECT_EQ(error(12, "x;Length;1;2;0"),
            "item 12 (length band), field 0 (position): \"x\" is not a number "
            "from -1000000000 to 1000000000");
  EXPECT_EQ(error(8, "1;1;1;9e999"),
            "item 8 (elevation grid), field 3 (elevation interval): \"9e999\" "
            "is not a number from -1000000000 to 1000000000");
  EXPECT_EQ(error(8, "1;1;1;2e9"),
            "item 8 (elevation grid), field 3 (elevation interval): \"2e9\" "
            "is not a number from -1000000000 to 1000000000");
  EXPECT_NE(error(7, "1000;100;1").find("holds 3 fields instead of 4"),
            std::string::npos);
}

TEST(ProfileStyleFile, WritingRefusesWhatAFileCannotHold) {
  std::vector<std::string> items = StandardItems();
  items[13] = "4;Mate\nrial;1;0";
  EXPECT_THROW(WriteProfileStyleText(items), InvalidInputError);
  EXPECT_THROW(WriteProfileStyleText({"Kestrana"}), InvalidInputError);
}

class ProfileStyles : public ::testing::Test {
 protected:
  void SetUp() override {
    markers_ = core::CreateProjectRecord(*doc_, "Metric");
    dir_ =
        std::filesystem::temp_directory_path() /
        ("kestrana_profile_styles_" +
         std::string(
             ::testing::UnitTest::GetInstance()->current_test_info()->name()));
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  std::string WriteFile(const std::string& text) {
    const std::string path = (dir_ / "style.txt").string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  std::vector<std::string> StyleIds() {
    return core::ListEntries(core::ReadProjectRecord(*doc_).Text(
        core::ProjectField::kProfileStyles));
  }
  std::string Create(const std::string& name) {
    std::vector<std::string> items = StandardItems();
    items[1] = ";;" + name;
    return Profile::CreateProfileStyle(
        *doc_, items, Profile::GetProfileStyleXdataTypeArray());
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      std::make_unique<memhost::MemDocument>();
  core::ProjectMarkers markers_;
  std::filesystem::path dir_;
};

TEST_F(ProfileStyles, ANewStyleIsAHiddenMarkerListedInTheProject) {
  doc_->GetLayers().Add("Locked").SetLock(true);
  const std::string id = Create("Deep");
  auto& marker = host::As<host::Point>(core::EntityFromIdText(*doc_, id));
  EXPECT_EQ(marker.Layer(), "0");
  EXPECT_FALSE(marker.Visible());
  EXPECT_EQ(marker.Coordinates(), (host::Point3{0, 0, 0}));
  EXPECT_TRUE(doc_->GetLayers().Find("Locked")->Lock());
  EXPECT_EQ(StyleIds(), (std::vector<std::string>{
                            core::IdText(markers_.profile_style), id}));
  EXPECT_EQ(Profile::GetProfileStyleOID(*doc_, "Deep"), id);
  const core::Record record = *Profile::GetProfileStyleSettings(*doc_, "Deep");
  EXPECT_EQ(record.Code(ProfileStyleItem::kApplicationName), 1001);
  EXPECT_EQ(record.Code(ProfileStyleItem::kProfileNetworks), 1000);
  EXPECT_EQ(record.Text(ProfileStyleItem::kText), "Standard;2;2.5;5");
  // Found by the exact name only.
  EXPECT_FALSE(Profile::GetProfileStyleSettings(*doc_, "deep"));
  EXPECT_THROW(Profile::CreateProfileStyle(*doc_, {"Kestrana"}, {1001, 1000}),
               std::invalid_argument);
}

TEST_F(ProfileStyles, DeletingAStyleLeavesTheOthers) {
  const std::string deep = Create("Deep");
  const std::string wide = Create("Wide");
  Profile::DeleteProfileStyle(*doc_, deep);
  EXPECT_EQ(StyleIds(), (std::vector<std::string>{
                            core::IdText(markers_.profile_style), wide}));
  EXPECT_THROW(core::EntityFromIdText(*doc_, deep), host::HostError);
  std::vector<std::string> names;
  for (const StyleMarker& style : ReadStyleMarkers(*doc_))
    names.push_back(style.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Standard", "Wide"}));
}

TEST_F(ProfileStyles, ImportGivesTheValuesOrNothing) {
  std::vector<std::string> items = StandardItems();
  items[1] = ";;Imported";
  EXPECT_EQ(Profile::ImportArProfileSettings(WriteFile(FileText(items))),
            items);
  items[9] = "1;1";
  EXPECT_EQ(Profile::ImportArProfileSettings(WriteFile(FileText(items))),
            std::nullopt);
  EXPECT_EQ(Profile::ImportArProfileSettings((dir_ / "none.txt").string()),
            std::nullopt);
  EXPECT_THROW(ReadProfileStyleFile((dir_ / "none.txt").string()),
               NotFoundError);
  try {
    ReadProfileStyleFile(WriteFile(FileText(items)));
    ADD_FAILURE() << "a broken file was read";
  } catch (const ProfileStyleFileError& e) {
    EXPECT_EQ(std::string(e.what()).rfind((dir_ / "style.txt").string(), 0), 0u)
        << "the message starts with the path: " << e.what();
    EXPECT_EQ(e.line(), 10);
  }
  EXPECT_THROW(ReadProfileStyleFile(
                   WriteFile(std::string(kMaxProfileStyleFileBytes + 1, '"'))),
               ProfileStyleFileError);
}

TEST(ProfileStyleSettings, OnlyTwentyOneValuesAreAStyle) {
  const std::vector<std::string> items = StandardItems();
  EXPECT_EQ(Profile::ValidateProfileStyleSettings(items), items);
  const std::vector<std::string> short_one(items.begin(), items.end() - 1);
  EXPECT_EQ(Profile::ValidateProfileStyleSettings(short_one),
            std::vector<std::string>(21));
}

}  // namespace
}  // namespace kestrana::profile
