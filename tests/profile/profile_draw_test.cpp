// Drawing, redrawing and deleting profiles: the block a run of pipes gives,
// its layers, levels and texts, its records and back-references.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "commands/profile_draw.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_style_record.h"
#include "support/network_elements.h"

namespace kestrana::profile {
namespace {

using commands::ProfileDraw;
using commands::ProfileDrawOptions;
using core::General;

constexpr double kTol = 1e-6;

std::vector<host::Entity*> On(const host::Block& block, const std::string& layer,
                              host::EntityKind kind) {
  std::vector<host::Entity*> found;
  for (host::Entity* e : block.Entities())
    if (e->Layer() == layer && e->Kind() == kind) found.push_back(e);
  return found;
}

std::vector<std::string> TextsOn(const host::Block& block,
                                 const std::string& layer) {
  std::vector<std::string> texts;
  for (host::Entity* e : On(block, layer, host::EntityKind::kText))
    texts.push_back(host::As<host::Text>(*e).TextString());
  return texts;
}

bool Has(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// The line MH-A1 (0,0) - MH-A2 (40,0) - MH-A3 (80,0) - OUT (120,0) falling
// east, P-2 drawn against the run, and a lateral P-4 from MH-B1 into MH-A2.
class DrawnProfile : public ::testing::Test {
 protected:
  void SetUp() override {
    General::CreateNetworkDefintion(*doc_, "Sewer", core::kGravity);
    General::CreateNetworkDefintion(*doc_, "Water", core::kPressure);
    test::NetworkElements sewer(*doc_, "Sewer");
    auto& a1 = sewer.AddNode("MH-A1", 0, 0, 103, 101);
    auto& a2 = sewer.AddNode("MH-A2", 40, 0, 103.5, 100.6);
    auto& a3 = sewer.AddNode("MH-A3", 80, 0, 103, 100.2);
    auto& out = sewer.AddNode("OUT", 120, 0, 102, 99.8);
    auto& b1 = sewer.AddNode("MH-B1", 40, 30, 103, 101.5);
    p1_ = &sewer.AddPipe("P-1", {0, 0, 40, 0}, a1, a2,
                         {.start_invert = 101, .end_invert = 100.6});
    sewer.AddPipe("P-2", {80, 0, 40, 0}, a3, a2,
                  {.start_invert = 100.2, .end_invert = 100.6});
    sewer.AddPipe("P-3", {80, 0, 120, 0}, a3, out,
                  {.start_invert = 100.2, .end_invert = 99.8});
    sewer.AddPipe("P-4", {40, 30, 40, 0}, b1, a2,
                  {.start_invert = 101.5, .end_invert = 100.8});
    test::NetworkElements water(*doc_, "Water");
    water.AddPipeWithNodes("W-1", {0, 50, 60, 50},
                           {.start_invert = 101, .end_invert = 100.4}, 102,
                           101.5);
  }

  ProfileDrawOptions Options(const std::string& name) {
    ProfileDrawOptions options;
    options.name = name;
    options.run.network = "Sewer";
    options.run.pipes = {"P-1", "P-2", "P-3"};
    options.run.start = host::Point3{0, 0, 0};
    options.at = {1000, 2000, 0};
    return options;
  }
  host::Block& BlockOf(const std::string& name) {
    return document().GetBlocks().Item("Kestrana_Profile_Sewer_" + name);
  }
  host::Document& document() { return *doc_; }
  std::string Drawn(const ProfileDrawOptions& options) {
    return ProfileDraw(*doc_, options).profile.block_id;
  }
  host::BlockReference& Reference(const std::string& id) {
    return host::As<host::BlockReference>(core::EntityFromIdText(*doc_, id));
  }
  std::vector<std::string> PipeProfileIds(const host::Entity& pipe) {
    return core::ReferenceValues(core::Record::ReadRequired(pipe).Text(
        core::PipeField::kProfileOIDRefs));
  }
  std::vector<std::string> StyleProfileIds() {
    return core::ReferenceValues(
        Profile::GetProfileStyleSettings(*doc_, "Standard")
            ->Text(ProfileStyleItem::kProfileOIDs));
  }
  int Stamps() {
    int count = 0;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      if (e->Layer() == kStampLayer) ++count;
    return count;
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
  host::LwPolyline* p1_ = nullptr;
};

// Datum floor(99.8 - 2) = 97, exaggeration 10: level z is drawn at
// (z - 97) * 10 in the block.
TEST_F(DrawnProfile, LevelsStandWhereTheDataSays) {
  const std::string id = Drawn(Options("Main"));
  host::BlockReference& ref = Reference(id);
  EXPECT_EQ(ref.Name(), "Kestrana_Profile_Sewer_Main");
  EXPECT_NEAR(ref.InsertionPoint().x, 1000, kTol);
  EXPECT_NEAR(ref.InsertionPoint().y, 2000, kTol);
  const host::Block& block = BlockOf("Main");

  // Four manholes, the first from its sump 101 to its ground 103.
  const auto manholes = On(block, "Profile - Manhole",
                           host::EntityKind::kLwPolyline);
  ASSERT_EQ(manholes.size(), 4u);
  const host::BoundingBox first = manholes[0]->GetBoundingBox();
  EXPECT_NEAR(first.min.x, -0.6, kTol);
  EXPECT_NEAR(first.max.x, 0.6, kTol);
  EXPECT_NEAR(first.min.y, 40, kTol);
  EXPECT_NEAR(first.max.y, 60, kTol);

  // Invert and crown of each pipe, stopping at the manholes on the slope.
  const auto pipes = On(block, "Profile - Pipe", host::EntityKind::kLine);
  ASSERT_EQ(pipes.size(), 6u);
  const auto& invert = host::As<host::Line>(*pipes[0]);
  EXPECT_NEAR(invert.StartPoint().x, 0.6, kTol);
  EXPECT_NEAR(invert.StartPoint().y, (101 - 0.01 * 0.6 - 97) * 10, kTol);
  EXPECT_NEAR(invert.EndPoint().x, 39.4, kTol);
  EXPECT_NEAR(invert.EndPoint().y, (100.6 + 0.01 * 0.6 - 97) * 10, kTol);
  const auto& crown = host::As<host::Line>(*pipes[1]);
  EXPECT_NEAR(crown.StartPoint().y - invert.StartPoint().y, 0.2 * 10, kTol);
  // P-2 runs against the profile: its a end is its end vertex.
  const auto& second = host::As<host::Line>(*pipes[2]);
  EXPECT_NEAR(second.StartPoint().y, (100.6 - 0.01 * 0.6 - 97) * 10, kTol);

  // The ground line through the manholes' ground levels.
  const auto ground =
      On(block, "Profile - Ground", host::EntityKind::kLwPolyline);
  ASSERT_EQ(ground.size(), 1u);
  const std::vector<double> xy =
      host::As<host::LwPolyline>(*ground[0]).Coordinates();
  EXPECT_EQ(xy, (std::vector<double>{0, 60, 40, 65, 80, 60, 120, 50}));

  // The lateral's section at MH-A2: an ellipse standing on its invert.
  const auto sections = On(block, "Profile - Pipe", host::EntityKind::kEllipse);
  ASSERT_EQ(sections.size(), 1u);
  const auto& ellipse = host::As<host::Ellipse>(*sections[0]);
  EXPECT_NEAR(ellipse.Center().x, 40, kTol);
  EXPECT_NEAR(ellipse.Center().y, (100.8 - 97) * 10 + 0.1 * 10, kTol);
  EXPECT_NEAR(ellipse.MajorAxis().y, 1.0, kTol);
  EXPECT_NEAR(ellipse.RadiusRatio(), 0.1, kTol);
  const auto notes = TextsOn(block, "Profile - Dimension");
  EXPECT_TRUE(Has(notes, "I.L.= 100.80"));
  EXPECT_TRUE(Has(notes, "%%c0.2"));
}

TEST_F(DrawnProfile, FrameTableAndTextsAreComplete) {
  Drawn(Options("Main"));
  const host::Block& block = BlockOf("Main");
  for (const auto& [layer, color] :
       std::vector<std::pair<std::string, int>>{{"Profile - Label", 4},
                                                {"Profile - Data", 2},
                                                {"Profile - Dimension", 1},
                                                {"Profile - Frame", 4},
                                                {"Profile - Ground", 3},
                                                {"Profile - Pipe", 6},
                                                {"Profile - Manhole", 4},
                                                {"Profile - Grid", 9},
                                                {"Profile - Plan Title", 4},
                                                {"Profile - Plan Stations", 3}}) {
    const host::Layer* found = document().GetLayers().Find(layer);
    ASSERT_NE(found, nullptr) << layer;
    EXPECT_EQ(found->TrueColor(), color) << layer;
  }
  const auto labels = TextsOn(block, "Profile - Label");
  EXPECT_TRUE(Has(labels, "%%uMain"));
  EXPECT_TRUE(Has(labels, "DATUM  97.00"));
  EXPECT_TRUE(Has(labels, "MH-A1"));
  EXPECT_TRUE(Has(labels, "OUT"));
  for (const char* band : {"Section", "Slope", "Length", "Material",
                           "Ground Level", "Invert Level", "Cover Depth",
                           "Invert Depth", "Station"})
    EXPECT_TRUE(Has(labels, band)) << band;
  EXPECT_FALSE(Has(labels, "Coordinates"));  // at 999: not drawn

  const auto data = TextsOn(block, "Profile - Data");
  for (const char* value : {"%%c200", "1.00%", "40.00", "PVC", "103.50",
                            "100.60", "0+040.00", "0+120.00"})
    EXPECT_TRUE(Has(data, value)) << value;
  // Every value of the table lies under the plot area and inside the frame.
  const auto frames =
      On(block, "Profile - Frame", host::EntityKind::kLwPolyline);
  ASSERT_EQ(frames.size(), 1u);
  const host::BoundingBox frame = frames[0]->GetBoundingBox();
  EXPECT_NEAR(frame.min.y, 0, kTol);
  for (host::Entity* text : On(block, "Profile - Data", host::EntityKind::kText)) {
    const host::BoundingBox box = text->GetBoundingBox();
    EXPECT_LT(box.max.y, 0) << host::As<host::Text>(*text).TextString();
    EXPECT_GT(box.min.x, frame.min.x);
    EXPECT_LT(box.max.x, frame.max.x);
  }
}

TEST_F(DrawnProfile, ACustomDatumIsKeptAndUsed) {
  ProfileDrawOptions options = Options("Main");
  options.datum = 95;
  const std::string id = Drawn(options);
  EXPECT_EQ(core::Record::ReadRequired(Reference(id))
                .Text(ProfileField::kDatum),
            "0;95");
  const auto manholes =
      On(BlockOf("Main"), "Profile - Manhole", host::EntityKind::kLwPolyline);
  ASSERT_FALSE(manholes.empty());
  EXPECT_NEAR(manholes[0]->GetBoundingBox().min.y, (101 - 95) * 10, kTol);
  EXPECT_TRUE(Has(TextsOn(BlockOf("Main"), "Profile - Label"), "DATUM  95.00"));
}

TEST_F(DrawnProfile, PressureRunsHaveNoManholes) {
  ProfileDrawOptions options = Options("Water main");
  options.run.network = "Water";
  options.run.pipes = {"W-1"};
  options.run.start.reset();
  Drawn(options);
  const host::Block& block =
      document().GetBlocks().Item("Kestrana_Profile_Water_Water main");
  EXPECT_TRUE(
      On(block, "Profile - Manhole", host::EntityKind::kLwPolyline).empty());
  const auto pipes = On(block, "Profile - Pipe", host::EntityKind::kLine);
  ASSERT_EQ(pipes.size(), 2u);
  EXPECT_NEAR(host::As<host::Line>(*pipes[0]).StartPoint().x, 0, kTol);
  EXPECT_NEAR(host::As<host::Line>(*pipes[0]).EndPoint().x, 60, kTol);
}

TEST_F(DrawnProfile, LongRunsAreDrawnInPartsSideBySide) {
  const core::Record standard =
      *Profile::GetProfileStyleSettings(*doc_, "Standard");
  std::vector<std::string> items;
  for (int i = 0; i < kProfileStyleRecordLength; ++i)
    items.push_back(standard.Text(i));
  items[static_cast<int>(ProfileStyleItem::kCombinedLabel)] = ";;Short";
  items[static_cast<int>(ProfileStyleItem::kPartSplitting)] = "1;50";
  Profile::CreateProfileStyle(*doc_, items,
                              Profile::GetProfileStyleXdataTypeArray());
  ProfileDrawOptions options = Options("Main");
  options.run.style = "Short";
  EXPECT_EQ(ProfileDraw(*doc_, options).parts, 3);

  const host::Block& block = BlockOf("Main");
  const auto labels = TextsOn(block, "Profile - Label");
  for (const char* title : {"%%uMain  (Part 1/3)", "%%uMain  (Part 2/3)",
                            "%%uMain  (Part 3/3)"})
    EXPECT_TRUE(Has(labels, title)) << title;
  auto frames = On(block, "Profile - Frame", host::EntityKind::kLwPolyline);
  ASSERT_EQ(frames.size(), 3u);
  // Each part's table (label column included) starts right of the frame
  // before it.
  std::vector<double> column_lefts;
  for (host::Entity* line : On(block, "Profile - Frame", host::EntityKind::kLine)) {
    const auto& l = host::As<host::Line>(*line);
    if (l.StartPoint().x == l.EndPoint().x && l.StartPoint().y == 0 &&
        l.EndPoint().y < 0)
      column_lefts.push_back(l.StartPoint().x);
  }
  std::sort(frames.begin(), frames.end(), [](host::Entity* a, host::Entity* b) {
    return a->GetBoundingBox().min.x < b->GetBoundingBox().min.x;
  });
  for (size_t k = 1; k < frames.size(); ++k) {
    const double right = frames[k - 1]->GetBoundingBox().max.x;
    const double left = frames[k]->GetBoundingBox().min.x;
    const bool column_between =
        std::any_of(column_lefts.begin(), column_lefts.end(),
                    [&](double x) { return x > right && x < left; });
    EXPECT_TRUE(column_between) << "part " << k + 1;
  }
  // Stations go on from part to part.
  EXPECT_TRUE(Has(TextsOn(block, "Profile - Data"), "0+080.00"));
}

TEST_F(DrawnProfile, PlanAnnotationWritesNameAndStationsAlongThePipes) {
  ProfileDrawOptions options = Options("Main");
  options.name_on_plan = true;
  options.stations_on_plan = true;
  const commands::ProfileDrawResult drawn = ProfileDraw(*doc_, options);
  EXPECT_TRUE(drawn.profile.plan_annotation);
  const host::Block& plan =
      document().GetBlocks().Item("Kestrana_PlanAnno_Sewer_Main");
  EXPECT_TRUE(Has(TextsOn(plan, "Profile - Plan Title"), "Main"));
  // Along the chain (P-2 walked against its drawing), beside it.
  std::map<std::string, double> station_x;
  for (host::Entity* e :
       On(plan, "Profile - Plan Stations", host::EntityKind::kText)) {
    const auto& text = host::As<host::Text>(*e);
    EXPECT_TRUE(station_x.emplace(text.TextString(),
                                  text.TextAlignmentPoint().x).second)
        << text.TextString() << " written twice";
  }
  ASSERT_EQ(station_x.size(), 4u);
  for (const auto& [station, x] :
       std::map<std::string, double>{{"0+000.00", 0},
                                     {"0+040.00", 40},
                                     {"0+080.00", 80},
                                     {"0+120.00", 120}})
    EXPECT_NEAR(station_x[station], x, kTol) << station;
  // Without either switch no plan block is made.
  EXPECT_FALSE(ProfileDraw(*doc_, Options("Other")).profile.plan_annotation);
}

TEST_F(DrawnProfile, BadRequestsAreRefusedAndChangeNothing) {
  Drawn(Options("Main"));
  const int before = static_cast<int>(doc_->ModelSpace().Entities().size());
  auto error = [&](const ProfileDrawOptions& options) -> std::string {
    try {
      ProfileDraw(*doc_, options);
    } catch (const Error& e) {
      return e.what();
    }
    return "";
  };
  EXPECT_NE(error(Options("MAIN")).find("already has a profile"),
            std::string::npos);

  ProfileDrawOptions far = Options("Far");
  far.run.start = host::Point3{60, 200, 0};
  const std::string far_error = error(far);
  EXPECT_NE(far_error.find("(0.00, 0.00) at P-1"), std::string::npos)
      << far_error;
  EXPECT_NE(far_error.find("(120.00, 0.00) at P-3"), std::string::npos);

  ProfileDrawOptions high = Options("High");
  high.datum = 100;
  EXPECT_NE(error(high).find("above the lowest level"), std::string::npos);

  ProfileDrawOptions branch = Options("Branch");
  branch.run.pipes = {"P-1", "P-2", "P-4"};
  EXPECT_FALSE(error(branch).empty());

  EXPECT_EQ(static_cast<int>(doc_->ModelSpace().Entities().size()), before);
  EXPECT_EQ(document().GetBlocks().Find("Kestrana_Profile_Sewer_High"),
            nullptr);
}

TEST_F(DrawnProfile, BackReferencesNameTheBlock) {
  const std::string id = Drawn(Options("Main"));
  EXPECT_EQ(PipeProfileIds(*p1_), std::vector<std::string>{id});
  EXPECT_EQ(StyleProfileIds(), std::vector<std::string>{id});
  const core::Record record =
      core::Record::ReadRequired(Reference(id));
  EXPECT_EQ(record.Text(ProfileField::kCombinedLabel), "Profile;Sewer;Main");
  EXPECT_EQ(record.Int16(ProfileField::kUpdateFlag), kCurrent);
}

TEST_F(DrawnProfile, UpdateRedrawsWhereTheProfileStandsAndLeavesNoStamp) {
  const std::string old_id = Drawn(Options("Main"));
  Reference(old_id).SetInsertionPoint({500, -300, 0});
  Profile::FlagProfileForUpdate(*doc_, old_id);
  ASSERT_EQ(Stamps(), 1);

  const std::string new_id = Profile::UpdateProfile(*doc_, old_id);
  EXPECT_NE(new_id, old_id);
  EXPECT_NEAR(Reference(new_id).InsertionPoint().x, 500, kTol);
  EXPECT_NEAR(Reference(new_id).InsertionPoint().y, -300, kTol);
  EXPECT_EQ(Stamps(), 0);
  EXPECT_EQ(PipeProfileIds(*p1_), std::vector<std::string>{new_id});
  EXPECT_EQ(StyleProfileIds(), std::vector<std::string>{new_id});
  EXPECT_EQ(core::Record::ReadRequired(Reference(new_id))
                .Int16(ProfileField::kUpdateFlag),
            kCurrent);
}

// A redraw after an edit gives the block a fresh drawing gives.
TEST_F(DrawnProfile, RedrawAfterAnEditMatchesAFreshDrawing) {
  const std::string id = Drawn(Options("Main"));
  core::Record pipe = core::Record::ReadRequired(*p1_);
  pipe.SetReal(core::PipeField::kStartInvert, 101.4);
  pipe.Write(*p1_);
  Profile::UpdateProfile(*doc_, id);
  Drawn(Options("Fresh"));

  auto shape = [](const host::Block& block) {
    std::vector<std::string> items;
    for (host::Entity* e : block.Entities()) {
      const host::BoundingBox box = e->GetBoundingBox();
      std::string text = e->Kind() == host::EntityKind::kText
                             ? host::As<host::Text>(*e).TextString()
                             : "";
      if (text.find("%%u") == 0) continue;  // the titles name the profiles
      items.push_back(e->Layer() + "|" + text + "|" +
                      core::FormatNumber(box.min.x, "0.000") + "," +
                      core::FormatNumber(box.min.y, "0.000") + "," +
                      core::FormatNumber(box.max.x, "0.000") + "," +
                      core::FormatNumber(box.max.y, "0.000"));
    }
    return items;
  };
  const auto redrawn = shape(BlockOf("Main"));
  EXPECT_EQ(redrawn, shape(BlockOf("Fresh")));
  // The edit shows: the first invert now starts at 101.4.
  const auto pipes = On(BlockOf("Main"), "Profile - Pipe", host::EntityKind::kLine);
  ASSERT_FALSE(pipes.empty());
  EXPECT_NEAR(host::As<host::Line>(*pipes[0]).StartPoint().y,
              (101.4 - 0.02 * 0.6 - 97) * 10, kTol);
}

TEST_F(DrawnProfile, UpdateAndDeleteOfMissingOrBrokenProfiles) {
  ProfileDrawOptions options = Options("Main");
  options.name_on_plan = true;
  const std::string id = Drawn(options);
  EXPECT_THROW(commands::ProfileUpdate(*doc_, {.network = "Sewer",
                                               .name = "Nope"}),
               NotFoundError);
  // A pipe gone behind the system's back: the profile cannot be redrawn.
  p1_->Delete();
  EXPECT_THROW(commands::ProfileUpdate(*doc_, {.network = "Sewer",
                                               .name = "main"}),
               RefusedError);

  commands::ProfileDelete(*doc_, {.network = "Sewer", .name = "Main"});
  EXPECT_THROW(Reference(id), host::HostError);
  EXPECT_TRUE(commands::ProfileList(*doc_, {}).profiles.empty());
  EXPECT_TRUE(StyleProfileIds().empty());
  for (host::Entity* e : doc_->ModelSpace().Entities())
    EXPECT_NE(e->Layer(), "Profile - Plan Title");
}

TEST_F(DrawnProfile, UpdateAllFlaggedRedrawsOnlyFlaggedProfiles) {
  const std::string a = Drawn(Options("A"));
  ProfileDrawOptions other = Options("B");
  other.at = {0, -500, 0};
  const std::string b = Drawn(other);
  Profile::FlagProfileForUpdate(*doc_, b);
  const commands::ProfileUpdateResult result =
      commands::ProfileUpdate(*doc_, {.all_flagged = true});
  ASSERT_EQ(result.updated.size(), 1u);
  EXPECT_EQ(result.updated[0].name, "B");
  std::vector<std::string> ids;
  for (const commands::ProfileSummary& p :
       commands::ProfileList(*doc_, {}).profiles) {
    EXPECT_FALSE(p.needs_update) << p.name;
    ids.push_back(p.block_id);
  }
  EXPECT_EQ(ids, (std::vector<std::string>{a, result.updated[0].block_id}));
}

}  // namespace
}  // namespace kestrana::profile
