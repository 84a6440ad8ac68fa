// Deleting a network: everything that belongs to it goes, everything that
// belongs to the others stays and forgets it.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "core/references.h"
#include "crossing/crossing.h"
#include "editing/editing.h"
#include "host/host.h"
#include "library/library.h"
#include "lowhigh/lowhigh.h"
#include "profile/profile.h"
#include "profile/profile_style_record.h"
#include "support/drawn_lines.h"
#include "support/elements.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::core {
namespace {

class DeleteNetwork : public ::testing::Test {
 protected:
  // Three sewers crossed by a main of three pipes (two crossings), low and
  // high points on the main, a profile along each network.
  void SetUp() override {
    doc_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc_, {"Sewer", kGravity});
    commands::AddNetwork(*doc_, {"Water", kPressure});
    Convert({{0, 0, 100, 0}, {100, 0, 200, 0}, {200, 0, 200, 80}}, "Sewer",
            kGravity);
    Convert({{50, -40, 50, 40}, {50, 40, 150, 40}, {150, 40, 150, -40}},
            "Water", kPressure);
    AddProfile("Sewer", "Along the sewer", {"P-1", "P-2"});
    AddProfile("Water", "Along the main", {"P-1", "P-2"});
  }
  void Convert(const std::vector<std::vector<double>>& lines,
               const std::string& network, const std::string& type) {
    test::ConvertDrawn(*doc_, lines, network, type);
  }
  void AddProfile(const std::string& network, const std::string& name,
                  std::vector<std::string> labels) {
    test::ProfileSpec wanted;
    wanted.name = name;
    wanted.network = network;
    wanted.network_type = network == "Sewer" ? kGravity : kPressure;
    for (const std::string& label : labels) {
      wanted.pipes.push_back(&static_cast<host::LwPolyline&>(
          test::ElementLabelled(*doc_, network, "Pipe", label)));
      wanted.directions.push_back("0");
    }
    wanted.y = network == "Sewer" ? 300 : 500;
    test::AddProfileBlock(*doc_, wanted);
  }
  // Every live entity's record, with its network piece of field 1.
  std::vector<std::pair<host::Entity*, Record>> Recorded() {
    std::vector<std::pair<host::Entity*, Record>> out;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      if (auto record = Record::Read(*e)) out.emplace_back(e, *record);
    return out;
  }

  std::unique_ptr<memhost::MemDocument> doc_;
};

TEST_F(DeleteNetwork, NothingOfTheNetworkIsLeft) {
  ASSERT_EQ(crossing::Crossing::GetExistingCrossingPointsSet(*doc_, "").Count(),
            2);
  ASSERT_GT(lowhigh::LowHigh::GetExistingLowHighPointsSet(*doc_, "").Count(),
            0);
  ASSERT_EQ(test::MaterialUses(*doc_, "PVC"), "6");
  doc_->GetLayers().Item("Water - Network").SetLock(true);
  doc_->GetLayers().Item("Sewer - Network").SetLock(true);

  General::DeleteNetwork(*doc_, "Water");

  for (const auto& [entity, record] : Recorded()) {
    const std::string combined = record.Text(PipeField::kCombinedLabel);
    EXPECT_EQ(combined.find(";Water;"), std::string::npos) << combined;
    const std::string type = record.Text(PipeField::kElementType);
    EXPECT_NE(type, "CrossingPointAnnotation");
    EXPECT_NE(type, "CrossingPointLine");
    EXPECT_NE(type, "LowHighPoint");
  }
  for (const char* suffix :
       {" - Network", " - Annotation", " - Arrow", " - Low&High Points"}) {
    EXPECT_EQ(doc_->GetLayers().Find(std::string("Water") + suffix), nullptr)
        << suffix;
  }
  EXPECT_TRUE(doc_->GetLayers().Item("Sewer - Network").Lock());
  EXPECT_EQ(General::GetNetworkNames(*doc_), std::vector<std::string>{"Sewer"});
  EXPECT_EQ(ReadProjectRecord(*doc_).Text(ProjectField::kLowHighNetworks), "");
  EXPECT_EQ(test::MaterialUses(*doc_, "PVC"), "3");
}

TEST_F(DeleteNetwork, TheOtherNetworksKeepTheirsAndForgetIt) {
  ASSERT_EQ(profile::Profile::GetExistingProfileSet(*doc_, "").Count(), 2);
  General::DeleteNetwork(*doc_, "Water");

  host::SelectionSet& pipes =
      General::GetNetworkSet(*doc_, "Sewer", core::network_set::kPipes);
  ASSERT_EQ(pipes.Count(), 3);
  for (host::Entity* pipe : pipes.Entities()) {
    Record record = Record::ReadRequired(*pipe);
    EXPECT_EQ(record.Text(PipeField::kCrossingRefs), "");
    EXPECT_EQ(record.Text(PipeField::kCrossingOIDRefs), "");
    // Links to the sewer's own nodes and annotations still lead somewhere.
    EXPECT_NO_THROW(
        EntityFromReference(*doc_, record.Text(PipeField::kEndNodeOID)));
    EXPECT_NO_THROW(
        EntityFromReference(*doc_, record.Text(PipeField::kAnnotationOIDRef)));
  }
  EXPECT_EQ(
      General::GetNetworkSet(*doc_, "Sewer", core::network_set::kNodes).Count(),
      4);

  // The sewer's profile stays, and the style lists it alone.
  host::SelectionSet& profiles =
      profile::Profile::GetExistingProfileSet(*doc_, "");
  ASSERT_EQ(profiles.Count(), 1);
  const std::string kept = IdText(profiles.Item(0).ObjectID());
  host::Entity* style = nullptr;
  for (const auto& [entity, record] : Recorded())
    if (record.Text(PipeField::kElementType) == "ProfileStylePoint")
      style = entity;
  ASSERT_NE(style, nullptr);
  Record style_record = Record::ReadRequired(*style);
  using profile::ProfileStyleItem;
  EXPECT_EQ(style_record.Text(ProfileStyleItem::kProfileNames),
            ";RelatedToAlong the sewer");
  EXPECT_EQ(style_record.Text(ProfileStyleItem::kProfileOIDs),
            ";RelatedTo" + kept);
  EXPECT_EQ(style_record.Text(ProfileStyleItem::kProfileNetworks), ";Sewer");
}

}  // namespace
}  // namespace kestrana::core
