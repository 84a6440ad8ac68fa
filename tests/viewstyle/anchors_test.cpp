// Where annotations go and how they turn: pipes drawn in every direction,
// in the world system and in turned and mirrored user coordinate systems.
#include <gtest/gtest.h>

#include <cmath>

#include "styled_project.h"

namespace kestrana::viewstyle::test {
namespace {

// The system's π; directions themselves are true angles.
constexpr double kPi = 3.141592654;
constexpr double kDeg = M_PI / 180;

TEST(GetArrowRotation, TheDirectionFromStartToEnd) {
  EXPECT_NEAR(ViewStyle::GetArrowRotation(0, 0, 0, 5), kPi / 2, 1e-9);
  EXPECT_NEAR(ViewStyle::GetArrowRotation(0, 0, 0, -5), 3 * kPi / 2, 1e-9);
  EXPECT_NEAR(ViewStyle::GetArrowRotation(0, 0, -1, 0), kPi, 1e-12);
  EXPECT_NEAR(ViewStyle::GetArrowRotation(0, 0, 1, -1), 7 * kPi / 4, 1e-9);
  EXPECT_NEAR(ViewStyle::GetArrowRotation(2, 2, 1, 1), 5 * kPi / 4, 1e-9);
  EXPECT_EQ(ViewStyle::GetArrowRotation(0, 0, 1, 0), 0);
}

TEST(GetTextRotation, TurnsLinesThatWouldReadDownwards) {
  auto rotation = [](double degrees, double correction) {
    return ViewStyle::GetTextRotation(0, 0, std::cos(degrees * kDeg),
                                      std::sin(degrees * kDeg), correction);
  };
  // Right to left: π + π, not reduced (it draws as 0).
  EXPECT_NEAR(ViewStyle::GetTextRotation(0, 0, -1, 0, 0), 2 * kPi, 1e-12);
  EXPECT_NEAR(rotation(100, 0), 280 * kDeg, 1e-8);
  EXPECT_NEAR(rotation(200, 0), 20 * kDeg, 1e-8);
  EXPECT_NEAR(rotation(300, 0), 300 * kDeg, 1e-8);
  EXPECT_NEAR(ViewStyle::GetTextRotation(0, 0, 0, 1, 0), kPi / 2, 1e-9);
  EXPECT_NEAR(ViewStyle::GetTextRotation(0, 0, 0, -1, 0), kPi / 2, 1e-9);
  // A system turned by 90°.
  EXPECT_NEAR(rotation(45, kPi / 2), 45 * kDeg, 1e-8);
  EXPECT_NEAR(rotation(100, kPi / 2), 100 * kDeg, 1e-8);
  EXPECT_NEAR(rotation(200, kPi / 2), 380 * kDeg, 1e-8);
}

struct Case {
  double degrees;  // direction of the pipe from its start
  host::Point3 ucs_x, ucs_y;
  const char* name;
};

void PrintTo(const Case& c, std::ostream* os) { *os << c.name; }

class PipeDirections : public StyledProject,
                       public ::testing::WithParamInterface<Case> {};

// Three lines on a gravity pipe, placed by applying the style: the label
// and size above the pipe as read, the slope below, all across the pipe.
TEST_P(PipeDirections, LabelsReadUprightAcrossThePipe) {
  const Case& c = GetParam();
  doc_->SetVariable("UCSXDIR", c.ucs_x);
  doc_->SetVariable("UCSYDIR", c.ucs_y);
  const double correction = core::General::GetCorrectionAngleForCS(*doc_);
  const double a = c.degrees * kDeg;
  const double x0 = 100, y0 = 50, length = 40;
  host::LwPolyline& pipe = sewer_->AddPipeWithNodes(
      "P-1", {x0, y0, x0 + length * std::cos(a), y0 + length * std::sin(a)},
      {.start_invert = 10, .end_invert = 9.8});
  Apply("Sewer", correction);

  host::BlockReference* annotation = PipeAnnotation(pipe);
  ASSERT_NE(annotation, nullptr);
  const double mx = x0 + length / 2 * std::cos(a);
  const double my = y0 + length / 2 * std::sin(a);
  EXPECT_NEAR(annotation->InsertionPoint().x, mx, 1e-9);
  EXPECT_NEAR(annotation->InsertionPoint().y, my, 1e-9);
  EXPECT_EQ(annotation->Rotation(), 0);

  const double s = 1.5 * 2;  // pitch of the Standard style's height 2
  const double expected[] = {2 * s, s, -s};
  std::vector<host::AttributeReference*> lines = annotation->GetAttributes();
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(Texts(*annotation),
            (std::vector<std::string>{"P-1", "%%c200", "S=0.50%"}));
  for (size_t i = 0; i < lines.size(); ++i) {
    const host::AttributeReference& line = *lines[i];
    const double theta = line.Rotation();
    // Along the pipe, and reading left to right against the user's
    // system (its X axis, or the opposite one in a mirrored system): the
    // direction never points backwards, and a vertical one points up.
    EXPECT_NEAR(std::sin(theta - a), 0, 1e-9) << i;
    const double along = std::cos(theta - correction);
    EXPECT_TRUE(along > 1e-9 ||
                (std::abs(along) <= 1e-9 && std::sin(theta - correction) > 0))
        << "line " << i << " turned to " << theta;
    const double rx = std::cos(theta), ry = std::sin(theta);
    EXPECT_EQ(line.Alignment(), host::TextAlignment::kMiddleCenter);
    // Across the pipe at its pitch; upper lines on the upper side as read.
    const host::Point3 p = line.TextAlignmentPoint();
    const double dx = p.x - mx, dy = p.y - my;
    // The system's π has ten digits: offsets are true to a few 1e-9.
    EXPECT_NEAR(dx * std::cos(a) + dy * std::sin(a), 0, 1e-8) << i;
    EXPECT_NEAR(-dx * ry + dy * rx, expected[i], 1e-8) << i;
  }

  // The arrow points the way the pipe was drawn, at the same point.
  host::BlockReference* arrow = PipeArrow(pipe);
  ASSERT_NE(arrow, nullptr);
  EXPECT_NEAR(AngleGap(arrow->Rotation(), a), 0, 1e-8);
  EXPECT_NEAR(arrow->InsertionPoint().x, mx, 1e-9);
  EXPECT_NEAR(arrow->InsertionPoint().y, my, 1e-9);
}

const host::Point3 kX{1, 0, 0}, kY{0, 1, 0}, kMinusX{-1, 0, 0},
    kMinusY{0, -1, 0};
const host::Point3 kX30{std::cos(30 * kDeg), std::sin(30 * kDeg), 0};
const host::Point3 kY30{-std::sin(30 * kDeg), std::cos(30 * kDeg), 0};

INSTANTIATE_TEST_SUITE_P(
    World, PipeDirections,
    ::testing::Values(Case{0, kX, kY, "east"}, Case{30, kX, kY, "ne"},
                      Case{90, kX, kY, "up"}, Case{135, kX, kY, "nw"},
                      Case{180, kX, kY, "right_to_left"},
                      Case{210, kX, kY, "sw"}, Case{270, kX, kY, "down"},
                      Case{315, kX, kY, "se"}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    UserSystems, PipeDirections,
    ::testing::Values(Case{0, kY, kMinusX, "turned90_east"},
                      Case{90, kY, kMinusX, "turned90_up"},
                      Case{200, kY, kMinusX, "turned90_200"},
                      Case{300, kY, kMinusX, "turned90_300"},
                      Case{100, kX30, kY30, "turned30_100"},
                      Case{250, kX30, kY30, "turned30_250"},
                      Case{0, kX, kMinusY, "mirrored_east"},
                      Case{120, kX, kMinusY, "mirrored_120"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(StyledProject, AnchorLiesHalfWayAlongThePolyline) {
  // 10 along X, then 30 up: the middle is 10 up the second segment.
  host::LwPolyline& pipe =
      sewer_->AddPipeWithNodes("P-2", {0, 0, 10, 0, 10, 30});
  AnnoAnchor anchor = ViewStyle::GetAnnoXYTheta(pipe, "Pipe", 0);
  EXPECT_NEAR(anchor.x, 10, 1e-12);
  EXPECT_NEAR(anchor.y, 10, 1e-12);
  EXPECT_NEAR(anchor.text_rotation, kPi / 2, 1e-9);
  EXPECT_NEAR(anchor.arrow_rotation, kPi / 2, 1e-9);
  // A middle exactly at a vertex belongs to the segment that ends there.
  host::LwPolyline& bent =
      sewer_->AddPipeWithNodes("P-3", {0, 0, 10, 0, 10, -10});
  anchor = ViewStyle::GetAnnoXYTheta(bent, "Pipe", 0);
  EXPECT_NEAR(anchor.x, 10, 1e-12);
  EXPECT_NEAR(anchor.y, 0, 1e-12);
  EXPECT_EQ(anchor.arrow_rotation, 0);
  // A node: its point, turned with the user's system, no arrow.
  host::BlockReference& node = sewer_->AddNode("N", 7, 8);
  EXPECT_EQ(ViewStyle::GetAnnoXYTheta(node, "Node", 0.5),
            (AnnoAnchor{7, 8, 0.5, 0}));
}

// Node lines stack along the user's Y axis.
TEST_F(StyledProject, NodeLinesStackAlongTheUserYAxis) {
  doc_->SetVariable("UCSXDIR", host::Point3{0, 1, 0});
  doc_->SetVariable("UCSYDIR", host::Point3{-1, 0, 0});
  const double correction = core::General::GetCorrectionAngleForCS(*doc_);
  ASSERT_NEAR(correction, kPi / 2, 1e-9);
  const ElementKind kind = ElementKind::kGravityNode;
  ShowOnly({ItemField(kind, NodeItem::kLabel),
            ItemField(kind, NodeItem::kGround), CoordinatesField(kind)});
  host::BlockReference& node = sewer_->AddNode("MH-4", 20, 30, 55);
  Apply("Sewer", correction);
  host::BlockReference* annotation = NodeAnnotation(node);
  ASSERT_NE(annotation, nullptr);
  EXPECT_EQ(Texts(*annotation), (std::vector<std::string>{
                                    "MH-4", "GL=55.00", "E 20.00", "N 30.00"}));
  std::vector<host::AttributeReference*> lines = annotation->GetAttributes();
  for (int i = 0; i < 4; ++i) {
    host::Point3 p = lines[i]->TextAlignmentPoint();
    EXPECT_NEAR(p.x, 20 - (4 - i) * 3.0, 1e-9) << i;  // world -X is user +Y
    EXPECT_NEAR(p.y, 30, 1e-8) << i;
    EXPECT_NEAR(lines[i]->Rotation(), correction, 1e-12);
  }
}

}  // namespace
}  // namespace kestrana::viewstyle::test
