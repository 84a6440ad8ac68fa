#include "tests/render/picture.h"

namespace kestrana::render {
namespace {

std::string Stroke(const SvgNode& node) { return node.Attr("stroke"); }

TEST_F(PictureTest, ColoursComeFromTheEntityOrItsLayer) {
  NewLayer("Green", 3);
  auto& by_layer = Model().AddLine({0, 0, 0}, {1, 0, 0});
  by_layer.SetLayer("Green");
  auto& own = Model().AddLine({0, 1, 0}, {1, 1, 0});
  own.SetLayer("Green");
  own.SetTrueColor(1);
  auto& white = Model().AddLine({0, 2, 0}, {1, 2, 0});  // layer 0 is white
  auto& grey = Model().AddLine({0, 3, 0}, {1, 3, 0});
  grey.SetTrueColor(250);
  auto& by_block = Model().AddLine({0, 4, 0}, {1, 4, 0});
  by_block.SetTrueColor(host::color::kByBlock);
  SvgDocument svg = Picture();

  EXPECT_EQ(Stroke(Drawn(svg, by_layer)), "#00ff00");
  EXPECT_EQ(Stroke(Drawn(svg, own)), "#ff0000");
  EXPECT_EQ(Stroke(Drawn(svg, white)), "#000000");
  EXPECT_EQ(Stroke(Drawn(svg, grey)), "#333333");
  EXPECT_EQ(Stroke(Drawn(svg, by_block)), "#000000");  // outside any block
  EXPECT_EQ(Drawn(svg, by_layer).Attr("data-layer"), "Green");
}

TEST_F(PictureTest, ByBlockAndLayerZeroFollowTheInsertThroughNesting) {
  NewLayer("Net", 4);     // cyan
  NewLayer("Other", 1);   // red
  NewLayer("Blocks", 6);  // magenta
  host::Block& inner = NewBlock("Inner");
  auto& inner_by_block = inner.AddLine({0, 0, 0}, {1, 0, 0});
  inner_by_block.SetTrueColor(host::color::kByBlock);
  auto& inner_zero = inner.AddLine({0, 1, 0}, {1, 1, 0});  // layer 0, ByLayer
  host::Block& outer = NewBlock("Outer");
  auto& outer_by_block = outer.AddCircle({0, 0, 0}, 1);
  outer_by_block.SetTrueColor(host::color::kByBlock);
  auto& outer_other = outer.AddCircle({0, 0, 0}, 2);
  outer_other.SetLayer("Other");
  outer.InsertBlock({0, 0, 0}, "Inner", 1, 1, 1, 0)
      .SetTrueColor(host::color::kByBlock);

  // ByLayer on "Net": ByBlock means cyan, layer 0 means "Net".
  auto& plain = Model().InsertBlock({0, 0, 0}, "Outer", 1, 1, 1, 0);
  plain.SetLayer("Net");
  // Yellow on "Blocks": ByBlock means yellow, layer 0 still means the layer.
  auto& yellow = Model().InsertBlock({10, 0, 0}, "Outer", 1, 1, 1, 0);
  yellow.SetLayer("Blocks");
  yellow.SetTrueColor(2);
  SvgDocument svg = Picture();

  auto by_block = svg.root.WithHandle(outer_by_block.Handle());
  auto nested_by_block = svg.root.WithHandle(inner_by_block.Handle());
  auto nested_zero = svg.root.WithHandle(inner_zero.Handle());
  auto other = svg.root.WithHandle(outer_other.Handle());
  ASSERT_EQ(by_block.size(), 2u);
  ASSERT_EQ(nested_by_block.size(), 2u);
  ASSERT_EQ(nested_zero.size(), 2u);
  ASSERT_EQ(other.size(), 2u);
  EXPECT_EQ(Stroke(*by_block[0]), "#00ffff");
  EXPECT_EQ(Stroke(*nested_by_block[0]), "#00ffff");
  EXPECT_EQ(Stroke(*nested_zero[0]), "#00ffff");
  EXPECT_EQ(nested_zero[0]->Attr("data-layer"), "Net");
  EXPECT_EQ(Stroke(*other[0]), "#ff0000");
  EXPECT_EQ(Stroke(*by_block[1]), "#ffff00");
  EXPECT_EQ(Stroke(*nested_by_block[1]), "#ffff00");
  EXPECT_EQ(Stroke(*nested_zero[1]), "#ff00ff");
  EXPECT_EQ(Stroke(*other[1]), "#ff0000");
}

TEST_F(PictureTest, FrozenAndOffLayersAndInvisibleEntitiesAreHidden) {
  NewLayer("Frozen", 1).SetFreeze(true);
  NewLayer("Off", 2).SetLayerOn(false);
  auto& shown = Model().AddLine({0, 0, 0}, {1, 0, 0});
  auto& frozen = Model().AddLine({0, 1, 0}, {1, 1, 0});
  frozen.SetLayer("Frozen");
  auto& off = Model().AddCircle({0, 0, 0}, 1);
  off.SetLayer("Off");
  auto& invisible = Model().AddText("gone", {0, 0, 0}, 1);
  invisible.SetVisible(false);
  SvgDocument svg = Picture();

  EXPECT_TRUE(IsDrawn(svg, shown));
  EXPECT_FALSE(IsDrawn(svg, frozen));
  EXPECT_FALSE(IsDrawn(svg, off));
  EXPECT_FALSE(IsDrawn(svg, invisible));
}

TEST_F(PictureTest, AnInsertsLayerHidesAllWhenFrozenAndLayerZeroWhenOff) {
  NewLayer("Other", 1);
  NewLayer("Host", 3);
  host::Block& block = NewBlock("Node");
  auto& zero = block.AddLine({0, 0, 0}, {1, 0, 0});
  auto& other = block.AddLine({0, 1, 0}, {1, 1, 0});
  other.SetLayer("Other");
  block.AddAttribute(1, 0, "Label", {0, 2, 0}, "LABEL", "N-1");
  auto& ref = Model().InsertBlock({0, 0, 0}, "Node", 1, 1, 1, 0);
  ref.SetLayer("Host");
  host::AttributeReference& label = *ref.GetAttributes().at(0);
  label.SetLayer("Host");
  Model().AddLine({5, 5, 0}, {6, 6, 0});  // keeps the picture from being empty

  doc_.GetLayers().Item("Host").SetLayerOn(false);
  SvgDocument off = Picture();
  EXPECT_FALSE(IsDrawn(off, zero));
  EXPECT_TRUE(IsDrawn(off, other));
  EXPECT_FALSE(IsDrawn(off, label));

  doc_.GetLayers().Item("Host").SetLayerOn(true);
  doc_.GetLayers().Item("Host").SetFreeze(true);
  SvgDocument frozen = Picture();
  EXPECT_FALSE(IsDrawn(frozen, zero));
  EXPECT_FALSE(IsDrawn(frozen, other));
  EXPECT_FALSE(IsDrawn(frozen, label));

  // Layer 0 itself frozen: the contents drawn on it belong to "Host".
  doc_.GetLayers().Item("Host").SetFreeze(false);
  doc_.SetActiveLayer(doc_.GetLayers().Item("Other"));
  doc_.GetLayers().Item("0").SetFreeze(true);
  SvgDocument zero_frozen = Picture();
  EXPECT_TRUE(IsDrawn(zero_frozen, zero));
  EXPECT_TRUE(IsDrawn(zero_frozen, label));
}

TEST_F(PictureTest, InvisibleInsertsAndAttributesShowNothing) {
  host::Block& block = NewBlock("Node");
  auto& line = block.AddLine({0, 0, 0}, {1, 0, 0});
  block.AddAttribute(1, 0, "Shown", {0, 1, 0}, "SHOWN", "a");
  block.AddAttribute(1, 1, "Hidden", {0, 2, 0}, "HIDDEN", "b");  // mode 1
  auto& ref = Model().InsertBlock({0, 0, 0}, "Node", 1, 1, 1, 0);
  auto& invisible = Model().InsertBlock({10, 0, 0}, "Node", 1, 1, 1, 0);
  invisible.SetVisible(false);
  SvgDocument svg = Picture();

  auto attributes = ref.GetAttributes();
  EXPECT_TRUE(IsDrawn(svg, *attributes.at(0)));
  EXPECT_FALSE(IsDrawn(svg, *attributes.at(1)));
  EXPECT_EQ(svg.root.WithHandle(line.Handle()).size(), 1u);
  EXPECT_FALSE(IsDrawn(svg, invisible));
  EXPECT_FALSE(IsDrawn(svg, *invisible.GetAttributes().at(0)));
  // The definitions themselves stay out of inserts.
  auto texts = svg.root.All("text");
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_EQ(texts[0]->text, "a");
}

TEST_F(PictureTest, AttributesTakeTheInsertsColourByBlock) {
  NewLayer("Net", 5);
  host::Block& block = NewBlock("Node");
  block.AddAttribute(1, 0, "Label", {0, 0, 0}, "LABEL", "N-1")
      .SetTrueColor(host::color::kByBlock);
  auto& ref = Model().InsertBlock({0, 0, 0}, "Node", 1, 1, 1, 0);
  ref.SetLayer("Net");
  SvgDocument svg = Picture();
  EXPECT_EQ(Drawn(svg, *ref.GetAttributes().at(0)).Attr("fill"), "#0000ff");
}

TEST_F(PictureTest, ALayerFilterTreatsTheOtherLayersAsOff) {
  NewLayer("Pipes", 5);
  NewLayer("Labels", 3);
  auto& pipe = Model().AddLine({0, 0, 0}, {10, 0, 0});
  pipe.SetLayer("Pipes");
  auto& label = Model().AddText("P-1", {0, 1, 0}, 1);
  label.SetLayer("Labels");
  host::Block& block = NewBlock("Node");
  auto& node_zero = block.AddCircle({0, 0, 0}, 1);
  auto& node_label = block.AddText("N", {0, 0, 0}, 0.5);
  node_label.SetLayer("Labels");
  Model().InsertBlock({10, 0, 0}, "Node", 1, 1, 1, 0).SetLayer("Pipes");

  SvgDocument svg = Picture(OnLayers({"pipes"}));
  EXPECT_TRUE(IsDrawn(svg, pipe));
  EXPECT_TRUE(IsDrawn(svg, node_zero));
  EXPECT_FALSE(IsDrawn(svg, label));
  EXPECT_FALSE(IsDrawn(svg, node_label));
}

}  // namespace
}  // namespace kestrana::render
