// What kestrana writes, read by independent programs: ezdxf (with its
// audit) and LibreCAD.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "dxf/io.h"
#include "dxf_test_util.h"

namespace kestrana::dxf {
namespace {

namespace fs = std::filesystem;

std::string Capture(const std::string& command) {
  std::string out;
  FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return out;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, pipe)) > 0) out.append(buf, n);
  ::pclose(pipe);
  return out;
}

std::string EzdxfSummary(const std::string& path) {
  return Capture("/usr/bin/python3 " KESTRANA_SOURCE_DIR
                 "/tests/dxf/ezdxf_summary.py '" +
                 path + "' 2>/dev/null");
}

class Peers : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("kestrana_peer_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Path(const std::string& name) const {
    return (dir_ / name).string();
  }

  // A drawing of the kinds the system writes, as its logic builds them.
  static void Build(memhost::MemDocument& doc) {
    auto& layer = doc.GetLayers().Add("Kanäle - Network");
    layer.SetTrueColor(3);
    doc.SetActiveLayer(layer);
    doc.ModelSpace().SetXData(
        {{1001, "Kestrana"}, {1000, "2.00"}, {1000, "Metric"}});
    auto& node = doc.GetBlocks().Add({0, 0, 0}, "Kestrana_Node");
    node.AddCircle({0, 0, 0}, 1);
    node.AddAttribute(0.5, 0, "Label", {1, 1, 0}, "LABEL", "N-?");
    auto& pipe = doc.ModelSpace().AddLightWeightPolyline({0, 0, 10, 0, 10, 10});
    pipe.SetBulge(1, 0.3);
    pipe.SetXData({{1001, "Kestrana"},
                   {1000, "Pipe;Kanäle;P-1"},
                   {1040, 200.0},
                   {1070, int16_t{1}}});
    auto& ref =
        doc.ModelSpace().InsertBlock({10, 10, 0}, "Kestrana_Node", 1, 1, 1, 0);
    ref.GetAttributes()[0]->SetTextString("N-1");
    ref.SetXData({{1001, "Kestrana"}, {1000, "Node;Kanäle;N-1"}});
    auto& text = doc.ModelSpace().AddText("Schacht Ж水", {0, 20, 0}, 2);
    text.SetAlignment(host::TextAlignment::kMiddleCenter);
    text.SetTextAlignmentPoint({5, 20, 0});
    doc.ModelSpace().AddLine({0, 0, 0}, {5, 5, 0});
    doc.ModelSpace().AddPoint({1, 1, 0}).SetXData(
        {{1001, "Other"}, {1000, "x"}});
    doc.ModelSpace().AddEllipse({30, 0, 0}, {5, 0, 0}, 0.5);
    doc.ModelSpace().AddArc({30, 10, 0}, 2, 0.5, 3.5);
    auto& square =
        doc.ModelSpace().AddLightWeightPolyline({40, 0, 50, 0, 50, 10, 40, 10});
    square.SetClosed(true);
    doc.ModelSpace().AddHatch(1, "SOLID", false).AppendOuterLoop({&square});
    auto& circle = doc.ModelSpace().AddCircle({60, 5, 0}, 4);
    doc.ModelSpace().AddHatch(1, "ANSI31", true).AppendOuterLoop({&circle});
  }

  fs::path dir_;
};

TEST_F(Peers, EzdxfReadsNewDrawingsWithoutAuditErrors) {
  memhost::MemDocument doc;
  Build(doc);
  SaveDrawing(doc, Path("new.dxf"));
  std::string summary = EzdxfSummary(Path("new.dxf"));
  ASSERT_FALSE(summary.empty()) << "ezdxf could not read the file";
  EXPECT_NE(summary.find("\"version\": \"AC1024\", \"errors\": []"),
            std::string::npos)
      << summary;
  for (const char* type : {"LWPOLYLINE", "INSERT", "TEXT", "LINE", "POINT",
                           "ELLIPSE", "HATCH", "CIRCLE", "ARC"})
    EXPECT_NE(summary.find(std::string("\"type\": \"") + type + "\""),
              std::string::npos)
        << type;
  EXPECT_NE(summary.find("\"layer\": \"Kanäle - Network\""), std::string::npos);
  EXPECT_NE(summary.find("\"attribs\": [[\"LABEL\", \"N-1\"]]"),
            std::string::npos);
  EXPECT_NE(summary.find("\"text\": \"Schacht Ж水\""), std::string::npos);
  EXPECT_NE(summary.find("\"Kestrana\": [[1001, \"Kestrana\"], [1000, "
                         "\"Pipe;Kanäle;P-1\"], [1040, 200.0], "
                         "[1070, 1]]"),
            std::string::npos)
      << summary;
  EXPECT_NE(
      summary.find("\"blocks\": {\"Kestrana_Node\": [\"CIRCLE\", \"ATTDEF\"]}"),
      std::string::npos)
      << summary;
  EXPECT_NE(summary.find("\"appids\": [\"ACAD\", \"Kestrana\", \"Other\"]"),
            std::string::npos)
      << summary;
  EXPECT_NE(
      summary.find("\"msp_xdata\": [[1000, \"2.00\"], [1000, \"Metric\"]]"),
      std::string::npos)
      << summary;
}

TEST_F(Peers, EzdxfReadsChangedDrawings) {
  memhost::MemDocument original;
  Build(original);
  std::string text = WriteDxf(original);
  auto doc = testing::Read(text);
  for (auto* e : doc->ModelSpaceBlock().MemEntities()) {
    host::Entity& he = e->AsHostEntity();
    if (he.EntityName() == "LINE") {
      he.Delete();
    } else if (auto* pl = dynamic_cast<host::LwPolyline*>(&he);
               pl && !pl->Closed()) {
      pl->SetCoordinates({0, 0, 10, 0, 10, 10, 20, 10});
      pl->SetXData(
          {{1001, "Kestrana"}, {1000, "Pipe;Kanäle;P-1"}, {1040, 300.0}});
    } else if (auto* t = dynamic_cast<host::Text*>(&he)) {
      t->SetTextString("geändert");
      t->SetAlignment(host::TextAlignment::kLeft);
    } else if (auto* ref = dynamic_cast<host::BlockReference*>(&he)) {
      ref->SetInsertionPoint({12, 12, 0});
      ref->GetAttributes()[0]->SetTextString("N-9");
    }
  }
  doc->GetLayers().Add("Added").SetXData(
      {{1001, "ThirdApp"}, {1070, int16_t{3}}});
  doc->SetActiveLayer(doc->GetLayers().Item("Added"));
  doc->ModelSpace()
      .AddCircle({0, 0, 0}, 3)
      .SetXData({{1001, "Kestrana"}, {1000, "new"}});
  SaveDrawing(*doc, Path("changed.dxf"));
  std::string summary = EzdxfSummary(Path("changed.dxf"));
  ASSERT_FALSE(summary.empty());
  EXPECT_NE(summary.find("\"errors\": []"), std::string::npos) << summary;
  EXPECT_EQ(summary.find("\"type\": \"LINE\""), std::string::npos);
  EXPECT_NE(summary.find("[1040, 300.0]"), std::string::npos);
  EXPECT_NE(summary.find("\"text\": \"geändert\""), std::string::npos);
  EXPECT_NE(summary.find("\"attribs\": [[\"LABEL\", \"N-9\"]]"),
            std::string::npos);
  EXPECT_NE(summary.find("\"type\": \"CIRCLE\", \"handle\": \""),
            std::string::npos);
  EXPECT_NE(
      summary.find("\"Kestrana\": [[1001, \"Kestrana\"], [1000, \"new\"]]"),
      std::string::npos);
  EXPECT_NE(summary.find("\"ThirdApp\""), std::string::npos)
      << "APPID of a layer's XData";
  // The untouched hatch came through as it was read.
  EXPECT_NE(summary.find("\"type\": \"HATCH\""), std::string::npos);
}

// World points by "handle name", as tests/dxf/ezdxf_mirrored.py prints them.
using Points = std::map<std::string, host::Point3>;

Points EzdxfPoints(const std::string& path) {
  std::istringstream in(Capture("/usr/bin/python3 " KESTRANA_SOURCE_DIR
                                "/tests/dxf/ezdxf_mirrored.py points '" +
                                path + "'"));
  Points out;
  std::string handle, name;
  double x, y;
  while (in >> handle >> name >> x >> y) out[handle + " " + name] = {x, y, 0};
  return out;
}

// The same points from the state kestrana read. Arcs and ellipses turn
// counter-clockwise from above here, so their ends come the other way round.
Points KestranaPoints(memhost::MemDocument& doc) {
  Points out;
  auto put = [&](memhost::MemEntity& e, const char* name,
                 const host::Point3& p) {
    out[e.AsHostEntity().Handle() + " " + name] = {p.x, p.y, 0};
  };
  for (memhost::MemEntity* e : doc.ModelSpaceBlock().MemEntities()) {
    if (auto* circle = dynamic_cast<memhost::MemCircle*>(e)) {
      put(*e, "center", circle->Center());
    } else if (auto* arc = dynamic_cast<memhost::MemArc*>(e)) {
      put(*e, "start", arc->EndPoint());
      put(*e, "end", arc->StartPoint());
    } else if (auto* ellipse = dynamic_cast<memhost::MemEllipse*>(e)) {
      host::Point3 minor = memhost::EllipseMinorAxis(
          ellipse->major_axis_, ellipse->ratio_, ellipse->normal_);
      auto at = [&](double t) {
        return host::Point3{
            ellipse->center_.x + ellipse->major_axis_.x * std::cos(t) +
                minor.x * std::sin(t),
            ellipse->center_.y + ellipse->major_axis_.y * std::cos(t) +
                minor.y * std::sin(t),
            0};
      };
      put(*e, "start", at(ellipse->end_param_));
      put(*e, "end", at(ellipse->start_param_));
    } else if (auto* text = dynamic_cast<memhost::MemText*>(e)) {
      put(*e, "insert", text->InsertionPoint());
    } else if (auto* hatch = dynamic_cast<memhost::MemHatch*>(e)) {
      const host::HatchLoop& loop = hatch->loops_.at(0);
      std::vector<host::Point3> corners;
      if (loop.is_polyline) {
        for (size_t i = 0; i + 1 < loop.vertices.size(); i += 2)
          corners.push_back({loop.vertices[i], loop.vertices[i + 1], 0});
      } else {
        corners.push_back(loop.edges.at(0).center);
        for (size_t k = 1; k < loop.edges.size(); ++k)
          corners.push_back(loop.edges[k].end);
      }
      for (size_t k = 0; k < corners.size(); ++k)
        put(*e, ("v" + std::to_string(k)).c_str(), corners[k]);
    } else if (auto* ref = dynamic_cast<memhost::MemBlockReference*>(e)) {
      put(*e, "line_start", ref->BlockTransform().Apply({0, 0, 0}));
      put(*e, "line_end", ref->BlockTransform().Apply({1, 0, 0}));
      for (auto* a : ref->Attributes()) put(*a, "insert", a->InsertionPoint());
    }
  }
  return out;
}

void ExpectSamePoints(const Points& got, const Points& want, double dx) {
  ASSERT_EQ(got.size(), want.size());
  for (const auto& [key, p] : want) {
    auto it = got.find(key);
    ASSERT_NE(it, got.end()) << key;
    EXPECT_NEAR(it->second.x, p.x + dx, 1e-9) << key;
    EXPECT_NEAR(it->second.y, p.y, 1e-9) << key;
  }
}

TEST_F(Peers, MirroredEntitiesLandWhereEzdxfPutsThem) {
  Capture("/usr/bin/python3 " KESTRANA_SOURCE_DIR
          "/tests/dxf/ezdxf_mirrored.py write '" +
          Path("mirrored.dxf") + "'");
  Points ezdxf = EzdxfPoints(Path("mirrored.dxf"));
  ASSERT_EQ(ezdxf.size(), 15u) << "ezdxf wrote no drawing";
  auto doc = LoadDrawing(Path("mirrored.dxf"));
  ExpectSamePoints(KestranaPoints(*doc), ezdxf, 0);

  // Moved east by the logic and written: ezdxf finds every point moved.
  for (memhost::MemEntity* e : doc->ModelSpaceBlock().MemEntities())
    e->AsHostEntity().Move({0, 0, 0}, {10, 0, 0});
  SaveDrawing(*doc, Path("moved.dxf"));
  std::string summary = EzdxfSummary(Path("moved.dxf"));
  EXPECT_NE(summary.find("\"errors\": []"), std::string::npos) << summary;
  ExpectSamePoints(EzdxfPoints(Path("moved.dxf")), ezdxf, 10);
}

TEST_F(Peers, LibreCadDrawsNewDrawings) {
  memhost::MemDocument doc;
  Build(doc);
  SaveDrawing(doc, Path("draw.dxf"));
  Capture(
      "cd '" + dir_.string() +
      "' && QT_QPA_PLATFORM=offscreen timeout 300 librecad dxf2pdf -a draw.dxf "
      ">/dev/null 2>&1");
  ASSERT_TRUE(fs::exists(Path("draw.pdf"))) << "LibreCAD wrote no PDF";
  // An empty page is about 1.3 kB.
  EXPECT_GT(fs::file_size(Path("draw.pdf")), 5000u);
}

}  // namespace
}  // namespace kestrana::dxf
