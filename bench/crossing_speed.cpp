// The crossing search on two generated networks of growing size, side by
// side: trying every pipe, the plan index, and GEOS's STRtree over the same
// segments.
//
//   bench_crossing [SIZES...] [--full-plain-up-to N] [--plain-sample K]
//
// Trying every pipe costs the same for each searched pipe, so beyond
// --full-plain-up-to (default 5000) it runs on the first K searched pipes
// (default 1000) and is scaled to the whole set; the indexed search is
// checked against it on those same pipes.
#include <geos_c.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "core/filters.h"
#include "core/general.h"
#include "core/project_setup.h"
#include "crossing/crossing.h"
#include "crossing/crossing_search.h"
#include "crossing/plan_index.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/random_networks.h"

namespace {

using kestrana::core::General;
using kestrana::crossing::CandidateSearch;
using kestrana::crossing::PlanIndex;
namespace host = kestrana::host;

double Seconds(const std::function<void()>& run) {
  auto start = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
      .count();
}

// The best of a few runs, for the short measurements.
double BestSeconds(int runs, const std::function<void()>& run) {
  double best = Seconds(run);
  for (int i = 1; i < runs; ++i) best = std::min(best, Seconds(run));
  return best;
}

struct Drawing {
  std::unique_ptr<kestrana::memhost::MemDocument> document;
  std::vector<host::SelectionSet*> networks;  // A, then B
};

Drawing Generate(int pipes) {
  Drawing d{std::make_unique<kestrana::memhost::MemDocument>(), {}};
  kestrana::core::CreateProjectRecord(*d.document, "Metric");
  kestrana::test::AddRandomNetworks(*d.document,
                                    {.pipes_per_network = pipes, .seed = 2024});
  d.networks = kestrana::crossing::Crossing::GetNetworkSetsAll(
      *d.document, General::GetNetworkDefinitions(*d.document));
  return d;
}

host::SelectionSet& FirstPipes(Drawing& d, int count) {
  host::SelectionSet& set =
      General::InitializeSelectionSet(*d.document, "BenchSample");
  std::vector<host::Entity*> all = d.networks[0]->Entities();
  all.resize(std::min<size_t>(all.size(), count));
  set.AddItems(all);
  return set;
}

struct Segment {
  double x0, y0, x1, y1;
};

std::vector<Segment> Segments(host::SelectionSet& set) {
  std::vector<Segment> segments;
  for (host::Entity* e : set.Entities()) {
    std::vector<double> xy = host::As<host::LwPolyline>(*e).Coordinates();
    segments.push_back({xy[0], xy[1], xy[2], xy[3]});
  }
  return segments;
}

host::Box2 BoxOf(const Segment& s) {
  host::Box2 box;
  box.Add(s.x0, s.y0);
  box.Add(s.x1, s.y1);
  return box;
}

// Candidate pairs of the searched segments against the others, through our
// packed R-tree: build plus every query.
size_t OurIndex(const std::vector<Segment>& searched,
                const std::vector<Segment>& others) {
  std::vector<host::Box2> boxes;
  boxes.reserve(others.size());
  for (const Segment& s : others) boxes.push_back(BoxOf(s));
  PlanIndex index(boxes);
  std::vector<uint32_t> hits;
  size_t pairs = 0;
  for (const Segment& s : searched) {
    hits.clear();
    index.Query(BoxOf(s), hits);
    pairs += hits.size();
  }
  return pairs;
}

void CountHit(void*, void* userdata) { ++*static_cast<size_t*>(userdata); }

struct Geos {
  GEOSContextHandle_t context = GEOS_init_r();
  ~Geos() { GEOS_finish_r(context); }
  std::vector<GEOSGeometry*> Lines(const std::vector<Segment>& segments) {
    std::vector<GEOSGeometry*> lines;
    for (const Segment& s : segments) {
      GEOSCoordSequence* sequence = GEOSCoordSeq_create_r(context, 2, 2);
      GEOSCoordSeq_setXY_r(context, sequence, 0, s.x0, s.y0);
      GEOSCoordSeq_setXY_r(context, sequence, 1, s.x1, s.y1);
      lines.push_back(GEOSGeom_createLineString_r(context, sequence));
    }
    return lines;
  }
  void Free(std::vector<GEOSGeometry*>& lines) {
    for (GEOSGeometry* g : lines) GEOSGeom_destroy_r(context, g);
  }
  // The same candidate pairs through GEOS's STRtree (node capacity 16, as
  // ours): build plus every query.
  size_t Query(const std::vector<GEOSGeometry*>& searched,
               const std::vector<GEOSGeometry*>& others) {
    GEOSSTRtree* tree = GEOSSTRtree_create_r(context, 16);
    for (GEOSGeometry* g : others) GEOSSTRtree_insert_r(context, tree, g, g);
    size_t pairs = 0;
    for (GEOSGeometry* g : searched)
      GEOSSTRtree_query_r(context, tree, g, CountHit, &pairs);
    GEOSSTRtree_destroy_r(context, tree);
    return pairs;
  }
};

void Print(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::vprintf(format, args);
  va_end(args);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> sizes;
  int full_plain_up_to = 5000, plain_sample = 1000;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "--full-plain-up-to" && i + 1 < argc)
      full_plain_up_to = std::stoi(argv[++i]);
    else if (a == "--plain-sample" && i + 1 < argc)
      plain_sample = std::stoi(argv[++i]);
    else
      sizes.push_back(std::stoi(a));
  }
  if (sizes.empty()) sizes = {1000, 2000, 5000, 10000, 20000};

  Print(
      "pipes per network, crossings, plain s, indexed s, plain/indexed, "
      "candidate pairs, our R-tree s, GEOS STRtree s, GEOS/ours\n");
  struct Row {
    int n;
    double indexed, tree, geos;
  };
  std::vector<Row> rows;
  Geos geos;
  for (int n : sizes) {
    Drawing d = Generate(n);
    host::SelectionSet& searched = *d.networks[0];
    auto search = [&](host::SelectionSet& set, CandidateSearch how) {
      return kestrana::crossing::SearchCrossPoints(*d.document, d.networks, set,
                                                   how);
    };

    std::vector<kestrana::types::CrossPoint> found;
    const double indexed = BestSeconds(
        3, [&] { found = search(searched, CandidateSearch::kPlanIndex); });

    const bool full = n <= full_plain_up_to;
    host::SelectionSet& plain_set =
        full ? searched : FirstPipes(d, plain_sample);
    std::vector<kestrana::types::CrossPoint> plain_found;
    double plain = Seconds(
        [&] { plain_found = search(plain_set, CandidateSearch::kEveryPipe); });
    std::vector<kestrana::types::CrossPoint> check =
        full ? found : search(plain_set, CandidateSearch::kPlanIndex);
    if (check != plain_found) {
      Print("the indexed search differs from trying every pipe at %d\n", n);
      return 1;
    }
    if (!full) plain *= static_cast<double>(n) / plain_set.Count();

    std::vector<Segment> a = Segments(searched), b = Segments(*d.networks[1]);
    size_t our_pairs = 0, geos_pairs = 0;
    const double tree = BestSeconds(5, [&] { our_pairs = OurIndex(a, b); });
    std::vector<GEOSGeometry*> ga = geos.Lines(a), gb = geos.Lines(b);
    const double geos_tree =
        BestSeconds(5, [&] { geos_pairs = geos.Query(ga, gb); });
    geos.Free(ga);
    geos.Free(gb);
    if (our_pairs != geos_pairs) {
      Print("candidate pairs differ at %d: %zu against GEOS's %zu\n", n,
            our_pairs, geos_pairs);
      return 1;
    }
    Print("%d, %zu, %.3f%s, %.4f, %.0f, %zu, %.5f, %.5f, %.2f\n", n,
          found.size() - kestrana::types::IsNoCrossing(found[0]), plain,
          full ? "" : " (scaled)", indexed, plain / indexed, our_pairs, tree,
          geos_tree, geos_tree / tree);
    rows.push_back({n, indexed, tree, geos_tree});
  }

  // Growth from one size to the next, and over the whole range, as an
  // exponent of n, beside what n log n gives over the same step.
  Print(
      "\nfrom, to, indexed exponent, R-tree exponent, GEOS exponent, "
      "n log n exponent\n");
  auto growth = [&](const Row& from, const Row& to) {
    const double n0 = from.n, n1 = to.n;
    auto exponent = [&](double t0, double t1) {
      return std::log(t1 / t0) / std::log(n1 / n0);
    };
    Print("%d, %d, %.2f, %.2f, %.2f, %.2f\n", from.n, to.n,
          exponent(from.indexed, to.indexed), exponent(from.tree, to.tree),
          exponent(from.geos, to.geos),
          exponent(n0 * std::log(n0), n1 * std::log(n1)));
  };
  for (size_t i = 1; i < rows.size(); ++i) growth(rows[i - 1], rows[i]);
  if (rows.size() > 2) growth(rows.front(), rows.back());
  return 0;
}
