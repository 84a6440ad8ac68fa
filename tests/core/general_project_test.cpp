#include <gtest/gtest.h>

#include "core/general.h"
#include "core/project_record.h"
#include "core/record.h"
#include "memhost/document.h"
#include "support/project.h"

namespace kestrana::core {
namespace {

using memhost::LogEntry;
using memhost::MemDocument;

TEST(GetAeccAppString, ChoosesTheCivilIdentifierByRelease) {
  memhost::MemApplication app;
  const std::pair<const char*, const char*> cases[] = {
      {"16.1s (LMS Tech)", "AeccXUiLand.AeccApplication.2.0"},
      {"16.2", "AeccXUiLand.AeccApplication.3.0"},
      {"17.0s", "AeccXUiLand.AeccApplication.4.0"},
      {"17.1s (LMS Tech)", "AeccXUiLand.AeccApplication.5.0"},
      {"17.2", "AeccXUiLand.AeccApplication.6.0"},
      {"18.0s (LMS Tech)", ""},
      {"17.15", ""},
      {"R17.1", ""},
      {"", ""},
  };
  for (const auto& [version, expected] : cases) {
    app.SetVersion(version);
    EXPECT_EQ(General::GetAeccAppString(app), expected) << version;
  }
}

class ProjectRecordTest : public ::testing::Test {
 protected:
  std::unique_ptr<MemDocument> doc_ = test::NewProjectDocument();

  void SetVersion(const std::string& version) {
    Record record = ReadProjectRecord(*doc_);
    record.SetText(ProjectField::kProjectVersion, version);
    WriteProjectRecord(*doc_, record);
  }
  const std::vector<LogEntry>& Log() { return doc_->GetSession().Log(); }
};

TEST_F(ProjectRecordTest, ANewerProjectIsRefusedWithACriticalMessage) {
  SetVersion("2.10");
  EXPECT_FALSE(General::VerfiyVersionKestranaCompatibility(*doc_));
  ASSERT_EQ(Log().size(), 1u);
  EXPECT_EQ(Log()[0].text,
            "This project was created with a Kestrana version that is newer "
            "than the installed one!\nInstall Kestrana V2.10  or newer then "
            "re-open the project.\nRunning this project on the current "
            "version of Kestrana may permanently corrupt it.");
  EXPECT_EQ(Log()[0].icon, 16);
  EXPECT_EQ(Log()[0].title, "Kestrana");
}

TEST_F(ProjectRecordTest, OlderSameAndSlightlyNewerProjectsPass) {
  for (const char* version : {"2.09", "2.05", "2.00", "1.00", "2", ""}) {
    SetVersion(version);
    EXPECT_TRUE(General::VerfiyVersionKestranaCompatibility(*doc_)) << version;
  }
  EXPECT_TRUE(Log().empty());
  SetVersion("3");
  EXPECT_FALSE(General::VerfiyVersionKestranaCompatibility(*doc_));
}

TEST(ProjectVersion, ADrawingWithoutProjectIsToldSo) {
  MemDocument doc;
  EXPECT_EQ(General::GetKestranaProjectVersion(doc), "");
  EXPECT_TRUE(General::VerfiyVersionKestranaCompatibility(doc));
  std::vector<std::string> messages = doc.GetSession().Messages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0], "This drawing does not contain a Kestrana project!");
  EXPECT_EQ(messages[1], messages[0]);
  EXPECT_EQ(General::GetKestranaProgramVersion(), "2.00");
}

TEST_F(ProjectRecordTest, EventsFlagRoundTrip) {
  EXPECT_EQ(General::CheckEventsFlag(*doc_), 1);
  General::TurnEventsOff(*doc_);
  EXPECT_EQ(General::CheckEventsFlag(*doc_), 0);
  EXPECT_EQ(ReadProjectRecord(*doc_).Code(ProjectField::kEventsFlag), 1070);
  General::TurnEventsOn(*doc_);
  EXPECT_EQ(General::CheckEventsFlag(*doc_), 1);
}

TEST_F(ProjectRecordTest, EventsFlagKeepsTheGroupCodeAndLaterFields) {
  host::XRecord items = ReadProjectRecord(*doc_).Items();
  items[2] = {1000, host::XValue("1")};
  items.push_back({1000, host::XValue("add-on field")});
  doc_->ModelSpace().SetXData(items);
  EXPECT_EQ(General::CheckEventsFlag(*doc_), 1);
  General::TurnEventsOff(*doc_);
  Record record = ReadProjectRecord(*doc_);
  EXPECT_EQ(record.Code(ProjectField::kEventsFlag), 1000);
  EXPECT_EQ(record.Text(ProjectField::kEventsFlag), "0");
  EXPECT_EQ(General::CheckEventsFlag(*doc_), 0);
  ASSERT_EQ(record.Size(), 13);
  EXPECT_EQ(record.Text(core::Field::At(12)), "add-on field");
}

TEST(EventsFlag, WithoutProjectIsZeroAndSwitchingFails) {
  MemDocument doc;
  EXPECT_EQ(General::CheckEventsFlag(doc), 0);
  EXPECT_THROW(General::TurnEventsOff(doc), MissingRecordError);
  EXPECT_THROW(General::GetModelUnits(doc), MissingRecordError);
  EXPECT_TRUE(doc.GetSession().Messages().empty());
  // A damaged record answers 0 as well.
  doc.ModelSpace().SetXData({{1001, host::XValue("Kestrana")}});
  EXPECT_EQ(General::CheckEventsFlag(doc), 0);
}

TEST(ModelUnits, ReadsField7) {
  EXPECT_EQ(General::GetModelUnits(*test::NewProjectDocument("US")), "US");
  EXPECT_EQ(General::GetModelUnits(*test::NewProjectDocument()), "Metric");
}

}  // namespace
}  // namespace kestrana::core
