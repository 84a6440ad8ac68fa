// Joining and reversing vertex lists.
#include <gtest/gtest.h>

#include "editing/editing.h"

namespace kestrana::editing {
namespace {

using Xy = std::vector<double>;

TEST(VertexLists, JoinAtTheSharedEndWhicheverWayTheyRun) {
  const Xy first = {0, 0, 1, 0, 2, 0};
  // End to start: as they are.
  EXPECT_EQ(Editing::MergeTwoCoordinatesArrays(first, {2, 0, 2, 1, 2, 2}),
            (Xy{0, 0, 1, 0, 2, 0, 2, 1, 2, 2}));
  // Start to start: the first list turned round.
  EXPECT_EQ(Editing::MergeTwoCoordinatesArrays(first, {0, 0, 0, 5}),
            (Xy{2, 0, 1, 0, 0, 0, 0, 5}));
  // Second's end at first's start: both turned round.
  EXPECT_EQ(Editing::MergeTwoCoordinatesArrays(first, {0, 5, 0, 0}),
            (Xy{2, 0, 1, 0, 0, 0, 0, 5}));
  // End to end: the second turned round.
  EXPECT_EQ(Editing::MergeTwoCoordinatesArrays(first, {2, 5, 2, 0}),
            (Xy{0, 0, 1, 0, 2, 0, 2, 5}));
  // The shared point is found exactly.
  EXPECT_THROW(Editing::MergeTwoCoordinatesArrays(first, {2.0000001, 0, 3, 0}),
               std::invalid_argument);
  EXPECT_THROW(Editing::MergeTwoCoordinatesArrays(first, {2, 0, 3}),
               std::invalid_argument);
}

TEST(VertexLists, ReversingKeepsPairsAndTwiceGivesTheListBack) {
  const Xy list = {0, 1, 2, 3, 4, 5};
  EXPECT_EQ(Editing::ReversePolylineCoordinates(list), (Xy{4, 5, 2, 3, 0, 1}));
  EXPECT_EQ(Editing::ReversePolylineCoordinates({7, 8, 9, 10}),
            (Xy{9, 10, 7, 8}));
  EXPECT_EQ(Editing::ReversePolylineCoordinates(
                Editing::ReversePolylineCoordinates(list)),
            list);
}

}  // namespace
}  // namespace kestrana::editing
