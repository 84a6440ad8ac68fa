#include <gtest/gtest.h>

#include "core/general.h"
#include "core/pipe_record.h"
#include "core/project_setup.h"
#include "core/record.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile.h"
#include "profile/profile_record.h"
#include "profile/profile_style_record.h"
#include "support/pipe_fixture.h"
#include "support/profile_fixture.h"

namespace kestrana::profile {
namespace {

using core::PipeField;

class ProfileRecords : public ::testing::Test {
 protected:
  void SetUp() override {
    markers_ = core::CreateProjectRecord(*doc_, "Metric");
    sewer_ = test::AddFixtureNetwork(*doc_, "Sewer", "Gravity");
    storm_ = test::AddFixtureNetwork(*doc_, "Storm", "Gravity");
    a_ = &test::AddPipe(*doc_, sewer_, {.label = "P-1", .xy = {0, 0, 10, 0}});
    b_ = &test::AddPipe(*doc_, sewer_, {.label = "P-2", .xy = {20, 0, 10, 0}});
    c_ = &test::AddPipe(*doc_, sewer_, {.label = "P-3", .xy = {20, 0, 30, 0}});
  }
  core::Record RecordOf(const host::Object& object) {
    return core::Record::ReadRequired(object);
  }
  std::string Id(const host::Object& object) {
    return std::to_string(object.ObjectID());
  }
  std::vector<host::Text*> Stamps() {
    std::vector<host::Text*> stamps;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      if (e->Layer() == kStampLayer)
        stamps.push_back(&host::As<host::Text>(*e));
    return stamps;
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      std::make_unique<memhost::MemDocument>();
  core::ProjectMarkers markers_;
  test::FixtureNetwork sewer_, storm_;
  host::LwPolyline *a_ = nullptr, *b_ = nullptr, *c_ = nullptr;
};

TEST_F(ProfileRecords, AProfileRemembersItsInputsAndLinksBack) {
  const std::string block_name = "Kestrana_Profile_Sewer_Main";
  core::General::InitializeBlockDefinition(*doc_, block_name)
      .AddLine({0, 0, 0}, {10, 10, 0});
  auto& block =
      doc_->ModelSpace().InsertBlock({100, 50, 0}, block_name, 1, 1, 1, 0);
  auto& plan =
      doc_->ModelSpace().InsertBlock({0, 0, 0}, block_name, 1, 1, 1, 0);
  ProfileInputs inputs;
  inputs.profile_name = "Main";
  inputs.network_name = "Sewer";
  inputs.network_type = "Gravity";
  inputs.style_name = "Standard";
  inputs.pipes = {";RelatedToP-1;RelatedToP-2",
                  ";RelatedTo" + Id(*a_) + ";RelatedTo" + Id(*b_), ";0;1"};
  inputs.insertion_point = {100, 50, 0};
  inputs.ground_from_surface = true;
  inputs.ground_surface_name = "EG";
  inputs.datum_auto = false;
  inputs.custom_datum_value = 92.5;
  inputs.name_on_plan = true;
  Profile::BuildProfileBlockXData(*doc_, inputs, block, &plan);
  Profile::BuildProfilePlanAnnoBlockXData("Main", "Sewer", block, plan);

  EXPECT_EQ(RecordOf(block).Items(),
            (host::XRecord{
                {1001, "Kestrana"},
                {1000, "Profile;Sewer;Main"},
                {1000, "Profile"},
                {1000, "Gravity"},
                {1000, ";RelatedToP-1;RelatedToP-2"},
                {1000, ";RelatedTo" + Id(*a_) + ";RelatedTo" + Id(*b_)},
                {1000, ";0;1"},
                {1000, ";RelatedToStandard"},
                {1000, ";RelatedTo" + std::to_string(markers_.profile_style)},
                {1000, ";RelatedToMainPlanAnno"},
                {1000, ";RelatedTo" + Id(plan)},
                {1000, "0;92.5"},
                {1000, "1;EG"},
                {1000, "100;50;0"},
                {1000, "1;0"},
                {1070, int16_t{0}}}));
  EXPECT_EQ(RecordOf(plan).Items(),
            (host::XRecord{{1001, "Kestrana"},
                           {1000, "ProfilePlanAnno;Sewer;MainPlanAnno"},
                           {1000, "ProfilePlanAnno"},
                           {1000, ";RelatedToMain"},
                           {1000, ";RelatedTo" + Id(block)}}));

  core::Record style = RecordOf(doc_->ObjectIdToObject(markers_.profile_style));
  EXPECT_EQ(style.Text(ProfileStyleItem::kProfileNames), ";RelatedToMain");
  EXPECT_EQ(style.Text(ProfileStyleItem::kProfileOIDs),
            ";RelatedTo" + Id(block));
  EXPECT_EQ(style.Text(ProfileStyleItem::kProfileNetworks), ";Sewer");
  for (host::LwPolyline* pipe : {a_, b_}) {
    EXPECT_EQ(RecordOf(*pipe).Text(PipeField::kProfileRefs), ";RelatedToMain");
    EXPECT_EQ(RecordOf(*pipe).Text(PipeField::kProfileOIDRefs),
              ";RelatedTo" + Id(block));
  }
  EXPECT_EQ(RecordOf(*c_).Text(PipeField::kProfileRefs), "");

  inputs.style_name = "standard";  // styles are found by their exact name
  EXPECT_THROW(Profile::BuildProfileBlockXData(*doc_, inputs, block, nullptr),
               std::invalid_argument);
  EXPECT_EQ(Profile::GetProfileStyleOID(*doc_, "standard"), "");
  EXPECT_EQ(Profile::GetProfileStyleOID(*doc_, "Standard"),
            std::to_string(markers_.profile_style));
  EXPECT_FALSE(Profile::GetProfileStyleSettings(*doc_, "Other").has_value());
}

TEST_F(ProfileRecords, AFlaggedProfileGetsOneStamp) {
  auto& profile = test::AddProfileBlock(
      *doc_, {.network = "Sewer", .pipes = {a_}, .x = 100, .y = 200});
  Profile::FlagProfileForUpdate(*doc_, Id(profile));
  Profile::FlagProfileForUpdate(*doc_, Id(profile));
  EXPECT_EQ(RecordOf(profile).Int16(ProfileField::kUpdateFlag), 1);
  std::vector<host::Text*> stamps = Stamps();
  ASSERT_EQ(stamps.size(), 1u);
  EXPECT_EQ(stamps[0]->TextString(), "NeedsUpdate");
  const host::BoundingBox frame = profile.GetBoundingBox();
  const host::BoundingBox stamp = stamps[0]->GetBoundingBox();
  EXPECT_GE(stamp.min.x, frame.min.x);
  EXPECT_LE(stamp.max.x, frame.max.x);
  EXPECT_GE(stamp.min.y, frame.min.y);
  EXPECT_LE(stamp.max.y, frame.max.y);
  EXPECT_GT(stamps[0]->Height(), 5.0) << "readable over an 80-high profile";
}

TEST_F(ProfileRecords, CrossingsFlagTheProfilesOfBothPipes) {
  auto& along_a =
      test::AddProfileBlock(*doc_, {.network = "Sewer", .pipes = {a_}});
  auto& along_c = test::AddProfileBlock(
      *doc_, {.name = "Other", .network = "Sewer", .pipes = {c_}});
  auto& along_b = test::AddProfileBlock(
      *doc_, {.name = "Third", .network = "Sewer", .pipes = {b_}});
  types::CrossPoint crossing;
  crossing.Pipe1Label = "P-1";
  crossing.Pipe1OID = Id(*a_);
  crossing.Pipe2OID = Id(*c_);
  Profile::FlagProfilesRelatedToCrossingPoints(*doc_,
                                               {types::CrossPoint{}, crossing});
  EXPECT_EQ(RecordOf(along_a).Int16(ProfileField::kUpdateFlag), 1);
  EXPECT_EQ(RecordOf(along_c).Int16(ProfileField::kUpdateFlag), 1);
  EXPECT_EQ(RecordOf(along_b).Int16(ProfileField::kUpdateFlag), 0);
}

TEST_F(ProfileRecords, ProfilesAreFoundByNetwork) {
  auto& p1 = test::AddProfileBlock(*doc_, {.network = "Sewer", .pipes = {a_}});
  auto& p2 = test::AddProfileBlock(*doc_, {.name = "S", .network = "Storm"});
  auto& p3 = test::AddProfileBlock(*doc_, {.name = "T", .network = "Sewer"});
  EXPECT_EQ(Profile::GetExistingProfileSet(*doc_, "Sewer").Entities(),
            (std::vector<host::Entity*>{&p1, &p3}));
  EXPECT_EQ(Profile::GetExistingProfileSet(*doc_, "Storm").Entities(),
            std::vector<host::Entity*>{&p2});
  EXPECT_EQ(Profile::GetExistingProfileSet(*doc_, "").Count(), 3);
  EXPECT_EQ(Profile::GetExistingProfileSet(*doc_, "Water").Count(), 0);
}

TEST_F(ProfileRecords, AReversedPipeFlipsOnlyItsOwnDirection) {
  auto& profile = test::AddProfileBlock(*doc_, {.network = "Sewer",
                                                .pipes = {a_, b_, c_},
                                                .directions = {"0", "1", "0"}});
  auto directions = [&] {
    return RecordOf(profile).Text(ProfileField::kDirections);
  };
  Profile::ReversePipeDirectionInProfile(*doc_, Id(*b_), Id(profile));
  EXPECT_EQ(directions(), ";0;0;0");
  Profile::ReversePipeDirectionInProfile(*doc_, Id(*a_), Id(profile));
  EXPECT_EQ(directions(), ";1;0;0");
  auto& elsewhere =
      test::AddPipe(*doc_, sewer_, {.label = "X", .xy = {0, 5, 1, 5}});
  Profile::ReversePipeDirectionInProfile(*doc_, Id(elsewhere), Id(profile));
  EXPECT_EQ(directions(), ";1;0;0");
}

TEST_F(ProfileRecords, AMergedPipeKeepsOrTurnsTheOldDirection) {
  // P-1 runs east, P-2 west, P-3 east; merged pipes run east or west.
  auto& east = test::AddPipe(*doc_, sewer_,
                             {.label = "M", .xy = {0, 0, 10, 0, 20, 0, 30, 0}});
  auto& west =
      test::AddPipe(*doc_, sewer_, {.label = "W", .xy = {30, 0, 0, 0}});
  auto merged = [&](const host::LwPolyline& pipe, const host::LwPolyline& old,
                    const char* direction) {
    return Profile::GetMergedPipeDirectionInProfile(*doc_, pipe, Id(old),
                                                    direction);
  };
  EXPECT_EQ(merged(east, *a_, "0"), "0");  // first pipe, same way
  EXPECT_EQ(merged(east, *b_, "1"), "0");  // middle pipe, turned
  EXPECT_EQ(merged(east, *c_, "1"), "1");  // last pipe, same way
  EXPECT_EQ(merged(west, *a_, "0"), "1");
  EXPECT_EQ(merged(west, *b_, "1"), "1");
}

TEST_F(ProfileRecords, APipeLosesAProfileUnlessItIsBeingErased) {
  auto& main = test::AddProfileBlock(
      *doc_, {.name = "Main", .network = "Sewer", .pipes = {a_, b_}});
  auto& side = test::AddProfileBlock(
      *doc_, {.name = "Side", .network = "Sewer", .pipes = {a_}});
  Profile::DeleteProfileReferenceFromPipe(*doc_, "Main", Id(main), Id(*a_), "",
                                          "");
  EXPECT_EQ(RecordOf(*a_).Text(PipeField::kProfileRefs), ";RelatedToSide");
  EXPECT_EQ(RecordOf(*a_).Text(PipeField::kProfileOIDRefs),
            ";RelatedTo" + Id(side));

  const core::Record before = RecordOf(*b_);
  Profile::DeleteProfileReferenceFromPipe(*doc_, "Main", Id(main), Id(*b_),
                                          "17;" + Id(*b_) + ";", "");
  Profile::DeleteProfileReferenceFromPipe(*doc_, "Main", Id(main), Id(*b_), "",
                                          Id(*b_) + ";");
  EXPECT_EQ(RecordOf(*b_).Items(), before.Items());
}

}  // namespace
}  // namespace kestrana::profile
