// `kestrana lowhigh`: the low and high points of pressure networks: which
// networks show their markers, building the markers of the networks drawn
// so far, listing them. The shape of a command: command.h.
#pragma once

#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct LowHighOptions {
  std::vector<std::string> show;  // pressure networks
  std::vector<std::string> hide;
  bool build = false;  // analyse every pressure network
  bool list = false;

  // Whether the command changes the drawing or only reads it.
  bool Changes() const { return !show.empty() || !hide.empty() || build; }
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
  std::vector<LowHighNetwork> networks;
  int low = 0, high = 0;
  std::vector<LowHighListing> points;  // with `list`
};

// Changes the settings first when the options say so: NotFoundError for a
// name that is not a pressure network of the project; OptionError for a
// network both shown and hidden.
LowHighResult LowHighPoints(host::Document& document,
                            const LowHighOptions& options);

// Every low and high point marker of the drawing.
std::vector<LowHighListing> ListLowHighPoints(host::Document& document);

}  // namespace kestrana::commands
