// Writes the drawing the command-line conversion benchmark starts from: a
// water network of about N pipes, converted from a street grid, and a sewer
// grid of about N drawn polylines on the layer "Sewer lines", half a block
// off the mains so that they cross.
//
//   build-bench/bench_site N OUT.dxf
#include <cstdio>
#include <cstdlib>
#include <string>

#include "commands/networks.h"
#include "commands/project.h"
#include "core/general.h"
#include "core/names.h"
#include "dxf/io.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"

int main(int argc, char** argv) {
  const int n = argc == 3 ? std::atoi(argv[1]) : 0;
  if (n < 10) {
    std::fprintf(stderr, "usage: bench_site N OUT.dxf (N 10 or more)\n");
    return 2;
  }
  namespace core = kestrana::core;
  kestrana::memhost::MemDocument doc;
  kestrana::commands::NewProject(doc, {core::kMetric});
  kestrana::commands::AddNetwork(doc, {"Water", core::kPressure});
  auto mains = kestrana::test::AddDrawnGrid(doc, {.polylines = n,
                                                  .spacing = 50,
                                                  .origin_x = 25,
                                                  .origin_y = 25,
                                                  .layer = "Water lines",
                                                  .seed = 2});
  auto& set =
      core::General::InitializeSelectionSet(doc, "SetEntitiesToConvert");
  set.AddItems({mains.begin(), mains.end()});
  kestrana::editing::Editing::CreateElementsInNetwork(doc, set, false, "Water",
                                                      core::kPressure);
  kestrana::test::AddDrawnGrid(
      doc, {.polylines = n, .spacing = 50, .layer = "Sewer lines", .seed = 3});
  kestrana::dxf::SaveDrawing(doc, argv[2]);
  return 0;
}
