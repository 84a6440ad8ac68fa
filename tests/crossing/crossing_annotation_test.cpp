#include <gtest/gtest.h>

#include <cmath>

#include "core/general.h"
#include "core/geometry.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/project_setup.h"
#include "core/record.h"
#include "crossing/annotation_texts.h"
#include "crossing/crossing.h"
#include "crossing/crossing_record.h"
#include "host/host.h"
#include "memhost/document.h"
#include "profile/profile_record.h"
#include "support/pipe_fixture.h"
#include "support/profile_fixture.h"

namespace kestrana::crossing {
namespace {

using core::General;
using core::PipeField;
using F = CrossingAnnoField;

// A sewer and a water main crossing at (25, 0): the sewer's invert there is
// 99.75, the main's 98, both 300 mm, so the clearance is 1.45.
class CrossingAnnotations : public ::testing::Test {
 protected:
  void SetUp() override {
    core::CreateProjectRecord(*doc_, "Metric");
    sewer_ = test::AddFixtureNetwork(*doc_, "Sewer", "Gravity");
    water_ = test::AddFixtureNetwork(*doc_, "Water", "Pressure");
    p1_ = &test::AddPipe(*doc_, sewer_,
                         {.label = "P-1",
                          .xy = {0, 0, 100, 0},
                          .start_invert = 100,
                          .end_invert = 99,
                          .span = 300,
                          .rise = 300});
    w1_ = &test::AddPipe(*doc_, water_,
                         {.label = "W-1",
                          .xy = {25, -50, 25, 50},
                          .start_invert = 98,
                          .end_invert = 98,
                          .span = 300,
                          .rise = 300});
  }

  void Build(std::vector<host::Entity*> pipes) {
    host::SelectionSet& set = General::InitializeSelectionSet(*doc_, "Build");
    set.AddItems(pipes);
    Crossing::BuildCrossingPointsAfterImporting(*doc_, set, "Metric");
  }
  std::vector<host::Entity*> Annotations() {
    return Crossing::GetExistingCrossingPointsSet(*doc_, "").Entities();
  }
  host::BlockReference& OnlyAnnotation() {
    std::vector<host::Entity*> all = Annotations();
    EXPECT_EQ(all.size(), 1u);
    return host::As<host::BlockReference>(*all.at(0));
  }
  core::Record RecordOf(const host::Object& object) {
    return core::Record::ReadRequired(object);
  }
  host::Line& LineOf(const core::Record& annotation) {
    std::string ref = annotation.Text(F::kLineOIDRef);
    return host::As<host::Line>(doc_->ObjectIdToObject(
        std::stoi(ref.substr(std::string(";RelatedTo").size()))));
  }
  std::vector<std::string> Texts(const host::BlockReference& annotation) {
    std::vector<std::string> texts;
    for (host::AttributeReference* a : annotation.GetAttributes())
      texts.push_back(a->TextString());
    return texts;
  }
  void SetCrossingField(const std::string& text) {
    core::Record project = core::ReadProjectRecord(*doc_);
    project.SetText(core::ProjectField::kCrossingSettings, text);
    core::WriteProjectRecord(*doc_, project);
  }
  void Apply(bool reset = false) {
    Crossing::ApplyCrossingSettings(
        *doc_, Crossing::GetExistingCrossingPointsSet(*doc_, ""), reset);
  }

  std::unique_ptr<memhost::MemDocument> doc_ =
      std::make_unique<memhost::MemDocument>();
  test::FixtureNetwork sewer_, water_;
  host::LwPolyline* p1_ = nullptr;
  host::LwPolyline* w1_ = nullptr;
};

TEST_F(CrossingAnnotations, AnAnnotationShowsBothPipesWithALeader) {
  Build({p1_});
  host::BlockReference& annotation = OnlyAnnotation();
  EXPECT_EQ(annotation.Name(), core::kCrossingAnnoBlockS2);  // 12 characters
  EXPECT_EQ(annotation.Layer(), core::kCrossingTextLayer);
  EXPECT_EQ(annotation.InsertionPoint(), (host::Point3{45, 20, 0}));
  EXPECT_EQ(
      Texts(annotation),
      (std::vector<std::string>{"Water %%c300", "I.L.= 98.000", "Sewer %%c300",
                                "I.L.= 99.750", "Clearance= 1.450"}));

  core::Record record = RecordOf(annotation);
  ASSERT_EQ(record.Size(), kCrossingAnnoRecordLength);
  host::Line& line = LineOf(record);
  EXPECT_EQ(line.Layer(), core::kCrossingLinesLayer);
  EXPECT_EQ(line.StartPoint(), (host::Point3{25, 0, 0}));
  EXPECT_EQ(line.EndPoint(), (host::Point3{45, 20, 0}));

  const std::string anno_id = std::to_string(annotation.ObjectID());
  const std::string line_id = std::to_string(line.ObjectID());
  EXPECT_EQ(record.Text(F::kCombinedLabel), "CPA;;SewerP-1WaterW-1Annotation");
  EXPECT_EQ(record.Text(F::kElementType), "CrossingPointAnnotation");
  EXPECT_EQ(record.Text(F::kPipe1Net), "Sewer");
  EXPECT_EQ(record.Text(F::kPipe2Net), "Water");
  EXPECT_EQ(record.Text(F::kPipe1LabelRef), ";RelatedToP-1");
  EXPECT_EQ(record.Text(F::kPipe2LabelRef), ";RelatedToW-1");
  EXPECT_EQ(record.Code(F::kPipe1Rise), 1040);
  EXPECT_DOUBLE_EQ(record.Number(F::kPipe2Rise), 0.3);
  EXPECT_EQ(record.Text(F::kPipe1SizeString), "%%c300");
  EXPECT_NEAR(record.Number(F::kClearance), 1.45, 1e-12);
  EXPECT_EQ(record.Text(F::kPipe1OIDRef),
            ";RelatedTo" + std::to_string(p1_->ObjectID()));
  EXPECT_EQ(record.Text(F::kPipe2OIDRef),
            ";RelatedTo" + std::to_string(w1_->ObjectID()));
  EXPECT_EQ(record.Text(F::kLineLabelRef), ";RelatedToSewerP-1WaterW-1Line");
  EXPECT_EQ(record.Text(F::kLineOIDRef), ";RelatedTo" + line_id);
  EXPECT_EQ(record.Text(F::kPoint), "25;0");

  core::Record line_record = RecordOf(line);
  EXPECT_EQ(line_record.Items(),
            (host::XRecord{{1001, "Kestrana"},
                           {1000, "CPL;;SewerP-1WaterW-1Line"},
                           {1000, "CrossingPointLine"},
                           {1000, ";RelatedToSewerP-1WaterW-1Annotation"},
                           {1000, ";RelatedTo" + anno_id}}));
  for (host::LwPolyline* pipe : {p1_, w1_}) {
    core::Record pipe_record = RecordOf(*pipe);
    EXPECT_EQ(pipe_record.Text(PipeField::kCrossingRefs),
              ";RelatedToSewerP-1WaterW-1Annotation");
    EXPECT_EQ(pipe_record.Text(PipeField::kCrossingOIDRefs),
              ";RelatedTo" + anno_id);
  }
  // Every enabled crossing is shown with the threshold of a new project.
  EXPECT_TRUE(annotation.Visible());
  EXPECT_TRUE(line.Visible());
}

TEST_F(CrossingAnnotations, AnnotatedCrossingsAreNotDrawnTwice) {
  Build({p1_});
  Build({w1_, p1_});
  EXPECT_EQ(Annotations().size(), 1u);
  host::SelectionSet& sewer = General::InitializeSelectionSet(*doc_, "Search");
  sewer.AddItems({p1_});
  std::vector<types::CrossPoint> found =
      Crossing::GetCrossingPointsArrayForSetOfPipes(*doc_, sewer);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_TRUE(types::IsNoCrossing(
      Crossing::CheckCrossingPointsDuplication(*doc_, found)[0]));

  // A crossing with a new pipe is drawn.
  auto& w2 =
      test::AddPipe(*doc_, water_, {.label = "W-2", .xy = {60, -5, 60, 5}});
  Build({&w2});
  EXPECT_EQ(Annotations().size(), 2u);
}

TEST_F(CrossingAnnotations, TheBlockGrowsWithTheLongerSizeText) {
  EXPECT_EQ(AnnotationBlockName("Sewer %%c300", "Storm %%c200"),
            core::kCrossingAnnoBlockS2);
  EXPECT_EQ(AnnotationBlockName("A %%c200", "Abc %%c200"),  // 8 and 10
            core::kCrossingAnnoBlockS1);
  EXPECT_EQ(AnnotationBlockName("Ab %%c12345", "A"),
            core::kCrossingAnnoBlockS2);
  EXPECT_EQ(AnnotationBlockName("", "Storm 2 (1500X1000)"),  // 19
            core::kCrossingAnnoBlockS2);
  EXPECT_EQ(AnnotationBlockName("Storm 2 (1500X10000)", ""),  // 20
            core::kCrossingAnnoBlockS3);
  // Letters, not bytes: "Wässer" is six characters.
  EXPECT_EQ(AnnotationBlockName("Wässer %%c3", ""), core::kCrossingAnnoBlockS2);
  EXPECT_EQ(AnnotationBlockName("Wäs %%c300", ""), core::kCrossingAnnoBlockS1);
}

TEST_F(CrossingAnnotations, LevelsAreShownToThreePlaces) {
  AttributeTexts texts = MakeAttributeTexts({"S", "%%c200", 98.12345},
                                            {"W", "%%c150", 97.0005}, 0);
  EXPECT_EQ(texts[static_cast<int>(CrossingAttribute::kPipe1Invert)],
            "I.L.= 98.123");
  EXPECT_EQ(texts[static_cast<int>(CrossingAttribute::kPipe2Invert)],
            "I.L.= 97.000");  // half to even
  EXPECT_EQ(texts[static_cast<int>(CrossingAttribute::kClearance)],
            "Clearance= 0.000");
}

TEST_F(CrossingAnnotations, AnnotationsTurnWithTheUserCoordinateSystem) {
  doc_->SetVariable("UCSXDIR", host::Point3{0, 1, 0});
  doc_->SetVariable("UCSYDIR", host::Point3{-1, 0, 0});
  Build({p1_});
  host::BlockReference& annotation = OnlyAnnotation();
  EXPECT_NEAR(annotation.Rotation(), core::kPi / 2, 1e-9);
  EXPECT_NEAR(annotation.InsertionPoint().x, 5, 1e-6);
  EXPECT_NEAR(annotation.InsertionPoint().y, 20, 1e-6);
  host::Line& line = LineOf(RecordOf(annotation));
  EXPECT_EQ(line.StartPoint(), (host::Point3{25, 0, 0}));
  EXPECT_NEAR(line.EndPoint().x, 5, 1e-6);
  EXPECT_NEAR(line.EndPoint().y, 20, 1e-6);

  // Moved and turned by hand, then put back in place.
  annotation.Move({0, 0, 0}, {7, 3, 0});
  annotation.Rotate(annotation.InsertionPoint(), 0.4);
  line.SetEndPoint({90, 90, 0});
  doc_->SetVariable("UCSXDIR", host::Point3{1, 0, 0});
  doc_->SetVariable("UCSYDIR", host::Point3{0, 1, 0});
  Apply(true);
  EXPECT_NEAR(annotation.Rotation(), 0, 1e-9);
  EXPECT_NEAR(annotation.InsertionPoint().x, 45, 1e-9);
  EXPECT_NEAR(annotation.InsertionPoint().y, 20, 1e-9);
  EXPECT_EQ(line.EndPoint(), (host::Point3{45, 20, 0}));
}

TEST_F(CrossingAnnotations, SettingsListEveryPairOfNetworks) {
  test::AddFixtureNetwork(*doc_, "Storm", "Gravity");
  // A new project shows everything; each network enabled its pairs.
  core::TextTable table = Crossing::GetCrossingSettings(*doc_);
  ASSERT_EQ(table.Rows(), 4);
  EXPECT_EQ(table(0, 0), "-1");
  EXPECT_EQ(table(1, 0) + ":" + table(1, 1) + ":" + table(1, 2),
            "Sewer:Water:1");
  EXPECT_EQ(table(2, 0) + ":" + table(2, 1) + ":" + table(2, 2),
            "Sewer:Storm:1");
  EXPECT_EQ(table(3, 0) + ":" + table(3, 1) + ":" + table(3, 2),
            "Water:Storm:1");

  table(0, 0) = "0.5";
  table(2, 2) = "";
  table(3, 2) = "";
  Crossing::SetCrossingSettings(*doc_, table);
  EXPECT_EQ(core::ReadProjectRecord(*doc_).Text(
                core::ProjectField::kCrossingSettings),
            "0.5;Sewer;Water");

  // Stored pairs are read two pieces at a time: "Water;Storm" below is the
  // end of one pair and the start of the next, not a pair. A network that
  // is gone matches no row and drops out when the settings are stored.
  SetCrossingField("0.2;Sewer;Water;Storm;Gone");
  table = Crossing::GetCrossingSettings(*doc_);
  EXPECT_EQ(table(0, 0), "0.2");
  EXPECT_EQ(table(1, 2), "1");
  EXPECT_EQ(table(2, 2), "");
  EXPECT_EQ(table(3, 2), "");
  Crossing::SetCrossingSettings(*doc_, table);
  EXPECT_EQ(core::ReadProjectRecord(*doc_).Text(
                core::ProjectField::kCrossingSettings),
            "0.2;Sewer;Water");
}

TEST_F(CrossingAnnotations, ThresholdAndPairsDecideWhatIsShown) {
  Build({p1_});
  host::BlockReference& annotation = OnlyAnnotation();
  host::Line& line = LineOf(RecordOf(annotation));
  struct Case {
    std::string settings;
    bool shown;
  };
  // The clearance is 1.45.
  for (const Case& c :
       {Case{"-1;Sewer;Water", true}, Case{"0.5;Sewer;Water", false},
        Case{"2;Water;Sewer", true}, Case{"1.45;Sewer;Water", false},
        Case{"-1", false}, Case{"-1;Sewer;Storm", false},
        Case{";Sewer;Water", false}}) {
    SetCrossingField(c.settings);
    Apply();
    EXPECT_EQ(annotation.Visible(), c.shown) << c.settings;
    EXPECT_EQ(line.Visible(), c.shown) << c.settings;
  }
}

TEST_F(CrossingAnnotations, EditedPipesUpdateTheirCrossings) {
  Build({p1_});
  host::BlockReference& annotation = OnlyAnnotation();
  core::Record water = RecordOf(*w1_);
  water.SetText(PipeField::kCombinedLabel, "Pipe;Water;W-7");
  water.SetReal(PipeField::kStartInvert, 96);
  water.SetReal(PipeField::kEndInvert, 98);  // 97 at the crossing
  water.SetReal(PipeField::kRise, 150);
  water.SetReal(PipeField::kSpan, 150);
  water.Write(*w1_);
  SetCrossingField("2;Sewer;Water");

  Crossing::UpdateCrossingsAfterEditing(*doc_, std::to_string(w1_->ObjectID()));
  core::Record record = RecordOf(annotation);
  EXPECT_EQ(record.Text(F::kCombinedLabel), "CPA;;SewerP-1WaterW-7Annotation");
  EXPECT_EQ(record.Text(F::kPipe2LabelRef), ";RelatedToW-7");
  EXPECT_EQ(record.Text(F::kPipe2SizeString), "%%c150");
  EXPECT_DOUBLE_EQ(record.Number(F::kPipe2Rise), 0.15);
  EXPECT_NEAR(record.Number(F::kClearance), 2.6, 1e-12);  // 99.75 - 97 - 0.15
  EXPECT_EQ(record.Text(F::kLineLabelRef), ";RelatedToSewerP-1WaterW-7Line");
  EXPECT_EQ(RecordOf(LineOf(record)).Text(CrossingLineField::kCombinedLabel),
            "CPL;;SewerP-1WaterW-7Line");
  for (host::LwPolyline* pipe : {p1_, w1_})
    EXPECT_EQ(RecordOf(*pipe).Text(PipeField::kCrossingRefs),
              ";RelatedToSewerP-1WaterW-7Annotation");
  EXPECT_EQ(
      Texts(annotation),
      (std::vector<std::string>{"Water %%c150", "I.L.= 97.000", "Sewer %%c300",
                                "I.L.= 99.750", "Clearance= 2.600"}));
  EXPECT_FALSE(annotation.Visible()) << "2.6 is above the threshold";
}

TEST_F(CrossingAnnotations, DeletingANetworkUnlinksItsCrossings) {
  auto& p2 =
      test::AddPipe(*doc_, sewer_, {.label = "P-2", .xy = {0, 10, 100, 10}});
  Build({p1_, &p2});
  ASSERT_EQ(Annotations().size(), 2u);
  core::Record before = RecordOf(*w1_);
  Crossing::DeleteNetworkCrossings(*doc_, "Water");
  for (host::LwPolyline* pipe : {p1_, &p2}) {
    EXPECT_EQ(RecordOf(*pipe).Text(PipeField::kCrossingRefs), "");
    EXPECT_EQ(RecordOf(*pipe).Text(PipeField::kCrossingOIDRefs), "");
  }
  // The annotations stay for the erasure of the water pipes, which still
  // list them; their lines are gone.
  EXPECT_EQ(RecordOf(*w1_).Items(), before.Items());
  ASSERT_EQ(Annotations().size(), 2u);
  for (host::Entity* annotation : Annotations())
    EXPECT_THROW(LineOf(RecordOf(*annotation)), host::HostError);
  EXPECT_EQ(Crossing::GetExistingCrossingPointsSet(*doc_, "Storm").Count(), 0);
}

TEST_F(CrossingAnnotations, ALinkThatNamesNothingIsTheHostsError) {
  Build({p1_});
  host::BlockReference& annotation = OnlyAnnotation();
  LineOf(RecordOf(annotation)).Delete();
  try {
    Apply();
    FAIL() << "no error";
  } catch (const host::HostError& e) {
    EXPECT_EQ(e.code(), host::ErrorCode::kErased);
  }
  // A damaged record is named rather than read past its end.
  core::Record record = RecordOf(annotation);
  annotation.SetXData(
      host::XRecord(record.Items().begin(), record.Items().begin() + 12));
  try {
    Crossing::UpdateCrossingData(*doc_, annotation);
    FAIL() << "no error";
  } catch (const core::MissingRecordError& e) {
    EXPECT_NE(std::string(e.what()).find("crossing annotation " +
                                         std::to_string(annotation.ObjectID())),
              std::string::npos);
  }
}

TEST_F(CrossingAnnotations, ProfilesAlongCrossedPipesAreFlagged) {
  host::BlockReference& profile =
      test::AddProfileBlock(*doc_, {.network = "Sewer", .pipes = {p1_}});
  host::BlockReference& other = test::AddProfileBlock(
      *doc_, {.name = "Far", .network = "Sewer", .pipes = {}});
  auto flag = [&](host::Entity& block) {
    return RecordOf(block).Int16(profile::ProfileField::kUpdateFlag);
  };
  EXPECT_EQ(flag(profile), 0);
  Build({w1_});
  EXPECT_EQ(flag(profile), 1);
  EXPECT_EQ(flag(other), 0);
}

}  // namespace
}  // namespace kestrana::crossing
