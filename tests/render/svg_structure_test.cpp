#include <memory>
#include <stdexcept>

#include "render/colors.h"
#include "tests/render/picture.h"

namespace kestrana::render {
namespace {

TEST_F(PictureTest, ViewFitsTheDrawingWithAMarginAndTurnsYOver) {
  auto& line = Model().AddLine({0, 0, 0}, {100, 50, 0});
  SvgDocument svg = Picture();

  // 5 % of the larger side around the extent; SVG y runs down.
  EXPECT_EQ(Numbers(svg.root.Attr("viewBox")),
            (std::vector<double>{-5, -55, 110, 60}));
  EXPECT_EQ(svg.root.Attr("width"), "1200");
  EXPECT_EQ(svg.root.Attr("height"), "655");
  const SvgNode& drawn = Drawn(svg, line);
  EXPECT_EQ(drawn.name, "line");
  EXPECT_SVG_POINT(drawn.Num("x1"), drawn.Num("y1"), 0, 0);
  EXPECT_SVG_POINT(drawn.Num("x2"), drawn.Num("y2"), 100, 50);

  // A white background under everything, and lines 1/800 of the view.
  const SvgNode& background = svg.root.children.at(1);
  EXPECT_EQ(background.name, "rect");
  EXPECT_EQ(background.Attr("fill"), "#ffffff");
  auto groups = svg.root.All("g");
  ASSERT_FALSE(groups.empty());
  EXPECT_EQ(groups[0]->Attr("id"), "drawing");
  EXPECT_NEAR(groups[0]->Num("stroke-width"), 110.0 / 800, 1e-12);
  EXPECT_EQ(result_.elements, 1);
}

TEST_F(PictureTest, TallDrawingsAreTallPictures) {
  Model().AddLine({0, 0, 0}, {10, 200, 0});
  SvgDocument svg = Picture(SizedTo(500));
  EXPECT_EQ(svg.root.Attr("height"), "500");
  EXPECT_EQ(svg.root.Attr("width"), "68");  // 500 * 30 / 220, rounded
}

TEST_F(PictureTest, UnknownKindsAreCountedAndNamedInAComment) {
  auto& msp = doc_.ModelSpaceBlock();
  msp.AddNew(std::make_unique<memhost::MemOtherEntity>("DIMENSION",
                                                       "AcDbRotatedDimension"));
  msp.AddNew(std::make_unique<memhost::MemOtherEntity>("DIMENSION",
                                                       "AcDbRotatedDimension"));
  msp.AddNew(std::make_unique<memhost::MemOtherEntity>("MTEXT", "AcDbMText"));
  Model().AddLine({0, 0, 0}, {1, 1, 0});
  SvgDocument svg = Picture();

  EXPECT_EQ(result_.skipped,
            (std::map<std::string, int>{{"DIMENSION", 2}, {"MTEXT", 1}}));
  bool noted = false;
  for (const auto& c : svg.comments)
    noted = noted || (c.find("3 entities") != std::string::npos &&
                      c.find("2 DIMENSION, 1 MTEXT") != std::string::npos);
  EXPECT_TRUE(noted);
  EXPECT_EQ(result_.elements, 1);
}

TEST_F(PictureTest, ABlockDefinitionIsDrawnInItsOwnCoordinates) {
  host::Block& block = NewBlock("Mark");
  block.AddCircle({0, 0, 0}, 2);
  block.AddAttribute(1, 0, "Label", {3, 0, 0}, "LABEL", "x");
  Model().InsertBlock({100, 100, 0}, "Mark", 1, 1, 1, 0);

  SvgDocument svg = Picture(BlockOf("mark"));  // names ignore case
  auto circles = svg.root.All("circle");
  ASSERT_EQ(circles.size(), 1u);
  EXPECT_SVG_POINT(circles[0]->Num("cx"), circles[0]->Num("cy"), 0, 0);
  // Outside an insert an attribute definition shows its tag.
  auto texts = svg.root.All("text");
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_EQ(texts[0]->text, "LABEL");
  EXPECT_EQ(svg.root.All("g").size(), 1u);  // no insert in the block itself

  EXPECT_THROW(Picture(BlockOf("Nothing")), std::invalid_argument);
}

TEST_F(PictureTest, AWindowKeepsWhatItTouchesAndClipsTheRest) {
  auto& inside = Model().AddLine({0, 0, 0}, {5, 5, 0});
  auto& crossing = Model().AddLine({8, 8, 0}, {30, 8, 0});
  auto& outside = Model().AddCircle({50, 50, 0}, 1);
  SvgDocument svg = Picture(Windowed({10, 10, -1, -1}));

  EXPECT_TRUE(IsDrawn(svg, inside));
  EXPECT_TRUE(IsDrawn(svg, crossing));
  EXPECT_FALSE(IsDrawn(svg, outside));
  EXPECT_EQ(Numbers(svg.root.Attr("viewBox")),
            (std::vector<double>{-1, -10, 11, 11}));
  auto clips = svg.root.All("clipPath");
  ASSERT_EQ(clips.size(), 1u);
  EXPECT_EQ(svg.root.All("g")[0]->Attr("clip-path"), "url(#window)");

  try {
    Picture(Windowed({100, 100, 110, 110}));
    FAIL() << "an empty window was drawn";
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find(
                  "no entities to draw in the window 100,100,110,110"),
              std::string::npos);
  }
  EXPECT_THROW(Picture(Windowed({0, 0, 0, 10})), std::invalid_argument);
}

TEST_F(PictureTest, NothingToDrawAndUnknownLayersAreRefused) {
  EXPECT_THROW(Picture(), std::runtime_error);
  Model().AddLine({0, 0, 0}, {1, 0, 0});
  EXPECT_THROW(Picture(OnLayers({"Missing"})), std::invalid_argument);
  NewLayer("Empty", 3);
  try {
    Picture(OnLayers({"Empty"}));
    FAIL() << "a picture without entities was drawn";
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("on layers Empty"), std::string::npos);
  }
}

TEST_F(PictureTest, BrokenBlockReferencesAreSkippedNotFollowedForever) {
  host::Block& a = NewBlock("A");
  host::Block& b = NewBlock("B");
  a.AddLine({0, 0, 0}, {1, 0, 0});
  a.InsertBlock({0, 0, 0}, "B", 1, 1, 1, 0);
  b.InsertBlock({0, 0, 0}, "A", 1, 1, 1, 0);  // A holds B holds A
  Model().InsertBlock({0, 0, 0}, "A", 1, 1, 1, 0);
  auto& lost = static_cast<memhost::MemBlockReference&>(
      Model().InsertBlock({5, 5, 0}, "B", 1, 1, 1, 0));
  lost.block_name_ = "Gone";

  SvgDocument svg = Picture();
  EXPECT_EQ(result_.skipped.at("INSERT of a block inside itself"), 1);
  EXPECT_EQ(result_.skipped.at("INSERT of a missing block"), 1);
  // A's line once: A -> B -> A stops at the second A.
  EXPECT_EQ(svg.root.All("line").size(), 1u);
}

TEST_F(PictureTest, TextIsEscapedAndEmptyGroupsAreLeftOut) {
  Model().AddText("a<b & \"c\"", {0, 0, 0}, 1);
  host::Block& hidden = NewBlock("Hidden");
  hidden.AddLine({0, 0, 0}, {1, 0, 0}).SetVisible(false);
  Model().InsertBlock({0, 0, 0}, "Hidden", 1, 1, 1, 0);

  SvgDocument svg = Picture();
  ASSERT_EQ(svg.root.All("text").size(), 1u);
  EXPECT_EQ(svg.root.All("text")[0]->text, "a<b & \"c\"");
  EXPECT_EQ(svg.root.All("g").size(), 1u);  // only the drawing's own group
}

TEST(ColorTable, FollowsTheHostsIndexColours) {
  EXPECT_EQ(AciRgb(1), 0xFF0000u);
  EXPECT_EQ(AciRgb(5), 0x0000FFu);
  EXPECT_EQ(AciRgb(7), 0xFFFFFFu);
  EXPECT_EQ(AciRgb(8), 0x808080u);
  EXPECT_EQ(AciRgb(9), 0xC0C0C0u);
  // A hue row: pure and half-saturated tints at falling brightness.
  EXPECT_EQ(AciRgb(10), 0xFF0000u);
  EXPECT_EQ(AciRgb(11), 0xFF7F7Fu);
  EXPECT_EQ(AciRgb(12), 0xCC0000u);
  EXPECT_EQ(AciRgb(17), 0x7F3F3Fu);
  EXPECT_EQ(AciRgb(19), 0x4C2626u);
  EXPECT_EQ(AciRgb(30), 0xFF7F00u);
  EXPECT_EQ(AciRgb(140), 0x00BFFFu);
  EXPECT_EQ(AciRgb(249), 0x4C262Fu);
  EXPECT_EQ(AciRgb(250), 0x333333u);
  EXPECT_EQ(AciRgb(254), 0xD6D6D6u);
  EXPECT_EQ(AciRgb(255), 0xFFFFFFu);
  EXPECT_EQ(AciRgb(0), 0u);
  EXPECT_EQ(AciRgb(256), 0u);
  // White is the foreground colour: black on the white background.
  EXPECT_EQ(DrawRgb(7), 0x000000u);
  EXPECT_EQ(DrawRgb(255), 0xFFFFFFu);
  EXPECT_EQ(HexColor(0x00BFFF), "#00bfff");
}

}  // namespace
}  // namespace kestrana::render
