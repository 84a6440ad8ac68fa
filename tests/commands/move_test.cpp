// Moving and stretching through the commands: the editor's part moves
// what was named, the add-on's part brings the rest back in line, and
// refusals move nothing.
#include "commands/move.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "commands/command.h"
#include "commands/element_data.h"
#include "commands/networks.h"
#include "core/general.h"
#include "core/geometry.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"

namespace kestrana::commands {
namespace {

using core::PipeField;
using core::Record;

class MoveCommands : public ::testing::Test {
 protected:
  // Sewer: N-1 (0,0) -P-1- N-2 (100,0) with a middle vertex at (50,0),
  // -P-2- N-3 (100,-80); inverts falling 1 m along P-1.
  void SetUp() override {
    AddNetwork(*doc_, {"Sewer", core::kGravity});
    test::ConvertDrawn(*doc_, {{0, 0, 50, 0, 100, 0}, {100, 0, 100, -80}},
                       "Sewer", core::kGravity);
    SetPipe(*doc_, {.network = "Sewer",
                    .label = "P-1",
                    .start_invert = 100,
                    .end_invert = 99});
  }
  host::LwPolyline& Pipe(const std::string& label) {
    return host::As<host::LwPolyline>(
        test::ElementLabelled(*doc_, "Sewer", "Pipe", label));
  }
  host::BlockReference& Node(const std::string& label) {
    return host::As<host::BlockReference>(
        test::ElementLabelled(*doc_, "Sewer", "Node", label));
  }
  host::BlockReference& AnnotationOf(const host::Entity& element,
                                     core::Field field) {
    return host::As<host::BlockReference>(core::EntityFromReference(
        *doc_, Record::ReadRequired(element).Text(field)));
  }
  // Every record of model space by handle.
  std::map<std::string, host::XRecord> Records() {
    std::map<std::string, host::XRecord> records;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      if (auto r = Record::Read(*e)) records[e->Handle()] = r->Items();
    return records;
  }
  void ExpectConsistent() {
    EXPECT_TRUE(test::DanglingLinks(*doc_).empty())
        << testing::PrintToString(test::DanglingLinks(*doc_));
    EXPECT_TRUE(test::PipeEndsOffNodes(*doc_).empty())
        << testing::PrintToString(test::PipeEndsOffNodes(*doc_));
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
};

TEST_F(MoveCommands, StretchingAnInnerVertexReshapesThePipeAndItsSlope) {
  const std::vector<std::string> before =
      test::AnnotationTexts(*doc_, Pipe("P-1"));
  const MoveResult r = Stretch(
      *doc_,
      {.network = "Sewer", .pipe = "P-1", .vertex = 1, .x = 50, .y = 120});
  EXPECT_EQ(r.reshaped_pipes, (std::vector<std::string>{"Sewer P-1"}));
  EXPECT_EQ(Pipe("P-1").Coordinates(),
            (std::vector<double>{0, 0, 50, 120, 100, 0}));
  // 1 m over 260 m instead of over 100 m: the slope text changes, the
  // label does not.
  const std::vector<std::string> after =
      test::AnnotationTexts(*doc_, Pipe("P-1"));
  ASSERT_EQ(after.size(), before.size());
  EXPECT_EQ(after.front(), before.front());
  EXPECT_NE(after, before);
  ExpectConsistent();
}

TEST_F(MoveCommands, AnEndVertexSnapsBackOntoItsNode) {
  const MoveResult r = Stretch(
      *doc_,
      {.network = "Sewer", .pipe = "P-2", .vertex = 1, .x = 130, .y = -95});
  EXPECT_TRUE(r.reshaped_pipes.empty());
  EXPECT_EQ(Pipe("P-2").Coordinates(), (std::vector<double>{100, 0, 100, -80}));
  ExpectConsistent();
}

TEST_F(MoveCommands, NodesTakeThePipeEndsAlongAndAPipeAloneKeepsItsBend) {
  const MoveResult r =
      Move(*doc_, {.network = "Sewer", .nodes = {"N-2"}, .dx = 10, .dy = 20});
  EXPECT_EQ(r.moved, 1);
  EXPECT_EQ(r.reshaped_pipes,
            (std::vector<std::string>{"Sewer P-1", "Sewer P-2"}));
  EXPECT_EQ(Pipe("P-1").Coordinates(),
            (std::vector<double>{0, 0, 50, 0, 110, 20}));
  EXPECT_EQ(Pipe("P-2").Coordinates(),
            (std::vector<double>{110, 20, 100, -80}));
  // N-2's annotation went along.
  const host::Point3 label =
      AnnotationOf(Node("N-2"), core::NodeField::kAnnotationOIDRef)
          .InsertionPoint();
  EXPECT_NEAR(core::PlanDistance(label.x, label.y, 110, 20), 0, 20);

  // P-1 on its own: its ends stay on the nodes, its middle vertex moves.
  Move(*doc_, {.network = "Sewer", .pipes = {"P-1"}, .dx = 0, .dy = -5});
  EXPECT_EQ(Pipe("P-1").Coordinates(),
            (std::vector<double>{0, 0, 50, -5, 110, 20}));
  ExpectConsistent();
}

TEST_F(MoveCommands, MovingAWholeNetworkChangesOnlyGeometry) {
  std::vector<std::string> pipes, nodes;
  for (host::Entity* e :
       core::General::GetNetworkSet(*doc_, "Sewer", 1).Entities())
    pipes.push_back(core::General::EntityLabelFromCombined(
        Record::ReadRequired(*e).Text(PipeField::kCombinedLabel)));
  for (host::Entity* e :
       core::General::GetNetworkSet(*doc_, "Sewer", 2).Entities())
    nodes.push_back(core::General::EntityLabelFromCombined(
        Record::ReadRequired(*e).Text(PipeField::kCombinedLabel)));
  const auto records = Records();
  const std::vector<double> p2 = Pipe("P-2").Coordinates();
  const host::Point3 p2_label =
      AnnotationOf(Pipe("P-2"), PipeField::kAnnotationOIDRef).InsertionPoint();

  const MoveResult r = Move(*doc_, {.network = "Sewer",
                                    .nodes = nodes,
                                    .pipes = pipes,
                                    .dx = 1000,
                                    .dy = -500});
  EXPECT_EQ(r.moved, 5);
  EXPECT_EQ(Records(), records);
  EXPECT_EQ(Pipe("P-2").Coordinates(),
            (std::vector<double>{p2[0] + 1000, p2[1] - 500, p2[2] + 1000,
                                 p2[3] - 500}));
  const host::Point3 moved_label =
      AnnotationOf(Pipe("P-2"), PipeField::kAnnotationOIDRef).InsertionPoint();
  EXPECT_DOUBLE_EQ(moved_label.x, p2_label.x + 1000);
  EXPECT_DOUBLE_EQ(moved_label.y, p2_label.y - 500);
  ExpectConsistent();
}

TEST_F(MoveCommands, RefusalsMoveNothing) {
  const std::vector<double> p1 = Pipe("P-1").Coordinates();
  auto refused_with = [&](auto command) -> std::string {
    try {
      command();
    } catch (const OptionError&) {
      return "option";
    } catch (const NotFoundError&) {
      return "not found";
    } catch (const InvalidInputError&) {
      return "invalid";
    } catch (const RefusedError&) {
      return "refused";
    }
    return "done";
  };
  EXPECT_EQ(refused_with([&] {
              Move(*doc_, {.network = "Sewer", .pipes = {"P-1", "P-9"}});
            }),
            "not found");
  EXPECT_EQ(refused_with([&] { Move(*doc_, {.pipes = {"P-1"}}); }), "option");
  EXPECT_EQ(refused_with([&] { Move(*doc_, {.network = "Sewer"}); }), "option");
  EXPECT_EQ(refused_with([&] { Move(*doc_, {.handles = {"FFFFF"}}); }),
            "not found");
  // A line of a block definition is not the drawing's to move.
  host::Entity& inside =
      *doc_->GetBlocks().Item(core::kNodeBlock).Entities()[0];
  EXPECT_EQ(refused_with([&] { Move(*doc_, {.handles = {inside.Handle()}}); }),
            "not found");
  EXPECT_EQ(refused_with([&] {
              Stretch(*doc_, {.network = "Sewer", .pipe = "P-1", .vertex = 3});
            }),
            "invalid");
  doc_->GetLayers().Item("Sewer - Network").SetLock(true);
  EXPECT_EQ(refused_with([&] {
              Move(*doc_, {.network = "Sewer", .nodes = {"N-1"}, .dx = 5});
            }),
            "refused");
  EXPECT_EQ(refused_with([&] {
              Stretch(*doc_, {.network = "Sewer", .pipe = "P-1", .vertex = 1});
            }),
            "refused");
  EXPECT_EQ(Pipe("P-1").Coordinates(), p1);
  EXPECT_EQ(Node("N-1").InsertionPoint(), (host::Point3{0, 0, 0}));
}

}  // namespace
}  // namespace kestrana::commands
