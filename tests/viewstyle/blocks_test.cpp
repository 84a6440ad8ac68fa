// The five block definitions a view style needs.
#include <gtest/gtest.h>

#include "styled_project.h"
#include "viewstyle/annotation_record.h"

namespace kestrana::viewstyle::test {
namespace {

class Blocks : public StyledProject {
 protected:
  std::vector<host::AttributeDefinition*> Definitions(const std::string& name) {
    std::vector<host::AttributeDefinition*> defs;
    for (host::Entity* e : doc_->GetBlocks().Item(name).Entities())
      if (e->Kind() == host::EntityKind::kAttributeDefinition)
        defs.push_back(&host::As<host::AttributeDefinition>(*e));
    return defs;
  }
  // The Y of each attribute definition, in pitches.
  std::vector<double> Lines(const std::string& name) {
    const double pitch = 1.5 * core::NumericValue(style_[4]);
    std::vector<double> lines;
    for (host::AttributeDefinition* d : Definitions(name)) {
      EXPECT_EQ(d->InsertionPoint().x, 0);
      lines.push_back(d->InsertionPoint().y / pitch);
    }
    return lines;
  }
  // The first `count` items of a pipe kind shown.
  std::vector<int> FirstPipeItems(ElementKind kind, int count) {
    std::vector<int> fields;
    for (int i = 0; i < count; ++i)
      fields.push_back(ItemField(kind, static_cast<PipeItem>(i)));
    return fields;
  }
  void Define() { ViewStyle::DefineAttributeBlocks(*doc_, Format()); }
};

using L = std::vector<double>;

TEST_F(Blocks, PipeLinesLeaveAGapForThePipe) {
  std::vector<int> shown = FirstPipeItems(ElementKind::kGravityPipe, 3);
  for (int f : FirstPipeItems(ElementKind::kPressurePipe, 3))
    shown.push_back(f);
  ShowOnly(shown);
  Define();
  EXPECT_EQ(Lines(kGravityPipeAttributeBlock), (L{2, 1, -1}));
  EXPECT_EQ(Lines(kPressurePipeAttributeBlock), (L{2, 1, -1}));

  // Five lines: gravity pipes round 2.5 to even, pressure pipes up.
  shown = FirstPipeItems(ElementKind::kGravityPipe, 5);
  for (int f : FirstPipeItems(ElementKind::kPressurePipe, 5))
    shown.push_back(f);
  ShowOnly(shown);
  Define();
  EXPECT_EQ(Lines(kGravityPipeAttributeBlock), (L{2, 1, -1, -2, -3}));
  EXPECT_EQ(Lines(kPressurePipeAttributeBlock), (L{3, 2, 1, -1, -2}));

  // One line: below a gravity pipe, above a pressure pipe.
  ShowOnly({5, 19});
  Define();
  EXPECT_EQ(Lines(kGravityPipeAttributeBlock), (L{-1}));
  EXPECT_EQ(Lines(kPressurePipeAttributeBlock), (L{1}));
}

TEST_F(Blocks, NodeLinesStandAboveThePoint) {
  const ElementKind kind = ElementKind::kGravityNode;
  ShowOnly({ItemField(kind, NodeItem::kLabel),
            ItemField(kind, NodeItem::kGround), CoordinatesField(kind)});
  SetItem(4, "2.5");
  Define();
  EXPECT_EQ(Lines(kGravityNodeAttributeBlock), (L{4, 3, 2, 1}));
  // A kind with nothing shown gets an empty definition.
  EXPECT_EQ(doc_->GetBlocks().Item(kPressureNodeAttributeBlock).Count(), 0);
  EXPECT_EQ(doc_->GetBlocks().Item(kPressurePipeAttributeBlock).Count(), 0);

  std::vector<host::AttributeDefinition*> defs =
      Definitions(kGravityNodeAttributeBlock);
  for (size_t k = 0; k < defs.size(); ++k) {
    const std::string number = std::to_string(k + 1);
    EXPECT_EQ(defs[k]->PromptString(), "Attribute " + number);
    EXPECT_EQ(defs[k]->TagString(), "Attribute_" + number);
    EXPECT_EQ(defs[k]->TextString(), "");
    EXPECT_EQ(defs[k]->Mode(), 0);
    EXPECT_EQ(defs[k]->Height(), 2.5);
    EXPECT_EQ(defs[k]->Layer(), "0");
    EXPECT_EQ(defs[k]->StyleName(), "Standard");
  }
}

TEST_F(Blocks, ArrowIsAFilledTriangleAlongX) {
  SetItem(4, "2");
  Define();
  host::Block& arrow = doc_->GetBlocks().Item(kDirectionArrowBlock);
  ASSERT_EQ(arrow.Count(), 2);
  auto& triangle = host::As<host::LwPolyline>(arrow.Item(0));
  EXPECT_EQ(triangle.Coordinates(),
            (std::vector<double>{-1.5, -1, -1.5, 1, 1.5, 0}));
  EXPECT_TRUE(triangle.Closed());
  EXPECT_EQ(triangle.Layer(), "0");
  auto& fill = host::As<host::Hatch>(arrow.Item(1));
  EXPECT_EQ(fill.PatternName(), "SOLID");
  EXPECT_TRUE(fill.AssociativeHatch());
  EXPECT_EQ(fill.NumberOfLoops(), 1);
  EXPECT_EQ(fill.Layer(), "0");
}

TEST_F(Blocks, RedefiningReplacesContentsInTheStylesTextStyle) {
  doc_->GetTextStyles().Add("Romans");
  host::TextStyle& before = doc_->ActiveTextStyle();
  SetItem(3, "Romans");
  Define();
  Define();  // no second set of attributes
  EXPECT_EQ(Definitions(kGravityPipeAttributeBlock).size(), 3u);
  EXPECT_EQ(doc_->GetBlocks().Item(kDirectionArrowBlock).Count(), 2);
  EXPECT_EQ(Definitions(kGravityPipeAttributeBlock)[0]->StyleName(), "Romans");
  EXPECT_EQ(&doc_->ActiveTextStyle(), &before);

  // A text style the drawing lacks fails before any block is touched.
  SetItem(3, "Gothic");
  ShowOnly({5});
  EXPECT_THROW(Define(), host::HostError);
  EXPECT_EQ(Definitions(kGravityPipeAttributeBlock).size(), 3u);
  EXPECT_EQ(&doc_->ActiveTextStyle(), &before);
}

}  // namespace
}  // namespace kestrana::viewstyle::test
