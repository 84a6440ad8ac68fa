// Converting drawn lines and polylines: the selection, node matching at 5
// decimal places, label numbering, the records written, and what is built
// around the new elements.
#include <gtest/gtest.h>

#include <cmath>

#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing.h"
#include "editing/editing.h"
#include "editing/labels.h"
#include "host/host.h"
#include "library/library.h"
#include "lowhigh/lowhigh.h"
#include "memhost/document.h"
#include "support/elements.h"
#include "support/network_elements.h"

namespace kestrana::editing {
namespace {

using core::General;
using core::NodeField;
using core::PipeField;

std::string Text(const host::Entity& entity, core::Field field) {
  return core::Record::ReadRequired(entity).Text(field);
}

class Conversion : public ::testing::Test {
 protected:
  void SetUp() override { Start("Metric"); }
  void Start(const std::string& units) {
    doc_ = test::NewFullProjectDocument(units);
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    commands::AddNetwork(*doc_, {"Water", core::kPressure});
  }
  host::LwPolyline& Polyline(std::vector<double> xy) {
    return doc_->ModelSpace().AddLightWeightPolyline(xy);
  }
  void Convert(const std::vector<host::Entity*>& entities,
               const std::string& network, const std::string& type,
               bool existing = true) {
    host::SelectionSet& set =
        General::InitializeSelectionSet(*doc_, "SetEntitiesToConvert");
    set.AddItems(entities);
    Editing::CreateElementsInNetwork(*doc_, set, existing, network, type);
  }
  std::vector<std::string> Labels(const std::string& network, int option) {
    std::vector<std::string> labels;
    for (host::Entity* e :
         General::GetNetworkSet(*doc_, network, option).Entities())
      labels.push_back(General::EntityLabelFromCombined(
          Text(*e, PipeField::kCombinedLabel)));
    return labels;
  }
  host::Entity& Node(const std::string& label) {
    return test::ElementLabelled(*doc_, "Sewer", core::kNodeKind, label);
  }

  std::unique_ptr<memhost::MemDocument> doc_;
};

TEST_F(Conversion, SelectionKeepsPolylinesAndTurnsLinesIntoPolylines) {
  host::Line& line = doc_->ModelSpace().AddLine({0, 0, 0}, {10, 5, 0});
  host::LwPolyline& drawn = Polyline({0, 10, 5, 10, 5, 20});
  doc_->ModelSpace().AddCircle({0, 0, 0}, 3);
  Convert({&Polyline({50, 0, 60, 0})}, "Sewer", core::kGravity);
  const host::ObjectId line_id = line.ObjectID();

  doc_->GetSession().Push(memhost::Input::All());
  host::SelectionSet& set = Editing::GetEntitiesToConvert(*doc_);
  EXPECT_EQ(doc_->GetSession().Prompts().at(0), kConvertPrompt);
  ASSERT_EQ(set.Count(), 2);  // not the circle, not the pipe
  EXPECT_EQ(&set.Item(0), &drawn);
  auto& from_line = host::As<host::LwPolyline>(set.Item(1));
  EXPECT_EQ(from_line.Coordinates(), (std::vector<double>{0, 0, 10, 5}));
  EXPECT_FALSE(from_line.GetXData(core::kAppName).has_value());
  EXPECT_THROW(doc_->ObjectIdToObject(line_id), host::HostError);

  doc_->GetSession().Push(memhost::Input::Cancel());
  EXPECT_EQ(Editing::GetEntitiesToConvert(*doc_).Count(), 0);
}

TEST_F(Conversion, EndsThatAgreeToFiveDecimalsShareANode) {
  Convert({&Polyline({0, 0, 10, 0}),
           // 10.0000049 and 0.0000001 round to the first pipe's end.
           &Polyline({10.0000049, 0.0000001, 10, 10}),
           // 10.000006 rounds to 10.00001: a node of its own.
           &Polyline({10, 10.000006, 20, 10})},
          "Sewer", core::kGravity, false);
  EXPECT_EQ(Labels("Sewer", 1),
            (std::vector<std::string>{"P-1", "P-2", "P-3"}));
  EXPECT_EQ(Labels("Sewer", 2),
            (std::vector<std::string>{"N-1", "N-2", "N-3", "N-4", "N-5"}));
  host::Entity& shared = Node("N-2");
  EXPECT_EQ(Text(shared, NodeField::kPipesAtEndLabels), ";RelatedToP-1");
  EXPECT_EQ(Text(shared, NodeField::kPipesAtStartLabels), ";RelatedToP-2");
  host::Entity& p2 = test::ElementLabelled(*doc_, "Sewer", "Pipe", "P-2");
  EXPECT_EQ(Text(p2, PipeField::kStartNodeOID),
            ";RelatedTo" + core::IdText(shared.ObjectID()));
  EXPECT_EQ(Text(p2, PipeField::kEndNodeLabel), ";RelatedToN-3");
  EXPECT_EQ(Text(Node("N-3"), NodeField::kPipesAtEndOID),
            ";RelatedTo" + core::IdText(p2.ObjectID()));
  EXPECT_EQ(Text(Node("N-4"), NodeField::kPipesAtStartLabels), ";RelatedToP-3");
}

TEST_F(Conversion, NewLabelsTakeTheSmallestFreeNumbersOfTheirKind) {
  EXPECT_EQ(Editing::GetNextLabel(*doc_, "Sewer", core::kGravityPipe), "P-1");
  EXPECT_EQ(Editing::GetNextLabel(*doc_, "Sewer", core::kGravityNode), "N-1");
  test::NetworkElements sewer(*doc_, "Sewer");
  auto& a = sewer.AddNode("N-1", 0, 0);
  auto& b = sewer.AddNode("MH3", 10, 0);  // the prefix is not checked
  sewer.AddPipe("P-1", {0, 0, 10, 0}, a, b);
  sewer.AddPipe("P-2", {0, 0, 10, 0}, a, b);
  sewer.AddPipe("P-4", {0, 0, 10, 0}, a, b);
  sewer.AddPipe("P-x", {0, 0, 10, 0}, a, b);  // counts as nothing
  test::NetworkElements water(*doc_, "Water");
  water.AddPipeWithNodes("P-3", {0, 50, 10, 50});
  auto& n2 = water.AddNode("N-2", 20, 50);
  EXPECT_EQ(Editing::GetExistingLabelsArray(*doc_, "Water", core::kPressureNode,
                                            {core::IdText(n2.ObjectID())}),
            (std::vector<std::string>{"P-3-S", "P-3-E", ""}));

  Convert({&Polyline({10, 0, 20, 0}), &Polyline({20, 0, 30, 0})}, "Sewer",
          core::kGravity);
  // P-3 is free in the sewer; the nodes take 2 (after N-1, MH3) and 4.
  EXPECT_EQ(Labels("Sewer", 1), (std::vector<std::string>{
                                    "P-1", "P-2", "P-4", "P-x", "P-3", "P-5"}));
  EXPECT_EQ(Labels("Sewer", 2),
            (std::vector<std::string>{"N-1", "MH3", "N-2", "N-4"}));
}

TEST(LabelNumbers, TheLastNumberIsAnsweredOnceEveryOtherIsTaken) {
  std::vector<std::string> labels;
  for (int n = 1; n <= kHighestLabelNumber; ++n)
    if (n != 17) labels.push_back("P-" + std::to_string(n));
  labels.push_back("P-2.5");  // rounds to 2, half to even
  labels.push_back("P-10000");
  LabelNumbers numbers(labels);
  EXPECT_EQ(numbers.Take(), 17);
  EXPECT_EQ(numbers.Take(), 10000);
  EXPECT_EQ(numbers.Take(), 10000);
  EXPECT_EQ(LabelNumbers({"N-2.5", "N-1e3", "N-"}).Take(), 1);
  EXPECT_EQ(LabelNumbers({"N-1", "N-3.5"}).Take(), 2);  // 3.5 is 4
}

TEST_F(Conversion, NewElementsCarryTheirInitialRecords) {
  for (const char* units : {"Metric", "US"}) {
    SCOPED_TRACE(units);
    Start(units);
    Convert({&Polyline({0, 0, 10, 0})}, "Water", core::kPressure, false);
    host::Entity& pipe = test::ElementLabelled(*doc_, "Water", "Pipe", "P-1");
    core::Record record = core::Record::ReadRequired(pipe);
    ASSERT_EQ(record.Size(), core::kPipeRecordLength);
    EXPECT_EQ(record.Text(PipeField::kElementType), core::kPressurePipe);
    EXPECT_EQ(record.Text(PipeField::kSectionShape),
              core::kSectionShapeCircular);
    EXPECT_EQ(record.Number(PipeField::kSpan),
              units == std::string("US") ? 8 : 200);
    EXPECT_EQ(record.Number(PipeField::kRise), record.Number(PipeField::kSpan));
    EXPECT_EQ(record.Int16(PipeField::kNumCells), 1);
    EXPECT_EQ(record.Text(PipeField::kMaterial), "PVC");
    EXPECT_EQ(record.Text(PipeField::kStartNodeLabel), ";RelatedToN-1");
    EXPECT_EQ(record.Text(PipeField::kEndNodeLabel), ";RelatedToN-2");
    EXPECT_EQ(pipe.Layer(), "Water - Network");
    host::Entity& node = test::ElementLabelled(*doc_, "Water", "Node", "N-1");
    core::Record node_record = core::Record::ReadRequired(node);
    ASSERT_EQ(node_record.Size(), core::kNodeRecordLength);
    EXPECT_EQ(node_record.Int16(NodeField::kMatching), 1);
    EXPECT_EQ(node_record.Text(NodeField::kElementType), core::kPressureNode);
    EXPECT_EQ(host::As<host::BlockReference>(node).Name(), core::kNodeBlock);
    EXPECT_EQ(node.Layer(), "Water - Network");
  }
  Convert({&Polyline({0, 0, 10, 0})}, "Sewer", core::kGravity, false);
  EXPECT_EQ(core::Record::ReadRequired(Node("N-1")).Int16(NodeField::kMatching),
            0);
}

TEST_F(Conversion, NewPipesAreAnnotatedCrossedAnalysedAndCounted) {
  Convert({&Polyline({0, 0, 100, 0}), &Polyline({100, 0, 200, 0})}, "Sewer",
          core::kGravity, false);
  doc_->GetLayers().Item("Water - Network").SetLock(true);
  Convert({&Polyline({50, -40, 50, 40}), &Polyline({50, 40, 150, 40}),
           &Polyline({150, 40, 150, -40})},
          "Water", core::kPressure, false);
  EXPECT_TRUE(doc_->GetLayers().Item("Water - Network").Lock());

  host::Entity& main = test::ElementLabelled(*doc_, "Water", "Pipe", "P-1");
  EXPECT_EQ(test::AnnotationTexts(*doc_, main),
            (std::vector<std::string>{"P-1", "%%c200", "PVC"}));
  host::Entity& annotation = core::EntityFromReference(
      *doc_, Text(main, PipeField::kAnnotationOIDRef));
  EXPECT_EQ(annotation.Layer(), "Water - Annotation");
  EXPECT_EQ(test::AnnotationTexts(*doc_, Node("N-1")),
            (std::vector<std::string>{"N-1", "GL=0.00", "IL=0.00"}));
  // Two mains cross the sewer, one crossing each.
  EXPECT_EQ(crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "").Count(),
            2);
  EXPECT_EQ(core::ReferenceValues(Text(main, PipeField::kCrossingRefs)).size(),
            1u);
  // Level nodes: every node of the main is a low point.
  EXPECT_EQ(
      lowhigh::LowHigh::GetExistingLowHighPointsSet(*doc_, "Water").Count(), 4);
  core::TextTable materials = library::Library::GetMaterialsArray(*doc_);
  EXPECT_EQ(materials(0, 0), "PVC");
  EXPECT_EQ(materials(0, 1), "5");
}

TEST_F(Conversion, PipesDrawnEveryWayReadUprightInATurnedSystem) {
  // Pipes drawn outwards from one point in eight directions, in a user
  // system turned by 30°: each converted pipe's annotation sits half way
  // along it and every line of it runs along the pipe, reading left to
  // right against the user's X axis (upwards when across it).
  constexpr double kDeg = M_PI / 180;
  doc_->SetVariable("UCSXDIR",
                    host::Point3{std::cos(30 * kDeg), std::sin(30 * kDeg), 0});
  doc_->SetVariable("UCSYDIR",
                    host::Point3{-std::sin(30 * kDeg), std::cos(30 * kDeg), 0});
  const double correction = General::GetCorrectionAngleForCS(*doc_);
  ASSERT_NEAR(correction, 30 * kDeg, 1e-9);
  std::vector<host::Entity*> drawn;
  for (int k = 0; k < 8; ++k) {
    const double a = (k * 45 + 10) * kDeg;
    drawn.push_back(&Polyline({0, 0, 60 * std::cos(a), 60 * std::sin(a)}));
  }
  Convert(drawn, "Sewer", core::kGravity, false);

  int seen = 0;
  for (host::Entity* e :
       General::GetNetworkSet(*doc_, "Sewer", core::network_set::kPipes)
           .Entities()) {
    SCOPED_TRACE(Text(*e, PipeField::kCombinedLabel));
    auto& pipe = static_cast<host::LwPolyline&>(*e);
    const std::vector<double> xy = pipe.Coordinates();
    ASSERT_EQ(xy.size(), 4u);
    const double a = std::atan2(xy[3] - xy[1], xy[2] - xy[0]);
    auto& annotation =
        static_cast<host::BlockReference&>(core::EntityFromReference(
            *doc_, Text(pipe, PipeField::kAnnotationOIDRef)));
    EXPECT_NEAR(annotation.InsertionPoint().x, (xy[0] + xy[2]) / 2, 1e-9);
    EXPECT_NEAR(annotation.InsertionPoint().y, (xy[1] + xy[3]) / 2, 1e-9);
    const std::vector<host::AttributeReference*> lines =
        annotation.GetAttributes();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front()->TextString(),
              General::EntityLabelFromCombined(
                  Text(pipe, PipeField::kCombinedLabel)));
    for (const host::AttributeReference* line : lines) {
      const double theta = line->Rotation();
      EXPECT_NEAR(std::sin(theta - a), 0, 1e-8);
      const double along = std::cos(theta - correction);
      EXPECT_TRUE(along > 1e-9 ||
                  (std::abs(along) <= 1e-9 && std::sin(theta - correction) > 0))
          << "turned to " << theta / kDeg << "° on a pipe at " << a / kDeg;
    }
    ++seen;
  }
  EXPECT_EQ(seen, 8);
}

TEST_F(Conversion, JoiningAnExistingNetworkMatchesItsNodes) {
  Convert({&Polyline({0, 0, 100, 0})}, "Water", core::kPressure, false);
  host::Entity& first = test::ElementLabelled(*doc_, "Water", "Pipe", "P-1");
  host::Entity& node = test::ElementLabelled(*doc_, "Water", "Node", "N-2");
  core::Record record = core::Record::ReadRequired(first);
  record.SetReal(PipeField::kSpan, 400);
  record.SetReal(PipeField::kRise, 400);
  record.Write(first);
  core::Record node_record = core::Record::ReadRequired(node);
  node_record.SetReal(NodeField::kSumpLevel, 50);
  node_record.Write(node);

  Convert({&Polyline({100, 0, 100, 80})}, "Water", core::kPressure);
  // Centre lines meet the 400 pipe's standing on the sump: 50.1 for the
  // new 200 pipe, 50 for the old one, which the conversion refreshed.
  host::Entity& joined = test::ElementLabelled(*doc_, "Water", "Pipe", "P-2");
  EXPECT_NEAR(
      core::Record::ReadRequired(joined).Number(PipeField::kStartInvert), 50.1,
      1e-12);
  EXPECT_EQ(core::Record::ReadRequired(first).Number(PipeField::kEndInvert),
            50);
  EXPECT_EQ(Text(joined, PipeField::kStartNodeLabel), ";RelatedToN-2");
  EXPECT_EQ(Labels("Water", 2),
            (std::vector<std::string>{"N-1", "N-2", "N-3"}));
}

}  // namespace
}  // namespace kestrana::editing
