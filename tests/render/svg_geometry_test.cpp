#include <cctype>

#include "dxf/reader.h"
#include "tests/render/picture.h"

namespace kestrana::render {
namespace {

struct Command {
  char op;
  std::vector<double> args;
};

std::vector<Command> PathCommands(const std::string& d) {
  std::vector<Command> out;
  for (size_t i = 0; i < d.size(); ++i) {
    if (!std::isalpha(static_cast<unsigned char>(d[i]))) continue;
    size_t next = i + 1;
    while (next < d.size() &&
           !std::isalpha(static_cast<unsigned char>(d[next])))
      ++next;
    out.push_back({d[i], Numbers(d.substr(i + 1, next - i - 1))});
    i = next - 1;
  }
  return out;
}

// The centre of a circular SVG arc, worked out from its end points and
// flags the way an SVG viewer does.
Point3 ArcCentre(double x1, double y1, const Command& arc) {
  double r = arc.args[0], x2 = arc.args[5], y2 = arc.args[6];
  bool large = arc.args[3] != 0, sweep = arc.args[4] != 0;
  double hx = (x1 - x2) / 2, hy = (y1 - y2) / 2;
  double d2 = hx * hx + hy * hy;
  double k = std::sqrt(std::max(0.0, (r * r - d2) / d2));
  if (large == sweep) k = -k;
  return {k * hy + (x1 + x2) / 2, -k * hx + (y1 + y2) / 2, 0};
}

// The drawing points a path passes through (Y turned back) and the centres
// of its arcs in drawing coordinates.
struct Trace {
  std::vector<Point3> points;
  std::vector<Point3> centres;
};

Trace Follow(const std::string& d) {
  Trace trace;
  double x = 0, y = 0;
  for (const Command& c : PathCommands(d)) {
    if (c.op == 'M' || c.op == 'L') {
      x = c.args[0];
      y = c.args[1];
    } else if (c.op == 'A') {
      Point3 centre = ArcCentre(x, y, c);
      trace.centres.push_back({centre.x, -centre.y, 0});
      x = c.args[5];
      y = c.args[6];
    } else {
      continue;
    }
    trace.points.push_back({x, -y, 0});
  }
  return trace;
}

void ExpectNear(const Point3& got, double x, double y) {
  EXPECT_NEAR(got.x, x, 1e-6) << "x of (" << got.x << ", " << got.y << ")";
  EXPECT_NEAR(got.y, y, 1e-6) << "y of (" << got.x << ", " << got.y << ")";
}

TEST_F(PictureTest, NestedInsertsCarryRotationScaleAndMirrorToTheContents) {
  host::Block& inner = NewBlock("Inner");
  auto& line = inner.AddLine({0, 0, 0}, {1, 0, 0});
  auto& circle = inner.AddCircle({1, 0, 0}, 0.5);
  host::Block& outer = NewBlock("Outer");
  outer.InsertBlock({2, 0, 0}, "Inner", 2, 2, 2, kPi / 2);
  // Mirrored in X, then turned a quarter and moved.
  Model().InsertBlock({10, 5, 0}, "Outer", -1, 1, 1, kPi / 2);
  SvgDocument svg = Picture();

  // Inner (0,0) -> outer (2,0) -> mirrored (-2,0) -> turned (0,-2) -> (10,3);
  // inner (1,0) -> outer (2,2) -> (-2,2) -> (-2,-2) -> (8,3).
  const SvgNode& l = Drawn(svg, line);
  EXPECT_SVG_POINT(l.Num("x1"), l.Num("y1"), 10, 3);
  EXPECT_SVG_POINT(l.Num("x2"), l.Num("y2"), 8, 3);
  const SvgNode& c = Drawn(svg, circle);
  EXPECT_EQ(c.name, "circle");
  EXPECT_SVG_POINT(c.Num("cx"), c.Num("cy"), 8, 3);
  EXPECT_NEAR(c.Num("r"), 1.0, 1e-9);
  // The contents sit in one group per insert, nested.
  auto groups = svg.root.All("g");
  ASSERT_EQ(groups.size(), 3u);
  EXPECT_EQ(groups[1]->Attr("data-block"), "Outer");
  EXPECT_EQ(groups[2]->Attr("data-block"), "Inner");
  EXPECT_EQ(groups[1]->children.at(0).name, "g");
}

TEST_F(PictureTest, UnequalScalesTurnCirclesIntoEllipses) {
  host::Block& block = NewBlock("Round");
  auto& circle = block.AddCircle({1, 0, 0}, 1);
  Model().InsertBlock({0, 0, 0}, "Round", 3, 1, 1, kPi / 6);
  SvgDocument svg = Picture();

  const SvgNode& e = Drawn(svg, circle);
  ASSERT_EQ(e.name, "ellipse");
  EXPECT_NEAR(e.Num("rx"), 3, 1e-9);
  EXPECT_NEAR(e.Num("ry"), 1, 1e-9);
  // Centre (3,0) turned by 30 degrees; the long axis turns with it.
  EXPECT_SVG_POINT(e.Num("cx"), e.Num("cy"), 3 * std::cos(kPi / 6),
                   3 * std::sin(kPi / 6));
  std::vector<double> rotate = Numbers(e.Attr("transform"));
  ASSERT_EQ(rotate.size(), 3u);
  EXPECT_NEAR(std::fmod(rotate[0] + 360, 180), 150,
              1e-6);  // -30 in SVG's sense
}

TEST_F(PictureTest, BulgesBecomeArcsOnTheirOwnSideEvenWhenMirrored) {
  // Bulge 1 from (0,0) to (2,0) is a half circle turning counter-clockwise,
  // below the chord; -0.414.. is a quarter circle above it.
  auto& pl = Model().AddLightWeightPolyline({0, 0, 2, 0, 4, 0});
  pl.SetBulge(0, 1);
  pl.SetBulge(1, -std::tan(kPi / 8));
  host::Block& block = NewBlock("Curve");
  auto& in_block = block.AddLightWeightPolyline({0, 0, 2, 0});
  in_block.SetBulge(0, 1);
  Model().InsertBlock({20, 0, 0}, "Curve", -1, 1, 1, 0);
  SvgDocument svg = Picture();

  Trace plan = Follow(Drawn(svg, pl).Attr("d"));
  ASSERT_EQ(plan.centres.size(), 3u);  // two quarters and one quarter
  ExpectNear(plan.points[0], 0, 0);
  ExpectNear(plan.points[1], 1, -1);
  ExpectNear(plan.points[2], 2, 0);
  ExpectNear(plan.centres[0], 1, 0);
  ExpectNear(plan.centres[1], 1, 0);
  // The quarter circle's centre lies below the chord (2,0)-(4,0).
  ExpectNear(plan.centres[2], 3, -1);
  ExpectNear(plan.points[3], 4, 0);

  // Mirroring flips the half circle to run clockwise from (20,0) to (18,0),
  // still below.
  Trace mirrored =
      Follow(svg.root.WithHandle(in_block.Handle()).at(0)->Attr("d"));
  ASSERT_EQ(mirrored.points.size(), 3u);
  ExpectNear(mirrored.points[1], 19, -1);
  ExpectNear(mirrored.centres[0], 19, 0);
  ExpectNear(mirrored.centres[1], 19, 0);
}

TEST_F(PictureTest, PolylinesSeenFromBelowAreTurnedOver) {
  // What the host makes of a mirrored copy: normal (0,0,-1), X reversed.
  auto& pl = static_cast<memhost::MemLwPolyline&>(
      Model().AddLightWeightPolyline({1, 0, 2, 0}));
  pl.SetBulge(0, 1);
  pl.normal_ = {0, 0, -1};
  SvgDocument svg = Picture();

  Trace t = Follow(Drawn(svg, pl).Attr("d"));
  ASSERT_EQ(t.points.size(), 3u);
  ExpectNear(t.points[0], -1, 0);
  ExpectNear(t.points[1], -1.5, -0.5);
  ExpectNear(t.points[2], -2, 0);
  ExpectNear(t.centres[0], -1.5, 0);
}

TEST_F(PictureTest, EllipsesWholeAndInPart) {
  auto& whole = Model().AddEllipse({10, 10, 0}, {0, 4, 0}, 0.5);
  auto& part = Model().AddEllipse({0, 0, 0}, {2, 0, 0}, 0.5);
  part.SetParameters(0, kPi / 2);
  SvgDocument svg = Picture();

  const SvgNode& w = Drawn(svg, whole);
  ASSERT_EQ(w.name, "ellipse");
  EXPECT_NEAR(w.Num("rx"), 4, 1e-9);
  EXPECT_NEAR(w.Num("ry"), 2, 1e-9);
  EXPECT_NEAR(std::fabs(Numbers(w.Attr("transform"))[0]), 90, 1e-9);

  // A quarter from the major axis end (2,0) to the minor axis end (0,1).
  auto commands = PathCommands(Drawn(svg, part).Attr("d"));
  ASSERT_EQ(commands.size(), 2u);
  EXPECT_EQ(commands[0].args, (std::vector<double>{2, 0}));
  ASSERT_EQ(commands[1].op, 'A');
  EXPECT_NEAR(commands[1].args[0], 2, 1e-9);
  EXPECT_NEAR(commands[1].args[1], 1, 1e-9);
  EXPECT_EQ(commands[1].args[4], 0);  // counter-clockwise in the plan
  EXPECT_SVG_POINT(commands[1].args[5], commands[1].args[6], 0, 1);
}

TEST_F(PictureTest, WidePolylinesAreDrawnAsWideAsTheyAre) {
  host::Block& block = NewBlock("Wide");
  auto& constant = block.AddLightWeightPolyline({0, 0, 10, 0, 10, 10});
  constant.SetConstantWidth(0.5);
  Model().InsertBlock({0, 0, 0}, "Wide", 2, 2, 1, 0);
  auto& taper = Model().AddLightWeightPolyline({0, 20, 10, 20, 20, 20});
  taper.SetWidth(0, 0, 2);  // an arrow head, then a thin tail
  auto& band = Model().AddLightWeightPolyline({30, 0, 40, 0, 50, 0});
  band.SetWidth(0, 1, 1);
  band.SetBulge(1, 1);
  band.SetWidth(1, 2, 2);
  SvgDocument svg = Picture();

  const SvgNode& c = Drawn(svg, constant);
  EXPECT_NEAR(c.Num("stroke-width"), 1.0, 1e-12);  // 0.5 at scale 2
  EXPECT_EQ(c.Attr("stroke-linecap"), "butt");

  auto pieces = svg.root.WithHandle(taper.Handle());
  ASSERT_EQ(pieces.size(), 2u);
  EXPECT_EQ(pieces[0]->Attr("fill"), "#000000");
  Trace head = Follow(pieces[0]->Attr("d"));
  ASSERT_EQ(head.points.size(), 4u);
  ExpectNear(head.points[0], 0, 20);
  ExpectNear(head.points[1], 10, 21);
  ExpectNear(head.points[2], 10, 19);
  ExpectNear(head.points[3], 0, 20);
  EXPECT_FALSE(pieces[1]->Has("fill"));  // the tail is a plain line
  EXPECT_EQ(pieces[1]->Attr("stroke"), "#000000");

  // A wide arc is the ring between two arcs about the same centre.
  auto rings = svg.root.WithHandle(band.Handle());
  ASSERT_EQ(rings.size(), 2u);
  Trace ring = Follow(rings[1]->Attr("d"));
  ASSERT_EQ(ring.centres.size(), 4u);
  for (const Point3& centre : ring.centres) ExpectNear(centre, 45, 0);
  ExpectNear(ring.points[0], 39, 0);
  ExpectNear(ring.points[2], 51, 0);
  ExpectNear(ring.points[3], 49, 0);
}

TEST_F(PictureTest, HatchesFillTheirLoopsAndLeaveHolesOpen) {
  auto& square = Model().AddLightWeightPolyline({0, 0, 10, 0, 10, 10, 0, 10});
  square.SetClosed(true);
  auto& hole = Model().AddCircle({5, 5, 0}, 2);
  auto& solid = Model().AddHatch(1, "SOLID", false);
  solid.AppendOuterLoop({&square});
  solid.AppendInnerLoop({&hole});
  solid.SetTrueColor(4);
  auto& a = Model().AddLine({20, 0, 0}, {30, 0, 0});
  auto& b = Model().AddLine({30, 0, 0}, {20, 10, 0});
  auto& c = Model().AddLine({20, 10, 0}, {20, 0, 0});
  auto& pattern = Model().AddHatch(1, "ANSI31", false);
  pattern.AppendOuterLoop({&a, &b, &c});
  SvgDocument svg = Picture();

  const SvgNode& s = Drawn(svg, solid);
  EXPECT_EQ(s.Attr("fill"), "#00ffff");
  EXPECT_EQ(s.Attr("fill-rule"), "evenodd");
  EXPECT_EQ(s.Attr("stroke"), "none");
  Trace t = Follow(s.Attr("d"));
  auto commands = PathCommands(s.Attr("d"));
  EXPECT_EQ(std::count_if(commands.begin(), commands.end(),
                          [](const Command& c) { return c.op == 'M'; }),
            2);
  for (const Point3& centre : t.centres) ExpectNear(centre, 5, 5);
  EXPECT_EQ(t.centres.size(), 4u);

  // Edge loops join into one closed outline; patterns show as a tint.
  const SvgNode& p = Drawn(svg, pattern);
  Trace edges = Follow(p.Attr("d"));
  ASSERT_EQ(edges.points.size(), 4u);
  ExpectNear(edges.points[0], 20, 0);
  ExpectNear(edges.points[1], 30, 0);
  ExpectNear(edges.points[2], 20, 10);
  ExpectNear(edges.points[3], 20, 0);
  EXPECT_NE(p.Attr("d").find('Z'), std::string::npos);
  EXPECT_EQ(p.Attr("fill-opacity"), "0.3");
}

TEST_F(PictureTest, PointsAreSmallDotsUnlessInvisible) {
  Model().AddLine({0, 0, 0}, {80, 0, 0});
  auto& shown = Model().AddPoint({40, 10, 0});
  shown.SetTrueColor(1);
  auto& hidden = Model().AddPoint({50, 10, 0});
  hidden.SetVisible(false);
  SvgDocument svg = Picture();

  const SvgNode& dot = Drawn(svg, shown);
  EXPECT_EQ(dot.name, "circle");
  EXPECT_SVG_POINT(dot.Num("cx"), dot.Num("cy"), 40, 10);
  EXPECT_EQ(dot.Attr("fill"), "#ff0000");
  // Two line widths across, the view being 88 wide.
  EXPECT_NEAR(dot.Num("r"), 2 * 88.0 / 800, 1e-12);
  EXPECT_FALSE(IsDrawn(svg, hidden));
}

TEST_F(PictureTest, ArcsAreTrueArcsThroughInsertsAndMirrors) {
  NewLayer("Net", 4);
  auto& arc = Model().AddArc({10, 5, 0}, 2, 0, kPi / 2);
  arc.SetLayer("Net");
  host::Block& block = NewBlock("Hook");
  auto& hook = block.AddArc({1, 0, 0}, 1, 0, kPi);
  hook.SetTrueColor(host::color::kByBlock);
  auto& ref = Model().InsertBlock({20, 0, 0}, "Hook", -1, 1, 1, 0);
  ref.SetTrueColor(1);
  SvgDocument svg = Picture();

  const SvgNode& a = Drawn(svg, arc);
  EXPECT_EQ(a.name, "path");
  EXPECT_EQ(a.Attr("stroke"), "#00ffff");
  Trace t = Follow(a.Attr("d"));
  ExpectNear(t.points.front(), 12, 5);
  ExpectNear(t.points.back(), 10, 7);
  for (const Point3& centre : t.centres) ExpectNear(centre, 10, 5);
  // Counter-clockwise in the plan is SVG's negative sense: sweep flag 0.
  EXPECT_EQ(PathCommands(a.Attr("d"))[1].args[4], 0);

  // Mirrored in X, the upper half circle from (2,0) to (0,0) runs from
  // (18,0) over (19,1) to (20,0), in the insert's colour.
  const SvgNode& h = Drawn(svg, hook);
  EXPECT_EQ(h.Attr("stroke"), "#ff0000");
  Trace m = Follow(h.Attr("d"));
  ExpectNear(m.points.front(), 18, 0);
  ExpectNear(m.points[1], 19, 1);
  ExpectNear(m.points.back(), 20, 0);
  for (const Point3& centre : m.centres) ExpectNear(centre, 19, 0);
}

// A drawing as mirroring in a CAD program leaves it: normals (0,0,-1) and
// values in the mirrored plane.
TEST_F(PictureTest, EntitiesFacingDownAreDrawnWhereTheyAre) {
  std::string entities =
      "0\nCIRCLE\n5\n30\n8\n0\n10\n3\n20\n4\n30\n0\n40\n1\n"
      "210\n0\n220\n0\n230\n-1\n"
      "0\nARC\n5\n31\n8\n0\n10\n3\n20\n4\n30\n0\n40\n1\n50\n0\n"
      "51\n90\n210\n0\n220\n0\n230\n-1\n"
      "0\nTEXT\n5\n32\n8\n0\n10\n5\n20\n5\n30\n0\n40\n1\n1\nAB\n"
      "210\n0\n220\n0\n230\n-1\n"
      "0\nHATCH\n5\n34\n8\n0\n10\n0\n20\n0\n30\n0\n210\n0\n220\n0\n"
      "230\n-1\n2\nSOLID\n70\n1\n71\n0\n91\n1\n92\n2\n72\n0\n73\n1\n"
      "93\n3\n10\n0\n20\n0\n10\n1\n20\n0\n10\n1\n20\n1\n97\n0\n"
      "75\n0\n76\n1\n98\n0\n"
      "0\nINSERT\n5\n35\n8\n0\n66\n1\n2\nB\n10\n2\n20\n0\n30\n0\n"
      "210\n0\n220\n0\n230\n-1\n"
      "0\nATTRIB\n5\n36\n8\n0\n10\n14\n20\n20\n30\n0\n40\n1\n1\nv\n"
      "2\nTAG\n70\n0\n210\n0\n220\n0\n230\n-1\n"
      "0\nSEQEND\n5\n37\n8\n0\n";
  std::string text =
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n"
      "0\nSECTION\n2\nTABLES\n0\nENDSEC\n"
      "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n5\n20\n8\n0\n2\nB\n70\n0\n"
      "10\n0\n20\n0\n30\n0\n0\nLINE\n5\n21\n8\n0\n10\n0\n20\n0\n"
      "30\n0\n11\n1\n21\n0\n31\n0\n0\nENDBLK\n5\n22\n8\n0\n0\nENDSEC\n"
      "0\nSECTION\n2\nENTITIES\n" +
      entities + "0\nENDSEC\n0\nEOF\n";
  dxf::ReadDxf(doc_, text);
  SvgDocument svg = Picture();

  auto find = [&](const char* handle) -> const SvgNode& {
    auto found = svg.root.WithHandle(handle);
    if (found.empty()) throw std::runtime_error(handle);
    return *found.front();
  };
  const SvgNode& circle = find("30");
  EXPECT_SVG_POINT(circle.Num("cx"), circle.Num("cy"), -3, 4);
  // 0 to 90 degrees in the plane: from (-2,4) over (-3,5), seen from above
  // a quarter from 90 to 180 degrees.
  Trace arc = Follow(find("31").Attr("d"));
  ExpectNear(arc.points.front(), -3, 5);
  ExpectNear(arc.points.back(), -4, 4);
  ExpectNear(arc.centres.front(), -3, 4);
  // The text starts at (-5,5) and reads backwards: its frame turns X over.
  std::vector<double> frame = Numbers(find("32").Attr("transform"));
  ASSERT_EQ(frame.size(), 6u);
  EXPECT_SVG_POINT(frame[4], frame[5], -5, 5);
  EXPECT_LT(frame[0], 0);
  EXPECT_LT(frame[0] * frame[3] - frame[1] * frame[2], 0);
  Trace hatch = Follow(find("34").Attr("d"));
  ASSERT_EQ(hatch.points.size(), 4u);  // back to the start
  ExpectNear(hatch.points[1], -1, 0);
  ExpectNear(hatch.points[2], -1, 1);
  // The block's line runs from (-2,0) to (-3,0); the attribute sits at
  // (-14,20), not where its plane's values would put it.
  const SvgNode& line = find("21");
  EXPECT_SVG_POINT(line.Num("x1"), line.Num("y1"), -2, 0);
  EXPECT_SVG_POINT(line.Num("x2"), line.Num("y2"), -3, 0);
  std::vector<double> attribute = Numbers(find("36").Attr("transform"));
  EXPECT_SVG_POINT(attribute[4], attribute[5], -14, 20);
}

TEST_F(PictureTest, TiltedCirclesAreSeenFromAbove) {
  auto& circle =
      static_cast<memhost::MemCircle&>(Model().AddCircle({0, 0, 0}, 5));
  circle.normal_ = {0, 0.6, 0.8};  // tipped towards the north
  SvgDocument svg = Picture();
  const SvgNode& e = Drawn(svg, circle);
  ASSERT_EQ(e.name, "ellipse");
  EXPECT_NEAR(e.Num("rx"), 5, 1e-9);
  EXPECT_NEAR(e.Num("ry"), 4, 1e-9);
}

}  // namespace
}  // namespace kestrana::render
