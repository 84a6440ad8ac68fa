#include "dxf/template.h"

#include <cmath>

#include "dxf/tags.h"
#include "dxf/writer.h"

namespace kestrana::dxf {

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180.0;

void Var(TagWriter& w, const char* name) { w.Text(9, name); }

void TableHead(TagWriter& w, const char* name, uint64_t handle, int count) {
  w.Text(0, "TABLE");
  w.Text(2, name);
  w.Handle(5, handle);
  w.Text(330, "0");
  w.Text(100, "AcDbSymbolTable");
  w.Int(70, count);
}

void RecordHead(TagWriter& w, const char* type, uint64_t handle, uint64_t owner,
                const char* subclass) {
  w.Text(0, type);
  w.Handle(5, handle);
  w.Handle(330, owner);
  w.Text(100, "AcDbSymbolTableRecord");
  w.Text(100, subclass);
}

void Layout(TagWriter& w, uint64_t handle, uint64_t owner, const char* name,
            int tab, uint64_t block_record) {
  w.Text(0, "LAYOUT");
  w.Handle(5, handle);
  w.Text(102, "{ACAD_REACTORS");
  w.Handle(330, owner);
  w.Text(102, "}");
  w.Handle(330, owner);
  w.Text(100, "AcDbPlotSettings");
  w.Text(1, "");
  w.Text(2, "none_device");
  w.Text(4, "ISO_A3_(420.00_x_297.00_MM)");
  w.Text(6, "");
  for (int code = 40; code <= 49; ++code) w.Real(code, 0);
  w.Real(140, 0);
  w.Real(141, 0);
  w.Real(142, 1);
  w.Real(143, 1);
  w.Int(70, 688);
  w.Int(72, 1);
  w.Int(73, 0);
  w.Int(74, 5);
  w.Text(7, "");
  w.Int(75, 16);
  w.Int(76, 0);
  w.Int(77, 2);
  w.Int(78, 300);
  w.Real(147, 1);
  w.Real(148, 0);
  w.Real(149, 0);
  w.Text(100, "AcDbLayout");
  w.Text(1, name);
  w.Int(70, 1);
  w.Int(71, tab);
  w.Real(10, 0);
  w.Real(20, 0);
  w.Real(11, 420);
  w.Real(21, 297);
  w.Point(12, 0, 0, 0);
  w.Point(14, 1e20, 1e20, 1e20);
  w.Point(15, -1e20, -1e20, -1e20);
  w.Real(146, 0);
  w.Point(13, 0, 0, 0);
  w.Point(16, 1, 0, 0);
  w.Point(17, 0, 1, 0);
  w.Int(76, 0);
  w.Handle(330, block_record);
}

}  // namespace

std::string NewDrawingTemplate(memhost::MemDocument& doc) {
  doc.RegisterApp("Kestrana");
  auto next = [&] { return doc.NextHandle(); };
  memhost::MemBlock& model = doc.ModelSpaceBlock();
  memhost::MemBlock& paper = doc.PaperSpaceBlock();
  memhost::MemLayer& layer0 = *doc.FindLayer("0");
  memhost::MemTextStyle& standard = *doc.FindTextStyle("Standard");

  uint64_t vport_table = next(), ltype_table = next(), layer_table = next(),
           style_table = next(), view_table = next(), ucs_table = next(),
           appid_table = next(), dimstyle_table = next(), block_table = next();
  uint64_t vport = next(), by_block = next(), by_layer = next(),
           continuous = next(), acad = next(), dimstyle = next();
  uint64_t model_begin = next(), model_end = next(), paper_begin = next(),
           paper_end = next();
  uint64_t root = next(), groups = next(), layouts = next(),
           model_layout = next(), paper_layout = next(), plot_styles = next(),
           normal = next();

  std::string out;
  TagWriter w(out);
  auto section = [&](const char* name) {
    w.Text(0, "SECTION");
    w.Text(2, name);
  };
  auto point_var = [&](const char* name, const host::Point3& p) {
    Var(w, name);
    w.Point(10, p.x, p.y, p.z);
  };
  auto sys_point = [&](const char* name) {
    host::SysVar v = doc.GetVariable(name);
    const auto* p = std::get_if<host::Point3>(&v);
    return p ? *p : host::Point3{};
  };

  section("HEADER");
  Var(w, "$ACADVER");
  w.Text(1, kNewDrawingVersion);
  Var(w, "$ACADMAINTVER");
  w.Int(70, 6);
  Var(w, "$DWGCODEPAGE");
  w.Text(3, "ANSI_1252");
  point_var("$INSBASE", {0, 0, 0});
  point_var("$EXTMIN", {1e20, 1e20, 1e20});
  point_var("$EXTMAX", {-1e20, -1e20, -1e20});
  Var(w, "$LIMMIN");
  w.Real(10, 0);
  w.Real(20, 0);
  Var(w, "$LIMMAX");
  w.Real(10, 420);
  w.Real(20, 297);
  Var(w, "$CLAYER");
  w.Text(8, doc.ActiveLayer().Name());
  Var(w, "$TEXTSTYLE");
  w.Text(7, doc.ActiveTextStyle().Name());
  Var(w, "$CELTYPE");
  w.Text(6, "ByLayer");
  Var(w, "$DIMSTYLE");
  w.Text(2, "Standard");
  Var(w, "$LUNITS");
  w.Int(70, 2);
  Var(w, "$LUPREC");
  w.Int(70, 4);
  Var(w, "$MEASUREMENT");
  w.Int(70, 1);
  Var(w, "$HANDSEED");
  w.Handle(5, doc.HandleSeed());
  point_var("$UCSORG", {0, 0, 0});
  point_var("$UCSXDIR", sys_point("UCSXDIR"));
  point_var("$UCSYDIR", sys_point("UCSYDIR"));
  w.Text(0, "ENDSEC");

  section("CLASSES");
  w.Text(0, "ENDSEC");

  section("TABLES");
  TableHead(w, "VPORT", vport_table, 1);
  RecordHead(w, "VPORT", vport, vport_table, "AcDbViewportTableRecord");
  w.Text(2, "*Active");
  w.Int(70, 0);
  w.Real(10, 0);
  w.Real(20, 0);
  w.Real(11, 1);
  w.Real(21, 1);
  w.Real(12, 0);
  w.Real(22, 0);
  w.Real(13, 0);
  w.Real(23, 0);
  w.Real(14, 0.5);
  w.Real(24, 0.5);
  w.Real(15, 0.5);
  w.Real(25, 0.5);
  w.Point(16, 0, 0, 1);
  w.Point(17, 0, 0, 0);
  w.Real(40, 100);
  w.Real(41, 1.5);
  w.Real(42, 50);
  w.Real(43, 0);
  w.Real(44, 0);
  w.Real(50, 0);
  w.Real(51, 0);
  w.Int(71, 0);
  w.Int(72, 100);
  w.Int(73, 1);
  w.Int(74, 3);
  w.Int(75, 0);
  w.Int(76, 0);
  w.Int(77, 0);
  w.Int(78, 0);
  w.Int(281, 0);
  w.Int(65, 1);
  w.Point(110, 0, 0, 0);
  w.Point(111, 1, 0, 0);
  w.Point(112, 0, 1, 0);
  w.Int(79, 0);
  w.Real(146, 0);
  w.Text(0, "ENDTAB");

  TableHead(w, "LTYPE", ltype_table, 3);
  for (auto [handle, name] :
       {std::pair{by_block, "ByBlock"}, std::pair{by_layer, "ByLayer"},
        std::pair{continuous, "Continuous"}}) {
    RecordHead(w, "LTYPE", handle, ltype_table, "AcDbLinetypeTableRecord");
    w.Text(2, name);
    w.Int(70, 0);
    w.Text(3, handle == continuous ? "Solid line" : "");
    w.Int(72, 65);
    w.Int(73, 0);
    w.Real(40, 0);
  }
  w.Text(0, "ENDTAB");

  TableHead(w, "LAYER", layer_table, 1);
  RecordHead(w, "LAYER", layer0.HandleValue(), layer_table,
             "AcDbLayerTableRecord");
  w.Text(2, layer0.name_);
  w.Int(70, (layer0.frozen_ ? 1 : 0) | (layer0.locked_ ? 4 : 0));
  w.Int(62, layer0.on_ ? layer0.color_ : -layer0.color_);
  w.Text(6, "Continuous");
  w.Int(370, -3);
  w.Handle(390, normal);
  w.Text(0, "ENDTAB");

  TableHead(w, "STYLE", style_table, 1);
  RecordHead(w, "STYLE", standard.HandleValue(), style_table,
             "AcDbTextStyleTableRecord");
  w.Text(2, standard.name_);
  w.Int(70, 0);
  w.Real(40, standard.height_);
  w.Real(41, standard.width_);
  w.Real(50, standard.oblique_ / kDegree);
  w.Int(71, 0);
  w.Real(42, 2.5);
  w.Text(3, standard.font_file_);
  w.Text(4, "");
  w.Text(0, "ENDTAB");

  TableHead(w, "VIEW", view_table, 0);
  w.Text(0, "ENDTAB");
  TableHead(w, "UCS", ucs_table, 0);
  w.Text(0, "ENDTAB");

  TableHead(w, "APPID", appid_table, 1);
  RecordHead(w, "APPID", acad, appid_table, "AcDbRegAppTableRecord");
  w.Text(2, "ACAD");
  w.Int(70, 0);
  w.Text(0, "ENDTAB");

  TableHead(w, "DIMSTYLE", dimstyle_table, 1);
  w.Text(100, "AcDbDimStyleTable");
  w.Int(71, 0);
  w.Text(0, "DIMSTYLE");
  w.Handle(105, dimstyle);
  w.Handle(330, dimstyle_table);
  w.Text(100, "AcDbSymbolTableRecord");
  w.Text(100, "AcDbDimStyleTableRecord");
  w.Text(2, "Standard");
  w.Int(70, 0);
  w.Real(40, 1);
  w.Real(41, 2.5);
  w.Real(42, 0.625);
  w.Real(43, 3.75);
  w.Real(44, 1.25);
  w.Real(140, 2.5);
  w.Real(141, 2.5);
  w.Real(147, 0.625);
  w.Int(77, 1);
  w.Int(271, 2);
  w.Handle(340, standard.HandleValue());
  w.Text(0, "ENDTAB");

  TableHead(w, "BLOCK_RECORD", block_table, 2);
  for (auto [block, layout] :
       {std::pair{&model, model_layout}, std::pair{&paper, paper_layout}}) {
    RecordHead(w, "BLOCK_RECORD", block->HandleValue(), block_table,
               "AcDbBlockTableRecord");
    w.Text(2, block->name_);
    w.Handle(340, layout);
    w.Int(70, 0);
    w.Int(280, 1);
    w.Int(281, 0);
  }
  w.Text(0, "ENDTAB");
  w.Text(0, "ENDSEC");

  section("BLOCKS");
  for (auto [block, begin, end] :
       {std::tuple{&model, model_begin, model_end},
        std::tuple{&paper, paper_begin, paper_end}}) {
    bool is_paper = block == &paper;
    w.Text(0, "BLOCK");
    w.Handle(5, begin);
    w.Handle(330, block->HandleValue());
    w.Text(100, "AcDbEntity");
    if (is_paper) w.Int(67, 1);
    w.Text(8, "0");
    w.Text(100, "AcDbBlockBegin");
    w.Text(2, block->name_);
    w.Int(70, 0);
    w.Point(10, block->origin_.x, block->origin_.y, block->origin_.z);
    w.Text(3, block->name_);
    w.Text(1, "");
    w.Text(0, "ENDBLK");
    w.Handle(5, end);
    w.Handle(330, block->HandleValue());
    w.Text(100, "AcDbEntity");
    if (is_paper) w.Int(67, 1);
    w.Text(8, "0");
    w.Text(100, "AcDbBlockEnd");
  }
  w.Text(0, "ENDSEC");

  section("ENTITIES");
  w.Text(0, "ENDSEC");

  section("OBJECTS");
  w.Text(0, "DICTIONARY");
  w.Handle(5, root);
  w.Text(330, "0");
  w.Text(100, "AcDbDictionary");
  w.Int(281, 1);
  w.Text(3, "ACAD_GROUP");
  w.Handle(350, groups);
  w.Text(3, "ACAD_LAYOUT");
  w.Handle(350, layouts);
  w.Text(3, "ACAD_PLOTSTYLENAME");
  w.Handle(350, plot_styles);

  w.Text(0, "DICTIONARY");
  w.Handle(5, groups);
  w.Handle(330, root);
  w.Text(100, "AcDbDictionary");
  w.Int(281, 1);

  w.Text(0, "DICTIONARY");
  w.Handle(5, layouts);
  w.Handle(330, root);
  w.Text(100, "AcDbDictionary");
  w.Int(281, 1);
  w.Text(3, "Layout1");
  w.Handle(350, paper_layout);
  w.Text(3, "Model");
  w.Handle(350, model_layout);

  w.Text(0, "ACDBDICTIONARYWDFLT");
  w.Handle(5, plot_styles);
  w.Handle(330, root);
  w.Text(100, "AcDbDictionary");
  w.Int(281, 1);
  w.Text(3, "Normal");
  w.Handle(350, normal);
  w.Text(100, "AcDbDictionaryWithDefault");
  w.Handle(340, normal);

  w.Text(0, "ACDBPLACEHOLDER");
  w.Handle(5, normal);
  w.Handle(330, plot_styles);

  Layout(w, model_layout, layouts, "Model", 0, model.HandleValue());
  Layout(w, paper_layout, layouts, "Layout1", 1, paper.HandleValue());
  w.Text(0, "ENDSEC");
  w.Text(0, "EOF");
  return out;
}

}  // namespace kestrana::dxf
