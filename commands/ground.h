// `kestrana ground`: the ground levels of whole networks from a terrain
// surface. The shape of a command: command.h.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/progress.h"

namespace kestrana::memhost {
class MemDocument;
class MemSurface;
}  // namespace kestrana::memhost

namespace kestrana::commands {

struct GroundOptions {
  // The surfaces of one source (a LandXML file), which the document's civil
  // extension then holds; `source` names it in messages.
  std::vector<std::unique_ptr<memhost::MemSurface>> surfaces{};
  std::string source{};
  std::optional<std::string> surface_name{};  // needed when there are several
  std::vector<std::string> networks{};
  core::ProgressFn progress{};  // the nodes given their levels
};

// The ground level a node took.
struct NodeLevel {
  std::string network{};
  std::string label{};
  double ground = 0;
};

struct GroundResult {
  std::string surface{};
  int updated = 0;
  // The levels taken, in the order the nodes were updated.
  std::vector<NodeLevel> levels{};
  // "<network> <label>" of the nodes outside the surface, which keep their
  // ground levels.
  std::vector<std::string> outside{};
};

// OptionError for no network or a choice of surface left open;
// NotFoundError for a surface or network that is not there; RefusedError
// when no node lies on the surface (nothing is changed then).
GroundResult Ground(memhost::MemDocument& document, GroundOptions options);

}  // namespace kestrana::commands
