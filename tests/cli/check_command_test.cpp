// `kestrana check` on files: exit 0 clean, 1 with findings, the drawing only
// read unless --fix writes it, and damage that is told, not failed on.
#include <gtest/gtest.h>

#include "command_fixture.h"
#include "core/guards.h"
#include "core/node_record.h"
#include "core/record.h"
#include "dxf/io.h"
#include "host/host.h"
#include "memhost/document.h"
#include "support/elements.h"

namespace kestrana::test {
namespace {

class CheckCommand : public CommandTest {
 protected:
  // The site with node N-2 no longer listing P-2 as starting there.
  std::string DamagedSite() {
    const std::string site = SewerSite({{0, 0, 50, 0}, {50, 0, 90, 0}});
    auto doc = dxf::LoadDrawing(site);
    host::Entity& node = ElementLabelled(*doc, "Sewer", "Node", "N-2");
    core::UnlockedLayers unlocked(*doc);
    core::Record record = *core::Record::Read(node);
    record.SetText(core::NodeField::kPipesAtStartLabels, "");
    record.SetText(core::NodeField::kPipesAtStartOID, "");
    record.Write(node);
    unlocked.Restore();
    dxf::SaveDrawing(*doc, site);
    return site;
  }
};

TEST_F(CheckCommand, ExitCodesTellCleanFromFindingsAndOnlyFixWrites) {
  const std::string clean = SewerSite({{0, 0, 50, 0}, {50, 0, 90, 0}});
  EXPECT_EQ(Run({"check", clean}), 0) << err_.str();
  EXPECT_NE(out_.str().find("clean: 0 errors"), std::string::npos) << out_.str();

  const std::string site = DamagedSite();
  const std::string before = Bytes(site);
  EXPECT_EQ(Run({"check", site, "--json"}), 1);
  EXPECT_NE(out_.str().find("\"code\": \"one-way-reference\""), std::string::npos)
      << out_.str();
  EXPECT_EQ(Bytes(site), before);

  const std::string fixed = Path("fixed.dxf");
  EXPECT_EQ(Run({"check", site, "--fix", "-o", fixed}), 0) << out_.str();
  EXPECT_NE(out_.str().find("fixed: rebuilt the list of pipes starting at node N-2"),
            std::string::npos)
      << out_.str();
  EXPECT_EQ(Bytes(site), before);
  EXPECT_EQ(Run({"check", fixed}), 0) << out_.str();
}

TEST_F(CheckCommand, BadSettingsAndDrawingsWithoutAProjectAreTold) {
  const std::string site = SewerSite({{0, 0, 50, 0}});
  const std::string settings = Path("limits.txt");
  std::ofstream(settings) << "metric.min_cover = 1.2\nmetric.min_slope = steep\n";
  EXPECT_EQ(Run({"check", site, "--design", "--settings", settings}), 1);
  EXPECT_NE(err_.str().find("line 2"), std::string::npos) << err_.str();
  EXPECT_EQ(Run({"check", site, "-o", Path("x.dxf")}), 2);

  const std::string bare = Path("bare.dxf");
  memhost::MemDocument empty;
  dxf::SaveDrawing(empty, bare);
  EXPECT_EQ(Run({"check", bare}), 1);
  EXPECT_NE(out_.str().find("no-project"), std::string::npos) << out_.str();
}

}  // namespace
}  // namespace kestrana::test
