#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/command.h"
#include "cli/command_fixture.h"
#include "cli/render.h"
#include "dxf/io.h"
#include "memhost/document.h"
#include "support/svg_reader.h"

namespace kestrana::cli {
namespace {

namespace fs = std::filesystem;

class RenderCommandTest : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    memhost::MemDocument doc;
    doc.GetLayers().Add("Pipes").SetTrueColor(5);
    doc.ModelSpace().AddLine({0, 0, 0}, {10, 0, 0}).SetLayer("Pipes");
    doc.ModelSpace().AddCircle({20, 0, 0}, 2);
    drawing_ = (dir_ / "plan.dxf").string();
    dxf::SaveDrawing(doc, drawing_);
    original_ = Read(drawing_);
  }
  static std::string Read(const fs::path& p) { return Bytes(p.string()); }
  int Command(std::vector<std::string> args) {
    args.insert(args.begin(), "render");
    return Run(args);
  }

  std::string drawing_;
  std::string original_;
};

TEST_F(RenderCommandTest, DrawsTheDrawingIntoThePictureFile) {
  RenderRequest request;
  request.drawing = drawing_;
  request.output = (dir_ / "plan.svg").string();
  request.picture.layers = {"Pipes"};
  RenderOutcome outcome = RenderDrawing(request);

  EXPECT_EQ(outcome.elements, 1);
  EXPECT_TRUE(outcome.skipped.empty());
  auto svg = testsupport::ParseSvg(Read(request.output));
  auto lines = svg.root.All("line");
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0]->Attr("stroke"), "#0000ff");
  EXPECT_TRUE(svg.root.All("circle").empty());
  EXPECT_EQ(Read(drawing_), original_);
}

TEST_F(RenderCommandTest, ArgumentsAreCheckedBeforeAnythingIsWritten) {
  std::string out = (dir_ / "out.svg").string();
  EXPECT_EQ(
      Command({drawing_, "-o", out, "--window", "0,0,10", "--size", "300"}), 2);
  EXPECT_NE(err_.str().find("four numbers"), std::string::npos);
  EXPECT_EQ(Command({drawing_, "-o", out, "--window", "0,0,x,10"}), 2);
  EXPECT_EQ(Command({drawing_, "-o", out, "--layers", "Pipes,,0"}), 2);
  EXPECT_EQ(Command({drawing_, "-o", out, "--size", "5"}), 2);
  EXPECT_EQ(Command({drawing_, "-o", (dir_ / "out.dxf").string()}), 2);
  EXPECT_EQ(Command({drawing_}), 2);
  EXPECT_FALSE(fs::exists(out));
  EXPECT_FALSE(fs::exists(dir_ / "out.dxf"));

  // Refusals that depend on the drawing: exit 1 with the reason.
  EXPECT_EQ(Command({drawing_, "-o", out, "--block", "Manhole"}), 1);
  EXPECT_NE(err_.str().find("no block named \"Manhole\""), std::string::npos);
  EXPECT_EQ(Command({(dir_ / "none.dxf").string(), "-o", out}), 1);
  EXPECT_FALSE(fs::exists(out));

  EXPECT_EQ(
      Command({drawing_, "-o", out, "--window", "-1,-1,11,1", "--size", "300"}),
      0);
  EXPECT_NE(out_.str().find("wrote " + out + " (1 elements)"),
            std::string::npos);
  auto svg = testsupport::ParseSvg(Read(out));
  EXPECT_EQ(svg.root.Attr("width"), "300");
  EXPECT_EQ(Read(drawing_), original_);
}

}  // namespace
}  // namespace kestrana::cli
