// An in-memory pipe used while importing networks and computing levels.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/types.h"

namespace kestrana::host {
class Entity;
}

namespace kestrana::types {

struct ShpPipe {
  std::string Label;
  std::vector<double> Coordinates;  // flat X0, Y0, X1, Y1, ...
  double StartInvert = 0.0;
  double EndInvert = 0.0;
  std::string SectionShape;
  double Span = 0.0;
  double Rise = 0.0;
  int16_t NumCells = 0;
  std::string Material;
  // Positions in the node array, as text.
  std::string StartNodeIndex;
  std::string EndNodeIndex;
  std::string StartNodeLabel;
  std::string EndNodeLabel;
  host::Entity* Entity = nullptr;  // the drawing's polyline, when there is one
  host::ObjectId OID = 0;
  bool Cancelled = false;

  friend bool operator==(const ShpPipe&, const ShpPipe&) = default;
};

}  // namespace kestrana::types
