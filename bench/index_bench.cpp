// Selection index upkeep when records go to entities read earlier, as
// converting the polylines of a loaded drawing does: n polylines, then a
// record for each in an order other than drawing order, then a selection.
// Linear-logarithmic upkeep grows about 11x from 10 000 to 100 000; an
// index that inserts into the middle of its list grows about 100x.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "memhost/document.h"

namespace {

using kestrana::memhost::MemDocument;

void BM_RecordsForOldEntities(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    auto owned = std::make_unique<MemDocument>();
    MemDocument& doc = *owned;
    std::vector<kestrana::host::Entity*> lines;
    lines.reserve(n);
    for (int i = 0; i < n; ++i)
      lines.push_back(&doc.ModelSpace().AddLightWeightPolyline(
          {0.0 + i, 0, 1.0 + i, 1}));
    state.ResumeTiming();
    // Every other one from the back, then the rest from the front.
    for (int i = n - 1; i >= 0; i -= 2)
      lines[i]->SetXData({{1001, "Kestrana"}, {1000, "Pipe;Sewer;P-1"}});
    for (int i = n - 2; i >= 0; i -= 2)
      lines[i]->SetXData({{1001, "Kestrana"}, {1000, "Pipe;Sewer;P-2"}});
    benchmark::DoNotOptimize(doc.SelectAll({{1001, "Kestrana"}}).size());
    state.PauseTiming();
    owned.reset();  // not timed: tearing the drawing down
    state.ResumeTiming();
  }
}
BENCHMARK(BM_RecordsForOldEntities)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
