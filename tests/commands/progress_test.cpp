// Long commands report how far they have come: every step once, in order,
// up to the total, under the stage's name; and only while they run.
#include "core/progress.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/convert.h"
#include "commands/crossings.h"
#include "commands/ground.h"
#include "core/names.h"
#include "memhost/document.h"
#include "memhost/landxml.h"
#include "support/drawn_lines.h"
#include "support/network_elements.h"

namespace kestrana::commands {
namespace {

struct Step {
  std::string stage;
  size_t done, total;
};

class Progress : public ::testing::Test {
 protected:
  core::ProgressFn Recorder() {
    return [this](std::string_view stage, size_t done, size_t total) {
      steps_.push_back({std::string(stage), done, total});
    };
  }
  // The steps of one stage count 1, 2, ... up to their total.
  void ExpectCounted(const std::string& stage, size_t total) {
    std::vector<size_t> done;
    for (const Step& s : steps_)
      if (s.stage == stage) {
        EXPECT_EQ(s.total, total) << stage;
        done.push_back(s.done);
      }
    ASSERT_EQ(done.size(), total) << stage;
    for (size_t i = 0; i < done.size(); ++i) EXPECT_EQ(done[i], i + 1) << stage;
  }
  // A street grid drawn for each network, the second across the first.
  ConvertResult ConvertGrid(const std::string& network, const std::string& type,
                            double offset) {
    test::DrawnGridOptions grid;
    grid.polylines = 30;
    grid.layer = network + " lines";
    grid.origin_x = grid.origin_y = offset;
    drawn_ = test::AddDrawnGrid(*doc_, grid).size();
    return Convert(*doc_, {.network = network,
                           .type = type,
                           .selection = {.layer = grid.layer},
                           .progress = Recorder()});
  }
  std::unique_ptr<memhost::MemDocument> doc_ = test::NewFullProjectDocument();
  std::vector<Step> steps_;
  size_t drawn_ = 0;
};

TEST_F(Progress, ConversionCountsItsPipesAndTheCrossingSearch) {
  const ConvertResult sewer = ConvertGrid("Sewer", core::kGravity, 0);
  ExpectCounted(core::kConvertingStage, drawn_);
  EXPECT_EQ(static_cast<size_t>(sewer.pipes), drawn_);

  steps_.clear();
  const ConvertResult water = ConvertGrid("Water", core::kPressure, 25);
  ExpectCounted(core::kConvertingStage, drawn_);
  ASSERT_GT(water.crossings, 0);
  bool searched = false;
  for (const Step& s : steps_)
    searched |= s.stage == core::kCrossingsStage && s.done == s.total;
  EXPECT_TRUE(searched);

  // Nothing is reported once the command is over.
  steps_.clear();
  core::ReportProgress(core::kConvertingStage, 1, 1);
  EXPECT_TRUE(steps_.empty());
}

TEST_F(Progress, GroundLevelsCountEveryNodeOfEveryNetwork) {
  ConvertGrid("Sewer", core::kGravity, 0);
  ConvertGrid("Water", core::kPressure, 25);
  steps_.clear();
  GroundOptions options;
  options.surfaces = memhost::ParseLandXmlSurfaces(
      "<LandXML><Surfaces><Surface name=\"S\"><Definition surfType=\"TIN\">"
      "<Pnts><P id=\"1\">-1000 -1000 5</P><P id=\"2\">-1000 5000 5</P>"
      "<P id=\"3\">5000 -1000 5</P></Pnts><Faces><F>1 2 3</F></Faces>"
      "</Definition></Surface></Surfaces></LandXML>",
      "test");
  options.networks = {"Sewer", "Water"};
  options.progress = Recorder();
  const GroundResult r = Ground(*doc_, std::move(options));
  ExpectCounted(core::kGroundLevelsStage, r.updated + r.outside.size());
  EXPECT_GT(r.updated, 0);
}

TEST(ProgressScope, NestedScopesGiveBackTheOuterCallback) {
  std::vector<std::string> seen;
  core::ProgressScope outer([&](std::string_view stage, size_t, size_t) {
    seen.push_back("outer " + std::string(stage));
  });
  {
    core::ProgressScope inner([&](std::string_view stage, size_t, size_t) {
      seen.push_back("inner " + std::string(stage));
    });
    core::ReportProgress("a", 1, 1);
    core::ProgressScope none(nullptr);
    core::ReportProgress("b", 1, 1);
  }
  core::ReportProgress("c", 1, 1);
  EXPECT_EQ(seen, (std::vector<std::string>{"inner a", "outer c"}));
}

}  // namespace
}  // namespace kestrana::commands
