// Arcs, and entities whose plane faces down or is tilted: read as world
// values, written back as read while unchanged and in their plane's values
// once changed.
#include <gtest/gtest.h>

#include <cmath>

#include "dxf/tags.h"
#include "dxf_test_util.h"

namespace kestrana::dxf {
namespace {

using host::Point3;
using memhost::MemDocument;
using testing::MinimalDxf;
using testing::Read;
using testing::RoundTrip;

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180;

template <class T>
T& Only(MemDocument& doc, const char* type) {
  for (auto* e : doc.ModelSpaceBlock().MemEntities())
    if (e->AsHostEntity().EntityName() == type) return dynamic_cast<T&>(*e);
  throw std::runtime_error(std::string("no ") + type);
}

void ExpectPoint(const Point3& p, double x, double y) {
  EXPECT_NEAR(p.x, x, 1e-9) << "x of (" << p.x << ", " << p.y << ")";
  EXPECT_NEAR(p.y, y, 1e-9) << "y of (" << p.x << ", " << p.y << ")";
}

// The values of the tags with `code` in the entity that starts with
// "0\n<type>\n5\n<handle>\n" in `text`.
std::vector<double> Values(const std::string& text, const std::string& handle,
                           int code) {
  std::vector<double> out;
  Tokenizer tok(text);
  Tag t;
  bool inside = false;
  while (tok.Next(t)) {
    if (t.code == 0) inside = false;
    if (t.code == 5 && t.value == handle) inside = true;
    if (inside && t.code == code) out.push_back(RealValue(t));
  }
  return out;
}

TEST(Arcs, KeepTheirStateAndWhatTheModelDoesNotKnow) {
  MemDocument doc;
  auto& arc = static_cast<memhost::MemArc&>(
      doc.ModelSpace().AddArc({1, 2, 0}, 3, 0.25, 4.5));
  arc.SetTrueColor(3);
  auto back = RoundTrip(doc);
  auto& a2 = Only<memhost::MemArc>(*back, "ARC");
  EXPECT_EQ(a2.center_, arc.center_);
  EXPECT_EQ(a2.radius_, 3);
  EXPECT_NEAR(a2.start_angle_, 0.25, 1e-12);
  EXPECT_NEAR(a2.end_angle_, 4.5, 1e-12);
  EXPECT_EQ(a2.color_, 3);

  // An arc as another program writes it: thickness and a comment.
  const std::string foreign =
      "0\nARC\n5\n2A\n100\nAcDbEntity\n8\n0\n100\nAcDbCircle\n10\n1.5\n20\n"
      "2\n30\n0\n40\n2.0\n39\n0.5\n100\nAcDbArc\n50\n10\n51\n200.0\n";
  auto doc2 = Read(MinimalDxf(foreign));
  EXPECT_NE(WriteDxf(*doc2).find(foreign), std::string::npos);
  auto& a3 = Only<memhost::MemArc>(*doc2, "ARC");
  EXPECT_NEAR(a3.Length(), 2 * 190 * kDeg, 1e-12);
  a3.SetEndAngle(kPi / 2);
  EXPECT_NE(WriteDxf(*doc2).find(
                "100\nAcDbCircle\n10\n1.5\n20\n2\n30\n0\n40\n2.0\n39\n0.5\n"
                "100\nAcDbArc\n50\n10\n 51\n90.0\n"),
            std::string::npos);
}

// What mirroring in a CAD program writes: each entity with normal (0,0,-1)
// and its values in that plane, whose X axis is the world's -X.
const char* kMirrored =
    "0\nCIRCLE\n5\n30\n8\n0\n10\n3\n20\n4\n30\n0\n40\n1\n"
    "210\n0\n220\n0\n230\n-1\n"
    "0\nARC\n5\n31\n8\n0\n10\n3\n20\n4\n30\n0\n40\n1\n50\n10\n51\n80\n"
    "210\n0\n220\n0\n230\n-1\n"
    "0\nTEXT\n5\n32\n8\n0\n10\n5\n20\n5\n30\n0\n40\n1\n1\nhi\n50\n30\n"
    "210\n0\n220\n0\n230\n-1\n"
    "0\nELLIPSE\n5\n33\n8\n0\n10\n0\n20\n0\n30\n0\n11\n2\n21\n0\n31\n0\n"
    "210\n0\n220\n0\n230\n-1\n40\n0.5\n41\n0\n42\n1.5707963267948966\n"
    "0\nHATCH\n5\n34\n100\nAcDbEntity\n8\n0\n100\nAcDbHatch\n10\n0\n20\n0\n"
    "30\n0\n210\n0\n220\n0\n230\n-1\n"
    "2\nSOLID\n70\n1\n71\n0\n91\n1\n92\n2\n72\n0\n73\n1\n93\n3\n"
    "10\n0\n20\n0\n10\n1\n20\n0\n10\n1\n20\n1\n97\n0\n75\n0\n76\n1\n98\n0\n"
    "0\nINSERT\n5\n35\n8\n0\n66\n1\n2\nB\n10\n2\n20\n0\n30\n0\n50\n0\n"
    "210\n0\n220\n0\n230\n-1\n"
    "0\nATTRIB\n5\n36\n8\n0\n10\n14\n20\n20\n30\n0\n40\n1\n1\nv\n2\nTAG\n"
    "70\n0\n210\n0\n220\n0\n230\n-1\n"
    "0\nSEQEND\n5\n37\n8\n0\n";

std::string MirroredDrawing() {
  std::string text = MinimalDxf(kMirrored);
  text.insert(text.find("0\nENDSEC\n0\nSECTION\n2\nENTITIES"),
              "0\nBLOCK\n5\n20\n8\n0\n2\nB\n70\n0\n10\n0\n20\n0\n30\n0\n3\nB\n"
              "0\nLINE\n5\n21\n8\n0\n10\n0\n20\n0\n30\n0\n11\n1\n21\n0\n31\n0\n"
              "0\nENDBLK\n5\n22\n8\n0\n");
  return text;
}

TEST(Planes, EntitiesFacingDownAreHeldInWorldValues) {
  auto doc = Read(MirroredDrawing());
  ExpectPoint(Only<memhost::MemCircle>(*doc, "CIRCLE").Center(), -3, 4);

  // 10 to 80 degrees in the plane is 100 to 170 from above.
  auto& arc = Only<memhost::MemArc>(*doc, "ARC");
  EXPECT_NEAR(arc.StartAngle(), 100 * kDeg, 1e-12);
  EXPECT_NEAR(arc.EndAngle(), 170 * kDeg, 1e-12);
  ExpectPoint(arc.StartPoint(), -3 + std::cos(100 * kDeg),
              4 + std::sin(100 * kDeg));

  // The text runs at 150 degrees from (-5,5); its letters stand to the
  // right of that direction, up at 60 degrees (120 in its plane).
  auto& text = Only<memhost::MemText>(*doc, "TEXT");
  ExpectPoint(text.InsertionPoint(), -5, 5);
  EXPECT_NEAR(text.Rotation(), 150 * kDeg, 1e-12);
  ExpectPoint(text.Corners()[3], -4.5, 5 + std::sqrt(3) / 2);

  // The quarter from (2,0) to (0,-1), clockwise from above.
  auto& ellipse = Only<memhost::MemEllipse>(*doc, "ELLIPSE");
  Point3 minor = memhost::EllipseMinorAxis(ellipse.major_axis_, ellipse.ratio_,
                                           ellipse.normal_);
  auto at = [&](double t) {
    return Point3{ellipse.center_.x + ellipse.major_axis_.x * std::cos(t) +
                      minor.x * std::sin(t),
                  ellipse.center_.y + ellipse.major_axis_.y * std::cos(t) +
                      minor.y * std::sin(t),
                  0};
  };
  ExpectPoint(at(ellipse.start_param_), 0, -1);
  ExpectPoint(at(ellipse.end_param_), 2, 0);

  auto& hatch = Only<memhost::MemHatch>(*doc, "HATCH");
  EXPECT_EQ(hatch.loops_.at(0).vertices,
            (std::vector<double>{0, 0, -1, 0, -1, 1}));

  // The insert is the block mirrored in X, and so is its attribute.
  auto& ref = Only<memhost::MemBlockReference>(*doc, "INSERT");
  ExpectPoint(ref.InsertionPoint(), -2, 0);
  Point3 end = ref.BlockTransform().Apply({1, 0, 0});
  ExpectPoint(end, -3, 0);
  ExpectPoint(ref.Attributes().at(0)->InsertionPoint(), -14, 20);
  // The attribute reads backwards, to the west of where it starts.
  host::BoundingBox box = ref.GetBoundingBox();
  EXPECT_LT(box.min.x, -14.1);
  EXPECT_NEAR(box.max.x, -2, 1e-9);
}

TEST(Planes, UnchangedAsReadChangedInThePlanesValues) {
  auto doc = Read(MirroredDrawing());
  EXPECT_NE(WriteDxf(*doc).find(kMirrored), std::string::npos);

  // Everything moves 10 to the east: in the planes' values, 10 to the west.
  for (auto* e : doc->ModelSpaceBlock().MemEntities())
    e->AsHostEntity().Move({0, 0, 0}, {10, 0, 0});
  auto& arc = Only<memhost::MemArc>(*doc, "ARC");
  arc.SetEndAngle(arc.EndAngle() + 5 * kDeg);
  std::string out = WriteDxf(*doc);
  EXPECT_EQ(Values(out, "30", 10), (std::vector<double>{-7}));
  EXPECT_EQ(Values(out, "31", 10), (std::vector<double>{-7}));
  // 175 degrees from above is 5 in the plane: the start angle changed.
  std::vector<double> start = Values(out, "31", 50);
  ASSERT_EQ(start.size(), 1u);
  EXPECT_NEAR(start[0], 5, 1e-9);
  EXPECT_EQ(Values(out, "31", 51), (std::vector<double>{80}));
  EXPECT_EQ(Values(out, "32", 10), (std::vector<double>{-5}));
  EXPECT_EQ(Values(out, "35", 10), (std::vector<double>{-8}));
  EXPECT_EQ(Values(out, "36", 10), (std::vector<double>{4}));
  EXPECT_EQ(Values(out, "34", 10), (std::vector<double>{0, -10, -9, -9}));
  // The normals stay; the insert keeps its scales.
  EXPECT_EQ(Values(out, "35", 230), (std::vector<double>{-1}));
  EXPECT_TRUE(Values(out, "35", 41).empty());

  // Read again, the world values are where they were moved to.
  auto back = Read(out);
  ExpectPoint(Only<memhost::MemCircle>(*back, "CIRCLE").Center(), 7, 4);
  ExpectPoint(Only<memhost::MemText>(*back, "TEXT").InsertionPoint(), 5, 5);
  auto& ref = Only<memhost::MemBlockReference>(*back, "INSERT");
  ExpectPoint(ref.BlockTransform().Apply({1, 0, 0}), 7, 0);
  ExpectPoint(ref.Attributes().at(0)->InsertionPoint(), -4, 20);
  EXPECT_NEAR(Only<memhost::MemArc>(*back, "ARC").EndAngle(), 175 * kDeg, 1e-9);
  EXPECT_EQ(Only<memhost::MemHatch>(*back, "HATCH").loops_.at(0).vertices,
            (std::vector<double>{10, 0, 9, 0, 9, 1}));
  // A new text facing down is written in its plane's values as well.
  auto& fresh = static_cast<memhost::MemText&>(
      back->ModelSpace().AddText("new", {1, 2, 0}, 1));
  fresh.normal_ = {0, 0, -1};
  fresh.SetRotation(kPi);
  std::string again = WriteDxf(*back);
  EXPECT_EQ(Values(again, fresh.Handle(), 10), (std::vector<double>{-1}));
  EXPECT_EQ(Values(again, fresh.Handle(), 20), (std::vector<double>{2}));
  EXPECT_TRUE(Values(again, fresh.Handle(), 50).empty());  // 0 in the plane
  EXPECT_EQ(Values(again, fresh.Handle(), 230), (std::vector<double>{-1}));
}

TEST(Planes, TiltedPlanesKeepTheirValues) {
  const std::string tilted =
      "0\nCIRCLE\n5\n40\n8\n0\n10\n1\n20\n2\n30\n3\n40\n1\n"
      "210\n0.6\n220\n0\n230\n0.8\n";
  auto doc = Read(MinimalDxf(tilted));
  auto& circle = Only<memhost::MemCircle>(*doc, "CIRCLE");
  EXPECT_EQ(circle.center_, (Point3{1, 2, 3}));
  EXPECT_EQ(circle.normal_, (Point3{0.6, 0, 0.8}));
  EXPECT_THROW(circle.Move({0, 0, 0}, {1, 0, 0}), host::HostError);
  circle.SetRadius(2);
  std::string out = WriteDxf(*doc);
  EXPECT_NE(out.find("10\n1\n20\n2\n30\n3\n 40\n2.0\n210\n0.6\n220\n0\n230\n"
                     "0.8\n"),
            std::string::npos);
}

}  // namespace
}  // namespace kestrana::dxf
