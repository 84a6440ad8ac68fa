// The data of one part of a profile, as gathering produces it and drawing
// reads it: 22 texts, each a series of values every one preceded by ";"
// (split at ";", piece 0 is empty and the values follow). Drawing parses
// these series only; it never reads the network itself.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace kestrana::profile {

enum class Series : int {
  kPipeOIDs = 0,          // per pipe: object ID
  kDirections = 1,        // per pipe: "0" along the pipe, "1" against it
  kLengths = 2,           // per pipe: length, 7 decimals
  kInverts = 3,           // per pipe: invert at a, invert at b
  kSections = 4,          // per pipe: shape index, span, rise, cells
  kSlopes = 5,            // per pipe: |end - start invert| / length
  kMaterials = 6,         // per pipe: material
  kNodeLabels = 7,        // per node
  kGroundAtNodes = 8,     // per node
  kSumps = 9,             // per node
  kConnectedPipes = 10,   // per connected pipe: distance + 5 values
  kInvertDepths = 11,     // per pipe: at a, at b
  kCoverDepths = 12,      // per pipe: at a, at b
  kGroundLine = 13,       // pairs: distance, elevation
  kCrossings = 14,        // per crossing pipe: distance + 5 values
  kStations = 15,         // pairs: distance, station
  kCoordinates = 16,      // pairs: distance, coordinate text
  kInvertsAtStations = 17,       // pairs: distance, invert
  kGroundAtStations = 18,        // pairs: distance, ground
  kInvertDepthsAtStations = 19,  // pairs: distance, ground - invert
  kCoverDepthsAtStations = 20,   // pairs: distance, ground - invert - rise
  kPlanTitleDistances = 21,      // distances along the profile
};

inline constexpr int kSeriesCount = 22;

// Values per record of the connected-pipe and crossing-pipe series: the
// distance, then invert, shape index, span, rise, cells.
inline constexpr int kPipeAtDistanceValues = 6;

struct PartData {
  std::array<std::string, kSeriesCount> series;

  std::string& operator[](Series s) { return series[static_cast<int>(s)]; }
  const std::string& operator[](Series s) const {
    return series[static_cast<int>(s)];
  }
  friend bool operator==(const PartData&, const PartData&) = default;
};

// Every part of a profile, first part first.
using PartsData = std::vector<PartData>;

}  // namespace kestrana::profile
