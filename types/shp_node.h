// An in-memory node used while importing networks and computing levels.
#pragma once

#include <string>

#include "host/types.h"

namespace kestrana::host {
class Entity;
}

namespace kestrana::types {

struct ShpNode {
  std::string Label;
  host::Point3 Coordinates;
  double GroundLevel = 0.0;
  double SumpLevel = 0.0;
  // Positions in the pipe array, each followed by ";" ("0;3;").
  std::string PipesAtStartIndeces;
  std::string PipesAtEndIndeces;
  double MaxRise = 0.0;
  host::Entity* Entity =
      nullptr;  // the drawing's node block, when there is one
  host::ObjectId OID = 0;
  bool LowHighChecked = false;

  friend bool operator==(const ShpNode&, const ShpNode&) = default;
};

}  // namespace kestrana::types
