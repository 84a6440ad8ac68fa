// The audit finds each kind of damage a drawing can suffer, from either end
// of a broken link, and nothing on drawings the commands made.
#include "check/audit.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "commands/check.h"
#include "commands/element_data.h"
#include "commands/networks.h"
#include "core/guards.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "crossing/crossing.h"
#include "host/host.h"
#include "library/library_record.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"
#include "support/project.h"

namespace kestrana::check {
namespace {

using core::NodeField;
using core::PipeField;
using core::Record;

bool Has(const std::vector<Finding>& findings, const std::string& code,
         const std::string& label = "") {
  return std::any_of(findings.begin(), findings.end(), [&](const Finding& f) {
    if (f.code != code) return false;
    if (label.empty()) return true;
    return std::any_of(f.objects.begin(), f.objects.end(),
                       [&](const ObjectRef& o) { return o.label == label; });
  });
}

std::string Codes(const std::vector<Finding>& findings) {
  std::string codes;
  for (const Finding& f : findings) codes += f.code + ": " + f.sentence + "\n";
  return codes;
}

// A sewer N-1 -P-1- N-2 -P-2- N-3 along y = 0 and a water main crossing it
// twice, with levels, so that crossings and low and high points exist.
class AuditedDrawing : public ::testing::Test {
 protected:
  void SetUp() override {
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    commands::AddNetwork(*doc_, {"Water", core::kPressure});
    test::ConvertDrawn(*doc_, {{0, 0, 50, 0}, {50, 0, 100, 0}}, "Sewer",
                       core::kGravity);
    test::ConvertDrawn(*doc_,
                       {{25, -20, 25, 20}, {25, 20, 75, 20}, {75, 20, 75, -20}},
                       "Water", core::kPressure);
    for (auto [label, sump] :
         {std::pair{"N-1", 98.0}, {"N-2", 97.5}, {"N-3", 97.0}})
      commands::SetNode(*doc_, {.network = "Sewer", .label = label,
                                .ground = 101, .sump = sump});
    for (auto [label, sump] :
         {std::pair{"N-1", 99.0}, {"N-2", 99.6}, {"N-3", 99.4}, {"N-4", 99.1}})
      commands::SetNode(*doc_, {.network = "Water", .label = label,
                                .ground = 101, .sump = sump});
  }

  host::Entity& Element(const std::string& net, const std::string& kind,
                        const std::string& label) {
    return test::ElementLabelled(*doc_, net, kind, label);
  }
  // Writes one field of an element's record behind the commands' back.
  void Poke(host::Entity& entity, core::Field field, const std::string& text) {
    core::UnlockedLayers unlocked(*doc_);
    Record record = *Record::Read(entity);
    record.SetText(field, text);
    record.Write(entity);
  }
  // Stores a text where the record holds a number, as a damaged file can.
  void PokeText(host::Entity& entity, core::Field field, const std::string& text) {
    core::UnlockedLayers unlocked(*doc_);
    Record record = *Record::Read(entity);
    record.Set(field, core::code::kText, host::XValue(text));
    record.Write(entity);
  }
  std::vector<Finding> Run(bool design = false) {
    return Audit(*doc_, {.design = design});
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
};

TEST_F(AuditedDrawing, WhatTheCommandsMakeIsClean) {
  // Not vacuous: the drawing holds crossings and low/high markers to check.
  EXPECT_EQ(crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "").Count(),
            2);
  EXPECT_GT(
      lowhigh::LowHigh::GetExistingLowHighPointsSet(*doc_, "Water").Count(), 0);
  std::vector<Finding> findings = Run();
  EXPECT_EQ(CountErrors(findings), 0) << Codes(findings);
}

TEST_F(AuditedDrawing, BrokenLinksAreFoundFromEitherEnd) {
  // N-2 forgets that P-2 starts there: the pipe still names the node.
  host::Entity& n2 = Element("Sewer", "Node", "N-2");
  Poke(n2, NodeField::kPipesAtStartLabels, "");
  Poke(n2, NodeField::kPipesAtStartOID, "");
  // P-1's annotation link names an object that is not there.
  Poke(Element("Sewer", "Pipe", "P-1"),
       PipeField::kAnnotationOIDRef, ";RelatedTo99999");
  // Water N-1 lists one label more than IDs at its start.
  host::Entity& w1 = Element("Water", "Node", "N-1");
  Record w1_record = *Record::Read(w1);
  Poke(w1, NodeField::kPipesAtStartLabels,
       w1_record.Text(NodeField::kPipesAtStartLabels) + ";RelatedToP-9");
  // Water P-2 names its end node by a wrong label.
  Poke(Element("Water", "Pipe", "P-2"),
       PipeField::kEndNodeLabel, ";RelatedToN-77");

  std::vector<Finding> findings = Run();
  EXPECT_TRUE(Has(findings, "one-way-reference", "P-2")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "dangling-reference", "P-1")) << Codes(findings);
  // The annotation itself is now owned by nothing that names it.
  EXPECT_TRUE(Has(findings, "orphan", "P-1Annotation")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "lists-out-of-step", "N-1")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "label-mismatch", "P-2")) << Codes(findings);
}

TEST_F(AuditedDrawing, PipeEndsMustMeetTheirNodesToFiveDecimals) {
  auto& p1 = host::As<host::LwPolyline>(Element("Sewer", "Pipe", "P-1"));
  core::UnlockedLayers unlocked(*doc_);
  std::vector<double> xy = p1.Coordinates();
  xy[2] += 4e-7;  // rounds to the node's X
  p1.SetCoordinates(xy);
  EXPECT_FALSE(Has(Run(), "pipe-end-off-node"));
  xy[2] += 2e-5;
  p1.SetCoordinates(xy);
  std::vector<Finding> findings = Run();
  EXPECT_TRUE(Has(findings, "pipe-end-off-node", "P-1")) << Codes(findings);
}

TEST_F(AuditedDrawing, LabelsAreUniqueInANetworkNodesIgnoringCase) {
  Poke(Element("Sewer", "Node", "N-3"),
       NodeField::kCombinedLabel, "Node;Sewer;n-1");
  Poke(Element("Water", "Pipe", "P-3"),
       PipeField::kCombinedLabel, "Pipe;Water;P-1");
  std::vector<Finding> findings = Run();
  auto dup = std::count_if(findings.begin(), findings.end(),
                           [](const Finding& f) {
                             return f.code == "duplicate-label";
                           });
  EXPECT_EQ(dup, 2) << Codes(findings);
  // The same label in two networks is no duplicate.
  EXPECT_EQ(CountErrors(Audit(*doc_)), CountErrors(findings));
}

TEST_F(AuditedDrawing, LibraryCountsMustMatchThePipes) {
  // Five PVC pipes of 200 mm; the library is told 7.
  host::Object& marker = doc_->ObjectIdToObject(std::stoi(
      core::ReadProjectRecord(*doc_).Text(core::ProjectField::kMaterialsLibrary)));
  Record library = *Record::Read(marker);
  std::string names = library.Text(library::MaterialLibraryField::kNames);
  ASSERT_EQ(names.rfind("PVC;", 0), 0u) << names;
  std::string counts = library.Text(library::MaterialLibraryField::kCounts);
  library.SetText(library::MaterialLibraryField::kCounts,
                  "7" + counts.substr(counts.find(';')));
  library.Write(marker);
  std::vector<Finding> findings = Run();
  auto it = std::find_if(findings.begin(), findings.end(), [](const Finding& f) {
    return f.code == "library-count";
  });
  ASSERT_NE(it, findings.end()) << Codes(findings);
  EXPECT_EQ(it->values,
            (decltype(it->values){{"entry", "PVC"}, {"stored", "7"}, {"actual", "5"}}));
}

TEST_F(AuditedDrawing, CrossingsMustStandWhereThePipesCrossWithTodaysLevels) {
  // Levels changed behind the annotation's back.
  Poke(Element("Water", "Pipe", "P-1"),
       PipeField::kStartInvert, "90");
  std::vector<Finding> findings = Run();
  EXPECT_TRUE(Has(findings, "crossing-clearance", "P-1")) << Codes(findings);

  // An annotation erased without the reactions: the crossing is missing
  // and the pipes name a crossing that is gone.
  host::SelectionSet& annos =
      crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "");
  core::UnlockedLayers unlocked(*doc_);
  annos.Item(0).Delete();
  findings = Run();
  EXPECT_TRUE(Has(findings, "crossing-missing")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "dangling-reference")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "orphan")) << "the leader line\n" << Codes(findings);
}

TEST_F(AuditedDrawing, AnAnnotationForPipesThatNoLongerCrossIsExtra) {
  // Water P-1 shortened to end north of the sewer, its start node with it:
  // the links hold, but its crossing is gone.
  core::UnlockedLayers unlocked(*doc_);
  auto& p1 = host::As<host::LwPolyline>(Element("Water", "Pipe", "P-1"));
  p1.SetCoordinates({25, 5, 25, 20});
  host::As<host::BlockReference>(Element("Water", "Node", "N-1"))
      .SetInsertionPoint({25, 5, 0});
  std::vector<Finding> findings = Run();
  EXPECT_TRUE(Has(findings, "crossing-extra", "P-1")) << Codes(findings);
  EXPECT_FALSE(Has(findings, "pipe-end-off-node")) << Codes(findings);
}

TEST_F(AuditedDrawing, LowAndHighPointsFollowTheLevelsOfNow) {
  // Water N-2 (99.6) is a high point between N-1 (99.0) and N-3 (99.4);
  // lowered behind the analysis' back it is a low point.
  Poke(Element("Water", "Node", "N-2"),
       NodeField::kSumpLevel, "98");
  std::vector<Finding> findings = Run();
  // N-1 at the end of the line, once low below N-2, is now high above it.
  auto it = std::find_if(findings.begin(), findings.end(), [](const Finding& f) {
    return f.code == "lowhigh-wrong" && f.objects[0].label == "N-2";
  });
  ASSERT_NE(it, findings.end()) << Codes(findings);
  EXPECT_TRUE(Has(findings, "lowhigh-wrong", "N-1")) << Codes(findings);
  EXPECT_EQ(it->values,
            (decltype(it->values){{"expected", "low"}, {"found", "high"}}));
}

TEST_F(AuditedDrawing, FixRepairsWhatNeedsNoGuessAndSaysWhat) {
  Poke(Element("Water", "Pipe", "P-1"),
       PipeField::kStartInvert, "90");
  Poke(Element("Water", "Node", "N-2"),
       NodeField::kSumpLevel, "98");
  host::Entity& n2 = Element("Sewer", "Node", "N-2");
  Poke(n2, NodeField::kPipesAtStartLabels, "");
  Poke(n2, NodeField::kPipesAtStartOID, "");
  Poke(Element("Sewer", "Pipe", "P-1"),
       PipeField::kAnnotationOIDRef, ";RelatedTo99999");
  ASSERT_GT(CountErrors(Run()), 0);

  commands::CheckResult fixed = commands::Check(*doc_, {.fix = true});
  EXPECT_TRUE(fixed.Clean()) << Codes(fixed.findings);
  EXPECT_FALSE(fixed.changes.empty());
  // The node lists its pipe again, the levels stay as they were.
  Record n2_record = *Record::Read(n2);
  EXPECT_EQ(n2_record.Text(NodeField::kPipesAtStartLabels), ";RelatedToP-2");
  EXPECT_EQ(Record::Read(Element("Water", "Pipe", "P-1"))
                ->Number(PipeField::kStartInvert),
            90);
  // A clean drawing needs nothing.
  EXPECT_TRUE(commands::Check(*doc_, {.fix = true}).changes.empty());
}

TEST_F(AuditedDrawing, DesignWarningsNeverMakeADrawingUnclean) {
  // The sewer falls 0.5 m over 50 m at 200 mm: 0.01, steep enough; made to
  // rise, and with 0.3 m of ground over its crown at N-1.
  commands::SetPipe(*doc_, {.network = "Sewer", .label = "P-1",
                            .start_invert = 97.0, .end_invert = 97.5});
  commands::SetNode(*doc_, {.network = "Sewer", .label = "N-1", .ground = 97.5});
  commands::CheckResult result = commands::Check(*doc_, {.design = true});
  EXPECT_TRUE(Has(result.findings, "adverse-slope", "P-1"))
      << Codes(result.findings);
  EXPECT_TRUE(Has(result.findings, "low-cover", "P-1"))
      << Codes(result.findings);
  EXPECT_FALSE(Has(result.findings, "flat-slope", "P-2"))
      << Codes(result.findings);
  EXPECT_TRUE(result.Clean()) << Codes(result.findings);
  EXPECT_FALSE(Has(commands::Check(*doc_, {}).findings, "adverse-slope"));
}

// Damage a file can bring: no project, records cut short, numbers that are
// not numbers, lists of the wrong form. Findings, never an exception.
TEST_F(AuditedDrawing, DamagedRecordsAreFindingsNotFailures) {
  core::UnlockedLayers unlocked(*doc_);
  Element("Sewer", "Pipe", "P-2").SetXData(
      {{1001, host::XValue("Kestrana")}, {1000, host::XValue("Pipe;Sewer;P-2")}});
  PokeText(Element("Water", "Node", "N-3"),
           NodeField::kSumpLevel, "deep");
  Poke(Element("Water", "Pipe", "P-2"),
       PipeField::kCrossingOIDRefs, "17;42;");
  Poke(Element("Sewer", "Pipe", "P-1"),
       PipeField::kStartNodeOID, ";RelatedToabc");
  Record project = core::ReadProjectRecord(*doc_);
  project.SetText(core::ProjectField::kCrossingSettings, "x;Sewer");
  core::WriteProjectRecord(*doc_, project);

  std::vector<Finding> findings;
  ASSERT_NO_THROW(findings = Run(true));
  EXPECT_TRUE(Has(findings, "record-short", "P-2")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "reference-form", "P-2")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "dangling-reference", "P-1")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "crossing-settings")) << Codes(findings);
  EXPECT_TRUE(Has(findings, "not-a-number", "N-3")) << Codes(findings);
  // A number too large to read is no number either.
  PokeText(Element("Water", "Node", "N-3"),
           NodeField::kSumpLevel, "1e999");
  ASSERT_NO_THROW(findings = Run(true));
  EXPECT_TRUE(Has(findings, "not-a-number", "N-3")) << Codes(findings);
  // The crossings of the pipe cut short, and those of a damaged list, are
  // reported once as what they are, not as a failure of the audit.
  EXPECT_FALSE(Has(findings, "crossings-not-checked")) << Codes(findings);
  commands::CheckResult fixed;
  ASSERT_NO_THROW(fixed = commands::Check(*doc_, {.fix = true}));
  EXPECT_TRUE(Has(fixed.findings, "record-short", "P-2"));

  // A project record cut after its networks.
  project = core::ReadProjectRecord(*doc_);
  host::XRecord items = project.Items();
  items.resize(5);
  doc_->ModelSpace().SetXData(items);
  ASSERT_NO_THROW(findings = Run());
  EXPECT_TRUE(Has(findings, "project-record-short")) << Codes(findings);

  auto bare = std::make_unique<memhost::MemDocument>();
  commands::CheckResult none = commands::Check(*bare, {.fix = true});
  EXPECT_FALSE(none.project);
  ASSERT_EQ(none.findings.size(), 1u) << Codes(none.findings);
  EXPECT_EQ(none.findings[0].code, "no-project");
  EXPECT_FALSE(none.Clean());
}

TEST(DesignSettings, SizesTakeTheLimitOfTheLargestListedSizeBelow) {
  DesignSettings s = ParseDesignSettings(
      "# office\n\nmetric.min_cover = 1.2\nmetric.min_slope.175 = 0.006\n"
      "us.min_slope = 0.01\n");
  EXPECT_EQ(s.metric.min_cover, 1.2);
  EXPECT_EQ(s.metric.MinSlopeFor(175), 0.006);
  EXPECT_EQ(s.metric.MinSlopeFor(190), 0.006);
  EXPECT_EQ(s.metric.MinSlopeFor(200), 0.005);
  EXPECT_EQ(s.metric.MinSlopeFor(50), s.metric.min_slope);
  EXPECT_EQ(s.us.min_slope, 0.01);
  EXPECT_EQ(s.For("US").min_cover, 3.0);
  for (const char* bad : {"metric.min_cover 1", "imperial.min_cover = 1",
                          "metric.min_cover = deep", "us.min_slope.8 = -1",
                          "metric.max_cover = 3"})
    EXPECT_THROW(ParseDesignSettings(bad), InvalidInputError) << bad;
}

}  // namespace
}  // namespace kestrana::check
