// `kestrana crossings`: the crossing settings of a project (clearance
// threshold, enabled network pairs), applied to every crossing annotation;
// building the crossings of the networks drawn so far; listing them. The
// shape of a command: command.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/section_size.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct CrossingsOptions {
  std::optional<std::string> threshold;  // a number; negative shows all
  std::vector<std::string> enable;       // "A:B"
  std::vector<std::string> disable;      // "A:B"
  bool build = false;                    // find and draw the missing crossings
  bool apply = false;                    // apply the settings without a change
  bool reset_locations = false;          // and put annotations back in place
  bool list = false;
  core::ProgressFn progress{};  // the pipes searched for crossings

  // Whether the command changes the drawing or only reads it.
  bool Changes() const {
    return threshold || !enable.empty() || !disable.empty() || build || apply ||
           reset_locations;
  }
};

struct NetworkPair {
  std::string first, second;
  bool enabled = false;
  friend bool operator==(const NetworkPair&, const NetworkPair&) = default;
};

// One crossing annotation as the drawing holds it.
struct CrossingListing {
  std::string network1, label1, size1;
  std::string network2, label2, size2;
  // The sizes as numbers; none for a size text of no size.
  std::optional<core::SectionSize> section1, section2;
  std::optional<double> invert1, invert2;  // as the annotation shows them
  double clearance = 0.0;
  double easting = 0.0, northing = 0.0;
  bool shown = true;
};

struct CrossingsResult {
  std::string threshold;
  std::vector<NetworkPair> pairs;
  int drawn = 0;  // new annotations made by `build`
  int annotations = 0;
  int shown = 0;
  std::vector<CrossingListing> crossings;  // with `list`
};

// Changes the settings first when the options say so: OptionError for a
// threshold that is not a number, a pair that is not "A:B" or one both
// enabled and disabled; NotFoundError for a network the project lacks.
CrossingsResult Crossings(host::Document& document,
                          const CrossingsOptions& options);

// Every crossing annotation of the drawing.
std::vector<CrossingListing> ListCrossings(host::Document& document);

}  // namespace kestrana::commands
