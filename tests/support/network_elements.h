// Network elements made by hand, with exactly the records a conversion of
// drawn lines writes: nodes are "Kestrana_Node" inserts, pipes polylines,
// both on "<network> - Network", linked both ways (pipe fields 12-15, node
// fields 5-8). Annotation links (pipe 16-19, node 11-12) start empty.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "memhost/document.h"

namespace kestrana::test {

// A drawing with a whole project, as `kestrana new` makes it: the project
// record, the libraries and the active "Standard" view style.
std::unique_ptr<memhost::MemDocument> NewFullProjectDocument(
    const std::string& units = "Metric");

// What a pipe gets besides its geometry; unset values take the initial
// record values (circular, 200 mm or 8 in, one cell, inverts 0, "PVC").
struct PipeData {
  std::optional<std::string> shape =
      std::nullopt;  // "SectionShape_Circular" or "_Box"
  std::optional<double> span = std::nullopt;
  std::optional<double> rise = std::nullopt;
  std::optional<int> cells = std::nullopt;
  double start_invert = 0;
  double end_invert = 0;
  std::optional<std::string> material = std::nullopt;
};

class NetworkElements {
 public:
  // The network must exist in the project; its type decides the element
  // types (and the node matching rule).
  NetworkElements(host::Document& document, std::string network);

  host::BlockReference& AddNode(const std::string& label, double x, double y,
                                double ground = 0, double sump = 0);
  // A pipe along `xy` (flat X0, Y0, X1, Y1, ...) from `start` to `end`.
  host::LwPolyline& AddPipe(const std::string& label,
                            const std::vector<double>& xy,
                            host::BlockReference& start,
                            host::BlockReference& end,
                            const PipeData& data = {});
  // Two new nodes at the ends of `xy` ("<label>-S" and "<label>-E") and the
  // pipe between them.
  host::LwPolyline& AddPipeWithNodes(const std::string& label,
                                     const std::vector<double>& xy,
                                     const PipeData& data = {},
                                     double start_ground = 0,
                                     double end_ground = 0);

  const std::string& Network() const { return network_; }
  std::string Layer() const { return network_ + " - Network"; }

 private:
  host::Document& document_;
  std::string network_;
  bool gravity_;
  bool metric_;
};

}  // namespace kestrana::test
