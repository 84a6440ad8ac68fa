// A command that fails half way leaves the layers it opened as it found
// them, and fails with a kind a front end can tell apart.
#include <gtest/gtest.h>

#include "commands/command.h"
#include "commands/element_data.h"
#include "commands/networks.h"
#include "commands/pipes.h"
#include "core/names.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"

namespace kestrana::commands {
namespace {

class FailingCommands : public ::testing::Test {
 protected:
  // N-1 -P-1- N-2 -P-2- N-3, with the user's layers locked.
  void SetUp() override {
    AddNetwork(*doc_, {"Sewer", core::kGravity});
    test::ConvertDrawn(*doc_, {{0, 0, 50, 0}, {50, 0, 90, 0}}, "Sewer",
                       core::kGravity);
    for (const char* name : {"0", "Sewer - Network", "Sewer - Annotation"})
      doc_->GetLayers().Item(name).SetLock(true);
  }
  void ExpectLockedAsBefore() {
    for (const char* name : {"0", "Sewer - Network", "Sewer - Annotation"})
      EXPECT_TRUE(doc_->GetLayers().Item(name).Lock()) << name;
    EXPECT_FALSE(doc_->GetLayers().Item("Sewer - Arrow").Lock());
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      test::NewFullProjectDocument("Metric");
};

TEST_F(FailingCommands, AnEditThatBreaksOffLeavesTheLayersLocked) {
  // P-2 has lost its record's fields: the node edit meets it only after
  // opening the layers, when it matches the pipes at N-2.
  host::Layer& network = doc_->GetLayers().Item("Sewer - Network");
  network.SetLock(false);
  test::ElementLabelled(*doc_, "Sewer", "Pipe", "P-2")
      .SetXData({{1001, host::XValue("Kestrana")}});
  network.SetLock(true);
  EXPECT_ANY_THROW(SetNode(*doc_, {.network = "Sewer",
                                   .label = "N-2",
                                   .sump = 95,
                                   .matching = "Match Inverts"}));
  ExpectLockedAsBefore();
}

TEST_F(FailingCommands, RefusalsAreOfTheirKindAndLeaveTheLayersLocked) {
  auto refused_with = [&](auto command) {
    try {
      command();
    } catch (const OptionError&) {
      return "option";
    } catch (const NotFoundError&) {
      return "not found";
    } catch (const RefusedError&) {
      return "refused";
    }
    return "nothing";
  };
  EXPECT_STREQ(refused_with([&] {
                 SetPipe(*doc_,
                         {.network = "Sewer", .label = "P-1", .size = "12a"});
               }),
               "option");
  EXPECT_STREQ(refused_with([&] {
                 SetPipe(*doc_, {.network = "Storm", .label = "P-1"});
               }),
               "not found");
  EXPECT_STREQ(refused_with([&] {
                 SplitPipe(*doc_, {"Sewer", "P-1", 50, 0});
               }),
               "refused");
  EXPECT_STREQ(refused_with([&] {
                 MergePipes(*doc_, {"Sewer", {"P-1"}});
               }),
               "refused");
  ExpectLockedAsBefore();
}

}  // namespace
}  // namespace kestrana::commands
