// Base plans from other CAD programs: kinds the system keeps as read are
// drawn from what the reader made of them (tests/dxf/files/plan_kinds.dxf,
// written by ezdxf), and what cannot be drawn is named.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "dxf/reader.h"
#include "picture.h"

namespace kestrana::render {
namespace {

using memhost::MemDocument;
using memhost::MemEntity;

std::string PlanKinds() {
  std::ifstream in(std::string(KESTRANA_SOURCE_DIR) +
                   "/tests/dxf/files/plan_kinds.dxf");
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

MemEntity& OnlyOf(MemDocument& doc, const std::string& type) {
  for (MemEntity* e : doc.ModelSpaceBlock().MemEntities())
    if (e->AsHostEntity().EntityName() == type) return *e;
  throw std::runtime_error("no " + type);
}

// The X, Y pairs of a path's data (its commands left out).
std::vector<std::pair<double, double>> PathPoints(const SvgNode& path) {
  std::vector<double> n = Numbers(path.Attr("d"));
  std::vector<std::pair<double, double>> out;
  for (size_t i = 0; i + 1 < n.size(); i += 2) out.push_back({n[i], n[i + 1]});
  return out;
}

class BasePlan : public ::testing::Test {
 protected:
  void SetUp() override { dxf::ReadDxf(doc_, PlanKinds()); }
  SvgDocument Picture() {
    result_ = RenderSvg(doc_);
    return ParseSvg(result_.svg);
  }
  std::vector<const SvgNode*> DrawnFor(const SvgDocument& svg,
                                       const std::string& type) {
    return svg.root.WithHandle(OnlyOf(doc_, type).AsHostObject().Handle());
  }

  MemDocument doc_;
  Result result_;
};

TEST_F(BasePlan, EveryKindOfThePlanIsDrawnAndTheRestNamed) {
  SvgDocument svg = Picture();
  for (const char* type : {"MTEXT", "LEADER", "SPLINE", "POLYLINE", "SOLID",
                           "3DFACE", "WIPEOUT", "IMAGE"})
    EXPECT_FALSE(DrawnFor(svg, type).empty()) << type;
  EXPECT_EQ(result_.skipped, (std::map<std::string, int>{{"MESH", 1}}));
}

TEST_F(BasePlan, OutlinesStandWhereTheFileSays) {
  SvgDocument svg = Picture();
  // SOLID lists its corners in a Z: drawn as the square, not a bow tie.
  auto solid = PathPoints(*DrawnFor(svg, "SOLID").at(0));
  ASSERT_GE(solid.size(), 4u);
  EXPECT_SVG_POINT(solid[0].first, solid[0].second, 70, 0);
  EXPECT_SVG_POINT(solid[1].first, solid[1].second, 80, 0);
  EXPECT_SVG_POINT(solid[2].first, solid[2].second, 80, 10);
  EXPECT_SVG_POINT(solid[3].first, solid[3].second, 70, 10);
  // The image's frame: 20 by 10 units from its insertion point.
  auto image = PathPoints(*DrawnFor(svg, "IMAGE").at(0));
  ASSERT_GE(image.size(), 4u);
  double min_x = 1e9, max_x = -1e9, min_y = 1e9, max_y = -1e9;
  for (auto [x, y] : image) {
    min_x = std::min(min_x, x), max_x = std::max(max_x, x);
    min_y = std::min(min_y, -y), max_y = std::max(max_y, -y);
  }
  EXPECT_NEAR(min_x, 130, 1e-6);
  EXPECT_NEAR(max_x, 150, 1e-6);
  EXPECT_NEAR(min_y, 0, 1e-6);
  EXPECT_NEAR(max_y, 10, 1e-6);
  // The first segment of the classic polyline bulges into a half circle
  // below its chord from (50, 0) to (60, 0).
  auto polyline = PathPoints(*DrawnFor(svg, "POLYLINE").at(0));
  double lowest = 0;
  for (auto [x, y] : polyline) lowest = std::min(lowest, -y);
  EXPECT_NEAR(lowest, -5, 0.05);
  // A clamped spline starts and ends at its end control points and leaves
  // the control polygon's corners.
  auto spline = PathPoints(*DrawnFor(svg, "SPLINE").at(0));
  ASSERT_GT(spline.size(), 4u);
  EXPECT_SVG_POINT(spline.front().first, spline.front().second, 30, 0);
  EXPECT_SVG_POINT(spline.back().first, spline.back().second, 45, 10);
  for (auto [x, y] : spline) EXPECT_FALSE(x == 35 && -y == 10);
}

TEST_F(BasePlan, MultilineTextAndDimensionBlock) {
  SvgDocument svg = Picture();
  std::string text;
  for (const SvgNode* node : DrawnFor(svg, "MTEXT")) {
    text += node->text;
    for (const SvgNode* child : node->All()) text += child->text;
  }
  EXPECT_NE(text.find("Manhole"), std::string::npos) << text;
  EXPECT_NE(text.find("MH-7"), std::string::npos) << text;
  EXPECT_EQ(text.find("\\P"), std::string::npos) << text;
  // The dimension draws its block: its lines carry the block's handles.
  auto* dimension =
      dynamic_cast<memhost::MemOtherEntity*>(&OnlyOf(doc_, "DIMENSION"));
  ASSERT_NE(dimension, nullptr);
  memhost::MemBlock* block = doc_.FindBlock(dimension->picture_block_);
  ASSERT_NE(block, nullptr);
  int drawn = 0;
  for (MemEntity* e : block->MemEntities())
    drawn += !svg.root.WithHandle(e->AsHostObject().Handle()).empty();
  EXPECT_GE(drawn, 3);
}

TEST(BasePlanAlone, NothingDrawableNamesWhatWasSkipped) {
  std::string text = PlanKinds();
  MemDocument doc;
  dxf::ReadDxf(doc, text);
  for (MemEntity* e : doc.ModelSpaceBlock().MemEntities())
    if (e->AsHostEntity().EntityName() != "MESH") e->AsHostEntity().Delete();
  try {
    RenderSvg(doc);
    ADD_FAILURE() << "drew a drawing of a lone mesh";
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("MESH"), std::string::npos)
        << e.what();
  }
}

}  // namespace
}  // namespace kestrana::render
