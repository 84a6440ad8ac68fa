// Annotations as the picture shows them: where each line's text sits and
// which way it reads.
#include <gtest/gtest.h>

#include "render/svg.h"
#include "styled_project.h"
#include "support/svg_reader.h"

namespace kestrana::viewstyle::test {
namespace {

using testsupport::Numbers;
using testsupport::ParseSvg;
using testsupport::SvgDocument;
using testsupport::SvgNode;

// A text as drawn: the middle of its box in plan coordinates and its
// reading direction.
struct DrawnText {
  std::string text;
  double x, y;    // centre
  double dx, dy;  // unit vector along the baseline, in plan
  double ux, uy;  // unit vector up the letters, in plan
};

DrawnText Read(const SvgNode& node, double height) {
  // matrix(a b c d e f): baseline start (e, -f); per width unit (a, -b);
  // per height unit (-c, d), all with the picture's Y turned over.
  std::vector<double> m = Numbers(node.Attr("transform"));
  const double width = node.Num("textLength");
  DrawnText t{node.text, 0, 0, 0, 0, 0, 0};
  const double ax = m[0], ay = -m[1], hx = -m[2], hy = m[3];
  t.x = m[4] + ax * width / 2 + hx * height / 2;
  t.y = -m[5] + ay * width / 2 + hy * height / 2;
  const double along = std::hypot(ax, ay), up = std::hypot(hx, hy);
  t.dx = ax / along;
  t.dy = ay / along;
  t.ux = hx / up;
  t.uy = hy / up;
  return t;
}

class AnnotationPicture : public StyledProject {
 protected:
  std::vector<DrawnText> Lines(const SvgDocument& svg,
                               const host::BlockReference& annotation) {
    std::vector<DrawnText> lines;
    for (host::AttributeReference* a : annotation.GetAttributes()) {
      auto drawn = svg.root.WithHandle(a->Handle());
      if (drawn.size() != 1)
        throw std::runtime_error("attribute " + a->Handle() + " drawn " +
                                 std::to_string(drawn.size()) + " times");
      lines.push_back(Read(*drawn[0], a->Height()));
    }
    return lines;
  }
  SvgDocument Picture() { return ParseSvg(render::RenderSvg(*doc_).svg); }
};

TEST_F(AnnotationPicture, PipeLinesReadLeftToRightAboveAndBelowThePipe) {
  // Drawn right to left and downhill to the left.
  host::LwPolyline& pipe = sewer_->AddPipeWithNodes(
      "P-1", {40, 0, 0, 0}, {.start_invert = 99, .end_invert = 98.8}, 101, 100);
  host::LwPolyline& steep = sewer_->AddPipeWithNodes(
      "P-2", {100, 60, 100, 20}, {.start_invert = 99, .end_invert = 98}, 101,
      100);
  Apply("Sewer");
  SvgDocument svg = Picture();

  std::vector<DrawnText> lines = Lines(svg, *PipeAnnotation(pipe));
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0].text, "P-1");
  EXPECT_EQ(lines[1].text, "\u00d8200");  // "%%c" shows as the diameter sign
  EXPECT_EQ(lines[2].text, "S=0.50%");
  const double s = 3;  // 1.5 x the text height 2
  const double y[] = {2 * s, s, -s};
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(lines[i].x, 20, 1e-6) << lines[i].text;
    EXPECT_NEAR(lines[i].y, y[i], 1e-6) << lines[i].text;
    EXPECT_NEAR(lines[i].dx, 1, 1e-9) << lines[i].text;  // left to right
    EXPECT_NEAR(lines[i].uy, 1, 1e-9) << lines[i].text;  // upright
  }

  // A pipe drawn downwards reads upwards, its upper lines to its left.
  lines = Lines(svg, *PipeAnnotation(steep));
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(lines[i].x, 100 - y[i], 1e-6) << lines[i].text;
    EXPECT_NEAR(lines[i].y, 40, 1e-6) << lines[i].text;
    EXPECT_NEAR(lines[i].dy, 1, 1e-9) << lines[i].text;
    EXPECT_NEAR(lines[i].ux, -1, 1e-9) << lines[i].text;
  }

  // The arrow's tip points from the pipe's start to its end.
  const SvgNode& arrow =
      *svg.root.WithHandle(PipeArrow(pipe)->Handle()).front();
  std::vector<const SvgNode*> shapes = arrow.All("path");
  ASSERT_FALSE(shapes.empty());
  std::vector<double> path = Numbers(shapes.front()->Attr("d"));
  double min_x = 1e9;
  for (size_t i = 0; i + 1 < path.size(); i += 2)
    min_x = std::min(min_x, path[i]);
  EXPECT_NEAR(min_x, 20 - 0.75 * 2, 1e-6);  // tip at the left
}

TEST_F(AnnotationPicture, NodeLinesStandAboveTheNodeInATurnedSystem) {
  doc_->SetVariable("UCSXDIR", host::Point3{0.6, 0.8, 0});
  doc_->SetVariable("UCSYDIR", host::Point3{-0.8, 0.6, 0});
  const double correction = core::General::GetCorrectionAngleForCS(*doc_);
  host::BlockReference& node = sewer_->AddNode("MH-9", 10, 10, 101.5, 99.25);
  Apply("Sewer", correction);
  std::vector<DrawnText> lines = Lines(Picture(), *NodeAnnotation(node));
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0].text, "MH-9");
  EXPECT_EQ(lines[1].text, "GL=101.50");
  EXPECT_EQ(lines[2].text, "IL=99.25");
  for (int i = 0; i < 3; ++i) {
    const double up = (3 - i) * 3.0;  // 3, 2 and 1 pitches along user Y
    EXPECT_NEAR(lines[i].x, 10 - 0.8 * up, 1e-6) << lines[i].text;
    EXPECT_NEAR(lines[i].y, 10 + 0.6 * up, 1e-6) << lines[i].text;
    EXPECT_NEAR(lines[i].dx, 0.6, 1e-6) << lines[i].text;  // along user X
    EXPECT_NEAR(lines[i].dy, 0.8, 1e-6) << lines[i].text;
  }
}

}  // namespace
}  // namespace kestrana::viewstyle::test
