// Converting through the command: what it reports is what the drawing
// gained, counted independently afterwards.
#include "commands/convert.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "commands/elements.h"
#include "commands/networks.h"
#include "core/general.h"
#include "core/names.h"
#include "crossing/crossing.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"
#include "support/network_elements.h"

namespace kestrana::commands {
namespace {

struct Tally {
  int pipes, nodes, crossings;
};

Tally Count(host::Document& doc, const std::string& network) {
  return {core::General::GetNetworkSet(doc, network, core::network_set::kPipes).Count(),
          core::General::GetNetworkSet(doc, network, core::network_set::kNodes).Count(),
          crossing::Crossing::GetExistingCrossingPointsSet(doc, "").Count()};
}

TEST(ConvertCommand, ReportsWhatTheDrawingGainedOnNewAndExistingNetworks) {
  std::unique_ptr<memhost::MemDocument> doc =
      test::NewFullProjectDocument("Metric");
  AddNetwork(*doc, {"Water", core::kPressure});
  // Water mains half a block off the sewer grid, so that sewers cross them.
  test::ConvertDrawn(*doc,
                     {{25, -20, 25, 220}, {125, -20, 125, 220},
                      {-20, 75, 220, 75}},
                     "Water", core::kPressure);
  // Ends that miss their junction, pipes drawn twice and loops make nodes
  // fewer than two per pipe and not simply countable from the polylines.
  test::AddDrawnGrid(*doc, {.polylines = 24,
                            .spacing = 50,
                            .layer = "Sewer lines",
                            .seed = 7,
                            .awkward = true});
  const Tally before = Count(*doc, "Sewer");
  ConvertResult first = Convert(
      *doc, {.network = "Sewer",
             .type = std::string(core::kGravity),
             .selection = {.layer = std::string("Sewer lines")}});
  const Tally middle = Count(*doc, "Sewer");
  EXPECT_TRUE(first.new_network);
  EXPECT_EQ(first.pipes, middle.pipes - before.pipes);
  EXPECT_EQ(first.nodes, middle.nodes - before.nodes);
  EXPECT_EQ(first.crossings, middle.crossings - before.crossings);
  EXPECT_GT(first.crossings, 0);
  EXPECT_LT(first.nodes, 2 * first.pipes);

  // More sewers on the same junctions: the existing nodes are shared, and
  // one of the new pipes crosses a main.
  test::AddDrawnGrid(*doc, {.polylines = 6,
                            .spacing = 50,
                            .origin_y = 100,
                            .layer = "More sewers",
                            .seed = 9});
  ConvertResult second =
      Convert(*doc, {.network = "Sewer",
                     .selection = {.layer = std::string("More sewers")}});
  const Tally after = Count(*doc, "Sewer");
  EXPECT_FALSE(second.new_network);
  EXPECT_EQ(second.pipes, after.pipes - middle.pipes);
  EXPECT_EQ(second.nodes, after.nodes - middle.nodes);
  EXPECT_EQ(second.crossings, after.crossings - middle.crossings);
  EXPECT_GT(second.pipes, 0);
  EXPECT_LT(second.nodes, second.pipes);
  EXPECT_GT(second.crossings, 0);
}

}  // namespace
}  // namespace kestrana::commands
