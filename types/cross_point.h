// One crossing of two pipes of different networks. Pipe 1 belongs to the
// searched set, pipe 2 to the other network.
#pragma once

#include <string>

namespace kestrana::types {

struct CrossPoint {
  std::string Pipe1Net;
  std::string Pipe1Label;
  std::string Pipe2Net;
  std::string Pipe2Label;
  std::string Pipe1OID;  // decimal text
  std::string Pipe2OID;
  double Pipe1Rise = 0.0;  // in level units
  double Pipe2Rise = 0.0;
  std::string Pipe1SizeString;
  std::string Pipe2SizeString;
  double Pipe1Invert = 0.0;  // at the crossing
  double Pipe2Invert = 0.0;
  double Clearance = 0.0;  // never negative
  double Easting = 0.0;
  double Northing = 0.0;
  bool Duplicated = false;  // an annotation for this pair already exists

  friend bool operator==(const CrossPoint&, const CrossPoint&) = default;
};

// A search that finds no crossing answers one record with every field empty;
// callers recognise it by its empty Pipe1Label.
inline bool IsNoCrossing(const CrossPoint& point) {
  return point.Pipe1Label.empty();
}

}  // namespace kestrana::types
