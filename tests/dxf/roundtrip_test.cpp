// Round trips through the writer and reader: typed state survives, and what
// the logic does not touch is written back as it was read.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "dxf/image.h"
#include "dxf/kinds.h"
#include "dxf/shape.h"
#include "dxf/tags.h"
#include "dxf_test_util.h"

namespace kestrana::dxf {
namespace {

using host::Point3;
using host::TextAlignment;
using host::XRecord;
using memhost::MemDocument;
using testing::MinimalDxf;
using testing::Read;
using testing::RoundTrip;

template <class T>
T& Only(MemDocument& doc, const char* type, size_t index = 0) {
  size_t seen = 0;
  for (auto* e : doc.ModelSpaceBlock().MemEntities())
    if (e->AsHostEntity().EntityName() == type && seen++ == index)
      return dynamic_cast<T&>(*e);
  throw std::runtime_error(std::string("no ") + type);
}

// Every object handle written in the text (group codes 5 and 105).
std::set<uint64_t> Handles(const std::string& text) {
  std::set<uint64_t> out;
  Tokenizer tok(text);
  Tag t;
  std::string type, section;
  while (tok.Next(t)) {
    if (t.code == 0) type = t.value;
    if (t.code == 2 && type == "SECTION") section = t.value;
    if (section == "HEADER") continue;  // $HANDSEED is no object's
    if ((t.code == 5 && type != "DIMSTYLE") || t.code == 105)
      out.insert(HandleValue(t));
  }
  return out;
}

// The value of the first header variable `name`.
std::string HeaderValue(const std::string& text, const std::string& name) {
  size_t at = text.find("\n" + name + "\n");
  if (at == std::string::npos) return "";
  size_t value = text.find('\n', at + name.size() + 2) + 1;
  return text.substr(value, text.find('\n', value) - value);
}

TEST(RoundTrip, EveryModelledKindKeepsItsState) {
  MemDocument doc;
  auto& layer =
      static_cast<memhost::MemLayer&>(doc.GetLayers().Add("Sewer - Network"));
  layer.SetTrueColor(3);
  auto& ms = doc.ModelSpaceBlock();
  auto& line = static_cast<memhost::MemLine&>(ms.AddLine({1, 2, 3}, {4, 5, 6}));
  line.SetLayer("Sewer - Network");
  line.SetTrueColor(1);
  line.SetVisible(false);
  auto& pl = static_cast<memhost::MemLwPolyline&>(
      ms.AddLightWeightPolyline({0, 0, 10, 0, 10, 10, 0.1, 1e-7}));
  pl.SetBulge(1, -0.41421356237);
  pl.SetWidth(2, 0.5, 0.25);
  pl.SetClosed(true);
  pl.SetElevation(12.5);
  auto& point = static_cast<memhost::MemPoint&>(ms.AddPoint({7, 8, 9}));
  point.SetVisible(false);
  auto& circle = static_cast<memhost::MemCircle&>(ms.AddCircle({1, 1, 0}, 2.5));
  auto& ellipse = static_cast<memhost::MemEllipse&>(
      ms.AddEllipse({3, 3, 0}, {0, 4, 0}, 0.25));
  ellipse.SetParameters(0.5, 2.5);
  auto& text =
      static_cast<memhost::MemText&>(ms.AddText("Grüße, Ж水", {5, 5, 0}, 1.75));
  text.SetRotation(0.7);
  text.SetScaleFactor(0.8);
  text.SetObliqueAngle(0.2);
  auto& block = static_cast<memhost::MemBlock&>(
      doc.GetBlocks().Add({1, 2, 0}, "Kestrana_Node"));
  block.AddCircle({0, 0, 0}, 1);
  auto& attdef =
      static_cast<memhost::MemAttributeDefinition&>(block.AddAttribute(
          0.5, 8 | 1, "Node label", {0.5, 0.5, 0}, "LABEL", "N-?"));
  attdef.SetAlignment(TextAlignment::kMiddleRight);
  auto& ref = static_cast<memhost::MemBlockReference&>(
      ms.InsertBlock({20, 30, 0}, "Kestrana_Node", 2, 3, 1, 0.5));

  auto back = RoundTrip(doc);
  auto& l2 = Only<memhost::MemLine>(*back, "LINE");
  EXPECT_EQ(l2.start_, line.start_);
  EXPECT_EQ(l2.end_, line.end_);
  EXPECT_EQ(l2.LayerName(), "Sewer - Network");
  EXPECT_EQ(l2.color_, 1);
  EXPECT_FALSE(l2.visible_);
  EXPECT_EQ(back->FindLayer("Sewer - Network")->color_, 3);

  auto& p2 = Only<memhost::MemLwPolyline>(*back, "LWPOLYLINE");
  EXPECT_EQ(p2.xy_, pl.xy_);
  EXPECT_EQ(p2.bulges_, pl.bulges_);
  EXPECT_EQ(p2.widths_, pl.widths_);
  EXPECT_TRUE(p2.closed_);
  EXPECT_EQ(p2.elevation_, 12.5);

  auto& pt2 = Only<memhost::MemPoint>(*back, "POINT");
  EXPECT_EQ(pt2.position_, point.position_);
  EXPECT_FALSE(pt2.visible_);

  auto& c2 = Only<memhost::MemCircle>(*back, "CIRCLE");
  EXPECT_EQ(c2.center_, circle.center_);
  EXPECT_EQ(c2.radius_, 2.5);

  auto& e2 = Only<memhost::MemEllipse>(*back, "ELLIPSE");
  EXPECT_EQ(e2.major_axis_, ellipse.major_axis_);
  EXPECT_EQ(e2.ratio_, 0.25);
  EXPECT_EQ(e2.start_param_, 0.5);
  EXPECT_EQ(e2.end_param_, 2.5);

  auto& t2 = Only<memhost::MemText>(*back, "TEXT");
  EXPECT_EQ(t2.text_, "Grüße, Ж水");
  EXPECT_EQ(t2.height_, 1.75);
  EXPECT_NEAR(t2.rotation_, 0.7, 1e-12);
  EXPECT_NEAR(t2.oblique_, 0.2, 1e-12);
  EXPECT_EQ(t2.width_factor_, 0.8);

  memhost::MemBlock* b2 = back->FindBlock("Kestrana_Node");
  ASSERT_NE(b2, nullptr);
  EXPECT_EQ(b2->origin_, (Point3{1, 2, 0}));
  auto items = b2->MemEntities();
  ASSERT_EQ(items.size(), 2u);
  auto& a2 = dynamic_cast<memhost::MemAttributeDefinition&>(*items[1]);
  EXPECT_EQ(a2.tag_, "LABEL");
  EXPECT_EQ(a2.prompt_, "Node label");
  EXPECT_EQ(a2.text_, "N-?");
  EXPECT_EQ(a2.mode_, 9);
  EXPECT_EQ(a2.alignment_, TextAlignment::kMiddleRight);
  EXPECT_EQ(a2.alignment_point_, attdef.alignment_point_);

  auto& r2 = Only<memhost::MemBlockReference>(*back, "INSERT");
  EXPECT_EQ(r2.block_name_, "Kestrana_Node");
  EXPECT_EQ(r2.insertion_, ref.insertion_);
  EXPECT_EQ(r2.sx_, 2);
  EXPECT_EQ(r2.sy_, 3);
  EXPECT_NEAR(r2.rotation_, 0.5, 1e-12);
  ASSERT_EQ(r2.Attributes().size(), 1u);
  auto* attr = r2.Attributes()[0];
  EXPECT_EQ(attr->tag_, "LABEL");
  EXPECT_EQ(attr->text_, "N-?");
  EXPECT_TRUE(attr->invisible_);
  EXPECT_EQ(attr->alignment_point_, ref.Attributes()[0]->alignment_point_);
  // Handles and IDs come back as they were.
  EXPECT_EQ(r2.HandleValue(), ref.HandleValue());
  EXPECT_EQ(attr->HandleValue(), ref.Attributes()[0]->HandleValue());
  EXPECT_EQ(r2.Id(), ref.Id());
}

TEST(RoundTrip, AllFifteenTextAlignments) {
  MemDocument doc;
  for (int a = 0; a <= 14; ++a) {
    auto& t =
        doc.ModelSpace().AddText("T" + std::to_string(a), {double(a), 0, 0}, 1);
    t.SetAlignment(static_cast<TextAlignment>(a));
    t.SetTextAlignmentPoint({double(a), 5, 0});
  }
  auto back = RoundTrip(doc);
  for (int a = 0; a <= 14; ++a) {
    auto& t = Only<memhost::MemText>(*back, "TEXT", a);
    EXPECT_EQ(static_cast<int>(t.alignment_), a);
    EXPECT_EQ(t.alignment_point_, (Point3{double(a), 5, 0})) << a;
    int h = 0, v = 0;
    AlignmentToCodes(static_cast<TextAlignment>(a), h, v);
    EXPECT_EQ(static_cast<int>(AlignmentFromCodes(h, v)), a);
  }
  // The file's codes: 72 2 with 73 1 is bottom right, 72 4 is middle.
  EXPECT_EQ(AlignmentFromCodes(2, 1), TextAlignment::kBottomRight);
  EXPECT_EQ(AlignmentFromCodes(4, 0), TextAlignment::kMiddle);
  EXPECT_EQ(AlignmentFromCodes(0, 3), TextAlignment::kTopLeft);
}

XRecord AllKinds(const std::string& app) {
  return {{1001, app},
          {1000, "Pipe;Sewer A;P-12 — ü"},
          {1002, "{"},
          {1003, "0"},
          {1004, "0A0B"},
          {1005, "1F"},
          {1010, 1.5},
          {1020, -2.25},
          {1030, 0.0},
          {1040, 1e-9},
          {1041, 3.0},
          {1042, 0.5},
          {1070, int16_t{-32768}},
          {1071, 2147483647.0},
          {1002, "}"},
          {1000, ""}};
}

TEST(RoundTrip, ExtendedDataOfEveryValueKindOnEveryKindOfObject) {
  for (const char* version : {"AC1024", "AC1015"}) {
    std::string base = WriteDxf(*std::make_unique<MemDocument>());
    if (std::string(version) == "AC1015") {
      base.replace(base.find("AC1024"), 6, "AC1015");
    }
    auto doc = Read(base);
    auto& line = doc->ModelSpace().AddLine({0, 0, 0}, {1, 1, 0});
    line.SetXData(AllKinds("Kestrana"));
    line.SetXData(AllKinds("OtherApp"));
    doc->ModelSpace().SetXData(AllKinds("Kestrana"));
    doc->GetLayers().Add("Pipes").SetXData(AllKinds("LayerApp"));
    doc->GetTextStyles().Item("Standard").SetXData(AllKinds("StyleApp"));
    std::string text = WriteDxf(*doc);
    auto back = Read(text);
    auto& l2 = Only<memhost::MemLine>(*back, "LINE");
    EXPECT_EQ(l2.GetXData("Kestrana"), AllKinds("Kestrana")) << version;
    EXPECT_EQ(l2.GetXData("OtherApp"), AllKinds("OtherApp"));
    EXPECT_EQ(back->ModelSpace().GetXData("Kestrana"), AllKinds("Kestrana"));
    EXPECT_EQ(back->GetLayers().Item("Pipes").GetXData("LayerApp"),
              AllKinds("LayerApp"));
    EXPECT_EQ(back->GetTextStyles().Item("Standard").GetXData("StyleApp"),
              AllKinds("StyleApp"));
    // Each application has its APPID entry.
    for (const char* app : {"Kestrana", "OtherApp", "LayerApp", "StyleApp"})
      EXPECT_NE(
          text.find("AcDbRegAppTableRecord\n  2\n" + std::string(app) + "\n"),
          std::string::npos)
          << app;
    // The long integer is written as one.
    EXPECT_NE(text.find("1071\n2147483647\n"), std::string::npos);
  }
}

TEST(RoundTrip, AnUnchangedDrawingWritesBackByteForByte) {
  MemDocument doc;
  doc.ModelSpace()
      .AddLightWeightPolyline({0, 0, 1, 1})
      .SetXData(AllKinds("Kestrana"));
  doc.ModelSpace().AddText("x", {0, 0, 0}, 1);
  std::string first = WriteDxf(doc);
  EXPECT_EQ(WriteDxf(*Read(first)), first);
  EXPECT_EQ(WriteDxf(doc), first);  // saving twice hands out nothing new
  // CRLF files stay CRLF.
  std::string crlf;
  for (char c : first) {
    if (c == '\n') crlf += '\r';
    crlf += c;
  }
  auto doc2 = Read(crlf);
  EXPECT_EQ(WriteDxf(*doc2), crlf);
  doc2->ModelSpace().AddPoint({1, 2, 3});
  std::string changed = WriteDxf(*doc2);
  EXPECT_EQ(changed.find("\n\n"), std::string::npos);
  for (size_t i = 0; i < changed.size(); ++i) {
    if (changed[i] == '\n') {
      ASSERT_EQ(changed[i - 1], '\r') << "bare LF at " << i;
    }
  }
}

TEST(RoundTrip, RecordsReadAreTheSameWhetherUsedCopiedOrRewritten) {
  // Records are parsed from the file's text when first used: reading them,
  // copying their entities, selecting by them and setting them again must
  // all behave as if they had been parsed at once.
  MemDocument original;
  auto& first = original.ModelSpace().AddLightWeightPolyline({0, 0, 1, 1});
  first.SetXData(AllKinds("Kestrana"));
  first.SetXData(AllKinds("OtherApp"));
  auto& second = original.ModelSpace().AddLine({0, 0, 0}, {2, 2, 0});
  second.SetXData(AllKinds("Kestrana"));
  std::string text = WriteDxf(original);

  auto doc = Read(text);
  auto& pipe = Only<memhost::MemLwPolyline>(*doc, "LWPOLYLINE");
  auto& line = Only<memhost::MemLine>(*doc, "LINE");
  // Selected by application and by value before anything was parsed.
  EXPECT_EQ(doc->SelectAll({{1001, "OTHERAPP"}}).size(), 1u);
  EXPECT_EQ(
      doc->SelectAll({{1001, "Kestrana"}, {1070, int16_t{-32768}}}).size(), 2u);
  // Reading or setting the same records again changes nothing written.
  EXPECT_EQ(line.GetXData("Kestrana"), AllKinds("Kestrana"));
  line.SetXData(AllKinds("Kestrana"));
  EXPECT_EQ(WriteDxf(*doc), text);
  // Copies carry the records; a changed record is written from its state
  // while the copy keeps the old one.
  auto& copy2 = pipe.Copy();
  EXPECT_EQ(copy2.GetAllXData(), first.GetAllXData());
  pipe.SetXData({{1001, "Kestrana"}, {1000, "changed"}});
  auto back = Read(WriteDxf(*doc));
  EXPECT_EQ(back->HandleToObject(pipe.Handle()).GetXData("Kestrana"),
            (XRecord{{1001, "Kestrana"}, {1000, "changed"}}));
  EXPECT_EQ(back->HandleToObject(pipe.Handle()).GetXData("OtherApp"),
            AllKinds("OtherApp"));
  EXPECT_EQ(back->HandleToObject(copy2.Handle()).GetXData("Kestrana"),
            AllKinds("Kestrana"));
}

// A LINE as another program writes it: codes the model ignores, texts
// in a format of its own.
const char* kForeignEntities =
    "0\nLINE\n5\n2A\n102\n{ACAD_REACTORS\n330\n40\n102\n}"
    "\n330\n1\n100\nAcDbEntity\n8\n0\n"
    "6\nDASHED\n370\n25\n100\nAcDbLine\n39\n2.5\n10\n0.0000\n20\n1."
    "50\n30\n0\n11\n4\n21\n"
    "5\n31\n0\n210\n0\n220\n0\n230\n1\n"
    "0\nMTEXT\n5\n2B\n100\nAcDbEntity\n8\nNotes\n100\nAcDbMText\n10\n1\n20\n2\n"
    "30\n0\n"
    "40\n2.5\n1\nfirst\\Psecond\n999\nkept\n1001\nACAD\n1000\nx\n";

TEST(RoundTrip, SectionsOfOtherKindsStayAsRead) {
  std::string text = MinimalDxf("0\nPOINT\n5\n2A\n");
  std::string extra =
      "0\nSECTION\n2\nTHUMBNAILIMAGE\n90\n4\n310\n0A0B0C0D\n0\nENDSEC\n"
      "0\nSECTION\n2\nOBJECTS\n0\nDICTIONARY\n5\nC\n330\n0\n100\nAcDbDictionary"
      "\n"
      "0\nXRECORD\n5\n2B\n100\nAcDbXrecord\n5\nnot a handle here\n0\nENDSEC\n"
      "999\nbetween sections\n";
  text.insert(text.find("0\nEOF"), extra);
  auto doc = Read(text);
  std::string out = WriteDxf(*doc);
  EXPECT_NE(out.find(extra), std::string::npos);
}

TEST(RoundTrip, ChangesAreMergedIntoTheTagsTheyWereReadFrom) {
  std::string text = MinimalDxf(kForeignEntities);
  auto doc = Read(text);
  EXPECT_EQ(WriteDxf(*doc).find(kForeignEntities) != std::string::npos, true);

  auto& line = Only<memhost::MemLine>(*doc, "LINE");
  EXPECT_EQ(line.start_, (Point3{0, 1.5, 0}));
  line.SetEndPoint({7, 5, 0});
  line.SetTrueColor(2);
  std::string out = WriteDxf(*doc);
  // The end point's X changed, the colour joined the end of its group, and
  // every code the model does not own stayed where it was, with the texts
  // of untouched values as they were.
  EXPECT_NE(
      out.find(
          "0\nLINE\n5\n2A\n102\n{ACAD_REACTORS\n330\n40\n102\n}\n330\n1\n100\n"
          "AcDbEntity\n8\n0\n6\nDASHED\n370\n25\n "
          "62\n2\n100\nAcDbLine\n39\n2.5\n10\n"
          "0.0000\n20\n1.50\n30\n0\n "
          "11\n7.0\n21\n5\n31\n0\n210\n0\n220\n0\n230\n1\n"),
      std::string::npos)
      << out.substr(out.find("LINE"), 400);
  // The MTEXT the model does not know is untouched.
  EXPECT_NE(out.find("0\nMTEXT\n5\n2B\n"), std::string::npos);
  EXPECT_NE(out.find("1\nfirst\\Psecond\n999\nkept\n1001\nACAD\n1000\nx\n"),
            std::string::npos);

  // Even an unknown kind takes a new layer and keeps the rest.
  auto& mtext = Only<memhost::MemOtherEntity>(*doc, "MTEXT");
  EXPECT_EQ(mtext.ObjectName(), "AcDbMText");
  mtext.SetLayerUnchecked("0");
  out = WriteDxf(*doc);
  EXPECT_NE(
      out.find(
          "0\nMTEXT\n5\n2B\n100\nAcDbEntity\n  8\n0\n100\nAcDbMText\n10\n1\n"),
      std::string::npos);
}

TEST(RoundTrip, GroupsOfOtherNamesAreNeitherReadNorMerged) {
  // A text with an embedded object (as newer files add to attributes) and
  // a polyline with a group another program added: their codes are not
  // the entity's own, so they neither change its state nor take its
  // changes, and what is written after a change reads again.
  const std::string entities =
      "0\nTEXT\n5\n2A\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n1\n20\n"
      "2\n30\n0\n40\n1\n1\nreal\n101\nEmbedded Object\n10\n99\n20\n99\n"
      "1\nembedded\n"
      "0\nLWPOLYLINE\n5\n2B\n100\nAcDbEntity\n8\n0\n100\nAcDbPolyline\n90\n"
      "2\n70\n0\n10\n0\n20\n0\n10\n5\n20\n0\n100\nOtherProgram\n20\n"
      "not a number\n";
  auto doc = Read(MinimalDxf(entities));
  auto& text = Only<memhost::MemText>(*doc, "TEXT");
  EXPECT_EQ(text.text_, "real");
  EXPECT_EQ(text.insertion_, (Point3{1, 2, 0}));
  auto& pl = Only<memhost::MemLwPolyline>(*doc, "LWPOLYLINE");
  EXPECT_EQ(pl.xy_, (std::vector<double>{0, 0, 5, 0}));
  text.Move({0, 0, 0}, {1, 0, 0});
  pl.Move({0, 0, 0}, {1, 0, 0});
  std::string out = WriteDxf(*doc);
  EXPECT_NE(out.find("101\nEmbedded Object\n10\n99\n20\n99\n1\nembedded\n"),
            std::string::npos);
  EXPECT_NE(out.find("100\nOtherProgram\n20\nnot a number\n"),
            std::string::npos);
  auto back = Read(out);
  EXPECT_EQ(Only<memhost::MemText>(*back, "TEXT").insertion_,
            (Point3{2, 2, 0}));
  EXPECT_EQ(Only<memhost::MemLwPolyline>(*back, "LWPOLYLINE").xy_,
            (std::vector<double>{1, 0, 6, 0}));
}

TEST(RoundTrip, NewObjectsGetFreshHandlesAndTheSeedFollows) {
  std::string text = MinimalDxf(kForeignEntities);
  auto doc = Read(text);
  std::set<uint64_t> before = Handles(WriteDxf(*doc));
  auto& layer = doc->GetLayers().Add("New Layer");
  auto& block = doc->GetBlocks().Add({0, 0, 0}, "NewBlock");
  block.AddAttribute(1, 0, "p", {0, 0, 0}, "TAG", "v");
  auto& ref = doc->ModelSpace().InsertBlock({1, 1, 0}, "NewBlock", 1, 1, 1, 0);
  auto& point = doc->ModelSpace().AddPoint({1, 1, 0});
  point.SetXData({{1001, "Kestrana"}, {1000, "marker"}});
  std::string out = WriteDxf(*doc);
  std::set<uint64_t> after = Handles(out);
  uint64_t seed = 0;
  ASSERT_TRUE(ParseHandle(HeaderValue(out, "$HANDSEED"), seed));
  for (uint64_t h : after) EXPECT_LT(h, seed) << FormatHandle(h);
  // Old handles all kept; the new objects' handles are new and distinct.
  for (uint64_t h : before) EXPECT_TRUE(after.count(h)) << FormatHandle(h);
  std::vector<uint64_t> fresh;
  for (uint64_t h : after)
    if (!before.count(h)) fresh.push_back(h);
  // Layer, block record, BLOCK, ATTDEF, ENDBLK, INSERT, ATTRIB, SEQEND,
  // POINT, the APPID of Kestrana, and the tables the file lacked.
  EXPECT_GE(fresh.size(), 10u);
  for (host::Object* obj :
       std::vector<host::Object*>{&layer, &block, &ref, &point}) {
    uint64_t h = std::stoull(obj->Handle(), nullptr, 16);
    EXPECT_TRUE(after.count(h) && !before.count(h)) << obj->Handle();
  }
  // New entities name their block record as owner.
  std::string owner = "\n330\n" + doc->ModelSpace().Handle() + "\n";
  EXPECT_NE(out.find("POINT\n  5\n" + point.Handle() + owner),
            std::string::npos);

  auto back = Read(out);
  EXPECT_EQ(back->HandleToObject(point.Handle())
                .GetXData("Kestrana")
                ->at(1)
                .value.Text(),
            "marker");
  auto& r2 = dynamic_cast<memhost::MemBlockReference&>(
      back->HandleToObject(ref.Handle()));
  ASSERT_EQ(r2.Attributes().size(), 1u);
  EXPECT_EQ(r2.Attributes()[0]->tag_, "TAG");
  // Written again, nothing moves.
  EXPECT_EQ(WriteDxf(*back), out);
  EXPECT_EQ(WriteDxf(*doc), out);
}

TEST(RoundTrip, ErasedObjectsAreNotWritten) {
  MemDocument doc;
  auto& keep = doc.ModelSpace().AddLine({0, 0, 0}, {1, 0, 0});
  auto& gone = doc.ModelSpace().AddLine({0, 0, 0}, {2, 0, 0});
  auto& layer = doc.GetLayers().Add("Temporary");
  auto& block = doc.GetBlocks().Add({0, 0, 0}, "Unused");
  block.AddCircle({0, 0, 0}, 1);
  auto doc2 = RoundTrip(doc);
  doc2->HandleToObject(gone.Handle());
  dynamic_cast<host::Entity&>(doc2->HandleToObject(gone.Handle())).Delete();
  dynamic_cast<host::Layer&>(doc2->HandleToObject(layer.Handle())).Delete();
  dynamic_cast<host::Block&>(doc2->HandleToObject(block.Handle())).Delete();
  std::string out = WriteDxf(*doc2);
  auto handles = Handles(out);
  EXPECT_FALSE(handles.count(std::stoull(gone.Handle(), nullptr, 16)));
  EXPECT_FALSE(handles.count(std::stoull(layer.Handle(), nullptr, 16)));
  EXPECT_TRUE(handles.count(std::stoull(keep.Handle(), nullptr, 16)));
  EXPECT_EQ(out.find("Temporary"), std::string::npos);
  EXPECT_EQ(out.find("Unused"), std::string::npos);
  auto back = Read(out);
  EXPECT_EQ(back->ModelSpaceBlock().MemEntities().size(), 1u);
}

TEST(RoundTrip, AttributesAndTheirSeqend) {
  MemDocument doc;
  auto& block = doc.GetBlocks().Add({0, 0, 0}, "B");
  block.AddAttribute(1, 0, "a", {0, 0, 0}, "A", "1");
  block.AddAttribute(1, 0, "b", {0, 1, 0}, "B", "2");
  doc.ModelSpace().InsertBlock({5, 5, 0}, "B", 1, 1, 1, 0);
  auto loaded = RoundTrip(doc);
  std::string first = WriteDxf(*loaded);
  auto& ref = Only<memhost::MemBlockReference>(*loaded, "INSERT");
  size_t seqend = first.find("SEQEND");
  ASSERT_NE(seqend, std::string::npos);
  ref.Attributes()[1]->SetTextString("changed");
  std::string second = WriteDxf(*loaded);
  EXPECT_EQ(second.substr(second.find("SEQEND"), 40), first.substr(seqend, 40));
  auto back = Read(second);
  auto& r2 = Only<memhost::MemBlockReference>(*back, "INSERT");
  EXPECT_EQ(r2.Attributes()[0]->text_, "1");
  EXPECT_EQ(r2.Attributes()[1]->text_, "changed");
  // Without attributes the reference has no SEQEND and says so.
  for (auto* a : ref.GetAttributes()) a->Delete();
  std::string third = WriteDxf(*loaded);
  EXPECT_EQ(third.find("SEQEND"), std::string::npos);
  EXPECT_EQ(third.find("\n 66\n1\n"), std::string::npos);
  EXPECT_TRUE(Only<memhost::MemBlockReference>(*Read(third), "INSERT")
                  .Attributes()
                  .empty());
}

TEST(RoundTrip, LayerStateAndHeaderVariables) {
  std::string text =
      MinimalDxf("0\nLINE\n5\n30\n8\nOff\n10\n0\n20\n0\n11\n1\n21\n1\n");
  text.insert(text.find("0\nENDSEC\n0\nSECTION\n2\nBLOCKS"),
              "0\nTABLE\n2\nLAYER\n5\n2\n70\n3\n"
              "0\nLAYER\n5\n10\n100\nAcDbSymbolTableRecord\n100\nAcDbLayerTable"
              "Record\n2\n0\n70\n0\n62\n7\n"
              "0\nLAYER\n5\n11\n100\nAcDbSymbolTableRecord\n100\nAcDbLayerTable"
              "Record\n2\nOff\n70\n4\n62\n-3\n"
              "0\nLAYER\n5\n12\n100\nAcDbSymbolTableRecord\n100\nAcDbLayerTable"
              "Record\n2\nIce\n70\n1\n62\n5\n"
              "0\nENDTAB\n");
  text.insert(text.find("0\nENDSEC"),
              "9\n$CLAYER\n8\nOff\n9\n$UCSXDIR\n10\n0\n20\n1\n30\n0\n9\n$"
              "UCSYDIR\n10\n-1\n20\n0\n30\n0\n");
  auto doc = Read(text);
  auto* off = doc->FindLayer("Off");
  ASSERT_NE(off, nullptr);
  EXPECT_FALSE(off->on_);
  EXPECT_TRUE(off->locked_);
  EXPECT_EQ(off->color_, 3);
  EXPECT_TRUE(doc->FindLayer("Ice")->frozen_);
  EXPECT_EQ(doc->ActiveLayer().Name(), "Off");
  EXPECT_EQ(std::get<Point3>(doc->GetVariable("UCSXDIR")), (Point3{0, 1, 0}));
  EXPECT_EQ(std::get<Point3>(doc->GetVariable("UCSYDIR")), (Point3{-1, 0, 0}));

  off->SetLayerOn(true);
  off->SetLock(false);
  doc->SetActiveLayer(*doc->FindLayer("0"));
  doc->SetVariable("UCSXDIR", Point3{1, 0, 0});
  std::string out = WriteDxf(*doc);
  auto back = Read(out);
  EXPECT_TRUE(back->FindLayer("Off")->on_);
  EXPECT_FALSE(back->FindLayer("Off")->locked_);
  EXPECT_EQ(back->ActiveLayer().Name(), "0");
  EXPECT_EQ(std::get<Point3>(back->GetVariable("UCSXDIR")), (Point3{1, 0, 0}));
  EXPECT_EQ(std::get<Point3>(back->GetVariable("UCSYDIR")), (Point3{-1, 0, 0}));
  // Three layers read; the count in the table head still says three.
  EXPECT_NE(out.find("LAYER\n5\n2\n70\n3\n"), std::string::npos);
  back->GetLayers().Add("Fourth");
  std::string more = WriteDxf(*back);
  EXPECT_NE(more.find("LAYER\n5\n2\n 70\n4\n"), std::string::npos);
}

TEST(RoundTrip, HatchBoundariesOfEveryEdgeKind) {
  MemDocument doc;
  auto& hatch = static_cast<memhost::MemHatch&>(
      doc.ModelSpace().AddHatch(1, "ANSI31", false));
  host::HatchLoop outer;
  outer.flags = 1;
  outer.is_polyline = true;
  outer.vertices = {0, 0, 10, 0, 10, 10, 0, 10};
  outer.bulges = {0, 0.5, 0, 0};
  host::HatchLoop edges;
  host::HatchEdge line;
  line.start = {1, 1, 0};
  line.end = {2, 1, 0};
  host::HatchEdge arc;
  arc.type = host::HatchEdge::Type::kArc;
  arc.center = {2, 2, 0};
  arc.radius = 1;
  arc.start_angle = -1.5707963267948966;
  arc.end_angle = 0;
  host::HatchEdge cw = arc;
  cw.counter_clockwise = false;
  cw.start_angle = 1.0;
  cw.end_angle = -0.5;
  host::HatchEdge ell;
  ell.type = host::HatchEdge::Type::kEllipseArc;
  ell.center = {5, 5, 0};
  ell.major_axis = {2, 0, 0};
  ell.ratio = 0.5;
  ell.start_angle = 0;
  ell.end_angle = 3.0;
  host::HatchEdge spline;
  spline.type = host::HatchEdge::Type::kSpline;
  spline.control_points = {
      {0, 0, 0}, {1, 2, 0}, {3, 2, 0}, {4, 0, 0}, {5, 1, 0}};
  edges.edges = {line, arc, cw, ell, spline};
  hatch.loops_ = {outer, edges};
  hatch.pattern_scale_ = 0.5;
  hatch.pattern_angle_ = 0.25;
  auto back = RoundTrip(doc);
  auto& h2 = Only<memhost::MemHatch>(*back, "HATCH");
  EXPECT_EQ(h2.pattern_name_, "ANSI31");
  EXPECT_EQ(h2.pattern_scale_, 0.5);
  EXPECT_NEAR(h2.pattern_angle_, 0.25, 1e-12);
  ASSERT_EQ(h2.loops_.size(), 2u);
  EXPECT_EQ(h2.loops_[0].vertices, outer.vertices);
  EXPECT_EQ(h2.loops_[0].bulges, outer.bulges);
  ASSERT_EQ(h2.loops_[1].edges.size(), 5u);
  const auto& e = h2.loops_[1].edges;
  EXPECT_EQ(e[0].end, line.end);
  EXPECT_NEAR(e[1].start_angle, arc.start_angle, 1e-12);
  EXPECT_FALSE(e[2].counter_clockwise);
  EXPECT_NEAR(e[2].start_angle, 1.0, 1e-12);
  EXPECT_NEAR(e[2].end_angle, -0.5, 1e-12);
  EXPECT_EQ(e[3].major_axis, ell.major_axis);
  EXPECT_EQ(e[3].ratio, 0.5);
  EXPECT_EQ(e[4].control_points, spline.control_points);

  // A changed pattern scale leaves the boundary as read.
  std::string first = WriteDxf(*back);
  size_t loops = first.find(" 91\n2\n");
  size_t loops_end = first.find(" 75\n", loops);
  h2.pattern_scale_ = 2;
  std::string second = WriteDxf(*back);
  EXPECT_EQ(second.substr(second.find(" 91\n2\n"), loops_end - loops),
            first.substr(loops, loops_end - loops));
  EXPECT_EQ(Only<memhost::MemHatch>(*Read(second), "HATCH").pattern_scale_, 2);
}

TEST(RoundTrip, HatchSourcesFollowTheirObjects) {
  MemDocument doc;
  auto& square =
      doc.ModelSpace().AddLightWeightPolyline({0, 0, 4, 0, 4, 4, 0, 4});
  square.SetClosed(true);
  auto& hatch = doc.ModelSpace().AddHatch(1, "SOLID", true);
  hatch.AppendOuterLoop({&square});
  auto back = RoundTrip(doc);
  auto& h2 = Only<memhost::MemHatch>(*back, "HATCH");
  ASSERT_EQ(h2.loops_[0].sources.size(), 1u);
  EXPECT_EQ(back->ObjectIdToObject(h2.loops_[0].sources[0]).Handle(),
            square.Handle());
}

TEST(RoundTrip, CopiesOfReadObjectsGetTheirOwnHandles) {
  auto doc = Read(MinimalDxf(kForeignEntities));
  auto& mtext = Only<memhost::MemOtherEntity>(*doc, "MTEXT");
  auto& mtext_copy = mtext.Copy();
  auto& line = Only<memhost::MemLine>(*doc, "LINE");
  auto& copy = line.Copy();
  copy.Move({0, 0, 0}, {10, 0, 0});
  std::string out = WriteDxf(*doc);
  auto back = Read(out);
  auto& l1 = dynamic_cast<memhost::MemLine&>(back->HandleToObject("2A"));
  auto& l2 =
      dynamic_cast<memhost::MemLine&>(back->HandleToObject(copy.Handle()));
  EXPECT_EQ(l1.start_, (Point3{0, 1.5, 0}));
  EXPECT_EQ(l2.start_, (Point3{10, 1.5, 0}));
  auto& m2 = dynamic_cast<memhost::MemOtherEntity&>(
      back->HandleToObject(mtext_copy.Handle()));
  EXPECT_EQ(m2.type_name_, "MTEXT");
  EXPECT_EQ(back->HandleToObject("2B").ObjectName(), "AcDbMText");
  // The copy keeps the original's codes, not its reactors.
  size_t at = out.find("LINE\n  5\n" + copy.Handle());
  ASSERT_NE(at, std::string::npos);
  std::string copied = out.substr(at, out.find("\n  0\n", at) - at);
  EXPECT_NE(copied.find("6\nDASHED\n"), std::string::npos);
  EXPECT_EQ(copied.find("ACAD_REACTORS"), std::string::npos);
}

TEST(RoundTrip, ObjectIdsComeFromHandlesOrFreshOnRequest) {
  std::string text = WriteDxf(*std::make_unique<MemDocument>());
  auto a = Read(text);
  auto b = Read(text);
  EXPECT_EQ(a->ModelSpace().ObjectID(), b->ModelSpace().ObjectID());
  memhost::Options fresh;
  fresh.id_policy = memhost::IdPolicy::kFresh;
  fresh.fresh_seed = 7;
  MemDocument c(nullptr, fresh);
  ReadDxf(c, text);
  EXPECT_EQ(c.ModelSpace().Handle(), a->ModelSpace().Handle());
  EXPECT_NE(c.ModelSpace().ObjectID(), a->ModelSpace().ObjectID());
}

}  // namespace
}  // namespace kestrana::dxf
