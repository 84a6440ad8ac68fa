// Record texts that pack several values into one field. Each has one reader
// and one writer here, so no caller splits them by hand at bare positions.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/types.h"

namespace kestrana::core {

// Field 1 of every record that names an object: "<kind>;<network>;<label>"
// ("Pipe;Sewer;P-3", "Node;Water;N-1"); style and crossing markers leave
// the network empty (";;Standard").
struct CombinedLabel {
  std::string kind;
  std::string network;
  std::string label;

  // nullopt for a text of fewer than three pieces; pieces past the third
  // are not read.
  static std::optional<CombinedLabel> Parse(std::string_view text);
  // Missing pieces read as "", for records of any form.
  static CombinedLabel ParsePadded(std::string_view text);
  // The network piece alone; std::out_of_range for a text of one piece.
  static std::string NetworkOf(std::string_view text);
  // The label piece alone; std::out_of_range for fewer than three pieces.
  static std::string LabelOf(std::string_view text);

  std::string Format() const;
};

// Project-record field 1: "<active style>;<visibility>;<marker ID>;...;".
struct ViewStylesField {
  std::string active;
  std::string visibility;            // one "1" or "0" per network
  std::vector<std::string> markers;  // object IDs as stored

  // The piece after the last ";" is never a marker.
  static ViewStylesField Parse(std::string_view text);
  // Every piece followed by ";".
  std::string Format() const;
};

// The plan point of a crossing annotation: "<easting>;<northing>". Missing
// or non-numeric pieces read as 0.
struct CrossingPoint {
  double easting = 0;
  double northing = 0;

  static CrossingPoint Parse(std::string_view text);
  std::string Format() const;
  host::Point3 ToPoint() const { return {easting, northing, 0}; }
};

// Project-record field 8: "<threshold>;<net>;<net>;<net>;<net>..." — the
// clearance threshold, then the network pairs whose crossings are shown.
struct CrossingSettingsField {
  std::string threshold;
  std::vector<std::pair<std::string, std::string>> pairs;

  // A last name without its partner is not a pair.
  static CrossingSettingsField Parse(std::string_view text);
  std::string Format() const;
};

}  // namespace kestrana::core
