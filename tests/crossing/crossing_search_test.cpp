#include <gtest/gtest.h>

#include "core/general.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "crossing/crossing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/pipe_fixture.h"
#include "support/project.h"

namespace kestrana::crossing {
namespace {

using core::General;
using test::AddPipe;
using test::PipeSpec;
using types::CrossPoint;

class CrossingSearch : public ::testing::Test {
 protected:
  void Use(const std::string& units) { doc_ = test::NewProjectDocument(units); }

  host::LwPolyline& Pipe(const test::FixtureNetwork& network, PipeSpec wanted) {
    return AddPipe(*doc_, network, wanted);
  }
  host::SelectionSet& Set(std::vector<host::Entity*> pipes) {
    host::SelectionSet& set = General::InitializeSelectionSet(*doc_, "Test");
    set.AddItems(pipes);
    return set;
  }
  std::vector<CrossPoint> Search(std::vector<host::Entity*> pipes) {
    return Crossing::GetCrossingPointsArrayForSetOfPipes(*doc_, Set(pipes));
  }

  std::unique_ptr<memhost::MemDocument> doc_ = test::NewProjectDocument();
  test::FixtureNetwork sewer_ =
      test::AddFixtureNetwork(*doc_, "Sewer", "Gravity");
  test::FixtureNetwork water_ =
      test::AddFixtureNetwork(*doc_, "Water", "Pressure");
};

TEST_F(CrossingSearch, InvertsAreInterpolatedAndClearanceIsMeasuredToTheTop) {
  auto& sewer = Pipe(sewer_, {.label = "P-1",
                              .xy = {0, 0, 100, 0},
                              .start_invert = 100,
                              .end_invert = 99,
                              .span = 300,
                              .rise = 300});
  auto& water = Pipe(water_, {.label = "W-1",
                              .xy = {25, -50, 25, 50},
                              .start_invert = 98,
                              .end_invert = 98,
                              .span = 300,
                              .rise = 300});
  std::vector<CrossPoint> points = Search({&sewer});
  ASSERT_EQ(points.size(), 1u);
  const CrossPoint& p = points[0];
  EXPECT_EQ(p.Pipe1Net, "Sewer");
  EXPECT_EQ(p.Pipe1Label, "P-1");
  EXPECT_EQ(p.Pipe2Net, "Water");
  EXPECT_EQ(p.Pipe2Label, "W-1");
  EXPECT_EQ(p.Pipe1OID, std::to_string(sewer.ObjectID()));
  EXPECT_EQ(p.Pipe2OID, std::to_string(water.ObjectID()));
  EXPECT_DOUBLE_EQ(p.Pipe1Invert, 99.75);
  EXPECT_DOUBLE_EQ(p.Pipe2Invert, 98.0);
  EXPECT_NEAR(p.Clearance, 1.45, 1e-12);
  EXPECT_DOUBLE_EQ(p.Pipe1Rise, 0.3);
  EXPECT_DOUBLE_EQ(p.Pipe2Rise, 0.3);
  EXPECT_EQ(p.Pipe1SizeString, "%%c300");
  EXPECT_DOUBLE_EQ(p.Easting, 25);
  EXPECT_DOUBLE_EQ(p.Northing, 0);
  EXPECT_FALSE(p.Duplicated);

  // Seen from the water pipe the roles swap: the sewer is now pipe 2.
  std::vector<CrossPoint> swapped = Search({&water});
  ASSERT_EQ(swapped.size(), 1u);
  EXPECT_EQ(swapped[0].Pipe1Label, "W-1");
  EXPECT_NEAR(swapped[0].Clearance, 1.45, 1e-12);
}

TEST_F(CrossingSearch, OnePairGivesOneCrossingWhicheverWayItIsMet) {
  auto& p1 = Pipe(sewer_, {.label = "P-1", .xy = {0, 0, 100, 0}});
  auto& p2 = Pipe(sewer_, {.label = "P-2", .xy = {50, -10, 50, 10}});
  // Crosses P-1 twice: only the first point along P-1 counts.
  auto& w1 = Pipe(water_, {.label = "W-1", .xy = {10, -10, 20, 10, 30, -10}});

  std::vector<CrossPoint> points = Search({&p1, &p2, &w1});
  ASSERT_EQ(points.size(), 1u) << "pipes of one network never cross";
  EXPECT_EQ(points[0].Pipe1Label, "P-1");
  EXPECT_EQ(points[0].Pipe2Label, "W-1");
  EXPECT_DOUBLE_EQ(points[0].Easting, 15);

  std::vector<CrossPoint> from_water = Search({&w1, &p1});
  ASSERT_EQ(from_water.size(), 1u);
  EXPECT_EQ(from_water[0].Pipe1Label, "W-1");
  EXPECT_EQ(from_water[0].Pipe2Label, "P-1");
}

TEST_F(CrossingSearch, ClearanceIsNeverNegative) {
  struct Case {
    double sewer_invert, water_invert, expected;
  };
  // Rises 0.2 m each. Level with each other, overlapping in height, and
  // each pipe in turn on top.
  for (const Case& c : {Case{98, 98, 0}, Case{98.1, 98, 0}, Case{99, 98, 0.8},
                        Case{98, 98.5, 0.3}}) {
    doc_ = test::NewProjectDocument();
    sewer_ = test::AddFixtureNetwork(*doc_, "Sewer", "Gravity");
    water_ = test::AddFixtureNetwork(*doc_, "Water", "Pressure");
    auto& s = Pipe(sewer_, {.label = "S",
                            .xy = {0, 0, 10, 0},
                            .start_invert = c.sewer_invert,
                            .end_invert = c.sewer_invert});
    Pipe(water_, {.label = "W",
                  .xy = {5, -5, 5, 5},
                  .start_invert = c.water_invert,
                  .end_invert = c.water_invert});
    std::vector<CrossPoint> points = Search({&s});
    ASSERT_EQ(points.size(), 1u);
    EXPECT_NEAR(points[0].Clearance, c.expected, 1e-12)
        << c.sewer_invert << " over " << c.water_invert;
  }
}

TEST_F(CrossingSearch, ImperialRisesCountInFeet) {
  Use("US");
  sewer_ = test::AddFixtureNetwork(*doc_, "Sewer", "Gravity");
  water_ = test::AddFixtureNetwork(*doc_, "Water", "Pressure");
  auto& circular = Pipe(sewer_, {.label = "C",
                                 .xy = {0, 0, 10, 0},
                                 .start_invert = 10,
                                 .end_invert = 10,
                                 .span = 12,
                                 .rise = 12});
  Pipe(water_, {.label = "B",
                .xy = {5, -5, 5, 5},
                .start_invert = 20,
                .end_invert = 20,
                .span = 6,
                .rise = 4,
                .shape = core::kSectionShapeBox});
  std::vector<CrossPoint> points = Search({&circular});
  ASSERT_EQ(points.size(), 1u);
  EXPECT_DOUBLE_EQ(points[0].Pipe1Rise, 1.0);
  EXPECT_DOUBLE_EQ(points[0].Pipe2Rise, 4.0);
  EXPECT_DOUBLE_EQ(points[0].Clearance, 9.0);  // 20 - 10 - 1 ft
  EXPECT_EQ(points[0].Pipe2SizeString, "6X4");
}

TEST_F(CrossingSearch, PipesTouchingAtTheirEndsCross) {
  auto& s = Pipe(
      sewer_,
      {.label = "S", .xy = {0, 0, 10, 0}, .start_invert = 5, .end_invert = 4});
  Pipe(water_, {.label = "W", .xy = {10, 0, 10, 8}});
  std::vector<CrossPoint> points = Search({&s});
  ASSERT_EQ(points.size(), 1u);
  EXPECT_DOUBLE_EQ(points[0].Pipe1Invert, 4);  // at the end of S
  EXPECT_DOUBLE_EQ(points[0].Easting, 10);
}

TEST_F(CrossingSearch, NothingFoundIsOneEmptyRecord) {
  auto& s = Pipe(sewer_, {.label = "S", .xy = {0, 0, 10, 0}});
  Pipe(water_, {.label = "W", .xy = {0, 1, 10, 1}});
  EXPECT_EQ(Search({&s}), std::vector<CrossPoint>{CrossPoint{}});
  EXPECT_EQ(Search({}), std::vector<CrossPoint>{CrossPoint{}});
}

TEST_F(CrossingSearch, AZeroLengthPipeThatMeetsAnotherIsAnError) {
  auto& point_pipe = Pipe(sewer_, {.label = "P-9", .xy = {5, 0, 5, 0}});
  auto& far_pipe = Pipe(sewer_, {.label = "P-10", .xy = {50, 50, 50, 50}});
  Pipe(water_, {.label = "W", .xy = {0, 0, 10, 0}});
  try {
    Search({&point_pipe});
    FAIL() << "no error";
  } catch (const std::domain_error& e) {
    EXPECT_NE(std::string(e.what()).find("pipe P-9 of network Sewer has zero "
                                         "length"),
              std::string::npos)
        << e.what();
  }
  EXPECT_TRUE(types::IsNoCrossing(Search({&far_pipe})[0]));
}

TEST_F(CrossingSearch, DamagedRecordsAreNamed) {
  auto& s = Pipe(sewer_, {.label = "S", .xy = {0, 0, 10, 0}});
  auto& w = Pipe(water_, {.label = "W", .xy = {5, -5, 5, 5}});
  core::Record record = core::Record::ReadRequired(w);
  host::XRecord shortened(record.Items().begin(), record.Items().begin() + 11);
  w.SetXData(shortened);
  try {
    Search({&s});
    FAIL() << "no error";
  } catch (const core::MissingRecordError& e) {
    EXPECT_EQ(std::string(e.what()),
              "the record of pipe " + std::to_string(w.ObjectID()) +
                  " is damaged: it holds 11 of its 24 fields");
  }
}

TEST_F(CrossingSearch, NetworkSetsFollowTheDefinitions) {
  auto c = test::AddFixtureNetwork(*doc_, "Storm", "Gravity");
  auto& w = Pipe(water_, {.label = "W", .xy = {0, 0, 1, 1}});
  auto& s1 = Pipe(sewer_, {.label = "S1", .xy = {0, 0, 1, 1}});
  auto& st = Pipe(c, {.label = "T", .xy = {0, 0, 1, 1}});
  auto& s2 = Pipe(sewer_, {.label = "S2", .xy = {0, 0, 1, 1}});
  Pipe({"Gone", "Gravity"}, {.label = "G", .xy = {0, 0, 1, 1}});
  std::vector<host::SelectionSet*> sets =
      Crossing::GetNetworkSetsAll(*doc_, General::GetNetworkDefinitions(*doc_));
  ASSERT_EQ(sets.size(), 3u);
  EXPECT_EQ(sets[0]->Name(), "Sewer");
  EXPECT_EQ(sets[0]->Entities(), (std::vector<host::Entity*>{&s1, &s2}));
  EXPECT_EQ(sets[1]->Entities(), std::vector<host::Entity*>{&w});
  EXPECT_EQ(sets[2]->Name(), "Storm");
  EXPECT_EQ(sets[2]->Entities(), std::vector<host::Entity*>{&st});
}

TEST_F(CrossingSearch, IntersectionPointsAreCheckedOnLinesAndPolylines) {
  auto& pipe = Pipe(sewer_, {.label = "S", .xy = {0, 0, 10, 0, 10, 10}});
  host::Line& line = doc_->ModelSpace().AddLine({0, 5, 0}, {20, 5, 0});
  EXPECT_TRUE(Crossing::CheckIntersectionPoint({10, 5, 0}, pipe, line));
  EXPECT_FALSE(Crossing::CheckIntersectionPoint({5, 5, 0}, pipe, line));
  EXPECT_FALSE(Crossing::CheckIntersectionPoint({10.1, 5, 0}, pipe, line));
}

}  // namespace
}  // namespace kestrana::crossing
