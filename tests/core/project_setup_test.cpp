#include "core/project_setup.h"

#include <gtest/gtest.h>

#include <set>

#include "core/general.h"
#include "core/lists.h"
#include "core/project_defaults.h"
#include "core/project_record.h"
#include "core/record.h"
#include "core/text.h"
#include "memhost/document.h"

namespace kestrana::core {
namespace {

using V = std::vector<std::string>;

Record MarkerRecord(host::Document& doc, host::ObjectId id) {
  host::Object& object = doc.ObjectIdToObject(id);
  auto& point = host::As<host::Point>(object);
  EXPECT_FALSE(point.Visible());
  EXPECT_EQ(point.Layer(), "0");
  EXPECT_EQ(point.Coordinates(), host::Point3{});
  return Record::ReadRequired(object);
}

class ProjectSetup : public ::testing::TestWithParam<std::string> {
 protected:
  bool Metric() const { return GetParam() == "Metric"; }
  memhost::MemDocument doc_;
};

TEST_P(ProjectSetup, ProjectRecordNamesItsMarkers) {
  ProjectMarkers markers = CreateProjectRecord(doc_, GetParam());
  Record project = ReadProjectRecord(doc_);
  ASSERT_EQ(project.Size(), kProjectRecordLength);
  for (int i = 1; i < project.Size(); ++i)
    EXPECT_EQ(project.Code(core::Field::At(i)), kProjectRecordCodes[i - 1])
        << i;
  // The view style and library markers are registered by their own
  // subsystems afterwards.
  EXPECT_EQ(project.Text(ProjectField::kViewStyles), "Standard;;");
  EXPECT_EQ(General::CheckEventsFlag(doc_), 1);
  EXPECT_EQ(project.Text(ProjectField::kNetworkNames), "");
  EXPECT_EQ(project.Text(ProjectField::kNetworkTypes), "");
  EXPECT_EQ(project.Text(ProjectField::kMaterialsLibrary), "");
  EXPECT_EQ(project.Text(ProjectField::kSizesLibrary), "");
  EXPECT_EQ(General::GetModelUnits(doc_), GetParam());
  EXPECT_LT(NumericValue(project.Text(ProjectField::kCrossingSettings)), 0);
  EXPECT_EQ(project.Text(ProjectField::kLowHighNetworks), "");
  EXPECT_EQ(project.Text(ProjectField::kProfileStyles),
            IdListEntry(markers.profile_style));
  EXPECT_EQ(General::GetKestranaProjectVersion(doc_), "2.00");
  EXPECT_TRUE(General::VerfiyVersionKestranaCompatibility(doc_));
  EXPECT_TRUE(doc_.GetSession().Messages().empty());

  EXPECT_EQ(doc_.ModelSpace().Count(), 1);
  EXPECT_EQ(MarkerRecord(doc_, markers.profile_style).Text(core::Field::At(2)),
            kProfileStylePoint);
}

TEST_P(ProjectSetup, NetworksBuildOnTheNewRecord) {
  CreateProjectRecord(doc_, GetParam());
  General::CreateNetworkDefintion(doc_, "Sewer", "Gravity");
  General::CreateNetworkDefintion(doc_, "Water", "Pressure");
  Record project = ReadProjectRecord(doc_);
  EXPECT_EQ(project.Text(ProjectField::kViewStyles), "Standard;11;");
  EXPECT_EQ(project.Text(ProjectField::kCrossingSettings), "-1;Water;Sewer");
  General::CreateStandardBlock(doc_, "Node");
  EXPECT_NE(doc_.GetBlocks().Find("Kestrana_Node"), nullptr);
}

TEST_P(ProjectSetup, StandardProfileStylePassesImportValidation) {
  ProjectMarkers markers = CreateProjectRecord(doc_, GetParam());
  Record style = MarkerRecord(doc_, markers.profile_style);
  ASSERT_EQ(style.Size(), 21);
  for (int i = 1; i < 21; ++i)
    EXPECT_EQ(style.Code(core::Field::At(i)), 1000) << i;
  EXPECT_EQ(style.Text(core::Field::At(1)), ";;Standard");
  EXPECT_EQ(Split(style.Text(core::Field::At(1))).size(), 3u);
  EXPECT_EQ(style.Text(core::Field::At(3)), "");
  EXPECT_EQ(style.Text(core::Field::At(4)), "");
  EXPECT_EQ(style.Text(core::Field::At(20)), "");
  const std::pair<int, size_t> fields[] = {
      {5, 4},  {6, 2},  {7, 4},  {8, 4},  {9, 3},  {10, 4}, {11, 7}, {12, 5},
      {13, 4}, {14, 4}, {15, 4}, {16, 4}, {17, 4}, {18, 7}, {19, 6}};
  for (const auto& [item, count] : fields)
    EXPECT_EQ(Split(style.Text(core::Field::At(item))).size(), count)
        << item << ": " << style.Text(core::Field::At(item));
  // Drawn bands have distinct positions, so none is dropped from the table.
  std::set<std::string> positions;
  int drawn = 0;
  for (int band = 10; band <= 19; ++band) {
    std::string position = Split(style.Text(core::Field::At(band)))[0];
    if (position == "999") continue;
    ++drawn;
    positions.insert(position);
  }
  EXPECT_EQ(positions.size(), static_cast<size_t>(drawn));
  EXPECT_GT(NumericValue(Split(style.Text(core::Field::At(7)))[3]),
            0);  // exaggeration
  V stations = Split(style.Text(core::Field::At(18)));
  EXPECT_EQ(FormatNumber(1234.5,
                         StationPattern(stations[2], stations[3], stations[4])),
            Metric() ? "1+234.50" : "12+34.50");
}

INSTANTIATE_TEST_SUITE_P(Units, ProjectSetup,
                         ::testing::Values("Metric", "US"));

TEST(ProjectSetupRefusals, ExistingProjectAndUnknownUnits) {
  memhost::MemDocument doc;
  EXPECT_THROW(CreateProjectRecord(doc, "metric"), std::invalid_argument);
  EXPECT_FALSE(FindProjectRecord(doc));
  EXPECT_EQ(doc.ModelSpace().Count(), 0);
  CreateProjectRecord(doc, "Metric");
  int entities = doc.ModelSpace().Count();
  host::XRecord before = ReadProjectRecord(doc).Items();
  try {
    CreateProjectRecord(doc, "US");
    FAIL() << "a second project was accepted";
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "This drawing already contains a Kestrana project!");
  }
  EXPECT_EQ(doc.ModelSpace().Count(), entities);
  EXPECT_EQ(ReadProjectRecord(doc).Items(), before);
}

TEST(ProjectSetupRefusals, LockedLayersStayLocked) {
  memhost::MemDocument doc;
  host::Layer& zero = doc.GetLayers().Item("0");
  zero.SetLock(true);
  CreateProjectRecord(doc, "Metric");
  EXPECT_TRUE(zero.Lock());
  EXPECT_EQ(ReadProjectRecord(doc).Text(ProjectField::kModelUnits), "Metric");
}

}  // namespace
}  // namespace kestrana::core
