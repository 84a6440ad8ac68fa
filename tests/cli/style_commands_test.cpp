// View style, visibility and library commands on drawing files, through the
// command line entry.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/command.h"
#include "cli/command_fixture.h"
#include "commands/project.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "dxf/io.h"
#include "support/network_elements.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/view_style.h"

namespace kestrana::cli {
namespace {

namespace fs = std::filesystem;
using core::General;

class StyleCommands : public test::CommandTest {
 protected:
  void SetUp() override {
    CommandTest::SetUp();
    site_ = Path("site.dxf");
    // Two networks with a few elements, nothing annotated yet.
    auto doc = test::NewFullProjectDocument("Metric");
    General::CreateNetworkDefintion(*doc, "Sewer", "Gravity");
    General::CreateNetworkDefintion(*doc, "Water", "Pressure");
    test::NetworkElements sewer(*doc, "Sewer"), water(*doc, "Water");
    host::BlockReference& a = sewer.AddNode("MH-1", 0, 0, 101, 99);
    host::BlockReference& b = sewer.AddNode("MH-2", 40, 30, 100, 98.5);
    host::BlockReference& c = sewer.AddNode("MH-3", 40, 80, 99.8, 98);
    sewer.AddPipe("P-1", {0, 0, 40, 30}, a, b,
                  {.start_invert = 99, .end_invert = 98.5});
    sewer.AddPipe("P-2", {40, 30, 40, 80}, b, c,
                  {.start_invert = 98.5, .end_invert = 98});
    water.AddPipeWithNodes("W-1", {-10, 10, 60, 10});
    dxf::SaveDrawing(*doc, site_);
  }
  void Write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }
  // Runs a command that must fail with `code`, leaving the drawing as it
  // was; answers what it said on stderr.
  std::string Refused(std::vector<std::string> args, int code = 1) {
    const std::string before = Bytes(site_);
    EXPECT_EQ(Run(args), code) << out_.str();
    EXPECT_EQ(Bytes(site_), before);
    return err_.str();
  }
  // Live annotation and arrow references in model space.
  static int Count(host::Document& doc, const std::string& type) {
    int count = 0;
    for (host::Entity* e : doc.ModelSpace().Entities())
      count += General::GetElementType(*e) == type;
    return count;
  }

  std::string site_;
};

TEST_F(StyleCommands, NewProjectsHoldTheStandardStyleAndLibraries) {
  EXPECT_EQ(Run({"style", "list", site_}), 0) << err_.str();
  EXPECT_EQ(out_.str(),
            "  NAME      TEXT STYLE  HEIGHT\n"
            "* Standard  Standard    2\n");
  EXPECT_EQ(Run({"style", "list", site_, "--json"}), 0);
  EXPECT_EQ(out_.str(),
            "[{\"name\": \"Standard\", \"active\": true, \"text_style\": "
            "\"Standard\", \"text_height\": 2}]\n");
  EXPECT_EQ(Run({"info", site_}), 0);
  EXPECT_NE(
      out_.str().find("view styles:\n  active: Standard\n  count: 1\n  names: "
                      "Standard\n"),
      std::string::npos)
      << out_.str();
  EXPECT_EQ(Run({"library", "materials", site_}), 0);
  EXPECT_EQ(out_.str().rfind("MATERIAL        PIPES\nPVC             0\n", 0),
            0u)
      << out_.str();
  EXPECT_EQ(Run({"library", "sizes", site_, "--shape", "Box", "--json"}), 0);
  EXPECT_EQ(
      out_.str().rfind("[{\"shape\": \"box\", \"span\": 600, \"rise\": 600, "
                       "\"pipes\": 0, \"area\": 360000}, ",
                       0),
      0u)
      << out_.str();
  EXPECT_EQ(Run({"library", "sizes", site_}), 0);
  std::istringstream lines(out_.str());
  std::string header, first;
  std::getline(lines, header);
  std::getline(lines, first);
  EXPECT_EQ(header, "SHAPE     SIZE         PIPES  AREA");
  EXPECT_EQ(first, "Circular  100          0      7853.981635");
  Refused({"library", "sizes", site_, "--shape", "Oval"}, 2);
  Refused({"library", "materials", site_, "--shape", "Box"}, 2);
}

TEST_F(StyleCommands, ApplyDrawsOneAnnotationPerElementAndKeepsLocks) {
  {
    auto doc = dxf::LoadDrawing(site_);
    doc->GetLayers().Item("Sewer - Network").SetLock(true);
    dxf::SaveDrawing(*doc, site_);
  }
  ASSERT_EQ(Run({"style", "apply", site_}), 0) << err_.str();
  EXPECT_EQ(out_.str(),
            "applied view style \"Standard\" to \"Sewer\": 5 annotations, 2 "
            "arrows\n"
            "applied view style \"Standard\" to \"Water\": 3 annotations, 0 "
            "arrows\n"
            "wrote " +
                site_ + "\n");
  ASSERT_EQ(Run({"style", "apply", site_}), 0) << err_.str();
  ASSERT_EQ(Run({"style", "apply", site_, "--network", "Sewer"}), 0);
  auto doc = dxf::LoadDrawing(site_);
  EXPECT_EQ(Count(*doc, viewstyle::kAnnotation), 8);
  EXPECT_EQ(Count(*doc, viewstyle::kArrow), 2);
  EXPECT_TRUE(doc->GetLayers().Item("Sewer - Network").Lock());
  // The links read back from the file.
  host::SelectionSet& pipes = General::GetNetworkSet(*doc, "Sewer", 1);
  for (host::Entity* pipe : pipes.Entities()) {
    core::Record record = core::Record::ReadRequired(*pipe);
    host::Object& annotation = doc->ObjectIdToObject(*core::ParseObjectId(
        record.Text(core::PipeField::kAnnotationOIDRef).substr(10)));
    EXPECT_EQ(core::Record::ReadRequired(annotation)
                  .Text(viewstyle::AnnotationField::kElementOIDRef),
              ";RelatedTo" + core::IdText(pipe->ObjectID()));
  }

  EXPECT_EQ(
      Refused({"style", "apply", site_, "--network", "Storm"}),
      "kestrana style apply: the project has no network named \"Storm\"\n");
}

TEST_F(StyleCommands, ExportThenCreateGivesTheSameRecord) {
  const std::string file = Path("standard.style");
  ASSERT_EQ(Run({"style", "export", site_, "Standard", "-o", file}), 0)
      << err_.str();
  ASSERT_EQ(Run({"style", "export", site_, "Standard"}), 0);
  EXPECT_EQ(out_.str(), Bytes(file));
  ASSERT_EQ(Run({"style", "create", site_, "Copy", "--from", file}), 0)
      << err_.str();
  auto doc = dxf::LoadDrawing(site_);
  std::vector<viewstyle::ViewStyleSettings> styles =
      viewstyle::ReadViewStyles(*doc);
  ASSERT_EQ(styles.size(), 2u);
  viewstyle::ViewStyleSettings copy = styles[1];
  EXPECT_EQ(copy[1], "VSCopy");
  copy[1] = styles[0][1];
  EXPECT_EQ(copy, styles[0]);
  ASSERT_EQ(Run({"style", "export", site_, "Copy"}), 0);
  EXPECT_EQ(out_.str(), Bytes(file));

  ASSERT_EQ(Run({"style", "show", site_, "Copy"}), 0);
  EXPECT_EQ(out_.str(), "# view style \"Copy\"\n" + Bytes(file));
  ASSERT_EQ(Run({"style", "show", site_, "Standard", "--json"}), 0);
  EXPECT_NE(out_.str().find("{\"name\": \"Standard\", \"active\": true,"),
            std::string::npos);
  EXPECT_NE(out_.str().find("\"slope\": {\"show\": true, \"prefix\": \"S=\", "
                            "\"suffix\": \"\", \"precision\": 2, \"decimals\": "
                            "0, \"notation\": \"percent\"}"),
            std::string::npos);
  EXPECT_NE(out_.str().find("\"arrow\": {\"show\": true}"), std::string::npos);
}

TEST_F(StyleCommands, ActivatingAndApplyingAnotherStyle) {
  const std::string file = Path("plan.style");
  ASSERT_EQ(Run({"style", "export", site_, "Standard", "-o", file}), 0);
  std::string text = Bytes(file);
  // Lengths on gravity pipes, no arrows.
  text.replace(text.find("length = hide"), 13, "length = show");
  text.replace(text.find("arrow = show"), 12, "arrow = hide");
  Write(file, text);
  ASSERT_EQ(Run({"style", "create", site_, "Plan", "--from", file}), 0);
  ASSERT_EQ(Run({"style", "apply", site_}), 0);
  EXPECT_EQ(Refused({"style", "activate", site_, "Draft"}),
            "kestrana style activate: There is no view style named \"Draft\" "
            "(the drawing has: Standard, Plan)\n");
  ASSERT_EQ(Run({"style", "activate", site_, "Plan"}), 0) << err_.str();
  ASSERT_EQ(Run({"style", "list", site_}), 0);
  EXPECT_NE(out_.str().find("* Plan"), std::string::npos);
  ASSERT_EQ(Run({"style", "apply", site_}), 0);
  auto doc = dxf::LoadDrawing(site_);
  EXPECT_EQ(viewstyle::StyleField::Read(*doc).active, "Plan");
  EXPECT_EQ(Count(*doc, viewstyle::kArrow), 0);
  host::Entity& pipe = *General::GetNetworkSet(*doc, "Sewer", 1).Entities()[0];
  auto& annotation = host::As<host::BlockReference>(doc->ObjectIdToObject(
      *core::ParseObjectId(core::Record::ReadRequired(pipe)
                               .Text(core::PipeField::kAnnotationOIDRef)
                               .substr(10))));
  EXPECT_EQ(annotation.GetAttributes()[1]->TextString(), "L=50.00 m");
}

TEST_F(StyleCommands, BadStyleFilesAndNamesLeaveTheDrawingAlone) {
  const std::string file = Path("s.style");
  ASSERT_EQ(Run({"style", "export", site_, "Standard", "-o", file}), 0);
  const std::string good = Bytes(file);

  EXPECT_EQ(Refused({"style", "create", site_, "A/B", "--from", file}),
            "kestrana style create: The view style name \"A/B\" contains a "
            "character that names cannot hold (: ; \" / \\ > < * | ? , =)\n");
  EXPECT_EQ(Refused({"style", "create", site_, "Standard", "--from", file}),
            "kestrana style create: A view style named \"Standard\" already "
            "exists\n");
  Refused({"style", "create", site_, "", "--from", file}, 1);
  Refused({"style", "create", site_, "X"}, 2);  // no --from

  std::string text = good;
  text.replace(text.find("[gravity node]"), 14, "[gravity nodes]");
  Write(file, text);
  EXPECT_EQ(Refused({"style", "create", site_, "X", "--from", file}),
            "kestrana style create: style file: line 36: unknown section "
            "[gravity nodes]; sections are [gravity pipe], [pressure pipe], "
            "[gravity node] and [pressure node]\n");
  text = good;
  text.erase(text.find("sump = "),
             text.find('\n', text.find("sump = ")) - text.find("sump = ") + 1);
  Write(file, text);
  EXPECT_NE(Refused({"style", "create", site_, "X", "--from", file})
                .find("lacks the gravity node sump item"),
            std::string::npos);
  text = good;
  text.replace(text.find("\"Standard\""), 10, "\"Gothic\"");
  Write(file, text);
  EXPECT_EQ(Refused({"style", "create", site_, "X", "--from", file}),
            "kestrana style create: The drawing has no text style named "
            "\"Gothic\", which the style file names\n");
  EXPECT_NE(Refused({"style", "create", site_, "X", "--from", Path("none")})
                .find("cannot open the view style file"),
            std::string::npos);
  EXPECT_EQ(Refused({"style", "show", site_, "X"}),
            "kestrana style show: There is no view style named \"X\" (the "
            "drawing has: Standard)\n");
  EXPECT_EQ(Run({"style", "export", site_, "X", "-o", Path("x.style")}), 1);
  EXPECT_FALSE(fs::exists(Path("x.style")));
}

TEST_F(StyleCommands, AnActiveStyleWhoseTextStyleIsMissingIsNotApplied) {
  {
    auto doc = dxf::LoadDrawing(site_);
    viewstyle::ViewStyleSettings style =
        viewstyle::StandardViewStyle(true, "Odd");
    style[3] = "Gothic";
    viewstyle::ViewStyle::CreateViewStyle(*doc, style);
    viewstyle::ViewStyle::UpdateMoSpaceXdataForViewStyle(*doc, "Odd", "11");
    dxf::SaveDrawing(*doc, site_);
  }
  EXPECT_EQ(Refused({"style", "apply", site_}),
            "kestrana style apply: The view style \"Odd\" uses the text style "
            "\"Gothic\", which the drawing lacks\n");
  {
    auto doc = dxf::LoadDrawing(site_);
    viewstyle::ViewStyle::UpdateMoSpaceXdataForViewStyle(*doc, "Gone", "11");
    dxf::SaveDrawing(*doc, site_);
  }
  EXPECT_EQ(Refused({"style", "apply", site_}),
            "kestrana style apply: The active view style \"Gone\" is not "
            "stored in the drawing (see style list)\n");
}

TEST_F(StyleCommands, HiddenNetworksStayHiddenWhenRedrawn) {
  ASSERT_EQ(Run({"style", "apply", site_}), 0);
  ASSERT_EQ(Run({"network", "hide", site_, "Sewer"}), 0) << err_.str();
  EXPECT_EQ(out_.str(), "network \"Sewer\" is hidden in " + site_ + "\n");
  ASSERT_EQ(Run({"style", "apply", site_}), 0);
  auto hidden = [&](const std::string& network) {
    auto doc = dxf::LoadDrawing(site_);
    int visible = 0, invisible = 0;
    for (host::Entity* e : General::GetNetworkSet(*doc, network, 0).Entities())
      (e->Visible() ? visible : invisible)++;
    EXPECT_EQ(visible * invisible, 0) << network;  // all one way
    return invisible > 0;
  };
  EXPECT_TRUE(hidden("Sewer"));
  EXPECT_FALSE(hidden("Water"));
  EXPECT_EQ(viewstyle::StyleField::Read(*dxf::LoadDrawing(site_)).visibility,
            "01");
  ASSERT_EQ(Run({"network", "show", site_, "Sewer"}), 0);
  EXPECT_FALSE(hidden("Sewer"));
  EXPECT_EQ(
      Refused({"network", "hide", site_, "Storm"}),
      "kestrana network hide: the project has no network named \"Storm\"\n");
}

TEST_F(StyleCommands, EveryCommandExplainsItself) {
  for (std::vector<std::string> command :
       {std::vector<std::string>{"style", "list"},
        {"style", "show"},
        {"style", "create"},
        {"style", "export"},
        {"style", "activate"},
        {"style", "apply"},
        {"network", "show"},
        {"network", "hide"},
        {"library", "materials"},
        {"library", "sizes"}}) {
    command.push_back("--help");
    EXPECT_EQ(Run(command), 0);
    EXPECT_EQ(
        out_.str().rfind(
            "Usage: kestrana " + command[0] + " " + command[1] + " DRAWING", 0),
        0u)
        << out_.str();
  }
}

}  // namespace
}  // namespace kestrana::cli
