// Merging a run of pipes into one pipe, and the selections that are refused.
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

class Merging : public ::testing::Test {
 protected:
  // N-1 -P-1- N-2 -P-2- N-3 -P-3- N-4 west to east, P-2 drawn east to west;
  // a branch P-4 from N-5 into N-3; a main crossing P-2; a profile along
  // P-1 to P-3.
  void SetUp() override {
    doc_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    commands::AddNetwork(*doc_, {"Water", core::kPressure});
    test::ConvertDrawn(
        *doc_,
        {{0, 0, 50, 0}, {100, 0, 50, 0}, {100, 0, 150, 0}, {100, 60, 100, 0}},
        "Sewer", core::kGravity);
    test::ConvertDrawn(*doc_, {{75, -30, 75, 30}}, "Water", core::kPressure);
    SetInverts("P-1", 101, 100.5);
    SetInverts("P-2", 100, 100.4);  // drawn against the others
    SetInverts("P-3", 99.9, 99.5);
    test::ProfileSpec wanted;
    wanted.network = "Sewer";
    wanted.pipes = {&Pipe("P-1"), &Pipe("P-2"), &Pipe("P-3")};
    wanted.directions = {"0", "1", "0"};
    wanted.y = 200;
    profile_ = &test::AddProfileBlock(*doc_, wanted);
  }
  void SetInverts(const std::string& label, double start, double end) {
    Record r = Record::ReadRequired(Pipe(label));
    r.SetReal(PipeField::kStartInvert, start);
    r.SetReal(PipeField::kEndInvert, end);
    r.Write(Pipe(label));
  }
  host::LwPolyline& Pipe(const std::string& label) {
    return static_cast<host::LwPolyline&>(
        test::ElementLabelled(*doc_, "Sewer", "Pipe", label));
  }
  host::Entity& Node(const std::string& label) {
    return test::ElementLabelled(*doc_, "Sewer", "Node", label);
  }
  host::SelectionSet& Pick(const std::vector<std::string>& labels) {
    std::vector<host::ObjectId> ids;
    for (const std::string& label : labels)
      ids.push_back(Pipe(label).ObjectID());
    doc_->GetSession().Push(memhost::Input::Objects(ids));
    return Editing::GetPipesToMerge(*doc_);
  }
  // The merge command, as a user picks the pipes; answers the pipe they
  // became.
  host::LwPolyline& Merge(const std::vector<std::string>& labels) {
    return Pipe(commands::MergePipes(*doc_, {"Sewer", labels}).merged);
  }

  std::unique_ptr<memhost::MemDocument> doc_;
  host::BlockReference* profile_ = nullptr;
};

TEST_F(Merging, ARunBecomesOnePipeFromItsHigherEnd) {
  ASSERT_EQ(test::MaterialUses(*doc_, "PVC"), "5");
  ASSERT_EQ(Pick({"P-2", "P-1"}).Count(), 2);
  host::LwPolyline& merged = Merge({"P-2", "P-1"});

  // P-1 starts highest: the merged pipe is P-1, from N-1 to N-3, its
  // vertices in one order although P-2 was drawn the other way; its end
  // invert is P-2's start invert, which lay at N-3.
  EXPECT_EQ(merged.Coordinates(), (std::vector<double>{0, 0, 50, 0, 100, 0}));
  Record r = Record::ReadRequired(merged);
  EXPECT_EQ(r.Text(PipeField::kCombinedLabel), "Pipe;Sewer;P-1");
  EXPECT_EQ(r.Text(PipeField::kStartNodeLabel), ";RelatedToN-1");
  EXPECT_EQ(r.Text(PipeField::kEndNodeLabel), ";RelatedToN-3");
  EXPECT_EQ(r.Number(PipeField::kStartInvert), 101);
  EXPECT_EQ(r.Number(PipeField::kEndInvert), 100);
  EXPECT_EQ(
      General::GetNetworkSet(*doc_, "Sewer", core::network_set::kPipes).Count(),
      3);
  EXPECT_THROW(Node("N-2"), std::runtime_error);
  const std::string merged_ref =
      core::ReferenceEntry(core::IdText(merged.ObjectID()));
  Record n3 = Record::ReadRequired(Node("N-3"));
  EXPECT_NE(n3.Text(NodeField::kPipesAtEndOID).find(merged_ref),
            std::string::npos);
  EXPECT_EQ(n3.Text(NodeField::kPipesAtStartLabels), ";RelatedToP-3");
  EXPECT_EQ(Record::ReadRequired(Node("N-1")).Text(NodeField::kPipesAtStartOID),
            merged_ref);
  EXPECT_EQ(test::MaterialUses(*doc_, "PVC"), "4");
  EXPECT_EQ(test::AnnotationTexts(*doc_, merged).front(), "P-1");

  // The main's crossing with P-2 now lies on the merged pipe, which
  // lists it.
  host::SelectionSet& crossings =
      crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "");
  ASSERT_EQ(crossings.Count(), 1);
  Record crossing = Record::ReadRequired(crossings.Item(0));
  EXPECT_TRUE(
      crossing.Text(crossing::CrossingAnnoField::kPipe1OIDRef) == merged_ref ||
      crossing.Text(crossing::CrossingAnnoField::kPipe2OIDRef) == merged_ref);
  EXPECT_EQ(r.Text(PipeField::kCrossingOIDRefs),
            core::ReferenceEntry(core::IdText(crossings.Item(0).ObjectID())));

  // The profile holds one entry for the two, where they were, and is
  // flagged.
  Record profile = Record::ReadRequired(*profile_);
  EXPECT_EQ(profile.Text(profile::ProfileField::kPipeLabels),
            ";RelatedToP-1;RelatedToP-3");
  EXPECT_EQ(profile.Text(profile::ProfileField::kPipeOIDs).rfind(merged_ref, 0),
            0u);
  EXPECT_EQ(profile.Int16(profile::ProfileField::kUpdateFlag), 1);
  EXPECT_TRUE(test::DanglingLinks(*doc_).empty())
      << testing::PrintToString(test::DanglingLinks(*doc_));
}

TEST_F(Merging, SelectionsThatAreNotOneRunAreRefused) {
  auto refused = [&](const std::vector<std::string>& labels) {
    const size_t shown = doc_->GetSession().Messages().size();
    EXPECT_EQ(Pick(labels).Count(), 0);
    const std::vector<std::string> messages = doc_->GetSession().Messages();
    return messages.size() > shown ? messages.back() : std::string();
  };
  // N-3 also carries the branch P-4.
  EXPECT_EQ(refused({"P-2", "P-3"}),
            "The selected pipes have lateral connections!");
  EXPECT_EQ(refused({"P-1", "P-3"}),
            "The selected pipes don't represent a single continuous line!");
  Record p2 = Record::ReadRequired(Pipe("P-2"));
  p2.SetText(PipeField::kMaterial, "Concrete");
  p2.Write(Pipe("P-2"));
  EXPECT_EQ(refused({"P-1", "P-2"}),
            "The selected pipes include different materials!");
  p2.SetText(PipeField::kMaterial, "PVC");
  p2.SetReal(PipeField::kSpan, 300);
  p2.Write(Pipe("P-2"));
  EXPECT_EQ(refused({"P-1", "P-2"}),
            "The selected pipes include different sizes!");
  // One pipe is no merge, and no refusal either.
  EXPECT_EQ(Pick({"P-1"}).Count(), 1);
}

}  // namespace
}  // namespace kestrana::editing
