// kestrana lowhigh: the low and high points of pressure networks: which
// networks show their markers, building the markers of the networks drawn
// so far, listing them.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::cli {

struct LowHighOptions {
  std::string drawing;
  std::optional<std::string> output;
  std::vector<std::string> show;  // pressure networks
  std::vector<std::string> hide;
  bool build = false;  // analyse every pressure network
  bool list = false;
};

struct LowHighNetwork {
  std::string name;
  bool shown = false;
  friend bool operator==(const LowHighNetwork&,
                         const LowHighNetwork&) = default;
};

// One marker as the drawing holds it.
struct LowHighListing {
  std::string network;
  std::string node;
  std::string kind;  // "low" or "high"
  double x = 0.0, y = 0.0;
  bool shown = true;
};

struct LowHighResult {
  std::string written;  // empty when the drawing was only read
  std::vector<LowHighNetwork> networks;
  int low = 0, high = 0;
  std::vector<LowHighListing> points;  // with --list
};

// --- On an open document ---------------------------------------------------

// CommandError for a name that is not a pressure network of the project;
// UsageError for a network both shown and hidden.
void ChangeLowHighSettings(host::Document& document,
                           const std::vector<std::string>& show,
                           const std::vector<std::string>& hide);
// Analyses every node of every pressure network. Locked layers are opened
// meanwhile.
void BuildAllLowHighPoints(host::Document& document);
void ApplySettingsToAllLowHighPoints(host::Document& document);
std::vector<LowHighListing> ListLowHighPoints(host::Document& document);

// --- On drawing files ------------------------------------------------------

LowHighResult LowHighPoints(const LowHighOptions& options);
std::string LowHighText(const LowHighResult& result);
std::string LowHighJson(const LowHighResult& result);

}  // namespace kestrana::cli
