// Annotations and arrows in the drawing: links both ways, applying a style
// again, refreshing after edits and network visibility.
#include <gtest/gtest.h>

#include "core/project_record.h"
#include "styled_project.h"
#include "viewstyle/annotation_record.h"

namespace kestrana::viewstyle::test {
namespace {

using core::NodeField;
using core::PipeField;
using V = std::vector<std::string>;

class Placing : public StyledProject {
 protected:
  void SetUp() override {
    StyledProject::SetUp();
    mh1_ = &sewer_->AddNode("MH-1", 0, 0, 101, 99);
    mh2_ = &sewer_->AddNode("MH-2", 50, 0, 100.5, 98.5);
    p1_ = &sewer_->AddPipe("P-1", {0, 0, 50, 0}, *mh1_, *mh2_,
                           {.start_invert = 99, .end_invert = 98.5});
    w1_ = &water_->AddPipeWithNodes("W-1", {0, 20, 40, 20});
  }
  std::string Id(const host::Object& o) { return core::IdText(o.ObjectID()); }

  host::BlockReference *mh1_, *mh2_;
  host::LwPolyline *p1_, *w1_;
};

TEST_F(Placing, ElementsAndAnnotationsNameEachOther) {
  Apply("Sewer");
  core::Record pipe = RecordOf(*p1_);
  host::BlockReference* annotation = PipeAnnotation(*p1_);
  host::BlockReference* arrow = PipeArrow(*p1_);
  ASSERT_TRUE(annotation && arrow);
  EXPECT_EQ(pipe.Text(PipeField::kAnnotationLabelRef),
            ";RelatedToP-1Annotation");
  EXPECT_EQ(pipe.Text(PipeField::kArrowLabelRef), ";RelatedToP-1Arrow");
  EXPECT_EQ(pipe.Text(PipeField::kAnnotationOIDRef),
            ";RelatedTo" + Id(*annotation));
  EXPECT_EQ(pipe.Text(PipeField::kArrowOIDRef), ";RelatedTo" + Id(*arrow));
  EXPECT_EQ(annotation->Name(), kGravityPipeAttributeBlock);
  EXPECT_EQ(annotation->Layer(), "Sewer - Annotation");
  EXPECT_EQ(arrow->Name(), kDirectionArrowBlock);
  EXPECT_EQ(arrow->Layer(), "Sewer - Arrow");
  EXPECT_EQ(RecordOf(*annotation).Items(),
            (host::XRecord{{1001, "Kestrana"},
                           {1000, ";Sewer;P-1Annotation"},
                           {1000, "Annotation"},
                           {1000, ";RelatedToP-1"},
                           {1000, ";RelatedTo" + Id(*p1_)}}));
  EXPECT_EQ(RecordOf(*arrow).Items(),
            (host::XRecord{{1001, "Kestrana"},
                           {1000, ";Sewer;P-1Arrow"},
                           {1000, "Arrow"},
                           {1000, ";RelatedToP-1"},
                           {1000, ";RelatedTo" + Id(*p1_)}}));
  EXPECT_EQ(Texts(*annotation), (V{"P-1", "%%c200", "S=1.00%"}));

  core::Record node = RecordOf(*mh2_);
  host::BlockReference* node_annotation = NodeAnnotation(*mh2_);
  ASSERT_NE(node_annotation, nullptr);
  EXPECT_EQ(node.Text(NodeField::kAnnotationLabelRef),
            ";RelatedToMH-2Annotation");
  EXPECT_EQ(node_annotation->Name(), kGravityNodeAttributeBlock);
  EXPECT_EQ(RecordOf(*node_annotation).Text(AnnotationField::kElementOIDRef),
            ";RelatedTo" + Id(*mh2_));
  EXPECT_EQ(Texts(*node_annotation), (V{"MH-2", "GL=100.50", "IL=98.50"}));
  // The pipe's other fields are as they were.
  EXPECT_EQ(pipe.Text(PipeField::kStartNodeOID), ";RelatedTo" + Id(*mh1_));
  // The other network is not annotated.
  EXPECT_EQ(PipeAnnotation(*w1_), nullptr);
}

TEST_F(Placing, ApplyingAgainLeavesOneAnnotationPerElement) {
  Apply("Sewer");
  Apply("Water");
  host::BlockReference* first = PipeAnnotation(*p1_);
  host::ObjectId first_id = first->ObjectID();
  Apply("Sewer");
  Apply("Sewer");
  EXPECT_EQ(CountInserts(kGravityPipeAttributeBlock), 1);
  EXPECT_EQ(CountInserts(kGravityNodeAttributeBlock), 2);
  EXPECT_EQ(CountInserts(kDirectionArrowBlock), 1);  // pressure pipes: none
  EXPECT_EQ(CountInserts(kPressurePipeAttributeBlock), 1);
  EXPECT_EQ(CountInserts(kPressureNodeAttributeBlock), 2);
  EXPECT_THROW(doc_->ObjectIdToObject(first_id), host::HostError);
  EXPECT_EQ(
      RecordOf(*PipeAnnotation(*p1_)).Text(AnnotationField::kElementOIDRef),
      ";RelatedTo" + Id(*p1_));
  // Every annotation in the drawing is linked from its element.
  for (host::Entity* e : doc_->ModelSpace().Entities()) {
    std::optional<core::Record> r = core::Record::Read(*e);
    if (!r || r->Text(AnnotationField::kElementType) != kAnnotation) continue;
    auto& owner = doc_->ObjectIdToObject(*core::ParseObjectId(
        r->Text(AnnotationField::kElementOIDRef).substr(10)));
    core::Record element = RecordOf(owner);
    const bool pipe =
        element.Text(PipeField::kElementType).find("Pipe") != std::string::npos;
    EXPECT_EQ(element.Text(pipe ? core::Field(PipeField::kAnnotationOIDRef)
                                : core::Field(NodeField::kAnnotationOIDRef)),
              ";RelatedTo" + Id(*e));
  }
}

TEST_F(Placing, ArrowsFollowTheStyle) {
  SetItem(ArrowField(ElementKind::kGravityPipe), "0");
  Apply("Sewer");
  EXPECT_EQ(RecordOf(*p1_).Text(PipeField::kArrowLabelRef), "");
  EXPECT_EQ(RecordOf(*p1_).Text(PipeField::kArrowOIDRef), "");
  EXPECT_EQ(CountInserts(kDirectionArrowBlock), 0);
  SetItem(ArrowField(ElementKind::kGravityPipe), "1");
  Apply("Sewer");
  EXPECT_EQ(RecordOf(*p1_).Text(PipeField::kArrowLabelRef),
            ";RelatedToP-1Arrow");
  ASSERT_NE(PipeArrow(*p1_), nullptr);
  EXPECT_EQ(CountInserts(kDirectionArrowBlock), 1);
  SetItem(ArrowField(ElementKind::kPressurePipe), "1");
  Apply("Water");
  EXPECT_NE(PipeArrow(*w1_), nullptr);
}

TEST_F(Placing, ASingleLineIsPlacedAboveThePipe) {
  ShowOnly({ItemField(ElementKind::kGravityPipe, PipeItem::kLabel)});
  Apply("Sewer");
  // The definition keeps a lone gravity pipe line below the pipe; placed,
  // it stands one pitch above.
  std::vector<host::AttributeReference*> lines =
      PipeAnnotation(*p1_)->GetAttributes();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0]->TextString(), "P-1");
  EXPECT_NEAR(lines[0]->TextAlignmentPoint().x, 25, 1e-9);
  EXPECT_NEAR(lines[0]->TextAlignmentPoint().y, 3, 1e-9);
}

TEST_F(Placing, AKindShowingNothingGetsABareUnlinkedReference) {
  ShowOnly({ItemField(ElementKind::kGravityPipe, PipeItem::kLabel)});
  Apply("Sewer");
  EXPECT_NE(PipeAnnotation(*p1_), nullptr);
  EXPECT_EQ(RecordOf(*mh1_).Text(NodeField::kAnnotationLabelRef), "");
  EXPECT_EQ(RecordOf(*mh1_).Text(NodeField::kAnnotationOIDRef), "");
  EXPECT_EQ(CountInserts(kGravityNodeAttributeBlock), 2);
  for (host::Entity* e : doc_->ModelSpace().Entities()) {
    if (e->Kind() == host::EntityKind::kBlockReference &&
        host::As<host::BlockReference>(*e).Name() ==
            kGravityNodeAttributeBlock) {
      EXPECT_FALSE(core::Record::Read(*e).has_value());
    }
  }
}

TEST_F(Placing, LayersAreOpenedAndPutBack) {
  host::Layer& annotations = doc_->GetLayers().Item("Sewer - Annotation");
  annotations.SetLock(true);
  host::Layer& zero = doc_->GetLayers().Item("0");
  doc_->SetActiveLayer(zero);
  Apply("Sewer");
  Apply("Sewer");  // deletes the old annotations on the locked layer
  EXPECT_TRUE(annotations.Lock());
  EXPECT_EQ(&doc_->ActiveLayer(), &zero);
  EXPECT_EQ(CountInserts(kGravityPipeAttributeBlock), 1);
}

TEST_F(Placing, NewElementsAreAnnotatedWithTheActiveStyle) {
  SetItem(6, "1;L=; m;1;0");
  StoreStyle();
  host::LwPolyline& pipe =
      sewer_->AddPipe("P-2", {50, 0, 50, 30}, *mh2_, *mh1_);
  doc_->SetActiveLayer(doc_->GetLayers().Item("0"));
  ViewStyle::InsertAnnotationsForNewEntity(*doc_, pipe, 0);
  host::BlockReference* annotation = PipeAnnotation(pipe);
  ASSERT_NE(annotation, nullptr);
  EXPECT_EQ(annotation->Layer(), "Sewer - Annotation");
  EXPECT_EQ(Texts(*annotation), (V{"P-2", "L=30.0 m", "%%c200", "S=0.00%"}));
  EXPECT_EQ(PipeArrow(pipe)->Layer(), "Sewer - Arrow");
  // InsertAnnotations leaves the reference on the current layer.
  host::LwPolyline& third = sewer_->AddPipe("P-3", {0, 0, 0, 30}, *mh1_, *mh2_);
  ViewStyle::InsertAnnotations(*doc_, third, {"a", "b"}, "Sewer", 0, Format());
  EXPECT_EQ(PipeAnnotation(third)->Layer(), "0");
  EXPECT_EQ(Texts(*PipeAnnotation(third)), (V{"a", "b", "", ""}));
  host::Point& marker = doc_->ModelSpace().AddPoint({});
  marker.SetXData({{1001, "Kestrana"}, {1000, "x"}, {1000, "ViewStylePoint"}});
  EXPECT_THROW(
      ViewStyle::InsertAnnotations(*doc_, marker, {"a"}, "Sewer", 0, Format()),
      std::invalid_argument);
}

TEST_F(Placing, ANewElementAndAStyleAppliedAgainDifferOnlyInAttributeLayers) {
  // A new element's annotation is inserted on the user's current layer and
  // only the reference is moved to the annotation layer; applying a style
  // makes the annotation layer current first. So the attributes' layers
  // differ, and nothing else may.
  doc_->GetLayers().Add("Survey");
  doc_->SetActiveLayer(doc_->GetLayers().Item("Survey"));
  struct Shown {
    std::string reference_layer, layer, text, style;
    host::Point3 at;
    double rotation, height;
    host::TextAlignment alignment;
  };
  auto shown = [&](host::Entity& element) {
    host::BlockReference* annotation = element.EntityName() == "LWPOLYLINE"
                                           ? PipeAnnotation(element)
                                           : NodeAnnotation(element);
    EXPECT_NE(annotation, nullptr);
    std::vector<Shown> out;
    for (host::AttributeReference* a : annotation->GetAttributes())
      out.push_back({annotation->Layer(), a->Layer(), a->TextString(),
                     a->StyleName(), a->TextAlignmentPoint(), a->Rotation(),
                     a->Height(), a->Alignment()});
    return out;
  };
  std::vector<host::Entity*> elements = {p1_, mh1_, mh2_};
  ViewStyle::DefineAttributeBlocks(*doc_, Format());
  std::vector<std::vector<Shown>> inserted;
  for (host::Entity* element : elements) {
    ViewStyle::InsertAnnotationsForNewEntity(*doc_, *element, 0);
    inserted.push_back(shown(*element));
  }
  Apply("Sewer");
  for (size_t e = 0; e < elements.size(); ++e) {
    const std::vector<Shown> applied = shown(*elements[e]);
    ASSERT_EQ(applied.size(), inserted[e].size());
    ASSERT_FALSE(applied.empty());
    for (size_t i = 0; i < applied.size(); ++i) {
      const Shown &before = inserted[e][i], &after = applied[i];
      EXPECT_EQ(before.reference_layer, "Sewer - Annotation");
      EXPECT_EQ(after.reference_layer, "Sewer - Annotation");
      EXPECT_EQ(before.layer, "Survey");
      EXPECT_EQ(after.layer, "Sewer - Annotation");
      EXPECT_EQ(before.text, after.text);
      EXPECT_EQ(before.style, after.style);
      EXPECT_EQ(before.at, after.at);
      EXPECT_EQ(before.rotation, after.rotation);
      EXPECT_EQ(before.height, after.height);
      EXPECT_EQ(before.alignment, after.alignment);
    }
  }
  EXPECT_EQ(doc_->ActiveLayer().Name(), "Survey");
}

TEST_F(Placing, RefreshingTextsOnlyOrTextsAndPlaces) {
  StoreStyle();
  Apply("Sewer");
  host::BlockReference* annotation = PipeAnnotation(*p1_);
  host::BlockReference* arrow = PipeArrow(*p1_);
  auto places = [&] {
    std::vector<host::Point3> points{annotation->InsertionPoint(),
                                     arrow->InsertionPoint()};
    for (host::AttributeReference* a : annotation->GetAttributes())
      points.push_back(a->TextAlignmentPoint());
    return points;
  };
  const std::vector<host::Point3> before = places();

  // The pipe is moved and turned; its inverts change.
  p1_->SetCoordinates({0, 0, 0, 40});
  core::Record record = RecordOf(*p1_);
  record.SetReal(PipeField::kEndInvert, 98);
  record.Write(*p1_);
  ViewStyle::UpdateAnnotationsAfterEditing(*doc_, Id(*p1_) + ";", false);
  EXPECT_EQ(Texts(*annotation), (V{"P-1", "%%c200", "S=2.50%"}));
  EXPECT_EQ(places(), before);
  EXPECT_EQ(arrow->Rotation(), 0);

  ViewStyle::UpdateAnnotationsAfterEditing(*doc_, Id(*p1_) + ";", true);
  EXPECT_EQ(annotation->InsertionPoint(), (host::Point3{0, 20, 0}));
  EXPECT_NEAR(arrow->InsertionPoint().y, 20, 1e-12);
  EXPECT_NEAR(arrow->Rotation(), 3.141592654 / 2, 1e-9);
  std::vector<host::AttributeReference*> lines = annotation->GetAttributes();
  // A vertical pipe reads upwards; its upper lines lie to its left.
  EXPECT_NEAR(lines[0]->TextAlignmentPoint().x, -6, 1e-8);
  EXPECT_NEAR(lines[0]->TextAlignmentPoint().y, 20, 1e-8);
  EXPECT_NEAR(lines[2]->TextAlignmentPoint().x, 3, 1e-8);
  EXPECT_NEAR(lines[2]->Rotation(), 3.141592654 / 2, 1e-9);

  // Nodes in the same list; an element without annotation is skipped.
  record = RecordOf(*mh1_);
  record.SetReal(NodeField::kGroundLevel, 102.25);
  record.Write(*mh1_);
  ViewStyle::UpdateAnnotationsAfterEditing(
      *doc_, Id(*mh1_) + ";" + Id(*w1_) + ";", false);
  EXPECT_EQ(Texts(*NodeAnnotation(*mh1_)),
            (V{"MH-1", "GL=102.25", "IL=99.00"}));
  ViewStyle::UpdateAnnotationsAfterEditing(*doc_, "", true);
}

TEST_F(Placing, RefreshingWithMoreTextsThanAttributesFails) {
  Apply("Sewer");
  EXPECT_THROW(ViewStyle::UpdateAnnotationsAttributeBlock(
                   *doc_, *p1_, {"a", "b", "c", "d"}, Format(), false, 0),
               std::out_of_range);
  EXPECT_THROW(ViewStyle::UpdateAnnotationsAttributeBlock(
                   *doc_, *p1_, {"a", "b", "c", "d"}, Format(), true, 0),
               std::out_of_range);
}

TEST_F(Placing, NetworkVisibilityHidesElementsAndAnnotations) {
  Apply("Sewer");
  Apply("Water");
  auto visible = [&](const std::string& network) {
    std::vector<bool> states;
    for (host::Entity* e :
         core::General::GetNetworkSet(*doc_, network, 0).Entities())
      states.push_back(e->Visible());
    return states;
  };
  const size_t sewer_objects = visible("Sewer").size();
  // Two nodes, a pipe, its arrow and three annotations.
  EXPECT_EQ(sewer_objects, 2u + 1 + 1 + 3);
  ViewStyle::ChangeNetworkVisibility(*doc_, "Sewer", 2);
  EXPECT_EQ(visible("Sewer"), std::vector<bool>(sewer_objects, true));

  SetNetworkVisibility(*doc_, "Sewer", false);
  EXPECT_EQ(visible("Sewer"), std::vector<bool>(sewer_objects, false));
  EXPECT_FALSE(PipeAnnotation(*p1_)->Visible());
  EXPECT_EQ(visible("Water"), std::vector<bool>(visible("Water").size(), true));
  EXPECT_EQ(StyleField::Read(*doc_).visibility, "01");
  EXPECT_FALSE(NetworkVisible(*doc_, "Sewer"));
  EXPECT_TRUE(NetworkVisible(*doc_, "Water"));
  SetNetworkVisibility(*doc_, "Water", false);
  SetNetworkVisibility(*doc_, "Sewer", true);
  EXPECT_EQ(StyleField::Read(*doc_).visibility, "10");
  EXPECT_EQ(visible("Sewer"), std::vector<bool>(sewer_objects, true));
  EXPECT_THROW(SetNetworkVisibility(*doc_, "Storm", true),
               std::invalid_argument);
  EXPECT_EQ(StyleField::Read(*doc_).active, "Standard");
}

}  // namespace
}  // namespace kestrana::viewstyle::test
