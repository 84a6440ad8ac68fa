// The vertices of one pipe, by label.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrana::types {

struct PipeVertices {
  std::string Label;
  int16_t CountVertices = 0;
  std::vector<double> vertices;  // flat X0, Y0, X1, Y1, ...

  friend bool operator==(const PipeVertices&, const PipeVertices&) = default;
};

}  // namespace kestrana::types
