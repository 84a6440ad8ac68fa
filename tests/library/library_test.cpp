#include "library/library.h"

#include <gtest/gtest.h>

#include <set>

#include "core/general.h"
#include "core/lists.h"
#include "core/project_record.h"
#include "core/record.h"
#include "core/text.h"
#include "host/host.h"
#include "library/library_record.h"
#include "support/network_elements.h"

namespace kestrana::library {
namespace {

using core::TextTable;
using V = std::vector<std::string>;

TextTable Table(const std::vector<V>& rows) {
  TextTable table(static_cast<int>(rows.size()),
                  rows.empty() ? 0 : static_cast<int>(rows[0].size()));
  for (int r = 0; r < table.Rows(); ++r)
    for (int c = 0; c < table.Columns(); ++c) table(r, c) = rows[r][c];
  return table;
}

std::vector<V> Rows(const TextTable& table) {
  std::vector<V> rows;
  for (int r = 0; r < table.Rows(); ++r) {
    rows.emplace_back();
    for (int c = 0; c < table.Columns(); ++c)
      rows.back().push_back(table(r, c));
  }
  return rows;
}

class LibraryTest : public ::testing::Test {
 protected:
  void SetUp() override { doc_ = test::NewFullProjectDocument("Metric"); }

  core::Record Marker(core::ProjectField field) {
    core::Record project = core::ReadProjectRecord(*doc_);
    return core::Record::ReadRequired(
        doc_->ObjectIdToObject(*core::ParseObjectId(project.Text(field))));
  }
  void WriteMarker(core::ProjectField field, const core::Record& record) {
    core::Record project = core::ReadProjectRecord(*doc_);
    record.Write(
        doc_->ObjectIdToObject(*core::ParseObjectId(project.Text(field))));
  }
  void SetMaterials(const std::string& names, const std::string& counts) {
    core::Record record = Marker(core::ProjectField::kMaterialsLibrary);
    record.SetText(MaterialLibraryField::kNames, names);
    record.SetText(MaterialLibraryField::kCounts, counts);
    WriteMarker(core::ProjectField::kMaterialsLibrary, record);
  }
  void SetSizes(SizeListFields list, const std::string& sizes,
                const std::string& counts) {
    core::Record record = Marker(core::ProjectField::kSizesLibrary);
    record.SetText(list.sizes, sizes);
    record.SetText(list.counts, counts);
    WriteMarker(core::ProjectField::kSizesLibrary, record);
  }
  std::string SizeText(SizeLibraryField field) {
    return Marker(core::ProjectField::kSizesLibrary).Text(field);
  }
  void SetUnits(const std::string& units) {
    core::Record project = core::ReadProjectRecord(*doc_);
    project.SetText(core::ProjectField::kModelUnits, units);
    core::WriteProjectRecord(*doc_, project);
  }

  std::unique_ptr<memhost::MemDocument> doc_;
};

TEST_F(LibraryTest, MaterialChangesCountKnownNamesAndAppendNewOnes) {
  SetMaterials("PVC;Concrete;", "3;1;");
  TextTable materials = Library::GetMaterialsArray(*doc_);
  EXPECT_EQ(Rows(materials), (std::vector<V>{{"PVC", "3"}, {"Concrete", "1"}}));
  Library::UpdateMaterialUsage(*doc_, materials,
                               Table({{"Concrete", "-1"}, {"Steel", "2"}}));
  core::Record record = Marker(core::ProjectField::kMaterialsLibrary);
  EXPECT_EQ(record.Text(MaterialLibraryField::kNames), "PVC;Concrete;Steel;");
  EXPECT_EQ(record.Text(MaterialLibraryField::kCounts), "3;0;2;");

  // An edit that keeps the material nets to nothing; a count may go
  // negative and entries stay; names compare case-sensitively; a new name
  // met twice in one update is one entry.
  Library::UpdateMaterialUsage(*doc_, Library::GetMaterialsArray(*doc_),
                               Table({{"PVC", "-1"},
                                      {"PVC", "1"},
                                      {"Steel", "-3"},
                                      {"pvc", "1"},
                                      {"Clay", "1"},
                                      {"Clay", "1"},
                                      {"Brick", "abc"}}));
  record = Marker(core::ProjectField::kMaterialsLibrary);
  EXPECT_EQ(record.Text(MaterialLibraryField::kNames),
            "PVC;Concrete;Steel;pvc;Clay;Brick;");
  EXPECT_EQ(record.Text(MaterialLibraryField::kCounts), "3;0;-1;1;2;0;");
}

TEST_F(LibraryTest, SizesAreShownWithAreasAndSortedByArea) {
  SetSizes(kMetricBoxList, "1200x800;600x600;", "2;5;");
  EXPECT_EQ(Rows(Library::GetSizesArray(*doc_, kBox)),
            (std::vector<V>{{"600 x 600", "5", "360000"},
                            {"1200 x 800", "2", "960000"}}));
  SetSizes(kMetricCircularList, "300;200;1200;", "0;7;1;");
  EXPECT_EQ(Rows(Library::GetSizesArray(*doc_, kCircular)),
            (std::vector<V>{{"200", "7", "31415.92654"},
                            {"300", "0", "70685.834715"},
                            {"1200", "1", "1130973.35544"}}));
  // Other shapes and units select no list.
  EXPECT_EQ(Library::GetSizesArray(*doc_, "circular").Rows(), 0);
  SetUnits("Imperial");
  EXPECT_EQ(Library::GetSizesArray(*doc_, kCircular).Rows(), 0);
  EXPECT_EQ(Library::GetSizesArray(*doc_, kCircular).Columns(), 3);
}

TEST_F(LibraryTest, SortKeepsTheOrderOfEqualAreas) {
  TextTable sorted = Library::SortSizesArray(Table(
      {{"c", "0", "9"}, {"a", "1", "4"}, {"b", "2", "4"}, {"d", "3", "1"}}));
  EXPECT_EQ(
      Rows(sorted),
      (std::vector<V>{
          {"d", "3", "1"}, {"a", "1", "4"}, {"b", "2", "4"}, {"c", "0", "9"}}));
}

TEST_F(LibraryTest, SizeChangesGoToTheListsOfTheProjectUnits) {
  SetSizes(kMetricCircularList, "200;300;", "4;0;");
  SetSizes(kMetricBoxList, "1200x800;600x600;", "1;1;");
  const std::string us_circular = SizeText(SizeLibraryField::kUsCircular);
  const std::string us_counts = SizeText(SizeLibraryField::kUsCircularCounts);
  // A pipe edited from 200 to a 600 x 600 box, and a new 250 pipe.
  Library::UpdateSizeUsage(*doc_, Library::GetSizesArray(*doc_, kCircular),
                           Library::GetSizesArray(*doc_, kBox),
                           Table({{"200", kCircular, "-1"},
                                  {"600x600", kBox, "1"},
                                  {"250", kCircular, "1"},
                                  {"700x500", kBox, "1"}}));
  // The tables came sorted by area, and are written back in that order.
  EXPECT_EQ(SizeText(SizeLibraryField::kMetricCircular), "200;300;250;");
  EXPECT_EQ(SizeText(SizeLibraryField::kMetricCircularCounts), "3;0;1;");
  EXPECT_EQ(SizeText(SizeLibraryField::kMetricBox),
            "600x600;1200x800;700x500;");
  EXPECT_EQ(SizeText(SizeLibraryField::kMetricBoxCounts), "2;1;1;");
  EXPECT_EQ(SizeText(SizeLibraryField::kUsCircular), us_circular);
  EXPECT_EQ(SizeText(SizeLibraryField::kUsCircularCounts), us_counts);

  SetUnits("US");
  SetSizes(kUsBoxList, "4x3;2.5x2;", "0;0;");
  EXPECT_EQ(Rows(Library::GetSizesArray(*doc_, kBox))[0],
            (V{"2.5 x 2", "0", "5"}));
  Library::UpdateSizeUsage(*doc_, Library::GetSizesArray(*doc_, kCircular),
                           Library::GetSizesArray(*doc_, kBox),
                           Table({{"2.5x2", kBox, "2"}}));
  EXPECT_EQ(SizeText(SizeLibraryField::kUsBox), "2.5x2;4x3;");
  EXPECT_EQ(SizeText(SizeLibraryField::kUsBoxCounts), "2;0;");
  EXPECT_EQ(SizeText(SizeLibraryField::kMetricBoxCounts), "2;1;1;");
}

TEST_F(LibraryTest, DeletingANetworkTakesItsPipesOff) {
  core::General::CreateNetworkDefintion(*doc_, "Sewer", "Gravity");
  core::General::CreateNetworkDefintion(*doc_, "Storm", "Gravity");
  test::NetworkElements sewer(*doc_, "Sewer"), storm(*doc_, "Storm");
  SetMaterials("PVC;Concrete;Steel;", "5;4;1;");
  SetSizes(kMetricCircularList, "200;300;", "3;3;");
  SetSizes(kMetricBoxList, "1200x800;", "2;");
  sewer.AddPipeWithNodes("P-1", {0, 0, 10, 0});
  sewer.AddPipeWithNodes("P-2", {0, 5, 10, 5}, {.span = 300});
  sewer.AddPipeWithNodes("P-3", {0, 9, 10, 9},
                         {.shape = "SectionShape_Box",
                          .span = 1200,
                          .rise = 800,
                          .material = "Concrete"});
  storm.AddPipeWithNodes("P-1", {0, 20, 10, 20}, {.material = "Steel"});

  host::SelectionSet& set = core::General::GetNetworkSet(
      *doc_, "Sewer", core::network_set::kElementsAndBlocks);
  Library::UpdateMaterialLibraryForDeleteNetwork(*doc_, set);
  Library::UpdateSizeLibraryForDeleteNetwork(*doc_, set);
  core::Record materials = Marker(core::ProjectField::kMaterialsLibrary);
  EXPECT_EQ(materials.Text(MaterialLibraryField::kCounts), "3;3;1;");
  EXPECT_EQ(SizeText(SizeLibraryField::kMetricCircularCounts), "2;2;");
  EXPECT_EQ(SizeText(SizeLibraryField::kMetricBoxCounts), "1;");
}

TEST(PipeSize, KeysAsTheLibraryWritesThem) {
  auto doc = test::NewFullProjectDocument("US");
  core::General::CreateNetworkDefintion(*doc, "W", "Pressure");
  test::NetworkElements w(*doc, "W");
  auto key = [&](const test::PipeData& data) {
    return PipeSizeOf(core::Record::ReadRequired(
        w.AddPipeWithNodes("P", {0, 0, 1, 1}, data)));
  };
  EXPECT_EQ(key({}), (PipeSize{"8", kCircular}));
  EXPECT_EQ(key({.shape = "SectionShape_Box", .span = 4, .rise = 3}),
            (PipeSize{"4x3", kBox}));
  EXPECT_EQ(key({.shape = "SectionShape_Box", .span = 2.5, .rise = 2}),
            (PipeSize{"2.5x2", kBox}));
}

TEST(NewProjectLibraries, EveryEntryWithZeroUseInEveryList) {
  for (const char* units : {"Metric", "US"}) {
    auto doc = test::NewFullProjectDocument(units);
    core::Record project = core::ReadProjectRecord(*doc);
    auto marker = [&](core::ProjectField field) {
      host::Object& object =
          doc->ObjectIdToObject(*core::ParseObjectId(project.Text(field)));
      auto& point = host::As<host::Point>(object);
      EXPECT_FALSE(point.Visible());
      EXPECT_EQ(point.Layer(), "0");
      return core::Record::ReadRequired(object);
    };
    core::Record materials = marker(core::ProjectField::kMaterialsLibrary);
    EXPECT_EQ(materials.Text(MaterialLibraryField::kElementType),
              kMaterialLibraryPoint);
    TextTable table = Library::GetMaterialsArray(*doc);
    ASSERT_GT(table.Rows(), 1);
    EXPECT_EQ(table(0, 0), "PVC");  // what new pipes are made of
    std::set<std::string> names;
    for (int r = 0; r < table.Rows(); ++r) {
      names.insert(table(r, 0));
      EXPECT_EQ(table(r, 1), "0");
    }
    EXPECT_EQ(names.size(), static_cast<size_t>(table.Rows()));

    core::Record sizes = marker(core::ProjectField::kSizesLibrary);
    EXPECT_EQ(sizes.Size(), kSizeLibraryRecordLength);
    EXPECT_EQ(sizes.Text(SizeLibraryField::kElementType),
              kSectionSizeLibraryPoint);
    for (SizeListFields list :
         {kMetricCircularList, kMetricBoxList, kUsCircularList, kUsBoxList}) {
      V keys = core::ListEntries(sizes.Text(list.sizes));
      EXPECT_GE(keys.size(), 5u);
      EXPECT_EQ(core::ListEntries(sizes.Text(list.counts)),
                V(keys.size(), "0"));
    }
    // The size of a new pipe is listed, and areas come sorted.
    TextTable circular = Library::GetSizesArray(*doc, kCircular);
    bool listed = false;
    for (int r = 0; r < circular.Rows(); ++r) {
      listed |=
          circular(r, 0) == (std::string(units) == "Metric" ? "200" : "8");
      if (r > 0) {
        EXPECT_LE(core::NumericValue(circular(r - 1, 2)),
                  core::NumericValue(circular(r, 2)));
      }
    }
    EXPECT_TRUE(listed) << units;
    EXPECT_GE(Library::GetSizesArray(*doc, kBox).Rows(), 5);
  }
}

TEST(LibraryMarkers, AMissingMarkerIsTheHostsError) {
  auto doc = test::NewFullProjectDocument("Metric");
  core::Record project = core::ReadProjectRecord(*doc);
  project.SetText(core::ProjectField::kMaterialsLibrary, "123456");
  core::WriteProjectRecord(*doc, project);
  EXPECT_THROW(Library::GetMaterialsArray(*doc), host::HostError);
  EXPECT_THROW(Library::UpdateMaterialUsage(*doc, TextTable(0, 2),
                                            Table({{"PVC", "1"}})),
               host::HostError);
}

}  // namespace
}  // namespace kestrana::library
