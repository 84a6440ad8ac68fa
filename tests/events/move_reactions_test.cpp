// Moving and stretching network elements: pipes, markers and crossing lines
// go back onto what they belong to, crossings are found anew where pipes
// now cross, and the profiles along changed pipes are flagged.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "events/events.h"
#include "host/host.h"
#include "lowhigh/lowhigh.h"
#include "profile/profile_record.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::events {
namespace {

using core::NodeField;
using core::PipeField;
using core::Record;

class Moving : public ::testing::Test {
 protected:
  // A sewer N-1 (0,0) - P-1 - N-2 (100,0) - P-2 - N-3 (200,0), and two mains
  // running up x = 150 and x = 250 from y = -40 to 40: P-2 crosses the
  // first main.
  void SetUp() override {
    doc_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    commands::AddNetwork(*doc_, {"Water", core::kPressure});
    test::ConvertDrawn(*doc_, {{0, 0, 100, 0}, {100, 0, 200, 0}}, "Sewer",
                       core::kGravity);
    test::ConvertDrawn(*doc_, {{150, -40, 150, 40}, {250, -40, 250, 40}},
                       "Water", core::kPressure);
    ASSERT_EQ(Crossings().size(), 1u);
  }
  host::LwPolyline& Pipe(const std::string& network, const std::string& label) {
    return host::As<host::LwPolyline>(
        test::ElementLabelled(*doc_, network, "Pipe", label));
  }
  host::BlockReference& Node(const std::string& network,
                             const std::string& label) {
    return host::As<host::BlockReference>(
        test::ElementLabelled(*doc_, network, "Node", label));
  }
  // The pipe pairs of the crossing annotations, "Sewer P-2 x Water P-1".
  std::vector<std::string> Crossings() {
    using F = crossing::CrossingAnnoField;
    std::vector<std::string> pairs;
    for (host::Entity* a :
         crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "")
             .Entities()) {
      Record r = Record::ReadRequired(*a);
      pairs.push_back(r.Text(F::kPipe1Net) + " " +
                      core::ReferenceValues(r.Text(F::kPipe1LabelRef))[0] +
                      " x " + r.Text(F::kPipe2Net) + " " +
                      core::ReferenceValues(r.Text(F::kPipe2LabelRef))[0]);
    }
    return pairs;
  }
  int CountOfType(const std::string& type) {
    int n = 0;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      if (auto r = Record::Read(*e))
        n += r->Has(2) && r->Value(2).IsText() && r->Text(2) == type;
    return n;
  }
  // What the editor and then the add-on do.
  std::vector<host::Entity*> MoveBy(std::vector<host::Entity*> entities,
                                    double dx, double dy) {
    const PipeCourses before = CoursesBeforeMove(*doc_, entities);
    for (host::Entity* e : entities) e->Move({0, 0, 0}, {dx, dy, 0});
    return ReactToMove(*doc_, entities, before);
  }
  void ExpectConsistent() {
    EXPECT_TRUE(test::DanglingLinks(*doc_).empty())
        << testing::PrintToString(test::DanglingLinks(*doc_));
    EXPECT_TRUE(test::PipeEndsOffNodes(*doc_).empty())
        << testing::PrintToString(test::PipeEndsOffNodes(*doc_));
  }

  std::unique_ptr<memhost::MemDocument> doc_;
};

TEST_F(Moving, PipeEndsGoBackOntoTheirNodesAndInnerVerticesStay) {
  host::LwPolyline& p1 = Pipe("Sewer", "P-1");
  // Dragged away at both ends and bent in the middle.
  p1.SetCoordinates({3, 4, 50, 20, 97, -2});
  Events::AdjustPipeEnds(*doc_, p1);
  EXPECT_EQ(p1.Coordinates(), (std::vector<double>{0, 0, 50, 20, 100, 0}));

  // Off by less than the fifth decimal place: it meets its node already.
  p1.SetCoordinates({0.000004, 0, 100, -0.000003});
  Events::AdjustPipeEnds(*doc_, p1);
  EXPECT_EQ(p1.Coordinates(),
            (std::vector<double>{0.000004, 0, 100, -0.000003}));
  // Off by the fifth place: put back.
  p1.SetCoordinates({0.00001, 0, 100, 0});
  Events::AdjustPipeEnds(*doc_, p1);
  EXPECT_EQ(p1.Coordinates(), (std::vector<double>{0, 0, 100, 0}));
}

TEST_F(Moving, AMarkerReturnsToItsNodeAndANodeTakesItsMarkerAlong) {
  host::BlockReference* marked = nullptr;
  for (host::Entity* node :
       core::General::GetNetworkSet(*doc_, "Water", 2).Entities())
    if (!Record::ReadRequired(*node).Text(NodeField::kLowHighOIDRef).empty())
      marked = &host::As<host::BlockReference>(*node);
  ASSERT_NE(marked, nullptr) << "the mains have no low or high point";
  auto marker = [&]() -> host::BlockReference& {
    return host::As<host::BlockReference>(core::EntityFromReference(
        *doc_, Record::ReadRequired(*marked).Text(NodeField::kLowHighOIDRef)));
  };
  const host::Point3 at = marked->InsertionPoint();

  MoveBy({&marker()}, 7, -3);
  EXPECT_EQ(marker().InsertionPoint().x, at.x);
  EXPECT_EQ(marker().InsertionPoint().y, at.y);

  MoveBy({marked}, 0, 15);
  EXPECT_EQ(marker().InsertionPoint().x, at.x);
  EXPECT_EQ(marker().InsertionPoint().y, at.y + 15);
  ExpectConsistent();
}

TEST_F(Moving, ACrossingLineRunsFromTheCrossingToTheNearestCornerOfItsTable) {
  host::Entity& anno =
      crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "").Item(0);
  auto& annotation = host::As<host::BlockReference>(anno);
  auto& line = host::As<host::Line>(core::EntityFromReference(
      *doc_, Record::ReadRequired(anno).Text(
                 crossing::CrossingAnnoField::kLineOIDRef)));
  const host::Point3 crossing_point{150, 0, 0};
  const std::vector<std::string> crossings = Crossings();

  // Up and to the left of the crossing: the table's lower right corner.
  MoveBy({&anno}, -200, 100);
  const host::Point3 at = annotation.InsertionPoint();
  EXPECT_EQ(line.StartPoint().x, crossing_point.x);
  EXPECT_EQ(line.StartPoint().y, crossing_point.y);
  EXPECT_EQ(line.EndPoint().y, at.y);
  EXPECT_GT(line.EndPoint().x, at.x + 30);  // the far side of the table
  EXPECT_LT(line.EndPoint().x, crossing_point.x);

  // Down and to the right: the upper left corner, 12 above the insertion.
  MoveBy({&anno}, 300, -200);
  const host::Point3 moved = annotation.InsertionPoint();
  EXPECT_DOUBLE_EQ(line.EndPoint().x, moved.x);
  EXPECT_DOUBLE_EQ(line.EndPoint().y, moved.y + 12);

  // A line dragged on its own comes back the same way.
  MoveBy({&line}, 33, 44);
  EXPECT_EQ(line.StartPoint().x, crossing_point.x);
  EXPECT_EQ(line.StartPoint().y, crossing_point.y);
  EXPECT_DOUBLE_EQ(line.EndPoint().y, moved.y + 12);
  // Nothing about the crossing itself changed.
  EXPECT_EQ(Crossings(), crossings);
  EXPECT_FALSE(anno.Erased());
  ExpectConsistent();
}

TEST_F(Moving, ANodeMovedAcrossAMainChangesWhichPipesCrossIt) {
  // N-2 to x = 220: P-1 now reaches across the first main, P-2 no longer.
  host::BlockReference& n2 = Node("Sewer", "N-2");
  const std::vector<std::string> p1_annotation_before =
      test::AnnotationTexts(*doc_, Pipe("Sewer", "P-1"));
  const host::Point3 p1_label_before =
      host::As<host::BlockReference>(
          core::EntityFromReference(*doc_,
                                    Record::ReadRequired(Pipe("Sewer", "P-1"))
                                        .Text(PipeField::kAnnotationOIDRef)))
          .InsertionPoint();

  const std::vector<host::Entity*> changed = MoveBy({&n2}, 120, 0);

  EXPECT_EQ(changed.size(), 2u);
  EXPECT_EQ(Pipe("Sewer", "P-1").Coordinates(),
            (std::vector<double>{0, 0, 220, 0}));
  EXPECT_EQ(Pipe("Sewer", "P-2").Coordinates(),
            (std::vector<double>{220, 0, 200, 0}));
  EXPECT_EQ(Crossings(), (std::vector<std::string>{"Sewer P-1 x Water P-1"}));
  EXPECT_EQ(CountOfType(crossing::kCrossingPointLine), 1);
  EXPECT_EQ(
      Record::ReadRequired(Pipe("Sewer", "P-2")).Text(PipeField::kCrossingRefs),
      "");
  EXPECT_EQ(core::ReferenceValues(Record::ReadRequired(Pipe("Water", "P-1"))
                                      .Text(PipeField::kCrossingOIDRefs))
                .size(),
            1u);
  // P-1's annotation moved along its longer course.
  const host::Point3 p1_label_after =
      host::As<host::BlockReference>(
          core::EntityFromReference(*doc_,
                                    Record::ReadRequired(Pipe("Sewer", "P-1"))
                                        .Text(PipeField::kAnnotationOIDRef)))
          .InsertionPoint();
  EXPECT_NE(p1_label_after.x, p1_label_before.x);
  EXPECT_EQ(test::AnnotationTexts(*doc_, Pipe("Sewer", "P-1")).front(),
            p1_annotation_before.front());
  ExpectConsistent();

  // Back again: the old crossing returns, the new one goes.
  MoveBy({&n2}, -120, 0);
  EXPECT_EQ(Crossings(), (std::vector<std::string>{"Sewer P-2 x Water P-1"}));
  ExpectConsistent();
}

TEST_F(Moving, AProfileOverAMovedNodeIsFlaggedOnce) {
  auto add_profile = [&](const std::string& name,
                         const std::vector<std::string>& pipes,
                         double y) -> host::BlockReference& {
    test::ProfileSpec wanted;
    wanted.name = name;
    wanted.network = "Sewer";
    for (const std::string& label : pipes) {
      wanted.pipes.push_back(&Pipe("Sewer", label));
      wanted.directions.push_back("0");
    }
    wanted.y = y;
    return test::AddProfileBlock(*doc_, wanted);
  };
  host::BlockReference& whole = add_profile("Whole", {"P-1", "P-2"}, 300);
  host::BlockReference& first = add_profile("First", {"P-1"}, 500);
  auto flag = [](host::BlockReference& profile) {
    return Record::ReadRequired(profile).Int16(
        profile::ProfileField::kUpdateFlag);
  };
  auto stamps = [&] {
    int n = 0;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      n += e->Layer() == profile::kStampLayer;
    return n;
  };
  ASSERT_EQ(flag(whole) + flag(first), 0);

  // N-3 ends P-2 only: its crossing is rebuilt, which flags the profile
  // too, and it gets one stamp.
  MoveBy({&Node("Sewer", "N-3")}, 0, 10);
  EXPECT_EQ(flag(whole), 1);
  EXPECT_EQ(flag(first), 0);
  EXPECT_EQ(stamps(), 1);

  // N-1 starts P-1, which crosses nothing: its profiles are flagged for
  // the new course alone.
  MoveBy({&Node("Sewer", "N-1")}, 0, 10);
  EXPECT_EQ(flag(first), 1);
  EXPECT_EQ(stamps(), 2);
  ExpectConsistent();
}

TEST_F(Moving, WhatDoesNotChangeACourseRebuildsNothing) {
  const std::string crossing_ids = Record::ReadRequired(Pipe("Sewer", "P-2"))
                                       .Text(PipeField::kCrossingOIDRefs);
  // A straight pipe moved on its own goes back where it was.
  EXPECT_TRUE(MoveBy({&Pipe("Sewer", "P-2")}, 5, 5).empty());
  EXPECT_EQ(Pipe("Sewer", "P-2").Coordinates(),
            (std::vector<double>{100, 0, 200, 0}));
  // An entity of no network just moves.
  host::Line& stray = doc_->ModelSpace().AddLine({0, 50, 0}, {10, 50, 0});
  EXPECT_TRUE(MoveBy({&stray}, 1, 1).empty());
  EXPECT_EQ(stray.StartPoint().x, 1);
  EXPECT_EQ(Record::ReadRequired(Pipe("Sewer", "P-2"))
                .Text(PipeField::kCrossingOIDRefs),
            crossing_ids);
  ExpectConsistent();
}

}  // namespace
}  // namespace kestrana::events
