#include "dxf/records.h"

#include <cstdlib>

namespace kestrana::dxf {

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180.0;

const Shape::Group* MainGroup(const Shape& s, std::string_view marker) {
  if (!s.has_markers) return s.groups.empty() ? nullptr : &s.groups[0];
  return s.Find(marker);
}

}  // namespace

void ReadLayerRecord(const Shape& s, memhost::MemLayer& layer,
                     const TextCodec&) {
  const Shape::Group* g = MainGroup(s, "AcDbLayerTableRecord");
  if (g == nullptr) return;
  for (size_t i = g->begin; i < g->end; ++i) {
    const Tag& t = s.tags[i];
    if (t.code == 70) {
      int64_t flags = IntValue(t);
      layer.frozen_ = (flags & 1) != 0;
      layer.locked_ = (flags & 4) != 0;
    } else if (t.code == 62) {
      int64_t color = IntValue(t);
      // A negative colour is the file's way of saying "off".
      layer.on_ = color >= 0;
      layer.color_ = static_cast<int>(std::llabs(color));
    }
  }
}

void ReadStyleRecord(const Shape& s, memhost::MemTextStyle& style,
                     const TextCodec& codec) {
  const Shape::Group* g = MainGroup(s, "AcDbTextStyleTableRecord");
  if (g == nullptr) return;
  for (size_t i = g->begin; i < g->end; ++i) {
    const Tag& t = s.tags[i];
    if (t.code == 40)
      style.height_ = RealValue(t);
    else if (t.code == 41)
      style.width_ = RealValue(t);
    else if (t.code == 50)
      style.oblique_ = RealValue(t) * kDegree;
    else if (t.code == 3)
      style.font_file_ = codec.Decode(t.value);
  }
}

uint64_t LayerHash(const memhost::MemLayer& l) {
  Hasher h;
  h.Add(std::string_view(l.name_));
  h.Add(l.frozen_);
  h.Add(l.locked_);
  h.Add(l.on_);
  h.Add(static_cast<int64_t>(l.color_));
  return h.Value();
}

uint64_t StyleHash(const memhost::MemTextStyle& s) {
  Hasher h;
  h.Add(std::string_view(s.name_));
  h.Add(s.height_);
  h.Add(s.width_);
  h.Add(s.oblique_);
  h.Add(std::string_view(s.font_file_));
  return h.Value();
}

uint64_t BlockHash(const memhost::MemBlock& b) {
  Hasher h;
  h.Add(std::string_view(b.name_));
  h.Add(b.origin_);
  h.Add(b.is_xref_);
  return h.Value();
}

void LayerPlan(memhost::MemLayer& l, const Shape* original, WritePlan& plan) {
  plan.type = "LAYER";
  plan.groups.emplace_back("AcDbSymbolTableRecord");
  FieldGroup& g = plan.groups.emplace_back("AcDbLayerTableRecord");
  g.Text(2, l.name_);
  int64_t flags = 0;
  if (original != nullptr)
    if (const Shape::Group* og = MainGroup(*original, "AcDbLayerTableRecord"))
      for (size_t i = og->begin; i < og->end; ++i)
        if (original->tags[i].code == 70)
          ParseInt(original->tags[i].value, flags);
  flags = (flags & ~int64_t{5}) | (l.frozen_ ? 1 : 0) | (l.locked_ ? 4 : 0);
  g.Int(70, flags);
  g.Int(62, l.on_ ? l.color_ : -l.color_);
  g.NewText(6, "Continuous");
  g.NewInt(370, -3);
  PlanXData(l, plan);
}

void StylePlan(memhost::MemTextStyle& s, WritePlan& plan) {
  plan.type = "STYLE";
  plan.groups.emplace_back("AcDbSymbolTableRecord");
  FieldGroup& g = plan.groups.emplace_back("AcDbTextStyleTableRecord");
  g.Text(2, s.name_);
  g.NewInt(70, 0);
  g.Real(40, s.height_);
  g.Real(41, s.width_);
  g.Degrees(50, s.oblique_, false);
  g.NewInt(71, 0);
  g.NewText(42, "2.5");
  g.Text(3, s.font_file_);
  g.NewText(4, "");
  PlanXData(s, plan);
}

void BlockRecordPlan(memhost::MemBlock& b, WritePlan& plan) {
  plan.type = "BLOCK_RECORD";
  plan.groups.emplace_back("AcDbSymbolTableRecord");
  FieldGroup& g = plan.groups.emplace_back("AcDbBlockTableRecord");
  g.Text(2, b.name_);
  g.NewText(340, "0");
  g.NewInt(70, 0);
  g.NewInt(280, 1);
  g.NewInt(281, 0);
  PlanXData(b, plan);
}

void BlockBeginPlan(memhost::MemBlock& b, bool paper_space, WritePlan& plan) {
  plan.type = "BLOCK";
  FieldGroup& common = plan.groups.emplace_back("AcDbEntity");
  if (paper_space) common.NewInt(67, 1);
  common.NewText(8, "0");
  FieldGroup& g = plan.groups.emplace_back("AcDbBlockBegin");
  g.Text(2, b.name_);
  g.NewInt(70, !b.name_.empty() && b.name_[0] == '*' && !b.is_layout_ ? 1 : 0);
  g.Point(10, b.origin_);
  g.Text(3, b.name_);
  g.NewText(1, "");
}

void BlockEndPlan(bool paper_space, WritePlan& plan) {
  plan.type = "ENDBLK";
  FieldGroup& common = plan.groups.emplace_back("AcDbEntity");
  if (paper_space) common.NewInt(67, 1);
  common.NewText(8, "0");
  plan.groups.emplace_back("AcDbBlockEnd");
}

}  // namespace kestrana::dxf
