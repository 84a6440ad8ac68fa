// Drawings as other CAD programs write them (tests/dxf/files, made by
// make_files.py with ezdxf): each opens, keeps what it holds, and a
// drawing only read and saved comes back byte for byte.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "dxf/binary.h"
#include "dxf/image.h"
#include "dxf/io.h"
#include "dxf/reader.h"
#include "dxf/shape.h"
#include "dxf/tags.h"
#include "dxf/writer.h"
#include "dxf_test_util.h"

namespace kestrana::dxf {
namespace {

using host::Point3;
using memhost::MemDocument;
using memhost::MemEntity;

std::string FilePath(const std::string& name) {
  return std::string(KESTRANA_SOURCE_DIR) + "/tests/dxf/files/" + name;
}

std::string FileText(const std::string& name) {
  std::ifstream in(FilePath(name), std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

std::vector<MemEntity*> OfType(MemDocument& doc, const std::string& type) {
  std::vector<MemEntity*> out;
  for (MemEntity* e : doc.ModelSpaceBlock().MemEntities())
    if (e->AsHostEntity().EntityName() == type) out.push_back(e);
  return out;
}

class CadFiles : public ::testing::TestWithParam<const char*> {};

TEST_P(CadFiles, OpenAndSaveUnchanged) {
  std::string text = FileText(GetParam());
  ASSERT_FALSE(text.empty()) << GetParam();
  MemDocument doc;
  ReadDxf(doc, text);
  EXPECT_EQ(WriteDxf(doc), text);
}

INSTANTIATE_TEST_SUITE_P(
    Ezdxf, CadFiles,
    ::testing::Values("handles64.dxf", "minsert.dxf", "hatch_splines.dxf",
                      "xdict.dxf",
                      "r12.dxf", "r12_no_handles.dxf", "r13.dxf", "r14.dxf",
                      "r12_binary.dxf",
                      "r2018_binary.dxf"));

// What a base plan holds, read from any version or form of it.
struct PlanContents {
  std::vector<std::string> types;
  Point3 line_end;
  std::string text;
  std::string attribute;
  std::vector<host::XRecord> circle_xdata;
};

PlanContents ContentsOf(MemDocument& doc) {
  PlanContents c;
  for (MemEntity* e : doc.ModelSpaceBlock().MemEntities()) {
    host::Entity& he = e->AsHostEntity();
    c.types.push_back(he.EntityName());
    if (he.EntityName() == "LINE" && c.types.size() == 1)
      c.line_end = dynamic_cast<host::Line&>(he).EndPoint();
    if (he.EntityName() == "TEXT")
      c.text = dynamic_cast<host::Text&>(he).TextString();
    if (auto* ref = e->AsBlockReference())
      c.attribute = ref->GetAttributes().at(0)->TextString();
    if (he.EntityName() == "CIRCLE") c.circle_xdata = e->XData();
  }
  return c;
}

TEST(CadFiles, EveryVersionAndFormReadsTheSamePlan) {
  MemDocument r2018;
  ReadDxf(r2018, FileText("r2018_binary.dxf"));
  PlanContents expected = ContentsOf(r2018);
  ASSERT_EQ(expected.types.size(), 6u);
  EXPECT_EQ(expected.text, "Rue de l'\xc3\x89glise");
  EXPECT_EQ(expected.attribute, "MH-1");
  EXPECT_DOUBLE_EQ(expected.line_end.x, 12.5);
  ASSERT_EQ(expected.circle_xdata.size(), 1u);
  for (const char* name : {"r12.dxf", "r12_no_handles.dxf", "r12_binary.dxf",
                           "r13.dxf", "r14.dxf"}) {
    SCOPED_TRACE(name);
    MemDocument doc;
    ReadDxf(doc, FileText(name));
    PlanContents c = ContentsOf(doc);
    EXPECT_EQ(c.types, expected.types);
    EXPECT_EQ(c.text, expected.text);
    EXPECT_EQ(c.attribute, expected.attribute);
    EXPECT_TRUE(c.line_end == expected.line_end);
    EXPECT_EQ(c.circle_xdata, expected.circle_xdata);
  }
}

TEST(CadFiles, VersionsCompareAsVersions) {
  using testing::MinimalDxf;
  for (const char* old : {"AC2.10", "AC1.50", "AC1006", "AC1004"}) {
    SCOPED_TRACE(old);
    try {
      testing::Read(MinimalDxf("", old));
      ADD_FAILURE() << "read a drawing of version " << old;
    } catch (const DxfError& e) {
      EXPECT_NE(std::string(e.what()).find("before R12"), std::string::npos)
          << e.what();
    }
  }
  for (const char* read : {"AC1009", "AC1012", "AC1014", "AC1032", "AC1040"})
    EXPECT_NO_THROW(testing::Read(MinimalDxf("", read))) << read;
  EXPECT_THROW(testing::Read(MinimalDxf("", "R2000")), DxfError);
  EXPECT_EQ(VersionNumber("AC1015"), 1015);
  EXPECT_EQ(VersionNumber("AC2.10"), -1);
}

TEST(CadFiles, ChangedBinaryDrawingStaysBinary) {
  std::string bytes = FileText("r2018_binary.dxf");
  MemDocument doc;
  ReadDxf(doc, bytes);
  auto& line = doc.ModelSpace().AddLine(Point3{1.0 / 3, 0, 0},
                                        Point3{-0.0, 1e300, 0});
  line.SetXData({{1001, host::XValue(std::string("SURVEY"))},
                 {1070, host::XValue(int16_t{-7})},
                 {1040, host::XValue(0.1)}});
  std::string written = WriteDxf(doc);
  ASSERT_TRUE(IsBinaryDxf(written));
  MemDocument again;
  ReadDxf(again, written);
  auto lines = OfType(again, "LINE");
  ASSERT_EQ(lines.size(), 3u);
  auto& read = dynamic_cast<host::Line&>(lines[2]->AsHostEntity());
  EXPECT_EQ(read.StartPoint().x, 1.0 / 3);  // doubles exactly, not as text
  EXPECT_EQ(read.EndPoint().y, 1e300);
  EXPECT_EQ(lines[2]->XData(), line.GetAllXData());
  // Written once more unchanged: the same bytes.
  EXPECT_EQ(WriteDxf(again), written);
}

TEST(CadFiles, LargeDrawingsAreWrittenInBoundedPieces) {
  // Enough lines for several pieces, so that tags meet the piece borders:
  // in model space of a binary file, in a block of an ASCII one.
  const int count = 25000;
  for (const char* name : {"r2018_binary.dxf", "plan_kinds.dxf"}) {
    SCOPED_TRACE(name);
    const bool in_block = !IsBinaryDxf(FileText(name));
    MemDocument doc;
    ReadDxf(doc, FileText(name));
    auto entities_of = [&](MemDocument& d) {
      return in_block ? d.FindBlock("Many")->MemEntities()
                      : d.ModelSpaceBlock().MemEntities();
    };
    host::Block& target = in_block
                              ? doc.GetBlocks().Add({0, 0, 0}, "Many")
                              : doc.ModelSpace();
    size_t before = entities_of(doc).size();
    for (int i = 0; i < count; ++i)
      target.AddLine(Point3{i + 1.0 / 3, -i * 0.25, 0},
                     Point3{i * 1e-7, 1e6 + i, 2.5});
    std::vector<size_t> pieces;
    std::string written;
    WriteDxf(doc, [&](std::string_view piece) {
      pieces.push_back(piece.size());
      written.append(piece);
    });
    ASSERT_GT(pieces.size(), 2u);
    for (size_t size : pieces) EXPECT_LE(size, 2 * kWriteChunkBytes);
    EXPECT_EQ(IsBinaryDxf(written), !in_block);

    MemDocument again;
    ReadDxf(again, written);
    auto entities = entities_of(again);
    ASSERT_EQ(entities.size(), before + count);
    for (int i = 0; i < count; i += 997) {
      auto& line = dynamic_cast<host::Line&>(
          entities[before + static_cast<size_t>(i)]->AsHostEntity());
      EXPECT_EQ(line.StartPoint(), (Point3{i + 1.0 / 3, -i * 0.25, 0}));
      EXPECT_EQ(line.EndPoint(), (Point3{i * 1e-7, 1e6 + i, 2.5}));
    }
    EXPECT_EQ(WriteDxf(again), written);
  }
}

TEST(CadFiles, BrokenBinaryFilesAreRefusedByByte) {
  std::string bytes = FileText("r2018_binary.dxf");
  for (size_t cut : {size_t{23}, size_t{40}, bytes.size() / 2}) {
    SCOPED_TRACE(cut);
    try {
      testing::Read(bytes.substr(0, cut));
      ADD_FAILURE() << "read a truncated file";
    } catch (const DxfError& e) {
      EXPECT_NE(std::string(e.what()).find("byte"), std::string::npos)
          << e.what();
    }
  }
  // A text holding a line break cannot become a line of ASCII DXF.
  BinaryForm form;
  std::string text = BinaryToText(bytes, form);
  size_t at = bytes.find("Rue de");
  ASSERT_NE(at, std::string::npos);
  std::string broken = bytes;
  broken[at + 3] = '\n';
  EXPECT_THROW(BinaryToText(broken, form), DxfError);
  // And the text form converts back to the very bytes.
  EXPECT_EQ(TextToBinary(text, form), bytes);
}

TEST(CadFiles, SixteenDigitHandlesNameObjectsAndNewOnesFollow) {
  auto doc = LoadDrawing(FilePath("handles64.dxf"));
  auto lines = OfType(*doc, "LINE");
  ASSERT_EQ(lines.size(), 2u);
  std::string handle = lines[0]->AsHostObject().Handle();
  EXPECT_EQ(handle.size(), 16u);
  EXPECT_EQ(&doc->HandleToObject(handle), &lines[0]->AsHostObject());
  EXPECT_EQ(lines[1]->XData().size(), 1u);

  // A new object takes the file's seed, not a handle in use.
  uint64_t seed = doc->HandleSeed();
  auto& added =
      doc->ModelSpace().AddLine(Point3{0, 0, 0}, Point3{1, 0, 0});
  uint64_t value = 0;
  ASSERT_TRUE(ParseHandle(added.Handle(), value));
  EXPECT_GE(value, seed);
  EXPECT_GT(value, 0xD9B071D01A0CB6A8ull);
}

TEST(CadFiles, HandlesAtTheTopOfTheRangeStartAgainAtOne) {
  auto doc = testing::Read(testing::MinimalDxf(
      "0\nLINE\n5\nFFFFFFFFFFFFFFFF\n8\n0\n10\n0\n20\n0\n30\n0\n11\n1\n21\n1\n"
      "31\n0\n"));
  auto& a = doc->ModelSpace().AddLine(Point3{0, 0, 0}, Point3{1, 0, 0});
  auto& b = doc->ModelSpace().AddLine(Point3{0, 0, 0}, Point3{2, 0, 0});
  uint64_t ha = 0, hb = 0;
  ASSERT_TRUE(ParseHandle(a.Handle(), ha));
  ASSERT_TRUE(ParseHandle(b.Handle(), hb));
  EXPECT_NE(ha, 0u);
  EXPECT_NE(hb, 0u);
  EXPECT_NE(ha, hb);
  EXPECT_NE(ha, 0xFFFFFFFFFFFFFFFFull);
  // Written and read again, every handle is still one of a kind.
  auto again = testing::RoundTrip(*doc);
  EXPECT_EQ(OfType(*again, "LINE").size(), 3u);
  // Seventeen digits are no handle.
  EXPECT_THROW(testing::Read(testing::MinimalDxf(
                   "0\nLINE\n5\n1FFFFFFFFFFFFFFFF\n8\n0\n")),
               DxfError);
}

TEST(CadFiles, ArrayedInsertCoversItsGrid) {
  auto doc = LoadDrawing(FilePath("minsert.dxf"));
  auto inserts = OfType(*doc, "INSERT");
  ASSERT_EQ(inserts.size(), 2u);
  auto* array = inserts[0]->AsBlockReference();
  EXPECT_EQ(array->Name(), "Tree");
  EXPECT_EQ(array->columns_, 3);
  EXPECT_EQ(array->rows_, 2);
  EXPECT_EQ(array->CellTransforms().size(), 6u);
  EXPECT_EQ(inserts[1]->AsBlockReference()->CellTransforms().size(), 1u);
  // Circles of radius 1 at (10, 20) + (0..2 x 4, 0..1 x 5).
  host::BoundingBox box = array->GetBoundingBox();
  EXPECT_NEAR(box.min.x, 9, 1e-9);
  EXPECT_NEAR(box.min.y, 19, 1e-9);
  EXPECT_NEAR(box.max.x, 19, 1e-9);
  EXPECT_NEAR(box.max.y, 26, 1e-9);

  // Turned by a quarter, the grid turns with it.
  array->SetRotation(1.5707963267948966);
  box = array->GetBoundingBox();
  EXPECT_NEAR(box.min.x, 10 - 5 - 1, 1e-9);
  EXPECT_NEAR(box.max.y, 20 + 8 + 1, 1e-9);

  // A copy is written as a new object and stays an array.
  auto& copy = dynamic_cast<memhost::MemBlockReference&>(array->Copy());
  copy.Move(Point3{0, 0, 0}, Point3{100, 0, 0});
  std::string text = WriteDxf(*doc);
  auto again = testing::Read(text);
  auto read = OfType(*again, "INSERT");
  ASSERT_EQ(read.size(), 3u);
  auto* copied = read[2]->AsBlockReference();
  EXPECT_EQ(copied->columns_, 3);
  EXPECT_EQ(copied->rows_, 2);
  EXPECT_DOUBLE_EQ(copied->column_spacing_, 4);
  EXPECT_DOUBLE_EQ(copied->row_spacing_, 5);
  EXPECT_EQ(read[1]->AsBlockReference()->columns_, 1);
}

TEST(CadFiles, HatchSplineEdgesWithAndWithoutFitPoints) {
  auto doc = LoadDrawing(FilePath("hatch_splines.dxf"));
  auto hatches = OfType(*doc, "HATCH");
  ASSERT_EQ(hatches.size(), 2u);
  for (MemEntity* e : hatches) {
    auto loops = dynamic_cast<host::Hatch&>(e->AsHostEntity()).Loops();
    ASSERT_EQ(loops.size(), 2u);
    for (const host::HatchLoop& loop : loops) {
      ASSERT_EQ(loop.edges.size(), 2u);
      int splines = 0;
      for (const auto& edge : loop.edges)
        if (edge.type == host::HatchEdge::Type::kSpline) {
          ++splines;
          EXPECT_EQ(edge.control_points.size(), 3u);
        }
      EXPECT_EQ(splines, 1);
    }
  }
}

}  // namespace
}  // namespace kestrana::dxf

namespace kestrana::dxf {
namespace {

int UpgradeMessages(MemDocument& doc) {
  int n = 0;
  for (const memhost::LogEntry& e : doc.GetSession().Log())
    n += e.kind == memhost::LogEntry::Kind::kMessage &&
         e.text.find("saved as DXF R2000") != std::string::npos;
  return n;
}

TEST(CadFiles, ChangedOldDrawingsAreWrittenInR2000Form) {
  for (const char* name :
       {"r12.dxf", "r12_no_handles.dxf", "r12_binary.dxf", "r14.dxf"}) {
    SCOPED_TRACE(name);
    std::string bytes = FileText(name);
    MemDocument doc;
    ReadDxf(doc, bytes);
    EXPECT_EQ(WriteDxf(doc), bytes);  // unchanged: as it was
    EXPECT_EQ(UpgradeMessages(doc), 0);

    auto& line = doc.ModelSpace().AddLine(Point3{0, 0, 0}, Point3{1, 1, 0});
    line.SetXData({{1001, host::XValue(std::string("Kestrana"))},
                   {1000, host::XValue(std::string("pipe"))}});
    std::string written = WriteDxf(doc);
    EXPECT_EQ(IsBinaryDxf(written), IsBinaryDxf(bytes));
    EXPECT_EQ(UpgradeMessages(doc), 1);
    // Written again: R2000 already, no second message.
    EXPECT_EQ(WriteDxf(doc), written);
    EXPECT_EQ(UpgradeMessages(doc), 1);

    MemDocument again;
    ReadDxf(again, written);
    EXPECT_EQ(ImageOf(again)->version, "AC1015");
    EXPECT_TRUE(OfType(again, "POLYLINE").empty());
    auto lws = OfType(again, "LWPOLYLINE");
    ASSERT_EQ(lws.size(), 1u);
    auto& lw = dynamic_cast<host::LwPolyline&>(lws[0]->AsHostEntity());
    EXPECT_EQ(lw.Coordinates(),
              (std::vector<double>{0, 0, 3, 0, 3, 3, 6, 4}));
    EXPECT_EQ(OfType(again, "LINE").size(), 3u);
    EXPECT_EQ(OfType(again, "INSERT").size(), 1u);
    // Blocks and their records are tied by handles of their own.
    auto* manhole = again.FindBlock("Manhole");
    ASSERT_NE(manhole, nullptr);
    EXPECT_EQ(manhole->MemEntities().size(), 2u);
  }
}

}  // namespace
}  // namespace kestrana::dxf

namespace kestrana::dxf {
namespace {

// The handles of the objects of the OBJECTS section, with their owners.
std::map<std::string, std::string> ObjectOwners(const std::string& text) {
  std::map<std::string, std::string> owners;
  Tokenizer tok(text);
  Tag t;
  bool in_objects = false;
  std::string handle;
  while (tok.Next(t)) {
    if (t.code == 2 && t.value == "OBJECTS") in_objects = true;
    if (!in_objects) continue;
    if (t.code == 0) handle.clear();
    if (t.code == 5) handle = std::string(t.value);
    if (t.code == 330 && !handle.empty())
      owners.emplace(handle, std::string(t.value));
  }
  return owners;
}

TEST(CadFiles, ErasedEntityTakesItsExtensionDictionaryWithIt) {
  std::string text = FileText("xdict.dxf");
  auto owners = ObjectOwners(text);
  MemDocument doc;
  ReadDxf(doc, text);
  auto lines = OfType(doc, "LINE");
  ASSERT_EQ(lines.size(), 2u);
  std::string gone = lines[0]->AsHostObject().Handle();
  std::string kept = lines[1]->AsHostObject().Handle();
  // Each line owns a dictionary that owns a record.
  auto owned_by = [&](const std::string& owner) {
    std::vector<std::string> out;
    for (const auto& [h, o] : owners)
      if (o == owner) out.push_back(h);
    return out;
  };
  ASSERT_EQ(owned_by(gone).size(), 1u);
  std::string gone_dict = owned_by(gone)[0];
  ASSERT_EQ(owned_by(gone_dict).size(), 1u);
  std::string gone_record = owned_by(gone_dict)[0];
  ASSERT_EQ(owned_by(kept).size(), 1u);

  lines[0]->AsHostEntity().Delete();
  std::string written = WriteDxf(doc);
  auto after = ObjectOwners(written);
  EXPECT_EQ(after.count(gone_dict), 0u);
  EXPECT_EQ(after.count(gone_record), 0u);
  EXPECT_EQ(after.count(owned_by(kept)[0]), 1u);
  EXPECT_EQ(after.size(), owners.size() - 2);
  // No object is left with an owner that is not in the file.
  MemDocument again;
  ReadDxf(again, written);
  for (const auto& [h, o] : after)
    if (o != "0") {
      bool known = after.count(o) > 0;
      if (!known) {
        uint64_t value = 0;
        ASSERT_TRUE(ParseHandle(o, value));
        known = again.FindByHandle(value) != nullptr ||
                written.find("\n5\n" + o + "\n") != std::string::npos ||
                written.find("\n  5\n" + o + "\n") != std::string::npos;
      }
      EXPECT_TRUE(known) << h << " owned by " << o;
    }
  EXPECT_EQ(WriteDxf(again), written);
}

}  // namespace
}  // namespace kestrana::dxf

namespace kestrana::dxf {
namespace {

TEST(CadFiles, PolylineWithoutHandleKeepsItsVertices) {
  // A file that gives a 3D polyline no handle: written with one of its
  // own, and with every vertex it was read with.
  auto doc = testing::Read(testing::MinimalDxf(
      "0\nPOLYLINE\n8\n0\n66\n1\n70\n8\n"
      "0\nVERTEX\n8\n0\n10\n1\n20\n2\n30\n3\n70\n32\n"
      "0\nVERTEX\n8\n0\n10\n4\n20\n5\n30\n6\n70\n32\n"
      "0\nSEQEND\n8\n0\n"));
  std::string written = WriteDxf(*doc);
  auto again = testing::Read(written);
  auto polylines = OfType(*again, "POLYLINE");
  ASSERT_EQ(polylines.size(), 1u);
  EXPECT_FALSE(polylines[0]->AsHostObject().Handle().empty());
  size_t vertices = 0;
  for (size_t at = written.find("VERTEX"); at != std::string::npos;
       at = written.find("VERTEX", at + 1))
    ++vertices;
  EXPECT_EQ(vertices, 2u);
  EXPECT_NE(written.find("SEQEND"), std::string::npos);
  EXPECT_EQ(WriteDxf(*again), written);
}

}  // namespace
}  // namespace kestrana::dxf
