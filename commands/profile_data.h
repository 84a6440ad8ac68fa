// `kestrana profile data`: the sorted run of a profile and the 22 data
// series of each of its parts, as drawing a profile would gather them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/types.h"
#include "profile/part_data.h"
#include "profile/profile.h"
#include "profile/style_markers.h"

namespace kestrana::memhost {
class MemDocument;
}

namespace kestrana::commands {

struct ProfileDataOptions {
  std::string network = {};
  // The run: pipes by label (in any order), or a line of the network as
  // `profile lines` names it. Exactly one of the two.
  std::vector<std::string> pipes = {};
  std::optional<std::string> line = {};
  // The answer to "Pick profile start point:"; unset: the place of the
  // run's lowest invert.
  std::optional<host::Point3> start = {};
  std::optional<std::string> style = {};  // unset: "Standard"
  // Ground from a surface: the text of a LandXML file (named in messages
  // as `surface_file`) and the surface to use, needed when the file holds
  // several. Unset: ground from the nodes' levels.
  std::optional<std::string> surface_xml = {};
  std::string surface_file = {};
  std::optional<std::string> surface_name = {};
};

struct ProfileDataResult {
  std::string network;
  std::string style;
  std::string surface;  // "" when the ground comes from the nodes
  std::string units;    // "Metric" or "US"
  // The number pattern of stations ("0+000.00"), from the style.
  std::string station_pattern;
  host::Point3 start;  // the point the run was ordered from
  // The sorted run in profile order.
  std::vector<std::string> labels;
  std::vector<std::string> oids;
  std::vector<std::string> directions;
  profile::PartsData parts;
};

// NotFoundError for an unknown network, style, line, label or surface;
// InvalidInputError for pipes named twice or given in two ways, a surface
// that does not cover the run, and style settings gathering cannot use;
// RefusedError with the system's message for pipes that are not one
// unbranched run. The drawing itself is not changed.
ProfileDataResult ProfileData(memhost::MemDocument& document,
                              const ProfileDataOptions& options);

// The run a profile command names, ordered from its start point, with the
// style and the surface the ground comes from (put in the civil document).
struct ProfileRun {
  std::string network_type;
  profile::StyleMarker style;
  std::string surface;  // "" when the ground comes from the nodes
  host::Point3 start;
  profile::SortedPipes sorted;
};
// The checks and errors of ProfileData, without the gathering.
ProfileRun SelectProfileRun(memhost::MemDocument& document,
                            const ProfileDataOptions& options);

// The values of a series: the pieces after the leading empty one.
std::vector<std::string> SeriesValues(const std::string& series);

}  // namespace kestrana::commands
