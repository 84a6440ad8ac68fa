#include <gtest/gtest.h>

#include "core/general.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "memhost/document.h"

namespace kestrana::core {
namespace {

TEST(CombinedLabel, PiecesAndErrors) {
  EXPECT_EQ(General::EntityLabelFromCombined("Pipe;Sewer A;P-12"), "P-12");
  EXPECT_EQ(General::EntityNetworkFromCombined("Pipe;Sewer A;P-12"), "Sewer A");
  EXPECT_EQ(General::EntityNetworkFromCombined("Node;B"), "B");
  EXPECT_EQ(General::EntityLabelFromCombined("Node;B;"), "");
  EXPECT_THROW(General::EntityLabelFromCombined("Node;B"), std::out_of_range);
  EXPECT_THROW(General::EntityNetworkFromCombined("Node"), std::out_of_range);
}

TEST(ElementRecord, TypeAndNetworkOfAnyEntity) {
  memhost::MemDocument doc;
  host::Block& ms = doc.ModelSpace();
  host::Entity& pipe = ms.AddLightWeightPolyline({0, 0, 1, 1});
  host::Entity& bare = ms.AddLine({}, {1, 0, 0});
  host::Entity& empty = ms.AddLine({}, {2, 0, 0});
  host::Entity& damaged = ms.AddLine({}, {3, 0, 0});
  pipe.SetXData({{1001, host::XValue("Kestrana")},
                 {1000, host::XValue("Pipe;Water 1;P-3")},
                 {1000, host::XValue("PressurePipe")}});
  empty.SetXData({{1001, host::XValue("Kestrana")}});
  damaged.SetXData(
      {{1001, host::XValue("Kestrana")}, {1000, host::XValue("Pipe")}});
  EXPECT_EQ(General::GetElementType(pipe), "PressurePipe");
  EXPECT_EQ(General::GetElementNetwork(pipe), "Water 1");
  EXPECT_EQ(General::GetElementType(bare), "Nothing");
  EXPECT_EQ(General::GetElementNetwork(bare), "Nothing");
  EXPECT_EQ(General::GetElementType(empty), "Nothing");
  EXPECT_EQ(General::GetElementNetwork(empty), "Nothing");
  // A record cut short is no element either, and raises nothing.
  EXPECT_EQ(General::GetElementType(damaged), "");
  EXPECT_EQ(General::GetElementNetwork(damaged), "");
}

TEST(ElementRecord, NodeTypeFollowsPipeType) {
  EXPECT_EQ(General::GetNodeTypeFromPipeType("GravityPipe"), "GravityNode");
  EXPECT_EQ(General::GetNodeTypeFromPipeType("PressurePipe"), "PressureNode");
  EXPECT_EQ(General::GetNodeTypeFromPipeType("anything"), "PressureNode");
}

TEST(ObjectIdList, ExistsAndExclude) {
  EXPECT_FALSE(General::Check_ID_Exists("42", ""));
  EXPECT_TRUE(General::Check_ID_Exists("42", "17;42;"));
  EXPECT_FALSE(General::Check_ID_Exists("4", "17;42;"));
  EXPECT_TRUE(General::Check_ID_Exists("", "17;42;"));  // the empty last piece
  EXPECT_EQ(General::ExcludeID("42", "17;42;99;"), "17;99;");
  EXPECT_EQ(General::ExcludeID("42", "42;"), "");
  EXPECT_EQ(General::ExcludeID("5", ""), "");
  EXPECT_EQ(General::ExcludeID("42", "0042;17;42;"), "17;");
  // Non-numeric pieces count as 0.
  EXPECT_EQ(General::ExcludeID("0", "abc;7;"), "7;");
  EXPECT_EQ(General::ExcludeID("7", "abc;7;"), "abc;");
}

TEST(ReferenceList, DeleteByEnding) {
  EXPECT_EQ(General::DeleteReferenceInReferenceString(
                ";RelatedTo17;RelatedTo117;RelatedTo42", "17", 0),
            ";RelatedTo42");
  EXPECT_EQ(General::DeleteReferenceInReferenceString(";RelatedTo17", "17", 0),
            "");
  EXPECT_EQ(General::DeleteReferenceInReferenceString("17;42;", "42", 1),
            "17;");
  EXPECT_EQ(General::DeleteReferenceInReferenceString("17;42;", "42", 2), "");
  EXPECT_EQ(General::DeleteReferenceInReferenceString("", "42", 0), "");
  EXPECT_EQ(General::DeleteReferenceInReferenceString("", "42", 1), "");
  // Piece 0 of a reference list and the last piece of an ID list are
  // outside their forms and dropped.
  EXPECT_EQ(General::DeleteReferenceInReferenceString("X;RelatedTo1", "9", 0),
            ";RelatedTo1");
  EXPECT_EQ(General::DeleteReferenceInReferenceString("1;2;3", "9", 1), "1;2;");
}

TEST(ReferenceList, ReplaceWholeEntries) {
  EXPECT_EQ(General::ReplaceReferenceInReferenceString(
                ";RelatedTo17;RelatedTo42", "RelatedTo17", "RelatedTo99"),
            ";RelatedTo99;RelatedTo42");
  EXPECT_EQ(General::ReplaceReferenceInReferenceString(
                ";RelatedTo17;RelatedTo17", "RelatedTo17", "RelatedTo5"),
            ";RelatedTo5;RelatedTo5");
  EXPECT_EQ(General::ReplaceReferenceInReferenceString(
                ";RelatedTo117", "RelatedTo17", "RelatedTo5"),
            ";RelatedTo117");
  EXPECT_EQ(General::ReplaceReferenceInReferenceString(
                "RelatedTo1;RelatedTo2", "RelatedTo2", "RelatedTo3"),
            ";RelatedTo3");
  EXPECT_EQ(General::ReplaceReferenceInReferenceString("", "a", "b"), "");
}

Record Pipe(const char* shape, double span, double rise, host::XValue cells) {
  Record record = Record::WithCodes(kPipeRecordCodes);
  record.SetText(PipeField::kSectionShape, shape);
  record.SetReal(PipeField::kSpan, span);
  record.SetReal(PipeField::kRise, rise);
  record.Set(PipeField::kNumCells, 1070, cells);
  return record;
}

TEST(SectionSizeString, AllShapesAndCellCounts) {
  const char* circular = "SectionShape_Circular";
  const char* box = "SectionShape_Box";
  EXPECT_EQ(
      General::BuildSectionSizeString(Pipe(circular, 200, 200, int16_t{1})),
      "%%c200");
  EXPECT_EQ(General::BuildSectionSizeString(Pipe(box, 1200, 800, int16_t{1})),
            "1200X800");
  EXPECT_EQ(
      General::BuildSectionSizeString(Pipe(circular, 200, 200, int16_t{2})),
      "2 %%c200");
  EXPECT_EQ(General::BuildSectionSizeString(Pipe(box, 1500, 1000, int16_t{2})),
            "2 (1500X1000)");
  EXPECT_EQ(General::BuildSectionSizeString(Pipe(box, 1.5, 0.75, int16_t{3})),
            "3 (1.5X0.75)");
  // Any shape but circular is drawn as a box; cells may be stored as text.
  EXPECT_EQ(General::BuildSectionSizeString(Pipe("Egg", 8, 12, "1")), "8X12");
}

TEST(SlopeString, Ratio) {
  EXPECT_EQ(General::BuildSlopeString(0.0033, "0", "0", "2"), "1/300");
  EXPECT_EQ(General::BuildSlopeString(0.0033, "1", "0", "2"), "1/305");
  EXPECT_EQ(General::BuildSlopeString(0.0033, "2", "0", "2"), "1/303");
  EXPECT_EQ(General::BuildSlopeString(0.0033, "7", "0", "2"), "1/303");
  EXPECT_EQ(General::BuildSlopeString(-0.0033, "0", "0", "2"), "1/-300");
  EXPECT_EQ(General::BuildSlopeString(0, "0", "0", "2"), "0");
  EXPECT_EQ(General::BuildSlopeString(1e-6, "0", "0", "2"), "0");
  EXPECT_EQ(General::BuildSlopeString(-1e-6, "0", "0", "2"), "0");
  // 1/0.004 = 250: a tie of 25 at the tens, which goes to the even 2.
  EXPECT_EQ(General::BuildSlopeString(0.004, "0", "0", "2"), "1/250");
  EXPECT_EQ(General::BuildSlopeString(1 / 265.0, "0", "0", "2"), "1/260");
  EXPECT_EQ(General::BuildSlopeString(1 / 275.0, "0", "0", "2"), "1/280");
  EXPECT_EQ(General::BuildSlopeString(1 / 302.5, "1", "0", "2"), "1/300");
}

TEST(SlopeString, DecimalAndPercent) {
  EXPECT_EQ(General::BuildSlopeString(0.00525, "3", "0", "0"), "0.005");
  EXPECT_EQ(General::BuildSlopeString(0.00535, "4", "1", "0"), "0.00540");
  EXPECT_EQ(General::BuildSlopeString(0.0125, "1", "0", "1"), "1.2%");
  EXPECT_EQ(General::BuildSlopeString(0.0135, "1", "1", "1"), "1.40%");
  EXPECT_EQ(General::BuildSlopeString(0.012345, "2", "0", "1"), "1.23%");
  EXPECT_EQ(General::BuildSlopeString(-0.00004, "2", "0", "1"), "0.00%");
  // A pattern sum outside the table writes the rounded number in general
  // form.
  EXPECT_EQ(General::BuildSlopeString(0.0125, "2", "2", "1"), "0.0125");
  EXPECT_EQ(General::BuildSlopeString(0.0125, "0", "0", "3"), std::nullopt);
  EXPECT_EQ(General::BuildSlopeString(0.0125, "0", "0", "x"), "0");
}

}  // namespace
}  // namespace kestrana::core
