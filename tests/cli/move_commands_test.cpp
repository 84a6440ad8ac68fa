// Moving and stretching from the command line: what is printed, the exit
// codes of bad input, and a drawing left byte for byte as it was.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/command_fixture.h"
#include "core/record.h"
#include "dxf/io.h"
#include "host/host.h"
#include "support/elements.h"

namespace kestrana::cli {
namespace {

class MoveCommand : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    site_ = SewerSite({{0, 0, 50, 0}, {50, 0, 90, 0}});
  }
  std::string site_;
};

TEST_F(MoveCommand, MovesANodeAndSaysWhatFollowed) {
  ASSERT_EQ(Run({"move", site_, "--network", "Sewer", "--nodes", "N-2", "--by",
                 "0,30"}),
            0)
      << err_.str();
  EXPECT_EQ(out_.str().rfind("moved 1 entity\nreshaped pipes: Sewer P-1, "
                             "Sewer P-2\ntheir crossings now: 0\n"
                             "profiles to update: none\n",
                             0),
            0u)
      << out_.str();
  auto doc = dxf::LoadDrawing(site_);
  EXPECT_EQ(host::As<host::LwPolyline>(
                test::ElementLabelled(*doc, "Sewer", "Pipe", "P-2"))
                .Coordinates(),
            (std::vector<double>{50, 30, 90, 0}));
  EXPECT_TRUE(test::PipeEndsOffNodes(*doc).empty());

  ASSERT_EQ(Run({"stretch", site_, "--network", "Sewer", "--pipe", "P-1",
                 "--vertex", "0", "--to", "9,9"}),
            0)
      << err_.str();
  EXPECT_NE(out_.str().find("reshaped pipes: none\n"), std::string::npos)
      << out_.str();
}

TEST_F(MoveCommand, BadInputFailsAndLeavesTheDrawingAsItWas) {
  const std::string before = Bytes(site_);
  struct Case {
    std::vector<std::string> args;
    int exit_code;
  };
  const std::vector<Case> cases = {
      {{"move", site_, "--network", "Sewer", "--pipes", "P-9", "--by", "1,1"},
       1},
      {{"move", site_, "--network", "Water", "--pipes", "P-1", "--by", "1,1"},
       1},
      {{"move", site_, "--handles", "FFFFF", "--by", "1,1"}, 1},
      {{"move", site_, "--network", "Sewer", "--pipes", "P-1", "--by", "1"}, 2},
      {{"move", site_, "--network", "Sewer", "--pipes", "P-1", "--by", "1,x"},
       2},
      {{"move", site_, "--network", "Sewer", "--pipes", "P-1", "--by", "nan,0"},
       2},
      {{"move", site_, "--pipes", "P-1", "--by", "1,1"}, 2},
      {{"move", site_, "--by", "1,1"}, 2},
      {{"stretch", site_, "--network", "Sewer", "--pipe", "P-1", "--vertex",
        "2", "--to", "5,5"},
       1},
      {{"stretch", site_, "--network", "Sewer", "--pipe", "P-1", "--vertex",
        "-1", "--to", "5,5"},
       2},
      {{"stretch", site_, "--network", "Sewer", "--pipe", "P-1", "--vertex",
        "one", "--to", "5,5"},
       2},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Run(c.args), c.exit_code) << testing::PrintToString(c.args);
    EXPECT_FALSE(err_.str().empty()) << testing::PrintToString(c.args);
  }
  EXPECT_EQ(Bytes(site_), before);

  // The network's layer locked: the editor cannot move its entities.
  {
    auto doc = dxf::LoadDrawing(site_);
    doc->GetLayers().Item("Sewer - Network").SetLock(true);
    dxf::SaveDrawing(*doc, site_);
  }
  const std::string locked = Bytes(site_);
  EXPECT_EQ(Run({"move", site_, "--network", "Sewer", "--nodes", "N-1", "--by",
                 "1,1"}),
            1);
  EXPECT_NE(err_.str().find("locked layer"), std::string::npos) << err_.str();
  EXPECT_EQ(Bytes(site_), locked);
}

}  // namespace
}  // namespace kestrana::cli
