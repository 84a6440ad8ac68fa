// Copies of network elements become elements of their own.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/project.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing.h"
#include "dxf/io.h"
#include "events/events.h"
#include "host/host.h"
#include "library/library.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"

namespace kestrana::events {
namespace {

using core::General;
using core::NodeField;
using core::PipeField;
using core::Record;

TEST(GetFinalLabel, NewInFrontUntilFree) {
  EXPECT_EQ(Events::GetFinalLabel("P-3", {"P-1", "P-3", "New P-3", ""}),
            "New New P-3");
  EXPECT_EQ(Events::GetFinalLabel("P-4", {"P-1", "P-3", ""}), "P-4");
  // The last entry ends the list and is not compared.
  EXPECT_EQ(Events::GetFinalLabel("", {""}), "");
}

}  // namespace
}  // namespace kestrana::events
