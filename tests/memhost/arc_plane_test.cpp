// Arcs, and entities whose plane faces down or is tilted.
#include <gtest/gtest.h>

#include <cmath>

#include "memhost/document.h"
#include "support/host_errors.h"

namespace kestrana::memhost {
namespace {

using host::ErrorCode;
using host::HostError;

constexpr double kPi = 3.14159265358979323846;

void ExpectPoint(const Point3& p, double x, double y) {
  EXPECT_NEAR(p.x, x, 1e-9) << "x of (" << p.x << ", " << p.y << ")";
  EXPECT_NEAR(p.y, y, 1e-9) << "y of (" << p.x << ", " << p.y << ")";
}

using test::CodeOf;

class ArcTest : public ::testing::Test {
 protected:
  MemDocument doc;
  host::Block& ms = doc.ModelSpace();
};

TEST_F(ArcTest, EndsLengthAndTheWholeTurn) {
  auto& arc = ms.AddArc({1, 2, 3}, 2, 0, kPi / 2);
  EXPECT_EQ(arc.EntityName(), "ARC");
  EXPECT_EQ(arc.ObjectName(), "AcDbArc");
  EXPECT_EQ(arc.Kind(), host::EntityKind::kArc);
  ExpectPoint(arc.StartPoint(), 3, 2);
  ExpectPoint(arc.EndPoint(), 1, 4);
  EXPECT_EQ(arc.StartPoint().z, 3);
  EXPECT_NEAR(arc.Length(), kPi, 1e-12);
  // Counter-clockwise from start to end: 3/2 of a turn the other way.
  arc.SetStartAngle(kPi / 2);
  arc.SetEndAngle(0);
  EXPECT_NEAR(arc.Length(), 3 * kPi, 1e-12);
  arc.SetEndAngle(kPi / 2 + 2 * kPi);
  EXPECT_NEAR(arc.Length(), 4 * kPi, 1e-12);  // a whole circle
  arc.SetEndAngle(kPi / 2);
  EXPECT_EQ(arc.Length(), 0);  // equal angles: nothing

  EXPECT_EQ(CodeOf([&] {
              ms.AddArc({0, 0, 0}, 0, 0, 1);
            }),
            ErrorCode::kBadArgument);
  EXPECT_EQ(CodeOf([&] { arc.SetRadius(-1); }), ErrorCode::kBadArgument);
  EXPECT_EQ(CodeOf([&] { arc.SetEndAngle(NAN); }), ErrorCode::kBadArgument);
}

TEST_F(ArcTest, ExtentsFollowTheCurveNotTheCircle) {
  // From 45 to 135 degrees: the top of the circle, not its sides.
  auto& arc = ms.AddArc({0, 0, 0}, 10, kPi / 4, 3 * kPi / 4);
  host::BoundingBox box = arc.GetBoundingBox();
  double c = 10 * std::cos(kPi / 4);
  EXPECT_NEAR(box.min.x, -c, 1e-9);
  EXPECT_NEAR(box.max.x, c, 1e-9);
  EXPECT_NEAR(box.min.y, c, 1e-9);
  EXPECT_NEAR(box.max.y, 10, 1e-9);
  // The window selection sees the same curve.
  auto found = doc.SelectWindow({-8, 7, 0}, {8, 11, 0}, false, {});
  ASSERT_EQ(found.size(), 1u);
  EXPECT_TRUE(doc.SelectWindow({-8, 8, 0}, {8, 11, 0}, false, {}).empty());
}

TEST_F(ArcTest, IntersectionsOnlyWhereTheArcRuns) {
  auto& arc = ms.AddArc({0, 0, 0}, 5, 0, kPi);  // the upper half
  auto& across = ms.AddLine({-10, 3, 0}, {10, 3, 0});
  auto& below = ms.AddLine({-10, -3, 0}, {10, -3, 0});
  std::vector<double> hits =
      arc.IntersectWith(across, host::ExtendOption::kNone);
  ASSERT_EQ(hits.size(), 6u);
  ExpectPoint({hits[0], hits[1], 0}, 4, 3);
  ExpectPoint({hits[3], hits[4], 0}, -4, 3);
  EXPECT_TRUE(arc.IntersectWith(below, host::ExtendOption::kNone).empty());
  // Of the two circles' crossings only the upper one is on the arc.
  auto& circle = ms.AddCircle({5, 0, 0}, 5);
  hits = circle.IntersectWith(arc, host::ExtendOption::kNone);
  ASSERT_EQ(hits.size(), 3u);
  ExpectPoint({hits[0], hits[1], 0}, 2.5, std::sqrt(18.75));
}

TEST_F(ArcTest, MovedTurnedMirroredAndCopied) {
  auto& arc = static_cast<MemArc&>(ms.AddArc({1, 0, 0}, 1, 0, kPi / 2));
  arc.Rotate({0, 0, 0}, kPi / 2);
  ExpectPoint(arc.Center(), 0, 1);
  ExpectPoint(arc.StartPoint(), 0, 2);
  ExpectPoint(arc.EndPoint(), -1, 1);
  // Mirrored in Y the arc runs the other way: its ends change places so
  // that it still turns counter-clockwise.
  Affine mirror;
  mirror.a = -1;
  arc.Transform(mirror);
  ExpectPoint(arc.StartPoint(), 1, 1);
  ExpectPoint(arc.EndPoint(), 0, 2);
  EXPECT_NEAR(arc.Length(), kPi / 2, 1e-12);

  arc.SetXData({{1001, "Kestrana"}, {1000, "arc"}});
  auto& copy = dynamic_cast<host::Arc&>(arc.Copy());
  EXPECT_NE(copy.ObjectID(), arc.ObjectID());
  ExpectPoint(copy.StartPoint(), 1, 1);
  EXPECT_EQ(copy.GetXData("Kestrana"), arc.GetXData("Kestrana"));
}

TEST_F(ArcTest, BoundsAHatchWithLines) {
  // A half disc: the upper half circle closed by its diameter.
  auto& arc = ms.AddArc({0, 0, 0}, 2, 0, kPi);
  auto& diameter = ms.AddLine({-2, 0, 0}, {2, 0, 0});
  auto& hatch = ms.AddHatch(1, "SOLID", false);
  hatch.AppendOuterLoop({&arc, &diameter});
  auto loops = hatch.Loops();
  ASSERT_EQ(loops.size(), 1u);
  ASSERT_EQ(loops[0].edges.size(), 2u);
  EXPECT_EQ(loops[0].edges[0].type, host::HatchEdge::Type::kArc);
  EXPECT_NEAR(loops[0].edges[0].end_angle, kPi, 1e-12);
  host::BoundingBox box = hatch.GetBoundingBox();
  EXPECT_NEAR(box.max.y, 2, 1e-9);
  EXPECT_NEAR(box.min.y, 0, 1e-9);
}

// Entities facing down hold world values; letters of texts stand on the
// other side of their baseline.
TEST_F(ArcTest, TextsFacingDownHangBelowTheirBaseline) {
  auto& text = static_cast<MemText&>(ms.AddText("ABC", {10, 20, 0}, 2.0));
  text.normal_ = {0, 0, -1};
  auto corners = text.Corners();
  ExpectPoint(corners[0], 10, 20);
  EXPECT_GT(corners[1].x, 10);  // the baseline runs along the rotation
  ExpectPoint(corners[3], 10, 18);
  host::BoundingBox box = text.GetBoundingBox();
  EXPECT_NEAR(box.min.y, 18, 1e-9);
  EXPECT_NEAR(box.max.y, 20, 1e-9);
  // A middle-aligned text is centred on its anchor either way.
  text.SetAlignment(host::TextAlignment::kMiddleCenter);
  text.SetTextAlignmentPoint({0, 0, 0});
  Point3 start = text.InsertionPoint();
  EXPECT_NEAR(start.y, 1, 1e-9);
  EXPECT_LT(start.x, 0);
}

TEST_F(ArcTest, TiltedPlanesAreKeptButNotMovedOrIntersected) {
  // A circle in a vertical plane facing east: seen from above, a segment.
  auto& circle = static_cast<MemCircle&>(ms.AddCircle({0, 0, 5}, 2));
  circle.normal_ = {1, 0, 0};
  host::BoundingBox box = circle.GetBoundingBox();
  // The plane's X axis is the world's Y; its Z is the world's X.
  EXPECT_NEAR(box.min.y, -2, 1e-9);
  EXPECT_NEAR(box.max.y, 2, 1e-9);
  EXPECT_NEAR(box.min.x, 5, 1e-9);
  EXPECT_NEAR(box.max.x, 5, 1e-9);
  auto& line = ms.AddLine({0, 0, 0}, {10, 0, 0});
  EXPECT_EQ(CodeOf([&] {
              circle.Move({0, 0, 0}, {1, 0, 0});
            }),
            ErrorCode::kNotSupported);
  EXPECT_EQ(
      CodeOf([&] { circle.IntersectWith(line, host::ExtendOption::kNone); }),
      ErrorCode::kNotSupported);
  EXPECT_NEAR(circle.Center().z, 5, 0);  // nothing moved

  // A reference with a tilted attribute refuses to move as a whole.
  host::Block& block = doc.GetBlocks().Add({0, 0, 0}, "Tag");
  block.AddAttribute(1, 0, "p", {0, 0, 0}, "T", "v");
  auto& ref = static_cast<MemBlockReference&>(
      ms.InsertBlock({0, 0, 0}, "Tag", 1, 1, 1, 0));
  ref.Attributes()[0]->normal_ = {0, 1, 1};
  EXPECT_EQ(CodeOf([&] {
              ref.SetInsertionPoint({3, 3, 0});
            }),
            ErrorCode::kNotSupported);
  ExpectPoint(ref.insertion_, 0, 0);
}

}  // namespace
}  // namespace kestrana::memhost
