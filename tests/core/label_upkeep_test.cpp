// Connection and label upkeep: a pipe taken out of a node, labels already
// taken, labels in natural order.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/record.h"
#include "editing/editing.h"
#include "host/host.h"
#include "support/network_elements.h"

namespace kestrana::core {
namespace {

class LabelUpkeep : public ::testing::Test {
 protected:
  // N-1 -P-1-> N-2 -P-2-> N-3 and N-4 -P-3-> N-2.
  void SetUp() override {
    doc_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc_, {"Sewer", kGravity});
    test::NetworkElements sewer(*doc_, "Sewer");
    auto& n1 = sewer.AddNode("N-1", 0, 0, 102, 100);
    n2_ = &sewer.AddNode("N-2", 50, 0, 101, 98);
    auto& n3 = sewer.AddNode("N-3", 100, 0, 100, 97);
    auto& n4 = sewer.AddNode("N-4", 50, 50, 102, 99.4);
    p1_ = &sewer.AddPipe("P-1", {0, 0, 50, 0}, n1, *n2_,
                         {.start_invert = 100, .end_invert = 99.5});
    p2_ = &sewer.AddPipe("P-2", {50, 0, 100, 0}, *n2_, n3,
                         {.start_invert = 98.6, .end_invert = 97});
    p3_ = &sewer.AddPipe("P-3", {50, 50, 50, 0}, n4, *n2_,
                         {.start_invert = 99.4, .end_invert = 99.1});
  }
  Record N2() { return Record::ReadRequired(*n2_); }
  std::string Id(const host::Entity& e) { return IdText(e.ObjectID()); }

  std::unique_ptr<memhost::MemDocument> doc_;
  host::BlockReference* n2_ = nullptr;
  host::LwPolyline *p1_ = nullptr, *p2_ = nullptr, *p3_ = nullptr;
};

TEST_F(LabelUpkeep, APipeLeavesOneSideOfItsNodeAndTheSumpFollowsTheRest) {
  ASSERT_EQ(N2().Text(NodeField::kPipesAtStartLabels), ";RelatedToP-2");
  General::RemovePipeFromNode(*doc_, Id(*n2_), Id(*p2_), "Start");
  Record n2 = N2();
  EXPECT_EQ(n2.Text(NodeField::kPipesAtStartLabels), "");
  EXPECT_EQ(n2.Text(NodeField::kPipesAtStartOID), "");
  EXPECT_EQ(n2.Text(NodeField::kPipesAtEndLabels),
            ";RelatedToP-1;RelatedToP-3");
  // The sump is what the two pipes that end here give.
  const double from_the_rest = editing::Editing::GetSumpElevation(
      *doc_, "", n2.Text(NodeField::kPipesAtEndOID));
  EXPECT_EQ(n2.Number(NodeField::kSumpLevel), from_the_rest);
  EXPECT_NE(from_the_rest, 98);

  // One of two at the end: the other keeps its place in both lists.
  General::RemovePipeFromNode(*doc_, Id(*n2_), Id(*p1_), "End");
  EXPECT_EQ(N2().Text(NodeField::kPipesAtEndLabels), ";RelatedToP-3");
  EXPECT_EQ(N2().Text(NodeField::kPipesAtEndOID), ";RelatedTo" + Id(*p3_));

  // A pipe not listed on that side changes no list.
  General::RemovePipeFromNode(*doc_, Id(*n2_), Id(*p3_), "Start");
  EXPECT_EQ(N2().Text(NodeField::kPipesAtEndLabels), ";RelatedToP-3");

  EXPECT_THROW(
      General::RemovePipeFromNode(*doc_, "2130999999", Id(*p3_), "End"),
      host::HostError);
}

TEST_F(LabelUpkeep, LabelsAlreadyTaken) {
  EXPECT_TRUE(
      General::CheckLabelDuplication(*doc_, "Sewer", kGravityPipe, "P-2"));
  EXPECT_FALSE(
      General::CheckLabelDuplication(*doc_, "Sewer", kGravityPipe, "P-9"));
  EXPECT_FALSE(
      General::CheckLabelDuplication(*doc_, "Water", kPressurePipe, "P-2"));
  // Node labels ignore letter case.
  EXPECT_TRUE(
      General::CheckLabelDuplication(*doc_, "Sewer", kGravityNode, "n-3"));
  EXPECT_FALSE(
      General::CheckLabelDuplication(*doc_, "Sewer", kGravityNode, "N-30"));
  EXPECT_FALSE(General::CheckLabelDuplication(*doc_, "Sewer", "Annotation",
                                              "P-2Annotation"));
}

TEST(NumericSort, NumbersInLabelsSortAsNumbers) {
  EXPECT_EQ(General::NumericSort({"MH-10", "MH-2", "MH-10A"}),
            (std::vector<std::string>{"MH-2", "MH-10", "MH-10A"}));
  // Without a delimiter a letter prefix is kept before the number.
  EXPECT_EQ(General::NumericSort({"N10", "N9", "N1"}),
            (std::vector<std::string>{"N1", "N9", "N10"}));
  // Several pieces, the first delimiter found in any label.
  EXPECT_EQ(General::NumericSort({"2.10", "2.9", "10.1", "2"}),
            (std::vector<std::string>{"2", "2.9", "2.10", "10.1"}));
  EXPECT_TRUE(General::NumericSort({}).empty());
}

}  // namespace
}  // namespace kestrana::core
