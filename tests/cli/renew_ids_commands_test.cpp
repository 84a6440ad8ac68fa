// Drawings saved in another session: any command renews the stored object
// IDs before it follows a link.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "cli/command_fixture.h"
#include "commands/networks.h"
#include "core/names.h"
#include "dxf/io.h"
#include "dxf/reader.h"
#include "dxf/writer.h"
#include "memhost/document.h"
#include "oids/update_oids.h"
#include "support/drawn_lines.h"
#include "support/network_elements.h"

namespace kestrana::cli {
namespace {

using oids::UpdateOIDs;

// A file saved in another session (its records hold that session's IDs)
// is renewed by any command that opens it.
class RenewalCommands : public test::CommandTest {};

TEST_F(RenewalCommands, CommandsRenewStaleIDsBeforeFollowingLinks) {
  const std::string site = Path("site.dxf");
  {
    auto doc = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc, {"Sewer", core::kGravity});
    test::ConvertDrawn(*doc, {{0, 0, 50, 0}, {50, 0, 90, 0}}, "Sewer",
                       core::kGravity);
    // Another session: new IDs, renewed and saved there.
    memhost::MemDocument other(nullptr,
                               memhost::Options{memhost::IdPolicy::kFresh, 3});
    dxf::ReadDxf(other, dxf::WriteDxf(*doc));
    UpdateOIDs::UpdateObjectIDs(other);
    std::ofstream(site, std::ios::binary) << dxf::WriteDxf(other);
  }
  // Following P-2's start node to N-2 needs current IDs.
  ASSERT_EQ(Run({"pipe", "set", site, "--network", "Sewer", "--label", "P-1",
                 "--end-invert", "98.5"}),
            0)
      << err_.str();
  ASSERT_EQ(Run({"renew-ids", site}), 0) << err_.str();
  EXPECT_EQ(out_.str(),
            "every stored object ID was current\nwrote " + site + "\n");
}

}  // namespace
}  // namespace kestrana::cli
