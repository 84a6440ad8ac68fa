// Faults the random editing runs found, each kept as the smallest drawing
// that shows it; the audit is the judge.
#include <gtest/gtest.h>

#include <memory>

#include "check/audit.h"
#include "commands/copy_erase.h"
#include "commands/element_data.h"
#include "commands/networks.h"
#include "commands/pipes.h"
#include "commands/project.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "crossing/crossing.h"
#include "dxf/reader.h"
#include "dxf/writer.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"

namespace kestrana::check {
namespace {

std::string Errors(host::Document& document) {
  std::string text;
  for (const Finding& f : Audit(document))
    if (f.severity == Severity::kError) text += f.code + ": " + f.sentence + "\n";
  return text;
}

int Crossings(host::Document& document) {
  return crossing::Crossing::GetExistingCrossingPointsSet(document, "").Count();
}

class Regressions : public ::testing::Test {
 protected:
  void SetUp() override {
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    commands::AddNetwork(*doc_, {"Water", core::kPressure});
  }
  // The next session's drawing: written, read with new IDs, renewed.
  void Reopen() {
    auto next = std::make_unique<memhost::MemDocument>(
        nullptr, memhost::Options{memhost::IdPolicy::kFresh, 11});
    dxf::ReadDxf(*next, dxf::WriteDxf(*doc_));
    doc_ = std::move(next);
    commands::OpenProject(*doc_);
  }
  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
};

TEST_F(Regressions, ARelabelledElementTakesItsAnnotationAndMarkerAlong) {
  test::ConvertDrawn(*doc_, {{0, 0, 50, 0}, {50, 0, 100, 0}}, "Water",
                     core::kPressure);
  commands::SetNode(*doc_, {.network = "Water", .label = "N-2", .sump = 99});
  commands::SetNode(*doc_, {.network = "Water", .label = "N-2",
                            .new_label = "N-20"});
  commands::SetPipe(*doc_, {.network = "Water", .label = "P-1",
                            .new_label = "P-10"});
  core::Record node = *core::Record::Read(
      test::ElementLabelled(*doc_, "Water", "Node", "N-20"));
  EXPECT_EQ(node.Text(core::NodeField::kAnnotationLabelRef),
            ";RelatedToN-20Annotation");
  EXPECT_EQ(node.Text(core::NodeField::kLowHighLabelRef),
            ";RelatedToN-20LowHigh");
  EXPECT_EQ(Errors(*doc_), "");
  // The old labels are free again; a new element may take them without
  // meeting the annotations of the old one.
  test::ConvertDrawn(*doc_, {{0, 30, 50, 30}}, "Water", core::kPressure);
  EXPECT_NO_THROW(test::ElementLabelled(*doc_, "Water", "Pipe", "P-1"));
  Reopen();
  EXPECT_EQ(Errors(*doc_), "");
}

TEST_F(Regressions, ASplitPointTypedBesideThePipeKeepsItsCrossingsOnTheirPart) {
  test::ConvertDrawn(*doc_, {{0, 0, 60, 40}}, "Sewer", core::kGravity);
  test::ConvertDrawn(*doc_, {{45, 0, 45, 50}}, "Water", core::kPressure);
  ASSERT_EQ(Crossings(*doc_), 1);
  // On the line y = 2x/3 only to three decimals; past the crossing at
  // (45, 30), so the crossing stays with the first part.
  commands::SplitResult split =
      commands::SplitPipe(*doc_, {"Sewer", "P-1", 51.0003, 33.9997});
  EXPECT_EQ(Errors(*doc_), "");
  core::Record first = *core::Record::Read(
      test::ElementLabelled(*doc_, "Sewer", "Pipe", split.first));
  EXPECT_NE(first.Text(core::PipeField::kCrossingOIDRefs), "");
}

TEST_F(Regressions, SplittingAPipeThatCrossesAnotherTwiceAnnotatesBothParts) {
  test::ConvertDrawn(*doc_, {{0, 0, 100, 0}}, "Sewer", core::kGravity);
  test::ConvertDrawn(*doc_, {{20, -10, 20, 10, 40, 10, 40, -10}}, "Water",
                     core::kPressure);
  ASSERT_EQ(Crossings(*doc_), 1);  // one per pair of pipes
  commands::SplitPipe(*doc_, {"Water", "P-1", 30, 10});
  EXPECT_EQ(Crossings(*doc_), 2);
  EXPECT_EQ(Errors(*doc_), "");
}

TEST_F(Regressions, MergingPipesThatCrossOnePipeKeepsOneAnnotationOfThePair) {
  test::ConvertDrawn(*doc_, {{0, 0, 50, 0}, {50, 0, 100, 0}}, "Sewer",
                     core::kGravity);
  test::ConvertDrawn(*doc_, {{25, -10, 25, 10, 75, 10, 75, -10}}, "Water",
                     core::kPressure);
  ASSERT_EQ(Crossings(*doc_), 2);
  commands::MergePipes(*doc_, {"Sewer", {"P-1", "P-2"}});
  EXPECT_EQ(Crossings(*doc_), 1);
  EXPECT_EQ(Errors(*doc_), "");
  Reopen();
  EXPECT_EQ(Errors(*doc_), "");
}

}  // namespace
}  // namespace kestrana::check

namespace kestrana::check {
namespace {

TEST_F(Regressions, ErasingAPipeReanalysesTheNeighboursOfNodesWhoseSumpMoved) {
  // N-1 -P-1- N-2 -P-2- N-3, and the branch N-2 -P-3- N-4 lying lowest.
  test::ConvertDrawn(*doc_, {{0, 0, 50, 0}, {50, 0, 100, 0}, {50, 0, 50, -50}},
                     "Water", core::kPressure);
  for (const char* n : {"N-1", "N-2", "N-3", "N-4"})
    commands::SetNode(*doc_, {.network = "Water", .label = n,
                              .matching = "No Matching"});
  // The pipes meet N-2 at 99 but for the branch.
  commands::SetPipe(*doc_, {.network = "Water", .label = "P-1",
                            .start_invert = 98.5, .end_invert = 99});
  commands::SetPipe(*doc_, {.network = "Water", .label = "P-2",
                            .start_invert = 99, .end_invert = 98.8});
  for (auto [n, sump] : {std::pair{"N-1", 98.5}, {"N-3", 98.8}, {"N-4", 96.0},
                         {"N-2", 97.0}})
    commands::SetNode(*doc_, {.network = "Water", .label = n, .sump = sump});
  ASSERT_EQ(Errors(*doc_), "");
  // Without the branch N-2 lies at 99, a high point: N-1 below it turns
  // from a high point into a low one.
  commands::Erase(*doc_, {.network = "Water", .pipes = {"P-3"}, .nodes = {},
                          .handles = {}});
  std::string levels;
  for (const commands::NodeListing& n :
       commands::ListElements(*doc_, {"Water"}).nodes)
    levels += n.label + " " + std::to_string(n.sump) + "\n";
  EXPECT_EQ(Errors(*doc_), "") << levels;
}

}  // namespace
}  // namespace kestrana::check

namespace kestrana::check {
namespace {

TEST_F(Regressions, CopiesOfElementsLabelledAfterEachOtherGetLabelsOfTheirOwn) {
  // A pipe between N-1 and "New N-1", copied with both nodes.
  test::ConvertDrawn(*doc_, {{0, 0, 50, 0}}, "Sewer", core::kGravity);
  commands::Copy(*doc_, {.network = "Sewer", .pipes = {}, .nodes = {"N-1"},
                         .dx = 100, .dy = 0});
  test::ConvertDrawn(*doc_, {{0, 0, 50, 30, 100, 0}}, "Sewer", core::kGravity);
  commands::Copy(*doc_, {.network = "Sewer", .pipes = {"P-2"},
                         .nodes = {"N-1", "New N-1"}, .dx = 0, .dy = 200});
  EXPECT_EQ(Errors(*doc_), "");
}

}  // namespace
}  // namespace kestrana::check
