// Splitting a pipe at a point: two pipes and a node with levels
// interpolated, and what pointed at the old pipe following.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/networks.h"
#include "commands/pipes.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "dxf/io.h"
#include "editing/editing.h"
#include "host/host.h"
#include "library/library.h"
#include "memhost/document.h"
#include "profile/profile_record.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::editing {
namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

class Splitting : public ::testing::Test {
 protected:
  // P-1 from N-1 (0, 0) to N-2 (100, 0), inverts 10 to 9, grounds 12 and
  // 11; P-2 on to N-3 with a bend; a main crossing P-1 at x = 70; a profile
  // that runs against P-1 and along P-2.
  void SetUp() override {
    doc_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    commands::AddNetwork(*doc_, {"Water", core::kPressure});
    test::ConvertDrawn(*doc_, {{0, 0, 100, 0}, {100, 0, 150, 0, 150, 50}},
                       "Sewer", core::kGravity);
    test::ConvertDrawn(*doc_, {{70, -30, 70, 30}}, "Water", core::kPressure);
    Record p1 = Record::ReadRequired(Pipe("P-1"));
    p1.SetReal(PipeField::kStartInvert, 10);
    p1.SetReal(PipeField::kEndInvert, 9);
    p1.Write(Pipe("P-1"));
    SetGround("N-1", 12);
    SetGround("N-2", 11);
    test::ProfileSpec wanted;
    wanted.network = "Sewer";
    wanted.pipes = {&Pipe("P-1"), &Pipe("P-2")};
    wanted.directions = {"1", "0"};
    wanted.y = 200;
    profile_ = &test::AddProfileBlock(*doc_, wanted);
  }
  void SetGround(const std::string& node, double level) {
    Record r = Record::ReadRequired(Node(node));
    r.SetReal(NodeField::kGroundLevel, level);
    r.Write(Node(node));
  }
  host::LwPolyline& Pipe(const std::string& label) {
    return static_cast<host::LwPolyline&>(
        test::ElementLabelled(*doc_, "Sewer", "Pipe", label));
  }
  host::Entity& Node(const std::string& label) {
    return test::ElementLabelled(*doc_, "Sewer", "Node", label);
  }
  // The split command, as a user picks the pipe and the point.
  commands::SplitResult Split(const std::string& label, double x, double y) {
    return commands::SplitPipe(*doc_, {"Sewer", label, x, y});
  }

  std::unique_ptr<memhost::MemDocument> doc_;
  host::BlockReference* profile_ = nullptr;
};

TEST_F(Splitting, LevelsAreInterpolatedAndLinksFollow) {
  ASSERT_EQ(test::MaterialUses(*doc_, "PVC"), "3");
  Split("P-1", 30, 0);

  host::LwPolyline& a1 = Pipe("P-1");
  host::LwPolyline& a2 = Pipe("P-3");
  host::Entity& k = Node("N-4");
  EXPECT_EQ(a1.Coordinates(), (std::vector<double>{0, 0, 30, 0}));
  EXPECT_EQ(a2.Coordinates(), (std::vector<double>{30, 0, 100, 0}));
  Record r1 = Record::ReadRequired(a1), r2 = Record::ReadRequired(a2);
  Record rk = Record::ReadRequired(k);
  EXPECT_NEAR(r1.Number(PipeField::kEndInvert), 9.7, 1e-12);
  EXPECT_NEAR(r2.Number(PipeField::kStartInvert), 9.7, 1e-12);
  EXPECT_NEAR(rk.Number(NodeField::kSumpLevel), 9.7, 1e-12);
  EXPECT_NEAR(rk.Number(NodeField::kGroundLevel), 11.7, 1e-12);
  EXPECT_EQ(r1.Text(PipeField::kEndNodeLabel), ";RelatedToN-4");
  EXPECT_EQ(r2.Text(PipeField::kEndNodeLabel), ";RelatedToN-2");
  EXPECT_EQ(rk.Text(NodeField::kPipesAtStartLabels), ";RelatedToP-3");
  EXPECT_EQ(rk.Text(NodeField::kPipesAtEndLabels), ";RelatedToP-1");
  EXPECT_EQ(
      Record::ReadRequired(Node("N-2")).Text(NodeField::kPipesAtEndLabels),
      ";RelatedToP-3");
  EXPECT_EQ(Record::ReadRequired(Node("N-1")).Text(NodeField::kPipesAtStartOID),
            core::ReferenceEntry(core::IdText(a1.ObjectID())));
  EXPECT_EQ(test::MaterialUses(*doc_, "PVC"), "4");
  EXPECT_EQ(test::AnnotationTexts(*doc_, k).front(), "N-4");

  // The crossing at x = 70 lies on the second part.
  EXPECT_EQ(r1.Text(PipeField::kCrossingOIDRefs), "");
  const std::vector<std::string> crossings =
      core::ReferenceValues(r2.Text(PipeField::kCrossingOIDRefs));
  ASSERT_EQ(crossings.size(), 1u);
  Record crossing =
      Record::ReadRequired(core::EntityFromIdText(*doc_, crossings[0]));
  const std::string a2_ref = core::ReferenceEntry(core::IdText(a2.ObjectID()));
  EXPECT_TRUE(
      crossing.Text(crossing::CrossingAnnoField::kPipe1OIDRef) == a2_ref ||
      crossing.Text(crossing::CrossingAnnoField::kPipe2OIDRef) == a2_ref);

  // The profile ran against P-1: the second part comes first.
  Record profile = Record::ReadRequired(*profile_);
  EXPECT_EQ(profile.Text(profile::ProfileField::kPipeLabels),
            ";RelatedToP-3;RelatedToP-1;RelatedToP-2");
  EXPECT_EQ(profile.Text(profile::ProfileField::kDirections), ";1;1;0");
  EXPECT_EQ(profile.Int16(profile::ProfileField::kUpdateFlag), 1);
  EXPECT_TRUE(test::DanglingLinks(*doc_).empty())
      << testing::PrintToString(test::DanglingLinks(*doc_));
}

TEST_F(Splitting, VerticesStayOnTheirSides) {
  Split("P-2", 150, 20);
  EXPECT_EQ(Pipe("P-2").Coordinates(),
            (std::vector<double>{100, 0, 150, 0, 150, 20}));
  EXPECT_EQ(Pipe("P-3").Coordinates(), (std::vector<double>{150, 20, 150, 50}));
}

TEST_F(Splitting, ThePromptsInsistOnAPipeAndAPointInside) {
  auto& session = doc_->GetSession();
  session.Push(memhost::Input::EntityAt(Node("N-1").ObjectID()));
  session.Push(memhost::Input::EntityAt(Pipe("P-1").ObjectID()));
  session.Push(memhost::Input::PointAt(0, 0));   // its end
  session.Push(memhost::Input::PointAt(40, 5));  // beside it
  session.Push(memhost::Input::PointAt(40, 0));
  host::Entity* pipe = nullptr;
  host::Point3 point;
  ASSERT_TRUE(Editing::GetSplitPipeAndPoint(*doc_, pipe, point));
  EXPECT_EQ(pipe, &Pipe("P-1"));
  EXPECT_EQ(point, (host::Point3{40, 0, 0}));
  EXPECT_EQ(session.Messages(),
            (std::vector<std::string>{kNotAPipeMessage, kPointAtPipeEndMessage,
                                      kPointOffPipeMessage}));
  session.Push(memhost::Input::Cancel());
  EXPECT_FALSE(Editing::GetSplitPipeAndPoint(*doc_, pipe, point));
}

}  // namespace
}  // namespace kestrana::editing
