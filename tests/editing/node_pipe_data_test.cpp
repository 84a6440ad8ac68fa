// Node and pipe data: the matching rules, the sump rules, and how an edit at
// one element reaches the connected elements, the libraries, the
// annotations and the crossings.
#include <gtest/gtest.h>

#include <array>

#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "crossing/crossing_record.h"
#include "editing/editing.h"
#include "host/host.h"
#include "library/library.h"
#include "memhost/document.h"
#include "support/elements.h"
#include "support/network_elements.h"

namespace kestrana::editing {
namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using test::PipeData;

double Field(const host::Entity& entity, core::Field field) {
  return core::Record::ReadRequired(entity).Number(field);
}
std::string Text(const host::Entity& entity, core::Field field) {
  return core::Record::ReadRequired(entity).Text(field);
}
std::string Id(const host::Entity& entity) {
  return core::IdText(entity.ObjectID());
}

class NodePipeData : public ::testing::Test {
 protected:
  void Start(const std::string& units, const std::string& type) {
    doc_ = test::NewFullProjectDocument(units);
    commands::AddNetwork(*doc_, {"Net", type});
    net_ = std::make_unique<test::NetworkElements>(*doc_, "Net");
  }
  // A node M at the origin; pipe A starts at M, pipe C ends at M.
  void Junction(PipeData a, PipeData c) {
    m_ = &net_->AddNode("M", 0, 0);
    auto& b = net_->AddNode("B", 50, 0);
    auto& d = net_->AddNode("D", -50, 0);
    a_ = &net_->AddPipe("A", {0, 0, 50, 0}, *m_, b, a);
    c_ = &net_->AddPipe("C", {-50, 0, 0, 0}, d, *m_, c);
  }
  void SetNode(const std::string& label, double ground, double sump,
               const std::string& rule) {
    Editing::UpdateNodeData(*doc_, Id(*m_), label, ground, sump, rule,
                            LowHighSet());
  }
  void SetPipe(host::Entity& pipe, const std::string& label, double start,
               double end, const std::string& material,
               const std::string& size) {
    Editing::UpdatePipeData(
        *doc_, Id(pipe), label, start, end, material, size, 1,
        library::Library::GetSizesArray(*doc_, library::kCircular),
        library::Library::GetSizesArray(*doc_, library::kBox),
        library::Library::GetMaterialsArray(*doc_), LowHighSet());
  }
  host::SelectionSet& LowHighSet() {
    if (low_high_ == nullptr)
      low_high_ = &General::InitializeSelectionSet(*doc_, "SetNodesForLowHigh");
    return *low_high_;
  }
  std::string Count(const core::TextTable& table, const std::string& name) {
    for (int row = 0; row < table.Rows(); ++row)
      if (table(row, 0) == name) return table(row, 1);
    return "missing";
  }

  std::unique_ptr<memhost::MemDocument> doc_;
  std::unique_ptr<test::NetworkElements> net_;
  host::BlockReference* m_ = nullptr;
  host::LwPolyline* a_ = nullptr;
  host::LwPolyline* c_ = nullptr;
  host::SelectionSet* low_high_ = nullptr;
};

TEST_F(NodePipeData, EachRuleLinesPipesUpOnTheSumpAndTheTallestPipe) {
  struct Case {
    const char* rule;
    double invert_300, invert_600;
    int16_t code;
  };
  for (const Case& c : {Case{kMatchSoffits, 100.30, 100.00, 2},
                        Case{kMatchCenterlines, 100.15, 100.00, 1},
                        Case{kMatchInverts, 100.00, 100.00, 3}}) {
    SCOPED_TRACE(c.rule);
    Start("Metric", core::kGravity);
    Junction({.span = 300.0, .start_invert = 7, .end_invert = 6},
             {.span = 600.0, .start_invert = 9, .end_invert = 8});
    SetNode("MH-1", 103, 100, c.rule);
    EXPECT_NEAR(Field(*a_, PipeField::kStartInvert), c.invert_300, 1e-9);
    EXPECT_NEAR(Field(*c_, PipeField::kEndInvert), c.invert_600, 1e-9);
    // The far ends belong to other nodes.
    EXPECT_EQ(Field(*a_, PipeField::kEndInvert), 6);
    EXPECT_EQ(Field(*c_, PipeField::kStartInvert), 9);
    EXPECT_EQ(Text(*a_, PipeField::kStartNodeLabel), ";RelatedToMH-1");
    EXPECT_EQ(Text(*c_, PipeField::kEndNodeLabel), ";RelatedToMH-1");
    EXPECT_EQ(Text(*m_, NodeField::kCombinedLabel), "Node;Net;MH-1");
    EXPECT_EQ(core::Record::ReadRequired(*m_).Int16(NodeField::kMatching),
              c.code);
    EXPECT_EQ(Field(*m_, NodeField::kGroundLevel), 103);
    EXPECT_EQ(Field(*m_, NodeField::kSumpLevel), 100);
  }
}

TEST_F(NodePipeData, ImperialRisesCountInFeet) {
  Start("US", core::kGravity);
  Junction({.span = 24.0, .start_invert = 60}, {.shape = core::kSectionShapeBox,
                                                .span = 4.0,
                                                .rise = 3.0,
                                                .end_invert = 60});
  EXPECT_EQ(Editing::GetLargestRise(*doc_, *m_), 3);
  SetNode("M", 60, 50, kMatchSoffits);
  // The 24 in pipe is 2 ft tall: its soffit meets the box's at 53.
  EXPECT_NEAR(Field(*a_, PipeField::kStartInvert), 51, 1e-12);
  EXPECT_NEAR(Field(*c_, PipeField::kEndInvert), 50, 1e-12);

  Start("US", core::kGravity);
  Junction({.span = 24.0}, {.span = 12.0});
  EXPECT_EQ(Editing::GetLargestRise(*doc_, *m_), 2);
}

TEST_F(NodePipeData, WithoutMatchingTheSumpNeverLiesAboveTheLowestInvert) {
  Start("Metric", core::kGravity);
  Junction({.start_invert = 100.4, .end_invert = 99}, {.end_invert = 100.0});
  SetNode("M", 102, 99, kNoMatching);
  EXPECT_EQ(Field(*m_, NodeField::kSumpLevel), 99);
  SetNode("M", 102, 101, kNoMatching);
  EXPECT_EQ(Field(*m_, NodeField::kSumpLevel), 100);
  EXPECT_EQ(Field(*a_, PipeField::kStartInvert), 100.4);
  EXPECT_EQ(Field(*c_, PipeField::kEndInvert), 100.0);

  // A node without pipes: the lowest invert counts as 0.
  m_ = &net_->AddNode("Alone", 10, 10, 5, 3);
  SetNode("Alone", 5, 3, kNoMatching);
  EXPECT_EQ(Field(*m_, NodeField::kSumpLevel), 0);
  // An unknown rule text keeps the stored rule and skips the sump check.
  SetNode("Alone", 5, 3, "Match Everything");
  EXPECT_EQ(Field(*m_, NodeField::kSumpLevel), 3);
  EXPECT_EQ(core::Record::ReadRequired(*m_).Int16(NodeField::kMatching), 0);
}

TEST_F(NodePipeData, LowestInvertOfEachSideAndTheirSentinels) {
  Start("Metric", core::kGravity);
  Junction({.start_invert = 97.25}, {.end_invert = 97.5});
  const std::string starts = Text(*m_, NodeField::kPipesAtStartOID);
  const std::string ends = Text(*m_, NodeField::kPipesAtEndOID);
  EXPECT_EQ(Editing::GetMinimumLevel(*doc_, "", kStartSide), -999);
  EXPECT_EQ(Editing::GetMinimumLevel(*doc_, starts, kStartSide), 97.25);
  // The side names the invert read, whatever list it is given.
  EXPECT_EQ(Editing::GetMinimumLevel(*doc_, starts, kEndSide), 0);
  EXPECT_EQ(Editing::GetSumpElevation(*doc_, "", ""), 0);
  EXPECT_EQ(Editing::GetSumpElevation(*doc_, "", ends), 97.5);
  EXPECT_EQ(Editing::GetSumpElevation(*doc_, starts, ""), 97.25);
  EXPECT_EQ(Editing::GetSumpElevation(*doc_, starts, ends), 97.25);
}

TEST_F(NodePipeData, APipesInvertMovesAMatchedSumpAndEveryPipeThere) {
  Start("Metric", core::kGravity);
  Junction({.start_invert = 99, .end_invert = 98.5},
           {.start_invert = 100, .end_invert = 99});
  auto& e = net_->AddNode("E", 0, 40);
  auto& lateral = net_->AddPipe("L", {0, 40, 0, 0}, e, *m_,
                                {.start_invert = 101, .end_invert = 99});
  SetNode("M", 102, 99, kMatchInverts);

  SetPipe(*a_, "A-1", 97.5, 97.0, "Concrete", "Circular - 300");
  EXPECT_EQ(Field(*m_, NodeField::kSumpLevel), 97.5);
  EXPECT_EQ(Field(*c_, PipeField::kEndInvert), 97.5);
  EXPECT_EQ(Field(lateral, PipeField::kEndInvert), 97.5);
  EXPECT_EQ(Field(lateral, PipeField::kStartInvert), 101);
  EXPECT_EQ(Field(*c_, PipeField::kStartInvert), 100);
  // The far node has no rule: its sump follows its lowest invert.
  host::Entity& b = test::ElementLabelled(*doc_, "Net", "Node", "B");
  EXPECT_EQ(Field(b, NodeField::kSumpLevel), 97.0);
  // The renamed pipe is renamed in its nodes' lists.
  EXPECT_EQ(Text(*m_, NodeField::kPipesAtStartLabels), ";RelatedToA-1");
  EXPECT_EQ(Text(b, NodeField::kPipesAtEndLabels), ";RelatedToA-1");
  EXPECT_EQ(Text(*a_, PipeField::kCombinedLabel), "Pipe;Net;A-1");
  EXPECT_EQ(Text(*a_, PipeField::kMaterial), "Concrete");
  EXPECT_EQ(Field(*a_, PipeField::kSpan), 300);
  EXPECT_EQ(Field(*a_, PipeField::kRise), 300);
}

TEST_F(NodePipeData, SizesAndMaterialsAreCountedInTheLibraries) {
  Start("Metric", core::kGravity);
  Junction({}, {});
  SetPipe(*a_, "A", 1, 0, "Concrete", "Circular - 300");
  core::TextTable circular =
      library::Library::GetSizesArray(*doc_, library::kCircular);
  EXPECT_EQ(Count(circular, "200"), "-1");  // made by hand, never counted
  EXPECT_EQ(Count(circular, "300"), "1");
  SetPipe(*a_, "A", 1, 0, "Concrete", "Box - 1200x800");
  EXPECT_EQ(
      Count(library::Library::GetSizesArray(*doc_, library::kCircular), "300"),
      "0");
  EXPECT_EQ(Count(library::Library::GetSizesArray(*doc_, library::kBox),
                  "1200 x 800"),
            "1");
  EXPECT_EQ(Text(*a_, PipeField::kSectionShape), core::kSectionShapeBox);
  EXPECT_EQ(Field(*a_, PipeField::kSpan), 1200);
  EXPECT_EQ(Field(*a_, PipeField::kRise), 800);
  core::TextTable materials = library::Library::GetMaterialsArray(*doc_);
  EXPECT_EQ(Count(materials, "Concrete"), "1");  // the same pipe twice
  EXPECT_EQ(Count(materials, "PVC"), "-1");
}

TEST_F(NodePipeData, PressureEditsHandTheirNodesToTheLowHighAnalysis) {
  Start("Metric", core::kGravity);
  Junction({}, {});
  SetNode("M", 1, 0, kNoMatching);
  SetPipe(*a_, "A", 0, 0, "PVC", "Circular - 200");
  EXPECT_EQ(LowHighSet().Count(), 0);

  Start("Metric", core::kPressure);
  low_high_ = nullptr;
  Junction({}, {});
  SetNode("M", 1, 0, kMatchCenterlines);
  EXPECT_EQ(LowHighSet().Count(), 1);
  SetPipe(*c_, "C", 0, 0, "PVC", "Circular - 200");
  EXPECT_EQ(LowHighSet().Count(), 2);  // D joins, M is there already
}

TEST_F(NodePipeData, EditsRefreshAnnotationsAndCrossings) {
  Start("Metric", core::kGravity);
  commands::AddNetwork(*doc_, {"Main", core::kPressure});
  auto add = [&](std::vector<double> xy) {
    return &doc_->ModelSpace().AddLightWeightPolyline(xy);
  };
  host::SelectionSet& set =
      General::InitializeSelectionSet(*doc_, "SetEntitiesToConvert");
  set.AddItems({add({0, 0, 100, 0})});
  Editing::CreateElementsInNetwork(*doc_, set, false, "Net", core::kGravity);
  host::SelectionSet& mains =
      General::InitializeSelectionSet(*doc_, "SetEntitiesToConvert");
  mains.AddItems({add({25, -20, 25, 20})});
  Editing::CreateElementsInNetwork(*doc_, mains, false, "Main",
                                   core::kPressure);

  host::Entity& sewer = test::ElementLabelled(*doc_, "Net", "Pipe", "P-1");
  host::Entity& main = test::ElementLabelled(*doc_, "Main", "Pipe", "P-1");
  SetPipe(main, "P-1", 101, 101, "PE", "Circular - 150");
  SetPipe(sewer, "P-1", 100, 99, "PVC", "Circular - 300");
  // Standard style: label, size and slope of gravity pipes.
  EXPECT_EQ(test::AnnotationTexts(*doc_, sewer),
            (std::vector<std::string>{"P-1", "%%c300", "S=1.00%"}));
  std::vector<std::string> crossings =
      core::ReferenceValues(Text(sewer, PipeField::kCrossingOIDRefs));
  ASSERT_EQ(crossings.size(), 1u);
  // Sewer invert 99.75 at the crossing, its top at 100.05: 0.95 below the main.
  host::Entity& crossing =
      host::As<host::Entity>(doc_->ObjectIdToObject(std::stoi(crossings[0])));
  EXPECT_NEAR(core::Record::ReadRequired(crossing).Number(
                  crossing::CrossingAnnoField::kClearance),
              0.95, 1e-9);
}

TEST_F(NodePipeData, GroundLevelsComeFromTheSurfaceWherePointsLieOnIt) {
  Start("Metric", core::kGravity);
  Junction({}, {});
  // A plane rising 0.1 per unit eastwards over x from -60 to 20.
  doc_->App().Civil().Document().Surfaces().Clear();
  doc_->App().Civil().Document().Surfaces().Add(
      std::make_unique<memhost::MemSurface>(
          "Ground",
          std::vector<host::Point3>{
              {-60, -10, 94}, {20, -10, 102}, {20, 10, 102}, {-60, 10, 94}},
          std::vector<std::array<int, 3>>{{0, 1, 2}, {0, 2, 3}}));
  doc_->GetLayers().Item("Net - Network").SetLock(true);
  General::TurnEventsOn(*doc_);
  Editing::UpdateGroundLevelsFromSurface(*doc_, {"Net"}, "Ground");

  EXPECT_NEAR(Field(*m_, NodeField::kGroundLevel), 100, 1e-9);
  host::Entity& d = test::ElementLabelled(*doc_, "Net", "Node", "D");
  EXPECT_NEAR(Field(d, NodeField::kGroundLevel), 95, 1e-9);
  host::Entity& b = test::ElementLabelled(*doc_, "Net", "Node", "B");
  EXPECT_EQ(Field(b, NodeField::kGroundLevel), 0);  // outside: kept
  EXPECT_TRUE(doc_->GetLayers().Item("Net - Network").Lock());
  EXPECT_EQ(General::CheckEventsFlag(*doc_), 1);

  EXPECT_THROW(Editing::UpdateGroundLevelsFromSurface(*doc_, {"Net"}, "Other"),
               host::HostError);
  EXPECT_EQ(General::CheckEventsFlag(*doc_), 1);
  // Nothing to do without a network.
  Editing::UpdateGroundLevelsFromSurface(*doc_, {""}, "Other");
}

}  // namespace
}  // namespace kestrana::editing
