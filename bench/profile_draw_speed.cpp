// Drawing profiles: one profile of a growing run of pipes with the ground
// from a surface and stations every 10 m, and redrawing 20 flagged
// profiles against drawing them fresh:
//
//   bench_profile_draw [SIZES...]
//
// Every pipe is 25 m long with a bend and crossed once by a water main.
// Times are processor time, the best of five; the table shows the time per
// run and per pipe and the growth from the smallest to the largest run
// (linear is the ratio of the sizes).
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "commands/profile_draw.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/project_setup.h"
#include "core/record.h"
#include "core/references.h"
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

constexpr double kPipeLength = 25.0;
constexpr int kProfiles = 20;
constexpr int kProfilePipes = 20;

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

std::unique_ptr<kestrana::memhost::MemSurface> Terrain(double width) {
  const double step = 25.0;
  const int columns = static_cast<int>(std::ceil(width / step)) + 2;
  const int rows = 4;
  std::vector<host::Point3> points;
  for (int j = 0; j <= rows; ++j)
    for (int i = 0; i <= columns; ++i) {
      const double x = (i - 1) * step, y = (j - 1) * step - 40;
      points.push_back({x, y, 103 + 2 * std::sin(x / 150) - x / 1000});
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
  std::vector<host::Entity*> pipes;
};

Drawing Generate(int pipes) {
  Drawing d{std::make_unique<kestrana::memhost::MemDocument>(), {}, {}};
  host::Document& doc = *d.document;
  kestrana::core::CreateProjectRecord(doc, "Metric");
  const test::FixtureNetwork sewer =
      test::AddFixtureNetwork(doc, "Sewer", kestrana::core::kGravity);
  const test::FixtureNetwork water =
      test::AddFixtureNetwork(doc, "Water", kestrana::core::kPressure);
  std::vector<host::BlockReference*> nodes;
  for (int i = 0; i <= pipes; ++i)
    nodes.push_back(&test::AddNode(doc, sewer,
                                   {.label = "N-" + std::to_string(i),
                                    .x = i * kPipeLength,
                                    .sump = 100 - i * 0.1,
                                    .ground = 103}));
  for (int i = 0; i < pipes; ++i) {
    const double x0 = i * kPipeLength;
    d.pipes.push_back(&test::AddPipe(
        doc, sewer,
        {.label = "P-" + std::to_string(i),
         .xy = {x0, 0, x0 + kPipeLength / 2, 3, x0 + kPipeLength, 0},
         .start_invert = 100 - i * 0.1,
         .end_invert = 100 - (i + 1) * 0.1,
         .start_node = nodes[i],
         .end_node = nodes[i + 1]}));
    d.run.labels += kestrana::core::ReferenceEntry("P-" + std::to_string(i));
    d.run.oids += kestrana::core::ReferenceEntry(
        kestrana::core::IdText(d.pipes.back()->ObjectID()));
    d.run.directions += ";0";
    test::AddPipe(doc, water,
                  {.label = "W-" + std::to_string(i),
                   .xy = {x0 + 6, -20, x0 + 6, 20},
                   .start_invert = 101,
                   .end_invert = 101});
  }
  host::SelectionSet& set = General::InitializeSelectionSet(doc, "Bench");
  set.AddItems(d.pipes);
  kestrana::crossing::Crossing::BuildCrossingPointsAfterImporting(
      doc, set, kestrana::core::kMetric);
  d.document->App().Civil().Document().Surfaces().Add(
      Terrain(pipes * kPipeLength));
  // Values at stations every 10 m.
  host::Entity& marker = kestrana::core::EntityFromIdText(
      doc, profile::Profile::GetProfileStyleOID(doc, "Standard"));
  kestrana::core::Record style = kestrana::core::Record::ReadRequired(marker);
  style.SetText(profile::ProfileStyleItem::kStationBand,
                "9;Station;0;2;2;10;1");
  style.Write(marker);
  return d;
}

profile::ProfileInputs Inputs(const Drawing& d, const std::string& name,
                              double y) {
  profile::ProfileInputs inputs;
  inputs.profile_name = name;
  inputs.network_name = "Sewer";
  inputs.network_type = kestrana::core::kGravity;
  inputs.style_name = "Standard";
  inputs.pipes = d.run;
  inputs.insertion_point = {0, y, 0};
  inputs.ground_from_surface = true;
  inputs.ground_surface_name = "EG";
  inputs.name_on_plan = true;
  inputs.stations_on_plan = true;
  return inputs;
}

// Draws the profiles of the run, one under the other.
void DrawMany(Drawing& d, int count) {
  for (int k = 0; k < count; ++k)
    profile::Profile::DrawProfile(
        *d.document, Inputs(d, "Profile " + std::to_string(k), -300.0 * k));
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> sizes;
  for (int i = 1; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
  if (sizes.empty()) sizes = {20, 50, 100, 200};

  std::printf("one profile, ground from a surface, stations every 10 m\n");
  std::printf("%7s %12s %10s %10s\n", "pipes", "draw", "per pipe", "entities");
  double first = 0, last = 0;
  for (int pipes : sizes) {
    double best = 0;
    size_t entities = 0;
    for (int round = 0; round < 5; ++round) {
      Drawing d = Generate(pipes);
      std::string id;
      const double seconds = Seconds([&] {
        id = profile::Profile::DrawProfile(*d.document, Inputs(d, "Main", 0));
      });
      if (round == 0 || seconds < best) best = seconds;
      entities = d.document->GetBlocks()
                     .Item("Kestrana_Profile_Sewer_Main")
                     .Entities()
                     .size();
    }
    std::printf("%7d %10.1fms %8.3fms %10zu\n", pipes, best * 1e3,
                best * 1e3 / pipes, entities);
    if (first == 0) first = best;
    last = best;
  }
  if (sizes.size() > 1)
    std::printf("growth from %d to %d pipes: %.1fx (%.1fx is linear)\n\n",
                sizes.front(), sizes.back(), last / first,
                static_cast<double>(sizes.back()) / sizes.front());

  // A network-wide edit flags all 20 profiles; redrawing them all against
  // drawing them in a drawing that has none.
  double fresh = 0, update = 0;
  for (int round = 0; round < 5; ++round) {
    Drawing blank = Generate(kProfilePipes);
    const double f = Seconds([&] { DrawMany(blank, kProfiles); });
    Drawing edited = Generate(kProfilePipes);
    DrawMany(edited, kProfiles);
    for (host::Entity* pipe : edited.pipes) {
      kestrana::core::Record record =
          kestrana::core::Record::ReadRequired(*pipe);
      record.SetReal(kestrana::core::PipeField::kStartInvert,
                     record.Number(kestrana::core::PipeField::kStartInvert) +
                         0.05);
      record.Write(*pipe);
      for (const std::string& id : kestrana::core::ReferenceValues(
               record.Text(kestrana::core::PipeField::kProfileOIDRefs)))
        profile::Profile::FlagProfileForUpdate(*edited.document, id);
    }
    size_t redrawn = 0;
    const double u = Seconds([&] {
      kestrana::commands::ProfileUpdateOptions options;
      options.all_flagged = true;
      options.surfaces.push_back(Terrain(kProfilePipes * kPipeLength));
      redrawn = kestrana::commands::ProfileUpdate(*edited.document,
                                                  std::move(options))
                    .updated.size();
    });
    if (redrawn != static_cast<size_t>(kProfiles))
      std::printf("redrew %zu profiles, not %d\n", redrawn, kProfiles);
    if (round == 0 || f < fresh) fresh = f;
    if (round == 0 || u < update) update = u;
  }
  std::printf("%d profiles of %d pipes: drawn fresh %.1fms, update "
              "--all-flagged after an edit of every pipe %.1fms (%.2fx of "
              "fresh)\n",
              kProfiles, kProfilePipes, fresh * 1e3, update * 1e3,
              update / fresh);
  return 0;
}
