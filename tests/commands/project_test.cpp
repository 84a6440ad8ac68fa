// Starting a project, the networks of a project, and how every command
// refuses a drawing it cannot work on.
#include "commands/project.h"

#include <gtest/gtest.h>

#include "commands/command.h"
#include "commands/networks.h"
#include "core/general.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "memhost/document.h"
#include "support/project.h"

namespace kestrana::commands {
namespace {

std::string ErrorOf(const std::function<void()>& run) {
  try {
    run();
  } catch (const Error& e) {
    return e.what();
  }
  return "";
}

TEST(RequireProject, RefusesMissingAndNewerProjects) {
  memhost::MemDocument bare;
  EXPECT_EQ(ErrorOf([&] { RequireProject(bare); }),
            "This drawing does not contain a Kestrana project!");
  auto doc = test::NewProjectDocument();
  EXPECT_NO_THROW(RequireProject(*doc));
  test::WriteBareProjectRecord(*doc, "Metric", "2.10");
  std::string error = ErrorOf([&] { RequireProject(*doc); });
  EXPECT_EQ(error, core::NewerProjectMessage("2.10"));
  EXPECT_NE(error.find("Install Kestrana V2.10  or newer"), std::string::npos);
}

TEST(NewProject, OnceOnly) {
  memhost::MemDocument doc;
  EXPECT_THROW(NewProject(doc, {"Imperial"}), OptionError);
  NewProject(doc, {"US"});
  EXPECT_EQ(core::General::GetModelUnits(doc), "US");
  EXPECT_EQ(ErrorOf([&] { NewProject(doc, {"Metric"}); }),
            "This drawing already contains a Kestrana project!");
  EXPECT_EQ(core::General::GetModelUnits(doc), "US");
}

TEST(AddNetwork, ChecksNameAndType) {
  auto doc = test::NewProjectDocument();
  EXPECT_THROW(AddNetwork(*doc, {"Sewer", "gravity"}), OptionError);
  EXPECT_THROW(AddNetwork(*doc, {"", "Gravity"}), InvalidInputError);
  EXPECT_NE(ErrorOf([&] { AddNetwork(*doc, {"A;B", "Gravity"}); }), "");
  EXPECT_NE(ErrorOf([&] { AddNetwork(*doc, {"A=B", "Gravity"}); }), "");
  AddNetwork(*doc, {"Sewer A", "Gravity"});
  EXPECT_EQ(ErrorOf([&] {
              AddNetwork(*doc, {"Sewer A", "Pressure"});
            }),
            "A network named \"Sewer A\" already exists");
  // Its layers would be the same layers: letter case makes no new name.
  EXPECT_EQ(ErrorOf([&] {
              AddNetwork(*doc, {"sewer a", "Pressure"});
            }),
            "A network named \"Sewer A\" already exists (names that differ "
            "only in letter case are the same name)");
  EXPECT_EQ(core::General::GetNetworkNames(*doc),
            (std::vector<std::string>{"Sewer A"}));
  // A drawing that holds both already (as older versions let it): neither
  // is deleted, since the one's filters would take the other's elements.
  core::General::CreateNetworkDefintion(*doc, "sewer a", "Pressure");
  for (const char* name : {"sewer a", "Sewer A"})
    EXPECT_NE(ErrorOf([&] {
                DeleteNetwork(*doc, {name});
              }).find("share their layers"),
              std::string::npos)
        << name;
  EXPECT_EQ(core::General::GetNetworkNames(*doc),
            (std::vector<std::string>{"Sewer A", "sewer a"}));
}

TEST(ListNetworks, CountsElementsPerNetwork) {
  auto doc = test::NewProjectDocument();
  EXPECT_TRUE(ListNetworks(*doc).empty());
  AddNetwork(*doc, {"S", "Gravity"});
  AddNetwork(*doc, {"Water 1", "Pressure"});
  core::General::CreateStandardBlock(*doc, "Node");
  for (int i = 0; i < 2; ++i) {
    host::Entity& pipe =
        doc->ModelSpace().AddLightWeightPolyline({0, 0, 1.0 + i, 0});
    core::Record record = core::Record::WithCodes(core::kPipeRecordCodes);
    record.SetText(core::PipeField::kCombinedLabel,
                   "Pipe;S;P-" + std::to_string(i));
    record.Write(pipe);
  }
  host::Entity& node =
      doc->ModelSpace().InsertBlock({}, "Kestrana_Node", 1, 1, 1, 0);
  core::Record record = core::Record::WithCodes(core::kNodeRecordCodes);
  record.SetText(core::NodeField::kCombinedLabel, "Node;Water 1;N-1");
  record.Write(node);

  std::vector<NetworkInfo> networks = ListNetworks(*doc);
  EXPECT_EQ(networks,
            (std::vector<NetworkInfo>{{"S", "Gravity", 2, 0},
                                      {"Water 1", "Pressure", 0, 1}}));
}

}  // namespace
}  // namespace kestrana::commands
