// Turning pipes round, and picking elements for group editing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "commands/networks.h"
#include "core/general.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "dxf/io.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile_record.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::editing {
namespace {

using core::NodeField;
using core::PipeField;
using core::Record;

class Reversing : public ::testing::Test {
 protected:
  // N-1 -P-1- N-2 -P-2- N-3 -P-3- N-4 from west to east, with a profile
  // along P-1 and P-2, and a branch P-4 from N-5 into N-3.
  void SetUp() override {
    doc_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    test::ConvertDrawn(
        *doc_,
        {{0, 0, 50, 0}, {50, 0, 100, 0}, {100, 0, 150, 0}, {100, 60, 100, 0}},
        "Sewer", core::kGravity);
    Record p2 = Record::ReadRequired(Pipe("P-2"));
    p2.SetReal(PipeField::kStartInvert, 99.5);
    p2.SetReal(PipeField::kEndInvert, 99.2);
    p2.Write(Pipe("P-2"));
    test::ProfileSpec wanted;
    wanted.network = "Sewer";
    wanted.pipes = {&Pipe("P-1"), &Pipe("P-2")};
    wanted.directions = {"0", "0"};
    wanted.y = 200;
    profile_ = &test::AddProfileBlock(*doc_, wanted);
  }
  host::LwPolyline& Pipe(const std::string& label) {
    return static_cast<host::LwPolyline&>(
        test::ElementLabelled(*doc_, "Sewer", "Pipe", label));
  }
  host::Entity& Node(const std::string& label) {
    return test::ElementLabelled(*doc_, "Sewer", "Node", label);
  }
  void Reverse(const std::vector<std::string>& labels) {
    host::SelectionSet& set =
        core::General::InitializeSelectionSet(*doc_, "SetPipesToReverse");
    for (const std::string& label : labels) set.AddItems({&Pipe(label)});
    Editing::ReverseSelectedPipes(*doc_, set);
  }
  std::string Text(host::Entity& e, core::Field f) {
    return Record::ReadRequired(e).Text(f);
  }
  double ArrowRotation(host::Entity& pipe) {
    return host::As<host::BlockReference>(
               core::EntityFromReference(*doc_,
                                         Text(pipe, PipeField::kArrowOIDRef)))
        .Rotation();
  }

  std::unique_ptr<memhost::MemDocument> doc_;
  host::BlockReference* profile_ = nullptr;
};

TEST_F(Reversing, EverythingThatKnowsTheStartFollows) {
  host::LwPolyline& p2 = Pipe("P-2");
  const double arrow_before = ArrowRotation(p2);
  Reverse({"P-2"});

  EXPECT_EQ(p2.Coordinates(), (std::vector<double>{100, 0, 50, 0}));
  Record r = Record::ReadRequired(p2);
  EXPECT_EQ(r.Text(PipeField::kStartNodeLabel), ";RelatedToN-3");
  EXPECT_EQ(r.Text(PipeField::kEndNodeLabel), ";RelatedToN-2");
  EXPECT_EQ(&core::EntityFromReference(*doc_, r.Text(PipeField::kStartNodeOID)),
            &Node("N-3"));
  EXPECT_EQ(r.Number(PipeField::kStartInvert), 99.2);
  EXPECT_EQ(r.Number(PipeField::kEndInvert), 99.5);
  // N-2 now has both pipes ending at it; N-3 has P-2 start after P-3.
  EXPECT_EQ(Text(Node("N-2"), NodeField::kPipesAtStartLabels), "");
  EXPECT_EQ(Text(Node("N-2"), NodeField::kPipesAtEndLabels),
            ";RelatedToP-1;RelatedToP-2");
  EXPECT_EQ(Text(Node("N-3"), NodeField::kPipesAtStartLabels),
            ";RelatedToP-3;RelatedToP-2");
  EXPECT_EQ(Text(Node("N-3"), NodeField::kPipesAtEndLabels), ";RelatedToP-4");
  EXPECT_EQ(Text(*profile_, profile::ProfileField::kDirections), ";0;1");
  // The arrow points the other way.
  EXPECT_NEAR(std::cos(ArrowRotation(p2) - arrow_before), -1, 1e-8);
}

TEST_F(Reversing, TwiceGivesTheDrawingBackWithEntriesAtTheEnd) {
  std::vector<std::pair<host::Entity*, host::XRecord>> before;
  for (host::Entity* e : doc_->ModelSpace().Entities())
    if (auto r = Record::Read(*e)) before.emplace_back(e, r->Items());
  const std::vector<double> coordinates = Pipe("P-2").Coordinates();

  Reverse({"P-2"});
  Reverse({"P-2"});

  EXPECT_EQ(Pipe("P-2").Coordinates(), coordinates);
  for (const auto& [entity, items] : before) {
    if (entity == &Node("N-3")) continue;  // P-2 is now after P-4 there
    EXPECT_EQ(Record::ReadRequired(*entity).Items(), items)
        << Record(items).Text(core::PipeField::kCombinedLabel);
  }
  EXPECT_EQ(Text(Node("N-3"), NodeField::kPipesAtEndLabels),
            ";RelatedToP-4;RelatedToP-2");
  EXPECT_EQ(Text(Node("N-3"), NodeField::kPipesAtStartLabels), ";RelatedToP-3");
}

TEST_F(Reversing, PromptsAnswerWithPipesOrElements) {
  host::Line& line = doc_->ModelSpace().AddLine({0, 10, 0}, {5, 10, 0});
  std::vector<host::ObjectId> picked = {
      Pipe("P-1").ObjectID(), Node("N-1").ObjectID(), line.ObjectID()};
  doc_->GetSession().Push(memhost::Input::Objects(picked));
  EXPECT_EQ(Editing::GetPipesToReverse(*doc_).Count(), 1);
  doc_->GetSession().Push(memhost::Input::Objects(picked));
  host::SelectionSet& group = Editing::GetSelectionForGroupEditing(*doc_);
  EXPECT_EQ(group.Name(), "GrEd_SetElementsGroup");
  EXPECT_EQ(group.Count(), 2);  // the pipe and the node, not the plain line
  const std::vector<std::string> prompts = doc_->GetSession().Prompts();
  auto at = [&](const char* prompt) {
    return std::find(prompts.begin(), prompts.end(), prompt) - prompts.begin();
  };
  EXPECT_LT(at(kReversePrompt), at(kGroupEditingPrompt));
  EXPECT_LT(at(kGroupEditingPrompt), static_cast<long>(prompts.size()));
}

}  // namespace
}  // namespace kestrana::editing
