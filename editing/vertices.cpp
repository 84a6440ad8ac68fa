// Joining and reversing the flat X, Y vertex lists of polylines.
#include <stdexcept>
#include <vector>

#include "editing/editing.h"

namespace kestrana::editing {

namespace {

struct Vertex {
  double x, y;
  friend bool operator==(const Vertex&, const Vertex&) = default;
};

Vertex First(const std::vector<double>& xy) { return {xy.at(0), xy.at(1)}; }
Vertex Last(const std::vector<double>& xy) {
  return {xy.at(xy.size() - 2), xy.at(xy.size() - 1)};
}

void CheckVertexList(const std::vector<double>& xy) {
  if (xy.size() < 2 || xy.size() % 2 != 0)
    throw std::invalid_argument(
        "a vertex list holds X, Y pairs, at least one; this one has " +
        std::to_string(xy.size()) + " values");
}

}  // namespace

std::vector<double> Editing::ReversePolylineCoordinates(
    const std::vector<double>& ar_coordinates) {
  CheckVertexList(ar_coordinates);
  std::vector<double> reversed;
  reversed.reserve(ar_coordinates.size());
  for (size_t i = ar_coordinates.size(); i >= 2; i -= 2) {
    reversed.push_back(ar_coordinates[i - 2]);
    reversed.push_back(ar_coordinates[i - 1]);
  }
  return reversed;
}

std::vector<double> Editing::MergeTwoCoordinatesArrays(
    const std::vector<double>& first_array,
    const std::vector<double>& second_array) {
  CheckVertexList(first_array);
  CheckVertexList(second_array);
  // The shared point is found exactly, in this order of tests.
  bool reverse_first = false, reverse_second = false;
  if (First(first_array) == First(second_array)) {
    reverse_first = true;
  } else if (Last(second_array) == First(first_array)) {
    reverse_first = reverse_second = true;
  } else if (Last(first_array) == First(second_array)) {
  } else if (Last(first_array) == Last(second_array)) {
    reverse_second = true;
  } else {
    throw std::invalid_argument(
        "the two vertex lists share no end point, so they cannot be joined");
  }
  std::vector<double> merged =
      reverse_first ? ReversePolylineCoordinates(first_array) : first_array;
  const std::vector<double> second =
      reverse_second ? ReversePolylineCoordinates(second_array) : second_array;
  merged.insert(merged.end(), second.begin() + 2, second.end());
  return merged;
}

}  // namespace kestrana::editing
