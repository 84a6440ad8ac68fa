// The profile erase reaction: what points at a profile forgets it.
#include <gtest/gtest.h>

#include <string>

#include "commands/networks.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "events/events.h"
#include "host/host.h"
#include "profile/profile_record.h"
#include "profile/profile_style_record.h"
#include "support/network_elements.h"
#include "support/profile_fixture.h"

namespace kestrana::events {
namespace {

using core::PipeField;
using core::Record;

class ProfileErased : public ::testing::Test {
 protected:
  void SetUp() override {
    doc_ = test::NewFullProjectDocument("Metric");
    commands::AddNetwork(*doc_, {"Sewer", core::kGravity});
    test::NetworkElements sewer(*doc_, "Sewer");
    p1_ = &sewer.AddPipeWithNodes("P-1", {0, 0, 50, 0});
    p2_ = &sewer.AddPipeWithNodes("P-2", {50, 0, 90, 0});
    first_ = &Profile("First", true);
    second_ = &Profile("Second", false);
  }
  host::BlockReference& Profile(const std::string& name, bool plan) {
    test::ProfileSpec wanted;
    wanted.name = name;
    wanted.network = "Sewer";
    wanted.pipes = {p1_, p2_};
    wanted.directions = {"0", "0"};
    wanted.plan_annotation = plan;
    return test::AddProfileBlock(*doc_, wanted);
  }
  Record StyleRecord() {
    host::Entity& marker = core::EntityFromReference(
        *doc_, Record::ReadRequired(*first_).Text(
                   profile::ProfileField::kStyleOIDRef));
    return Record::ReadRequired(marker);
  }
  std::string Id(const host::Entity& e) { return core::IdText(e.ObjectID()); }

  std::unique_ptr<memhost::MemDocument> doc_;
  host::LwPolyline* p1_ = nullptr;
  host::LwPolyline* p2_ = nullptr;
  host::BlockReference* first_ = nullptr;
  host::BlockReference* second_ = nullptr;
};

TEST_F(ProfileErased, StylePipesAndPlanAnnotationForgetTheProfile) {
  using profile::ProfileStyleItem;
  ASSERT_EQ(StyleRecord().Text(ProfileStyleItem::kProfileNetworks),
            ";Sewer;Sewer");
  host::Entity& plan = core::EntityFromReference(
      *doc_, Record::ReadRequired(*first_).Text(
                 profile::ProfileField::kPlanAnnoOIDRef));

  // The second pipe is about to be erased too: it keeps its lists.
  Events::ProfileWillBeErased(*doc_, *first_, "", ";" + Id(*p2_) + ";");

  Record style = StyleRecord();
  EXPECT_EQ(style.Text(ProfileStyleItem::kProfileNames), ";RelatedToSecond");
  EXPECT_EQ(style.Text(ProfileStyleItem::kProfileOIDs),
            ";RelatedTo" + Id(*second_));
  EXPECT_EQ(style.Text(ProfileStyleItem::kProfileNetworks), ";Sewer");
  Record pipe1 = Record::ReadRequired(*p1_);
  EXPECT_EQ(pipe1.Text(PipeField::kProfileRefs), ";RelatedToSecond");
  EXPECT_EQ(pipe1.Text(PipeField::kProfileOIDRefs),
            ";RelatedTo" + Id(*second_));
  EXPECT_EQ(Record::ReadRequired(*p2_).Text(PipeField::kProfileRefs),
            ";RelatedToFirst;RelatedToSecond");
  EXPECT_THROW(plan.Layer(), host::HostError);  // erased
}

TEST_F(ProfileErased, APlanAnnotationAboutToGoIsLeftToItsErasure) {
  const std::string plan_id =
      core::ReferenceValues(Record::ReadRequired(*first_).Text(
                                profile::ProfileField::kPlanAnnoOIDRef))
          .front();
  Events::ProfileWillBeErased(*doc_, *first_, "", plan_id + ";");
  EXPECT_NO_THROW(core::EntityFromIdText(*doc_, plan_id));
}

}  // namespace
}  // namespace kestrana::events
