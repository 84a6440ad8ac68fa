// Block references (INSERT).
#include <algorithm>
#include <cmath>

#include "dxf/kind_fields.h"

namespace kestrana::dxf::kinds {

namespace {

// -------------------------------------------------------------- INSERT

using memhost::MemBlockReference;
const FieldTable<MemBlockReference> kInsertFields = {
    {"AcDbBlockReference",
     {TextF(2, &MemBlockReference::block_name_),
      PointF(10, &MemBlockReference::insertion_),
      RealOrF(41, &MemBlockReference::sx_, 1),
      RealOrF(42, &MemBlockReference::sy_, 1),
      RealOrF(43, &MemBlockReference::sz_, 1),
      DegreesOrF(50, &MemBlockReference::rotation_),
      NormalF(&MemBlockReference::normal_)}},
};

// Seen from above, an insert in a plane facing down is mirrored in X.
void InsertToPlane(MemBlockReference& e) {
  e.insertion_ = Flip(e.insertion_);
  e.rotation_ = -e.rotation_;
  e.sx_ = -e.sx_;
  e.sz_ = -e.sz_;
}

std::unique_ptr<MemEntity> ReadInsert(const Shape& s, ReadContext& ctx) {
  auto e = std::make_unique<MemBlockReference>();
  ReadFields(kInsertFields, s, ctx.codec, *e);
  if (e->block_name_.empty())
    throw DxfError(s.Line(), "the INSERT has no block name (group code 2)");
  if (FacesDown(e->normal_)) InsertToPlane(*e);
  return e;
}
void InsertFields(MemEntity& me, const WriteContext&, WritePlan& plan) {
  auto& e = static_cast<MemBlockReference&>(me);
  FieldGroup& g = plan.groups.emplace_back(kInsertFields[0].marker);
  bool attributes = false;
  for (auto* a : e.Attributes()) attributes = attributes || !a->IsErased();
  g.IntOr(66, attributes ? 1 : 0, 0);
  std::optional<MemBlockReference> plane;
  WriteFields(kInsertFields[0], InPlane(e, plane, InsertToPlane), g);
}
void InsertHash(const MemEntity& me, Hasher& h) {
  auto& e = static_cast<const MemBlockReference&>(me);
  HashFields(kInsertFields, e, h);
  for (auto* a : e.Attributes())
    if (!a->IsErased()) h.Add(static_cast<int64_t>(a->HandleValue()));
}

}  // namespace

const EntityCodec kInsertCodec = {"INSERT", host::EntityKind::kBlockReference,
                                  ReadInsert, InsertFields, InsertHash};

}  // namespace kestrana::dxf::kinds
