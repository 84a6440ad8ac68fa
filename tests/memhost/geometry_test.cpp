#include <gtest/gtest.h>

#include <cmath>

#include "memhost/document.h"

namespace kestrana::memhost {
namespace {

using host::ExtendOption;

class IntersectTest : public ::testing::Test {
 protected:
  MemDocument doc;
  host::Block& ms = doc.ModelSpace();

  std::vector<double> Cross(const host::Entity& a, const host::Entity& b,
                            ExtendOption o = ExtendOption::kNone) {
    return a.IntersectWith(b, o);
  }
};

TEST_F(IntersectTest, CrossingTouchingAndParallelSegments) {
  auto& a = ms.AddLine({0, 0, 0}, {10, 0, 0});
  auto& b = ms.AddLine({5, -5, 0}, {5, 5, 0});
  EXPECT_EQ(Cross(a, b), (std::vector<double>{5, 0, 0}));
  auto& touching = ms.AddLine({10, 0, 0}, {10, 7, 0});
  EXPECT_EQ(Cross(a, touching), (std::vector<double>{10, 0, 0}));
  auto& parallel = ms.AddLine({0, 1, 0}, {10, 1, 0});
  EXPECT_TRUE(Cross(a, parallel).empty());
  auto& short_of = ms.AddLine({11, -1, 0}, {11, 1, 0});
  EXPECT_TRUE(Cross(a, short_of).empty());
  // Extending this entity reaches the other.
  EXPECT_EQ(Cross(a, short_of, ExtendOption::kThis),
            (std::vector<double>{11, 0, 0}));
  EXPECT_TRUE(Cross(a, short_of, ExtendOption::kOther).empty());
}

TEST_F(IntersectTest, CollinearOverlapGivesItsEnds) {
  auto& a = ms.AddLine({0, 0, 0}, {10, 0, 0});
  auto& b = ms.AddLine({12, 0, 0}, {4, 0, 0});
  EXPECT_EQ(Cross(a, b), (std::vector<double>{4, 0, 0, 10, 0, 0}));
  auto& apart = ms.AddLine({11, 0, 0}, {15, 0, 0});
  EXPECT_TRUE(Cross(a, apart).empty());
  auto& end_to_end = ms.AddLine({10, 0, 0}, {15, 0, 0});
  EXPECT_EQ(Cross(a, end_to_end), (std::vector<double>{10, 0, 0}));
}

TEST_F(IntersectTest, PolylinesInSegmentOrderWithoutRepeats) {
  // A zig-zag crossing a horizontal line three times, and touching it at a
  // shared vertex once (reported once, not per segment).
  auto& zig = ms.AddLightWeightPolyline({0, -1, 2, 1, 4, -1, 6, 0, 8, 2});
  auto& line = ms.AddLine({-1, 0, 0}, {9, 0, 0});
  auto pts = Cross(zig, line);
  ASSERT_EQ(pts.size(), 9u);
  EXPECT_NEAR(pts[0], 1, 1e-12);
  EXPECT_NEAR(pts[3], 3, 1e-12);
  EXPECT_NEAR(pts[6], 6, 1e-12);
  // Seen from the line, points come along the line.
  auto back = Cross(line, zig);
  ASSERT_EQ(back.size(), 9u);
  EXPECT_NEAR(back[0], 1, 1e-12);
  EXPECT_NEAR(back[6], 6, 1e-12);
}

TEST_F(IntersectTest, ArcsAndCircles) {
  auto& circle = ms.AddCircle({0, 0, 0}, 5);
  auto& line = ms.AddLine({-10, 3, 0}, {10, 3, 0});
  auto pts = Cross(line, circle);
  ASSERT_EQ(pts.size(), 6u);
  EXPECT_NEAR(pts[0], -4, 1e-9);
  EXPECT_NEAR(pts[3], 4, 1e-9);
  auto& tangent = ms.AddLine({-10, 5, 0}, {10, 5, 0});
  EXPECT_EQ(Cross(tangent, circle).size(), 3u);
  // Upper half-circle arc from (5,0) to (-5,0), counter-clockwise.
  auto& arc = ms.AddLightWeightPolyline({5, 0, -5, 0});
  arc.SetBulge(0, 1.0);
  auto& below = ms.AddLine({-10, -3, 0}, {10, -3, 0});
  EXPECT_TRUE(Cross(arc, below).empty());
  EXPECT_EQ(Cross(arc, line).size(), 6u);
}

TEST_F(IntersectTest, UnsupportedKindsRaise) {
  auto& text = ms.AddText("x", {0, 0, 0}, 1);
  auto& line = ms.AddLine({0, 0, 0}, {1, 0, 0});
  EXPECT_THROW(Cross(text, line), host::HostError);
}

TEST(Affine, InsertMapsOriginToInsertionPoint) {
  Affine m = Affine::Insert({1, 1, 0}, {10, 20, 0}, 2, 3, 1, M_PI / 2);
  Point3 p = m.Apply({1, 1, 0});
  EXPECT_NEAR(p.x, 10, 1e-12);
  EXPECT_NEAR(p.y, 20, 1e-12);
  Point3 q = m.Apply({2, 1, 0});  // one unit along X, scaled 2, turned 90°
  EXPECT_NEAR(q.x, 10, 1e-12);
  EXPECT_NEAR(q.y, 22, 1e-12);
  Point3 back = m.Inverse().Apply(q);
  EXPECT_NEAR(back.x, 2, 1e-12);
  EXPECT_NEAR(back.y, 1, 1e-12);
}

}  // namespace
}  // namespace kestrana::memhost
