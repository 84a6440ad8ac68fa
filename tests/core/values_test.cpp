#include "core/values.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"

namespace kestrana::core {
namespace {

TEST(CombinedLabel, ReadsAndWritesTheThreePieces) {
  const std::optional<CombinedLabel> pipe =
      CombinedLabel::Parse("Pipe;Sewer A;P-12");
  ASSERT_TRUE(pipe);
  EXPECT_EQ(pipe->kind, "Pipe");
  EXPECT_EQ(pipe->network, "Sewer A");
  EXPECT_EQ(pipe->label, "P-12");
  EXPECT_EQ(pipe->Format(), "Pipe;Sewer A;P-12");

  // Markers and annotations leave pieces empty; the separators stay.
  EXPECT_EQ((CombinedLabel{"", "", "Standard"}.Format()), ";;Standard");
  EXPECT_EQ((CombinedLabel{"", "Water", "N-1Node"}.Format()), ";Water;N-1Node");
  const std::optional<CombinedLabel> style = CombinedLabel::Parse(";;Standard");
  ASSERT_TRUE(style);
  EXPECT_EQ(style->kind, "");
  EXPECT_EQ(style->label, "Standard");
}

TEST(CombinedLabel, ShortTextsAreNotLabels) {
  EXPECT_FALSE(CombinedLabel::Parse("Pipe;Sewer"));
  EXPECT_FALSE(CombinedLabel::Parse(""));
  // Padded reading answers empty pieces instead.
  const CombinedLabel padded = CombinedLabel::ParsePadded("Pipe;Sewer");
  EXPECT_EQ(padded.network, "Sewer");
  EXPECT_EQ(padded.label, "");
  EXPECT_EQ(CombinedLabel::ParsePadded("").kind, "");

  // The network needs two pieces, the label three.
  EXPECT_EQ(CombinedLabel::NetworkOf("Pipe;Sewer"), "Sewer");
  EXPECT_THROW(CombinedLabel::NetworkOf("Pipe"), std::out_of_range);
  EXPECT_THROW(CombinedLabel::LabelOf("Pipe;Sewer"), std::out_of_range);
  EXPECT_EQ(CombinedLabel::LabelOf("Pipe;Sewer;P-1;extra"), "P-1");
}

TEST(ViewStylesField, KeepsActiveStyleVisibilityAndMarkers) {
  const ViewStylesField field =
      ViewStylesField::Parse("Plans;101;2130567256;2130567312;");
  EXPECT_EQ(field.active, "Plans");
  EXPECT_EQ(field.visibility, "101");
  EXPECT_EQ(field.markers,
            (std::vector<std::string>{"2130567256", "2130567312"}));
  EXPECT_EQ(field.Format(), "Plans;101;2130567256;2130567312;");

  // A new project: no networks, no markers yet.
  const ViewStylesField fresh = ViewStylesField::Parse("Standard;;");
  EXPECT_EQ(fresh.visibility, "");
  EXPECT_TRUE(fresh.markers.empty());
  EXPECT_EQ(fresh.Format(), "Standard;;");

  // Text after the last ";" is not a marker; a missing visibility is "".
  EXPECT_TRUE(ViewStylesField::Parse("Standard;1;77").markers.empty());
  EXPECT_EQ(ViewStylesField::Parse("Standard").Format(), "Standard;;");
  EXPECT_EQ(ViewStylesField::Parse("").Format(), ";;");
}

TEST(CrossingPoint, RoundTripsPlanCoordinates) {
  const CrossingPoint point{1250.125, -37.5};
  EXPECT_EQ(point.Format(), "1250.125;-37.5");
  const CrossingPoint back = CrossingPoint::Parse(point.Format());
  EXPECT_EQ(back.easting, 1250.125);
  EXPECT_EQ(back.northing, -37.5);
  EXPECT_EQ(back.ToPoint(), (host::Point3{1250.125, -37.5, 0}));

  // Damaged texts read as 0 where a number is missing.
  const CrossingPoint one = CrossingPoint::Parse("12.5");
  EXPECT_EQ(one.easting, 12.5);
  EXPECT_EQ(one.northing, 0);
  EXPECT_EQ(CrossingPoint::Parse("x;7abc").northing, 7);
}

TEST(CrossingSettingsField, ThresholdThenPairsOfNetworks) {
  const CrossingSettingsField field =
      CrossingSettingsField::Parse("0.5;Water;Sewer;Gas;Water");
  EXPECT_EQ(field.threshold, "0.5");
  ASSERT_EQ(field.pairs.size(), 2u);
  EXPECT_EQ(field.pairs[1].first, "Gas");
  EXPECT_EQ(field.pairs[1].second, "Water");
  EXPECT_EQ(field.Format(), "0.5;Water;Sewer;Gas;Water");

  EXPECT_EQ(CrossingSettingsField::Parse("-1").Format(), "-1");
  EXPECT_TRUE(CrossingSettingsField::Parse("").pairs.empty());
  // A name without its partner is dropped.
  EXPECT_EQ(CrossingSettingsField::Parse("2;Water;Sewer;Gas").Format(),
            "2;Water;Sewer");
}

TEST(Links, LabelAndIdListsChangeInStep) {
  Record pipe = Record::WithCodes(kPipeRecordCodes);
  AddLink(pipe, kCrossingLinks, "X-1", "2130567256");
  AddLink(pipe, kCrossingLinks, "X-12", "2130567312");
  EXPECT_EQ(pipe.Text(PipeField::kCrossingRefs),
            ";RelatedToX-1;RelatedToX-12");
  EXPECT_EQ(pipe.Text(PipeField::kCrossingOIDRefs),
            ";RelatedTo2130567256;RelatedTo2130567312");
  // The profile fields are not touched.
  EXPECT_EQ(pipe.Text(PipeField::kProfileRefs), "");

  // An entry goes when it ends with the value, so "X-1" leaves "X-12".
  DeleteLink(pipe, kCrossingLinks, "X-1", "2130567256");
  EXPECT_EQ(pipe.Text(PipeField::kCrossingRefs), ";RelatedToX-12");
  EXPECT_EQ(pipe.Text(PipeField::kCrossingOIDRefs), ";RelatedTo2130567312");
  DeleteLink(pipe, kCrossingLinks, "X-12", "2130567312");
  EXPECT_EQ(pipe.Text(PipeField::kCrossingRefs), "");
  DeleteLink(pipe, kCrossingLinks, "X-12", "2130567312");  // nothing left
  EXPECT_EQ(pipe.Text(PipeField::kCrossingOIDRefs), "");
}

}  // namespace
}  // namespace kestrana::core
