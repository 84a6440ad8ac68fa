// `kestrana convert`: drawn lines and polylines become the pipes and nodes
// of a network. The shape of a command: command.h.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/progress.h"

namespace kestrana::memhost {
class MemDocument;
}

namespace kestrana::commands {

// Exactly one way of answering "Select Entities to Convert:".
struct ConvertSelection {
  std::optional<std::string> layer{};             // every entity on the layer
  std::vector<std::string> handles{};             // these entities
  std::optional<std::array<double, 4>> window{};  // X1, Y1, X2, Y2: inside it
  bool all = false;                               // every entity
};

struct ConvertOptions {
  std::string network{};
  std::optional<std::string> type{};  // needed when the network is new
  ConvertSelection selection{};
  core::ProgressFn progress{};  // the pipes converted, and crossings found
};

struct ConvertResult {
  std::string network{};
  std::string type{};
  bool new_network = false;
  int pipes = 0;  // made by this conversion
  int nodes = 0;
  int crossings = 0;
  int low_high_points = 0;  // markers of the network afterwards
};

// OptionError for a selection that is not exactly one way, a type other
// than "Gravity" or "Pressure", or a new network without one; NotFoundError
// for a layer, handle or window that names nothing; RefusedError for a
// network of the other type and a selection with nothing to convert.
ConvertResult Convert(memhost::MemDocument& document,
                      const ConvertOptions& options);

}  // namespace kestrana::commands
