#include "memhost/document.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/host_errors.h"

namespace kestrana::memhost {
namespace {

using host::ErrorCode;
using host::Filter;
using host::HostError;
using host::XItem;
using host::XRecord;

XRecord Record(const std::string& app, std::vector<XItem> items) {
  XRecord r{{1001, app}};
  r.insert(r.end(), items.begin(), items.end());
  return r;
}

using test::CodeOf;

class DocumentTest : public ::testing::Test {
 protected:
  MemDocument doc;
  host::Block& ms = doc.ModelSpace();

  std::vector<host::ObjectId> SelectIds(const Filter& filter) {
    std::vector<host::ObjectId> ids;
    for (MemEntity* e : doc.SelectAll(filter)) ids.push_back(e->Id());
    return ids;
  }
};

TEST_F(DocumentTest, FiltersTestTypeLayerBlockAndXData) {
  doc.GetLayers().Add("Sewer - Network");
  auto& pipe = ms.AddLightWeightPolyline({0, 0, 10, 0});
  pipe.SetLayer("Sewer - Network");
  pipe.SetXData(Record("Kestrana", {{1000, "Pipe;Sewer;P-1"},
                                    {1000, "GravityPipe"},
                                    {1040, 200.0},
                                    {1070, int16_t{1}}}));
  auto& line = ms.AddLine({0, 0, 0}, {1, 1, 0});
  line.SetXData(Record("Other", {{1000, "Pipe;Sewer;P-9"}}));
  auto& pline2 = ms.AddLightWeightPolyline({0, 5, 10, 5});
  pline2.SetXData(
      Record("Kestrana", {{1000, "Pipe;Water;P-1"}, {1000, "PressurePipe"}}));

  EXPECT_EQ(SelectIds({{0, "LWPOLYLINE"}}),
            (std::vector<host::ObjectId>{pipe.ObjectID(), pline2.ObjectID()}));
  EXPECT_EQ(SelectIds({{8, "sewer - *"}}),
            (std::vector<host::ObjectId>{pipe.ObjectID()}));
  // A text test passes on any text of the record of the named application.
  EXPECT_EQ(SelectIds({{1001, "Kestrana"}, {1000, "GravityPipe"}}),
            (std::vector<host::ObjectId>{pipe.ObjectID()}));
  EXPECT_EQ(SelectIds({{1001, "Kestrana"}, {1000, "Pipe;Sewer;*"}}),
            (std::vector<host::ObjectId>{pipe.ObjectID()}));
  // The other application's record does not count for "Kestrana".
  EXPECT_TRUE(
      SelectIds({{1001, "Kestrana"}, {1000, "Pipe;Sewer;P-9"}}).empty());
  EXPECT_EQ(SelectIds({{1001, "KESTRANA"}, {1040, 200.0}}),
            (std::vector<host::ObjectId>{pipe.ObjectID()}));
  EXPECT_EQ(SelectIds({{1001, "Kestrana"}, {1070, int16_t{1}}}),
            (std::vector<host::ObjectId>{pipe.ObjectID()}));
  EXPECT_EQ(SelectIds({{1001, "Kestrana"},
                       {0, "LWPOLYLINE"},
                       {-4, "<OR"},
                       {1000, "GravityPipe"},
                       {1000, "PressurePipe"},
                       {-4, "OR>"}}),
            (std::vector<host::ObjectId>{pipe.ObjectID(), pline2.ObjectID()}));
  EXPECT_EQ(
      SelectIds({{-4, "<or"}, {0, "LWPOLYLINE"}, {0, "LINE"}, {-4, "or>"}})
          .size(),
      3u);
}

TEST_F(DocumentTest, NestedGroupsNotAndXor) {
  auto& a = ms.AddLine({0, 0, 0}, {1, 0, 0});
  auto& b = ms.AddCircle({0, 0, 0}, 1);
  auto& c = ms.AddPoint({0, 0, 0});
  doc.GetLayers().Add("X");
  c.SetLayer("X");
  EXPECT_EQ(SelectIds({{-4, "<NOT"}, {0, "LINE"}, {-4, "NOT>"}}),
            (std::vector<host::ObjectId>{b.ObjectID(), c.ObjectID()}));
  EXPECT_EQ(
      SelectIds({{-4, "<XOR"}, {0, "POINT"}, {8, "X"}, {-4, "XOR>"}}).size(),
      0u);
  EXPECT_EQ(SelectIds({{-4, "<XOR"}, {0, "CIRCLE"}, {8, "X"}, {-4, "XOR>"}}),
            (std::vector<host::ObjectId>{b.ObjectID(), c.ObjectID()}));
  EXPECT_EQ(SelectIds({{-4, "<AND"},
                       {-4, "<OR"},
                       {0, "LINE"},
                       {0, "POINT"},
                       {-4, "OR>"},
                       {-4, "<NOT"},
                       {8, "X"},
                       {-4, "NOT>"},
                       {-4, "AND>"}}),
            (std::vector<host::ObjectId>{a.ObjectID()}));
  EXPECT_EQ(CodeOf([&] {
              SelectIds({{-4, "<OR"}, {0, "LINE"}});
            }),
            ErrorCode::kBadArgument);
  EXPECT_EQ(CodeOf([&] {
              SelectIds({{-4, "AND>"}});
            }),
            ErrorCode::kBadArgument);
  EXPECT_EQ(CodeOf([&] {
              SelectIds({{-4, "<NOT"}, {0, "A"}, {0, "B"}, {-4, "NOT>"}});
            }),
            ErrorCode::kBadArgument);
  EXPECT_EQ(CodeOf([&] { SelectIds({{10, 1.0}}); }), ErrorCode::kBadArgument);
}

TEST_F(DocumentTest, IndexedSelectionEqualsPlainScan) {
  // Mixed kinds with and without records; the indexed answer must match a
  // filter evaluated on every entity in drawing order.
  for (int i = 0; i < 300; ++i) {
    host::Entity* e;
    if (i % 3 == 0)
      e = &ms.AddLightWeightPolyline({0.0 + i, 0, 1.0 + i, 1});
    else if (i % 3 == 1)
      e = &ms.AddLine({0, 0, 0}, {1, 1, 0});
    else
      e = &ms.AddCircle({0, 0, 0}, 1);
    if (i % 4 == 0) e->SetXData(Record("Kestrana", {{1000, "GravityPipe"}}));
    if (i % 10 == 0) e->Delete();
  }
  Filter f{{1001, "Kestrana"}, {0, "LWPOLYLINE"}};
  std::vector<host::ObjectId> plain;
  for (host::Entity* e : ms.Entities()) {
    if (e->EntityName() == "LWPOLYLINE" && e->GetXData("Kestrana"))
      plain.push_back(e->ObjectID());
  }
  EXPECT_EQ(SelectIds(f), plain);
  EXPECT_FALSE(plain.empty());
}

TEST_F(DocumentTest, NarrowedSelectionsOfSeveralNamesEqualPlainScan) {
  // ORs of block names and alternatives of types look several index
  // entries up; names differing in Latin-1 letter case are one name to a
  // filter, so the lookups must fold them alike.
  for (const char* name : {"Kestrana_Node", "\xC3\x84rger", "\xC3\xA4rger",
                           "Other"})
    doc.GetBlocks().Add({0, 0, 0}, name);
  for (int i = 0; i < 120; ++i) {
    host::Entity* e;
    switch (i % 5) {
      case 0:
        e = &ms.InsertBlock({0.0 + i, 0, 0}, "Kestrana_Node", 1, 1, 1, 0);
        break;
      case 1:
        e = &ms.InsertBlock({0.0 + i, 0, 0}, "\xC3\x84rger", 1, 1, 1, 0);
        break;
      case 2:
        e = &ms.InsertBlock({0.0 + i, 0, 0}, "\xC3\xA4rger", 1, 1, 1, 0);
        break;
      case 3:
        e = &ms.InsertBlock({0.0 + i, 0, 0}, "Other", 1, 1, 1, 0);
        break;
      default:
        e = &ms.AddLine({0, 0, 0}, {1, 1, 0});
    }
    if (i % 3 != 0) e->SetXData(Record("Kestrana", {{1000, "Node"}}));
    if (i % 7 == 0) e->Delete();
  }
  auto plain = [&](const auto& keep) {
    std::vector<host::ObjectId> ids;
    for (host::Entity* e : ms.Entities())
      if (keep(*e)) ids.push_back(e->ObjectID());
    return ids;
  };
  auto block_of = [](host::Entity& e) {
    auto* ref = dynamic_cast<host::BlockReference*>(&e);
    return ref ? ref->Name() : std::string();
  };
  const auto umlaut = plain([&](host::Entity& e) {
    const std::string b = block_of(e);
    return b == "\xC3\x84rger" || b == "\xC3\xA4rger";
  });
  EXPECT_EQ(SelectIds({{2, "\xC3\xA4RGER"}}), umlaut);
  EXPECT_EQ(umlaut.size(), 41u);
  const auto records_of_two = plain([&](host::Entity& e) {
    const std::string b = block_of(e);
    return e.GetXData("Kestrana") && (b == "Kestrana_Node" || b == "Other");
  });
  EXPECT_EQ(SelectIds({{1001, "Kestrana"},
                       {0, "INSERT"},
                       {-4, "<OR"},
                       {2, "kestrana_node"},
                       {2, "OTHER"},
                       {-4, "OR>"}}),
            records_of_two);
  EXPECT_FALSE(records_of_two.empty());
  EXPECT_EQ(SelectIds({{0, "LINE,INSERT"}}).size(),
            plain([](host::Entity&) { return true; }).size());
  EXPECT_EQ(SelectIds({{0, "LINE,CIRCLE"}}).size(), 20u);
  // An OR with a pattern in it cannot narrow and still answers right.
  EXPECT_EQ(SelectIds({{-4, "<OR"}, {2, "Oth*"}, {2, "Missing"}, {-4, "OR>"}}),
            plain([&](host::Entity& e) { return block_of(e) == "Other"; }));
}

TEST_F(DocumentTest, SelectionsFollowRecordsAddedDroppedAndErasedLater) {
  // Records given to old entities, given twice, dropped, and entities
  // erased in bulk: selections stay in drawing order without repeats.
  std::vector<host::Entity*> lines;
  for (int i = 0; i < 400; ++i)
    lines.push_back(&ms.AddLine({0.0 + i, 0, 0}, {1.0 + i, 1, 0}));
  for (int i = 399; i >= 0; i -= 3)
    lines[i]->SetXData(Record("Kestrana", {{1000, "a"}}));
  for (int i = 0; i < 400; i += 6)
    lines[i]->SetXData(Record("Kestrana", {{1000, "b"}}));
  static_cast<MemLine*>(lines[3])->SetAllXData({});
  for (int i = 0; i < 400; i += 2) lines[i]->Delete();
  std::vector<host::ObjectId> plain;
  for (host::Entity* e : ms.Entities())
    if (e->GetXData("Kestrana")) plain.push_back(e->ObjectID());
  EXPECT_EQ(SelectIds({{1001, "Kestrana"}}), plain);
  EXPECT_EQ(plain.size(), 66u);
  EXPECT_EQ(SelectIds({{0, "LINE"}}).size(), 200u);
  auto& late = ms.AddLine({0, 0, 0}, {1, 0, 0});
  late.SetXData(Record("Kestrana", {{1000, "c"}}));
  EXPECT_EQ(SelectIds({{1001, "Kestrana"}}).back(), late.ObjectID());
}

TEST_F(DocumentTest, LockedLayerRefusesChangesButAllowsCreation) {
  auto& layer = doc.GetLayers().Add("Locked");
  auto& line = ms.AddLine({0, 0, 0}, {1, 0, 0});
  line.SetLayer("Locked");
  layer.SetLock(true);
  EXPECT_EQ(CodeOf([&] {
              line.SetStartPoint({5, 5, 0});
            }),
            ErrorCode::kLockedLayer);
  EXPECT_EQ(CodeOf([&] { line.SetXData(Record("Kestrana", {})); }),
            ErrorCode::kLockedLayer);
  EXPECT_EQ(CodeOf([&] { line.Delete(); }), ErrorCode::kLockedLayer);
  EXPECT_EQ(CodeOf([&] {
              line.Move({0, 0, 0}, {1, 1, 0});
            }),
            ErrorCode::kLockedLayer);
  try {
    line.SetLayer("0");
  } catch (const HostError& e) {
    EXPECT_NE(std::string(e.what()).find("locked layer \"Locked\""),
              std::string::npos);
  }
  // Creating on a locked layer is allowed.
  doc.SetActiveLayer(layer);
  auto& made = ms.AddCircle({0, 0, 0}, 2);
  EXPECT_EQ(made.Layer(), "Locked");
  layer.SetLock(false);
  line.SetStartPoint({5, 5, 0});
  EXPECT_EQ(line.StartPoint().x, 5);
}

TEST_F(DocumentTest, SelectionSetEraseIsAllOrNothing) {
  auto& layer = doc.GetLayers().Add("Locked");
  auto& a = ms.AddLine({0, 0, 0}, {1, 0, 0});
  auto& b = ms.AddLine({0, 0, 0}, {2, 0, 0});
  b.SetLayer("Locked");
  layer.SetLock(true);
  auto& set = doc.GetSelectionSets().Add("S");
  set.AddItems({&a, &b});
  EXPECT_EQ(CodeOf([&] { set.Erase(); }), ErrorCode::kLockedLayer);
  EXPECT_FALSE(a.Erased());
  layer.SetLock(false);
  set.Erase();
  EXPECT_TRUE(a.Erased());
  EXPECT_TRUE(b.Erased());
  EXPECT_EQ(set.Count(), 0);
}

TEST_F(DocumentTest, ErasedObjectsRaiseOnUse) {
  auto& line = ms.AddLine({0, 0, 0}, {1, 0, 0});
  host::ObjectId id = line.ObjectID();
  line.Delete();
  EXPECT_TRUE(line.Erased());
  EXPECT_EQ(CodeOf([&] { line.StartPoint(); }), ErrorCode::kErased);
  EXPECT_EQ(CodeOf([&] { line.GetXData("Kestrana"); }), ErrorCode::kErased);
  EXPECT_EQ(CodeOf([&] { line.Delete(); }), ErrorCode::kErased);
  EXPECT_EQ(CodeOf([&] { doc.ObjectIdToObject(id); }), ErrorCode::kErased);
  EXPECT_EQ(CodeOf([&] { doc.ObjectIdToObject(12345); }),
            ErrorCode::kNoSuchObject);
  EXPECT_EQ(ms.Count(), 0);
  try {
    doc.ObjectIdToObject(2130567256);
  } catch (const HostError& e) {
    EXPECT_STREQ(e.what(), "no object with ID 2130567256");
  }
}

TEST_F(DocumentTest, LayersInUseAndCurrentLayerAreKept) {
  auto& layer = doc.GetLayers().Add("Net - Network");
  auto& line = ms.AddLine({0, 0, 0}, {1, 0, 0});
  line.SetLayer("Net - Network");
  EXPECT_EQ(CodeOf([&] { layer.Delete(); }), ErrorCode::kInUse);
  line.Delete();
  layer.Delete();
  EXPECT_EQ(doc.GetLayers().Find("Net - Network"), nullptr);
  EXPECT_EQ(CodeOf([&] { doc.GetLayers().Item("0").Delete(); }),
            ErrorCode::kInUse);
  EXPECT_EQ(CodeOf([&] {
              ms.AddLine({0, 0, 0}, {1, 0, 0}).SetLayer("Nope");
            }),
            ErrorCode::kNoSuchKey);
  EXPECT_EQ(&doc.GetLayers().Add("0"), &doc.GetLayers().Item("0"));
}

TEST_F(DocumentTest, NamedLookupsFollowDeletionAndRecreation) {
  auto& a = doc.GetLayers().Add("Profile - Data");
  auto& b = doc.GetLayers().Add("Profile - Frame");
  auto& c = doc.GetLayers().Add("Profile - Grid");
  // Alternating lookups, in any letter case, find each layer.
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(doc.GetLayers().Find("profile - data"), &a);
    EXPECT_EQ(doc.GetLayers().Find("PROFILE - FRAME"), &b);
    EXPECT_EQ(doc.GetLayers().Find("Profile - Grid"), &c);
  }
  auto& line = ms.AddLine({0, 0, 0}, {1, 0, 0});
  line.SetLayer("Profile - Frame");
  line.Delete();
  b.Delete();
  EXPECT_EQ(doc.GetLayers().Find("Profile - Frame"), nullptr);
  EXPECT_EQ(CodeOf([&] {
              ms.AddLine({0, 0, 0}, {1, 0, 0}).SetLayer("Profile - Frame");
            }),
            ErrorCode::kNoSuchKey);
  // A new layer of the old name is the one found, and its lock holds.
  auto& again = doc.GetLayers().Add("PROFILE - frame");
  EXPECT_EQ(doc.GetLayers().Find("Profile - Frame"), &again);
  auto& other = ms.AddLine({0, 0, 0}, {1, 0, 0});
  other.SetLayer("Profile - Frame");
  again.SetLock(true);
  EXPECT_EQ(CodeOf([&] { other.Delete(); }), ErrorCode::kLockedLayer);
  EXPECT_EQ(doc.GetLayers().Find("Profile - Data"), &a);
}

TEST_F(DocumentTest, XDataRecordsPerApplication) {
  auto& p = ms.AddPoint({0, 0, 0});
  EXPECT_FALSE(p.GetXData("Kestrana").has_value());
  p.SetXData({{1001, "Kestrana"}});
  ASSERT_TRUE(p.GetXData("Kestrana").has_value());
  EXPECT_EQ(p.GetXData("Kestrana")->size(), 1u);  // present but empty
  p.SetXData(
      Record("Kestrana", {{1000, "a"}, {1040, 2.5}, {1070, int16_t{-3}}}));
  p.SetXData(Record("Other", {{1000, "b"}}));
  auto rec = *p.GetXData("kestrana");
  ASSERT_EQ(rec.size(), 4u);
  EXPECT_EQ(rec[3].value.Int(), -3);
  EXPECT_EQ(p.GetAllXData().size(), 2u);
  EXPECT_EQ(CodeOf([&] {
              p.SetXData({{1000, "no app"}});
            }),
            ErrorCode::kBadArgument);
  EXPECT_EQ(CodeOf([&] {
              p.SetXData(Record("K", {{1040, "text"}}));
            }),
            ErrorCode::kBadArgument);
  EXPECT_EQ(CodeOf([&] {
              p.SetXData(Record("K", {{7, "bad code"}}));
            }),
            ErrorCode::kBadArgument);
  const auto& apps = doc.RegisteredApps();
  EXPECT_NE(std::find(apps.begin(), apps.end(), "Kestrana"), apps.end());
  EXPECT_NE(std::find(apps.begin(), apps.end(), "Other"), apps.end());
}

TEST(DocumentIds, DerivedFromHandlesOrFreshPerLoad) {
  auto build = [](Options options) {
    auto doc = std::make_unique<MemDocument>(nullptr, options);
    auto line = std::make_unique<MemLine>();
    auto& a = doc->ModelSpaceBlock().AddNew(std::move(line), 0x2F);
    auto& b =
        doc->ModelSpaceBlock().AddNew(std::make_unique<MemCircle>(), 0x30);
    return std::make_pair(a.Id(), b.Id());
  };
  auto first = build({});
  auto second = build({});
  EXPECT_EQ(first, second);
  EXPECT_EQ(first.first, 2130000000 + 0x2F);
  auto fresh1 = build({IdPolicy::kFresh, 7});
  auto fresh2 = build({IdPolicy::kFresh, 8});
  EXPECT_NE(fresh1.first, first.first);
  EXPECT_NE(fresh1.first, fresh2.first);
  EXPECT_NE(fresh1.first, fresh1.second);
}

TEST(DocumentIds, HandlesAreUniqueAndSeedFollows) {
  MemDocument doc;
  auto& a = doc.ModelSpaceBlock().AddNew(std::make_unique<MemLine>(), 0x100);
  EXPECT_EQ(CodeOf([&] {
              doc.ModelSpaceBlock().AddNew(std::make_unique<MemLine>(), 0x100);
            }),
            ErrorCode::kDuplicateKey);
  EXPECT_GT(doc.HandleSeed(), 0x100u);
  auto& b = doc.ModelSpace().AddLine({0, 0, 0}, {1, 0, 0});
  EXPECT_NE(b.Handle(), a.Handle());
  EXPECT_EQ(&doc.HandleToObject(a.Handle()), &static_cast<host::Object&>(a));
  doc.Rehandle(a, 0x500);
  EXPECT_EQ(a.Handle(), "500");
  EXPECT_EQ(a.Id(), 2130000000 + 0x500);
  EXPECT_EQ(&doc.ObjectIdToObject(a.Id()), &static_cast<host::Object&>(a));
}

TEST_F(DocumentTest, InsertCreatesAttributesFromDefinitions) {
  auto& def = doc.GetBlocks().Add({0, 0, 0}, "Anno");
  def.AddLine({0, 0, 0}, {10, 0, 0});
  auto& ad = def.AddAttribute(2.0, 0, "Label", {1, 2, 0}, "LABEL", "N-?");
  def.AddAttribute(2.0, 2, "Const", {0, 0, 0}, "CONST", "x");  // constant: none
  EXPECT_EQ(ad.TagString(), "LABEL");
  doc.GetLayers().Add("Net - Annotation");
  auto& ref = ms.InsertBlock({100, 50, 0}, "Anno", 1, 1, 1, M_PI / 2);
  ref.SetLayer("Net - Annotation");
  auto attrs = ref.GetAttributes();
  ASSERT_EQ(attrs.size(), 1u);
  EXPECT_EQ(attrs[0]->TextString(), "N-?");
  EXPECT_NEAR(attrs[0]->InsertionPoint().x, 100 - 2, 1e-9);
  EXPECT_NEAR(attrs[0]->InsertionPoint().y, 50 + 1, 1e-9);
  EXPECT_NEAR(attrs[0]->Rotation(), M_PI / 2, 1e-12);
  // Moving and turning the reference carries its attributes along.
  ref.SetInsertionPoint({0, 0, 0});
  EXPECT_NEAR(attrs[0]->InsertionPoint().x, -2, 1e-9);
  ref.SetRotation(0);
  EXPECT_NEAR(attrs[0]->InsertionPoint().x, 1, 1e-9);
  EXPECT_NEAR(attrs[0]->InsertionPoint().y, 2, 1e-9);
  EXPECT_EQ(CodeOf([&] {
              ms.InsertBlock({0, 0, 0}, "Missing", 1, 1, 1, 0);
            }),
            ErrorCode::kNoSuchKey);
  EXPECT_EQ(CodeOf([&] {
              def.AddAttribute(1, 0, "", {0, 0, 0}, "", "");
            }),
            ErrorCode::kBadArgument);
  // Deleting the reference erases its attributes.
  ref.Delete();
  EXPECT_TRUE(attrs[0]->Erased());
}

TEST_F(DocumentTest, BoundingBoxes) {
  auto& line = ms.AddLine({1, 2, 0}, {-3, 5, 0});
  auto box = line.GetBoundingBox();
  EXPECT_EQ(box.min.x, -3);
  EXPECT_EQ(box.max.y, 5);
  // A half-circle bulge from (0,0) to (2,0) bulges down to y = -1.
  auto& arc = ms.AddLightWeightPolyline({0, 0, 2, 0});
  arc.SetBulge(0, 1.0);
  box = arc.GetBoundingBox();
  EXPECT_NEAR(box.min.y, -1, 1e-9);
  EXPECT_NEAR(box.max.y, 0, 1e-9);
  EXPECT_NEAR(arc.Length(), M_PI, 1e-9);
  // Texts: capital height and the fixed width table.
  auto& text = ms.AddText("HI", {10, 10, 0}, 2);
  box = text.GetBoundingBox();
  EXPECT_NEAR(box.min.x, 10, 1e-9);
  EXPECT_NEAR(box.max.y, 12, 1e-9);
  double width = box.max.x - box.min.x;
  EXPECT_NEAR(width, 2 * (722 + 278) / 716.0, 1e-9);
  text.SetAlignment(host::TextAlignment::kMiddleCenter);
  text.SetTextAlignmentPoint({0, 0, 0});
  box = text.GetBoundingBox();
  EXPECT_NEAR(box.min.x, -width / 2, 1e-9);
  EXPECT_NEAR(box.min.y, -1, 1e-9);
  text.SetRotation(M_PI / 2);
  box = text.GetBoundingBox();
  EXPECT_NEAR(box.max.x - box.min.x, 2, 1e-9);
  EXPECT_NEAR(box.max.y - box.min.y, width, 1e-9);
  // A block reference measures its definition, scaled and turned.
  auto& def = doc.GetBlocks().Add({0, 0, 0}, "Box");
  def.AddLine({0, 0, 0}, {4, 0, 0});
  def.AddLine({4, 0, 0}, {4, 1, 0});
  auto& ref = ms.InsertBlock({10, 0, 0}, "Box", 2, 2, 1, M_PI / 2);
  box = ref.GetBoundingBox();
  EXPECT_NEAR(box.min.x, 8, 1e-9);
  EXPECT_NEAR(box.max.x, 10, 1e-9);
  EXPECT_NEAR(box.max.y, 8, 1e-9);
}

TEST_F(DocumentTest, CopyKeepsStateWithNewIdentity) {
  doc.GetBlocks()
      .Add({0, 0, 0}, "A")
      .AddAttribute(1, 0, "p", {0, 0, 0}, "T", "v");
  auto& ref = ms.InsertBlock({1, 1, 0}, "A", 1, 1, 1, 0);
  ref.SetXData(Record("Kestrana", {{1000, "Node;N;N-1"}}));
  ref.GetAttributes()[0]->SetTextString("changed");
  auto& copy = dynamic_cast<host::BlockReference&>(ref.Copy());
  EXPECT_NE(copy.ObjectID(), ref.ObjectID());
  EXPECT_NE(copy.Handle(), ref.Handle());
  EXPECT_EQ(copy.GetXData("Kestrana"), ref.GetXData("Kestrana"));
  ASSERT_EQ(copy.GetAttributes().size(), 1u);
  EXPECT_EQ(copy.GetAttributes()[0]->TextString(), "changed");
  EXPECT_NE(copy.GetAttributes()[0], ref.GetAttributes()[0]);
  EXPECT_EQ(SelectIds({{2, "A"}}).size(), 2u);
}

TEST_F(DocumentTest, WindowAndCrossingSelection) {
  auto& inside = ms.AddLine({1, 1, 0}, {2, 2, 0});
  auto& across = ms.AddLine({-5, 1.5, 0}, {5, 1.5, 0});
  auto& diagonal =
      ms.AddLine({4, -1, 0}, {6, 1, 0});  // box overlaps, line misses
  auto& set = doc.GetSelectionSets().Add("W");
  set.Select(host::SelectMode::kWindow, {0, 0, 0}, {3, 3, 0}, {});
  EXPECT_EQ(set.Count(), 1);
  EXPECT_EQ(&set.Item(0), &static_cast<host::Entity&>(inside));
  set.Clear();
  set.Select(host::SelectMode::kCrossing, {3, 3, 0}, {0, 0, 0}, {});
  EXPECT_EQ(set.Count(), 2);
  EXPECT_EQ(&set.Item(1), &static_cast<host::Entity&>(across));
  (void)diagonal;
}

TEST_F(DocumentTest, SelectionSetNamesAreUnique) {
  auto& sets = doc.GetSelectionSets();
  auto& s = sets.Add("NetworkSet");
  EXPECT_EQ(CodeOf([&] { sets.Add("NetworkSet"); }), ErrorCode::kDuplicateKey);
  s.Delete();
  EXPECT_EQ(sets.Count(), 0);
  EXPECT_EQ(CodeOf([&] { s.Count(); }), ErrorCode::kErased);
  sets.Add("NetworkSet");
  EXPECT_EQ(sets.Count(), 1);
}

}  // namespace
}  // namespace kestrana::memhost
