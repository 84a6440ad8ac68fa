// Erasing network elements: what hangs on them goes too, and every record
// that stays names only objects that are there.
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
#include "core/text.h"
#include "crossing/crossing.h"
#include "dxf/io.h"
#include "editing/editing.h"
#include "events/events.h"
#include "host/host.h"
#include "library/library.h"
#include "lowhigh/lowhigh.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::events {
namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

class Erasing : public ::testing::Test {
 protected:
  // A sewer of three pipes crossed by a main of three; a profile along the
  // whole sewer.
  void SetUp() override {
    doc_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    commands::AddNetwork(*doc_, {"Water", core::kPressure});
    Convert({{0, 0, 100, 0}, {100, 0, 200, 0}, {200, 0, 300, 0}}, "Sewer",
            core::kGravity);
    Convert({{150, -40, 150, 40}, {150, 40, 250, 40}, {250, 40, 250, -40}},
            "Water", core::kPressure);
    test::ProfileSpec wanted;
    wanted.network = "Sewer";
    for (const char* label : {"P-1", "P-2", "P-3"}) {
      wanted.pipes.push_back(&Pipe("Sewer", label));
      wanted.directions.push_back("0");
    }
    wanted.y = 300;
    profile_ = &test::AddProfileBlock(*doc_, wanted);
    ASSERT_TRUE(test::DanglingLinks(*doc_).empty());
  }
  void Convert(const std::vector<std::vector<double>>& lines,
               const std::string& network, const std::string& type) {
    test::ConvertDrawn(*doc_, lines, network, type);
  }
  host::LwPolyline& Pipe(const std::string& network, const std::string& label) {
    return static_cast<host::LwPolyline&>(
        test::ElementLabelled(*doc_, network, "Pipe", label));
  }
  host::Entity& Node(const std::string& network, const std::string& label) {
    return test::ElementLabelled(*doc_, network, "Node", label);
  }
  void Erase(const std::vector<host::Entity*>& chosen) {
    EraseWithReactions(*doc_, chosen);
  }
  int Count(const std::string& type) {
    int n = 0;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      if (auto r = Record::Read(*e))
        n += r->Has(core::PipeField::kElementType) &&
             r->Value(core::PipeField::kElementType).IsText() &&
             r->Text(core::PipeField::kElementType) == type;
    return n;
  }

  std::unique_ptr<memhost::MemDocument> doc_;
  host::BlockReference* profile_ = nullptr;
};

TEST_F(Erasing, APipeLeavesItsNodesCrossingsProfileAndLibrary) {
  host::LwPolyline& p2 = Pipe("Sewer", "P-2");
  ASSERT_EQ(crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "").Count(),
            2);
  ASSERT_EQ(test::MaterialUses(*doc_, "PVC"), "6");
  const int annotations = Count("Annotation"), arrows = Count("Arrow");

  Erase({&p2});

  EXPECT_TRUE(test::DanglingLinks(*doc_).empty())
      << testing::PrintToString(test::DanglingLinks(*doc_));
  Record n2 = Record::ReadRequired(Node("Sewer", "N-2"));
  EXPECT_EQ(n2.Text(NodeField::kPipesAtStartLabels), "");
  EXPECT_EQ(n2.Text(NodeField::kPipesAtEndLabels), ";RelatedToP-1");
  Record n3 = Record::ReadRequired(Node("Sewer", "N-3"));
  EXPECT_EQ(n3.Text(NodeField::kPipesAtStartLabels), ";RelatedToP-3");
  EXPECT_EQ(n3.Text(NodeField::kPipesAtEndLabels), "");
  // P-2 crossed the main once; the other crossing stays.
  EXPECT_EQ(crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "").Count(),
            1);
  EXPECT_EQ(Count("CrossingPointLine"), 1);
  EXPECT_EQ(Count("Annotation"), annotations - 1);
  EXPECT_EQ(Count("Arrow"), arrows - 1);
  EXPECT_EQ(test::MaterialUses(*doc_, "PVC"), "5");

  // The profile keeps the pipes before P-2 and is flagged; P-3 left it.
  Record profile = Record::ReadRequired(*profile_);
  EXPECT_EQ(profile.Text(profile::ProfileField::kPipeLabels), ";RelatedToP-1");
  EXPECT_EQ(profile.Text(profile::ProfileField::kDirections), ";0");
  EXPECT_EQ(profile.Int16(profile::ProfileField::kUpdateFlag), 1);
  EXPECT_EQ(
      Record::ReadRequired(Pipe("Sewer", "P-3")).Text(PipeField::kProfileRefs),
      "");
}

TEST_F(Erasing, ANodeTakesItsPipesAndMarkersAndTheProfileGoesWhole) {
  // N-1 is where the sewer and its profile start.
  Erase({&Node("Sewer", "N-1")});
  EXPECT_TRUE(test::DanglingLinks(*doc_).empty())
      << testing::PrintToString(test::DanglingLinks(*doc_));
  EXPECT_EQ(
      General::GetNetworkSet(*doc_, "Sewer", core::network_set::kPipes).Count(),
      2);
  EXPECT_EQ(profile::Profile::GetExistingProfileSet(*doc_, "").Count(), 0);
  for (const char* label : {"P-2", "P-3"})
    EXPECT_EQ(Record::ReadRequired(Pipe("Sewer", label))
                  .Text(PipeField::kProfileRefs),
              "")
        << label;

  // A main's node: its two pipes, their crossings and its marker go; the
  // low and high points of what stays are analysed again.
  Erase({&Node("Water", "N-2")});
  EXPECT_TRUE(test::DanglingLinks(*doc_).empty())
      << testing::PrintToString(test::DanglingLinks(*doc_));
  EXPECT_EQ(
      General::GetNetworkSet(*doc_, "Water", core::network_set::kPipes).Count(),
      1);
  EXPECT_EQ(crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "").Count(),
            1);
  // Markers and the nodes naming them agree, the marker of N-2 gone.
  int linked = 0;
  for (host::Entity* node :
       General::GetNetworkSet(*doc_, "Water", core::network_set::kNodes)
           .Entities())
    linked +=
        !Record::ReadRequired(*node).Text(NodeField::kLowHighOIDRef).empty();
  EXPECT_GT(linked, 0);
  EXPECT_EQ(
      lowhigh::LowHigh::GetExistingLowHighPointsSet(*doc_, "Water").Count(),
      linked);
}

TEST_F(Erasing, AnAnnotationOrArrowIsForgottenByItsOwner) {
  host::LwPolyline& p1 = Pipe("Sewer", "P-1");
  Record before = Record::ReadRequired(p1);
  host::Entity& annotation = core::EntityFromReference(
      *doc_, before.Text(PipeField::kAnnotationOIDRef));
  host::Entity& arrow =
      core::EntityFromReference(*doc_, before.Text(PipeField::kArrowOIDRef));
  host::Entity& node = Node("Sewer", "N-1");
  host::Entity& node_annotation = core::EntityFromReference(
      *doc_, Record::ReadRequired(node).Text(NodeField::kAnnotationOIDRef));

  Erase({&annotation, &arrow, &node_annotation});
  Record after = Record::ReadRequired(p1);
  for (auto field :
       {PipeField::kAnnotationLabelRef, PipeField::kAnnotationOIDRef,
        PipeField::kArrowLabelRef, PipeField::kArrowOIDRef})
    EXPECT_EQ(after.Text(field), "") << static_cast<int>(field);
  EXPECT_EQ(Record::ReadRequired(node).Text(NodeField::kAnnotationOIDRef), "");
  EXPECT_EQ(after.Text(PipeField::kEndNodeLabel), ";RelatedToN-2");
  EXPECT_TRUE(test::DanglingLinks(*doc_).empty());
}

}  // namespace
}  // namespace kestrana::events
