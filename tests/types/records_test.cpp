#include <gtest/gtest.h>

#include "types/cross_point.h"
#include "types/pipe_vertices.h"
#include "types/shp_node.h"
#include "types/shp_pipe.h"

namespace kestrana::types {
namespace {

// A search without result answers a default record; every field of it must
// be empty or zero, never left undefined.
TEST(CrossPoint, DefaultIsTheEmptyAnswer) {
  CrossPoint none;
  EXPECT_TRUE(IsNoCrossing(none));
  EXPECT_EQ(none.Pipe1Rise, 0);
  EXPECT_EQ(none.Pipe2Invert, 0);
  EXPECT_EQ(none.Clearance, 0);
  EXPECT_EQ(none.Easting, 0);
  EXPECT_EQ(none.Northing, 0);
  EXPECT_FALSE(none.Duplicated);
  CrossPoint found = none;
  found.Pipe1Label = "P-1";
  EXPECT_FALSE(IsNoCrossing(found));
  EXPECT_NE(found, none);
}

TEST(ImportRecords, DefaultsAreEmpty) {
  ShpPipe pipe;
  EXPECT_EQ(pipe.StartInvert, 0);
  EXPECT_EQ(pipe.Span, 0);
  EXPECT_EQ(pipe.NumCells, 0);
  EXPECT_EQ(pipe.Entity, nullptr);
  EXPECT_FALSE(pipe.Cancelled);
  ShpNode node;
  EXPECT_EQ(node.GroundLevel, 0);
  EXPECT_EQ(node.MaxRise, 0);
  EXPECT_EQ(node.Coordinates, host::Point3{});
  EXPECT_FALSE(node.LowHighChecked);
  PipeVertices vertices;
  EXPECT_EQ(vertices.CountVertices, 0);
  EXPECT_TRUE(vertices.vertices.empty());
}

}  // namespace
}  // namespace kestrana::types
