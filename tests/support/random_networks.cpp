#include "support/random_networks.h"

#include <cmath>
#include <random>

#include "core/names.h"
#include "support/pipe_fixture.h"

namespace kestrana::test {

namespace {

// About one crossing per pipe and network pair at this spacing.
constexpr double kSpacing = 40.0;
constexpr double kMeanLength = 30.0;
constexpr int kAdversarialGrid = 24;

std::vector<double> ScatteredPipe(std::mt19937& random, double side) {
  std::uniform_real_distribution<double> where(0, side);
  std::uniform_real_distribution<double> angle(0, 2 * M_PI);
  std::uniform_real_distribution<double> length(0.5 * kMeanLength,
                                                1.5 * kMeanLength);
  const double x = where(random), y = where(random);
  const double a = angle(random), l = length(random);
  return {x, y, x + l * std::cos(a), y + l * std::sin(a)};
}

// Axis and diagonal steps on a small grid: the cases where pieces touch
// rather than cross.
std::vector<double> AwkwardPipe(std::mt19937& random) {
  std::uniform_int_distribution<int> cell(0, kAdversarialGrid);
  std::uniform_int_distribution<int> step(-4, 4);
  std::uniform_int_distribution<int> vertices(2, 4);
  std::vector<double> xy = {static_cast<double>(cell(random)),
                            static_cast<double>(cell(random))};
  const int count = vertices(random);
  for (int v = 1; v < count; ++v) {
    int dx = step(random), dy = step(random);
    switch (random() % 3) {  // horizontal, vertical or diagonal
      case 0:
        dy = 0;
        break;
      case 1:
        dx = 0;
        break;
      default:
        dy = dx;
    }
    if (dx == 0 && dy == 0) dx = 1;
    xy.push_back(xy[xy.size() - 2] + dx);
    xy.push_back(xy[xy.size() - 2] + dy);
  }
  return xy;
}

}  // namespace

void AddRandomNetworks(host::Document& document,
                       const RandomNetworksOptions& options) {
  std::mt19937 random(options.seed);
  std::uniform_real_distribution<double> invert(95.0, 100.0);
  std::uniform_int_distribution<int> size_step(1, 6);
  const double side =
      kSpacing * std::sqrt(static_cast<double>(options.pipes_per_network));
  int label = 0;
  for (size_t n = 0; n < options.networks.size(); ++n) {
    const FixtureNetwork network =
        AddFixtureNetwork(document, options.networks[n],
                          n % 2 ? core::kPressure : core::kGravity);
    for (int i = 0; i < options.pipes_per_network; ++i) {
      PipeSpec wanted;
      wanted.label = "P-" + std::to_string(++label);
      wanted.xy = options.adversarial ? AwkwardPipe(random)
                                    : ScatteredPipe(random, side);
      if (i < options.zero_length_pipes)
        wanted.xy = {wanted.xy[0], wanted.xy[1], wanted.xy[0], wanted.xy[1]};
      wanted.start_invert = invert(random);
      wanted.end_invert = invert(random);
      wanted.span = wanted.rise = 100.0 * size_step(random);
      AddPipe(document, network, wanted);
    }
  }
}

}  // namespace kestrana::test
