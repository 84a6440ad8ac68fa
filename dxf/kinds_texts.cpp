// Texts, attribute references and attribute definitions.
#include <algorithm>
#include <cmath>

#include "dxf/kind_fields.h"

namespace kestrana::dxf::kinds {

namespace {

// ------------------------------------------------ TEXT, ATTRIB, ATTDEF

// Reads the AcDbText part shared by the three kinds; `vertical_code` is 73
// for TEXT and 74 for attributes.
template <class T>
void ReadTextPart(const Shape& s, ReadContext& ctx, T& e, Markers markers,
                  int vertical_code) {
  int h = 0, v = 0;
  bool has_alignment_point = false;
  ForBody(s, markers, [&](std::string_view, const Tag& t) {
    if (IsCoord(t.code, 10)) {
      SetCoord(e.insertion_, t, 10);
    } else if (IsCoord(t.code, 11)) {
      SetCoord(e.alignment_point_, t, 11);
      has_alignment_point = true;
    } else if (t.code == 40) {
      e.height_ = RealValue(t);
    } else if (t.code == 1) {
      e.text_ = ctx.codec.Decode(t.value);
    } else if (t.code == 50) {
      e.rotation_ = RealValue(t) * kDegree;
    } else if (t.code == 41) {
      e.width_factor_ = RealValue(t);
    } else if (t.code == 51) {
      e.oblique_ = RealValue(t) * kDegree;
    } else if (t.code == 7) {
      e.style_ = ctx.codec.Decode(t.value);
    } else if (t.code == 72) {
      h = static_cast<int>(IntValue(t));
    } else if (t.code == vertical_code) {
      v = static_cast<int>(IntValue(t));
    } else if (IsCoord(t.code, 210)) {
      SetCoord(e.normal_, t, 210);
    }
  });
  e.alignment_ = AlignmentFromCodes(h, v);
  if (!has_alignment_point && e.alignment_ != host::TextAlignment::kLeft)
    e.alignment_point_ = e.insertion_;
  if (FacesDown(e.normal_)) {
    e.insertion_ = Flip(e.insertion_);
    e.alignment_point_ = Flip(e.alignment_point_);
    e.rotation_ = FlipAngle(e.rotation_);
  }
}

template <class T>
void TextPartFields(T& e, FieldGroup& g) {
  int h = 0, v = 0;
  AlignmentToCodes(e.alignment_, h, v);
  bool at_insertion = e.alignment_ == host::TextAlignment::kLeft ||
                      e.alignment_ == host::TextAlignment::kAligned ||
                      e.alignment_ == host::TextAlignment::kFit;
  bool down = FacesDown(e.normal_);
  auto plane = [down](const Point3& p) { return down ? Flip(p) : p; };
  g.Point(10, plane(at_insertion ? e.insertion_ : e.BaselineStart()));
  g.Real(40, e.height_);
  g.Text(1, e.text_);
  g.Degrees(50, down ? FlipAngle(e.rotation_) : e.rotation_, true);
  g.RealOr(41, e.width_factor_, 1);
  g.Degrees(51, e.oblique_, true);
  g.TextOr(7, e.style_, "Standard");
  g.IntOr(72, h, 0);
  // Left-aligned texts have no alignment point unless one was set.
  g.PointOr(11, plane(e.alignment_point_),
            e.alignment_ == host::TextAlignment::kLeft &&
                e.alignment_point_ == Point3{});
  NormalField(g, e.normal_);
}

template <class T>
void TextPartHash(const T& e, Hasher& h) {
  h.Add(e.insertion_);
  h.Add(e.alignment_point_);
  h.Add(e.height_);
  h.Add(std::string_view(e.text_));
  h.Add(e.rotation_);
  h.Add(e.width_factor_);
  h.Add(e.oblique_);
  h.Add(std::string_view(e.style_));
  h.Add(static_cast<int64_t>(e.alignment_));
  h.Add(e.normal_);
}

int VerticalCode(host::TextAlignment a) {
  int h = 0, v = 0;
  AlignmentToCodes(a, h, v);
  return v;
}

std::unique_ptr<MemEntity> ReadText(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemText>();
  ReadTextPart(s, ctx, *e, {"AcDbText"}, 73);
  return e;
}
void TextFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<memhost::MemText&>(me);
  TextPartFields(e, plan.groups.emplace_back("AcDbText"));
  plan.groups.emplace_back("AcDbText").IntOr(73, VerticalCode(e.alignment_), 0);
}
void TextHash(const MemEntity& me, Hasher& h) {
  TextPartHash(static_cast<const memhost::MemText&>(me), h);
}

std::unique_ptr<MemEntity> ReadAttrib(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemAttributeReference>();
  ReadTextPart(s, ctx, *e, {"AcDbText", "AcDbAttribute"}, 74);
  ForBody(s, {"AcDbAttribute"}, [&](std::string_view, const Tag& t) {
    if (t.code == 2)
      e->tag_ = ctx.codec.Decode(t.value);
    else if (t.code == 70)
      e->invisible_ = (IntValue(t) & 1) != 0;
  });
  return e;
}
void AttribFields(MemEntity& me, const WriteContext& ctx, WritePlan& plan) {
  auto& e = static_cast<memhost::MemAttributeReference&>(me);
  TextPartFields(e, plan.groups.emplace_back("AcDbText"));
  FieldGroup& g = plan.groups.emplace_back("AcDbAttribute");
  g.Text(2, e.tag_);
  int64_t flags = OriginalInt(ctx.original, "AcDbAttribute", 70, 0);
  g.Int(70, (flags & ~int64_t{1}) | (e.invisible_ ? 1 : 0));
  g.IntOr(74, VerticalCode(e.alignment_), 0);
}
void AttribHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemAttributeReference&>(me);
  TextPartHash(e, h);
  h.Add(std::string_view(e.tag_));
  h.Add(e.invisible_);
}

std::unique_ptr<MemEntity> ReadAttdef(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<memhost::MemAttributeDefinition>();
  ReadTextPart(s, ctx, *e, {"AcDbText", "AcDbAttributeDefinition"}, 74);
  ForBody(s, {"AcDbAttributeDefinition"}, [&](std::string_view, const Tag& t) {
    if (t.code == 2)
      e->tag_ = ctx.codec.Decode(t.value);
    else if (t.code == 3)
      e->prompt_ = ctx.codec.Decode(t.value);
    else if (t.code == 70)
      e->mode_ = static_cast<int>(IntValue(t) & 15);
  });
  return e;
}
void AttdefFields(MemEntity& me, const WriteContext& ctx, WritePlan& plan) {
  auto& e = static_cast<memhost::MemAttributeDefinition&>(me);
  TextPartFields(e, plan.groups.emplace_back("AcDbText"));
  FieldGroup& g = plan.groups.emplace_back("AcDbAttributeDefinition");
  g.Text(3, e.prompt_);
  g.Text(2, e.tag_);
  int64_t flags = OriginalInt(ctx.original, "AcDbAttributeDefinition", 70, 0);
  g.Int(70, (flags & ~int64_t{15}) | e.mode_);
  g.IntOr(74, VerticalCode(e.alignment_), 0);
}
void AttdefHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const memhost::MemAttributeDefinition&>(me);
  TextPartHash(e, h);
  h.Add(std::string_view(e.tag_));
  h.Add(std::string_view(e.prompt_));
  h.Add(static_cast<int64_t>(e.mode_));
}


}  // namespace

using host::EntityKind;
const EntityCodec kTextCodec = {"TEXT", EntityKind::kText, ReadText,
                                TextFields, TextHash};
const EntityCodec kAttribCodec = {"ATTRIB", EntityKind::kAttributeReference,
                                  ReadAttrib, AttribFields, AttribHash};
const EntityCodec kAttdefCodec = {"ATTDEF", EntityKind::kAttributeDefinition,
                                  ReadAttdef, AttdefFields, AttdefHash};

}  // namespace kestrana::dxf::kinds
