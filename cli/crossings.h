// kestrana crossings: the crossing settings of a project (clearance
// threshold, enabled network pairs), applied to every crossing annotation;
// building the crossings of the networks drawn so far; listing them.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::cli {

struct CrossingsOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::optional<std::string> threshold;  // a number; negative shows all
  std::vector<std::string> enable;       // "A:B"
  std::vector<std::string> disable;      // "A:B"
  bool build = false;                    // find and draw the missing crossings
  bool apply = false;                    // apply the settings without a change
  bool reset_locations = false;          // and put annotations back in place
  bool list = false;
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
  std::optional<double> invert1, invert2;  // as the annotation shows them
  double clearance = 0.0;
  double easting = 0.0, northing = 0.0;
  bool shown = true;
};

struct CrossingsResult {
  std::string written;  // empty when the drawing was only read
  std::string threshold;
  std::vector<NetworkPair> pairs;
  int drawn = 0;  // new annotations made by --build
  int annotations = 0;
  int shown = 0;
  std::vector<CrossingListing> crossings;  // with --list
};

// --- On an open document ---------------------------------------------------

// Stores a new threshold and switches pairs on and off. UsageError for a
// threshold that is not a number or a pair that is not "A:B"; CommandError
// for a network the project does not have.
void ChangeCrossingSettings(host::Document& document,
                            const std::optional<std::string>& threshold,
                            const std::vector<std::string>& enable,
                            const std::vector<std::string>& disable);
// Finds and draws the crossings of every pipe that are not annotated yet;
// answers how many were drawn. Locked layers are opened meanwhile.
int BuildAllCrossings(host::Document& document);
// Applies the settings to every crossing annotation.
void ApplySettingsToAllCrossings(host::Document& document,
                                 bool reset_locations);
std::vector<CrossingListing> ListCrossings(host::Document& document);

// --- On drawing files ------------------------------------------------------

CrossingsResult Crossings(const CrossingsOptions& options);
std::string CrossingsText(const CrossingsResult& result);
std::string CrossingsJson(const CrossingsResult& result);

}  // namespace kestrana::cli
