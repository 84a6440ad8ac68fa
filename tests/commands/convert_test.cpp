// What the conversion refuses and passes over, named so that the user can
// act on all of it at once.
#include <gtest/gtest.h>

#include <memory>

#include "commands/command.h"
#include "commands/convert.h"
#include "core/names.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"
#include "support/network_elements.h"

namespace kestrana::commands {
namespace {

using host::Point3;

class ConvertSelection : public ::testing::Test {
 protected:
  ConvertOptions All() {
    ConvertOptions options;
    options.network = "Sewer";
    options.type = std::string(core::kGravity);
    options.selection.all = true;
    return options;
  }
  int Count(const char* type) {
    int n = 0;
    for (auto* e : doc_->ModelSpaceBlock().MemEntities())
      n += e->AsHostEntity().EntityName() == type;
    return n;
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
};

TEST_F(ConvertSelection, LinesOfNoLengthAreNamedByTheirOwnHandlesAllAtOnce) {
  host::Block& model = doc_->ModelSpace();
  model.AddLine({0, 0, 0}, {50, 0, 0});
  std::string a = model.AddLine({7, 7, 0}, {7, 7, 0}).Handle();
  std::string b = model.AddLine({9, 1, 0}, {9, 1, 0}).Handle();
  std::string c = model.AddLightWeightPolyline({3, 3, 3, 3}).Handle();
  try {
    Convert(*doc_, All());
    ADD_FAILURE() << "converted lines of no length";
  } catch (const RefusedError& e) {
    std::string message = e.what();
    EXPECT_NE(message.find("3 entities have no length"), std::string::npos)
        << message;
    EXPECT_NE(message.find("LINE " + a), std::string::npos) << message;
    EXPECT_NE(message.find("LINE " + b), std::string::npos) << message;
    EXPECT_NE(message.find("LWPOLYLINE " + c), std::string::npos) << message;
  }
  // Refused before anything changed: the lines stand, no network exists.
  EXPECT_EQ(Count("LINE"), 3);
  EXPECT_EQ(doc_->FindLayer("Sewer - Network"), nullptr);

  // Named by handle, one alone: the same rule, in the singular.
  ConvertOptions one = All();
  one.selection.all = false;
  one.selection.handles = {a};
  try {
    Convert(*doc_, one);
    ADD_FAILURE() << "converted a line of no length";
  } catch (const RefusedError& e) {
    EXPECT_NE(std::string(e.what()).find("the LINE with the handle " + a +
                                         " has no length"),
              std::string::npos)
        << e.what();
  }
}

TEST_F(ConvertSelection, ClassicPolylinesAreCountedAsLeftOut) {
  host::Block& model = doc_->ModelSpace();
  model.AddLine({0, 0, 0}, {50, 0, 0});
  for (int i = 0; i < 2; ++i)
    doc_->ModelSpaceBlock().AddNew(std::make_unique<memhost::MemOtherEntity>(
        "POLYLINE", "AcDb2dPolyline"));
  ConvertResult result = Convert(*doc_, All());
  EXPECT_EQ(result.pipes, 1);
  EXPECT_EQ(result.classic_polylines_left_out, 2);
  EXPECT_EQ(Count("POLYLINE"), 2);

  // A selection without any: none counted.
  model.AddLine({0, 10, 0}, {50, 10, 0}).SetLayer("Sewer - Network");
  ConvertOptions on_layer = All();
  on_layer.selection.all = false;
  on_layer.selection.layer = "Sewer - Network";
  EXPECT_EQ(Convert(*doc_, on_layer).classic_polylines_left_out, 0);
}

}  // namespace
}  // namespace kestrana::commands
