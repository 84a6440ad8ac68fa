// Network editing from the command line: `kestrana convert`, `kestrana node
// set`, `kestrana pipe set` and `kestrana ground`. Each is a function on a
// drawing file built on a function on an open document; the document
// functions are what `kestrana demo` strings together.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrana::memhost {
class MemDocument;
class MemSurface;
}  // namespace kestrana::memhost

namespace kestrana::cli {

// --- kestrana convert --------------------------------------------------------

// Exactly one way of answering "Select Entities to Convert:".
struct ConvertSelection {
  std::optional<std::string> layer{};             // every entity on the layer
  std::vector<std::string> handles{};             // these entities
  std::optional<std::array<double, 4>> window{};  // X1, Y1, X2, Y2: inside it
  bool all = false;                               // every entity
};

struct ConvertOptions {
  std::string drawing{};
  std::optional<std::string> output{};
  std::string network{};
  std::optional<std::string> type{};  // needed when the network is new
  ConvertSelection selection{};
};

struct ConvertResult {
  std::string written{};
  std::string network{};
  std::string type{};
  bool new_network = false;
  int pipes = 0;  // made by this conversion
  int nodes = 0;
  int crossings = 0;
  int low_high_points = 0;  // markers of the network afterwards
};

ConvertResult ConvertInDocument(memhost::MemDocument& document,
                                const ConvertOptions& options);
ConvertResult Convert(const ConvertOptions& options);

// --- kestrana node set / pipe set
// ---------------------------------------------

struct NodeSetOptions {
  std::string drawing{};
  std::optional<std::string> output{};
  std::string network{};
  std::string label{};
  std::optional<std::string> new_label{};
  std::optional<double> ground{};
  std::optional<double> sump{};
  std::optional<std::string>
      matching{};  // "No Matching", "Match Centerlines", ...
};

// A node as it stands after an edit.
struct NodeState {
  std::string network{};
  std::string label{};
  double ground = 0;
  double sump = 0;
  std::string matching{};
  int pipes = 0;
};

struct NodeSetResult {
  std::string written{};
  NodeState node{};
};

NodeState SetNodeInDocument(memhost::MemDocument& document,
                            const NodeSetOptions& options);
NodeSetResult SetNode(const NodeSetOptions& options);

struct PipeSetOptions {
  std::string drawing{};
  std::optional<std::string> output{};
  std::string network{};
  std::string label{};
  std::optional<std::string> new_label{};
  std::optional<std::string> size{};  // "300" or "1200x800"
  std::optional<int> cells{};
  std::optional<std::string> material{};
  std::optional<double> start_invert{};
  std::optional<double> end_invert{};
};

struct PipeState {
  std::string network{};
  std::string label{};
  std::string size{};  // as annotations write it: "%%c300", "1200X800"
  std::string material{};
  double start_invert = 0;
  double end_invert = 0;
  double length = 0;
};

struct PipeSetResult {
  std::string written{};
  PipeState pipe{};
};

PipeState SetPipeInDocument(memhost::MemDocument& document,
                            const PipeSetOptions& options);
PipeSetResult SetPipe(const PipeSetOptions& options);

// The text the pipe form hands over for a size given as "300" (a
// diameter) or "1200x800" (a box); UsageError for anything else.
std::string SectionFormText(const std::string& size);

// --- kestrana ground ---------------------------------------------------------

struct GroundOptions {
  std::string drawing{};
  std::optional<std::string> output{};
  std::string surface_file{};  // LandXML
  std::optional<std::string> surface_name{};
  std::vector<std::string> networks{};
};

struct GroundResult {
  std::string written{};
  std::string surface{};
  int updated = 0;
  // "<network> <label>" of the nodes outside the surface, which keep their
  // ground levels.
  std::vector<std::string> outside{};
};

// The surfaces of a LandXML file; CommandError when there are none or the
// file is not LandXML.
std::vector<std::unique_ptr<memhost::MemSurface>> ReadSurfaceFile(
    const std::string& path);
// Sets ground levels from `surfaces` (which the document's civil extension
// then holds). CommandError when no node lies on the surface.
GroundResult GroundInDocument(
    memhost::MemDocument& document,
    std::vector<std::unique_ptr<memhost::MemSurface>> surfaces,
    const GroundOptions& options);
GroundResult Ground(const GroundOptions& options);

}  // namespace kestrana::cli
