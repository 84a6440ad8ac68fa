#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "core/general.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/project_record.h"
#include "core/record.h"
#include "memhost/document.h"
#include "support/project.h"

namespace kestrana::core {
namespace {

using memhost::MemDocument;

class NetworkTest : public ::testing::Test {
 protected:
  std::unique_ptr<MemDocument> doc_ = test::NewProjectDocument();

  std::string Field(ProjectField field) {
    return ReadProjectRecord(*doc_).Text(field);
  }
  void SetField(ProjectField field, const std::string& text) {
    Record record = ReadProjectRecord(*doc_);
    record.SetText(field, text);
    WriteProjectRecord(*doc_, record);
  }
  host::Layer* FindLayer(const std::string& name) {
    return doc_->GetLayers().Find(name);
  }
};

TEST_F(NetworkTest, DefinitionsAreKeptInStepAcrossFields) {
  General::CreateNetworkDefintion(*doc_, "A", "Gravity");
  General::CreateNetworkDefintion(*doc_, "B", "Pressure");
  General::CreateNetworkDefintion(*doc_, "C", "Gravity");
  EXPECT_EQ(Field(ProjectField::kNetworkNames), "A;B;C;");
  EXPECT_EQ(Field(ProjectField::kNetworkTypes), "Gravity;Pressure;Gravity;");
  EXPECT_EQ(Field(ProjectField::kViewStyles), "Standard;111;");
  EXPECT_EQ(Field(ProjectField::kCrossingSettings), ";B;A;C;A;C;B");
  EXPECT_EQ(Field(ProjectField::kLowHighNetworks), "B;");

  General::DeleteNetworkDefintion(*doc_, "B");
  EXPECT_EQ(Field(ProjectField::kNetworkNames), "A;C;");
  EXPECT_EQ(Field(ProjectField::kNetworkTypes), "Gravity;Gravity;");
  EXPECT_EQ(Field(ProjectField::kViewStyles), "Standard;11;");
  EXPECT_EQ(Field(ProjectField::kCrossingSettings), ";C;A");
  EXPECT_EQ(Field(ProjectField::kLowHighNetworks), "");
}

TEST_F(NetworkTest, VisibilityFollowsThePositionOfTheNetwork) {
  SetField(ProjectField::kViewStyles, "Plan;;2130000007;2130000009;");
  SetField(ProjectField::kCrossingSettings, "0.5");
  for (const char* name : {"W1", "W2", "S1"})
    General::CreateNetworkDefintion(*doc_, name, "Pressure");
  EXPECT_EQ(Field(ProjectField::kViewStyles),
            "Plan;111;2130000007;2130000009;");
  EXPECT_EQ(Field(ProjectField::kCrossingSettings), "0.5;W2;W1;S1;W1;S1;W2");
  SetField(ProjectField::kViewStyles, "Plan;101;2130000007;2130000009;");
  General::DeleteNetworkDefintion(*doc_, "W2");
  EXPECT_EQ(Field(ProjectField::kViewStyles), "Plan;11;2130000007;2130000009;");
  EXPECT_EQ(Field(ProjectField::kCrossingSettings), "0.5;S1;W1");
  EXPECT_EQ(Field(ProjectField::kLowHighNetworks), "W1;S1;");
  General::DeleteNetworkDefintion(*doc_, "W1");
  EXPECT_EQ(Field(ProjectField::kViewStyles), "Plan;1;2130000007;2130000009;");
  EXPECT_EQ(Field(ProjectField::kCrossingSettings), "0.5");
}

TEST_F(NetworkTest, DeletingAnUnknownNetworkChangesNothing) {
  General::CreateNetworkDefintion(*doc_, "A", "Gravity");
  host::XRecord before = ReadProjectRecord(*doc_).Items();
  EXPECT_THROW(General::DeleteNetworkDefintion(*doc_, "a"),
               std::invalid_argument);
  EXPECT_EQ(ReadProjectRecord(*doc_).Items(), before);
}

TEST_F(NetworkTest, ListsAndLookups) {
  TextTable none = General::GetNetworkDefinitions(*doc_);
  ASSERT_EQ(none.Rows(), 1);
  EXPECT_EQ(none(0, 0), "");
  EXPECT_EQ(none(0, 1), "");
  EXPECT_EQ(General::GetNetworkNames(*doc_), std::vector<std::string>{""});
  EXPECT_FALSE(General::CheckNetworkExists(*doc_, ""));

  General::CreateNetworkDefintion(*doc_, "Sewer A", "Gravity");
  General::CreateNetworkDefintion(*doc_, "Water 1", "Pressure");
  TextTable table = General::GetNetworkDefinitions(*doc_);
  ASSERT_EQ(table.Rows(), 2);
  EXPECT_EQ(table(1, 0), "Water 1");
  EXPECT_EQ(table(1, 1), "Pressure");
  EXPECT_EQ(General::GetNetworkNames(*doc_),
            (std::vector<std::string>{"Sewer A", "Water 1"}));
  EXPECT_TRUE(General::CheckNetworkExists(*doc_, "Water 1"));
  EXPECT_FALSE(General::CheckNetworkExists(*doc_, "water 1"));
  EXPECT_FALSE(General::CheckNetworkExists(*doc_, ""));
}

TEST_F(NetworkTest, NetworkLayersAndColours) {
  General::CreateNetworkDefintion(*doc_, "S", "Gravity");
  General::CreateNetworkDefintion(*doc_, "W", "Pressure");
  EXPECT_EQ(FindLayer("S - Network")->TrueColor(), 6);
  EXPECT_EQ(FindLayer("W - Network")->TrueColor(), 4);
  EXPECT_EQ(FindLayer("W - Annotation")->TrueColor(), 3);
  EXPECT_EQ(FindLayer("W - Arrow")->TrueColor(), 4);
  EXPECT_EQ(FindLayer("W - Low&High Points"), nullptr);

  host::Layer& low_high =
      General::CreateStandardLayer(*doc_, "W", "LowHighPoint");
  EXPECT_EQ(low_high.Name(), "W - Low&High Points");
  EXPECT_EQ(low_high.TrueColor(), 7);
  EXPECT_EQ(General::CreateStandardLayer(*doc_, "", "CrossingPointLine").Name(),
            "Crossing Point Annotation Lines");
  EXPECT_EQ(FindLayer("Crossing Point Annotation Lines")->TrueColor(), 2);
  EXPECT_EQ(
      General::CreateStandardLayer(*doc_, "x", "CrossingPointText").Name(),
      "Crossing Point Annotation Text");
  EXPECT_THROW(General::CreateStandardLayer(*doc_, "W", "Profile"),
               std::invalid_argument);
}

TEST_F(NetworkTest, AnExistingLayerKeepsItsColour) {
  doc_->GetLayers().Add("S - Network").SetTrueColor(1);
  host::Layer& layer = General::CreateStandardLayer(*doc_, "S", "Network");
  EXPECT_EQ(layer.TrueColor(), 1);
  General::SetLayerColor(*doc_, "S - Network", "6");
  EXPECT_EQ(layer.TrueColor(), 6);
  EXPECT_THROW(General::SetLayerColor(*doc_, "missing", "1"), host::HostError);
}

TEST_F(NetworkTest, DeletingLayersSkipsWhatCannotGo) {
  General::CreateNetworkDefintion(*doc_, "S", "Gravity");
  doc_->ModelSpace().AddLine({}, {1, 0, 0}).SetLayer("S - Network");
  doc_->SetActiveLayer(*FindLayer("S - Arrow"));
  General::DeleteNetworkLayers(*doc_, "S");
  EXPECT_NE(FindLayer("S - Network"), nullptr);  // in use
  EXPECT_EQ(FindLayer("S - Annotation"), nullptr);
  EXPECT_NE(FindLayer("S - Arrow"), nullptr);  // current
}

TEST_F(NetworkTest, OpenAndRestoreLayers) {
  host::Layer& a = doc_->GetLayers().Add("A");
  host::Layer& b = doc_->GetLayers().Add("B");
  a.SetFreeze(true);
  a.SetLock(true);
  b.SetLock(true);
  doc_->SetActiveLayer(b);
  std::vector<LayerStatus> status =
      General::OpenLayerForWrite(*doc_, "A;Missing;B");
  ASSERT_EQ(status.size(), 3u);
  EXPECT_EQ(status[0], (LayerStatus{"A", true, true}));
  EXPECT_EQ(status[1], LayerStatus{});
  EXPECT_EQ(status[2], (LayerStatus{"B", false, true}));
  EXPECT_FALSE(a.Freeze());
  EXPECT_FALSE(a.Lock());
  EXPECT_FALSE(b.Lock());
  General::RestoreLayerStatus(*doc_, status);
  EXPECT_TRUE(a.Freeze());
  EXPECT_TRUE(a.Lock());
  EXPECT_TRUE(b.Lock());
  EXPECT_FALSE(b.Freeze());
}

TEST_F(NetworkTest, UnlockAndRelockAllLayers) {
  EXPECT_EQ(General::UnlockAllLayers(*doc_), std::vector<std::string>{""});
  General::RestoreLockedLayers(*doc_, {""});
  host::Layer& a = doc_->GetLayers().Add("A");
  host::Layer& b = doc_->GetLayers().Add("B");
  host::Layer& c = doc_->GetLayers().Add("C");
  a.SetLock(true);
  c.SetLock(true);
  std::vector<std::string> locked = General::UnlockAllLayers(*doc_);
  EXPECT_EQ(locked, (std::vector<std::string>{"A", "C"}));
  EXPECT_FALSE(a.Lock() || c.Lock());
  General::RestoreLockedLayers(*doc_, locked);
  EXPECT_TRUE(a.Lock() && c.Lock());
  EXPECT_FALSE(b.Lock());
}

TEST_F(NetworkTest, BlockDefinitions) {
  EXPECT_FALSE(General::CheckBlockExists(*doc_, "*Model_Space"));
  EXPECT_FALSE(General::CheckBlockExists(*doc_, "P"));
  host::Block& block = General::InitializeBlockDefinition(*doc_, "P");
  EXPECT_EQ(block.Origin(), host::Point3{});
  block.AddLine({}, {1, 0, 0});
  block.AddCircle({}, 2);
  EXPECT_TRUE(General::CheckBlockExists(*doc_, "P"));
  EXPECT_FALSE(General::CheckBlockExists(*doc_, "p"));
  host::Block& again = General::InitializeBlockDefinition(*doc_, "P");
  EXPECT_EQ(&again, &block);
  EXPECT_EQ(again.Count(), 0);
  EXPECT_TRUE(again.Entities().empty());
}

struct Extent {
  double radius;
  int color;
  std::string layer;
  bool operator<(const Extent& o) const { return radius < o.radius; }
};

std::vector<Extent> Circles(host::Block& block) {
  std::vector<Extent> circles;
  for (host::Entity* e : block.Entities())
    if (auto* c = dynamic_cast<host::Circle*>(e)) {
      EXPECT_EQ(c->Center(), host::Point3{});
      circles.push_back({c->Radius(), c->TrueColor(), c->Layer()});
    }
  return circles;
}

TEST_F(NetworkTest, NodeBlockIsAFilledCircleOnLayerZero) {
  doc_->SetActiveLayer(doc_->GetLayers().Add("Work"));
  General::CreateStandardBlock(*doc_, "Node");
  host::Block& node = doc_->GetBlocks().Item("Kestrana_Node");
  std::vector<Extent> circles = Circles(node);
  ASSERT_EQ(circles.size(), 1u);
  EXPECT_EQ(circles[0].radius, 0.5);
  EXPECT_EQ(circles[0].layer, "0");
  std::vector<host::Entity*> entities = node.Entities();
  ASSERT_EQ(entities.size(), 2u);
  auto* hatch = dynamic_cast<host::Hatch*>(entities[1]);
  ASSERT_NE(hatch, nullptr);
  EXPECT_EQ(hatch->PatternName(), "SOLID");
  EXPECT_EQ(hatch->PatternType(), 1);
  EXPECT_TRUE(hatch->AssociativeHatch());
  EXPECT_EQ(hatch->Layer(), "0");
  EXPECT_EQ(hatch->NumberOfLoops(), 1);
  EXPECT_EQ(doc_->ActiveLayer().Name(), "Work");

  // An existing block is not touched.
  node.AddLine({}, {1, 1, 0});
  General::CreateStandardBlock(*doc_, "Node");
  EXPECT_EQ(node.Count(), 3);
}

TEST(StandardBlocks, SizesFollowTheUnits) {
  auto doc = test::NewProjectDocument("US");
  General::CreateStandardBlock(*doc, "Node");
  General::CreateStandardBlock(*doc, "LowHighPoint");
  EXPECT_EQ(Circles(doc->GetBlocks().Item("Kestrana_Node"))[0].radius, 1.5);
  std::vector<Extent> low = Circles(doc->GetBlocks().Item("Kestrana_LowPoint"));
  std::vector<Extent> high =
      Circles(doc->GetBlocks().Item("Kestrana_HighPoint"));
  ASSERT_EQ(low.size(), 4u);
  ASSERT_EQ(high.size(), 4u);
  std::sort(low.begin(), low.end());
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(low[i].radius, 3.0 * (i + 1));
    EXPECT_EQ(low[i].color, 1);
    EXPECT_EQ(low[i].layer, "0");
    EXPECT_EQ(high[i].color, 3);
  }
  General::CreateStandardBlock(*doc, "Unknown");
  EXPECT_EQ(doc->GetBlocks().Find("Kestrana_CrossingAnno_S1"), nullptr);
}

TEST_F(NetworkTest, CrossingAnnotationBlocks) {
  host::Layer& lines = doc_->GetLayers().Add("Crossing Point Annotation Lines");
  lines.SetLock(true);
  lines.SetFreeze(true);
  General::CreateStandardBlock(*doc_, "CrossingPoint");
  EXPECT_EQ(doc_->ActiveLayer().Name(), "0");
  EXPECT_TRUE(lines.Lock());
  EXPECT_TRUE(lines.Freeze());
  EXPECT_EQ(lines.TrueColor(), 7);  // an existing layer keeps its colour
  EXPECT_EQ(FindLayer("Crossing Point Annotation Text")->TrueColor(), 3);

  host::Block& s2 = doc_->GetBlocks().Item("Kestrana_CrossingAnno_S2");
  std::vector<host::Entity*> entities = s2.Entities();
  ASSERT_EQ(entities.size(), 12u);
  const double w = 48.5, d = 29.5;
  const double expected[7][4] = {{0, 0, 0, 12}, {0, 12, w, 12}, {w, 12, w, 0},
                                 {w, 0, 0, 0},  {0, 8, w, 8},   {0, 4, w, 4},
                                 {d, 12, d, 4}};
  for (int i = 0; i < 7; ++i) {
    auto& line = host::As<host::Line>(*entities[i]);
    EXPECT_EQ(line.StartPoint(),
              (host::Point3{expected[i][0], expected[i][1], 0}));
    EXPECT_EQ(line.EndPoint(),
              (host::Point3{expected[i][2], expected[i][3], 0}));
    EXPECT_EQ(line.Layer(), "Crossing Point Annotation Lines");
  }
  const char* prompts[5] = {"1st Pipe Size", "1st Pipe Invert", "2nd Pipe Size",
                            "2nd Pipe Invert", "Clearance"};
  const host::Point3 at[5] = {{1.25, 9, 0},
                              {d + 1.25, 9, 0},
                              {1.25, 5, 0},
                              {d + 1.25, 5, 0},
                              {w / 2 - 10, 1, 0}};
  std::set<std::string> tags;
  for (int i = 0; i < 5; ++i) {
    auto& attribute = host::As<host::AttributeDefinition>(*entities[7 + i]);
    EXPECT_EQ(attribute.PromptString(), prompts[i]);
    EXPECT_EQ(attribute.InsertionPoint(), at[i]);
    EXPECT_EQ(attribute.Height(), 2);
    EXPECT_EQ(attribute.Mode(), 0);
    EXPECT_EQ(attribute.TextString(), "");
    EXPECT_EQ(attribute.Layer(), "Crossing Point Annotation Text");
    tags.insert(attribute.TagString());
  }
  EXPECT_EQ(tags.size(), 5u);

  auto& s1_first = host::As<host::AttributeDefinition>(
      *doc_->GetBlocks().Item("Kestrana_CrossingAnno_S1").Entities()[7]);
  EXPECT_EQ(s1_first.PromptString(), "stPipeSize");
  auto& s3_divider = host::As<host::Line>(
      *doc_->GetBlocks().Item("Kestrana_CrossingAnno_S3").Entities()[6]);
  EXPECT_EQ(s3_divider.StartPoint(), (host::Point3{39.5, 12, 0}));
  auto& s3_top = host::As<host::Line>(
      *doc_->GetBlocks().Item("Kestrana_CrossingAnno_S3").Entities()[1]);
  EXPECT_EQ(s3_top.EndPoint(), (host::Point3{58.5, 12, 0}));
}

// A drawing with two networks whose names differ only where a wild card
// would match both.
class NetworkSetTest : public NetworkTest {
 protected:
  void SetUp() override {
    General::CreateNetworkDefintion(*doc_, "N.1", "Gravity");
    General::CreateNetworkDefintion(*doc_, "N-1", "Gravity");
    General::CreateStandardBlock(*doc_, "Node");
    anno_ = &doc_->ModelSpace().AddLine({}, {1, 0, 0});
    arrow_ = &doc_->ModelSpace().AddLine({}, {2, 0, 0});
    p1_ = &AddPipe("N.1", "P-1", anno_->ObjectID(), arrow_->ObjectID());
    p2_ = &AddPipe("N.1", "P-2", 0, 0);
    other_ = &AddPipe("N-1", "P-1", 0, 0);
    n1_ = &AddNode("N.1", "N-1", anno_->ObjectID());
    other_node_ = &AddNode("N-1", "N-1", 0);
  }

  host::Entity& AddPipe(const std::string& net, const std::string& label,
                        host::ObjectId anno, host::ObjectId arrow) {
    host::Entity& pipe =
        doc_->ModelSpace().AddLightWeightPolyline({0, 0, 5, 5});
    Record record = Record::WithCodes(kPipeRecordCodes);
    record.SetText(PipeField::kCombinedLabel, "Pipe;" + net + ";" + label);
    record.SetText(PipeField::kElementType, "GravityPipe");
    if (anno)
      record.SetText(PipeField::kAnnotationOIDRef,
                     ReferenceEntry(IdText(anno)));
    if (arrow)
      record.SetText(PipeField::kArrowOIDRef, ReferenceEntry(IdText(arrow)));
    record.Write(pipe);
    return pipe;
  }
  host::Entity& AddNode(const std::string& net, const std::string& label,
                        host::ObjectId anno) {
    host::Entity& node =
        doc_->ModelSpace().InsertBlock({5, 5, 0}, "Kestrana_Node", 1, 1, 1, 0);
    Record record = Record::WithCodes(kNodeRecordCodes);
    record.SetText(NodeField::kCombinedLabel, "Node;" + net + ";" + label);
    if (anno)
      record.SetText(NodeField::kAnnotationOIDRef,
                     ReferenceEntry(IdText(anno)));
    record.Write(node);
    return node;
  }
  std::set<host::Entity*> Members(int option) {
    auto entities = General::GetNetworkSet(*doc_, "N.1", option).Entities();
    return {entities.begin(), entities.end()};
  }

  host::Entity *anno_, *arrow_, *p1_, *p2_, *other_, *n1_, *other_node_;
};

TEST_F(NetworkSetTest, ElementsOfOneNetworkByOption) {
  EXPECT_EQ(Members(1), (std::set<host::Entity*>{p1_, p2_}));
  EXPECT_EQ(Members(2), (std::set<host::Entity*>{n1_}));
  EXPECT_EQ(Members(0),
            (std::set<host::Entity*>{p1_, p2_, n1_, anno_, arrow_}));
  EXPECT_TRUE(Members(3).empty());
  // One set of each name stays in the drawing.
  std::multiset<std::string> names;
  host::SelectionSets& sets = doc_->GetSelectionSets();
  for (int i = 0; i < sets.Count(); ++i) names.insert(sets.Item(i).Name());
  EXPECT_EQ(names,
            (std::multiset<std::string>{"NetworkSet", "NodeSet", "PipeSet"}));
}

TEST_F(NetworkSetTest, StaleBlockReferencesAreSkipped) {
  arrow_->Delete();
  EXPECT_EQ(Members(0), (std::set<host::Entity*>{p1_, p2_, n1_, anno_}));
}

}  // namespace
}  // namespace kestrana::core
