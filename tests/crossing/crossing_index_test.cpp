// The plan index must never change what the search finds: it is compared
// with trying every pipe on generated drawings, including the cases where
// pieces touch rather than cross.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "core/filters.h"
#include "core/general.h"
#include "crossing/crossing.h"
#include "crossing/crossing_search.h"
#include "crossing/plan_index.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/pipe_fixture.h"
#include "support/project.h"
#include "support/random_networks.h"

namespace kestrana::crossing {
namespace {

using core::General;

std::vector<uint32_t> Overlapping(const std::vector<host::Box2>& boxes,
                                  const host::Box2& box) {
  std::vector<uint32_t> hits;
  for (uint32_t i = 0; i < boxes.size(); ++i)
    if (boxes[i].Overlaps(box)) hits.push_back(i);
  return hits;
}

TEST(PlanIndex, FindsExactlyTheOverlappingBoxes) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> where(0, 100), size(0, 8);
  // Around the node size and its multiples, and with empty, degenerate and
  // repeated boxes among them.
  for (size_t count : {0u, 1u, 15u, 16u, 17u, 256u, 257u, 3000u}) {
    std::vector<host::Box2> boxes(count);
    for (size_t i = 0; i < count; ++i) {
      if (i % 11 == 3) continue;  // empty
      if (i % 13 == 5 && i > 0) {
        boxes[i] = boxes[i - 1];
        continue;
      }
      const double x = where(random), y = where(random);
      const double w = i % 7 == 0 ? 0 : size(random);
      boxes[i].Add(x, y);
      boxes[i].Add(x + w, y + size(random));
    }
    PlanIndex index(boxes);
    EXPECT_EQ(index.Size(), static_cast<size_t>(std::count_if(
                                boxes.begin(), boxes.end(),
                                [](const host::Box2& b) { return !b.empty; })));
    for (int q = 0; q < 200; ++q) {
      host::Box2 query;
      const double x = where(random), y = where(random);
      query.Add(x, y);
      query.Add(x + 3 * size(random), y + 3 * size(random));
      if (q == 0 && count > 0 && !boxes[0].empty) query = boxes[0];
      std::vector<uint32_t> hits;
      index.Query(query, hits);
      std::sort(hits.begin(), hits.end());
      ASSERT_EQ(hits, Overlapping(boxes, query)) << count << " boxes";
    }
    std::vector<uint32_t> none;
    index.Query(host::Box2{}, none);
    EXPECT_TRUE(none.empty());
  }
}

// A search's crossings, or the error that stopped it.
struct Outcome {
  std::vector<types::CrossPoint> points;
  std::string error;
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome SearchOutcome(host::Document& document, host::SelectionSet& pipes,
                      CandidateSearch search) {
  std::vector<host::SelectionSet*> sets = Crossing::GetNetworkSetsAll(
      document, General::GetNetworkDefinitions(document));
  try {
    return {SearchCrossPoints(document, sets, pipes, search), ""};
  } catch (const std::exception& e) {
    return {{}, e.what()};
  }
}

// Both searches over the whole drawing and over the pipes of one network.
void ExpectSameCrossings(const test::RandomNetworksOptions& options,
                         bool expect_crossings = true) {
  auto document = test::NewProjectDocument();
  test::AddRandomNetworks(*document, options);
  host::SelectionSet& all =
      General::InitializeSelectionSet(*document, "AllPipes");
  all.Select(host::SelectMode::kAll, {}, {}, core::AllPipesFilter());
  host::SelectionSet& one = General::InitializeSelectionSet(*document, "One");
  one.Select(host::SelectMode::kAll, {}, {},
             core::PipesOfNetworkFilter(options.networks.back()));
  for (host::SelectionSet* set : {&all, &one}) {
    Outcome plain = SearchOutcome(*document, *set, CandidateSearch::kEveryPipe);
    Outcome indexed =
        SearchOutcome(*document, *set, CandidateSearch::kPlanIndex);
    ASSERT_EQ(indexed.error, plain.error) << "seed " << options.seed;
    ASSERT_EQ(indexed.points.size(), plain.points.size())
        << "seed " << options.seed;
    EXPECT_TRUE(indexed == plain) << "seed " << options.seed;
    if (expect_crossings && plain.error.empty()) {
      EXPECT_GT(plain.points.size(), 3u) << "a drawing worth comparing";
    }
  }
}

TEST(IndexedSearch, ScatteredPipesGiveTheSameCrossings) {
  for (uint32_t seed = 1; seed <= 6; ++seed)
    ExpectSameCrossings({.pipes_per_network = 150, .seed = seed});
}

TEST(IndexedSearch, AwkwardPipesGiveTheSameCrossings) {
  // Overlapping collinear pieces, shared vertices, pipes ending on others,
  // bent pipes; three networks, so that network order matters too.
  for (uint32_t seed = 1; seed <= 6; ++seed)
    ExpectSameCrossings({.networks = {"A", "B", "C"},
                         .pipes_per_network = 60,
                         .seed = seed,
                         .adversarial = true});
}

TEST(IndexedSearch, ZeroLengthPipesFailOrPassAlike) {
  // On the small grid points lie on other pipes and stop both searches with
  // the same error; scattered they meet nothing and both succeed.
  int failed = 0;
  for (uint32_t seed = 1; seed <= 6; ++seed) {
    test::RandomNetworksOptions awkward{.pipes_per_network = 40,
                                        .seed = seed,
                                        .adversarial = true,
                                        .zero_length_pipes = 4};
    ExpectSameCrossings(awkward, false);
    auto document = test::NewProjectDocument();
    test::AddRandomNetworks(*document, awkward);
    host::SelectionSet& all = General::InitializeSelectionSet(*document, "All");
    all.Select(host::SelectMode::kAll, {}, {}, core::AllPipesFilter());
    failed += !SearchOutcome(*document, all, CandidateSearch::kPlanIndex)
                   .error.empty();
    ExpectSameCrossings(
        {.pipes_per_network = 100, .seed = seed, .zero_length_pipes = 5});
  }
  EXPECT_GT(failed, 0) << "no awkward drawing had a zero-length pipe on "
                          "another pipe";
}

TEST(IndexedSearch, NearMissesTheHostJoinsAreFound) {
  // The host meets pieces within a billionth of a unit, so pipes whose
  // extents miss each other by that much still cross: across an end, and
  // end to end along one line far from the origin.
  auto document = test::NewProjectDocument();
  auto a = test::AddFixtureNetwork(*document, "A", "Gravity");
  auto b = test::AddFixtureNetwork(*document, "B", "Pressure");
  test::AddPipe(*document, a, {.label = "Short", .xy = {0, 0, 5 - 5e-10, 0}});
  test::AddPipe(*document, b, {.label = "Cross", .xy = {5, -1, 5, 1}});
  test::AddPipe(*document, a, {.label = "Long", .xy = {0, 50, 1e6, 50}});
  test::AddPipe(*document, b,
                {.label = "Next", .xy = {1e6 + 1e-9, 50, 2e6, 50}});
  host::SelectionSet& all = General::InitializeSelectionSet(*document, "All");
  all.Select(host::SelectMode::kAll, {}, {}, core::AllPipesFilter());
  Outcome plain = SearchOutcome(*document, all, CandidateSearch::kEveryPipe);
  ASSERT_EQ(plain.points.size(), 2u) << plain.error;
  EXPECT_TRUE(SearchOutcome(*document, all, CandidateSearch::kPlanIndex) ==
              plain);
}

}  // namespace
}  // namespace kestrana::crossing
