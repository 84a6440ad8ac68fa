#include <gtest/gtest.h>

#include <cmath>

#include "core/general.h"
#include "core/geometry.h"
#include "memhost/document.h"

namespace kestrana::core {
namespace {

class PlanGeometry : public ::testing::Test {
 protected:
  memhost::MemDocument doc_;
  host::Line& line_ = doc_.ModelSpace().AddLine({0, 0, 0}, {10, 0, 0});
  // Three vertices: 10 east, then 5 north.
  host::LwPolyline& pipe_ =
      doc_.ModelSpace().AddLightWeightPolyline({0, 0, 10, 0, 10, 5});
};

TEST_F(PlanGeometry, LineTestUsesEightPlaces) {
  EXPECT_TRUE(General::CheckPointOnLine({4, 0, 7}, line_));
  EXPECT_TRUE(General::CheckPointOnLine({10, 0, 0}, line_));
  EXPECT_FALSE(General::CheckPointOnLine({5, 0.1, 0}, line_));
  // 0.01 off the middle adds 2e-5 to the distance sum: seen at 8 places.
  EXPECT_FALSE(General::CheckPointOnLine({5, 0.01, 0}, line_));
  EXPECT_TRUE(General::CheckPointOnLine({5, 0.0001, 0}, line_));
  EXPECT_FALSE(General::CheckPointOnLine({11, 0, 0}, line_));
}

TEST_F(PlanGeometry, PolylineTestsDifferInTolerance) {
  EXPECT_TRUE(General::CheckPointOnPolyline({10, 2.5, 0}, pipe_));
  EXPECT_FALSE(General::CheckPointOnPolyline({5, 0.01, 0}, pipe_));
  EXPECT_EQ(General::PointIsOnPolyline({5, 0.01, 0}, pipe_), 2);
  EXPECT_EQ(General::PointIsOnPolyline({5, 0.1, 0}, pipe_), 0);
  EXPECT_EQ(General::PointIsOnPolyline({10, 0, 0}, pipe_), 2);
  // Within 0.00005 of an end vertex, coordinate by coordinate.
  EXPECT_EQ(General::PointIsOnPolyline({0.00004, -0.00004, 0}, pipe_), 1);
  EXPECT_EQ(General::PointIsOnPolyline({10.00004, 5, 0}, pipe_), 1);
  EXPECT_EQ(General::PointIsOnPolyline({0.00006, 0, 0}, pipe_), 2);
  EXPECT_EQ(General::PointIsOnPolyline({-0.001, 0, 0}, pipe_), 0);
}

TEST_F(PlanGeometry, Stations) {
  EXPECT_DOUBLE_EQ(General::GetStation(pipe_, 4, 0), 4);
  EXPECT_DOUBLE_EQ(General::GetStation(pipe_, 10, 3), 13);
  EXPECT_DOUBLE_EQ(General::GetStation(pipe_, 10, 0), 10);  // earlier segment
  EXPECT_EQ(General::GetStation(pipe_, 0, 0), 0);
  EXPECT_EQ(General::GetStation(pipe_, 3, 3), 0);  // off the pipe
  EXPECT_DOUBLE_EQ(
      General::GetPointStationOnPolyline(pipe_.Coordinates(), {10, 5, 0}), 15);
}

TEST_F(PlanGeometry, VertexIndexForInsertion) {
  EXPECT_EQ(General::GetNodeIndexOnPolyline(pipe_, {3, 0, 0}), 1);
  EXPECT_EQ(General::GetNodeIndexOnPolyline(pipe_, {10, 1, 0}), 2);
  EXPECT_EQ(General::GetNodeIndexOnPolyline(pipe_, {3, 3, 0}), 3);
}

TEST_F(PlanGeometry, PointAtStation) {
  std::vector<double> xy = pipe_.Coordinates();
  EXPECT_EQ(General::GetCoordinatesAtPipeStation(xy, 0),
            (host::Point3{0, 0, 0}));
  EXPECT_EQ(General::GetCoordinatesAtPipeStation(xy, 12.5),
            (host::Point3{10, 2.5, 0}));
  EXPECT_EQ(General::GetCoordinatesAtPipeStation(xy, 15),
            (host::Point3{10, 5, 0}));
  EXPECT_EQ(General::GetCoordinatesAtPipeStation(xy, 15.001), host::Point3{});
  // Segment lengths are rounded to 7 places before they are walked.
  std::vector<double> odd = {0, 0, 1, 1, 1, 2};
  double rounded = 1.4142136;  // sqrt(2) to 7 places
  EXPECT_EQ(General::GetCoordinatesAtPipeStation(odd, rounded + 1),
            (host::Point3{1, 2, 0}));
  // A zero-length segment is walked as 0.000001 long.
  std::vector<double> doubled = {0, 0, 0, 0, 4, 0};
  EXPECT_EQ(General::GetCoordinatesAtPipeStation(doubled, 0.0000005),
            (host::Point3{0, 0, 0}));
  host::Point3 p = General::GetCoordinatesAtPipeStation(doubled, 2.000001);
  EXPECT_DOUBLE_EQ(p.x, 2);
}

TEST(Angles, FromDeltaUsesTheSystemPi) {
  EXPECT_EQ(General::GetAngleFromDelta(0, 0), 1.570796327);
  EXPECT_EQ(General::GetAngleFromDelta(0, 2), 1.570796327);
  EXPECT_EQ(General::GetAngleFromDelta(0, -2), 4.712388981);
  EXPECT_EQ(General::GetAngleFromDelta(-1, 0), 3.141592654);
  EXPECT_EQ(General::GetAngleFromDelta(3, 0), 0);
  double a = std::atan(0.5);
  EXPECT_DOUBLE_EQ(General::GetAngleFromDelta(2, 1), a);
  EXPECT_DOUBLE_EQ(General::GetAngleFromDelta(-2, 1), 3.141592654 - a);
  EXPECT_DOUBLE_EQ(General::GetAngleFromDelta(-2, -1), a + 3.141592654);
  EXPECT_DOUBLE_EQ(General::GetAngleFromDelta(2, -1), 6.283185308 - a);
}

TEST(Angles, CorrectionForTheUserCoordinateSystem) {
  memhost::MemDocument doc;
  EXPECT_EQ(General::GetCorrectionAngleForCS(doc), 0);
  doc.SetVariable("UCSXDIR", host::Point3{0, 1, 0});
  doc.SetVariable("UCSYDIR", host::Point3{-1, 0, 0});
  EXPECT_EQ(General::GetCorrectionAngleForCS(doc), 1.570796327);
  // A mirrored system turns texts half around.
  doc.SetVariable("UCSXDIR", host::Point3{1, 0, 0});
  doc.SetVariable("UCSYDIR", host::Point3{0, -1, 0});
  EXPECT_EQ(General::GetCorrectionAngleForCS(doc), 3.141592654);
  doc.SetVariable("UCSXDIR", host::Point3{-1, 0, 0});
  doc.SetVariable("UCSYDIR", host::Point3{0, -1, 0});
  EXPECT_EQ(General::GetCorrectionAngleForCS(doc), 3.141592654);
  doc.SetVariable("UCSYDIR", std::string("up"));
  EXPECT_THROW(General::GetCorrectionAngleForCS(doc), host::HostError);
}

TEST(RoundUp, WholeNumbersStay) {
  EXPECT_EQ(General::RoundUp(3.0), 3);
  EXPECT_EQ(General::RoundUp(3.2), 4);
  EXPECT_EQ(General::RoundUp(3.0000001), 4);
  EXPECT_EQ(General::RoundUp(-2.5), -2);
  EXPECT_EQ(General::RoundUp(-3), -3);
  EXPECT_THROW(General::RoundUp(3e9), std::overflow_error);
}

}  // namespace
}  // namespace kestrana::core
