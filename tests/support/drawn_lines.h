// Street-grid drawings of plain polylines, as a user draws a network before
// converting it: pipes run from junction to junction along the streets, so
// that their ends meet at junctions, some with a bend on the way.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrana::host {
class Document;
class LwPolyline;
}  // namespace kestrana::host

namespace kestrana::test {

struct DrawnGridOptions {
  int polylines = 100;  // about this many, in whole grid rows
  double spacing = 50;  // between junctions
  double origin_x = 0, origin_y = 0;
  std::string layer = "Drawn lines";
  uint32_t seed = 1;
  // Awkward ends among the ordinary ones: ends that miss their junction in
  // the sixth decimal place (so they get nodes of their own), ends that hit
  // it within rounding, pipes drawn twice over the same junctions, and
  // closed loops that start and end at one junction.
  bool awkward = false;
};

// Adds the polylines on `options.layer` (made when missing), in drawing
// order, without records.
std::vector<host::LwPolyline*> AddDrawnGrid(host::Document& document,
                                            const DrawnGridOptions& options);

// Converts polylines of these coordinates into the network, which must
// exist, as `kestrana convert` does: nodes, labels, annotations, crossings
// and low and high points.
void ConvertDrawn(host::Document& document,
                  const std::vector<std::vector<double>>& lines,
                  const std::string& network, const std::string& type);

}  // namespace kestrana::test
