// Converting drawn polylines into a network, measured beside saving the
// resulting drawing. A street grid of n sewer polylines is converted into a
// new gravity network across a water network of about n mains converted
// beforehand, so that the conversion also draws the crossings. Printed: the
// times (medians), conversion against saving, the growth from the smallest
// to the largest size, and for the smaller sizes the documented steps one
// polyline at a time, which the batch path must equal in result.
//
//   build-bench/bench_conversion [SIZES...]   (default 1000 5000 10000)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "commands/networks.h"
#include "commands/project.h"
#include "core/general.h"
#include "core/names.h"
#include "crossing/crossing.h"
#include "dxf/io.h"
#include "editing/conversion.h"
#include "editing/editing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"

namespace {

using kestrana::editing::ConversionPath;
namespace core = kestrana::core;
namespace fs = std::filesystem;

// Medians of at least this many runs, and of more for the small sizes,
// whose times are short enough for the machine's other work to show.
constexpr int kRepetitions = 3;
constexpr int kPolylinesPerSizeRuns = 20000;
// The documented steps grow with the square of the size; beyond this they
// take minutes.
constexpr int kLargestStepsSize = 2000;

struct Site {
  std::unique_ptr<kestrana::memhost::MemDocument> document;
  std::vector<kestrana::host::LwPolyline*> sewer;
};

Site MakeSite(int n) {
  Site site{std::make_unique<kestrana::memhost::MemDocument>(), {}};
  auto& doc = *site.document;
  kestrana::commands::NewProject(doc, {core::kMetric});
  kestrana::commands::AddNetwork(doc, {"Water", core::kPressure});
  kestrana::commands::AddNetwork(doc, {"Sewer", core::kGravity});
  // Mains on a grid twice as wide, half a block off the sewers, so that
  // about every fourth sewer is crossed.
  auto mains = kestrana::test::AddDrawnGrid(doc, {.polylines = n / 4,
                                                  .spacing = 100,
                                                  .origin_x = 25,
                                                  .origin_y = 25,
                                                  .layer = "Water lines",
                                                  .seed = 2});
  auto& set =
      core::General::InitializeSelectionSet(doc, "SetEntitiesToConvert");
  set.AddItems({mains.begin(), mains.end()});
  kestrana::editing::Editing::CreateElementsInNetwork(doc, set, false, "Water",
                                                      core::kPressure);
  site.sewer = kestrana::test::AddDrawnGrid(
      doc, {.polylines = n, .spacing = 50, .layer = "Sewer lines", .seed = 3});
  return site;
}

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
      .count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct Row {
  int polylines = 0;
  int crossings = 0;
  double convert = 0, save = 0, steps = 0;
};

Row Measure(int n, const fs::path& folder) {
  Row row;
  std::vector<double> convert, save, steps;
  const int runs = std::max(kRepetitions, kPolylinesPerSizeRuns / n);
  for (int r = 0; r < runs; ++r) {
    for (ConversionPath path :
         {ConversionPath::kBatch, ConversionPath::kSteps}) {
      if (path == ConversionPath::kSteps && (n > kLargestStepsSize || r > 0))
        continue;
      Site site = MakeSite(n);
      auto& doc = *site.document;
      const double seconds = Seconds([&] {
        auto& set =
            core::General::InitializeSelectionSet(doc, "SetEntitiesToConvert");
        set.AddItems({site.sewer.begin(), site.sewer.end()});
        kestrana::editing::ConvertEntities(doc, set, false, "Sewer",
                                           core::kGravity, path);
      });
      if (path == ConversionPath::kSteps) {
        steps.push_back(seconds);
        continue;
      }
      convert.push_back(seconds);
      row.polylines = static_cast<int>(site.sewer.size());
      row.crossings =
          kestrana::crossing::Crossing::GetExistingCrossingPointsSet(doc, "")
              .Count();
      const std::string out = (folder / "converted.dxf").string();
      save.push_back(Seconds([&] { kestrana::dxf::SaveDrawing(doc, out); }));
    }
  }
  row.convert = Median(convert);
  row.save = Median(save);
  row.steps = steps.empty() ? 0 : steps.front();
  return row;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<int> sizes;
  for (int i = 1; i < argc; ++i) {
    const int n = std::atoi(argv[i]);
    if (n < 10) {
      std::fprintf(stderr, "usage: bench_conversion [SIZES...] (10 or more)\n");
      return 2;
    }
    sizes.push_back(n);
  }
  if (sizes.empty()) sizes = {1000, 5000, 10000};
  const fs::path folder =
      fs::temp_directory_path() / "kestrana_conversion_bench";
  fs::create_directories(folder);

  std::printf("%9s %10s %11s %9s %13s %12s %13s\n", "polylines", "crossings",
              "convert s", "save s", "convert/save", "steps s",
              "steps/convert");
  std::vector<Row> rows;
  for (int n : sizes) {
    const Row row = Measure(n, folder);
    rows.push_back(row);
    std::printf("%9d %10d %11.3f %9.3f %13.2f", row.polylines, row.crossings,
                row.convert, row.save, row.convert / row.save);
    if (row.steps > 0)
      std::printf(" %12.3f %13.1f\n", row.steps, row.steps / row.convert);
    else
      std::printf(" %12s %13s\n", "-", "-");
    std::fflush(stdout);
  }
  if (rows.size() > 1) {
    const Row& first = rows.front();
    const Row& last = rows.back();
    std::printf(
        "growth from %d to %d polylines (%.1fx as many): conversion %.1fx, "
        "saving %.1fx\n",
        first.polylines, last.polylines,
        static_cast<double>(last.polylines) / first.polylines,
        last.convert / first.convert, last.save / first.save);
  }
  fs::remove_all(folder);
  return 0;
}
