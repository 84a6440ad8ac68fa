// Annotation texts of every item kind, and the line counts they make.
#include <gtest/gtest.h>

#include "core/project_record.h"
#include "styled_project.h"

namespace kestrana::viewstyle::test {
namespace {

using V = std::vector<std::string>;

class AnnotationStrings : public StyledProject {
 protected:
  V Strings(host::Entity& entity) {
    return ViewStyle::GetAnnotationStrings(*doc_, entity, Format());
  }
  // Every pipe item of a kind shown, numbers to two places.
  void ShowAllPipeItems(ElementKind kind) {
    std::vector<int> fields;
    for (int i = 0; i < kPipeTextItems; ++i)
      fields.push_back(ItemField(kind, static_cast<PipeItem>(i)));
    ShowOnly(fields);
  }
};

TEST_F(AnnotationStrings, GravityPipeShowsEveryItemInRowOrder) {
  ShowAllPipeItems(ElementKind::kGravityPipe);
  SetItem(6, "1;L=; m;1;0");
  SetItem(9, "1;;;");
  SetItem(11, "1;DS IL=;;3;0");
  host::LwPolyline& pipe = sewer_->AddPipeWithNodes("P-7", {0, 0, 30, 40},
                                                    {.span = 300,
                                                     .start_invert = 98,
                                                     .end_invert = 97.75,
                                                     .material = "Concrete"},
                                                    100, 99.5);
  EXPECT_EQ(Strings(pipe),
            (V{"P-7", "L=50.0 m", "%%c300", "S=0.50%", "Concrete",
               "US IL=98.00", "DS IL=97.750", "US GL=100.00", "DS GL=99.50",
               // Cover to the top of a 300 mm pipe, depth to its invert.
               "US Cover=1.70 m", "DS Cover=1.45 m", "US Depth=2.00 m",
               "DS Depth=1.75 m"}));
  // Nothing shown, nothing made; other kinds' items do not count.
  ShowOnly({ItemField(ElementKind::kPressurePipe, PipeItem::kLabel)});
  EXPECT_EQ(Strings(pipe), V{});
}

TEST_F(AnnotationStrings, SlopesArePositiveInEveryNotation) {
  const int slope = ItemField(ElementKind::kPressurePipe, PipeItem::kSlope);
  ShowOnly({slope});
  // Drawn against the flow: the start lies lower than the end.
  host::LwPolyline& pipe = water_->AddPipeWithNodes(
      "W-1", {100, 0, 0, 0}, {.start_invert = 10, .end_invert = 10.5});
  SetItem(slope, "1;;;2;0;1");
  EXPECT_EQ(Strings(pipe), V{"0.50%"});
  SetItem(slope, "1;i=;;3;0;0");
  EXPECT_EQ(Strings(pipe), V{"i=0.005"});
  SetItem(slope, "1;;;2;0;2");
  EXPECT_EQ(Strings(pipe), V{"1/200"});
  // An unknown notation writes no value, only prefix and suffix.
  SetItem(slope, "1;<;>;2;0;7");
  EXPECT_EQ(Strings(pipe), V{"<>"});
}

TEST_F(AnnotationStrings, RiseInLevelUnitsFollowsUnitsAndShape) {
  MakeProject("US");
  const int cover = ItemField(ElementKind::kGravityPipe, PipeItem::kStartCover);
  ShowOnly({cover, ItemField(ElementKind::kGravityPipe, PipeItem::kSize)});
  SetItem(cover, "1;;;2;0");
  // 12 inches is one foot; a box rise is stored in feet already.
  host::LwPolyline& circular = sewer_->AddPipeWithNodes(
      "C", {0, 0, 10, 0}, {.span = 12, .start_invert = 90}, 95);
  host::LwPolyline& box = sewer_->AddPipeWithNodes("B", {0, 5, 10, 5},
                                                   {.shape = "SectionShape_Box",
                                                    .span = 4,
                                                    .rise = 3,
                                                    .cells = 2,
                                                    .start_invert = 90},
                                                   95);
  EXPECT_EQ(Strings(circular), (V{"%%c12", "4.00"}));
  EXPECT_EQ(Strings(box), (V{"2 (4X3)", "2.00"}));
}

TEST_F(AnnotationStrings, NodesShowLevelsThenCoordinates) {
  const ElementKind kind = ElementKind::kGravityNode;
  ShowOnly({ItemField(kind, NodeItem::kLabel),
            ItemField(kind, NodeItem::kGround),
            ItemField(kind, NodeItem::kSump), ItemField(kind, NodeItem::kDepth),
            CoordinatesField(kind)});
  // Rounded to one place, then written with two decimals.
  SetItem(ItemField(kind, NodeItem::kDepth), "1;D=; m;1;1");
  SetItem(CoordinatesField(kind), "1;1;0");
  host::BlockReference& node =
      sewer_->AddNode("MH-1", 1234.567, 9876.25, 101.255, 98.5);
  EXPECT_EQ(Strings(node), (V{"MH-1", "GL=101.26", "IL=98.50", "D=2.80 m",
                              "E 1234.6", "N 9876.2"}));
  // Pressure nodes read their own rows.
  host::BlockReference& valve = water_->AddNode("V-1", 5, 6, 20, 18);
  EXPECT_EQ(Strings(valve), V{});
  ShowOnly({ItemField(ElementKind::kPressureNode, NodeItem::kLabel),
            CoordinatesField(ElementKind::kPressureNode)});
  EXPECT_EQ(Strings(valve), (V{"V-1", "E 5.00", "N 6.00"}));
}

TEST_F(AnnotationStrings, DamagedElementsFailAndOthersGiveNothing) {
  ShowOnly({ItemField(ElementKind::kGravityPipe, PipeItem::kLabel)});
  host::LwPolyline& pipe = sewer_->AddPipeWithNodes("P-1", {0, 0, 10, 0});
  core::Record record = RecordOf(pipe);
  record.SetText(core::PipeField::kEndNodeOID, ";RelatedTo999999");
  record.Write(pipe);
  // The end node's ground is read even when no level is shown.
  EXPECT_THROW(Strings(pipe), host::HostError);

  host::Point& marker = doc_->ModelSpace().AddPoint({});
  marker.SetXData({{1001, "Kestrana"}, {1000, "x"}, {1000, "ViewStylePoint"}});
  EXPECT_EQ(Strings(marker), V{});

  ShowOnly({ItemField(ElementKind::kGravityPipe, PipeItem::kSlope)});
  host::LwPolyline& dot = sewer_->AddPipeWithNodes("P-0", {3, 3, 3, 3});
  EXPECT_THROW(Strings(dot), std::domain_error);
}

TEST_F(AnnotationStrings, LineCountsPerKind) {
  EXPECT_EQ(ViewStyle::GetNumberOfAnnotationStrings(Format()),
            (AnnotationCounts{3, 3, 3, 2}));  // the Standard style
  ShowAllPipeItems(ElementKind::kPressurePipe);
  SetItem(ArrowField(ElementKind::kPressurePipe), "1");
  SetItem(CoordinatesField(ElementKind::kGravityNode), "1;2;0");
  SetItem(ItemField(ElementKind::kPressureNode, NodeItem::kDepth), "1;;;2;0");
  EXPECT_EQ(ViewStyle::GetNumberOfAnnotationStrings(Format()),
            (AnnotationCounts{0, 13, 2, 1}));
}

}  // namespace
}  // namespace kestrana::viewstyle::test
