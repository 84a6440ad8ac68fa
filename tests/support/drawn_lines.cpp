#include "support/drawn_lines.h"

#include <cmath>
#include <random>

#include "core/general.h"
#include "editing/editing.h"
#include "host/host.h"

namespace kestrana::test {

namespace {

// Below and above what rounding to 5 places hides.
constexpr double kWithinRounding = 2e-7;
constexpr double kBeyondRounding = 1.2e-5;

}  // namespace

std::vector<host::LwPolyline*> AddDrawnGrid(host::Document& document,
                                            const DrawnGridOptions& options) {
  std::mt19937 random(options.seed);
  std::uniform_int_distribution<int> percent(0, 99);
  // A square grid of n x n junctions has 2 n (n - 1) street sections.
  const int n = std::max(
      2, static_cast<int>(
             std::ceil((1 + std::sqrt(1 + 2.0 * options.polylines)) / 2)));
  document.GetLayers().Add(options.layer);
  auto junction = [&](int i, int j) {
    return std::pair<double, double>{options.origin_x + i * options.spacing,
                                     options.origin_y + j * options.spacing};
  };
  std::vector<host::LwPolyline*> drawn;
  auto add = [&](std::vector<double> xy) {
    host::LwPolyline& pipe = document.ModelSpace().AddLightWeightPolyline(xy);
    pipe.SetLayer(options.layer);
    drawn.push_back(&pipe);
  };
  for (int j = 0; j < n && static_cast<int>(drawn.size()) < options.polylines;
       ++j) {
    for (int i = 0; i < n; ++i) {
      for (int direction = 0; direction < 2; ++direction) {
        const int i2 = i + (direction == 0), j2 = j + (direction == 1);
        if (i2 >= n || j2 >= n) continue;
        auto [x1, y1] = junction(i, j);
        auto [x2, y2] = junction(i2, j2);
        const int roll = percent(random);
        // Half the sections are drawn against the grid's direction.
        if (roll % 2) std::swap(x1, x2), std::swap(y1, y2);
        if (options.awkward && roll < 6) x2 += kBeyondRounding;
        if (options.awkward && roll >= 90) x1 += kWithinRounding;
        std::vector<double> xy = {x1, y1};
        if (roll % 5 == 0) {  // a bend beside the street
          xy.push_back((x1 + x2) / 2 + options.spacing / 10);
          xy.push_back((y1 + y2) / 2 + options.spacing / 10);
        }
        xy.push_back(x2);
        xy.push_back(y2);
        add(xy);
        if (options.awkward && roll >= 6 && roll < 9) add(xy);
        if (options.awkward && roll == 9) {
          const double d = options.spacing / 4;
          add({x1, y1, x1 + d, y1 + d, x1 - d, y1 + d, x1, y1});
        }
      }
    }
  }
  return drawn;
}

void ConvertDrawn(host::Document& document,
                  const std::vector<std::vector<double>>& lines,
                  const std::string& network, const std::string& type) {
  host::SelectionSet& set =
      core::General::InitializeSelectionSet(document, "SetEntitiesToConvert");
  for (const std::vector<double>& xy : lines)
    set.AddItems({&document.ModelSpace().AddLightWeightPolyline(xy)});
  editing::Editing::CreateElementsInNetwork(document, set, true, network, type);
}

}  // namespace kestrana::test
