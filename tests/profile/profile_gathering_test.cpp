#include <gtest/gtest.h>

#include <cmath>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/record.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile.h"
#include "profile/profile_style_record.h"
#include "support/network_elements.h"

namespace kestrana::profile {
namespace {

using core::General;
using Values = std::vector<std::string>;

Values Of(const PartData& part, Series series) {
  Values values = core::Split(part[series]);
  values.erase(values.begin());
  return values;
}

std::string Id(const host::Object& object) {
  return core::IdText(object.ObjectID());
}

// A plane z = 100 + 0.01 x + 0.02 y over (-10, -10) to (300, 300).
std::unique_ptr<memhost::MemSurface> Plane(const std::string& name) {
  return std::make_unique<memhost::MemSurface>(
      name,
      std::vector<host::Point3>{{-10, -10, 99.7},
                                {300, -10, 102.8},
                                {300, 300, 109},
                                {-10, 300, 105.9}},
      std::vector<std::array<int, 3>>{{0, 1, 2}, {0, 2, 3}});
}

double PlaneAt(double x, double y) { return 100 + 0.01 * x + 0.02 * y; }

// A sewer run N-1 (0,0) - N-2 (30,40) - N-3 (90,40) - N-4 (90,0); P-2 is
// drawn against the run, from N-3 over (60,80) to N-2. A box lateral L-1
// ends at N-2; water pipes cross P-2 at (45,60) and pass through N-3.
class Gathering : public ::testing::Test {
 protected:
  void SetUp() override {
    General::CreateNetworkDefintion(*doc_, "Sewer", core::kGravity);
    General::CreateNetworkDefintion(*doc_, "Water", core::kPressure);
    test::NetworkElements sewer(*doc_, "Sewer");
    auto& n1 = sewer.AddNode("N-1", 0, 0, 103, 100);
    auto& n2 = sewer.AddNode("N-2", 30, 40, 104, 99.4);
    auto& n3 = sewer.AddNode("N-3", 90, 40, 102.5, 99);
    auto& n4 = sewer.AddNode("N-4", 90, 0, 101, 98.6);
    auto& n9 = sewer.AddNode("N-9", 0, 40, 104, 100);
    p1_ = &sewer.AddPipe("P-1", {0, 0, 30, 40}, n1, n2,
                         {.start_invert = 100, .end_invert = 99.5});
    p2_ = &sewer.AddPipe("P-2", {90, 40, 60, 80, 30, 40}, n3, n2,
                         {.start_invert = 99, .end_invert = 99.4});
    p3_ = &sewer.AddPipe("P-3", {90, 40, 90, 0}, n3, n4,
                         {.start_invert = 99, .end_invert = 98.6});
    lateral_ = &sewer.AddPipe("L-1", {0, 40, 30, 40}, n9, n2,
                              {.shape = core::kSectionShapeBox,
                               .span = 1200,
                               .rise = 800,
                               .cells = 2,
                               .start_invert = 100,
                               .end_invert = 99.7});
    style_ = *Profile::GetProfileStyleSettings(*doc_, "Standard");
  }

  // Water pipes that cross the run, with their crossing annotations.
  void AddCrossings() {
    test::NetworkElements water(*doc_, "Water");
    auto& across = water.AddPipeWithNodes(
        "W-1", {45, 100, 45, -10}, {.start_invert = 101, .end_invert = 99.9});
    auto& at_node = water.AddPipeWithNodes(
        "W-2", {80, 30, 100, 50}, {.start_invert = 100, .end_invert = 100});
    host::SelectionSet& set =
        General::InitializeSelectionSet(*doc_, "Crossing");
    set.AddItems({&across, &at_node});
    crossing::Crossing::BuildCrossingPointsAfterImporting(*doc_, set,
                                                          core::kMetric);
  }
  SortedPipes Run() const {
    return {";RelatedToP-1;RelatedToP-2;RelatedToP-3",
            core::ReferenceEntry(Id(*p1_)) + core::ReferenceEntry(Id(*p2_)) +
                core::ReferenceEntry(Id(*p3_)),
            ";0;1;0"};
  }
  host::CivilDocument& Civil() { return doc_->App().Civil().Document(); }
  PartsData Gather(const SortedPipes& run, bool from_surface = false) {
    return Profile::GetProfilePartsDataArrays(*doc_, Civil(), "Sewer", style_,
                                              run, from_surface, "EG");
  }
  PartsData Gather(bool from_surface = false) {
    return Gather(Run(), from_surface);
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
  host::LwPolyline *p1_, *p2_, *p3_, *lateral_;
  core::Record style_{host::XRecord{{1001, "Kestrana"}}};
};

TEST_F(Gathering, EverySeriesOfARunDrawnInMixedDirections) {
  const PartsData parts = Gather();
  ASSERT_EQ(parts.size(), 1u);
  const PartData& part = parts[0];
  EXPECT_EQ(Of(part, Series::kPipeOIDs),
            (Values{Id(*p1_), Id(*p2_), Id(*p3_)}));
  EXPECT_EQ(Of(part, Series::kDirections), (Values{"0", "1", "0"}));
  EXPECT_EQ(Of(part, Series::kLengths), (Values{"50", "100", "40"}));
  // P-2 is walked from its end: its inverts swap.
  EXPECT_EQ(Of(part, Series::kInverts),
            (Values{"100", "99.5", "99.4", "99", "99", "98.6"}));
  EXPECT_EQ(Of(part, Series::kSections),
            (Values{"0", "200", "200", "1", "0", "200", "200", "1", "0", "200",
                    "200", "1"}));
  EXPECT_EQ(Of(part, Series::kSlopes), (Values{"0.01", "0.004", "0.01"}));
  EXPECT_EQ(Of(part, Series::kMaterials), (Values{"PVC", "PVC", "PVC"}));
  EXPECT_EQ(Of(part, Series::kNodeLabels),
            (Values{"N-1", "N-2", "N-3", "N-4"}));
  EXPECT_EQ(Of(part, Series::kGroundAtNodes),
            (Values{"103", "104", "102.5", "101"}));
  EXPECT_EQ(Of(part, Series::kSumps), (Values{"100", "99.4", "99", "98.6"}));
  // The lateral at N-2, 50 along; the run's own pipes are never listed.
  EXPECT_EQ(Of(part, Series::kConnectedPipes),
            (Values{"50", "99.7", "1", "1200", "800", "2"}));
  EXPECT_EQ(Of(part, Series::kInvertDepths),
            (Values{"3", "4.5", "4.6", "3.5", "3.5", "2.4"}));
  EXPECT_EQ(Of(part, Series::kCoverDepths),
            (Values{"2.8", "4.3", "4.4", "3.3", "3.3", "2.2"}));
  // Ground from the nodes: two pairs a pipe.
  EXPECT_EQ(Of(part, Series::kGroundLine),
            (Values{"0", "103", "50", "104", "50", "104", "150", "102.5", "150",
                    "102.5", "190", "101"}));
  EXPECT_EQ(Of(part, Series::kCrossings), Values{});
  EXPECT_EQ(Of(part, Series::kStations),
            (Values{"0", "0", "50", "50", "150", "150", "190", "190"}));
  // The standard style writes coordinates at the nodes.
  EXPECT_EQ(Of(part, Series::kCoordinates),
            (Values{"0", "E 0.00 N 0.00", "50", "E 30.00 N 40.00", "150",
                    "E 90.00 N 40.00", "190", "E 90.00 N 0.00"}));
  for (Series unasked :
       {Series::kInvertsAtStations, Series::kGroundAtStations,
        Series::kInvertDepthsAtStations, Series::kCoverDepthsAtStations})
    EXPECT_EQ(part[unasked], "");
  EXPECT_EQ(Of(part, Series::kPlanTitleDistances), Values{"95"});
}

TEST_F(Gathering, OnePipeIsOnePartWithTwoNodes) {
  const PartsData parts =
      Gather({";RelatedToP-2", core::ReferenceEntry(Id(*p2_)), ";0"});
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_EQ(Of(parts[0], Series::kLengths), Values{"100"});
  EXPECT_EQ(Of(parts[0], Series::kNodeLabels), (Values{"N-3", "N-2"}));
  EXPECT_EQ(Of(parts[0], Series::kGroundAtNodes), (Values{"102.5", "104"}));
  EXPECT_EQ(Of(parts[0], Series::kSumps), (Values{"99", "99.4"}));
  // Alone, P-1 and P-3 are pipes connected at its ends.
  EXPECT_EQ(
      Of(parts[0], Series::kConnectedPipes),
      (Values{"0", "99", "0", "200", "200", "1", "100", "99.5", "0", "200",
              "200", "1", "100", "99.7", "1", "1200", "800", "2"}));
}

TEST_F(Gathering, PartsSplitAtTheMaximumLengthShareTheirBoundaryNode) {
  style_.SetText(ProfileStyleItem::kPartSplitting, "1;150");
  style_.SetText(ProfileStyleItem::kStationBand, "9;Station;0;2;2;20;1");
  const PartsData parts = Gather();
  ASSERT_EQ(parts.size(), 2u);
  const PartData &first = parts[0], &second = parts[1];
  EXPECT_EQ(Of(first, Series::kPipeOIDs), (Values{Id(*p1_), Id(*p2_)}));
  EXPECT_EQ(Of(first, Series::kDirections), (Values{"0", "1"}));
  EXPECT_EQ(Of(second, Series::kPipeOIDs), Values{Id(*p3_)});
  EXPECT_EQ(Of(second, Series::kDirections), Values{"0"});
  EXPECT_EQ(Of(first, Series::kNodeLabels), (Values{"N-1", "N-2", "N-3"}));
  EXPECT_EQ(Of(second, Series::kNodeLabels), (Values{"N-3", "N-4"}));
  // N-3 joins P-2 and P-3, both of the profile: no connected pipe there in
  // either part.
  EXPECT_EQ(Of(first, Series::kConnectedPipes),
            (Values{"50", "99.7", "1", "1200", "800", "2"}));
  EXPECT_EQ(Of(second, Series::kConnectedPipes), Values{});
  // Distances start again in every part; stations go on.
  EXPECT_EQ(Of(second, Series::kGroundLine),
            (Values{"0", "102.5", "40", "101"}));
  EXPECT_EQ(Of(second, Series::kStations),
            (Values{"0", "150", "10", "160", "30", "180", "40", "190"}));
  EXPECT_EQ(Of(first, Series::kStations),
            (Values{"0",   "0",   "20",  "20",  "40",  "40",  "50",
                    "50",  "60",  "60",  "80",  "80",  "100", "100",
                    "120", "120", "140", "140", "150", "150"}));
  // Values at the stations between the nodes, from the levels at the ends.
  EXPECT_EQ(Of(first, Series::kInvertsAtStations),
            (Values{"20", "99.8", "40", "99.6", "60", "99.36", "80", "99.28",
                    "100", "99.2", "120", "99.12", "140", "99.04"}));
  EXPECT_EQ(Of(first, Series::kGroundAtStations).at(1), "103.4");
  EXPECT_EQ(Of(first, Series::kGroundAtStations).at(5), "103.85");
  EXPECT_EQ(Of(first, Series::kInvertDepthsAtStations).at(1), "3.6");
  EXPECT_EQ(Of(first, Series::kCoverDepthsAtStations).at(1), "3.4");
  EXPECT_EQ(Of(second, Series::kInvertsAtStations),
            (Values{"10", "98.9", "30", "98.7"}));
  EXPECT_EQ(Of(first, Series::kPlanTitleDistances), Values{"75"});
  EXPECT_EQ(Of(second, Series::kPlanTitleDistances), Values{"170"});
}

TEST_F(Gathering, CrossingsAreSortedByDistanceAndMeetNodesExactly) {
  AddCrossings();
  const PartData part = Gather()[0];
  const Values crossings = Of(part, Series::kCrossings);
  // W-1 crosses P-2 25 along it from N-2, 40 of its 110 from its start;
  // W-2 passes through N-3, where P-2 and P-3 meet.
  EXPECT_EQ(crossings, (Values{"75", "100.6", "0", "200", "200", "1",  //
                               "150", "100", "0", "200", "200", "1",   //
                               "150", "100", "0", "200", "200", "1"}));
}

TEST_F(Gathering, GroundFromASurfaceIsSampledEveryThreeMetres) {
  doc_->App().Civil().Document().Surfaces().Add(Plane("EG"));
  style_.SetText(ProfileStyleItem::kStationBand, "9;Station;0;2;2;20;1");
  const PartData part = Gather(true)[0];
  const Values ground = Of(part, Series::kGroundLine);
  // P-1: 0, 3, ... 48 and its end at 50; P-2: 0 ... 99 (a whole multiple
  // of 3 is 99, then its end at 100); P-3: 0 ... 39 and 40.
  ASSERT_EQ(ground.size(), 2u * (18 + 35 + 15));
  EXPECT_EQ(ground[0], "0");
  EXPECT_EQ(ground[1], core::GeneralText(PlaneAt(0, 0)));
  EXPECT_EQ(ground[2], "3");
  EXPECT_EQ(ground[3],
            core::GeneralText(core::RoundHalfEven(PlaneAt(1.8, 2.4), 5)));
  // P-2 is walked from N-2: 3 along it is 3 towards (60,80).
  EXPECT_EQ(ground[36], "50");
  EXPECT_EQ(ground[38], "53");
  EXPECT_EQ(ground[39],
            core::GeneralText(core::RoundHalfEven(PlaneAt(31.8, 42.4), 5)));
  EXPECT_EQ(ground[34], "50");
  EXPECT_EQ(ground.back(), core::GeneralText(PlaneAt(90, 0)));
  // Node grounds and depths come from the surface too.
  EXPECT_EQ(Of(part, Series::kGroundAtNodes),
            (Values{"100", "101.1", "101.7", "100.9"}));
  EXPECT_EQ(Of(part, Series::kInvertDepths).at(1), "1.6");
  // At stations the surface is read at the station's place.
  EXPECT_EQ(Of(part, Series::kGroundAtStations).at(1),
            core::GeneralText(core::RoundHalfEven(PlaneAt(12, 16), 5)));
}

TEST_F(Gathering, APlaceOffTheSurfaceIsNamed) {
  doc_->App().Civil().Document().Surfaces().Add(
      std::make_unique<memhost::MemSurface>(
          "EG",
          std::vector<host::Point3>{
              {-10, -10, 100}, {60, -10, 100}, {60, 60, 100}, {-10, 60, 100}},
          std::vector<std::array<int, 3>>{{0, 1, 2}, {0, 2, 3}}));
  try {
    Gather(true);
    ADD_FAILURE() << "a node off the surface was gathered";
  } catch (const InvalidInputError& e) {
    EXPECT_EQ(std::string(e.what()),
              "the surface \"EG\" does not cover node N-3 at (90.00, 40.00)");
  }
  EXPECT_THROW(Profile::GetProfilePartsDataArrays(*doc_, Civil(), "Sewer",
                                                  style_, Run(), true, "Other"),
               NotFoundError);
}

TEST_F(Gathering, CoordinatesAtVerticesAndStations) {
  style_.SetText(ProfileStyleItem::kCoordinateBand, "7;Coordinates;0;1;0;1");
  style_.SetText(ProfileStyleItem::kStationBand, "999;Station;0;2;2;75;0");
  const Values coordinates = Of(Gather()[0], Series::kCoordinates);
  // P-2's vertex (60,80) 50 along it; the station 75 on P-2 lies 25 along
  // it from N-2, the station 150 on N-3 is not a station of any pipe.
  EXPECT_EQ(coordinates,
            (Values{"75", "E 45.00 N 60.00", "100", "E 60.00 N 80.00"}));
}

TEST_F(Gathering, StyleSettingsThatCannotBeGatheredWithAreRefused) {
  style_.SetText(ProfileStyleItem::kStationBand, "9;Station;0;2;2;0;1");
  EXPECT_THROW(Gather(), InvalidInputError);
  style_.SetText(ProfileStyleItem::kStationBand, "9;Station;0;2;2;0;0");
  style_.SetText(ProfileStyleItem::kPartSplitting, "1;0");
  EXPECT_THROW(Gather(), InvalidInputError);
  EXPECT_THROW(Gather({"", "", ""}), InvalidInputError);
}

TEST(GatheringHelpers, PartsAndTheirDirectionsStayInStep) {
  const std::vector<std::string> parts{";1;2", ";3", ";4;5;6"};
  EXPECT_EQ(Profile::GetSplitPipesDirectionArray(";0;1;1;0;0;1", parts),
            (std::vector<std::string>{";0;1", ";1", ";0;0;1"}));
  EXPECT_EQ(Profile::GetConnectedOtherPartsPipes(1, parts), ";1;2;4;5;6");
  EXPECT_EQ(Profile::IncludedDistanceInConnectedPipesString(
                "99.5;0;200;200;1;98;1;1200;800;2;", 12.5),
            ";12.5;99.5;0;200;200;1;12.5;98;1;1200;800;2");
  EXPECT_EQ(Profile::SortCrossingPipesString(
                ";30;1;0;2;2;1;10;2;0;3;3;1;30;3;1;4;4;2"),
            ";10;2;0;3;3;1;30;1;0;2;2;1;30;3;1;4;4;2");
}

// Long parts carry the profile name every 300 m (1000 ft); the multiples
// count from the profile's start.
TEST(GatheringHelpers, PlanTitlesAlongLongParts) {
  for (const char* units : {"Metric", "US"}) {
    auto doc = test::NewFullProjectDocument(units);
    General::CreateNetworkDefintion(*doc, "Sewer", core::kGravity);
    test::NetworkElements sewer(*doc, "Sewer");
    const double long_one = std::string(units) == "US" ? 2500 : 700;
    auto& a = sewer.AddPipeWithNodes("P-1", {0, 0, 500, 0});
    auto& b = sewer.AddPipeWithNodes("P-2", {500, 0, 500 + long_one, 0});
    core::Record style = *Profile::GetProfileStyleSettings(*doc, "Standard");
    style.SetText(ProfileStyleItem::kPartSplitting, "1;600");
    const SortedPipes run{
        "", core::ReferenceEntry(Id(a)) + core::ReferenceEntry(Id(b)), ";0;0"};
    const PartsData parts = Profile::GetProfilePartsDataArrays(
        *doc, doc->App().Civil().Document(), "Sewer", style, run, false, "");
    ASSERT_EQ(parts.size(), 2u) << units;
    EXPECT_EQ(Of(parts[0], Series::kPlanTitleDistances), Values{"250"});
    EXPECT_EQ(Of(parts[1], Series::kPlanTitleDistances),
              std::string(units) == "US" ? (Values{"1000", "2000"})
                                         : (Values{"600", "900"}));
  }
}

TEST(GatheringUS, FeetAndInchesWithGroundEveryTenFeet) {
  auto doc = test::NewFullProjectDocument("US");
  General::CreateNetworkDefintion(*doc, "Sewer", core::kGravity);
  test::NetworkElements sewer(*doc, "Sewer");
  auto& round = sewer.AddPipeWithNodes("P-1", {0, 0, 25, 0},
                                       {.start_invert = 90, .end_invert = 89.5},
                                       100, 99.5);
  auto& box = sewer.AddPipeWithNodes("P-2", {0, 10, 30, 10},
                                     {.shape = core::kSectionShapeBox,
                                      .span = 4,
                                      .rise = 3,
                                      .start_invert = 90,
                                      .end_invert = 90},
                                     100, 100);
  doc->App().Civil().Document().Surfaces().Add(Plane("EG"));
  const core::Record style =
      *Profile::GetProfileStyleSettings(*doc, "Standard");
  auto gather = [&](host::LwPolyline& pipe) {
    return Profile::GetProfilePartsDataArrays(
        *doc, doc->App().Civil().Document(), "Sewer", style,
        {"", core::ReferenceEntry(Id(pipe)), ";0"}, true, "EG")[0];
  };
  const PartData part = gather(round);
  EXPECT_EQ(Of(part, Series::kSections), (Values{"0", "8", "8", "1"}));
  // 8 in is 0.6667 ft of cover lost.
  EXPECT_EQ(Of(part, Series::kCoverDepths)[0],
            core::GeneralText(core::RoundHalfEven(100 - 90 - 8.0 / 12, 7)));
  EXPECT_EQ(Of(part, Series::kGroundLine),
            (Values{"0", "100", "10", "100.1", "20", "100.2", "25", "100.25"}));
  // A box's rise is in feet already.
  EXPECT_EQ(Of(gather(box), Series::kCoverDepths)[0],
            core::GeneralText(core::RoundHalfEven(PlaneAt(0, 10) - 90 - 3, 7)));
}

}  // namespace
}  // namespace kestrana::profile
