// Gathering the data of a profile of a growing run of pipes, with the
// ground from a surface and values at stations every 10 m:
//
//   bench_profile [SIZES...] [--unrelated-crossings K]
//
// Every pipe of the run is about 25 m long with a bend, drawn alternately
// with and against the run, crossed once by a water main. Besides, the
// drawing holds K crossings of other pipes far from the run (default
// 5000); gathering reads each pipe's own crossing references, so they must
// cost nothing. The table shows the time per run and per pipe and the
// growth from the smallest to the largest run (linear is the ratio of the
// sizes). Times are processor time of the gathering, the best of seven.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/project_setup.h"
#include "core/record.h"
#include "core/text.h"
#include "crossing/crossing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile.h"
#include "profile/profile_style_record.h"
#include "support/pipe_fixture.h"

namespace {

using kestrana::core::General;
namespace host = kestrana::host;
namespace profile = kestrana::profile;
namespace test = kestrana::test;

constexpr double kPipeLength = 25.0;  // along the run, before the bend
constexpr double kStationInterval = 10.0;

// Processor time of this thread: the machine may be shared, and the
// time other programs take must not count.
double ThreadSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + now.tv_nsec * 1e-9;
}

double Seconds(const std::function<void()>& run) {
  const double start = ThreadSeconds();
  run();
  return ThreadSeconds() - start;
}

double BestSeconds(int runs, const std::function<void()>& run) {
  double best = Seconds(run);
  for (int i = 1; i < runs; ++i) best = std::min(best, Seconds(run));
  return best;
}

// A gently rolling terrain in 25 m cells over the run and the far field.
std::unique_ptr<kestrana::memhost::MemSurface> Terrain(double width,
                                                       double height) {
  const double step = 25.0;
  const int columns = static_cast<int>(std::ceil(width / step)) + 2;
  const int rows = static_cast<int>(std::ceil(height / step)) + 2;
  std::vector<host::Point3> points;
  for (int j = 0; j <= rows; ++j)
    for (int i = 0; i <= columns; ++i) {
      const double x = (i - 1) * step, y = (j - 1) * step - 100;
      points.push_back(
          {x, y, 100 + 2 * std::sin(x / 150) + std::cos(y / 90) - x / 1000});
    }
  std::vector<std::array<int, 3>> triangles;
  for (int j = 0; j < rows; ++j)
    for (int i = 0; i < columns; ++i) {
      const int a = j * (columns + 1) + i, b = a + 1, c = a + columns + 1,
                d = c + 1;
      triangles.push_back({a, b, d});
      triangles.push_back({a, d, c});
    }
  return std::make_unique<kestrana::memhost::MemSurface>("EG", points,
                                                         triangles);
}

struct Drawing {
  std::unique_ptr<kestrana::memhost::MemDocument> document;
  profile::SortedPipes run;
};

// Crossings of the water mains with every pipe of the set.
void Cross(host::Document& document, const std::vector<host::Entity*>& pipes) {
  host::SelectionSet& set = General::InitializeSelectionSet(document, "Bench");
  set.AddItems(pipes);
  kestrana::crossing::Crossing::BuildCrossingPointsAfterImporting(
      document, set, kestrana::core::kMetric);
}

Drawing Generate(int pipes, int unrelated_crossings) {
  Drawing d{std::make_unique<kestrana::memhost::MemDocument>(), {}};
  host::Document& doc = *d.document;
  kestrana::core::CreateProjectRecord(doc, "Metric");
  const test::FixtureNetwork sewer =
      test::AddFixtureNetwork(doc, "Sewer", kestrana::core::kGravity);
  const test::FixtureNetwork storm =
      test::AddFixtureNetwork(doc, "Storm", kestrana::core::kGravity);
  const test::FixtureNetwork water =
      test::AddFixtureNetwork(doc, "Water", kestrana::core::kPressure);

  std::vector<host::BlockReference*> nodes;
  for (int i = 0; i <= pipes; ++i)
    nodes.push_back(&test::AddNode(doc, sewer,
                                   {.label = "N-" + std::to_string(i),
                                    .x = i * kPipeLength,
                                    .sump = 100 - i * 0.1,
                                    .ground = 103}));
  std::vector<host::Entity*> run;
  for (int i = 0; i < pipes; ++i) {
    const double x0 = i * kPipeLength, x1 = x0 + kPipeLength;
    const bool against = i % 2 == 1;
    std::vector<double> xy{x0, 0, x0 + kPipeLength / 2, 3, x1, 0};
    if (against) xy = {x1, 0, x0 + kPipeLength / 2, 3, x0, 0};
    run.push_back(&test::AddPipe(doc, sewer,
                                 {.label = "P-" + std::to_string(i),
                                  .xy = xy,
                                  .start_invert = 100 - (i + against) * 0.1,
                                  .end_invert = 100 - (i + !against) * 0.1,
                                  .start_node = nodes[against ? i + 1 : i],
                                  .end_node = nodes[against ? i : i + 1]}));
    d.run.oids += kestrana::core::ReferenceEntry(
        kestrana::core::IdText(run.back()->ObjectID()));
    d.run.directions += against ? ";1" : ";0";
    test::AddPipe(doc, water,
                  {.label = "W-" + std::to_string(i),
                   .xy = {x0 + 6, -20, x0 + 6, 20},
                   .start_invert = 101,
                   .end_invert = 101});
  }
  Cross(doc, run);

  // Far from the run: storm drains under a grid of water mains.
  std::vector<host::Entity*> drains;
  const int columns = 100;
  const int rows = (unrelated_crossings + columns - 1) / columns;
  for (int j = 0; j < rows; ++j)
    drains.push_back(&test::AddPipe(
        doc, storm,
        {.label = "S-" + std::to_string(j),
         .xy = {0, 1000.0 + 5 * j, 10.0 * columns, 1000.0 + 5 * j}}));
  for (int k = 0; k < columns && rows > 0; ++k)
    test::AddPipe(doc, water,
                  {.label = "F-" + std::to_string(k),
                   .xy = {5.0 + 10 * k, 990, 5.0 + 10 * k, 1010.0 + 5 * rows}});
  if (!drains.empty()) Cross(doc, drains);

  d.document->App().Civil().Document().Surfaces().Add(Terrain(
      std::max(pipes * kPipeLength, 10.0 * columns), 1200.0 + 5 * rows));
  return d;
}

profile::PartsData Gather(Drawing& d) {
  kestrana::core::Record style =
      *profile::Profile::GetProfileStyleSettings(*d.document, "Standard");
  style.SetText(profile::ProfileStyleItem::kStationBand,
                "9;Station;0;2;2;" + std::to_string(kStationInterval) + ";1");
  return profile::Profile::GetProfilePartsDataArrays(
      *d.document, d.document->App().Civil().Document(), "Sewer", style, d.run,
      true, "EG");
}

int Crossings(host::Document& document) {
  return kestrana::crossing::Crossing::GetExistingCrossingPointsSet(document,
                                                                    "")
      .Count();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> sizes;
  int unrelated = 5000;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--unrelated-crossings" && i + 1 < argc)
      unrelated = std::atoi(argv[++i]);
    else
      sizes.push_back(std::atoi(argv[i]));
  }
  if (sizes.empty()) sizes = {50, 100, 200, 500};

  std::printf("%7s %10s %10s %12s %10s %12s\n", "pipes", "crossings", "samples",
              "gather", "per pipe", "no far ones");
  double first = 0, last = 0;
  for (int pipes : sizes) {
    Drawing d = Generate(pipes, unrelated);
    Drawing alone = Generate(pipes, 0);
    size_t samples = 0;
    const double seconds = BestSeconds(7, [&] {
      const profile::PartsData parts = Gather(d);
      samples = 0;
      for (const profile::PartData& part : parts)
        samples +=
            kestrana::core::Split(part[profile::Series::kGroundLine]).size() /
            2;
    });
    const double without = BestSeconds(7, [&] { Gather(alone); });
    std::printf("%7d %10d %10zu %10.1fms %8.3fms %10.1fms\n", pipes,
                Crossings(*d.document), samples, seconds * 1e3,
                seconds * 1e3 / pipes, without * 1e3);
    if (first == 0) first = seconds;
    last = seconds;
  }
  if (sizes.size() > 1)
    std::printf(
        "growth from %d to %d pipes: %.1fx (%.1fx is linear); the far "
        "crossings are in the first column, not in the time\n",
        sizes.front(), sizes.back(), last / first,
        static_cast<double>(sizes.back()) / sizes.front());
  return 0;
}
