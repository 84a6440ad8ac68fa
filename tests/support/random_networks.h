// Generated drawings for comparing the crossing search with and without its
// plan index, and for measuring it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrana::host {
class Document;
}

namespace kestrana::test {

struct RandomNetworksOptions {
  std::vector<std::string> networks = {"A",
                                       "B"};  // alternately Gravity, Pressure
  int pipes_per_network = 100;
  uint32_t seed = 1;
  // Scattered straight pipes at a constant density (the area grows with the
  // pipe count), or the awkward cases: vertices on a small integer grid, so
  // that pipes overlap collinearly, share vertices, end on each other and
  // run along each other, plus bent pipes of several segments.
  bool adversarial = false;
  // Pipes whose two vertices coincide, among the others.
  int zero_length_pipes = 0;
};

// Adds the networks to the project and their pipes, labelled "P-<n>", with
// random inverts and sizes.
void AddRandomNetworks(host::Document& document,
                       const RandomNetworksOptions& options);

}  // namespace kestrana::test
