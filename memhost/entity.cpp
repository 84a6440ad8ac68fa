// What every entity kind shares: layer, colour, erasing, extents, copies.
#include <algorithm>
#include <cmath>

#include "memhost/document.h"
#include "memhost/entity_support.h"

namespace kestrana::memhost {

using host::ErrorCode;
using host::HostError;
using host::TextAlignment;
using namespace support;

template <class Base>
host::Block& EntityImpl<Base>::OwnerBlock() const {
  this->CheckAlive();
  return *this->owner_;
}

template <class Base>
void EntityImpl<Base>::SetLayer(const std::string& layer) {
  this->CheckWritable();
  MemLayer* l = this->doc_->FindLayer(layer);
  if (l == nullptr)
    throw HostError(ErrorCode::kNoSuchKey, "no layer named \"" + layer + "\"");
  this->SetLayerUnchecked(l->name_);
}

template <class Base>
void EntityImpl<Base>::SetTrueColor(int color_index) {
  this->CheckWritable();
  if (color_index < 0 || color_index > 256)
    throw HostError(ErrorCode::kBadArgument,
                    "a colour index runs from 0 to 256, not " +
                        std::to_string(color_index));
  this->color_ = color_index;
}

template <class Base>
void EntityImpl<Base>::Delete() {
  this->CheckWritable();
  if (auto* ref = this->AsBlockReference())
    for (MemAttributeReference* a : ref->Attributes())
      if (!a->IsErased()) {
        a->erased_ = true;
        this->doc_->OnErased(*a);
      }
  this->doc_->OnErased(*this);
  this->erased_ = true;
  if (this->owner_ != nullptr &&
      this->Kind() != EntityKind::kAttributeReference)
    ++this->owner_->erased_count_;
}

template <class Base>
BoundingBox EntityImpl<Base>::GetBoundingBox() const {
  this->CheckAlive();
  Box2 box;
  this->AddExtents(Affine{}, box);
  if (box.empty)
    throw HostError(ErrorCode::kNotSupported,
                    "entity " + std::to_string(this->id_) + " has no extents");
  return BoundingBox{{box.min_x, box.min_y, 0}, {box.max_x, box.max_y, 0}};
}

template <class Base>
std::vector<double> EntityImpl<Base>::IntersectWith(
    const host::Entity& other, host::ExtendOption option) const {
  this->CheckAlive();
  auto* o = dynamic_cast<const MemEntity*>(&other);
  if (o == nullptr)
    throw HostError(ErrorCode::kBadArgument,
                    "cannot intersect with an entity of another drawing");
  if (o->IsErased())
    throw HostError(ErrorCode::kErased,
                    "entity " + std::to_string(o->Id()) + " was erased");
  bool extend_this = option == host::ExtendOption::kThis ||
                     option == host::ExtendOption::kBoth;
  bool extend_other = option == host::ExtendOption::kOther ||
                      option == host::ExtendOption::kBoth;
  std::vector<double> flat;
  for (const Point3& p : IntersectCurves(this->Pieces(), extend_this,
                                         o->Pieces(), extend_other)) {
    flat.push_back(p.x);
    flat.push_back(p.y);
    flat.push_back(p.z);
  }
  return flat;
}

template <class Base>
host::Entity& EntityImpl<Base>::Copy() const {
  this->CheckAlive();
  if (dynamic_cast<const MemAttributeReference*>(this))
    throw HostError(ErrorCode::kNotSupported,
                    "an attribute is copied with its block reference");
  std::unique_ptr<MemEntity> clone = this->CloneState();
  MemEntity& copy = this->owner_->Adopt(std::move(clone), 0);
  if (auto* ref = dynamic_cast<const MemBlockReference*>(this)) {
    auto& new_ref = dynamic_cast<MemBlockReference&>(copy);
    for (MemAttributeReference* a : ref->Attributes()) {
      if (a->IsErased()) continue;
      std::unique_ptr<MemEntity> attr_clone = a->CloneState();
      auto& attr = static_cast<MemAttributeReference&>(
          this->doc_->RegisterObject(std::move(attr_clone), 0));
      attr.owner_ = this->owner_;
      new_ref.AttachAttribute(attr);
      this->doc_->OnLayerChanged(attr, "", attr.layer_);
      attr.ForEachXDataApp(
          [&](const std::string& app) { this->doc_->RegisterApp(app); });
    }
  }
  return copy.AsHostEntity();
}


template class EntityImpl<host::LwPolyline>;
template class EntityImpl<host::Line>;
template class EntityImpl<host::Point>;
template class EntityImpl<host::Circle>;
template class EntityImpl<host::Arc>;
template class EntityImpl<host::Ellipse>;
template class EntityImpl<host::Hatch>;
template class EntityImpl<host::Text>;
template class EntityImpl<host::AttributeReference>;
template class EntityImpl<host::AttributeDefinition>;
template class EntityImpl<host::BlockReference>;
template class EntityImpl<host::OtherEntity>;

}  // namespace kestrana::memhost
