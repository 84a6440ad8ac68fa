// The rules of the profile sheet that need no network: datum, titles,
// station formats, band order, value shifts, section texts and the free
// places for annotations.
#include <gtest/gtest.h>

#include "core/record.h"
#include "core/text.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile.h"
#include "profile/profile_sheet.h"
#include "profile/profile_style_record.h"
#include "support/network_elements.h"

namespace kestrana::profile {
namespace {

TEST(ProfileDatum, AutomaticDatumLiesBelowTheLowestSump) {
  EXPECT_EQ(Profile::GetDatumElevation(true, 0, ";101.37;99.80", "Metric"), 97);
  EXPECT_EQ(Profile::GetDatumElevation(true, 0, ";14;12.5;13", "US"), 6);
  // Below zero it still rounds down.
  EXPECT_EQ(Profile::GetDatumElevation(true, 0, ";1.5", "Metric"), -1);
  EXPECT_EQ(Profile::GetDatumElevation(false, 95.5, ";101.37", "Metric"), 95.5);
}

TEST(ProfileTitle, PartsAreNumberedOnlyWhenThereAreSeveral) {
  EXPECT_EQ(Profile::ProfileTitle("Main", 0, 1), "%%uMain");
  EXPECT_EQ(Profile::ProfileTitle("Main", 1, 3), "%%uMain  (Part 2/3)");
}

TEST(StationFormat, OnePatternForGridBandAndPlan) {
  EXPECT_EQ(Profile::GetStationFormatString("0", "2", "2"), "0+000.00");
  EXPECT_EQ(core::FormatNumber(1234.5,
                               Profile::GetStationFormatString("0", "2", "2")),
            "1+234.50");
  EXPECT_EQ(Profile::GetStationFormatString("1", "1", "3"), "0+0000.00");
  EXPECT_EQ(Profile::GetStationFormatString("0", "1", "7"), "0.0");
  EXPECT_EQ(Profile::GetStationFormatString("3", "3", "2"), "0+00");
}

TEST(SectionText, ShapesAndCells) {
  EXPECT_EQ(Profile::GetSectionSizeStringForProfile("0", 200, 200, 1),
            "%%c200");
  EXPECT_EQ(Profile::GetSectionSizeStringForProfile("1", 1200, 800, 1),
            "1200X800");
  EXPECT_EQ(Profile::GetSectionSizeStringForProfile("0", 0.2, 0.2, 2),
            "2 %%c0.2");
  EXPECT_EQ(Profile::GetSectionSizeStringForProfile("1", 1200, 800, 3),
            "3 (1200X800)");
}

TEST(DataTextShift, ValuesMoveOffNodeLines) {
  const std::vector<double> nodes =
      Profile::GetProhibitedDistancesArray({"", "50", "50"});
  ASSERT_EQ(nodes, (std::vector<double>{0, 50, 100}));
  const double h = 2;
  // Half a text height right of a node: written 1.2 heights right of it.
  EXPECT_NEAR(50 + 0.5 * h -
                  Profile::GetDataTextShift(50 + 0.5 * h, nodes, h, false, h),
              50 + 1.2 * h, 1e-9);
  // Left of a node: 1.2 heights left of it.
  EXPECT_NEAR(100 - 0.25 * h -
                  Profile::GetDataTextShift(100 - 0.25 * h, nodes, h, false, h),
              100 - 1.2 * h, 1e-9);
  // On a node: no place unless the band allows it.
  EXPECT_EQ(Profile::GetDataTextShift(50, nodes, h, false, h), 999);
  EXPECT_EQ(Profile::GetDataTextShift(50, nodes, h, true, h), 0);
  // Clear of every node, and beyond the buffer: where it is.
  EXPECT_EQ(Profile::GetDataTextShift(75, nodes, h, false, h), 0);
  EXPECT_EQ(Profile::GetDataTextShift(50 + 1.5 * h, nodes, h, false, h), 0);
}

TEST(AnnotationPlace, NewBoxesKeepClearOfTheOthers) {
  const host::Point3 wanted{10, 10, 0};
  EXPECT_EQ(Profile::GetProfileCrossingAnnotationLocation(wanted, {}, 2, 8).y,
            10);
  std::vector<Box2> taken{{9, 9, 20, 13}, {9, 13, 20, 17}};
  for (int i = 0; i < 4; ++i) {
    const host::Point3 p =
        Profile::GetProfileCrossingAnnotationLocation(wanted, taken, 2, 8);
    const Box2 box{p.x, p.y, p.x + 8, p.y + 2};
    for (const Box2& other : taken) EXPECT_FALSE(box.Overlaps(other));
    taken.push_back(box);
  }
}

TEST(AnnotationPlace, BoxesKeepClearOfTheLinework) {
  // A pipe line runs right through the wanted place.
  const std::vector<Segment> pipe{{0, 11, 40, 11}};
  const host::Point3 p = Profile::GetProfileCrossingAnnotationLocation(
      {10, 10, 0}, {}, 2, 8, pipe);
  const Box2 box{p.x, p.y, p.x + 8, p.y + 2};
  EXPECT_FALSE(box.Crosses(pipe[0]));
  EXPECT_TRUE((Box2{10, 10, 18, 12}.Crosses(pipe[0])));
  // A diagonal through a corner region only.
  EXPECT_FALSE((Box2{0, 0, 1, 1}.Crosses({2, 0, 0, 2.5})));
  EXPECT_TRUE((Box2{0, 0, 1, 1}.Crosses({2, 0, 0, 1.5})));
}

TEST(ProfileGrid, ElevationLinesFitUnderTheHeadroom) {
  auto doc = test::NewFullProjectDocument("Metric");
  Profile::CreateProfileLayers(*doc);
  host::Block& block = doc->GetBlocks().Add({}, "Grid test");
  TextMeasure measure(*doc);
  Sheet sheet(*doc, block, "Standard", measure);
  TextSettings text{"Standard", 2, 2.5, 5};
  auto count = [&](const char* layer, host::EntityKind kind) {
    int n = 0;
    for (host::Entity* e : block.Entities())
      n += e->Layer() == layer && e->Kind() == kind;
    return n;
  };
  // Height 60 at VE 10 less the 1.5 h headroom of 37.5: two lines of 1 m.
  Profile::DrawProfileGrid(sheet, {0, 0, 0}, "1;1;0;1", "0;0;50",
                           "9;Station;0;2;2;50;0", text, 100, 60, 10, 96.5, 0);
  EXPECT_EQ(count("Profile - Grid", host::EntityKind::kLine), 2);
  std::vector<std::string> levels;
  for (host::Entity* e : block.Entities())
    if (e->Kind() == host::EntityKind::kText)
      levels.push_back(host::As<host::Text>(*e).TextString());
  EXPECT_EQ(levels, (std::vector<std::string>{"97.5", "98.5"}));
  for (host::Entity* e : block.Entities()) e->Delete();
  // An interval beyond the plot height: no line.
  Profile::DrawProfileGrid(sheet, {0, 0, 0}, "1;1;1;1000", "0;0;50",
                           "9;Station;0;2;2;50;0", text, 100, 60, 10, 96.5, 0);
  EXPECT_EQ(count("Profile - Grid", host::EntityKind::kLine), 0);
  // Station lines every 50 from the part's start station 30: at 50 and 100
  // (x 20 and 70), inside the frame that ends at x 100 - 25.
  Profile::DrawProfileGrid(sheet, {0, 0, 0}, "0;0;0;1", "1;1;50",
                           "9;Station;0;2;2;50;0", text, 100, 60, 10, 96.5, 30);
  std::vector<std::string> stations;
  for (host::Entity* e : block.Entities())
    if (e->Kind() == host::EntityKind::kText)
      stations.push_back(host::As<host::Text>(*e).TextString());
  EXPECT_EQ(stations, (std::vector<std::string>{"0+050", "0+100"}));
  EXPECT_EQ(count("Profile - Grid", host::EntityKind::kLine), 2);
}

class BandLayout : public ::testing::Test {
 protected:
  // The Standard style with the band positions given for items 10 to 19.
  core::Record Style(const std::vector<std::string>& positions,
                     const std::string& long_hidden_label = "") {
    core::Record style = *Profile::GetProfileStyleSettings(*doc_, "Standard");
    for (int item = 10; item <= 19; ++item) {
      std::vector<std::string> fields = core::Split(style.Text(item));
      fields[0] = positions[item - 10];
      if (fields[0] == "999" && !long_hidden_label.empty())
        fields[1] = long_hidden_label;
      std::string text;
      for (size_t i = 0; i < fields.size(); ++i)
        text += (i ? ";" : "") + fields[i];
      style.SetText(item, text);
    }
    return style;
  }
  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
};

TEST_F(BandLayout, OrderFollowsPositionsAndSkipsHiddenAndRepeatedBands) {
  const std::vector<std::string> hidden(10, "999");
  std::vector<std::string> positions = hidden;
  positions[0] = "1";
  positions[2] = "2";
  EXPECT_EQ(Profile::GetBandOrder(Style(positions)), (std::vector<int>{10, 12}));
  positions = hidden;
  positions[8] = "1";
  positions[3] = "5";
  positions[5] = "5";
  EXPECT_EQ(Profile::GetBandOrder(Style(positions)),
            (std::vector<int>{18, 13}));
  EXPECT_TRUE(Profile::GetBandOrder(Style(hidden)).empty());
}

TEST_F(BandLayout, LabelColumnFitsTheLongestDrawnLabel) {
  std::vector<std::string> positions(10, "999");
  positions[2] = "1";  // "Length"
  positions[4] = "2";  // "Ground Level"
  const core::Record style =
      Style(positions, "A much longer label of a hidden band");
  const TextSettings text = ReadTextSettings(style);
  const double longest = Profile::GetTextLengthOnDrawing(
      *doc_, "Ground Level", text.style, text.label_height);
  EXPECT_GT(longest, 0);
  EXPECT_NEAR(Profile::GetBandLabelsPartLength(*doc_, style),
              longest + 2 * text.label_height, 1e-9);
  // Measuring leaves nothing behind.
  for (host::Entity* e : doc_->ModelSpace().Entities())
    EXPECT_NE(e->Kind(), host::EntityKind::kText);
}

}  // namespace
}  // namespace kestrana::profile
